// SPDX-License-Identifier: MIT
// LispSession: the LISP evaluator of one document. Programs and compiled modules share its symbols.
//
//     LispSession& lisp = document->getAPI()->lisp();
//     const LispOutcome outcome = lisp.evaluate(text);
//     if (!outcome.ok) report(outcome.error);
#pragma once

#include "host/resbuf.h"
#include "host/session.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class CHostAPI;

namespace lm::host {

namespace lisp {
class Machine;
}

/// How an evaluation ended.
struct LispOutcome {
    bool ok = true;
    lm::WideString
        value; ///< the last expression's value as `prin1` shows it; empty for (princ) and after an error
    lm::WideString error; ///< one line without its end: what failed and where; empty when all went well
    int line = 0;         ///< where the expression that failed begins, from 1; 0 when all went well
    int column = 0;       ///< the same within the line, in units from 1
};

/// Runs a command of the host for the function `command`: its arguments as records, texts as RTSTR, points as
/// RTPOINT, other lists between RTLB and RTLE, a selection set as a list of entity names. Null for a call
/// without arguments, which cancels. RTNORM tells that the command was done. The records stay the caller's.
using CommandHook = std::function<int(const hst_resbufW* arguments)>;

/// The LISP session of a document: one namespace of symbols that lives as long as the document is open.
///
/// What is wrong with a program never leaves `evaluate` but as the outcome's error line, and the session
/// lives on: syntax errors, wrong arguments, endless loops (with a time limit), recursion without end, more
/// memory than allowed. An exception of a C++ function that the program called passes through `evaluate`
/// unchanged, and the session lives on as well. Belongs to the host's main thread, but for `interrupt`.
/// Evaluations nest: a called C++ function may evaluate.
class LM_HOST_API LispSession {
public:
    /// A session for the document of an interface, which must outlive it.
    explicit LispSession(CHostAPI& api);
    ~LispSession();
    LispSession(const LispSession&) = delete;
    LispSession& operator=(const LispSession&) = delete;

    /// Reads and evaluates all expressions of a text, one after the other; an error ends it. Before that,
    /// `*error*` is told when it holds a function.
    LispOutcome evaluate(lm::WideView text);
    /// Whether a program defined a command of this name, in any case: a function C:NAME.
    bool hasCommand(lm::WideView name) const;
    /// Runs the command of a program.
    LispOutcome runCommand(lm::WideView name);
    /// Evaluations in progress, each in the other.
    int depth() const noexcept;

    /// Reads a symbol by its exact name: RTNORM and a chain that the caller owns, or RTERROR and null for a
    /// symbol that nothing was stored in, that a program only mentions, or that holds a function. Integers
    /// come as RTSHORT when they fit 16 bits and as RTLONG else, reals as RTREAL, texts as RTSTR, nil and the
    /// empty list as RTNIL, T as RTT, lists between RTLB and RTLE with RTDOTE before what follows a dot,
    /// other symbols as RTSTR with their name, entity names as RTENAME, other values as RTNIL.
    int read(lm::WideView name, hst_resbufW*& result);
    /// Stores a copy of a chain in the symbol of an exact name, which is made when it is new: several records
    /// make a list, null stands for nil. RTERROR, with nothing changed, for an empty name, for T and NIL, for
    /// a chain whose lists don't close, and without memory.
    int store(lm::WideView name, const hst_resbufW* list);

    /// Longest duration of each outermost evaluation from now on in seconds; 0 for none, which is the
    /// default.
    void setTimeLimit(double seconds) noexcept;
    /// Most memory that values may take, in bytes; 256 MiB unless set. Each outermost evaluation may take at
    /// least one more MiB than there is, so that a full session can be emptied.
    void setMemoryCeiling(std::size_t bytes) noexcept;
    /// Bytes that values and symbols take now.
    std::size_t memoryInUse() const noexcept;
    /// Ends the evaluation in progress with an error; does nothing when there is none. On any thread.
    void interrupt() noexcept;

    /// Where printing goes; an empty function for the console, which is the default. Gives the sink before.
    TextSink setOutput(TextSink sink);
    /// Adds the answer to a question that a program will ask (getpoint and its like), in the order of asking.
    /// An empty answer is what the Enter key alone gives. A question without an answer is an error.
    void pushAnswer(lm::WideView text);
    /// Takes all answers back that no question has taken.
    void clearAnswers();
    std::size_t answersLeft() const noexcept;
    /// Sets what `command` calls; an empty function makes `command` an error. Gives the hook before.
    CommandHook setCommandHook(CommandHook hook);
    /// Whether programs may open, look for and change files; they may unless set otherwise.
    void setFilesAllowed(bool allowed) noexcept;

    /// Names of the functions that every session has, in alphabetical order.
    std::vector<std::string> functionNames() const;
    /// The machine, for the host's own functions.
    lisp::Machine& machine() noexcept { return *m_machine; }

private:
    std::unique_ptr<lisp::Machine> m_machine;
};

} // namespace lm::host
