// SPDX-License-Identifier: MIT
// Extended data that is changed record by record, and the dictionaries that a project keeps by name.
#include "arguments.h"
#include "cad/icad.h"
#include "cad/icad_detail.h"
#include "log.h"

#include "host/database.h"

namespace {

constexpr int kApplication = 1001;

/// Both the application id and the dictionary of the cables.
const char kCables[] = "RZ_CABOS";

template<class T>
OdSmartPtr<T> make() {
    return OdSmartPtr<T>(new T, lm::drawing::kAttach);
}

/// Writes a chain back to the object that it came from.
void writeBack(OdDbObject& object, const OdSmartPtr<OdResBuf>& chain) {
    if (!object.isWriteEnabled()) object.upgradeOpen();
    object.setXData(chain);
}

/// Lets `change` change one record of an object's data and writes the chain back, unless the record isn't
/// there or `change` answers false.
template<class Change>
bool changeRecord(OdDbObject& object, const RZString& id, int position, Change&& change) {
    // A copy of the object's chain: giving up in the middle changes nothing.
    const OdSmartPtr<OdResBuf> chain = object.xData(id);
    const OdSmartPtr<OdResBuf> record = lm::cad::recordAt(chain, position);
    if (record.isNull() || !change(*record)) return false;
    writeBack(object, chain);
    return true;
}

OdSmartPtr<OdDbDictionary> openNamedObjects(const OdDbDatabase* db, OdDb::OpenMode mode) {
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbDictionary>(db->getNamedObjectsDictionaryId().openObject(mode));
}

/// Enters a new dictionary under a name, in place of whatever stands there. It is left open for write.
OdSmartPtr<OdDbDictionary> addDictionary(OdDbDictionary& root, const RZString& name) {
    const OdSmartPtr<OdDbDictionary> dictionary = make<OdDbDictionary>();
    root.setAt(name, dictionary);
    return dictionary;
}

} // namespace

void CICad::RegisterAppName(CHostString id) {
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return;
    const OdSmartPtr<OdDbSymbolTable> table(db->getRegAppTableId().openObject());
    if (table.isNull() || table->has(id)) return;
    const OdSmartPtr<OdDbRegAppTableRecord> record = make<OdDbRegAppTableRecord>();
    record->setName(id);
    table->upgradeOpen();
    table->add(record);
}

bool CICad::updateXData(OdSmartPtr<OdDbObject> obj, RZString id, int posicao, RZString valor) {
    return lm::log::guarded("CICad::updateXData", [&] {
        if (obj.isNull()) return false;
        RegisterAppName(id);
        return changeRecord(*obj, id, posicao, [&](OdResBuf& record) {
            record.setString(valor);
            return true;
        });
    });
}

bool CICad::updateXData(OdSmartPtr<OdDbObject> obj, RZString id, int posicao, int valor) {
    return lm::log::guarded("CICad::updateXData", [&] {
        if (obj.isNull()) return false;
        RegisterAppName(id);
        return changeRecord(*obj, id, posicao, [&](OdResBuf& record) {
            record.setInt32(valor);
            return true;
        });
    });
}

bool CICad::updateXData(RZID objId, RZString id, int posicao, RZString valor) {
    return lm::log::guarded("CICad::updateXData", [&] {
        return updateXData(objId.openObject(OdDb::kForWrite), id, posicao, valor);
    });
}

bool CICad::updateXDataHandle(OdSmartPtr<OdDbObject> obj, RZString id, int posicao,
                              OdSmartPtr<OdDbIdMapping> mapa1, OdSmartPtr<OdDbIdMapping> mapa2) {
    return lm::log::guarded("CICad::updateXDataHandle", [&] {
        if (obj.isNull() || mapa1.isNull()) return false;
        return changeRecord(*obj, id, posicao, [&](OdResBuf& record) {
            const RZID source(record.getString());
            if (source.isNull()) return false;
            OdSmartPtr<OdDbObject> target = getObjectId(mapa2, source).openObject();
            if (target.isNull()) target = getObjectId(mapa1, source).openObject();
            if (target.isNull()) return false;
            record.setString(target->getDbHandle().ascii());
            return true;
        });
    });
}

RZID CICad::getObjectId(OdSmartPtr<OdDbIdMapping> mapa, RZID id) {
    OdDbIdPair pair(id);
    if (mapa.isNull() || !mapa->compute(pair)) return RZID::kNull;
    return pair.value();
}

bool CICad::convertXDataType(OdSmartPtr<OdDbObject> obj, RZString id, int posicao, int codigo) {
    return lm::log::guarded("CICad::convertXDataType", [&] {
        if (obj.isNull()) return false;
        return changeRecord(*obj, id, posicao, [&](OdResBuf& record) {
            record.setRestype(codigo);
            return true;
        });
    });
}

bool CICad::convertXDataType(OdArray<OdDbObjectId> ids, RZString id, int posicao, int codigo) {
    return lm::log::guarded("CICad::convertXDataType", [&] {
        bool changed = false;
        for (const OdDbObjectId& each : ids)
            if (convertXDataType(each.openObject(), id, posicao, codigo)) changed = true;
        return changed;
    });
}

void CICad::removeXdata(OdSmartPtr<OdDbObject> obj, RZString id) {
    lm::log::guarded("CICad::removeXdata", [&] {
        // A lone record with the id is how a drawing is told to drop the id's chain.
        if (!obj.isNull()) writeBack(*obj, OdResBuf::newRb(kApplication, id));
    });
}

OdSmartPtr<OdDbDictionary> CICad::getNamedDic(RZString nome, const OdDbDatabase* db) {
    return lm::log::guarded("CICad::getNamedDic", [&]() -> OdSmartPtr<OdDbDictionary> {
        const OdSmartPtr<OdDbDictionary> root = openNamedObjects(db, OdDb::kForRead);
        if (root.isNull()) return {};
        const OdSmartPtr<OdDbObject> entry = root->getAt(nome, OdDb::kForWrite);
        if (OdDbDictionary* const found = OdDbDictionary::cast(entry.get())) return found;
        root->upgradeOpen();
        return addDictionary(*root, nome);
    });
}

OdSmartPtr<OdDbDictionary> CICad::getDicCabos(CHostDatabase* db) {
    RegisterAppName(kCables);
    const OdSmartPtr<OdDbDictionary> root = openNamedObjects(db, OdDb::kForWrite);
    if (root.isNull()) return {};
    // Unlike getNamedDic, an entry of another class is nothing to replace: the cables of a project hang on
    // it.
    const OdDbObjectId id = root->getAt(kCables);
    if (id.isValid()) return OdSmartPtr<OdDbDictionary>(id.openObject(OdDb::kForWrite));
    return addDictionary(*root, kCables);
}
