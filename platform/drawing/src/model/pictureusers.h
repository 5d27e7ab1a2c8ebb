// SPDX-License-Identifier: MIT
// Which dimensions of a drawing show which block: a file has one for each, copies begin with the block of
// what they were copied from.
#pragma once

#include "model/node.h"

#include <unordered_map>
#include <vector>

namespace lm::drawing {

struct DatabaseData;

/// Filled when it is asked; entries that came since the last time are looked at then.
class PictureUsers {
public:
    /// Whether another live dimension than this one, or a reference, shows a block.
    bool hasOthers(DatabaseData& data, Node& block, const Node& dimension);
    /// A dimension goes over to another block.
    void add(Node& block, Node& dimension);

private:
    const std::vector<Node*>& of(DatabaseData& data, Node& block);

    std::unordered_map<const Node*, std::vector<Node*>> m_users;
    std::size_t m_seen = 0;
};

} // namespace lm::drawing
