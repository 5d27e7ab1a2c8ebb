// SPDX-License-Identifier: MIT
// Views and viewports: copying the one to the other, and fitting one to the drawing.
#include "drawing/abstractview.h"

#include "base/rxclass.h"
#include "model/extents.h"

#include "drawing/database.h"
#include "drawing/partwalk.h"

#include <unordered_map>

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

/// Tells which entities are shown. Each layer is looked at once: most of a drawing stands on a few hidden
/// ones, and what stands there isn't measured.
class ShownLayers {
public:
    bool isShown(const OdDbEntity& entity) {
        const OdDbObjectId layer = entity.layerId();
        const auto [at, isNew] = m_known.try_emplace(layer.node(), true);
        if (isNew) at->second = isShown(layer);
        return at->second;
    }

private:
    static bool isShown(OdDbObjectId id) {
        const auto* const layer = OdDbLayerTableRecord::cast(id.openObject(OdDb::kForRead, true).get());
        return layer == nullptr || (!layer->isFrozen() && !layer->isOff());
    }
    std::unordered_map<const lm::drawing::Node*, bool> m_known;
};

} // namespace

namespace lm::drawing {

void setViewProtocol(bool present) {
    g_registration.set(present);
}

} // namespace lm::drawing

void OdDbViewportTableRecord::zoomExtents() {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    if (!isWriteEnabled()) throw OdError(eNotOpenForWrite);
    OdGeExtents3d all;
    lm::drawing::ExtentsFinder finder;
    ShownLayers layers;
    for (lm::drawing::PartWalk walk(database()->getModelSpaceId()); !walk.done(); walk.next())
        if (layers.isShown(*walk.entity())) finder.add(*walk.entity(), all);
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
