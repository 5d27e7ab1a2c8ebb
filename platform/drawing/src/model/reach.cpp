// SPDX-License-Identifier: MIT
#include "model/reach.h"

#include "drawing/curves.h"
#include "drawing/text.h"

#include <algorithm>
#include <numbers>
#include <typeinfo>

namespace lm::drawing {

namespace {

constexpr double kFull = 2 * std::numbers::pi;
// Sums of the same numbers in another order differ by far less than this part of them.
constexpr double kSlack = 1e-9;
// Beyond, the angle of a point on an arc is no longer exact enough to tell where the arc ends.
constexpr double kMostTurns = 1e3;

/// Collects points of a shape. What isn't a finite number could lie anywhere.
class ShapeBox {
public:
    void add(const OdGePoint3d& point) { widen(point.x, point.y, 0); }

    /// A part of an ellipse: centre + a cos t + b sin t. Other ways to compute its points may find them on
    /// either side of the box that comes out here, so it is made a little larger.
    void addArc(const OdGePoint3d& center, const OdGeVector3d& a, const OdGeVector3d& b, double start,
                double sweep) {
        const double slack = kSlack * (std::fabs(center.x) + std::fabs(center.y) + a.length() + b.length());
        if (!std::isfinite(start + sweep) || !std::isfinite(slack)) {
            m_isFinite = false;
            return;
        }
        OdGeExtents3d extents;
        addCurve(center, a, b, start, std::fabs(start) > kMostTurns ? kFull : sweep, extents);
        widen(extents.minPoint().x, extents.minPoint().y, slack);
        widen(extents.maxPoint().x, extents.maxPoint().y, slack);
    }
    FlatBox box() const { return m_isFinite ? FlatBox::around(m_box) : FlatBox::everything(); }

private:
    void widen(double x, double y, double slack) {
        m_isFinite = m_isFinite && std::isfinite(x) && std::isfinite(y);
        m_box = {std::fmin(m_box.minX, x - slack), std::fmin(m_box.minY, y - slack),
                 std::fmax(m_box.maxX, x + slack), std::fmax(m_box.maxY, y + slack)};
    }
    PlaneBox m_box{HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    bool m_isFinite = true;
};

void addCircle(const OdGePoint3d& center, double radius, const OdGeVector3d& normal, double start,
               double sweep, ShapeBox& box) {
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(normal);
    box.addArc(plane * center, plane * OdGeVector3d(radius, 0, 0), plane * OdGeVector3d(0, radius, 0), start,
               sweep);
}

/// A part of a polyline with a bulge. The centre of a nearly straight one lies far away.
void addBulge(const OdGeMatrix3d& plane, const OdGePoint3d& from, const OdGePoint3d& to, double bulge,
              ShapeBox& box) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const double aside = (1 - bulge * bulge) / (4 * bulge);
    const OdGePoint3d center((from.x + to.x) / 2 - dy * aside, (from.y + to.y) / 2 + dx * aside, from.z);
    const double radius = std::hypot(dx, dy) * (1 + bulge * bulge) / (4 * std::fabs(bulge));
    const OdGePoint3d& first = bulge > 0 ? from : to;
    box.addArc(plane * center, plane * OdGeVector3d(radius, 0, 0), plane * OdGeVector3d(0, radius, 0),
               std::atan2(first.y - center.y, first.x - center.x), 4 * std::atan(std::fabs(bulge)));
}

void addPolyline(const OdDbPolyline& line, ShapeBox& box) {
    const unsigned count = line.numVerts();
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(line.normal());
    for (unsigned i = 0; i < count; ++i) {
        const OdGePoint3d from = line.getPointAt(i);
        box.add(plane * from);
        const double bulge = line.getBulgeAt(i);
        if (bulge == 0 || (i + 1 == count && !line.isClosed())) continue;
        const OdGePoint3d to = line.getPointAt((i + 1) % count);
        if (to.x != from.x || to.y != from.y) addBulge(plane, from, to, bulge, box);
    }
}

/// The box of an entity that is looked at by its shape; false for others.
bool addShapeOf(const OdDbEntity& entity, ShapeBox& box) {
    if (const auto* line = OdDbLine::cast(&entity)) {
        box.add(line->startPoint());
        box.add(line->endPoint());
    } else if (const auto* polyline = OdDbPolyline::cast(&entity)) {
        addPolyline(*polyline, box);
    } else if (const auto* circle = OdDbCircle::cast(&entity)) {
        addCircle(circle->center(), circle->radius(), circle->normal(), 0, kFull, box);
    } else if (const auto* arc = OdDbArc::cast(&entity)) {
        addCircle(arc->center(), arc->radius(), arc->normal(), arc->startAngle(),
                  sweepOf(arc->startAngle(), arc->endAngle()), box);
    } else {
        return false;
    }
    return true;
}

/// Whether what an entity tells of its extents is this library's own, which hangs on nothing that the
/// database isn't told of. A class of somebody else may look anywhere.
bool isOurs(const OdDbEntity& entity) {
    const std::type_info* const kOurs[] = {
        &typeid(OdDbBlockReference), &typeid(OdDbLine),      &typeid(OdDbPolyline),
        &typeid(OdDbText),           &typeid(OdDbMText),     &typeid(OdDbAttributeDefinition),
        &typeid(OdDbCircle),         &typeid(OdDbArc),       &typeid(OdDbPoint),
        &typeid(OdDbEllipse),        &typeid(OdDbAttribute), &typeid(OdDbUnreadEntity)};
    const std::type_info& type = typeid(entity);
    return std::any_of(std::begin(kOurs), std::end(kOurs),
                       [&type](const std::type_info* ours) { return *ours == type; });
}

} // namespace

Reach::Reach() : m_finder(&m_sources) {}

FlatBox Reach::ofExtents(const OdDbEntity& entity) {
    OdGeExtents3d extents;
    m_finder.add(entity, extents);
    if (m_finder.isSpent()) {
        // What is remembered from other entities would change what this one gets.
        m_finder = ExtentsFinder(&m_sources);
        extents = OdGeExtents3d();
        m_finder.add(entity, extents);
        const bool hangsOnMore = m_finder.hangsOnMore();
        m_finder = ExtentsFinder(&m_sources);
        if (hangsOnMore) return FlatBox::everything();
    }
    if (m_finder.hangsOnMore()) return FlatBox::everything();
    const OdGePoint3d low = extents.minPoint(), high = extents.maxPoint();
    return extents.isEmpty() ? FlatBox() : FlatBox::around({low.x, low.y, high.x, high.y});
}

FlatBox Reach::of(const OdDbEntity& entity) noexcept {
    try {
        if (!isOurs(entity)) return FlatBox::everything();
        ShapeBox shape;
        return addShapeOf(entity, shape) ? shape.box() : ofExtents(entity);
    } catch (...) {
        m_finder = ExtentsFinder(&m_sources);
        return FlatBox::everything(); // who looks at the entity itself meets the same
    }
}

} // namespace lm::drawing
