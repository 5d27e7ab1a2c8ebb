// SPDX-License-Identifier: MIT
// From the groups of entries to objects, entity by entity.
#include "drawing_support.h"

#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

using Texts = std::vector<std::string>;

namespace {

dxf::Parts withBlock() {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "50", "1", "MOTOR");
    parts.blocks =
        dxf::Parts::block("MOTOR", "51", "50",
                          "0 ATTDEF|5 52|330 50|8 0|1 default|3 Which?|2 TAG|70 3|73 12|74 2|10 1.0|40 2.5");
    return parts;
}

std::vector<std::string> handlesInModelSpace(const OdDbDatabase& db) {
    return handlesOf(modelSpace(db)->newIterator());
}

} // namespace

TEST(ReferenceReader, ReadsPlaceBlockAndScale) {
    dxf::Parts parts = withBlock();
    parts.entities = "0 INSERT|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|2 MOTOR|10 1.0|20 "
                     "2.0|30 3.0|41 -1.0|42 "
                     "2.0|43 0.5|50 90.0|210 0.0|220 0.0|230 -1.0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto reference = byHandle<OdDbBlockReference>(db, "100");
        EXPECT_EQ(reference->position(), OdGePoint3d(1, 2, 3));
        EXPECT_EQ(reference->scaleFactors(), OdGeScale3d(-1, 2, 0.5)) << "negative factors stay";
        EXPECT_DOUBLE_EQ(reference->rotation(), pi / 2);
        EXPECT_EQ(reference->normal(), OdGeVector3d(0, 0, -1));
        EXPECT_EQ(reference->blockTableRecord().getHandle(), OdDbHandle(0x50));
        EXPECT_EQ(byHandle<OdDbBlockTableRecord>(db, "50")->getBlockReferenceIds().size(), 1u);
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(ReferenceReader, HasDefaultsForWhatTheFileLeavesOut) {
    dxf::Parts parts = withBlock();
    parts.entities = "0 INSERT|5 100|330 1F|2 MOTOR";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto reference = byHandle<OdDbBlockReference>(db, "100");
        EXPECT_EQ(reference->scaleFactors(), OdGeScale3d(1, 1, 1));
        EXPECT_EQ(reference->rotation(), 0);
        EXPECT_EQ(reference->layerId(), db.getLayerZeroId());
        EXPECT_EQ(reference->color(), OdCmColor());
        EXPECT_TRUE(reference->attributeIterator()->done());
    });
}

TEST(ReferenceReader, ResolvesNamesExactlyFirstThenIgnoringCase) {
    dxf::Parts parts = withBlock();
    parts.blockRecords += "|" + dxf::Parts::record("BLOCK_RECORD", "60", "1", "motor");
    parts.blocks += "|" + dxf::Parts::block("motor", "61", "60");
    parts.layers = dxf::Parts::layer("70", "PAG1", "62 1");
    parts.entities = "0 INSERT|5 100|330 1F|8 pag1|2 motor|0 INSERT|5 101|330 1F|8 PAG1|2 MOTOR|0 INSERT|5 "
                     "102|330 1F|8 0|2 Motor";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(byHandle<OdDbBlockReference>(db, "100")->blockTableRecord().getHandle(), OdDbHandle(0x60));
        EXPECT_EQ(byHandle<OdDbBlockReference>(db, "101")->blockTableRecord().getHandle(), OdDbHandle(0x50));
        EXPECT_EQ(byHandle<OdDbBlockReference>(db, "102")->blockTableRecord().getHandle(), OdDbHandle(0x50));
        EXPECT_EQ(utf8(byHandle<OdDbBlockReference>(db, "100")->layer()), "PAG1");
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(ReferenceReader, KeepsReferencesToUnknownBlocks) {
    dxf::Parts parts;
    parts.entities = "0 INSERT|5 100|330 1F|8 0|2 NOPE|10 4.0|0 INSERT|5 101|330 1F|8 0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto reference = byHandle<OdDbBlockReference>(db, "100");
        EXPECT_TRUE(reference->blockTableRecord().isNull());
        EXPECT_EQ(reference->position().x, 4);
        EXPECT_EQ(db.report().count(Defect::kUnknownBlock), 2u) << reportOf(db);
    });
}

