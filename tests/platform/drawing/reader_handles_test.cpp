// SPDX-License-Identifier: MIT
// Handles of a file: found, mended, given.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

OdSmartPtr<OdDbDatabase> readEntities(const std::string& entities) {
    dxf::Parts parts;
    parts.entities = entities;
    return readGroups(parts.groups());
}

std::vector<std::string> handlesInModelSpace(const OdDbDatabase& db) {
    return handlesOf(modelSpace(db)->newIterator());
}

using Handles = std::vector<std::string>;

} // namespace

TEST(ReaderHandles, StayAsTheFileHasThem) {
    const auto db =
        readEntities("0 LINE|5 1A0|330 1F|8 0|0 LINE|5 00ab|330 1F|8 0|0 LINE|5 FFFFFFFFFF|330 1F|8 0|"
                     "0 LINE|5  1B0 |330 1F|8 0");
    EXPECT_EQ(handlesInModelSpace(*db.get()), (Handles{"1A0", "AB", "FFFFFFFFFF", "1B0"}));
    EXPECT_EQ(db->report().total(), 0u) << reportOf(*db.get());
    EXPECT_FALSE(byHandle<OdDbLine>(*db.get(), "FFFFFFFFFF").isNull());
    EXPECT_TRUE(db->getOdDbObjectId(OdDbHandle(0x1A1)).isNull());
}

TEST(ReaderHandles, AreGivenWhereTheyAreMissing) {
    for (const char* const entity :
         {"0 LINE|330 1F|8 0", "0 LINE|5 0|330 1F|8 0", "0 LINE|5 |330 1F|8 0", "0 LINE|5 0000|330 1F|8 0"}) {
        const auto db = readEntities(std::string("0 LINE|5 1A0|330 1F|8 0|") + entity);
        EXPECT_EQ(handlesInModelSpace(*db.get()), (Handles{"1A0", "20F"})) << entity;
        EXPECT_EQ(db->report().count(Defect::kMissingHandle), 1u);
        EXPECT_EQ(db->report().repairs()[0].handle, 0x20Fu);
        EXPECT_NE(db->report().repairs()[0].line, 0u);
    }
}

TEST(ReaderHandles, AreReplacedWhereTheyStandTwice) {
    const auto db =
        readEntities("0 LINE|5 100|330 1F|8 0|0 CIRCLE|5 100|330 1F|8 0|0 CIRCLE|5 100|330 1F|8 0");
    EXPECT_EQ(handlesInModelSpace(*db.get()), (Handles{"100", "20F", "210"})); // 20E is the highest
    EXPECT_FALSE(byHandle<OdDbLine>(*db.get(), "100").isNull()) << "the first one keeps it";
    EXPECT_EQ(db->report().count(Defect::kDoubledHandle), 2u);
    EXPECT_NE(reportOf(*db.get()).find("100 became 20F"), std::string::npos) << reportOf(*db.get());
}

TEST(ReaderHandles, AreReplacedWhereTheyAreNoNumbers) {
    for (const char* const handle : {"XYZ", "10000000000000000", "1G", "-1", "0x10"}) {
        const auto db = readEntities("0 LINE|5 " + std::string(handle) + "|330 1F|8 0");
        ASSERT_EQ(db->report().count(Defect::kBadHandle), 1u) << handle;
        EXPECT_EQ(db->report().total(), 1u);
        EXPECT_NE(reportOf(*db.get()).find(handle), std::string::npos);
        EXPECT_EQ(handlesInModelSpace(*db.get()).size(), 1u);
    }
}

TEST(ReaderHandles, AreExpectedFromR13OnOnly) {
    const auto db =
        readGroups("0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 ENTITIES|0 LINE|8 0|0 "
                   "LINE|8 0|0 ENDSEC|0 EOF");
    EXPECT_EQ(db->report().count(Defect::kMissingHandle), 0u);
    const Handles given = handlesInModelSpace(*db.get());
    ASSERT_EQ(given.size(), 2u);
    EXPECT_NE(given[0], given[1]);
    EXPECT_NE(given[0], "0");
}

