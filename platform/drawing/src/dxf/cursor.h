// SPDX-License-Identifier: MIT
// The groups of a drawing file one after the other: a code and a value, in text and in binary form. Format:
// the DXF reference, group codes by number and binary DXF.
#pragma once

#include "dxf/source.h"

#include <array>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lm::drawing {

/// What the value of a group code is.
enum class ValueType : unsigned char { kText, kReal, kInt16, kInt32, kInt64, kBool, kBinary, kUnknown };

/// The type by group code, from the DXF reference.
ValueType valueTypeOf(int code) noexcept;

constexpr int kHighestCode = 1071;

/// One group. The value lies in the source.
struct Group {
    int code = 0;
    const char* data = nullptr;
    std::size_t size = 0;
    std::string_view raw() const { return {data, size}; }
};

/// How a step of a cursor ended.
enum class Step : unsigned char { kGroup, kEnd, kBadCode, kCut };

/// The first line end at or behind `at`, or `end`. May look up to 64 bytes behind `end`, which a source
/// provides.
inline const char* findLineEnd(const char* at, const char* end) noexcept {
#if defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi8('\n');
    while (at < end) {
        const __m128i piece = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(piece, wanted));
        if (mask != 0) {
            at += __builtin_ctz(static_cast<unsigned>(mask));
            return at < end ? at : end;
        }
        at += 16;
    }
    return end;
#else
    const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
    return found != nullptr ? static_cast<const char*>(found) : end;
#endif
}

/// Groups of a text file: a line with the code, a line with the value.
class TextCursor {
public:
    TextCursor(const Source&, const char* begin, const char* end) : m_at(begin), m_end(end) {}

    Step next(Group& group) noexcept {
        const char* at = m_at;
        while (at < m_end && (*at == ' ' || *at == '\t')) ++at;
        if (at >= m_end) return Step::kEnd;
        const bool negative = *at == '-';
        if (negative) ++at;
        int code = 0;
        const char* const digits = at;
        for (; static_cast<unsigned char>(*at - '0') < 10 && at - digits < 6; ++at)
            code = code * 10 + (*at - '0');
        if (at == digits) return Step::kBadCode;
        while (at < m_end && (*at == ' ' || *at == '\t' || *at == '\r')) ++at;
        if (at >= m_end) return Step::kCut;
        if (*at != '\n') return Step::kBadCode;
        ++at;
        const char* const line = findLineEnd(at, m_end);
        if (line == m_end && at == m_end) return Step::kCut;
        group.code = negative ? -code : code;
        group.data = at;
        group.size = static_cast<std::size_t>(line - at);
        if (group.size != 0 && at[group.size - 1] == '\r') --group.size;
        m_at = line < m_end ? line + 1 : m_end;
        return Step::kGroup;
    }
    const char* position() const noexcept { return m_at; }

private:
    const char* m_at;
    const char* m_end;
};

/// Groups of a binary file: a code of one or two bytes, a value of the code's type.
class BinaryCursor {
public:
    BinaryCursor(const Source& source, const char* begin, const char* end)
        : m_at(begin), m_end(end), m_shortCodes(source.shortCodes) {}

    Step next(Group& group) noexcept;
    const char* position() const noexcept { return m_at; }

private:
    const char* m_at;
    const char* m_end;
    bool m_shortCodes;
};

/// Values of groups, in either form. A value that can't be read gives 0 and sets `bad`.
class Values {
public:
    explicit Values(const Source& source) : m_source(source) {}

    double real(const Group& group, bool& bad) const noexcept;
    long long integer(const Group& group, bool& bad) const noexcept;
    std::uint64_t handle(const Group& group, bool& bad) const noexcept;
    OdString text(const Group& group, bool& bad) const { return m_source.decoder.decode(group.raw(), bad); }
    OdString sharedText(const Group& group, bool& bad) const {
        return m_source.decoder.decodeShared(group.raw(), bad);
    }
    /// Bytes of a binary chunk, which a text file writes as hexadecimal digits.
    std::string binary(const Group& group, bool& bad) const;
    const Source& source() const { return m_source; }

private:
    const Source& m_source;
};

/// A text without blanks at both ends.
std::string_view stripped(std::string_view text) noexcept;

/// A hexadecimal number of 1 to 16 digits behind leading zeros; anything else sets `bad` and gives 0.
std::uint64_t parseHandle(std::string_view text, bool& bad) noexcept;

} // namespace lm::drawing
