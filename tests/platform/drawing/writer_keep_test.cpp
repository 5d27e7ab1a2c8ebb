// SPDX-License-Identifier: MIT
// What came from a file and wasn't changed is written as it came, in any version and form, and nothing is
// lost.
#include "writer_samples.h"

#include <cstdlib>

#include <unistd.h>

namespace drawing_test {
namespace {

TEST(WriterKeep, WritesAnUnchangedFileAsItCame) {
    for (const char* end : {"\n", "\r\n"})
        for (const std::size_t width : {0u, 3u, 5u}) {
            const std::string bytes = dxf::text(withReference().groups(), end, width);
            EXPECT_EQ(saved(*readBytes(bytes).get()), bytes);
        }
    const std::string binary = dxf::binary(withReference().groups());
    EXPECT_EQ(saved(*readBytes(binary).get(), {FileVersion::kR2018, true}), binary);
}

TEST(WriterKeep, WritesAnOpenedFileAsItCame) {
    const std::string bytes = bytesOf(withReference());
    const auto db = readBytes(bytes);
    db->data().nodes.forEach([&db](lm::drawing::Node& node) {
        if (node.kind != lm::drawing::kKindBlock && node.kind != lm::drawing::kKindEndblk)
            OdDbObjectId(&node).openObject(OdDb::kForWrite)->xData();
    });
    EXPECT_EQ(saved(*db.get()), bytes);
    db->data().nodes.forEach([&db](lm::drawing::Node& node) {
        if (node.body != nullptr) OdDbObjectId(&node).openObject(OdDb::kForWrite)->assertWriteEnabled();
    });
    EXPECT_EQ(saved(*db.get()), bytes) << "an object that says it changed and didn't";
}

TEST(WriterKeep, KeepsCommentsUnknownSectionsAndTheirOrder) {
    Parts parts = drawing();
    parts.before = "999 first";
    parts.header = header("9 $UNKNOWN|70 5|40 1.5|999 in the header");
    parts.entities = "999 in the section|" + kLine +
                     "|999 behind the line|0 HATCH|5 101|330 1F|100 AcDbEntity|8 0|100 "
                     "AcDbHatch|10 0.0|2 SOLID|999 inside|91 0";
    parts.after = Parts::section("ACDSDATA", "70 2|0 ACDSSCHEMA|90 0|310 00FF");
    parts.blocks = "999 in blocks";
    const std::string bytes = bytesOf(parts);
    EXPECT_EQ(saved(*readBytes(bytes).get()), bytes);
    const auto db = readBytes(bytes);
    byHandle<OdDbLine>(*db.get(), "100", OdDb::kForWrite)->setEndPoint({3, 4.5, 0});
    EXPECT_EQ(difference(bytes, saved(*db.get())), "-21 4|+21 4.5|");
}

TEST(WriterKeep, TellsWhatWasKeptUnread) {
    Parts parts = drawing();
    parts.entities =
        "0 HATCH|5 101|330 1F|100 AcDbEntity|8 0|0 HATCH|5 102|330 1F|100 AcDbEntity|8 0|" + kLine;
    parts.objects = "0 LAYOUT|5 D|330 C";
    parts.after = Parts::section("ACDSDATA", "70 2");
    const auto db = readBytes(bytesOf(parts));
    KeptKinds kept;
    saved(*db.get(), {}, &kept);
    EXPECT_EQ(kept, (KeptKinds{{"HATCH", 2}, {"LAYOUT", 1}, {"section ACDSDATA", 1}}));
    byHandle<OdDbEntity>(*db.get(), "101", OdDb::kForWrite)->erase();
    saved(*db.get(), {}, &kept);
    EXPECT_EQ(kept["HATCH"], 1u);
}

TEST(WriterKeep, SeesToTheHeader) {
    Parts parts;
    parts.header = "9 $CLAYER|8 0|9 $OWN|70 1";
    const std::string after = changed(bytesOf(parts), [](OdDbDatabase& db) {
        const auto value = OdResBuf::newRb(330);
        value->setObjectId(addLayer(db, "P"));
        db.setSysVar(od("CLAYER"), value);
        db.setINSBASE({1, 2, 3});
    });
    const std::string all = notationOf(after);
    EXPECT_TRUE(contains(
        all, "|9 $ACADVER|1 AC1032|9 $DWGCODEPAGE|3 ANSI_1252|9 $CLAYER|8 P|9 $OWN|70 1|9 $INSBASE|10 "
             "1.0|20 2.0|30 3.0|9 $HANDSEED|5 "));
    parts.header = header();
    parts.version = "AC1024";
    EXPECT_EQ(difference(bytesOf(parts), changed(bytesOf(parts), [](OdDbDatabase&) {})),
              "-1 AC1024|+1 AC1032|");
    parts.header = "9 $HANDSEED|5 3";
    EXPECT_FALSE(contains(notationOf(changed(bytesOf(parts), [](OdDbDatabase&) {})), "|9 $HANDSEED|5 3|"));
}

TEST(WriterKeep, WritesSectionsThatAreMissing) {
    Parts parts = drawing();
    parts.withBlocks = parts.withEntities = parts.withObjects = false;
    const auto db = readBytes(bytesOf(parts));
    const OdDbObjectId line = append(*db.get(), make<OdDbLine>());
    const std::string after = saved(*db.get());
    const auto read = readBytes(after);
    EXPECT_FALSE(read->getOdDbObjectId(line.getHandle()).isNull());
    std::vector<std::string> sections;
    for (const auto& section : read->data().sections) sections.push_back(section.name);
    EXPECT_EQ(sections, (std::vector<std::string>{"HEADER", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"}));
    EXPECT_EQ(reportOf(*read.get()), "");
    EXPECT_EQ(saved(*read.get()), after);
}

TEST(WriterKeep, WritesTheEndsThatAreMissing) {
    const std::string whole = withReference().groups();
    const auto without = [&whole](const std::string& part) {
        std::string groups = whole;
        groups.erase(groups.find(part), part.size());
        return groups;
    };
    for (const char* part :
         {"|0 ENDTAB", "|0 ENDSEC", "|0 ENDBLK|5 61E|330 60|100 AcDbEntity|8 0|100 AcDbBlockEnd", "|0 EOF"}) {
        SCOPED_TRACE(part);
        const auto db = readBytes(dxf::text(without(part)));
        EXPECT_NE(reportOf(*db.get()), "");
        const OdDbObjectId inBlock = byHandle<OdDbBlockTableRecord>(*db.get(), "60", OdDb::kForWrite)
                                         ->appendOdDbEntity(make<OdDbPoint>());
        const OdDbObjectId layer = addLayer(*db.get(), "NEW");
        const std::string after = saved(*db.get());
        const auto read = readBytes(after);
        EXPECT_EQ(reportOf(*read.get()), "");
        EXPECT_FALSE(read->getOdDbObjectId(inBlock.getHandle()).isNull());
        EXPECT_FALSE(read->getOdDbObjectId(layer.getHandle()).isNull());
        EXPECT_EQ(saved(*read.get()), after);
    }
    const std::string open = dxf::text(without("|0 EOF"));
    const std::string after = saved(*readBytes(open.substr(0, open.size() - 1)).get());
    EXPECT_EQ(after.substr(after.size() - 15), "0\nENDSEC\n0\nEOF\n");
}

TEST(WriterKeep, KeepsEntriesThatStandNowhere) {
    Parts parts = drawing();
    parts.tables = "0 STRAY|5 300|1 kept|" + Parts::table("LAYER", "301", Parts::layer("302", "SECOND"));
    const std::string bytes = bytesOf(parts);
    const auto db = readBytes(bytes);
    EXPECT_NE(reportOf(*db.get()), "");
    EXPECT_EQ(saved(*db.get()), bytes);
}

TEST(WriterKeep, MendsHandlesInTheirPlaces) {
    Parts parts = drawing();
    parts.entities =
        kLine + "|0 POINT|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbPoint|10 0.0|20 0.0|0 POINT|330 1F|100 "
                "AcDbEntity|8 0|100 AcDbPoint|10 0.0|20 0.0";
    const auto db = readBytes(bytesOf(parts));
    const std::string after = saved(*db.get());
    const auto read = readBytes(after);
    EXPECT_EQ(reportOf(*read.get()), "");
    expectSameObjects(*db.get(), *read.get());
    EXPECT_EQ(saved(*read.get()), after);
}

TEST(WriterKeep, GoesThroughBinaryAndBack) {
    Parts parts = withReference();
    parts.after = Parts::section("ACDSDATA", "70 2|160 12345678901|290 1|310 00FF|1004 AB");
    parts.header = header("9 $X|290 1|9 $Y|370 -3");
    const std::string bytes = dxf::text(parts.groups(), "\r\n", 3);
    const std::string binary = saved(*readBytes(bytes).get(), {FileVersion::kR2018, true});
    EXPECT_EQ(binary, dxf::binary(parts.groups()));
    EXPECT_EQ(saved(*readBytes(binary).get(), {FileVersion::kR2018, true}), binary);
    // Numbers get their shortest form; everything else is as it was.
    std::string expected = notationOf(bytes);
    for (const auto& [from, to] : {std::pair("40 2.50|", "40 2.5|"),
                                   {"10 1.50|", "10 1.5|"},
                                   {"|20 2|30 0|11 3|21 4|31 0|", "|20 2.0|30 0.0|11 3.0|21 4.0|31 0.0|"}})
        for (std::size_t at = expected.find(from); at != std::string::npos; at = expected.find(from, at + 1))
            expected.replace(at, std::string(from).size(), to);
    EXPECT_EQ(notationOf(saved(*readBytes(binary).get())), expected);
}

TEST(WriterKeep, WritesOldBinaryFilesWithCodesOfTwoBytes) {
    Parts parts = withReference();
    const std::string old = dxf::binaryShort(parts.groups());
    EXPECT_EQ(saved(*readBytes(old).get(), {FileVersion::kR2018, true}), dxf::binary(parts.groups()));
}

TEST(WriterKeep, SplitsChunksThatABinaryFileCantHold) {
    Parts parts = drawing();
    parts.objects = "0 XRECORD|5 D0|330 C|100 AcDbXrecord|280 1|310 " + std::string(600, 'A');
    const auto read = savedAndRead(*readBytes(bytesOf(parts)).get(), {FileVersion::kR2018, true});
    std::string all;
    for (auto at = byHandle<OdDbXrecord>(*read.get(), "D0")->rbChain(); !at.isNull(); at = at->next())
        all += at->getBinary();
    EXPECT_EQ(all, std::string(300, '\xAA'));
}

TEST(WriterKeep, WritesControlBytesOfBinaryTextsAsCarets) {
    Parts parts = drawing();
    parts.entities = "0 TEXT|5 50|330 1F|100 AcDbEntity|8 0|100 AcDbText|10 0.0|20 0.0|40 1.0|1 a\nb\x0C^J";
    const auto db = readBytes(dxf::binary(parts.groups()));
    EXPECT_TRUE(contains(entryOf(saved(*db.get()), "50"), "|1 a^Jb^L^J"));
}

TEST(WriterKeep, KeepsAllOfAVersionThatTheTargetLacks) {
    const std::string bytes = bytesOf(withReference());
    const std::string old = saved(*readBytes(bytes).get(), {FileVersion::kR2000});
    EXPECT_EQ(difference(bytes, old), "-1 AC1032|+1 AC1015|");
    EXPECT_EQ(saved(*readBytes(old).get(), {FileVersion::kR2018}), bytes);
}

TEST(WriterKeep, LeavesTheDatabaseAsItIs) {
    const auto db = readBytes(bytesOf(withReference()));
    byHandle<OdDbBlockReference>(*db.get(), "200", OdDb::kForWrite)->setRotation(1);
    const std::uint64_t handle = db->data().nextHandle;
    const auto count = [&db] {
        std::size_t nodes = 0;
        db->data().nodes.forEach([&nodes](lm::drawing::Node&) { ++nodes; });
        return nodes;
    };
    const std::size_t nodes = count();
    const std::string first = saved(*db.get(), {FileVersion::kR2000, true});
    EXPECT_EQ(db->data().nextHandle, handle);
    EXPECT_EQ(count(), nodes);
    EXPECT_EQ(saved(*db.get(), {FileVersion::kR2000, true}), first);
}

TEST(WriterKeep, KnowsTheVersionsByName) {
    FileVersion version{};
    for (const FileVersion each : kVersions) {
        const char* const names[] = {"R2000", "R2004", "R2007", "R2010", "R2013", "R2018"};
        ASSERT_TRUE(lm::drawing::versionByName(names[static_cast<int>(each)], version));
        EXPECT_EQ(version, each);
    }
    EXPECT_TRUE(lm::drawing::versionByName("r2010", version));
    EXPECT_EQ(version, FileVersion::kR2010);
    for (const char* name : {"", "R12", "2010", "R2010 ", "R20100", "AC1024"})
        EXPECT_FALSE(lm::drawing::versionByName(name, version)) << name;
    EXPECT_STREQ(lm::drawing::versionText(FileVersion::kR2007), "AC1021");
}

TEST(WriterKeep, PassesOnWhatTheSinkThrows) {
    const auto db = readBytes(bytesOf(withReference()));
    const auto full = [](const char*, std::size_t) { throw std::runtime_error("full"); };
    EXPECT_THROW(lm::drawing::writeDrawing(*db.get(), full), std::runtime_error);
    EXPECT_EQ(saved(*db.get()), bytesOf(withReference()));
}

TEST(WriterKeep, SavesUnderAPathOrTellsWhyNot) {
    const auto db = readBytes(bytesOf(withReference()));
    char folder[] = "/tmp/lm_writer_XXXXXX";
    ASSERT_NE(::mkdtemp(folder), nullptr);
    const std::string path = std::string(folder) + "/a.dxf";
    lm::drawing::saveDrawing(*db.get(), od(std::string(folder) + "\\a.dxf"));
    EXPECT_EQ(saved(*lm::drawing::readDrawing(od(path)).get()), bytesOf(withReference()));
    const std::string bad = std::string(folder) + "/no/a.dxf";
    EXPECT_EQ(codeOf([&] { lm::drawing::saveDrawing(*db.get(), od(bad)); }), eFilerError);
    EXPECT_TRUE(contains(errorOf([&] { lm::drawing::saveDrawing(*db.get(), od(bad)); }), bad));
    std::remove(path.c_str());
    ::rmdir(folder);
}

} // namespace
} // namespace drawing_test
