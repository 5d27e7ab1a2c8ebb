// SPDX-License-Identifier: MIT
// Points, vectors, scale factors and the 4 by 4 matrix, all plain doubles in drawing units.
#pragma once

#include "drawing/export.h"

#include <cmath>

/// A direction or a difference of points.
struct LM_DRAWING_API OdGeVector3d {
    double x = 0, y = 0, z = 0;
    OdGeVector3d() = default;
    OdGeVector3d(double ax, double ay, double az) : x(ax), y(ay), z(az) {}
    static const OdGeVector3d kXAxis, kYAxis, kZAxis;

    double length() const { return std::sqrt(x * x + y * y + z * z); }
    double dotProduct(const OdGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    OdGeVector3d crossProduct(const OdGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    /// The unsigned angle between two vectors in radians, 0 to pi, from atan2 of the cross product's length
    /// and the dot product; 0 when either vector is null.
    double angleTo(const OdGeVector3d& v) const;
    friend OdGeVector3d operator*(const OdGeVector3d& v, double f) { return {v.x * f, v.y * f, v.z * f}; }
    friend OdGeVector3d operator+(const OdGeVector3d& a, const OdGeVector3d& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend OdGeVector3d operator-(const OdGeVector3d& a, const OdGeVector3d& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend OdGeVector3d operator-(const OdGeVector3d& v) { return {-v.x, -v.y, -v.z}; }
    friend bool operator==(const OdGeVector3d&, const OdGeVector3d&) = default;
};

/// A point in the plane.
struct LM_DRAWING_API OdGePoint2d {
    double x = 0, y = 0;
    OdGePoint2d() = default;
    OdGePoint2d(double ax, double ay) : x(ax), y(ay) {}
    double distanceTo(const OdGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
    friend OdGePoint2d operator+(const OdGePoint2d& a, const OdGePoint2d& b) {
        return {a.x + b.x, a.y + b.y};
    }
    friend OdGePoint2d operator-(const OdGePoint2d& a, const OdGePoint2d& b) {
        return {a.x - b.x, a.y - b.y};
    }
    friend bool operator==(const OdGePoint2d&, const OdGePoint2d&) = default;
};

/// A point in space.
struct LM_DRAWING_API OdGePoint3d {
    double x = 0, y = 0, z = 0;
    OdGePoint3d() = default;
    OdGePoint3d(double ax, double ay, double az) : x(ax), y(ay), z(az) {}
    static const OdGePoint3d kOrigin;

    double distanceTo(const OdGePoint3d& p) const { return (*this - p).length(); }
    OdGeVector3d asVector() const { return {x, y, z}; }
    friend OdGeVector3d operator-(const OdGePoint3d& a, const OdGePoint3d& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend OdGePoint3d operator+(const OdGePoint3d& a, const OdGeVector3d& v) {
        return {a.x + v.x, a.y + v.y, a.z + v.z};
    }
    friend OdGePoint3d operator-(const OdGePoint3d& a, const OdGeVector3d& v) {
        return {a.x - v.x, a.y - v.y, a.z - v.z};
    }
    friend bool operator==(const OdGePoint3d&, const OdGePoint3d&) = default;
};

/// A box along the axes; empty until a point was added.
class LM_DRAWING_API OdGeExtents3d {
public:
    bool isEmpty() const { return m_min.x > m_max.x; }
    OdGePoint3d minPoint() const { return m_min; }
    OdGePoint3d maxPoint() const { return m_max; }
    void addPoint(const OdGePoint3d& p) {
        m_min = {std::fmin(m_min.x, p.x), std::fmin(m_min.y, p.y), std::fmin(m_min.z, p.z)};
        m_max = {std::fmax(m_max.x, p.x), std::fmax(m_max.y, p.y), std::fmax(m_max.z, p.z)};
    }
    void addExtents(const OdGeExtents3d& other) {
        if (other.isEmpty()) return;
        addPoint(other.m_min);
        addPoint(other.m_max);
    }

private:
    OdGePoint3d m_min{HUGE_VAL, HUGE_VAL, HUGE_VAL};
    OdGePoint3d m_max{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
};

/// Scale factors of a block reference; negative ones mirror.
struct LM_DRAWING_API OdGeScale3d {
    double sx = 1, sy = 1, sz = 1;
    OdGeScale3d() = default;
    OdGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}
    friend bool operator==(const OdGeScale3d&, const OdGeScale3d&) = default;
};

/// An affine transform: row-major, the translation in the last column.
class LM_DRAWING_API OdGeMatrix3d {
public:
    /// The identity.
    OdGeMatrix3d();
    static OdGeMatrix3d translation(const OdGeVector3d& by);
    /// Rotation about the z axis through the origin, in radians, counter-clockwise.
    static OdGeMatrix3d rotationZ(double angle);
    static OdGeMatrix3d scaling(const OdGeScale3d& by);
    /// From the object coordinate system of an extrusion direction to the world, by the arbitrary axis rule
    /// of the DXF reference.
    static OdGeMatrix3d planeToWorld(const OdGeVector3d& normal);

    double entry[4][4];

    friend LM_DRAWING_API OdGeMatrix3d operator*(const OdGeMatrix3d& a, const OdGeMatrix3d& b);
    friend LM_DRAWING_API OdGePoint3d operator*(const OdGeMatrix3d& m, const OdGePoint3d& p);
    friend LM_DRAWING_API OdGeVector3d operator*(const OdGeMatrix3d& m, const OdGeVector3d& v);
};
