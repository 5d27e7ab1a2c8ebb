// SPDX-License-Identifier: MIT
#include "model/boxtree.h"

#include <algorithm>
#include <numeric>

namespace lm::drawing {

namespace {

float below(double number) noexcept {
    const float rounded = static_cast<float>(number);
    return static_cast<double>(rounded) > number ? std::nextafterf(rounded, -HUGE_VALF) : rounded;
}

float above(double number) noexcept {
    const float rounded = static_cast<float>(number);
    return static_cast<double>(rounded) < number ? std::nextafterf(rounded, HUGE_VALF) : rounded;
}

/// Where a box is sorted in along one axis: its middle, without a number too large, and those without an end
/// or a point behind all others, so that they share boxes with each other.
float middle(float low, float high) noexcept {
    const float sum = low / 2 + high / 2;
    return std::isfinite(low) && std::isfinite(high) ? sum : HUGE_VALF;
}

} // namespace

FlatBox FlatBox::around(const PlaneBox& box) noexcept {
    return {below(box.minX), below(box.minY), above(box.maxX), above(box.maxY)};
}

bool FlatBox::take(const FlatBox& other) noexcept {
    if (minX <= other.minX && minY <= other.minY && maxX >= other.maxX && maxY >= other.maxY) return false;
    *this = {std::min(minX, other.minX), std::min(minY, other.minY), std::max(maxX, other.maxX),
             std::max(maxY, other.maxY)};
    return true;
}

void BoxTree::append() {
    const auto number = static_cast<std::uint32_t>(m_slots.size());
    m_slots.push_back(static_cast<std::uint32_t>(m_items.size()));
    m_items.push_back(number);
    push(FlatBox());
    ++m_worn;
}

void BoxTree::push(const FlatBox& box) {
    if (m_levels.empty()) m_levels.emplace_back();
    m_levels[0].push_back(box);
    for (std::size_t level = 1;; ++level) {
        const std::size_t needed = (m_levels[level - 1].size() + kShare - 1) / kShare;
        if (level == m_levels.size()) {
            if (needed <= 1) break;
            m_levels.emplace_back();
            for (std::size_t i = 0; i < m_levels[level - 1].size(); ++i) {
                if (i % kShare == 0) m_levels[level].emplace_back();
                m_levels[level].back().take(m_levels[level - 1][i]);
            }
        }
        if (m_levels[level].size() < needed) m_levels[level].emplace_back();
    }
    widen(m_levels[0].size() - 1, box);
}

void BoxTree::widen(std::size_t slot, const FlatBox& box) noexcept {
    for (std::size_t level = 1; level < m_levels.size(); ++level) {
        slot /= kShare;
        if (!m_levels[level][slot].take(box)) return;
        if (level == 1) ++m_worn;
    }
}

void BoxTree::set(std::uint32_t item, const FlatBox& box) noexcept {
    const std::size_t slot = m_slots[item];
    m_levels[0][slot] = box;
    widen(slot, box);
}

void BoxTree::sort(const std::vector<std::uint32_t>& kept) {
    struct Place {
        std::uint32_t item;
        float x, y;
        FlatBox box;
    };
    std::vector<Place> places(kept.size());
    for (std::uint32_t i = 0; i < kept.size(); ++i) {
        const FlatBox& box = m_levels[0][m_slots[kept[i]]];
        places[i] = {i, middle(box.minX, box.maxX), middle(box.minY, box.maxY), box};
    }
    // Stripes of about as many neighbours as one stripe has of them: by rank, so that nothing depends on how
    // far apart the parts of a drawing lie.
    const auto byX = [](const Place& a, const Place& b) { return a.x < b.x; };
    const auto byY = [](const Place& a, const Place& b) { return a.y < b.y; };
    std::sort(places.begin(), places.end(), byX);
    const double groups = std::ceil(static_cast<double>(places.size()) / kShare);
    const std::size_t stripe = kShare * static_cast<std::size_t>(std::ceil(std::sqrt(groups)));
    for (std::size_t begin = 0; begin < places.size(); begin += stripe)
        std::sort(places.begin() + static_cast<std::ptrdiff_t>(begin),
                  places.begin() + static_cast<std::ptrdiff_t>(std::min(begin + stripe, places.size())), byY);
    BoxTree sorted;
    sorted.m_items.reserve(places.size());
    sorted.m_levels.emplace_back().reserve(places.size());
    sorted.m_slots.resize(places.size());
    for (const Place& place : places) {
        sorted.m_slots[place.item] = static_cast<std::uint32_t>(sorted.m_items.size());
        sorted.m_items.push_back(place.item);
        sorted.push(place.box);
    }
    sorted.m_worn = 0;
    *this = std::move(sorted);
}

void BoxTree::find(const FlatBox& box, std::vector<std::uint32_t>& items) const {
    if (m_levels.empty()) return;
    struct Node {
        std::size_t level, index;
    };
    std::vector<Node> open;
    const auto look = [&](std::size_t level, std::size_t begin) {
        const std::vector<FlatBox>& boxes = m_levels[level];
        const std::size_t end = std::min<std::size_t>(begin + kShare, boxes.size());
        for (std::size_t i = begin; i < end; ++i) {
            if (!boxes[i].touches(box)) continue;
            if (level == 0)
                items.push_back(m_items[i]);
            else
                open.push_back({level - 1, i * kShare});
        }
    };
    for (look(m_levels.size() - 1, 0); !open.empty();) {
        const Node next = open.back();
        open.pop_back();
        look(next.level, next.index);
    }
}

} // namespace lm::drawing
