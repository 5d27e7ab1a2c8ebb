// SPDX-License-Identifier: MIT
#include "dxf/write_text.h"

#include <cstdint>
#include <cstring>

namespace lm::drawing {

namespace {

constexpr std::uint16_t kFirstHigh = 0x80;

bool isHighSurrogate(WideChar unit) noexcept {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(WideChar unit) noexcept {
    return unit >= 0xDC00 && unit < 0xE000;
}

void appendEscape(WideChar unit, std::string& out) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4) out.push_back(kDigits[unit >> shift & 0xF]);
}

/// Whether a reader could take a backslash for the start of an escape.
bool looksLikeEscape(WideView behind) noexcept {
    return behind.size() >= 2 && behind[1] == '+' &&
           (behind[0] == 'U' || behind[0] == 'u' || behind[0] == 'M' || behind[0] == 'm');
}

/// Appends a unit from 0x80 on, or a pair of them; gives how many units that took.
std::size_t appendUtf8(WideView text, std::string& out) {
    const WideChar unit = text[0];
    if (isHighSurrogate(unit) && text.size() > 1 && isLowSurrogate(text[1])) {
        system::appendUtf8(text.substr(0, 2), out);
        return 2;
    }
    if (isHighSurrogate(unit) || isLowSurrogate(unit))
        appendEscape(unit, out);
    else
        system::appendUtf8(text.substr(0, 1), out);
    return 1;
}

} // namespace

TextEncoder::TextEncoder(const TextDecoder& decoder) {
    if (std::string_view(decoder.page()) == "UTF-8") return;
    auto codes = std::make_unique<Codes>();
    const auto enter = [&](std::string_view bytes) {
        bool bad = false;
        const OdString text = decoder.decode(bytes, bad);
        if (bad || text.getLength() != 1) return;
        const WideChar unit = text.view()[0];
        std::uint16_t& code = (*codes)[unit];
        if (unit < kFirstHigh || code != 0) return;
        for (const char byte : bytes)
            code = static_cast<std::uint16_t>(code << 8 | static_cast<unsigned char>(byte));
    };
    char bytes[2];
    for (int byte = kFirstHigh; byte < 256; ++byte) {
        bytes[0] = static_cast<char>(byte);
        enter({bytes, 1});
    }
    if (!decoder.isAsciiSafe())
        for (int lead = kFirstHigh; lead < 256; ++lead)
            for (int trail = 0x30; trail < 256; ++trail) {
                bytes[0] = static_cast<char>(lead);
                bytes[1] = static_cast<char>(trail);
                enter({bytes, 2});
            }
    bool bad = false;
    m_plainBackslash = decoder.decode("\\", bad).view()[0] == '\\';
    m_codes = std::move(codes);
}

void TextEncoder::encode(WideView text, std::string& out) const {
    out.reserve(out.size() + text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const WideChar unit = text[i];
        if (unit >= kFirstHigh) {
            if (m_codes == nullptr) {
                i += appendUtf8(text.substr(i), out) - 1;
                continue;
            }
            const std::uint16_t code = (*m_codes)[unit];
            if (code == 0) {
                appendEscape(unit, out);
                continue;
            }
            if (code > 0xFF) out.push_back(static_cast<char>(code >> 8));
            out.push_back(static_cast<char>(code & 0xFF));
        } else if (unit == '^') {
            out += "^ ";
        } else if (unit < ' ') {
            if (unit == 0) continue; // ends a text everywhere else, and no reader gives it back
            out.push_back('^');
            out.push_back(static_cast<char>(unit + '@'));
        } else if (unit == '\\' && (!m_plainBackslash || looksLikeEscape(text.substr(i + 1)))) {
            appendEscape(unit, out);
        } else {
            out.push_back(static_cast<char>(unit));
        }
    }
}

const char* findHighByte(const char* begin, const char* end) noexcept {
    constexpr std::uint64_t kHigh = 0x8080808080808080ull;
    const char* at = begin;
    for (; end - at >= 32; at += 32) {
        std::uint64_t words[4];
        std::memcpy(words, at, sizeof words);
        if (((words[0] | words[1] | words[2] | words[3]) & kHigh) != 0) break;
    }
    while (at < end && (*at & 0x80) == 0) ++at;
    return at;
}

bool isAscii(std::string_view bytes) noexcept {
    const char* const end = bytes.data() + bytes.size();
    return findHighByte(bytes.data(), end) == end;
}

void Utf8Watch::see(const char* begin, const char* end) noexcept {
    while (!m_broken && begin < end) {
        if (m_missing == 0) begin = findHighByte(begin, end);
        if (begin < end) step(static_cast<unsigned char>(*begin++));
    }
}

void Utf8Watch::step(unsigned char byte) noexcept {
    m_high = true;
    if (m_missing > 0) {
        if (byte < m_least || byte > m_most) m_broken = true;
        m_least = 0x80;
        m_most = 0xBF;
        --m_missing;
        return;
    }
    if (byte >= 0xC2 && byte <= 0xDF) {
        m_missing = 1;
    } else if (byte >= 0xE0 && byte <= 0xEF) {
        m_missing = 2;
        // Neither overlong forms nor surrogates are well-formed.
        if (byte == 0xE0) m_least = 0xA0;
        if (byte == 0xED) m_most = 0x9F;
    } else if (byte >= 0xF0 && byte <= 0xF4) {
        m_missing = 3;
        if (byte == 0xF0) m_least = 0x90;
        if (byte == 0xF4) m_most = 0x8F;
    } else {
        m_broken = true;
    }
}

} // namespace lm::drawing
