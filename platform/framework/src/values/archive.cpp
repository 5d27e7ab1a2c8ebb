// SPDX-License-Identifier: MIT
#include "framework/values/archive.h"

#include "framework/values/exceptions.h"

#include <algorithm>
#include <cstring>

void CArchive::Write(const void* data, std::size_t size) {
    if (m_mode != store) AfxThrowArchiveException(CArchiveException::wrongDirection);
    if (size > 0) m_bytes.append(static_cast<const char*>(data), size);
}

std::size_t CArchive::Read(void* data, std::size_t size) {
    if (m_mode != load) AfxThrowArchiveException(CArchiveException::wrongDirection);
    const std::size_t count = std::min(size, m_bytes.size() - m_position);
    if (count > 0) std::memcpy(data, m_bytes.data() + m_position, count);
    m_position += count;
    return count;
}

void CArchive::WriteCount(unsigned long long count) {
    unsigned char bytes[8];
    for (unsigned i = 0; i < 8; ++i) bytes[i] = static_cast<unsigned char>(count >> (8 * i));
    Write(bytes, sizeof bytes);
}

unsigned long long CArchive::ReadCount() {
    unsigned char bytes[8];
    if (Read(bytes, sizeof bytes) != sizeof bytes) AfxThrowArchiveException(CArchiveException::endOfFile);
    unsigned long long count = 0;
    for (unsigned i = 0; i < 8; ++i) count |= static_cast<unsigned long long>(bytes[i]) << (8 * i);
    return count;
}
