// SPDX-License-Identifier: MIT
// The commands `eval` and `run`: LISP in a drawing's session, and scripts of commands and expressions.
#pragma once

#include "options.h"

#include "host/tools.h"

#include <functional>

namespace lmhost {

/// Takes a line for standard error.
using ErrorSink = std::function<void(const std::string&)>;

/// Runs `eval FILE EXPRESSION [--save OUT] [--time-limit SECONDS]`: evaluates, writes what the expression
/// prints and then its value on a line of its own. After a failure nothing is saved. Gives the exit code: 0
/// done, 2 wrong usage, 4 OUT can't be written, 5 the expression failed.
int runEval(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out,
            const ErrorSink& error);

/// Runs `run FILE|--new SCRIPT [--save OUT] [--events OUT] [--time-limit SECONDS]` in the active document.
/// The script goes on after a failure, and what it made is saved all the same. Gives the exit code: 0 done, 2
/// wrong usage, 3 SCRIPT can't be read, 4 an output can't be written, 5 something in the script failed.
int runScript(const CommandLine& line, lm::host::ToolOutput& out, const ErrorSink& error);

} // namespace lmhost
