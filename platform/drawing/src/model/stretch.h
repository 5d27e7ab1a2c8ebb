// SPDX-License-Identifier: MIT
// Transforms that classes refuse, since circles become ellipses by them and right angles lean: what shows the
// same.
#pragma once

#include "drawing/blockreference.h"

namespace lm::drawing {

/// Moves a text by any transform. A leaning becomes part of the oblique angle; what is mirrored stays
/// readable.
void stretchText(OdDbText& text, const OdGeMatrix3d& matrix);

/// Moves a multi-line text by any transform.
void stretchMText(OdDbMText& text, const OdGeMatrix3d& matrix);

/// Moves a text by any transform, and its multi-line form where it has one.
void stretchWithLines(OdDbText& text, const OdGeMatrix3d& matrix);

/// Turns a text over that lies flat in its block: it shows its back in the same place. Of a reference these
/// are the attributes; other entities stay. A reference that turns its block upside down shows the texts
/// from the front all the same, and so they are turned over before they move with it.
void turnTextOver(OdDbEntity& entity);

/// How far the copy of an array in a column and a row, counted from 0, stands from the first one.
OdGeVector3d arrayShift(const OdDbBlockReference& reference, int column, int row);

/// Places a reference so that blockTransform becomes `place`, as far as a reference can: its axes keep
/// directions and lengths along the x axis, and a leaning of the others is dropped. Attributes move by
/// `attributes`.
void placeReference(OdDbBlockReference& reference, const OdGeMatrix3d& place, const OdGeMatrix3d& attributes);

/// Adds what shows an entity outside any database under a transform: itself where it can be moved, else
/// others.
void addPieces(OdSmartPtr<OdDbEntity> entity, const OdDbDatabase* database, const OdGeMatrix3d& matrix,
               OdArray<OdSmartPtr<OdDbEntity>>& pieces);

} // namespace lm::drawing
