// SPDX-License-Identifier: MIT
// The patterns of CString::Format.
#include "framework/values/cstring.h"

#include <cstdio>

namespace {

bool occursIn(lm::WideChar unit, const char* set) {
    for (; *set != 0; ++set)
        if (unit == static_cast<unsigned char>(*set)) return true;
    return false;
}

/// Skips at most `limit` units of a set.
std::size_t skip(lm::WideView text, std::size_t at, const char* set, std::size_t limit) {
    for (std::size_t count = 0; count < limit && at < text.size() && occursIn(text[at], set); ++count) ++at;
    return at;
}

/// Length of the conversion that begins at the percent sign, 0 if it isn't one of an integer. Width and
/// precision have at most three digits, which bounds the result.
std::size_t conversionLength(lm::WideView text) {
    std::size_t at = skip(text, 1, "-+ #0", 5);
    at = skip(text, at, "0123456789", 3);
    if (at < text.size() && text[at] == '.') at = skip(text, at + 1, "0123456789", 3);
    return at < text.size() && occursIn(text[at], "diuxX") ? at + 1 : 0;
}

void appendInteger(lm::WideString& out, lm::WideView conversion, int value) {
    std::string narrow;
    for (const lm::WideChar unit : conversion) narrow += static_cast<char>(unit);
    const int size = std::snprintf(nullptr, 0, narrow.c_str(), value);
    if (size < 0) return;
    std::string digits(static_cast<std::size_t>(size) + 1, '\0');
    std::snprintf(digits.data(), digits.size(), narrow.c_str(), value);
    digits.pop_back();
    out += lm::system::widen(digits);
}

} // namespace

void CString::Format(const unsigned short* pattern, int value) {
    const lm::WideView text(pattern, lm::system::wideLength(pattern));
    lm::WideString result;
    for (std::size_t at = 0; at < text.size();) {
        const lm::WideView rest = text.substr(at);
        const std::size_t length = rest[0] == '%' ? conversionLength(rest) : 0;
        if (length > 0) {
            appendInteger(result, rest.substr(0, length), value);
            at += length;
        } else {
            result += rest[0];
            at += rest.size() > 1 && rest[0] == '%' && rest[1] == '%' ? 2 : 1;
        }
    }
    m_text = std::move(result);
}
