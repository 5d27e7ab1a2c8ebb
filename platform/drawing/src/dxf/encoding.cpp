// SPDX-License-Identifier: MIT
#include "dxf/encoding.h"

#include "system/codepage.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <unordered_map>

#include <iconv.h>

namespace lm::drawing {

namespace {

/// Code pages that headers name, with the names that the C library's converter has for them.
struct CodePage {
    std::string_view name;
    const char* converter;
    int multiByteLead; ///< lowest byte that begins two bytes, 0 for single-byte pages
};

constexpr CodePage kCodePages[] = {
    {"ANSI_874", "CP874", 0},       {"ANSI_932", "CP932", 0x81},    {"ANSI_936", "CP936", 0x81},
    {"ANSI_949", "CP949", 0x81},    {"ANSI_950", "CP950", 0x81},    {"ANSI_1250", "CP1250", 0},
    {"ANSI_1251", "CP1251", 0},     {"ANSI_1252", nullptr, 0},      {"ANSI_1253", "CP1253", 0},
    {"ANSI_1254", "CP1254", 0},     {"ANSI_1255", "CP1255", 0},     {"ANSI_1256", "CP1256", 0},
    {"ANSI_1257", "CP1257", 0},     {"ANSI_1258", "CP1258", 0},     {"DOS437", "CP437", 0},
    {"DOS850", "CP850", 0},         {"DOS852", "CP852", 0},         {"DOS855", "CP855", 0},
    {"DOS857", "CP857", 0},         {"DOS860", "CP860", 0},         {"DOS861", "CP861", 0},
    {"DOS863", "CP863", 0},         {"DOS864", "CP864", 0},         {"DOS865", "CP865", 0},
    {"DOS869", "CP869", 0},         {"DOS932", "CP932", 0x81},      {"DOS866", "CP866", 0},
    {"MACINTOSH", "MACINTOSH", 0},  {"MAC-ROMAN", "MACINTOSH", 0},  {"ISO8859-1", "ISO-8859-1", 0},
    {"ISO8859-2", "ISO-8859-2", 0}, {"ISO8859-5", "ISO-8859-5", 0}, {"BIG5", "BIG5", 0x81},
    {"GB2312", "CP936", 0x81},      {"KSC5601", "CP949", 0x81},     {"JOHAB", "JOHAB", 0x81}};

/// Code pages of the \M+nXXXX escape by their digit.
constexpr const char* kEscapedPages[] = {nullptr, "CP932", "CP950", "CP949", "JOHAB", "CP936"};

class Converter {
public:
    explicit Converter(const char* from) : m_handle(::iconv_open("UTF-16LE", from)) {}
    ~Converter() {
        if (isOpen()) ::iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    bool isOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    /// Units of some bytes; an unknown byte becomes the unit of its number and sets `bad`.
    void convert(std::string_view bytes, WideString& out, bool& bad) {
        ::iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(bytes.data());
        std::size_t inLeft = bytes.size();
        while (inLeft > 0) {
            WideChar units[256];
            char* to = reinterpret_cast<char*>(units);
            std::size_t room = sizeof units;
            const char* const before = in;
            const std::size_t result = ::iconv(m_handle, &in, &inLeft, &to, &room);
            out.append(units, (sizeof units - room) / sizeof(WideChar));
            if (result != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
            bad = true;
            if (inLeft == 0) {
                // The converter of one page passes over a pair that it refuses, even at the end of the text.
                for (const char* at = in - std::min<std::ptrdiff_t>(2, in - before); at < in; ++at)
                    out.push_back(static_cast<unsigned char>(*at));
                break;
            }
            out.push_back(static_cast<unsigned char>(*in++));
            --inLeft;
        }
        // Pages with accents that follow their letter hold the last letter back until they know what comes.
        WideChar rest[8];
        char* to = reinterpret_cast<char*>(rest);
        std::size_t room = sizeof rest;
        ::iconv(m_handle, nullptr, nullptr, &to, &room);
        out.append(rest, (sizeof rest - room) / sizeof(WideChar));
    }

private:
    iconv_t m_handle;
};

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Value of exactly four hexadecimal digits at the start, or -1.
int hex4(std::string_view text) {
    if (text.size() < 4) return -1;
    int value = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = hexDigit(text[static_cast<std::size_t>(i)]);
        if (digit < 0) return -1;
        value = value << 4 | digit;
    }
    return value;
}

constexpr std::uint64_t kOnes = 0x0101010101010101ull;
constexpr std::uint64_t kHigh = 0x8080808080808080ull;

bool hasByte(std::uint64_t word, unsigned char byte) {
    const std::uint64_t x = word ^ (kOnes * byte);
    return ((x - kOnes) & ~x & kHigh) != 0;
}

/// Whether every byte is ASCII but 0 and none begins an escape, so that units are the bytes.
bool isPlain(std::string_view bytes) {
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes.data() + i, 8);
        if ((word & kHigh) != 0 || hasByte(word, '\\') || hasByte(word, '^') || hasByte(word, 0))
            return false;
    }
    for (; i < bytes.size(); ++i)
        if (static_cast<unsigned char>(bytes[i]) >= 0x80 || bytes[i] == '\\' || bytes[i] == '^' ||
            bytes[i] == 0)
            return false;
    return true;
}

OdString fromAscii(std::string_view bytes) {
    constexpr std::size_t kSmall = 128;
    if (bytes.size() <= kSmall) {
        WideChar units[kSmall];
        for (std::size_t i = 0; i < bytes.size(); ++i) units[i] = static_cast<unsigned char>(bytes[i]);
        return OdString(WideView(units, bytes.size()));
    }
    return OdString(WideView(system::widen(bytes)));
}

/// The unit that ^X stands for, or -1. A caret before anything else is itself, and a unit 0 would end the
/// text.
int caretUnit(char next) {
    if (next == ' ') return '^';
    if (next > '@' && next <= '_') return next - '@';
    return -1;
}

} // namespace

