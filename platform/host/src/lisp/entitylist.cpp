// SPDX-License-Identifier: MIT
// Association lists from objects, and records from pairs.
#include "entityfields.h"

#include "entityname.h"
#include "points.h"

#include "drawing/drawing.h"
#include "drawing/entitygroups.h"

#include <cmath>
#include <utility>

namespace lm::host::lisp {

namespace {

constexpr int kXDataCode = -3;
constexpr int kApplication = 1001;

Value pair(Machine& machine, int code, Value value) {
    return machine.heap().cons(Value::integer(code), std::move(value));
}

WideString hexOf(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    WideString text;
    for (const char byte : bytes) {
        text += static_cast<WideChar>(kDigits[static_cast<unsigned char>(byte) >> 4]);
        text += static_cast<WideChar>(kDigits[static_cast<unsigned char>(byte) & 15]);
    }
    return text;
}

Value payloadOf(Machine& machine, const OdResBuf& record) {
    switch (record.payload()) {
    case OdResBuf::kInteger:
        return Machine::integerOrReal(record.getInt64());
    case OdResBuf::kReal:
        return Value::real(record.getDouble());
    case OdResBuf::kPoint:
        return listOf(machine, record.getPoint3d());
    case OdResBuf::kId:
        return nameValue(machine, record.getObjectId());
    case OdResBuf::kBinary:
        return machine.text(hexOf(record.getBinary()));
    default:
        return machine.text(record.getString().view());
    }
}

/// Whether an application's name fits one of the patterns.
bool isWanted(const OdString& application, const Value& patterns) {
    for (const Value* at = &patterns; at->isCons(); at = &at->cdr())
        if (at->car().isText() && odutWcMatch(application, OdString(WideView(at->car().text())))) return true;
    return false;
}

} // namespace

Value extendedData(Machine& machine, const OdDbObject& object, const Value& patterns) {
    ListBuilder all(machine.heap());
    const OdSmartPtr<OdResBuf> chain = object.xData();
    for (const OdResBuf* at = chain.get(); at != nullptr;) {
        const OdString application = at->getString();
        const bool wanted = isWanted(application, patterns);
        ListBuilder one(machine.heap());
        if (wanted) one.add(machine.text(application.view()));
        for (at = at->next().get(); at != nullptr && at->restype() != kApplication; at = at->next().get()) {
            machine.tick();
            if (wanted) one.add(pair(machine, at->restype(), payloadOf(machine, *at)));
        }
        if (wanted) all.add(one.take());
    }
    return all.take();
}

namespace {

/// The vertices of a polyline: the place, then widths and bulge of the piece that begins there. Widths are
/// shown for all vertices or for none.
void addVertices(Machine& machine, const OdDbPolyline& polyline, ListBuilder& list) {
    const std::vector<lm::drawing::PolylineVertex> vertices = lm::drawing::verticesOf(polyline);
    bool widths = false;
    for (const auto& vertex : vertices) widths = widths || vertex.startWidth != 0 || vertex.endWidth != 0;
    for (const auto& vertex : vertices) {
        list.add(pair(machine, 10, machine.list(Value::real(vertex.point.x), Value::real(vertex.point.y))));
        if (widths) {
            list.add(pair(machine, 40, Value::real(vertex.startWidth)));
            list.add(pair(machine, 41, Value::real(vertex.endWidth)));
        }
        list.add(pair(machine, 42, Value::real(vertex.bulge)));
    }
}

void addAll(Value pairs, ListBuilder& list) {
    for (const Value* at = &pairs; at->isCons(); at = &at->cdr()) list.add(at->car());
}

void addEntries(Machine& machine, const OdDbDictionary& dictionary, ListBuilder& list) {
    for (auto entry = dictionary.newIterator(); !entry->done(); entry->next()) {
        list.add(pair(machine, 3, machine.text(entry->name().view())));
        list.add(pair(machine, 350, nameValue(machine, entry->objectId())));
    }
}

void addFields(Machine& machine, const OdDbObject& object, ListBuilder& list) {
    for (const Field* field : fieldsOf(object)) {
        Value value = field->get(machine, object);
        if (!value.isUnbound()) list.add(pair(machine, field->code, std::move(value)));
    }
    addAll(keptPairs(machine, object), list);
    if (const auto* polyline = OdDbPolyline::cast(&object)) addVertices(machine, *polyline, list);
    if (const auto* dictionary = OdDbDictionary::cast(&object)) addEntries(machine, *dictionary, list);
    if (const auto* record = OdDbXrecord::cast(&object)) {
        const OdSmartPtr<OdResBuf> chain = record->rbChain();
        for (const OdResBuf* at = chain.get(); at != nullptr; at = at->next().get())
            list.add(pair(machine, at->restype(), payloadOf(machine, *at)));
    }
}

} // namespace

// A block's record is called by what it stands for.
WideString typeOf(const OdDbObject& object) {
    if (OdDbBlockTableRecord::cast(&object) != nullptr) return system::widen("BLOCK");
    if (object.isDBRO()) return WideString(object.dxfName().view());
    if (OdDbXrecord::cast(&object) != nullptr) return system::widen("XRECORD");
    return system::widen("DICTIONARY");
}

Value keptPairs(Machine& machine, const OdDbObject& object) {
    ListBuilder list(machine.heap());
    const OdSmartPtr<OdResBuf> groups = lm::drawing::keptGroups(object, keptCodes(object));
    for (const OdResBuf* at = groups.get(); at != nullptr; at = at->next().get()) {
        const int code = at->restype();
        const bool isHandle = (code >= 330 && code <= 369) || (code >= 390 && code <= 399);
        const OdDbDatabase* database = object.database();
        const OdDbObjectId id = isHandle && database != nullptr
                                    ? database->getOdDbObjectId(OdDbHandle(at->getString().c_str()))
                                    : OdDbObjectId();
        list.add(pair(machine, code, id.isNull() ? payloadOf(machine, *at) : nameValue(machine, id)));
    }
    return list.take();
}

Value layoutPairs(Machine& machine, const OdDbObject& object) {
    if (OdDbEntity::cast(&object) == nullptr || !object.isDBRO()) return Value();
    const OdDbObjectId owner = object.ownerId();
    const OdDbDatabase& database = *object.database();
    if (owner.isNull() || owner == database.getModelSpaceId()) return Value();
    const OdSmartPtr<OdDbObject> opened = owner.openObject();
    const auto* block = OdDbBlockTableRecord::cast(opened.get());
    if (block == nullptr || !block->isLayout()) return Value();
    const OdString layout = lm::drawing::layoutOfBlock(database, owner);
    const Value paper = pair(machine, 67, Value::integer(1));
    if (layout.isEmpty()) return machine.list(paper);
    return machine.list(paper, pair(machine, 410, machine.text(layout.view())));
}

Value nameValue(Machine& machine, OdDbObjectId id) {
    return id.isNull() ? Value() : machine.heap().foreign<EntityName>(id);
}

Value entityList(Machine& machine, const OdDbObject& object, const Value& name, const Value& applications) {
    ListBuilder list(machine.heap());
    list.add(pair(machine, -1, name));
    list.add(pair(machine, 0, machine.text(typeOf(object))));
    if (const OdDbObjectId owner = object.ownerId(); !owner.isNull())
        list.add(pair(machine, 330, nameValue(machine, owner)));
    if (object.isDBRO()) list.add(pair(machine, 5, machine.text(object.getDbHandle().ascii().view())));
    addAll(layoutPairs(machine, object), list);
    addFields(machine, object, list);
    if (applications) {
        Value xdata = extendedData(machine, object, applications);
        if (xdata) list.add(pair(machine, kXDataCode, std::move(xdata)));
    }
    return list.take();
}

Value recordList(Machine& machine, const OdDbObject& record) {
    ListBuilder list(machine.heap());
    list.add(pair(machine, 0, machine.text(typeOf(record))));
    addFields(machine, record, list);
    return list.take();
}

Value valueOfCode(const Value& list, int code) {
    for (const Value* at = &list; at->isCons(); at = &at->cdr())
        if (at->car().isCons() && at->car().car().isInteger() && at->car().car().integer() == code)
            return at->car().cdr();
    return Value::unbound();
}

Value pairsOf(Machine& machine, const OdResBuf* chain) {
    ListBuilder list(machine.heap());
    for (; chain != nullptr; chain = chain->next().get())
        list.add(pair(machine, chain->restype(), payloadOf(machine, *chain)));
    return list.take();
}

namespace {

/// What the value of a group must be. Parts of points that stand alone in extended data are numbers.
enum class GroupKind { kNone, kText, kReal, kPoint, kShort, kLong, kBinary, kName };

GroupKind kindOfGroup(int code) {
    struct Range {
        int first, last;
        GroupKind kind;
    };
    static constexpr Range kRanges[] = {
        {1, 4, GroupKind::kText},         {5, 5, GroupKind::kNone},       {6, 9, GroupKind::kText},
        {10, 37, GroupKind::kPoint},      {38, 59, GroupKind::kReal},     {60, 79, GroupKind::kShort},
        {90, 99, GroupKind::kLong},       {100, 102, GroupKind::kText},   {110, 112, GroupKind::kPoint},
        {140, 149, GroupKind::kReal},     {170, 179, GroupKind::kShort},  {210, 239, GroupKind::kPoint},
        {270, 299, GroupKind::kShort},    {300, 309, GroupKind::kText},   {310, 319, GroupKind::kBinary},
        {330, 369, GroupKind::kName},     {370, 389, GroupKind::kShort},  {390, 399, GroupKind::kName},
        {400, 409, GroupKind::kShort},    {410, 419, GroupKind::kText},   {420, 429, GroupKind::kLong},
        {430, 439, GroupKind::kText},     {440, 449, GroupKind::kLong},   {450, 459, GroupKind::kLong},
        {460, 469, GroupKind::kReal},     {470, 479, GroupKind::kText},   {1000, 1003, GroupKind::kText},
        {1004, 1004, GroupKind::kBinary}, {1005, 1005, GroupKind::kText}, {1010, 1013, GroupKind::kPoint},
        {1020, 1023, GroupKind::kReal},   {1030, 1033, GroupKind::kReal}, {1040, 1042, GroupKind::kReal},
        {1070, 1070, GroupKind::kShort},  {1071, 1071, GroupKind::kLong},
    };
    for (const Range& range : kRanges)
        if (code >= range.first && code <= range.last) return range.kind;
    return GroupKind::kNone;
}

/// Bytes of pairs of hexadecimal digits; false for another text.
bool bytesOf(const WideString& text, std::string& bytes) {
    if (text.size() % 2 != 0) return false;
    const auto digit = [](WideChar unit) {
        if (unit >= '0' && unit <= '9') return unit - '0';
        const WideChar capital = system::toUpper(unit);
        return capital >= 'A' && capital <= 'F' ? capital - 'A' + 10 : -1;
    };
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = digit(text[i]), low = digit(text[i + 1]);
        if (high < 0 || low < 0) return false;
        bytes += static_cast<char>(high * 16 + low);
    }
    return true;
}

/// Puts a value into a record; false for one that the group can't hold.
bool setPayload(OdResBuf& record, const Value& value) {
    std::string bytes;
    switch (kindOfGroup(record.restype())) {
    case GroupKind::kText:
        if (value.isText()) record.setString(OdString(WideView(value.text())));
        return value.isText();
    case GroupKind::kReal:
        if (!value.isNumber() || !std::isfinite(value.number())) return false;
        record.setDouble(value.number());
        return true;
    case GroupKind::kPoint: {
        const std::optional<Point> point = pointOf(value);
        if (!point || !std::isfinite(point->x + point->y + point->z)) return false;
        record.setPoint3d(point->inSpace());
        return true;
    }
    case GroupKind::kShort:
        if (!value.isInteger() || value.integer() < INT16_MIN || value.integer() > INT16_MAX) return false;
        record.setInt32(value.integer());
        return true;
    case GroupKind::kLong:
        if (value.isInteger()) record.setInt32(value.integer());
        return value.isInteger();
    case GroupKind::kBinary:
        if (!value.isText() || !bytesOf(value.text(), bytes)) return false;
        record.setBinary(bytes);
        return true;
    case GroupKind::kName: {
        const EntityName* name = foreignOf<EntityName>(value);
        if (name == nullptr || name->id().isNull()) return false;
        record.setObjectId(name->id());
        return true;
    }
    case GroupKind::kNone:
        break;
    }
    return false;
}

} // namespace

OdSmartPtr<OdResBuf> recordOfPair(const Value& given) {
    if (!given.isCons() || !given.car().isInteger()) return nullptr;
    OdSmartPtr<OdResBuf> record = OdResBuf::newRb(given.car().integer());
    return setPayload(*record, given.cdr()) ? record : OdSmartPtr<OdResBuf>();
}

} // namespace lm::host::lisp
