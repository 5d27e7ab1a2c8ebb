// SPDX-License-Identifier: MIT
// CArchive: a run of bytes in memory that objects write themselves into or read themselves from.
//
//     std::string bytes;
//     CArchive out(bytes, CArchive::store);      object.Serialize(out);
//     CArchive in(bytes, CArchive::load);        other.Serialize(in);
#pragma once

#include "framework/values/export.h"

#include <cstddef>
#include <string>

/// Bytes in one direction. The buffer belongs to the caller and must outlive the archive.
class LM_VALUES_API CArchive {
public:
    enum Mode { store, load };

    /// Writing appends to `bytes`; reading starts at its first byte.
    CArchive(std::string& bytes, Mode mode) : m_bytes(bytes), m_mode(mode) {}
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    bool IsStoring() const { return m_mode == store; }
    bool IsLoading() const { return m_mode == load; }

    /// Appends bytes. Raises CArchiveException for an archive that reads.
    void Write(const void* data, std::size_t size);
    /// Reads at most `size` bytes and gives how many there were. Raises CArchiveException for an archive that
    /// writes, never for the end.
    std::size_t Read(void* data, std::size_t size);

    /// Writes the number of elements of a container, as eight bytes from the lowest up.
    void WriteCount(unsigned long long count);
    /// Reads such a number; the end before its last byte raises CArchiveException with endOfFile.
    unsigned long long ReadCount();

private:
    std::string& m_bytes;
    Mode m_mode;
    std::size_t m_position = 0;
};