struct TextDecoder::State {
    const char* page = "UTF-8";
    bool utf8 = true;
    int lead = 0;
    bool katakana = false; ///< single bytes from 0xA1 to 0xDF between the leading ones
    std::array<WideChar, 256> table{};
    mutable std::unique_ptr<Converter> converter;
    mutable std::unordered_map<std::string, OdString> shared;

    void run(std::string_view bytes, WideString& out, bool& bad) const {
        if (utf8) {
            bad = bad || !system::isUtf8(bytes);
            out += system::fromUtf8(bytes);
        } else if (lead == 0) {
            for (const char byte : bytes) out.push_back(table[static_cast<unsigned char>(byte)]);
        } else {
            converter->convert(bytes, out, bad);
        }
    }
    /// Whether a byte begins a character of two bytes.
    bool isLead(unsigned char byte) const {
        if (lead == 0 || byte < lead || byte == 0xFF) return false;
        return !katakana || byte < 0xA0 || byte > 0xDF;
    }
    std::size_t escape(std::string_view rest, WideString& out) const;
};

/// Reads an escape at the start of `rest`; gives its length, 0 when there is none.
std::size_t TextDecoder::State::escape(std::string_view rest, WideString& out) const {
    constexpr std::size_t kUnicode = 7, kMulti = 8; // \U+XXXX and \M+nXXXX
    if (rest[0] == '^') {
        const int unit = rest.size() > 1 ? caretUnit(rest[1]) : -1;
        if (unit < 0) return 0;
        out.push_back(static_cast<WideChar>(unit));
        return 2;
    }
    if (rest.size() >= kUnicode && (rest[1] == 'U' || rest[1] == 'u') && rest[2] == '+') {
        const int unit = hex4(rest.substr(3));
        if (unit <= 0) return 0;
        out.push_back(static_cast<WideChar>(unit));
        return kUnicode;
    }
    if (rest.size() >= kMulti && (rest[1] == 'M' || rest[1] == 'm') && rest[2] == '+' && rest[3] >= '1' &&
        rest[3] <= '5') {
        const int code = hex4(rest.substr(4));
        if (code < 0) return 0;
        Converter page(kEscapedPages[rest[3] - '0']);
        if (!page.isOpen()) return 0;
        const char pair[2] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
        bool bad = false;
        WideString units;
        page.convert(std::string_view(pair[0] != 0 ? pair : pair + 1, pair[0] != 0 ? 2 : 1), units, bad);
        if (bad) return 0;
        out += units;
        return kMulti;
    }
    return 0;
}

