// SPDX-License-Identifier: MIT
// The command `check`: the defects of a drawing, each with its number, and a mended copy on request.
#pragma once

#include "options.h"

#include "host/tools.h"

#include <functional>

namespace lmhost {

/// Runs `check FILE [--json] [--fix OUT]`: lists the defects, and with --fix saves the drawing under OUT with
/// those mended that can be without losing anything; OUT is saved also where nothing was found. Gives the
/// exit code: 0 nothing found, 1 defects found, 2 wrong usage, 4 OUT can't be written. `error` takes a line
/// for standard error.
int runCheck(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out,
             const std::function<void(const std::string&)>& error);

} // namespace lmhost
