// SPDX-License-Identifier: MIT
// Where things lie on this machine: the folder that all users share, the one for temporary files, and the
// running program. A name that is no UTF-8 comes as pathText gives it.
#pragma once

#include "system/export.h"
#include "system/wide.h"

namespace lm::system {

/// The folder for data that all users of the machine share: what the environment variable LM_COMMON_APPDATA
/// tells, in UTF-8, or "/var/lib" when it is unset or empty. It need not exist.
LM_SYSTEM_API WideString commonDataFolder();

/// The folder for temporary files: what the environment variable TMPDIR tells, cleaned of ".", ".." and
/// repeated separators, or "/tmp" when it is unset or empty. It ends in "/" and need not exist.
LM_SYSTEM_API WideString temporaryFolder();

/// The full path of the running program's file, whatever module asks. Throws std::system_error with the
/// text "Failed to get executable path" and the system's code when the system doesn't tell.
LM_SYSTEM_API WideString programPath();

/// Makes programPath fail with this system error until it is called with 0. For tests.
LM_SYSTEM_API void failProgramPath(int error) noexcept;

} // namespace lm::system