TextDecoder::TextDecoder() : m_state(std::make_unique<State>()) {}
TextDecoder::~TextDecoder() = default;
TextDecoder::TextDecoder(const TextDecoder&) = default;
TextDecoder& TextDecoder::operator=(const TextDecoder&) = default;
TextDecoder::TextDecoder(TextDecoder&&) noexcept = default;
TextDecoder& TextDecoder::operator=(TextDecoder&&) noexcept = default;

TextDecoder TextDecoder::forCodePage(std::string_view name) {
    std::string upper;
    for (const char c : name)
        if (c != ' ') upper.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    TextDecoder decoder;
    State& state = *decoder.m_state;
    state.utf8 = false;
    state.page = "CP1252";
    for (int byte = 0; byte < 256; ++byte)
        state.table[static_cast<std::size_t>(byte)] = system::widenByte(static_cast<unsigned char>(byte));
    const auto page = std::find_if(std::begin(kCodePages), std::end(kCodePages),
                                   [&upper](const CodePage& row) { return row.name == upper; });
    if (page == std::end(kCodePages) || page->converter == nullptr) return decoder;
    auto converter = std::make_unique<Converter>(page->converter);
    if (!converter->isOpen()) return decoder;
    state.page = page->converter;
    state.lead = page->multiByteLead;
    state.katakana = std::strcmp(page->converter, "CP932") == 0;
    if (state.lead == 0) {
        for (int byte = 0x80; byte < 256; ++byte) {
            const char one = static_cast<char>(byte);
            WideString unit;
            bool bad = false;
            converter->convert(std::string_view(&one, 1), unit, bad);
            state.table[static_cast<std::size_t>(byte)] =
                unit.size() == 1 ? unit[0] : static_cast<WideChar>(byte);
        }
    }
    state.converter = std::move(converter);
    return decoder;
}

bool TextDecoder::isAsciiSafe() const {
    return m_state->lead == 0;
}

const char* TextDecoder::page() const {
    return m_state->page;
}

OdString TextDecoder::decode(std::string_view bytes, bool& bad) const {
    if (isPlain(bytes)) return fromAscii(bytes);
    const State& state = *m_state;
    WideString out;
    out.reserve(bytes.size());
    std::size_t from = 0; // start of the run that has no escape
    std::size_t at = 0;
    const auto flush = [&](std::size_t end) {
        if (end > from) state.run(bytes.substr(from, end - from), out, bad);
    };
    while (at < bytes.size()) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        if (state.isLead(byte) && at + 1 < bytes.size()) {
            at += 2; // the second byte may look like "\" or "^"
            continue;
        }
        if (byte != '\\' && byte != '^') {
            ++at;
            continue;
        }
        WideString unit;
        const std::size_t length = state.escape(bytes.substr(at), unit);
        if (length == 0) {
            ++at;
            continue;
        }
        flush(at);
        out += unit;
        at += length;
        from = at;
    }
    flush(bytes.size());
    std::erase(out, WideChar{0}); // would end the text everywhere else, and can't be written
    return OdString(WideView(out));
}

OdString TextDecoder::decodeShared(std::string_view bytes, bool& bad) const {
    if (bytes.empty()) return OdString();
    constexpr std::size_t kMost = 65536; // a drawing with ever new names must not double its memory
    std::string key(bytes);
    const auto found = m_state->shared.find(key);
    if (found != m_state->shared.end()) return found->second;
    const OdString text = decode(bytes, bad);
    if (m_state->shared.size() < kMost) m_state->shared.emplace(std::move(key), text);
    return text;
}

} // namespace lm::drawing
