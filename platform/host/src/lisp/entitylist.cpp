// SPDX-License-Identifier: MIT
// Association lists from objects, and objects from association lists.
#include "entityfields.h"

#include "entityname.h"
#include "points.h"

#include "drawing/drawing.h"

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

/// ("APP" (1000 . "text") ...) for each application that is wanted.
Value xdataOf(Machine& machine, const OdDbObject& object, const Value& patterns) {
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

/// The vertices of a polyline: the place, then the bulge of the piece that begins there.
void addVertices(Machine& machine, const OdDbPolyline& polyline, ListBuilder& list) {
    for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
        const OdGePoint3d point = polyline.getPointAt(i);
        list.add(pair(machine, 10, machine.list(Value::real(point.x), Value::real(point.y))));
        list.add(pair(machine, 42, Value::real(polyline.getBulgeAt(i))));
    }
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
    if (const auto* polyline = OdDbPolyline::cast(&object)) addVertices(machine, *polyline, list);
    if (const auto* dictionary = OdDbDictionary::cast(&object)) addEntries(machine, *dictionary, list);
    if (const auto* record = OdDbXrecord::cast(&object)) {
        const OdSmartPtr<OdResBuf> chain = record->rbChain();
        for (const OdResBuf* at = chain.get(); at != nullptr; at = at->next().get())
            list.add(pair(machine, at->restype(), payloadOf(machine, *at)));
    }
}

