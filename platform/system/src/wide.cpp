// SPDX-License-Identifier: MIT
#include "system/wide.h"

#include <array>

namespace lm::system {

namespace {

struct CaseTable {
    std::array<WideChar, 0x180> lower{};
    std::array<WideChar, 0x180> upper{};
};

constexpr CaseTable buildCaseTable() {
    CaseTable table;
    for (unsigned unit = 0; unit < table.lower.size(); ++unit)
        table.lower[unit] = table.upper[unit] = static_cast<WideChar>(unit);
    auto pair = [&table](unsigned upper, unsigned lower) {
        table.lower[upper] = static_cast<WideChar>(lower);
        table.upper[lower] = static_cast<WideChar>(upper);
    };
    for (unsigned unit = 'A'; unit <= 'Z'; ++unit) pair(unit, unit + 32);
    for (unsigned unit = 0xC0; unit <= 0xDE; ++unit)
        if (unit != 0xD7) pair(unit, unit + 32);
    pair(0x160, 0x161);
    pair(0x152, 0x153);
    pair(0x17D, 0x17E);
    pair(0x178, 0xFF);
    return table;
}

constexpr CaseTable kCase = buildCaseTable();

} // namespace

std::size_t wideLength(const WideChar* text) noexcept {
    if (text == nullptr) return 0;
    std::size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

int wideCompare(WideView a, WideView b) noexcept {
    const std::size_t shorter = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < shorter; ++i)
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

WideChar toLower(WideChar unit) noexcept {
    return unit < kCase.lower.size() ? kCase.lower[unit] : unit;
}

WideChar toUpper(WideChar unit) noexcept {
    return unit < kCase.upper.size() ? kCase.upper[unit] : unit;
}

int compareNoCase(WideView a, WideView b) noexcept {
    const std::size_t shorter = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < shorter; ++i) {
        const int difference = static_cast<int>(toLower(a[i])) - static_cast<int>(toLower(b[i]));
        if (difference != 0) return difference;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

bool equalsNoCase(WideView a, WideView b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && toLower(a[i]) != toLower(b[i])) return false;
    return true;
}

bool isSpace(WideChar unit) noexcept {
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x85 || unit == 0xA0;
}

WideView trimmed(WideView text) noexcept {
    std::size_t first = 0;
    std::size_t last = text.size();
    while (first < last && isSpace(text[first])) ++first;
    while (last > first && isSpace(text[last - 1])) --last;
    return text.substr(first, last - first);
}

WideString widen(std::string_view ascii) {
    WideString text(ascii.size(), 0);
    for (std::size_t i = 0; i < ascii.size(); ++i) text[i] = static_cast<unsigned char>(ascii[i]);
    return text;
}

void appendUtf8(WideView text, std::string& out) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        if (point < 0x80) {
            out.push_back(static_cast<char>(point));
            continue;
        }
        const bool pairs = point >= 0xD800 && point < 0xDC00 && i + 1 < text.size() &&
                           text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (pairs) point = 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00);
        if (point < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (point >> 6)));
        } else {
            if (point < 0x10000) {
                out.push_back(static_cast<char>(0xE0 | (point >> 12)));
            } else {
                out.push_back(static_cast<char>(0xF0 | (point >> 18)));
                out.push_back(static_cast<char>(0x80 | ((point >> 12) & 0x3F)));
            }
            out.push_back(static_cast<char>(0x80 | ((point >> 6) & 0x3F)));
        }
        out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    }
}

std::string toUtf8(WideView text) {
    std::string out;
    out.reserve(text.size());
    appendUtf8(text, out);
    return out;
}

namespace {

struct Sequence {
    char32_t point;
    unsigned length; // bytes, 0 when the bytes are not well-formed
};

/// Reads one sequence. A surrogate written as three bytes is taken as its unit, which is how appendUtf8
/// writes an unpaired one; `strict` refuses it.
Sequence readSequence(std::string_view bytes, std::size_t at, bool strict) noexcept {
    const auto byte = [&](std::size_t offset) { return static_cast<unsigned char>(bytes[at + offset]); };
    const unsigned first = byte(0);
    if (first < 0x80) return {first, 1};
    const unsigned length = first >= 0xF0 && first < 0xF5   ? 4
                            : first >= 0xE0 && first < 0xF0 ? 3
                            : first >= 0xC2 && first < 0xE0 ? 2
                                                            : 0;
    if (length == 0 || at + length > bytes.size()) return {0, 0};
    char32_t point = first & (0xFFu >> (length + 1));
    for (unsigned i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {0, 0};
        point = (point << 6) | (byte(i) & 0x3F);
    }
    if ((length == 3 && point < 0x800) || (length == 4 && (point < 0x10000 || point > 0x10FFFF)))
        return {0, 0};
    if (strict && point >= 0xD800 && point < 0xE000) return {0, 0};
    return {point, length};
}

} // namespace

WideString fromUtf8(std::string_view bytes) {
    WideString text;
    text.reserve(bytes.size());
    std::size_t at = 0;
    while (at < bytes.size()) {
        const Sequence next = readSequence(bytes, at, false);
        if (next.length == 0) {
            text.push_back(static_cast<unsigned char>(bytes[at++]));
            continue;
        }
        at += next.length;
        if (next.point < 0x10000) {
            text.push_back(static_cast<WideChar>(next.point));
        } else {
            text.push_back(static_cast<WideChar>(0xD800 + ((next.point - 0x10000) >> 10)));
            text.push_back(static_cast<WideChar>(0xDC00 + ((next.point - 0x10000) & 0x3FF)));
        }
    }
    return text;
}

bool isUtf8(std::string_view bytes) noexcept {
    std::size_t at = 0;
    while (at < bytes.size()) {
        const Sequence next = readSequence(bytes, at, true);
        if (next.length == 0) return false;
        at += next.length;
    }
    return true;
}

} // namespace lm::system
