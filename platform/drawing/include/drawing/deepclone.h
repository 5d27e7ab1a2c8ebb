// SPDX-License-Identifier: MIT
// Deep clones that are changed before anybody hears of them.
//
//     OdDbIdMapping pairs;
//     lm::drawing::deepCloneChanged(*db, ids, owner, pairs, [&] { ... the clones stand in pairs ... });
#pragma once

#include "drawing/database.h"

#include <functional>

namespace lm::drawing {

/// As OdDbDatabase::deepCloneObjects, but calls `change` when the clones are made and their references
/// re-pointed: they are new and open for write then, so that reactors hear of them once, as they are
/// afterwards. What `change` raises passes; the clones stay, and reactors hear of them all the same.
LM_DRAWING_API void deepCloneChanged(OdDbDatabase& database, const OdArray<OdDbObjectId>& ids,
                                     OdDbObjectId owner, OdDbIdMapping& mapping,
                                     const std::function<void()>& change);

} // namespace lm::drawing
