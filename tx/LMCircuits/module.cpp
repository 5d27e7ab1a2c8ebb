// SPDX-License-Identifier: MIT
// LMCircuits: the command module that owns the local circuits of a drawing, and the sample of a module that
// answers calls by name. Others reach it through CICad alone.
//
//     _LMDEFCIRCLOCAL     asks for a number, three texts, a page and two corners, and defines the circuit
#include "circuits.h"

#include "arguments.h"
#include "ccentrypointmfc.h"
#include "vocabulary/names.h"

#include "host/command.h"
#include "host/database.h"
#include "host/functions.h"

#include <string>
#include <vector>

namespace lmcircuits {

namespace {

void addTexts(CCListBuilder& list, const Circuit& circuit) {
    for (const RZString& text : circuit.texts) list.add(text, RTSTR);
}

/// The circuit of the lowest number whose region holds a point, or null.
const Circuit* circuitAt(const Circuits& circuits, const RZString& page, const OdGePoint2d& point) {
    for (const auto& [number, circuit] : circuits)
        if (circuit.holds(page, point)) return &circuit;
    return nullptr;
}

// Each function below answers nil while no drawing is open, for arguments of other types, and for a circuit
// that isn't there.

/// Takes a number; gives a list of the three texts.
void getInfo(CHostAPI&) {
    int number = 0;
    const bool isAsked = getAllArgs(number);
    if (!isAsked || getDatabase() == nullptr) return returnBool(false);
    const Circuits circuits = circuitsOf(*getDatabase());
    const auto found = circuits.find(number);
    if (found == circuits.end()) return returnBool(false);
    CCListBuilder list;
    list.addListBegin();
    addTexts(list, found->second);
    list.addListEnd();
    list.retList();
}

/// Gives a list with a list of number and texts for each circuit.
void getAllInfo(CHostAPI&) {
    if (getDatabase() == nullptr) return returnBool(false);
    CCListBuilder list;
    list.addListBegin();
    for (const auto& [number, circuit] : circuitsOf(*getDatabase())) {
        list.addListBegin();
        list.add(number);
        addTexts(list, circuit);
        list.addListEnd();
    }
    list.addListEnd();
    list.retList();
}

/// Takes a page, a point and a text, which becomes the first text of the circuit there; gives true.
void updateSymbol(CHostAPI& api) {
    hst_resbufW* const arguments = api.getArgs();
    const hst_resbufW* const text = getArg(arguments, 2);
    const bool isAsked = getArgCount(arguments) == 3 && arguments->restype == RTSTR &&
                         arguments->rbnext->restype == RTPOINT && text->restype == RTSTR;
    const RZString page = isAsked ? getArgString(arguments, 0) : RZString();
    const RZString first = isAsked ? getArgString(arguments, 2) : RZString();
    const OdGePoint2d point = getArgPoint(arguments, 1);
    api.relRb(arguments);
    if (!isAsked || getDatabase() == nullptr) return returnBool(false);
    const Circuits circuits = circuitsOf(*getDatabase());
    const Circuit* const found = circuitAt(circuits, page, point);
    if (found == nullptr) return returnBool(false);
    Circuit changed = *found;
    changed.texts[0] = first;
    keep(*getDatabase(), changed);
    returnBool(true);
}

/// Takes a page and a point; gives the number of the circuit there.
void getLocation(CHostAPI&) {
    RZString page;
    OdGePoint2d point;
    const bool isAsked = getAllArgs(page, point);
    if (!isAsked || getDatabase() == nullptr) return returnBool(false);
    const Circuits circuits = circuitsOf(*getDatabase());
    const Circuit* const found = circuitAt(circuits, page, point);
    if (found == nullptr) return returnBool(false);
    CCListBuilder list;
    list.add(found->number);
    list.retList();
}

/// Drops all circuits; gives true.
void clear(CHostAPI&) {
    if (getDatabase() == nullptr) return returnBool(false);
    drop(*getDatabase(), [](const Circuit&) { return true; });
    returnBool(true);
}

/// Takes a page whose regions were erased, and drops their circuits; true when there was one.
void regionErased(CHostAPI&) {
    RZString page;
    const bool isAsked = getAllArgs(page);
    if (!isAsked || getDatabase() == nullptr) return returnBool(false);
    returnBool(drop(*getDatabase(), [&](const Circuit& circuit) { return circuit.page == page; }) != 0);
}

RZString askText(lm::host::CommandInput& input, const char* prompt) {
    return RZString(lm::system::fromUtf8(input.text(prompt)));
}

OdGePoint2d askCorner(lm::host::CommandInput& input, const char* prompt) {
    const OdGePoint3d point = input.point(prompt);
    return {point.x, point.y};
}

void define(OdEdCommandContext& context) {
    if (context.database() == nullptr) throw lm::host::CommandFailed("no drawing is open");
    lm::host::CommandInput& input = context.input();
    Circuit circuit;
    circuit.number = input.integer("Number of the circuit", Circuit::kLeast);
    if (circuit.number < Circuit::kLeast || circuit.number > Circuit::kMost)
        throw lm::host::CommandFailed("\"Number of the circuit\": expected 1 to 32767, found " +
                                      std::to_string(circuit.number));
    circuit.texts = {askText(input, "First text"), askText(input, "Second text"),
                     askText(input, "Third text")};
    circuit.page = askText(input, "Page");
    const OdGePoint2d corner = askCorner(input, "Corner");
    circuit.setRegion(corner, askCorner(input, "Opposite corner"));
    keep(*context.database(), circuit);
}

} // namespace

class Module : public CCEntryPointMFC {
public:
    void initModule() override {
        const std::pair<const char*, void (*)(CHostAPI&)> functions[] = {
            {"rzGetCircuitoLocalInfo", &getInfo},
            {"rzGetAllCircuitosLocaisInfo", &getAllInfo},
            {"rzAtualizarSimbCircuitoLocal", &updateSymbol},
            {"rzGetCircuitoLocalLocation", &getLocation},
            {"rzClearCircLocal", &clear},
            {"rzProcessarRegiaoApagada", &regionErased},
        };
        for (const auto& [name, function] : functions) m_functions.emplace_back(name, function);
        const OdString name = lm::names::LMDEFCIRCLOCAL;
        m_define = lm::host::CommandRegistration(OdString("_") + name, &define);
    }
    void uninitModule() override {
        m_define.reset();
        m_functions.clear();
    }

private:
    std::vector<lm::host::FunctionRegistration> m_functions;
    lm::host::CommandRegistration m_define;
};

} // namespace lmcircuits

LM_DEFINE_MODULE(lmcircuits::Module)
