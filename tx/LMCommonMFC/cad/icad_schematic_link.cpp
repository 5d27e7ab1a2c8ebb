// SPDX-License-Identifier: MIT
// From any appearance of a component to its schematic object and back, the mending of these links after a
// copy, and two pieces of geometry that the wiring needs.
#include "arguments.h"
#include "cad/icad.h"
#include "cad/icad_detail.h"
#include "log.h"
#include "vocabulary/names.h"

#include "host/database.h"

#include <cmath>

namespace names = lm::names;

namespace {

/// A handle in extended data: under which application, at which position of the chain.
struct Link {
    const CHostString* application;
    int position;
};

/// The links to a schematic object, in the order in which they count.
constexpr Link kLinks[] = {{&names::TVO_LAYOUT_PAINEL, 1},
                           {&names::TVO_RZ_UNIFILAR, 1},
                           {&names::TVO_RZ_REPRESENTACAO, 2},
                           {&names::TVO_RZ_ANILHAFIO, 1},
                           {&names::TVO_RZ_ANILHACABO, 1}};

bool hasData(const OdDbObject& object, const CHostString& application) {
    return !object.xData(application).isNull();
}

/// The schematic object that an object names, or itself; null where the first link leads nowhere and where
/// there is none.
RZID linkedObject(const OdDbObject& object) {
    if (!lm::cad::recordAt(object.xData(names::TVO_RZ), 1).isNull()) return RZID(object.getDbHandle());
    for (const Link& link : kLinks) {
        const OdSmartPtr<OdResBuf> record = lm::cad::recordAt(object.xData(*link.application), link.position);
        if (!record.isNull()) return RZID(record->getString());
    }
    return RZID::kNull;
}

/// Points the handles of copied objects to the copies.
class LinkMender {
public:
    LinkMender(CICad& cad, const OdSmartPtr<OdDbIdMapping>& first, const OdSmartPtr<OdDbIdMapping>& second)
        : m_cad(cad), m_first(first), m_second(second) {}

    /// Mends an object by its kind; false for one of no kind that has links to mend.
    bool mend(const OdSmartPtr<OdDbObject>& object) {
        if (mendSchematic(object)) return true;
        if (hasData(*object, names::TVO_LAYOUT_RZ)) {
            update(object, names::TVO_LAYOUT_PAINEL, 1);
            update(object, names::TVO_LAYOUT_PAINEL, 3);
        } else if (hasData(*object, names::TVO_RZ_UNIFILAR)) {
            update(object, names::TVO_RZ_UNIFILAR, 1);
            update(object, names::TVO_RZ_ESQUEMATICO_UNIFILAR, 1);
        } else if (hasData(*object, names::TVO_RZ_REPRESENTACAO)) {
            update(object, names::TVO_RZ_REPRESENTACAO, 2);
        } else {
            return false;
        }
        return true;
    }

    /// The same for schematic objects alone. The mark counts even without a record behind it, unlike where a
    /// link is followed.
    bool mendSchematic(const OdSmartPtr<OdDbObject>& object) {
        if (!hasData(*object, names::TVO_RZ)) return false;
        update(object, names::TVO_LAYOUT_ESQUEMA, 1);
        update(object, names::TVO_LAYOUT_ESQUEMA, 3);
        update(object, names::TVO_RZ_ESQUEMATICO_UNIFILAR, 1);
        // One handle for each representation. A handle that stays ends it, also one in the middle.
        for (int position = 2; update(object, names::TVO_RZ_REPRESENTACAO_ESQ, position); position += 2) {
        }
        return true;
    }

private:
    bool update(const OdSmartPtr<OdDbObject>& object, const CHostString& application, int position) {
        return m_cad.updateXDataHandle(object, application, position, m_first, m_second);
    }

    CICad& m_cad;
    const OdSmartPtr<OdDbIdMapping>& m_first;
    const OdSmartPtr<OdDbIdMapping>& m_second;
};

/// Opens the new objects of a mapping one by one; true when `mend` answered so for any of them. By index: a
/// reactor that hears of a change may add pairs.
template<class Mend>
bool mendAll(const OdSmartPtr<OdDbIdMapping>& mapping, Mend&& mend) {
    bool any = false;
    if (mapping.isNull()) return any;
    for (std::size_t i = 0; i < mapping->pairs().size(); ++i) {
        const OdSmartPtr<OdDbObject> object = mapping->pairs()[i].value().openObject();
        if (!object.isNull() && mend(object)) any = true;
    }
    return any;
}

constexpr double kPi = 3.141592653589793;
constexpr double kFullTurn = 6.283185307179586;
constexpr double kDegreesPerRadian = 57.29577951308232;

double inFirstTurn(double angle) {
    while (angle < 0) angle += kFullTurn;
    while (angle > kFullTurn) angle -= kFullTurn;
    return angle;
}

double sineOfDegrees(double degrees) {
    return std::sin(degrees * kPi / 180);
}

} // namespace

RZID CICad::getObjIdEsquema(CHostDatabase*, OdSmartPtr<OdDbObject> obj) {
    return lm::log::guarded("CICad::getObjIdEsquema", [&]() -> RZID {
        if (obj.isNull()) return RZID::kNull;
        const RZID linked = linkedObject(*obj);
        return linked.isValid() ? linked : RZID(obj->objectId());
    });
}

RZID CICad::getObjIdEsquema(CHostDatabase* db, RZID id) {
    return lm::log::guarded("CICad::getObjIdEsquema",
                            [&] { return getObjIdEsquema(db, id.openObject(OdDb::kForRead)); });
}

RZID CICad::getObjIdEsquema(RZID id) {
    return lm::log::guarded("CICad::getObjIdEsquema", [&] { return getObjIdEsquema(getDatabase(), id); });
}

RZID CICad::getObjIdEsquema(OdSmartPtr<OdDbObject> obj) {
    return lm::log::guarded("CICad::getObjIdEsquema", [&] { return getObjIdEsquema(getDatabase(), obj); });
}

bool CICad::reassociaBlocos(OdSmartPtr<OdDbIdMapping> mapa1, OdSmartPtr<OdDbIdMapping> mapa2) {
    return lm::log::guarded("CICad::reassociaBlocos", [&] {
        LinkMender mender(*this, mapa1, mapa2);
        const bool first = mendAll(mapa1, [&](const auto& object) { return mender.mend(object); });
        const bool second = mendAll(mapa2, [&](const auto& object) { return mender.mendSchematic(object); });
        return first || second;
    });
}

OdGePoint3d CICad::getPontoRefInicioFio() {
    return {-10000.0, 1000.0, 0.0};
}

bool CICad::pontoPertenceLinha(OdGePoint3d inicio, OdGePoint3d fim, OdGePoint3d ponto, double tolerancia) {
    const double degrees = inFirstTurn((ponto - inicio).angleTo(fim - inicio)) * kDegreesPerRadian;
    const double distance = inicio.distanceTo(ponto), length = inicio.distanceTo(fim);
    const double along = sineOfDegrees(90 - degrees) * distance, aside = sineOfDegrees(degrees) * distance;
    if (!(aside >= -tolerancia && aside <= tolerancia)) return false;
    if (length > 0) return along >= -tolerancia && along <= length + tolerancia;
    return along >= length - tolerancia && along <= tolerancia;
}
