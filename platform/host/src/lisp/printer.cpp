// SPDX-License-Identifier: MIT
#include "printer.h"

#include <charconv>
#include <cmath>

namespace lm::host::lisp {

namespace {

/// Raised inside to end a printing that is long enough.
struct LongEnough {};

class Printer {
public:
    Printer(Machine& machine, Style style, std::size_t most)
        : m_machine(machine), m_style(style), m_most(most) {}

    void print(const Value& value);
    WideString take() { return std::move(m_out); }

private:
    void put(std::string_view ascii) {
        for (const char byte : ascii) m_out += static_cast<WideChar>(byte);
    }
    void printList(const Value& list);
    void printText(const WideString& text);
    void checkLength() {
        if (m_out.size() > m_most) throw LongEnough();
        if (m_out.size() < m_nextCheck) return;
        // The text doubles its memory as it grows.
        m_machine.heap().expect(m_out.size() * 2 * sizeof(WideChar));
        m_nextCheck = m_out.size() * 2;
    }

    Machine& m_machine;
    Style m_style;
    std::size_t m_most;
    std::size_t m_nextCheck = 4096;
    WideString m_out;
};

void Printer::print(const Value& value) {
    m_machine.tick();
    checkLength();
    switch (value.type()) {
    case Type::kUnbound:
    case Type::kNil:
        put("nil");
        break;
    case Type::kInteger:
        put(std::to_string(value.integer()));
        break;
    case Type::kReal:
        m_out += printedReal(value.real());
        break;
    case Type::kSymbol:
        m_out += value.symbol()->name;
        break;
    case Type::kBuiltin:
        put("#<SUBR ");
        put(value.builtin()->name);
        put(">");
        break;
    case Type::kText:
        if (m_style == Style::kPrinc)
            m_out += value.text();
        else
            printText(value.text());
        break;
    case Type::kCons:
        printList(value);
        break;
    case Type::kFunction:
        put("#<USUBR");
        if (value.function()->name != nullptr) {
            put(" ");
            m_out += value.function()->name->name;
        }
        put(">");
        break;
    case Type::kForeign:
        m_out += value.foreign()->printed();
        break;
    }
}

void Printer::printList(const Value& list) {
    m_machine.checkStack();
    put("(");
    const Value* at = &list;
    for (; at->isCons(); at = &at->cdr()) {
        if (at != &list) put(" ");
        print(at->car());
    }
    if (!at->isNil()) {
        put(" . ");
        print(*at);
    }
    put(")");
}

void Printer::printText(const WideString& text) {
    put("\"");
    for (const WideChar unit : text) {
        switch (unit) {
        case '"':
            put("\\\"");
            break;
        case '\\':
            put("\\\\");
            break;
        case '\n':
            put("\\n");
            break;
        case '\r':
            put("\\r");
            break;
        case '\t':
            put("\\t");
            break;
        case 27:
            put("\\e");
            break;
        default:
            if (unit >= ' ' && unit != 127) {
                m_out += unit;
            } else {
                const char escape[] = {'\\', static_cast<char>('0' + unit / 64),
                                       static_cast<char>('0' + unit / 8 % 8),
                                       static_cast<char>('0' + unit % 8)};
                put({escape, sizeof escape});
            }
        }
        checkLength();
    }
    put("\"");
}

} // namespace

WideString printedReal(double number) {
    constexpr int kDigits = 6;
    char narrow[64];
    const auto end =
        std::to_chars(narrow, narrow + sizeof narrow, number, std::chars_format::general, kDigits);
    std::string text(narrow, end.ptr);
    if (std::isfinite(number) && text.find('.') == std::string::npos) {
        const std::size_t exponent = text.find('e');
        text.insert(exponent == std::string::npos ? text.size() : exponent, ".0");
    }
    return system::widen(text);
}

WideString printed(Machine& machine, const Value& value, Style style) {
    Printer printer(machine, style, SIZE_MAX);
    printer.print(value);
    return printer.take();
}

WideString printedShort(Machine& machine, const Value& value) {
    constexpr std::size_t kMost = 200;
    Printer printer(machine, Style::kPrin1, kMost);
    try {
        printer.print(value);
        WideString text = printer.take();
        if (text.size() <= kMost) return text;
        text.resize(kMost);
        return text + system::widen("...");
    } catch (const LongEnough&) {
    } catch (const LispError& error) {
        // A message about an error matters more than the memory that the value's text would take. But a
        // program whose time is up must not go on because it was busy with a message at that moment.
        if (!error.catchable) throw;
    }
    WideString text = printer.take();
    if (text.size() > kMost) text.resize(kMost);
    return text + system::widen("...");
}

} // namespace lm::host::lisp
