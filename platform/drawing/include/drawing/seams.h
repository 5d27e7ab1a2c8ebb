// SPDX-License-Identifier: MIT
// For tests: ways to reach what the ordinary database never does.
#pragma once

#include "drawing/objectid.h"

namespace lm::drawing {

/// Lets one object of the process refuse to be opened for write, as another platform's might: openObject
/// gives null then. The null id ends it.
LM_DRAWING_API void refuseWriting(OdDbObjectId id) noexcept;

} // namespace lm::drawing
