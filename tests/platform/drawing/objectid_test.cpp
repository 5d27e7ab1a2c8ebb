// SPDX-License-Identifier: MIT
// Ids, opening and closing, the write check and the erased mark.
#include "drawing_support.h"

#include "drawing/alloc.h"

using namespace drawing_test;

TEST(ObjectIdTest, IsAPointerInSizeAndNullByDefault) {
    EXPECT_EQ(sizeof(OdDbObjectId), sizeof(void*));
    const OdDbObjectId null;
    EXPECT_EQ(null, OdDbObjectId::kNull);
    EXPECT_TRUE(null.isNull());
    EXPECT_FALSE(null.isValid());
    EXPECT_FALSE(null.isErased());
    EXPECT_EQ(null.database(), nullptr);
    EXPECT_EQ(utf8(null.getHandle().ascii()), "0");
    EXPECT_TRUE(null.openObject().isNull());
    EXPECT_TRUE(null.openObject(OdDb::kForWrite, true).isNull());
}

TEST(ObjectIdTest, StaysValidWhenItsObjectIsErased) {
    const auto db = newDatabase();
    const OdDbObjectId id = append(*db.get(), make<OdDbLine>());
    EXPECT_TRUE(id.isValid());
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(id.database(), db.get());
    EXPECT_EQ(open<OdDbLine>(id, OdDb::kForWrite)->erase(), eOk);
    EXPECT_TRUE(id.isValid());
    EXPECT_TRUE(id.isErased());
    EXPECT_TRUE(id.openObject().isNull());
    EXPECT_FALSE(id.openObject(OdDb::kForRead, true).isNull());
    EXPECT_EQ(db->getOdDbObjectId(id.getHandle()), id) << "the handle still names the erased object";
    EXPECT_EQ(open<OdDbLine>(id, OdDb::kForWrite, true)->erase(false), eOk);
    EXPECT_FALSE(id.openObject().isNull());
}

TEST(ObjectIdTest, AnswersAsNullWhenItsDatabaseIsGone) {
    OdDbObjectId id, layer;
    {
        const auto db = newDatabase();
        id = append(*db.get(), make<OdDbLine>());
        layer = db->getLayerZeroId();
    }
    for (const OdDbObjectId gone : {id, layer}) {
        EXPECT_FALSE(gone.isNull());
        EXPECT_FALSE(gone.isValid());
        EXPECT_FALSE(gone.isErased());
        EXPECT_EQ(gone.database(), nullptr);
        EXPECT_TRUE(gone.getHandle().isNull());
        EXPECT_TRUE(gone.openObject(OdDb::kForWrite, true).isNull());
    }
}

TEST(ObjectIdTest, IsNeverGivenToAnotherDatabase) {
    std::vector<OdDbObjectId> old;
    for (int i = 0; i < 50; ++i) {
        const auto db = newDatabase();
        for (const OdDbObjectId id : old) EXPECT_NE(id, db->getLayerZeroId());
        old.push_back(db->getLayerZeroId());
    }
    for (const OdDbObjectId id : old) EXPECT_FALSE(id.isValid());
}

TEST(ObjectIdTest, IsFoundByHandle) {
    const auto db = newDatabase();
    const OdDbObjectId id = append(*db.get(), make<OdDbLine>());
    EXPECT_EQ(db->getOdDbObjectId(id.getHandle(), false, 0), id);
    EXPECT_TRUE(db->getOdDbObjectId(OdDbHandle()).isNull());
    const OdDbHandle unknown(0xFFFF0000);
    EXPECT_TRUE(db->getOdDbObjectId(unknown, true, 0).isNull());
    EXPECT_TRUE(db->getOdDbObjectId(unknown).isNull()) << "looking for it must not make it";
}

TEST(ObjectIdTest, KeepsHandlesApartAcrossManyObjects) {
    // Far handles first, then so many objects that they come to lie in the dense part.
    dxf::Parts parts;
    parts.header = "9 $HANDSEED|5 20000";
    const auto db = readGroups(parts.groups());
    std::vector<OdDbObjectId> ids;
    const auto space = modelSpace(*db.get(), OdDb::kForWrite);
    for (int i = 0; i < 40000; ++i) ids.push_back(space->appendOdDbEntity(make<OdDbPoint>()));
    EXPECT_EQ(ids.front().getHandle().value(), 0x20000u);
    for (const OdDbObjectId id : ids)
        ASSERT_EQ(db->getOdDbObjectId(id.getHandle()), id) << id.getHandle().value();
}

TEST(ObjectTest, KnowsItsPlace) {
    const auto db = newDatabase();
    const auto line = make<OdDbLine>();
    EXPECT_FALSE(line->isDBRO());
    EXPECT_TRUE(line->objectId().isNull());
    EXPECT_TRUE(line->ownerId().isNull());
    EXPECT_EQ(line->database(), nullptr);
    EXPECT_TRUE(line->getDbHandle().isNull());
    const OdDbObjectId id = append(*db.get(), line);
    EXPECT_TRUE(line->isDBRO());
    EXPECT_EQ(line->objectId(), id);
    EXPECT_EQ(line->ownerId(), db->getModelSpaceId());
    EXPECT_EQ(line->database(), db.get());
    EXPECT_EQ(line->getDbHandle(), id.getHandle());
    EXPECT_EQ(utf8(line->dxfName()), "LINE");
}

