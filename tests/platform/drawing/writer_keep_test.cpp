// SPDX-License-Identifier: MIT
// What came from a file: unchanged it is written as it came, changed only what changed, and nothing is lost.
#include "writer_support.h"

#include <cstdlib>
#include <functional>

#include <unistd.h>

namespace drawing_test {
namespace {

using dxf::Parts;

std::string header(const std::string& further = "") {
    return Parts::joined({"9 $INSBASE|10 0.0|20 0.0|30 0.0|9 $CLAYER|8 0|9 $HANDSEED|5 FFFF", further});
}

Parts drawing() {
    Parts parts;
    parts.header = header();
    return parts;
}

const std::string kLine =
    "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbLine|10 1.50|20 2|30 0|11 3|21 4|31 0";
const std::string kReference =
    "0 INSERT|5 200|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|66 1|2 B|10 1.0|20 2.0|30 0.0|70 2|71 3|"
    "0 ATTRIB|5 201|330 200|100 AcDbEntity|8 0|100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.50|1 old|7 STANDARD|"
    "100 AcDbAttribute|280 0|2 TAG|70 0|280 1|1001 ACAD|1000 x|"
    "0 ATTRIB|5 202|330 200|100 AcDbEntity|8 0|100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.50|1 b|"
    "100 AcDbAttribute|2 SECOND|70 1|"
    "0 SEQEND|5 203|330 200|100 AcDbEntity|8 0";

/// A drawing with a reference that has two attributes.
Parts withReference() {
    Parts parts = drawing();
    parts.blockRecords = Parts::record("BLOCK_RECORD", "60", "1", "B", "70 0|280 1|281 0");
    parts.blocks = Parts::block(
        "B", "61", "60", "0 CIRCLE|5 62|330 60|100 AcDbEntity|8 0|100 AcDbCircle|10 0.0|20 0.0|40 1.0");
    parts.entities = Parts::joined({kReference, kLine});
    return parts;
}

std::string bytesOf(const Parts& parts) {
    return dxf::text(parts.groups(), "\r\n", 3);
}

/// Changes a drawing and gives what is saved then.
template<class F>
std::string changed(const std::string& bytes, F&& change) {
    const auto db = readBytes(bytes);
    change(*db.get());
    return saved(*db.get());
}

/// The difference of two texts in the notation: "-group" and "+group" in the order of the file.
std::string difference(const std::string& before, const std::string& after) {
    const auto split = [](const std::string& bytes) {
        std::vector<std::string> groups;
        std::istringstream in(notationOf(bytes));
        for (std::string group; std::getline(in, group, '|');) groups.push_back(group);
        return groups;
    };
    const auto a = split(before), b = split(after);
    std::size_t head = 0, tail = 0;
    while (head < std::min(a.size(), b.size()) && a[head] == b[head]) ++head;
    while (tail < std::min(a.size(), b.size()) - head && a[a.size() - 1 - tail] == b[b.size() - 1 - tail])
        ++tail;
    std::string out;
    for (std::size_t i = head; i < a.size() - tail; ++i) out += "-" + a[i] + "|";
    for (std::size_t i = head; i < b.size() - tail; ++i) out += "+" + b[i] + "|";
    return out;
}

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

TEST(WriterKeep, WritesOnlyTheGroupsThatChanged) {
    const std::string bytes = bytesOf(withReference());
    const auto attribute = [](OdDbDatabase& db) {
        return byHandle<OdDbAttribute>(db, "201", OdDb::kForWrite);
    };
    struct Row {
        const char* name;
        std::function<void(OdDbDatabase&)> change;
        const char* expected;
    };
    const Row rows[] = {
        {"text", [&](OdDbDatabase& db) { attribute(db)->setTextString(od("new")); }, "-1 old|+1 new|"},
        {"height", [&](OdDbDatabase& db) { attribute(db)->setHeight(3); }, "-40 2.50|+40 3.0|"},
        {"same height", [&](OdDbDatabase& db) { attribute(db)->setHeight(2.5); }, ""},
        {"tag", [&](OdDbDatabase& db) { attribute(db)->setTag(od("T")); }, "-2 TAG|+2 T|"},
        {"flags", [&](OdDbDatabase& db) { attribute(db)->setInvisible(true); }, "-70 0|+70 1|"},
        {"field length", [&](OdDbDatabase& db) { attribute(db)->setFieldLength(9); }, "+73 9|"},
        {"rotation", [&](OdDbDatabase& db) { attribute(db)->setRotation(1.5707963267948966); }, "+50 90.0|"},
        {"width", [&](OdDbDatabase& db) { attribute(db)->setWidthFactor(0.5); }, "+41 0.5|"},
        {"alignment",
         [&](OdDbDatabase& db) {
             attribute(db)->setAlignmentPoint({0, 7, 0});
         },
         "+11 0.0|+21 7.0|+31 0.0|"},
        {"normal",
         [&](OdDbDatabase& db) {
             attribute(db)->setNormal({0, 0, -1});
         },
         "+210 0.0|+220 0.0|+230 -1.0|"},
        {"color", [&](OdDbDatabase& db) { attribute(db)->setColor(OdCmColor::fromIndex(3)); }, "+62 3|"},
        {"position",
         [&](OdDbDatabase& db) {
             attribute(db)->setPosition({1, 5, 0});
         },
         "-20 2.0|+20 5.0|"},
        {"scale",
         [&](OdDbDatabase& db) {
             byHandle<OdDbBlockReference>(db, "200", OdDb::kForWrite)->setScaleFactors({1, 2, 1});
         },
         "+42 2.0|"},
        {"xdata", [&](OdDbDatabase& db) { attribute(db)->setXData(chainOf("1001 ACAD|1000 y")); },
         "-1000 x|+1000 y|"},
        {"no xdata", [&](OdDbDatabase& db) { attribute(db)->setXData(chainOf("1001 ACAD")); },
         "-1001 ACAD|-1000 x|"},
    };
    for (const Row& row : rows) {
        const std::string after = changed(bytes, row.change);
        EXPECT_EQ(difference(bytes, after), row.expected) << row.name;
        EXPECT_EQ(saved(*readBytes(after).get()), after) << row.name;
    }
}

TEST(WriterKeep, PutsNewFieldsWhereTheirClassHasThem) {
    const std::string bytes = bytesOf(withReference());
    const std::string after = changed(bytes, [](OdDbDatabase& db) {
        const auto attribute = byHandle<OdDbAttribute>(db, "201", OdDb::kForWrite);
        attribute->setColor(OdCmColor::fromIndex(3));
        attribute->setRotation(1.5707963267948966);
        attribute->setFieldLength(5);
        attribute->setVerticalMode(2);
    });
    EXPECT_EQ(entryOf(after, "201"),
              "0 ATTRIB|5 201|330 200|100 AcDbEntity|8 0|62 3|100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.50|1 "
              "old|50 90.0|"
              "7 STANDARD|100 AcDbAttribute|280 0|2 TAG|70 0|73 5|74 2|280 1|1001 ACAD|1000 x");
}

TEST(WriterKeep, KeepsGroupsThatNobodyReads) {
    Parts parts = drawing();
    const std::string entry =
        "0 LINE|5 100|102 {ACAD_REACTORS|330 C|102 }|330 1F|100 AcDbEntity|8 0|347 AB|92 4|310 0102|100 "
        "AcDbLine|39 7|"
        "10 1.50|20 2|30 0|11 3|21 4|31 0|4711 unknown code|1001 ACAD|1000 a|1010 1|1020 2|1070 5";
    parts.entities = entry;
    const std::string after = changed(bytesOf(parts), [](OdDbDatabase& db) {
        const auto line = byHandle<OdDbLine>(db, "100", OdDb::kForWrite);
        line->setStartPoint({1.5, 2, 8});
        auto chain = line->xData(od("ACAD"));
        chain->next()->setString(od("b"));
        line->setXData(chain);
    });
    std::string expected = entry;
    expected.replace(expected.find("30 0|"), 5, "30 8.0|");
    expected.replace(expected.find("1000 a"), 6, "1000 b");
    EXPECT_EQ(entryOf(after, "100"), expected);
}

TEST(WriterKeep, ChangesVerticesOneByOne) {
    Parts parts = drawing();
    const std::string head = "0 LWPOLYLINE|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbPolyline|";
    parts.entities =
        head + "90 3|70 0|43 0.0|10 1|20 1|40 0.5|41 0.5|10 2|20 2|42 0.5|10 3|20 3|210 0.0|220 0.0|230 1.0";
    const std::string bytes = bytesOf(parts);
    const auto line = [](OdDbDatabase& db) { return byHandle<OdDbPolyline>(db, "100", OdDb::kForWrite); };
    EXPECT_EQ(entryOf(changed(bytes,
                              [&](OdDbDatabase& db) {
                                  line(db)->addVertexAt(1, {7, 8}, 1);
                              }),
                      "100"),
              head + "90 4|70 0|43 0.0|10 1|20 1|40 0.5|41 0.5|10 7.0|20 8.0|42 1.0|10 2|20 2|42 0.5|10 3|20 "
                     "3|210 0.0|"
                     "220 0.0|230 1.0");
    EXPECT_EQ(entryOf(changed(bytes,
                              [&](OdDbDatabase& db) {
                                  line(db)->transformBy(OdGeMatrix3d::translation(OdGeVector3d(0, 1, 0)));
                              }),
                      "100"),
              head + "90 3|70 0|43 0.0|10 1|20 2.0|40 0.5|41 0.5|10 2|20 3.0|42 0.5|10 3|20 4.0|210 0.0|220 "
                     "0.0|230 1.0");
    EXPECT_EQ(
        entryOf(changed(bytes, [&](OdDbDatabase& db) { line(db)->setClosed(true); }), "100"),
        head + "90 3|70 1|43 0.0|10 1|20 1|40 0.5|41 0.5|10 2|20 2|42 0.5|10 3|20 3|210 0.0|220 0.0|230 1.0");
}

TEST(WriterKeep, ChangesMultiLineTexts) {
    Parts parts = drawing();
    const std::string head =
        "0 MTEXT|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbMText|10 0.0|20 0.0|30 0.0|40 1.0|41 9.0|71 1|";
    parts.entities = head + "3 one|3 two|1 three|7 Standard|73 1|44 1.0";
    const std::string after = changed(bytesOf(parts), [](OdDbDatabase& db) {
        byHandle<OdDbMText>(db, "100", OdDb::kForWrite)->setContents(od("short"));
    });
    EXPECT_EQ(entryOf(after, "100"), head + "1 short|7 Standard|73 1|44 1.0");
}

/// The text of an attribute changes without a word to the attribute.
TEST(WriterKeep, ChangesTheTextThatAnAttributeHolds) {
    Parts parts = withReference();
    const std::string lines =
        "71 2|72 0|11 1.0|21 2.0|31 0.0|101 Embedded Object|10 1.0|20 2.0|30 0.0|40 2.5|41 0.0|46 "
        "0.0|71 1|72 5|1 a\\Pb|73 1|44 1.0|";
    parts.entities.replace(parts.entities.find("280 1|1001 ACAD"), 6, "280 1|" + lines);
    const std::string bytes = bytesOf(parts);
    const auto db = readBytes(bytes);
    const auto attribute = byHandle<OdDbAttribute>(*db.get(), "201");
    ASSERT_TRUE(attribute->isMTextAttribute());
    EXPECT_FALSE(attribute->isMirroredInX()) << "71 stands for the kind of the text there";
    EXPECT_EQ(saved(*db.get()), bytes);
    attribute->getMTextAttribute()->setContents(od("c"));
    EXPECT_EQ(difference(bytes, saved(*db.get())), "-1 a\\Pb|+1 c|");
    attribute->upgradeOpen();
    attribute->setMTextAttribute({});
    const std::string without = saved(*db.get());
    EXPECT_FALSE(contains(without, "Embedded"));
    EXPECT_TRUE(contains(entryOf(without, "201"), "|280 1|1001 ACAD|1000 x"));
}

TEST(WriterKeep, FollowsTheAttributesOfReferences) {
    const std::string bytes = bytesOf(withReference());
    const auto erase = [](OdDbDatabase& db, const char* handle) {
        byHandle<OdDbObject>(db, handle, OdDb::kForWrite)->erase();
    };
    const std::string one = changed(bytes, [&](OdDbDatabase& db) { erase(db, "201"); });
    EXPECT_TRUE(entryOf(one, "201").empty());
    EXPECT_TRUE(contains(entryOf(one, "200"), "|66 1|"));
    EXPECT_FALSE(entryOf(one, "203").empty());
    const std::string none = changed(bytes, [&](OdDbDatabase& db) {
        erase(db, "201");
        erase(db, "202");
    });
    EXPECT_TRUE(contains(entryOf(none, "200"), "|66 0|"));
    EXPECT_TRUE(entryOf(none, "203").empty());
    EXPECT_EQ(reportOf(*readBytes(none).get()), "");
    const auto append = [](OdDbDatabase& db) {
        const auto attribute = make<OdDbAttribute>();
        attribute->setTag(od("NEW"));
        byHandle<OdDbBlockReference>(db, "200", OdDb::kForWrite)->appendAttribute(attribute);
    };
    const std::string three = changed(bytes, append);
    EXPECT_EQ(attributesOf(byHandle<OdDbBlockReference>(*readBytes(three).get(), "200")),
              (std::vector<std::string>{"TAG=old", "SECOND=b", "NEW="}));
    const std::string again = changed(none, append);
    EXPECT_TRUE(contains(entryOf(again, "200"), "|66 1|"));
    EXPECT_EQ(attributesOf(byHandle<OdDbBlockReference>(*readBytes(again).get(), "200")),
              (std::vector<std::string>{"NEW="}));
    const std::string order = notationOf(again);
    EXPECT_LT(order.find("|2 NEW|"), order.find("|0 SEQEND|"));
    EXPECT_LT(order.find("|0 SEQEND|"), order.find("|0 LINE|"));
    EXPECT_EQ(saved(*readBytes(again).get()), again);
}

TEST(WriterKeep, PutsNewObjectsAtTheEndOfTheirOwners) {
    const std::string bytes = bytesOf(withReference());
    const auto db = readBytes(bytes);
    const OdDbObjectId line = append(*db.get(), make<OdDbLine>());
    const auto block = byHandle<OdDbBlockTableRecord>(*db.get(), "60", OdDb::kForWrite);
    const OdDbObjectId inBlock = block->appendOdDbEntity(make<OdDbPoint>());
    const OdDbObjectId definition = block->appendOdDbEntity(make<OdDbAttributeDefinition>());
    const OdDbObjectId layer = addLayer(*db.get(), "NEW");
    const OdDbObjectId newBlock = addBlock(*db.get(), "C");
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    root->setAt(od("RZ"), make<OdDbDictionary>());
    const std::string after = saved(*db.get());
    const std::string all = notationOf(after);
    EXPECT_TRUE(contains(all, "|0 POINT|5 " + utf8(inBlock.getHandle().ascii()) + "|330 60|"));
    EXPECT_LT(all.find("|5 62|"), all.find("|0 POINT|"));
    EXPECT_LT(all.find("|0 POINT|"), all.find("|5 61E|"));
    EXPECT_TRUE(contains(all, "|2 B|70 2|")) << "the block has a definition now";
    EXPECT_TRUE(contains(all, "|2 LAYER|5 2|330 0|100 AcDbSymbolTable|70 2|"));
    EXPECT_LT(all.rfind("|5 100|"), all.rfind("|5 " + utf8(line.getHandle().ascii()) + "|"));
    const auto read = readBytes(after);
    EXPECT_EQ(reportOf(*read.get()), "");
    expectSameObjects(*db.get(), *read.get());
    EXPECT_TRUE(open<OdDbDictionary>(read->getNamedObjectsDictionaryId())->has(od("RZ")));
    EXPECT_EQ(namesOf(read->getLayerTableId()), (std::vector<std::string>{"0", "NEW"}));
    EXPECT_FALSE(read->getOdDbObjectId(definition.getHandle()).isNull());
    EXPECT_FALSE(read->getOdDbObjectId(layer.getHandle()).isNull());
    EXPECT_FALSE(read->getOdDbObjectId(newBlock.getHandle()).isNull());
    EXPECT_EQ(saved(*read.get()), after);
}

TEST(WriterKeep, LeavesOutWhatIsErasedAndWhatHangsOnIt) {
    Parts parts = withReference();
    parts.objects =
        "3 A|350 D0|3 B|350 D1|0 XRECORD|5 D0|330 C|100 AcDbXrecord|280 1|1 a|0 XRECORD|5 D1|330 C|100 "
        "AcDbXrecord|280 1|1 b";
    const std::string bytes = bytesOf(parts);
    const auto db = readBytes(bytes);
    for (const char* handle : {"200", "60", "D0"})
        byHandle<OdDbObject>(*db.get(), handle, OdDb::kForWrite)->erase();
    const std::string after = saved(*db.get());
    for (const char* handle : {"200", "201", "202", "203", "60", "61", "61E", "62", "D0"})
        EXPECT_TRUE(entryOf(after, handle).empty()) << handle;
    EXPECT_TRUE(contains(entryOf(after, "C"), "|100 AcDbDictionary|3 B|350 D1"));
    EXPECT_FALSE(contains(entryOf(after, "C"), "|3 A"));
    EXPECT_TRUE(contains(entryOf(after, "1"), "|70 2"));
    EXPECT_EQ(reportOf(*readBytes(after).get()), "");
    byHandle<OdDbObject>(*db.get(), "D1", OdDb::kForWrite);
    for (const char* handle : {"200", "60", "D0"})
        db->getOdDbObjectId(OdDbHandle(std::stoull(handle, nullptr, 16)))
            .openObject(OdDb::kForWrite, true)
            ->erase(false);
    EXPECT_EQ(saved(*db.get()), bytes) << "taken back";
}

TEST(WriterKeep, KeepsCommentsBehindAnErasedEntry) {
    Parts parts = drawing();
    parts.entities =
        kLine + "|999 about the next|0 POINT|5 101|330 1F|100 AcDbEntity|8 0|100 AcDbPoint|10 0.0|20 0.0";
    const std::string after = changed(
        bytesOf(parts), [](OdDbDatabase& db) { byHandle<OdDbObject>(db, "100", OdDb::kForWrite)->erase(); });
    EXPECT_TRUE(contains(notationOf(after), "|2 ENTITIES|999 about the next|0 POINT|"));
}

TEST(WriterKeep, ChangesEntriesOfDictionariesAndRecords) {
    Parts parts = drawing();
    parts.objects =
        "281 1|3 A|360 D0|3 DANGLING|350 DEAD|3 B|360 D1|0 XRECORD|5 D0|330 C|100 AcDbXrecord|280 1|1 a|40 "
        "1.50|10 1|20 2|70 5|0 DICTIONARY|5 D1|330 C|100 AcDbDictionary|281 1|1001 RZ|1000 x";
    const std::string bytes = bytesOf(parts);
    const auto db = readBytes(bytes);
    const auto record = byHandle<OdDbXrecord>(*db.get(), "D0", OdDb::kForWrite);
    auto chain = record->rbChain();
    chain->setString(od("changed"));
    record->setFromRbChain(chain);
    const auto inner = byHandle<OdDbDictionary>(*db.get(), "D1", OdDb::kForWrite);
    const OdDbObjectId added = inner->setAt(od("N"), make<OdDbXrecord>());
    const auto root = byHandle<OdDbDictionary>(*db.get(), "C", OdDb::kForWrite);
    const OdDbObjectId replaced = root->setAt(od("B"), make<OdDbDictionary>());
    const std::string after = saved(*db.get());
    EXPECT_TRUE(contains(entryOf(after, "D0"), "|280 1|1 changed|40 1.50|10 1|20 2|70 5"));
    EXPECT_TRUE(contains(entryOf(after, "C"), "|281 1|3 A|360 D0|3 DANGLING|350 DEAD|3 B|"));
    EXPECT_TRUE(contains(entryOf(after, "C"), "|3 B|360 " + utf8(replaced.getHandle().ascii())));
    EXPECT_TRUE(entryOf(after, "D1").empty());
    EXPECT_TRUE(entryOf(after, utf8(added.getHandle().ascii())).empty()) << "its owner was replaced";
}

TEST(WriterKeep, FollowsRenamedRecords) {
    Parts parts = withReference();
    parts.header = "9 $INSBASE|10 0.0|20 0.0|30 0.0|9 $CLAYER|8 Pag1|9 $CELTYPE|6 ByLayer|9 $HANDSEED|5 FFFF";
    parts.layers = Parts::layer("40", "PAG1");
    parts.entities =
        Parts::joined({parts.entities, "0 HATCH|5 101|330 1F|100 AcDbEntity|8 pag1|100 AcDbHatch|8 x",
                       "0 DIMENSION|5 102|330 1F|100 AcDbEntity|8 PAG1|100 AcDbDimension|2 B|1003 PAG1",
                       "0 LINE|5 103|330 1F|100 AcDbEntity|8 PAG1|100 AcDbLine|10 0.0|20 0.0|11 1.0|21 1.0"});
    const std::string bytes = bytesOf(parts);
    const std::string after = changed(bytes, [](OdDbDatabase& db) {
        byHandle<OdDbLayerTableRecord>(db, "40", OdDb::kForWrite)->setName(od("PÁG"));
        byHandle<OdDbBlockTableRecord>(db, "60", OdDb::kForWrite)->setName(od("C"));
        addLayer(db, "PAG1");
        EXPECT_EQ(utf8(byHandle<OdDbLine>(db, "103")->layer()), "PÁG");
        byHandle<OdDbLine>(db, "103", OdDb::kForWrite)->setEndPoint({2, 1, 0});
    });
    EXPECT_EQ(entryOf(after, "101"), "0 HATCH|5 101|330 1F|100 AcDbEntity|8 PÁG|100 AcDbHatch|8 x");
    EXPECT_EQ(entryOf(after, "102"),
              "0 DIMENSION|5 102|330 1F|100 AcDbEntity|8 PÁG|100 AcDbDimension|2 C|1003 PÁG");
    EXPECT_TRUE(contains(entryOf(after, "103"), "|8 PÁG|"));
    EXPECT_TRUE(contains(entryOf(after, "103"), "|11 2.0|"));
    EXPECT_TRUE(contains(entryOf(after, "200"), "|2 C|"));
    EXPECT_TRUE(contains(entryOf(after, "40"), "|2 PÁG|"));
    EXPECT_TRUE(contains(entryOf(after, "60"), "|2 C|"));
    EXPECT_TRUE(contains(entryOf(after, "61"), "|2 C|"));
    EXPECT_TRUE(contains(entryOf(after, "61"), "|3 C|"));
    EXPECT_TRUE(contains(notationOf(after), "|9 $CLAYER|8 PÁG|"));
    EXPECT_EQ(reportOf(*readBytes(after).get()), "");
}

TEST(WriterKeep, ChangesLayersAndBlocks) {
    Parts parts = withReference();
    parts.layers = Parts::layer("40", "PAG1", "62 -3|420 255|6 Continuous|370 -3|390 F");
    const std::string bytes = bytesOf(parts);
    const auto layer = [](OdDbDatabase& db) {
        return byHandle<OdDbLayerTableRecord>(db, "40", OdDb::kForWrite);
    };
    EXPECT_EQ(difference(bytes, changed(bytes, [&](OdDbDatabase& db) { layer(db)->setIsOff(false); })),
              "-62 -3|+62 3|");
    EXPECT_EQ(difference(bytes, changed(bytes, [&](OdDbDatabase& db) { layer(db)->setIsFrozen(true); })),
              "-70 0|+70 1|");
    EXPECT_EQ(
        difference(bytes,
                   changed(bytes, [&](OdDbDatabase& db) { layer(db)->setColor(OdCmColor::fromIndex(5)); })),
        "-62 -3|-420 255|+62 -5|");
    EXPECT_EQ(difference(
                  bytes,
                  changed(bytes,
                          [](OdDbDatabase& db) {
                              byHandle<OdDbBlockTableRecord>(db, "60", OdDb::kForWrite)->setOrigin({0, 5, 0});
                          })),
              "-20 0.0|+20 5.0|");
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
