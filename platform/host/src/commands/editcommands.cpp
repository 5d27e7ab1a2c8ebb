// SPDX-License-Identifier: MIT
// Commands on chosen entities: _ERASE, _MOVE, _COPY, _EXPLODE.
#include "hostcommands.h"

namespace lm::host {

namespace {

constexpr const char kSelect[] = "Select objects";

/// Opens an entity for a change; null when it went meanwhile or stands on a locked layer.
OdSmartPtr<OdDbEntity> changeable(OdDbObjectId id) {
    const OdSmartPtr<OdDbObject> object = id.openObject();
    OdDbEntity* const entity = OdDbEntity::cast(object.get());
    if (entity == nullptr) return {};
    const OdSmartPtr<OdDbObject> layer = entity->layerId().openObject();
    const auto* record = OdDbLayerTableRecord::cast(layer.get());
    if (record != nullptr && record->isLocked()) return {};
    entity->upgradeOpen();
    return OdSmartPtr<OdDbEntity>(entity);
}

void erase(OdEdCommandContext& context) {
    documentOf(context);
    for (const OdDbObjectId id : context.input().selection(kSelect)) {
        context.checkTime();
        if (const OdSmartPtr<OdDbEntity> entity = changeable(id); !entity.isNull()) entity->erase(true);
    }
}

/// Asks for two points and gives the difference. A second answer that is empty makes the first point the
/// difference itself.
OdGeVector3d displacement(CommandInput& input) {
    const OdGePoint3d base = input.point("Base point");
    OdGePoint3d target;
    return input.pointOrNothing("Second point", target) ? target - base : base.asVector();
}

void move(OdEdCommandContext& context) {
    documentOf(context);
    const std::vector<OdDbObjectId> ids = context.input().selection(kSelect);
    if (ids.empty()) return;
    const OdGeMatrix3d matrix = OdGeMatrix3d::translation(displacement(context.input()));
    for (const OdDbObjectId id : ids) {
        context.checkTime();
        if (const OdSmartPtr<OdDbEntity> entity = changeable(id); !entity.isNull())
            entity->transformBy(matrix);
    }
}

/// Ends a transaction: by committing when told so, else by aborting.
class SmallTransaction {
public:
    explicit SmallTransaction(OdDbDatabase& database) : m_database(database) { database.startTransaction(); }
    ~SmallTransaction() {
        if (!m_isOpen) return;
        try {
            m_database.abortTransaction();
        } catch (...) {
            // The exception that is under way tells more than a reactor's that comes after it.
        }
    }
    SmallTransaction(const SmallTransaction&) = delete;
    SmallTransaction& operator=(const SmallTransaction&) = delete;
    void commit() {
        m_isOpen = false;
        m_database.endTransaction();
    }

private:
    OdDbDatabase& m_database;
    bool m_isOpen = true;
};

/// Copies one entity in a transaction of its own and enters the pairs into `all`.
void copyOne(OdDbDatabase& database, OdDbObjectId id, const OdGeVector3d& by, OdDbIdMapping& all) {
    const OdSmartPtr<OdDbObject> source = id.openObject();
    if (source.isNull()) return;
    SmallTransaction transaction(database);
    const OdSmartPtr<OdDbIdMapping> pairs(new OdDbIdMapping, lm::drawing::kAttach);
    pairs->setDestDb(&database);
    OdArray<OdDbObjectId> one;
    one.append(id);
    database.deepCloneObjects(one, source->ownerId(), *pairs);
    for (const OdDbIdPair& pair : pairs->pairs()) all.assign(pair);
    OdDbIdPair clone(id);
    if (pairs->compute(clone)) {
        const OdSmartPtr<OdDbObject> opened = clone.value().openObject(OdDb::kForWrite);
        if (OdDbEntity* const entity = OdDbEntity::cast(opened.get()))
            entity->transformBy(OdGeMatrix3d::translation(by));
    }
    transaction.commit();
}

OdSmartPtr<OdDbIdMapping> newMapping(OdDbDatabase& database) {
    OdSmartPtr<OdDbIdMapping> mapping(new OdDbIdMapping, lm::drawing::kAttach);
    mapping->setDestDb(&database);
    return mapping;
}

/// Asks for a base point and for second points until an empty answer; copies to each.
void copy(OdEdCommandContext& context) {
    CHostDocument& document = documentOf(context);
    OdDbDatabase& database = *document.database();
    CommandInput& input = context.input();
    const std::vector<OdDbObjectId> ids = input.selection(kSelect);
    if (ids.empty()) return;
    const OdSmartPtr<OdDbIdMapping> mapping = newMapping(database);
    document.setCopyMappings(mapping, newMapping(database));
    const OdGePoint3d base = input.point("Base point");
    OdGePoint3d target;
    bool isFirst = true;
    for (bool given = input.pointOrNothing("Second point", target); given || isFirst;
         given = input.pointOrNothing("Second point", target)) {
        for (const OdDbObjectId id : ids) {
            context.checkTime();
            copyOne(database, id, given ? target - base : base.asVector(), *mapping);
        }
        isFirst = false;
        if (!given) break;
    }
}

void explodeOne(OdDbObjectId id) {
    const OdSmartPtr<OdDbEntity> entity = changeable(id);
    if (entity.isNull()) return;
    OdArray<OdSmartPtr<OdDbEntity>> pieces;
    if (entity->explode(pieces) != eOk) {
        tellUser("can't be exploded: " + lm::drawing::utf8(entity->dxfName()) + " " +
                 lm::drawing::utf8(id.getHandle().ascii()));
        return;
    }
    const OdSmartPtr<OdDbBlockTableRecord> owner(entity->ownerId().openObject(OdDb::kForWrite));
    for (const OdSmartPtr<OdDbEntity>& piece : pieces) owner->appendOdDbEntity(piece);
    entity->erase(true);
}

void explode(OdEdCommandContext& context) {
    documentOf(context);
    for (const OdDbObjectId id : context.input().selection(kSelect)) {
        context.checkTime();
        explodeOne(id);
    }
}

} // namespace

void addEditCommands(OdEdCommandStack& stack) {
    addCommand(stack, "_ERASE", &erase);
    addCommand(stack, "_MOVE", &move);
    addCommand(stack, "_COPY", &copy, OdEdCommand::kManyTransactions);
    addCommand(stack, "_EXPLODE", &explode);
}

} // namespace lm::host
