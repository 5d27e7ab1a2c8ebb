// SPDX-License-Identifier: MIT
// What a project drawing tells of itself: the version that wrote it, its configuration, its place on disk and
// in the document manager, and the norm key of an object.
#include "arguments.h"
#include "cad/icad.h"
#include "cad/icad_carrier.h"
#include "cad/icad_detail.h"
#include "log.h"
#include "settings/ciregistro.h"
#include "vocabulary/names.h"

#include "host/database.h"
#include "host/document.h"

namespace {

/// Both the entry among the named objects and the id of its data.
const char kVersion[] = "RZ_VERSAO";
const char kCurrentFile[] = "PBLSTRARQUIVOGD";
const char kCurrentDocument[] = "PBLSTRDOCUMENTOGD";
constexpr int kText = 1000;

using lm::cad::recordAt;
using Chain = OdSmartPtr<OdResBuf>;

OdSmartPtr<OdDbDictionary> openNamedObjects(OdDb::OpenMode mode) {
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbDictionary>(db->getNamedObjectsDictionaryId().openObject(mode));
}

RZString systemVariable(const CHostDatabase* db, const char* name) {
    const OdSmartPtr<OdResBuf> value = db == nullptr ? OdSmartPtr<OdResBuf>() : db->getSysVar(name);
    return value.isNull() ? RZString() : RZString(value->getString());
}

/// The text at a position of a chain that has it.
RZString textAt(const Chain& chain, int position) {
    return recordAt(chain, position)->getString();
}

bool has(const Chain& chain, int position) {
    return !recordAt(chain, position).isNull();
}

bool splitComposite(const RZString& text, RZString& left, RZString& right) {
    return text.split(RZString::char12, left, right);
}

// The keys by kind of chain. Each gives what the kind means by having a key.

bool keyOfSchematic(const Chain& chain, RZString& left, RZString& right) {
    // The halves go out before they are looked at: a refused key still reaches the caller.
    return has(chain, 1) && splitComposite(textAt(chain, 1), left, right) && !left.isEmpty() && left != "0" &&
           !right.isEmpty();
}

/// Chains that name their schematic object first and then bear its key.
bool keyOfAppearance(const Chain& chain, RZString& left, RZString& right) {
    return has(chain, 2) && splitComposite(textAt(chain, 2), left, right);
}

bool keyOfKeyedRepresentation(const Chain& chain, RZString& left, RZString& right) {
    if (!has(chain, 2)) return false;
    left = textAt(chain, 1);
    right = textAt(chain, 2);
    return true;
}

bool keyOfRepresentation(const Chain& chain, RZString& left, RZString& right) {
    if (!has(chain, 2)) return false;
    // An object that is there decides alone. The own text is for one that was erased or never came along.
    if (const OdSmartPtr<OdDbObject> target = RZID(textAt(chain, 2)).openObject(); !target.isNull()) {
        const Chain schematic = target->xData(lm::names::TVO_RZ);
        return has(schematic, 1) && splitComposite(textAt(schematic, 1), left, right);
    }
    return has(chain, 3) && textAt(chain, 3).split("_", left, right);
}

struct KindOfKey {
    const CHostString& id;
    bool (*read)(const Chain& chain, RZString& left, RZString& right);
};

/// The first kind whose chain an object carries decides.
const KindOfKey kKinds[] = {
    {lm::names::TVO_RZ, keyOfSchematic},
    {lm::names::TVO_RZ_UNIFILAR, keyOfAppearance},
    {lm::names::TVO_LAYOUT_PAINEL, keyOfAppearance},
    {lm::names::TVO_RZ_REPRESENTACAO_KEY, keyOfKeyedRepresentation},
    {lm::names::TVO_RZ_REPRESENTACAO, keyOfRepresentation},
};

} // namespace

