// SPDX-License-Identifier: MIT
// What the functions about files share.
#pragma once

#include "filevalue.h"
#include "machine.h"

#include <filesystem>

namespace lm::host::lisp {

/// An open file among the arguments; raises LispError for a closed one and for any other value.
FileValue& fileAt(Machine& machine, Arguments arguments, std::size_t index);

/// Writes to the file at an index, or to the console where no file is given.
void writeTo(Machine& machine, Arguments arguments, std::size_t index, WideView text);

/// A path of the program as the operating system takes it. Raises LispError where the session has no access
/// to files.
std::filesystem::path nativeName(Machine& machine, const WideString& name);

/// A path of the operating system as text.
WideString nameOf(const std::filesystem::path& path);

/// A file by its name: as it stands, and else, for a name without a folder, beside the drawing. Empty when
/// there is none.
std::filesystem::path findFile(Machine& machine, const WideString& name);

} // namespace lm::host::lisp
