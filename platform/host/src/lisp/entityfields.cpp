// SPDX-License-Identifier: MIT
#include "entityfields.h"

#include "entityname.h"
#include "points.h"

#include "drawing/drawing.h"
#include "drawing/entitygroups.h"
#include "drawing/recordsearch.h"
#include "drawing/partwalk.h"

#include <cmath>

namespace lm::host::lisp {

namespace {

template<class M>
struct MemberOf;
template<class C, class R, class... A>
struct MemberOf<R (C::*)(A...) const> {
    using Class = C;
};
template<class C, class R, class... A>
struct MemberOf<R (C::*)(A...)> {
    using Class = C;
};

template<auto Get>
auto read(const OdDbObject& object) {
    return (static_cast<const typename MemberOf<decltype(Get)>::Class&>(object).*Get)();
}
template<auto Set, class V>
void write(OdDbObject& object, const V& value) {
    (static_cast<typename MemberOf<decltype(Set)>::Class&>(object).*Set)(value);
}

// Each of these makes the two functions of a field from a getter and a setter of the class.

template<auto Get>
Value getReal(Machine&, const OdDbObject& object) {
    return Value::real(read<Get>(object));
}
template<auto Set>
bool setReal(const FieldTarget& target, const Value& value) {
    if (!value.isNumber() || !std::isfinite(value.number())) return false;
    if (target.apply) write<Set>(target.object, value.number());
    return true;
}

/// A length that can't be 0.
template<auto Set>
bool setSize(const FieldTarget& target, const Value& value) {
    return value.isNumber() && value.number() > 0 && setReal<Set>(target, value);
}

template<auto Get>
Value getInteger(Machine&, const OdDbObject& object) {
    return Value::integer(static_cast<int>(read<Get>(object)));
}
template<auto Set>
bool setInteger(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    if (target.apply) write<Set>(target.object, value.integer());
    return true;
}
template<auto Set, int Least, int Most>
bool setRange(const FieldTarget& target, const Value& value) {
    return value.isInteger() && value.integer() >= Least && value.integer() <= Most &&
           setInteger<Set>(target, value);
}
template<auto Set>
bool setFlag(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    if (target.apply) write<Set>(target.object, (value.integer() & 1) != 0);
    return true;
}

template<auto Get>
Value getText(Machine& machine, const OdDbObject& object) {
    return machine.text(OdString(read<Get>(object)).view());
}
template<auto Set>
bool setText(const FieldTarget& target, const Value& value) {
    if (!value.isText()) return false;
    if (target.apply) write<Set>(target.object, OdString(WideView(value.text())));
    return true;
}

/// A point that a drawing can hold.
std::optional<Point> placeOf(const Value& value) {
    const std::optional<Point> point = pointOf(value);
    const bool fits = point && std::isfinite(point->x) && std::isfinite(point->y) && std::isfinite(point->z);
    return fits ? point : std::nullopt;
}

template<auto Get>
Value getPoint(Machine& machine, const OdDbObject& object) {
    const auto point = read<Get>(object);
    return listOf(machine, OdGePoint3d(point.x, point.y, point.z));
}
template<auto Set>
bool setPoint(const FieldTarget& target, const Value& value) {
    const std::optional<Point> point = placeOf(value);
    if (!point) return false;
    if (target.apply) write<Set>(target.object, point->inSpace());
    return true;
}
template<auto Set>
bool setVector(const FieldTarget& target, const Value& value) {
    const std::optional<Point> point = placeOf(value);
    if (!point || (point->x == 0 && point->y == 0 && point->z == 0)) return false;
    if (target.apply) write<Set>(target.object, OdGeVector3d(point->x, point->y, point->z));
    return true;
}

// Fields that are reached by their codes. A real that is 0 isn't shown where files leave it out as well.

template<int Code>
Value getNumber(Machine&, const OdDbObject& object) {
    const double number = lm::drawing::numberAt(object, Code).value_or(0);
    return number == 0 ? Value::unbound() : Value::real(number);
}
template<int Code>
bool setNumber(const FieldTarget& target, const Value& value) {
    if (!value.isNumber() || !std::isfinite(value.number())) return false;
    if (target.apply) lm::drawing::setNumberAt(target.database, target.object, Code, value.number());
    return true;
}
/// A length that may be 0.
template<int Code>
bool setWidth(const FieldTarget& target, const Value& value) {
    return value.isNumber() && value.number() >= 0 && setNumber<Code>(target, value);
}

template<int Code>
Value getWhole(Machine&, const OdDbObject& object) {
    return Value::integer(static_cast<int>(lm::drawing::numberAt(object, Code).value_or(0)));
}
template<int Code, int Most>
bool setWhole(const FieldTarget& target, const Value& value) {
    return value.isInteger() && value.integer() >= 0 && value.integer() <= Most &&
           setNumber<Code>(target, value);
}
/// Flags of which only some are known.
template<int Code, int Known>
bool setFlags(const FieldTarget& target, const Value& value) {
    return value.isInteger() && (value.integer() & ~Known) == 0 && setNumber<Code>(target, value);
}

Value nameOfRecord(Machine& machine, OdDbObjectId id) {
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead, true);
    const auto* record = OdDbSymbolTableRecord::cast(object.get());
    return record == nullptr ? Value::unbound() : machine.text(record->getName().view());
}

/// A record of a table that a text names; null, and `fits` false, for anything else.
OdDbObjectId recordOf(OdDbObjectId table, const Value& value, bool& fits) {
    const OdDbObjectId id = value.isText() ? recordNamed(table, value.text()) : OdDbObjectId();
    fits = !id.isNull();
    return id;
}

// The properties of every entity.

Value getLayer(Machine& machine, const OdDbObject& object) {
    return machine.text(static_cast<const OdDbEntity&>(object).layer().view());
}
bool setLayer(const FieldTarget& target, const Value& value) {
    if (!value.isText() || value.text().empty()) return false;
    // A layer that is there may have come from a file under any name.
    const bool isNew = recordNamed(target.database.getLayerTableId(), value.text()).isNull();
    if (isNew && !lm::drawing::isValidName(value.text())) return false;
    if (target.apply) {
        const OdDbObjectId layer = ensureLayer(target.database, OdString(WideView(value.text())));
        static_cast<OdDbEntity&>(target.object).setLayer(layer);
    }
    return true;
}

constexpr int kByLayerColor = 256;

Value getColor(Machine&, const OdDbObject& object) {
    const OdCmColor color = static_cast<const OdDbEntity&>(object).color();
    if (color.method() == OdCmColor::kByLayer || color.method() == OdCmColor::kByColor)
        return Value::unbound();
    return Value::integer(color.method() == OdCmColor::kByBlock ? 0 : color.colorIndex());
}
bool setColor(const FieldTarget& target, const Value& value) {
    if (!value.isInteger() || value.integer() < 0 || value.integer() > kByLayerColor) return false;
    if (target.apply) static_cast<OdDbEntity&>(target.object).setColor(OdCmColor::fromIndex(value.integer()));
    return true;
}

Value getTrueColor(Machine&, const OdDbObject& object) {
    const OdCmColor color = static_cast<const OdDbEntity&>(object).color();
    if (color.method() != OdCmColor::kByColor) return Value::unbound();
    return Value::integer(static_cast<int>(color.rgb()));
}
bool setTrueColor(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    const auto rgb = static_cast<unsigned>(value.integer());
    if (target.apply)
        static_cast<OdDbEntity&>(target.object)
            .setColor(OdCmColor::fromRgb(static_cast<std::uint8_t>(rgb >> 16),
                                         static_cast<std::uint8_t>(rgb >> 8),
                                         static_cast<std::uint8_t>(rgb)));
    return true;
}

Value getLinetype(Machine& machine, const OdDbObject& object) {
    const auto& entity = static_cast<const OdDbEntity&>(object);
    const OdDbObjectId id = entity.linetypeId();
    const OdDbDatabase* database = entity.database();
    if (id.isNull() || (database != nullptr && id == database->getLinetypeByLayerId()))
        return Value::unbound();
    return nameOfRecord(machine, id);
}
bool setLinetype(const FieldTarget& target, const Value& value) {
    bool fits = false;
    const OdDbObjectId id = recordOf(target.database.getLinetypeTableId(), value, fits);
    if (fits && target.apply) static_cast<OdDbEntity&>(target.object).setLinetype(id);
    return fits;
}

Value getLinetypeScale(Machine&, const OdDbObject& object) {
    const double scale = static_cast<const OdDbEntity&>(object).linetypeScale();
    return scale == 1 ? Value::unbound() : Value::real(scale);
}

Value getLineWeight(Machine&, const OdDbObject& object) {
    const int weight = static_cast<const OdDbEntity&>(object).lineWeight();
    return weight == -1 ? Value::unbound() : Value::integer(weight);
}

Value getTransparency(Machine&, const OdDbObject& object) {
    const unsigned transparency = static_cast<const OdDbEntity&>(object).transparency();
    return transparency == 0 ? Value::unbound() : Value::integer(static_cast<int>(transparency));
}
bool setTransparency(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    if (target.apply)
        static_cast<OdDbEntity&>(target.object).setTransparency(static_cast<unsigned>(value.integer()));
    return true;
}

Value getInvisible(Machine&, const OdDbObject& object) {
    return static_cast<const OdDbEntity&>(object).isVisible() ? Value::unbound() : Value::integer(1);
}
bool setInvisible(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    if (target.apply) static_cast<OdDbEntity&>(target.object).setVisible(value.integer() == 0);
    return true;
}

const Field kEntity[] = {
    {8, &getLayer, &setLayer},
    {6, &getLinetype, &setLinetype},
    {62, &getColor, &setColor},
    {420, &getTrueColor, &setTrueColor},
    {440, &getTransparency, &setTransparency},
    {48, &getLinetypeScale, &setSize<&OdDbEntity::setLinetypeScale>},
    {370, &getLineWeight, &setRange<&OdDbEntity::setLineWeight, -3, 211>},
    {60, &getInvisible, &setInvisible},
};

template<class T>
Value getStyle(Machine& machine, const OdDbObject& object) {
    return nameOfRecord(machine, static_cast<const T&>(object).textStyle());
}
template<class T>
bool setStyle(const FieldTarget& target, const Value& value) {
    bool fits = false;
    const OdDbObjectId id = recordOf(target.database.getTextStyleTableId(), value, fits);
    if (fits && target.apply) static_cast<T&>(target.object).setTextStyle(id);
    return fits;
}

// A multi-line text has its direction as a vector of the world or as an angle in its plane, and a list tells
// both. The angle counts where it differs from that of the vector.

double angleOf(const OdDbMText& text) {
    if (text.direction() == OdGeVector3d::kXAxis) return text.rotation();
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text.normal());
    const auto along = [&](int axis) {
        const OdGeVector3d unit(plane.entry[0][axis], plane.entry[1][axis], plane.entry[2][axis]);
        return text.direction().dotProduct(unit);
    };
    return std::atan2(along(1), along(0));
}

