// SPDX-License-Identifier: MIT
// Layers, which the pages of a project are: making, changing and erasing them, and the current one.
#include "arguments.h"
#include "cad/icad_detail.h"
#include "log.h"

#include "host/database.h"

namespace {

const char kLayerZero[] = "0";

OdSmartPtr<OdDbSymbolTable> openLayerTable(const OdDbDatabase* db, OdDb::OpenMode mode = OdDb::kForRead) {
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbSymbolTable>(db->getLayerTableId().openObject(mode));
}

OdSmartPtr<OdDbLayerTableRecord> layerAt(const OdDbSymbolTable& table, const RZString& name,
                                         OdDb::OpenMode mode) {
    return OdSmartPtr<OdDbLayerTableRecord>(table.getAt(name, mode));
}

OdSmartPtr<OdDbLayerTableRecord> openLayer(const OdDbDatabase* db, const RZString& name,
                                           OdDb::OpenMode mode) {
    const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(db);
    if (table.isNull()) return {};
    return layerAt(*table, name, mode);
}

/// Walks the records of a table that aren't erased, in table order.
template<class Visit>
void forEachRecord(const OdDbSymbolTable& table, Visit&& visit) {
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table.newIterator();
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) visit(*walk);
}

OdSmartPtr<OdDbLayerTableRecord> newLayer() {
    OdSmartPtr<OdRxObject> object(OdDbLayerTableRecord::desc()->create(), lm::drawing::kAttach);
    // Users know this text from their logs; the missing blank belongs to it.
    if (object.isNull()) throw OdError(OdString("OdDbOdDbLayerTableRecordis not loaded"));
    return OdSmartPtr<OdDbLayerTableRecord>(object);
}

/// Clears one flag of a layer where it is set: 0, or 2 without the layer. One that is clear stays open for
/// reading only, so showing a page that shows already leaves nothing to undo.
int clearFlag(const OdDbDatabase* db, const RZString& name, bool (OdDbLayerTableRecord::*isSet)() const,
              void (OdDbLayerTableRecord::*set)(bool)) {
    const OdSmartPtr<OdDbLayerTableRecord> layer = openLayer(db, name, OdDb::kForRead);
    if (layer.isNull()) return 2;
    if ((layer.get()->*isSet)()) {
        layer->upgradeOpen();
        (layer.get()->*set)(false);
    }
    return 0;
}

} // namespace

bool CICad::CriarLayer(RZString nome, OdDbDatabase* db) {
    if (nome.isEmpty()) return false;
    const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(db, OdDb::kForWrite);
    if (table.isNull()) return false;
    const OdSmartPtr<OdDbLayerTableRecord> layer = newLayer();
    layer->setName(nome);
    if (table->has(nome)) return false;
    table->add(layer);
    return true;
}

bool CICad::ExisteLayer(RZString nome, OdDbDatabase* db) {
    // Callers go on to change the layer, so one that can't be opened for write doesn't count.
    return !openLayer(db, nome, OdDb::kForWrite).isNull();
}

bool CICad::ApagarLayer(RZString nome, OdDbDatabase* db) {
    const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(db);
    if (table.isNull()) return true;
    const OdSmartPtr<OdDbLayerTableRecord> layer = layerAt(*table, nome, OdDb::kForWrite);
    return !layer.isNull() && layer->erase(true) == eOk;
}

int CICad::ApagarEntidadesLayer(RZString nome) {
    return lm::log::guarded("CICad::ApagarEntidadesLayer", [&] {
        const OdSmartPtr<OdDbBlockTableRecord> space = lm::cad::openModelSpace(OdDb::kForWrite);
        if (space.isNull()) return 0;
        const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
        for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
            const OdSmartPtr<OdDbEntity> entity(walk->objectId().openObject(OdDb::kForWrite));
            if (!entity.isNull() && nome == entity->layer()) entity->erase(true);
        }
        return 0;
    });
}

bool CICad::CongelaLayer(RZString nome) {
    const OdSmartPtr<OdDbLayerTableRecord> layer = openLayer(getDatabase(), nome, OdDb::kForWrite);
    if (layer.isNull()) return false;
    layer->setIsFrozen(true);
    return true;
}

int CICad::CongelaTodasLayers() {
    const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(getDatabase());
    if (table.isNull()) return 0;
    const OdString zero(kLayerZero);
    forEachRecord(*table, [&](const OdDbSymbolTableIterator& walk) {
        const OdSmartPtr<OdDbLayerTableRecord> layer(walk.getRecord());
        if (layer->getName() == zero || layer->isFrozen()) return;
        layer->upgradeOpen();
        layer->setIsFrozen(true);
    });
    return 0;
}

