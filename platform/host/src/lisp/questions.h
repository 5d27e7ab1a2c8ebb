// SPDX-License-Identifier: MIT
// Questions of programs, which a script answers.
#pragma once

#include "machine.h"

namespace lm::host::lisp {

/// The next answer. Raises LispError, naming the function that asks, when there is none.
WideString takeAnswer(Machine& machine, std::string_view function);

} // namespace lm::host::lisp
