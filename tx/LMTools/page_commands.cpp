// SPDX-License-Identifier: MIT
// The commands on pages: making, marking, showing and deleting them, and going to an object.
#include "commands.h"
#include "pages.h"

#include "drawing/recordsearch.h"

#include <cmath>

namespace lmtools {

namespace {

/// A new page's name. The layers that belong to pages have names of their own, which no page can take.
RZString askNewPage(CHostDatabase& drawing, lm::host::CommandInput& input) {
    const std::string name = input.name("Page");
    const RZString known = knownName(drawing.getLayerTableId(), wide(name));
    if (known.length() != 0)
        fail("there is a layer " + inQuotes(narrow(known)) + " already, expected a new name");
    if (!lm::drawing::isValidName(wide(name).view()))
        fail(inQuotes(name) +
             " can't name a page, expected 1 to 255 signs without controls and <>/\\\":;?*,=|`");
    if (name.find_first_not_of(' ') == std::string::npos)
        fail(inQuotes(name) + " can't name a page, expected more than blanks");
    if (!canBePage(wide(name)))
        fail(inQuotes(name) + " can't name a page: such a layer belongs to a page or to the project");
    return wide(name);
}

/// A page of the drawing; a name that differs in its case only means that one.
RZString askPage(CHostDatabase& drawing, lm::host::CommandInput& input) {
    const std::string name = input.name("Page");
    const RZString known = knownName(drawing.getLayerTableId(), wide(name));
    if (known.length() == 0) fail("no page " + inQuotes(name));
    if (!canBePage(known))
        fail(inQuotes(narrow(known)) + " is no page, but a layer that belongs to a page or to the project");
    return known;
}

/// Asks for the name, and whether the layers that belong to the page are made as well (empty: no).
void make(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    const RZString page = askNewPage(drawing, context.input());
    const bool withCompanions =
        context.input().keyword("With the layers that belong to it (Yes or No)", {"Yes", "No"}) == 0;
    CICad cad;
    if (!cad.CriarLayer(page, &drawing)) fail("the drawing has no layers");
    std::string made;
    if (withCompanions)
        for (const RZString& companion : companionsOf(page))
            if (cad.CriarLayer(companion, &drawing))
                made += (made.empty() ? " with " : ", ") + narrow(companion);
    say("made page " + inQuotes(narrow(page)) + made);
}

/// Both ask for the page.
void markCover(OdEdCommandContext& context) {
    const RZString page = askPage(drawingOf(context), context.input());
    CICad().setPaginaCapa(page);
    say("marked page " + inQuotes(narrow(page)) + " as a cover");
}

void markIndex(OdEdCommandContext& context) {
    const RZString page = askPage(drawingOf(context), context.input());
    CICad().setPaginaIndice(page);
    say("marked page " + inQuotes(narrow(page)) + " as an index");
}

/// Asks for the page, and whether the view is fitted to it (empty: yes).
void show(OdEdCommandContext& context) {
    const RZString page = askPage(drawingOf(context), context.input());
    const bool zoom = context.input().keyword("Zoom (Yes or No)", {"Yes", "No"}) != 1;
    CICad cad;
    if (cad.MostrarPagina(page, zoom) != 0)
        fail("page " + inQuotes(narrow(page)) + " can't become the current layer");
    say("showing page " + inQuotes(narrow(page)));
}

/// Whether an entity stands in model space, itself or as an attribute of a reference there.
bool isInModelSpace(const OdDbEntity& entity, const CHostDatabase& drawing) {
    if (entity.ownerId() == drawing.getModelSpaceId()) return true;
    const OdSmartPtr<OdDbObject> owner = entity.ownerId().openObject();
    return OdDbBlockReference::cast(owner.get()) != nullptr && owner->ownerId() == drawing.getModelSpaceId();
}

/// Asks for the object, and for the factor by which the view is larger than it (1).
void goTo(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    const OdDbObjectId id = askObject(context, "Object");
    const OdSmartPtr<OdDbObject> object = id.openObject();
    const auto* entity = OdDbEntity::cast(object.get());
    if (entity == nullptr || !isInModelSpace(*entity, drawing))
        fail(described(cad, id) + " doesn't stand in model space, expected an object that a page shows");
    const double factor = context.input().number("Factor", 1);
    if (!(factor > 0) || !std::isfinite(factor)) fail("\"Factor\": expected a number above 0");
    cad.IrPara(RZID(id), true, factor);
    say("went to " + described(cad, id));
}

/// Asks for the page.
void remove(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    const RZString page = askPage(drawing, context.input());
    CICad cad;
    cad.ApagarPagina(page);
    if (cad.ExisteLayer(page, &drawing))
        fail("page " + inQuotes(narrow(page)) +
             " can't be deleted: something outside model space stands on it");
    std::string left;
    for (const RZString& companion : companionsOf(page))
        if (cad.ExisteLayer(companion, &drawing))
            left += (left.empty() ? "; it leaves " : ", ") + narrow(companion);
    say("deleted page " + inQuotes(narrow(page)) + left);
}

} // namespace

void addPageCommands(Commands& commands) {
    commands.emplace_back("_LMPAGE", &make);
    commands.emplace_back("_LMCOVER", &markCover);
    commands.emplace_back("_LMINDEX", &markIndex);
    commands.emplace_back("_LMSHOWPAGE", &show);
    commands.emplace_back("_LMGOTO", &goTo);
    commands.emplace_back("_LMDELETEPAGE", &remove);
}

} // namespace lmtools
