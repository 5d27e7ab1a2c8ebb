// SPDX-License-Identifier: MIT
// Sections, tables, blocks, comments and line ends: how a file may be built.
#include "drawing_support.h"

#include "model/databasedata.h"

using namespace drawing_test;

using Names = std::vector<std::string>;

namespace {

std::size_t countIn(const OdDbDatabase& db) {
    return handlesOf(modelSpace(db)->newIterator()).size();
}

/// What every drawing must have after reading, whatever the file lacked.
void expectUsable(OdDbDatabase& db) {
    EXPECT_TRUE(db.getModelSpaceId().isValid());
    EXPECT_TRUE(db.getPaperSpaceId().isValid());
    EXPECT_TRUE(db.getLayerZeroId().isValid());
    EXPECT_TRUE(db.getCLAYER().isValid());
    EXPECT_TRUE(db.getRegAppTableId().isValid());
    EXPECT_TRUE(db.getTextStyleStandardId().isValid());
    EXPECT_TRUE(db.getLinetypeContinuousId().isValid());
    EXPECT_TRUE(db.getNamedObjectsDictionaryId().isValid());
    const OdDbObjectId id = append(db, make<OdDbLine>());
    EXPECT_EQ(db.getOdDbObjectId(id.getHandle()), id);
    open<OdDbDictionary>(db.getNamedObjectsDictionaryId(), OdDb::kForWrite)
        ->setAt(od("NEW"), make<OdDbXrecord>());
}

} // namespace

TEST(ReaderStructure, ReadsASoundDrawingWithoutARepair) {
    inBothForms(dxf::Parts().groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
        EXPECT_EQ(namesOf(db.getLayerTableId()), Names{"0"});
        EXPECT_EQ(namesOf(db.getBlockTableId()), (Names{"*Model_Space", "*Paper_Space"}));
        EXPECT_EQ(db.getNamedObjectsDictionaryId().getHandle(), OdDbHandle(0xC));
        EXPECT_EQ(db.getModelSpaceId().getHandle(), OdDbHandle(0x1F));
    });
    ReadOptions strict;
    strict.strict = true;
    EXPECT_EQ(errorOf([&] { readGroups(dxf::Parts().groups(), strict); }), "no error");
}

TEST(ReaderStructure, ReadsWhateverSectionsAreMissing) {
    for (int missing = 0; missing < 64; ++missing) {
        SCOPED_TRACE(missing);
        dxf::Parts parts;
        parts.withHeader = (missing & 1) == 0;
        parts.withTables = (missing & 2) == 0;
        parts.withBlocks = (missing & 4) == 0;
        parts.withEntities = (missing & 8) == 0;
        parts.withObjects = (missing & 16) == 0;
        parts.withEnd = (missing & 32) == 0;
        parts.entities = "0 LINE|5 100|330 1F|100 AcDbEntity|8 0";
        if ((missing & 31) == 31) {
            EXPECT_EQ(codeOf([&] { readGroups(parts.groups()); }),
                      parts.withEnd ? eBrokenFile : eUnknownFormat);
            continue;
        }
        inBothForms(parts.groups(), [&](OdDbDatabase& db) {
            EXPECT_EQ(countIn(db), parts.withEntities ? 1u : 0u);
            EXPECT_EQ(db.report().count(Defect::kMissingEnd), parts.withEnd ? 0u : 1u) << reportOf(db);
            expectUsable(db);
        });
    }
}

TEST(ReaderStructure, ReportsMissingTablesWhereTheyAreExpected) {
    dxf::Parts parts;
    parts.withTables = false;
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(db->report().count(Defect::kMissingTable), 6u) << reportOf(*db.get());
    parts.version = "AC1009";
    EXPECT_EQ(readGroups(parts.groups())->report().count(Defect::kMissingTable), 0u);
}

