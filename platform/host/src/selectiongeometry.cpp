// SPDX-License-Identifier: MIT
#include "selectiongeometry.h"

#include "drawing/curves.h"

#include <algorithm>
#include <cmath>

namespace lm::host {

namespace {

constexpr double kTurn = 6.283185307179586;

// Touching counts, and what touches in the drawing must not miss by the last bit of a sum. The part of the
// coordinates that is given away is far below what any box of a user differs by.
constexpr double kRelativeSlack = 1e-12;

double norm(double angle) {
    angle = std::fmod(angle, kTurn);
    return angle < 0 ? angle + kTurn : angle;
}

/// Whether an angle lies in a sweep that begins at `start`.
bool isSwept(double angle, double start, double sweep) {
    if (sweep >= kTurn) return true;
    const double ahead = norm(angle - start);
    return ahead <= sweep + kRelativeSlack || ahead >= kTurn - kRelativeSlack;
}

bool touchesCircle(const Box& box, const OdGePoint3d& center, double radius, const OdGeVector3d& normal,
                   double start, double sweep) {
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal);
    return box.touchesArc(toWorld * center, toWorld * OdGeVector3d(radius, 0, 0),
                          toWorld * OdGeVector3d(0, radius, 0), start, sweep);
}

/// One part of a polyline; `bulge` is the tangent of a quarter of the arc's angle, positive to the left.
bool touchesPart(const Box& box, const OdGeMatrix3d& toWorld, const OdGePoint3d& from, const OdGePoint3d& to,
                 double bulge) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const double chord = std::hypot(dx, dy);
    if (bulge == 0 || chord == 0) {
        const OdGePoint3d a = toWorld * from, b = toWorld * to;
        return box.touchesSegment(a.x, a.y, b.x, b.y);
    }
    // The centre lies on the bisector of the chord, at this part of the chord to its left.
    const double aside = (1 - bulge * bulge) / (4 * bulge);
    const OdGePoint3d center((from.x + to.x) / 2 - dy * aside, (from.y + to.y) / 2 + dx * aside, from.z);
    const double radius = chord * (1 + bulge * bulge) / (4 * std::fabs(bulge));
    const OdGePoint3d& first = bulge > 0 ? from : to; // counter-clockwise
    return box.touchesArc(
        toWorld * center, toWorld * OdGeVector3d(radius, 0, 0), toWorld * OdGeVector3d(0, radius, 0),
        std::atan2(first.y - center.y, first.x - center.x), 4 * std::atan(std::fabs(bulge)));
}

bool touchesPolyline(const Box& box, const OdDbPolyline& line) {
    const unsigned int count = line.numVerts();
    if (count == 0) return false;
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(line.normal());
    OdGePoint3d from = line.getPointAt(0);
    if (count == 1) return touchesPart(box, toWorld, from, from, 0);
    for (unsigned int i = 0; i + 1 < count; ++i) {
        const OdGePoint3d to = line.getPointAt(i + 1);
        if (touchesPart(box, toWorld, from, to, line.getBulgeAt(i))) return true;
        from = to;
    }
    return line.isClosed() && touchesPart(box, toWorld, from, line.getPointAt(0), line.getBulgeAt(count - 1));
}

} // namespace

Box::Box(const OdGePoint3d& first, const OdGePoint3d& second)
    : m_minX(std::fmin(first.x, second.x)), m_minY(std::fmin(first.y, second.y)),
      m_maxX(std::fmax(first.x, second.x)), m_maxY(std::fmax(first.y, second.y)) {
    const double slackX = kRelativeSlack * std::fmax(std::fabs(m_minX), std::fabs(m_maxX));
    const double slackY = kRelativeSlack * std::fmax(std::fabs(m_minY), std::fabs(m_maxY));
    m_minX -= slackX;
    m_maxX += slackX;
    m_minY -= slackY;
    m_maxY += slackY;
}