OdGeVector3d directionOf(const OdDbMText& text) {
    if (text.direction() != OdGeVector3d::kXAxis || text.rotation() == 0) return text.direction();
    const OdGeVector3d inPlane(std::cos(text.rotation()), std::sin(text.rotation()), 0);
    return OdGeMatrix3d::planeToWorld(text.normal()) * inPlane;
}

Value getDirection(Machine& machine, const OdDbObject& object) {
    const OdGeVector3d direction = directionOf(static_cast<const OdDbMText&>(object));
    return listOf(machine, OdGePoint3d(direction.x, direction.y, direction.z));
}

Value getTextAngle(Machine&, const OdDbObject& object) {
    return Value::real(angleOf(static_cast<const OdDbMText&>(object)));
}
bool setTextAngle(const FieldTarget& target, const Value& value) {
    constexpr int kAngle = 50;
    if (!value.isNumber() || !std::isfinite(value.number())) return false;
    auto& text = static_cast<OdDbMText&>(target.object);
    if (!target.apply || angleOf(text) == value.number()) return true;
    text.setDirection(OdGeVector3d::kXAxis);
    return lm::drawing::setNumberAt(target.database, text, kAngle, value.number());
}

Value getMirror(Machine&, const OdDbObject& object) {
    const auto& text = static_cast<const OdDbText&>(object);
    return Value::integer((text.isMirroredInX() ? 2 : 0) | (text.isMirroredInY() ? 4 : 0));
}
bool setMirror(const FieldTarget& target, const Value& value) {
    if (!value.isInteger()) return false;
    if (!target.apply) return true;
    auto& text = static_cast<OdDbText&>(target.object);
    text.setMirrorInX((value.integer() & 2) != 0);
    text.setMirrorInY((value.integer() & 4) != 0);
    return true;
}

