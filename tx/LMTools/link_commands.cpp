// SPDX-License-Identifier: MIT
// _LMLINKS and _LMCOPY: a component's appearances, and copies whose links lead to copies.
#include "commands.h"
#include "tools.h"

#include "vocabulary/names.h"

namespace lmtools {

namespace {

using lm::host::CommandInput;

/// The links that lead to a schematic object, in the order in which the library follows them, and at which
/// position the handle stands. An id without a record there is no link.
struct Link {
    const char* application;
    int position;
};
constexpr Link kLinks[] = {{"TVO_LAYOUT_PAINEL", 1},
                           {"TVO_RZ_UNIFILAR", 1},
                           {"TVO_RZ_REPRESENTACAO", 2},
                           {"TVO_RZ_ANILHAFIO", 1},
                           {"TVO_RZ_ANILHACABO", 1}};

bool bears(const OdDbEntity& entity, const Link& link) {
    OdSmartPtr<OdResBuf> record = entity.xData(link.application);
    for (int i = 0; i < link.position && !record.isNull(); ++i) record = record->next();
    return !record.isNull();
}

std::string linkOf(const OdDbEntity& entity) {
    for (const Link& link : kLinks)
        if (bears(entity, link)) return link.application;
    return "no link";
}

/// The other entities of model space whose links lead to a schematic object, in drawing order.
std::vector<std::string> appearancesOf(CICad& cad, OdEdCommandContext& context, OdDbObjectId schematic) {
    std::vector<std::string> lines;
    const OdSmartPtr<OdDbBlockTableRecord> space(drawingOf(context).getModelSpaceId().openObject());
    if (space.isNull()) return lines;
    const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
    for (; !walk->done(); walk->step()) {
        context.checkTime();
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        if (entity->objectId() == schematic) continue;
        if (cad.getObjIdEsquema(OdSmartPtr<OdDbObject>(entity)) != RZID(schematic)) continue;
        lines.push_back("    " + described(cad, entity->objectId()) + "  by " + linkOf(*entity));
    }
    return lines;
}

/// Asks for any appearance of a component.
void links(OdEdCommandContext& context) {
    CICad cad;
    const OdDbObjectId chosen = askObject(context, "Component");
    const OdDbObjectId schematic = cad.getObjIdEsquema(RZID(chosen));
    const std::vector<std::string> lines = appearancesOf(cad, context, schematic);
    const OdSmartPtr<OdDbObject> object = schematic.openObject();
    const bool isMarked = !object.isNull() && !object->xData(lm::names::TVO_RZ).isNull();
    say((isMarked ? "schematic object " : "object without a schematic object ") + described(cad, schematic) +
        ", " + counted(lines.size(), "other appearance"));
    for (const std::string& line : lines) say(line);
}

/// Asks for two points. An empty second one makes the first the displacement itself.
OdGeVector3d displacement(CommandInput& input) {
    const OdGePoint3d base = input.point("Base point");
    OdGePoint3d target;
    return input.pointOrNothing("Second point", target) ? target - base : base.asVector();
}

OdArray<OdDbObjectId> askObjects(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    OdArray<OdDbObjectId> ids;
    for (const OdDbObjectId id : context.input().selection("Objects")) {
        const OdSmartPtr<OdDbObject> object = id.openObject();
        if (object->ownerId() != drawing.getModelSpaceId())
            fail(described(cad, id) + " stands in a layout, expected objects of model space");
        ids.append(id);
    }
    if (ids.isEmpty()) fail("nothing was chosen, expected objects of model space");
    return ids;
}

/// Asks for objects, base point and second point. All are copied at once, so that the mapping knows every
/// pair when the links are mended at the end.
void copy(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    const OdArray<OdDbObjectId> ids = askObjects(context);
    const OdGeMatrix3d way = OdGeMatrix3d::translation(displacement(context.input()));
    const OdSmartPtr<OdDbIdMapping> mapping(new OdDbIdMapping, lm::drawing::kAttach);
    drawing.deepCloneObjects(ids, drawing.getModelSpaceId(), *mapping);
    CICad cad;
    for (const OdDbObjectId id : ids) {
        context.checkTime();
        const OdSmartPtr<OdDbEntity> clone(cad.getObjectId(mapping, RZID(id)).openObject(OdDb::kForWrite));
        clone->transformBy(way);
    }
    const bool hadLinks = cad.reassociaBlocos(mapping, OdSmartPtr<OdDbIdMapping>());
    say("copied " + counted(ids.size(), "object") +
        (hadLinks ? "; their links lead to the copies" : "; none has links"));
}

} // namespace

void addLinkCommands(Commands& commands) {
    commands.emplace_back("_LMLINKS", &links);
    commands.emplace_back("_LMCOPY", &copy);
}

} // namespace lmtools
