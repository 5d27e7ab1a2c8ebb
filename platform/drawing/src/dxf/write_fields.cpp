// SPDX-License-Identifier: MIT
#include "dxf/write_fields.h"

#include <algorithm>
#include <cstring>

namespace lm::drawing {

namespace {

constexpr int kSubclass = 100;
constexpr int kEmbeddedMark = 101;

bool isPoint(const FieldSpec& row) {
    return std::strcmp(row.type, "point") == 0;
}

/// Reads groups into an object that was just made, as the reader did.
void readBack(OdDbObject& object, const ClassSpec& spec, const OutGroups& groups, const ReadGroups& read,
              bool embedded) {
    const Values values(*read.source);
    ReadContext context{read.data, values, read.node};
    forPlaces(groups, [&](std::size_t i, bool field, bool) {
        const Group* const group = groups[i].source();
        if (group == nullptr || !(field || embedded)) return;
        if (const FieldSpec* row = spec.find(group->code)) row->read(object, *group, context);
    });
}

/// The last field of each code that the class has.
class FieldPlaces {
public:
    FieldPlaces(const OutGroups& groups, const ClassSpec& spec, bool embedded) {
        m_places.fill(kNone);
        forPlaces(groups, [&](std::size_t i, bool field, bool) {
            const int code = groups[i].code;
            if ((field || embedded) && spec.find(code) != nullptr)
                m_places[static_cast<std::size_t>(code)] = i;
        });
    }
    static constexpr std::size_t kNone = ~std::size_t{0};
    std::size_t operator[](int code) const { return m_places[static_cast<std::size_t>(code)]; }

private:
    std::array<std::size_t, 512> m_places;
};

/// Adds the other components of points of which one is to be added: a point is there as a whole.
void completePoints(std::vector<OutGroup>& missing, const OdDbObject& current, const ClassSpec& spec,
                    const FieldPlaces& places) {
    for (std::size_t i = 0; i < missing.size(); ++i) {
        const FieldSpec* const row = spec.find(missing[i].code);
        if (!isPoint(*row)) continue;
        const int base = pointBase(row->code);
        for (int code = base; code <= base + 20; code += 10) {
            const FieldSpec* const other = spec.find(code);
            const auto isCode = [code](const OutGroup& group) { return group.code == code; };
            if (other == nullptr || !isPoint(*other) || places[code] != FieldPlaces::kNone ||
                std::any_of(missing.begin(), missing.end(), isCode))
                continue;
            OutGroup::Value value;
            if (other->value(current, {code}, value)) missing.push_back({code, value});
        }
    }
    std::stable_sort(missing.begin(), missing.end(),
                     [](const OutGroup& a, const OutGroup& b) { return a.code < b.code; });
}

void editRows(OutGroups& groups, const OdDbObject& current, const OdDbObject& before, const ClassSpec& spec,
              std::span<const LayoutItem> layout, bool isCopy, bool embedded) {
    const FieldPlaces places(groups, spec, embedded);
    std::vector<OutGroup> missing;
    std::vector<bool> remove(groups.size());
    for (const FieldSpec& row : spec.fields()) {
        if (spec.find(row.code) != &row || row.value == nullptr) continue;
        const std::size_t at = places[row.code];
        const bool there = at != FieldPlaces::kNone;
        const ValueContext context{row.code, there ? integerOf(groups[at]) : 0};
        OutGroup::Value now, then;
        const bool hasNow = row.value(current, context, now);
        const bool hadThen = row.value(before, context, then);
        if (hasNow == hadThen && (!hasNow || sameValue(now, then)) && !(isCopy && there)) continue;
        if (!there) {
            if (hasNow) missing.push_back({row.code, now});
        } else if (hasNow) {
            groups[at] = {row.code, now};
        } else {
            remove[at] = true;
        }
    }
    completePoints(missing, current, spec, places);
    removeMarked(groups, remove);
    for (OutGroup& group : missing) {
        const std::size_t at = placeFor(groups, layout, group.code);
        groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(at), std::move(group));
    }
}

/// A colour from a book goes when the entity gets another colour.
void dropStaleColorName(OutGroups& groups, const OutGroup::Value* colorBefore) {
    constexpr int kTrueColor = 420, kColorName = 430;
    const std::size_t color = findField(groups, kTrueColor);
    const bool same = (color == groups.size()) == (colorBefore == nullptr) &&
                      (colorBefore == nullptr || groups[color].source() != nullptr);
    const std::size_t name = findField(groups, kColorName);
    if (!same && name != groups.size()) groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(name));
}

} // namespace

