// SPDX-License-Identifier: MIT
// What the tests of saves share: a folder of their own, faults at any step of a save, and child processes
// that end in the middle of one or are another user. The tests may run as the administrator, whom the system
// refuses nothing: what must be refused is tried in a child process of another user then.
#pragma once

#include "system/savefile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace save_test {

namespace fs = std::filesystem;
using lm::system::SaveStep;

constexpr std::size_t kPiece = std::size_t{1} << 20; // that reaches the system in one write
constexpr int kKill = -1000000000;                   // an answer of the test's hook: end the process here
constexpr int kKilled = 77;
constexpr uid_t kNobody = 65534;

/// A fault at the nth time that a step is reached; the steps that were reached are counted.
struct Fault {
    SaveStep step = SaveStep::kInspect;
    int at = 0; ///< counted from 1; 0 for never
    int answer = 0;
    std::vector<SaveStep> seen;

    static int hook(SaveStep step, void* context) {
        auto& self = *static_cast<Fault*>(context);
        self.seen.push_back(step);
        if (step != self.step || std::count(self.seen.begin(), self.seen.end(), step) != self.at) return 0;
        if (self.answer == kKill) ::_exit(kKilled);
        return self.answer;
    }
    /// A fault at the step of another run that has this index.
    static Fault atIndex(const std::vector<SaveStep>& steps, std::size_t index, int answer) {
        const auto end = steps.begin() + static_cast<std::ptrdiff_t>(index) + 1;
        return {steps[index], static_cast<int>(std::count(steps.begin(), end, steps[index])), answer, {}};
    }
};

/// Sets the hook for as long as it lives.
struct Hooked {
    explicit Hooked(Fault& fault) { lm::system::hookSaves(&Fault::hook, &fault); }
    ~Hooked() { lm::system::hookSaves(nullptr); }
    Hooked(const Hooked&) = delete;
    Hooked& operator=(const Hooked&) = delete;
};

inline std::string content(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Runs in a child process and gives its exit code, 1000 and the signal when it was killed.
inline int inChild(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

/// Gives up the administrator's rights, in a child process.
inline void becomeNobody() {
    if (::geteuid() != 0) return;
    if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(99);
}

/// Puts a disk of its own over a folder, in a child process that alone sees it. False where the machine
/// doesn't give the rights for it.
inline bool mountDisk(const fs::path& folder, const char* size) {
    if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    return ::mount("none", folder.c_str(), "tmpfs", 0, size) == 0;
}

/// An empty folder for each test.
class SaveFolderTest : public testing::Test {
protected:
    void SetUp() override {
        std::string text = (fs::temp_directory_path() / "lm p\xC3\xA1gina XXXXXX").string();
        ASSERT_NE(::mkdtemp(text.data()), nullptr);
        m_folder = text;
    }
    void TearDown() override {
        lm::system::hookSaves(nullptr);
        fs::permissions(m_folder, fs::perms::owner_all);
        fs::remove_all(m_folder);
    }
    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    static void put(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    static mode_t mode(const std::string& path) {
        struct stat s {};
        return ::stat(path.c_str(), &s) == 0 ? s.st_mode & 07777 : 0;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : fs::directory_iterator(m_folder)) result.push_back(entry.path().filename());
        std::sort(result.begin(), result.end());
        return result;
    }

    fs::path m_folder;
};

} // namespace save_test
