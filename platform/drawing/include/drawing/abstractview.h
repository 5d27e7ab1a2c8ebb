// SPDX-License-Identifier: MIT
// OdAbstractViewPE: what a viewport can do with views. It is found by asking the viewport's record:
//
//     OdSmartPtr<OdAbstractViewPE> views(OdAbstractViewPE::cast(viewport->queryX(OdAbstractViewPE::desc())));
//     if (!views.isNull()) views->setView(viewport, view);
#pragma once

#include "drawing/symboltable.h"

/// The protocol of showing views. Extensions live as long as their library and aren't counted.
class LM_DRAWING_API OdAbstractViewPE : public OdRxObject {
    LM_RX_CLASS(OdAbstractViewPE)
public:
    /// Copies centre, height and width of a view to a viewport, which must be open for write. Raises OdError
    /// for null, and OdError_NotThatKindOfClass for an object that is no viewport; nothing has changed then.
    virtual void setView(OdDbObject* viewport, const OdDbAbstractViewTableRecord* view) const = 0;

    void addRef() override {}
    void release() override {}
};

namespace lm::drawing {

/// Takes the protocol away from viewports, or gives it back. For tests.
LM_DRAWING_API void setViewProtocol(bool present);

} // namespace lm::drawing
