// SPDX-License-Identifier: MIT
// References that show their block in columns and rows, widths and thicknesses under a scale, and multi-line
// attributes: what a transform makes of them.
#include "clone_support.h"
#include "entry_numbers.h"

#include "drawing/attributeplace.h"

#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

namespace {

using Pieces = OdArray<OdSmartPtr<OdDbEntity>>;

std::string boxOf(const OdDbEntity& entity) {
    OdGeExtents3d box;
    if (entity.getGeomExtents(box) != eOk) return "none";
    char text[128];
    std::snprintf(text, sizeof text, "%g %g %g %g", box.minPoint().x, box.minPoint().y, box.maxPoint().x,
                  box.maxPoint().y);
    return text;
}

/// A block "B" with a line from (0, 0) to (1, 0), and a reference to it as an array.
struct ArrayTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db;

    void read(const std::string& array) {
        dxf::Parts parts;
        parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
        parts.blocks = dxf::Parts::block(
            "B", "31", "30",
            "0 LINE|5 32|330 30|100 AcDbEntity|8 0|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0");
        parts.entities =
            "0 INSERT|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbMInsertBlock|2 B|10 100.0|20 50.0|30 0.0|" +
            array;
        db = readGroups(parts.groups());
        db->setUndoRecording(true);
    }
    OdSmartPtr<OdDbBlockReference> reference(OdDb::OpenMode mode = OdDb::kForRead) {
        return byHandle<OdDbBlockReference>(*db, "100", mode);
    }
    /// Where the lines of the pieces begin.
    std::string starts() {
        Pieces pieces;
        EXPECT_EQ(reference()->explode(pieces), eOk);
        std::string out;
        for (const OdSmartPtr<OdDbEntity>& piece : pieces) {
            const OdGePoint3d at = OdSmartPtr<OdDbLine>(piece)->startPoint();
            char text[64];
            std::snprintf(text, sizeof text, "%g,%g ", std::round(at.x * 1e6) / 1e6 + 0.0,
                          std::round(at.y * 1e6) / 1e6 + 0.0);
            out += text;
        }
        return out;
    }
};

} // namespace

TEST_F(ArrayTest, TellsItsColumnsAndRows) {
    read("70 3|71 2|44 10.0|45 -20.0");
    EXPECT_EQ(reference()->columns(), 3);
    EXPECT_EQ(reference()->rows(), 2);
    EXPECT_EQ(reference()->columnSpacing(), 10);
    EXPECT_EQ(reference()->rowSpacing(), -20);
    read("70 0|71 -4");
    EXPECT_EQ(reference()->columns() * reference()->rows(), 1) << "one copy at least";
    EXPECT_EQ(starts(), "100,50 ");
}

TEST_F(ArrayTest, ExplodesIntoAllCopiesARowAfterTheOther) {
    read("70 3|71 2|44 10.0|45 20.0");
    EXPECT_EQ(starts(), "100,50 110,50 120,50 100,70 110,70 120,70 ");
}

TEST_F(ArrayTest, StandsAlongItsOwnAxesAndItsScaleLeavesTheDistances) {
    read("41 5.0|42 5.0|43 5.0|50 90.0|70 2|71 2|44 10.0|45 20.0");
    EXPECT_EQ(starts(), "100,50 100,60 80,50 80,60 ");
    read("70 2|71 1|44 10.0|45 0.0|210 0.0|220 0.0|230 -1.0");
    EXPECT_EQ(starts(), "-100,50 -110,50 ") << "the plane's x axis runs the other way";
}

TEST_F(ArrayTest, RefusesToFallIntoMoreThanAMillionPieces) {
    read("70 32000|71 32000|44 1.0|45 1.0");
    Pieces pieces;
    EXPECT_EQ(reference()->explode(pieces), eNotApplicable);
    EXPECT_TRUE(pieces.isEmpty());
    EXPECT_EQ(boxOf(*reference().get()), "100 50 32100 32049");
}