TEST(ReaderHandles, OfNewObjectsLieBehindTheSeedAndTheHighest) {
    dxf::Parts parts;
    parts.header = "9 $HANDSEED|5 5000";
    parts.entities = "0 LINE|5 200|330 1F|8 0";
    auto db = readGroups(parts.groups());
    EXPECT_EQ(append(*db.get(), make<OdDbLine>()).getHandle().value(), 0x5000u);
    parts.header = "9 $HANDSEED|5 10";
    db = readGroups(parts.groups());
    EXPECT_EQ(append(*db.get(), make<OdDbLine>()).getHandle().value(), 0x20Fu);
    parts.header = "9 $HANDSEED|5 junk";
    db = readGroups(parts.groups());
    EXPECT_EQ(append(*db.get(), make<OdDbLine>()).getHandle().value(), 0x20Fu);
    parts.entities = "0 LINE|5 FFFFFFFFFFFFFFFF|330 1F|8 0";
    db = readGroups(parts.groups());
    const OdDbObjectId id = append(*db.get(), make<OdDbLine>());
    EXPECT_FALSE(id.getHandle().isNull());
    EXPECT_EQ(db->getOdDbObjectId(id.getHandle()), id);
}

TEST(ReaderHandles, AreFoundBesideAWildOne) {
    // Handles beyond what is dense at first, and one so far out that it costs no memory.
    std::string entities = "0 LINE|5 FFFFFFFF0000|330 1F|8 0";
    for (int i = 0; i < 400; ++i)
        entities +=
            "|0 LINE|5 " + utf8(OdDbHandle(65536 + static_cast<unsigned>(i) * 16).ascii()) + "|330 1F|8 0";
    const auto db = readEntities(entities);
    for (const std::string& handle : handlesInModelSpace(*db.get()))
        EXPECT_FALSE(byHandle<OdDbLine>(*db.get(), handle).isNull()) << handle;
    EXPECT_EQ(db->report().total(), 0u);
}

TEST(ReaderHandles, AreNoGroup5OfASortTable) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|0 LINE|5 101|330 1F|8 0";
    parts.objects = "0 SORTENTSTABLE|5 200|330 C|100 AcDbSortentsTable|330 1F|331 100|5 101|331 101|5 100";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
        EXPECT_EQ(utf8(byHandle<OdDbObject>(db, "200")->dxfName()), "SORTENTSTABLE");
        EXPECT_FALSE(byHandle<OdDbLine>(db, "100").isNull());
    });
}

TEST(ReaderHandles, OfDimensionStylesStandUnder105) {
    dxf::Parts parts;
    parts.tables = dxf::Parts::table(
        "DIMSTYLE", "A", "0 DIMSTYLE|105 27|330 A|100 AcDbSymbolTableRecord|2 Standard|5 ARROW|70 0");
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.report().total(), 0u) << reportOf(db);
        EXPECT_EQ(utf8(byHandle<OdDbObject>(db, "27")->dxfName()), "DIMSTYLE");
    });
}

TEST(ReaderHandles, NameOwners) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "50", "1", "*Paper_Space0");
    parts.blocks = dxf::Parts::block("*Paper_Space0", "51", "50");
    parts.entities = "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|0 LINE|5 101|330 1B|100 AcDbEntity|67 1|8 0|"
                     "0 LINE|5 102|330 50|100 AcDbEntity|67 1|8 0|0 LINE|5 103|100 AcDbEntity|67 1|8 0|"
                     "0 LINE|5 104|100 AcDbEntity|8 0|0 LINE|5 105|330 FFF|100 AcDbEntity|8 0|"
                     "0 LINE|5 106|102 {ACAD_REACTORS|330 C|102 }|330 1B|100 AcDbEntity|8 0|"
                     "0 LINE|5 107|330 10|100 AcDbEntity|67 1|8 0";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(handlesOf(modelSpace(db)->newIterator()), (Handles{"100", "104", "105"}));
        EXPECT_EQ(handlesOf(open<OdDbBlockTableRecord>(db.getPaperSpaceId())->newIterator()),
                  (Handles{"101", "103", "106", "107"}));
        EXPECT_EQ(handlesOf(byHandle<OdDbBlockTableRecord>(db, "50")->newIterator()), Handles{"102"});
        EXPECT_EQ(db.report().count(Defect::kUnknownOwner), 2u) << reportOf(db);
        EXPECT_EQ(byHandle<OdDbLine>(db, "102")->ownerId().getHandle(), OdDbHandle(0x50));
    });
}
