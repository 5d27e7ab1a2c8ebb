// SPDX-License-Identifier: MIT
#include "system/file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lm::system {

namespace {

constexpr std::size_t kPadding = 64;
constexpr std::size_t kPart = std::size_t{4} << 20;
constexpr std::size_t kFirstGuess = std::size_t{1} << 20; // for what the system gives no size of
constexpr std::size_t kHuge = std::size_t{2} << 20;

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0) ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return m_fd; }

private:
    int m_fd;
};

bool sameFile(const struct stat& a, const struct stat& b) {
    return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec && a.st_ctim.tv_sec == b.st_ctim.tv_sec &&
           a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

} // namespace

FileStamp stampOf(const struct ::stat& status) {
    return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

std::optional<FileStamp> stampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return stampOf(status);
}

std::string resolvedPath(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code failed;
    fs::path at(path);
    constexpr int kMostLinks = 40; // as many as the system itself follows
    for (int links = 0; links < kMostLinks && fs::is_symlink(at, failed); ++links) {
        const fs::path target = fs::read_symlink(at, failed);
        if (failed) return path;
        at = target.is_absolute() ? target : at.parent_path() / target;
    }
    const fs::path folder = fs::canonical(at.has_parent_path() ? at.parent_path() : fs::path("."), failed);
    return failed ? path : (folder / at.filename()).native();
}

bool isSameFile(const std::string& a, const std::string& b) {
    const std::optional<FileStamp> first = stampOf(a), second = stampOf(b);
    if (first && second) return first->device == second->device && first->inode == second->inode;
    return !first && !second && resolvedPath(a) == resolvedPath(b);
}

FileBytes::FileBytes(std::size_t capacity) : m_capacity(capacity) {
    void* const memory = ::mmap(nullptr, capacity + kPadding, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    // Large pages save most of the cost of fresh memory where the system gives them.
    if (capacity >= kHuge) ::madvise(memory, capacity + kPadding, MADV_HUGEPAGE);
    m_data = static_cast<char*>(memory);
}

FileBytes::~FileBytes() {
    if (m_data != nullptr) ::munmap(m_data, m_capacity + kPadding);
}

void FileBytes::grow(std::size_t capacity) {
    if (capacity <= m_capacity) return;
    FileBytes larger(capacity);
    if (m_size != 0) std::memcpy(larger.m_data, m_data, m_size);
    larger.m_size = m_size;
    swap(larger);
}

FileOutcome readWhole(const std::string& path, FileBytes& bytes,
                      const std::function<bool(const FileBytes&)>& onPart) {
    // Without waiting: opening a pipe that nobody writes to would never come back.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return {FileStatus::kNotFound, {}};
        return {FileStatus::kUnreadable, std::strerror(errno)};
    }
    struct stat before {};
    if (::fstat(file, &before) != 0) return {FileStatus::kUnreadable, std::strerror(errno)};
    if (S_ISDIR(before.st_mode)) return {FileStatus::kDirectory, {}};
    if (!S_ISREG(before.st_mode)) return {FileStatus::kUnreadable, "it is no ordinary file"};

    const bool sized = before.st_size > 0;
    bytes = FileBytes(sized ? static_cast<std::size_t>(before.st_size) : kFirstGuess);
    for (;;) {
        if (bytes.size() == bytes.capacity()) {
            // One byte more than the size tells the end of a file that grew meanwhile.
            char probe = 0;
            const ssize_t more = ::read(file, &probe, 1);
            if (more < 0 && errno == EINTR) continue;
            if (more <= 0) break;
            bytes.grow(bytes.capacity() * 2);
            bytes.data()[bytes.size()] = probe;
            bytes.setSize(bytes.size() + 1);
        }
        const std::size_t room = std::min(kPart, bytes.capacity() - bytes.size());
        const ssize_t got = ::read(file, bytes.data() + bytes.size(), room);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return {FileStatus::kUnreadable, std::strerror(errno)};
        if (got == 0) break;
        bytes.setSize(bytes.size() + static_cast<std::size_t>(got));
        if (onPart && !onPart(bytes)) return {FileStatus::kStopped, {}};
    }
    struct stat after {};
    if (::fstat(file, &after) != 0) return {FileStatus::kUnreadable, std::strerror(errno)};
    const bool whole = !sized || bytes.size() == static_cast<std::size_t>(before.st_size);
    if (!whole || !sameFile(before, after)) return {FileStatus::kChanged, {}};
    return {FileStatus::kRead, {}, stampOf(after)};
}

} // namespace lm::system