TEST(ReaderStructure, KeepsSectionsThatItDoesntKnow) {
    dxf::Parts parts;
    parts.after = "0 SECTION|2 ACDSDATA|70 2|0 ACDSRECORD|90 3|310 00FF|0 ENDSEC|0 SECTION|2 "
                  "THUMBNAILIMAGE|90 2|310 AABB|0 ENDSEC";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const lm::drawing::DatabaseData& data = db.data();
        Names names;
        for (const auto& section : data.sections) names.push_back(section.name);
        EXPECT_EQ(names,
                  (Names{"HEADER", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS", "ACDSDATA", "THUMBNAILIMAGE"}));
        for (const auto& section : data.sections) EXPECT_GT(section.length, 0u) << section.name;
        EXPECT_LE(data.sections.back().offset + data.sections.back().length, data.source->bytes.size());
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(ReaderStructure, SkipsCommentsInFrontAndInsideEntries) {
    dxf::Parts parts;
    parts.before = "999 made by a program|999 0|999 SECTION";
    parts.header = "9 $LTSCALE|999 between|40 2.0";
    parts.entities = "0 LINE|999 5|5 100|999 handle|330 1F|100 AcDbEntity|8 0|999 1|11 3.0|999 |0 XLINE|999 "
                     "x|5 101|8 0|999 y";
    parts.objects = "0 XRECORD|5 102|330 C|100 AcDbXrecord|1 a|999 between|1 b";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(countIn(db), 2u);
        EXPECT_EQ(byHandle<OdDbLine>(db, "100")->endPoint().x, 3);
        EXPECT_EQ(db.getSysVar(od("LTSCALE"))->getDouble(), 2.0);
        EXPECT_EQ(textOf(byHandle<OdDbXrecord>(db, "102")->rbChain()), "1 a|1 b");
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(ReaderStructure, TakesAnyLineEndAndIndentation) {
    dxf::Parts parts;
    parts.entities = "0 TEXT|5 100|330 1F|8 0|1  two blanks  |10 1.5";
    for (const char* const end : {"\n", "\r\n", "\r"})
        for (const std::size_t width : {0, 3, 6}) {
            const auto db = readBytes(dxf::text(parts.groups(), end, width));
            EXPECT_EQ(db->report().total(), 0u) << reportOf(*db.get());
            const auto text = byHandle<OdDbText>(*db.get(), "100");
            EXPECT_EQ(utf8(text->textString()), " two blanks  ") << "the blanks of a value belong to it";
            EXPECT_EQ(text->position().x, 1.5);
        }
    const auto tabs = readBytes("\t0\t\r\nSECTION \n  2  \n ENTITIES\n0\nLINE\n  8\n0\n0\nENDSEC\n 0\n EOF");
    EXPECT_EQ(countIn(*tabs.get()), 1u);
}

TEST(ReaderStructure, PassesOverAByteOrderMark) {
    const auto db = readBytes("\xEF\xBB\xBF" + dxf::text(dxf::Parts().groups()));
    EXPECT_EQ(db->report().total(), 0u) << reportOf(*db.get());
}

TEST(ReaderStructure, TellsTheBinaryFormsByContent) {
    const std::string r12 =
        "0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 ENTITIES|0 TEXT|5 A1|8 0|1 x|10 "
        "1.5|67 0|1001 APP|1000 y|1071 70000|0 ENDSEC|0 EOF";
    for (const std::string& notation : {r12, "999 first|" + r12}) {
        const auto db = readBytes(dxf::binaryShort(notation));
        EXPECT_EQ(byHandle<OdDbText>(*db.get(), "A1")->position().x, 1.5);
        EXPECT_EQ(textOf(byHandle<OdDbText>(*db.get(), "A1")->xData()), "1001 APP|1000 y|1071 70000");
        const auto wide = readBytes(dxf::binary(notation));
        EXPECT_EQ(byHandle<OdDbText>(*wide.get(), "A1")->position().x, 1.5);
    }
}

TEST(ReaderStructure, ReadsR12WithoutTablesBlocksOrHandles) {
    const auto db = readGroups(
        "0 SECTION|2 ENTITIES|0 LINE|8 WIRES|10 1.0|0 POLYLINE|8 WIRES|66 1|0 VERTEX|8 WIRES|10 2.0|0 "
        "SEQEND|8 WIRES|0 LINE|67 1|8 0|0 ENDSEC|0 EOF");
    EXPECT_EQ(countIn(*db.get()), 2u) << "vertices belong to their polyline";
    EXPECT_EQ(namesOf(db->getLayerTableId()), (Names{"0", "WIRES"}));
    expectUsable(*db.get());
}

TEST(ReaderStructure, KnowsTheLayoutBlocksOfR12) {
    const auto db = readGroups(
        "0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 $MODEL_SPACE|70 "
        "0|0 ENDBLK|0 "
        "BLOCK|8 0|2 $PAPER_SPACE|70 0|0 ENDBLK|0 BLOCK|8 0|2 SYM|70 0|10 3.0|0 LINE|8 0|0 ENDBLK|0 ENDSEC|"
        "0 SECTION|2 ENTITIES|0 INSERT|8 0|2 SYM|0 ENDSEC|0 EOF");
    EXPECT_EQ(namesOf(db->getBlockTableId()), (Names{"*MODEL_SPACE", "*PAPER_SPACE", "SYM"}));
    EXPECT_EQ(countIn(*db.get()), 1u);
    const auto symbol = blockTable(*db.get())->getAt(od("SYM"), OdDb::kForRead);
    EXPECT_EQ(OdSmartPtr<OdDbBlockTableRecord>(symbol)->origin().x, 3);
    EXPECT_EQ(OdSmartPtr<OdDbBlockTableRecord>(symbol)->getBlockReferenceIds().size(), 1u);
}

TEST(ReaderStructure, TakesRecordsOutOfATableOfAnotherKind) {
    dxf::Parts parts;
    parts.tables = dxf::Parts::table("DIMSTYLE", "40",
                                     "0 BLOCK_RECORD|5 41|330 40|100 AcDbSymbolTableRecord|"
                                     "100 AcDbBlockTableRecord|2 STRANGE|70 0|"
                                     "0 DIMSTYLE|105 42|330 40|100 AcDbSymbolTableRecord|"
                                     "100 AcDbDimStyleTableRecord|2 MINE|70 0");
    parts.blocks = dxf::Parts::block("STRANGE", "43", "41");
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.report().count(Defect::kStrayEntry), 1u) << reportOf(db);
        const Names blocks = namesOf(db.getBlockTableId());
        EXPECT_EQ(std::count(blocks.begin(), blocks.end(), "STRANGE"), 1)
            << "the block's record is one of its table";
    });
}

TEST(ReaderStructure, PassesOverTheEndOfASectionInFrontOfTheFirst) {
    inBothForms("0 ENDSEC|" + dxf::Parts().groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.report().count(Defect::kStrayEntry), 1u) << reportOf(db);
        EXPECT_EQ(namesOf(db.getLayerTableId()), (Names{"0"}));
    });
}

