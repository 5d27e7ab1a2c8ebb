// SPDX-License-Identifier: MIT
// Cuts a script into commands, expressions and answers.
#pragma once

#include <string>
#include <string_view>

namespace lm::host {

/// A part of a script.
struct ScriptPart {
    enum Kind {
        kEnd,
        kWord,       ///< what stands up to a blank, or between quotes
        kExpression, ///< a LISP expression with its parentheses
        kBroken      ///< an expression or a quoted answer that isn't closed
    };
    Kind kind = kEnd;
    std::string text;
    int line = 0;
};

/// Each blank and each end of a line closes one part, so two in a row hold an empty answer between them. A
/// line that begins with ";" is a comment.
class ScriptReader {
public:
    explicit ScriptReader(std::string text);

    /// The next command or expression: empty parts are passed over.
    ScriptPart nextItem();
    /// The next answer, which may be empty.
    ScriptPart nextAnswer();
    /// The next answer on the line of the part that was read last; kEnd behind the last one.
    ScriptPart nextOfLine();
    /// Passes over what follows on the line of the part that was read last.
    void skipLine();
    /// Where the part begins that was read last.
    int line() const { return m_partLine; }

private:
    bool atLineStart() const { return m_at == 0 || m_text[m_at - 1] == '\n'; }
    void skipComments();
    void advance();
    ScriptPart read();
    ScriptPart readQuoted();
    ScriptPart readExpression();
    ScriptPart readWord();
    void closePart();
    void resumeBehind(std::size_t start);
    void skipBlockComment();
    void skipText();

    std::string m_text; ///< line feeds as line ends
    std::size_t m_at = 0;
    int m_line = 1;
    int m_partLine = 1;
    int m_broken = 0;
};

} // namespace lm::host
