// SPDX-License-Identifier: MIT
// The printer: values as text, as `prin1` shows them (texts in quotes, with escapes) or as `princ` does.
#pragma once

#include "machine.h"

namespace lm::host::lisp {

enum class Style { kPrin1, kPrinc };

/// A value as text. Raises LispError when the stack, the time or the memory doesn't suffice.
WideString printed(Machine& machine, const Value& value, Style style);

/// The beginning of a value as prin1 shows it, for messages: cut with "..." and never raising.
WideString printedShort(Machine& machine, const Value& value);

/// A real with six significant digits, always recognisable as one: "3.0", "1.0e+06".
WideString printedReal(double number);

} // namespace lm::host::lisp
