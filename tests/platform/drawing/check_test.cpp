// SPDX-License-Identifier: MIT
// The check: each number found where its defect is and nowhere else, mended or left, and the drawings of
// others run through.
#include "drawing_support.h"

#include "drawing/check.h"
#include "drawing/writer.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

using namespace drawing_test;
namespace fs = std::filesystem;
using lm::drawing::check;
using lm::drawing::CheckResult;
using lm::drawing::Finding;
using lm::drawing::Flaw;

namespace {

std::string findingsOf(const CheckResult& result) {
    std::string all;
    for (const Finding& finding : result.findings()) all += CheckResult::text(finding) + "\n";
    return all;
}

CheckResult checked(const dxf::Parts& parts, bool fix = false) {
    const auto db = readGroups(parts.groups());
    return check(*db.get(), {fix});
}

enum Mending { kNever, kByFix, kByReading };

/// A block of this name with a record, and what stands in it.
void addBlock(dxf::Parts& p, const std::string& name, const std::string& record, const std::string& content) {
    p.blockRecords =
        dxf::Parts::joined({p.blockRecords, dxf::Parts::record("BLOCK_RECORD", record, "1", name)});
    p.blocks = dxf::Parts::joined({p.blocks, dxf::Parts::block(name, record + "0", record, content)});
}

struct Row {
    int number;
    const char* what;
    void (*damage)(dxf::Parts&);
    const char* handle; ///< of the finding; "0" for none
    const char* kind;
    const char* text; ///< a part of the finding's text
    Mending mending;
};

const Row kRows[] = {
    {201, "an object whose owner isn't there",
     [](dxf::Parts& p) { p.objects = "3 A|350 70|0 XRECORD|5 70|330 FF|100 AcDbXrecord|1 x"; }, "70",
     "XRECORD", "listed by the dictionary C", kByFix},
    {201, "an object whose owner isn't there and that nobody lists",
     [](dxf::Parts& p) { p.objects = "0 XRECORD|5 70|330 FF|100 AcDbXrecord|1 x"; }, "70", "XRECORD",
     "listed by no dictionary", kNever},
    {201, "an attribute whose owner isn't there",
     [](dxf::Parts& p) {
         addBlock(p, "B", "70", "");
         p.entities = "0 INSERT|5 100|330 1F|100 AcDbEntity|8 0|66 1|2 B|0 ATTRIB|5 101|330 FF|100 "
                      "AcDbEntity|8 0|1 v|2 TAG|0 SEQEND|5 102|330 100|100 AcDbEntity|8 0";
     },
     "101", "ATTRIB", "FF, it stands in 100", kByFix},
    {201, "a record whose owner isn't there",
     [](dxf::Parts& p) { p.layers = dxf::Parts::record("LAYER", "70", "FF", "L"); }, "70", "LAYER",
     "FF, it stands in 2", kByFix},
    {202, "an entity of a block that names another block",
     [](dxf::Parts& p) { addBlock(p, "B", "70", "0 LINE|5 100|330 1F|100 AcDbEntity|8 0"); }, "100", "LINE",
     "1F, it stands in 70", kNever},
    {202, "a record that names something else",
     [](dxf::Parts& p) { p.layers = dxf::Parts::record("LAYER", "70", "C", "L"); }, "70", "LAYER",
     "C, it stands in 2", kNever},
    {203, "an entry without its object", [](dxf::Parts& p) { p.objects = "3 A|350 FF"; }, "C", "DICTIONARY",
     "\"A\", FF", kByFix},
    {203, "an owned entry without its object", [](dxf::Parts& p) { p.objects = "3 A|360 FF"; }, "C",
     "DICTIONARY", "\"A\", FF", kByFix},
    {204, "two entries of one name",
     [](dxf::Parts& p) {
         p.objects = "3 A|350 70|3 A|350 71|0 XRECORD|5 70|330 C|100 AcDbXrecord|1 x|0 XRECORD|5 71|330 "
                     "C|100 AcDbXrecord|1 y";
     },
     "C", "DICTIONARY", "\"A\" for 71", kByFix},
    {205, "two layers that differ in their case",
     [](dxf::Parts& p) {
         p.layers = dxf::Parts::layer("70", "Page") + "|" + dxf::Parts::layer("71", "PAGE");
     },
     "71", "LAYER", "\"PAGE\", like \"Page\" at 70", kNever},
    {206, "two entries that differ in their case",
     [](dxf::Parts& p) {
         p.objects = "3 Cable|350 70|3 CABLE|350 71|0 XRECORD|5 70|330 C|100 AcDbXrecord|1 x|0 XRECORD|5 "
                     "71|330 C|100 AcDbXrecord|1 y";
     },
     "C", "DICTIONARY", "\"CABLE\", like \"Cable\"", kNever},
    {207, "a handle in extended data",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|1001 ACAD|1005 FF"; }, "100", "LINE", "FF",
     kNever},
    {207, "a word for a handle in extended data",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|1001 ACAD|1005 here"; }, "100", "LINE",
     "\"here\"", kNever},
    {208, "a reactor",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|102 {ACAD_REACTORS|330 FF|102 }|330 1F|100 x|8 0"; },
     "100", "LINE", "FF", kNever},
    {209, "an extension dictionary",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|102 {ACAD_XDICTIONARY|360 FF|102 }|330 1F|100 x|8 0"; },
     "100", "LINE", "FF", kNever},
    {210, "a plot style", [](dxf::Parts& p) { p.layers = dxf::Parts::layer("70", "L", "390 FF"); }, "70",
     "LAYER", "group 390, FF", kNever},
    {210, "a handle in an xrecord",
     [](dxf::Parts& p) { p.objects = "3 A|350 70|0 XRECORD|5 70|330 C|100 AcDbXrecord|340 FF"; }, "70",
     "XRECORD", "group 340, FF", kNever},
    {210, "a second handle under the owner's code",
     [](dxf::Parts& p) { p.entities = "0 THING|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbThing|330 FF"; },
     "100", "THING", "group 330, FF", kNever},
    {211, "an application", [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|1001 RZ|1000 x"; },
     "100", "LINE", "\"RZ\"", kByFix},
    {212, "the line type of an entity",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|6 DASHED"; }, "100", "LINE", "\"DASHED\"",
     kNever},
    {212, "the line type of a layer",
     [](dxf::Parts& p) { p.layers = dxf::Parts::layer("70", "L", "6 DASHED"); }, "70", "LAYER", "\"DASHED\"",
     kNever},
    {213, "a text style", [](dxf::Parts& p) { p.entities = "0 TEXT|5 100|330 1F|8 0|1 x|7 ROMANS"; }, "100",
     "TEXT", "\"ROMANS\"", kNever},
    {214, "a block in itself", [](dxf::Parts& p) { addBlock(p, "A", "70", "0 INSERT|5 100|330 70|8 0|2 A"); },
     "100", "INSERT", "\"A\" > \"A\"", kNever},
    {214, "three blocks in a circle",
     [](dxf::Parts& p) {
         addBlock(p, "A", "70", "0 INSERT|5 100|330 70|8 0|2 B");
         addBlock(p, "B", "71", "0 INSERT|5 101|330 71|8 0|2 C");
         addBlock(p, "C", "72", "0 INSERT|5 102|330 72|8 0|2 A");
     },
     "102", "INSERT", "\"A\" > \"B\" > \"C\" > \"A\"", kNever},
    {215, "an attribute by itself", [](dxf::Parts& p) { p.entities = "0 ATTRIB|5 100|330 1F|8 0|1 v|2 TAG"; },
     "100", "ATTRIB", "by itself in \"*Model_Space\"", kNever},
    {215, "a vertex by itself", [](dxf::Parts& p) { p.entities = "0 VERTEX|5 100|330 1F|8 0"; }, "100",
     "VERTEX", "by itself", kNever},
    {217, "a dictionary in itself", [](dxf::Parts& p) { p.objects = "3 A|350 C"; }, "C", "DICTIONARY",
     "C > C", kNever},
    {217, "two dictionaries in each other",
     [](dxf::Parts& p) {
         p.objects = "3 A|350 70|0 DICTIONARY|5 70|330 C|100 AcDbDictionary|3 B|350 71|0 DICTIONARY|5 71|330 "
                     "70|100 AcDbDictionary|3 A|350 70";
     },
     "71", "DICTIONARY", "70 > 71 > 70", kNever},
    {218, "a seed in use",
     [](dxf::Parts& p) {
         p.header = "9 $HANDSEED|5 100";
         p.entities = "0 LINE|5 100|330 1F|8 0";
     },
     "0", "", "\"100\", the highest is 20E", kByReading}, // the end of a block
    {219, "text of an entity that isn't read",
     [](dxf::Parts& p) { p.entities = "0 THING|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbThing|1 \xFF"; },
     "100", "THING", "group 1", kNever},
    {219, "extended data", [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|1001 ACAD|1000 \xC3"; },
     "100", "LINE", "group 1000", kNever},
    {220, "a block without a record",
     [](dxf::Parts& p) { p.blocks = "0 BLOCK|5 70|8 0|2 B|70 0|0 ENDBLK|5 71|8 0"; }, nullptr, "BLOCK_RECORD",
     "\"B\" was entered", kByReading},
    {221, "a record without a block",
     [](dxf::Parts& p) { p.blockRecords = dxf::Parts::record("BLOCK_RECORD", "70", "1", "B"); }, "70",
     "BLOCK_RECORD", "\"B\" is taken as empty", kByReading},
    {222, "the block of a dimension",
     [](dxf::Parts& p) { p.entities = "0 DIMENSION|5 100|330 1F|8 0|2 *D1"; }, "100", "DIMENSION", "\"*D1\"",
     kNever},
    {223, "the current layer", [](dxf::Parts& p) { p.header = "9 $CLAYER|8 GONE"; }, "0", "",
     "CLAYER is \"GONE\"", kByReading},
    {223, "the current text style", [](dxf::Parts& p) { p.header = "9 $TEXTSTYLE|7 GONE"; }, "0", "",
     "TEXTSTYLE is \"GONE\"", kNever},
    {224, "a point without its second number",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|1001 ACAD|1010 1.0|1040 2.0"; }, "100", "LINE",
     "a point without its group 1020", kNever},
    {224, "a point without its third number",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|1001 ACAD|1011 1.0|1021 2.0"; }, "100", "LINE",
     "a point without its group 1031", kNever},
    {225, "an empty version", [](dxf::Parts& p) { p.version = " "; }, "0", "", "ACADVER", kByReading},
    // What the reader finds is part of it, also what shows only when objects are read.
    {105, "two layers of one name",
     [](dxf::Parts& p) { p.layers = dxf::Parts::layer("70", "L") + "|" + dxf::Parts::layer("71", "L"); },
     "71", "LAYER", "\"L\"", kByFix},
    {106, "an entity whose owner isn't there", [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 FF|8 0"; },
     "100", "LINE", "FF is no block", kByFix},
    {106, "an entity whose owner is no block", [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 C|8 0"; },
     "100", "LINE", "C is no block", kNever},
    {109, "a reference to nothing", [](dxf::Parts& p) { p.entities = "0 INSERT|5 100|330 1F|8 0|2 NOPE"; },
     "100", "INSERT", "NOPE", kNever},
    {110, "an entity on a layer that the table lacks",
     [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 NEW"; }, "100", "LINE", "NEW", kByReading},
    {111, "a word for a number", [](dxf::Parts& p) { p.entities = "0 LINE|5 100|330 1F|8 0|10 wide"; }, "100",
     "LINE", "wide", kNever},
    {113, "bytes that are no UTF-8", [](dxf::Parts& p) { p.entities = "0 TEXT|5 100|330 1F|8 0|1 \xFF"; },
     "100", "TEXT", "group 1", kNever},
};

/// Further repairs of the reader. Some come with others.
void (*const kReaderRows[])(dxf::Parts&) = {
    [](dxf::Parts& p) { p.entities = "0 LINE|330 1F|8 0"; },
    [](dxf::Parts& p) { p.entities = "0 LINE|5 2|330 1F|8 0"; },
    [](dxf::Parts& p) { p.entities = "0 LINE|5 HELLO|330 1F|8 0"; },
    [](dxf::Parts& p) { p.layers = "0 LAYER|5 70|330 2|70 0"; },
    [](dxf::Parts& p) { p.tables = "0 LAYER|5 70|330 2|2 LOST|70 0"; },
    [](dxf::Parts& p) { p.blocks = "0 LINE|5 70|8 0"; },
    [](dxf::Parts& p) { p.withEnd = false; },
    [](dxf::Parts& p) { p.blocks = "0 BLOCK|5 70|330 1|8 0|2 B"; },
    [](dxf::Parts& p) { p.tables = "0 TABLE|2 DIMSTYLE|5 70|330 0"; },
    [](dxf::Parts& p) { p.withTables = false; },
    [](dxf::Parts& p) { p.withBlocks = false; },
    [](dxf::Parts& p) { p.withObjects = false; },
};

/// What a saved drawing must have, and has: by number.
using Numbers = std::map<int, std::size_t>;

Numbers saidToStay(const CheckResult& result) {
    Numbers left;
    for (const auto& [number, count] : result.counts())
        if (count.found > count.mended) left[number] = count.found - count.mended;
    return left;
}

Numbers foundInSaved(OdDbDatabase& db) {
    std::string bytes;
    lm::drawing::writeDrawing(db,
                              [&bytes](const char* piece, std::size_t size) { bytes.append(piece, size); });
    const auto saved = readBytes(std::move(bytes));
    Numbers found;
    const CheckResult result = check(*saved.get());
    for (const auto& [number, count] : result.counts()) found[number] = count.found;
    return found;
}

fs::path drawingsFolder() {
    const char* const shared = std::getenv("LM_SHARED");
    return (shared != nullptr ? fs::path(shared) : fs::path(LM_SOURCE_DIR) / ".." / "shared") / "drawings";
}

} // namespace

TEST(Check, FindsEachDefectByItsNumberAndNothingElse) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        dxf::Parts parts;
        row.damage(parts);
        for (const bool fix : {false, true}) {
            const CheckResult result = checked(parts, fix);
            ASSERT_EQ(result.total(), 1u) << findingsOf(result);
            const Finding& finding = result.findings().front();
            EXPECT_EQ(finding.number, row.number);
            if (row.handle != nullptr) {
                EXPECT_EQ(utf8(OdDbHandle(finding.handle).ascii()), row.handle);
            }
            EXPECT_EQ(finding.kind, row.kind);
            EXPECT_NE(finding.text.find(row.text), std::string::npos) << finding.text;
            EXPECT_EQ(finding.mended, row.mending == kByReading || (fix && row.mending == kByFix));
            EXPECT_EQ(result.count(row.number), 1u);
            EXPECT_EQ(result.sum().mended, finding.mended ? 1u : 0u);
        }
    }
}

TEST(Check, FindsTheSameInBinaryForm) {
    for (const Row& row : kRows) {
        if (row.number == 111) continue; // a binary number is always one
        SCOPED_TRACE(row.what);
        dxf::Parts parts;
        row.damage(parts);
        const auto db = readBytes(dxf::binary(parts.groups()));
        const CheckResult result = check(*db.get());
        EXPECT_EQ(result.count(row.number), 1u) << findingsOf(result);
        EXPECT_EQ(result.total(), 1u) << findingsOf(result);
    }
}

TEST(Check, FindsNothingInAGoodDrawing) {
    const CheckResult bare = checked(dxf::Parts());
    EXPECT_EQ(bare.total(), 0u) << findingsOf(bare);
    EXPECT_TRUE(bare.counts().empty());
    dxf::Parts p;
    p.header = "9 $HANDSEED|5 FFFF|9 $CLAYER|8 page|9 $CELTYPE|6 BYLAYER|9 $TEXTSTYLE|7 STANDARD";
    p.layers = dxf::Parts::layer("70", "Page", "390 0") + "|" + dxf::Parts::layer("71", "Page2");
    addBlock(p, "INNER", "72", "0 LINE|5 100|330 72|100 AcDbEntity|8 0|6 ByLayer");
    addBlock(p, "OUTER", "73", "0 INSERT|5 101|330 73|8 Page|2 INNER|0 INSERT|5 102|330 73|8 Page|2 INNER");
    p.entities =
        "0 INSERT|5 103|102 {ACAD_REACTORS|330 C|102 }|102 {ACAD_XDICTIONARY|360 75|102 }|330 1F|100 "
        "AcDbEntity|8 PAGE|66 1|2 outer|1001 acad|1000 text|1005 103|1005 0|"
        "0 ATTRIB|5 104|330 103|100 AcDbEntity|8 0|7 standard|1 x|2 T|0 SEQEND|5 105|330 103|8 0|"
        "0 INSERT|5 106|330 1F|8 0|2 INNER|0 LINE|5 107|330 1B|67 1|8 0";
    p.objects = "3 A|350 74|0 XRECORD|5 74|330 C|100 AcDbXrecord|330 0|340 103|320 FFF|341 |102 {MINE|102 }|"
                "0 DICTIONARY|5 75|330 103|100 AcDbDictionary|3 a|350 74|3 A2|350 74";
    const CheckResult full = checked(p);
    EXPECT_EQ(full.total(), 0u) << findingsOf(full);
}

TEST(Check, FindsNothingInANewDrawing) {
    const auto db = newDatabase();
    addLayer(*db.get(), "Page");
    const auto line = make<OdDbLine>();
    append(*db.get(), line);
    line->upgradeOpen();
    line->setXData(chainOf("1001 RZ|1000 x"));
    const CheckResult result = check(*db.get(), {true});
    EXPECT_EQ(result.total(), 0u) << findingsOf(result);
}

TEST(Check, LooksAtWhatWasChanged) {
    dxf::Parts p;
    p.entities = "0 LINE|5 100|330 1F|8 0|1001 LOST|1005 FF";
    const auto db = readGroups(p.groups());
    {
        const auto line = byHandle<OdDbLine>(*db.get(), "100", OdDb::kForWrite);
        line->setXData(chainOf("1001 LOST"));
        line->setXData(chainOf("1001 RZ|1005 FE|1005 100"));
    }
    const CheckResult result = check(*db.get());
    EXPECT_EQ(findingsOf(result), "207: a handle in extended data without its object, LINE 100: \"FE\"\n");
}

TEST(Check, PassesOverWhatWasErased) {
    dxf::Parts p;
    p.entities = "0 INSERT|5 100|330 1F|8 0|6 GONE|2 A|1001 LOST|1005 FF";
    addBlock(p, "A", "70", "0 INSERT|5 101|330 70|8 0|2 A");
    const auto db = readGroups(p.groups());
    byHandle<OdDbEntity>(*db.get(), "100", OdDb::kForWrite)->erase();
    byHandle<OdDbEntity>(*db.get(), "101", OdDb::kForWrite)->erase();
    EXPECT_EQ(findingsOf(check(*db.get())), "");
}

TEST(Check, FindsNothingAgainWhereItMended) {
    for (const Row& row : kRows) {
        if (row.mending != kByFix || row.number < 200) continue;
        SCOPED_TRACE(row.what);
        dxf::Parts parts;
        row.damage(parts);
        const auto db = readGroups(parts.groups());
        check(*db.get(), {true});
        EXPECT_EQ(findingsOf(check(*db.get())), "");
    }
}

TEST(Check, SaysTheTruthAboutWhatIsSaved) {
    const auto expectTruth = [](void (*damage)(dxf::Parts&)) {
        dxf::Parts parts;
        damage(parts);
        for (const bool fix : {false, true}) {
            const auto db = readGroups(parts.groups());
            const CheckResult result = check(*db.get(), {fix});
            EXPECT_EQ(foundInSaved(*db.get()), saidToStay(result)) << findingsOf(result);
        }
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        expectTruth(row.damage);
    }
    for (std::size_t i = 0; i < std::size(kReaderRows); ++i) {
        SCOPED_TRACE(i);
        expectTruth(kReaderRows[i]);
    }
}

TEST(Check, RegistersEachApplicationOnce) {
    dxf::Parts p;
    p.entities =
        "0 LINE|5 100|330 1F|8 0|1001 RZ|1000 x|1001 OTHER|1000 y|0 LINE|5 101|330 1F|8 0|1001 RZ|1000 "
        "x|0 LINE|5 102|330 1F|8 0|1001 rz|1000 x";
    const auto db = readGroups(p.groups());
    const CheckResult result = check(*db.get(), {true});
    EXPECT_EQ(result.count(Flaw::kUnregistered), 2u) << findingsOf(result);
    EXPECT_NE(findingsOf(result).find("first of 3 times"), std::string::npos) << findingsOf(result);
    EXPECT_EQ(namesOf(db->getRegAppTableId()), (std::vector<std::string>{"ACAD", "RZ", "OTHER"}));
}

TEST(Check, GivesDoubledRecordsNamesOfTheirOwn) {
    dxf::Parts p;
    p.layers = dxf::Parts::joined({dxf::Parts::layer("70", "L"), dxf::Parts::layer("71", "L"),
                                   dxf::Parts::layer("72", "L$73"), dxf::Parts::layer("73", "L")});
    const auto db = readGroups(p.groups());
    const CheckResult result = check(*db.get(), {true});
    EXPECT_EQ(namesOf(db->getLayerTableId()), (std::vector<std::string>{"0", "L", "L$71", "L$73", "L$73$"}));
    EXPECT_EQ(result.count(105), 2u);
    EXPECT_EQ(result.sum().mended, 2u);
    EXPECT_EQ(layerTable(*db.get())->getAt(od("L")).getHandle(), OdDbHandle(0x70));
    EXPECT_EQ(layerTable(*db.get())->getAt(od("L$71")).getHandle(), OdDbHandle(0x71));
}

TEST(Check, LeavesDoubledNamesThatBeginWithAStar) {
    dxf::Parts p;
    addBlock(p, "*U1", "70", "0 LINE|5 100|330 70|8 0");
    p.blocks += "|0 BLOCK|5 80|8 0|2 *U1|70 1|0 LINE|5 101|8 0|0 ENDBLK|5 81|8 0";
    const auto db = readGroups(p.groups());
    const CheckResult result = check(*db.get(), {true});
    EXPECT_EQ(result.count(105), 1u) << findingsOf(result);
    for (const Finding& finding : result.findings())
        EXPECT_EQ(finding.mended, finding.number != 105) << findingsOf(result);
    const std::vector<std::string> names = namesOf(db->getBlockTableId());
    EXPECT_EQ(std::count(names.begin(), names.end(), "*U1"), 2);
}

TEST(Check, KeepsEveryObjectOfADictionary) {
    dxf::Parts p;
    p.objects = "3 A|350 70|3 GONE|350 FF|3 A|350 71|3 A|350 70|3 A|350 71|3 A$71|350 72|";
    for (const char* handle : {"70", "71", "72"})
        p.objects += std::string("0 XRECORD|5 ") + handle + "|330 C|100 AcDbXrecord|1 x|";
    p.objects.pop_back();
    const auto db = readGroups(p.groups());
    const auto entries = [&db] {
        std::string all;
        const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId());
        const auto walk = root->newIterator();
        for (; !walk->done(); walk->next())
            all += utf8(walk->name()) + "=" + utf8(walk->objectId().getHandle().ascii()) + " ";
        return all;
    };
    const std::string before = entries();
    EXPECT_EQ(check(*db.get()).count(Flaw::kDoubledEntry), 3u);
    EXPECT_EQ(entries(), before) << "without fix nothing changes";
    const CheckResult result = check(*db.get(), {true});
    EXPECT_EQ(result.count(Flaw::kDoubledEntry), 3u) << findingsOf(result);
    EXPECT_EQ(result.count(Flaw::kUnknownEntry), 1u);
    EXPECT_EQ(entries(), "A=70 A$71$=71 A$71=72 ");
    EXPECT_EQ(open<OdDbDictionary>(db->getNamedObjectsDictionaryId())->getAt(od("A$71$")).getHandle(),
              OdDbHandle(0x71));
}

TEST(Check, GivesAnObjectTheDictionaryThatListsIt) {
    dxf::Parts p;
    p.objects = "3 A|350 70|0 XRECORD|5 70|330 FF|100 AcDbXrecord|1 x";
    const auto db = readGroups(p.groups());
    check(*db.get(), {true});
    const auto record = byHandle<OdDbXrecord>(*db.get(), "70");
    EXPECT_EQ(record->ownerId(), db->getNamedObjectsDictionaryId());
}

TEST(Check, MakesNoCircleOfOwners) {
    dxf::Parts p; // 70 lists 71, which owns 70; 71's own owner is unknown
    p.objects = "0 DICTIONARY|5 70|330 71|100 AcDbDictionary|3 A|350 71|0 DICTIONARY|5 71|330 FF|100 "
                "AcDbDictionary";
    const auto db = readGroups(p.groups());
    const CheckResult result = check(*db.get(), {true});
    EXPECT_EQ(result.count(Flaw::kUnknownOwner), 1u);
    EXPECT_EQ(result.sum().mended, 0u) << findingsOf(result);
    EXPECT_TRUE(byHandle<OdDbObject>(*db.get(), "71")->ownerId().isNull());
}

TEST(Check, ReportsWhatEveryDrawingHas) {
    dxf::Parts p;
    p.withTables = false;
    p.tables = "";
    const CheckResult without = checked(p);
    EXPECT_GT(without.count(112), 0u);
    EXPECT_EQ(without.count(Flaw::kMissingRecord), 1u) << findingsOf(without); // the table of block records
    p = dxf::Parts();
    std::string groups = p.groups();
    const std::string byLayer = dxf::Parts::record("LTYPE", "15", "5", "ByLayer") + "|";
    const std::size_t at = groups.find(byLayer);
    ASSERT_NE(at, std::string::npos);
    groups.erase(at, byLayer.size());
    const auto db = readGroups(groups);
    const CheckResult result = check(*db.get());
    EXPECT_EQ(result.count(Flaw::kMissingRecord), 1u) << findingsOf(result);
    EXPECT_TRUE(result.findings().front().mended);
    EXPECT_NE(findingsOf(result).find("\"ByLayer\" was made"), std::string::npos);
}

TEST(Check, AsksNothingOfOldDrawingsThatTheyCantHave) {
    dxf::Parts p;
    p.version = "AC1009";
    p.withObjects = false;
    p.withTables = false;
    p.withBlocks = false;
    p.blocks = "";
    p.entities = "0 LINE|8 0|10 1.0";
    const CheckResult result = checked(p);
    EXPECT_EQ(result.total(), 0u) << findingsOf(result);
}

TEST(Check, KeepsAHundredOfANumberAndCountsTheRest) {
    dxf::Parts p;
    for (int i = 0; i < 250; ++i)
        p.entities += std::string(i == 0 ? "" : "|") + "0 INSERT|5 " + utf8(OdDbHandle(0x1000 + i).ascii()) +
                      "|330 1F|8 0|6 GONE|2 NOPE";
    const CheckResult result = checked(p, true);
    EXPECT_EQ(result.count(109), 250u);
    EXPECT_EQ(result.count(Flaw::kUnknownLinetype), 250u);
    EXPECT_EQ(result.findings().size(), 200u);
    EXPECT_EQ(result.total(), 500u);
    for (std::size_t i = 1; i < result.findings().size(); ++i)
        EXPECT_LE(result.findings()[i - 1].number, result.findings()[i].number);
}

TEST(Check, FindsExtendedDataThatOtherProgramsRefuse) {
    const struct {
        const char* groups;
        const char* text; // null for what is good
    } rows[] = {
        {"1004 0AfF", nullptr},
        {"1004 ", nullptr},
        {"1004 0A0", "group 1004, \"0A0\""},
        {"1004 0G", "group 1004, \"0G\""},
        {"1070 -32768", nullptr},
        {"1070 65535", nullptr},
        {"1070 65536", "group 1070, \"65536\""},
        {"1070 -32769", "group 1070, \"-32769\""},
        {"1070 many", "group 1070, \"many\""},
        {"1071 99999", nullptr},
        {"1071 4294967296", "group 1071, \"4294967296\""},
        {"1040 nan", "group 1040, \"nan\""},
        {"1040 1e999", "group 1040, \"1e999\""},
        {"1041 1,5", nullptr},
        {"1099 1", "group 1099"},
        {"1006 x", "group 1006"},
        {"1010 1|1020 2|1030 3|1013 1|1023 2|1033 3|1040 1|1041 1|1042 1|1002 {|1002 }|1003 0", nullptr},
        {"1010 1|1020 2|1031 3", "a point without its group 1030"},
        {"1010 1|1011 2|1021 2|1031 2", "a point without its group 1020"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.groups);
        dxf::Parts parts;
        parts.entities = "0 LINE|5 100|330 1F|8 0|1001 ACAD|" + std::string(row.groups);
        const CheckResult result = checked(parts);
        EXPECT_EQ(result.total(), row.text != nullptr ? 1u : 0u) << findingsOf(result);
        if (row.text == nullptr || result.total() == 0) continue;
        EXPECT_EQ(result.findings().front().number, 224);
        EXPECT_EQ(result.findings().front().text, row.text);
    }
}

TEST(Check, KeepsItsNumbers) {
    const std::vector<std::pair<Flaw, int>> numbers = {
        {Flaw::kUnknownOwner, 201},   {Flaw::kOtherOwner, 202},       {Flaw::kUnknownEntry, 203},
        {Flaw::kDoubledEntry, 204},   {Flaw::kNamesByCase, 205},      {Flaw::kEntriesByCase, 206},
        {Flaw::kUnknownInXData, 207}, {Flaw::kUnknownReactor, 208},   {Flaw::kUnknownExtension, 209},
        {Flaw::kUnknownPointer, 210}, {Flaw::kUnregistered, 211},     {Flaw::kUnknownLinetype, 212},
        {Flaw::kUnknownStyle, 213},   {Flaw::kBlockCircle, 214},      {Flaw::kStrayPart, 215},
        {Flaw::kMissingRecord, 216},  {Flaw::kDictionaryCircle, 217}, {Flaw::kLowSeed, 218},
        {Flaw::kBadText, 219},        {Flaw::kNoRecord, 220},         {Flaw::kNoBlock, 221},
        {Flaw::kUnknownPicture, 222}, {Flaw::kUnknownSetting, 223},   {Flaw::kBadXData, 224},
        {Flaw::kNoVersion, 225}};
    for (const auto& [flaw, number] : numbers) {
        EXPECT_EQ(static_cast<int>(flaw), number);
        EXPECT_STRNE(CheckResult::describe(number), "a defect");
    }
    EXPECT_STREQ(CheckResult::describe(109), Report::describe(Defect::kUnknownBlock));
}

TEST(Check, TakesDeepAndWideNestingInItsStride) {
    // A hundred thousand blocks one in the other, and the last one contains the first.
    constexpr int kBlocks = 100000;
    std::string groups = "0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 BLOCKS";
    for (int i = 0; i < kBlocks; ++i)
        groups += "|0 BLOCK|8 0|2 B" + std::to_string(i) + "|70 0|10 0|20 0|30 0|0 INSERT|8 0|2 B" +
                  std::to_string((i + 1) % kBlocks) + "|0 ENDBLK|8 0";
    // And sixty that contain the next one twice: walked path by path they would never end.
    for (int i = 0; i < 60; ++i) {
        const std::string next = "|0 INSERT|8 0|2 W" + std::to_string(i + 1);
        groups += "|0 BLOCK|8 0|2 W" + std::to_string(i) + "|70 0|10 0|20 0|30 0" +
                  (i < 59 ? next + next : "") + "|0 ENDBLK|8 0";
    }
    groups += "|0 ENDSEC|0 EOF";
    const auto db = readGroups(groups);
    const auto started = std::chrono::steady_clock::now();
    const CheckResult result = check(*db.get(), {true});
    const auto took = std::chrono::steady_clock::now() - started;
    EXPECT_EQ(result.count(Flaw::kBlockCircle), 1u) << findingsOf(result);
    EXPECT_NE(findingsOf(result).find("99995 more"), std::string::npos) << findingsOf(result);
    EXPECT_LT(took, std::chrono::seconds(20));
}

TEST(Check, RunsOverRealDrawings) {
    if (!fs::is_directory(drawingsFolder())) {
        std::cout << "no drawings at " << drawingsFolder() << ", nothing to check\n";
        return;
    }
    std::size_t files = 0;
    for (const auto& entry : fs::directory_iterator(drawingsFolder())) {
        if (entry.path().extension() != ".dxf") continue;
        SCOPED_TRACE(entry.path().filename());
        ++files;
        const auto db = lm::drawing::readDrawing(od(entry.path().string()));
        const CheckResult first = check(*db.get());
        EXPECT_EQ(findingsOf(check(*db.get())), findingsOf(first)) << "a check changes nothing";
        const CheckResult fixed = check(*db.get(), {true});
        EXPECT_EQ(fixed.total(), first.total());
        const CheckResult again = check(*db.get());
        for (const auto& [number, count] : again.counts()) {
            if (number < 200 || number == 216 || number == 218 || number == 220 || number == 221 ||
                number == 223)
                continue;
            EXPECT_EQ(count.mended, 0u) << number;
            const auto before = fixed.counts().at(number);
            EXPECT_EQ(count.found, before.found - before.mended) << number;
        }
        EXPECT_EQ(foundInSaved(*db.get()), saidToStay(fixed));
    }
    EXPECT_GT(files, 0u);
}
