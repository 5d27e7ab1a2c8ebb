// SPDX-License-Identifier: MIT
// What the tests of page navigation share: which layers are shown, and what the viewport looks at.
#pragma once

#include "project_drawing.h"
#include "symbols.h"

#include "drawing/curves.h"

namespace lm::tests {

class NavigationDrawing : public ProjectDrawing {
protected:
    ~NavigationDrawing() override { setDatabase(nullptr); }

    OdDbObjectId layerId(const char* name) {
        return OdSmartPtr<OdDbSymbolTable>(m_db.getLayerTableId().openObject())->getAt(od(name));
    }
    bool isFrozen(const char* name) {
        const OdSmartPtr<OdDbLayerTableRecord> record(layerId(name).openObject());
        return record.isNull() || record->isFrozen();
    }
    /// The layers that aren't frozen, in table order.
    Texts shown() {
        Texts all;
        for (const RZString& name : m_cad.GetLayers(&m_db))
            if (!isFrozen(plain(name).c_str())) all.push_back(plain(name));
        return all;
    }
    std::string current() { return plain(m_cad.GetLayerCorrente(&m_db)); }
    unsigned long redrawings() const { return m_document->view()->regenerations(); }

    /// "x,y WIDTHxHEIGHT" of the active viewport.
    std::string viewport() { return viewportOf(m_db); }
    static std::string viewportOf(const CHostDatabase& db) {
        const OdSmartPtr<OdDbViewportTableRecord> record(db.GetActiveViewportId().openObject());
        return number(record->centerPoint().x) + "," + number(record->centerPoint().y) + " " +
               number(record->width()) + "x" + number(record->height());
    }

    OdDbObjectId lineFrom(const OdGePoint3d& from, const OdGePoint3d& to, const char* layer) {
        const OdDbObjectId id = entityOn<OdDbLine>(layer);
        const OdSmartPtr<OdDbLine> line(id.openObject(OdDb::kForWrite));
        line->setStartPoint(from);
        line->setEndPoint(to);
        return id;
    }
    /// A line across a square of 10 by 10 whose lower left corner is given.
    OdDbObjectId frameAt(double x, double y, const char* layer) {
        return lineFrom({x, y, 0}, {x + 10, y + 10, 0}, layer);
    }
};

} // namespace lm::tests