TEST(ReferenceReader, TakesBlocksThatContainThemselves) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "50", "1", "A") + "|" +
                         dxf::Parts::record("BLOCK_RECORD", "60", "1", "B");
    parts.blocks =
        dxf::Parts::block("A", "51", "50", "0 INSERT|5 52|330 50|8 0|2 B|0 INSERT|5 53|330 50|8 0|2 A") +
        "|" + dxf::Parts::block("B", "61", "60", "0 INSERT|5 62|330 60|8 0|2 A");
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto ids = byHandle<OdDbBlockTableRecord>(db, "50")->getBlockReferenceIds();
        ASSERT_EQ(ids.size(), 2u);
        EXPECT_EQ(ids[0].getHandle(), OdDbHandle(0x53));
        EXPECT_EQ(ids[1].getHandle(), OdDbHandle(0x62));
        EXPECT_EQ(byHandle<OdDbBlockTableRecord>(db, "60")->getBlockReferenceIds().size(), 1u);
    });
}

TEST(AttributeReader, ReadsAllFieldsWithAndWithoutTheMarkAndTheEnd) {
    for (const char* const mark : {"|66 1", "|66 0", ""})
        for (const char* const end : {"|0 SEQEND|5 102|8 0", ""}) {
            dxf::Parts parts = withBlock();
            parts.layers = dxf::Parts::layer("70", "TEXTS", "62 1");
            parts.entities =
                "0 INSERT|5 100|330 1F|8 0" + std::string(mark) +
                "|2 MOTOR|0 ATTRIB|5 101|330 100|100 AcDbEntity|8 TEXTS|100 AcDbText|10 1.0|20 2.0|40 2.5|1 "
                "-K1|50 "
                "45.0|41 0.8|51 10.0|7 Standard|72 1|11 3.0|21 4.0|100 AcDbAttribute|2 TAG|70 1|73 7|74 2|0 "
                "ATTRIB|5 103|8 0|2 TAG|1 again" +
                end + "|0 LINE|5 104|330 1F|8 0";
            inBothForms(parts.groups(), [](OdDbDatabase& db) {
                EXPECT_EQ(handlesInModelSpace(db), (Texts{"100", "104"}));
                const auto reference = byHandle<OdDbBlockReference>(db, "100");
                EXPECT_EQ(attributesOf(reference), (Texts{"TAG=-K1", "TAG=again"}));
                const auto attribute = byHandle<OdDbAttribute>(db, "101");
                EXPECT_TRUE(attribute->isInvisible());
                EXPECT_FALSE(attribute->isConstant());
                EXPECT_EQ(attribute->position(), OdGePoint3d(1, 2, 0));
                EXPECT_EQ(attribute->alignmentPoint(), OdGePoint3d(3, 4, 0));
                EXPECT_EQ(attribute->height(), 2.5);
                EXPECT_EQ(attribute->widthFactor(), 0.8);
                EXPECT_DOUBLE_EQ(attribute->rotation(), pi / 4);
                EXPECT_DOUBLE_EQ(attribute->oblique(), pi / 18);
                EXPECT_EQ(attribute->fieldLength(), 7);
                EXPECT_EQ(attribute->horizontalMode(), OdDbText::kCenter);
                EXPECT_EQ(attribute->verticalMode(), OdDbText::kVertMid);
                EXPECT_EQ(attribute->textStyle(), db.getTextStyleStandardId());
                EXPECT_EQ(utf8(attribute->layer()), "TEXTS") << "its own layer, not that of the reference";
                EXPECT_EQ(attribute->ownerId(), reference->objectId());
                EXPECT_FALSE(byHandle<OdDbAttribute>(db, "103")->isInvisible());
            });
        }
}

TEST(AttributeReader, PassesOverAStrayEnd) {
    dxf::Parts parts = withBlock();
    parts.entities = "0 SEQEND|5 100|330 1F|8 0|0 LINE|5 101|330 1F|8 0|0 SEQEND|5 102|330 1F|8 0|0 INSERT|5 "
                     "103|330 1F|8 0|2 "
                     "MOTOR|0 SEQEND|5 104|8 0|0 SEQEND|5 105|330 1F|8 0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(handlesInModelSpace(db), (Texts{"101", "103"}));
        EXPECT_TRUE(byHandle<OdDbBlockReference>(db, "103")->attributeIterator()->done());
    });
}

