// SPDX-License-Identifier: MIT
// Numbers to text and back, and digit runs. Nothing here looks at the locale of the process.
#include "text/rzstring.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

using lm::WideChar;
using lm::WideString;
using lm::WideView;

namespace {

constexpr std::size_t kRunWidth = 10;

bool isDigit(WideChar unit) {
    return unit >= '0' && unit <= '9';
}

std::size_t digitsAt(WideView text, std::size_t at) {
    std::size_t count = 0;
    while (at + count < text.size() && isDigit(text[at + count])) ++count;
    return count;
}

WideView withoutLeadingSpace(WideView text) {
    while (!text.empty() && lm::system::isSpace(text.front())) text.remove_prefix(1);
    return text;
}

/// Length of the sign, the digits, the point and the exponent at the start of a text; 0 if no digit is there.
std::size_t numberLength(WideView text) {
    std::size_t at = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const std::size_t whole = digitsAt(text, at);
    at += whole;
    std::size_t fraction = 0;
    if (at < text.size() && text[at] == '.') {
        fraction = digitsAt(text, at + 1);
        at += 1 + fraction;
    }
    if (whole + fraction == 0) return 0;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        const bool sign = at + 1 < text.size() && (text[at + 1] == '-' || text[at + 1] == '+');
        const std::size_t digits = digitsAt(text, at + 1 + sign);
        if (digits > 0) at += 1 + sign + digits;
    }
    return at;
}

/// Whether a number without sign that no double holds is too large rather than too small, told from the place
/// of its first digit and its exponent.
bool isTooLarge(const std::string& number) {
    const std::size_t mantissa = std::min(number.find_first_of("eE"), number.size());
    const std::size_t point = std::min(number.find('.'), mantissa);
    const std::size_t first = number.find_first_of("123456789");
    long long exponent = 0;
    if (mantissa < number.size()) {
        const char* begin = number.data() + mantissa + (number[mantissa + 1] == '+' ? 2 : 1);
        const auto read = std::from_chars(begin, number.data() + number.size(), exponent);
        if (read.ec == std::errc::result_out_of_range) return *begin != '-';
    }
    const long long places = static_cast<long long>(point) - static_cast<long long>(first);
    return places + exponent > 0;
}

} // namespace

RZString::RZString(int value, int width) {
    char digits[16];
    const char* const begin = digits;
    const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const std::size_t size = static_cast<std::size_t>(end - begin);
    const std::size_t wanted = width > 0 ? static_cast<std::size_t>(width) : 0;
    if (wanted > size) m_text.assign(wanted - size, '0');
    m_text.append(begin, end);
}

RZString::RZString(double value, bool general, int decimals) {
    // The longest number has 309 digits in front of the point; sign, point and a little room come to it.
    const int precision = decimals >= 0 ? decimals : 6;
    const std::chars_format format =
        decimals < 0 && general ? std::chars_format::general : std::chars_format::fixed;
    std::string text(330 + static_cast<std::size_t>(precision), '\0');
    const char* end = std::to_chars(text.data(), text.data() + text.size(), value, format, precision).ptr;
    m_text.assign(static_cast<const char*>(text.data()), end);
}

int RZString::toInt() const noexcept {
    WideView text = withoutLeadingSpace(lm::text::cut(m_text));
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
    long long value = 0;
    for (const WideChar unit : text.substr(0, digitsAt(text, 0)))
        value = std::min(value * 10 + (unit - '0'), 0x80000000LL);
    const long long result = negative ? -value : value;
    return static_cast<int>(std::min(result, static_cast<long long>(std::numeric_limits<int>::max())));
}

float RZString::toFloat() const {
    const WideView text = withoutLeadingSpace(lm::text::cut(m_text));
    std::string number;
    for (const WideChar unit : text.substr(0, numberLength(text))) number += static_cast<char>(unit);
    const bool negative = number.starts_with('-');
    if (negative || number.starts_with('+')) number.erase(0, 1);
    double value = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
    if (read.ec == std::errc::result_out_of_range)
        value = isTooLarge(number) ? std::numeric_limits<double>::infinity() : 0;
    return static_cast<float>(negative ? -value : value);
}

void RZString::normalizeNumbers() {
    const WideView text = lm::text::cut(m_text);
    if (std::none_of(text.begin(), text.end(), isDigit)) return;
    WideString result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t run = digitsAt(text, at);
        if (run == 0) {
            result += text[at++];
            continue;
        }
        const std::size_t taken = std::min(run, kRunWidth);
        result.append(kRunWidth - taken, '0').append(text, at, taken);
        at += taken;
    }
    m_text = std::move(result);
}
