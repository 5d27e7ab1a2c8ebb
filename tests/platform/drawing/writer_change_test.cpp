// SPDX-License-Identifier: MIT
// What was changed, added, erased, renamed or copied in a drawing from a file: the file differs in that and
// in nothing else.
#include "writer_samples.h"

#include <functional>

namespace drawing_test {
namespace {

TEST(WriterChange, WritesOnlyTheGroupsThatChanged) {
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

TEST(WriterChange, PutsNewFieldsWhereTheirClassHasThem) {
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

TEST(WriterChange, KeepsGroupsThatNobodyReads) {
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

TEST(WriterChange, ChangesVerticesOneByOne) {
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

TEST(WriterChange, ChangesMultiLineTexts) {
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
TEST(WriterChange, ChangesTheTextThatAnAttributeHolds) {
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

TEST(WriterChange, FollowsTheAttributesOfReferences) {
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

TEST(WriterChange, PutsNewObjectsAtTheEndOfTheirOwners) {
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

TEST(WriterChange, LeavesOutWhatIsErasedAndWhatHangsOnIt) {
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

TEST(WriterChange, KeepsCommentsBehindAnErasedEntry) {
    Parts parts = drawing();
    parts.entities =
        kLine + "|999 about the next|0 POINT|5 101|330 1F|100 AcDbEntity|8 0|100 AcDbPoint|10 0.0|20 0.0";
    const std::string after = changed(
        bytesOf(parts), [](OdDbDatabase& db) { byHandle<OdDbObject>(db, "100", OdDb::kForWrite)->erase(); });
    EXPECT_TRUE(contains(notationOf(after), "|2 ENTITIES|999 about the next|0 POINT|"));
}

TEST(WriterChange, ChangesEntriesOfDictionariesAndRecords) {
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

TEST(WriterChange, FollowsRenamedRecords) {
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

TEST(WriterChange, ChangesLayersAndBlocks) {
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

/// Copies bring along the groups that their class doesn't read.
TEST(WriterChange, WritesCopiesWithTheGroupsOfTheirSources) {
    Parts parts = withReference();
    parts.entities = Parts::joined({kReference, "0 HATCH|5 101|330 1F|100 AcDbEntity|67 1|8 0|62 3|100 "
                                                "AcDbHatch|10 0.50|2 SOLID|91 0|1001 ACAD|1000 h"});
    const auto source = readBytes(dxf::text(parts.groups(), "\n", 0));
    OdArray<OdDbObjectId> ids;
    for (const char* handle : {"200", "101"})
        ids.append(source->getOdDbObjectId(OdDbHandle(std::stoull(handle, nullptr, 16))));
    const OdSmartPtr<OdDbIdMapping> mapping(new OdDbIdMapping(), lm::drawing::kAttach);
    source->deepCloneObjects(ids, source->getModelSpaceId(), *mapping);
    const std::string after = saved(*source.get());
    const auto read = readBytes(after);
    EXPECT_EQ(reportOf(*read.get()), "");
    expectSameObjects(*source.get(), *read.get());
    const std::string all = notationOf(after);
    EXPECT_TRUE(
        contains(all, "|100 AcDbEntity|8 0|62 3|100 AcDbHatch|10 0.50|2 SOLID|91 0|1001 ACAD|1000 h|"));
    EXPECT_TRUE(contains(all, "|70 2|71 3|0 ATTRIB|")) << "rows and columns";
    EXPECT_EQ(saved(*read.get()), after);
    EXPECT_FALSE(contains(after, "\n8\n0\r\n")) << "lines end alike";
}

TEST(WriterChange, WritesInsertedDrawingsAsBlocks) {
    Parts parts = withReference();
    parts.entities = Parts::joined({kReference, kLine});
    const auto source = readBytes(bytesOf(parts));
    const auto db = newDatabase();
    const OdDbObjectId block = db->insert(od("SIMBOLO"), source.get());
    ASSERT_FALSE(block.isNull());
    inAllFiles(*db.get(), [&db](OdDbDatabase& read) {
        EXPECT_EQ(reportOf(read), "");
        expectSameObjects(*db.get(), read);
    });
}

} // namespace
} // namespace drawing_test
