// SPDX-License-Identifier: MIT
// What this computer and the user of this process are called.
#pragma once

#include "system/export.h"
#include "system/wide.h"

namespace lm::system {

/// The host's name up to its first point, and at most 15 units of it; empty when the system doesn't tell.
LM_SYSTEM_API WideString computerName();

/// The login name of the user whom the process acts for; empty when the system doesn't tell, and for a name
/// of more than 99 units.
LM_SYSTEM_API WideString userName();

} // namespace lm::system