TEST_F(ArrayTest, TakesAllCopiesIntoItsBox) {
    read("70 3|71 2|44 10.0|45 20.0");
    EXPECT_EQ(boxOf(*reference().get()), "100 50 121 70");
    read("70 3|71 2|44 -10.0|45 20.0");
    EXPECT_EQ(boxOf(*reference().get()), "80 50 101 70");
    const OdDbObjectId outer = addBlock(*db, "OUTER");
    const OdSmartPtr<OdDbEntity> inner(static_cast<OdDbEntity*>(reference()->clone()), lm::drawing::kAttach);
    open<OdDbBlockTableRecord>(outer, OdDb::kForWrite)->appendOdDbEntity(inner);
    const auto shown = make<OdDbBlockReference>();
    shown->setBlockTableRecord(outer);
    shown->setScaleFactors({2, 2, 2});
    EXPECT_EQ(boxOf(*shown), "160 100 202 140") << "inside a block as well";
}

TEST_F(ArrayTest, KeepsItsDistancesUnderATransformAndTakesThemBack) {
    read("70 2|71 2|44 10.0|45 20.0");
    const std::string before = entryOf(*db, reference()->objectId());
    ASSERT_EQ(reference(OdDb::kForWrite)->transformBy(OdGeMatrix3d::scaling({3, 3, 3})), eOk);
    EXPECT_EQ(starts(), "300,150 330,150 300,210 330,210 ");
    const std::string entry = entryOf(*db, reference()->objectId());
    EXPECT_EQ(numbers(entry, 44) + numbers(entry, 45) + numbers(entry, 70), "30 60 2 ") << entry;
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(entryOf(*db, reference()->objectId()), before);
    ASSERT_EQ(reference(OdDb::kForWrite)->transformBy(OdGeMatrix3d::scaling({1, -1, 1})), eOk);
    EXPECT_EQ(starts(), "100,-50 110,-50 100,-70 110,-70 ");
}

TEST_F(ArrayTest, StretchesWithTheReferenceThatItStandsIn) {
    read("70 2|71 2|44 10.0|45 20.0");
    const OdDbObjectId outer = addBlock(*db, "OUTER");
    const OdSmartPtr<OdDbEntity> inner(static_cast<OdDbEntity*>(reference()->clone()), lm::drawing::kAttach);
    open<OdDbBlockTableRecord>(outer, OdDb::kForWrite)->appendOdDbEntity(inner);
    const auto shown = make<OdDbBlockReference>();
    shown->setBlockTableRecord(outer);
    shown->setScaleFactors({2, 3, 1});
    Pieces pieces;
    ASSERT_EQ(shown->explode(pieces), eOk);
    ASSERT_EQ(pieces.size(), 1u);
    const OdSmartPtr<OdDbBlockReference> piece(pieces[0]);
    EXPECT_NEAR(piece->columnSpacing(), 20, 1e-9);
    EXPECT_NEAR(piece->rowSpacing(), 60, 1e-9);
    EXPECT_EQ(piece->columns() * piece->rows(), 4);
    const std::string entry = entryOf(*db, append(*db, piece));
    EXPECT_EQ(numbers(entry, 70) + numbers(entry, 71) + numbers(entry, 44) + numbers(entry, 45), "2 2 20 60 ")
        << entry;
}

// --- widths and thicknesses
// -----------------------------------------------------------------------------------------

