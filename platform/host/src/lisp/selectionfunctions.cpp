// SPDX-License-Identifier: MIT
// Selection sets: ssget with its ways of choosing, and what programs do with a set.
#include "entities.h"
#include "entityfields.h"
#include "hoststate.h"
#include "points.h"
#include "questions.h"
#include "selectionfilter.h"

#include "host/documentmanager.h"

#include "drawing/drawing.h"
#include "drawing/partwalk.h"

namespace lm::host::lisp {

namespace {

using Ids = std::vector<OdDbObjectId>;

/// The arguments of ssget by what they are: a mode, points, a filter.
struct Choice {
    std::string mode;
    std::vector<Point> points;
    Value filter;

    Choice(Machine& machine, Arguments a) {
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (a[i].isText() && i == 0) {
                for (const WideChar unit : a[i].text())
                    if (unit != '_') mode += static_cast<char>(system::toUpper(unit));
                mode = mode.substr(0, mode.find(':')); // what stands behind is about a screen
            } else if (const std::optional<Point> point = pointOf(a[i])) {
                points.push_back(*point);
            } else {
                filter = machine.listAt(a, i);
            }
        }
    }
};

/// Live entities of a block in drawing order.
void addPartsOf(Machine& machine, OdDbObjectId block, Ids& ids) {
    for (lm::drawing::PartWalk part(block); !part.done(); part.next()) {
        machine.tick();
        ids.push_back(part.id());
    }
}

Ids everything(Machine& machine) {
    Ids ids;
    const OdDbDatabase& database = requireDatabase(machine);
    addPartsOf(machine, database.getModelSpaceId(), ids);
    const OdSmartPtr<OdDbObject> table = database.getBlockTableId().openObject();
    const auto* blocks = OdDbSymbolTable::cast(table.get());
    if (blocks == nullptr) return ids;
    for (auto walk = blocks->newIterator(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbSymbolTableRecord> record = walk->getRecord();
        const auto* block = OdDbBlockTableRecord::cast(record.get());
        if (block == nullptr || !block->isLayout() || block->objectId() == database.getModelSpaceId())
            continue;
        addPartsOf(machine, block->objectId(), ids);
    }
    return ids;
}

Ids inBox(Machine& machine, const Choice& choice, bool whole) {
    if (choice.points.size() != 2) Machine::fail("ssget needs two points for a box");
    const CHostDocument* document = documentOf(machine);
    if (document == nullptr) Machine::fail("no drawing");
    const std::unique_ptr<CHostSelectionSet> set(document->newSelectionSet());
    const OdGePoint3d first = choice.points[0].inSpace(), second = choice.points[1].inSpace();
    if (whole)
        set->window(first, second, document->view(), nullptr);
    else
        set->crossing(first, second, document->view(), nullptr);
    return set->ids();
}

Ids lastOf(Machine& machine) {
    Ids ids;
    addPartsOf(machine, requireDatabase(machine).getModelSpaceId(), ids);
    if (ids.size() > 1) ids.erase(ids.begin(), ids.end() - 1);
    return ids;
}

Ids previous(Machine& machine) {
    const CHostDocument* document = documentOf(machine);
    return document == nullptr ? Ids() : document->previousSelection();
}

Ids implied(Machine&) {
    const CHostSession* session = hostSession();
    return session == nullptr ? Ids() : session->currentSelection();
}

/// A script answers with handles one by one until an empty line, or with ALL, Last or Previous.
Ids asked(Machine& machine) {
    Ids ids;
    const OdDbDatabase& database = requireDatabase(machine);
    for (;;) {
        const WideString answer = takeAnswer(machine, "SSGET");
        const WideString word(system::trimmed(answer));
        if (word.empty()) return ids;
        const auto is = [&](std::string_view name) {
            return system::equalsNoCase(word, system::widen(name));
        };
        Ids more;
        if (is("ALL"))
            more = everything(machine);
        else if (is("L") || is("LAST"))
            more = lastOf(machine);
        else if (is("P") || is("PREVIOUS"))
            more = previous(machine);
        else
            more.push_back(database.getOdDbObjectId(OdDbHandle(word.c_str())));
        for (const OdDbObjectId id : more) {
            if (id.isNull()) Machine::fail("answer doesn't fit the question: SSGET: " + system::toUtf8(word));
            ids.push_back(id);
        }
    }
}

Ids chosen(Machine& machine, const Choice& choice) {
    const std::string& mode = choice.mode;
    if (mode == "X" || mode == "A" || mode == "ALL") return everything(machine);
    if (mode == "L" || mode == "LAST") return lastOf(machine);
    if (mode == "P" || mode == "PREVIOUS") return previous(machine);
    if (mode == "I") return implied(machine);
    if (mode == "W") return inBox(machine, choice, true);
    if (mode == "C") return inBox(machine, choice, false);
    if (!mode.empty()) Machine::fail("unknown way of selecting: " + mode);
    if (choice.points.size() == 1) {
        Choice point = choice;
        point.points.push_back(choice.points[0]);
        return inBox(machine, point, false);
    }
    return asked(machine);
}

// Erased objects are passed over. A set without members is nil.
Value ssget(Machine& machine, Arguments a) {
    const Choice choice(machine, a);
    const SelectionFilter filter(machine, choice.filter);
    Value result = machine.heap().foreign<SelectionSet>();
    SelectionSet& set = *foreignOf<SelectionSet>(result);
    const bool frozenToo = choice.mode != "A" && choice.mode != "ALL";
    for (const OdDbObjectId id : chosen(machine, choice)) {
        machine.tick();
        const OdSmartPtr<OdDbObject> object = id.openObject();
        const auto* entity = OdDbEntity::cast(object.get());
        if (entity == nullptr || !filter.fits(*entity)) continue;
        if (!frozenToo) {
            const OdSmartPtr<OdDbObject> layer = entity->layerId().openObject();
            const auto* record = OdDbLayerTableRecord::cast(layer.get());
            if (record != nullptr && record->isFrozen()) continue;
        }
        set.add(id);
    }
    if (set.ids().empty()) return Value();
    if (CHostDocument* document = documentOf(machine)) document->setPreviousSelection(set.ids());
    return result;
}

SelectionSet& setAt(Machine& machine, Arguments a, std::size_t index) {
    SelectionSet* set = foreignOf<SelectionSet>(a[index]);
    if (set == nullptr) machine.failType("lselsetp", a[index]);
    return *set;
}

Value sslength(Machine& machine, Arguments a) {
    return Value::integer(static_cast<int>(setAt(machine, a, 0).ids().size()));
}

// Nil outside the set.
Value ssname(Machine& machine, Arguments a) {
    const Ids& ids = setAt(machine, a, 0).ids();
    const double index = machine.numberAt(a, 1);
    if (!(index >= 0 && index < static_cast<double>(ids.size()))) return Value();
    return nameValue(machine, ids[static_cast<std::size_t>(index)]);
}

// A new set, a new set of one entity, or one entity more in a set, which is changed.
Value ssadd(Machine& machine, Arguments a) {
    Value result = a.size() > 1 ? a[1] : machine.heap().foreign<SelectionSet>();
    if (a.size() > 1) setAt(machine, a, 1);
    if (a.empty()) return result;
    const OdDbObjectId id = liveEntity(machine, nameAt(machine, a, 0));
    if (id.isNull()) return Value();
    foreignOf<SelectionSet>(result)->add(id);
    return result;
}

Value ssdel(Machine& machine, Arguments a) {
    return setAt(machine, a, 1).remove(nameAt(machine, a, 0).id()) ? a[1] : Value();
}

Value ssmemb(Machine& machine, Arguments a) {
    return setAt(machine, a, 1).has(nameAt(machine, a, 0).id()) ? a[0] : Value();
}

const Builtin kSelection[] = {
    {"SSGET", 0, 4, &ssget}, {"SSLENGTH", 1, 1, &sslength}, {"SSNAME", 2, 2, &ssname},
    {"SSADD", 0, 2, &ssadd}, {"SSDEL", 2, 2, &ssdel},       {"SSMEMB", 2, 2, &ssmemb},
};

} // namespace

std::span<const Builtin> selectionFunctions() {
    return kSelection;
}

} // namespace lm::host::lisp
