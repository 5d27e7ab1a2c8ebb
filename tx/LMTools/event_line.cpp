// SPDX-License-Identifier: MIT
// Reading the line of an event: a JSON object of seven known keys.
#include "event_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace lmtools {

namespace {

using lm::WideString;
using lm::WideView;

std::string inQuotes(WideView text) {
    return "\"" + lm::system::toUtf8(text) + "\"";
}

bool isWord(WideView text, std::string_view ascii) {
    return std::equal(text.begin(), text.end(), ascii.begin(), ascii.end());
}

/// A value: text, a whole number or null.
struct Value {
    enum Kind { kNull, kText, kNumber } kind = kNull;
    WideString text;
    long long number = 0;
};

/// Reads one JSON object of plain values from a line.
class LineReader {
public:
    explicit LineReader(std::string_view line) : m_left(line) {
        if (!lm::system::isUtf8(line)) throw BadEvent("expected UTF-8");
    }

    /// Shows each key with its value in order.
    template<class Visit>
    void readObject(Visit&& visit) {
        expect('{', "an object");
        if (!takes('}')) {
            do {
                const WideString key = readText("a key");
                expect(':', "a colon");
                visit(key, readValue());
            } while (takes(','));
            expect('}', "a comma or the end of the object");
        }
        skipBlanks();
        if (!m_left.empty()) throw BadEvent("expected the end of the line, found " + found());
    }

private:
    void skipBlanks() {
        const std::size_t at = m_left.find_first_not_of(" \t\r");
        m_left.remove_prefix(at == m_left.npos ? m_left.size() : at);
    }
    std::string found() const {
        return m_left.empty() ? "its end" : "\"" + std::string(m_left.substr(0, 12)) + "\"";
    }
    bool takes(char sign) {
        skipBlanks();
        if (m_left.empty() || m_left.front() != sign) return false;
        m_left.remove_prefix(1);
        return true;
    }
    void expect(char sign, const char* what) {
        if (!takes(sign)) throw BadEvent(std::string("expected ") + what + ", found " + found());
    }

    WideString readText(const char* what) {
        expect('"', what);
        WideString text;
        for (;;) {
            // No byte of a sign beyond ASCII is one of these.
            std::size_t plain = 0;
            while (plain < m_left.size() && m_left[plain] != '"' && m_left[plain] != '\\' &&
                   static_cast<unsigned char>(m_left[plain]) >= ' ')
                ++plain;
            text += lm::system::fromUtf8(m_left.substr(0, plain));
            m_left.remove_prefix(plain);
            if (m_left.empty()) throw BadEvent("a text isn't closed");
            const char sign = m_left.front();
            m_left.remove_prefix(1);
            if (sign == '"') return text;
            if (sign != '\\') throw BadEvent("a text holds a control sign, expected an escape");
            text += readEscape();
        }
    }
    lm::WideChar readEscape() {
        constexpr std::string_view kSigns = "\"\\/bfnrt", kMeant = "\"\\/\b\f\n\r\t";
        const char sign = m_left.empty() ? '\0' : m_left.front();
        if (!m_left.empty()) m_left.remove_prefix(1);
        if (const std::size_t at = kSigns.find(sign); at != kSigns.npos)
            return static_cast<lm::WideChar>(kMeant[at]);
        unsigned unit = 0;
        const std::string_view digits = m_left.substr(0, 4);
        const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        if (sign != 'u' || digits.size() != 4 || end.ptr != digits.data() + 4)
            throw BadEvent("a text holds an escape that JSON doesn't know");
        m_left.remove_prefix(4);
        return static_cast<lm::WideChar>(unit);
    }

    Value readValue() {
        skipBlanks();
        if (m_left.starts_with('"')) return {Value::kText, readText("a text"), 0};
        if (m_left.starts_with("null")) {
            m_left.remove_prefix(4);
            return {};
        }
        Value value{Value::kNumber, {}, 0};
        const auto end = std::from_chars(m_left.data(), m_left.data() + m_left.size(), value.number);
        const std::size_t length = static_cast<std::size_t>(end.ptr - m_left.data());
        if (end.ec != std::errc() || m_left.substr(length).find_first_of(".eE") == 0)
            throw BadEvent("expected a text, a whole number or null, found " + found());
        m_left.remove_prefix(length);
        return value;
    }