TEST(ScaleTest, WidthsAndThicknessesOfCurves) {
    struct Row {
        const char* kind;
        const char* groups;
        std::vector<std::pair<int, const char*>> expected;
    };
    const Row rows[] = {
        {"LWPOLYLINE",
         "100 AcDbPolyline|90 2|70 0|43 1.5|39 7.0|10 0.0|20 0.0|10 1.0|20 0.0",
         {{43, "3 "}, {39, "14 "}}},
        {"LWPOLYLINE",
         "100 AcDbPolyline|90 2|70 0|10 0.0|20 0.0|40 1.0|41 2.0|42 0.5|10 1.0|20 0.0|40 3.0|41 0.0",
         {{40, "2 6 "}, {41, "4 0 "}, {42, "0.5 "}}},
        {"LINE", "100 AcDbLine|39 7.0|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0", {{39, "14 "}}},
        {"POINT", "100 AcDbPoint|10 0.0|20 0.0|30 0.0|39 7.0", {{39, "14 "}}},
        {"CIRCLE", "100 AcDbCircle|39 7.0|10 0.0|20 0.0|30 0.0|40 1.0", {{39, "14 "}, {40, "2 "}}},
        {"ARC",
         "100 AcDbCircle|39 7.0|10 0.0|20 0.0|30 0.0|40 1.0|100 AcDbArc|50 0.0|51 90.0",
         {{39, "14 "}}},
        {"TEXT", "100 AcDbText|39 7.0|10 0.0|20 0.0|30 0.0|40 1.0|1 x|100 AcDbText", {{39, "14 "}}},
        {"MTEXT",
         "100 AcDbMText|10 0.0|20 0.0|30 0.0|40 1.0|41 4.0|46 5.0|71 1|72 5|1 x|42 6.0|43 7.0|50 0.5",
         {{40, "2 "}, {41, "8 "}, {46, "10 "}, {42, "12 "}, {43, "14 "}, {50, "0.5 "}}}};
    for (const Row& row : rows) {
        dxf::Parts parts;
        parts.entities = std::string("0 ") + row.kind + "|5 100|330 1F|100 AcDbEntity|8 0|" + row.groups;
        const auto db = readGroups(parts.groups());
        db->setUndoRecording(true);
        const auto entity = byHandle<OdDbEntity>(*db, "100", OdDb::kForWrite);
        const std::string before = entryOf(*db, entity->objectId());
        ASSERT_EQ(entity->transformBy(OdGeMatrix3d::scaling({2, 2, 2})), eOk) << row.kind;
        const std::string entry = entryOf(*db, entity->objectId());
        for (const auto& [code, value] : row.expected)
            EXPECT_EQ(numbers(entry, code), value) << code << ": " << entry;
        ASSERT_TRUE(db->undo());
        EXPECT_EQ(entryOf(*db, entity->objectId()), before);
        entity->upgradeOpen();
        ASSERT_EQ(entity->transformBy(OdGeMatrix3d::translation({0, 0, 0})), eOk);
        EXPECT_EQ(entryOf(*db, entity->objectId()), before) << "a transform that changes nothing";
    }
}

TEST(ScaleTest, VerticesKeepTheirWidthsWhenOthersCome) {
    dxf::Parts parts;
    parts.entities =
        "0 LWPOLYLINE|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbPolyline|90 2|70 0|10 0.0|20 0.0|40 "
        "1.0|41 2.0|10 1.0|20 0.0|40 3.0|41 4.0";
    const auto db = readGroups(parts.groups());
    const auto polyline = byHandle<OdDbPolyline>(*db, "100", OdDb::kForWrite);
    double start = 0, end = 0;
    polyline->getWidthsAt(1, start, end);
    EXPECT_EQ(start + 10 * end, 43);
    polyline->addVertexAt(1, {0.5, 0});
    const std::string entry = entryOf(*db, polyline->objectId());
    EXPECT_EQ(numbers(entry, 10) + numbers(entry, 40) + numbers(entry, 41), "0 0.5 1 1 3 2 4 ") << entry;
    EXPECT_THROW(polyline->getWidthsAt(3, start, end), OdError_InvalidIndex);
}

