// SPDX-License-Identifier: MIT
// _LAYER: makes layers and sets their state; its options go on until an empty answer.
#include "hostcommands.h"

#include "drawing/recordsearch.h"
#include "drawing/wildcard.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace lm::host {

namespace {

enum Option { kMake, kSet, kNew, kOn, kOff, kFreeze, kThaw, kLock, kUnlock };

OdSmartPtr<OdDbSymbolTable> layersOf(OdDbDatabase& database) {
    return OdSmartPtr<OdDbSymbolTable>(database.getLayerTableId().openObject());
}

OdDbObjectId layerCalled(OdDbDatabase& database, const std::string& name) {
    const OdDbObjectId id = lm::drawing::recordCalled(*layersOf(database), wideText(name));
    if (id.isNull()) throw CommandFailed("no layer \"" + name + "\"");
    return id;
}

void makeLayer(OdDbDatabase& database, const std::string& name) {
    const OdSmartPtr<OdDbSymbolTable> layers = layersOf(database);
    if (!lm::drawing::recordCalled(*layers, wideText(name)).isNull()) return;
    requireName(name);
    const OdSmartPtr<OdDbLayerTableRecord> layer(new OdDbLayerTableRecord, lm::drawing::kAttach);
    layer->setName(wideText(name));
    layers->upgradeOpen();
    layers->add(layer);
}

/// The names of an answer, which commas separate. None of them may be empty.
std::vector<std::string> namesOf(const std::string& answer) {
    std::vector<std::string> names;
    for (std::size_t from = 0; from <= answer.size();) {
        const std::size_t comma = std::min(answer.find(',', from), answer.size());
        names.push_back(answer.substr(from, comma - from));
        from = comma + 1;
    }
    for (const std::string& name : names) requireName(name);
    return names;
}

/// Makes the layers of an answer. A layer of a file may have a comma in its name; it is meant before others.
void makeLayers(OdDbDatabase& database, const std::string& answer) {
    if (!lm::drawing::recordCalled(*layersOf(database), wideText(answer)).isNull()) return;
    for (const std::string& name : namesOf(answer)) makeLayer(database, name);
}

void setCurrent(OdDbDatabase& database, OdDbObjectId layer) {
    const OdSmartPtr<OdResBuf> value = OdResBuf::newRb(330);
    value->setObjectId(layer);
    if (!database.setSysVar(OdString("CLAYER"), value)) throw CommandFailed("the layer can't be current");
}

/// Calls `change` for each layer whose name fits. A name without wildcards must be there.
void forLayers(OdDbDatabase& database, const std::string& pattern,
               const std::function<void(OdDbLayerTableRecord&)>& change) {
    if (pattern.find_first_of("*?#@.[~,`") == std::string::npos) layerCalled(database, pattern);
    const OdSmartPtr<OdDbSymbolTableIterator> walk = layersOf(database)->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbLayerTableRecord> layer(walk->getRecord());
        if (!odutWcMatch(layer->getName(), wideText(pattern)) && // or a name that holds signs of patterns
            !lm::system::equalsNoCase(layer->getName().view(), wideText(pattern).view()))
            continue;
        layer->upgradeOpen();
        change(*layer);
    }
}

void freeze(OdDbDatabase& database, OdDbLayerTableRecord& layer) {
    if (layer.objectId() == database.getCLAYER())
        tellUser("the current layer isn't frozen: " + lm::drawing::utf8(layer.getName()));
    else
        layer.setIsFrozen(true);
}

void run(OdDbDatabase& database, int option, const std::string& name) {
    using Layer = OdDbLayerTableRecord;
    switch (option) {
    case kMake:
        makeLayer(database, name);
        return setCurrent(database, layerCalled(database, name));
    case kSet:
        return setCurrent(database, layerCalled(database, name));
    case kNew:
        return makeLayers(database, name);
    case kOn:
    case kOff:
        return forLayers(database, name, [option](Layer& layer) { layer.setIsOff(option == kOff); });
    case kFreeze:
        return forLayers(database, name, [&database](Layer& layer) { freeze(database, layer); });
    case kThaw:
        return forLayers(database, name, [](Layer& layer) { layer.setIsFrozen(false); });
    default:
        return forLayers(database, name, [option](Layer& layer) { layer.setIsLocked(option == kLock); });
    }
}

void layer(OdEdCommandContext& context) {
    OdDbDatabase& database = *documentOf(context).database();
    for (;;) {
        const int option =
            context.input().keyword("Make, Set, New, ON, OFf, Freeze, Thaw, LOck or Unlock",
                                    {"Make", "Set", "New", "ON", "OFf", "Freeze", "Thaw", "LOck", "Unlock"});
        if (option < 0) return;
        context.checkTime();
        run(database, option, context.input().name("Layer"));
    }
}

} // namespace

void addLayerCommand(OdEdCommandStack& stack) {
    addCommand(stack, "_LAYER", &layer);
}

} // namespace lm::host