TEST(AttributeReader, KeepsALooseAttributeAsAnEntity) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|0 ATTRIB|5 101|330 1F|8 0|2 TAG|1 x";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(handlesInModelSpace(db), (Texts{"100", "101"}));
        EXPECT_EQ(utf8(byHandle<OdDbAttribute>(db, "101")->tag()), "TAG");
    });
}

TEST(AttributeReader, KeepsAnEmbeddedObjectApartFromItsOwnFields) {
    dxf::Parts parts = withBlock();
    parts.entities =
        "0 INSERT|5 100|330 1F|8 0|66 1|2 MOTOR|0 ATTRIB|5 101|330 100|8 0|10 1.0|20 2.0|40 2.5|1 one|2 "
        "TAG|70 1|"
        "101 Embedded Object|70 0|10 9.0|20 8.0|40 7.0|41 30.0|71 5|3 first |1 last|2 OTHER|1001 ACAD|1000 x";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto attribute = byHandle<OdDbAttribute>(db, "101");
        EXPECT_EQ(utf8(attribute->textString()), "one");
        EXPECT_EQ(utf8(attribute->tag()), "TAG");
        EXPECT_TRUE(attribute->isInvisible());
        EXPECT_EQ(attribute->position(), OdGePoint3d(1, 2, 0));
        EXPECT_EQ(attribute->height(), 2.5);
        ASSERT_TRUE(attribute->isMTextAttribute());
        const auto mtext = attribute->getMTextAttribute();
        EXPECT_EQ(utf8(mtext->contents()), "first last");
        EXPECT_EQ(mtext->location(), OdGePoint3d(9, 8, 0));
        EXPECT_EQ(mtext->textHeight(), 7);
        EXPECT_EQ(mtext->width(), 30);
        EXPECT_EQ(mtext->attachment(), 5);
        EXPECT_EQ(textOf(attribute->xData()), "1001 ACAD|1000 x");
    });
}

TEST(AttributeReader, KnowsAnEmbeddedObjectByItsGroupAndNotByItsWords) {
    dxf::Parts parts = withBlock();
    parts.entities = "0 INSERT|5 100|330 1F|8 0|2 MOTOR|0 ATTRIB|5 101|330 100|8 0|1 Embedded Object|2 TAG";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_FALSE(byHandle<OdDbAttribute>(db, "101")->isMTextAttribute());
    });
}

TEST(AttributeReader, TakesNothingOfSeveralLinesForTheTextsOwn) {
    dxf::Parts parts = withBlock();
    const std::string text = "100 AcDbEntity|8 0|100 AcDbText|10 1.0|20 2.0|40 2.5|1 x|72 5|11 3.0|21 4.0|";
    parts.entities = "0 INSERT|5 100|330 1F|8 0|2 MOTOR|0 ATTRIB|5 101|330 100|" + text +
                     "100 AcDbAttribute|280 0|2 ONE|70 0|71 1|72 0|11 0.0|21 0.0|0 ATTRIB|5 102|330 100|" +
                     text + "100 AcDbAttribute|280 0|2 TWO|70 0|280 1|71 1|72 0|11 0.0|21 0.0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        for (const char* handle : {"101", "102"}) {
            const auto attribute = byHandle<OdDbAttribute>(db, handle);
            EXPECT_EQ(attribute->horizontalMode(), 5) << handle;
            EXPECT_EQ(attribute->alignmentPoint(), OdGePoint3d(3, 4, 0)) << handle;
        }
    });
}

TEST(AttributeReader, KeepsTheXrecordOfSeveralLinesApart) {
    dxf::Parts parts = withBlock();
    parts.entities = "0 INSERT|5 100|330 1F|8 0|2 MOTOR|0 ATTRIB|5 101|330 100|8 0|10 1.0|20 2.0|40 2.5|1 "
                     "one|2 TAG|70 1|100 "
                     "AcDbXrecord|280 1|70 2|70 0|70 0|340 0|10 9.0|20 9.0|30 0.0|40 1.0|2 OTHER";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto attribute = byHandle<OdDbAttribute>(db, "101");
        EXPECT_TRUE(attribute->isInvisible());
        EXPECT_EQ(attribute->position(), OdGePoint3d(1, 2, 0));
        EXPECT_EQ(attribute->height(), 2.5);
        EXPECT_EQ(utf8(attribute->tag()), "TAG");
    });
}

