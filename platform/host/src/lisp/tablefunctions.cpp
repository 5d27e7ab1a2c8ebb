// SPDX-License-Identifier: MIT
// Records of symbol tables by name and one after the other. Names of records count with their case, those of
// tables without.
#include "document.h"
#include "entityfields.h"
#include "hoststate.h"

namespace lm::host::lisp {

namespace {

struct Table {
    const char* name;
    OdDbObjectId (OdDbDatabase::*id)() const;
};

constexpr Table kTables[] = {
    {"LAYER", &OdDbDatabase::getLayerTableId},     {"LTYPE", &OdDbDatabase::getLinetypeTableId},
    {"STYLE", &OdDbDatabase::getTextStyleTableId}, {"APPID", &OdDbDatabase::getRegAppTableId},
    {"VPORT", &OdDbDatabase::getViewportTableId},  {"VIEW", &OdDbDatabase::getViewTableId},
    {"BLOCK", &OdDbDatabase::getBlockTableId},
};
/// Tables that drawings have and this host doesn't read: they answer as empty ones.
constexpr const char* kUnread[] = {"UCS", "DIMSTYLE"};

/// The table that the first argument names; a null id for one that isn't read.
OdDbObjectId tableAt(Machine& machine, Arguments a, std::string& name) {
    name.clear();
    for (const WideChar unit : machine.textAt(a, 0)) name += static_cast<char>(system::toUpper(unit));
    for (const Table& table : kTables)
        if (table.name == name) return (requireDatabase(machine).*table.id)();
    for (const char* unread : kUnread)
        if (unread == name) return OdDbObjectId();
    machine.failType("table name", a[0]);
}

/// Model and paper space aren't blocks to a program.
bool isShown(const OdDbObject& record) {
    const auto* block = OdDbBlockTableRecord::cast(&record);
    return block == nullptr || !block->isLayout();
}

OdSmartPtr<OdDbSymbolTableIterator> newWalk(OdDbObjectId table) {
    const OdSmartPtr<OdDbObject> object = table.openObject();
    const auto* records = OdDbSymbolTable::cast(object.get());
    return records == nullptr ? OdSmartPtr<OdDbSymbolTableIterator>() : records->newIterator();
}

// With a third argument the next tblnext goes on behind the record.
Value tblsearch(Machine& machine, Arguments a) {
    std::string name;
    const OdDbObjectId table = tableAt(machine, a, name);
    const OdDbObjectId id = recordNamed(table, machine.textAt(a, 1));
    const OdSmartPtr<OdDbObject> record = id.openObject();
    if (record.isNull()) return Value();
    if (a.size() > 2 && !a[2].isNil()) {
        OdSmartPtr<OdDbSymbolTableIterator> walk = newWalk(table);
        while (!walk->done() && walk->getRecordId() != id) walk->step();
        if (!walk->done()) walk->step();
        machine.host().tableWalks[name] = walk;
    }
    return recordList(machine, *record);
}

// With a second argument from the start on.
Value tblnext(Machine& machine, Arguments a) {
    std::string name;
    const OdDbObjectId table = tableAt(machine, a, name);
    OdSmartPtr<OdDbSymbolTableIterator>& walk = machine.host().tableWalks[name];
    if (walk.isNull() || (a.size() > 1 && !a[1].isNil())) walk = newWalk(table);
    if (walk.isNull()) return Value();
    for (; !walk->done(); walk->step()) {
        machine.tick();
        const OdSmartPtr<OdDbSymbolTableRecord> record = walk->getRecord();
        if (record.isNull() || !isShown(*record)) continue;
        walk->step();
        return recordList(machine, *record);
    }
    return Value();
}

Value tblobjname(Machine& machine, Arguments a) {
    std::string name;
    const OdDbObjectId table = tableAt(machine, a, name);
    return nameValue(machine, recordNamed(table, machine.textAt(a, 1)));
}

const Builtin kTableFunctions[] = {
    {"TBLSEARCH", 2, 3, &tblsearch}, {"TBLNEXT", 1, 2, &tblnext}, {"TBLOBJNAME", 2, 2, &tblobjname}};

} // namespace

std::span<const Builtin> tableFunctions() {
    return kTableFunctions;
}

} // namespace lm::host::lisp
