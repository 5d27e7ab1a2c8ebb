// SPDX-License-Identifier: MIT
// Blocks: their entities, and the references to them.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

OdSmartPtr<OdDbBlockReference> insert(OdDbDatabase& db, OdDbObjectId owner, OdDbObjectId block) {
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    open<OdDbBlockTableRecord>(owner, OdDb::kForWrite)->appendOdDbEntity(reference);
    EXPECT_EQ(reference->database(), &db);
    return reference;
}

OdArray<OdDbObjectId> referencesOf(OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->getBlockReferenceIds();
}

} // namespace

TEST(BlockTest, MakesAnAppendedEntityResident) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db.get(), "B");
    const auto line = make<OdDbLine>();
    const auto record = open<OdDbBlockTableRecord>(block, OdDb::kForWrite);
    const OdDbObjectId id = record->appendOdDbEntity(line);
    EXPECT_EQ(line->objectId(), id);
    EXPECT_EQ(line->ownerId(), block);
    EXPECT_EQ(line->blockId(), block);
    EXPECT_TRUE(line->isWriteEnabled());
    EXPECT_FALSE(line->getDbHandle().isNull());
    EXPECT_EQ(utf8(line->layer()), "0");
    EXPECT_EQ(line->layerId(), db->getLayerZeroId());
    EXPECT_EQ(codeOf([&] { record->appendOdDbEntity(line); }), eAlreadyInDatabase);
    EXPECT_EQ(handlesOf(record->newIterator()).size(), 1u);
}

TEST(BlockTest, TellsLayoutsAndAnonymousBlocksApart) {
    struct Row {
        const char* name;
        bool layout, anonymous;
    };
    const Row rows[] = {{"*Model_Space", true, false},  {"*Paper_Space", true, false},
                        {"*Paper_Space0", true, false}, {"*Paper_Space12", true, false},
                        {"*MODEL_SPACE", true, false},  {"*U1", false, true},
                        {"*Paper_SpaceX", false, true}, {"*Model_Space1", false, true},
                        {"MOTOR", false, false},        {"Model_Space", false, false}};
    for (const Row& row : rows) {
        const auto record = make<OdDbBlockTableRecord>();
        record->setName(od(row.name));
        EXPECT_EQ(record->isLayout(), row.layout) << row.name;
        EXPECT_EQ(record->isAnonymous(), row.anonymous) << row.name;
    }
    EXPECT_FALSE(make<OdDbBlockTableRecord>()->isAnonymous());
}

TEST(BlockTest, ListsDirectReferencesInOrderOfCreationWhateverTheirOwner) {
    const auto db = newDatabase();
    const OdDbObjectId symbol = addBlock(*db.get(), "SYMBOL");
    const OdDbObjectId frame = addBlock(*db.get(), "FRAME");
    EXPECT_TRUE(referencesOf(symbol).isEmpty());
    const OdDbObjectId inModel = insert(*db.get(), db->getModelSpaceId(), symbol)->objectId();
    const OdDbObjectId inBlock = insert(*db.get(), frame, symbol)->objectId();
    const OdDbObjectId inPaper = insert(*db.get(), db->getPaperSpaceId(), symbol)->objectId();
    insert(*db.get(), db->getModelSpaceId(), frame); // reaches the symbol through the frame only
    const auto all = referencesOf(symbol);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0], inModel);
    EXPECT_EQ(all[1], inBlock);
    EXPECT_EQ(all[2], inPaper);
    EXPECT_EQ(referencesOf(frame).size(), 1u);
}

TEST(BlockTest, ListsLiveReferencesOnly) {
    const auto db = newDatabase();
    const OdDbObjectId symbol = addBlock(*db.get(), "SYMBOL");
    const OdDbObjectId frame = addBlock(*db.get(), "FRAME");
    const auto first = insert(*db.get(), db->getModelSpaceId(), symbol);
    const auto second = insert(*db.get(), frame, symbol);
    first->erase();
    ASSERT_EQ(referencesOf(symbol).size(), 1u);
    EXPECT_EQ(referencesOf(symbol)[0], second->objectId());
    open<OdDbBlockTableRecord>(frame, OdDb::kForWrite)->erase();
    EXPECT_FALSE(second->isErased());
    EXPECT_TRUE(referencesOf(symbol).isEmpty()) << "a reference in an erased block doesn't live";
    first->erase(false);
    EXPECT_EQ(referencesOf(symbol).size(), 1u);
}

