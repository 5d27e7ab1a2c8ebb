// SPDX-License-Identifier: MIT
// Chains of records as groups: extended data and xrecords. What didn't change keeps the groups that it came
// with.
#pragma once

#include "dxf/write_fields.h"

#include "drawing/dictionary.h"

namespace lm::drawing {

/// Appends a chain. Records are written by group code, whatever their payload is; a record whose code can't
/// stand there is left out: `first` to `last` can.
void addChain(OutGroups& groups, const OdResBuf* chain, int first, int last);

/// Appends the extended data of an object, application by application.
void addXData(OutGroups& groups, const OdDbObject& object);
/// Puts the extended data of an object in place of what the groups have.
void editXData(OutGroups& groups, const OdDbObject& object);

/// Appends the records of an xrecord.
void addRecords(OutGroups& groups, const OdDbXrecord& record);
/// Puts the records of an xrecord in place of what the groups have.
void editRecords(OutGroups& groups, const OdDbXrecord& record);

/// Appends the live entries of a dictionary.
void addEntries(OutGroups& groups, const OdDbDictionary& dictionary);
/// Leaves out the entries of a dictionary whose objects aren't live, and adds those that are new.
/// `dictionary` may be null, when it was never opened. With `isCopy` the groups' own entries count for
/// nothing.
void editEntries(OutGroups& groups, const DatabaseData& data, const OdDbDictionary* dictionary, bool isCopy);
/// Whether groups name an entry whose object isn't live.
bool hasDeadEntry(const DatabaseData& data, const Node& dictionary);

} // namespace lm::drawing
