// SPDX-License-Identifier: MIT
// Moving entities of kinds that aren't read beyond the simple ones: dimensions with their pictures, leaders
// with text, tables, pictures, helices; and the boxes of unread entities.
#include "clone_support.h"
#include "entry_numbers.h"

#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

namespace {

using drawing_test::numbers;

std::string numbers(const std::string& entry, std::initializer_list<int> codes) {
    std::string out;
    for (const int code : codes) out += numbers(entry, code);
    return out;
}

/// The box as "x1 y1 x2 y2", to four digits; "none" for an entity without one.
std::string boxOf(const OdDbEntity& entity) {
    OdGeExtents3d box;
    if (entity.getGeomExtents(box) != eOk) return "none";
    std::string out;
    for (const double part : {box.minPoint().x, box.minPoint().y, box.maxPoint().x, box.maxPoint().y}) {
        char text[32];
        std::snprintf(text, sizeof text, "%s%g", out.empty() ? "" : " ", std::round(part * 1e4) / 1e4 + 0.0);
        out += text;
    }
    return out;
}

std::string entity(const std::string& kind, const std::string& groups, const std::string& handle = "100",
                   const std::string& owner = "1F") {
    return "0 " + kind + "|5 " + handle + "|330 " + owner + "|100 AcDbEntity|8 0|" + groups;
}

/// A drawing with one unread entity in model space.
struct OneTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db;

    void read(const std::string& kind, const std::string& groups, bool binary = false) {
        dxf::Parts parts;
        parts.entities = entity(kind, groups);
        db = readBytes(binary ? dxf::binary(parts.groups()) : dxf::text(parts.groups()));
        db->setUndoRecording(true);
    }
    OdSmartPtr<OdDbEntity> it(OdDb::OpenMode mode = OdDb::kForRead) {
        return byHandle<OdDbEntity>(*db, "100", mode);
    }
    std::string entry() { return entryOf(*db, it()->objectId()); }
    std::string moved(const OdGeMatrix3d& matrix) {
        EXPECT_EQ(it(OdDb::kForWrite)->transformBy(matrix), eOk);
        return entry();
    }
    /// Moves, takes it back, repeats it.
    std::string checked(const OdGeMatrix3d& matrix) {
        const std::string before = entry();
        const std::string after = moved(matrix);
        EXPECT_TRUE(db->undo());
        EXPECT_EQ(entry(), before);
        EXPECT_TRUE(db->redo());
        EXPECT_EQ(entry(), after);
        return after;
    }
};

const OdGeMatrix3d kMove = OdGeMatrix3d::translation({100, 200, 0});
const OdGeMatrix3d kAll = OdGeMatrix3d::translation({100, 200, 0}) * OdGeMatrix3d::rotationZ(pi / 2) *
                          OdGeMatrix3d::scaling({2, 2, 2});

} // namespace

// --- dimensions
// -----------------------------------------------------------------------------------------------------

namespace {

const char* const kRotated =
    "100 AcDbDimension|2 *D1|10 5.0|20 2.0|30 0.0|11 2.0|21 2.0|31 0.0|70 32|42 5.0|3 "
    "Standard|100 AcDbAlignedDimension|13 0.0|23 0.0|33 0.0|14 5.0|24 0.0|34 0.0|100 "
    "AcDbRotatedDimension";

/// Two dimensions that name the same picture, a third with one of its own.
struct DimensionTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db;

