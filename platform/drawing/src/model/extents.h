// SPDX-License-Identifier: MIT
// Boxes of entities.
#pragma once

#include "model/node.h"

#include "drawing/blockreference.h"

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

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

/// A block that was met on the way to a box.
struct BlockSource {
    const Node* in;    ///< the block that shows it; null for the entity itself
    const Node* shown; ///< null where it is found by name: any record of the table may come to be meant
};

/// Finds boxes, and remembers those of blocks as long as it lives: nobody may change the drawing meanwhile.
class ExtentsFinder {
public:
    /// `sources`, unless null, gets the blocks that are met, those that show nothing now, too: once for each
    /// block whose box is found, and for each entity.
    explicit ExtentsFinder(std::vector<BlockSource>* sources = nullptr) : m_sources(sources) {}

    /// Adds the box of an entity; false, with nothing added, when it has none that is known.
    bool add(const OdDbEntity& entity, OdGeExtents3d& extents);

    /// Whether the box of the entity that was asked for last hangs on what may change without a word to the
    /// database: the lines of an attribute are an object that others may hold.
    bool hangsOnMore() const noexcept { return m_hangsOnMore; }
    /// Whether what is remembered may give other boxes than a new finder does, since a block was met inside
    /// itself or there were too many.
    bool isSpent() const noexcept;

private:
    /// A block under the linear part of a transform; its box is that of the block's entities under this part
    /// alone, to be shifted by who asked.
    struct Key {
        Node* block;
        /// The numbers' bits, so that a transform that holds something else than numbers is found again.
        std::array<std::uint64_t, 9> linear;
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
        bool hangsOnMore;
    };
    struct Known {
        OdGeExtents3d box;
        bool hangsOnMore;
    };

    static Key keyOf(Node& block, const OdGeMatrix3d& matrix);
    static void addMoved(const OdGeExtents3d& box, const OdGeVector3d& by, OdGeExtents3d& extents);
    Known boxOf(Node& block, const OdGeMatrix3d& matrix);
    bool noteSource(const OdDbEntity& entity, const Node* in) const;
    bool stepInto(const OdDbEntity& entity, Node* block, const OdGeMatrix3d& own, Frame& frame, Frame& inner);
    bool isOnItsWay(const Node& block) const;

    std::vector<BlockSource>* m_sources;
    bool m_hangsOnMore = false;
    bool m_isCut = false;
    std::unordered_map<Key, Known, Hash> m_known;
    std::vector<Frame> m_frames;
    std::unordered_map<const Node*, int> m_onTheirWay;
};

} // namespace lm::drawing