TEST(OpenModeTest, NeverConflicts) {
    const auto db = newDatabase();
    const OdDbObjectId id = append(*db.get(), make<OdDbLine>());
    const auto reader = open<OdDbLine>(id);
    EXPECT_FALSE(reader->isWriteEnabled());
    const auto second = open<OdDbLine>(id);
    second->upgradeOpen();
    EXPECT_TRUE(reader->isWriteEnabled()) << "all pointers see the one object";
    const auto writer = open<OdDbLine>(id, OdDb::kForWrite);
    writer->upgradeOpen();
    EXPECT_TRUE(writer->isWriteEnabled());
    const auto third = open<OdDbLine>(id);
    EXPECT_EQ(third.get(), writer.get());
    third->setStartPoint({1, 2, 3});
    EXPECT_EQ(reader->startPoint(), OdGePoint3d(1, 2, 3));
}

TEST(OpenModeTest, EndsWithTheLastPointer) {
    const auto db = newDatabase();
    const OdDbObjectId id = append(*db.get(), make<OdDbLine>());
    auto writer = open<OdDbLine>(id, OdDb::kForWrite);
    auto other = open<OdDbLine>(id);
    writer.release();
    EXPECT_TRUE(other->isWriteEnabled()) << "somebody still holds it";
    other.release();
    EXPECT_FALSE(open<OdDbLine>(id)->isWriteEnabled());
    const auto again = open<OdDbLine>(id, OdDb::kForWrite);
    again->downgradeOpen();
    EXPECT_FALSE(again->isWriteEnabled());
}

TEST(OpenModeTest, KeepsTheDatabasesOwnHoldOutOfTheCount) {
    const auto db = newDatabase();
    auto line = make<OdDbLine>();
    const OdDbObjectId id = append(*db.get(), line);
    EXPECT_EQ(line->numRefs(), 1);
    line.release();
    EXPECT_EQ(open<OdDbLine>(id)->numRefs(), 1);
}

TEST(WriteCheckTest, RefusesEveryChangeOfAResidentObjectThatIsOpenForReading) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db.get(), "B");
    const auto reference = make<OdDbBlockReference>();
    const OdDbObjectId referenceId = append(*db.get(), reference);
    reference->appendAttribute(make<OdDbAttribute>());
    const OdDbObjectId attributeId = reference->attributeIterator()->objectId();
    reference->downgradeOpen();
    const auto attribute = open<OdDbAttribute>(attributeId);
    attribute->downgradeOpen();
    const auto layer = open<OdDbLayerTableRecord>(db->getLayerZeroId());
    const auto record = open<OdDbBlockTableRecord>(block);
    record->downgradeOpen();
    const auto dictionary = open<OdDbDictionary>(db->getNamedObjectsDictionaryId());
    const auto table = layerTable(*db.get());
    const auto newLayer = make<OdDbLayerTableRecord>();
    newLayer->setName(od("NEW"));

    const std::vector<std::pair<const char*, std::function<void()>>> changes = {
        {"layer of an entity", [&] { reference->setLayer(db->getLayerZeroId()); }},
        {"layer by name", [&] { reference->setLayer(od("0")); }},
        {"color", [&] { reference->setColor(OdCmColor::fromIndex(1)); }},
        {"visibility", [&] { reference->setVisible(false); }},
        {"position",
         [&] {
             reference->setPosition({1, 0, 0});
         }},
        {"block", [&] { reference->setBlockTableRecord(block); }},
        {"transform", [&] { reference->transformBy(OdGeMatrix3d()); }},
        {"properties", [&] { reference->setPropertiesFrom(attribute.get()); }},
        {"attribute", [&] { reference->appendAttribute(make<OdDbAttribute>()); }},
        {"extended data", [&] { reference->setXData(chainOf("1001 ACAD|1000 x")); }},
        {"deletion of extended data", [&] { reference->setXData(chainOf("1001 ACAD")); }},
        {"raw extended data", [&] { reference->setXDataRaw(chainOf("1001 ACAD")); }},
        {"erase", [&] { reference->erase(); }},
        {"erase back", [&] { reference->erase(false); }},
        {"text", [&] { attribute->setTextString(od("x")); }},
        {"tag", [&] { attribute->setTag(od("x")); }},
        {"invisibility", [&] { attribute->setInvisible(true); }},
        {"multi-line text", [&] { attribute->setMTextAttribute(make<OdDbMText>()); }},
        {"frozen", [&] { layer->setIsFrozen(true); }},
        {"locked", [&] { layer->setIsLocked(true); }},
        {"off", [&] { layer->setIsOff(true); }},
        {"record to a table", [&] { table->add(newLayer); }},
        {"name of a record", [&] { record->setName(od("C")); }},
        {"origin",
         [&] {
             record->setOrigin({1, 1, 1});
         }},
        {"entity to a block", [&] { record->appendOdDbEntity(make<OdDbLine>()); }},
        {"entry of a dictionary", [&] { dictionary->setAt(od("X"), make<OdDbXrecord>()); }},
        {"word of a change", [&] { reference->assertWriteEnabled(true, true); }},
    };
    for (const auto& [name, change] : changes) EXPECT_EQ(codeOf(change), eNotOpenForWrite) << name;

    EXPECT_FALSE(newLayer->isDBRO());
    EXPECT_FALSE(referenceId.isErased());
    EXPECT_EQ(reference->position(), OdGePoint3d());
    EXPECT_TRUE(reference->xData().isNull());
    EXPECT_EQ(utf8(record->getName()), "B");
    EXPECT_EQ(attributesOf(reference).size(), 1u);
}

