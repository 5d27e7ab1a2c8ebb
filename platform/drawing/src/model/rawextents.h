// SPDX-License-Identifier: MIT
// Boxes of entities of kinds that the database doesn't read, from the numbers in their groups. Source: the
// DXF reference, entities.
#pragma once

#include "model/node.h"

#include "drawing/entity.h"
#include "drawing/geometry.h"

namespace lm::drawing {

/// Adds the box of an entity under a transform; false, with nothing added, for a kind that tells no points.
bool addRawShape(const OdDbUnreadEntity& entity, const OdGeMatrix3d& matrix, OdGeExtents3d& extents);

/// The block that shows what an entity looks like, with its transform. Null for an entity without one, and
/// for a block that shows nothing.
Node* shownBlockOf(const OdDbUnreadEntity& entity, OdGeMatrix3d& own);

} // namespace lm::drawing
