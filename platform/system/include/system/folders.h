// SPDX-License-Identifier: MIT
// Where things lie on this machine: the folder that all users share, and the running program.
#pragma once

#include "system/export.h"
#include "system/wide.h"

namespace lm::system {

/// The folder for data that all users of the machine share: what the environment variable LM_COMMON_APPDATA
/// tells, in UTF-8, or "/var/lib" when it is unset or empty. It need not exist.
LM_SYSTEM_API WideString commonDataFolder();

/// The full path of the running program's file, whatever module asks. Throws std::system_error with the
/// text "Failed to get executable path" and the system's code when the system doesn't tell.
LM_SYSTEM_API WideString programPath();

} // namespace lm::system
