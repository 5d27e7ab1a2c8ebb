// SPDX-License-Identifier: MIT
// How far an entity reaches in the plane: a box that holds both its shape and its extents.
#pragma once

#include "model/boxtree.h"
#include "model/extents.h"

namespace lm::drawing {

/// Finds boxes of many entities; nobody may change the drawing meanwhile.
class Reach {
public:
    Reach();
    /// The box of an entity: without a point for one without known extents, and everything for one whose
    /// place hangs on more than its drawing tells. Raises nothing.
    FlatBox of(const OdDbEntity& entity) noexcept;
    /// What the blocks show and the last entity showed, as far as it was looked at since the last clear.
    std::vector<BlockSource>& sources() noexcept { return m_sources; }

private:
    FlatBox ofExtents(const OdDbEntity& entity);

    std::vector<BlockSource> m_sources;
    ExtentsFinder m_finder;
};

} // namespace lm::drawing
