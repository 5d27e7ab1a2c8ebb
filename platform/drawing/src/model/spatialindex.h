// SPDX-License-Identifier: MIT
// Where the parts of a block lie: made when somebody asks for the first time, kept by what the database tells
// of its changes. Being told notes what changed and no more; it is measured when somebody asks again.
#pragma once

#include "model/boxtree.h"
#include "model/node.h"

#include <memory>
#include <unordered_map>

namespace lm::drawing {

struct DatabaseData;
struct BlockSource;

/// A number for each entry, as far as one was given. Entries lie densely, so do the numbers.
class NodeNumbers {
public:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    std::uint32_t of(const Node& node) const noexcept;
    void set(const Node& node, std::uint32_t number);

private:
    static std::uintptr_t pieceOf(const Node& node) noexcept;
    static std::size_t placeOf(const Node& node) noexcept;
    std::unordered_map<std::uintptr_t, std::vector<std::uint32_t>> m_pieces;
};

/// The places of the parts of one block.
class SpatialIndex {
public:
    SpatialIndex(DatabaseData& data, Node& block);

    const Node& block() const noexcept { return m_block; }
    /// An object changes, has changed, or turned its erased mark.
    void changed(const Node& node);
    /// A part has come to the end of its owner's list, or has left it.
    void came(Node& part);
    void left(const Node& part);

    /// Measures what changed, then gives the live parts that may touch a box.
    void find(const FlatBox& box, std::vector<const OdDbEntity*>& near);

private:
    struct Part {
        Node* node;               ///< null for one that left
        std::uint32_t block : 30; ///< number of the block that it shows, 0 for none
        std::uint32_t byName : 1; ///< what it shows is found by name
        std::uint32_t changed : 1;
    };
    /// A block, by what shows it.
    struct Shown {
        std::vector<std::uint32_t> parts;
        std::vector<std::uint32_t> blocks;
        bool changed = false;
    };

    void enter(Node& node);
    void markPart(const Node& node);
    void markAll();
    void markBlock(const Node* block);
    void markUsersOfChangedBlocks();
    std::uint32_t numberOf(const Node* block);
    void measureChanged();
    void note(std::uint32_t part, const std::vector<BlockSource>& sources);
    void sortAnew();

    DatabaseData& m_data;
    Node& m_block;
    std::vector<Part> m_parts; ///< in drawing order
    NodeNumbers m_numbers;
    BoxTree m_tree;
    std::vector<std::uint32_t> m_changed; ///< parts
    /// By number. The first one stands for none, the second for whatever block a name finds.
    std::vector<Shown> m_shown;
    std::unordered_map<const Node*, std::uint32_t> m_shownNumbers;
    std::vector<std::uint32_t> m_changedBlocks;
    std::size_t m_worn = 0;
};

/// The indexes of a database. Telling costs one comparison while there is none.
class SpatialIndexes {
public:
    void changed(const Node& node) noexcept {
        if (!m_all.empty()) tell(node, nullptr, kChanged);
    }
    void came(Node& node, bool asPart) noexcept {
        if (!m_all.empty()) tell(node, &node, asPart ? kCame : kChanged);
    }
    void left(const Node& node, bool asPart) noexcept {
        if (!m_all.empty()) tell(node, nullptr, asPart ? kLeft : kChanged);
    }
    /// False, with the index given up, when memory runs out.
    bool find(DatabaseData& data, Node& block, const FlatBox& box, std::vector<const OdDbEntity*>& near);
    bool has(const Node& block) const noexcept;
    void clear() noexcept { m_all.clear(); }

private:
    enum What { kChanged, kCame, kLeft };
    void tell(const Node& node, Node* part, What what) noexcept;
    void giveUp() noexcept;

    std::vector<std::unique_ptr<SpatialIndex>> m_all;
    bool m_isFinding = false;
    bool m_isLost = false; ///< while finding: something that was told couldn't be noted
};

} // namespace lm::drawing