TEST(BlockTest, FollowsAReferenceToAnotherBlock) {
    const auto db = newDatabase();
    const OdDbObjectId one = addBlock(*db.get(), "ONE"), two = addBlock(*db.get(), "TWO");
    const auto reference = insert(*db.get(), db->getModelSpaceId(), one);
    reference->setBlockTableRecord(two);
    EXPECT_TRUE(referencesOf(one).isEmpty());
    EXPECT_EQ(referencesOf(two).size(), 1u);
    reference->setBlockTableRecord(OdDbObjectId::kNull);
    EXPECT_TRUE(referencesOf(two).isEmpty());
    EXPECT_EQ(codeOf([&] { reference->setBlockTableRecord(db->getLayerZeroId()); }), eNotThatKindOfClass);
}

TEST(BlockTest, IsNoBlockForReferencesOfAnotherDrawing) {
    const auto db = newDatabase(), other = newDatabase();
    const OdDbObjectId own = addBlock(*db.get(), "OWN"), foreign = addBlock(*other.get(), "FOREIGN");
    const auto resident = insert(*db.get(), db->getModelSpaceId(), own);
    EXPECT_EQ(codeOf([&] { resident->setBlockTableRecord(foreign); }), eInvalidInput);
    EXPECT_EQ(resident->blockTableRecord(), own);
    EXPECT_EQ(referencesOf(own).size(), 1u);
    const auto brought = insert(*db.get(), db->getModelSpaceId(), foreign);
    EXPECT_TRUE(brought->blockTableRecord().isNull()) << "it becomes a reference to nothing";
    EXPECT_TRUE(referencesOf(foreign).isEmpty());
}

TEST(BlockTest, RefusesToEraseModelAndPaperSpace) {
    const auto db = newDatabase();
    for (const OdDbObjectId id : {db->getModelSpaceId(), db->getPaperSpaceId()}) {
        const auto space = open<OdDbBlockTableRecord>(id, OdDb::kForWrite);
        EXPECT_EQ(space->erase(), eCannotBeErased);
        space->setName(od("RENAMED" + utf8(space->getName())));
        EXPECT_EQ(space->erase(), eCannotBeErased) << "under another name too";
        EXPECT_FALSE(id.isErased());
    }
    EXPECT_EQ(open<OdDbBlockTableRecord>(addBlock(*db.get(), "B"), OdDb::kForWrite)->erase(), eOk);
}

TEST(BlockTest, WalksWhileEntitiesComeAndGo) {
    const auto db = newDatabase();
    const auto space = modelSpace(*db.get(), OdDb::kForWrite);
    std::vector<OdDbObjectId> ids;
    for (int i = 0; i < 6; ++i) ids.push_back(space->appendOdDbEntity(make<OdDbLine>()));
    std::vector<OdDbObjectId> met;
    const auto walk = space->newIterator();
    for (walk->start(); !walk->done(); walk->step()) {
        met.push_back(walk->objectId());
        if (met.size() % 2 == 0) open<OdDbLine>(walk->objectId(), OdDb::kForWrite)->erase();
        if (met.size() == 3) ids.push_back(space->appendOdDbEntity(make<OdDbCircle>()));
    }
    EXPECT_EQ(met, ids) << "in order, none twice";
    std::vector<OdDbObjectId> left;
    for (walk->start(); !walk->done(); walk->step()) left.push_back(walk->objectId());
    EXPECT_EQ(left, (std::vector<OdDbObjectId>{ids[0], ids[2], ids[4], ids[6]}));
    std::size_t all = 0;
    for (walk->start(true, false); !walk->done(); walk->step(true, false)) {
        EXPECT_FALSE(walk->entity().isNull()) << "an erased one is given when it is asked for";
        ++all;
    }
    EXPECT_EQ(all, 7u);
    EXPECT_TRUE(walk->objectId().isNull());
    EXPECT_TRUE(walk->entity().isNull());
}

TEST(BlockTest, CanHoldAReferenceToItself) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db.get(), "LOOP");
    const auto inner = insert(*db.get(), block, block);
    ASSERT_EQ(referencesOf(block).size(), 1u);
    EXPECT_EQ(referencesOf(block)[0], inner->objectId());
}

TEST(BlockTest, KeepsItsOrigin) {
    const auto record = make<OdDbBlockTableRecord>();
    EXPECT_EQ(record->origin(), OdGePoint3d());
    record->setOrigin({10, 5, 0});
    EXPECT_EQ(record->origin(), OdGePoint3d(10, 5, 0));
}