Group groupOf(const OutGroup& group) {
    if (const Group* source = group.source()) return *source;
    const std::string_view raw = group.raw();
    return {group.code, raw.data(), raw.size()};
}

OdString textOf(const OutGroup& group) {
    if (const auto* source = std::get_if<SourceGroup>(&group.value)) {
        bool bad = false;
        return source->form->decoder.decode(source->group.raw(), bad);
    }
    if (const auto* text = std::get_if<OdString>(&group.value)) return *text;
    return odText(group.raw());
}

double realOf(const OutGroup& group) {
    bool bad = false;
    if (const auto* source = std::get_if<SourceGroup>(&group.value))
        return Values(*source->form).real(source->group, bad);
    const double* real = std::get_if<double>(&group.value);
    return real != nullptr ? *real : static_cast<double>(integerOf(group));
}

long long integerOf(const OutGroup& group) {
    bool bad = false;
    if (const auto* source = std::get_if<SourceGroup>(&group.value)) {
        if (source->form->binary && valueTypeOf(group.code) == ValueType::kText) return 0;
        return Values(*source->form).integer(source->group, bad);
    }
    const long long* integer = std::get_if<long long>(&group.value);
    return integer != nullptr ? *integer : 0;
}

std::uint64_t handleOf(const OutGroup& group) {
    bool bad = false;
    if (const auto* handle = std::get_if<HandleValue>(&group.value)) return handle->handle;
    return parseHandle(group.raw(), bad);
}

bool sameValue(const OutGroup::Value& a, const OutGroup::Value& b) {
    if (a.index() != b.index()) return false;
    if (const auto* text = std::get_if<OdString>(&a)) return *text == std::get<OdString>(b);
    if (const auto* integer = std::get_if<long long>(&a)) return *integer == std::get<long long>(b);
    // Compared as bytes, so that -0 differs from 0.
    if (const auto* real = std::get_if<double>(&a))
        return std::memcmp(real, &std::get<double>(b), sizeof *real) == 0;
    return false;
}

std::size_t endOfFields(const OutGroups& groups) {
    std::size_t end = 0;
    forPlaces(groups, [&end](std::size_t i, bool, bool embedded) {
        if (!embedded) end = i + 1;
    });
    return end;
}

std::size_t findField(const OutGroups& groups, int code) {
    std::size_t found = groups.size();
    forPlaces(groups, [&](std::size_t i, bool field, bool) {
        if (field && groups[i].code == code) found = i;
    });
    return found;
}

namespace {

/// The mark that stands for one of the layout: by name the same one in order, else the same one in order of
/// all marks, since some classes go by several names.
std::size_t findMark(const OutGroups& groups, std::span<const LayoutItem> layout, std::size_t item) {
    int ofName = 0, ofAll = 0;
    for (std::size_t i = 0; i <= item; ++i) {
        if (layout[i].what != LayoutItem::kMark) continue;
        ++ofAll;
        ofName += layout[i].text == layout[item].text ? 1 : 0;
    }
    std::size_t byName = groups.size(), byOrder = groups.size();
    forPlaces(groups, [&](std::size_t i, bool, bool embedded) {
        if (embedded || groups[i].code != kSubclass) return;
        if (stripped(groups[i].raw()) == layout[item].text && --ofName == 0) byName = i;
        if (--ofAll == 0) byOrder = i;
    });
    return byName != groups.size() ? byName : byOrder;
}

} // namespace

