// SPDX-License-Identifier: MIT
// _PURGE: erases named things that nothing refers to.
#include "hostcommands.h"

#include "drawing/wildcard.h"

namespace lm::host {

namespace {

enum Kind { kBlocks, kLayers, kLinetypes, kStyles, kAll };

bool isFixed(const OdDbDatabase& database, OdDbObjectId id) {
    for (const OdDbObjectId fixed :
         {database.getLayerZeroId(), database.getLinetypeByBlockId(), database.getLinetypeByLayerId(),
          database.getLinetypeContinuousId(), database.getTextStyleStandardId()})
        if (id == fixed) return true;
    return false;
}

void collect(const OdDbDatabase& database, OdDbObjectId tableId, const OdString& pattern,
             OdArray<OdDbObjectId>& ids) {
    const OdSmartPtr<OdDbObject> object = tableId.openObject();
    const auto* table = OdDbSymbolTable::cast(object.get());
    if (table == nullptr) return;
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbSymbolTableRecord> record = walk->getRecord();
        const auto* block = OdDbBlockTableRecord::cast(record.get());
        if (block != nullptr && block->isLayout()) continue;
        if (!isFixed(database, walk->getRecordId()) && odutWcMatch(record->getName(), pattern))
            ids.append(walk->getRecordId());
    }
}

bool isWanted(CommandInput& input, bool verify, const OdString& name) {
    return !verify || input.keyword("Purge " + lm::drawing::utf8(name) + "?", {"Yes", "No"}) == 0;
}

/// Asks for the kind, for the names, and whether to ask for each name.
void purge(OdEdCommandContext& context) {
    OdDbDatabase& database = *documentOf(context).database();
    CommandInput& input = context.input();
    const int kind = input.keyword("Blocks, LAyers, LTypes, STyles or All",
                                   {"Blocks", "LAyers", "LTypes", "STyles", "All"});
    const std::string names = input.text("Names");
    const bool verify = input.keyword("Verify each name?", {"Yes", "No"}) != 1;
    const OdString pattern = wideText(names.empty() ? "*" : names);
    const bool all = kind == kAll || kind < 0;
    OdArray<OdDbObjectId> ids;
    if (all || kind == kBlocks) collect(database, database.getBlockTableId(), pattern, ids);
    if (all || kind == kLayers) collect(database, database.getLayerTableId(), pattern, ids);
    if (all || kind == kLinetypes) collect(database, database.getLinetypeTableId(), pattern, ids);
    if (all || kind == kStyles) collect(database, database.getTextStyleTableId(), pattern, ids);
    database.purge(ids);
    int count = 0;
    for (const OdDbObjectId id : ids) {
        context.checkTime();
        const OdSmartPtr<OdDbSymbolTableRecord> record(id.openObject());
        if (record.isNull() || !isWanted(input, verify, record->getName())) continue;
        record->upgradeOpen();
        if (record->erase(true) == eOk) ++count;
    }
    tellUser("purged: " + std::to_string(count));
}

} // namespace

void addPurgeCommand(OdEdCommandStack& stack) {
    addCommand(stack, "_PURGE", &purge);
}

} // namespace lm::host
