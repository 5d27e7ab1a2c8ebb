// SPDX-License-Identifier: MIT
// The groups of one entry as they are written, when they aren't simply those of the source.
#pragma once

#include "dxf/skeleton.h"
#include "dxf/write_fields.h"
#include "dxf/write_plan.h"

namespace lm::drawing {

class EntryMaker {
public:
    EntryMaker(WritePlan& plan, FileVersion version, const Skeleton& skeleton);

    /// All groups of an entry of the database.
    OutGroups make(Node& node);
    /// Entries that the database has no node for: the end of an owner's parts, head and end of a block.
    OutGroups end(const Node& owner);
    OutGroups blockBegin(Node& record);
    OutGroups blockEnd(const Node& record);

private:
    OutGroups given(const Node& node);
    OutGroups fresh(Node& node);
    void addItem(OutGroups& groups, const LayoutItem& item, Node& node, const OdDbObject& unset);
    void addList(OutGroups& groups, const LayoutItem& item, Node& node);
    void addEmbeddedText(OutGroups& groups, const Node& node);
    void edit(OutGroups& groups, Node& node, bool isCopy);
    void editHandle(OutGroups& groups, const Node& node);
    void editOwner(OutGroups& groups, const Node& node, bool isCopy);
    void editPaper(OutGroups& groups, const Node& node);
    void editBody(OutGroups& groups, Node& node, const ReadGroups& read);
    void editFollow(OutGroups& groups, const Node& node);
    void editBlock(OutGroups& groups, Node& node);
    void editXDataOf(OutGroups& groups, const Node& node, bool isCopy);
    bool standsInPaper(const Node& node);
    std::string_view tableName(const Node& table) const;
    long long liveRecords(const Node& table) const;
    long long blockFlags(const Node& record, long long before);
    void addBlockHead(OutGroups& groups, const LayoutItem& item, Node& record);

    WritePlan& m_plan;
    DatabaseData& m_data;
    FileVersion m_version;
    const Skeleton& m_skeleton;
    std::unordered_set<const Node*> m_completed; ///< entries that the skeleton has something for
    const Node* m_lastOwner = nullptr;           ///< the answer of standsInPaper for the parts of one owner
    bool m_lastPaper = false;
};

} // namespace lm::drawing
