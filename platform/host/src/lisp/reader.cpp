// SPDX-License-Identifier: MIT
#include "reader.h"

#include "system/codepage.h"

#include <charconv>

namespace lm::host::lisp {

namespace {

bool isBlank(WideChar unit) noexcept {
    constexpr WideChar kByteOrderMark = 0xFEFF, kFixedBlank = 0xA0;
    return unit <= ' ' || unit == kByteOrderMark || unit == kFixedBlank;
}

bool endsToken(WideChar unit) noexcept {
    return isBlank(unit) || unit == '(' || unit == ')' || unit == '"' || unit == '\'' || unit == ';';
}

bool isDigit(WideChar unit) noexcept {
    return unit >= '0' && unit <= '9';
}

int hexDigit(WideChar unit) noexcept {
    if (isDigit(unit)) return unit - '0';
    if (unit >= 'A' && unit <= 'F') return unit - 'A' + 10;
    if (unit >= 'a' && unit <= 'f') return unit - 'a' + 10;
    return -1;
}

} // namespace

Value numberOf(WideView token) noexcept {
    constexpr std::size_t kLongest = 512;
    std::size_t at = 0, digits = 0;
    bool real = false;
    if (at < token.size() && (token[at] == '+' || token[at] == '-')) ++at;
    for (; at < token.size() && isDigit(token[at]); ++at) ++digits;
    if (at < token.size() && token[at] == '.') {
        real = true;
        for (++at; at < token.size() && isDigit(token[at]); ++at) ++digits;
    }
    if (digits == 0) return Value();
    if (at < token.size() && (token[at] == 'e' || token[at] == 'E')) {
        real = true;
        ++at;
        if (at < token.size() && (token[at] == '+' || token[at] == '-')) ++at;
        if (at == token.size()) return Value();
        while (at < token.size() && isDigit(token[at])) ++at;
    }
    if (at != token.size() || token.size() > kLongest) return Value();
    const WideChar last = token.back();
    if (!isDigit(last) && last != '.') return Value();

    char narrow[kLongest];
    std::size_t length = 0;
    for (const WideChar unit : token)
        if (length != 0 || unit != '+') narrow[length++] = static_cast<char>(unit);
    if (!real) {
        std::int32_t integer = 0;
        const auto [end, code] = std::from_chars(narrow, narrow + length, integer);
        if (code == std::errc() && end == narrow + length) return Value::integer(integer);
    }
    double number = 0;
    const auto [end, code] = std::from_chars(narrow, narrow + length, number);
    if (code == std::errc::result_out_of_range) {
        const bool small = WideView(token).find_first_of(system::widen("eE")) != WideView::npos &&
                           token.find(WideChar('-'), 1) != WideView::npos;
        return Value::real(small ? 0.0 : token[0] == '-' ? -HUGE_VAL : HUGE_VAL);
    }
    return Value::real(number);
}

Reader::Reader(Machine& machine, WideView text) : m_machine(machine), m_text(text) {}

WideChar Reader::take() noexcept {
    const WideChar unit = m_text[m_at++];
    // A line ends with a line feed, or with a carriage return that none follows.
    if (unit == '\n' || (unit == '\r' && (atEnd() || peek() != '\n'))) {
        ++m_line;
        m_lineStart = m_at;
    }
    return unit;
}

Reader::Place Reader::here() const noexcept {
    return {m_at, m_line, static_cast<int>(m_at - m_lineStart) + 1};
}

void Reader::fail(std::string_view message, const Place& place) {
    LispError error(message);
    error.line = place.line;
    error.column = place.column;
    throw error;
}

void Reader::skipBlanks() {
    while (!atEnd()) {
        if (isBlank(peek())) {
            take();
            continue;
        }
        if (peek() != ';') return;
        const Place start = here();
        take();
        if (!atEnd() && peek() == '|') {
            take();
            // The comment's own bar may not end it.
            while (!atEnd() && !(peek() == '|' && m_at + 1 < m_text.size() && m_text[m_at + 1] == ';'))
                take();
            if (atEnd()) fail("comment without an end", start);
            take();
            take();
        } else {
            while (!atEnd() && peek() != '\n' && peek() != '\r') take();
        }
    }
}

bool Reader::next(Value& form) {
    skipBlanks();
    if (atEnd()) return false;
    const Place place = here();
    m_formLine = place.line;
    m_formColumn = place.column;
    form = read();
    return true;
}

Value Reader::read() {
    m_machine.checkStack();
    m_machine.tick();
    skipBlanks();
    const Place place = here();
    if (atEnd()) fail("malformed list on input", place);
    switch (peek()) {
    case '(':
        return readList();
    case ')':
        fail("extra right paren on input", place);
    case '"':
        return readText();
    case '\'': {
        take();
        skipBlanks();
        if (atEnd() || peek() == ')') fail("nothing to quote on input", place);
        Value quoted = read();
        return m_machine.list(Value::of(m_machine.m_quote), std::move(quoted));
    }
    default:
        return readToken();
    }
}

// A dot that stands alone.
bool Reader::takeDot() {
    if (peek() != '.' || (m_at + 1 < m_text.size() && !endsToken(m_text[m_at + 1]))) return false;
    take();
    return true;
}

Value Reader::readList() {
    const Place start = here();
    take();
    ListBuilder elements(m_machine.heap());
    for (;;) {
        skipBlanks();
        if (atEnd()) fail("malformed list on input", start);
        if (peek() == ')') {
            take();
            return elements.take();
        }
        const Place place = here();
        if (!takeDot()) {
            elements.add(read());
            continue;
        }
        skipBlanks();
        if (elements.isEmpty() || atEnd() || peek() == ')') fail("misplaced dot on input", place);
        Value tail = read();
        skipBlanks();
        if (atEnd()) fail("malformed list on input", start);
        if (peek() != ')') fail("misplaced dot on input", place);
        take();
        return elements.takeWithTail(std::move(tail));
    }
}

Value Reader::readText() {
    const Place start = here();
    take();
    WideString units;
    for (;;) {
        if (atEnd()) fail("malformed string on input", start);
        WideChar unit = take();
        if (unit == '"') break;
        if (unit == '\\') {
            if (atEnd()) fail("malformed string on input", start);
            unit = readEscape();
        }
        if (unit != 0) units += unit; // a text ends at its first 0 unit everywhere else
    }
    m_machine.tick(units.size());
    return m_machine.text(std::move(units));
}

WideChar Reader::readEscape() {
    const WideChar unit = take();
    switch (unit) {
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case 'e':
        return 27;
    case 'U': {
        // \U+XXXX is a unit by its number; anything else is a letter.
        constexpr std::size_t kDigits = 4;
        if (m_at + kDigits >= m_text.size() || peek() != '+') return unit;
        int value = 0;
        for (std::size_t i = 1; i <= kDigits; ++i) {
            const int digit = hexDigit(m_text[m_at + i]);
            if (digit < 0) return unit;
            value = value * 16 + digit;
        }
        m_at += kDigits + 1;
        return static_cast<WideChar>(value);
    }
    default:
        break;
    }
    if (unit < '0' || unit > '7') return unit;
    int value = unit - '0';
    for (int more = 0; more < 2 && !atEnd() && peek() >= '0' && peek() <= '7'; ++more)
        value = value * 8 + (take() - '0');
    return static_cast<WideChar>(value & 0xFF);
}

Value Reader::readToken() {
    const Place place = here();
    const std::size_t start = m_at;
    while (!atEnd() && !endsToken(peek())) take();
    const WideView token = m_text.substr(start, m_at - start);
    if (token.size() == 1 && token[0] == '.') fail("misplaced dot on input", place);
    if (Value number = numberOf(token)) return number;
    WideString name(token);
    for (WideChar& unit : name) unit = system::toUpper(unit);
    static constexpr WideChar kNil[] = {'N', 'I', 'L'};
    if (system::wideEquals(name, WideView(kNil, std::size(kNil)))) return Value();
    return Value::of(m_machine.intern(WideView(name)));
}

WideString decodeSource(std::string_view bytes) {
    const auto startsWith = [&](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
    if (startsWith("\xEF\xBB\xBF")) return system::fromUtf8(bytes.substr(3));
    const bool little = startsWith("\xFF\xFE");
    if (little || startsWith("\xFE\xFF")) {
        WideString text;
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
            const auto first = static_cast<unsigned char>(bytes[i]);
            const auto second = static_cast<unsigned char>(bytes[i + 1]);
            text += static_cast<WideChar>(little ? first | second << 8 : first << 8 | second);
        }
        return text;
    }
    return system::isUtf8(bytes) ? system::fromUtf8(bytes) : system::widenNarrow(bytes);
}

} // namespace lm::host::lisp
