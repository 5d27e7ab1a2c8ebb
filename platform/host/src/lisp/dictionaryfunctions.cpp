// SPDX-License-Identifier: MIT
// Dictionaries of the drawing and their entries.
#include "entities.h"
#include "entityfields.h"
#include "hoststate.h"

#include "drawing/dictionary.h"
#include "drawing/recordsearch.h"

#include <algorithm>

namespace lm::host::lisp {

namespace {

/// Whether other objects of every drawing need an entry of a dictionary: without it the drawing is defective.
bool isNeeded(const OdDbDatabase& database, const OdDbDictionary& dictionary, const OdString& key) {
    static constexpr const char* kNeeded[] = {"ACAD_COLOR",        "ACAD_GROUP",         "ACAD_LAYOUT",
                                              "ACAD_MATERIAL",     "ACAD_MLINESTYLE",    "ACAD_MLEADERSTYLE",
                                              "ACAD_PLOTSETTINGS", "ACAD_PLOTSTYLENAME", "ACAD_SCALELIST",
                                              "ACAD_TABLESTYLE",   "ACAD_VISUALSTYLE"};
    const OdDbObjectId rootId = database.getNamedObjectsDictionaryId();
    const OdSmartPtr<OdDbObject> opened = rootId.openObject();
    const auto* root = OdDbDictionary::cast(opened.get());
    if (root == nullptr) return false;
    if (dictionary.objectId() == root->getAt(OdString("ACAD_LAYOUT"))) return true; // the layouts themselves
    const std::string name = system::toUtf8(key.view());
    return dictionary.objectId() == rootId &&
           std::find(std::begin(kNeeded), std::end(kNeeded), name) != std::end(kNeeded);
}

} // namespace

bool isNeededDictionary(const OdDbDatabase& database, const OdDbDictionary& object) {
    if (object.objectId() == database.getNamedObjectsDictionaryId()) return true;
    const OdSmartPtr<OdDbObject> opened = object.ownerId().openObject();
    const auto* owner = OdDbDictionary::cast(opened.get());
    if (owner == nullptr) return false;
    const OdSmartPtr<OdDbDictionaryIterator> walk = owner->newIterator();
    for (; !walk->done(); walk->next())
        if (walk->objectId() == object.objectId()) return isNeeded(database, *owner, walk->name());
    return false;
}

namespace {

/// The dictionary of a name in a mode; raises LispError for a name that is none.
OdSmartPtr<OdDbDictionary> dictionaryAt(Machine& machine, Arguments a, OdDb::OpenMode mode) {
    const OdSmartPtr<OdDbObject> object = openNamed(machine, nameAt(machine, a, 0), mode);
    OdDbDictionary* dictionary = OdDbDictionary::cast(object.get());
    if (dictionary == nullptr || !dictionary->isDBRO()) machine.failType("dictionary", a[0]);
    return dictionary;
}

OdString keyAt(Machine& machine, Arguments a, std::size_t index) {
    return OdString(WideView(machine.textAt(a, index)));
}

Value listOfEntry(Machine& machine, OdDbObjectId id) {
    const OdSmartPtr<OdDbObject> object = id.openObject();
    return object.isNull() ? Value() : entityList(machine, *object, nameValue(machine, id), Value());
}

Value namedobjdict(Machine& machine, Arguments) {
    return nameValue(machine, requireDatabase(machine).getNamedObjectsDictionaryId());
}

// With a third argument the next dictnext goes on behind the entry.
Value dictsearch(Machine& machine, Arguments a) {
    const OdSmartPtr<OdDbDictionary> dictionary = dictionaryAt(machine, a, OdDb::kForRead);
    const OdDbObjectId id = dictionary->getAt(keyAt(machine, a, 1));
    if (id.isNull()) return Value();
    if (a.size() > 2 && !a[2].isNil()) {
        OdSmartPtr<OdDbDictionaryIterator> walk = dictionary->newIterator();
        while (!walk->done() && walk->objectId() != id) walk->next();
        if (!walk->done()) walk->next();
        machine.host().dictionaryWalks[dictionary->objectId()] = walk;
    }
    return listOfEntry(machine, id);
}

Value dictnext(Machine& machine, Arguments a) {
    const OdSmartPtr<OdDbDictionary> dictionary = dictionaryAt(machine, a, OdDb::kForRead);
    OdSmartPtr<OdDbDictionaryIterator>& walk = machine.host().dictionaryWalks[dictionary->objectId()];
    if (walk.isNull() || (a.size() > 1 && !a[1].isNil())) walk = dictionary->newIterator();
    if (walk->done()) return Value();
    const OdDbObjectId id = walk->objectId();
    walk->next();
    return listOfEntry(machine, id);
}

/// Whether other programs would take one of the entries for that of the key.
bool hasInEitherCase(const OdDbDictionary& dictionary, const OdString& key) {
    if (dictionary.has(key)) return true;
    const OdSmartPtr<OdDbDictionaryIterator> walk = dictionary.newIterator();
    for (; !walk->done(); walk->next())
        if (system::equalsNoCase(walk->name().view(), key.view())) return true;
    return false;
}

// Gives the object's name; nil for a name that is taken, for an object that is no entry, and for one that
// stands in a dictionary already.
Value dictadd(Machine& machine, Arguments a) {
    const OdString key = keyAt(machine, a, 1);
    const OdSmartPtr<OdDbDictionary> dictionary = dictionaryAt(machine, a, OdDb::kForWrite);
    const OdSmartPtr<OdDbObject> object = openNamed(machine, nameAt(machine, a, 2), OdDb::kForWrite);
    if (!lm::drawing::isValidName(key.view()) || object.isNull() || object->isDBRO()) return Value();
    if (hasInEitherCase(*dictionary, key)) return Value();
    dictionary->setAt(key, object);
    return a[2];
}

Value dictremove(Machine& machine, Arguments a) {
    const OdString key = keyAt(machine, a, 1);
    const OdSmartPtr<OdDbDictionary> dictionary = dictionaryAt(machine, a, OdDb::kForWrite);
    const OdDbObjectId id = dictionary->getAt(key);
    if (id.isNull() || isNeeded(requireDatabase(machine), *dictionary, key)) return Value();
    dictionary->remove(key);
    return nameValue(machine, id);
}

const Builtin kDictionaries[] = {
    {"NAMEDOBJDICT", 0, 0, &namedobjdict}, {"DICTSEARCH", 2, 3, &dictsearch}, {"DICTNEXT", 1, 2, &dictnext},
    {"DICTADD", 3, 3, &dictadd},           {"DICTREMOVE", 2, 2, &dictremove},
};

} // namespace

std::span<const Builtin> dictionaryFunctions() {
    return kDictionaries;
}

} // namespace lm::host::lisp
