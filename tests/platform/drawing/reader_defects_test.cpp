// SPDX-License-Identifier: MIT
// Each numbered defect once: what brings it about, and that the drawing opens all the same.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

struct Row {
    Defect defect;
    const char* what;
    void (*damage)(dxf::Parts&);
};

const Row kRows[] = {
    {Defect::kMissingHandle, "an entity without a handle",
     [](dxf::Parts& p) { p.entities = "0 LINE|330 1F|8 0"; }},
    {Defect::kDoubledHandle, "a handle of a table",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 2|330 1F|8 0"; }},
    {Defect::kBadHandle, "a handle that is a word",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 HELLO|330 1F|8 0"; }},
    {Defect::kMissingName, "a layer without a name",
     [](dxf::Parts& p) { p.layers = "0 LAYER|5 70|330 2|70 0"; }},
    {Defect::kDoubledName, "two layers of one name",
     [](dxf::Parts& p) {
         p.layers = dxf::Parts::layer("70", "L") + "|" + dxf::Parts::layer("71", "L", "62 3");
     }},
    {Defect::kUnknownOwner, "an owner that is no block",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 FF|8 0"; }},
    {Defect::kStrayEntry, "an end of a section outside", [](dxf::Parts& p) { p.after = "0 ENDSEC"; }},
    {Defect::kStrayEntry, "a record outside a table",
     [](dxf::Parts& p) { p.tables = "0 LAYER|5 70|330 2|2 LOST|70 0"; }},
    {Defect::kStrayEntry, "an entity between blocks", [](dxf::Parts& p) { p.blocks = "0 LINE|5 70|8 0"; }},
    {Defect::kMissingEnd, "no end of the file", [](dxf::Parts& p) { p.withEnd = false; }},
    {Defect::kMissingEnd, "a block without its end",
     [](dxf::Parts& p) { p.blocks = "0 BLOCK|5 70|330 1|8 0|2 B"; }},
    {Defect::kMissingEnd, "a table without its end",
     [](dxf::Parts& p) { p.tables = "0 TABLE|2 DIMSTYLE|5 70|330 0"; }},
    {Defect::kUnknownBlock, "a reference to nothing",
     [](dxf::Parts& p) { p.entities = "0 INSERT|5 100|330 1F|8 0|2 NOPE"; }},
    {Defect::kUnlistedLayer, "a layer that the table lacks",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 NEW"; }},
    {Defect::kBadNumber, "a real that is a word",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|10 wide"; }},
    {Defect::kBadNumber, "an integer that is a word",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|62 red"; }},
    {Defect::kBadNumber, "a number with a tail",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|10 1.5mm"; }},
    {Defect::kMissingTable, "no tables", [](dxf::Parts& p) { p.withTables = false; }},
    {Defect::kBadText, "bytes that are no UTF-8",
     [](dxf::Parts& p) { p.entities = "0 TEXT|5 100|330 1F|8 0|1 \xFF"; }},
};

} // namespace

TEST(DefectTest, IsReportedByItsNumberAndMended) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        dxf::Parts parts;
        row.damage(parts);
        const auto db = readGroups(parts.groups());
        db->getModelSpaceId().openObject();
        const auto walk = modelSpace(*db.get())->newIterator();
        for (walk->start(); !walk->done(); walk->step()) walk->entity();
        EXPECT_GE(db->report().count(row.defect), 1u) << reportOf(*db.get());
        const std::string number = std::to_string(static_cast<int>(row.defect)) + ": ";
        EXPECT_EQ(reportOf(*db.get()).rfind(number, 0), 0u) << reportOf(*db.get());
        ReadOptions strict;
        strict.strict = true;
        EXPECT_EQ(codeOf([&] { readGroups(parts.groups(), strict); }), eBrokenFile);
    }
}

TEST(DefectTest, GivesANamelessRecordItsHandleAsName) {
    dxf::Parts parts;
    parts.layers = "0 LAYER|5 7A|330 2|70 0";
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(namesOf(db->getLayerTableId()), (std::vector<std::string>{"0", "$7A"}));
    EXPECT_FALSE(layerTable(*db.get())->getAt(od("$7A")).isNull());
}

TEST(DefectTest, FindsTheFirstOfTwoRecordsOfOneName) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::layer("70", "L", "62 1") + "|" + dxf::Parts::layer("71", "L", "62 3");
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(layerTable(*db.get())->getAt(od("L")).getHandle(), OdDbHandle(0x70));
    EXPECT_EQ(namesOf(db->getLayerTableId()).size(), 3u) << "the second one is kept";
}

TEST(DefectTest, AcceptsViewportsOfOneNameAndStylesWithoutOne) {
    dxf::Parts parts;
    parts.tables = "0 TABLE|2 VPORT|5 40|330 0|70 1|0 VPORT|5 41|330 40|2 *Active|70 0|0 ENDTAB|0 TABLE|2 "
                   "STYLE|5 42|330 0|70 1|0 "
                   "STYLE|5 43|330 42|2 |70 1|3 ltypeshp.shx|0 ENDTAB";
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(db->report().count(Defect::kDoubledName), 0u) << reportOf(*db.get());
    EXPECT_EQ(db->report().count(Defect::kMissingName), 0u);
    EXPECT_EQ(namesOf(db->getViewportTableId()).size(), 2u);
}

TEST(DefectTest, IsTakenAsZeroWhereItIsANumber) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|10 wide|20 2.0|11 5.0";
    const auto db = readGroups(parts.groups());
    const auto line = byHandle<OdDbLine>(*db.get(), "100");
    EXPECT_EQ(line->startPoint(), OdGePoint3d(0, 2, 0));
    EXPECT_EQ(line->endPoint().x, 5) << "what comes behind is read";
    EXPECT_NE(reportOf(*db.get()).find("wide"), std::string::npos);
    EXPECT_NE(reportOf(*db.get()).find("handle 100"), std::string::npos);
}

TEST(ReportTest, KeepsTheFirstOfAKindAndCountsTheRest) {
    Report report;
    for (int i = 0; i < 250; ++i) report.add({Defect::kBadNumber, static_cast<std::uint64_t>(i + 1), 7, "x"});
    report.add({Defect::kBadText, 0, 0, ""});
    EXPECT_EQ(report.count(Defect::kBadNumber), 250u);
    EXPECT_EQ(report.count(Defect::kBadText), 1u);
    EXPECT_EQ(report.count(Defect::kBadHandle), 0u);
    EXPECT_EQ(report.total(), 251u);
    EXPECT_EQ(report.repairs().size(), Report::kKept + 1);
    EXPECT_EQ(Report::text(report.repairs()[9]), "111: a number that can't be read, handle A, place 7: x");
    EXPECT_EQ(Report::text(report.repairs().back()), "113: text that its code page doesn't know");
}

TEST(ReportTest, KeepsItsNumbers) {
    const std::vector<std::pair<Defect, int>> numbers = {
        {Defect::kMissingHandle, 101}, {Defect::kDoubledHandle, 102}, {Defect::kBadHandle, 103},
        {Defect::kMissingName, 104},   {Defect::kDoubledName, 105},   {Defect::kUnknownOwner, 106},
        {Defect::kStrayEntry, 107},    {Defect::kMissingEnd, 108},    {Defect::kUnknownBlock, 109},
        {Defect::kUnlistedLayer, 110}, {Defect::kBadNumber, 111},     {Defect::kMissingTable, 112},
        {Defect::kBadText, 113},       {Defect::kBrokenGroup, 114}};
    for (const auto& [defect, number] : numbers) {
        EXPECT_EQ(static_cast<int>(defect), number);
        EXPECT_STRNE(Report::describe(defect), "a defect");
    }
}

TEST(DefectTest, TellsWhatCountsInPlaceOfANumber) {
    const struct {
        const char* found;
        const char* taken;
    } rows[] = {{"1d3", "1"}, {"1.5 2.5", "1.5"}, {"wide", "0"},
                {"nan", "0"}, {"1e999", "0"},     {"-2.5x", "-2.5"}};
    for (const auto& row : rows) {
        dxf::Parts parts;
        parts.entities = "0 LINE|5 100|330 1F|8 0|10 " + std::string(row.found);
        const auto db = readGroups(parts.groups());
        const auto line = byHandle<OdDbLine>(*db.get(), "100");
        EXPECT_EQ(line->startPoint().x, std::strtod(row.taken, nullptr)) << row.found;
        ASSERT_EQ(db->report().total(), 1u) << row.found;
        EXPECT_EQ(db->report().repairs().front().detail,
                  "group 10, found \"" + std::string(row.found) + "\", taken as " + row.taken);
    }
}