namespace {

/// A place from which a group is read: `at`, or the next one in front of it. Marks may stand inside braces
/// that nobody closed, and behind the mark of an xrecord there are no fields.
std::size_t readPlace(const OutGroups& groups, std::size_t at, int code) {
    std::size_t place = 0;
    PlaceInEntry where;
    for (std::size_t i = 0; i < at; ++i) {
        where.isField(groupOf(groups[i]));
        if (where.takesField(code)) place = i + 1;
    }
    return place;
}

std::size_t layoutPlace(const OutGroups& groups, std::span<const LayoutItem> layout, int code) {
    std::size_t item = 0;
    while (item < layout.size() && layout[item].code != code) ++item;
    if (item == layout.size()) return endOfFields(groups);
    while (item-- > 0) {
        const std::size_t at = layout[item].what == LayoutItem::kMark ? findMark(groups, layout, item)
                                                                      : findField(groups, layout[item].code);
        if (at != groups.size()) return at + 1;
    }
    // A text that is embedded has no marks, and a file of R12 none either.
    return layout.front().what == LayoutItem::kHandle ? endOfFields(groups) : 0;
}

} // namespace

std::size_t placeFor(const OutGroups& groups, std::span<const LayoutItem> layout, int code) {
    return readPlace(groups, layoutPlace(groups, layout, code), code);
}

void setField(OutGroups& groups, std::span<const LayoutItem> layout, OutGroup group) {
    const std::size_t at = findField(groups, group.code);
    if (at != groups.size()) {
        groups[at] = std::move(group);
        return;
    }
    const std::size_t place = placeFor(groups, layout, group.code);
    groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(place), std::move(group));
}

