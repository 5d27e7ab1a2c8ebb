// SPDX-License-Identifier: MIT
// Records of a table by name, case aside, as old files spell names.
#pragma once

#include "dxf/outgroups.h"

#include <unordered_map>

namespace lm::drawing {

class RecordNames {
public:
    /// The table may be null: it has no records then. It is looked through at the first question.
    explicit RecordNames(const Node* table) : m_table(table) {}
    /// The first live record of a name, null for none.
    const Node* find(const OdString& name) const;

private:
    const Node* m_table;
    mutable bool m_ready = false;
    mutable std::unordered_map<std::string, const Node*> m_records; ///< by name in lower case
};

} // namespace lm::drawing
