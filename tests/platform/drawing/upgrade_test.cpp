// SPDX-License-Identifier: MIT
// Entries of R12, R13 and R14, and how they are written for R2000 and later.
#include "upgrade_support.h"

namespace drawing_test {
namespace {

const char* const kModel = "{BLOCK_RECORD *Model_Space}";

/// An entity of R12 and the same one of R2000, from behind its type.
struct EntityRow {
    const char* name;
    std::string before;
    std::string after;
};

/// What an entity of model space with the handle A1 begins with.
std::string head(const std::string& common = "8 0", const std::string& owner = kModel) {
    return "5 A1|330 " + owner + "|100 AcDbEntity|" + common;
}

/// Names of tests may hold letters and digits only.
std::string testName(const std::string& name) {
    std::string out;
    for (const char c : name)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) out += c;
    return out;
}

class UpgradeEntity : public testing::TestWithParam<EntityRow> {};

TEST_P(UpgradeEntity, GetsOwnerMarksAndOrder) {
    const EntityRow& row = GetParam();
    OldDrawing drawing;
    drawing.blocks = "0 BLOCK|8 0|2 SYM|70 0|10 0.0|20 0.0|30 0.0|0 ENDBLK|8 0";
    drawing.entities = row.before;
    const std::string type = row.before.substr(0, row.before.find('|'));
    for (const FileVersion version : {FileVersion::kR2000, FileVersion::kR2018}) {
        const std::string bytes = saved(*drawing.read().get(), {version});
        EXPECT_EQ(entryOf(bytes, "A1"), withHandles(type + "|" + row.after, bytes));
    }
}

TEST_P(UpgradeEntity, IsTheSameFromBinaryFiles) {
    const EntityRow& row = GetParam();
    OldDrawing drawing;
    drawing.entities = row.before;
    const std::string bytes = saved(*drawing.readBinary().get(), {FileVersion::kR2000});
    std::vector<int> expected, found;
    for (const auto& [code, value] : dxf::split("0 |" + row.after)) expected.push_back(code);
    for (const auto& [code, value] : dxf::split(entryOf(bytes, "A1"))) found.push_back(code);
    EXPECT_EQ(found, expected);
}

// Groups come in the order of the file on the left, in that of the reference on the right.
const EntityRow kEntities[] = {
    {"Line", "0 LINE|5 A1|8 0|62 1|10 1.0|20 2.0|30 3.0|11 4.0|21 5.0|31 6.0|39 0.5|6 DASHED",
     head("8 0|62 1|6 DASHED") + "|100 AcDbLine|39 0.5|10 1.0|20 2.0|30 3.0|11 4.0|21 5.0|31 6.0"},
    {"Line with normal", "0 LINE|5 A1|8 0|210 0.0|220 0.0|230 -1.0|10 1.0|20 2.0|11 4.0|21 5.0",
     head() + "|100 AcDbLine|10 1.0|20 2.0|11 4.0|21 5.0|210 0.0|220 0.0|230 -1.0"},
    {"Elevation of R10", "0 LINE|5 A1|8 0|38 2.5|10 1.0|20 2.0|11 4.0|21 5.0",
     head() + "|100 AcDbLine|10 1.0|20 2.0|11 4.0|21 5.0|38 2.5"},
    {"Paper space", "0 POINT|5 A1|67 1|8 0|10 1.0|20 2.0|30 3.0",
     head("67 1|8 0", "{BLOCK_RECORD *Paper_Space}") + "|100 AcDbPoint|10 1.0|20 2.0|30 3.0"},
    {"No layer", "0 POINT|5 A1|10 1.0|20 2.0|30 3.0", head() + "|100 AcDbPoint|10 1.0|20 2.0|30 3.0"},
    {"Point", "0 POINT|5 A1|8 0|50 45.0|10 1.0|20 2.0|30 3.0|39 1.0",
     head() + "|100 AcDbPoint|10 1.0|20 2.0|30 3.0|39 1.0|50 45.0"},
    {"Circle", "0 CIRCLE|5 A1|8 0|10 1.0|20 2.0|30 3.0|40 4.0|39 1.0",
     head() + "|100 AcDbCircle|39 1.0|10 1.0|20 2.0|30 3.0|40 4.0"},
    {"Arc", "0 ARC|5 A1|8 0|51 90.0|50 0.0|10 1.0|20 2.0|30 3.0|40 4.0|210 0.0|220 0.0|230 1.0",
     head() +
         "|100 AcDbCircle|10 1.0|20 2.0|30 3.0|40 4.0|210 0.0|220 0.0|230 1.0|100 AcDbArc|50 0.0|51 90.0"},
    {"Trace", "0 TRACE|5 A1|8 0|10 1.0|20 1.0|11 2.0|21 2.0|12 3.0|22 3.0|13 4.0|23 4.0|39 1.0",
     head() + "|100 AcDbTrace|10 1.0|20 1.0|11 2.0|21 2.0|12 3.0|22 3.0|13 4.0|23 4.0|39 1.0"},
    {"Solid", "0 SOLID|5 A1|8 0|10 1.0|20 1.0|11 2.0|21 2.0|12 3.0|22 3.0|13 4.0|23 4.0",
     head() + "|100 AcDbTrace|10 1.0|20 1.0|11 2.0|21 2.0|12 3.0|22 3.0|13 4.0|23 4.0"},
    {"3dface",
     "0 3DFACE|5 A1|8 0|70 1|10 1.0|20 1.0|30 1.0|11 2.0|21 2.0|31 2.0|12 3.0|22 3.0|32 3.0|13 4.0|23 4.0|33 "
     "4.0",
     head() + "|100 AcDbFace|10 1.0|20 1.0|30 1.0|11 2.0|21 2.0|31 2.0|12 3.0|22 3.0|32 3.0|13 4.0|23 4.0|33 "
              "4.0|70 1"},
    {"Text",
     "0 TEXT|5 A1|8 0|1 words|73 2|72 1|10 1.0|20 2.0|30 0.0|11 3.0|21 4.0|31 0.0|40 2.5|7 STANDARD|50 "
     "30.0|41 0.8|51 15.0|71 2",
     head() + "|100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.5|1 words|50 30.0|41 0.8|51 15.0|7 STANDARD|71 2|72 1|"
              "11 3.0|21 4.0|31 0.0|100 AcDbText|73 2"},
    {"Attribute definition",
     "0 ATTDEF|5 A1|8 0|3 Tag?|2 TAG|70 1|1 -K1|10 1.0|20 2.0|40 2.5|73 5|74 3|11 0.0|21 0.0",
     head() + "|100 AcDbText|10 1.0|20 2.0|40 2.5|1 -K1|11 0.0|21 0.0|100 AcDbAttributeDefinition|3 Tag?|2 "
              "TAG|70 1|73 5|74 3"},
    {"Shape", "0 SHAPE|5 A1|8 0|2 ARROW|40 1.0|10 1.0|20 2.0|50 90.0|41 0.5|51 10.0|39 1.0",
     head() + "|100 AcDbShape|39 1.0|10 1.0|20 2.0|40 1.0|2 ARROW|50 90.0|41 0.5|51 10.0"},
    {"Insert", "0 INSERT|5 A1|8 0|2 SYM|10 1.0|20 2.0|30 0.0|50 90.0|41 2.0|42 3.0|43 4.0",
     head() + "|100 AcDbBlockReference|2 SYM|10 1.0|20 2.0|30 0.0|41 2.0|42 3.0|43 4.0|50 90.0"},
    {"Insert of one row", "0 INSERT|5 A1|8 0|2 SYM|10 1.0|20 2.0|70 1|71 1",
     head() + "|100 AcDbBlockReference|2 SYM|10 1.0|20 2.0|70 1|71 1"},
    {"Insert of columns", "0 INSERT|5 A1|8 0|2 SYM|10 1.0|20 2.0|44 5.0|45 6.0|70 4|71 1",
     head() + "|100 AcDbMInsertBlock|2 SYM|10 1.0|20 2.0|70 4|71 1|44 5.0|45 6.0"},
    {"Insert of rows", "0 INSERT|5 A1|8 0|2 SYM|10 1.0|20 2.0|71 3|45 6.0",
     head() + "|100 AcDbMInsertBlock|2 SYM|10 1.0|20 2.0|71 3|45 6.0"},
    {"Polyline", "0 POLYLINE|5 A1|8 0|66 1|70 1|40 0.5|41 0.5|10 0.0|20 0.0|30 2.0|0 SEQEND|8 0",
     head() + "|100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 2.0|70 1|40 0.5|41 0.5"},
    {"Polyline in space", "0 POLYLINE|5 A1|8 0|66 1|70 9|10 0.0|20 0.0|30 0.0|0 SEQEND|8 0",
     head() + "|100 AcDb3dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 9"},
    {"Mesh", "0 POLYLINE|5 A1|8 0|66 1|70 16|71 3|72 2|10 0.0|20 0.0|30 0.0|0 SEQEND|8 0",
     head() + "|100 AcDbPolygonMesh|66 1|10 0.0|20 0.0|30 0.0|70 16|71 3|72 2"},
    {"Polyface", "0 POLYLINE|5 A1|8 0|66 1|70 64|71 3|72 1|10 0.0|20 0.0|30 0.0|0 SEQEND|8 0",
     head() + "|100 AcDbPolyFaceMesh|66 1|10 0.0|20 0.0|30 0.0|70 64|71 3|72 1"},
    {"Viewport", "0 VIEWPORT|5 A1|67 1|8 0|10 5.0|20 4.0|30 0.0|40 9.0|41 6.0|68 2|69 2",
     head("67 1|8 0", "{BLOCK_RECORD *Paper_Space}") +
         "|100 AcDbViewport|10 5.0|20 4.0|30 0.0|40 9.0|41 6.0|68 2|69 2"},
    {"Unknown", "0 3DLINE|5 A1|62 3|8 0|10 1.0|20 2.0|30 3.0|11 4.0|21 5.0|31 6.0|62 4",
     head("62 3|8 0") + "|10 1.0|20 2.0|30 3.0|11 4.0|21 5.0|31 6.0|62 4"},
    {"Extended data", "0 POINT|5 A1|8 0|10 1.0|20 2.0|30 3.0|1001 APP|1000 more|1070 7",
     head() + "|100 AcDbPoint|10 1.0|20 2.0|30 3.0|1001 APP|1000 more|1070 7"}};

INSTANTIATE_TEST_SUITE_P(Kinds, UpgradeEntity, testing::ValuesIn(kEntities),
                         [](const auto& row) { return testName(row.param.name); });

/// Dimensions by group 70: what stands behind the part that all have.
struct DimensionRow {
    int type;
    const char* own;   ///< groups besides 2, 10, 11, 70
    const char* after; ///< what becomes of them
};

class UpgradeDimension : public testing::TestWithParam<DimensionRow> {};

TEST_P(UpgradeDimension, HasThePartOfItsType) {
    const DimensionRow& row = GetParam();
    OldDrawing drawing;
    for (const int further : {0, 32, 64, 128}) { // bits that don't tell the type
        const std::string type = std::to_string(row.type + further);
        drawing.entities =
            "0 DIMENSION|5 A1|8 0|3 STANDARD|2 *D1|10 1.0|20 2.0|30 0.0|11 3.0|21 4.0|31 0.0|70 " + type +
            "|1 <>|" + row.own;
        const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
        EXPECT_EQ(entryOf(bytes, "A1"),
                  withHandles("0 DIMENSION|" + head() +
                                  "|100 AcDbDimension|2 *D1|10 1.0|20 2.0|30 0.0|11 3.0|21 4.0|31 0.0|70 " +
                                  type + "|1 <>|3 STANDARD|" + row.after,
                              bytes));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Types, UpgradeDimension,
    testing::Values(
        DimensionRow{0, "13 1.0|23 1.0|14 2.0|24 2.0|50 30.0|52 5.0",
                     "100 AcDbAlignedDimension|13 1.0|23 1.0|14 2.0|24 2.0|50 30.0|52 5.0|"
                     "100 AcDbRotatedDimension"},
        DimensionRow{1, "13 1.0|23 1.0|14 2.0|24 2.0",
                     "100 AcDbAlignedDimension|13 1.0|23 1.0|14 2.0|24 2.0"},
        DimensionRow{2, "16 4.0|26 4.0|13 1.0|23 1.0|14 2.0|24 2.0|15 3.0|25 3.0",
                     "100 AcDb2LineAngularDimension|13 1.0|23 1.0|14 2.0|24 2.0|15 3.0|25 3.0|16 4.0|26 4.0"},
        DimensionRow{3, "40 0.5|15 3.0|25 3.0", "100 AcDbDiametricDimension|15 3.0|25 3.0|40 0.5"},
        DimensionRow{4, "40 0.5|15 3.0|25 3.0", "100 AcDbRadialDimension|15 3.0|25 3.0|40 0.5"},
        DimensionRow{5, "13 1.0|23 1.0|14 2.0|24 2.0|15 3.0|25 3.0",
                     "100 AcDb3PointAngularDimension|13 1.0|23 1.0|14 2.0|24 2.0|15 3.0|25 3.0"},
        DimensionRow{6, "13 1.0|23 1.0|14 2.0|24 2.0",
                     "100 AcDbOrdinateDimension|13 1.0|23 1.0|14 2.0|24 2.0"}),
    [](const auto& row) { return "Type" + std::to_string(row.param.type); });

TEST(Upgrade, DimensionsWithoutATypeAreRotatedOnes) {
    OldDrawing drawing;
    drawing.entities = "0 DIMENSION|5 A1|8 0|2 *D1|10 1.0|20 2.0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_TRUE(contains(entryOf(bytes, "A1"), "|100 AcDbRotatedDimension"));
}

/// Vertices by their own flags and those of their polyline.
struct VertexRow {
    int polyline, vertex;
    const char* after;
};

class UpgradeVertex : public testing::TestWithParam<VertexRow> {};

TEST_P(UpgradeVertex, IsOfItsSort) {
    const VertexRow& row = GetParam();
    OldDrawing drawing;
    drawing.entities = "0 POLYLINE|5 B1|8 0|66 1|70 " + std::to_string(row.polyline) +
                       "|0 VERTEX|5 A1|8 0|70 " + std::to_string(row.vertex) +
                       "|10 1.0|20 2.0|30 3.0|0 SEQEND|5 B2|8 0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_EQ(entryOf(bytes, "A1"), "0 VERTEX|" + head("8 0", "B1") + "|" + row.after +
                                        "|10 1.0|20 2.0|30 3.0|70 " + std::to_string(row.vertex));
    EXPECT_EQ(entryOf(bytes, "B2"), "0 SEQEND|5 B2|330 B1|100 AcDbEntity|8 0");
}

INSTANTIATE_TEST_SUITE_P(Sorts, UpgradeVertex,
                         testing::Values(VertexRow{0, 0, "100 AcDbVertex|100 AcDb2dVertex"},
                                         VertexRow{4, 8, "100 AcDbVertex|100 AcDb2dVertex"},
                                         VertexRow{8, 32, "100 AcDbVertex|100 AcDb3dPolylineVertex"},
                                         VertexRow{8, 0, "100 AcDbVertex|100 AcDb3dPolylineVertex"},
                                         VertexRow{16, 64, "100 AcDbVertex|100 AcDbPolygonMeshVertex"},
                                         VertexRow{16, 0, "100 AcDbVertex|100 AcDbPolygonMeshVertex"},
                                         VertexRow{64, 192, "100 AcDbVertex|100 AcDbPolyFaceMeshVertex"},
                                         VertexRow{64, 0, "100 AcDbVertex|100 AcDbPolyFaceMeshVertex"},
                                         VertexRow{64, 128, "100 AcDbFaceRecord"}),
                         [](const auto& row) {
                             return "Polyline" + std::to_string(row.param.polyline) + "Vertex" +
                                    std::to_string(row.param.vertex);
                         });

TEST(Upgrade, FacesKeepTheNumbersOfTheirCorners) {
    OldDrawing drawing;
    drawing.entities =
        "0 POLYLINE|5 B1|8 0|66 1|70 64|0 VERTEX|5 A1|8 0|10 0.0|20 0.0|30 0.0|70 128|71 1|72 -2|73 3|0 "
        "SEQEND|5 B2|8 0";
    EXPECT_EQ(entryOf(saved(*drawing.read().get()), "A1"),
              "0 VERTEX|" + head("8 0", "B1") +
                  "|100 AcDbFaceRecord|10 0.0|20 0.0|30 0.0|70 128|71 1|72 -2|73 3");
}

TEST(Upgrade, AttributesBelongToTheirReference) {
    OldDrawing drawing;
    drawing.blocks = "0 BLOCK|8 0|2 SYM|70 0|10 0.0|20 0.0|30 0.0|0 ENDBLK|8 0";
    drawing.entities =
        "0 INSERT|5 B1|8 0|66 1|2 SYM|10 0.0|20 0.0|0 ATTRIB|5 A1|8 0|2 TAG|70 1|1 -K1|10 1.0|20 2.0|40 "
        "2.5|73 4|74 2|11 3.0|21 4.0|0 SEQEND|5 B2|8 0";
    const std::string bytes = saved(*drawing.read().get());
    EXPECT_EQ(
        entryOf(bytes, "A1"),
        "0 ATTRIB|" + head("8 0", "B1") +
            "|100 AcDbText|10 1.0|20 2.0|40 2.5|1 -K1|11 3.0|21 4.0|100 AcDbAttribute|2 TAG|70 1|73 4|74 2");
    EXPECT_EQ(entryOf(bytes, "B2"), "0 SEQEND|5 B2|330 B1|100 AcDbEntity|8 0");
}

TEST(Upgrade, GivesHandlesToEntriesThatHaveNone) {
    OldDrawing drawing;
    drawing.entities =
        "0 LINE|8 0|10 1.0|20 2.0|11 3.0|21 4.0|0 POLYLINE|8 0|66 1|0 VERTEX|8 0|10 1.0|20 2.0|0 SEQEND|8 0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    const std::string polyline = firstOf(bytes, "POLYLINE");
    for (const char* const type : {"LINE", "POLYLINE", "VERTEX", "SEQEND"})
        EXPECT_NE(valueIn(firstOf(bytes, type), 5), "");
    EXPECT_EQ(valueIn(firstOf(bytes, "VERTEX"), 330), valueIn(polyline, 5));
    EXPECT_EQ(valueIn(firstOf(bytes, "SEQEND"), 330), valueIn(polyline, 5));
    EXPECT_TRUE(readBytes(bytes)->report().repairs().empty());
}

TEST(Upgrade, CommentsComeBehindTheFields) {
    OldDrawing drawing;
    drawing.entities = "0 POINT|5 A1|999 a remark|8 0|10 1.0|20 2.0|30 3.0|1001 APP|1000 x";
    const std::string bytes = saved(*drawing.read().get());
    EXPECT_EQ(
        entryOf(bytes, "A1"),
        withHandles("0 POINT|" + head() + "|100 AcDbPoint|10 1.0|20 2.0|30 3.0|999 a remark|1001 APP|1000 x",
                    bytes));
}

// --- blocks
// -----------------------------------------------------------------------------------------------------------

TEST(Upgrade, BlocksHaveRecords) {
    OldDrawing drawing;
    drawing.blocks =
        "0 BLOCK|8 0|70 2|2 SYM|10 1.0|20 2.0|30 3.0|0 POINT|5 A1|8 0|10 0.0|20 0.0|30 0.0|0 ENDBLK|5 B2|8 0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    const std::string record = handleOfRecord(bytes, "BLOCK_RECORD", "SYM");
    const std::string block = firstOf(bytes, "BLOCK", "|2 SYM|");
    EXPECT_EQ(block, "0 BLOCK|5 " + valueIn(block, 5) + "|330 " + record +
                         "|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 SYM|70 2|10 1.0|20 2.0|30 3.0");
    EXPECT_EQ(entryOf(bytes, "A1"), "0 POINT|" + head("8 0", record) + "|100 AcDbPoint|10 0.0|20 0.0|30 0.0");
    EXPECT_EQ(entryOf(bytes, "B2"), "0 ENDBLK|5 B2|330 " + record + "|100 AcDbEntity|8 0|100 AcDbBlockEnd");
    const std::string entry = firstOf(bytes, "BLOCK_RECORD", "|2 SYM|");
    EXPECT_EQ(valueIn(entry, 330), handleOfRecord(bytes, "TABLE", "BLOCK_RECORD"));
    EXPECT_TRUE(contains(entry, "|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 SYM"));
}

TEST(Upgrade, SpellsTheBlocksOfLayoutsAsTheirRecords) {
    OldDrawing drawing;
    drawing.blocks =
        "0 BLOCK|8 0|2 $MODEL_SPACE|70 0|10 0.0|20 0.0|30 0.0|3 $MODEL_SPACE|1 |0 ENDBLK|8 0|0 BLOCK|67 1|8 "
        "0|2 $PAPER_SPACE|70 0|10 0.0|20 0.0|30 0.0|3 $PAPER_SPACE|1 |0 ENDBLK|67 1|8 0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_FALSE(contains(bytes, "$MODEL_SPACE"));
    for (const char* const name : {"*MODEL_SPACE", "*PAPER_SPACE"}) {
        const std::string block = firstOf(bytes, "BLOCK", std::string("|2 ") + name + "|");
        EXPECT_EQ(valueIn(block, 3), name);
        EXPECT_EQ(valueIn(block, 330), handleOfRecord(bytes, "BLOCK_RECORD", name));
    }
}

TEST(Upgrade, OtherBlocksWithADollarKeepTheirNames) {
    OldDrawing drawing;
    drawing.blocks = "0 BLOCK|8 0|2 $SYM|70 0|10 0.0|20 0.0|30 0.0|0 ENDBLK|8 0";
    EXPECT_NE(firstOf(saved(*drawing.read().get()), "BLOCK", "|2 $SYM|"), "");
}

// --- tables
// -----------------------------------------------------------------------------------------------------------

/// A record of R12 in its table, and the same one of R2000 from behind the owner.
struct RecordRow {
    const char* type;
    std::string before;
    std::string after;
};

class UpgradeRecord : public testing::TestWithParam<RecordRow> {};

TEST_P(UpgradeRecord, GetsHandleOwnerAndMarks) {
    const RecordRow& row = GetParam();
    OldDrawing drawing;
    drawing.tables =
        std::string("0 TABLE|2 ") + row.type + "|70 1|0 " + row.type + "|" + row.before + "|0 ENDTAB";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    const std::string name = valueIn(row.before, 2);
    const std::string table = handleOfRecord(bytes, "TABLE", row.type);
    const std::string handle = handleOfRecord(bytes, row.type, name);
    const std::string code = std::string(row.type) == "DIMSTYLE" ? "105 " : "5 ";
    const std::string entry = firstOf(bytes, row.type, "|2 " + name + "|");
    EXPECT_EQ(entry, withHandles(std::string("0 ") + row.type + "|" + code + handle + "|330 " + table +
                                     "|100 AcDbSymbolTableRecord|" + row.after,
                                 bytes));
    const std::string head = firstOf(bytes, "TABLE", std::string("|5 ") + table + "|");
    EXPECT_EQ(head.substr(0, head.find("|70 ")),
              std::string("0 TABLE|2 ") + row.type + "|5 " + table + "|330 0|100 AcDbSymbolTable");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, UpgradeRecord,
    testing::Values(
        RecordRow{"VPORT", "2 *ACTIVE|70 0|10 0.0|20 0.0|12 1.0|22 2.0|40 10.0|41 1.5|68 1|69 1",
                  "100 AcDbViewportTableRecord|2 *ACTIVE|70 0|10 0.0|20 0.0|12 1.0|22 2.0|40 10.0|41 1.5|68 "
                  "1|69 1"},
        RecordRow{
            "LTYPE", "2 DASHED|70 0|3 __ __|72 65|73 2|40 0.75|49 0.5|49 -0.25",
            "100 AcDbLinetypeTableRecord|2 DASHED|70 0|3 __ __|72 65|73 2|40 0.75|49 0.5|74 0|49 -0.25|74 0"},
        RecordRow{"LAYER", "2 PAG1|70 1|62 -3|6 CONTINUOUS",
                  "100 AcDbLayerTableRecord|2 PAG1|70 1|62 -3|6 CONTINUOUS|370 -3|390 {ACDBPLACEHOLDER }"},
        RecordRow{"STYLE", "2 ROMANS|70 0|40 0.0|41 1.0|50 0.0|71 0|42 2.5|3 romans|4 ",
                  "100 AcDbTextStyleTableRecord|2 ROMANS|70 0|40 0.0|41 1.0|50 0.0|71 0|42 2.5|3 romans|4 "},
        RecordRow{"VIEW", "2 ALL|70 0|40 10.0|10 1.0|20 2.0|41 15.0|11 0.0|21 0.0|31 1.0",
                  "100 AcDbViewTableRecord|2 ALL|70 0|40 10.0|10 1.0|20 2.0|41 15.0|11 0.0|21 0.0|31 1.0"},
        RecordRow{"UCS", "2 FRONT|70 0|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0",
                  "100 AcDbUCSTableRecord|2 FRONT|70 0|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0"},
        RecordRow{"APPID", "2 APP|70 0", "100 AcDbRegAppTableRecord|2 APP|70 0"},
        RecordRow{
            "DIMSTYLE", "2 PLAIN|70 0|3 <>mm|4 |5 |6 |7 |40 1.0|140 2.5|170 0",
            "100 AcDbDimStyleTableRecord|2 PLAIN|70 0|3 <>mm|4 |40 1.0|140 2.5|170 0|340 {STYLE Standard}"}),
    [](const auto& row) { return std::string(row.param.type); });

TEST(Upgrade, NamesArrowBlocksByTheirHandles) {
    OldDrawing drawing;
    drawing.tables =
        "0 TABLE|2 DIMSTYLE|70 1|0 DIMSTYLE|2 ARROWS|70 0|5 DOT|6 tick|7 NOWHERE|40 1.0|0 ENDTAB";
    drawing.blocks =
        "0 BLOCK|8 0|2 DOT|70 0|10 0.0|20 0.0|30 0.0|0 ENDBLK|8 0|0 BLOCK|8 0|2 _TICK|70 0|10 0.0|20 0.0|30 "
        "0.0|0 ENDBLK|8 0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    const std::string entry = firstOf(bytes, "DIMSTYLE", "|2 ARROWS|");
    EXPECT_EQ(entry.substr(entry.find("|2 ")),
              withHandles("|2 ARROWS|70 0|7 NOWHERE|40 1.0|340 {STYLE Standard}|342 {BLOCK_RECORD DOT}|343 "
                          "{BLOCK_RECORD _TICK}",
                          bytes));
}

TEST(Upgrade, LayersKnowLineTypesThatTheFileLeavesOut) {
    OldDrawing drawing;
    drawing.tables = "0 TABLE|2 LAYER|70 1|0 LAYER|2 PAG1|70 0|62 7|6 CONTINUOUS|0 ENDTAB";
    const auto db = drawing.read();
    const OdSmartPtr<OdDbLayerTableRecord> layer(layerTable(*db.get())->getAt(od("PAG1"), OdDb::kForRead));
    EXPECT_EQ(layer->linetypeObjectId(), db->getLinetypeContinuousId());
}

TEST(Upgrade, TheTableOfDimensionStylesHasAPartOfItsOwn) {
    OldDrawing drawing;
    drawing.tables = "0 TABLE|2 DIMSTYLE|70 1|0 DIMSTYLE|2 A|70 0|0 ENDTAB";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_TRUE(contains(firstOf(bytes, "TABLE", "|2 DIMSTYLE|"),
                         "|100 AcDbSymbolTable|70 1|100 AcDbDimStyleTable|71 0"));
}

// --- viewports
// -----------------------------------------------------------------------------------------------------------

const std::string kViewData =
    "1001 ACAD|1000 MVIEW|1002 {|1070 16|1010 1.0|1020 2.0|1030 3.0|1010 0.0|1020 0.0|1030 "
    "1.0|1040 30.0|1040 9.5|1040 6.0|1040 4.5|1040 50.0|1040 0.5|1040 0.25|1070 1|1070 "
    "500|1070 1|1070 3|1070 1|1070 1|1070 1|1070 2|1040 15.0|1040 0.1|1040 0.2|1040 "
    "0.3|1040 0.4|1040 0.6|1040 0.7|1070 1|1002 {|1003 PAG1|1003 nowhere|1002 }|1002 }";

TEST(Upgrade, ViewportsHaveTheirViewInGroups) {
    OldDrawing drawing;
    drawing.tables = "0 TABLE|2 LAYER|70 1|0 LAYER|2 PAG1|70 0|62 7|6 CONTINUOUS|0 ENDTAB";
    drawing.entities = "0 VIEWPORT|5 A1|67 1|8 0|10 5.0|20 4.0|30 0.0|40 9.0|41 6.0|68 2|69 2|" + kViewData;
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    const std::string entry = entryOf(bytes, "A1");
    constexpr int kBits = 32768 | 1 | 32 | 64 | 128 | 256 | 512 | 1024 | 2 << 12 | 2048;
    EXPECT_EQ(
        entry.substr(entry.find("|69 2")),
        withHandles(
            "|69 2|12 6.0|22 4.5|13 0.1|23 0.2|14 0.3|24 0.4|15 0.6|25 0.7|16 0.0|26 0.0|36 1.0|17 1.0|27 "
            "2.0|37 3.0|42 50.0|43 0.5|44 0.25|45 9.5|50 15.0|51 30.0|72 500|331 {LAYER PAG1}|90 " +
                std::to_string(kBits) + "|1 |281 0|",
            bytes) +
            kViewData);
}

TEST(Upgrade, ViewsThatAreCutShortStayWhatTheyAre) {
    OldDrawing drawing;
    drawing.entities = "0 VIEWPORT|5 A1|67 1|8 0|10 5.0|20 4.0|30 0.0|40 9.0|41 6.0|68 2|69 2|" +
                       kViewData.substr(0, kViewData.find("|1070 500"));
    const std::string entry = entryOf(saved(*drawing.read().get()), "A1");
    EXPECT_TRUE(contains(entry, "|69 2|1001 ACAD"));
}

// --- R13 and R14
// -----------------------------------------------------------------------------------------------------------

/// An R14 drawing as its programs write it: marks, hardly an owner.
OldDrawing r14() {
    OldDrawing drawing;
    drawing.version = "AC1014";
    drawing.tables =
        "0 TABLE|2 LAYER|5 2|100 AcDbSymbolTable|70 1|0 LAYER|5 10|100 AcDbSymbolTableRecord|100 "
        "AcDbLayerTableRecord|2 0|70 0|62 7|6 CONTINUOUS|0 ENDTAB|0 TABLE|2 BLOCK_RECORD|5 1|100 "
        "AcDbSymbolTable|70 "
        "2|0 BLOCK_RECORD|5 1F|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 *MODEL_SPACE|0 "
        "BLOCK_RECORD|5 "
        "1B|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 *PAPER_SPACE|0 ENDTAB";
    drawing.blocks =
        "0 BLOCK|5 20|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 *MODEL_SPACE|70 0|10 0.0|20 0.0|30 0.0|3 "
        "*MODEL_SPACE|1 |0 ENDBLK|5 21|100 AcDbEntity|8 0|100 AcDbBlockEnd";
    return drawing;
}

TEST(Upgrade, NamesTheOwnersOfR14) {
    OldDrawing drawing = r14();
    drawing.entities =
        "0 LINE|5 A1|100 AcDbEntity|8 0|62 3|100 AcDbLine|11 1.0|21 2.0|31 0.0|10 3.0|20 4.0|30 0.0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_EQ(entryOf(bytes, "A1"),
              "0 LINE|5 A1|330 1F|100 AcDbEntity|8 0|62 3|100 AcDbLine|11 1.0|21 2.0|31 0.0|10 3.0|20 "
              "4.0|30 0.0");
    EXPECT_EQ(entryOf(bytes, "20").substr(0, 30), "0 BLOCK|5 20|330 1F|100 AcDbEn");
    EXPECT_EQ(entryOf(bytes, "21"), "0 ENDBLK|5 21|330 1F|100 AcDbEntity|8 0|100 AcDbBlockEnd");
    EXPECT_EQ(entryOf(bytes, "2"), "0 TABLE|2 LAYER|5 2|330 0|100 AcDbSymbolTable|70 1");
    EXPECT_TRUE(contains(entryOf(bytes, "10"),
                         "0 LAYER|5 10|330 2|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 0"));
}

