// SPDX-License-Identifier: MIT
// Whether entities touch a box of the plane.
#pragma once

#include "drawing/entity.h"
#include "drawing/nearparts.h"

namespace lm::host {

/// A box in plain x and y.
class Box {
public:
    /// From two corners in any order.
    Box(const OdGePoint3d& first, const OdGePoint3d& second);

    /// The box with the bit of room that touching has.
    lm::drawing::PlaneBox bounds() const { return {m_minX, m_minY, m_maxX, m_maxY}; }

    /// Whether the entity touches or crosses the box: lines, polylines, circles and arcs by their shape as it
    /// is seen along z, other entities by their extents. False for an entity without known extents.
    bool touches(const OdDbEntity& entity) const;
    /// Whether the entity's extents lie in the box. False for an entity without known extents.
    bool holds(const OdDbEntity& entity) const;

    bool holds(double x, double y) const { return x >= m_minX && x <= m_maxX && y >= m_minY && y <= m_maxY; }
    bool touchesSegment(double x1, double y1, double x2, double y2) const;
    /// A part of an ellipse: centre + a cos t + b sin t for t from `start` over `sweep`, which is at least 0.
    bool touchesArc(const OdGePoint3d& center, const OdGeVector3d& a, const OdGeVector3d& b, double start,
                    double sweep) const;

private:
    bool touchesExtents(const OdDbEntity& entity) const;

    double m_minX, m_minY, m_maxX, m_maxY;
};

} // namespace lm::host
