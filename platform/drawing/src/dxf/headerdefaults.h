// SPDX-License-Identifier: MIT
// The header variables of a new drawing: metric, nothing drawn yet.
#pragma once

#include "dxf/outgroups.h"

namespace lm::drawing {

/// The variables, each beginning with its name (9), in the order of the DXF reference. $ACADVER,
/// $DWGCODEPAGE, $INSBASE, $CLAYER and $HANDSEED aren't among them: they are the database's own.
OutGroups newDrawingHeader();

} // namespace lm::drawing
