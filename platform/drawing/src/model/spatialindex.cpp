// SPDX-License-Identifier: MIT
#include "model/spatialindex.h"

#include "model/databasedata.h"
#include "model/reach.h"

#include <algorithm>

namespace lm::drawing {

std::uintptr_t NodeNumbers::pieceOf(const Node& node) noexcept {
    return reinterpret_cast<std::uintptr_t>(&node) / NodeArena::kPiece;
}

std::size_t NodeNumbers::placeOf(const Node& node) noexcept {
    return reinterpret_cast<std::uintptr_t>(&node) % NodeArena::kPiece / sizeof(Node);
}

std::uint32_t NodeNumbers::of(const Node& node) const noexcept {
    const auto piece = m_pieces.find(pieceOf(node));
    return piece == m_pieces.end() ? kNone : piece->second[placeOf(node)];
}

void NodeNumbers::set(const Node& node, std::uint32_t number) {
    std::vector<std::uint32_t>& piece = m_pieces[pieceOf(node)];
    if (piece.empty()) piece.assign(NodeArena::kPiece / sizeof(Node), kNone);
    piece[placeOf(node)] = number;
}

namespace {
constexpr std::uint32_t kNoBlock = 0, kByName = 1;
}

SpatialIndex::SpatialIndex(DatabaseData& data, Node& block)
    : m_data(data), m_block(block), m_shown(2), m_shownNumbers{{nullptr, kByName}} {
    for (Node* part = block.firstPart; part != nullptr; part = part->next) enter(*part);
}

void SpatialIndex::enter(Node& node) {
    const auto number = static_cast<std::uint32_t>(m_parts.size());
    m_parts.push_back({&node, kNoBlock, 0, 0});
    m_tree.append();
    m_numbers.set(node, number);
    markPart(node);
}

void SpatialIndex::markPart(const Node& node) {
    const std::uint32_t number = m_numbers.of(node);
    if (number == NodeNumbers::kNone || m_parts[number].changed) return;
    m_changed.push_back(number);
    m_parts[number].changed = 1;
}

void SpatialIndex::markAll() {
    for (const Part& part : m_parts)
        if (part.node != nullptr) markPart(*part.node);
}

void SpatialIndex::markBlock(const Node* block) {
    const auto found = m_shownNumbers.find(block);
    if (found == m_shownNumbers.end() || m_shown[found->second].changed) return;
    m_changedBlocks.push_back(found->second);
    m_shown[found->second].changed = true;
}

// What hangs on a part, attributes or vertices, belongs to its shape, and a part to that of everything that
// shows its block. Pictures of dimensions are found by name: they hang on every record of the table.
void SpatialIndex::changed(const Node& node) {
    const Node* const table = m_data.fixed.blockTable;
    if (&node == table) return markAll();
    const Node* part = nullptr;
    const Node* at = &node;
    for (; at != nullptr && at->owner != table; at = at->owner) part = at;
    if (at == nullptr) return;
    if (part == nullptr)
        markBlock(nullptr);
    else if (at == &m_block)
        markPart(*part);
    markBlock(at);
}

void SpatialIndex::came(Node& part) {
    if (part.owner == &m_block) enter(part);
    changed(part);
}

void SpatialIndex::left(const Node& part) {
    changed(part);
    const std::uint32_t number = part.owner == &m_block ? m_numbers.of(part) : NodeNumbers::kNone;
    if (number == NodeNumbers::kNone) return;
    m_numbers.set(part, NodeNumbers::kNone);
    m_parts[number].node = nullptr;
    m_tree.set(number, FlatBox());
    ++m_worn;
}

std::uint32_t SpatialIndex::numberOf(const Node* block) {
    const auto [found, isNew] = m_shownNumbers.try_emplace(block, static_cast<std::uint32_t>(m_shown.size()));
    if (isNew) m_shown.emplace_back();
    return found->second;
}

/// Keeps which blocks an entity and the blocks that it shows were seen to show.
void SpatialIndex::note(std::uint32_t part, const std::vector<BlockSource>& sources) {
    for (const BlockSource& source : sources) {
        const std::uint32_t block = numberOf(source.shown);
        Part& entry = m_parts[part];
        if (source.in != nullptr) {
            const std::uint32_t in = numberOf(source.in);
            std::vector<std::uint32_t>& blocks = m_shown[block].blocks;
            if (std::find(blocks.begin(), blocks.end(), in) == blocks.end()) blocks.push_back(in);
        } else if (block == kByName && !entry.byName) {
            entry.byName = 1;
            m_shown[block].parts.push_back(part);
        } else if (block != kByName && entry.block != block) {
            // Where it stood before it stays, which measures it once too often at most.
            if (entry.block != kNoBlock) ++m_worn;
            entry.block = block;
            m_shown[block].parts.push_back(part);
        }
    }
}

void SpatialIndex::markUsersOfChangedBlocks() {
    std::vector<std::uint32_t> done;
    while (!m_changedBlocks.empty()) {
        const std::uint32_t number = m_changedBlocks.back();
        m_changedBlocks.pop_back();
        for (const std::uint32_t part : m_shown[number].parts)
            if (m_parts[part].node != nullptr) markPart(*m_parts[part].node);
        for (const std::uint32_t block : m_shown[number].blocks) {
            if (m_shown[block].changed) continue;
            m_shown[block].changed = true;
            m_changedBlocks.push_back(block);
        }
        // Blocks that show each other come to an end since their marks stay until all are done.
        done.push_back(number);
    }
    for (const std::uint32_t number : done) m_shown[number].changed = false;
}

void SpatialIndex::measureChanged() {
    Reach reach;
    while (!m_changed.empty()) {
        const std::uint32_t number = m_changed.back();
        m_changed.pop_back();
        m_parts[number].changed = 0;
        Node* const node = m_parts[number].node;
        if (node == nullptr) continue;
        const auto* const entity = OdDbEntity::cast(m_data.bodyOf(node));
        m_tree.set(number, entity != nullptr ? reach.of(*entity) : FlatBox::everything());
        note(number, reach.sources());
        reach.sources().clear();
    }
}

/// Renumbers the parts, without those that left, and sorts the boxes.
void SpatialIndex::sortAnew() {
    std::vector<std::uint32_t> kept;
    kept.reserve(m_parts.size());
    std::vector<Part> parts;
    for (Shown& shown : m_shown) shown.parts.clear();
    for (std::uint32_t number = 0; number < m_parts.size(); ++number) {
        const Part& part = m_parts[number];
        if (part.node == nullptr) continue;
        const auto now = static_cast<std::uint32_t>(parts.size());
        kept.push_back(number);
        m_numbers.set(*part.node, now);
        if (part.block != kNoBlock) m_shown[part.block].parts.push_back(now);
        if (part.byName) m_shown[kByName].parts.push_back(now);
        parts.push_back(part);
    }
    m_tree.sort(kept);
    m_parts = std::move(parts);
    m_worn = 0;
}

void SpatialIndex::find(const FlatBox& box, std::vector<const OdDbEntity*>& near) {
    markUsersOfChangedBlocks();
    measureChanged();
    if (m_tree.isWorn() || m_worn > m_parts.size() / 4 + 1024) sortAnew();
    std::vector<std::uint32_t> found;
    m_tree.find(box, found);
    std::sort(found.begin(), found.end());
    near.reserve(near.size() + found.size());
    for (const std::uint32_t number : found) {
        Node* const node = m_parts[number].node;
        if (node != nullptr && !node->isErased() && node->kind != kKindSeqend)
            near.push_back(static_cast<const OdDbEntity*>(m_data.bodyOf(node)));
    }
}

bool SpatialIndexes::has(const Node& block) const noexcept {
    return std::any_of(m_all.begin(), m_all.end(),
                       [&block](const auto& index) { return &index->block() == &block; });
}

void SpatialIndexes::tell(const Node& node, Node* part, What what) noexcept {
    try {
        for (const auto& index : m_all) {
            if (what == kCame)
                index->came(*part);
            else if (what == kLeft)
                index->left(node);
            else
                index->changed(node);
        }
    } catch (...) {
        giveUp(); // the next one who asks makes another
    }
}

void SpatialIndexes::giveUp() noexcept {
    m_isLost = true;
    if (!m_isFinding) m_all.clear();
}

bool SpatialIndexes::find(DatabaseData& data, Node& block, const FlatBox& box,
                          std::vector<const OdDbEntity*>& near) {
    if (m_isFinding) return false;
    m_isFinding = true;
    m_isLost = false;
    const std::size_t before = near.size();
    try {
        const auto known = std::find_if(m_all.begin(), m_all.end(),
                                        [&block](const auto& index) { return &index->block() == &block; });
        SpatialIndex& index =
            known != m_all.end() ? **known : *m_all.emplace_back(std::make_unique<SpatialIndex>(data, block));
        index.find(box, near);
    } catch (...) {
        m_isLost = true;
    }
    m_isFinding = false;
    if (!m_isLost) return true;
    m_all.clear();
    near.resize(before);
    return false;
}

bool partsNear(OdDbObjectId block, const PlaneBox& box, std::vector<const OdDbEntity*>& near) {
    if (std::isnan(box.minX) || std::isnan(box.minY) || std::isnan(box.maxX) || std::isnan(box.maxY))
        return false;
    if (!block.isValid()) return true;
    DatabaseData& data = block.database()->data();
    return data.spatial.find(data, *block.node(), FlatBox::around(box), near);
}

bool keepsPlacesOf(OdDbObjectId block) noexcept {
    return block.isValid() && block.database()->data().spatial.has(*block.node());
}

} // namespace lm::drawing
