// SPDX-License-Identifier: MIT
// When reactors are told: whether they are being told now, and telling them what would come later.
//
//     if (lm::drawing::isTelling(*database)) ... it must not end now ...
#pragma once

#include "drawing/export.h"

class OdDbDatabase;

namespace lm::drawing {

/// Whether a reactor of the database is being called now, whatever for. Who called it goes on with the
/// database afterwards, so that its owner must not end it before.
LM_DRAWING_API bool isTelling(const OdDbDatabase& database) noexcept;

/// Tells reactors what objects that somebody still holds open would tell at their closing, as the end of a
/// transaction does. An exception of a reactor keeps no other object from being told of; the first one
/// passes.
LM_DRAWING_API void tellWaiting(OdDbDatabase& database);

} // namespace lm::drawing