TEST(Upgrade, MarksEntriesOfR14ThatLackMarks) {
    OldDrawing drawing = r14();
    drawing.entities =
        "0 TEXT|5 A1|8 0|1 words|62 3|10 1.0|20 2.0|30 0.0|40 3.0|0 LWPOLYLINE|5 A2|8 0|90 2|70 0|10 1.0|20 "
        "1.0|42 0.5|10 2.0|20 2.0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_EQ(entryOf(bytes, "A1"),
              "0 TEXT|5 A1|330 1F|100 AcDbEntity|8 0|62 3|100 AcDbText|10 1.0|20 2.0|30 0.0|40 3.0|1 "
              "words|100 AcDbText");
    EXPECT_EQ(entryOf(bytes, "A2"),
              "0 LWPOLYLINE|5 A2|330 1F|100 AcDbEntity|8 0|100 AcDbPolyline|90 2|70 0|10 1.0|20 1.0|42 "
              "0.5|10 2.0|20 2.0");
}

TEST(Upgrade, KeepsReactorsInFrontOfTheOwner) {
    OldDrawing drawing = r14();
    drawing.entities =
        "0 POINT|5 A1|102 {ACAD_REACTORS|330 C|102 }|100 AcDbEntity|8 0|100 AcDbPoint|10 1.0|20 2.0|30 0.0";
    EXPECT_EQ(entryOf(saved(*drawing.read().get()), "A1"),
              "0 POINT|5 A1|102 {ACAD_REACTORS|330 C|102 }|330 1F|100 AcDbEntity|8 0|100 AcDbPoint|10 1.0|20 "
              "2.0|30 0.0");
}

