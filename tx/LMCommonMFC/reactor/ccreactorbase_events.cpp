// SPDX-License-Identifier: MIT
// From what the database reports to typed events: first by the class of the object, then, for references, by
// the name of the block. The events themselves do nothing here.
#include "reactor/ccreactorbase.h"

#include "cad/icad.h"
#include "reactor/documents.h"
#include "vocabulary/names.h"

namespace {

using lm::WideChar;
using lm::WideView;
using lm::reactor::documentOf;
namespace names = lm::names;

/// What an object is to the events; null in all but one, or in all.
struct Sorted {
    Sorted(const OdDbDatabase* database, const OdDbObject* object)
        : block(OdDbBlockReference::cast(object)), pline(OdDbPolyline::cast(object)),
          layer(OdDbLayerTableRecord::cast(object)), definition(OdDbBlockTableRecord::cast(object)),
          att(OdDbAttribute::cast(object)) {
        // References in other blocks, and on layouts, are of no interest to anybody; nor is model space
        // itself.
        if (block != nullptr && block->ownerId() != database->getModelSpaceId()) block = nullptr;
        if (definition != nullptr && definition->objectId() == database->getModelSpaceId())
            definition = nullptr;
    }
    OdDbBlockReference* block;
    OdDbPolyline* pline;
    OdDbLayerTableRecord* layer;
    OdDbBlockTableRecord* definition;
    OdDbAttribute* att;
};

enum class Family { kNone, kGrade, kIns, kConta, kCto };

/// By the beginning of a block's name, case counting; the first that fits decides.
Family familyOf(const CHostString& name) {
    static constexpr WideChar kGrid[] = {'B', 'L', 'K', '_', 'C', 'T', 'R', '_', 'G', 'R', 'A', 'D', 'E'};
    const WideView text = name.view();
    const auto begins = [text](const CHostString& prefix) { return text.starts_with(prefix.view()); };
    if (text.starts_with(WideView(kGrid, std::size(kGrid)))) return Family::kGrade;
    if (begins(names::INS_)) return Family::kIns;
    if (begins(names::CONTA) || begins(names::RELE)) return Family::kConta;
    if (begins(names::NA_) || begins(names::NF_) || begins(names::NAF_) || begins(names::BT_))
        return Family::kCto;
    return Family::kNone;
}

} // namespace

// --- By class ---

void CCReactorBase::objectAppended(const OdDbDatabase* database, const OdDbObject* object) {
    const OdSmartPtr<OdDbObject> held(object);
    const Sorted as(database, object);
    if (as.block != nullptr)
        blockAppended(documentOf(database), as.block);
    else if (as.pline != nullptr)
        plineAppended(documentOf(database), as.pline);
    else if (as.layer != nullptr)
        layerAppended(documentOf(database), as.layer);
    else if (as.definition != nullptr)
        blockDefined(documentOf(database), as.definition);
    else if (as.att != nullptr)
        attAppended(documentOf(database), as.att);
    entityAppended(documentOf(database), held);
}

void CCReactorBase::objectOpenedForModify(const OdDbDatabase* database, const OdDbObject* object) {
    const Sorted as(database, object);
    if (as.block != nullptr)
        blockForModify(documentOf(database), as.block);
    else if (as.pline != nullptr)
        plineForModify(documentOf(database), as.pline);
    else if (as.layer != nullptr)
        layerForModify(documentOf(database), as.layer);
    else if (as.att != nullptr)
        attForModify(documentOf(database), as.att);
}

void CCReactorBase::objectModified(const OdDbDatabase* database, const OdDbObject* object) {
    const Sorted as(database, object);
    if (as.block != nullptr)
        blockModified(documentOf(database), as.block);
    else if (as.pline != nullptr)
        plineModified(documentOf(database), as.pline);
    else if (as.layer != nullptr)
        layerModified(documentOf(database), as.layer);
    else if (as.definition != nullptr)
        blockDefined(documentOf(database), as.definition);
    else if (as.att != nullptr)
        attModified(documentOf(database), as.att);
}

void CCReactorBase::objectErased(const OdDbDatabase* database, const OdDbObject* object, bool erased) {
    if (!erased) {
        objectAppended(database, object);
        return;
    }
    handlesApagados.append(CHostString(object->getDbHandle().ascii()));
    const Sorted as(database, object);
    if (as.block != nullptr)
        blockErased(documentOf(database), as.block);
    else if (as.pline != nullptr)
        plineErased(documentOf(database), as.pline);
    else if (as.layer != nullptr)
        layerErased(documentOf(database), as.layer);
    else if (as.att != nullptr)
        attErased(documentOf(database), as.att);
}

