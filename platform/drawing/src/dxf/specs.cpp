// SPDX-License-Identifier: MIT
// The rows follow the group codes of the DXF reference, entity by entity and table by table.
#include "dxf/specs.h"

#include "dxf/resolver.h"

#include "drawing/blockreference.h"
#include "drawing/curves.h"

#include <cmath>

namespace lm::drawing {

ClassSpec::ClassSpec(const char* className, std::initializer_list<std::span<const FieldSpec>> parts)
    : m_className(className) {
    // A later part may give a code of an earlier one another meaning.
    for (const auto& part : parts)
        for (const FieldSpec& field : part) {
            m_fields.push_back(field);
            m_index[static_cast<std::size_t>(field.code)] = static_cast<unsigned char>(m_fields.size());
        }
}

namespace {

template<class T>
struct MemberOf;
template<class C, class V>
struct MemberOf<V C::*> {
    using Class = C;
    using Value = V;
};
template<auto M>
using ClassOf = typename MemberOf<decltype(M)>::Class;

template<auto M>
auto& at(OdDbObject& object) {
    return static_cast<ClassOf<M>&>(object).*M;
}

template<auto M>
void readReal(OdDbObject& o, const Group& g, ReadContext& c) {
    at<M>(o) = c.real(g);
}
template<auto M>
void readAngle(OdDbObject& o, const Group& g, ReadContext& c) {
    at<M>(o) = c.angle(g);
}
template<auto M>
void readInteger(OdDbObject& o, const Group& g, ReadContext& c) {
    at<M>(o) = static_cast<typename MemberOf<decltype(M)>::Value>(c.integer(g));
}
template<auto M>
void readText(OdDbObject& o, const Group& g, ReadContext& c) {
    at<M>(o) = c.text(g);
}
template<auto M>
void readShared(OdDbObject& o, const Group& g, ReadContext& c) {
    at<M>(o) = c.sharedText(g);
}
/// x, y and z have the codes base, base + 10 and base + 20.
template<auto M, int Base>
void readTriple(OdDbObject& o, const Group& g, ReadContext& c) {
    auto& target = at<M>(o);
    double* const parts[3] = {&target.x, &target.y, &target.z};
    *parts[(g.code - Base) / 10] = c.real(g);
}
template<auto M, int Base>
void readPair(OdDbObject& o, const Group& g, ReadContext& c) {
    auto& target = at<M>(o);
    (g.code == Base ? target.x : target.y) = c.real(g);
}
template<auto M>
void readScale(OdDbObject& o, const Group& g, ReadContext& c) {
    OdGeScale3d& scale = at<M>(o);
    const double value = c.real(g);
    (g.code == 41 ? scale.sx : g.code == 42 ? scale.sy : scale.sz) = value;
}
using Value = OutGroup::Value;

template<auto M>
const auto& at(const OdDbObject& object) {
    return static_cast<const ClassOf<M>&>(object).*M;
}

template<auto M>
bool realOf(const OdDbObject& o, const ValueContext&, Value& v) {
    v = static_cast<double>(at<M>(o));
    return true;
}
template<auto M>
bool angleOf(const OdDbObject& o, const ValueContext&, Value& v) {
    v = degreesOf(at<M>(o));
    return true;
}
template<auto M>
bool integerOf(const OdDbObject& o, const ValueContext&, Value& v) {
    v = static_cast<long long>(at<M>(o));
    return true;
}
template<auto M>
bool textOf(const OdDbObject& o, const ValueContext&, Value& v) {
    v = at<M>(o);
    return true;
}
template<auto M, int Base>
bool tripleOf(const OdDbObject& o, const ValueContext& c, Value& v) {
    const auto& source = at<M>(o);
    v = c.code == Base ? source.x : c.code == Base + 10 ? source.y : source.z;
    return true;
}
template<auto M, int Base>
bool pairOf(const OdDbObject& o, const ValueContext& c, Value& v) {
    const auto& source = at<M>(o);
    v = c.code == Base ? source.x : source.y;
    return true;
}
template<auto M>
bool scaleOf(const OdDbObject& o, const ValueContext& c, Value& v) {
    const OdGeScale3d& scale = at<M>(o);
    v = c.code == 41 ? scale.sx : c.code == 42 ? scale.sy : scale.sz;
    return true;
}
/// The name of the record that an id stands for, as it is now.
template<auto M>
bool nameOf(const OdDbObject& o, const ValueContext&, Value& v) {
    const OdDbObjectId id = at<M>(o);
    if (!id.isValid()) return false;
    const OdDbObject* const body = id.database()->data().bodyOf(id.node());
    const auto* const record = OdDbSymbolTableRecord::cast(body);
    if (record == nullptr) return false;
    v = record->getName();
    return true;
}

template<auto M, Names Table>
void readName(OdDbObject& o, const Group& g, ReadContext& c) {
    at<M>(o) = OdDbObjectId(c.data.resolver->find(Table, g.raw()));
}

} // namespace

#define LM_POINT_PART(code, name, member, kind, base)                                                        \
    { code, name, "point", &read##kind<member, base>, &LM_VALUE_##kind<member, base> }
#define LM_VALUE_Triple tripleOf
#define LM_VALUE_Pair pairOf
#define LM_TRIPLE(code, name, member)                                                                        \
    LM_POINT_PART(code, name, member, Triple, code), LM_POINT_PART(code + 10, name, member, Triple, code),   \
        LM_POINT_PART(code + 20, name, member, Triple, code)
#define LM_PAIR(code, name, member)                                                                          \
    LM_POINT_PART(code, name, member, Pair, code), LM_POINT_PART(code + 10, name, member, Pair, code)

namespace {

/// The number that gives `product` when it is multiplied by `factor`, or the nearest there is.
double exactFactor(double product, double factor) noexcept {
    const double middle = product / factor;
    if (!std::isfinite(middle) || middle * factor == product) return std::isfinite(middle) ? middle : 0;
    double above = middle, below = middle;
    constexpr int kTries = 4;
    for (int i = 0; i < kTries; ++i) {
        above = std::nextafter(above, INFINITY);
        if (above * factor == product) return above;
        below = std::nextafter(below, -INFINITY);
        if (below * factor == product) return below;
    }
    return middle;
}

} // namespace

double degreesOf(double radians) noexcept {
    return exactFactor(radians, kRadiansPerDegree);
}

/// Has the sight of the classes' fields.
struct ClassSpecs {
    static constexpr int kByLayer = 256;

    static void readColorIndex(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& color = static_cast<OdDbEntity&>(o).m_color;
        if (color.method() != OdCmColor::kByColor) color = OdCmColor::fromIndex(c.integer(g));
    }
    static bool indexOf(const OdCmColor& color, Value& v) {
        if (color.method() == OdCmColor::kByColor) return false;
        v = static_cast<long long>(color.colorIndex());
        return color.colorIndex() != kByLayer;
    }
    static bool trueColorOf(const OdCmColor& color, Value& v) {
        if (color.method() != OdCmColor::kByColor) return false;
        v = static_cast<long long>(color.rgb());
        return true;
    }
    static bool valueOfColorIndex(const OdDbObject& o, const ValueContext&, Value& v) {
        return indexOf(static_cast<const OdDbEntity&>(o).m_color, v);
    }
    static OdCmColor rgbOf(unsigned value) {
        return OdCmColor::fromRgb(static_cast<std::uint8_t>(value >> 16),
                                  static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value));
    }
    static void readTrueColor(OdDbObject& o, const Group& g, ReadContext& c) {
        static_cast<OdDbEntity&>(o).m_color = rgbOf(static_cast<unsigned>(c.values.integer(g, c.bad)));
    }
    static bool valueOfTrueColor(const OdDbObject& o, const ValueContext&, Value& v) {
        return trueColorOf(static_cast<const OdDbEntity&>(o).m_color, v);
    }
    static void readInvisible(OdDbObject& o, const Group& g, ReadContext& c) {
        static_cast<OdDbEntity&>(o).m_visible = c.integer(g) == 0;
    }
    static bool valueOfInvisible(const OdDbObject& o, const ValueContext&, Value& v) {
        v = static_cast<const OdDbEntity&>(o).m_visible ? 0LL : 1LL;
        return true;
    }
    static void readTransparency(OdDbObject& o, const Group& g, ReadContext& c) {
        static_cast<OdDbEntity&>(o).m_transparency = static_cast<unsigned>(c.values.integer(g, c.bad));
    }
    static bool valueOfTransparency(const OdDbObject& o, const ValueContext&, Value& v) {
        v = static_cast<long long>(static_cast<int>(static_cast<const OdDbEntity&>(o).m_transparency));
        return true;
    }
    static void readLayerColor(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& layer = static_cast<OdDbLayerTableRecord&>(o);
        const int index = c.integer(g);
        layer.m_off = index < 0; // a negative colour switches the layer off
        if (layer.m_color.method() != OdCmColor::kByColor)
            layer.m_color = OdCmColor::fromIndex(index < 0 ? -index : index);
    }
    /// A layer with a true colour keeps the index that stands beside it for programs that know indices only.
    static bool valueOfLayerColor(const OdDbObject& o, const ValueContext& c, Value& v) {
        constexpr long long kWhite = 7;
        const auto& layer = static_cast<const OdDbLayerTableRecord&>(o);
        long long index = std::abs(c.old) != 0 ? std::abs(c.old) : kWhite;
        if (layer.m_color.method() != OdCmColor::kByColor) index = layer.m_color.colorIndex();
        v = layer.m_off ? -index : index;
        return true;
    }
    static void readLayerTrueColor(OdDbObject& o, const Group& g, ReadContext& c) {
        static_cast<OdDbLayerTableRecord&>(o).m_color =
            rgbOf(static_cast<unsigned>(c.values.integer(g, c.bad)));
    }
    static bool valueOfLayerTrueColor(const OdDbObject& o, const ValueContext&, Value& v) {
        return trueColorOf(static_cast<const OdDbLayerTableRecord&>(o).m_color, v);
    }
    static void clear(OdDbPolyline& polyline) { polyline.m_vertices.clear(); }
    static void readVertexX(OdDbObject& o, const Group& g, ReadContext& c) {
        static_cast<OdDbPolyline&>(o).m_vertices.push_back({{c.real(g), 0}});
    }
    static void readVertexY(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& vertices = static_cast<OdDbPolyline&>(o).m_vertices;
        if (!vertices.empty()) vertices.back().point.y = c.real(g);
    }
    static void readBulge(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& vertices = static_cast<OdDbPolyline&>(o).m_vertices;
        if (!vertices.empty()) vertices.back().bulge = c.real(g);
    }
    static void readStartWidth(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& vertices = static_cast<OdDbPolyline&>(o).m_vertices;
        if (!vertices.empty()) vertices.back().startWidth = c.real(g);
    }
    static void readEndWidth(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& vertices = static_cast<OdDbPolyline&>(o).m_vertices;
        if (!vertices.empty()) vertices.back().endWidth = c.real(g);
    }
    static void readVertexCount(OdDbObject& o, const Group& g, ReadContext& c) {
        constexpr long long kTrusted = 4096;      // a count in a file is a hint and no reason to take memory
        constexpr long long kShortestVertex = 10; // bytes of two groups
        const long long count = c.values.integer(g, c.bad);
        const long long room = c.node.length / kShortestVertex;
        if (count > 0)
            static_cast<OdDbPolyline&>(o).m_vertices.reserve(
                static_cast<std::size_t>(std::min({count, room, kTrusted})));
    }
    static bool valueOfVertexCount(const OdDbObject& o, const ValueContext&, Value& v) {
        v = static_cast<long long>(static_cast<const OdDbPolyline&>(o).m_vertices.size());
        return true;
    }
    static void readMTextPart(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& text = static_cast<OdDbMText&>(o).m_contents;
        text = text.isEmpty() ? c.text(g) : text + c.text(g);
    }
    static void readDictionaryName(OdDbObject& o, const Group& g, ReadContext& c) {
        static_cast<OdDbDictionary&>(o).m_entries.push_back({c.text(g), OdDbObjectId::kNull});
    }
    static void readDictionaryId(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& entries = static_cast<OdDbDictionary&>(o).m_entries;
        const std::uint64_t handle = c.values.handle(g, c.bad);
        if (!entries.empty() && entries.back().id.isNull())
            entries.back().id = OdDbObjectId(handle != 0 ? c.data.handles.find(handle) : nullptr);
    }

    static std::span<const FieldSpec> entity() {
        static const FieldSpec fields[] = {
            {8, "layer", "name of a layer", &readName<&OdDbEntity::m_layer, Names::kLayers>,
             &nameOf<&OdDbEntity::m_layer>},
            {6, "linetype", "name of a line type", &readName<&OdDbEntity::m_linetype, Names::kLinetypes>,
             &nameOf<&OdDbEntity::m_linetype>},
            {62, "color", "index", &readColorIndex, &valueOfColorIndex},
            {420, "true color", "0x00RRGGBB", &readTrueColor, &valueOfTrueColor},
            {440, "transparency", "integer", &readTransparency, &valueOfTransparency},
            {48, "linetype scale", "real", &readReal<&OdDbEntity::m_linetypeScale>,
             &realOf<&OdDbEntity::m_linetypeScale>},
            {370, "line weight", "integer", &readInteger<&OdDbEntity::m_lineWeight>,
             &integerOf<&OdDbEntity::m_lineWeight>},
            {60, "invisible", "0 or 1", &readInvisible, &valueOfInvisible}};
        return fields;
    }
    static std::span<const FieldSpec> text() {
        static const FieldSpec fields[] = {
            LM_TRIPLE(10, "position", &OdDbText::m_position),
            LM_TRIPLE(11, "alignment point", &OdDbText::m_alignment),
            LM_TRIPLE(210, "normal", &OdDbText::m_normal),
            {1, "text", "text", &readText<&OdDbText::m_text>, &textOf<&OdDbText::m_text>},
            {7, "style", "name of a text style", &readName<&OdDbText::m_style, Names::kStyles>,
             &nameOf<&OdDbText::m_style>},
            {39, "thickness", "real", &readReal<&OdDbText::m_thickness>, &realOf<&OdDbText::m_thickness>},
            {40, "height", "real", &readReal<&OdDbText::m_height>, &realOf<&OdDbText::m_height>},
            {41, "width factor", "real", &readReal<&OdDbText::m_widthFactor>,
             &realOf<&OdDbText::m_widthFactor>},
            {50, "rotation", "degrees", &readAngle<&OdDbText::m_rotation>, &angleOf<&OdDbText::m_rotation>},
            {51, "oblique", "degrees", &readAngle<&OdDbText::m_oblique>, &angleOf<&OdDbText::m_oblique>},
            {71, "mirror", "bits", &readInteger<&OdDbText::m_mirror>, &integerOf<&OdDbText::m_mirror>},
            {72, "horizontal mode", "0 to 5", &readInteger<&OdDbText::m_horizontal>,
             &integerOf<&OdDbText::m_horizontal>},
            {73, "vertical mode", "0 to 3", &readInteger<&OdDbText::m_vertical>,
             &integerOf<&OdDbText::m_vertical>}};
        return fields;
    }
    static std::span<const FieldSpec> attribute() {
        static const FieldSpec fields[] = {
            {2, "tag", "text", &readShared<&OdDbAttribute::m_tag>, &textOf<&OdDbAttribute::m_tag>},
            {70, "flags", "bits", &readInteger<&OdDbAttribute::m_attributeFlags>,
             &integerOf<&OdDbAttribute::m_attributeFlags>},
            {73, "field length", "integer", &readInteger<&OdDbAttribute::m_fieldLength>,
             &integerOf<&OdDbAttribute::m_fieldLength>},
            {74, "vertical mode", "0 to 3", &readInteger<&OdDbText::m_vertical>,
             &integerOf<&OdDbText::m_vertical>}};
        return fields;
    }
    static std::span<const FieldSpec> definition() {
        static const FieldSpec fields[] = {
            {2, "tag", "text", &readShared<&OdDbAttributeDefinition::m_tag>,
             &textOf<&OdDbAttributeDefinition::m_tag>},
            {3, "prompt", "text", &readText<&OdDbAttributeDefinition::m_prompt>,
             &textOf<&OdDbAttributeDefinition::m_prompt>},
            {70, "flags", "bits", &readInteger<&OdDbAttributeDefinition::m_attributeFlags>,
             &integerOf<&OdDbAttributeDefinition::m_attributeFlags>},
            {73, "field length", "integer", &readInteger<&OdDbAttributeDefinition::m_fieldLength>,
             &integerOf<&OdDbAttributeDefinition::m_fieldLength>},
            {74, "vertical mode", "0 to 3", &readInteger<&OdDbText::m_vertical>,
             &integerOf<&OdDbText::m_vertical>}};
        return fields;
    }
    static std::span<const FieldSpec> mtext() {
        static const FieldSpec fields[] = {
            LM_TRIPLE(10, "location", &OdDbMText::m_location),
            LM_TRIPLE(11, "direction", &OdDbMText::m_direction),
            LM_TRIPLE(210, "normal", &OdDbMText::m_normal),
            {3, "text before the last part", "text", &readMTextPart, nullptr},
            {1, "text", "text", &readMTextPart, nullptr},
            {7, "style", "name of a text style", &readName<&OdDbMText::m_style, Names::kStyles>,
             &nameOf<&OdDbMText::m_style>},
            {40, "height", "real", &readReal<&OdDbMText::m_height>, &realOf<&OdDbMText::m_height>},
            {41, "width", "real", &readReal<&OdDbMText::m_width>, &realOf<&OdDbMText::m_width>},
            {42, "shown width", "real", &readReal<&OdDbMText::m_shownWidth>,
             &realOf<&OdDbMText::m_shownWidth>},
            {43, "shown height", "real", &readReal<&OdDbMText::m_shownHeight>,
             &realOf<&OdDbMText::m_shownHeight>},
            {46, "frame height", "real", &readReal<&OdDbMText::m_frameHeight>,
             &realOf<&OdDbMText::m_frameHeight>},
            {50, "rotation", "radians", &readReal<&OdDbMText::m_rotation>, &realOf<&OdDbMText::m_rotation>},
            {71, "attachment", "1 to 9", &readInteger<&OdDbMText::m_attachment>,
             &integerOf<&OdDbMText::m_attachment>}};
        return fields;
    }
    static std::span<const FieldSpec> reference() {
        static const FieldSpec fields[] = {
            LM_TRIPLE(10, "position", &OdDbBlockReference::m_position),
            LM_TRIPLE(210, "normal", &OdDbBlockReference::m_normal),
            {2, "block", "name of a block", &readName<&OdDbBlockReference::m_block, Names::kBlocks>,
             &nameOf<&OdDbBlockReference::m_block>},
            {41, "x scale", "real", &readScale<&OdDbBlockReference::m_scale>,
             &scaleOf<&OdDbBlockReference::m_scale>},
            {42, "y scale", "real", &readScale<&OdDbBlockReference::m_scale>,
             &scaleOf<&OdDbBlockReference::m_scale>},
            {43, "z scale", "real", &readScale<&OdDbBlockReference::m_scale>,
             &scaleOf<&OdDbBlockReference::m_scale>},
            {44, "column spacing", "real", &readReal<&OdDbBlockReference::m_columnSpacing>,
             &realOf<&OdDbBlockReference::m_columnSpacing>},
            {45, "row spacing", "real", &readReal<&OdDbBlockReference::m_rowSpacing>,
             &realOf<&OdDbBlockReference::m_rowSpacing>},
            {50, "rotation", "degrees", &readAngle<&OdDbBlockReference::m_rotation>,
             &angleOf<&OdDbBlockReference::m_rotation>},
            {70, "columns", "integer", &readInteger<&OdDbBlockReference::m_columns>,
             &integerOf<&OdDbBlockReference::m_columns>},
            {71, "rows", "integer", &readInteger<&OdDbBlockReference::m_rows>,
             &integerOf<&OdDbBlockReference::m_rows>}};
        return fields;
    }
    template<auto M>
    static constexpr FieldSpec thickness() {
        return {39, "thickness", "real", &readReal<M>, &realOf<M>};
    }
    static std::span<const FieldSpec> point() {
        static const FieldSpec fields[] = {LM_TRIPLE(10, "position", &OdDbPoint::m_position),
                                           thickness<&OdDbPoint::m_thickness>()};
        return fields;
    }
    static std::span<const FieldSpec> line() {
        static const FieldSpec fields[] = {LM_TRIPLE(10, "start", &OdDbLine::m_start),
                                           LM_TRIPLE(11, "end", &OdDbLine::m_end),
                                           thickness<&OdDbLine::m_thickness>()};
        return fields;
    }
    static std::span<const FieldSpec> circle() {
        static const FieldSpec fields[] = {
            LM_TRIPLE(10, "centre", &OdDbCircle::m_center),
            LM_TRIPLE(210, "normal", &OdDbCircle::m_normal),
            thickness<&OdDbCircle::m_thickness>(),
            {40, "radius", "real", &readReal<&OdDbCircle::m_radius>, &realOf<&OdDbCircle::m_radius>}};
        return fields;
    }
    static std::span<const FieldSpec> arc() {
        static const FieldSpec fields[] = {
            LM_TRIPLE(10, "centre", &OdDbArc::m_center),
            LM_TRIPLE(210, "normal", &OdDbArc::m_normal),
            thickness<&OdDbArc::m_thickness>(),
            {40, "radius", "real", &readReal<&OdDbArc::m_radius>, &realOf<&OdDbArc::m_radius>},
            {50, "start angle", "degrees", &readAngle<&OdDbArc::m_startAngle>,
             &angleOf<&OdDbArc::m_startAngle>},
            {51, "end angle", "degrees", &readAngle<&OdDbArc::m_endAngle>, &angleOf<&OdDbArc::m_endAngle>}};
        return fields;
    }
    static std::span<const FieldSpec> ellipse() {
        static const FieldSpec fields[] = {
            LM_TRIPLE(10, "centre", &OdDbEllipse::m_center),
            LM_TRIPLE(11, "major axis", &OdDbEllipse::m_majorAxis),
            LM_TRIPLE(210, "normal", &OdDbEllipse::m_normal),
            {40, "ratio", "real", &readReal<&OdDbEllipse::m_ratio>, &realOf<&OdDbEllipse::m_ratio>},
            {41, "start", "radians", &readReal<&OdDbEllipse::m_startParam>,
             &realOf<&OdDbEllipse::m_startParam>},
            {42, "end", "radians", &readReal<&OdDbEllipse::m_endParam>, &realOf<&OdDbEllipse::m_endParam>}};
        return fields;
    }
    static std::span<const FieldSpec> polyline() {
        static const FieldSpec fields[] = {
            {90, "vertices", "count", &readVertexCount, &valueOfVertexCount},
            {70, "flags", "bits", &readInteger<&OdDbPolyline::m_polylineFlags>,
             &integerOf<&OdDbPolyline::m_polylineFlags>},
            {38, "elevation", "real", &readReal<&OdDbPolyline::m_elevation>,
             &realOf<&OdDbPolyline::m_elevation>},
            {10, "vertex x", "real", &readVertexX, nullptr},
            {20, "vertex y", "real", &readVertexY, nullptr},
            {42, "bulge", "real", &readBulge, nullptr},
            {40, "start width", "real", &readStartWidth, nullptr},
            {41, "end width", "real", &readEndWidth, nullptr},
            {43, "width", "real", &readReal<&OdDbPolyline::m_width>, &realOf<&OdDbPolyline::m_width>},
            thickness<&OdDbPolyline::m_thickness>(),
            LM_TRIPLE(210, "normal", &OdDbPolyline::m_normal)};
        return fields;
    }
    static std::span<const FieldSpec> record() {
        static const FieldSpec fields[] = {{2, "name", "text", &readShared<&OdDbSymbolTableRecord::m_name>,
                                            &textOf<&OdDbSymbolTableRecord::m_name>},
                                           {70, "flags", "bits",
                                            &readInteger<&OdDbSymbolTableRecord::m_recordFlags>,
                                            &integerOf<&OdDbSymbolTableRecord::m_recordFlags>}};
        return fields;
    }
    static std::span<const FieldSpec> layer() {
        static const FieldSpec fields[] = {
            {62, "color", "index, negative for off", &readLayerColor, &valueOfLayerColor},
            {420, "true color", "0x00RRGGBB", &readLayerTrueColor, &valueOfLayerTrueColor},
            {6, "linetype", "name of a line type",
             &readName<&OdDbLayerTableRecord::m_linetype, Names::kLinetypes>,
             &nameOf<&OdDbLayerTableRecord::m_linetype>}};
        return fields;
    }
    static std::span<const FieldSpec> linetype() {
        static const FieldSpec fields[] = {{3, "comments", "text",
                                            &readText<&OdDbLinetypeTableRecord::m_comments>,
                                            &textOf<&OdDbLinetypeTableRecord::m_comments>}};
        return fields;
    }
    static std::span<const FieldSpec> view() {
        static const FieldSpec fields[] = {
            LM_PAIR(10, "centre", &OdDbAbstractViewTableRecord::m_center),
            {40, "height", "real", &readReal<&OdDbAbstractViewTableRecord::m_height>,
             &realOf<&OdDbAbstractViewTableRecord::m_height>},
            {41, "width", "real", &readReal<&OdDbAbstractViewTableRecord::m_width>,
             &realOf<&OdDbAbstractViewTableRecord::m_width>}};
        return fields;
    }
    /// A viewport has its width as a multiple of its height; either may come first.
    static void readViewportHeight(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& view = static_cast<OdDbAbstractViewTableRecord&>(o);
        const double aspect = view.m_height != 0 ? view.m_width / view.m_height : 1;
        view.m_height = c.real(g);
        view.m_width = view.m_height * aspect;
    }
    static void readAspect(OdDbObject& o, const Group& g, ReadContext& c) {
        auto& view = static_cast<OdDbAbstractViewTableRecord&>(o);
        view.m_width = view.m_height * c.real(g);
    }
    static bool valueOfViewportHeight(const OdDbObject& o, const ValueContext&, Value& v) {
        v = static_cast<const OdDbAbstractViewTableRecord&>(o).m_height;
        return true;
    }
    static bool valueOfAspect(const OdDbObject& o, const ValueContext&, Value& v) {
        const auto& view = static_cast<const OdDbAbstractViewTableRecord&>(o);
        v = view.m_height != 0 ? exactFactor(view.m_width, view.m_height) : 1.0;
        return true;
    }
    static std::span<const FieldSpec> viewport() {
        static const FieldSpec fields[] = {
            LM_PAIR(12, "centre", &OdDbAbstractViewTableRecord::m_center),
            {40, "height", "real", &readViewportHeight, &valueOfViewportHeight},
            {41, "aspect ratio", "real", &readAspect, &valueOfAspect}};
        return fields;
    }
    static std::span<const FieldSpec> dictionary() {
        static const FieldSpec fields[] = {{3, "entry", "text", &readDictionaryName, nullptr},
                                           {350, "object", "handle", &readDictionaryId, nullptr},
                                           {360, "owned object", "handle", &readDictionaryId, nullptr}};
        return fields;
    }
    static std::span<const FieldSpec> block() {
        static const FieldSpec fields[] = {LM_TRIPLE(10, "origin", &OdDbBlockTableRecord::m_origin)};
        return fields;
    }
};

namespace {

template<class T>
OdDbObject* make() {
    return new T();
}

struct Row {
    Kind kind;
    KindSpec spec;
};

/// Specs by kind, made at the first use.
struct Specs {
    using S = ClassSpecs;
    ClassSpec attribute{"ATTRIB", {S::entity(), S::text(), S::attribute()}};
    ClassSpec definition{"ATTDEF", {S::entity(), S::text(), S::definition()}};
    ClassSpec text{"TEXT", {S::entity(), S::text()}};
    ClassSpec mtext{"MTEXT", {S::entity(), S::mtext()}};
    ClassSpec reference{"INSERT", {S::entity(), S::reference()}};
    ClassSpec point{"POINT", {S::entity(), S::point()}};
    ClassSpec line{"LINE", {S::entity(), S::line()}};
    ClassSpec circle{"CIRCLE", {S::entity(), S::circle()}};
    ClassSpec arc{"ARC", {S::entity(), S::arc()}};
    ClassSpec ellipse{"ELLIPSE", {S::entity(), S::ellipse()}};
    ClassSpec polyline{"LWPOLYLINE", {S::entity(), S::polyline()}};
    ClassSpec entity{"entity", {S::entity()}};
    ClassSpec layer{"LAYER", {S::record(), S::layer()}};
    ClassSpec linetype{"LTYPE", {S::record(), S::linetype()}};
    ClassSpec record{"record", {S::record()}};
    ClassSpec view{"VIEW", {S::record(), S::view()}};
    ClassSpec viewport{"VPORT", {S::record(), S::viewport()}};
    ClassSpec dictionary{"DICTIONARY", {S::dictionary()}};
    ClassSpec object{"object", {}};
    ClassSpec block{"BLOCK", {S::block()}};

