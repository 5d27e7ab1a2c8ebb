// SPDX-License-Identifier: MIT
#include "drawing/wildcard.h"

#include <vector>

namespace {

using lm::WideChar;
using lm::WideView;

bool isDigit(WideChar unit) {
    return unit >= '0' && unit <= '9';
}

bool isLetter(WideChar unit) {
    return lm::system::toLower(unit) != unit || lm::system::toUpper(unit) != unit || unit == 0xDF;
}

/// The closing bracket of the set that begins behind "[" at `from`, or npos for a set without an end. A
/// bracket that comes first, or behind a back quote, is one of the set.
std::size_t setEnd(WideView pattern, std::size_t from) {
    std::size_t i = from;
    if (i < pattern.size() && pattern[i] == '~') ++i;
    for (bool first = true; i < pattern.size(); ++i, first = false) {
        if (pattern[i] == ']' && !first) return i;
        if (pattern[i] == '`') ++i;
    }
    return WideView::npos;
}

/// Matches one unit against the set that begins behind "["; `at` goes behind the closing bracket. A set
/// without an end is no set: the bracket then stands for itself.
bool matchesSet(WideView pattern, std::size_t& at, WideChar unit) {
    const std::size_t end = setEnd(pattern, at);
    if (end == WideView::npos) return unit == '[';
    const WideView set = pattern.substr(at, end - at);
    at = end + 1;
    std::size_t i = set.empty() || set.front() != '~' ? 0 : 1;
    const bool none = i != 0;
    const auto take = [&] {
        if (set[i] == '`' && i + 1 < set.size()) ++i;
        return set[i++];
    };
    bool found = false;
    while (i < set.size()) {
        const WideChar low = take();
        WideChar high = low;
        if (i + 1 < set.size() && set[i] == '-') {
            ++i;
            high = take();
        }
        found = found || (low <= unit && unit <= high);
    }
    return found != none;
}

/// Matches one unit against the element at `at`, which isn't "*"; `at` goes behind the element.
bool matchesElement(WideView pattern, std::size_t& at, WideChar unit) {
    const WideChar element = pattern[at++];
    switch (element) {
    case '?':
        return true;
    case '#':
        return isDigit(unit);
    case '@':
        return isLetter(unit);
    case '.':
        return !isDigit(unit) && !isLetter(unit);
    case '[':
        return matchesSet(pattern, at, unit);
    case '`':
        if (at < pattern.size()) return pattern[at++] == unit;
        return unit == '`';
    default:
        return element == unit;
    }
}

/// One alternative without a leading "~". Goes back to the last "*" only, so the time is text times pattern
/// at most.
bool matchesPlain(WideView text, WideView pattern) {
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t starPattern = WideView::npos;
    std::size_t starText = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starPattern = ++p;
            starText = t;
            continue;
        }
        std::size_t after = p;
        if (p < pattern.size() && matchesElement(pattern, after, text[t])) {
            p = after;
            ++t;
            continue;
        }
        if (starPattern == WideView::npos) return false;
        p = starPattern;
        t = ++starText;
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

bool matchesAlternative(WideView text, WideView pattern) {
    if (!pattern.empty() && pattern.front() == '~') return !matchesPlain(text, pattern.substr(1));
    return matchesPlain(text, pattern);
}

/// The end of the alternative that begins at `from`: the next comma outside brackets and without a back
/// quote.
std::size_t alternativeEnd(WideView pattern, std::size_t from) {
    for (std::size_t i = from; i < pattern.size(); ++i) {
        if (pattern[i] == '`') {
            ++i;
        } else if (pattern[i] == '[') {
            const std::size_t end = setEnd(pattern, i + 1);
            if (end != WideView::npos) i = end;
        } else if (pattern[i] == ',') {
            return i;
        }
    }
    return pattern.size();
}

} // namespace

bool odutWcMatch(const OdString& text, const OdString& pattern) {
    const WideView all = pattern.view();
    std::size_t from = 0;
    for (;;) {
        const std::size_t end = alternativeEnd(all, from);
        if (matchesAlternative(text.view(), all.substr(from, end - from))) return true;
        if (end == all.size()) return false;
        from = end + 1;
    }
}