TEST(ScaleTest, ATurnedMultiLineTextKeepsItsRotationUnderOneCode) {
    dxf::Parts parts;
    parts.entities =
        "0 MTEXT|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbMText|10 0.0|20 0.0|30 0.0|40 1.0|41 4.0|71 1|1 "
        "x|50 0.5";
    const auto db = readGroups(parts.groups());
    const auto text = byHandle<OdDbMText>(*db, "100", OdDb::kForWrite);
    ASSERT_EQ(text->transformBy(OdGeMatrix3d::rotationZ(1)), eOk);
    EXPECT_NEAR(text->rotation(), 1.5, 1e-9);
    EXPECT_EQ(text->direction(), OdGeVector3d::kXAxis);
}

// --- multi-line attributes
// ------------------------------------------------------------------------------------------

namespace {

const char* const kLines =
    "101 Embedded Object|70 1|10 7.0|20 8.0|30 0.0|40 2.5|41 30.0|46 4.0|71 1|72 5|1 "
    "line1\\Pline2|7 Standard|210 0.0|220 0.0|230 1.0|11 1.0|21 0.0|31 0.0|42 20.0|43 6.0|73 "
    "1|44 1.0";

struct MultiLineTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db;

    MultiLineTest() {
        const std::string head = "|280 0|";
        const std::string tail = "2 T|70 0|73 0|74 0|280 0|";
        dxf::Parts parts;
        parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
        parts.blocks = dxf::Parts::block(
            "B", "31", "30",
            "0 ATTDEF|5 71|330 30|100 AcDbEntity|8 0|100 AcDbText|10 7.0|20 8.0|30 0.0|40 2.5|1 x|100 "
            "AcDbAttributeDefinition" +
                head + "3 p|" + tail + "71 4|72 0|11 7.0|21 8.0|31 0.0|" + kLines);
        parts.entities =
            "0 INSERT|5 80|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|66 1|2 B|10 0.0|20 0.0|30 "
            "0.0|0 ATTRIB|5 81|330 80|100 AcDbEntity|8 0|100 AcDbText|10 7.0|20 8.0|30 0.0|40 2.5|1 x|100 "
            "AcDbAttribute" +
            head + tail + "71 2|72 0|11 7.0|21 8.0|31 0.0|" + kLines +
            "|1001 ACAD|1000 y|0 SEQEND|5 82|330 80|100 AcDbEntity|8 0";
        db = readGroups(parts.groups());
        db->setUndoRecording(true);
    }
    OdDbObjectId idOf(unsigned handle) { return db->getOdDbObjectId(OdDbHandle(handle)); }
    OdSmartPtr<OdDbAttribute> attribute() { return open<OdDbAttribute>(idOf(0x81)); }
};

} // namespace

TEST_F(MultiLineTest, MoveAsAWhole) {
    const std::string before = entryOf(*db, idOf(0x81));
    const OdGeMatrix3d matrix = OdGeMatrix3d::translation({100, 200, 0}) * OdGeMatrix3d::rotationZ(pi / 2) *
                                OdGeMatrix3d::scaling({2, 2, 2});
    ASSERT_EQ(open<OdDbEntity>(idOf(0x80), OdDb::kForWrite)->transformBy(matrix), eOk);
    const std::string entry = entryOf(*db, idOf(0x81));
    EXPECT_EQ(numbers(entry, 10) + numbers(entry, 20), "84 84 214 214 ") << entry;
    EXPECT_EQ(numbers(entry, 11), "84 0 ") << "the place is repeated in front, then comes the direction";
    EXPECT_EQ(numbers(entry, 21), "214 1 ");
    EXPECT_EQ(numbers(entry, 40), "5 5 ");
    EXPECT_EQ(numbers(entry, 41) + numbers(entry, 42) + numbers(entry, 43) + numbers(entry, 46),
              "60 40 12 8 ");
    EXPECT_EQ(numbers(entry, 44), "1 ") << "a factor of the line distance";
    EXPECT_TRUE(contains(entry, "1 line1\\Pline2"));
    EXPECT_TRUE(contains(entry, "1001 ACAD|1000 y"));
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(entryOf(*db, idOf(0x81)), before);
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(entryOf(*db, idOf(0x81)), entry);
}