bool Box::touches(const OdDbEntity& entity) const {
    if (const auto* line = OdDbLine::cast(&entity)) {
        const OdGePoint3d a = line->startPoint(), b = line->endPoint();
        return touchesSegment(a.x, a.y, b.x, b.y);
    }
    if (const auto* polyline = OdDbPolyline::cast(&entity)) return touchesPolyline(*this, *polyline);
    if (const auto* circle = OdDbCircle::cast(&entity))
        return touchesCircle(*this, circle->center(), circle->radius(), circle->normal(), 0, kTurn);
    if (const auto* arc = OdDbArc::cast(&entity)) {
        const double sweep = norm(arc->endAngle() - arc->startAngle());
        return touchesCircle(*this, arc->center(), arc->radius(), arc->normal(), arc->startAngle(),
                             sweep == 0 ? kTurn : sweep);
    }
    return touchesExtents(entity);
}

bool Box::touchesExtents(const OdDbEntity& entity) const {
    OdGeExtents3d extents;
    if (entity.getGeomExtents(extents) != eOk || extents.isEmpty()) return false;
    const OdGePoint3d low = extents.minPoint(), high = extents.maxPoint();
    return low.x <= m_maxX && high.x >= m_minX && low.y <= m_maxY && high.y >= m_minY;
}

bool Box::holds(const OdDbEntity& entity) const {
    OdGeExtents3d extents;
    if (entity.getGeomExtents(extents) != eOk || extents.isEmpty()) return false;
    return holds(extents.minPoint().x, extents.minPoint().y) &&
           holds(extents.maxPoint().x, extents.maxPoint().y);
}

bool Box::touchesSegment(double x1, double y1, double x2, double y2) const {
    if (std::fmax(x1, x2) < m_minX || std::fmin(x1, x2) > m_maxX || std::fmax(y1, y2) < m_minY ||
        std::fmin(y1, y2) > m_maxY)
        return false;
    if (holds(x1, y1) || holds(x2, y2)) return true;
    // Neither end is inside, and the two boxes overlap: the line crosses unless all corners lie on one side.
    const double dx = x2 - x1, dy = y2 - y1;
    const double sides[] = {dx * (m_minY - y1) - dy * (m_minX - x1), dx * (m_minY - y1) - dy * (m_maxX - x1),
                            dx * (m_maxY - y1) - dy * (m_minX - x1), dx * (m_maxY - y1) - dy * (m_maxX - x1)};
    const auto [least, most] = std::minmax_element(std::begin(sides), std::end(sides));
    return *least <= 0 && *most >= 0;
}

bool Box::touchesArc(const OdGePoint3d& center, const OdGeVector3d& a, const OdGeVector3d& b, double start,
                     double sweep) const {
    const auto at = [&](double t) {
        return OdGePoint2d(center.x + a.x * std::cos(t) + b.x * std::sin(t),
                           center.y + a.y * std::cos(t) + b.y * std::sin(t));
    };
    const OdGePoint2d first = at(start), last = at(start + sweep);
    if (holds(first.x, first.y) || holds(last.x, last.y)) return true;
    // Where the curve meets one edge of the box, between the edge's ends, is a point of both.
    const auto meets = [&](double fixed, double middle, double cosine, double sine, bool isX) {
        const double reach = std::hypot(cosine, sine), wanted = fixed - middle;
        if (reach == 0 || std::fabs(wanted) > reach) return false;
        const double phase = std::atan2(sine, cosine), apart = std::acos(wanted / reach);
        for (const double t : {phase + apart, phase - apart}) {
            if (!isSwept(t, start, sweep)) continue;
            const OdGePoint2d point = at(t);
            if (isX ? point.y >= m_minY && point.y <= m_maxY : point.x >= m_minX && point.x <= m_maxX)
                return true;
        }
        return false;
    };
    return meets(m_minX, center.x, a.x, b.x, true) || meets(m_maxX, center.x, a.x, b.x, true) ||
           meets(m_minY, center.y, a.y, b.y, false) || meets(m_maxY, center.y, a.y, b.y, false);
}

} // namespace lm::host
