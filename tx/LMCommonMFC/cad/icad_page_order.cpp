// SPDX-License-Identifier: MIT
// The orders in which a project lists its groups and pages, and its panels.
#include "arguments.h"
#include "cad/icad.h"
#include "cad/icad_carrier.h"
#include "log.h"
#include "vocabulary/names.h"

#include "host/database.h"

namespace {

const char kOrderOfGroups[] = "RZ_ORDEM_GRU";
/// Followed by the name of a group: each group has an id of its own.
const char kOrderOfPages[] = "RZ_ORDEM_PAG_";

} // namespace

int CICad::GetOrdemGrupos(CHostDatabase* db) {
    return lm::log::guarded("CICad::GetOrdemGrupos", [&] {
        int order = 2;
        lm::cad::walkCarriers(db, [&](const OdDbPoint& carrier) {
            if (RZString text; lm::cad::readSetting(carrier, kOrderOfGroups, text)) order = text.toInt();
            // Unlike its sisters this reader goes on: of several carriers the last one with a value counts.
            return false;
        });
        return order;
    });
}

int CICad::SetOrdemGrupos(int valor) {
    return lm::log::guarded("CICad::SetOrdemGrupos", [&] {
        const OdSmartPtr<OdDbPoint> carrier = lm::cad::firstCarrier(getDatabase(), OdDb::kForRead);
        if (carrier.isNull()) return 2;
        RegisterAppName(kOrderOfGroups);
        lm::cad::writeChain(*carrier, lm::cad::settingChain(kOrderOfGroups, RZString(valor, 0)));
        return 0;
    });
}

int CICad::GetOrdemPaginas(RZString grupo) {
    return lm::log::guarded("CICad::GetOrdemPaginas", [&] {
        const RZString id = RZString(kOrderOfPages) + grupo;
        int order = 1;
        lm::cad::walkCarriers(getDatabase(), [&](const OdDbPoint& carrier) {
            RZString text;
            if (!lm::cad::readSetting(carrier, id, text)) return false;
            order = text.toInt();
            return true;
        });
        return order;
    });
}

int CICad::SetOrdemPaginas(RZString grupo, int valor) {
    return lm::log::guarded("CICad::SetOrdemPaginas", [&] {
        const OdSmartPtr<OdDbPoint> carrier = lm::cad::firstCarrier(getDatabase(), OdDb::kForRead);
        if (carrier.isNull()) return 2;
        const RZString id = RZString(kOrderOfPages) + grupo;
        RegisterAppName(id);
        lm::cad::writeChain(*carrier, lm::cad::settingChain(id, RZString(valor, 0)));
        return 0;
    });
}

OdSmartPtr<OdResBuf> CICad::GetPaineisDefinidos(CHostDatabase* db) {
    return lm::log::guarded("CICad::GetPaineisDefinidos", [&] {
        OdSmartPtr<OdResBuf> panels;
        lm::cad::walkCarriers(db, [&](const OdDbPoint& carrier) {
            panels = carrier.xData(lm::names::TVO_RZ_PAINEL);
            return !panels.isNull();
        });
        return panels;
    });
}

int CICad::SetPaineisDefinidos(OdSmartPtr<OdResBuf> paineis) {
    return lm::log::guarded("CICad::SetPaineisDefinidos", [&] {
        const OdSmartPtr<OdDbPoint> carrier = lm::cad::firstCarrier(getDatabase(), OdDb::kForRead);
        if (carrier.isNull()) return 2;
        RegisterAppName(lm::names::TVO_RZ_PAINEL);
        lm::cad::writeChain(*carrier, paineis);
        return 0;
    });
}
