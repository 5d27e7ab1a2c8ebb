// SPDX-License-Identifier: MIT
// Pages that are covers or indexes, and how the pages of a project are numbered.
#include "arguments.h"
#include "cad/icad.h"
#include "cad/icad_carrier.h"
#include "log.h"
#include "vocabulary/names.h"

#include "host/database.h"
#include "host/document.h"

namespace {

const char kCover[] = "CAPA";
const char kIndex[] = "INDICE";
const char kNumbering[] = "RZ_NUM_PAG";
/// Stands for no numbering mode, be it stored or not.
constexpr int kNoMode = -1;

OdSmartPtr<OdDbObject> openLayer(const RZString& name, OdDb::OpenMode mode) {
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return {};
    const OdSmartPtr<OdDbSymbolTable> table(db->getLayerTableId().openObject());
    return table.isNull() ? OdSmartPtr<OdDbObject>() : OdSmartPtr<OdDbObject>(table->getAt(name, mode));
}

/// Whether an object is a layer with data under an id. What the data is doesn't matter.
bool isMarkedLayer(const OdSmartPtr<OdDbObject>& object, const CHostString& id) {
    const OdDbLayerTableRecord* const layer = OdDbLayerTableRecord::cast(object.get());
    return layer != nullptr && !layer->xData(id).isNull();
}

/// The id that marks a layer as of a type; empty for an unknown type.
CHostString markOf(const RZString& type) {
    if (type == kCover) return lm::names::TVO_RZ_CAPA;
    if (type == kIndex) return lm::names::TVO_RZ_INDICE;
    return {};
}

} // namespace

bool CICad::isPaginaCapa(RZString layer) {
    return isMarkedLayer(openLayer(layer, OdDb::kForRead), lm::names::TVO_RZ_CAPA);
}

bool CICad::isPaginaCapa(RZID layer) {
    return isMarkedLayer(layer.openObject(), lm::names::TVO_RZ_CAPA);
}

bool CICad::isPaginaIndice(RZString layer) {
    return isMarkedLayer(openLayer(layer, OdDb::kForRead), lm::names::TVO_RZ_INDICE);
}

bool CICad::isPaginaIndice(RZID layer) {
    return isMarkedLayer(layer.openObject(), lm::names::TVO_RZ_INDICE);
}

void CICad::setPaginaCapa(RZString layer) {
    setTipoLayer(layer, kCover);
}

void CICad::setPaginaIndice(RZString layer) {
    setTipoLayer(layer, kIndex);
}

void CICad::setTipoLayer(RZString layer, RZString tipo) {
    const CHostString id = markOf(tipo);
    RegisterAppName(id);
    const OdSmartPtr<OdDbObject> object = openLayer(layer, OdDb::kForWrite);
    if (!object.isNull()) lm::cad::writeChain(*object, lm::cad::settingChain(id, tipo));
}

int CICad::GetNumeracaoPaginas(CHostDatabase* db) {
    return lm::log::guarded("CICad::GetNumeracaoPaginas", [&] {
        int mode = kNoMode;
        lm::cad::walkCarriers(db, [&](const OdDbPoint& carrier) {
            RZString text;
            if (!lm::cad::readSetting(carrier, kNumbering, text)) return false;
            mode = text.toInt();
            return true;
        });
        if (mode != kNoMode) return mode;
        return GetVarStr("*NUMERAR_POR_PROJ*", "0", ACTIVE_DOCUMENT()) == "S" ? 1 : 0;
    });
}

int CICad::SetNumeracaoPaginas(int valor) {
    return lm::log::guarded("CICad::SetNumeracaoPaginas", [&] {
        const OdSmartPtr<OdDbPoint> carrier = lm::cad::firstCarrier(getDatabase(), OdDb::kForWrite);
        if (carrier.isNull()) return 2;
        RegisterAppName(kNumbering);
        lm::cad::writeChain(*carrier, lm::cad::settingChain(kNumbering, RZString(valor, 0)));
        return 0;
    });
}

RZString CICad::FormataNumeroPagina(int numero) {
    RZString width = GetVarStr("*QTD_JUSTIFY_PAG*", "", ACTIVE_DOCUMENT());
    if (width.isEmpty()) width = "1";
    return RZString(numero, width.toInt());
}