TEST(ReaderStructure, TakesTablesInAnyOrderAndTwice) {
    dxf::Parts parts;
    parts.tables = dxf::Parts::table("LAYER", "40", dxf::Parts::layer("41", "SECOND", "62 -3"));
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(namesOf(db.getLayerTableId()), (Names{"0", "SECOND"}));
        EXPECT_TRUE(open<OdDbLayerTableRecord>(layerTable(db)->getAt(od("SECOND")))->isOff());
        EXPECT_EQ(db.report().count(Defect::kStrayEntry), 1u) << reportOf(db);
    });
}

TEST(ReaderStructure, KeepsRecordsOutOfTablesThatArentTheirs) {
    dxf::Parts parts;
    parts.layers = "0 LTYPE|5 60|330 2|2 DASHED|70 0|0 BLOCK_RECORD|5 61|330 2|2 B|70 0";
    parts.blockRecords = "0 LAYER|5 62|330 1|2 B|70 0|62 1";
    parts.blocks = dxf::Parts::block("B", "63", "62", "0 LINE|5 64|8 0");
    parts.entities = "0 INSERT|5 65|330 1F|8 DASHED|2 B";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(namesOf(db.getLayerTableId()), (Names{"0", "DASHED"})) << "a layer of that name was made";
        EXPECT_EQ(namesOf(db.getBlockTableId()), (Names{"*Model_Space", "*Paper_Space", "B"}));
        EXPECT_EQ(db.report().count(Defect::kStrayEntry), 3u) << reportOf(db);
        const auto reference = byHandle<OdDbBlockReference>(db, "65");
        EXPECT_EQ(open<OdDbBlockTableRecord>(reference->blockTableRecord())->getBlockReferenceIds().size(),
                  1u);
        EXPECT_EQ(utf8(byHandle<OdDbObject>(db, "62")->dxfName()), "LAYER") << "kept, as what nobody reads";
    });
}