TEST(Upgrade, ObjectsBelongToTheDictionaryThatListsThem) {
    OldDrawing drawing = r14();
    drawing.entities = "0 POINT|5 A1|102 {ACAD_XDICTIONARY|360 D4|102 }|100 AcDbEntity|8 0|100 AcDbPoint|10 "
                       "1.0|20 2.0|30 0.0";
    drawing.objects =
        "0 DICTIONARY|5 C|100 AcDbDictionary|3 MINE|350 D1|0 DICTIONARY|5 D1|102 {ACAD_REACTORS|330 C|102 "
        "}|100 AcDbDictionary|3 X|350 D2|0 XRECORD|5 D2|100 AcDbXrecord|1 text|0 THING|5 D3|102 "
        "{ACAD_REACTORS|330 D1|102 }|100 AcDbThing|1 a|0 DICTIONARY|5 D4|100 AcDbDictionary|0 THING|5 D5|100 "
        "AcDbThing|1 nobody's";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_EQ(entryOf(bytes, "C").substr(0, 29), "0 DICTIONARY|5 C|330 0|100 Ac");
    EXPECT_EQ(entryOf(bytes, "D1"),
              "0 DICTIONARY|5 D1|102 {ACAD_REACTORS|330 C|102 }|330 C|100 AcDbDictionary|3 X|350 D2");
    EXPECT_EQ(entryOf(bytes, "D2"), "0 XRECORD|5 D2|330 D1|100 AcDbXrecord|1 text");
    EXPECT_EQ(entryOf(bytes, "D3"), "0 THING|5 D3|102 {ACAD_REACTORS|330 D1|102 }|330 D1|100 AcDbThing|1 a");
    EXPECT_EQ(entryOf(bytes, "D4"), "0 DICTIONARY|5 D4|330 A1|100 AcDbDictionary");
    EXPECT_EQ(entryOf(bytes, "D5"), "0 THING|5 D5|100 AcDbThing|1 nobody's");
}

