// SPDX-License-Identifier: MIT
#include "dxf/subclasses.h"

#include <algorithm>

namespace lm::drawing {

namespace {

using Codes = std::span<const short>;
using Parts = std::span<const Subclass>;

constexpr short kCommon[] = {67, 410, 8, 6, 347, 62, 370, 48, 60, 420, 430, 440, 390, 284};

constexpr short kLine[] = {39, 10, 11, 210};
constexpr short kPoint[] = {10, 39, 210, 50};
constexpr short kCircle[] = {39, 10, 40, 210};
constexpr short kAngles[] = {50, 51};
constexpr short kTrace[] = {10, 11, 12, 13, 39, 210};
constexpr short kFace[] = {10, 11, 12, 13, 70};
constexpr short kText[] = {39, 10, 40, 1, 50, 41, 51, 7, 71, 72, 11, 210};
constexpr short kTextVertical[] = {73};
constexpr short kAttribute[] = {2, 70, 73, 74};
constexpr short kDefinition[] = {3, 2, 70, 73, 74};
constexpr short kShape[] = {39, 10, 40, 2, 50, 41, 51, 210};
constexpr short kBlockBegin[] = {2, 70, 10, 3, 1};
constexpr short kInsert[] = {66, 2, 10, 41, 42, 43, 50, 70, 71, 44, 45, 210};
constexpr short kPolyline[] = {66, 10, 39, 70, 40, 41, 71, 72, 73, 74, 75, 210};
constexpr short kVertex[] = {10, 40, 41, 42, 70, 50};
constexpr short kFaceRecord[] = {10, 70, 71, 72, 73, 74};
constexpr short kViewport[] = {10, 40, 41, 68, 69};
constexpr short kDimension[] = {2, 10, 11, 70, 71, 72, 41, 42, 1, 53, 51, 210, 3};
constexpr short kDimensionWithClone[] = {2, 10, 11, 12, 70, 71, 72, 41, 42, 1, 53, 51, 210, 3};
constexpr short kAligned[] = {12, 13, 14, 50, 52};
constexpr short kAngular[] = {13, 14, 15, 16};
constexpr short kRadial[] = {15, 40};
constexpr short kOrdinate[] = {13, 14};

constexpr Subclass kLineParts[] = {{"AcDbLine", kLine, true}};
constexpr Subclass kPointParts[] = {{"AcDbPoint", kPoint, true}};
constexpr Subclass kCircleParts[] = {{"AcDbCircle", kCircle, true}};
constexpr Subclass kArcParts[] = {{"AcDbCircle", kCircle, true}, {"AcDbArc", kAngles}};
constexpr Subclass kTraceParts[] = {{"AcDbTrace", kTrace, true}};
constexpr Subclass kFaceParts[] = {{"AcDbFace", kFace, true}};
constexpr Subclass kTextParts[] = {{"AcDbText", kText, true}, {"AcDbText", kTextVertical}};
constexpr Subclass kAttribParts[] = {{"AcDbText", kText}, {"AcDbAttribute", kAttribute, true}};
constexpr Subclass kAttdefParts[] = {{"AcDbText", kText}, {"AcDbAttributeDefinition", kDefinition, true}};
constexpr Subclass kShapeParts[] = {{"AcDbShape", kShape, true}};
constexpr Subclass kBlockParts[] = {{"AcDbBlockBegin", kBlockBegin, true}};
constexpr Subclass kEndblkParts[] = {{"AcDbBlockEnd", {}, true}};
constexpr Subclass kInsertParts[] = {{"AcDbBlockReference", kInsert, true}};
constexpr Subclass kArrayParts[] = {{"AcDbMInsertBlock", kInsert, true}};
constexpr Subclass kViewportParts[] = {{"AcDbViewport", kViewport, true}};

constexpr Subclass k2dPolyline[] = {{"AcDb2dPolyline", kPolyline, true}};
constexpr Subclass k3dPolyline[] = {{"AcDb3dPolyline", kPolyline, true}};
constexpr Subclass kMesh[] = {{"AcDbPolygonMesh", kPolyline, true}};
constexpr Subclass kPolyface[] = {{"AcDbPolyFaceMesh", kPolyline, true}};

constexpr Subclass k2dVertex[] = {{"AcDbVertex", {}}, {"AcDb2dVertex", kVertex, true}};
constexpr Subclass k3dVertex[] = {{"AcDbVertex", {}}, {"AcDb3dPolylineVertex", kVertex, true}};
constexpr Subclass kMeshVertex[] = {{"AcDbVertex", {}}, {"AcDbPolygonMeshVertex", kVertex, true}};
constexpr Subclass kPolyfaceVertex[] = {{"AcDbVertex", {}}, {"AcDbPolyFaceMeshVertex", kVertex, true}};
constexpr Subclass kPolyfaceFace[] = {{"AcDbFaceRecord", kFaceRecord, true}};

// By type of dimension: rotated, aligned, angular by lines, diameter, radius, angular by points, ordinate.
constexpr Subclass kRotatedParts[] = {
    {"AcDbDimension", kDimension, true}, {"AcDbAlignedDimension", kAligned}, {"AcDbRotatedDimension", {}}};
constexpr Subclass kAlignedParts[] = {{"AcDbDimension", kDimension, true},
                                      {"AcDbAlignedDimension", kAligned}};
constexpr Subclass kAngularParts[] = {{"AcDbDimension", kDimensionWithClone, true},
                                      {"AcDb2LineAngularDimension", kAngular}};
constexpr Subclass kDiameterParts[] = {{"AcDbDimension", kDimensionWithClone, true},
                                       {"AcDbDiametricDimension", kRadial}};
constexpr Subclass kRadiusParts[] = {{"AcDbDimension", kDimensionWithClone, true},
                                     {"AcDbRadialDimension", kRadial}};
constexpr Subclass kThreePointParts[] = {{"AcDbDimension", kDimensionWithClone, true},
                                         {"AcDb3PointAngularDimension", kAngular}};
constexpr Subclass kOrdinateParts[] = {{"AcDbDimension", kDimensionWithClone, true},
                                       {"AcDbOrdinateDimension", kOrdinate}};
constexpr Parts kDimensionParts[] = {kRotatedParts, kAlignedParts,    kAngularParts, kDiameterParts,
                                     kRadiusParts,  kThreePointParts, kOrdinateParts};

// Kinds that came with R13: they have marks from the start, and only sloppy writers leave them out. The order
// of their groups has a meaning, so it stays.
constexpr Subclass kLwPolylineParts[] = {{"AcDbPolyline", {}, true}};
constexpr Subclass kEllipseParts[] = {{"AcDbEllipse", {}, true}};
constexpr Subclass kMTextParts[] = {{"AcDbMText", {}, true}};
constexpr Subclass kSplineParts[] = {{"AcDbSpline", {}, true}};
constexpr Subclass kHatchParts[] = {{"AcDbHatch", {}, true}};
constexpr Subclass kLeaderParts[] = {{"AcDbLeader", {}, true}};
constexpr Subclass kRayParts[] = {{"AcDbRay", {}, true}};
constexpr Subclass kXlineParts[] = {{"AcDbXline", {}, true}};
constexpr Subclass kMlineParts[] = {{"AcDbMline", {}, true}};
constexpr Subclass kToleranceParts[] = {{"AcDbFcf", {}, true}};
constexpr Subclass kImageParts[] = {{"AcDbRasterImage", {}, true}};

struct KindRow {
    std::string_view kind;
    Parts parts;
};

constexpr KindRow kEntities[] = {{"LINE", kLineParts},
                                 {"POINT", kPointParts},
                                 {"CIRCLE", kCircleParts},
                                 {"ARC", kArcParts},
                                 {"TRACE", kTraceParts},
                                 {"SOLID", kTraceParts},
                                 {"3DFACE", kFaceParts},
                                 {"TEXT", kTextParts},
                                 {"ATTRIB", kAttribParts},
                                 {"ATTDEF", kAttdefParts},
                                 {"SHAPE", kShapeParts},
                                 {"BLOCK", kBlockParts},
                                 {"ENDBLK", kEndblkParts},
                                 {"INSERT", kInsertParts},
                                 {"POLYLINE", k2dPolyline},
                                 {"VERTEX", k2dVertex},
                                 {"SEQEND", {}},
                                 {"DIMENSION", kRotatedParts},
                                 {"VIEWPORT", kViewportParts},
                                 {"LWPOLYLINE", kLwPolylineParts},
                                 {"ELLIPSE", kEllipseParts},
                                 {"MTEXT", kMTextParts},
                                 {"SPLINE", kSplineParts},
                                 {"HATCH", kHatchParts},
                                 {"LEADER", kLeaderParts},
                                 {"RAY", kRayParts},
                                 {"XLINE", kXlineParts},
                                 {"MLINE", kMlineParts},
                                 {"TOLERANCE", kToleranceParts},
                                 {"IMAGE", kImageParts}};

struct MarkRow {
    std::string_view kind;
    const char* mark;
};

constexpr MarkRow kRecords[] = {
    {"VPORT", "AcDbViewportTableRecord"},    {"LTYPE", "AcDbLinetypeTableRecord"},
    {"LAYER", "AcDbLayerTableRecord"},       {"STYLE", "AcDbTextStyleTableRecord"},
    {"VIEW", "AcDbViewTableRecord"},         {"UCS", "AcDbUCSTableRecord"},
    {"APPID", "AcDbRegAppTableRecord"},      {"DIMSTYLE", "AcDbDimStyleTableRecord"},
    {"BLOCK_RECORD", "AcDbBlockTableRecord"}};

constexpr MarkRow kObjects[] = {{"DICTIONARY", "AcDbDictionary"},
                                {"XRECORD", "AcDbXrecord"},
                                {"GROUP", "AcDbGroup"},
                                {"MLINESTYLE", "AcDbMlineStyle"},
                                {"DICTIONARYVAR", "DictionaryVariables"}};

const char* find(std::span<const MarkRow> rows, std::string_view kind) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const MarkRow& r) { return r.kind == kind; });
    return row != rows.end() ? row->mark : nullptr;
}

