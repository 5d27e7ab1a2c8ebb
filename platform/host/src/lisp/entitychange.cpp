// SPDX-License-Identifier: MIT
// Objects from association lists: first a whole list is looked at, and only one that fits is applied.
#include "entityfields.h"

#include "entityname.h"
#include "points.h"

#include "drawing/drawing.h"
#include "drawing/entitygroups.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lm::host::lisp {

namespace {

constexpr int kXDataCode = -3;
constexpr int kApplication = 1001;
constexpr int kTrueColor = 420;

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

/// What an object has of one application already is left alone, also where nobody could make it anew.
bool applyXData(const FieldTarget& target, const Value& applications) {
    const Value all = target.machine.list(target.machine.text("*"));
    const Value now = extendedData(target.machine, target.object, all);
    for (const Value* at = &applications; at->isCons(); at = &at->cdr()) {
        bool same = false;
        for (const Value* there = &now; there->isCons() && !same; there = &there->cdr())
            same = equalValues(target.machine, there->car(), at->car());
        if (same) continue;
        const OdSmartPtr<OdResBuf> chain = xdataChain(at->car());
        if (chain.isNull()) return false;
        if (target.apply) target.object.setXData(chain);
    }
    return true;
}

using lm::drawing::PolylineVertex;

/// What a list tells of the vertices of a polyline: each group 10 begins one, and what is behind it up to the
/// next belongs to it.
struct VertexList {
    std::vector<PolylineVertex> vertices;
    bool hasBulges = false;
    bool hasWidths = false;
    std::optional<int> count;     ///< group 90
    std::optional<double> common; ///< group 43

    /// Takes a pair; false for one that doesn't fit.
    bool add(int code, const Value& value) {
        const bool isWidth = code == 40 || code == 41;
        if (code == 10) return addPoint(value);
        if (code == 90 && value.isInteger()) count = value.integer();
        if (code == 43 && value.isNumber()) common = value.number();
        if (code != 42 && !isWidth) return true;
        if (!value.isNumber() || vertices.empty() || (isWidth && value.number() < 0)) return false;
        PolylineVertex& last = vertices.back();
        (code == 42 ? last.bulge : code == 40 ? last.startWidth : last.endWidth) = value.number();
        (isWidth ? hasWidths : hasBulges) = true;
        return true;
    }

private:
    bool addPoint(const Value& value) {
        const std::optional<Point> point = pointOf(value);
        if (!point) return false;
        vertices.push_back({{point->x, point->y}});
        return true;
    }
};

/// The vertices that a polyline has after a list. What the list doesn't tell of any vertex stays by position;
/// a common width takes the place of those of the vertices.
std::vector<PolylineVertex> verticesAfter(const OdDbPolyline& polyline, const VertexList& list) {
    const std::vector<PolylineVertex> now = lm::drawing::verticesOf(polyline);
    std::vector<PolylineVertex> next = list.vertices.empty() ? now : list.vertices;
    const bool isCommon = list.common && *list.common != polyline.constantWidth() && !list.hasWidths;
    for (std::size_t i = 0; i < next.size(); ++i) {
        const PolylineVertex before = i < now.size() ? now[i] : PolylineVertex();
        if (!list.hasBulges) next[i].bulge = before.bulge;
        if (list.hasWidths) continue;
        next[i].startWidth = isCommon ? 0 : before.startWidth;
        next[i].endWidth = isCommon ? 0 : before.endWidth;
    }
    return next;
}

/// Programs that add vertices often leave their number as it was. Vertices go only when the list says so.
bool countFits(const OdDbPolyline& polyline, const VertexList& list, std::size_t next) {
    const std::size_t now = polyline.numVerts();
    if (!list.count) return next >= now;
    const auto count = static_cast<std::size_t>(*list.count);
    return count == next || (polyline.isDBRO() && count == now && next > now);
}

/// A long text comes in parts, of which only the last one has the group 1.
struct TextParts {
    WideString text;
    bool any = false;

    bool add(const Value& value) {
        if (!value.isText()) return false;
        text += value.text();
        return any = true;
    }
};

void applyText(const FieldTarget& target, const TextParts& parts) {
    auto& text = static_cast<OdDbMText&>(target.object);
    const OdString contents{WideView(parts.text)};
    if (parts.any && text.contents() != contents) text.setContents(contents);
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
    // A list without data is one that changes something else.
    if (target.apply && !first.isNull()) static_cast<OdDbXrecord&>(target.object).setFromRbChain(first);
    return true;
}

/// What a list asks of one object, pair by pair.
class Change {
public:
    Change(const FieldTarget& check, const Value& list)
        : m_target(check), m_fields(fieldsOf(check.object)), m_kept(keptCodes(check.object)), m_list(list) {}

