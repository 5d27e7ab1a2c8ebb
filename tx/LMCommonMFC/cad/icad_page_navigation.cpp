// SPDX-License-Identifier: MIT
// Pages on the screen: which layers are shown, going to an object, and what the stamp says of a page.
#include "arguments.h"
#include "cad/icad.h"
#include "cad/icad_detail.h"
#include "calls.h"
#include "log.h"

#include "drawing/abstractview.h"
#include "host/document.h"
#include "host/session.h"

#include <memory>

namespace {

const char kLayerZero[] = "0";

/// What a page's name has before its first "$"; the whole name without one.
RZString headOf(const RZString& page) {
    const int at = page.firstIndexOf('$');
    return at < 0 ? page : page.left(at);
}

/// The layers that belong to a page, by name alone.
struct Companions {
    explicit Companions(const RZString& page)
        : drawing(headOf(page) + "$DE"), format(headOf(page) + "$FORMATO"), stamp(headOf(page) + "$SELO") {}
    RZString drawing, format, stamp;
};

bool isLayer(const RZString& name) {
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return false;
    const OdSmartPtr<OdDbSymbolTable> table(db->getLayerTableId().openObject());
    return !table.isNull() && table->has(name);
}

/// Thaws a page with what belongs to it and makes it the current layer; false when it didn't become that.
bool thawPage(CICad& cad, const RZString& page) {
    CHostDatabase* const db = getDatabase();
    const Companions companions(page);
    cad.DescongelaLayer(page, db);
    cad.DescongelaLayer(companions.drawing, db);
    cad.DescongelaLayer(companions.format, db);
    if (!cad.isPaginaCapa(page) && !cad.isPaginaIndice(page)) cad.DescongelaLayer(companions.stamp, db);
    return cad.SetLayerCorrente(page, db) == page;
}

/// Whether a layer belongs to a page rather than being one. A plain look at the name, so that pages such as
/// PEDESTAL count as well: the names of the drawings in use were chosen around that.
bool isCompanion(const RZString& layer) {
    return layer.contains("FORMATO") || layer.contains("SELO") || layer.contains("DE");
}

/// Shows the page that a layer belongs to, which is known by its head alone.
void showPageOfCompanion(CICad& cad, const RZString& layer) {
    CHostDatabase* const db = getDatabase();
    const RZString head = headOf(layer);
    if (cad.GetLayerCorrente(db).startsWith(head)) return;
    for (const RZString& name : cad.GetLayers(db)) {
        if (!name.startsWith(head)) continue;
        cad.MostrarPagina(name, false);
        return;
    }
}

void showPageOf(CICad& cad, const RZString& layer) {
    if (layer == kLayerZero) cad.DescongelaLayer(layer, getDatabase());
    if (isCompanion(layer))
        showPageOfCompanion(cad, layer);
    else
        cad.MostrarPagina(layer, false);
}

struct Box {
    double xMax = 0, xMin = 0, yMax = 0, yMin = 0;
};

/// Gives a box a border. A minimum moves by a tenth of the size that the new maximum made, so the object
/// stands a little off the middle.
void addBorder(Box& box) {
    box.xMax += (box.xMax - box.xMin) * 0.1;
    box.xMin -= (box.xMax - box.xMin) * 0.1;
    box.yMax += (box.yMax - box.yMin) * 0.1;
    box.yMin -= (box.yMax - box.yMin) * 0.1;
    if (box.yMax - box.yMin < 1.0) {
        box.yMax += 0.5;
        box.yMin -= 0.5;
    }
    if (box.xMax - box.xMin < 1.0) {
        box.xMax += 0.5;
        box.xMin -= 0.5;
    }
}

OdSmartPtr<OdDbViewTableRecord> viewOf(const Box& box, double factor) {
    OdSmartPtr<OdRxObject> object(OdDbViewTableRecord::desc()->create(), lm::drawing::kAttach);
    if (object.isNull()) throw OdError(OdString("OdDbOdDbViewTableRecordis not loaded"));
    const OdSmartPtr<OdDbViewTableRecord> view(object);
    view->setCenterPoint(OdGePoint2d((box.xMax + box.xMin) / 2, (box.yMax + box.yMin) / 2));
    view->setHeight((box.yMax - box.yMin) * factor);
    view->setWidth((box.xMax - box.xMin) * factor);
    return view;
}

/// Shows a view in the active viewport of a drawing; one without has nothing to show it in.
void apply(const OdDbViewTableRecord& view, const OdDbDatabase* database) {
    const CHostDatabase* const db = CHostDatabase::cast(database);
    if (db == nullptr) return;
    const OdSmartPtr<OdDbObject> viewport =
        db->GetActiveViewportId(OdDbObjectId::kNull).openObject(OdDb::kForWrite);
    if (viewport.isNull()) return;
    OdRxObject* const protocol = viewport->queryX(OdAbstractViewPE::desc());
    if (protocol == nullptr) throw OdError_NotThatKindOfClass(viewport->isA(), OdAbstractViewPE::desc());
    OdSmartPtr<OdAbstractViewPE>(protocol)->setView(viewport, &view);
}

/// Makes one object the current selection.
void select(const RZID& id) {
    const CHostDocument* const document = ACTIVE_DOCUMENT();
    CHostSession* const session = hostSession();
    if (document == nullptr || session == nullptr) return;
    unsigned long long name[2] = {};
    if (document->getAPI()->GetADSName(id, name) != RTNORM) return;
    const std::unique_ptr<CHostSelectionSet> set(document->newSelectionSet());
    session->addToSelection(set.get(), name);
    session->setCurrentSelection(set.get());
}

} // namespace