TEST(AttributeReader, ReadsDefinitions) {
    inBothForms(withBlock().groups(), [](OdDbDatabase& db) {
        const auto definition = byHandle<OdDbAttributeDefinition>(db, "52");
        EXPECT_EQ(utf8(definition->tag()), "TAG");
        EXPECT_EQ(utf8(definition->prompt()), "Which?");
        EXPECT_EQ(utf8(definition->textString()), "default");
        EXPECT_TRUE(definition->isInvisible());
        EXPECT_TRUE(definition->isConstant());
        EXPECT_EQ(definition->fieldLength(), 12);
        EXPECT_EQ(definition->verticalMode(), OdDbText::kVertMid);
        EXPECT_FALSE(definition->isMTextAttributeDefinition());
    });
    dxf::Parts parts = withBlock();
    parts.entities = "0 ATTDEF|5 100|330 1F|8 0|2 T|1 one|101 Embedded Object|1 several";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(
            utf8(byHandle<OdDbAttributeDefinition>(db, "100")->getMTextAttributeDefinition()->contents()),
            "several");
    });
}

TEST(EntityReader, ReadsCommonProperties) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|6 Continuous|62 3|48 2.5|370 35|440 33554512|60 "
                     "1|11 1.0|0 LINE|5 "
                     "101|330 1F|8 0|62 3|420 66051|0 LINE|5 102|330 1F|8 0|420 66051|62 3|0 LINE|5 103|330 "
                     "1F|8 0|62 256|6 NOPE|0 "
                     "LINE|5 104|330 1F|8 0|62 0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto line = byHandle<OdDbLine>(db, "100");
        EXPECT_EQ(line->linetypeId(), db.getLinetypeContinuousId());
        EXPECT_EQ(line->color().colorIndex(), 3);
        EXPECT_EQ(line->linetypeScale(), 2.5);
        EXPECT_EQ(line->lineWeight(), 35);
        EXPECT_EQ(line->transparency(), 33554512u);
        EXPECT_FALSE(line->isVisible());
        EXPECT_EQ(byHandle<OdDbLine>(db, "101")->color(), OdCmColor::fromRgb(1, 2, 3));
        EXPECT_EQ(byHandle<OdDbLine>(db, "102")->color(), OdCmColor::fromRgb(1, 2, 3)) << "in either order";
        EXPECT_EQ(byHandle<OdDbLine>(db, "103")->color(), OdCmColor());
        EXPECT_TRUE(byHandle<OdDbLine>(db, "103")->linetypeId().isNull());
        EXPECT_EQ(byHandle<OdDbLine>(db, "104")->color().method(), OdCmColor::kByBlock);
    });
}

