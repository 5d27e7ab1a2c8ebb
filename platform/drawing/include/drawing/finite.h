// SPDX-License-Identifier: MIT
// Numbers that no drawing can hold.
#pragma once

#include "drawing/object.h"

namespace lm::drawing {

/// Whether all numbers of an object of a drawing, its parts included, can be written: none is infinite or no
/// number. Extended data isn't looked at.
LM_DRAWING_API bool isFinite(const OdDbObject& object);

} // namespace lm::drawing
