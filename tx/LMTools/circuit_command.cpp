// SPDX-License-Identifier: MIT
// _LMCIRCUIT: local circuits. Numbers stand in the drawing; texts and regions belong to the module that owns
// the circuits, which the library asks by name.
#include "commands.h"

#include "vocabulary/names.h"

#include <memory>

namespace lmtools {

namespace {

using lm::host::CommandInput;

constexpr const char kNoOwner[] = "there is none, or the module that owns the circuits isn't loaded";

using Circuits = std::map<int, std::list<RZString>*>;

struct FreeCircuits {
    void operator()(Circuits* circuits) const {
        for (const auto& [number, texts] : *circuits) delete texts;
        delete circuits;
    }
};

std::string joined(const std::list<RZString>& texts) {
    std::string line;
    for (const RZString& text : texts) line += (line.empty() ? "" : " | ") + narrow(text);
    return line;
}

[[noreturn]] void failWithoutSchematic(CICad& cad, OdDbObjectId component) {
    fail(described(cad, component) + " has no schematic object");
}

/// The entities that bear a number, by it.
std::map<int, std::vector<std::string>> membersByNumber(CICad& cad) {
    std::map<int, std::vector<std::string>> members;
    for (const OdSmartPtr<OdDbObject>& object : cad.buscaTodosBlocosComCircuitoLocal()) {
        int number = 0;
        if (cad.buscaCircuitoLocal(object, number))
            members[number].push_back(described(cad, object->objectId()));
    }
    return members;
}

void list(OdEdCommandContext&) {
    CICad cad;
    const std::unique_ptr<Circuits, FreeCircuits> circuits(cad.buscaTodosCircuitosLocais());
    const std::map<int, std::vector<std::string>> members = membersByNumber(cad);
    std::map<int, std::string> lines;
    if (circuits != nullptr)
        for (const auto& [number, texts] : *circuits) lines[number] = joined(*texts);
    for (const auto& [number, names] : members) lines.try_emplace(number, "(no texts)");
    for (const auto& [number, line] : lines) {
        say("circuit " + std::to_string(number) + ": " + line);
        const auto found = members.find(number);
        if (found == members.end()) continue;
        for (const std::string& name : found->second) say("    " + name);
    }
    say(counted(lines.size(), "local circuit"));
}

/// Asks for a component.
void tell(OdEdCommandContext& context) {
    CICad cad;
    const OdDbObjectId id = askObject(context, "Component");
    const OdSmartPtr<OdDbObject> object = id.openObject();
    RZString a, b, c;
    int number = 0;
    if (!cad.buscaCircuitoLocal(object, number)) failWithoutSchematic(cad, id);
    const bool hasTexts = cad.buscaCircuitoLocal(number, a, b, c);
    say(described(cad, id) + " is in circuit " + std::to_string(number) +
        (hasTexts ? ": " + joined({a, b, c}) : " (no texts)"));
}

/// Asks for a component and its circuit's number, which goes to the component's schematic object.
void set(OdEdCommandContext& context) {
    CICad cad;
    const OdDbObjectId component = askObject(context, "Component");
    const RZID schematic = cad.getObjIdEsquema(RZID(component));
    const int number = context.input().integer("Number of the circuit", 1);
    if (number < 1 || number > 32767)
        fail("\"Number of the circuit\": expected 1 to 32767, found " + std::to_string(number));
    const RZString application(OdString(lm::names::TVO_RZ_CIRCLOC));
    const OdSmartPtr<OdDbObject> object = schematic.openObject(OdDb::kForWrite);
    // An erased schematic object is still known to its drawing, and a link to it leads there.
    if (object.isNull()) failWithoutSchematic(cad, component);
    // Changes a number that is there and registers the id in any case; a chain that is new is made whole.
    if (!cad.updateXData(object, application, 1, number)) {
        const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1001, OdString(application));
        chain->append(OdResBuf::newRb(1071, number));
        object->setXData(chain);
    }
    say(described(cad, schematic) + " is in circuit " + std::to_string(number) + " now");
}

OdGePoint2d askPlace(CommandInput& input) {
    const OdGePoint3d point = input.point("Point");
    return {point.x, point.y};
}

/// Asks for a page, a point in the circuit's region there, and the circuit's new first text.
void update(OdEdCommandContext& context) {
    CommandInput& input = context.input();
    const std::string page = input.text("Page");
    const OdGePoint2d place = askPlace(input);
    if (!CICad().atualizarCiruitoLocal(wide(page), place, wide(input.text("Text"))))
        fail("no circuit on page " + inQuotes(page) + " was updated: " + kNoOwner);
    say("updated the local circuit on page " + inQuotes(page));
}

/// Asks for a page and a point. No circuit at all has the number 0, which stands for a place without one.
void find(OdEdCommandContext& context) {
    CommandInput& input = context.input();
    const std::string page = input.text("Page");
    const OdGePoint2d place = askPlace(input);
    int number = 0;
    if (!CICad().findCircuitoLocalLocation(wide(page), place, number))
        fail("no circuit was looked for on page " + inQuotes(page) + ": " + kNoOwner);
    say(number == 0 ? "no local circuit lies there" : "circuit " + std::to_string(number) + " lies there");
}

void clear(OdEdCommandContext&) {
    if (!CICad().clearCircLocal()) fail(std::string("nothing was cleared: ") + kNoOwner);
    say("cleared the local circuits");
}

/// Asks for the page whose regions were erased, and with them their circuits.
void region(OdEdCommandContext& context) {
    const std::string page = context.input().name("Page");
    if (!CICad().processaRegiaoApagada(wide(page)))
        fail("no circuit of page " + inQuotes(page) + " was dropped: " + kNoOwner);
    say("dropped the local circuits of page " + inQuotes(page));
}

void run(OdEdCommandContext& context) {
    drawingOf(context);
    constexpr void (*kWays[])(OdEdCommandContext&) = {&list, &tell, &set, &update, &find, &clear, &region};
    const int way =
        context.input().keyword("List, Component, Set, Update, Find, CLear or Region",
                                {"List", "Component", "Set", "Update", "Find", "CLear", "Region"});
    kWays[way < 0 ? 0 : way](context);
}

} // namespace

void addCircuitCommand(Commands& commands) {
    commands.emplace_back("_LMCIRCUIT", &run);
}

} // namespace lmtools