    void read(bool shared, const std::string& groups = kRotated) {
        dxf::Parts parts;
        parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "*D1");
        parts.blocks = dxf::Parts::block(
            "*D1", "31", "30",
            entity("LINE", "100 AcDbLine|10 0.0|20 2.0|30 0.0|11 5.0|21 2.0|31 0.0", "32", "30") + "|" +
                entity("MTEXT", "100 AcDbMText|10 2.0|20 2.0|30 0.0|40 0.5|41 0.0|71 5|1 5.0", "33", "30"));
        parts.entities = entity("DIMENSION", groups);
        if (shared) parts.entities += "|" + entity("DIMENSION", groups, "101");
        db = readGroups(parts.groups());
        db->setUndoRecording(true);
    }
    OdSmartPtr<OdDbEntity> dimension(const char* handle = "100", OdDb::OpenMode mode = OdDb::kForRead) {
        return byHandle<OdDbEntity>(*db, handle, mode);
    }
    std::string picture(const char* handle = "100") {
        for (const auto& [code, value] : dxf::split(entryOf(*db, dimension(handle)->objectId())))
            if (code == 2) return value;
        return {};
    }
    /// Where the line of a dimension's picture runs.
    std::string line(const char* handle = "100") {
        const auto block = open<OdDbBlockTableRecord>(blockTable(*db)->getAt(od(picture(handle))));
        const OdSmartPtr<OdDbLine> line(block->newIterator()->entity());
        char text[64];
        std::snprintf(text, sizeof text, "%g,%g-%g,%g", line->startPoint().x, line->startPoint().y,
                      line->endPoint().x, line->endPoint().y);
        return text;
    }
};

} // namespace

TEST_F(DimensionTest, MovesItsPointsAndItsPicture) {
    read(false);
    const std::string before = written(*db);
    ASSERT_EQ(dimension("100", OdDb::kForWrite)->transformBy(kMove), eOk);
    const std::string entry = entryOf(*db, dimension()->objectId());
    EXPECT_EQ(numbers(entry, {10, 20, 11, 21, 13, 23, 14, 24}), "105 202 102 202 100 200 105 200 ") << entry;
    EXPECT_EQ(numbers(entry, 42), "5 ");
    EXPECT_EQ(numbers(entry, 50), "") << "not turned";
    EXPECT_EQ(picture(), "*D1");
    EXPECT_EQ(line(), "100,202-105,202");
    EXPECT_EQ(boxOf(*dimension().get()), "100 201.75 105 202.25") << "that of the picture";
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(written(*db), before) << "the picture comes back in the same step";
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(line(), "100,202-105,202");
}

TEST_F(DimensionTest, TurnsAndScales) {
    read(false);
    ASSERT_EQ(dimension("100", OdDb::kForWrite)
                  ->transformBy(OdGeMatrix3d::rotationZ(pi / 2) * OdGeMatrix3d::scaling({2, 2, 2})),
              eOk);
    const std::string entry = entryOf(*db, dimension()->objectId());
    EXPECT_EQ(numbers(entry, {10, 20, 14, 24, 42, 50}), "-4 10 0 10 10 90 ") << entry;
    EXPECT_EQ(dimension("100", OdDb::kForWrite)->transformBy(OdGeMatrix3d::scaling({2, 1, 1})),
              eNotApplicable);
    EXPECT_EQ(entryOf(*db, dimension()->objectId()), entry) << "nothing moved, the picture neither";
}

TEST_F(DimensionTest, OfAnAngleKeepsItsMeasureAndTheHorizontalTurnsBack) {
    read(false,
         "100 AcDbDimension|2 *D1|10 5.0|20 2.0|30 0.0|11 2.0|21 2.0|31 0.0|70 34|42 1.5|51 10.0|53 20.0|3 "
         "Standard|100 AcDb2LineAngularDimension|13 0.0|23 0.0|33 0.0|14 5.0|24 0.0|34 0.0|15 1.0|25 0.0|35 "
         "0.0|16 3.0|26 0.0|36 0.0");
    ASSERT_EQ(dimension("100", OdDb::kForWrite)
                  ->transformBy(OdGeMatrix3d::rotationZ(pi / 6) * OdGeMatrix3d::scaling({2, 2, 2})),
              eOk);
    const std::string entry = entryOf(*db, dimension()->objectId());
    EXPECT_EQ(numbers(entry, {42, 51, 53, 50}), "1.5 -20 50 ") << entry;
    EXPECT_EQ(numbers(entry, {16, 26}), "5.19615 3 ");
}

