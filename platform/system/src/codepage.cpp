// SPDX-License-Identifier: MIT
// Source of the table: the mapping of code page 1252 to Unicode as the Unicode consortium publishes it.
#include "system/codepage.h"

#include <array>

namespace lm::system {

namespace {

constexpr std::array<WideChar, 32> kHigh = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                            0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

unsigned char narrowUnit(WideChar unit) noexcept {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<unsigned char>(unit);
    for (unsigned i = 0; i < kHigh.size(); ++i)
        if (kHigh[i] == unit) return static_cast<unsigned char>(0x80 + i);
    return '?';
}

WideChar widenByte(unsigned char byte) noexcept {
    return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte;
}

std::string narrow(WideView text) {
    std::string bytes(text.size(), '\0');
    for (std::size_t i = 0; i < text.size(); ++i) bytes[i] = static_cast<char>(narrowUnit(text[i]));
    return bytes;
}

WideString widenNarrow(std::string_view bytes) {
    WideString text(bytes.size(), 0);
    for (std::size_t i = 0; i < bytes.size(); ++i) text[i] = widenByte(static_cast<unsigned char>(bytes[i]));
    return text;
}

} // namespace lm::system