RZString CICad::getVersaoProjeto() {
    return lm::log::guarded("CICad::getVersaoProjeto", [&]() -> RZString {
        RegisterAppName(kVersion);
        const OdSmartPtr<OdDbDictionary> root = openNamedObjects(OdDb::kForRead);
        if (root.isNull()) return {};
        const OdSmartPtr<OdDbObject> holder = root->getAt(kVersion, OdDb::kForRead);
        if (holder.isNull()) return {};
        const Chain chain = holder->xData(kVersion);
        const OdSmartPtr<OdResBuf> given = recordAt(chain, 1), internal = recordAt(chain, 2);
        if (given.isNull() || given->restype() != kText) return {};
        if (internal.isNull() || internal->restype() != kText) return {};
        // Not the version that was given: that one is only kept.
        return internal->getString();
    });
}

void CICad::setVersaoProjeto(RZString versao) {
    lm::log::guarded("CICad::setVersaoProjeto", [&] {
        RegisterAppName(kVersion);
        const OdSmartPtr<OdDbDictionary> root = openNamedObjects(OdDb::kForWrite);
        if (root.isNull()) return;
        const OdSmartPtr<OdDbDictionary> holder(new OdDbDictionary, lm::drawing::kAttach);
        const Chain chain = lm::cad::settingChain(kVersion, versao);
        chain->last()->append(OdResBuf::newRb(kText, CIRegistro().GetVersionInternal()));
        // Before the holder stands in the drawing, so that nobody sees it without its data.
        holder->setXData(chain);
        root->setAt(kVersion, holder);
    });
}

RZString CICad::GetCfgProjeto() {
    return lm::log::guarded("CICad::GetCfgProjeto", [&] {
        RZString name;
        lm::cad::walkCarriers(getDatabase(), [&](const OdDbPoint& carrier) {
            return lm::cad::readSetting(carrier, lm::names::TVO_RZ_CFG, name);
        });
        return name;
    });
}

void CICad::SetCfgProjeto(RZString nome) {
    lm::log::guarded("CICad::SetCfgProjeto", [&] {
        const OdSmartPtr<OdDbPoint> carrier = lm::cad::firstCarrier(getDatabase(), OdDb::kForWrite);
        if (carrier.isNull()) return;
        RegisterAppName(lm::names::TVO_RZ_CFG);
        lm::cad::writeChain(*carrier, lm::cad::settingChain(lm::names::TVO_RZ_CFG, nome));
    });
}

void CICad::SetCfgProjeto() {
    SetCfgProjeto(GetVarStr("CFG_NOME", "", ACTIVE_DOCUMENT()) + ".cfg");
}

RZString CICad::GetNomeArquivo(CHostDatabase* db) {
    return systemVariable(db, "DWGNAME");
}

RZString CICad::GetPathArquivo() {
    return systemVariable(getDatabase(), "DWGPREFIX");
}

RZString CICad::getArqCorrenteGD() {
    return GetVarStr(kCurrentFile, "", ACTIVE_DOCUMENT());
}

void CICad::setArqCorrenteGD(RZString valor) {
    SetVarStr(kCurrentFile, valor, ACTIVE_DOCUMENT());
}

RZString CICad::getDocCorrenteGD() {
    return GetVarStr(kCurrentDocument, "", ACTIVE_DOCUMENT());
}

void CICad::setDocCorrenteGD(RZString valor) {
    SetVarStr(kCurrentDocument, valor, ACTIVE_DOCUMENT());
}

bool CICad::getKeyNorma(OdSmartPtr<OdDbObject> obj, RZString& esquerda, RZString& direita) {
    return lm::log::guarded("CICad::getKeyNorma", [&] {
        if (obj.isNull()) return false;
        for (const KindOfKey& kind : kKinds) RegisterAppName(kind.id);
        for (const KindOfKey& kind : kKinds)
            if (const Chain chain = obj->xData(kind.id); !chain.isNull())
                return kind.read(chain, esquerda, direita);
        return false;
    });
}

bool CICad::getKeyNorma(RZID id, RZString& esquerda, RZString& direita) {
    return lm::log::guarded("CICad::getKeyNorma",
                            [&] { return getKeyNorma(id.openObject(), esquerda, direita); });
}
