// SPDX-License-Identifier: MIT
// Boxes of entities.
#pragma once

#include "model/node.h"

#include "drawing/blockreference.h"

#include <array>
#include <unordered_map>

namespace lm::drawing {

/// Adds center + a cos t + b sin t for t from `start` on, `sweep` radians far: the ends, and where the curve
/// turns back along an axis.
void addCurve(const OdGePoint3d& center, const OdGeVector3d& a, const OdGeVector3d& b, double start,
              double sweep, OdGeExtents3d& extents);
/// The way from one angle to another, counter-clockwise; all around when they are the same.
double sweepOf(double from, double to);
/// Adds a part of a polyline from `p` to `q` in a plane; `bulge` is the tangent of a quarter of its arc's
/// angle.
void addSegment(const OdGeMatrix3d& plane, const OdGePoint3d& p, const OdGePoint3d& q, double bulge,
                OdGeExtents3d& extents);

/// Finds boxes, and remembers those of blocks as long as it lives: nobody may change the drawing meanwhile.
class ExtentsFinder {
public:
    /// Adds the box of an entity; false, with nothing added, when it has none that is known.
    bool add(const OdDbEntity& entity, OdGeExtents3d& extents);

private:
    /// A block under the linear part of a transform; its box is that of the block's entities under this part
    /// alone, to be shifted by who asked.
    struct Key {
        Node* block;
        std::array<double, 9> linear;
        bool operator==(const Key&) const = default;
    };
    struct Hash {
        std::size_t operator()(const Key& key) const noexcept;
    };
    /// A block on its way.
    struct Frame {
        Key key;
        OdGeMatrix3d matrix;
        Node* next;
        OdGeExtents3d box;
    };

    static Key keyOf(Node& block, const OdGeMatrix3d& matrix);
    static void addMoved(const OdGeExtents3d& box, const OdGeVector3d& by, OdGeExtents3d& extents);
    OdGeExtents3d boxOf(Node& block, const OdGeMatrix3d& matrix);
    bool stepInto(const OdDbEntity& entity, Node* block, const OdGeMatrix3d& own, Frame& frame, Frame& inner);
    bool isOnItsWay(const Node& block) const;

    std::unordered_map<Key, OdGeExtents3d, Hash> m_known;
    std::vector<Frame> m_frames;
    std::unordered_map<const Node*, int> m_onTheirWay;
};

} // namespace lm::drawing