Value getBlock(Machine& machine, const OdDbObject& object) {
    return nameOfRecord(machine, static_cast<const OdDbBlockReference&>(object).blockTableRecord());
}
// Neither a space nor the block that the reference stands in.
bool setBlock(const FieldTarget& target, const Value& value) {
    bool fits = false;
    const OdDbObjectId id = recordOf(target.database.getBlockTableId(), value, fits);
    const OdSmartPtr<OdDbObject> record = id.openObject();
    const auto* block = OdDbBlockTableRecord::cast(record.get());
    if (block == nullptr || block->isLayout() || id == target.object.ownerId()) return false;
    if (fits && target.apply) static_cast<OdDbBlockReference&>(target.object).setBlockTableRecord(id);
    return fits;
}

Value getAttributesFollow(Machine&, const OdDbObject& object) {
    const bool follow = object.isDBRO() && !lm::drawing::PartWalk(object.objectId()).done();
    return follow ? Value::integer(1) : Value::unbound();
}

template<int Axis>
Value getScale(Machine&, const OdDbObject& object) {
    const OdGeScale3d scale = static_cast<const OdDbBlockReference&>(object).scaleFactors();
    return Value::real(Axis == 0 ? scale.sx : Axis == 1 ? scale.sy : scale.sz);
}
template<int Axis>
bool setScale(const FieldTarget& target, const Value& value) {
    if (!value.isNumber() || value.number() == 0) return false;
    if (!target.apply) return true;
    auto& reference = static_cast<OdDbBlockReference&>(target.object);
    OdGeScale3d scale = reference.scaleFactors();
    (Axis == 0 ? scale.sx : Axis == 1 ? scale.sy : scale.sz) = value.number();
    reference.setScaleFactors(scale);
    return true;
}