TEST(ReaderStructure, ReadsBlocksWithoutRecordsNamesOrEnds) {
    dxf::Parts parts;
    parts.blocks = "0 BLOCK|5 50|8 0|2 LOOSE|10 1.0|20 2.0|30 0.0|0 LINE|5 51|8 0|0 BLOCK|5 52|8 0|0 LINE|5 "
                   "53|8 0|0 ENDBLK|5 54|8 0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(namesOf(db.getBlockTableId()), (Names{"*Model_Space", "*Paper_Space", "LOOSE", "$52"}));
        EXPECT_EQ(db.report().count(Defect::kMissingEnd), 1u);
        EXPECT_EQ(db.report().count(Defect::kMissingName), 1u);
        const auto loose =
            OdSmartPtr<OdDbBlockTableRecord>(blockTable(db)->getAt(od("LOOSE"), OdDb::kForRead));
        EXPECT_EQ(loose->origin(), OdGePoint3d(1, 2, 0));
        EXPECT_EQ(handlesOf(loose->newIterator()), Names{"51"});
    });
}

TEST(ReaderStructure, KeepsBlanksThatBelongToNames) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "50", "1", "B ");
    parts.blocks = dxf::Parts::block("B ", "51", "50", "0 LINE|5 52|8 0");
    parts.entities = "0 INSERT|5 53|330 1F|8  L|2 B |0 LINE|5 54|330 1F|8 L";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(namesOf(db.getBlockTableId()), (Names{"*Model_Space", "*Paper_Space", "B "}));
        EXPECT_EQ(namesOf(db.getLayerTableId()), (Names{"0", " L", "L"}));
        const auto block = byHandle<OdDbBlockTableRecord>(db, "50");
        EXPECT_EQ(handlesOf(block->newIterator()), Names{"52"});
        EXPECT_EQ(block->getBlockReferenceIds().size(), 1u);
    });
}

TEST(ReaderStructure, FindsTheNamedObjectsDictionary) {
    dxf::Parts parts;
    parts.objects = "0 XRECORD|5 80|330 C|100 AcDbXrecord|1 a|0 DICTIONARY|5 81|330 C";
    std::string groups = parts.groups();
    inBothForms(groups, [](OdDbDatabase& db) {
        EXPECT_EQ(db.getNamedObjectsDictionaryId().getHandle(), OdDbHandle(0xC));
    });
    parts.withObjects = false;
    parts.after = "0 SECTION|2 OBJECTS|0 XRECORD|5 80|330 81|0 XRECORD|5 81|330 80|0 ENDSEC";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.report().count(Defect::kUnknownOwner), 1u) << "owners in a circle: " << reportOf(db);
        expectUsable(db);
    });
}

