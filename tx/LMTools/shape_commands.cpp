// SPDX-License-Identifier: MIT
// _LMFLATTEN and _LMLAYERZERO: what makes a drawing fit to be a symbol file.
#include "commands.h"

namespace lmtools {

namespace {

int layerCount(CICad& cad, CHostDatabase& drawing) {
    return cad.GetLayers(&drawing).count();
}

/// Asks for objects of model space and the layer that their plain geometry is to stand on.
void flatten(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    CList<RZID, const RZID&> ids;
    std::size_t count = 0;
    for (const OdDbObjectId id : context.input().selection("Objects")) {
        const OdSmartPtr<OdDbObject> object = id.openObject();
        if (object->ownerId() != drawing.getModelSpaceId())
            fail(described(cad, id) + " stands in a layout, expected objects of model space");
        ids.AddTail(RZID(id));
        ++count;
    }
    if (count == 0) fail("nothing was chosen, expected objects of model space");
    const std::string given = context.input().text("Layer");
    const RZString layer = layerToUse(cad, drawing, given);
    if (!cad.ExisteLayer(layer, &drawing)) fail("no layer " + inQuotes(given));
    if (!cad.explodeEntitiesToLayer(&ids, layer)) fail("the drawing has no model space");
    say("flattened " + counted(count, "object") + " to layer " + narrow(layer));
}

void layerZero(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    const int before = layerCount(cad, drawing);
    cad.tudoParaLayerZero(OdSmartPtr<CHostDatabase>(&drawing));
    const int left = layerCount(cad, drawing);
    say("brought everything to layer 0; " + counted(static_cast<std::size_t>(before - left), "layer") +
        " erased, " + std::to_string(left) + " left");
}

} // namespace

void addShapeCommands(Commands& commands) {
    commands.emplace_back("_LMFLATTEN", &flatten);
    commands.emplace_back("_LMLAYERZERO", &layerZero);
}

} // namespace lmtools
