// SPDX-License-Identifier: MIT
// Scripts of commands and LISP expressions, as docs/scripts.md describes them.
//
//     lm::host::ScriptRunner runner(lm::host::scriptText(bytes), options);
//     const std::size_t failures = runner.run();
#pragma once

#include "host/document.h"

#include <functional>
#include <memory>
#include <string>

namespace lm::host {

class ScriptReader;

/// How a script is run.
struct ScriptOptions {
    /// Seconds for each evaluation and each command; 0 for no limit.
    double timeLimit = 0;
    /// Takes each failure: the line of the script, from 1, and one line of UTF-8 without its end.
    std::function<void(int line, const std::string& what)> error;
    /// Told before (true) and after (false) each command and each expression; may be empty.
    std::function<void(bool begins)> step;
};

/// UTF-8 of a script's bytes, which are UTF-8 with or without a mark, else Windows-1252.
LM_HOST_API std::string scriptText(std::string_view bytes);

/// Runs a script in the document that is active at each of its lines. Each command and each expression is one
/// undo step. A failure is reported, the rest of its line is passed over, and the script goes on; so does
/// what an exception of a called function ends. The script ends early with the command _QUIT.
class LM_HOST_API ScriptRunner {
public:
    /// `text` in UTF-8.
    ScriptRunner(std::string text, ScriptOptions options);
    ~ScriptRunner();
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;

    /// Runs the script to its end; gives the number of failures.
    std::size_t run();
    /// Whether one of the failures was that of a command that couldn't write the drawing's file.
    bool hasFailedSave() const { return m_hasFailedSave; }

private:
    void runExpression(const std::string& text, int line);
    void runWord(const std::string& name, int line);
    void runFunction(CHostDocument& document, const std::string& name);
    void fail(int line, const std::string& what);
    template<class Act>
    void guarded(int line, Act act);

    std::unique_ptr<ScriptReader> m_reader;
    ScriptOptions m_options;
    std::size_t m_failures = 0;
    bool m_hasFailedSave = false;
};

/// One line about the exception that is being handled: its text, or that it has none. To be called in a
/// handler.
LM_HOST_API std::string describeCurrentException();

} // namespace lm::host
