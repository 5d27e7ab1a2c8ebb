// SPDX-License-Identifier: MIT
// Commands on chosen entities: _ERASE, _MOVE, _COPY, _EXPLODE.
#include "hostcommands.h"

#include "drawing/blockreference.h"
#include "drawing/deepclone.h"
#include "drawing/finite.h"

#include <map>
#include <set>

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

/// Counts what a command leaves as it is, and says so in one line: "can't be moved: 2 3DSOLID, 1 REGION".
class LeftOut {
public:
    /// An entity counts once, however often it is left out.
    void add(const OdDbEntity& entity, OdDbObjectId id) {
        if (m_known.insert(id.getHandle().value()).second) ++m_kinds[lm::drawing::utf8(entity.dxfName())];
    }
    bool isEmpty() const { return m_kinds.empty(); }
    void tell(const char* what) const {
        if (m_kinds.empty()) return;
        tellUser("can't be " + std::string(what) + ": " + text());
    }
    std::string text() const {
        std::string line;
        for (const auto& [kind, count] : m_kinds)
            line += (line.empty() ? "" : ", ") + std::to_string(count) + " " + kind;
        return line;
    }

private:
    std::set<std::uint64_t> m_known;
    std::map<std::string, std::size_t> m_kinds;
};

bool isIdentity(const OdGeMatrix3d& matrix) {
    const OdGeMatrix3d identity;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            if (matrix.entry[row][column] != identity.entry[row][column]) return false;
    return true;
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

/// Moves an entity; false for one that can't be moved. Raises CommandFailed where it would end infinitely far
/// away; what came so from a file is moved as far as it goes.
bool isMoved(OdDbEntity& entity, const OdGeMatrix3d& matrix) {
    const bool wasFinite = lm::drawing::isFinite(entity);
    if (entity.transformBy(matrix) != eOk) return false;
    if (wasFinite) requireFinite(entity);
    return true;
}

void move(OdEdCommandContext& context) {
    documentOf(context);
    const std::vector<OdDbObjectId> ids = context.input().selection(kSelect);
    if (ids.empty()) return;
    const OdGeMatrix3d matrix = OdGeMatrix3d::translation(displacement(context.input()));
    LeftOut leftOut;
    for (const OdDbObjectId id : ids) {
        context.checkTime();
        if (const OdSmartPtr<OdDbEntity> entity = changeable(id);
            !entity.isNull() && !isMoved(*entity, matrix))
            leftOut.add(*entity, id);
    }
    leftOut.tell("moved");
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

/// Copies one entity in a transaction of its own and enters the pairs into `all`. Reactors hear of a copy
/// when it is in its place. One that can't be moved would lie on what it was copied from: it is taken back
/// and counted.
void copyOne(OdDbDatabase& database, OdDbObjectId id, const OdGeVector3d& by, OdDbIdMapping& all,
             LeftOut& leftOut) {
    const OdSmartPtr<OdDbObject> source = id.openObject();
    if (source.isNull()) return;
    SmallTransaction transaction(database);
    const OdSmartPtr<OdDbIdMapping> pairs(new OdDbIdMapping, lm::drawing::kAttach);
    pairs->setDestDb(&database);
    OdArray<OdDbObjectId> one;
    one.append(id);
    bool isInPlace = true;
    lm::drawing::deepCloneChanged(database, one, source->ownerId(), *pairs, [&] {
        OdDbIdPair clone(id);
        if (!pairs->compute(clone)) return;
        const OdSmartPtr<OdDbObject> opened = clone.value().openObject(OdDb::kForWrite);
        OdDbEntity* const entity = OdDbEntity::cast(opened.get());
        isInPlace = entity == nullptr || isMoved(*entity, OdGeMatrix3d::translation(by));
        if (!isInPlace) leftOut.add(*entity, id);
    });
    if (!isInPlace) return;
    for (const OdDbIdPair& each : pairs->pairs()) all.assign(each);
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
    LeftOut leftOut;
    for (bool given = input.pointOrNothing("Second point", target); given || isFirst;
         given = input.pointOrNothing("Second point", target)) {
        for (const OdDbObjectId id : ids) {
            context.checkTime();
            copyOne(database, id, given ? target - base : base.asVector(), *mapping, leftOut);
        }
        isFirst = false;
        if (!given) break;
    }
    leftOut.tell("copied");
}

/// What a reference shows and can't be taken along by its transform: it would come out where it stands in the
/// block. A dimension comes out as its picture then.
LeftOut unmovableIn(const OdDbBlockReference& reference) {
    LeftOut all;
    const OdSmartPtr<OdDbBlockTableRecord> block(reference.blockTableRecord().openObject());
    const OdGeMatrix3d matrix = reference.blockTransform();
    if (block.isNull() || (isIdentity(matrix) && reference.columns() == 1 && reference.rows() == 1))
        return all;
    const OdSmartPtr<OdDbObjectIterator> walk = block->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        if (OdDbUnreadEntity::cast(entity.get()) == nullptr) continue;
        const OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(entity->clone()), lm::drawing::kAttach);
        const std::string kind = lm::drawing::utf8(entity->dxfName());
        if (!kind.ends_with("DIMENSION") && copy->transformBy(matrix) != eOk)
            all.add(*entity, walk->objectId());
    }
    return all;
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
    if (const auto* reference = OdDbBlockReference::cast(entity.get()))
        if (const LeftOut held = unmovableIn(*reference); !held.isEmpty()) {
            tellUser("can't be exploded: " + lm::drawing::utf8(entity->dxfName()) + " " +
                     lm::drawing::utf8(id.getHandle().ascii()) + ", which holds " + held.text());
            return;
        }
    const OdSmartPtr<OdDbBlockTableRecord> owner(entity->ownerId().openObject(OdDb::kForWrite));
    for (const OdSmartPtr<OdDbEntity>& piece : pieces) {
        owner->appendOdDbEntity(piece);
        requireFinite(*piece);
    }
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