    /// Whether the list fits; nothing is changed.
    bool plan() {
        for (const Value* at = &m_list; at->isCons(); at = &at->cdr()) {
            const Value& entry = at->car();
            if (!entry.isCons() || !entry.car().isInteger()) return false;
            if (!take(entry.car().integer(), entry)) return false;
        }
        holdIndexBesideTrueColor();
        return keepsWhatItHolds() && planLists();
    }

    void apply() {
        m_target.apply = true;
        // A true colour counts before an index, wherever they stand.
        std::stable_partition(m_changes.begin(), m_changes.end(),
                              [](const auto& change) { return change.first->code != kTrueColor; });
        for (const auto& [field, value] : m_changes) field->set(m_target, *value);
        for (const Value* data : m_data) applyXData(m_target, *data);
        applyLists();
        if (isNew() && !m_held.empty()) holdGroups();
    }

private:
    /// The colour index that a layer has beside its true colour, for programs that know no other.
    void holdIndexBesideTrueColor() {
        constexpr int kIndex = 62;
        if (!isNew() || OdDbLayerTableRecord::cast(&m_target.object) == nullptr) return;
        if (valueOfCode(m_list, kTrueColor).isUnbound()) return;
        for (const Value* at = &m_list; at->isCons(); at = &at->cdr())
            if (at->car().car().integer() == kIndex) return m_held.push_back(&at->car());
    }

    bool isNew() const { return !m_target.object.isDBRO(); }

    bool take(int code, const Value& entry) {
        const Value& value = entry.cdr();
        if (OdDbXrecord::cast(&m_target.object) != nullptr && code > 0) return true; // see applyRecordChain
        if (code == kXDataCode) {
            m_data.push_back(&value);
            return applyXData(m_target, value);
        }
        constexpr int kMark = 100, kBraces = 102, kVersion = 280;
        if (code == kBraces) {
            m_inBraces = value.isText() && !value.text().empty() && value.text().front() == '{';
            return value.isText();
        }
        if (code < 0 || code == kMark || m_inBraces) return true;
        if (code == 0 || code == 5 || code == 330 || code == 67 || code == 410) return isOwnHead(code, value);
        if (std::find(m_kept.begin(), m_kept.end(), code) != m_kept.end()) {
            m_held.push_back(&entry);
            return true;
        }
        if (code == kVersion && value.isInteger() && value.integer() == 0) return true;
        return takesList(code, value) || takeField(code, value);
    }

    /// What tells which object it is and where it stands can't be changed. Of a new one the maker knows.
    bool isOwnHead(int code, const Value& value) const {
        const OdDbObject& object = m_target.object;
        if (isNew()) return true;
        if (code == 0) return value.isText() && system::equalsNoCase(value.text(), typeOf(object));
        if (code == 5)
            return value.isText() &&
                   OdDbHandle(OdString(WideView(value.text())).c_str()) == object.getDbHandle();
        if (code == 330) {
            const EntityName* name = foreignOf<EntityName>(value);
            return name != nullptr && name->id() == object.ownerId();
        }
        Value now = valueOfCode(layoutPairs(m_target.machine, object), code);
        if (now.isUnbound()) now = code == 67 ? Value::integer(0) : m_target.machine.text("Model");
        if (code == 67) return sameValue(now, value);
        return value.isText() && system::equalsNoCase(now.text(), value.text());
    }

    /// Pairs that count together with others.
    bool takesList(int code, const Value& value) {
        if (OdDbPolyline::cast(&m_target.object) != nullptr) {
            constexpr int kVertexId = 91;
            if (!m_vertices.add(code, value)) return m_refused = true;
            return code == 10 || code == 40 || code == 41 || code == 42 || code == 90 || code == kVertexId;
        }
        if (OdDbMText::cast(&m_target.object) != nullptr && (code == 1 || code == 3)) {
            m_refused = m_refused || !m_text.add(value);
            return true;
        }
        if (OdDbDictionary::cast(&m_target.object) != nullptr)
            return code == 280 || code == 281 || (!isNew() && isEntry(code, value));
        constexpr int kFollow = 66;
        return isNew() && code == kFollow && OdDbBlockReference::cast(&m_target.object) != nullptr;
    }

    /// Entries of a dictionary go in and out by functions of their own.
    bool isEntry(int code, const Value& value) const {
        const auto& dictionary = static_cast<const OdDbDictionary&>(m_target.object);
        if (code == 3) return value.isText() && dictionary.has(OdString(WideView(value.text())));
        const EntityName* name = code == 350 || code == 360 ? foreignOf<EntityName>(value) : nullptr;
        if (name == nullptr) return false;
        for (auto entry = dictionary.newIterator(); !entry->done(); entry->next())
            if (entry->objectId() == name->id()) return true;
        return false;
    }