constexpr int k3dFlag = 8, kMeshFlag = 16, kPolyfaceFlag = 64; // of a polyline
constexpr int k3dVertexFlag = 32, kMeshVertexFlag = 64, kFaceFlag = 128;

Parts polylineParts(int flags) {
    if ((flags & kPolyfaceFlag) != 0) return kPolyface;
    if ((flags & kMeshFlag) != 0) return kMesh;
    return (flags & k3dFlag) != 0 ? Parts(k3dPolyline) : Parts(k2dPolyline);
}

/// A vertex says what it is; one that doesn't is of its polyline's sort.
Parts vertexParts(int flags, int polyline) {
    if ((flags & kFaceFlag) != 0)
        return (flags & kMeshVertexFlag) != 0 ? Parts(kPolyfaceVertex) : Parts(kPolyfaceFace);
    if ((polyline & kPolyfaceFlag) != 0) return kPolyfaceVertex;
    if ((flags & kMeshVertexFlag) != 0 || (polyline & kMeshFlag) != 0) return kMeshVertex;
    if ((flags & k3dVertexFlag) != 0 || (polyline & k3dFlag) != 0) return k3dVertex;
    return k2dVertex;
}

Parts dimensionParts(int flags) {
    constexpr unsigned kType = 7; // the bits above tell how the dimension stands, not which one it is
    const unsigned type = static_cast<unsigned>(flags) & kType;
    return type < std::size(kDimensionParts) ? kDimensionParts[type] : Parts(kAlignedParts);
}

} // namespace

std::span<const Subclass> partsOfEntity(std::string_view kind, const EntryFacts& facts) {
    if (kind == "INSERT" && facts.array) return kArrayParts;
    if (kind == "POLYLINE") return polylineParts(facts.flags);
    if (kind == "VERTEX") return vertexParts(facts.flags, facts.ownerFlags);
    if (kind == "DIMENSION") return dimensionParts(facts.flags);
    for (const KindRow& row : kEntities)
        if (row.kind == kind) return row.parts;
    return {};
}

bool isKnownEntity(std::string_view kind) {
    return std::any_of(std::begin(kEntities), std::end(kEntities),
                       [&](const KindRow& row) { return row.kind == kind; });
}

const char* markOfRecord(std::string_view kind) {
    return find(kRecords, kind);
}

const char* markOfObject(std::string_view kind) {
    return find(kObjects, kind);
}

bool isCommonCode(int code) {
    return std::find(std::begin(kCommon), std::end(kCommon), code) != std::end(kCommon);
}

} // namespace lm::drawing
