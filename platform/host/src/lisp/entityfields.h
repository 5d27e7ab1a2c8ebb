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
    std::span<const int> kept = {}; ///< codes that its objects hold without reading them
};

/// The table of a type, or null.
const EntityClass* classOfType(WideView type);

/// The fields of an object, those of every entity included.
std::vector<const Field*> fieldsOf(const OdDbObject& object);

/// The fields of a record of a symbol table; none for anything else.
std::span<const Field> recordFields(const OdDbObject& object);

/// Codes of groups that objects of a class hold and show without reading them: a new one can be given them,
/// and they stay as they are.
std::span<const int> keptCodes(const OdDbObject& object);
/// The same for a record of a symbol table.
std::span<const int> keptByRecord(const OdDbObject& object);

/// An entity's name as a value; nil for a null id.
Value nameValue(Machine& machine, OdDbObjectId id);

/// The list that entget gives. `applications` is nil or a list of patterns for extended data.
Value entityList(Machine& machine, const OdDbObject& object, const Value& name, const Value& applications);

/// The list that tblsearch gives for a record.
Value recordList(Machine& machine, const OdDbObject& record);

/// Extended data by application, as group -3 has it, of those that fit one of the patterns.
Value extendedData(Machine& machine, const OdDbObject& object, const Value& patterns);

/// Groups that an object holds without reading them, as pairs.
Value keptPairs(Machine& machine, const OdDbObject& object);

/// The space or layout that an entity stands in, when it isn't model space: the pairs 67 and 410, else nil.
Value layoutPairs(Machine& machine, const OdDbObject& object);

/// The type in group 0.
WideString typeOf(const OdDbObject& object);

/// Writes the pairs of a list into an object; what the object has already is left alone. False, with nothing
/// changed, when a pair doesn't fit, or asks for what the object can't hold. Passed over are a handle and an
/// owner for a new object, marks of classes, and what stands in braces. Where a new entity stands is up to
/// the caller.
bool applyList(Machine& machine, OdDbDatabase& database, OdDbObject& object, const Value& list);

/// The value behind the first pair of a code; unbound when there is none.
Value valueOfCode(const Value& list, int code);

/// Records as pairs of code and value, and back; null for a value that no record can hold.
Value pairsOf(Machine& machine, const OdResBuf* chain);
OdSmartPtr<OdResBuf> recordOfPair(const Value& pair);

/// The record of a name in a table, or the null id.
OdDbObjectId recordNamed(OdDbObjectId table, WideView name);

/// The same for a name that something is to be made or called by: a record whose name differs in its case
/// only is taken for it, as other programs do.
OdDbObjectId recordToUse(OdDbObjectId table, WideView name);

/// The layer of a name in either case, which is made when it is new.
OdDbObjectId ensureLayer(OdDbDatabase& database, const OdString& name);

} // namespace lm::host::lisp
