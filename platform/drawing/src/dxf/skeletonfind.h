// SPDX-License-Identifier: MIT
// Which entries of a drawing are those that every written file gets (see skeleton.h), and nothing more:
// nobody put them there and nobody has changed them. Listings leave them out, so that a drawing shows the
// same before and after it was saved.
#pragma once

#include "model/databasedata.h"

#include <unordered_set>

namespace lm::drawing {

struct SkeletonParts {
    std::unordered_set<const Node*> entries;
    /// Whether the classes of the file, if there are any, are only those of such entries.
    bool onlyItsClasses = false;
};

/// Looks for them. They are known by their layouts, which no other program makes like that.
SkeletonParts findSkeleton(const DatabaseData& data);

} // namespace lm::drawing
