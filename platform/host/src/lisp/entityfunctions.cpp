// SPDX-License-Identifier: MIT
// Entities of the drawing: reading, changing, erasing, and the walk over them.
#include "entities.h"
#include "entityfields.h"
#include "hoststate.h"

#include "drawing/drawing.h"

namespace lm::host::lisp {

EntityName& nameAt(Machine& machine, Arguments arguments, std::size_t index) {
    EntityName* name = foreignOf<EntityName>(arguments[index]);
    if (name == nullptr) machine.failType("lentityp", arguments[index]);
    return *name;
}

OdSmartPtr<OdDbObject> openNamed(Machine& machine, const EntityName& name, OdDb::OpenMode mode) {
    const OdDbObjectId id = name.id();
    if (id.isNull()) return name.waiting();
    if (id.database() != &requireDatabase(machine)) return nullptr;
    return id.openObject(mode);
}

OdDbObjectId liveEntity(Machine& machine, const EntityName& name) {
    const OdSmartPtr<OdDbObject> object = openNamed(machine, name);
    return OdDbEntity::cast(object.get()) == nullptr ? OdDbObjectId() : object->objectId();
}

namespace {

using lm::drawing::PartWalk;

/// What stands for the end of a reference's attributes.
Value endList(Machine& machine, const EntityName& end, const Value& name) {
    const OdSmartPtr<OdDbObject> reference = end.endOf().openObject();
    if (reference.isNull()) return Value();
    const auto pair = [&](int code, Value value) {
        return machine.heap().cons(Value::integer(code), std::move(value));
    };
    const OdString layer = static_cast<const OdDbEntity*>(reference.get())->layer();
    return machine.list(pair(-1, name), pair(0, machine.text("SEQEND")),
                        pair(330, nameValue(machine, end.endOf())), pair(8, machine.text(layer.view())),
                        pair(-2, nameValue(machine, end.endOf())));
}

Value entget(Machine& machine, Arguments a) {
    const EntityName& name = nameAt(machine, a, 0);
    const Value applications = a.size() > 1 ? machine.listAt(a, 1) : Value();
    if (!name.endOf().isNull()) return endList(machine, name, a[0]);
    const OdSmartPtr<OdDbObject> object = openNamed(machine, name);
    return object.isNull() ? Value() : entityList(machine, *object, a[0], applications);
}

/// Whether a list says nothing else of the end of attributes than what stands for it.
bool isEndList(Machine& machine, const EntityName& end, const Value& name, const Value& list) {
    const Value own = endList(machine, end, name);
    for (const Value* at = &list; at->isCons(); at = &at->cdr()) {
        const Value& entry = at->car();
        if (!entry.isCons() || !entry.car().isInteger()) return false;
        const Value now = valueOfCode(own, entry.car().integer());
        if (!now.isUnbound() && !equalValues(machine, now, entry.cdr())) return false;
        if (now.isUnbound() && entry.car().integer() != 100) return false;
    }
    return own.isCons();
}

Value entmod(Machine& machine, Arguments a) {
    const Value name = valueOfCode(machine.listAt(a, 0), -1);
    EntityName* entity = foreignOf<EntityName>(name);
    if (entity == nullptr) return Value();
    if (!entity->endOf().isNull()) return isEndList(machine, *entity, name, a[0]) ? a[0] : Value();
    const OdSmartPtr<OdDbObject> object = openNamed(machine, *entity, OdDb::kForWrite);
    if (object.isNull() || !applyList(machine, requireDatabase(machine), *object, a[0])) return Value();
    return a[0];
}

/// Entities, and what stands in dictionaries; records of tables go by commands.
bool isErasable(const OdDbDatabase& database, const OdDbObject& object) {
    if (OdDbEntity::cast(&object) != nullptr || OdDbXrecord::cast(&object) != nullptr) return true;
    const auto* dictionary = OdDbDictionary::cast(&object);
    return dictionary != nullptr && !isNeededDictionary(database, *dictionary);
}

// Erases, or brings back what was erased.
Value entdel(Machine& machine, Arguments a) {
    const OdDbObjectId id = nameAt(machine, a, 0).id();
    if (id.isNull() || id.database() != &requireDatabase(machine)) return Value();
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite, true);
    if (object.isNull() || !isErasable(requireDatabase(machine), *object)) return Value();
    return object->erase(!object->isErased()) == eOk ? a[0] : Value();
}

Value entupd(Machine& machine, Arguments a) {
    nameAt(machine, a, 0);
    return a[0];
}

/// The live part behind another one of the same owner. A walk that goes on from its last step costs no
/// search.
OdDbObjectId nextPart(Machine& machine, std::optional<PartWalk>& walk, OdDbObjectId owner, OdDbObjectId id) {
    if (!walk || walk->done() || walk->id() != id) {
        walk.emplace(owner);
        for (; !walk->done() && walk->id() != id; walk->next()) machine.tick();
        if (walk->done()) return OdDbObjectId();
    }
    walk->next();
    return walk->done() ? OdDbObjectId() : walk->id();
}

OdDbObjectId nextInBlock(Machine& machine, OdDbObjectId id) {
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead, true);
    return object.isNull() ? OdDbObjectId()
                           : nextPart(machine, machine.host().entityWalk, object->ownerId(), id);
}