// What makes a reference an array is shown together.
bool isArray(const OdDbObject& object) {
    const auto& reference = static_cast<const OdDbBlockReference&>(object);
    return reference.columns() > 1 || reference.rows() > 1 || reference.columnSpacing() != 0 ||
           reference.rowSpacing() != 0;
}
template<int Code>
Value getArrayCount(Machine& machine, const OdDbObject& object) {
    return isArray(object) ? getWhole<Code>(machine, object) : Value::unbound();
}
template<int Code>
Value getArraySpacing(Machine&, const OdDbObject& object) {
    if (!isArray(object)) return Value::unbound();
    return Value::real(lm::drawing::numberAt(object, Code).value_or(0));
}

/// Bit 1 invisible, bit 2 constant, 4 to be verified, 8 preset.
constexpr int kAttributeFlags = 15;

Value getVertexCount(Machine&, const OdDbObject& object) {
    return Value::integer(static_cast<int>(static_cast<const OdDbPolyline&>(object).numVerts()));
}

constexpr Field kThickness = {39, &getNumber<39>, &setNumber<39>};

const Field kPoint[] = {{10, &getPoint<&OdDbPoint::position>, &setPoint<&OdDbPoint::setPosition>},
                        kThickness};

const Field kLine[] = {{10, &getPoint<&OdDbLine::startPoint>, &setPoint<&OdDbLine::setStartPoint>},
                       {11, &getPoint<&OdDbLine::endPoint>, &setPoint<&OdDbLine::setEndPoint>},
                       kThickness};

const Field kCircle[] = {{10, &getPoint<&OdDbCircle::center>, &setPoint<&OdDbCircle::setCenter>},
                         {40, &getReal<&OdDbCircle::radius>, &setSize<&OdDbCircle::setRadius>},
                         kThickness,
                         {210, &getPoint<&OdDbCircle::normal>, &setVector<&OdDbCircle::setNormal>}};

const Field kArc[] = {{10, &getPoint<&OdDbArc::center>, &setPoint<&OdDbArc::setCenter>},
                      {40, &getReal<&OdDbArc::radius>, &setSize<&OdDbArc::setRadius>},
                      {50, &getReal<&OdDbArc::startAngle>, &setReal<&OdDbArc::setStartAngle>},
                      {51, &getReal<&OdDbArc::endAngle>, &setReal<&OdDbArc::setEndAngle>},
                      kThickness,
                      {210, &getPoint<&OdDbArc::normal>, &setVector<&OdDbArc::setNormal>}};

