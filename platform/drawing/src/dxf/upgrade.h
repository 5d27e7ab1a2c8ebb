// SPDX-License-Identifier: MIT
// Entries of drawings older than R2000, written as R2000 and later have them. R12 has neither owners nor
// marks, and hardly any handles; R13 and R14 have marks, but owners in a few places only.
#pragma once

#include "dxf/outgroups.h"

namespace lm::drawing {

class Skeleton;

/// Turns the groups of an entry of an old source into how R2000 and later have them, in place:
/// - the handle (5, in a dimension style 105) is the node's, the owner (330) that of the node's owner; an
///   object that names none is its dictionary's, extension dictionaries their entry's;
/// - subclass marks (100) stand where they belong, and the groups behind theirs; an entry that has marks
/// keeps
///   its order;
/// - what moved has moved: arrow blocks of dimension styles are handles, line types tell the kind of each
/// dash,
///   layers have line weight and plot style, viewports have their view in groups and not in extended data
///   alone, blocks of layouts have the names of their records.
/// Groups that mean nothing here stay, in their order. Comments and extended data come last.
/// `groups` are those of the source behind the entry's type, one for one.
void upgradeEntry(const DatabaseData& data, const Skeleton& skeleton, const Node& node, OutGroups& groups);

} // namespace lm::drawing
