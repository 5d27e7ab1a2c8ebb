// SPDX-License-Identifier: MIT
// A look at a library file before the system maps it: the system's loader ends the process on a file that was
// cut off, and waits for ever on one that is no regular file.
#pragma once

#include <string>

namespace lm::host {

/// Why a file can't be a whole shared library of this machine, or an empty text when it can.
std::string libraryDefect(const std::string& path);

} // namespace lm::host
