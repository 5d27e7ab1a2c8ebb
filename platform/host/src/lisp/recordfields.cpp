// SPDX-License-Identifier: MIT
// The groups of records of symbol tables.
#include "entityfields.h"

#include "points.h"

#include "drawing/drawing.h"
#include "drawing/entitygroups.h"
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

// All flags that the record has: the drawing gives those that nobody sets here their meaning.
Value getFlags(Machine&, const OdDbObject& object) {
    constexpr int kFlags = 70;
    return Value::integer(static_cast<int>(lm::drawing::numberAt(object, kFlags).value_or(0)));
}
bool setFlags(const FieldTarget& target, const Value& value) {
    constexpr int kFlags = 70, kMost = 255;
    if (!value.isInteger() || value.integer() < 0 || value.integer() > kMost) return false;
    if (target.apply) lm::drawing::setNumberAt(target.database, target.object, kFlags, value.integer());
    return true;
}

/// The colour index of a layer; beside a true colour that which its groups have, else white.
int indexOf(const OdDbLayerTableRecord& layer) {
    constexpr int kIndex[] = {62}, kWhite = 7;
    if (layer.color().method() != OdCmColor::kByColor) return layer.color().colorIndex();
    const OdSmartPtr<OdResBuf> held = lm::drawing::keptGroups(layer, kIndex);
    const int index = held.isNull() ? 0 : std::abs(held->getInt32());
    return index == 0 ? kWhite : index;
}

// A layer that is off has its colour with a minus.
Value getLayerColor(Machine&, const OdDbObject& object) {
    const auto& layer = static_cast<const OdDbLayerTableRecord&>(object);
    return Value::integer(layer.isOff() ? -indexOf(layer) : indexOf(layer));
}
bool setLayerColor(const FieldTarget& target, const Value& value) {
    constexpr int kLast = 255;
    if (!value.isInteger() || value.integer() == 0 || std::abs(value.integer()) > kLast) return false;
    if (!target.apply) return true;
    auto& layer = static_cast<OdDbLayerTableRecord&>(target.object);
    const int index = std::abs(value.integer());
    if (index != indexOf(layer)) layer.setColor(OdCmColor::fromIndex(index));
    if ((value.integer() < 0) != layer.isOff()) layer.setIsOff(value.integer() < 0);
    return true;
}

// The index beside a true colour stays what it was: the true colour counts.
Value getLayerTrueColor(Machine&, const OdDbObject& object) {
    const OdCmColor color = static_cast<const OdDbLayerTableRecord&>(object).color();
    return color.method() == OdCmColor::kByColor ? Value::integer(static_cast<int>(color.rgb()))
                                                 : Value::unbound();
}
bool setLayerTrueColor(const FieldTarget& target, const Value& value) {
    constexpr int kMost = 0xFFFFFF;
    if (!value.isInteger() || value.integer() < 0 || value.integer() > kMost) return false;
    const auto rgb = static_cast<unsigned>(value.integer());
    if (target.apply)
        static_cast<OdDbLayerTableRecord&>(target.object)
            .setColor(OdCmColor::fromRgb(static_cast<std::uint8_t>(rgb >> 16),
                                         static_cast<std::uint8_t>(rgb >> 8),
                                         static_cast<std::uint8_t>(rgb)));
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
bool setComments(const FieldTarget& target, const Value& value) {
    constexpr int kComments = 3;
    if (!value.isText()) return false;
    if (target.apply)
        lm::drawing::setTextAt(target.database, target.object, kComments, OdString(WideView(value.text())));
    return true;
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
                        {70, &getFlags, &setFlags},
                        {62, &getLayerColor, &setLayerColor},
                        {420, &getLayerTrueColor, &setLayerTrueColor},
                        {6, &getLayerLinetype, &setLayerLinetype}};

const Field kLinetype[] = {
    {2, &getName, &setName}, {70, &getFlags, &setFlags}, {3, &getComments, &setComments}};

const Field kView[] = {{2, &getName, &setName},
                       {70, &getFlags, &setFlags},
                       {40, &getHeight, &setHeight},
                       {10, &getCentre, &setCentre},
                       {41, &getWidth, &setWidth}};

const Field kBlock[] = {{2, &getName, &setName},
                        {70, &getBlockFlags, nullptr},
                        {10, &getOrigin, &setOrigin},
                        {-2, &getFirstEntity, nullptr}};

const Field kOther[] = {{2, &getName, &setName}, {70, &getFlags, &setFlags}};

// Line weight, plotting, plot style, material and visual style; the pattern; size and files of the font.
constexpr int kKeptByLayer[] = {290, 370, 390, 347, 348};
constexpr int kKeptByLinetype[] = {72, 73, 40, 49, 74, 75, 340, 46, 50, 44, 45, 9};
constexpr int kKeptByStyle[] = {40, 41, 50, 71, 42, 3, 4};

} // namespace

std::span<const int> keptByRecord(const OdDbObject& object) {
    if (OdDbLayerTableRecord::cast(&object) != nullptr) return kKeptByLayer;
    if (OdDbLinetypeTableRecord::cast(&object) != nullptr) return kKeptByLinetype;
    if (OdDbTextStyleTableRecord::cast(&object) != nullptr) return kKeptByStyle;
    return {};
}

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
