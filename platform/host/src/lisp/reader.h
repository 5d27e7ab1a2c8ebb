// SPDX-License-Identifier: MIT
// The reader: from text to expressions, one after the other.
#pragma once

#include "machine.h"

namespace lm::host::lisp {

/// Reads the expressions of a text. What it reads comes in capitals, by the system's one table of case; texts
/// in quotes stay as they are. Lines and columns count from 1, columns in units.
class Reader {
public:
    /// The text must outlive the reader.
    Reader(Machine& machine, WideView text);

    /// Reads the next expression; false at the end. Raises LispError with the place of what is wrong.
    bool next(Value& form);
    /// Where the expression that `next` gave begins.
    int line() const noexcept { return m_formLine; }
    int column() const noexcept { return m_formColumn; }

private:
    struct Place {
        std::size_t offset;
        int line;
        int column;
    };

    bool atEnd() const noexcept { return m_at >= m_text.size(); }
    WideChar peek() const noexcept { return m_text[m_at]; }
    WideChar take() noexcept;
    void skipBlanks();
    Place here() const noexcept;
    Value read();
    Value readList();
    Value readText();
    WideChar readEscape();
    Value readToken();
    bool takeDot();
    [[noreturn]] static void fail(std::string_view message, const Place& place);

    Machine& m_machine;
    WideView m_text;
    std::size_t m_at = 0;
    std::size_t m_lineStart = 0;
    int m_line = 1;
    int m_formLine = 1;
    int m_formColumn = 1;
};

/// The number that a whole token spells; nil when it spells none. Integers beyond 32 bits become reals.
Value numberOf(WideView token) noexcept;

/// Bytes of a program file as text: by a byte order mark, else as UTF-8 when they are well-formed, else in
/// code page 1252.
WideString decodeSource(std::string_view bytes);

} // namespace lm::host::lisp