TEST_F(MultiLineTest, DefinitionsMoveAsAWhole) {
    ASSERT_EQ(
        open<OdDbEntity>(idOf(0x71), OdDb::kForWrite)->transformBy(OdGeMatrix3d::translation({1, 2, 0})),
        eOk);
    const std::string entry = entryOf(*db, idOf(0x71));
    EXPECT_EQ(numbers(entry, 10) + numbers(entry, 20), "8 8 10 10 ") << entry;
    const auto definition = open<OdDbAttributeDefinition>(idOf(0x71));
    EXPECT_EQ(definition->getMTextAttributeDefinition()->location(), OdGePoint3d(8, 10, 0));
}

TEST_F(MultiLineTest, PiecesAndStretchedPiecesMoveAsAWhole) {
    const auto reference = open<OdDbBlockReference>(idOf(0x80), OdDb::kForWrite);
    reference->setPosition({100, 0, 0});
    for (const double sx : {1.0, 3.0}) {
        reference->setScaleFactors({sx, 1, 1});
        Pieces pieces;
        ASSERT_EQ(reference->explode(pieces), eOk);
        ASSERT_EQ(pieces.size(), 1u);
        const OdSmartPtr<OdDbAttributeDefinition> piece(pieces[0]);
        EXPECT_EQ(piece->position(), OdGePoint3d(100 + 7 * sx, 8, 0));
        EXPECT_EQ(piece->getMTextAttributeDefinition()->location(), OdGePoint3d(100 + 7 * sx, 8, 0));
        EXPECT_NEAR(piece->getMTextAttributeDefinition()->width(), 30 * sx, 1e-9);
    }
    EXPECT_EQ(open<OdDbAttributeDefinition>(idOf(0x71))->getMTextAttributeDefinition()->location(),
              OdGePoint3d(7, 8, 0))
        << "the block stays";
}

TEST_F(MultiLineTest, ShowTheTextThatIsSet) {
    const std::string before = entryOf(*db, idOf(0x81));
    db->startUndoRecord();
    const auto open = drawing_test::open<OdDbAttribute>(idOf(0x81), OdDb::kForWrite);
    open->setTextString(od("x"));
    EXPECT_EQ(entryOf(*db, idOf(0x81)), before) << "the same text leaves the formatting";
    OdDbText& text = *open.get();
    text.setTextString(od("C:\\P {1}\nnew"));
    EXPECT_EQ(utf8(attribute()->textString()), "C:\\P {1}\nnew");
    EXPECT_EQ(utf8(attribute()->getMTextAttribute()->contents()), "C:\\\\P \\{1\\}\\Pnew");
    const std::string entry = entryOf(*db, idOf(0x81));
    EXPECT_TRUE(contains(entry, "|1 C:\\\\P \\{1\\}\\Pnew|")) << entry;
    EXPECT_FALSE(contains(entry, "line1"));
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(entryOf(*db, idOf(0x81)), before) << "one step";
}

TEST_F(MultiLineTest, ShowLongTextsInSeveralGroups) {
    const std::string longText(600, 'a');
    drawing_test::open<OdDbAttribute>(idOf(0x81), OdDb::kForWrite)->setTextString(od(longText));
    const std::string entry = entryOf(*db, idOf(0x81));
    EXPECT_TRUE(contains(entry, "|3 " + std::string(250, 'a') + "|3 " + std::string(250, 'a') + "|1 " +
                                    std::string(100, 'a') + "|"))
        << entry;
}