TEST(ReaderStructure, KeepsEntriesThatItDoesntRead) {
    dxf::Parts parts;
    parts.entities = "0 HATCH|5 100|330 1F|8 0|62 3|0 ACAD_PROXY_ENTITY|5 101|330 1F|8 0|310 00FF";
    parts.objects = "0 ACDBPLACEHOLDER|5 102|330 C|1001 ACAD|1000 x";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(utf8(byHandle<OdDbUnreadEntity>(db, "100")->dxfName()), "HATCH");
        EXPECT_EQ(byHandle<OdDbUnreadEntity>(db, "100")->color().colorIndex(), 3);
        EXPECT_EQ(utf8(byHandle<OdDbUnreadEntity>(db, "101")->dxfName()), "ACAD_PROXY_ENTITY");
        EXPECT_EQ(textOf(byHandle<OdDbUnreadObject>(db, "102")->xData()), "1001 ACAD|1000 x");
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(ReaderStructure, EndsASectionWithoutItsMarkAtTheNextOne) {
    const std::string notation =
        "0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 A|"
        "0 LINE|8 0|0 ENDBLK|0 SECTION|2 ENTITIES|0 INSERT|8 0|2 A|0 POINT|8 0|0 EOF";
    inBothForms(notation, [](OdDbDatabase& db) {
        EXPECT_EQ(countIn(db), 2u) << "a section must not swallow the next one";
        EXPECT_EQ(db.report().count(lm::drawing::Defect::kMissingEnd), 2u) << reportOf(db);
    });
}

TEST(ReaderStructure, TakesCommentsWherePeopleWriteThem) {
    const std::string notation =
        "999 first|0 SECTION|999 before the name|2 TABLES|999 in front|0 TABLE|2 LAYER|70 1|"
        "0 LAYER|2 A|70 0|62 7|6 CONTINUOUS|0 ENDTAB|999 behind a table|0 ENDSEC|999 between|"
        "0 SECTION|2 ENTITIES|999 at the start|0 POINT|8 A|999 inside|10 1.0|0 ENDSEC|0 EOF";
    inBothForms(notation, [](OdDbDatabase& db) {
        EXPECT_EQ(countIn(db), 1u);
        EXPECT_EQ(namesOf(db.getLayerTableId()), (Names{"A", "0"}));
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
    });
}

TEST(ReaderStructure, PassesOverBlanksBehindTheLastSection) {
    const std::string whole = dxf::text("0 SECTION|2 ENTITIES|0 POINT|8 0|0 ENDSEC");
    for (const std::string tail : {"\n\n", "\r\n  \r\n", "\x1A", " \n\x1A\n"}) {
        const auto db = readBytes(whole + tail);
        EXPECT_EQ(countIn(*db.get()), 1u);
        EXPECT_EQ(db->report().count(lm::drawing::Defect::kMissingEnd), 1u) << "the file has no EOF";
    }
    EXPECT_NE(errorOf([&] { readBytes(whole + "nonsense\n"); }), "no error");
}

TEST(ReaderStructure, TakesTheMarkOfPaperSpaceBehindTheLayerInR12) {
    inBothForms(
        "0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 ENTITIES|0 POINT|8 0|67 1|0 POINT|8 0|"
        "0 ENDSEC|0 EOF",
        [](OdDbDatabase& db) { EXPECT_EQ(countIn(db), 1u); });
}

TEST(DatabaseLifeTest, OpensMoreDrawingsThanTheSystemHasMappings) {
    // The system knows some 65,000 mappings of a process; addresses of old ids stay taken, but never as one
    // each.
    constexpr int kMany = 70000;
    OdDbObjectId old;
    for (int i = 0; i < kMany; ++i) {
        OdDbDatabase database;
        old = database.getLayerZeroId();
    }
    EXPECT_FALSE(old.isValid());
}
