// SPDX-License-Identifier: MIT
// The scan needn't be strict. Where it misjudges a document that isn't well-formed, a parser has stopped at
// the fault before, so it never goes deeper than what is told here.
#include "settings/xmllevels.h"

#include <algorithm>

namespace lm::settings {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// Whether markup stands in the bytes as ASCII does: no encoding is declared, or UTF-8 is.
bool isMarkupAscii(std::string_view bytes) {
    // Wider units have a 0 or a byte order mark among their first four bytes.
    constexpr std::string_view kSignsOfWideUnits("\0\xFE\xFF", 3);
    if (bytes.substr(0, 4).find_first_of(kSignsOfWideUnits) != kNone) return false;
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    if (!bytes.starts_with("<?xml")) return true;
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    if (declaration.find("encoding") == kNone) return true;
    return declaration.find("\"UTF-8\"") != kNone || declaration.find("'UTF-8'") != kNone ||
           declaration.find("\"utf-8\"") != kNone || declaration.find("'utf-8'") != kNone;
}

/// The place behind the first `end` from a place on; the end of the text when there is none.
std::size_t behind(std::string_view bytes, std::size_t from, std::string_view end) {
    const std::size_t at = bytes.find(end, from);
    return at == kNone ? bytes.size() : at + end.size();
}

/// The place of the ">" that ends the tag, quoted values passed over; the end of the text when there is none.
std::size_t endOfTag(std::string_view bytes, std::size_t at) {
    while (at < bytes.size() && bytes[at] != '>') {
        const char quote = bytes[at++];
        if (quote == '"' || quote == '\'') at = behind(bytes, at, {&quote, 1});
    }
    return at;
}

} // namespace

std::optional<int> levelsOf(std::string_view bytes) {
    if (!isMarkupAscii(bytes)) return std::nullopt;
    int level = 0, most = 0;
    for (std::size_t at = bytes.find('<'); at != kNone; at = bytes.find('<', at)) {
        const std::string_view rest = bytes.substr(at);
        if (rest.starts_with("<!--")) {
            at = behind(bytes, at + 4, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            at = behind(bytes, at + 9, "]]>");
        } else if (rest.starts_with("<!")) {
            return std::nullopt;
        } else if (rest.starts_with("<?")) {
            at = behind(bytes, at + 2, "?>");
        } else if (rest.starts_with("</")) {
            --level;
            at += 2;
        } else {
            most = std::max(most, ++level);
            at = endOfTag(bytes, at + 1);
            if (at < bytes.size() && bytes[at - 1] == '/') --level;
        }
    }
    return most;
}

} // namespace lm::settings
