// SPDX-License-Identifier: MIT
// The commands on what a project keeps of itself: how pages are numbered and listed, version, configuration.
#include "commands.h"
#include "pages.h"

#include <limits>

namespace lmtools {

namespace {

/// Stores a value on the settings carrier, which is made where the drawing has none. `set` answers whether
/// it found one.
template<class Set>
void store(CICad& cad, CHostDatabase& drawing, Set&& set) {
    if (set()) return;
    cad.CriarLayer(kCarrierLayer, &drawing);
    cad.CriarPonto(kCarrierLayer);
    if (!set()) fail("the drawing has no model space");
    say("made the settings carrier");
}

/// Says what is stored now. Of several carriers another one may be read than is written.
void tell(const std::string& what, int stored, int read) {
    say(what + " is " + std::to_string(stored) +
        (read == stored ? ""
                        : ", but another settings carrier has " + std::to_string(read) + ", which counts"));
}

/// What an empty answer means: the value is told, and nothing is written.
constexpr int kAsItIs = std::numeric_limits<int>::min();

void orderGroups(CICad& cad, CHostDatabase& drawing, lm::host::CommandInput& input) {
    const int value = input.integer("Order", kAsItIs);
    if (value == kAsItIs)
        return tell("order of groups", cad.GetOrdemGrupos(&drawing), cad.GetOrdemGrupos(&drawing));
    store(cad, drawing, [&] { return cad.SetOrdemGrupos(value) == 0; });
    tell("order of groups", value, cad.GetOrdemGrupos(&drawing));
}

/// The name of the group, which may be empty or a designation such as "=A1+B2", becomes part of the name of
/// an application, which has its limits. A name that differs in its case only means the group that is there.
RZString askGroup(CHostDatabase& drawing, lm::host::CommandInput& input) {
    constexpr std::size_t kPrefix = sizeof kOrderOfPages - 1, kMost = 255 - kPrefix;
    const std::string name = input.text("Group");
    const RZString group = wide(name);
    bool isPlain = group.view().size() <= kMost;
    for (const lm::WideChar letter : group.view()) isPlain = isPlain && letter >= ' ';
    if (!isPlain)
        fail(inQuotes(name) + " can't name a group, expected at most " + std::to_string(kMost) +
             " signs without controls");
    const RZString known = knownName(drawing.getRegAppTableId(), RZString(kOrderOfPages) + group);
    return known.length() == 0 ? group : RZString(known.view().substr(kPrefix));
}

void orderPages(CICad& cad, CHostDatabase& drawing, lm::host::CommandInput& input) {
    const RZString group = askGroup(drawing, input);
    const std::string what = "order of the pages in group " + inQuotes(narrow(group));
    const int value = input.integer("Order", kAsItIs);
    if (value == kAsItIs) return tell(what, cad.GetOrdemPaginas(group), cad.GetOrdemPaginas(group));
    store(cad, drawing, [&] { return cad.SetOrdemPaginas(group, value) == 0; });
    tell(what, value, cad.GetOrdemPaginas(group));
}

/// Asks for Groups or Pages, for Pages also for the group, and for the order (empty: as it is).
void order(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    switch (context.input().keyword("Groups or Pages", {"Groups", "Pages"})) {
    case 0:
        return orderGroups(cad, drawing, context.input());
    case 1:
        return orderPages(cad, drawing, context.input());
    default:
        fail("\"Groups or Pages\" needs an answer that isn't empty");
    }
}

/// Asks for the mode (empty: as it is).
void numbering(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    const int value = context.input().integer("Numbering mode", kAsItIs);
    if (value == kAsItIs) {
        const int now = cad.GetNumeracaoPaginas(&drawing);
        return tell("numbering mode", now, now);
    }
    store(cad, drawing, [&] { return cad.SetNumeracaoPaginas(value) == 0; });
    tell("numbering mode", value, value == -1 ? -1 : cad.GetNumeracaoPaginas(&drawing));
}

/// Asks for the name of the file.
void configuration(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    const RZString name = wide(context.input().name("Configuration file"));
    store(cad, drawing, [&] {
        cad.SetCfgProjeto(name);
        return cad.GetCfgProjeto() == name;
    });
    say("configuration file is " + inQuotes(narrow(name)));
}

/// Asks for the version.
void version(OdEdCommandContext& context) {
    drawingOf(context);
    const RZString given = wide(context.input().name("Version"));
    CICad cad;
    cad.setVersaoProjeto(given);
    const RZString product = cad.getVersaoProjeto();
    say("stored version " + inQuotes(narrow(given)) +
        (product.isEmpty()
             ? "; the settings of this machine name no version of the product, so readers see none"
             : " with the product's, " + inQuotes(narrow(product)) + ", which readers see"));
}

} // namespace

void addProjectCommands(Commands& commands) {
    commands.emplace_back("_LMORDER", &order);
    commands.emplace_back("_LMNUMBERING", &numbering);
    commands.emplace_back("_LMCONFIG", &configuration);
    commands.emplace_back("_LMVERSION", &version);
}

} // namespace lmtools
