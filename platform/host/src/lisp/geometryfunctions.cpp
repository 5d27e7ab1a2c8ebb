// SPDX-License-Identifier: MIT
// Points, distances and angles. Angles in radians.
#include "points.h"

#include <cmath>
#include <numbers>

namespace lm::host::lisp {

std::optional<Point> pointOf(const Value& value) noexcept {
    double parts[3] = {};
    std::size_t count = 0;
    const Value* at = &value;
    for (; at->isCons(); at = &at->cdr()) {
        if (count == 3 || !at->car().isNumber()) return std::nullopt;
        parts[count++] = at->car().number();
    }
    if (!at->isNil() || count < 2) return std::nullopt;
    return Point{parts[0], parts[1], parts[2], count == 2};
}

Point pointAt(Machine& machine, Arguments arguments, std::size_t index) {
    const std::optional<Point> point = pointOf(arguments[index]);
    if (!point) machine.failType("2D/3D point", arguments[index]);
    return *point;
}

Value listOf(Machine& machine, const Point& point) {
    if (point.flat) return machine.list(Value::real(point.x), Value::real(point.y));
    return listOf(machine, point.inSpace());
}

Value listOf(Machine& machine, const OdGePoint3d& point) {
    return machine.list(Value::real(point.x), Value::real(point.y), Value::real(point.z));
}

namespace {

// A point without a third coordinate makes the distance one of the plane.
Value distance(Machine& machine, Arguments a) {
    const Point p = pointAt(machine, a, 0), q = pointAt(machine, a, 1);
    if (p.flat || q.flat) return Value::real(std::hypot(p.x - q.x, p.y - q.y));
    return Value::real(std::hypot(p.x - q.x, p.y - q.y, p.z - q.z));
}

Value angle(Machine& machine, Arguments a) {
    const Point p = pointAt(machine, a, 0), q = pointAt(machine, a, 1);
    const double radians = std::atan2(q.y - p.y, q.x - p.x);
    return Value::real(radians < 0 ? radians + 2 * std::numbers::pi : radians + 0.0);
}

Value polar(Machine& machine, Arguments a) {
    Point point = pointAt(machine, a, 0);
    const double radians = machine.numberAt(a, 1), length = machine.numberAt(a, 2);
    point.x += length * std::cos(radians);
    point.y += length * std::sin(radians);
    return listOf(machine, point);
}

// The crossing of two lines, on both pieces unless the fifth argument is a nil.
Value intersection(Machine& machine, Arguments a) {
    const Point p = pointAt(machine, a, 0), q = pointAt(machine, a, 1);
    const Point r = pointAt(machine, a, 2), s = pointAt(machine, a, 3);
    const bool onPieces = a.size() < 5 || !a[4].isNil();
    const double dx = q.x - p.x, dy = q.y - p.y, ex = s.x - r.x, ey = s.y - r.y;
    const double cross = dx * ey - dy * ex;
    const double scale = std::hypot(dx, dy) * std::hypot(ex, ey);
    constexpr double kParallel = 1e-12, kOnPiece = 1e-10;
    if (scale == 0 || std::abs(cross) <= kParallel * scale) return Value();
    const double t = ((r.x - p.x) * ey - (r.y - p.y) * ex) / cross;
    const double u = ((r.x - p.x) * dy - (r.y - p.y) * dx) / cross;
    const auto outside = [&](double part) { return part < -kOnPiece || part > 1 + kOnPiece; };
    if (onPieces && (outside(t) || outside(u))) return Value();
    const Point crossing{p.x + t * dx, p.y + t * dy, 0, true};
    if (p.flat || q.flat || r.flat || s.flat) return listOf(machine, crossing);
    const double z = p.z + t * (q.z - p.z), other = r.z + u * (s.z - r.z);
    if (std::abs(z - other) > kOnPiece * std::max(1.0, std::abs(z))) return Value();
    return listOf(machine, OdGePoint3d(crossing.x, crossing.y, z));
}

/// The way from a coordinate system to the world: 0 and 1 are the world, a list is an extrusion direction.
OdGeMatrix3d toWorld(Machine& machine, const Value& system) {
    if (const std::optional<Point> normal = pointOf(system))
        return OdGeMatrix3d::planeToWorld({normal->x, normal->y, normal->z});
    constexpr int kLastSystem = 3;
    if (!system.isInteger() || system.integer() < 0 || system.integer() > kLastSystem)
        machine.failType("coordinate system", system);
    return OdGeMatrix3d();
}

/// The matrix that turns back what `matrix`, a pure rotation, turns.
OdGeMatrix3d turnedBack(const OdGeMatrix3d& matrix) {
    OdGeMatrix3d result;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) result.entry[row][column] = matrix.entry[column][row];
    return result;
}

// From one coordinate system to another. User, display and paper systems are the world here.
Value translate(Machine& machine, Arguments a) {
    const Point point = pointAt(machine, a, 0);
    const OdGeMatrix3d matrix = turnedBack(toWorld(machine, a[2])) * toWorld(machine, a[1]);
    return listOf(machine, matrix * point.inSpace());
}

const Builtin kGeometry[] = {
    {"DISTANCE", 2, 2, &distance},   {"ANGLE", 2, 2, &angle},     {"POLAR", 3, 3, &polar},
    {"INTERS", 4, 5, &intersection}, {"TRANS", 3, 4, &translate},
};

} // namespace

std::span<const Builtin> geometryFunctions() {
    return kGeometry;
}

} // namespace lm::host::lisp