TEST(EntityReader, ReadsShapes) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|10 1.0|20 2.0|30 3.0|11 4.0|21 5.0|31 6.0|"
                     "0 CIRCLE|5 101|330 1F|8 0|10 1.0|20 2.0|40 7.5|230 -1.0|"
                     "0 ARC|5 102|330 1F|8 0|40 2.0|50 90.0|51 180.0|"
                     "0 ELLIPSE|5 103|330 1F|8 0|10 1.0|11 4.0|40 0.5|41 1.0|42 2.0|"
                     "0 POINT|5 104|330 1F|8 0|10 1.0|20 2.0|30 3.0|"
                     "0 LWPOLYLINE|5 105|330 1F|8 0|90 3|70 1|38 5.0|43 0.0|10 0.0|20 0.0|42 0.5|10 1.0|20 "
                     "2.0|10 3.0|20 4.0|"
                     "0 MTEXT|5 106|330 1F|8 0|10 1.0|40 2.5|41 30.0|71 4|3 a\\P|3 b|1 c|"
                     "0 TEXT|5 107|330 1F|8 0|1 t|71 6|72 2|73 3|39 1.5|210 1.0|220 0.0|230 0.0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(byHandle<OdDbLine>(db, "100")->startPoint(), OdGePoint3d(1, 2, 3));
        EXPECT_EQ(byHandle<OdDbLine>(db, "100")->endPoint(), OdGePoint3d(4, 5, 6));
        EXPECT_EQ(byHandle<OdDbCircle>(db, "101")->radius(), 7.5);
        EXPECT_EQ(byHandle<OdDbCircle>(db, "101")->normal().z, -1);
        EXPECT_DOUBLE_EQ(byHandle<OdDbArc>(db, "102")->startAngle(), pi / 2);
        EXPECT_DOUBLE_EQ(byHandle<OdDbArc>(db, "102")->endAngle(), pi);
        const auto ellipse = byHandle<OdDbEllipse>(db, "103");
        EXPECT_EQ(ellipse->majorAxis(), OdGeVector3d(4, 0, 0));
        EXPECT_EQ(ellipse->radiusRatio(), 0.5);
        EXPECT_EQ(ellipse->startParam(), 1);
        EXPECT_EQ(ellipse->endParam(), 2);
        EXPECT_EQ(byHandle<OdDbPoint>(db, "104")->position(), OdGePoint3d(1, 2, 3));
        const auto wire = byHandle<OdDbPolyline>(db, "105");
        ASSERT_EQ(wire->numVerts(), 3u);
        EXPECT_EQ(wire->getPointAt(2), OdGePoint3d(3, 4, 5));
        EXPECT_EQ(wire->getBulgeAt(0), 0.5);
        EXPECT_EQ(wire->getBulgeAt(1), 0);
        EXPECT_TRUE(wire->isClosed());
        EXPECT_EQ(utf8(byHandle<OdDbMText>(db, "106")->contents()), "a\\Pbc");
        const auto text = byHandle<OdDbText>(db, "107");
        EXPECT_TRUE(text->isMirroredInX());
        EXPECT_TRUE(text->isMirroredInY());
        EXPECT_EQ(text->thickness(), 1.5);
        EXPECT_EQ(text->normal(), OdGeVector3d(1, 0, 0));
        EXPECT_FALSE(text->isDefaultAlignment());
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(EntityReader, ReadsNumbersInEveryWayThatTheyAreWritten) {
    struct Row {
        const char* text;
        double value;
    };
    const Row rows[] = {{"1.5", 1.5},     {"1,5", 1.5},
                        {"  1.5 ", 1.5},  {"+1.5", 1.5},
                        {"-1.5", -1.5},   {"-0,25", -0.25},
                        {"1", 1},         {"1.", 1},
                        {".5", 0.5},      {"1e3", 1000},
                        {"1.5E-1", 0.15}, {"1,5e1", 15},
                        {"-.5", -0.5},    {"100000000000000000000.0", 1e20}};
    for (const Row& row : rows) {
        const auto db = readGroups("0 SECTION|2 ENTITIES|0 LINE|5 A1|8 0|11 " + std::string(row.text) +
                                   "|0 ENDSEC|0 EOF");
        EXPECT_EQ(byHandle<OdDbLine>(*db.get(), "A1")->endPoint().x, row.value) << row.text;
        EXPECT_EQ(db->report().count(Defect::kBadNumber), 0u) << row.text;
    }
}

TEST(EntityReader, IgnoresGroupsInBraces) {
    dxf::Parts parts;
    parts.entities = "0 TEXT|5 100|102 {ACAD_XDICTIONARY|360 C|102 }|102 {ACAD_REACTORS|330 C|1 no text|8 "
                     "NOLAYER|102 }|330 1F|8 0|1 x";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(utf8(byHandle<OdDbText>(db, "100")->textString()), "x");
        EXPECT_EQ(utf8(byHandle<OdDbText>(db, "100")->layer()), "0");
        EXPECT_EQ(byHandle<OdDbText>(db, "100")->ownerId(), db.getModelSpaceId());
    });
}

TEST(EntityReader, MakesTheLayersThatItsEntitiesStandOn) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 NEW|0 LINE|5 101|330 1F|8 NEW|0 LINE|5 102|330 1F|8 new2|0 "
                     "LINE|5 103|330 1F|8 |0 LINE|5 104|330 1F";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(namesOf(db.getLayerTableId()), (Texts{"0", "NEW", "new2"})) << "and no other";
        EXPECT_EQ(utf8(byHandle<OdDbLine>(db, "101")->layer()), "NEW");
        EXPECT_EQ(utf8(byHandle<OdDbLine>(db, "103")->layer()), "0");
        EXPECT_EQ(utf8(byHandle<OdDbLine>(db, "104")->layer()), "0");
        EXPECT_EQ(db.report().count(Defect::kUnlistedLayer), 2u) << reportOf(db);
    });
}

