// SPDX-License-Identifier: MIT
#include "drawing/entitygroups.h"

#include "dxf/chainbuilder.h"
#include "dxf/read.h"
#include "dxf/write_chains.h"
#include "dxf/write_groups.h"
#include "model/names.h"

#include "drawing/dictionary.h"
#include "drawing/symboltable.h"

#include <algorithm>
#include <cmath>

namespace lm::drawing {

namespace {

/// An entry of the kind that an object has or will have, to ask the tables of kinds with.
Node entryLike(const OdDbObject& object) {
    Node node;
    if (const auto* entity = OdDbEntity::cast(&object)) {
        node.flags = Node::kEntity;
        node.kind = entityKind(*entity);
    } else if (const auto* record = OdDbSymbolTableRecord::cast(&object)) {
        node.flags = Node::kTableRecord;
        node.kind = recordKind(*record);
    }
    return node;
}

bool isPoint(const FieldSpec& row) {
    return std::string_view(row.type) == "point";
}

/// Hands a value to the reader of a field, in the form of a text file.
void readInto(OdDbDatabase& database, OdDbObject& object, const FieldSpec& row, std::string_view value) {
    const Source form;
    const Values values(form);
    Node place = entryLike(object);
    ReadContext context{database.data(), values, place};
    // Values may be looked at a little behind their end.
    constexpr std::size_t kPadding = 64;
    std::string padded(value);
    padded.append(kPadding, '\0');
    row.read(object, {row.code, padded.data(), value.size()}, context);
}

/// What a field holds now; false for a code that the class doesn't read on its own.
bool valueAt(const OdDbObject& object, const FieldSpec* row, int code, OutGroup::Value& value) {
    return row != nullptr && row->value != nullptr && !isPoint(*row) && row->value(object, {code}, value);
}

const FieldSpec* rowOf(const OdDbObject& object, int code) {
    return specOf(entryLike(object)).fields->find(code);
}

} // namespace

std::optional<double> numberAt(const OdDbObject& object, int code) {
    OutGroup::Value value;
    if (!valueAt(object, rowOf(object, code), code, value)) return std::nullopt;
    if (const double* const real = std::get_if<double>(&value)) return *real;
    if (const long long* const integer = std::get_if<long long>(&value)) return static_cast<double>(*integer);
    return std::nullopt;
}

bool setNumberAt(OdDbDatabase& database, OdDbObject& object, int code, double number) {
    const FieldSpec* const row = rowOf(object, code);
    OutGroup::Value value;
    if (!std::isfinite(number) || !valueAt(object, row, code, value)) return false;
    const bool isReal = std::holds_alternative<double>(value);
    if (!isReal && (!std::holds_alternative<long long>(value) || std::abs(number) > INT32_MAX)) return false;
    if (object.isDBRO()) object.assertWriteEnabled();
    readInto(database, object, *row, isReal ? realText(number) : std::to_string(std::llround(number)));
    return true;
}

bool setTextAt(OdDbDatabase& database, OdDbObject& object, int code, const OdString& text) {
    const FieldSpec* const row = rowOf(object, code);
    OutGroup::Value value;
    if (!valueAt(object, row, code, value) || !std::holds_alternative<OdString>(value)) return false;
    if (object.isDBRO()) object.assertWriteEnabled();
    std::string bytes;
    TextEncoder().encode(text.view(), bytes);
    readInto(database, object, *row, bytes);
    return true;
}

std::vector<PolylineVertex> verticesOf(const OdDbPolyline& polyline) {
    std::vector<PolylineVertex> vertices(polyline.numVerts());
    for (unsigned int i = 0; i < vertices.size(); ++i) {
        const OdGePoint3d point = polyline.getPointAt(i);
        vertices[i] = {{point.x, point.y}, polyline.getBulgeAt(i)};
        polyline.getWidthsAt(i, vertices[i].startWidth, vertices[i].endWidth);
    }
    return vertices;
}

void setVertices(OdDbDatabase& database, OdDbPolyline& polyline, std::span<const PolylineVertex> vertices) {
    constexpr int kStartWidth = 40, kEndWidth = 41;
    if (polyline.isDBRO()) polyline.assertWriteEnabled();
    clearVertices(polyline);
    for (const PolylineVertex& vertex : vertices) {
        polyline.addVertexAt(polyline.numVerts(), vertex.point, vertex.bulge);
        const std::pair<int, double> widths[] = {{kStartWidth, vertex.startWidth},
                                                 {kEndWidth, vertex.endWidth}};
        for (const auto& [code, width] : widths) // these belong to the last vertex that was read
            if (width != 0) readInto(database, polyline, *rowOf(polyline, code), realText(width));
    }
}

OdSmartPtr<OdResBuf> keptGroups(const OdDbObject& object, std::span<const int> codes) {
    constexpr int kFirstXData = 1000;
    const RawPointer raw = rawGroupsOf(object);
    if (!raw || codes.empty()) return {};
    const Values values(*raw->form());
    ChainBuilder chain(values);
    PlaceInEntry where;
    forEachGroupIn(raw->span(), [&](const Group& group, const char*, const char*) {
        if (group.code >= kFirstXData) return false;
        if (!where.isField(group)) return true;
        // The other parts of a point follow its first one.
        const int base = pointBase(group.code);
        const int asked = base >= 0 ? base : group.code;
        if (std::find(codes.begin(), codes.end(), asked) != codes.end()) chain.add(group);
        return true;
    });
    return chain.take();
}

namespace {

/// The groups of a new entry without what the writer sees to itself: marks of classes, the fields that are
/// always there, whose values the writer puts in, and the groups that are to be kept.
OutGroups entryAround(const OdDbObject& object, const OutGroups& kept) {
    OutGroups groups;
    std::size_t taken = 0; // of the kept ones, which stay in their order
    // Puts in the kept groups up to the first one of a code; false for a code that none has.
    const auto takeKept = [&](int code) {
        const auto found = std::find_if(kept.begin(), kept.end(),
                                        [code](const OutGroup& group) { return group.code == code; });
        if (found == kept.end()) return false;
        for (; taken <= static_cast<std::size_t>(found - kept.begin()); ++taken)
            groups.push_back(kept[taken]);
        return true;
    };
    for (const LayoutItem& item : layoutOf(entryLike(object).kind)) {
        const bool isFixed = item.what == LayoutItem::kInteger || item.what == LayoutItem::kReal ||
                             item.what == LayoutItem::kText;
        if (item.what == LayoutItem::kMark)
            groups.push_back(OutGroup::mark(item.text));
        else if (item.what == LayoutItem::kAlways && !takeKept(item.code))
            groups.push_back(OutGroup::ascii(item.code, "0"));
        else if (isFixed && item.from == FileVersion::kR2000 && !takeKept(item.code))
            groups.push_back(item.what == LayoutItem::kText ? OutGroup::ascii(item.code, item.text)
                             : item.what == LayoutItem::kReal
                                 ? OutGroup::real(item.code, item.number)
                                 : OutGroup::integer(item.code, static_cast<long long>(item.number)));
    }
    groups.insert(groups.end(), kept.begin() + static_cast<std::ptrdiff_t>(taken), kept.end());
    return groups;
}

} // namespace

void keepGroups(OdDbDatabase& database, OdDbObject& object, const OdResBuf* groups) {
    constexpr int kFirst = 1, kLast = 999;
    if (object.isDBRO()) throw OdError(eAlreadyInDatabase);
    OutGroups kept;
    addChain(kept, groups, kFirst, kLast);
    if (kept.empty()) return ObjectAccess::setRaw(object, {});
    std::string bytes;
    const FileForm form{.lineEnd = "\n"};
    const TextEncoder encoder;
    const ByteSink sink = [&bytes](const char* begin, std::size_t size) { bytes.append(begin, size); };
    GroupWriter out(sink, form, encoder, nullptr, false);
    out.put(entryAround(object, kept));
    out.flush();
    const DatabaseData& data = database.data();
    ObjectAccess::setRaw(object,
                         RawPointer(new RawGroups(std::make_shared<Source>(), bytes, false,
                                                  data.kinds.name(entryLike(object).kind), data.identity)));
}

// --- layouts
// -----------------------------------------------------------------------------------------------------------

namespace {

struct LayoutName {
    OdString name;
    Node* block = nullptr;
};

/// The block that the groups of a layout name behind the mark of its class.
Node* blockNamedBy(const DatabaseData& data, const Node& layout) {
    constexpr int kMark = 100, kBlock = 330;
    bool inLayout = false;
    Node* block = nullptr;
    const GroupSpan span = groupsOf(data, layout);
    forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
        bool bad = false;
        if (group.code == kMark) inLayout = stripped(group.raw()) == "AcDbLayout";
        if (inLayout && group.code == kBlock)
            block = data.handles.find(Values(*span.form).handle(group, bad));
        return true;
    });
    return block != nullptr && block->kind == kKindBlockRecord && block->isLive() ? block : nullptr;
}

