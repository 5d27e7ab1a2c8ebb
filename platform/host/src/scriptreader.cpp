// SPDX-License-Identifier: MIT
#include "scriptreader.h"

#include <utility>

namespace lm::host {

namespace {

// Each expression that isn't closed costs a look at the whole rest.
constexpr int kMostBroken = 100;

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string withLineFeeds(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r')
            result += text[i];
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            result += '\n';
    }
    return result;
}

} // namespace

ScriptReader::ScriptReader(std::string text) : m_text(withLineFeeds(text)) {}

void ScriptReader::advance() {
    if (m_text[m_at++] == '\n') ++m_line;
}

void ScriptReader::skipComments() {
    while (m_at < m_text.size() && atLineStart() && m_text[m_at] == ';') {
        while (m_at < m_text.size() && m_text[m_at] != '\n') ++m_at;
        if (m_at < m_text.size()) advance();
    }
}

ScriptPart ScriptReader::nextItem() {
    for (;;) {
        skipComments();
        if (m_at == m_text.size() || (!isBlank(m_text[m_at]) && m_text[m_at] != '\n')) return read();
        advance();
    }
}

ScriptPart ScriptReader::nextAnswer() {
    skipComments();
    return read();
}

ScriptPart ScriptReader::nextOfLine() {
    while (m_at < m_text.size() && !atLineStart() && isBlank(m_text[m_at])) advance();
    return atLineStart() || m_text[m_at] == '\n' ? ScriptPart() : read();
}

void ScriptReader::skipLine() {
    while (m_at < m_text.size() && !atLineStart()) advance();
}

ScriptPart ScriptReader::read() {
    m_partLine = m_line;
    if (m_at == m_text.size()) return {ScriptPart::kEnd, {}, m_line};
    ScriptPart part = m_text[m_at] == '"'   ? readQuoted()
                      : m_text[m_at] == '(' ? readExpression()
                                            : readWord();
    part.line = m_partLine;
    closePart();
    return part;
}

void ScriptReader::closePart() {
    if (m_at < m_text.size() && (isBlank(m_text[m_at]) || m_text[m_at] == '\n')) advance();
}

ScriptPart ScriptReader::readWord() {
    const std::size_t start = m_at;
    while (m_at < m_text.size() && !isBlank(m_text[m_at]) && m_text[m_at] != '\n') ++m_at;
    return {ScriptPart::kWord, m_text.substr(start, m_at - start), 0};
}

/// A backslash is an ordinary character, since paths have it.
ScriptPart ScriptReader::readQuoted() {
    const std::size_t start = ++m_at;
    while (m_at < m_text.size() && m_text[m_at] != '"' && m_text[m_at] != '\n') ++m_at;
    const ScriptPart part{ScriptPart::kWord, m_text.substr(start, m_at - start), 0};
    if (m_at == m_text.size() || m_text[m_at] == '\n')
        return {ScriptPart::kBroken, "the quoted answer isn't closed", 0};
    ++m_at;
    return part;
}

ScriptPart ScriptReader::readExpression() {
    const std::size_t start = m_at;
    int depth = 0;
    while (m_at < m_text.size()) {
        const char c = m_text[m_at];
        if (c == '"') {
            skipText();
            continue;
        }
        if (c == ';') {
            skipBlockComment();
            continue;
        }
        if (c == '(') ++depth;
        if (c == ')') --depth;
        advance();
        if (depth == 0) return {ScriptPart::kExpression, m_text.substr(start, m_at - start), 0};
    }
    resumeBehind(start);
    return {ScriptPart::kBroken, "the expression isn't closed", 0};
}

/// Goes to where the next command or expression seems to begin: a line that isn't indented and is no closing
/// parenthesis. So one expression that isn't closed doesn't take the rest of the script with it.
void ScriptReader::resumeBehind(std::size_t start) {
    if (++m_broken >= kMostBroken) return;
    m_at = start;
    m_line = m_partLine;
    do {
        while (m_at < m_text.size() && m_text[m_at] != '\n') ++m_at;
        if (m_at == m_text.size()) return;
        advance();
    } while (m_at < m_text.size() && (isBlank(m_text[m_at]) || m_text[m_at] == ')' || m_text[m_at] == '\n'));
}

/// A text of the expression; a backslash takes the meaning from what follows.
void ScriptReader::skipText() {
    for (advance(); m_at < m_text.size() && m_text[m_at] != '"'; advance())
        if (m_text[m_at] == '\\' && m_at + 1 < m_text.size()) advance();
    if (m_at < m_text.size()) advance();
}

/// A comment up to the end of the line, or from ;| to |;
void ScriptReader::skipBlockComment() {
    if (m_text.compare(m_at, 2, ";|") != 0) {
        while (m_at < m_text.size() && m_text[m_at] != '\n') ++m_at;
        return;
    }
    const std::size_t end = m_text.find("|;", m_at + 2);
    const std::size_t behind = end == std::string::npos ? m_text.size() : end + 2;
    while (m_at < behind) advance();
}

} // namespace lm::host