TEST(EntityReader, KeepsItsLayerWhenThatIsRenamedBeforeItIsOpened) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::layer("70", "OLD", "62 1");
    parts.entities = "0 LINE|5 100|330 1F|8 OLD";
    const auto db = readGroups(parts.groups());
    byHandle<OdDbLayerTableRecord>(*db.get(), "70", OdDb::kForWrite)->setName(od("NEW"));
    EXPECT_EQ(utf8(byHandle<OdDbLine>(*db.get(), "100")->layer()), "NEW");
}

TEST(LayerReader, ReadsStatesAndColors) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::layer("70", "PLAIN", "62 1") + "|" + dxf::Parts::layer("71", "OFF", "62 -5") +
                   "|" + dxf::Parts::layer("72", "TRUE", "420 66051|62 -5") + "|" +
                   "0 LAYER|5 73|330 2|2 LOCKED|70 5|62 2|6 Continuous|1001 ACAD|1000 page";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_FALSE(byHandle<OdDbLayerTableRecord>(db, "70")->isFrozen());
        const auto off = byHandle<OdDbLayerTableRecord>(db, "71");
        EXPECT_TRUE(off->isOff());
        EXPECT_EQ(off->color().colorIndex(), 5);
        const auto color = byHandle<OdDbLayerTableRecord>(db, "72");
        EXPECT_TRUE(color->isOff());
        EXPECT_EQ(color->color(), OdCmColor::fromRgb(1, 2, 3));
        const auto locked = byHandle<OdDbLayerTableRecord>(db, "73");
        EXPECT_TRUE(locked->isLocked());
        EXPECT_TRUE(locked->isFrozen());
        EXPECT_FALSE(locked->isOff());
        EXPECT_EQ(locked->linetypeObjectId(), db.getLinetypeContinuousId());
        EXPECT_EQ(textOf(locked->xData()), "1001 ACAD|1000 page");
        EXPECT_EQ(utf8(open<OdDbLinetypeTableRecord>(db.getLinetypeContinuousId())->comments()),
                  "Solid line");
    });
}

TEST(ViewportReader, HasItsSizeInDrawingUnits) {
    inBothForms(dxf::Parts().groups(), [](OdDbDatabase& db) {
        const auto viewport = byHandle<OdDbViewportTableRecord>(db, "29");
        EXPECT_EQ(viewport->centerPoint(), OdGePoint2d(5, 6));
        EXPECT_EQ(viewport->height(), 100);
        EXPECT_EQ(viewport->width(), 150) << "the file has the ratio";
    });
    dxf::Parts parts;
    parts.tables = dxf::Parts::table(
        "VIEW", "40", dxf::Parts::record("VIEW", "41", "40", "V", "10 1.0|20 2.0|40 30.0|41 40.0"));
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto view = byHandle<OdDbViewTableRecord>(db, "41");
        EXPECT_EQ(view->centerPoint(), OdGePoint2d(1, 2));
        EXPECT_EQ(view->width(), 40);
    });
}

TEST(DictionaryReader, KeepsEntriesInOrder) {
    dxf::Parts parts;
    parts.objects = "3 LATER|350 80|3 FIRST|360 81|3 LOST|350 FFF|3 NOTHING|1001 ACAD|1000 on it|0 "
                    "DICTIONARY|5 80|330 C|3 "
                    "ITEM|350 82|0 ACDBDICTIONARYWDFLT|5 81|330 C|3 X|350 82|340 82|0 XRECORD|5 82|330 "
                    "80|100 AcDbXrecord|1 a";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto named = open<OdDbDictionary>(db.getNamedObjectsDictionaryId());
        Texts names;
        for (const auto walk = named->newIterator(); !walk->done(); walk->next())
            names.push_back(utf8(walk->name()));
        EXPECT_EQ(names, (Texts{"LATER", "FIRST"})) << "entries without an object are no entries";
        EXPECT_EQ(named->getAt(od("LATER")).getHandle(), OdDbHandle(0x80));
        EXPECT_EQ(byHandle<OdDbDictionary>(db, "81")->numEntries(), 1u);
        EXPECT_EQ(textOf(named->xData()), "1001 ACAD|1000 on it");
        EXPECT_EQ(byHandle<OdDbXrecord>(db, "82")->ownerId().getHandle(), OdDbHandle(0x80));
    });
}

