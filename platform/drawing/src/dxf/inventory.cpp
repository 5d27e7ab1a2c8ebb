// SPDX-License-Identifier: MIT
#include "drawing/inventory.h"

#include "dxf/read.h"
#include "dxf/skeletonfind.h"

#include "drawing/dictionary.h"

#include <map>

namespace lm::drawing {

namespace {

constexpr int kApplication = 1001;

bool isRead(const Node& node) {
    if (node.kind == kKindTable || node.kind == kKindBlock || node.kind == kKindEndblk ||
        node.kind == kKindSeqend)
        return true;
    const OdRxClass* unread[] = {OdDbUnreadEntity::desc(), OdDbUnreadObject::desc(),
                                 OdDbUnreadTableRecord::desc()};
    const OdSmartPtr<OdDbObject> probe(specOf(node).make(), kAttach);
    for (const OdRxClass* cls : unread)
        if (probe->isA() == cls) return false;
    return true;
}

/// Answers isRead for each kind and place once.
class ReadKinds {
public:
    bool operator()(const Node& node) {
        const std::uint32_t key =
            static_cast<std::uint32_t>(node.kind) << 8 | (node.flags & (Node::kEntity | Node::kTableRecord));
        const auto known = m_known.find(key);
        if (known != m_known.end()) return known->second;
        return m_known[key] = isRead(node);
    }

private:
    std::map<std::uint32_t, bool> m_known;
};

std::vector<OdString> applicationsOf(const DatabaseData& data, const Node& node) {
    std::vector<OdString> names;
    const Values values(*data.source);
    forEachGroup(*data.source, node, [&](const Group& group) {
        bool bad = false;
        if (group.code == kApplication) names.push_back(values.sharedText(group, bad));
        return true;
    });
    return names;
}

std::vector<OdString> applicationsOf(const OdDbObject& object) {
    std::vector<OdString> names;
    const OdSmartPtr<OdResBuf> chain = object.xData();
    for (const OdResBuf* at = chain.get(); at != nullptr; at = at->next().get())
        if (at->restype() == kApplication) names.push_back(at->getString());
    return names;
}

bool isSectionRead(const std::string& name) {
    return name == "HEADER" || name == "TABLES" || name == "BLOCKS" || name == "ENTITIES" ||
           name == "OBJECTS";
}

std::vector<OdString> dictionariesOf(DatabaseData& data, const SkeletonParts& skeleton) {
    std::vector<OdString> names;
    Node* const root = data.fixed.dictionary;
    auto* dictionary = root != nullptr ? OdDbDictionary::cast(data.bodyOf(root)) : nullptr;
    if (dictionary == nullptr) return names;
    const OdSmartPtr<OdDbDictionaryIterator> walk = dictionary->newIterator();
    for (; !walk->done(); walk->next())
        if (skeleton.entries.count(walk->objectId().node()) == 0) names.push_back(walk->name());
    return names;
}

template<class Map>
std::vector<std::pair<std::string, std::size_t>> flat(const Map& counts) {
    return {counts.begin(), counts.end()};
}

} // namespace

Inventory takeInventory(const OdDbDatabase& database) {
    DatabaseData& data = database.data();
    Inventory result;
    std::map<std::string, std::size_t> kept;
    std::map<std::uint16_t, std::size_t> unread;
    ReadKinds isReadKind;
    const SkeletonParts skeleton = findSkeleton(data);
    data.nodes.forEach([&](Node& node) {
        if (!node.isLive() || node.kind == kKindNone) return;
        if (!isReadKind(node) && skeleton.entries.count(&node) == 0) ++unread[node.kind];
        // An object that wasn't read yet is asked in its groups; reading it would only take memory.
        const bool fromFile = data.source != nullptr && node.body == nullptr;
        std::vector<OdString> names;
        if (fromFile)
            names = applicationsOf(data, node);
        else if (node.body != nullptr)
            names = applicationsOf(*node.body);
        if (!names.empty())
            result.xdata.push_back(
                {OdDbObjectId(&node), std::string(data.kinds.name(node.kind)), std::move(names)});
    });
    for (const auto& [kind, count] : unread) kept[std::string(data.kinds.name(kind))] += count;
    for (const Section& section : data.sections)
        if (!isSectionRead(section.name) && !(section.name == "CLASSES" && skeleton.onlyItsClasses))
            ++kept["SECTION " + section.name];
    result.kept = flat(kept);
    result.dictionaries = dictionariesOf(data, skeleton);

    std::map<std::string, std::size_t> entities;
    if (const Node* const space = data.fixed.modelSpace)
        for (const Node* part = space->firstPart; part != nullptr; part = part->next)
            if (!part->isErased() && part->kind != kKindSeqend)
                ++entities[std::string(data.kinds.name(part->kind))];
    result.modelSpace = flat(entities);
    return result;
}

} // namespace lm::drawing
