// SPDX-License-Identifier: MIT
// Saves that go well, that fail at each step and whose process ends at each step.
#include "system/savefile.h"

#include "support/save_folder.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using namespace save_test;
using lm::system::SaveError;
using lm::system::SaveFile;

std::string pattern(std::size_t size, unsigned seed) {
    std::string text(size, '\0');
    for (char& c : text) c = static_cast<char>((seed = seed * 1664525u + 1013904223u) >> 24);
    return text;
}

class SaveFileTest : public SaveFolderTest {
protected:
    static void save(const std::string& path, const std::string& content) {
        SaveFile out(path);
        out.append(content);
        out.commit();
    }
    /// What a save answers: 0, or the error and its step.
    static std::pair<int, SaveStep> tried(const std::string& path, const std::string& content) {
        try {
            save(path, content);
        } catch (const SaveError& error) {
            EXPECT_EQ(error.path(), path);
            return {error.error(), error.step()};
        }
        return {0, SaveStep::kInspect};
    }
};

// --- what is written

TEST_F(SaveFileTest, MakesANewFileWithTheModeThatTheMaskLeaves) {
    const mode_t mask = ::umask(027);
    save(path("new.dxf"), "content");
    ::umask(mask);
    EXPECT_EQ(content(path("new.dxf")), "content");
    EXPECT_EQ(mode(path("new.dxf")), 0640u);
    EXPECT_EQ(names(), std::vector<std::string>{"new.dxf"});
}