TEST_F(MultiLineTest, StayUnderADefinitionAndMoveOnceWhenTheCallerMovedThem) {
    const auto open = drawing_test::open<OdDbAttribute>(idOf(0x81), OdDb::kForWrite);
    const auto definition = drawing_test::open<OdDbAttributeDefinition>(idOf(0x71));
    open->setAttributeFromBlock(definition, OdGeMatrix3d::translation({50, 0, 0}));
    EXPECT_EQ(open->position(), OdGePoint3d(57, 8, 0));
    EXPECT_EQ(open->getMTextAttribute()->location(), OdGePoint3d(7, 8, 0));
    EXPECT_EQ(utf8(open->getMTextAttribute()->contents()), "line1\\Pline2");
}

TEST_F(MultiLineTest, TakeTheBoxOfTheirLines) {
    EXPECT_EQ(boxOf(*attribute().get()), boxOf(*attribute()->getMTextAttribute().get()));
}

// --- the text of lines
// ----------------------------------------------------------------------------------------------

namespace {

/// As programs write them: the text stands in the lines alone.
struct EmptyTextTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db;

    void read(const std::string& contents) {
        const auto lines = [&](const char* text) {
            return "101 Embedded Object|70 1|10 7.0|20 8.0|30 0.0|40 2.5|41 30.0|46 4.0|71 1|72 5|" +
                   std::string(text) + "|73 1|44 1.0";
        };
        const std::string head = "|100 AcDbEntity|8 0|100 AcDbText|10 7.0|20 8.0|30 0.0|40 2.5|1 |100 ";
        const std::string tail = "2 T|70 0|73 0|74 0|280 0|71 2|72 0|11 7.0|21 8.0|31 0.0|";
        dxf::Parts parts;
        parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
        parts.blocks =
            dxf::Parts::block("B", "31", "30",
                              "0 ATTDEF|5 71|330 30" + head + "AcDbAttributeDefinition|280 0|3 p|" + tail +
                                  lines("1 {\\fArial;def}\\Pault"));
        parts.entities =
            "0 INSERT|5 80|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|66 1|2 B|10 0.0|20 0.0|30 "
            "0.0|0 ATTRIB|5 81|330 80" +
            head + "AcDbAttribute|280 0|" + tail + lines(contents.c_str()) +
            "|0 SEQEND|5 82|330 80|100 AcDbEntity|8 0";
        db = readGroups(parts.groups());
        db->setUndoRecording(true);
    }
    OdDbObjectId idOf(unsigned handle) { return db->getOdDbObjectId(OdDbHandle(handle)); }
    OdSmartPtr<OdDbAttribute> attribute(OdDb::OpenMode mode = OdDb::kForRead) {
        return open<OdDbAttribute>(idOf(0x81), mode);
    }
};

} // namespace

TEST_F(EmptyTextTest, IsWhatTheLinesShow) {
    const std::pair<const char*, const char*> rows[] = {
        {"1 one\\Ptwo", "one\ntwo"},
        {"3 one |1 part", "one part"},
        {"1 ", ""},
        {"1 {\\fArial;\\C1;red} \\Lunder\\l \\H2.5x;big\\~blank", "red under big blank"},
        {"1 \\A1;C:\\\\x \\{brace\\}", "C:\\x {brace}"},
        {"1 \\S1/2; \\S+1^-2; \\S1#\\;;", "1/2 +1/-2 1/;"},
        {"1 \\pxqc;centred\\Nnext", "centred\nnext"},
        {"1 \\Zunknown \\", "\\Zunknown \\"},
        {"1 \\Fopen", "\\Fopen"},
        {"1 \\Oover\\o\\Kthrough\\k\\Q15;\\T1;\\W2;\\c255;\\ftxt;x", "overthroughx"}};
    for (const auto& [contents, text] : rows) {
        read(contents);
        EXPECT_EQ(utf8(attribute()->textString()), text) << contents;
    }
    EXPECT_EQ(utf8(open<OdDbAttributeDefinition>(idOf(0x71))->textString()), "def\nault");
}

