// SPDX-License-Identifier: MIT
// partsNear: which parts of a block may touch a box of the plane, without a walk over the block.
//
//     std::vector<const OdDbEntity*> near;
//     if (lm::drawing::partsNear(space, {0, 0, 10, 10}, near))
//         for (const OdDbEntity* part : near) ... look at the part itself ...
#pragma once

#include "drawing/entity.h"

#include <vector>

namespace lm::drawing {

/// A box in plain x and y.
struct PlaneBox {
    double minX, minY, maxX, maxY;
};

/// Gives the parts of a block that may touch a box: live ones, in drawing order. Every part is among them
/// whose shape along z touches the box, or whose extents do; others may be, and the caller looks at them. A
/// part whose place can't be told from the drawing alone is always among them; one without known extents
/// isn't. They are the database's own, as a PartWalk shows them: they hold until it changes.
///
/// The first call for a block measures all its parts, which reads them, and costs as much as some ten walks;
/// from then on the database measures only what changed, at the next call, and keeps some 50 bytes for each
/// part. A database that is never asked keeps nothing. A null id, or one that isn't valid, has no parts.
///
/// False, with nothing given, when this can't be told: for a box with a number that isn't one, and when
/// memory runs out. A walk over the block still can.
LM_DRAWING_API bool partsNear(OdDbObjectId block, const PlaneBox& box, std::vector<const OdDbEntity*>& near);

/// Whether the database keeps such knowledge of a block now. For tests.
LM_DRAWING_API bool keepsPlacesOf(OdDbObjectId block) noexcept;

} // namespace lm::drawing