TEST_F(SaveFileTest, ReplacesTheContent) {
    put(path("a.dxf"), pattern(5000, 1));
    save(path("a.dxf"), "short");
    EXPECT_EQ(content(path("a.dxf")), "short");
    save(path("a.dxf"), "");
    EXPECT_EQ(content(path("a.dxf")), "");
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(SaveFileTest, KeepsTheOldContentUntilTheCommit) {
    put(path("a.dxf"), "old");
    SaveFile out(path("a.dxf"));
    out.append(pattern(3 * kPiece, 2));
    EXPECT_EQ(content(path("a.dxf")), "old");
    out.commit();
    EXPECT_EQ(content(path("a.dxf")), pattern(3 * kPiece, 2));
}

TEST_F(SaveFileTest, IsGoneWithoutACommit) {
    put(path("a.dxf"), "old");
    {
        SaveFile out(path("a.dxf"));
        out.append(pattern(2 * kPiece, 2));
        EXPECT_EQ(names().size(), 2u);
    }
    EXPECT_EQ(content(path("a.dxf")), "old");
    EXPECT_EQ(names().size(), 1u);
    { const SaveFile out(path("never.dxf")); }
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(SaveFileTest, WritesPiecesOfAnySizeInOrder) {
    std::string expected;
    {
        SaveFile out(path("pieces.dxf"));
        unsigned seed = 7;
        const std::size_t sizes[] = {0,          1,          kPiece - 1,     kPiece, kPiece + 1, 3,
                                     2 * kPiece, kPiece - 3, 3 * kPiece + 5, 17,     0};
        for (const std::size_t size : sizes) {
            const std::string piece = pattern(size, ++seed);
            out.append(piece.data(), piece.size());
            expected += piece;
            EXPECT_EQ(out.size(), expected.size());
        }
        out.commit();
    }
    EXPECT_TRUE(content(path("pieces.dxf")) == expected);
}

TEST_F(SaveFileTest, GathersManySmallWrites) {
    Fault count;
    std::string expected;
    {
        const Hooked hooked(count);
        SaveFile out(path("many.dxf"));
        for (int i = 0; i < 500000; ++i) {
            const std::string line = std::to_string(i) + "\n";
            expected += line;
            out.append(line);
        }
        out.commit();
    }
    EXPECT_TRUE(content(path("many.dxf")) == expected);
    const auto writes = std::count(count.seen.begin(), count.seen.end(), SaveStep::kWrite);
    EXPECT_EQ(static_cast<std::size_t>(writes), expected.size() / kPiece + 1);
}

TEST_F(SaveFileTest, GoesOnAfterPartialAndInterruptedWrites) {
    struct Chopper {
        int calls = 0;
        static int hook(SaveStep step, void* context) {
            const int call = ++static_cast<Chopper*>(context)->calls;
            const bool slow =
                step == SaveStep::kWrite || step == SaveStep::kFlush || step == SaveStep::kFlushFolder;
            if (slow && call % 3 == 0) return EINTR;
            return step == SaveStep::kWrite ? -100000 : 0;
        }
    } chopper;
    const std::string expected = pattern(2 * kPiece + 11, 5);
    lm::system::hookSaves(&Chopper::hook, &chopper);
    save(path("b.dxf"), expected);
    lm::system::hookSaves(nullptr);
    EXPECT_TRUE(content(path("b.dxf")) == expected);
    EXPECT_GT(chopper.calls, 30);
}

TEST_F(SaveFileTest, GoesThroughItsStepsInOrder) {
    put(path("a.dxf"), "old");
    Fault steps;
    const Hooked hooked(steps);
    save(path("a.dxf"), "new");
    const std::vector<SaveStep> expected = {SaveStep::kInspect,    SaveStep::kOpenFolder, SaveStep::kCreate,
                                            SaveStep::kAttributes, SaveStep::kWrite,      SaveStep::kFlush,
                                            SaveStep::kReplace,    SaveStep::kFlushFolder};
    EXPECT_EQ(steps.seen, expected);
}

TEST_F(SaveFileTest, RefusesMoreAfterTheCommit) {
    SaveFile out(path("a.dxf"));
    out.append("x");
    out.commit();
    EXPECT_THROW(out.append("y"), std::logic_error);
    EXPECT_THROW(out.commit(), std::logic_error);
    EXPECT_EQ(content(path("a.dxf")), "x");
}

// --- which file

TEST_F(SaveFileTest, WritesWhatALinkLeadsToAndKeepsTheLink) {
    fs::create_directory(m_folder / "store");
    put(path("store/real.dxf"), "old");
    fs::create_symlink("store/real.dxf", m_folder / "inner.dxf");
    fs::create_symlink(m_folder / "inner.dxf", m_folder / "outer.dxf");
    save(path("outer.dxf"), "new");
    EXPECT_TRUE(fs::is_symlink(m_folder / "outer.dxf"));
    EXPECT_TRUE(fs::is_symlink(m_folder / "inner.dxf"));
    EXPECT_FALSE(fs::is_symlink(m_folder / "store/real.dxf"));
    EXPECT_EQ(content(path("store/real.dxf")), "new");
    EXPECT_EQ(names(), (std::vector<std::string>{"inner.dxf", "outer.dxf", "store"}));
}

TEST_F(SaveFileTest, MakesTheFileThatALinkLeadsTo) {
    fs::create_directory(m_folder / "store");
    fs::create_symlink("store/later.dxf", m_folder / "link.dxf");
    save(path("link.dxf"), "new");
    EXPECT_TRUE(fs::is_symlink(m_folder / "link.dxf"));
    EXPECT_EQ(content(path("store/later.dxf")), "new");
}

TEST_F(SaveFileTest, TakesTheFolderThroughALink) {
    fs::create_directory(m_folder / "store");
    fs::create_symlink("store", m_folder / "alias");
    save(path("alias/a.dxf"), "new");
    EXPECT_EQ(content(path("store/a.dxf")), "new");
}

TEST_F(SaveFileTest, WritesIntoTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(m_folder);
    const auto answer = tried("plain.dxf", "new");
    fs::current_path(before);
    EXPECT_EQ(answer.first, 0);
    EXPECT_EQ(content(path("plain.dxf")), "new");
}

TEST_F(SaveFileTest, RefusesWhatIsNoOrdinaryFile) {
    fs::create_directory(m_folder / "folder");
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    fs::create_symlink("loop", m_folder / "loop");
    fs::create_symlink("/dev/full", m_folder / "full");
    const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string socketPath = path("socket");
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(::bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(server);
    const struct {
        std::string path;
        int error;
        SaveStep step;
    } rows[] = {
        {"", ENOENT, SaveStep::kInspect},
        {path("folder"), EISDIR, SaveStep::kInspect},
        {path("folder/"), EISDIR, SaveStep::kInspect},
        {path("none/"), EISDIR, SaveStep::kInspect},
        {path("pipe"), EINVAL, SaveStep::kInspect},
        {path("socket"), EINVAL, SaveStep::kInspect},
        {path("loop"), ELOOP, SaveStep::kInspect},
        {path("full"), EINVAL, SaveStep::kInspect},
        {"/dev/full", EINVAL, SaveStep::kInspect},
        {"/dev/null", EINVAL, SaveStep::kInspect},
        {path("none/a.dxf"), ENOENT, SaveStep::kOpenFolder},
        {path("pipe/a.dxf"), ENOTDIR, SaveStep::kOpenFolder},
        {path(std::string(256, 'n')), ENAMETOOLONG, SaveStep::kInspect},
    };
    const auto before = names();
    for (const auto& row : rows) {
        const auto [error, step] = tried(row.path, "x");
        EXPECT_EQ(error, row.error) << row.path;
        EXPECT_EQ(step, row.step) << row.path;
    }
    EXPECT_EQ(names(), before);
}

TEST_F(SaveFileTest, TakesTheLongestName) {
    // 255 bytes, and one in which the temporary name's cut falls into a character.
    for (const std::string& name : {std::string(255, 'n'), "x" + std::string(123, 'n') + ".dxf"}) {
        put(path(name), "old");
        save(path(name), "new");
        EXPECT_EQ(content(path(name)), "new");
    }
    std::string accents = "x";
    for (int i = 0; i < 120; ++i) accents += "\xC3\xA1";
    const SaveFile out(path(accents));
    for (const std::string& name : names()) {
        if (name.size() < 7 || name.substr(name.size() - 7) != ".lmsave") continue;
        EXPECT_EQ(name.substr(0, 81), "." + accents.substr(0, 79) + "."); // 79 bytes: the 80th is half an "á"
        EXPECT_EQ(name.size(), 1u + 79 + 1 + 16 + 1 + 16 + 7);
    }
}

TEST_F(SaveFileTest, LeavesOtherHardLinksWithTheOldContent) {
    put(path("a.dxf"), "old");
    fs::create_hard_link(m_folder / "a.dxf", m_folder / "b.dxf");
    save(path("a.dxf"), "new");
    EXPECT_EQ(content(path("a.dxf")), "new");
    EXPECT_EQ(content(path("b.dxf")), "old");
}

TEST_F(SaveFileTest, LetsTheLastOfTwoSavesWin) {
    SaveFile first(path("a.dxf"));
    SaveFile second(path("a.dxf")); // must not take the other's new file for a stale one
    EXPECT_EQ(names().size(), 2u);
    second.append("second");
    second.commit();
    first.append("first");
    first.commit();
    EXPECT_EQ(content(path("a.dxf")), "first");
    EXPECT_EQ(names().size(), 1u);
}

// --- attributes

TEST_F(SaveFileTest, KeepsTheModeWhateverTheMaskIs) {
    for (const mode_t wanted : {0600u, 0644u, 0666u, 0640u, 0755u, 0200u}) {
        put(path("a.dxf"), "old");
        ASSERT_EQ(::chmod(path("a.dxf").c_str(), wanted), 0);
        const mode_t mask = ::umask(077);
        save(path("a.dxf"), "new");
        ::umask(mask);
        EXPECT_EQ(mode(path("a.dxf")), wanted);
    }
}

TEST_F(SaveFileTest, LetsNobodyElseReadThePieces) {
    put(path("a.dxf"), "old");
    ASSERT_EQ(::chmod(path("a.dxf").c_str(), 0600), 0);
    const SaveFile out(path("a.dxf"));
    for (const std::string& name : names()) EXPECT_EQ(mode(path(name)), 0600u) << name;
}

TEST_F(SaveFileTest, KeepsOwnerAndGroupWhereAllowed) {
    put(path("a.dxf"), "old");
    // Only the administrator can give files away; for others this states that their own file stays theirs.
    const bool administrator = ::geteuid() == 0;
    const uid_t owner = administrator ? 1234 : ::geteuid();
    const gid_t group = administrator ? 2345 : ::getegid();
    ASSERT_EQ(::chown(path("a.dxf").c_str(), owner, group), 0);
    ASSERT_EQ(::chmod(path("a.dxf").c_str(), 0664), 0);
    save(path("a.dxf"), "new");
    struct stat s {};
    ASSERT_EQ(::stat(path("a.dxf").c_str(), &s), 0);
    EXPECT_EQ(s.st_uid, owner);
    EXPECT_EQ(s.st_gid, group);
    EXPECT_EQ(s.st_mode & 07777u, 0664u);
}

TEST_F(SaveFileTest, GivesAnotherGroupWhatOthersHad) {
    put(path("a.dxf"), "old");
    const struct {
        mode_t before, after;
    } rows[] = {{0660, 0600}, {0664, 0644}, {0640, 0600}, {0604, 0644}, {0666, 0666}};
    for (const auto& row : rows) {
        ASSERT_EQ(::chmod(path("a.dxf").c_str(), row.before), 0);
        Fault fault{SaveStep::kAttributes, 1, EPERM, {}};
        const Hooked hooked(fault);
        save(path("a.dxf"), "new");
        EXPECT_EQ(mode(path("a.dxf")), row.after);
    }
}

TEST_F(SaveFileTest, KeepsTheAttributesOfUsersWhereTheFileSystemHasThem) {
    put(path("a.dxf"), "old");
    const bool kept = ::setxattr(path("a.dxf").c_str(), "user.lm", "value", 5, 0) == 0;
    save(path("a.dxf"), "new");
    char value[16] = {};
    const ssize_t size = ::getxattr(path("a.dxf").c_str(), "user.lm", value, sizeof value);
    EXPECT_EQ(size, kept ? 5 : -1);
    EXPECT_EQ(std::string(value), kept ? "value" : "");
}

TEST_F(SaveFileTest, RefusesAFileThatTheCallerMayNotWrite) {
    put(path("a.dxf"), "old");
    ASSERT_EQ(::chmod(path("a.dxf").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(m_folder.c_str(), 0777), 0);
    // Its own child process, since the administrator may write it.
    const int answer = inChild([this] {
        becomeNobody();
        const auto [error, step] = tried(path("a.dxf"), "new");
        return error == EACCES && step == SaveStep::kInspect ? 0 : 1;
    });
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(content(path("a.dxf")), "old");
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(SaveFileTest, RefusesAFolderThatTheCallerMayNotWrite) {
    put(path("a.dxf"), "old");
    ASSERT_EQ(::chmod(path("a.dxf").c_str(), 0666), 0);
    ASSERT_EQ(::chmod(m_folder.c_str(), 0555), 0);
    // Its own child process, since the administrator may write it.
    const int answer = inChild([this] {
        becomeNobody();
        const auto [error, step] = tried(path("a.dxf"), "new");
        return error == EACCES && step == SaveStep::kCreate ? 0 : 1;
    });
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(content(path("a.dxf")), "old");
}

// --- failures

TEST_F(SaveFileTest, SaysWhatFailedWhereAndWhy) {
    const struct {
        SaveStep step;
        int error;
        std::string text;
    } rows[] = {
        {SaveStep::kInspect, EACCES, "looking at the file: Permission denied"},
        {SaveStep::kOpenFolder, EMFILE, "opening the folder: Too many open files"},
        {SaveStep::kCreate, EROFS, "making the new file: Read-only file system"},
        {SaveStep::kWrite, ENOSPC, "writing: No space left on device"},
        {SaveStep::kWrite, EDQUOT, "writing: Disk quota exceeded"},
        {SaveStep::kFlush, EIO, "flushing: Input/output error"},
        {SaveStep::kReplace, EPERM, "putting the new file in place: Operation not permitted"},
        {SaveStep::kFlushFolder, EIO, "flushing the folder: Input/output error"},
    };
    for (const auto& row : rows) {
        put(path("a.dxf"), "old");
        Fault fault{row.step, 1, row.error, {}};
        const Hooked hooked(fault);
        try {
            save(path("a.dxf"), "new");
            ADD_FAILURE() << row.text;
        } catch (const SaveError& error) {
            EXPECT_EQ(error.what(), path("a.dxf") + ": can't be saved, " + row.text);
            EXPECT_EQ(error.path(), path("a.dxf"));
            EXPECT_EQ(error.step(), row.step);
            EXPECT_EQ(error.error(), row.error);
            EXPECT_NE(row.text.find(error.operation()), std::string::npos);
            EXPECT_EQ(error.replaced(), row.step == SaveStep::kFlushFolder);
        }
        EXPECT_EQ(content(path("a.dxf")), row.step == SaveStep::kFlushFolder ? "new" : "old") << row.text;
        EXPECT_EQ(names().size(), 1u) << row.text;
    }
}

TEST_F(SaveFileTest, FailsAgainAfterAFailure) {
    put(path("a.dxf"), "old");
    Fault fault{SaveStep::kWrite, 2, ENOSPC, {}};
    const Hooked hooked(fault);
    SaveFile out(path("a.dxf"));
    out.append(pattern(kPiece, 1));
    out.append("x"); // writes the first piece
    EXPECT_THROW(out.append(pattern(kPiece, 2)), SaveError);
    EXPECT_EQ(names().size(), 1u); // the disk has its room again at once
    for (int i = 0; i < 2; ++i) {
        try {
            i == 0 ? out.append("y") : out.commit();
            ADD_FAILURE();
        } catch (const SaveError& error) {
            EXPECT_EQ(error.error(), ENOSPC);
            EXPECT_EQ(error.step(), SaveStep::kWrite);
        }
    }
    EXPECT_EQ(content(path("a.dxf")), "old");
}

TEST_F(SaveFileTest, KeepsTheOldFileWhereTheSystemTakesNoMore) {
    put(path("a.dxf"), "old");
    // A limit of the process for the size of files, in a child, fails a real write in its middle.
    const int answer = inChild([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{kPiece + kPiece / 2, kPiece + kPiece / 2};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 98;
        const auto [error, step] = tried(path("a.dxf"), pattern(4 * kPiece, 3));
        return error == EFBIG && step == SaveStep::kWrite ? 0 : 1;
    });
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(content(path("a.dxf")), "old");
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(SaveFileTest, KeepsTheOldFileOnADiskThatIsFull) {
    // A disk of its own needs rights that not every machine gives; the same failure comes from the hook in
    // SaysWhatFailedWhereAndWhy.
    constexpr int kNoDisk = 50;
    const int answer = inChild([this] {
        if (!mountDisk(m_folder, "size=4m")) return kNoDisk;
        const std::string old = pattern(kPiece, 1);
        put(path("a.dxf"), old);
        const auto [error, step] = tried(path("a.dxf"), pattern(6 * kPiece, 3));
        if (error != ENOSPC || step != SaveStep::kWrite) return 1;
        if (content(path("a.dxf")) != old || names().size() != 1) return 2;
        return tried(path("a.dxf"), pattern(2 * kPiece, 4)).first == 0 &&
                       content(path("a.dxf")) == pattern(2 * kPiece, 4)
                   ? 0
                   : 3;
    });
    EXPECT_TRUE(answer == 0 || answer == kNoDisk) << answer;
    RecordProperty("own_disk", answer == 0 ? "yes" : "no");
}

// --- a process that ends in the middle

class SaveFileKilled : public SaveFileTest, public testing::WithParamInterface<bool> {};

TEST_P(SaveFileKilled, LeavesTheOldContentOrTheNewAtEveryStep) {
    const bool exists = GetParam();
    const std::string old = exists ? pattern(kPiece + 99, 1) : "";
    const std::string fresh = pattern(5 * kPiece + 1, 2);
    const auto saveInPieces = [&] {
        SaveFile out(path("a.dxf"));
        for (std::size_t at = 0; at < fresh.size(); at += 300000) out.append(fresh.substr(at, 300000));
        out.commit();
        return 0;
    };
    const auto reset = [&] {
        fs::remove(m_folder / "a.dxf");
        if (exists) put(path("a.dxf"), old);
    };
    reset();
    Fault plan;
    {
        const Hooked hooked(plan);
        saveInPieces();
    }
    ASSERT_GE(plan.seen.size(), exists ? 13u : 12u);
    for (std::size_t i = 0; i < plan.seen.size(); ++i) {
        reset();
        const SaveStep step = plan.seen[i];
        Fault fault = Fault::atIndex(plan.seen, i, kKill);
        const int code = inChild([&] {
            const Hooked hooked(fault);
            return saveInPieces();
        });
        EXPECT_EQ(code, kKilled) << i;
        const bool done = step == SaveStep::kFlushFolder;
        EXPECT_EQ(fs::exists(path("a.dxf")), exists || done) << i;
        EXPECT_TRUE(content(path("a.dxf")) == (done ? fresh : old)) << i;
        // What is left is one recognisable file at most; the next save takes it away.
        const auto left = names();
        ASSERT_LE(left.size(), exists || done ? 2u : 1u) << i;
        for (const std::string& name : left)
            EXPECT_TRUE(name == "a.dxf" || name.substr(name.size() - 7) == ".lmsave") << name;
        save(path("a.dxf"), "next");
        EXPECT_EQ(names(), std::vector<std::string>{"a.dxf"}) << i;
        EXPECT_EQ(content(path("a.dxf")), "next");
    }
}

INSTANTIATE_TEST_SUITE_P(OldAndNewTargets, SaveFileKilled, testing::Values(true, false));

TEST_F(SaveFileTest, LeavesTheOldContentWhenItIsKilledFromOutside) {
    const std::string old = pattern(1000, 1);
    const std::string fresh = pattern(8 * kPiece, 2);
    for (int delay = 0; delay < 20; ++delay) {
        put(path("a.dxf"), old);
        const pid_t child = ::fork();
        if (child == 0) {
            save(path("a.dxf"), fresh);
            ::_exit(0);
        }
        ::usleep(static_cast<useconds_t>(delay * 700));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        const std::string now = content(path("a.dxf"));
        EXPECT_TRUE(now == old || now == fresh) << delay;
    }
    save(path("a.dxf"), "next");
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(SaveFileTest, LeavesForeignFilesAlone) {
    const std::string digits = "0123456789abcdef";
    const std::vector<std::string> foreign = {
        ".a.dxf.lmsave", ".a.dxf." + digits + "." + digits + ".lmsave", // another whole name's number
        ".b.dxf." + digits + "." + digits + ".lmsave", "a.dxf~", ".a.dxf.swp"};
    for (const std::string& name : foreign) put(path(name), "theirs");
    save(path("a.dxf"), "new");
    for (const std::string& name : foreign) EXPECT_EQ(content(path(name)), "theirs") << name;
}

TEST_F(SaveFileTest, LeavesTheNewFileOfALivingProcessAlone) {
    int toChild[2], toParent[2];
    ASSERT_EQ(::pipe(toChild), 0);
    ASSERT_EQ(::pipe(toParent), 0);
    const pid_t child = ::fork();
    char byte = 0;
    if (child == 0) {
        SaveFile out(path("a.dxf"));
        out.append("child");
        if (::write(toParent[1], "x", 1) != 1 || ::read(toChild[0], &byte, 1) != 1) ::_exit(2);
        try {
            out.commit();
        } catch (const SaveError&) {
            ::_exit(1);
        }
        ::_exit(0);
    }
    ASSERT_EQ(::read(toParent[0], &byte, 1), 1);
    save(path("a.dxf"), "parent");
    EXPECT_EQ(content(path("a.dxf")), "parent");
    ASSERT_EQ(::write(toChild[1], "x", 1), 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(content(path("a.dxf")), "child");
    for (const int end : {toChild[0], toChild[1], toParent[0], toParent[1]}) ::close(end);
}

} // namespace
