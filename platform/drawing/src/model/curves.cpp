// SPDX-License-Identifier: MIT
#include "drawing/curves.h"

#include "base/rxclass.h"
#include "model/transform.h"

LM_RX_DEFINE(OdDbPoint, OdDbEntity)
LM_RX_DEFINE(OdDbLine, OdDbEntity)
LM_RX_DEFINE(OdDbCircle, OdDbEntity)
LM_RX_DEFINE(OdDbArc, OdDbEntity)
LM_RX_DEFINE(OdDbEllipse, OdDbEntity)
LM_RX_DEFINE(OdDbPolyline, OdDbEntity)

using lm::drawing::PlaneTransform;

namespace {

/// What a transform makes of lengths along the z axis, which thicknesses of points and lines are.
double heightFactor(const OdGeMatrix3d& matrix) {
    return (matrix * OdGeVector3d::kZAxis).length();
}

} // namespace

void OdDbPoint::setPosition(const OdGePoint3d& point) {
    beginChange();
    m_position = point;
}

OdResult OdDbPoint::transformBy(const OdGeMatrix3d& matrix) {
    beginChange();
    m_position = matrix * m_position;
    m_thickness *= heightFactor(matrix);
    return eOk;
}

void OdDbLine::setStartPoint(const OdGePoint3d& point) {
    beginChange();
    m_start = point;
}

void OdDbLine::setEndPoint(const OdGePoint3d& point) {
    beginChange();
    m_end = point;
}

OdResult OdDbLine::transformBy(const OdGeMatrix3d& matrix) {
    beginChange();
    m_start = matrix * m_start;
    m_end = matrix * m_end;
    m_thickness *= heightFactor(matrix);
    return eOk;
}

void OdDbCircle::setCenter(const OdGePoint3d& point) {
    beginChange();
    m_center = point;
}

void OdDbCircle::setRadius(double radius) {
    beginChange();
    m_radius = radius;
}

void OdDbCircle::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

OdResult OdDbCircle::transformBy(const OdGeMatrix3d& matrix) {
    const PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    m_center = plane.point(m_center);
    m_radius *= plane.factor();
    m_thickness *= plane.factor();
    m_normal = plane.normal();
    return eOk;
}

void OdDbArc::setCenter(const OdGePoint3d& point) {
    beginChange();
    m_center = point;
}

void OdDbArc::setRadius(double radius) {
    beginChange();
    m_radius = radius;
}

void OdDbArc::setStartAngle(double radians) {
    beginChange();
    m_startAngle = radians;
}

void OdDbArc::setEndAngle(double radians) {
    beginChange();
    m_endAngle = radians;
}

void OdDbArc::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

OdResult OdDbArc::transformBy(const OdGeMatrix3d& matrix) {
    const PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    const OdGeVector3d x = plane.vector(OdGeVector3d::kXAxis), y = plane.vector(OdGeVector3d::kYAxis);
    const bool mirrored =
        x.crossProduct(y).z < 0; // an arc runs counter-clockwise, so a mirrored one changes ends
    const double start = plane.angle(m_startAngle), end = plane.angle(m_endAngle);
    m_center = plane.point(m_center);
    m_radius *= plane.factor();
    m_thickness *= plane.factor();
    m_startAngle = mirrored ? end : start;
    m_endAngle = mirrored ? start : end;
    m_normal = plane.normal();
    return eOk;
}

void OdDbEllipse::setCenter(const OdGePoint3d& point) {
    beginChange();
    m_center = point;
}

void OdDbEllipse::setMajorAxis(const OdGeVector3d& axis) {
    beginChange();
    m_majorAxis = axis;
}

void OdDbEllipse::setRadiusRatio(double ratio) {
    beginChange();
    m_ratio = ratio;
}

void OdDbEllipse::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

void OdDbEllipse::setStartParam(double radians) {
    beginChange();
    m_startParam = radians;
}

void OdDbEllipse::setEndParam(double radians) {
    beginChange();
    m_endParam = radians;
}

OdResult OdDbEllipse::transformBy(const OdGeMatrix3d& matrix) {
    const PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    // An ellipse stands in world coordinates. Its parameter runs about the normal, which a mirror turns over
    // so that the direction stays what it was on the paper.
    const OdGeVector3d minor = matrix * m_normal.crossProduct(m_majorAxis);
    m_center = matrix * m_center;
    m_majorAxis = matrix * m_majorAxis;
    const OdGeVector3d turned = m_majorAxis.crossProduct(minor);
    const double length = turned.length();
    if (length > 0) m_normal = turned * (1 / length);
    return eOk;
}

OdGePoint3d OdDbPolyline::getPointAt(unsigned int index) const {
    if (index >= m_vertices.size()) throw OdError_InvalidIndex(static_cast<long>(index));
    const OdGePoint2d& p = m_vertices[index].point;
    return {p.x, p.y, m_elevation};
}

double OdDbPolyline::getBulgeAt(unsigned int index) const {
    if (index >= m_vertices.size()) throw OdError_InvalidIndex(static_cast<long>(index));
    return m_vertices[index].bulge;
}

void OdDbPolyline::getWidthsAt(unsigned int index, double& start, double& end) const {
    if (index >= m_vertices.size()) throw OdError_InvalidIndex(static_cast<long>(index));
    start = m_vertices[index].startWidth;
    end = m_vertices[index].endWidth;
}

void OdDbPolyline::addVertexAt(unsigned int index, const OdGePoint2d& point, double bulge) {
    if (index > m_vertices.size()) throw OdError_InvalidIndex(static_cast<long>(index));
    beginChange();
    m_vertices.insert(m_vertices.begin() + index, Vertex{point, bulge, 0, 0});
}

void OdDbPolyline::setClosed(bool closed) {
    beginChange();
    m_polylineFlags = static_cast<short>(closed ? m_polylineFlags | 1 : m_polylineFlags & ~1);
}

void OdDbPolyline::setPointAt(unsigned int index, const OdGePoint2d& point) {
    if (index >= m_vertices.size()) throw OdError_InvalidIndex(static_cast<long>(index));
    beginChange();
    m_vertices[index].point = point;
}

void OdDbPolyline::setElevation(double elevation) {
    beginChange();
    m_elevation = elevation;
}

void OdDbPolyline::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

OdResult OdDbPolyline::transformBy(const OdGeMatrix3d& matrix) {
    const PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    const OdGeVector3d x = plane.vector(OdGeVector3d::kXAxis), y = plane.vector(OdGeVector3d::kYAxis);
    const bool mirrored = x.crossProduct(y).z < 0;
    double elevation = m_elevation;
    for (Vertex& vertex : m_vertices) {
        const OdGePoint3d p = plane.point({vertex.point.x, vertex.point.y, m_elevation});
        vertex.point = {p.x, p.y};
        if (mirrored) vertex.bulge = -vertex.bulge;
        vertex.startWidth *= plane.factor();
        vertex.endWidth *= plane.factor();
        elevation = p.z;
    }
    m_elevation = elevation;
    m_width *= plane.factor();
    m_thickness *= plane.factor();
    m_normal = plane.normal();
    return eOk;
}
