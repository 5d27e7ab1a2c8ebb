// SPDX-License-Identifier: MIT
// What a save repairs is repaired once: the file that is read back and written again is the same byte for
// byte, however broken the first one was.
#include "writer_support.h"

namespace drawing_test {
namespace {

struct Broken {
    const char* what;
    std::string groups;
    int lines; ///< entities of this kind that the file holds, and that each save holds too
};

std::string tablesWithoutEnd() {
    return "0 SECTION|2 TABLES|0 TABLE|2 LAYER|70 1|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 TABLE|2 STYLE|70 0|"
           "0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 APPID|70 1|0 APPID|2 APP|70 0|0 ENDSEC|"
           "0 SECTION|2 ENTITIES|0 LINE|8 0|10 1.0|0 ENDSEC|0 EOF";
}

const Broken kBroken[] = {
    {"the last block has no end",
     "0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 $MODEL_SPACE|70 0|10 0.0|8 L|67 1|10 0.0|0 ENDSEC|0 EOF", 0},
    {"a block has nothing at all", "0 SECTION|2 BLOCKS|0 BLOCK|0 ENDSEC|0 EOF", 0},
    {"two sections of blocks, each with a block without end",
     "0 SECTION|2 BLOCKS|0 BLOCK|2 A|0 LINE|8 0|0 BLOCK|2 B|0 LINE|8 0|0 ENDSEC|"
     "0 SECTION|2 BLOCKS|0 BLOCK|2 C|0 LINE|8 0|0 ENDSEC|0 EOF",
     3},
    {"blocks, tables and sections without end",
     "0 SECTION|2 TABLES|0 TABLE|2 LAYER|0 LAYER|2 0|0 SECTION|2 BLOCKS|0 BLOCK|2 A|0 LINE|8 0|"
     "0 SECTION|2 ENTITIES|0 LINE|8 0|0 EOF",
     2},
    {"tables without end in two sections", tablesWithoutEnd(), 1},
    {"parts without SEQEND",
     "0 SECTION|2 BLOCKS|0 BLOCK|2 A|0 INSERT|8 0|66 1|2 A|0 ATTRIB|8 0|1 v|2 T|0 ENDSEC|0 SECTION|2 "
     "ENTITIES|"
     "0 INSERT|8 0|66 1|2 A|0 ATTRIB|8 0|1 v|2 T|0 POLYLINE|8 0|66 1|0 VERTEX|8 0|10 1.0|0 LINE|8 0|0 "
     "ENDSEC|0 EOF",
     1},
    {"records without their table, another table between them",
     "0 SECTION|2 TABLES|0 LAYER|2 A|62 1|0 ENDTAB|0 LAYER|2 B|62 2|0 TABLE|2 STYLE|70 0|0 ENDTAB|0 LAYER|2 "
     "C|"
     "0 ENDSEC|0 SECTION|2 ENTITIES|0 LINE|8 B|0 ENDSEC|0 EOF",
     1},
    {"two blocks of one name",
     "0 SECTION|2 BLOCKS|0 BLOCK|2 B|5 1|0 LINE|8 0|0 ENDBLK|0 BLOCK|2 B|5 2|0 LINE|8 0|0 ENDBLK|0 ENDSEC|0 "
     "EOF",
     2},
    {"two blocks of one name in a newer file",
     "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 BLOCK_RECORD|5 1|"
     "0 BLOCK_RECORD|5 20|330 1|2 B|0 ENDTAB|0 ENDSEC|0 SECTION|2 BLOCKS|"
     "0 BLOCK|5 21|330 20|100 AcDbEntity|2 B|0 LINE|5 22|8 0|0 ENDBLK|5 23|"
     "0 BLOCK|5 24|330 20|100 AcDbEntity|2 B|0 LINE|5 25|8 0|0 ENDBLK|5 26|0 ENDSEC|0 EOF",
     2},
    {"a block under another name than its record, which is that of a layout",
     "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 BLOCK_RECORD|5 1|"
     "0 BLOCK_RECORD|5 20|330 1|2 *Pa|0 ENDTAB|0 ENDSEC|0 SECTION|2 BLOCKS|"
     "0 BLOCK|5 21|330 20|100 AcDbEntity|2 *Paper_Space|0 LINE|5 22|8 0|0 ENDBLK|5 23|2 x|0 ENDSEC|0 EOF",
     1},
    {"the model space twice, in two spellings",
     "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 BLOCK_RECORD|5 1|"
     "0 BLOCK_RECORD|5 20|330 1|2 *Model_SPace|0 ENDTAB|0 ENDSEC|0 SECTION|2 BLOCKS|"
     "0 BLOCK|5 21|330 20|2 *Model_Space|0 ENDBLK|5 22|0 BLOCK|5 23|330 20|2 *Model_Space|0 ENDBLK|5 24|0 "
     "ENDSEC|"
     "0 SECTION|2 ENTITIES|0 LINE|5 30|8 0|0 ENDSEC|0 EOF",
     1},
    {"a block among the records of a table",
     "0 SECTION|2 TABLES|0 TABLE|2 BLO|2 B|0 BLOCK|5 0|0 ENDBLK|0 LINE|0 ENDSEC|0 EOF", 1},
    {"records without a name behind the mark of an xrecord",
     "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 OTHER|5 1|"
     "0 XRECORD|5 60|330 1|100 AcDbXrecord|280 1|2 MOTOR|90 5|0 THING|5 61|102 {OPEN|330 1|0 ENDSEC|0 EOF",
     0},
    {"fields behind extended data",
     "0 SECTION|2 TABLES|0 TABLE|2 LTYPE|0 LTYPE|5 15|2 ByLayer|1001 APP|1000 x|5 11|2 Standard|0 ENDTAB|0 "
     "ENDSEC|"
     "0 SECTION|2 ENTITIES|0 LINE|8 0|1001 APP|8 OTHER|5 99|0 ENDSEC|0 EOF",
     1},
    {"braces that nobody closed",
     "0 SECTION|2 ENTITIES|0 LINE|5 40|102 {OPEN|5 51|8 OTHER|330 50|8 A|10 1.0|0 LINE|8 B|102 {A|5 1|102 "
     "}|102 {B|"
     "1 x|0 ENDSEC|0 EOF",
     2},
    {"a code page that is no ASCII",
     "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|9 $DWGCODEPAGE|3 ANSI_1258\xC2\x85\xC3\xBF|0 ENDSEC|"
     "0 SECTION|2 ENTITIES|0 LINE|5 40|8 \xE0|0 ENDSEC|0 EOF",
     1},
};

int countOf(const std::string& bytes, const char* entry) {
    int count = 0;
    const std::string all = "|" + notationOf(bytes) + "|", sought = std::string("|0 ") + entry + "|";
    for (std::size_t at = all.find(sought); at != std::string::npos; at = all.find(sought, at + 1)) ++count;
    return count;
}

/// Writes in all forms what bytes are read as, and each again.
void isTheSameAgain(const std::string& bytes, int lines) {
    for (const FileVersion version : {FileVersion::kR2000, FileVersion::kR2018})
        for (const bool binary : {false, true}) {
            SCOPED_TRACE(std::string(lm::drawing::versionText(version)) + (binary ? " binary" : " text"));
            const WriteOptions options{version, binary};
            const std::string first = saved(*readBytes(bytes), options);
            EXPECT_TRUE(saved(*readBytes(first), options) == first);
            if (binary) continue;
            EXPECT_EQ(countOf(first, "LINE"), lines);
        }
}

TEST(WriterAgain, WritesTheSameOfEveryRepairedFile) {
    for (const Broken& broken : kBroken) {
        SCOPED_TRACE(broken.what);
        isTheSameAgain(dxf::text(broken.groups), broken.lines);
        isTheSameAgain(dxf::binary(broken.groups), broken.lines);
        isTheSameAgain(dxf::binaryShort("999 made by hand|" + broken.groups), broken.lines);
    }
}

TEST(WriterAgain, PutsTheEndOfABlockInFrontOfTheBlocksThatWereMissing) {
    const auto db = readBytes(dxf::text(kBroken[0].groups));
    const std::string groups = notationOf(saved(*db));
    const std::size_t end = groups.find("|0 ENDBLK|"),
                      next = groups.find("|0 BLOCK|", groups.find("|0 BLOCK|") + 1);
    EXPECT_LT(end, next);
    EXPECT_EQ(countOf(saved(*db), "BLOCK"), countOf(saved(*db), "ENDBLK"));
}

TEST(WriterAgain, GathersRecordsInOneTable) {
    for (const Broken& broken : kBroken) {
        if (!contains(broken.what, "another table between")) continue;
        const auto again = savedAndRead(*readBytes(dxf::text(broken.groups)));
        const auto layers = open<OdDbSymbolTable>(again->getLayerTableId());
        for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(layers->has(lm::drawing::odText(name))) << name;
    }
}

TEST(WriterAgain, LeavesBytesZeroOutOfNames) {
    std::string bytes = dxf::text("0 SECTION|2 ENTITIES|0 LINE|8 ab#c|0 ENDSEC|0 EOF");
    bytes[bytes.find('#')] = '\0';
    const auto db = readBytes(bytes);
    const auto layers = open<OdDbSymbolTable>(db->getLayerTableId());
    EXPECT_TRUE(layers->has(lm::drawing::odText("abc")));
    isTheSameAgain(bytes, 1);
}

} // namespace
} // namespace drawing_test
