// SPDX-License-Identifier: MIT
#include "host/jsonwriter.h"

#include <charconv>
#include <cmath>

namespace lm::host {

namespace {

constexpr char kHex[] = "0123456789ABCDEF";

/// The escape of a character that must not stand in a JSON text as it is; empty for one that may.
std::string_view shortEscape(unsigned char c) {
    switch (c) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return {};
    }
}

void appendUnit(std::string& out, unsigned unit) {
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out.push_back(kHex[(unit >> shift) & 0xF]);
}

bool mustEscape(unsigned char c) {
    return c < 0x20 || c == '"' || c == '\\';
}

} // namespace

void JsonWriter::key(std::string_view name) {
    separate();
    m_out.put('"');
    m_out.write(name);
    m_out.write("\":");
    m_first = true;
}

void JsonWriter::value(std::string_view utf8) {
    separate();
    std::string text = "\"";
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (!mustEscape(byte))
            text.push_back(c);
        else if (const std::string_view escape = shortEscape(byte); !escape.empty())
            text += escape;
        else
            appendUnit(text, byte);
    }
    text.push_back('"');
    m_out.write(text);
}

void JsonWriter::value(WideView wide) {
    separate();
    char small[256];
    if (wide.size() < sizeof small - 2) {
        // Nearly all texts are short and plain; they go out without another step.
        std::size_t at = 0;
        small[at++] = '"';
        std::size_t i = 0;
        for (; i < wide.size() && wide[i] < 0x80 && !mustEscape(static_cast<unsigned char>(wide[i])); ++i)
            small[at++] = static_cast<char>(wide[i]);
        if (i == wide.size()) {
            small[at++] = '"';
            m_out.write({small, at});
            return;
        }
    }
    std::string text = "\"";
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const WideChar unit = wide[i];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const bool pair = high && i + 1 < wide.size() && wide[i + 1] >= 0xDC00 && wide[i + 1] < 0xE000;
        if (pair) {
            system::appendUtf8(wide.substr(i, 2), text);
            ++i;
        } else if (unit >= 0xD800 && unit < 0xE000) {
            appendUnit(text, unit);
        } else if (unit >= 0x80) {
            system::appendUtf8(wide.substr(i, 1), text);
        } else if (!mustEscape(static_cast<unsigned char>(unit))) {
            text.push_back(static_cast<char>(unit));
        } else if (const auto escape = shortEscape(static_cast<unsigned char>(unit)); !escape.empty()) {
            text += escape;
        } else {
            appendUnit(text, unit);
        }
    }
    text.push_back('"');
    m_out.write(text);
}

void JsonWriter::value(double number) {
    if (!std::isfinite(number)) return raw("null");
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    raw({digits, static_cast<std::size_t>(end.ptr - digits)});
}

void JsonWriter::value(long long number) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    raw({digits, static_cast<std::size_t>(end.ptr - digits)});
}

} // namespace lm::host
