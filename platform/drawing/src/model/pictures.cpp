// SPDX-License-Identifier: MIT
#include "model/pictures.h"

#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/pictureusers.h"

#include <algorithm>

namespace lm::drawing {

bool isDimension(std::string_view kind) noexcept {
    return kind.ends_with("DIMENSION");
}

bool showsPicture(std::string_view kind) noexcept {
    return isDimension(kind) || kind == "ACAD_TABLE";
}

Node* pictureBlock(const RawGroups& raw, const DatabaseData& data) {
    if (!showsPicture(raw.kind())) return nullptr;
    Node* block = nullptr;
    bool seen = false; // a table has texts under this code behind its block
    forEachName(raw.span(), raw.kind(), [&](int code, std::string_view bytes) {
        if (code != 2 || seen) return;
        seen = true;
        bool bad = false;
        block = data.tableRecord(data.fixed.blockTable, raw.form()->decoder.decode(bytes, bad));
    });
    return block != nullptr && block->isLive() ? block : nullptr;
}

namespace {

Node* pictureOfEntry(DatabaseData& data, Node& node) {
    const GroupSpan span = groupsOf(data, node);
    if (span.isEmpty()) return nullptr;
    const RawPointer raw = rawGroupsOf(*data.bodyOf(&node));
    return raw ? pictureBlock(*raw.get(), data) : nullptr;
}

bool isShown(Node& block) {
    auto& record = static_cast<OdDbBlockTableRecord&>(*block.database()->data().bodyOf(&block));
    const std::vector<Node*>& all = ObjectAccess::references(record);
    return std::any_of(all.begin(), all.end(), [](const Node* node) { return node->isLive(); });
}

} // namespace

const std::vector<Node*>& PictureUsers::of(DatabaseData& data, Node& block) {
    std::vector<Node*> found;
    m_seen = data.nodes.forEachFrom(m_seen, [&](Node& node) {
        if (isDimension(data.kinds.name(node.kind))) found.push_back(&node);
    });
    for (Node* const node : found)
        if (Node* const shown = pictureOfEntry(data, *node)) m_users[shown].push_back(node);
    return m_users[&block];
}

bool PictureUsers::hasOthers(DatabaseData& data, Node& block, const Node& dimension) {
    // What stood here once may show another block by now, or be gone.
    for (Node* const node : of(data, block))
        if (node != &dimension && node->isLive() && pictureOfEntry(data, *node) == &block) return true;
    return isShown(block);
}

void PictureUsers::add(Node& block, Node& dimension) {
    m_users[&block].push_back(&dimension);
}

Node* ownPictureOf(const OdDbUnreadEntity& dimension, const RawGroups& raw) {
    OdDbDatabase& database = *dimension.database();
    DatabaseData& data = database.data();
    Node* const block = pictureBlock(raw, data);
    Node* const node = dimension.objectId().node();
    if (block == nullptr || !data.pictureUsers.hasOthers(data, *block, *node)) return block;
    const OdSmartPtr<OdDbIdMapping> mapping(new OdDbIdMapping(), kAttach);
    OdArray<OdDbObjectId> ids;
    ids.append(OdDbObjectId(block));
    database.deepCloneObjects(ids, OdDbObjectId(data.fixed.blockTable), *mapping);
    OdDbIdPair pair{OdDbObjectId(block)};
    if (!mapping->compute(pair)) return nullptr;
    data.pictureUsers.add(*pair.value().node(), *node);
    return pair.value().node();
}

void movePicture(Node& block, const OdGeMatrix3d& matrix) {
    const OdSmartPtr<OdDbObjectIterator> walk = partsOf(&block);
    for (walk->start(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        // A picture holds no dimensions; one that names the picture it stands in would never come to an end.
        if (const RawPointer raw =
                OdDbUnreadEntity::cast(entity.get()) != nullptr ? rawGroupsOf(*entity.get()) : RawPointer();
            raw && isDimension(raw->kind()))
            continue;
        entity->upgradeOpen();
        entity->transformBy(matrix);
    }
}

} // namespace lm::drawing