void removeMarked(OutGroups& groups, const std::vector<bool>& remove) {
    if (std::find(remove.begin(), remove.end(), true) == remove.end()) return;
    OutGroups kept;
    kept.reserve(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (i >= remove.size() || !remove[i]) kept.push_back(std::move(groups[i]));
    groups = std::move(kept);
}

void editFields(OutGroups& groups, const OdDbObject& current, const ClassSpec& spec,
                std::span<const LayoutItem> layout, const ReadGroups& read) {
    constexpr int kTrueColor = 420;
    const OdSmartPtr<OdDbObject> before(specOf(read.node).make(), kAttach);
    const bool isCopy = read.source == nullptr;
    if (!isCopy) readBack(*before.get(), spec, groups, read, false);
    const std::size_t color = findField(groups, kTrueColor);
    const bool hadColor = color != groups.size();
    const OutGroup::Value old = hadColor ? groups[color].value : OutGroup::Value();
    editRows(groups, current, *before.get(), spec, layout, isCopy, false);
    if (!isCopy) dropStaleColorName(groups, hadColor ? &old : nullptr);
}

// --- vertices
// -----------------------------------------------------------------------------------------------------------

namespace {

constexpr int kVertexX = 10, kVertexY = 20, kVertexBulge = 42, kStartWidth = 40, kEndWidth = 41,
              kVertexId = 91;

struct Corner {
    double x = 0, y = 0, bulge = 0, start = 0, end = 0; // the last two are widths
    bool operator==(const Corner&) const = default;
};

/// A vertex with all its groups.
struct CornerGroups {
    Corner corner;
    OutGroups groups;
};

std::vector<Corner> cornersOf(const OdDbPolyline& polyline) {
    std::vector<Corner> corners(polyline.numVerts());
    for (unsigned i = 0; i < corners.size(); ++i) {
        const OdGePoint3d point = polyline.getPointAt(i);
        corners[i] = {point.x, point.y, polyline.getBulgeAt(i)};
        polyline.getWidthsAt(i, corners[i].start, corners[i].end);
    }
    return corners;
}

OutGroups groupsOfCorner(const Corner& corner) {
    OutGroups groups{OutGroup::real(kVertexX, corner.x), OutGroup::real(kVertexY, corner.y)};
    if (corner.start != 0 || corner.end != 0) {
        groups.push_back(OutGroup::real(kStartWidth, corner.start));
        groups.push_back(OutGroup::real(kEndWidth, corner.end));
    }
    if (corner.bulge != 0) groups.push_back(OutGroup::real(kVertexBulge, corner.bulge));
    return groups;
}

void setCorner(CornerGroups& old, const Corner& now) {
    const auto set = [&old](int code, double value, double before, std::size_t place) {
        if (value == before) return;
        for (OutGroup& group : old.groups)
            if (group.code == code) {
                group = OutGroup::real(code, value);
                return;
            }
        old.groups.insert(old.groups.begin() + static_cast<std::ptrdiff_t>(place),
                          OutGroup::real(code, value));
    };
    set(kVertexX, now.x, old.corner.x, 0);
    set(kVertexY, now.y, old.corner.y, 1);
    set(kStartWidth, now.start, old.corner.start, old.groups.size());
    set(kEndWidth, now.end, old.corner.end, old.groups.size());
    set(kVertexBulge, now.bulge, old.corner.bulge, old.groups.size());
}

/// The vertices among the groups, which are marked for removal; what follows the last one isn't.
std::vector<CornerGroups> takeCorners(const OutGroups& groups, std::vector<bool>& remove) {
    std::vector<CornerGroups> corners;
    forPlaces(groups, [&](std::size_t i, bool field, bool) {
        const int code = groups[i].code;
        const bool ofVertex =
            code == kVertexX ||
            (!corners.empty() && (code == kVertexY || code == kVertexBulge || code == kStartWidth ||
                                  code == kEndWidth || code == kVertexId));
        if (!field || !ofVertex) return;
        if (code == kVertexX) corners.emplace_back();
        CornerGroups& last = corners.back();
        if (code == kVertexX) last.corner.x = realOf(groups[i]);
        if (code == kVertexY) last.corner.y = realOf(groups[i]);
        if (code == kStartWidth) last.corner.start = realOf(groups[i]);
        if (code == kEndWidth) last.corner.end = realOf(groups[i]);
        if (code == kVertexBulge) last.corner.bulge = realOf(groups[i]);
        last.groups.push_back(groups[i]);
        remove[i] = true;
    });
    return corners;
}

/// The old vertices as far as they are still there, and new ones.
OutGroups mergedCorners(std::vector<CornerGroups>& old, const std::vector<Corner>& now) {
    std::size_t head = 0, tail = 0;
    if (old.size() != now.size()) {
        const std::size_t most = std::min(old.size(), now.size());
        while (head < most && old[head].corner == now[head]) ++head;
        while (tail < most - head && old[old.size() - 1 - tail].corner == now[now.size() - 1 - tail]) ++tail;
    }
    OutGroups merged;
    const auto add = [&merged](const OutGroups& groups) {
        merged.insert(merged.end(), groups.begin(), groups.end());
    };
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (old.size() == now.size()) setCorner(old[i], now[i]);
        if (old.size() == now.size() || i < head)
            add(old[i].groups);
        else if (i >= now.size() - tail)
            add(old[old.size() - (now.size() - i)].groups);
        else
            add(groupsOfCorner(now[i]));
    }
    return merged;
}

} // namespace

void editVertices(OutGroups& groups, const OdDbPolyline& current) {
    std::vector<bool> remove(groups.size());
    std::vector<CornerGroups> old = takeCorners(groups, remove);
    const std::vector<Corner> now = cornersOf(current);
    const bool same = old.size() == now.size() &&
                      std::equal(old.begin(), old.end(), now.begin(),
                                 [](const CornerGroups& a, const Corner& b) { return a.corner == b; });
    if (same) return;
    OutGroups merged = mergedCorners(old, now);
    const auto first = std::find(remove.begin(), remove.end(), true);
    std::size_t place = static_cast<std::size_t>(first - remove.begin());
    if (first == remove.end()) place = placeFor(groups, layoutOf(kKindLwPolyline), kVertexX);
    removeMarked(groups, remove);
    groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(place), merged.begin(), merged.end());
}

void addVertices(OutGroups& groups, const OdDbPolyline& current) {
    for (const Corner& corner : cornersOf(current)) {
        const OutGroups vertex = groupsOfCorner(corner);
        groups.insert(groups.end(), vertex.begin(), vertex.end());
    }
}