    bool takeField(int code, const Value& value) {
        bool isKnown = false;
        for (const Field* field : m_fields) {
            if (field->code != code) continue;
            isKnown = true;
            // What an object of the drawing has already is left alone; a new one is written as a whole.
            const Value now = isNew() ? Value::unbound() : field->get(m_target.machine, m_target.object);
            if (!now.isUnbound() && equalValues(m_target.machine, now, value)) continue;
            if (field->set == nullptr || !field->set(m_target, value)) return false;
            m_changes.emplace_back(field, &value);
        }
        return isKnown;
    }

    /// Groups that an object of the drawing holds unread can't be changed.
    bool keepsWhatItHolds() const {
        if (isNew()) return heldChain().second && isWholePattern();
        const Value now = m_held.empty() ? Value() : keptPairs(m_target.machine, m_target.object);
        for (const int code : m_kept) {
            std::vector<const Value*> given;
            for (const Value* entry : m_held)
                if (entry->car().integer() == code) given.push_back(entry);
            if (given.empty()) continue;
            std::size_t same = 0;
            for (const Value* at = &now; at->isCons(); at = &at->cdr()) {
                if (at->car().car().integer() != code) continue;
                if (same == given.size() || !equalValues(m_target.machine, at->car(), *given[same]))
                    return false;
                ++same;
            }
            if (same != given.size()) return false;
        }
        return true;
    }

    /// Whether a pair names nothing where the name of an object may stand, as entget shows it.
    static bool isNoObject(const Value& entry) {
        constexpr int kFirst = 330, kLast = 399;
        const int code = entry.car().integer();
        return code >= kFirst && code <= kLast && entry.cdr().isText() &&
               entry.cdr().text() == system::widen("0");
    }

    /// The chain of the groups to be held, and whether all of them can be.
    std::pair<OdSmartPtr<OdResBuf>, bool> heldChain() const {
        OdSmartPtr<OdResBuf> first, last;
        for (const Value* entry : m_held) {
            OdSmartPtr<OdResBuf> record = recordOfPair(*entry);
            if (record.isNull() && isNoObject(*entry))
                record = OdResBuf::newRb(entry->car().integer(), OdString("0"));
            if (record.isNull()) return {first, false};
            last = first.isNull() ? (first = record) : last->append(record);
        }
        return {first, true};
    }
    void holdGroups() {
        const OdSmartPtr<OdResBuf> chain = heldChain().first;
        lm::drawing::keepGroups(m_target.database, m_target.object, chain.get());
    }

    /// A line type tells how many dashes it has.
    bool isWholePattern() const {
        constexpr int kCount = 73, kDash = 49;
        if (OdDbLinetypeTableRecord::cast(&m_target.object) == nullptr) return true;
        const Value count = valueOfCode(m_list, kCount);
        const auto dashes = std::count_if(m_held.begin(), m_held.end(),
                                          [](const Value* entry) { return entry->car().integer() == kDash; });
        return dashes == (count.isInteger() ? count.integer() : 0);
    }

    /// What counts as a whole list: looked at first, while the object is as it was.
    bool planLists() {
        if (m_refused) return false;
        if (OdDbXrecord::cast(&m_target.object) != nullptr) return applyRecordChain(m_target, m_list);
        const auto* polyline = OdDbPolyline::cast(&m_target.object);
        if (polyline == nullptr) return true;
        m_next = verticesAfter(*polyline, m_vertices);
        return countFits(*polyline, m_vertices, m_next.size());
    }
    void applyLists() {
        if (OdDbXrecord::cast(&m_target.object) != nullptr) applyRecordChain(m_target, m_list);
        if (OdDbMText::cast(&m_target.object) != nullptr) applyText(m_target, m_text);
        auto* polyline = OdDbPolyline::cast(&m_target.object);
        if (polyline != nullptr && m_next != lm::drawing::verticesOf(*polyline))
            lm::drawing::setVertices(m_target.database, *polyline, m_next);
    }

    FieldTarget m_target;
    std::vector<const Field*> m_fields;
    std::span<const int> m_kept;
    const Value& m_list;
    std::vector<std::pair<const Field*, const Value*>> m_changes;
    std::vector<const Value*> m_data; // lists of extended data
    std::vector<const Value*> m_held; // pairs of groups that the class doesn't read
    VertexList m_vertices;
    std::vector<PolylineVertex> m_next; // the vertices that come out
    TextParts m_text;
    bool m_inBraces = false;
    bool m_refused = false;
};

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
    Change change({machine, database, object, false}, list);
    if (!change.plan()) return false;
    change.apply();
    return true;
}

} // namespace lm::host::lisp
