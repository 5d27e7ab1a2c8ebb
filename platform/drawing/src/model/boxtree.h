// SPDX-License-Identifier: MIT
// Boxes of the plane in a tree without pointers: sixteen neighbours share the box around them, sixteen of
// those the next one, up to a few at the top. A box may change its place at any time; the boxes above it then
// only grow, so from time to time the tree is sorted anew.
#pragma once

#include "drawing/nearparts.h"

#include <cstdint>
#include <vector>

namespace lm::drawing {

/// A box whose numbers are rounded outward. Without a point, unless told otherwise.
struct FlatBox {
    float minX = HUGE_VALF, minY = HUGE_VALF, maxX = -HUGE_VALF, maxY = -HUGE_VALF;

    static FlatBox everything() { return {-HUGE_VALF, -HUGE_VALF, HUGE_VALF, HUGE_VALF}; }
    /// The numbers may be infinite or the wrong way round, but must be numbers.
    static FlatBox around(const PlaneBox& box) noexcept;

    bool touches(const FlatBox& other) const noexcept {
        return minX <= other.maxX && maxX >= other.minX && minY <= other.maxY && maxY >= other.minY;
    }
    /// Widens the box; true when it had to grow.
    bool take(const FlatBox& other) noexcept;
};

/// The boxes of items, which are numbers from 0 on.
class BoxTree {
public:
    /// Enters the next item, without a point yet.
    void append();
    void set(std::uint32_t item, const FlatBox& box) noexcept;
    std::size_t size() const noexcept { return m_slots.size(); }
    /// Whether enough has moved or come since the last sorting to make another one worth its while.
    bool isWorn() const noexcept { return m_worn > kSpare + m_slots.size() / 4; }
    /// Sorts all boxes by place. The items from `kept` are renumbered in the order given there; others go.
    void sort(const std::vector<std::uint32_t>& kept);

    /// Adds the items whose boxes touch a box, in no order.
    void find(const FlatBox& box, std::vector<std::uint32_t>& items) const;

private:
    static constexpr std::uint32_t kShare = 16;
    static constexpr std::size_t kSpare = 1024;

    void push(const FlatBox& box);
    void widen(std::size_t slot, const FlatBox& box) noexcept;

    std::vector<std::vector<FlatBox>> m_levels; ///< boxes of slots, then of sixteen each, and so on
    std::vector<std::uint32_t> m_items;         ///< by slot
    std::vector<std::uint32_t> m_slots;         ///< by item
    std::size_t m_worn = 0;
};

} // namespace lm::drawing
