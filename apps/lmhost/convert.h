// SPDX-License-Identifier: MIT
// The command `convert`: a drawing in another version or form.
#pragma once

#include "options.h"

#include "host/tools.h"

#include <functional>

namespace lmhost {

/// Runs `convert IN OUT [--binary] [--version R2000|R2004|R2007|R2010|R2013|R2018]`: saves the drawing under
/// OUT, as text of R2018 unless told otherwise, and prints what was kept without being read, by kind. Gives
/// the exit code: 0 done, 2 wrong usage, 4 OUT can't be written. `error` takes a line for standard error.
int runConvert(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out,
               const std::function<void(const std::string&)>& error);

} // namespace lmhost
