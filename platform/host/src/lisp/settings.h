// SPDX-License-Identifier: MIT
// Variables of the session and of the drawing, as getvar and setvar know them.
#pragma once

#include "machine.h"

namespace lm::host::lisp {

/// The value of an integer variable of the session, named in capitals.
int integerVariable(Machine& machine, std::string_view name);

} // namespace lm::host::lisp
