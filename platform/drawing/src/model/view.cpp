// SPDX-License-Identifier: MIT
// Views and viewports: copying the one to the other, and fitting one to the drawing.
#include "drawing/abstractview.h"

#include "base/rxclass.h"
#include "model/databasedata.h"
#include "model/extents.h"

LM_RX_DEFINE_ABSTRACT(OdAbstractViewPE, OdRxObject)

namespace {

class RecordViews final : public OdAbstractViewPE {
public:
    void setView(OdDbObject* viewport, const OdDbAbstractViewTableRecord* view) const override {
        if (viewport == nullptr || view == nullptr) throw OdError(eNullObjectPointer);
        const OdSmartPtr<OdDbViewportTableRecord> record(viewport);
        record->setCenterPoint(view->centerPoint());
        record->setHeight(view->height());
        record->setWidth(view->width());
    }
};

/// Registers the protocol while the library is loaded.
class Registration {
public:
    Registration() { set(true); }
    ~Registration() { set(false); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    void set(bool present) {
        OdDbViewportTableRecord::desc()->setX(OdAbstractViewPE::desc(), present ? &m_views : nullptr);
    }

private:
    RecordViews m_views;
};

Registration g_registration;

/// Whether what stands on a layer is shown.
bool isShown(const OdDbEntity& entity) {
    const OdDbLayerTableRecord* const layer =
        OdDbLayerTableRecord::cast(entity.layerId().openObject(OdDb::kForRead, true).get());
    return layer == nullptr || (!layer->isFrozen() && !layer->isOff());
}

} // namespace

namespace lm::drawing {

void setViewProtocol(bool present) {
    g_registration.set(present);
}

} // namespace lm::drawing

void OdDbViewportTableRecord::zoomExtents() {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    if (!isWriteEnabled()) throw OdError(eNotOpenForWrite);
    lm::drawing::DatabaseData& data = database()->data();
    if (data.fixed.modelSpace == nullptr) return;
    OdGeExtents3d all;
    lm::drawing::ExtentsFinder finder;
    for (lm::drawing::Node* node = data.fixed.modelSpace->firstPart; node != nullptr; node = node->next) {
        if (node->isErased()) continue;
        const auto* const entity = OdDbEntity::cast(data.bodyOf(node));
        if (entity != nullptr && isShown(*entity)) finder.add(*entity, all);
    }
    if (all.isEmpty()) return;
    const OdGePoint3d low = all.minPoint(), high = all.maxPoint();
    // The window keeps its shape, so the narrower side of the drawing gets room. A point alone has no size.
    const double aspect = height() > 0 && width() > 0 ? width() / height() : 1;
    const double fitted = std::fmax(high.y - low.y, (high.x - low.x) / aspect);
    setCenterPoint({(low.x + high.x) / 2, (low.y + high.y) / 2});
    if (fitted <= 0) return;
    setHeight(fitted);
    setWidth(fitted * aspect);
}