// --- By name ---

/// The events of one phase.
struct CCReactorBase::FamilyEvents {
    BlockEvent grade, ins, conta, cto;
};

void CCReactorBase::tellFamily(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref,
                               const FamilyEvents& events) {
    switch (familyOf(CICad().GetNomeBloco(ref))) {
    case Family::kGrade:
        return (this->*events.grade)(doc, ref);
    case Family::kIns:
        return (this->*events.ins)(doc, ref);
    case Family::kConta:
        return (this->*events.conta)(doc, ref);
    case Family::kCto:
        return (this->*events.cto)(doc, ref);
    case Family::kNone:
        return;
    }
}

void CCReactorBase::blockAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellFamily(doc, ref,
               {&CCReactorBase::gradeAppended, &CCReactorBase::insAppended, &CCReactorBase::contaAppended,
                &CCReactorBase::ctoAppended});
}

void CCReactorBase::blockForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellFamily(doc, ref,
               {&CCReactorBase::gradeForModify, &CCReactorBase::insForModify, &CCReactorBase::contaForModify,
                &CCReactorBase::ctoForModify});
}

void CCReactorBase::blockModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellFamily(doc, ref,
               {&CCReactorBase::gradeModified, &CCReactorBase::insModified, &CCReactorBase::contaModified,
                &CCReactorBase::ctoModified});
}

void CCReactorBase::blockErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellFamily(doc, ref,
               {&CCReactorBase::gradeErased, &CCReactorBase::insErased, &CCReactorBase::contaErased,
                &CCReactorBase::ctoErased});
}

// --- Events that are for derived classes alone ---

void CCReactorBase::commandCancelled(CHostDocument*, RZString) {}
void CCReactorBase::commandFailed(CHostDocument*, RZString) {}
void CCReactorBase::commandEnded(CHostDocument*, RZString) {}
void CCReactorBase::commandWillStart(CHostDocument*, RZString) {}
void CCReactorBase::cargaInicial(CHostDocument*) {}
void CCReactorBase::blockDefined(CHostDocument*, OdSmartPtr<OdDbBlockTableRecord>) {}
void CCReactorBase::entityAppended(CHostDocument*, OdSmartPtr<OdDbObject>) {}

void CCReactorBase::attAppended(CHostDocument*, OdSmartPtr<OdDbAttribute>) {}
void CCReactorBase::attForModify(CHostDocument*, OdSmartPtr<OdDbAttribute>) {}
void CCReactorBase::attModified(CHostDocument*, OdSmartPtr<OdDbAttribute>) {}
void CCReactorBase::attErased(CHostDocument*, OdSmartPtr<OdDbAttribute>) {}

void CCReactorBase::plineAppended(CHostDocument*, OdSmartPtr<OdDbPolyline>) {}
void CCReactorBase::plineForModify(CHostDocument*, OdSmartPtr<OdDbPolyline>) {}
void CCReactorBase::plineModified(CHostDocument*, OdSmartPtr<OdDbPolyline>) {}
void CCReactorBase::plineErased(CHostDocument*, OdSmartPtr<OdDbPolyline>) {}

void CCReactorBase::layerAppended(CHostDocument*, OdSmartPtr<OdDbLayerTableRecord>) {}
void CCReactorBase::layerForModify(CHostDocument*, OdSmartPtr<OdDbLayerTableRecord>) {}
void CCReactorBase::layerModified(CHostDocument*, OdSmartPtr<OdDbLayerTableRecord>) {}
void CCReactorBase::layerErased(CHostDocument*, OdSmartPtr<OdDbLayerTableRecord>) {}

void CCReactorBase::ctoAppended(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::ctoForModify(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::ctoModified(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::ctoErased(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}

void CCReactorBase::insAppended(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::insForModify(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::insModified(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::insErased(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}

void CCReactorBase::contaAppended(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::contaForModify(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::contaModified(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::contaErased(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}

void CCReactorBase::gradeAppended(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::gradeForModify(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::gradeModified(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}
void CCReactorBase::gradeErased(CHostDocument*, OdSmartPtr<OdDbBlockReference>) {}

void CCReactorBase::transactionEndedBegin() {}
void CCReactorBase::transactionEndedEnd() {}
