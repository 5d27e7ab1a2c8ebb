// SPDX-License-Identifier: MIT
// Names in the groups of a file that stand for records which were renamed since. Entities name their layer,
// so renaming one layer changes entries that nobody opened.
#pragma once

#include "dxf/outgroups.h"

#include <unordered_set>

namespace lm::drawing {

class RenamedRecords {
public:
    explicit RenamedRecords(DatabaseData& data);
    bool isEmpty() const { return m_renamed.empty(); }
    /// Whether an entry of the source names such a record.
    bool areNamedIn(const Node& node) const;
    /// Puts the new names into groups of an entry; those that are typed have them already.
    void apply(std::uint16_t kind, OutGroups& groups) const;
    /// The new name for a group of an entry of a kind, null when it names no renamed record.
    const OdString* find(std::uint16_t kind, const Group& group) const;

private:
    void collect(Node* table);
    DatabaseData& m_data;
    std::unordered_set<const Node*> m_renamed;
};

} // namespace lm::drawing
