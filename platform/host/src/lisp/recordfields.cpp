// SPDX-License-Identifier: MIT
// The groups of records of symbol tables.
#include "entityfields.h"

#include "points.h"

#include "drawing/drawing.h"
#include "drawing/partwalk.h"
#include "drawing/recordsearch.h"

namespace lm::host::lisp {

namespace {

const OdDbSymbolTableRecord& record(const OdDbObject& object) {
    return static_cast<const OdDbSymbolTableRecord&>(object);
}

Value getName(Machine& machine, const OdDbObject& object) {
    return machine.text(record(object).getName().view());
}

/// Whether every drawing has the record under its name.
bool isFixed(const OdDbDatabase& database, const OdDbObject& object) {
    if (!object.isDBRO()) return false;
    const auto* block = OdDbBlockTableRecord::cast(&object);
    const OdDbObjectId id = object.objectId();
    return (block != nullptr && block->isLayout()) || id == database.getLayerZeroId() ||
           id == database.getLinetypeByBlockId() || id == database.getLinetypeByLayerId() ||
           id == database.getLinetypeContinuousId() || id == database.getTextStyleStandardId();
}

bool setName(const FieldTarget& target, const Value& value) {
    if (!value.isText() || value.text().empty()) return false;
    auto& changed = static_cast<OdDbSymbolTableRecord&>(target.object);
    const OdString name{WideView(value.text())};
    const OdDbObjectId known =
        target.object.isDBRO() ? recordToUse(target.object.ownerId(), value.text()) : OdDbObjectId();
    const bool taken = !known.isNull() && known != target.object.objectId();
    if (taken || isFixed(target.database, target.object)) return changed.getName() == name;
    if (!lm::drawing::isValidName(value.text())) return false;
    if (target.apply) changed.setName(name);
    return true;
}

Value getNoFlags(Machine&, const OdDbObject&) {
    return Value::integer(0);
}

enum LayerFlags { kFrozen = 1, kLocked = 4 };

Value getLayerFlags(Machine&, const OdDbObject& object) {
    const auto& layer = static_cast<const OdDbLayerTableRecord&>(object);
    return Value::integer((layer.isFrozen() ? kFrozen : 0) | (layer.isLocked() ? kLocked : 0));
}
bool setLayerFlags(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    if (!target.apply) return true;
    auto& layer = static_cast<OdDbLayerTableRecord&>(target.object);
    const bool frozen = (value.integer() & kFrozen) != 0, locked = (value.integer() & kLocked) != 0;
    if (frozen != layer.isFrozen()) layer.setIsFrozen(frozen);
    if (locked != layer.isLocked()) layer.setIsLocked(locked);
    return true;
}

// A layer that is off has its colour with a minus.
Value getLayerColor(Machine&, const OdDbObject& object) {
    const auto& layer = static_cast<const OdDbLayerTableRecord&>(object);
    const int index = layer.color().colorIndex();
    return Value::integer(layer.isOff() ? -index : index);
}
bool setLayerColor(const FieldTarget& target, const Value& value) {
    constexpr int kLast = 255;
    if (!value.isInteger() || value.integer() == 0 || std::abs(value.integer()) > kLast) return false;
    if (!target.apply) return true;
    auto& layer = static_cast<OdDbLayerTableRecord&>(target.object);
    const int index = std::abs(value.integer());
    if (index != layer.color().colorIndex()) layer.setColor(OdCmColor::fromIndex(index));
    if ((value.integer() < 0) != layer.isOff()) layer.setIsOff(value.integer() < 0);
    return true;
}

Value getLayerLinetype(Machine& machine, const OdDbObject& object) {
    const auto& layer = static_cast<const OdDbLayerTableRecord&>(object);
    const OdSmartPtr<OdDbObject> linetype = layer.linetypeObjectId().openObject();
    const auto* named = OdDbSymbolTableRecord::cast(linetype.get());
    return named == nullptr ? machine.text("Continuous") : machine.text(named->getName().view());
}
bool setLayerLinetype(const FieldTarget& target, const Value& value) {
    if (!value.isText()) return false;
    const OdDbObjectId id = recordNamed(target.database.getLinetypeTableId(), value.text());
    if (id.isNull()) return false;
    if (target.apply) static_cast<OdDbLayerTableRecord&>(target.object).setLinetypeObjectId(id);
    return true;
}

Value getComments(Machine& machine, const OdDbObject& object) {
    return machine.text(static_cast<const OdDbLinetypeTableRecord&>(object).comments().view());
}

const OdDbAbstractViewTableRecord& view(const OdDbObject& object) {
    return static_cast<const OdDbAbstractViewTableRecord&>(object);
}
Value getCentre(Machine& machine, const OdDbObject& object) {
    const OdGePoint2d centre = view(object).centerPoint();
    return machine.list(Value::real(centre.x), Value::real(centre.y));
}
bool setCentre(const FieldTarget& target, const Value& value) {
    const std::optional<Point> point = pointOf(value);
    if (!point) return false;
    if (target.apply)
        static_cast<OdDbAbstractViewTableRecord&>(target.object).setCenterPoint({point->x, point->y});
    return true;
}
Value getHeight(Machine&, const OdDbObject& object) {
    return Value::real(view(object).height());
}
bool setHeight(const FieldTarget& target, const Value& value) {
    if (!value.isNumber() || value.number() <= 0) return false;
    if (target.apply) static_cast<OdDbAbstractViewTableRecord&>(target.object).setHeight(value.number());
    return true;
}
Value getWidth(Machine&, const OdDbObject& object) {
    return Value::real(view(object).width());
}
bool setWidth(const FieldTarget& target, const Value& value) {
    if (!value.isNumber() || value.number() <= 0) return false;
    if (target.apply) static_cast<OdDbAbstractViewTableRecord&>(target.object).setWidth(value.number());
    return true;
}

Value getOrigin(Machine& machine, const OdDbObject& object) {
    return listOf(machine, static_cast<const OdDbBlockTableRecord&>(object).origin());
}
bool setOrigin(const FieldTarget& target, const Value& value) {
    const std::optional<Point> point = pointOf(value);
    if (!point) return false;
    if (target.apply) static_cast<OdDbBlockTableRecord&>(target.object).setOrigin(point->inSpace());
    return true;
}
Value getFirstEntity(Machine& machine, const OdDbObject& object) {
    const lm::drawing::PartWalk first(object.objectId());
    return first.done() ? Value::unbound() : nameValue(machine, first.id());
}
Value getBlockFlags(Machine&, const OdDbObject& object) {
    return Value::integer(static_cast<const OdDbBlockTableRecord&>(object).isAnonymous() ? 1 : 0);
}

const Field kLayer[] = {{2, &getName, &setName},
                        {70, &getLayerFlags, &setLayerFlags},
                        {62, &getLayerColor, &setLayerColor},
                        {6, &getLayerLinetype, &setLayerLinetype}};

const Field kLinetype[] = {{2, &getName, &setName}, {70, &getNoFlags, nullptr}, {3, &getComments, nullptr}};

const Field kView[] = {{2, &getName, &setName},
                       {70, &getNoFlags, nullptr},
                       {40, &getHeight, &setHeight},
                       {10, &getCentre, &setCentre},
                       {41, &getWidth, &setWidth}};

const Field kBlock[] = {{2, &getName, &setName},
                        {70, &getBlockFlags, nullptr},
                        {10, &getOrigin, &setOrigin},
                        {-2, &getFirstEntity, nullptr}};

const Field kOther[] = {{2, &getName, &setName}, {70, &getNoFlags, nullptr}};

} // namespace

std::span<const Field> recordFields(const OdDbObject& object) {
    if (OdDbLayerTableRecord::cast(&object) != nullptr) return kLayer;
    if (OdDbLinetypeTableRecord::cast(&object) != nullptr) return kLinetype;
    if (OdDbAbstractViewTableRecord::cast(&object) != nullptr) return kView;
    if (OdDbBlockTableRecord::cast(&object) != nullptr) return kBlock;
    if (OdDbSymbolTableRecord::cast(&object) != nullptr) return kOther;
    return {};
}

OdDbObjectId recordNamed(OdDbObjectId table, WideView name) {
    const OdSmartPtr<OdDbObject> object = table.openObject();
    const auto* records = OdDbSymbolTable::cast(object.get());
    return records == nullptr ? OdDbObjectId() : records->getAt(OdString(name));
}

OdDbObjectId recordToUse(OdDbObjectId table, WideView name) {
    const OdSmartPtr<OdDbObject> object = table.openObject();
    const auto* records = OdDbSymbolTable::cast(object.get());
    return records == nullptr ? OdDbObjectId() : lm::drawing::recordCalled(*records, OdString(name));
}

OdDbObjectId ensureLayer(OdDbDatabase& database, const OdString& name) {
    const OdDbObjectId known = recordToUse(database.getLayerTableId(), name.view());
    if (!known.isNull()) return known;
    const OdSmartPtr<OdDbSymbolTable> layers(database.getLayerTableId().openObject(OdDb::kForWrite));
    const OdSmartPtr<OdDbLayerTableRecord> layer(new OdDbLayerTableRecord(), lm::drawing::kAttach);
    layer->setName(name);
    return layers->add(layer);
}

} // namespace lm::host::lisp
