// SPDX-License-Identifier: MIT
#include "dxf/write_plan.h"

#include "dxf/skeletonfind.h"
#include "dxf/specs.h"
#include "dxf/write_chains.h"

#include "drawing/text.h"

namespace lm::drawing {

namespace {

bool isSectionRead(const std::string& name) {
    return name == "HEADER" || name == "TABLES" || name == "BLOCKS" || name == "ENTITIES" ||
           name == "OBJECTS";
}

/// Whether the class of an entry reads more than what all entries of its place have.
bool isRead(const Node& node) {
    if (node.kind == kKindTable || node.kind == kKindBlock || node.kind == kKindEndblk ||
        node.kind == kKindSeqend)
        return true;
    const OdSmartPtr<OdDbObject> probe(specOf(node).make(), kAttach);
    return probe->isA() != OdDbUnreadEntity::desc() && probe->isA() != OdDbUnreadObject::desc() &&
           probe->isA() != OdDbUnreadTableRecord::desc();
}

bool isDictionary(const Node& node) {
    return node.kind == kKindDictionary || node.kind == kKindDictionaryWithDefault;
}

} // namespace

bool hasLiveAttributes(const Node& reference) {
    for (const Node* part = reference.firstPart; part != nullptr; part = part->next)
        if (part->kind == kKindAttrib && !part->isErased() && !part->has(Node::kGone)) return true;
    return false;
}

WritePlan::WritePlan(DatabaseData& owner) : data(owner), handles(owner), renamed(owner) {
    data.nodes.forEach([this](Node& node) { look(node); });
    for (Node* node : m_dead) lookAtDead(*node);
    planFrames();
    planEnds();
    planDictionaries();
    planNames();
    planLists();
}

void WritePlan::look(Node& node) {
    if ((node.flags & (Node::kErased | Node::kGone)) != 0) {
        anyDead = true;
        m_dead.push_back(&node);
    }
    if (node.offset != 0 || node.kind == kKindNone) return;
    if (node.isLive()) created.push_back(&node);
}

void WritePlan::lookAtDead(Node& node) {
    Node* const owner = node.owner;
    if (node.offset == 0 || owner == nullptr || !owner->isLive()) return;
    if (node.has(Node::kTableRecord)) {
        recordsChanged.insert(owner);
        edit(*owner);
    }
    if (node.kind == kKindAttrib && owner->kind == kKindInsert) {
        attributesChanged.insert(owner);
        edit(*owner);
    }
    if (node.kind == kKindAttdef) m_definitionDied = true;
}

bool WritePlan::lacksBlock(const Node& record) const {
    if (!record.has(Node::kFramed)) return true;
    const auto frame = frames.find(&record);
    return frame != frames.end() && frame->second.begin->offset == 0;
}

/// An attribute may hold a text that changes without a word to the attribute.
bool WritePlan::holdsText(const Node& node) {
    if (node.body == nullptr || (node.kind != kKindAttrib && node.kind != kKindAttdef)) return false;
    if (const auto* attribute = OdDbAttribute::cast(node.body)) return attribute->isMTextAttribute();
    const auto* definition = OdDbAttributeDefinition::cast(node.body);
    return definition != nullptr && definition->isMTextAttributeDefinition();
}

void WritePlan::planFrames() {
    const bool old = isOldSource(data);
    const bool all = !created.empty() || !renamed.isEmpty() || m_definitionDied || old;
    for (const BlockFrame& frame : data.frames) {
        const bool changed = frame.record->has(Node::kDirty) || frame.record->offset == 0;
        if (!all && !changed) continue;
        frames.emplace(frame.record, frame);
        if (frame.begin->offset != 0 && changed) edit(*frame.begin);
    }
    for (Node* node : created) {
        if (node->has(Node::kTableRecord) && node->owner != nullptr) {
            recordsChanged.insert(node->owner);
            edit(*node->owner);
        }
        if (node->kind == kKindAttdef) editHeadOf(node->owner);
    }
    for (const Node* node : m_dead)
        if (node->kind == kKindAttdef) editHeadOf(node->owner);
    if (data.fixed.blockTable == nullptr) return;
    for (Node* record = data.fixed.blockTable->firstPart; record != nullptr; record = record->next)
        if (!record->has(Node::kFramed) && isLive(*record)) {
            FrameHandles& taken = frameHandles[record];
            taken.begin = handles.take();
            taken.end = handles.take();
        }
}

/// The head of a block tells whether there are definitions in it.
void WritePlan::editHeadOf(const Node* record) {
    const auto frame = frames.find(record);
    if (frame != frames.end()) edit(*frame->second.begin);
}

void WritePlan::planEnds() {
    for (Node* node : created) {
        Node* const owner = node->owner;
        if (owner != nullptr && node->kind == kKindAttrib && owner->kind == kKindInsert) {
            attributesChanged.insert(owner);
            edit(*owner);
        }
        const bool part = node->kind == kKindAttrib || node->kind == kKindVertex;
        if (!part || owner == nullptr || ends.count(owner) != 0) continue;
        bool closed = false;
        for (const Node* at = owner->firstPart; at != nullptr && !closed; at = at->next)
            closed = at->kind == kKindSeqend && !at->isErased();
        if (!closed) ends.emplace(owner, handles.take());
    }
}

/// Dictionaries aren't changed by the erasing of what they list.
void WritePlan::planDictionaries() {
    bool object = false;
    for (const Node* node : m_dead)
        object = object || (!node->has(Node::kEntity) && !node->has(Node::kTableRecord));
    if (!object) return;
    data.nodes.forEach([this](Node& node) {
        if (node.offset != 0 && isDictionary(node) && node.isLive() && hasDeadEntry(data, node)) edit(node);
    });
}

void WritePlan::planNames() {
    if (renamed.isEmpty()) return;
    data.nodes.forEach([this](Node& node) {
        if (node.offset != 0 && renamed.areNamedIn(node)) edit(node);
    });
}

/// Neither are other lists of handles: groups, drawing orders, reactors.
void WritePlan::planLists() {
    if (m_dead.empty() || data.source == nullptr) return;
    forListsWithDead(data, [this](const Node& node) { edit(node); });
}

KeptKinds WritePlan::kept() const {
    std::unordered_map<std::uint32_t, std::size_t> counts; // by kind and place
    std::unordered_map<std::uint32_t, const Node*> samples;
    const SkeletonParts skeleton = findSkeleton(data);
    data.nodes.forEach([&](Node& node) {
        if (node.kind == kKindNone || !isLive(node) || skeleton.entries.count(&node) != 0) return;
        const std::uint32_t key =
            static_cast<std::uint32_t>(node.kind) << 8 | (node.flags & (Node::kEntity | Node::kTableRecord));
        if (counts[key]++ == 0) samples[key] = &node;
    });
    KeptKinds kept;
    for (const auto& [key, count] : counts)
        if (!isRead(*samples[key])) kept[std::string(data.kinds.name(samples[key]->kind))] += count;
    for (const Section& section : data.sections)
        if (!isSectionRead(section.name) && !(section.name == "CLASSES" && skeleton.onlyItsClasses))
            ++kept["section " + section.name];
    return kept;
}

} // namespace lm::drawing