TEST_F(EmptyTextTest, StaysEmptyInTheFileAsLongAsTheLinesShowIt) {
    read("1 {one}\\Ptwo");
    const std::string before = entryOf(*db, idOf(0x81));
    db->startUndoRecord();
    attribute(OdDb::kForWrite)->setInvisible(true);
    const std::string entry = entryOf(*db, idOf(0x81));
    EXPECT_TRUE(contains(entry, "|1 |")) << entry;
    EXPECT_TRUE(contains(entry, "|1 {one}\\Ptwo|")) << entry;
    EXPECT_TRUE(contains(entry, "|70 1|")) << entry;
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(entryOf(*db, idOf(0x81)), before);
    attribute(OdDb::kForWrite)->setTextString(od("one\ntwo"));
    EXPECT_TRUE(contains(entryOf(*db, idOf(0x81)), "|1 {one}\\Ptwo|"))
        << "the same text, with its formatting";
    attribute()->getMTextAttribute()->setContents(od("three"));
    const std::string changed = entryOf(*db, idOf(0x81));
    EXPECT_TRUE(contains(changed, "|1 |")) << "the lines alone were changed: " << changed;
    EXPECT_TRUE(contains(changed, "|1 three|")) << changed;
}

TEST_F(EmptyTextTest, CanBeSetAndCleared) {
    read("1 {one}\\Ptwo");
    attribute(OdDb::kForWrite)->setTextString(od("new\ntext"));
    std::string entry = entryOf(*db, idOf(0x81));
    EXPECT_TRUE(contains(entry, "|1 |")) << entry;
    EXPECT_TRUE(contains(entry, "|1 new\\Ptext|")) << entry;
    attribute(OdDb::kForWrite)->setTextString(OdString());
    entry = entryOf(*db, idOf(0x81));
    EXPECT_EQ(utf8(attribute()->textString()), "");
    EXPECT_EQ(utf8(attribute()->getMTextAttribute()->contents()), "");
    EXPECT_FALSE(contains(entry, "new")) << entry;
}

TEST_F(EmptyTextTest, GoesWithACopy) {
    read("1 {one}\\Ptwo");
    OdDbIdMapping mapping;
    OdArray<OdDbObjectId> ids;
    ids.append(idOf(0x80));
    db->deepCloneObjects(ids, db->getModelSpaceId(), mapping);
    OdDbIdPair pair(idOf(0x81));
    ASSERT_TRUE(mapping.compute(pair));
    EXPECT_EQ(utf8(open<OdDbAttribute>(pair.value())->textString()), "one\ntwo");
    const std::string entry = entryOf(*db, pair.value());
    EXPECT_TRUE(contains(entry, "|1 |")) << entry;
    EXPECT_TRUE(contains(entry, "|1 {one}\\Ptwo|")) << entry;
}

// --- texts of references that turn their block over
// -----------------------------------------------------------------------------

namespace {

struct Shown {
    OdGePoint3d at;
    OdGeVector3d along, up;
};

Shown shownBy(const OdDbText& text) {
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text.normal());
    const double c = std::cos(text.rotation()), s = std::sin(text.rotation());
    return {plane * text.position(), plane * OdGeVector3d(c, s, 0), plane * OdGeVector3d(-s, c, 0)};
}

void expectNear(const OdGeVector3d& got, const OdGeVector3d& wanted, const char* what) {
    EXPECT_NEAR((got - wanted).length(), 0, 1e-9) << what << " " << got.x << " " << got.y << " " << got.z;
}

} // namespace

