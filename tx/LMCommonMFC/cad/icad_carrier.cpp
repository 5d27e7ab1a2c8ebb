// SPDX-License-Identifier: MIT
#include "cad/icad_carrier.h"

#include "cad/icad_detail.h"

#include "drawing/partwalk.h"

namespace lm::cad {

namespace {

const char kCarrierLayer[] = "RZ_FREEZE";
constexpr int kApplication = 1001;
constexpr int kText = 1000;

OdSmartPtr<OdDbBlockTableRecord> openSpace(const OdDbDatabase* db) {
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbBlockTableRecord>(db->getModelSpaceId().openObject(OdDb::kForWrite));
}

} // namespace

void walkCarriers(const OdDbDatabase* db, const std::function<bool(const OdDbPoint&)>& visit) {
    const OdSmartPtr<OdDbBlockTableRecord> space = openSpace(db);
    if (space.isNull()) return;
    const OdString layer(kCarrierLayer);
    for (drawing::PartWalk walk(space->objectId()); !walk.done(); walk.next()) {
        // Most entities are references, and their kind is known without looking at the object.
        if (walk.isReference()) continue;
        const OdDbPoint* const point = OdDbPoint::cast(walk.entity());
        if (point != nullptr && point->layer() == layer && visit(*point)) return;
    }
}

OdSmartPtr<OdDbPoint> firstCarrier(const OdDbDatabase* db, OdDb::OpenMode mode) {
    OdDbObjectId first;
    if (mode == OdDb::kForRead) {
        walkCarriers(db, [&](const OdDbPoint& point) {
            first = point.objectId();
            return true;
        });
        return OdSmartPtr<OdDbPoint>(first.openObject());
    }
    const OdSmartPtr<OdDbBlockTableRecord> space = openSpace(db);
    if (space.isNull()) return {};
    const OdString layer(kCarrierLayer);
    const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        const OdSmartPtr<OdDbObject> object = walk->objectId().openObject(mode);
        OdDbPoint* const point = OdDbPoint::cast(object.get());
        if (point != nullptr && point->layer() == layer) return point;
    }
    return {};
}

bool readSetting(const OdDbObject& carrier, const RZString& id, RZString& text) {
    const OdSmartPtr<OdResBuf> record = recordAt(carrier.xData(id), 1);
    if (record.isNull()) return false;
    text = record->getString();
    return true;
}

OdSmartPtr<OdResBuf> settingChain(const RZString& id, const RZString& text) {
    const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(kApplication, id);
    chain->append(OdResBuf::newRb(kText, text));
    return chain;
}

void writeChain(OdDbObject& object, const OdSmartPtr<OdResBuf>& chain) {
    if (!object.isWriteEnabled()) object.upgradeOpen();
    object.setXData(chain);
}

} // namespace lm::cad