    std::array<KindSpec, kFixedKinds> byKind{};
    KindSpec unreadEntity{&make<OdDbUnreadEntity>, &entity};
    KindSpec unreadRecord{&make<OdDbUnreadTableRecord>, &record};
    KindSpec unreadObject{&make<OdDbUnreadObject>, &object};

    Specs() {
        byKind[kKindAttrib] = {&make<OdDbAttribute>, &attribute};
        byKind[kKindAttdef] = {&make<OdDbAttributeDefinition>, &definition};
        byKind[kKindText] = {&make<OdDbText>, &text};
        byKind[kKindMText] = {&make<OdDbMText>, &mtext};
        byKind[kKindInsert] = {&make<OdDbBlockReference>, &reference};
        byKind[kKindPoint] = {&make<OdDbPoint>, &point};
        byKind[kKindLine] = {&make<OdDbLine>, &line};
        byKind[kKindCircle] = {&make<OdDbCircle>, &circle};
        byKind[kKindArc] = {&make<OdDbArc>, &arc};
        byKind[kKindEllipse] = {&make<OdDbEllipse>, &ellipse};
        byKind[kKindLwPolyline] = {&make<OdDbPolyline>, &polyline};
        byKind[kKindLayer] = {&make<OdDbLayerTableRecord>, &layer};
        byKind[kKindLtype] = {&make<OdDbLinetypeTableRecord>, &linetype};
        byKind[kKindStyle] = {&make<OdDbTextStyleTableRecord>, &record};
        byKind[kKindAppid] = {&make<OdDbRegAppTableRecord>, &record};
        byKind[kKindBlockRecord] = {&make<OdDbBlockTableRecord>, &record};
        byKind[kKindView] = {&make<OdDbViewTableRecord>, &view};
        byKind[kKindVport] = {&make<OdDbViewportTableRecord>, &viewport};
        byKind[kKindDictionary] = {&make<OdDbDictionary>, &dictionary};
        byKind[kKindDictionaryWithDefault] = {&make<OdDbDictionary>, &dictionary};
        byKind[kKindXrecord] = {&make<OdDbXrecord>, &object};
    }
};

const Specs& specs() {
    static const Specs all;
    return all;
}

/// Whether a kind stands where its class belongs: a LAYER among entities is no layer.
bool isInPlace(const Node& node) {
    const bool record = node.kind >= kKindLayer && node.kind <= kKindBlockRecord;
    const bool object = node.kind >= kKindDictionary;
    if (record) return node.has(Node::kTableRecord);
    if (object) return !node.has(Node::kEntity) && !node.has(Node::kTableRecord);
    return node.has(Node::kEntity);
}

} // namespace

const KindSpec& specOf(const Node& node) {
    const Specs& all = specs();
    if (node.kind < kFixedKinds && all.byKind[node.kind].make != nullptr && isInPlace(node))
        return all.byKind[node.kind];
    if (node.has(Node::kEntity)) return all.unreadEntity;
    return node.has(Node::kTableRecord) ? all.unreadRecord : all.unreadObject;
}

void clearVertices(OdDbPolyline& polyline) {
    ClassSpecs::clear(polyline);
}

const ClassSpec& mtextSpec() {
    return specs().mtext;
}
const ClassSpec& blockSpec() {
    return specs().block;
}

std::vector<const ClassSpec*> allSpecs() {
    const Specs& s = specs();
    return {&s.attribute, &s.definition, &s.text,     &s.mtext,      &s.reference, &s.point, &s.line,
            &s.circle,    &s.arc,        &s.ellipse,  &s.polyline,   &s.entity,    &s.layer, &s.linetype,
            &s.record,    &s.view,       &s.viewport, &s.dictionary, &s.block};
}

} // namespace lm::drawing
