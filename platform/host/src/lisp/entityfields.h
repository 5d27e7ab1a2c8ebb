// SPDX-License-Identifier: MIT
// Objects of a drawing as association lists: for each class a table of group codes, which drives entget,
// entmod, entmake, tblsearch and the filters of ssget.
#pragma once

#include "machine.h"

#include "drawing/database.h"

#include <span>

namespace lm::host::lisp {

/// Where a field is written: first everything is only checked, so that a refused list changes nothing.
struct FieldTarget {
    Machine& machine;
    OdDbDatabase& database;
    OdDbObject& object;
    bool apply = false;
};

/// One group code of a class.
struct Field {
    int code;
    /// The value behind the code; unbound where the object has no such group now.
    Value (*get)(Machine& machine, const OdDbObject& object);
    /// False for a value that doesn't fit; nothing has changed then. Null for a group that can only be read.
    bool (*set)(const FieldTarget& target, const Value& value);
};

/// What a class is made from and how its groups are read.
struct EntityClass {
    const char* name; ///< the type in group 0
    OdRxClass* (*desc)();
    OdSmartPtr<OdDbObject> (*make)(); ///< null for what entmake can't make
    std::span<const Field> fields;
};

/// The table of a type, or null.
const EntityClass* classOfType(WideView type);

/// The fields of an object, those of every entity included.
std::vector<const Field*> fieldsOf(const OdDbObject& object);

/// The fields of a record of a symbol table; none for anything else.
std::span<const Field> recordFields(const OdDbObject& object);

/// An entity's name as a value; nil for a null id.
Value nameValue(Machine& machine, OdDbObjectId id);

/// The list that entget gives. `applications` is nil or a list of patterns for extended data.
Value entityList(Machine& machine, const OdDbObject& object, const Value& name, const Value& applications);

/// The list that tblsearch gives for a record.
Value recordList(Machine& machine, const OdDbObject& record);

/// Writes the pairs of a list into an object; what the object has already is left alone. False, with nothing
/// changed, when a pair doesn't fit.
bool applyList(Machine& machine, OdDbDatabase& database, OdDbObject& object, const Value& list);

/// The value behind the first pair of a code; unbound when there is none.
Value valueOfCode(const Value& list, int code);

/// Records as pairs of code and value, and back; null for a value that no record can hold.
Value pairsOf(Machine& machine, const OdResBuf* chain);
OdSmartPtr<OdResBuf> recordOfPair(const Value& pair);

/// The record of a name in a table, or the null id.
OdDbObjectId recordNamed(OdDbObjectId table, WideView name);

/// The same for a name that something is to be made or called by: a record whose name differs in its case only
/// is taken for it, as other programs do.
OdDbObjectId recordToUse(OdDbObjectId table, WideView name);

/// The layer of a name in either case, which is made when it is new.
OdDbObjectId ensureLayer(OdDbDatabase& database, const OdString& name);

} // namespace lm::host::lisp
