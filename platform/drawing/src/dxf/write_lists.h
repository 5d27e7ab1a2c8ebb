// SPDX-License-Identifier: MIT
// Lists of handles that follow what the drawing holds: who uses a block, what belongs to a group, the drawing
// order, reactors, extension dictionaries. The handle of an object that was erased goes out of them while
// they are written. Handles that lead nowhere since the file was read stay.
#pragma once

#include "dxf/outgroups.h"

#include <functional>

namespace lm::drawing {

/// Visits the live entries of the source whose lists name an erased object. Costs a search through the
/// source, and reads only entries that have such lists.
void forListsWithDead(DatabaseData& data, const std::function<void(const Node&)>& visit);

/// Takes the handles of erased objects out of the lists of an entry of this kind, together with what belongs
/// to them. Braces that become empty by it go as well.
void dropDead(const DatabaseData& data, std::string_view kind, OutGroups& groups);

} // namespace lm::drawing
