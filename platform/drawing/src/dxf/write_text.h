// SPDX-License-Identifier: MIT
// From text to the bytes of a drawing file, so that reading gives the same units again: UTF-8 or a code page,
// \U+XXXX for a unit that the bytes can't hold, ^X for a control unit.
#pragma once

#include "dxf/encoding.h"

#include <array>

namespace lm::drawing {

class TextEncoder {
public:
    /// UTF-8.
    TextEncoder() = default;
    /// The code page of a decoder.
    explicit TextEncoder(const TextDecoder& decoder);

    /// Appends the bytes of a text. A unit 0 can't stand in a file and is left out.
    void encode(WideView text, std::string& out) const;

    bool isUtf8() const { return m_codes == nullptr; }

private:
    using Codes = std::array<std::uint16_t, 65536>;
    std::unique_ptr<const Codes> m_codes; ///< by unit the byte, or the two bytes, or 0
    bool m_plainBackslash = true;         ///< whether the byte of "\" is read as "\"
};

/// Whether bytes are all below 0x80.
bool isAscii(std::string_view bytes) noexcept;
/// The first byte from 0x80 on, or the end.
const char* findHighByte(const char* begin, const char* end) noexcept;

/// Watches the bytes of a file go by and tells whether they could be taken for UTF-8.
class Utf8Watch {
public:
    void see(const char* begin, const char* end) noexcept;
    /// Whether there was a byte above 127 and everything was well-formed.
    bool looksLikeUtf8() const noexcept { return m_high && !m_broken && m_missing == 0; }

private:
    void step(unsigned char byte) noexcept;
    bool m_high = false;
    bool m_broken = false;
    int m_missing = 0; ///< bytes that the current character still lacks
    unsigned char m_least = 0x80, m_most = 0xBF;
};

} // namespace lm::drawing