const Field kEllipse[] = {{10, &getPoint<&OdDbEllipse::center>, &setPoint<&OdDbEllipse::setCenter>},
                          {11, &getPoint<&OdDbEllipse::majorAxis>, &setVector<&OdDbEllipse::setMajorAxis>},
                          {40, &getReal<&OdDbEllipse::radiusRatio>, &setSize<&OdDbEllipse::setRadiusRatio>},
                          {41, &getReal<&OdDbEllipse::startParam>, &setReal<&OdDbEllipse::setStartParam>},
                          {42, &getReal<&OdDbEllipse::endParam>, &setReal<&OdDbEllipse::setEndParam>},
                          {210, &getPoint<&OdDbEllipse::normal>, &setVector<&OdDbEllipse::setNormal>}};

// The vertices, groups 10, 40, 41 and 42, and their number are a matter of the whole list.
constexpr int kPolylineFlags = 1 | 128; ///< closed; line types run through

const Field kPolyline[] = {{90, &getVertexCount, nullptr},
                           {70, &getWhole<70>, &setFlags<70, kPolylineFlags>},
                           {43, &getNumber<43>, &setWidth<43>},
                           {38, &getReal<&OdDbPolyline::elevation>, &setReal<&OdDbPolyline::setElevation>},
                           kThickness,
                           {210, &getPoint<&OdDbPolyline::normal>, &setVector<&OdDbPolyline::setNormal>}};

#define LM_TEXT_FIELDS                                                                                       \
    {39, &getNumber<39>, &setNumber<39>},                                                                    \
        {10, &getPoint<&OdDbText::position>, &setPoint<&OdDbText::setPosition>},                             \
        {40, &getReal<&OdDbText::height>, &setSize<&OdDbText::setHeight>},                                   \
        {1, &getText<&OdDbText::textString>, &setText<&OdDbText::setTextString>},                            \
        {50, &getReal<&OdDbText::rotation>, &setReal<&OdDbText::setRotation>},                               \
        {41, &getReal<&OdDbText::widthFactor>, &setSize<&OdDbText::setWidthFactor>},                         \
        {51, &getReal<&OdDbText::oblique>, &setReal<&OdDbText::setOblique>},                                 \
        {7, &getStyle<OdDbText>, &setStyle<OdDbText>}, {71, &getMirror, &setMirror},                         \
        {72, &getInteger<&OdDbText::horizontalMode>, &setRange<&OdDbText::setHorizontalMode, 0, 5>},         \
        {11, &getPoint<&OdDbText::alignmentPoint>, &setPoint<&OdDbText::setAlignmentPoint>}, {               \
        210, &getPoint<&OdDbText::normal>, &setVector<&OdDbText::setNormal>                                  \
    }

const Field kText[] = {
    LM_TEXT_FIELDS, {73, &getInteger<&OdDbText::verticalMode>, &setRange<&OdDbText::setVerticalMode, 0, 3>}};

const Field kAttribute[] = {
    LM_TEXT_FIELDS,
    {2, &getText<&OdDbAttribute::tag>, &setText<&OdDbAttribute::setTag>},
    {70, &getWhole<70>, &setFlags<70, kAttributeFlags>},
    {73, &getInteger<&OdDbAttribute::fieldLength>, &setRange<&OdDbAttribute::setFieldLength, 0, INT16_MAX>},
    {74, &getInteger<&OdDbText::verticalMode>, &setRange<&OdDbText::setVerticalMode, 0, 3>}};

const Field kDefinition[] = {
    LM_TEXT_FIELDS,
    {3, &getText<&OdDbAttributeDefinition::prompt>, &setText<&OdDbAttributeDefinition::setPrompt>},
    {2, &getText<&OdDbAttributeDefinition::tag>, &setText<&OdDbAttributeDefinition::setTag>},
    {70, &getWhole<70>, &setFlags<70, kAttributeFlags>},
    {73, &getInteger<&OdDbAttributeDefinition::fieldLength>,
     &setRange<&OdDbAttributeDefinition::setFieldLength, 0, INT16_MAX>},
    {74, &getInteger<&OdDbText::verticalMode>, &setRange<&OdDbText::setVerticalMode, 0, 3>}};

#undef LM_TEXT_FIELDS

