// SPDX-License-Identifier: MIT
// What a transform does to things that lie in a plane given by a normal: the object coordinate system of the
// DXF reference.
#pragma once

#include "drawing/geometry.h"

namespace lm::drawing {

class PlaneTransform {
public:
    PlaneTransform(const OdGeMatrix3d& matrix, const OdGeVector3d& normal);

    /// Whether lengths change by one factor in all directions, and angles stay.
    bool isUniform() const { return m_uniform; }
    double factor() const { return m_factor; }
    /// The normal behind the transform.
    OdGeVector3d normal() const { return m_normal; }
    /// A point of the old plane's system in the new plane's system.
    OdGePoint3d point(const OdGePoint3d& p) const { return m_map * p; }
    OdGeVector3d vector(const OdGeVector3d& v) const { return m_map * v; }
    /// A direction angle of the old system in the new one, radians.
    double angle(double radians) const;

private:
    OdGeMatrix3d m_map;
    OdGeVector3d m_normal;
    double m_factor = 1;
    bool m_uniform = true;
};

} // namespace lm::drawing
