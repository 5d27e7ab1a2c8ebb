// SPDX-License-Identifier: MIT
// Lists of handles lose what was erased since the file was read, and nothing else.
#include "writer_support.h"

#include "drawing/check.h"

namespace drawing_test {
namespace {

dxf::Parts drawingWithLists() {
    dxf::Parts p;
    p.blockRecords = "0 BLOCK_RECORD|5 70|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 B|102 "
                     "{BLKREFS|331 100|331 101|331 EEE|102 }|1001 ACAD|1005 100";
    p.blocks = dxf::Parts::block("B", "71", "70", "0 LINE|5 72|330 70|100 AcDbEntity|8 0");
    p.entities = "0 INSERT|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|2 B|"
                 "0 INSERT|5 101|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|2 B|"
                 "0 THING|5 102|102 {ACAD_REACTORS|330 100|102 }|330 1F|100 AcDbEntity|8 0|340 101|"
                 "0 THING|5 103|102 {ACAD_REACTORS|330 100|330 101|330 EEE|102 }|102 "
                 "{ACAD_XDICTIONARY|360 93|102 }|330 1F|100 AcDbEntity|8 0";
    p.objects =
        "0 GROUP|5 90|330 C|100 AcDbGroup|300 two|70 0|71 1|340 100|340 101|340 EEE|"
        "0 SORTENTSTABLE|5 91|330 C|100 AcDbSortentsTable|330 1F|331 100|5 101|331 101|5 100|331 EEE|5 EEE|"
        "0 OTHER|5 92|330 C|100 AcDbOther|340 100|331 100|"
        "0 DICTIONARY|5 93|330 103|100 AcDbDictionary|281 1";
    return p;
}

OdSmartPtr<OdDbDatabase> without(const char* handle) {
    const auto db = readGroups(drawingWithLists().groups());
    byHandle<OdDbObject>(*db.get(), handle, OdDb::kForWrite)->erase();
    return db;
}

TEST(WriterLists, LeaveOutWhatWasErased) {
    const auto db = without("100");
    for (const bool binary : {false, true}) {
        SCOPED_TRACE(binary);
        std::string bytes = saved(*db.get(), {FileVersion::kR2018, binary});
        if (binary) bytes = saved(*readBytes(bytes).get());
        EXPECT_TRUE(contains(entryOf(bytes, "70"), "|102 {BLKREFS|331 101|331 EEE|102 }|1001 ACAD|1005 100"))
            << entryOf(bytes, "70");
        EXPECT_TRUE(contains(entryOf(bytes, "90"), "|71 1|340 101|340 EEE")) << entryOf(bytes, "90");
        EXPECT_TRUE(contains(notationOf(bytes), "|330 1F|331 101|5 100|331 EEE|5 EEE"));
        EXPECT_TRUE(
            contains(entryOf(bytes, "103"), "|102 {ACAD_REACTORS|330 101|330 EEE|102 }|102 {ACAD_XD"));
    }
}

TEST(WriterLists, LeaveOutBracesThatBecomeEmpty) {
    const std::string bytes = saved(*without("100").get());
    EXPECT_EQ(entryOf(bytes, "102"), "0 THING|5 102|330 1F|100 AcDbEntity|8 0|340 101");
}

TEST(WriterLists, LeaveOutADictionaryThatWasErased) {
    const std::string bytes = saved(*without("93").get());
    EXPECT_FALSE(contains(entryOf(bytes, "103"), "ACAD_XDICTIONARY")) << entryOf(bytes, "103");
    EXPECT_TRUE(contains(entryOf(bytes, "103"), "{ACAD_REACTORS|330 100|330 101|330 EEE|102 }"));
}

TEST(WriterLists, TouchNothingElse) {
    // Other pointers may be what the object is about, and what led nowhere in the file still does.
    const std::string bytes = saved(*without("100").get());
    EXPECT_EQ(entryOf(bytes, "92"), "0 OTHER|5 92|330 C|100 AcDbOther|340 100|331 100");
    const std::string groups = dxf::text(drawingWithLists().groups());
    const auto untouched = readBytes(groups);
    const std::string same = saved(*untouched.get());
    EXPECT_EQ(entryOf(same, "70"), entryOf(groups, "70"));
    EXPECT_EQ(entryOf(same, "90"), entryOf(groups, "90"));
    EXPECT_EQ(entryOf(same, "103"), entryOf(groups, "103"));
}

TEST(WriterLists, KeepWhatWasErasedAndBroughtBack) {
    const auto db = without("100");
    byHandle<OdDbObject>(*db.get(), "101");
    open<OdDbObject>(db->getOdDbObjectId(OdDbHandle(0x100ull)), OdDb::kForWrite, true)->erase(false);
    EXPECT_TRUE(contains(entryOf(saved(*db.get()), "90"), "|340 100|340 101|340 EEE"));
}

TEST(WriterLists, LeaveNothingThatTheCheckFinds) {
    dxf::Parts parts = drawingWithLists();
    for (std::string* text : {&parts.blockRecords, &parts.entities, &parts.objects})
        for (const char* lost : {"|331 EEE|5 EEE", "|331 EEE", "|340 EEE", "|330 EEE", "|340 100|331 100",
                                 "|1005 100", "|340 101|0 THING"})
            for (std::size_t at = 0; (at = text->find(lost)) != std::string::npos;)
                text->replace(at, std::strlen(lost),
                              std::string(lost) == "|340 101|0 THING" ? "|0 THING" : "");
    const auto db = readGroups(parts.groups());
    byHandle<OdDbObject>(*db.get(), "100", OdDb::kForWrite)->erase();
    byHandle<OdDbObject>(*db.get(), "101", OdDb::kForWrite)->erase();
    const auto again = savedAndRead(*db.get());
    const auto result = lm::drawing::check(*again.get());
    EXPECT_EQ(result.count(208), 0u);
    EXPECT_EQ(result.count(210), 0u);
}

} // namespace
} // namespace drawing_test
