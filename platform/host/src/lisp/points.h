// SPDX-License-Identifier: MIT
// Points: lists of two or three numbers.
#pragma once

#include "machine.h"

#include "drawing/geometry.h"

#include <optional>

namespace lm::host::lisp {

/// A point with or without a third coordinate, which is 0 then.
struct Point {
    double x = 0, y = 0, z = 0;
    bool flat = true;

    OdGePoint3d inSpace() const { return {x, y, z}; }
};

/// The point that a list of two or three numbers stands for, nothing for any other value.
std::optional<Point> pointOf(const Value& value) noexcept;

/// The same of an argument; raises LispError for any other value.
Point pointAt(Machine& machine, Arguments arguments, std::size_t index);

/// The list of a point.
Value listOf(Machine& machine, const Point& point);
Value listOf(Machine& machine, const OdGePoint3d& point);

} // namespace lm::host::lisp