TEST(WriteCheckTest, LetsObjectsOutsideADatabaseBeChanged) {
    const auto line = make<OdDbLine>();
    EXPECT_TRUE(line->isWriteEnabled());
    line->setEndPoint({1, 0, 0});
    line->setXData(chainOf("1001 APP|1000 x"));
    line->downgradeOpen();
    EXPECT_TRUE(line->isWriteEnabled());
    EXPECT_EQ(line->erase(), eOk);
    EXPECT_TRUE(line->isErased());
    EXPECT_EQ(line->erase(false), eOk);
    EXPECT_FALSE(line->isErased());
}

TEST(WriteCheckTest, LeavesANewResidentWritable) {
    const auto db = newDatabase();
    const auto line = make<OdDbLine>();
    append(*db.get(), line);
    EXPECT_TRUE(line->isWriteEnabled());
    const auto layer = make<OdDbLayerTableRecord>();
    layer->setName(od("L"));
    layerTable(*db.get(), OdDb::kForWrite)->add(layer);
    EXPECT_TRUE(layer->isWriteEnabled());
}

TEST(WriteCheckTest, TellsWhetherSomethingChanged) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|100 AcDbEntity|8 0";
    const auto db = readGroups(parts.groups());
    const auto line = byHandle<OdDbLine>(*db.get(), "100", OdDb::kForWrite);
    EXPECT_FALSE(line->isModified()) << "opening for write is no change";
    line->assertWriteEnabled(true, false);
    EXPECT_FALSE(line->isModified());
    line->assertWriteEnabled(true, true);
    EXPECT_TRUE(line->isModified());
}

TEST(EraseTest, MarksNoPartsOfAnOwner) {
    const auto db = newDatabase();
    const OdDbObjectId blockId = addBlock(*db.get(), "B");
    const auto inner = make<OdDbLine>();
    open<OdDbBlockTableRecord>(blockId, OdDb::kForWrite)->appendOdDbEntity(inner);
    const auto reference = make<OdDbBlockReference>();
    append(*db.get(), reference);
    reference->appendAttribute(make<OdDbAttribute>());
    const OdDbObjectId attribute = reference->attributeIterator()->objectId();
    EXPECT_EQ(reference->erase(), eOk);
    EXPECT_FALSE(attribute.isErased());
    EXPECT_FALSE(attribute.openObject().isNull());
    EXPECT_EQ(open<OdDbBlockTableRecord>(blockId, OdDb::kForWrite)->erase(), eOk);
    EXPECT_FALSE(inner->isErased());
}

TEST(DatabaseLifeTest, LetsHeldObjectsLiveOnOutside) {
    const std::size_t before = lm::drawing::liveBlocks();
    {
        OdSmartPtr<OdDbLine> line;
        OdSmartPtr<OdDbSymbolTable> table;
        OdSmartPtr<OdDbDictionary> dictionary;
        OdSmartPtr<OdDbObjectIterator> walk;
        {
            dxf::Parts parts;
            parts.entities =
                "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|11 7|21 8|31 9|1001 ACAD|1000 kept|0 POINT|5 101|8 0";
            const auto db = readGroups(parts.groups());
            line = byHandle<OdDbLine>(*db.get(), "100", OdDb::kForWrite);
            table = layerTable(*db.get());
            dictionary = open<OdDbDictionary>(db->getNamedObjectsDictionaryId());
            walk = modelSpace(*db.get())->newIterator();
        }
        EXPECT_FALSE(line->isDBRO());
        EXPECT_EQ(line->database(), nullptr);
        EXPECT_EQ(line->endPoint(), OdGePoint3d(7, 8, 9));
        EXPECT_EQ(textOf(line->xData(od("ACAD"))), "1001 ACAD|1000 kept");
        EXPECT_EQ(utf8(line->layer()), "0");
        line->setEndPoint({1, 1, 1});
        EXPECT_TRUE(table->getAt(od("0"), OdDb::kForRead).isNull());
        EXPECT_EQ(codeOf([&] { table->newIterator(); }), eNotInDatabase);
        EXPECT_EQ(dictionary->numEntries(), 0u);
        while (!walk->done()) {
            EXPECT_TRUE(walk->entity().isNull());
            walk->step();
        }
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}