/// The type in group 0: a block's record is called by what it stands for.
WideString typeOf(const OdDbObject& object) {
    if (OdDbBlockTableRecord::cast(&object) != nullptr) return system::widen("BLOCK");
    if (object.isDBRO()) return WideString(object.dxfName().view());
    if (OdDbXrecord::cast(&object) != nullptr) return system::widen("XRECORD");
    return system::widen("DICTIONARY");
}

} // namespace

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
    addFields(machine, object, list);
    if (applications) {
        Value xdata = xdataOf(machine, object, applications);
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

/// What the value of a group must be.
enum class GroupKind { kNone, kText, kReal, kPoint, kShort, kLong, kBinary, kName };

GroupKind kindOfGroup(int code) {
    struct Range {
        int first, last;
        GroupKind kind;
    };
    static constexpr Range kRanges[] = {
        {1, 4, GroupKind::kText},         {5, 5, GroupKind::kNone},        {6, 9, GroupKind::kText},
        {10, 37, GroupKind::kPoint},      {38, 59, GroupKind::kReal},      {60, 79, GroupKind::kShort},
        {90, 99, GroupKind::kLong},       {100, 102, GroupKind::kText},    {110, 112, GroupKind::kPoint},
        {140, 149, GroupKind::kReal},     {170, 179, GroupKind::kShort},   {210, 239, GroupKind::kPoint},
        {270, 299, GroupKind::kShort},    {300, 309, GroupKind::kText},    {310, 319, GroupKind::kBinary},
        {330, 369, GroupKind::kName},     {370, 389, GroupKind::kShort},   {390, 399, GroupKind::kName},
        {400, 409, GroupKind::kShort},    {410, 419, GroupKind::kText},    {420, 429, GroupKind::kLong},
        {430, 439, GroupKind::kText},     {440, 449, GroupKind::kLong},    {450, 459, GroupKind::kLong},
        {460, 469, GroupKind::kReal},     {470, 479, GroupKind::kText},    {1000, 1003, GroupKind::kText},
        {1004, 1004, GroupKind::kBinary}, {1005, 1005, GroupKind::kText},  {1010, 1013, GroupKind::kPoint},
        {1040, 1042, GroupKind::kReal},   {1070, 1070, GroupKind::kShort}, {1071, 1071, GroupKind::kLong},
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

namespace {

/// The chain of ("APP" (1000 . "text") ...), with the application at its head; null for another form.
OdSmartPtr<OdResBuf> xdataChain(const Value& application) {
    if (!application.isCons() || !application.car().isText() || application.car().text().empty())
        return nullptr;
    OdSmartPtr<OdResBuf> head = OdResBuf::newRb(kApplication, OdString(WideView(application.car().text())));
    OdSmartPtr<OdResBuf> last = head;
    for (const Value* at = &application.cdr(); at->isCons(); at = &at->cdr()) {
        const OdSmartPtr<OdResBuf> record = recordOfPair(at->car());
        if (record.isNull() || record->restype() < 1000) return nullptr;
        last = last->append(record);
    }
    return head;
}

bool applyXData(const FieldTarget& target, const Value& applications) {
    for (const Value* at = &applications; at->isCons(); at = &at->cdr()) {
        const OdSmartPtr<OdResBuf> chain = xdataChain(at->car());
        if (chain.isNull()) return false;
        if (target.apply) target.object.setXData(chain);
    }
    return true;
}

struct Vertex {
    OdGePoint2d point;
    double bulge = 0;
};

/// The vertices of a list: each group 10 begins one, a group 42 behind it is its bulge.
bool verticesOf(const Value& list, std::vector<Vertex>& vertices) {
    for (const Value* at = &list; at->isCons(); at = &at->cdr()) {
        const Value& entry = at->car();
        if (!entry.isCons() || !entry.car().isInteger()) continue;
        const int code = entry.car().integer();
        if (code == 10) {
            const std::optional<Point> point = pointOf(entry.cdr());
            if (!point) return false;
            vertices.push_back({{point->x, point->y}, 0});
        } else if (code == 42) {
            if (!entry.cdr().isNumber() || vertices.empty()) return false;
            vertices.back().bulge = entry.cdr().number();
        }
    }
    return true;
}

// Vertices can be moved and added; fewer of them, or another bulge of one that stands, can't be had.
bool applyVertices(const FieldTarget& target, const Value& list) {
    std::vector<Vertex> vertices;
    if (!verticesOf(list, vertices)) return false;
    auto& polyline = static_cast<OdDbPolyline&>(target.object);
    const unsigned int count = polyline.numVerts();
    if (vertices.size() < count) return vertices.empty();
    for (unsigned int i = 0; i < count; ++i)
        if (vertices[i].bulge != polyline.getBulgeAt(i)) return false;
    if (!target.apply) return true;
    for (unsigned int i = 0; i < vertices.size(); ++i) {
        const OdGePoint2d point = vertices[i].point;
        if (i >= count) {
            polyline.addVertexAt(i, point, vertices[i].bulge);
            continue;
        }
        const OdGePoint3d now = polyline.getPointAt(i);
        if (now.x != point.x || now.y != point.y) polyline.setPointAt(i, point);
    }
    return true;
}

/// Whether a pair of an xrecord's list tells what the object is and where it stands, and is none of its data.
/// The owner stands once, before the data; a 280 right behind the class mark belongs to the object as well.
class RecordHead {
public:
    explicit RecordHead(const OdDbObject& object) : m_owner(object.ownerId()) {}
    bool takes(int code, const Value& value) {
        const bool behindClass = std::exchange(m_behindClass, code == 100);
        if (code <= 0 || code == 5 || code == 100 || code == 102) return true;
        if (code == 280) return behindClass;
        const EntityName* name = code == 330 ? foreignOf<EntityName>(value) : nullptr;
        if (name == nullptr || m_owner.isNull() || name->id() != m_owner) return false;
        m_owner = OdDbObjectId();
        return true;
    }

private:
    OdDbObjectId m_owner;
    bool m_behindClass = false;
};

bool applyRecordChain(const FieldTarget& target, const Value& list) {
    OdSmartPtr<OdResBuf> first, last;
    RecordHead head(target.object);
    for (const Value* at = &list; at->isCons(); at = &at->cdr()) {
        const Value& entry = at->car();
        if (!entry.isCons() || !entry.car().isInteger()) return false;
        if (head.takes(entry.car().integer(), entry.cdr())) continue;
        const OdSmartPtr<OdResBuf> record = recordOfPair(entry);
        if (record.isNull()) return false;
        if (first.isNull())
            first = last = record;
        else
            last = last->append(record);
    }
    if (target.apply) static_cast<OdDbXrecord&>(target.object).setFromRbChain(first);
    return true;
}

bool applyOnce(const FieldTarget& target, const std::vector<const Field*>& fields, const Value& list) {
    for (const Value* at = &list; at->isCons(); at = &at->cdr()) {
        const Value& entry = at->car();
        if (!entry.isCons() || !entry.car().isInteger()) return false;
        const int code = entry.car().integer();
        if (code == kXDataCode && !applyXData(target, entry.cdr())) return false;
        for (const Field* field : fields) {
            if (field->code != code || field->set == nullptr) continue;
            // What an object of the drawing has already is left alone; a new one is written as a whole.
            const Value now =
                target.object.isDBRO() ? field->get(target.machine, target.object) : Value::unbound();
            if (!now.isUnbound() && equalValues(target.machine, now, entry.cdr())) continue;
            if (!field->set(target, entry.cdr())) return false;
        }
    }
    if (OdDbPolyline::cast(&target.object) != nullptr) return applyVertices(target, list);
    if (OdDbXrecord::cast(&target.object) != nullptr) return applyRecordChain(target, list);
    return true;
}

/// Whether a drawing can hold the numbers of a pair.
bool isFinitePair(const Value& pair) {
    if (!pair.isCons()) return true;
    const Value& value = pair.cdr();
    if (value.isNumber()) return std::isfinite(value.number());
    int parts = 0;
    for (const Value* at = &value; at->isCons() && parts < 3; at = &at->cdr(), ++parts)
        if (at->car().isNumber() && !std::isfinite(at->car().number())) return false;
    return true;
}

bool isFiniteList(const Value& list) {
    for (const Value* at = &list; at->isCons(); at = &at->cdr())
        if (!isFinitePair(at->car())) return false;
    return true;
}

} // namespace

bool applyList(Machine& machine, OdDbDatabase& database, OdDbObject& object, const Value& list) {
    if (!isFiniteList(list)) return false;
    const std::vector<const Field*> fields = fieldsOf(object);
    return applyOnce({machine, database, object, false}, fields, list) &&
           applyOnce({machine, database, object, true}, fields, list);
}

} // namespace lm::host::lisp
