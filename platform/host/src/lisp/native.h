// SPDX-License-Identifier: MIT
// How a function of the host becomes a function of LISP: one row of a table.
//
//     Value twice(Machine& machine, Arguments arguments) {
//         return Value::real(2 * machine.numberAt(arguments, 0));
//     }
//     const Builtin kRows[] = {{"TWICE", 1, 1, &twice}};      machine.add(kRows);
#pragma once

#include "value.h"

#include <span>

namespace lm::host::lisp {

class Machine;

/// The arguments of a call, evaluated. The function may move from them.
using Arguments = std::span<Value>;

/// A function of the host. It raises LispError (Machine::fail...) for what the program did wrong. Any other
/// exception passes through the evaluation to whoever asked for it.
using NativeFunction = Value (*)(Machine& machine, Arguments arguments);

/// A form whose arguments come unevaluated: the rest of the expression behind the name.
using SpecialForm = Value (*)(Machine& machine, const Value& rest);

/// The greatest number of arguments of a function that takes any number.
inline constexpr int kAny = -1;

/// A row of a table of functions. It must live as long as the machine.
struct Builtin {
    const char* name; ///< ASCII, in capitals
    int minimum;      ///< fewest arguments
    int maximum;      ///< most arguments, or kAny
    NativeFunction function;
    SpecialForm form = nullptr; ///< in place of the function
};

// The tables of the dialect, one for each subject.
std::span<const Builtin> controlFunctions();
std::span<const Builtin> specialForms();
std::span<const Builtin> catchFunctions();
std::span<const Builtin> compareFunctions();
std::span<const Builtin> listFunctions();
std::span<const Builtin> partFunctions();
std::span<const Builtin> searchFunctions();
std::span<const Builtin> sortFunctions();
std::span<const Builtin> arithmeticFunctions();
std::span<const Builtin> bitFunctions();
std::span<const Builtin> geometryFunctions();
std::span<const Builtin> unitFunctions();
std::span<const Builtin> textFunctions();
std::span<const Builtin> textSearchFunctions();
std::span<const Builtin> outputFunctions();
std::span<const Builtin> fileFunctions();
std::span<const Builtin> fileNameFunctions();
std::span<const Builtin> settingFunctions();

// The tables of the host's part.
std::span<const Builtin> entityFunctions();
std::span<const Builtin> entityMakers();
std::span<const Builtin> selectionFunctions();
std::span<const Builtin> tableFunctions();
std::span<const Builtin> dictionaryFunctions();
std::span<const Builtin> questionFunctions();
std::span<const Builtin> commandFunctions();

} // namespace lm::host::lisp