TEST_F(DimensionTest, MirroredOnesGetTheOppositeNormalForThePointsOfTheirPlane) {
    read(false);
    ASSERT_EQ(dimension("100", OdDb::kForWrite)->transformBy(OdGeMatrix3d::scaling({-1, 1, 1})), eOk);
    const std::string entry = entryOf(*db, dimension()->objectId());
    EXPECT_EQ(numbers(entry, {10, 13, 14}), "-5 0 -5 ") << "points of the world: " << entry;
    EXPECT_EQ(numbers(entry, {11, 230}), "2 -1 ") << "the x axis of this plane runs to the left";
}

TEST_F(DimensionTest, APictureThatAnotherShowsIsCopiedFirst) {
    read(true);
    ASSERT_EQ(dimension("101", OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(picture("100"), "*D1");
    EXPECT_EQ(line("100"), "0,2-5,2") << "the first one stays";
    EXPECT_EQ(picture("101"), "*D2");
    EXPECT_EQ(line("101"), "100,202-105,202");
    ASSERT_EQ(dimension("101", OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(picture("101"), "*D2") << "its own by now";
    EXPECT_EQ(line("101"), "200,402-205,402");
    ASSERT_EQ(dimension("100", OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(picture("100"), "*D1") << "and nobody else's";
    EXPECT_EQ(line("100"), "100,202-105,202");
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(picture("101"), "*D1");
    EXPECT_EQ(line("100"), "0,2-5,2");
}

TEST_F(DimensionTest, ACloneAndAReferenceShareThePicture) {
    read(false);
    OdArray<OdDbObjectId> one;
    one.append(dimension()->objectId());
    const auto mapping = make<OdDbIdMapping>();
    db->deepCloneObjects(one, db->getModelSpaceId(), *mapping);
    const OdDbObjectId clone = cloneIn(*mapping, dimension()->objectId());
    ASSERT_EQ(open<OdDbEntity>(clone, OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(line(), "0,2-5,2");
    EXPECT_EQ(line(handleText(clone).c_str()), "100,202-105,202");
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(blockTable(*db)->getAt(od("*D1")));
    append(*db, reference);
    const std::string shown = boxOf(*reference);
    ASSERT_EQ(dimension("100", OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(boxOf(*reference), shown);
    EXPECT_EQ(line(), "100,202-105,202");
}

TEST_F(DimensionTest, WithoutAPictureMovesItsPointsAndOutsideNothing) {
    read(false, std::string("100 AcDbDimension|10 5.0|20 2.0|30 0.0|11 2.0|21 2.0|31 0.0|70 33|3 Standard"));
    EXPECT_EQ(boxOf(*dimension().get()), "5 2 5 2");
    ASSERT_EQ(dimension("100", OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(numbers(entryOf(*db, dimension()->objectId()), {10, 11}), "105 102 ");
    const OdSmartPtr<OdDbEntity> outside(static_cast<OdDbEntity*>(dimension()->clone()),
                                         lm::drawing::kAttach);
    EXPECT_EQ(outside->transformBy(kMove), eNotApplicable);
}

TEST_F(DimensionTest, APictureThatHoldsItsOwnDimensionComesToAnEnd) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "*D1");
    parts.blocks = dxf::Parts::block("*D1", "31", "30", entity("DIMENSION", kRotated, "32", "30"));
    parts.entities = entity("DIMENSION", kRotated);
    db = readGroups(parts.groups());
    EXPECT_EQ(dimension("100", OdDb::kForWrite)->transformBy(kMove), eOk);
    EXPECT_EQ(boxOf(*dimension().get()), "none");
}

// --- others
// ----------------------------------------------------------------------------------------------------------

TEST_F(OneTest, LeadersWithTextMoveTheirContext) {
    const char* const groups =
        "160 4|310 ABCD0123|100 AcDbMLeader|270 2|300 CONTEXT_DATA{|40 1.0|10 1.0|20 2.0|30 0.0|41 3.0|140 "
        "4.0|145 5.0|290 1|304 text|11 0.0|21 0.0|31 1.0|12 6.0|22 7.0|32 0.0|13 1.0|23 0.0|33 0.0|42 0.0|43 "
        "8.0|44 "
        "0.0|45 1.0|296 0|110 1.0|120 1.0|130 0.0|111 1.0|121 0.0|131 0.0|112 0.0|122 1.0|132 0.0|297 0|302 "
        "LEADER{|290 1|291 1|10 9.0|20 10.0|30 0.0|11 -1.0|21 0.0|31 0.0|90 0|40 0.5|304 LEADER_LINE{|10 "
        "11.0|20 "
        "12.0|30 0.0|91 0|305 }|303 }|301 }|340 16|41 0.25|42 0.125|10 1.0|20 1.0|30 1.0|43 0.0|45 1.0";
    for (const bool binary : {false, true}) {
        read("MULTILEADER", groups, binary);
        EXPECT_EQ(boxOf(*it().get()), "1 2 11 12");
        const std::string entry = checked(kAll);
        EXPECT_EQ(numbers(entry, 10), "96 80 76 1 ") << entry;
        EXPECT_EQ(numbers(entry, 20), "202 218 222 1 ") << "the last one is the scale of the block";
        EXPECT_EQ(numbers(entry, {12, 22, 13, 23}), "86 212 0 1 ");
        EXPECT_EQ(numbers(entry, {11, 21}), "0 0 0 -1 ") << "the normal stays, the landing turns";
        EXPECT_EQ(numbers(entry, {40, 41, 140, 145, 43}), "2 1 6 0.25 8 10 16 1.5708 ");
        EXPECT_EQ(numbers(entry, 42), "1.5708 0.125 ");
        EXPECT_EQ(numbers(entry, 45), "1 2 ") << "the line distance stays, the scale doesn't";
        EXPECT_EQ(numbers(entry, {110, 111, 121}), "98 0 1 ");
        EXPECT_FALSE(contains(entry, "310 ")) << "the preview shows the old place";
        EXPECT_EQ(it(OdDb::kForWrite)->transformBy(OdGeMatrix3d::scaling({-1, 1, 1})), eNotApplicable);
        EXPECT_EQ(entryOf(*db, it()->objectId()), entry);
    }
}

TEST_F(OneTest, TablesMoveAndTurnAndDoNotScale) {
    const char* const groups =
        "100 AcDbBlockReference|2 *T1|10 1.0|20 2.0|30 0.0|100 AcDbTable|342 0|11 1.0|21 0.0|31 "
        "0.0|91 1|92 1|141 5.0|142 6.0|171 1|10 9.0|11 7.0|1 cell|2 more";
    read("ACAD_TABLE", groups);
    const std::string entry = checked(kMove * OdGeMatrix3d::rotationZ(pi / 2));
    EXPECT_EQ(numbers(entry, 10), "98 9 ") << "the cell's numbers are something else: " << entry;
    EXPECT_EQ(numbers(entry, {20, 11, 21, 141, 142}), "201 0 7 1 5 6 ");
    EXPECT_EQ(it(OdDb::kForWrite)->transformBy(OdGeMatrix3d::scaling({2, 2, 2})), eNotApplicable);
    EXPECT_EQ(entryOf(*db, it()->objectId()), entry);
}

TEST_F(OneTest, KindsThatLeaveValuesOutGetThemWhenTheyTurn) {
    struct Row {
        const char* kind;
        const char* groups;
        std::vector<int> codes;
        const char* expected;
    };
    const Row rows[] = {
        {"PDFUNDERLAY",
         "100 AcDbUnderlayReference|340 0|10 1.0|20 2.0|30 0.0|280 3",
         {10, 20, 50, 41, 42, 43},
         "96 202 90 2 2 2 "},
        {"SHAPE", "100 AcDbShape|10 1.0|20 2.0|30 0.0|40 3.0|2 X", {10, 20, 40, 50}, "96 202 6 90 "},
        {"TOLERANCE", "100 AcDbFcf|3 Standard|10 1.0|20 2.0|30 0.0|1 x", {10, 20, 11, 21}, "96 202 0 1 "},
        {"MESH",
         "100 AcDbSubDMesh|71 2|72 0|91 0|92 2|10 1.0|20 2.0|30 0.0|10 3.0|20 4.0|30 0.0|93 0|94 0|95 1|140 "
         "3.0",
         {10, 20, 140},
         "96 92 202 206 3 "},
        {"LIGHT",
         "100 AcDbLight|90 1|1 L|10 1.0|20 2.0|30 0.0|11 3.0|21 4.0|31 0.0",
         {10, 20, 11, 21},
         "96 202 92 206 "},
        {"HELIX",
         "100 AcDbSpline|70 4|71 3|40 0.0|40 1.0|10 1.0|20 2.0|30 0.0|100 AcDbHelix|10 1.0|20 1.0|30 0.0|11 "
         "2.0|21 1.0|31 0.0|12 0.0|22 0.0|32 1.0|40 3.0|41 4.0|42 5.0|290 1",
         {10, 20, 11, 21, 32, 40, 41, 42},
         "96 98 202 202 98 204 1 0 1 6 4 10 "}};
    for (const Row& row : rows)
        for (const bool binary : {false, true}) {
            read(row.kind, std::string(row.groups) + "|1001 ACAD|1040 1.0", binary);
            const std::string entry = checked(kAll);
            std::string got;
            for (const int code : row.codes) got += numbers(entry, code);
            EXPECT_EQ(got, row.expected) << row.kind << ": " << entry;
            EXPECT_EQ(
                std::count(entry.begin() + static_cast<long>(entry.rfind("1001 ACAD")), entry.end(), '|'), 1)
                << "nothing comes behind the extended data: " << entry;
        }
}

TEST_F(OneTest, ViewportsMoveAndScaleAndDoNotTurn) {
    read("VIEWPORT", "100 AcDbViewport|10 1.0|20 2.0|30 0.0|40 3.0|41 4.0|68 1|69 2|12 7.0|22 7.0");
    const std::string entry = checked(kMove * OdGeMatrix3d::scaling({2, 2, 2}));
    EXPECT_EQ(numbers(entry, {10, 20, 40, 41, 12}), "102 204 6 8 7 ");
    EXPECT_EQ(boxOf(*it().get()), "99 200 105 208");
    EXPECT_EQ(it(OdDb::kForWrite)->transformBy(OdGeMatrix3d::rotationZ(1)), eNotApplicable);
}

TEST_F(OneTest, OpaqueKindsStay) {
    for (const char* const kind :
         {"3DSOLID", "REGION", "BODY", "OLE2FRAME", "ACAD_PROXY_ENTITY", "FOREIGN"}) {
        read(kind, "160 4|310 ABCD0123|100 AcDbModelerGeometry|10 1.0|20 2.0|30 0.0|70 1|1 text");
        const std::string before = entry();
        EXPECT_EQ(it(OdDb::kForWrite)->transformBy(kMove), eNotApplicable) << kind;
        EXPECT_EQ(entry(), before);
        EXPECT_EQ(boxOf(*it().get()), "none");
    }
}

// --- boxes
// -----------------------------------------------------------------------------------------------------------

TEST_F(OneTest, BoxesOfKindsThatAreNotRead) {
    struct Row {
        const char* kind;
        const char* groups;
        const char* box;
    };
    const Row rows[] = {
        {"SOLID",
         "100 AcDbTrace|10 0.0|20 1.0|30 0.0|11 4.0|21 1.0|31 0.0|12 0.0|22 3.0|32 0.0|13 4.0|23 3.0|33 0.0",
         "0 1 4 3"},
        {"TRACE",
         "100 AcDbTrace|10 1.0|20 0.0|30 0.0|11 4.0|21 0.0|31 0.0|12 1.0|22 1.0|32 0.0|13 4.0|23 1.0|33 "
         "0.0|210 0.0|220 "
         "0.0|230 -1.0",
         "-4 0 -1 1"},
        {"3DFACE",
         "100 AcDbFace|10 0.0|20 0.0|30 5.0|11 1.0|21 0.0|31 0.0|12 1.0|22 1.0|32 0.0|13 0.0|23 1.0|33 0.0",
         "0 0 1 1"},
        {"SPLINE",
         "100 AcDbSpline|70 8|71 3|40 99.0|10 1.0|20 0.0|30 0.0|10 2.0|20 3.0|30 0.0|11 0.0|21 9.0|31 0.0",
         "0 0 2 9"},
        {"LEADER",
         "100 AcDbLeader|3 Standard|76 2|10 1.0|20 1.0|30 0.0|10 5.0|20 6.0|30 0.0|211 1.0|221 0.0|231 0.0",
         "1 1 5 6"},
        {"MLINE",
         "100 AcDbMline|2 S|40 1.0|72 2|10 1.0|20 1.0|30 0.0|11 1.0|21 1.0|31 0.0|12 1.0|22 0.0|32 0.0|11 "
         "4.0|21 1.0|31 "
         "0.0",
         "1 1 4 1"},
        {"WIPEOUT",
         "100 AcDbWipeout|90 0|10 1.0|20 2.0|30 0.0|11 3.0|21 0.0|31 0.0|12 0.0|22 4.0|32 0.0|13 2.0|23 1.0",
         "1 2 7 6"},
        {"HATCH",
         "100 AcDbHatch|10 0.0|20 0.0|30 0.0|210 0.0|220 0.0|230 1.0|2 SOLID|70 1|71 0|91 2|92 7|72 1|73 "
         "1|93 2|10 1.0|20 "
         "0.0|42 1.0|10 3.0|20 0.0|42 0.0|97 0|92 1|93 2|72 1|10 0.0|20 0.0|11 1.0|21 1.0|72 2|10 5.0|20 "
         "0.0|40 2.0|50 "
         "0.0|51 90.0|73 1|97 0|75 0|76 1|98 1|10 50.0|20 50.0",
         "0 -1 7 2"},
        {"HATCH",
         "100 AcDbHatch|10 0.0|20 0.0|30 0.0|210 0.0|220 0.0|230 1.0|2 SOLID|70 1|71 0|91 1|92 1|93 1|72 "
         "2|10 5.0|20 0.0|40 "
         "2.0|50 0.0|51 90.0|73 0|97 0|75 0|76 1",
         "5 -2 7 0"},
        {"HATCH",
         "100 AcDbHatch|10 0.0|20 0.0|30 0.0|210 0.0|220 0.0|230 1.0|2 SOLID|70 1|71 0|91 1|92 1|93 1|72 "
         "3|10 5.0|20 0.0|11 "
         "4.0|21 0.0|40 0.5|50 0.0|51 360.0|73 1|97 0|75 0|76 1",
         "1 -2 9 2"},
        {"RAY", "100 AcDbRay|10 1.0|20 1.0|30 0.0|11 1.0|21 0.0|31 0.0", "none"},
        {"XLINE", "100 AcDbXline|10 1.0|20 1.0|30 0.0|11 1.0|21 0.0|31 0.0", "none"},
        {"SHAPE", "100 AcDbShape|10 1.0|20 2.0|30 0.0|40 3.0|2 X", "1 2 1 2"}};
    for (const Row& row : rows) {
        read(row.kind, row.groups);
        EXPECT_EQ(boxOf(*it().get()), row.box) << row.kind << " " << row.groups;
    }
}

TEST(UnreadBoxTest, PolylinesByTheVerticesThatAreDrawn) {
    const auto polyline = [](const std::string& head, const std::string& vertices) {
        dxf::Parts parts;
        parts.entities = entity("POLYLINE", head) + vertices + "|0 SEQEND|5 110|330 100|100 AcDbEntity|8 0";
        const auto db = readGroups(parts.groups());
        return boxOf(*byHandle<OdDbEntity>(*db, "100").get());
    };
    const auto vertex = [](const char* handle, const std::string& groups) {
        return "|0 VERTEX|5 " + std::string(handle) + "|330 100|100 AcDbEntity|8 0|100 AcDbVertex|100 x|" +
               groups;
    };
    const std::string two =
        vertex("101", "10 1.0|20 0.0|30 0.0|42 1.0") + vertex("102", "10 3.0|20 0.0|30 0.0|42 1.0");
    EXPECT_EQ(polyline("100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 0", two), "1 -1 3 0");
    EXPECT_EQ(polyline("100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 1", two), "1 -1 3 1") << "closed";
    EXPECT_EQ(polyline("100 AcDb3dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 8", two), "1 0 3 0");
    EXPECT_EQ(polyline("100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 4",
                       two + vertex("103", "10 90.0|20 0.0|30 0.0|70 16")),
              "1 -1 3 0")
        << "the frame of a smoothed line isn't drawn";
    EXPECT_EQ(polyline("100 AcDbPolyFaceMesh|66 1|10 0.0|20 0.0|30 0.0|70 64",
                       vertex("101", "10 1.0|20 2.0|30 0.0|70 192") +
                           vertex("102", "10 4.0|20 6.0|30 0.0|70 192") +
                           vertex("103", "10 0.0|20 0.0|30 0.0|70 128|71 1|72 2")),
              "1 2 4 6");
    EXPECT_EQ(polyline("100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 0", ""), "none");
}

TEST(UnreadBoxTest, ReferencesShowWhatIsUnreadAndTablesTheirPicture) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B") + "|" +
                         dxf::Parts::record("BLOCK_RECORD", "40", "1", "*T1");
    parts.blocks =
        dxf::Parts::block(
            "B", "31", "30",
            entity("SOLID",
                   "100 AcDbTrace|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0|12 0.0|22 2.0|32 0.0|13 "
                   "1.0|23 2.0|33 0.0",
                   "32", "30")) +
        "|" +
        dxf::Parts::block(
            "*T1", "41", "40",
            entity("LINE", "100 AcDbLine|10 0.0|20 0.0|30 0.0|11 4.0|21 -1.0|31 0.0", "42", "40"));
    parts.entities =
        entity("INSERT", "100 AcDbBlockReference|2 B|10 10.0|20 10.0|30 0.0|50 90.0") + "|" +
        entity("ACAD_TABLE",
               "100 AcDbBlockReference|2 *T1|10 10.0|20 20.0|30 0.0|100 AcDbTable|11 0.0|21 1.0|31 "
               "0.0|2 B",
               "101");
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(boxOf(*byHandle<OdDbEntity>(*db, "100").get()), "8 10 10 11");
    EXPECT_EQ(boxOf(*byHandle<OdDbEntity>(*db, "101").get()), "10 20 11 24");
}

TEST(UnreadBoxTest, DefinitionsDoNotShowInReferencesButConstantOnesThatAreVisible) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db, "B");
    const auto definition = make<OdDbAttributeDefinition>();
    definition->setTextString(od("A"));
    definition->setHeight(10);
    definition->setPosition({1000, 0, 0});
    const auto line = make<OdDbLine>();
    line->setEndPoint({1, 1, 0});
    {
        const auto record = open<OdDbBlockTableRecord>(block, OdDb::kForWrite);
        record->appendOdDbEntity(line);
        record->appendOdDbEntity(definition);
    }
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    EXPECT_EQ(boxOf(*reference), "0 0 1 1");
    EXPECT_EQ(boxOf(*definition), "1000 0 1006 10") << "by itself it has one";
    definition->setConstant(true);
    EXPECT_EQ(boxOf(*reference), "0 0 1006 10");
    definition->setInvisible(true);
    EXPECT_EQ(boxOf(*reference), "0 0 1 1");
}
