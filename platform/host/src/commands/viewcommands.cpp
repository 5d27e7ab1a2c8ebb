// SPDX-License-Identifier: MIT
// _REGEN and _ZOOM.
#include "hostcommands.h"

#include <algorithm>
#include <cmath>

namespace lm::host {

namespace {

void regen(OdEdCommandContext& context) {
    CHostDocument& document = documentOf(context);
    document.regen(document.view());
}

void zoom(OdEdCommandContext& context) {
    CHostDocument& document = documentOf(context);
    CommandInput& input = context.input();
    const int way = input.keyword("Extents, All or Window", {"Extents", "All", "Window"});
    const OdSmartPtr<OdDbObject> object =
        document.database()->GetActiveViewportId().openObject(OdDb::kForWrite);
    OdDbViewportTableRecord* const viewport = OdDbViewportTableRecord::cast(object.get());
    if (viewport == nullptr) throw CommandFailed("the drawing has no viewport");
    if (way != 2) return viewport->zoomExtents();
    const OdGePoint3d first = input.point("First corner"), second = input.point("Opposite corner");
    viewport->setCenterPoint({(first.x + second.x) / 2, (first.y + second.y) / 2});
    viewport->setHeight(std::fabs(first.y - second.y));
    viewport->setWidth(std::fabs(first.x - second.x));
}

} // namespace

void addViewCommands(OdEdCommandStack& stack) {
    addCommand(stack, "_REGEN", &regen);
    addCommand(stack, "_ZOOM", &zoom);
}

} // namespace lm::host
