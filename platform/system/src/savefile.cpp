// SPDX-License-Identifier: MIT
#include "system/savefile.h"

#include "system/path.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace lm::system {

namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 20;
constexpr int kMostLinks = 40;      // as many as the system itself follows
constexpr int kMostNames = 100;     // tries for a free name; one is enough but for an unlikely meeting
constexpr std::size_t kHead = 80;   // bytes of the target's name that a temporary name shows
constexpr std::size_t kDigits = 16; // of each number in it
constexpr char kSuffix[] = ".lmsave";
constexpr char kAccessList[] = "system.posix_acl_access";

SaveHook g_hook = nullptr;
void* g_context = nullptr;

int ask(SaveStep step) {
    return g_hook != nullptr ? g_hook(step, g_context) : 0;
}

std::string digits(std::uint64_t value) {
    char text[kDigits + 1];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
    return text;
}

/// What the temporary names of a target begin with. The number tells targets apart whose names begin alike;
/// FNV-1a, whose constants these are.
std::string temporaryHead(const std::string& name) {
    std::uint64_t hash = 14695981039346656037ull;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    std::size_t length = std::min(name.size(), kHead);
    // Not in the middle of a character: some file systems take UTF-8 only.
    while (length < name.size() && length > 0 && (name[length] & 0xC0) == 0x80) --length;
    return "." + name.substr(0, length) + "." + digits(hash) + ".";
}

