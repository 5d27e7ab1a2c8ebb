// SPDX-License-Identifier: MIT
// The commands on what a project keeps of itself: how pages are numbered and listed, version, configuration.
#include "commands.h"
#include "pages.h"

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

void orderGroups(CICad& cad, CHostDatabase& drawing, lm::host::CommandInput& input) {
    const int value = input.integer("Order", cad.GetOrdemGrupos(&drawing));
    store(cad, drawing, [&] { return cad.SetOrdemGrupos(value) == 0; });
    tell("order of groups", value, cad.GetOrdemGrupos(&drawing));
}

/// The name of the group becomes part of the name of an application, which has its limits.
RZString askGroup(lm::host::CommandInput& input) {
    constexpr std::size_t kMost = 255 - (sizeof "RZ_ORDEM_PAG_" - 1);
    const std::string name = input.text("Group");
    const RZString group = wide(name);
    bool isPlain = group.view().size() <= kMost;
    for (const lm::WideChar letter : group.view()) isPlain = isPlain && letter >= ' ';
    if (!isPlain)
        fail(inQuotes(name) + " can't name a group, expected at most " + std::to_string(kMost) +
             " signs without controls");
    return group;
}

void orderPages(CICad& cad, CHostDatabase& drawing, lm::host::CommandInput& input) {
    const RZString group = askGroup(input);
    const int value = input.integer("Order", cad.GetOrdemPaginas(group));
    store(cad, drawing, [&] { return cad.SetOrdemPaginas(group, value) == 0; });
    tell("order of the pages in group " + inQuotes(narrow(group)), value, cad.GetOrdemPaginas(group));
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
    const int value = context.input().integer("Numbering mode", cad.GetNumeracaoPaginas(&drawing));
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
        (product.isEmpty() ? "" : " with the product's, " + inQuotes(narrow(product))));
}

} // namespace

void addProjectCommands(Commands& commands) {
    commands.emplace_back("_LMORDER", &order);
    commands.emplace_back("_LMNUMBERING", &numbering);
    commands.emplace_back("_LMCONFIG", &configuration);
    commands.emplace_back("_LMVERSION", &version);
}

} // namespace lmtools
