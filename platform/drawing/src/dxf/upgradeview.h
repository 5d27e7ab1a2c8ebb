// SPDX-License-Identifier: MIT
// The view of a viewport in paper space: up to R14 in extended data (ACAD, MVIEW), in groups since R2000.
#pragma once

#include "dxf/recordnames.h"

namespace lm::drawing {

/// Adds to the body of a VIEWPORT the groups for the view that its extended data in `tail` holds. The
/// extended data stays. A viewport that has such groups already, or no whole view, stays as it is.
void addView(const RecordNames& layers, OutGroups& body, const OutGroups& tail);

} // namespace lm::drawing