TEST(XrecordReader, ReadsAChainOfAllCodes) {
    dxf::Parts parts;
    parts.objects = "0 XRECORD|5 80|102 {ACAD_REACTORS|330 C|102 }|330 C|100 AcDbXrecord|280 1|1 text^J|2 "
                    "BLOCK|8 LAYER|5 77|10 "
                    "1.0|20 2.0|30 3.0|10 4.0|20 5.0|40 2.5|62 -7|70 32767|90 -70000|160 5000000000|280 "
                    "2|290 1|310 00FF7A|330 "
                    "1F|360 C|102 {BRACE|102 }|100 Marker|1001 ACAD|1000 x";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto record = byHandle<OdDbXrecord>(db, "80");
        EXPECT_EQ(textOf(record->rbChain()),
                  "1 text\n|2 BLOCK|8 LAYER|5 77|10 1,2,3|10 4,5,0|40 2.5|62 -7|70 32767|90 -70000|160 "
                  "5000000000|280 2|290 1|310 00FF7A|330 1F|360 C|102 {BRACE|102 }|100 Marker");
        EXPECT_EQ(textOf(record->xData()), "1001 ACAD|1000 x");
    });
}

TEST(XrecordReader, GivesNoChainWhereThereIsNone) {
    dxf::Parts parts;
    parts.objects = "0 XRECORD|5 80|330 C|100 AcDbXrecord|280 1|0 XRECORD|5 81|330 C";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_TRUE(byHandle<OdDbXrecord>(db, "80")->rbChain().isNull());
        EXPECT_TRUE(byHandle<OdDbXrecord>(db, "81")->rbChain().isNull());
    });
}

TEST(XDataReader, ReadsAllCodesOfAllIds) {
    dxf::Parts parts;
    parts.entities =
        "0 LINE|5 100|330 1F|8 0|1001 A|1000 text|1002 {|1003 LAYER|1004 00FF|1005 2F|1010 1.0|1020 2.0|1030 "
        "3.0|1011 "
        "4.0|1021 5.0|1031 6.0|1040 2.5|1041 3.5|1042 4.5|1070 -7|1071 70000|1002 }|1001 LONE|1001 B|1000 b";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto line = byHandle<OdDbLine>(db, "100");
        EXPECT_EQ(textOf(line->xData(od("A"))),
                  "1001 A|1000 text|1002 {|1003 LAYER|1004 00FF|1005 2F|1010 1,2,3|1011 4,5,6|1040 "
                  "2.5|1041 3.5|1042 4.5|1070 -7|1071 70000|1002 }");
        EXPECT_EQ(textOf(line->xData(od("LONE"))), "1001 LONE") << "a lone head in a file is kept";
        EXPECT_EQ(textOf(line->xData(od("B"))), "1001 B|1000 b");
    });
}

TEST(XDataReader, JoinsTheDataOfAnIdThatIsNamedAgain) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|1001 A|1000 a|1001 B|1001 A|1000 b|1070 1|1001 A|1001 B|1000 "
                     "c|1001 A|1000 d";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(textOf(byHandle<OdDbLine>(db, "100")->xData()),
                  "1001 A|1000 a|1000 b|1070 1|1000 d|1001 B|1000 c");
    });
}

TEST(XDataReader, LeavesOutDataOfNobody) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|1000 lost|1070 1|1001 A|1000 kept|0 LINE|5 101|330 1F|8 0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(textOf(byHandle<OdDbLine>(db, "100")->xData()), "1001 A|1000 kept");
        EXPECT_TRUE(byHandle<OdDbLine>(db, "101")->xData().isNull());
    });
}

TEST(HeaderReader, ReadsTheCurrentLayerAndTheBasePoint) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::layer("70", "PAG1", "62 1");
    parts.header = "9 $CLAYER|8 pag1|9 $INSBASE|10 1.0|20 2.0|30 3.0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.getCLAYER().getHandle(), OdDbHandle(0x70));
        EXPECT_EQ(db.getINSBASE(), OdGePoint3d(1, 2, 3));
    });
    parts.header = "9 $CLAYER|8 NOPE";
    EXPECT_EQ(readGroups(parts.groups())->getCLAYER().getHandle(), OdDbHandle(0x10));
}
