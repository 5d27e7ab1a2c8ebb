// SPDX-License-Identifier: MIT
// What RZString does with runs of units: block comparisons that stop at the first 0 unit, four units at a
// time.
#pragma once

#include "system/wide.h"

#include <concepts>
#include <type_traits>

namespace lm::text {

/// A pointer to narrow text, or a literal.
template<class T>
concept NarrowText = std::same_as < std::decay_t<T>,
const char* > || std::same_as<std::decay_t<T>, char*>;

inline std::uint64_t fourUnits(const WideChar* units) noexcept {
    std::uint64_t block;
    std::memcpy(&block, units, sizeof block);
    return block;
}

/// Not 0 if one of four units is: a unit borrows from its top bit only if it was 0, or if a lower one was.
inline std::uint64_t zeroMarks(std::uint64_t block) noexcept {
    return (block - 0x0001000100010001) & ~block & 0x8000800080008000;
}
inline bool hasZero(std::uint64_t block) noexcept {
    return zeroMarks(block) != 0;
}

/// The text up to its first 0 unit.
inline WideView cut(WideView text) noexcept {
    std::size_t at = 0;
    while (at + 4 <= text.size() && !hasZero(fourUnits(text.data() + at))) at += 4;
    while (at < text.size() && text[at] != 0) ++at;
    return text.substr(0, at);
}

/// Whether `size` units are the same on both sides and none of them is 0.
inline bool equalAndWithoutZero(const WideChar* a, const WideChar* b, std::size_t size) noexcept {
    const auto differ = [a, b](std::size_t at) {
        const std::uint64_t block = fourUnits(b + at);
        return (fourUnits(a + at) ^ block) | zeroMarks(block);
    };
    if (size < 4) {
        for (std::size_t at = 0; at < size; ++at)
            if (a[at] != b[at] || b[at] == 0) return false;
        return true;
    }
    // Two blocks at a time without a branch between; the last block may overlap the one before.
    std::size_t at = 0;
    for (; at + 8 <= size; at += 8)
        if ((differ(at) | differ(at + 4)) != 0) return false;
    if (at + 4 < size && differ(at) != 0) return false;
    return differ(size - 4) == 0;
}

} // namespace lm::text
