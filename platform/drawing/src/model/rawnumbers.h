// SPDX-License-Identifier: MIT
// The numbers in the groups of an entity that the database doesn't read, in their order.
#pragma once

#include "model/rawgroups.h"

#include "drawing/geometry.h"

namespace lm::drawing {

struct RawNumber {
    int code;
    double value;
};

class RawNumbers {
public:
    explicit RawNumbers(const GroupSpan& span);

    std::size_t size() const { return m_all.size(); }
    int code(std::size_t at) const { return m_all[at].code; }
    double value(std::size_t at) const { return m_all[at].value; }
    /// The point whose x stands at a place.
    OdGePoint3d point(std::size_t at) const;
    /// The first number of a code, or one to take instead.
    double first(int code, double otherwise) const;
    OdGePoint3d firstPoint(int code, const OdGePoint3d& otherwise) const;
    OdGeVector3d firstVector(int code, const OdGeVector3d& otherwise) const;
    OdGeVector3d normal() const { return firstVector(210, {0, 0, 1}); }

private:
    std::vector<RawNumber> m_all;
};

} // namespace lm::drawing