    std::string_view m_left;
};

enum Key { kPhase, kFamily, kDocument, kHandle, kBlock, kLayer, kCommand, kKeyCount };
constexpr std::array<const char*, kKeyCount> kKeys = {"phase", "family", "document", "handle",
                                                      "block", "layer",  "command"};

using Values = std::array<std::optional<Value>, kKeyCount>;

Values readValues(std::string_view line) {
    Values values;
    LineReader(line).readObject([&values](const WideString& key, Value value) {
        std::size_t at = 0;
        while (at < kKeyCount && !isWord(key, kKeys[at])) ++at;
        if (at == kKeyCount) throw BadEvent("unknown key " + inQuotes(key));
        if (values[at]) throw BadEvent(inQuotes(key) + " is given twice");
        values[at] = std::move(value);
    });
    for (std::size_t at = 0; at < kKeyCount; ++at)
        if (!values[at]) throw BadEvent(std::string("\"") + kKeys[at] + "\" is missing");
    return values;
}

/// A text or null, which stands for the empty text.
WideString textOf(const Values& values, Key key) {
    const Value& value = *values[key];
    if (value.kind == Value::kNumber || (value.kind == Value::kText && value.text.empty()))
        throw BadEvent(std::string("\"") + kKeys[key] + "\" needs null or a text that isn't empty");
    return value.text;
}

int documentOf(const Values& values) {
    const Value& value = *values[kDocument];
    if (value.kind == Value::kNull) return 0;
    if (value.kind != Value::kNumber || value.number < 1 || value.number > 0x7FFFFFFF)
        throw BadEvent("\"document\" needs null or a number from 1");
    return static_cast<int>(value.number);
}

/// The place of a name in a table of them.
template<class Enum, std::size_t kSize>
Enum enumOf(const Values& values, Key key, const std::array<const char*, kSize>& names) {
    const WideString text = textOf(values, key);
    for (std::size_t at = 0; at < kSize; ++at)
        if (isWord(text, names[at])) return static_cast<Enum>(at);
    throw BadEvent(std::string("unknown ") + kKeys[key] + " " + inQuotes(text));
}

bool isHandle(WideView text) {
    if (text.empty() || text.size() > 16) return false;
    for (const lm::WideChar sign : text)
        if (!(sign >= '0' && sign <= '9') && !(sign >= 'A' && sign <= 'F')) return false;
    return true;
}

/// Refuses what no reactor tells.
void checkParts(const Event& event) {
    const std::string name = nameOf(event);
    const bool isAboutObject = event.family != Family::kCommand && event.family != Family::kCarga &&
                               event.family != Family::kTransaction;
    if (isAboutObject && !isHandle(event.handle))
        throw BadEvent(name + " needs a handle of 1 to 16 hexadecimal digits in capitals, found " +
                       inQuotes(event.handle));
    if (!isAboutObject && !(event.handle.empty() && event.block.empty() && event.layer.empty()))
        throw BadEvent(name + " has no handle, block and layer");
    if (event.family == Family::kCommand && event.command.empty()) throw BadEvent(name + " needs a command");
    if (event.family == Family::kTransaction && event.document != 0)
        throw BadEvent(name + " has no document");
}

} // namespace

Event eventOf(std::string_view line) {
    const Values values = readValues(line);
    Event event;
    event.phase = enumOf<Phase>(values, kPhase, kPhaseNames);
    event.family = enumOf<Family>(values, kFamily, kFamilyNames);
    event.document = documentOf(values);
    event.handle = textOf(values, kHandle);
    event.block = textOf(values, kBlock);
    event.layer = textOf(values, kLayer);
    event.command = textOf(values, kCommand);
    if (!isEvent(event.family, event.phase)) throw BadEvent("there is no event \"" + nameOf(event) + "\"");
    checkParts(event);
    return event;
}

} // namespace lmtools
