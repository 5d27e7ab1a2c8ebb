// SPDX-License-Identifier: MIT
// Reading a whole file into memory of our own, so that nobody who writes to the file afterwards can change
// what was read.
#pragma once

#include "system/wide.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

struct stat;

namespace lm::system {

/// Bytes in memory of their own, followed by at least 64 zero bytes, so that readers may look a little too
/// far.
class LM_SYSTEM_API FileBytes {
public:
    FileBytes() = default;
    /// Room for `capacity` bytes and the padding; the size is 0. Throws std::bad_alloc.
    explicit FileBytes(std::size_t capacity);
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;
    FileBytes(FileBytes&& other) noexcept { swap(other); }
    FileBytes& operator=(FileBytes&& other) noexcept {
        FileBytes(static_cast<FileBytes&&>(other)).swap(*this);
        return *this;
    }
    ~FileBytes();

    char* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }
    void setSize(std::size_t size) { m_size = size; }
    /// Makes room for more; keeps what is there.
    void grow(std::size_t capacity);
    void swap(FileBytes& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

private:
    char* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

/// How a reading ended.
enum class FileStatus { kRead, kNotFound, kUnreadable, kDirectory, kChanged, kStopped };

/// What tells one state of a file from another: where it lies, how large it is and when its content changed.
struct FileStamp {
    std::uint64_t device = 0, inode = 0, size = 0;
    std::int64_t seconds = 0, nanoseconds = 0;
    bool operator==(const FileStamp&) const = default;
};

struct FileOutcome {
    FileStatus status = FileStatus::kRead;
    std::string reason; ///< the system's words for kUnreadable
    FileStamp stamp{};  ///< of what was read
};

/// The stamp of what a native path leads to; nothing where there is no file.
LM_SYSTEM_API std::optional<FileStamp> stampOf(const std::string& path);
LM_SYSTEM_API FileStamp stampOf(const struct ::stat& status);

/// The native path with all links followed. The file itself needn't exist; a link to no file gives the name
/// that it leads to. Where that can't be found out, the path as it is.
LM_SYSTEM_API std::string resolvedPath(const std::string& path);

/// Whether two native paths lead to one file, or to the name of one that doesn't exist yet.
LM_SYSTEM_API bool isSameFile(const std::string& a, const std::string& b);

/// Reads a file whole. `onPart` is told after each part how many bytes are there now, and stops the reading
/// by answering false. A file whose size or time of change differs after the reading gives kChanged. `path`
/// is a native path in UTF-8. Pipes and devices are refused, since they may keep a reader waiting for ever.
LM_SYSTEM_API FileOutcome readWhole(const std::string& path, FileBytes& bytes,
                                    const std::function<bool(const FileBytes&)>& onPart = {});

} // namespace lm::system
