// SPDX-License-Identifier: MIT
// Blocks that show what entities look like that the database doesn't read: the pictures of dimensions and of
// tables, which name their block.
#pragma once

#include "model/rawgroups.h"

#include "drawing/entity.h"
#include "drawing/geometry.h"

namespace lm::drawing {

/// Whether a kind is one of the kinds of dimensions.
bool isDimension(std::string_view kind) noexcept;

/// Whether entities of a kind show a picture: dimensions and tables.
bool showsPicture(std::string_view kind) noexcept;

/// The block that a dimension or a table names in a drawing; null for another kind, and when it isn't there.
Node* pictureBlock(const RawGroups& raw, const DatabaseData& data);

/// The block that a dimension has for itself: the one that it names, or, when others show that one too, a new
/// copy of it. Null when it names none. The entity is in a database.
Node* ownPictureOf(const OdDbUnreadEntity& dimension, const RawGroups& raw);

/// Moves the entities of a picture.
void movePicture(Node& block, const OdGeMatrix3d& matrix);

} // namespace lm::drawing