// A reference is followed by its attributes and their end, then by the next entity of the block.
Value entnext(Machine& machine, Arguments a) {
    OdDbDatabase& database = requireDatabase(machine);
    if (a.empty() || a[0].isNil()) {
        machine.host().entityWalk.emplace(database.getModelSpaceId());
        const PartWalk& first = *machine.host().entityWalk;
        return first.done() ? Value() : nameValue(machine, first.id());
    }
    const EntityName& name = nameAt(machine, a, 0);
    if (!name.endOf().isNull()) return nameValue(machine, nextInBlock(machine, name.endOf()));
    const OdSmartPtr<OdDbObject> object = name.id().openObject(OdDb::kForRead, true);
    if (object.isNull() || object->database() != &database) return Value();
    if (OdDbBlockReference::cast(object.get()) != nullptr) {
        const PartWalk attributes(object->objectId());
        if (!attributes.done()) return nameValue(machine, attributes.id());
    }
    if (OdDbAttribute::cast(object.get()) != nullptr) {
        const OdDbObjectId owner = object->ownerId();
        const OdDbObjectId next = nextPart(machine, machine.host().attributeWalk, owner, object->objectId());
        if (!next.isNull()) return nameValue(machine, next);
        return machine.heap().foreign<EntityName>(EntityName::EndOf{owner});
    }
    return nameValue(machine, nextInBlock(machine, object->objectId()));
}

// Goes on from the entity that was the last one the time before.
Value entlast(Machine& machine, Arguments) {
    std::optional<PartWalk>& last = machine.host().lastWalk;
    const OdDbObjectId space = requireDatabase(machine).getModelSpaceId();
    if (!last || last->done() || last->id().isErased()) last.emplace(space);
    if (last->done()) return Value();
    for (PartWalk next = *last; !next.done(); next.next()) {
        machine.tick();
        last = next;
    }
    return nameValue(machine, last->id());
}

Value handent(Machine& machine, Arguments a) {
    const OdDbHandle handle{machine.textAt(a, 0).c_str()};
    return nameValue(machine, requireDatabase(machine).getOdDbObjectId(handle));
}

// The name, or nil when it is registered already.
Value regapp(Machine& machine, Arguments a) {
    const WideString& name = machine.textAt(a, 0);
    const OdDbDatabase& database = requireDatabase(machine);
    if (name.empty()) machine.failType("application name", a[0]);
    if (!recordNamed(database.getRegAppTableId(), name).isNull()) return Value();
    const OdSmartPtr<OdDbSymbolTable> table(database.getRegAppTableId().openObject(OdDb::kForWrite));
    if (table.isNull()) return Value();
    const OdSmartPtr<OdDbRegAppTableRecord> record(new OdDbRegAppTableRecord(), lm::drawing::kAttach);
    record->setName(OdString(WideView(name)));
    table->add(record);
    return a[0];
}

/// Bytes that records of extended data take in a drawing.
int xdataBytes(Machine& machine, const Value& list) {
    int bytes = 0;
    for (const Value* at = &list; at->isCons(); at = &at->cdr()) {
        machine.tick();
        const Value& value = at->car();
        if (value.isText())
            bytes += 2 + static_cast<int>(value.text().size());
        else if (value.isCons() && value.car().isText())
            bytes += xdataBytes(machine, value); // an application with its records
        else if (value.isCons() && value.cdr().isText())
            bytes += 2 + static_cast<int>(value.cdr().text().size());
        else if (value.isCons())
            bytes += value.cdr().isCons() ? 25 : value.cdr().isReal() ? 9 : 5;
    }
    return bytes;
}

constexpr int kMostXData = 16383;

Value xdsize(Machine& machine, Arguments a) {
    return Value::integer(xdataBytes(machine, machine.listAt(a, 0)));
}

// What is left of the bytes that an object's extended data may take.
Value xdroom(Machine& machine, Arguments a) {
    const OdSmartPtr<OdDbObject> object = openNamed(machine, nameAt(machine, a, 0));
    if (object.isNull()) return Value();
    return Value::integer(kMostXData - xdataBytes(machine, pairsOf(machine, object->xData().get())));
}

const Builtin kEntities[] = {
    {"ENTGET", 1, 2, &entget},   {"ENTMOD", 1, 1, &entmod},   {"ENTDEL", 1, 1, &entdel},
    {"ENTUPD", 1, 1, &entupd},   {"ENTNEXT", 0, 1, &entnext}, {"ENTLAST", 0, 0, &entlast},
    {"HANDENT", 1, 1, &handent}, {"REGAPP", 1, 1, &regapp},   {"XDSIZE", 1, 1, &xdsize},
    {"XDROOM", 1, 1, &xdroom},
};

} // namespace

std::span<const Builtin> entityFunctions() {
    return kEntities;
}

} // namespace lm::host::lisp