// The text, groups 3 and 1, is a matter of the whole list.
const Field kMText[] = {{10, &getPoint<&OdDbMText::location>, &setPoint<&OdDbMText::setLocation>},
                        {40, &getReal<&OdDbMText::textHeight>, &setSize<&OdDbMText::setTextHeight>},
                        {41, &getReal<&OdDbMText::width>, &setReal<&OdDbMText::setWidth>},
                        {46, &getNumber<46>, &setWidth<46>},
                        {71, &getInteger<&OdDbMText::attachment>, &setRange<&OdDbMText::setAttachment, 1, 9>},
                        {1, &getText<&OdDbMText::contents>, nullptr},
                        {7, &getStyle<OdDbMText>, &setStyle<OdDbMText>},
                        {210, &getPoint<&OdDbMText::normal>, &setVector<&OdDbMText::setNormal>},
                        {11, &getDirection, &setVector<&OdDbMText::setDirection>},
                        {42, &getNumber<42>, &setWidth<42>},
                        {43, &getNumber<43>, &setWidth<43>},
                        {50, &getTextAngle, &setTextAngle}};

const Field kReference[] = {
    {66, &getAttributesFollow, nullptr},
    {2, &getBlock, &setBlock},
    {10, &getPoint<&OdDbBlockReference::position>, &setPoint<&OdDbBlockReference::setPosition>},
    {41, &getScale<0>, &setScale<0>},
    {42, &getScale<1>, &setScale<1>},
    {43, &getScale<2>, &setScale<2>},
    {50, &getReal<&OdDbBlockReference::rotation>, &setReal<&OdDbBlockReference::setRotation>},
    {70, &getArrayCount<70>, &setWhole<70, INT16_MAX>},
    {71, &getArrayCount<71>, &setWhole<71, INT16_MAX>},
    {44, &getArraySpacing<44>, &setNumber<44>},
    {45, &getArraySpacing<45>, &setNumber<45>},
    {210, &getPoint<&OdDbBlockReference::normal>, &setVector<&OdDbBlockReference::setNormal>}};

template<class T>
OdSmartPtr<OdDbObject> make() {
    return OdSmartPtr<OdDbObject>(new T(), lm::drawing::kAttach);
}

// Extrusion, the direction of a point's mark; direction of flow, spacing and background of a text.
constexpr int kKeptByLine[] = {210};
constexpr int kKeptByPoint[] = {50, 210};
constexpr int kKeptByMText[] = {72, 73, 44, 90, 63, 421, 45, 441};

const EntityClass kClasses[] = {
    {"LINE", &OdDbLine::desc, &make<OdDbLine>, kLine, kKeptByLine},
    {"INSERT", &OdDbBlockReference::desc, &make<OdDbBlockReference>, kReference},
    {"ATTRIB", &OdDbAttribute::desc, &make<OdDbAttribute>, kAttribute},
    {"LWPOLYLINE", &OdDbPolyline::desc, &make<OdDbPolyline>, kPolyline},
    {"TEXT", &OdDbText::desc, &make<OdDbText>, kText},
    {"MTEXT", &OdDbMText::desc, &make<OdDbMText>, kMText, kKeptByMText},
    {"ATTDEF", &OdDbAttributeDefinition::desc, &make<OdDbAttributeDefinition>, kDefinition},
    {"CIRCLE", &OdDbCircle::desc, &make<OdDbCircle>, kCircle},
    {"ARC", &OdDbArc::desc, &make<OdDbArc>, kArc},
    {"ELLIPSE", &OdDbEllipse::desc, &make<OdDbEllipse>, kEllipse},
    {"POINT", &OdDbPoint::desc, &make<OdDbPoint>, kPoint, kKeptByPoint},
};

} // namespace

const EntityClass* classOfType(WideView type) {
    for (const EntityClass& entry : kClasses)
        if (system::equalsNoCase(type, system::widen(entry.name))) return &entry;
    return nullptr;
}

std::vector<const Field*> fieldsOf(const OdDbObject& object) {
    std::vector<const Field*> fields;
    if (OdDbEntity::cast(&object) == nullptr) {
        for (const Field& field : recordFields(object)) fields.push_back(&field);
        return fields;
    }
    for (const Field& field : kEntity) fields.push_back(&field);
    for (const EntityClass& entry : kClasses) {
        if (object.isA() != entry.desc()) continue;
        for (const Field& field : entry.fields) fields.push_back(&field);
    }
    return fields;
}

std::span<const int> keptCodes(const OdDbObject& object) {
    if (OdDbEntity::cast(&object) == nullptr) return keptByRecord(object);
    for (const EntityClass& entry : kClasses)
        if (object.isA() == entry.desc()) return entry.kept;
    return {};
}

} // namespace lm::host::lisp