TEST(Upgrade, OwnersThatR13NamesStay) {
    OldDrawing drawing = r14();
    drawing.version = "AC1012";
    drawing.objects =
        "0 DICTIONARY|5 C|330 0|100 AcDbDictionary|3 MINE|350 D1|0 DICTIONARY|5 D1|330 C|100 AcDbDictionary";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_EQ(entryOf(bytes, "D1"), "0 DICTIONARY|5 D1|330 C|100 AcDbDictionary");
}

TEST(Upgrade, ChangesOfTheDatabaseComeOnTop) {
    OldDrawing drawing;
    drawing.entities = "0 LINE|5 A1|8 0|10 1.0|20 2.0|30 3.0|11 4.0|21 5.0|31 6.0";
    const auto db = drawing.read();
    const auto line = byHandle<OdDbLine>(*db.get(), "A1", OdDb::kForWrite);
    line->setColor(OdCmColor::fromIndex(5));
    line->setEndPoint({7, 5, 6});
    const std::string bytes = saved(*db.get(), {FileVersion::kR2000});
    EXPECT_EQ(entryOf(bytes, "A1"), withHandles("0 LINE|" + head("8 0|62 5") +
                                                    "|100 AcDbLine|10 1.0|20 2.0|30 3.0|11 7.0|21 5.0|31 6.0",
                                                bytes));
}