std::vector<LayoutName> layoutsOf(const OdDbDatabase& database) {
    DatabaseData& data = database.data();
    std::vector<LayoutName> layouts;
    const auto* const root =
        data.fixed.dictionary != nullptr ? OdDbDictionary::cast(data.bodyOf(data.fixed.dictionary)) : nullptr;
    const OdDbObjectId known = root != nullptr ? root->getAt(odText("ACAD_LAYOUT")) : OdDbObjectId();
    if (const auto* const named =
            known.isNull() ? nullptr : OdDbDictionary::cast(data.bodyOf(known.node()))) {
        for (const auto& [name, id] : ObjectAccess::entries(*named))
            if (id.isValid())
                if (Node* const block = blockNamedBy(data, *id.node())) layouts.push_back({name, block});
        return layouts;
    }
    int papers = 0;
    for (Node* record = data.fixed.blockTable->firstPart; record != nullptr; record = record->next) {
        const auto* const block =
            record->isLive() ? OdDbBlockTableRecord::cast(data.bodyOf(record)) : nullptr;
        if (block == nullptr || !block->isLayout()) continue;
        const bool isModel = record == data.fixed.modelSpace;
        layouts.push_back({odText(isModel ? "Model" : "Layout" + std::to_string(++papers)), record});
    }
    return layouts;
}

} // namespace

OdDbObjectId blockOfLayout(const OdDbDatabase& database, const OdString& layout) {
    for (const LayoutName& entry : layoutsOf(database))
        if (system::equalsNoCase(entry.name.view(), layout.view())) return OdDbObjectId(entry.block);
    return OdDbObjectId();
}

OdString layoutOfBlock(const OdDbDatabase& database, OdDbObjectId block) {
    for (const LayoutName& entry : layoutsOf(database))
        if (entry.block == block.node()) return entry.name;
    return OdString();
}

} // namespace lm::drawing