/// Whether a name is a temporary one behind a head.
bool isTemporary(std::string_view name, const std::string& head) {
    if (name.size() != head.size() + kDigits + sizeof kSuffix - 1) return false;
    if (name.substr(0, head.size()) != head || name.substr(head.size() + kDigits) != kSuffix) return false;
    const std::string_view random = name.substr(head.size(), kDigits);
    return random.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

/// A number that nobody can foresee; 0 and the error when the system has none.
int randomNumber(std::uint64_t& value) {
    ssize_t got = 0;
    do got = ::getrandom(&value, sizeof value, 0);
    while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(sizeof value) ? 0 : (got < 0 ? errno : EIO);
}

/// Whether this process holds the file's lock now. A file system without locks counts as holding.
enum class Lock { kHeld, kTaken, kNone };
Lock lockFile(int file) {
    while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        return errno == EWOULDBLOCK ? Lock::kTaken : Lock::kNone;
    }
    return Lock::kHeld;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

namespace {

std::string reasonOf(SaveStep step, int error) {
    // Nothing else that is looked at gives this number.
    if (step == SaveStep::kInspect && error == EINVAL) return "it is no ordinary file";
    return std::string(SaveError::operation(step)) + ": " + std::strerror(error);
}

} // namespace

void hookSaves(SaveHook hook, void* context) {
    g_hook = hook;
    g_context = context;
}

SaveError::SaveError(const std::string& path, SaveStep step, int error)
    : std::runtime_error(shownPath(path) + ": can't be saved, " + reasonOf(step, error)), m_path(path),
      m_step(step), m_error(error) {}

SaveError::~SaveError() = default;

const char* SaveError::operation(SaveStep step) {
    switch (step) {
    case SaveStep::kInspect:
        return "looking at the file";
    case SaveStep::kOpenFolder:
        return "opening the folder";
    case SaveStep::kCreate:
        return "making the new file";
    case SaveStep::kAttributes:
        return "setting the file's attributes";
    case SaveStep::kWrite:
        return "writing";
    case SaveStep::kFlush:
        return "flushing";
    case SaveStep::kReplace:
        return "putting the new file in place";
    case SaveStep::kFlushFolder:
        return "flushing the folder";
    }
    return "";
}

SaveFile::SaveFile(const std::string& path) : m_path(path), m_buffer(new char[kBuffer]) {
    try {
        begin();
    } catch (...) {
        abandon();
        throw;
    }
}

SaveFile::~SaveFile() {
    abandon();
}

void SaveFile::fail(SaveStep step, int error) {
    m_state = State::kFailed;
    m_failedStep = step;
    m_error = error;
    abandon();
    throw SaveError(m_path, step, error);
}

/// Closes everything and removes the new file, unless it has become the target.
void SaveFile::abandon() noexcept {
    if (!m_temporary.empty()) ::unlinkat(m_folder, m_temporary.c_str(), 0);
    m_temporary.clear();
    if (m_file >= 0) ::close(m_file);
    if (m_folder >= 0) ::close(m_folder);
    m_file = m_folder = -1;
}

void SaveFile::begin() {
    if (const int error = ask(SaveStep::kInspect); error > 0) fail(SaveStep::kInspect, error);
    // What stands at the end of all links is asked first: some links of the system lead to no name at all.
    struct stat end {};
    if (::stat(m_path.c_str(), &end) == 0 && !S_ISREG(end.st_mode))
        fail(SaveStep::kInspect, S_ISDIR(end.st_mode) ? EISDIR : EINVAL);
    std::string target;
    try {
        target = followLinks();
    } catch (const SaveError& error) {
        fail(error.step(), error.error());
    }
    const std::size_t slash = target.rfind('/');
    m_name = slash == std::string::npos ? target : target.substr(slash + 1);
    if (m_name.empty()) fail(SaveStep::kInspect, target.empty() ? ENOENT : EISDIR);

    if (const int error = ask(SaveStep::kOpenFolder); error > 0) fail(SaveStep::kOpenFolder, error);
    m_folder = ::open(folderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0) fail(SaveStep::kOpenFolder, errno);
    struct stat old {};
    const bool exists = inspect(old);
    removeStale();
    create(!exists);
    if (exists) takeAttributes(old);
}

/// The path behind all links of its last part. The links of folders on the way are the system's business.
std::string SaveFile::followLinks() const {
    std::string path = m_path;
    std::vector<char> text(4096);
    for (int links = 0;; ++links) {
        const ssize_t length = ::readlink(path.c_str(), text.data(), text.size());
        if (length <= 0) return path; // no link, or nothing there: the next steps tell
        if (links == kMostLinks) throw SaveError(m_path, SaveStep::kInspect, ELOOP);
        if (static_cast<std::size_t>(length) == text.size())
            throw SaveError(m_path, SaveStep::kInspect, ENAMETOOLONG);
        const std::string target(text.data(), static_cast<std::size_t>(length));
        path = target.front() == '/' ? target : folderOf(path) + "/" + target;
    }
}

/// Whether the target exists; refuses one that can't be or mustn't be replaced.
bool SaveFile::inspect(struct stat& old) {
    if (::fstatat(m_folder, m_name.c_str(), &old, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) return false;
        fail(SaveStep::kInspect, errno);
    }
    if (!S_ISREG(old.st_mode)) fail(SaveStep::kInspect, S_ISDIR(old.st_mode) ? EISDIR : EINVAL);
    if (::faccessat(m_folder, m_name.c_str(), W_OK, AT_EACCESS) != 0) fail(SaveStep::kInspect, errno);
    return true;
}

/// Deletes what crashed saves of this target left. Whatever lives is locked and stays; whatever can't be
/// found out stays, too.
void SaveFile::removeStale() const {
    const std::string head = temporaryHead(m_name);
    const int folder = ::openat(m_folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const entries = folder >= 0 ? ::fdopendir(folder) : nullptr;
    if (entries == nullptr) {
        if (folder >= 0) ::close(folder);
        return;
    }
    while (const dirent* entry = ::readdir(entries)) {
        if (!isTemporary(entry->d_name, head)) continue;
        const int file = ::openat(m_folder, entry->d_name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (file < 0) continue;
        if (lockFile(file) == Lock::kHeld) ::unlinkat(m_folder, entry->d_name, 0);
        ::close(file);
    }
    ::closedir(entries);
}

void SaveFile::create(bool isNew) {
    // Nobody else may read the content before the file has the mode of the old one.
    const mode_t mode = isNew ? 0666 : 0600;
    const std::string head = temporaryHead(m_name);
    for (int tries = 0; tries < kMostNames; ++tries) {
        std::uint64_t number = 0;
        if (const int error = randomNumber(number); error != 0) fail(SaveStep::kCreate, error);
        std::string name = head + digits(number) + kSuffix;
        if (const int error = ask(SaveStep::kCreate); error > 0) {
            if (error == EINTR) continue;
            fail(SaveStep::kCreate, error);
        }
        m_file = ::openat(m_folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (m_file < 0) {
            if (errno == EEXIST || errno == EINTR) continue;
            fail(SaveStep::kCreate, errno);
        }
        m_temporary = std::move(name);
        // Another save may take a file that isn't locked yet for a stale one: then it is about to go, or
        // gone.
        struct stat made {};
        if (lockFile(m_file) != Lock::kTaken && ::fstat(m_file, &made) == 0 && made.st_nlink > 0) return;
        ::unlinkat(m_folder, m_temporary.c_str(), 0);
        m_temporary.clear();
        ::close(m_file);
        m_file = -1;
    }
    fail(SaveStep::kCreate, EEXIST);
}

void SaveFile::takeAttributes(const struct stat& old) {
    const bool allowed = ask(SaveStep::kAttributes) <= 0;
    struct stat made {};
    if (::fstat(m_file, &made) != 0) fail(SaveStep::kAttributes, errno);
    bool owner = allowed && made.st_uid == old.st_uid;
    bool group = allowed && made.st_gid == old.st_gid;
    if (allowed && !(owner && group)) {
        if (::fchown(m_file, old.st_uid, old.st_gid) == 0)
            owner = group = true;
        else if (!group)
            group = ::fchown(m_file, static_cast<uid_t>(-1), old.st_gid) == 0;
    }
    mode_t mode = old.st_mode & 07777;
    if (!owner) mode &= ~static_cast<mode_t>(S_ISUID);
    // The bits of a group must not serve another group.
    if (!group) mode = (mode & ~static_cast<mode_t>(S_ISGID | S_IRWXG)) | ((mode & S_IRWXO) << 3);
    // Some file systems know no modes; the content matters more.
    static_cast<void>(::fchmod(m_file, mode));
    copyExtended(group);
}

/// Copies the access list and the users' own attributes of the target; a file that has none of the first gets
/// none from its folder either.
void SaveFile::copyExtended(bool withAccessList) const {
    if (::fgetxattr(m_file, kAccessList, nullptr, 0) > 0) ::fremovexattr(m_file, kAccessList);
    const int old = ::openat(m_folder, m_name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (old < 0) return;
    std::vector<char> names(65536); // the system's limit for a list, and for a value
    std::vector<char> value(65536);
    const ssize_t length = ::flistxattr(old, names.data(), names.size());
    for (ssize_t at = 0; at < length;) {
        const char* const name = names.data() + at;
        at += static_cast<ssize_t>(std::strlen(name)) + 1;
        const bool isUsers = std::strncmp(name, "user.", 5) == 0;
        if (!isUsers && !(withAccessList && std::strcmp(name, kAccessList) == 0)) continue;
        const ssize_t size = ::fgetxattr(old, name, value.data(), value.size());
        if (size >= 0)
            static_cast<void>(::fsetxattr(m_file, name, value.data(), static_cast<std::size_t>(size), 0));
    }
    ::close(old);
}

void SaveFile::requireOpen() const {
    if (m_state == State::kFailed) throw SaveError(m_path, m_failedStep, m_error);
    if (m_state == State::kCommitted) throw std::logic_error(m_path + ": the save was committed already");
}

void SaveFile::append(const char* bytes, std::size_t size) {
    requireOpen();
    if (size == 0) return;
    m_size += size;
    if (size > kBuffer - m_used) {
        std::size_t taken = 0;
        if (m_used != 0) {
            taken = kBuffer - m_used;
            std::memcpy(m_buffer.get() + m_used, bytes, taken);
            write(m_buffer.get(), kBuffer);
            m_used = 0;
        }
        // Whole pieces go out as they are, without a copy.
        const std::size_t whole = (size - taken) / kBuffer * kBuffer;
        write(bytes + taken, whole);
        bytes += taken + whole;
        size -= taken + whole;
    }
    std::memcpy(m_buffer.get() + m_used, bytes, size);
    m_used += size;
}

void SaveFile::write(const char* bytes, std::size_t size) {
    while (size > 0) {
        const int answer = ask(SaveStep::kWrite);
        if (answer == EINTR) continue;
        if (answer > 0) fail(SaveStep::kWrite, answer);
        const std::size_t wanted = answer < 0 ? std::min(size, static_cast<std::size_t>(-answer)) : size;
        const ssize_t written = ::write(m_file, bytes, wanted);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) fail(SaveStep::kWrite, written < 0 ? errno : ENOSPC);
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

void SaveFile::flush(int file, SaveStep step) {
    for (;;) {
        const int answer = ask(step);
        if (answer == EINTR) continue;
        if (answer > 0) fail(step, answer);
        if (::fsync(file) == 0) return;
        if (errno == EINTR) continue;
        // Some file systems can't flush a folder and keep the order of changes by themselves.
        if (step == SaveStep::kFlushFolder && (errno == EINVAL || errno == ENOTSUP)) return;
        fail(step, errno);
    }
}

void SaveFile::commit() {
    requireOpen();
    write(m_buffer.get(), m_used);
    m_used = 0;
    flush(m_file, SaveStep::kFlush);
    if (const int error = ask(SaveStep::kReplace); error > 0) fail(SaveStep::kReplace, error);
    if (::renameat(m_folder, m_temporary.c_str(), m_folder, m_name.c_str()) != 0)
        fail(SaveStep::kReplace, errno);
    m_temporary.clear();
    struct stat made {};
    if (::fstat(m_file, &made) == 0) m_stamp = stampOf(made);
    flush(m_folder, SaveStep::kFlushFolder);
    m_state = State::kCommitted;
    m_buffer.reset();
    abandon();
}

} // namespace lm::system
