// SPDX-License-Identifier: MIT
// Writing a file whole: afterwards the old content or the new one stands there, never a part of either,
// wherever the writing stopped. The new content goes into a file of its own beside the target, is flushed to
// the device and then takes the target's name in one step.
//
//     lm::system::SaveFile out("/projects/panel.dxf");
//     out.append(bytes.data(), bytes.size());
//     out.commit();
#pragma once

#include "system/file.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct stat;

namespace lm::system {

/// The steps of a save, in their order.
enum class SaveStep {
    kInspect,    ///< looks at the target and follows its links
    kOpenFolder, ///< opens the folder of the target
    kCreate,     ///< makes the new file beside the target
    kAttributes, ///< gives it the owner, group, mode and access list of the old one
    kWrite,      ///< writes a piece of the content
    kFlush,      ///< waits until the content is on the device
    kReplace,    ///< gives the new file the target's name
    kFlushFolder ///< waits until the folder's change is on the device
};

/// Why a save failed. The text is one line with the target, the step and the system's words.
class LM_SYSTEM_API SaveError : public std::runtime_error {
public:
    SaveError(const std::string& path, SaveStep step, int error);
    ~SaveError() override;
    SaveError(const SaveError&) = default;
    SaveError& operator=(const SaveError&) = default;
    /// The target as the caller named it.
    const std::string& path() const { return m_path; }
    SaveStep step() const { return m_step; }
    /// The step in words, such as "writing".
    const char* operation() const { return operation(m_step); }
    static const char* operation(SaveStep step);
    /// The system's number, such as ENOSPC.
    int error() const { return m_error; }
    /// Whether the new content stands under the target's name all the same: only the last flush failed, so a
    /// power failure could still bring the old content back.
    bool replaced() const { return m_step == SaveStep::kFlushFolder; }

private:
    std::string m_path;
    SaveStep m_step;
    int m_error;
};

/// One save. The content is what was appended; only commit() makes it the target's. Without commit, and after
/// any failure, the target is as it was and the new file is gone.
///
/// Rules for the target:
/// - Where it is a symbolic link, the file that it leads to is written, also one that doesn't exist yet, and
///   the link stays.
/// - Folders, devices, pipes and sockets are refused (EISDIR, EINVAL), and a file that the caller may not
///   write (EACCES, EROFS), though the folder would allow to replace it.
/// - Owner, group, mode, access list and user attributes of an existing file are kept as far as the system
///   allows. Where the group can't be kept, the new group gets what others had. A new file has mode 0666 less
///   the umask.
/// - Other hard links of the target keep the old content, since its name goes over to a new file.
///
/// The new file's name is "." + the first bytes of the target's name + "." + 16 hexadecimal digits made from
/// the whole name + "." + 16 random ones + ".lmsave". It is locked as long as its save lives. One that a
/// crashed process left behind is harmless and may be deleted; the next save of the same target does so.
///
/// An object belongs to one thread; any number of saves of one target may go on, and the last commit wins.
class LM_SYSTEM_API SaveFile {
public:
    /// Begins the save of a native path in UTF-8: makes the new file. Raises SaveError; nothing is left then.
    explicit SaveFile(const std::string& path);
    ~SaveFile();
    SaveFile(const SaveFile&) = delete;
    SaveFile& operator=(const SaveFile&) = delete;

    /// Adds bytes at the end. They reach the system in pieces of at least 1 MiB, so a full disk may show at a
    /// later call or at commit(). Raises SaveError; once it has, this and commit() raise the same again.
    void append(const char* bytes, std::size_t size);
    void append(std::string_view bytes) { append(bytes.data(), bytes.size()); }
    /// Bytes appended so far.
    std::uint64_t size() const { return m_size; }

    /// Puts the content in place of the target's, on the device. Raises SaveError; the target is then as it
    /// was, but where SaveError::replaced() says otherwise. After a commit append() and commit() raise
    /// std::logic_error.
    void commit();

    /// The stamp of the file that commit() put in place.
    const FileStamp& stamp() const { return m_stamp; }

private:
    enum class State { kOpen, kFailed, kCommitted };

    [[noreturn]] void fail(SaveStep step, int error);
    void begin();
    std::string followLinks() const;
    bool inspect(struct stat& old);
    void removeStale() const;
    void create(bool isNew);
    void takeAttributes(const struct stat& old);
    void copyExtended(bool withAccessList) const;
    void requireOpen() const;
    void write(const char* bytes, std::size_t size);
    void flush(int file, SaveStep step);
    void abandon() noexcept;

    std::string m_path;      // as the caller gave it
    std::string m_name;      // of the target in its folder
    std::string m_temporary; // name of the new file; empty when there is none
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_used = 0;
    std::uint64_t m_size = 0;
    int m_folder = -1;
    int m_file = -1;
    FileStamp m_stamp;
    State m_state = State::kOpen;
    SaveStep m_failedStep = SaveStep::kInspect;
    int m_error = 0;
};

/// Hears of each step of every save before it is done. 0 lets the step happen; a positive number makes it
/// fail with that system error (EINTR: it is tried again); a negative one lets a kWrite take so many bytes at
/// most. It may also end the process. For kAttributes a failure means that owner, group and access list can't
/// be kept.
using SaveHook = int (*)(SaveStep step, void* context);
/// Sets the hook; null takes it away. For tests; not to be called while another thread saves.
LM_SYSTEM_API void hookSaves(SaveHook hook, void* context = nullptr);

} // namespace lm::system
