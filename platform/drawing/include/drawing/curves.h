// SPDX-License-Identifier: MIT
// The drawn shapes that the library looks at: point, line, circle, arc, ellipse and polyline.
#pragma once

#include "drawing/entity.h"

/// A point; on the layer of the project's settings it carries them.
class LM_DRAWING_API OdDbPoint : public OdDbEntity {
    LM_RX_CLASS(OdDbPoint)
public:
    OdDbPoint() = default;
    OdDbPoint(const OdDbPoint&) = default;
    OdGePoint3d position() const { return m_position; }
    void setPosition(const OdGePoint3d& point);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbPoint)
    OdDbPoint& operator=(const OdDbPoint&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint3d m_position;
    double m_thickness = 0;
};

/// A straight line between two points of the world.
class LM_DRAWING_API OdDbLine : public OdDbEntity {
    LM_RX_CLASS(OdDbLine)
public:
    OdDbLine() = default;
    OdDbLine(const OdDbLine&) = default;
    OdGePoint3d startPoint() const { return m_start; }
    void setStartPoint(const OdGePoint3d& point);
    OdGePoint3d endPoint() const { return m_end; }
    void setEndPoint(const OdGePoint3d& point);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbLine)
    OdDbLine& operator=(const OdDbLine&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint3d m_start, m_end;
    double m_thickness = 0;
};

/// A circle; the centre is in the object coordinate system of the normal.
class LM_DRAWING_API OdDbCircle : public OdDbEntity {
    LM_RX_CLASS(OdDbCircle)
public:
    OdDbCircle() = default;
    OdDbCircle(const OdDbCircle&) = default;
    OdGePoint3d center() const { return m_center; }
    void setCenter(const OdGePoint3d& point);
    double radius() const { return m_radius; }
    void setRadius(double radius);
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbCircle)
    OdDbCircle& operator=(const OdDbCircle&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint3d m_center;
    OdGeVector3d m_normal{0, 0, 1};
    double m_radius = 0, m_thickness = 0;
};

/// An arc, counter-clockwise from the start angle to the end angle, in radians.
class LM_DRAWING_API OdDbArc : public OdDbEntity {
    LM_RX_CLASS(OdDbArc)
public:
    OdDbArc() = default;
    OdDbArc(const OdDbArc&) = default;
    OdGePoint3d center() const { return m_center; }
    void setCenter(const OdGePoint3d& point);
    double radius() const { return m_radius; }
    void setRadius(double radius);
    double startAngle() const { return m_startAngle; }
    void setStartAngle(double radians);
    double endAngle() const { return m_endAngle; }
    void setEndAngle(double radians);
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbArc)
    OdDbArc& operator=(const OdDbArc&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint3d m_center;
    OdGeVector3d m_normal{0, 0, 1};
    double m_radius = 0, m_startAngle = 0, m_endAngle = 0, m_thickness = 0;
};

/// An ellipse: centre, the vector to the end of its major axis, the ratio of the minor one, parameters in
/// radians.
class LM_DRAWING_API OdDbEllipse : public OdDbEntity {
    LM_RX_CLASS(OdDbEllipse)
public:
    OdDbEllipse() = default;
    OdDbEllipse(const OdDbEllipse&) = default;
    OdGePoint3d center() const { return m_center; }
    void setCenter(const OdGePoint3d& point);
    OdGeVector3d majorAxis() const { return m_majorAxis; }
    void setMajorAxis(const OdGeVector3d& axis);
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    double radiusRatio() const { return m_ratio; }
    void setRadiusRatio(double ratio);
    double startParam() const { return m_startParam; }
    void setStartParam(double radians);
    double endParam() const { return m_endParam; }
    void setEndParam(double radians);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbEllipse)
    OdDbEllipse& operator=(const OdDbEllipse&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint3d m_center;
    OdGeVector3d m_majorAxis{1, 0, 0};
    OdGeVector3d m_normal{0, 0, 1};
    double m_ratio = 1, m_startParam = 0, m_endParam = 6.283185307179586;
};

/// A polyline in a plane: the wires of a page. Vertices lie in the object coordinate system of the normal.
class LM_DRAWING_API OdDbPolyline : public OdDbEntity {
    LM_RX_CLASS(OdDbPolyline)
public:
    OdDbPolyline() = default;
    OdDbPolyline(const OdDbPolyline&) = default;
    unsigned int numVerts() const { return static_cast<unsigned int>(m_vertices.size()); }
    /// A vertex with the elevation as z. An index outside raises OdError_InvalidIndex.
    OdGePoint3d getPointAt(unsigned int index) const;
    double getBulgeAt(unsigned int index) const;
    /// Widths of the part that begins at a vertex, as the file has them for the vertex; 0 where it has none.
    /// An index outside raises OdError_InvalidIndex.
    void getWidthsAt(unsigned int index, double& start, double& end) const;
    /// The width of all parts, which counts where the vertices have none.
    double constantWidth() const { return m_width; }
    double thickness() const { return m_thickness; }
    /// Puts a vertex before `index`; at the count it goes to the end. Beyond it raises OdError_InvalidIndex.
    void addVertexAt(unsigned int index, const OdGePoint2d& point, double bulge = 0);
    /// Moves a vertex. An index outside raises OdError_InvalidIndex.
    void setPointAt(unsigned int index, const OdGePoint2d& point);
    bool isClosed() const { return (m_polylineFlags & 1) != 0; }
    void setClosed(bool closed);
    double elevation() const { return m_elevation; }
    void setElevation(double elevation);
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbPolyline)
    OdDbPolyline& operator=(const OdDbPolyline&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    struct Vertex {
        OdGePoint2d point;
        double bulge = 0;
        double startWidth = 0;
        double endWidth = 0;
    };
    std::vector<Vertex> m_vertices;
    OdGeVector3d m_normal{0, 0, 1};
    double m_elevation = 0;
    double m_width = 0;
    double m_thickness = 0;
    short m_polylineFlags = 0;
};
