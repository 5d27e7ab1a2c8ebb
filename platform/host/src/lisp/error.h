// SPDX-License-Identifier: MIT
// LispError: what goes wrong in a LISP program. It exists inside an evaluation only; the boundary turns it
// into one line.
#pragma once

#include "system/wide.h"

#include <string_view>

namespace lm::host::lisp {

/// An error of the program that is being evaluated. It is no std::exception, so that nobody who catches those
/// takes it for one.
struct LispError {
    explicit LispError(WideString text) : message(std::move(text)) {}
    /// From an ASCII text of the code.
    explicit LispError(std::string_view text) : message(system::widen(text)) {}

    WideString message;
    WideString source;     ///< name of the file that was being loaded, empty for the text of the evaluation
    int line = 0;          ///< from 1; 0 while nobody has said where
    int column = 0;        ///< from 1
    bool catchable = true; ///< false for interrupts and the time limit, which no program may hold back
    bool handled = false;  ///< whether `*error*` has been told
};

} // namespace lm::host::lisp