TEST_F(EmptyTextTest, ShowsItsFrontUnderANegativeScaleInZ) {
    read("1 one");
    const auto definition = open<OdDbAttributeDefinition>(idOf(0x71), OdDb::kForWrite);
    definition->setPosition({1, 2, 3});
    definition->setThickness(4);
    const auto reference = open<OdDbBlockReference>(idOf(0x80), OdDb::kForWrite);
    reference->setPosition({5, 5, 0});
    struct Row {
        OdGeScale3d scale;
        OdGeVector3d along, up;
    };
    const Row rows[] = {{{1, 1, -1}, {1, 0, 0}, {0, 1, 0}},    {{2, 2, -2}, {1, 0, 0}, {0, 1, 0}},
                        {{2, 1, -1}, {1, 0, 0}, {0, 1, 0}},    {{-1, -1, -1}, {-1, 0, 0}, {0, -1, 0}},
                        {{-1, 1, -1}, {-1, 0, 0}, {0, -1, 0}}, {{-1, 1, 1}, {-1, 0, 0}, {0, -1, 0}}};
    for (const Row& row : rows) {
        reference->setScaleFactors(row.scale);
        const OdGePoint3d place = reference->blockTransform() * OdGePoint3d(1, 2, 3);
        OdDbAttribute made;
        lm::drawing::placeAttribute(made, *definition, *reference);
        Pieces pieces;
        ASSERT_EQ(reference->explode(pieces), eOk);
        const OdSmartPtr<OdDbAttributeDefinition> piece(pieces[0]);
        for (const OdDbText* text :
             {static_cast<const OdDbText*>(&made), static_cast<const OdDbText*>(piece.get())}) {
            const Shown shown = shownBy(*text);
            expectNear(shown.at - place, {}, "place");
            expectNear(shown.along, row.along, "along");
            expectNear(shown.up, row.up, "up");
            EXPECT_GT(text->normal().z, 0.99);
            EXPECT_GT(text->height(), 0);
        }
        expectNear(piece->getMTextAttributeDefinition()->normal(), {0, 0, 1}, "normal of the lines");
        expectNear(piece->getMTextAttributeDefinition()->direction(), row.along, "direction of the lines");
    }
    EXPECT_EQ(definition->position(), OdGePoint3d(1, 2, 3)) << "the definition stays";
    EXPECT_EQ(definition->normal(), OdGeVector3d::kZAxis);
}

TEST_F(EmptyTextTest, RisesToTheSideOfItsBlock) {
    read("1 one");
    const auto definition = open<OdDbAttributeDefinition>(idOf(0x71), OdDb::kForWrite);
    definition->setThickness(4);
    const auto reference = open<OdDbBlockReference>(idOf(0x80), OdDb::kForWrite);
    reference->setScaleFactors({1, 1, -1});
    OdDbAttribute made;
    lm::drawing::placeAttribute(made, *definition, *reference);
    EXPECT_DOUBLE_EQ(made.thickness(), -4);
}

TEST_F(EmptyTextTest, BringsItsLinesToThePlaceOfTheReference) {
    read("1 one");
    const auto definition = open<OdDbAttributeDefinition>(idOf(0x71));
    const auto reference = open<OdDbBlockReference>(idOf(0x80), OdDb::kForWrite);
    reference->setPosition({100, 200, 0});
    reference->setRotation(1.5707963267948966);
    for (const OdGeScale3d& scale : {OdGeScale3d{2, 2, 2}, OdGeScale3d{2, 3, 2}}) {
        reference->setScaleFactors(scale);
        OdDbAttribute made;
        made.setMTextAttribute(
            OdSmartPtr<OdDbMText>(static_cast<OdDbMText*>(definition->getMTextAttributeDefinition()->clone()),
                                  lm::drawing::kAttach));
        lm::drawing::placeAttribute(made, *definition, *reference);
        const OdSmartPtr<OdDbMText> lines = made.getMTextAttribute();
        expectNear(lines->location() - OdGePoint3d(100 - 8 * scale.sy, 214, 0), {}, "place");
        expectNear(lines->direction(), {0, 1, 0}, "direction");
        EXPECT_NEAR(lines->textHeight(), 2.5 * scale.sy, 1e-9);
        EXPECT_NEAR(lines->width(), 60, 1e-9);
    }
    EXPECT_EQ(definition->getMTextAttributeDefinition()->location(), OdGePoint3d(7, 8, 0));
}