// --- multi-line text
// ----------------------------------------------------------------------------------------------------

namespace {

constexpr int kPart = 3, kLastPart = 1;

/// How many units of a text go into one group: no pair of surrogates and no escape falls apart.
std::size_t partLength(WideView text) {
    constexpr std::size_t kMost = 250;
    if (text.size() <= kMost) return text.size();
    std::size_t length = kMost;
    const auto splits = [](WideChar unit) { return unit == '\\' || (unit >= 0xD800 && unit < 0xDC00); };
    while (length > 1 && splits(text[length - 1])) --length;
    return length == 1 ? kMost : length;
}

} // namespace

void addContents(OutGroups& groups, const OdString& contents) {
    WideView rest = contents.view();
    for (;;) {
        const std::size_t length = partLength(rest);
        const bool last = length == rest.size();
        groups.push_back(OutGroup::text(last ? kLastPart : kPart, OdString(rest.substr(0, length))));
        if (last) return;
        rest.remove_prefix(length);
    }
}

namespace {

void editContentsIn(OutGroups& groups, const OdDbMText& current, std::span<const LayoutItem> layout,
                    bool embedded) {
    std::vector<bool> remove(groups.size());
    OdString old;
    forPlaces(groups, [&](std::size_t i, bool field, bool) {
        if (!(field || embedded) || (groups[i].code != kPart && groups[i].code != kLastPart)) return;
        remove[i] = true;
        old = old + textOf(groups[i]);
    });
    if (old == current.contents()) return;
    const auto first = std::find(remove.begin(), remove.end(), true);
    std::size_t place = static_cast<std::size_t>(first - remove.begin());
    if (first == remove.end()) place = placeFor(groups, layout, kLastPart);
    removeMarked(groups, remove);
    OutGroups parts;
    addContents(parts, current.contents());
    groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(place), parts.begin(), parts.end());
}

} // namespace

void editContents(OutGroups& groups, const OdDbMText& current, std::span<const LayoutItem> layout) {
    editContentsIn(groups, current, layout, false);
}

// --- new entries
// --------------------------------------------------------------------------------------------------------

void addField(OutGroups& groups, const LayoutItem& item, const OdDbObject& current, const OdDbObject& fresh,
              const ClassSpec& spec) {
    constexpr int kAlignment = 11;
    const FieldSpec* const row = spec.find(item.code);
    if (row == nullptr || row->value == nullptr) return;
    OutGroup::Value value;
    if (!row->value(current, {item.code}, value)) return;
    const auto differs = [&](int code) {
        const FieldSpec* const other = spec.find(code);
        OutGroup::Value now, then;
        if (other == nullptr || other->value == nullptr) return false;
        return other->value(current, {code}, now) != other->value(fresh, {code}, then) ||
               !sameValue(now, then);
    };
    bool wanted = item.what == LayoutItem::kAlways || differs(item.code);
    if (!wanted && isPoint(*row)) {
        const int base = pointBase(item.code);
        wanted = differs(base) || differs(base + 10) || differs(base + 20);
        // The second point of a text that doesn't stand by its position counts wherever it lies.
        const auto* const text = OdDbText::cast(&current);
        wanted = wanted || (base == kAlignment && text != nullptr && !text->isDefaultAlignment());
    }
    if (wanted) groups.push_back({item.code, value});
}

namespace {

/// What an attribute tells about its multi-line text in front of it.
void addEmbeddedHead(OutGroups& groups, const OdDbMText& text, bool definition) {
    constexpr int kMultiLine = 2, kMultiLineDefinition = 4, kLocked = 280;
    int locks = 0;
    forPlaces(groups,
              [&](std::size_t i, bool field, bool) { locks += field && groups[i].code == kLocked ? 1 : 0; });
    if (locks < 2) return; // in front of them these codes mean something else
    const OdGePoint3d at = text.location();
    groups.push_back(OutGroup::integer(71, definition ? kMultiLineDefinition : kMultiLine));
    groups.push_back(OutGroup::integer(72, 0));
    groups.push_back(OutGroup::real(11, at.x));
    groups.push_back(OutGroup::real(21, at.y));
    groups.push_back(OutGroup::real(31, at.z));
}

} // namespace