int CICad::MostrarPagina(RZString pagina, bool zoom) {
    return lm::log::guarded("CICad::MostrarPagina", [&] {
        if (pagina == kLayerZero || !isLayer(pagina)) return 1;
        // "0" first: the layers are frozen all together, and the current one can't be among them.
        SetLayerCorrente(kLayerZero, getDatabase());
        CongelaTodasLayers();
        if (!thawPage(*this, pagina)) return 2;
        if (zoom) ZoomExtends();
        Regen();
        return 0;
    });
}

int CICad::MostrarPaginaPDF(RZString pagina, bool zoom) {
    if (!isLayer(pagina)) return 1;
    const RZString shown = GetLayerCorrente(getDatabase());
    const Companions companions(shown);
    SetLayerCorrente(kLayerZero, getDatabase());
    for (const RZString& name : {shown, companions.drawing, companions.format, companions.stamp})
        CongelaLayer(name);
    if (!thawPage(*this, pagina)) return 2;
    if (zoom) ZoomExtends();
    return 0;
}

void CICad::ApagarPagina(RZString pagina) {
    ApagarEntidadesLayer(pagina);
    SetLayerCorrente(kLayerZero, getDatabase());
    ApagarLayer(pagina, getDatabase());
}

void CICad::IrPara(RZID id, bool regen, double fator) {
    lm::log::guarded("CICad::IrPara", [&] {
        const OdSmartPtr<OdDbObject> object = id.openObject();
        const OdSmartPtr<OdDbEntity> entity(OdDbEntity::cast(object.get()));
        if (entity.isNull()) return;
        showPageOf(*this, entity->layer());
        rzInvokeVoid("setaPaginaCorrente");
        Box box;
        if (getBoundingBox(entity, box.xMax, box.xMin, box.yMax, box.yMin, true)) {
            addBorder(box);
            apply(*viewOf(box, fator), entity->database());
        } else {
            ZoomExtends();
            if (regen) Regen();
        }
        select(id);
    });
}

RZString CICad::BuscarDescricaoPagina(RZString tag, RZString bloco, RZString pagina) {
    return lm::log::guarded("CICad::BuscarDescricaoPagina", [&]() -> RZString {
        OdSmartPtr<OdDbBlockReference> stamp;
        for (const char* const form : {"", "_C", "_I"}) {
            stamp = BuscarBloco(bloco + form, pagina);
            if (!stamp.isNull()) break;
        }
        if (stamp.isNull()) return {};
        CEAtributo* found = nullptr;
        SearchAttribute(tag, stamp, found, false);
        const std::unique_ptr<CEAtributo> attribute(found);
        return attribute == nullptr ? RZString() : RZString(attribute->GetValor());
    });
}

int CICad::ZoomExtends() {
    return lm::log::guarded("CICad::ZoomExtends", [&] {
        const CHostDatabase* const db = getDatabase();
        if (db == nullptr) return 2;
        const OdSmartPtr<OdDbObject> object =
            db->GetActiveViewportId(OdDbObjectId::kNull).openObject(OdDb::kForWrite);
        OdDbViewportTableRecord* const viewport = OdDbViewportTableRecord::cast(object.get());
        if (viewport == nullptr) return 2;
        viewport->zoomExtents();
        return 0;
    });
}

int CICad::Regen() {
    CHostDocument* const document = ACTIVE_DOCUMENT();
    if (document == nullptr) return 2;
    document->regen(document->view());
    return 0;
}

bool CICad::ExecutaFuncaoCad(RZString expressao) {
    return lm::log::guarded("CICad::ExecutaFuncaoCad", [&] {
        if (const CHostDocument* const document = ACTIVE_DOCUMENT())
            document->getAPI()->evalLisp("(progn " + expressao + " (princ))");
        return true;
    });
}
