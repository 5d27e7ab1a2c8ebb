// SPDX-License-Identifier: MIT
#include "model/transform.h"

namespace lm::drawing {

namespace {

constexpr double kTolerance = 1e-9;

/// The inverse of a matrix whose columns are unit vectors at right angles.
OdGeMatrix3d transposed(const OdGeMatrix3d& m) {
    OdGeMatrix3d t;
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) t.entry[i][k] = m.entry[k][i];
    return t;
}

bool near(double a, double b, double scale) {
    return std::fabs(a - b) <= kTolerance * (scale > 1 ? scale : 1);
}

} // namespace

PlaneTransform::PlaneTransform(const OdGeMatrix3d& matrix, const OdGeVector3d& normal) {
    const OdGeMatrix3d before = OdGeMatrix3d::planeToWorld(normal);
    const OdGeVector3d x = matrix * (before * OdGeVector3d::kXAxis);
    const OdGeVector3d y = matrix * (before * OdGeVector3d::kYAxis);
    const OdGeVector3d z = matrix * (before * OdGeVector3d::kZAxis);
    const double lx = x.length(), ly = y.length(), lz = z.length();
    m_factor = lx;
    m_uniform = lx > 0 && near(lx, ly, lx) && near(lx, lz, lx) && near(x.dotProduct(y), 0, lx * lx) &&
                near(x.dotProduct(z), 0, lx * lx) && near(y.dotProduct(z), 0, lx * lx);
    m_normal = lz > 0 ? z * (1 / lz) : normal;
    m_map = transposed(OdGeMatrix3d::planeToWorld(m_normal)) * matrix * before;
}

double PlaneTransform::angle(double radians) const {
    const OdGeVector3d turned = m_map * OdGeVector3d(std::cos(radians), std::sin(radians), 0);
    return std::atan2(turned.y, turned.x);
}

} // namespace lm::drawing