void addEmbedded(OutGroups& groups, const OdDbMText& current, bool definition) {
    addEmbeddedHead(groups, current, definition);
    groups.push_back(OutGroup::ascii(kEmbeddedMark, "Embedded Object"));
    const OdSmartPtr<OdDbMText> fresh(new OdDbMText(), kAttach);
    for (const LayoutItem& item : embeddedLayout()) {
        switch (item.what) {
        case LayoutItem::kInteger:
            groups.push_back(OutGroup::integer(item.code, static_cast<long long>(item.number)));
            break;
        case LayoutItem::kReal:
            groups.push_back(OutGroup::real(item.code, item.number));
            break;
        case LayoutItem::kList:
            if (item.code == kLastPart) addContents(groups, current.contents());
            break;
        default:
            addField(groups, item, current, *fresh.get(), mtextSpec());
        }
    }
}

namespace {

/// An attribute repeats the place of its multi-line text in front of it, and what did so goes on doing so.
void editEmbeddedHead(OutGroups& groups, std::size_t embedded, const OdGePoint3d& now) {
    constexpr int kCodes[] = {11, 21, 31}, kFirstXData = 1000;
    const double place[] = {now.x, now.y, now.z};
    for (int i = 0; i < 3; ++i) {
        std::size_t head = embedded, own = embedded;
        while (head > 0 && groups[head].code != kCodes[i]) --head;
        while (own < groups.size() && groups[own].code < kFirstXData && groups[own].code != kCodes[i] - 1)
            ++own;
        if (head == 0 || own == groups.size() || groups[own].code != kCodes[i] - 1) continue;
        if (realOf(groups[head]) == realOf(groups[own]) && realOf(groups[head]) != place[i])
            groups[head] = OutGroup::real(kCodes[i], place[i]);
    }
}

} // namespace

void editEmbedded(OutGroups& groups, const OdDbMText* current, bool definition, const ReadGroups& read) {
    std::size_t first = groups.size(), end = groups.size();
    std::vector<bool> remove(groups.size());
    int locks = 0;
    forPlaces(groups, [&](std::size_t i, bool field, bool embedded) {
        const int code = groups[i].code;
        if (embedded && first == groups.size()) first = i;
        locks += field && code == 280 ? 1 : 0;
        remove[i] = embedded || (!field && locks >= 2 &&
                                 (code == 71 || code == 72 || code == 11 || code == 21 || code == 31));
        end = i + 1;
    });
    if (first == groups.size()) {
        if (current == nullptr) return;
        const OutGroups xdata(groups.begin() + static_cast<std::ptrdiff_t>(endOfFields(groups)),
                              groups.end());
        groups.resize(endOfFields(groups));
        addEmbedded(groups, *current, definition);
        groups.insert(groups.end(), xdata.begin(), xdata.end());
        return;
    }
    if (current == nullptr) return removeMarked(groups, remove);
    if (locks >= 2) editEmbeddedHead(groups, first, current->location());
    // The embedded text is edited like an entry of its own.
    const auto from = groups.begin() + static_cast<std::ptrdiff_t>(first + 1);
    const auto to = groups.begin() + static_cast<std::ptrdiff_t>(end);
    OutGroups part(from, to);
    const OdSmartPtr<OdDbMText> before(new OdDbMText(), kAttach);
    if (read.source != nullptr) readBack(*before.get(), mtextSpec(), part, read, true);
    editRows(part, *current, *before.get(), mtextSpec(), embeddedLayout(), read.source == nullptr, true);
    editContentsIn(part, *current, embeddedLayout(), true);
    const OutGroups rest(to, groups.end());
    groups.erase(from, groups.end());
    groups.insert(groups.end(), part.begin(), part.end());
    groups.insert(groups.end(), rest.begin(), rest.end());
}

} // namespace lm::drawing