int CICad::DescongelaLayer(RZString nome, OdDbDatabase* db) {
    return clearFlag(db, nome, &OdDbLayerTableRecord::isFrozen, &OdDbLayerTableRecord::setIsFrozen);
}

int CICad::HabilitaLayer(RZString nome, OdDbDatabase* db) {
    return clearFlag(db, nome, &OdDbLayerTableRecord::isLocked, &OdDbLayerTableRecord::setIsLocked);
}

int CICad::LayerOn(RZString nome, OdDbDatabase* db) {
    return clearFlag(db, nome, &OdDbLayerTableRecord::isOff, &OdDbLayerTableRecord::setIsOff);
}

RZStringList CICad::GetLayers(OdDbDatabase* db) {
    return lm::log::guarded("CICad::GetLayers", [&] {
        RZStringList names;
        const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(db);
        if (table.isNull()) return names;
        forEachRecord(*table, [&](const OdDbSymbolTableIterator& walk) {
            names.addTail(RZString(walk.getRecord()->getName()));
        });
        return names;
    });
}

namespace {

const char kCurrentLayer[] = "CLAYER";
/// The group code of a record that names an object.
constexpr int kSoftPointer = 330;

} // namespace

RZString CICad::GetLayerCorrente(OdDbDatabase* db) {
    return lm::log::guarded("CICad::GetLayerCorrente", [&]() -> RZString {
        if (db == nullptr) return RZString();
        const OdSmartPtr<OdResBuf> value = db->getSysVar(kCurrentLayer);
        if (value.isNull()) return RZString();
        if (value->restype() != kSoftPointer) return value->getString();
        const OdSmartPtr<OdDbLayerTableRecord> layer(value->getObjectId().openObject());
        return layer.isNull() ? RZString() : RZString(layer->getName());
    });
}

RZString CICad::SetLayerCorrente(RZString nome, OdDbDatabase* db) {
    return lm::log::guarded("CICad::SetLayerCorrente", [&] {
        if (const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(db); !table.isNull()) {
            // Not in `db`: what is shown, and so thawed, is the drawing that work goes to.
            DescongelaLayer(nome, getDatabase());
            const OdSmartPtr<OdResBuf> value = OdResBuf::newRb(kSoftPointer);
            value->setObjectId(table->getAt(nome));
            db->setSysVar(kCurrentLayer, value);
        }
        return GetLayerCorrente(db);
    });
}

bool CICad::RenomearLayer(RZString antigo, RZString novo) {
    return lm::log::guarded("CICad::RenomearLayer", [&] {
        const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(getDatabase());
        if (table.isNull()) return false;
        const OdSmartPtr<OdDbLayerTableRecord> layer = layerAt(*table, antigo, OdDb::kForWrite);
        const OdSmartPtr<OdDbLayerTableRecord> taken = layerAt(*table, novo, OdDb::kForRead);
        if (layer.isNull() || !taken.isNull()) return false;
        layer->setName(novo);
        return true;
    });
}

void CICad::PurgeLayers(OdSmartPtr<OdDbDatabase> db) {
    const OdSmartPtr<OdDbSymbolTable> table = openLayerTable(db);
    if (table.isNull()) return;
    OdArray<OdDbObjectId> ids;
    forEachRecord(*table, [&](const OdDbSymbolTableIterator& walk) { ids.append(walk.getRecordId()); });
    if (ids.isEmpty()) return;
    db->purge(ids);
    for (const OdDbObjectId& id : ids) {
        const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite);
        if (OdDbLayerTableRecord* const layer = OdDbLayerTableRecord::cast(object.get())) layer->erase(true);
    }
}

void CICad::PurgeLayers() {
    PurgeLayers(OdSmartPtr<OdDbDatabase>(getDatabase()));
}

RZStringList CICad::getTiposLinhas(bool todos) {
    RZStringList names;
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return names;
    const OdSmartPtr<OdDbSymbolTable> table(db->getLinetypeTableId().openObject());
    if (table.isNull()) return names;
    forEachRecord(*table, [&](const OdDbSymbolTableIterator& walk) {
        const OdDbObjectId id = walk.getRecordId();
        if (todos || (id != db->getLinetypeByBlockId() && id != db->getLinetypeByLayerId()))
            names.addTail(RZString(walk.getRecord()->getName()));
    });
    return names;
}