TEST(Upgrade, WhatIsReadBackIsTheSame) {
    OldDrawing drawing;
    drawing.blocks = "0 BLOCK|8 0|2 SYM|70 2|10 1.0|20 2.0|30 0.0|0 ATTDEF|5 B9|8 0|1 x|3 Tag?|2 TAG|70 0|10 "
                     "0.0|20 0.0|40 "
                     "1.0|0 ENDBLK|8 0";
    drawing.entities =
        "0 INSERT|5 B1|8 PAG1|66 1|2 SYM|10 0.0|20 0.0|0 ATTRIB|5 A1|8 0|2 TAG|70 1|1 -K1|10 1.0|20 2.0|40 "
        "2.5|74 2|11 3.0|21 4.0|1001 APP|1000 x|0 SEQEND|5 B2|8 0|0 TEXT|5 B3|8 0|1 t|10 0.0|20 0.0|40 1.0";
    const auto db = drawing.read();
    inAllFiles(*db.get(), [&db](OdDbDatabase& read) {
        for (const char* const handle : {"B1", "A1", "B3", "B9"})
            EXPECT_EQ(describe(*db.get(), handle), describe(read, handle));
        EXPECT_TRUE(read.report().repairs().empty());
    });
}

TEST(Upgrade, TheSecondFileEqualsTheFirst) {
    OldDrawing drawing = r14();
    drawing.entities = "0 POINT|5 A1|8 PAG1|10 1.0|20 2.0|30 0.0";
    for (const char* const version : {"AC1009", "AC1014"}) {
        drawing.version = version;
        for (const FileVersion target : kVersions)
            for (const bool binary : {false, true}) {
                const std::string first = saved(*drawing.read().get(), {target, binary});
                EXPECT_EQ(saved(*readBytes(first).get(), {target, binary}), first);
            }
    }
}

} // namespace
} // namespace drawing_test
