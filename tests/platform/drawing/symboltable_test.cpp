// SPDX-License-Identifier: MIT
// Tables, their records, and layers.
#include "drawing_support.h"

#include "drawing/recordsearch.h"

#include <ctime>

using namespace drawing_test;

using Names = std::vector<std::string>;

TEST(SymbolTableTest, FindsNamesExactly) {
    const auto db = newDatabase();
    const OdDbObjectId id = addLayer(*db.get(), "PAG1");
    const auto table = layerTable(*db.get());
    EXPECT_EQ(table->getAt(od("PAG1")), id);
    EXPECT_TRUE(table->getAt(od("pag1")).isNull());
    EXPECT_TRUE(table->getAt(od("PAG")).isNull());
    EXPECT_TRUE(table->getAt(od("")).isNull());
    EXPECT_TRUE(table->has(od("PAG1")));
    EXPECT_FALSE(table->has(od("PAG2")));
    EXPECT_TRUE(table->getAt(od("PAG2"), OdDb::kForRead).isNull());
    EXPECT_TRUE(table->getAt(od("PAG1"), OdDb::kForWrite)->isWriteEnabled());
    addLayer(*db.get(), "pag1"); // another name
    EXPECT_EQ(namesOf(db->getLayerTableId()), (Names{"0", "PAG1", "pag1"}));
}

TEST(SymbolTableTest, PassesOverErasedRecords) {
    const auto db = newDatabase();
    const OdDbObjectId id = addLayer(*db.get(), "L");
    const auto table = layerTable(*db.get());
    open<OdDbLayerTableRecord>(id, OdDb::kForWrite)->erase();
    EXPECT_TRUE(table->getAt(od("L")).isNull());
    EXPECT_TRUE(table->getAt(od("L"), OdDb::kForRead).isNull());
    EXPECT_FALSE(table->getAt(od("L"), OdDb::kForRead, true).isNull());
    EXPECT_EQ(namesOf(db->getLayerTableId()), Names{"0"});
    const auto walk = table->newIterator();
    walk->start(true, false);
    walk->step(true, false);
    EXPECT_EQ(walk->getRecordId(), id);
    const OdDbObjectId second = addLayer(*db.get(), "L");
    EXPECT_NE(second, id);
    EXPECT_EQ(table->getAt(od("L")), second);
    EXPECT_EQ(open<OdDbLayerTableRecord>(id, OdDb::kForWrite, true)->erase(false), eDuplicateKey)
        << "its name is taken meanwhile";
    EXPECT_TRUE(id.isErased());
}

TEST(SymbolTableTest, TakesAnErasedRecordBackOnlyWhenThatIsOpenForWrite) {
    const auto db = newDatabase();
    const auto table = layerTable(*db.get());
    const auto erased = [&](const std::string& name) {
        const OdDbObjectId id = addLayer(*db.get(), name);
        open<OdDbLayerTableRecord>(id, OdDb::kForWrite)->erase();
        return id;
    };
    const OdDbObjectId first = erased("L"), second = erased("L");
    const auto again = open<OdDbLayerTableRecord>(first, OdDb::kForRead, true);
    EXPECT_EQ(codeOf([&] { again->erase(false); }), eNotOpenForWrite);
    EXPECT_EQ(table->getAt(od("L"), OdDb::kForRead, true)->objectId(), second)
        << "a refusal leaves the names alone";
    again->upgradeOpen();
    EXPECT_EQ(again->erase(false), eOk);
    EXPECT_EQ(table->getAt(od("L")), first);
    EXPECT_EQ(open<OdDbLayerTableRecord>(second, OdDb::kForWrite, true)->erase(false), eDuplicateKey);
}

TEST(SymbolTableTest, RefusesEmptyAndTakenNames) {
    const auto db = newDatabase();
    const auto table = layerTable(*db.get(), OdDb::kForWrite);
    const auto nameless = make<OdDbLayerTableRecord>();
    EXPECT_EQ(codeOf([&] { table->add(nameless); }), eInvalidKey);
    EXPECT_EQ(codeOf([&] { nameless->setName(od("")); }), eInvalidKey);
    const auto taken = make<OdDbLayerTableRecord>();
    taken->setName(od("0"));
    EXPECT_EQ(codeOf([&] { table->add(taken); }), eDuplicateKey);
    EXPECT_FALSE(taken->isDBRO());
    taken->setName(od("1"));
    table->add(taken);
    EXPECT_EQ(codeOf([&] { table->add(taken); }), eDuplicateKey);
    taken->setName(od("2"));
    EXPECT_EQ(codeOf([&] {
                  newDatabase();
                  layerTable(*newDatabase().get(), OdDb::kForWrite)->add(taken);
              }),
              eAlreadyInDatabase);
    const auto lone = make<OdDbLayerTableRecord>();
    lone->setName(od("L"));
    EXPECT_TRUE(lone->ownerId().isNull());
    EXPECT_EQ(table->getAt(od("1")), OdDbObjectId::kNull);
    EXPECT_EQ(table->getAt(od("2")), taken->objectId());
}

TEST(SymbolTableTest, WalksInOrderOfCreationWhileRecordsComeAndGo) {
    const auto db = newDatabase();
    for (const char* const name : {"C", "A", "B"}) addLayer(*db.get(), name);
    EXPECT_EQ(namesOf(db->getLayerTableId()), (Names{"0", "C", "A", "B"}));
    const auto walk = layerTable(*db.get())->newIterator();
    Names met;
    for (walk->start(); !walk->done(); walk->step()) {
        const auto record = walk->getRecord(OdDb::kForWrite);
        const std::string name = utf8(record->getName());
        met.push_back(name);
        record->erase();
        if (name == "A") addLayer(*db.get(), "D");
    }
    EXPECT_EQ(met, (Names{"0", "C", "A", "B", "D"}));
    EXPECT_EQ(namesOf(db->getLayerTableId()), Names{"0"});
    walk->step();
    EXPECT_TRUE(walk->done());
    EXPECT_TRUE(walk->getRecordId().isNull());
    EXPECT_TRUE(walk->getRecord().isNull());
}

TEST(SymbolTableTest, FollowsRenames) {
    const auto db = newDatabase();
    const OdDbObjectId id = addLayer(*db.get(), "OLD");
    addLayer(*db.get(), "OTHER");
    const auto line = make<OdDbLine>();
    append(*db.get(), line);
    line->setLayer(id);
    const auto layer = open<OdDbLayerTableRecord>(id, OdDb::kForWrite);
    layer->setName(od("NEW"));
    EXPECT_EQ(utf8(line->layer()), "NEW");
    EXPECT_TRUE(layerTable(*db.get())->getAt(od("OLD")).isNull());
    EXPECT_EQ(layerTable(*db.get())->getAt(od("NEW")), id);
    layer->setName(od("NEW"));
    EXPECT_EQ(codeOf([&] { layer->setName(od("OTHER")); }), eDuplicateKey);
    EXPECT_EQ(codeOf([&] { layer->setName(od("")); }), eInvalidKey);
    EXPECT_EQ(utf8(layer->getName()), "NEW");
    const auto zero = open<OdDbLayerTableRecord>(db->getLayerZeroId(), OdDb::kForWrite);
    EXPECT_EQ(codeOf([&] { zero->setName(od("NULL")); }), eInvalidKey);
    EXPECT_EQ(utf8(zero->getName()), "0");
}

TEST(SymbolTableTest, RefusesUseOutsideADatabase) {
    const auto table = make<OdDbSymbolTable>();
    const auto layer = make<OdDbLayerTableRecord>();
    layer->setName(od("L"));
    EXPECT_EQ(codeOf([&] { table->add(layer); }), eNotInDatabase);
    EXPECT_EQ(codeOf([&] { table->newIterator(); }), eNotInDatabase);
    EXPECT_EQ(codeOf([&] { make<OdDbBlockTableRecord>()->newIterator(); }), eNotInDatabase);
    EXPECT_EQ(codeOf([&] { make<OdDbBlockTableRecord>()->appendOdDbEntity(make<OdDbLine>()); }),
              eNotInDatabase);
}

TEST(LayerTest, StartsVisibleAndChangesEachStateByItself) {
    const auto layer = make<OdDbLayerTableRecord>();
    EXPECT_FALSE(layer->isFrozen() || layer->isLocked() || layer->isOff());
    layer->setIsFrozen(true);
    EXPECT_TRUE(layer->isFrozen());
    EXPECT_FALSE(layer->isLocked() || layer->isOff());
    layer->setIsLocked(true);
    layer->setIsFrozen(false);
    layer->setIsOff(true);
    EXPECT_FALSE(layer->isFrozen());
    EXPECT_TRUE(layer->isLocked() && layer->isOff());
    layer->setIsLocked(false);
    EXPECT_FALSE(layer->isLocked());
    EXPECT_EQ(layer->color().colorIndex(), 7);
    layer->setColor(OdCmColor::fromIndex(3));
    EXPECT_EQ(layer->color().colorIndex(), 3);
}

TEST(LayerTest, LetsTheCurrentLayerAndLayerZeroBeFrozen) {
    const auto db = newDatabase();
    ASSERT_EQ(db->getCLAYER(), db->getLayerZeroId());
    const auto layer = open<OdDbLayerTableRecord>(db->getLayerZeroId(), OdDb::kForWrite);
    layer->setIsFrozen(true);
    EXPECT_TRUE(layer->isFrozen());
}

TEST(LayerTest, CountsASetterAsAChangeEvenWithTheSameValue) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::layer("100", "L", "62 7");
    const auto db = readGroups(parts.groups());
    const auto layer = byHandle<OdDbLayerTableRecord>(*db.get(), "100", OdDb::kForWrite);
    EXPECT_FALSE(layer->isModified());
    layer->setIsFrozen(layer->isFrozen());
    EXPECT_TRUE(layer->isModified());
}

TEST(LayerTest, RefusesToBeErasedWhereItIsNeeded) {
    const auto db = newDatabase();
    const auto erase = [&](OdDbObjectId id) {
        return open<OdDbLayerTableRecord>(id, OdDb::kForWrite)->erase();
    };
    EXPECT_EQ(erase(db->getLayerZeroId()), eCannotBeErased);
    const OdDbObjectId current = addLayer(*db.get(), "CURRENT");
    const auto record = OdResBuf::newRb(330);
    record->setObjectId(current);
    ASSERT_TRUE(db->setSysVar(od("CLAYER"), record));
    EXPECT_EQ(erase(current), eCannotBeErased);
    EXPECT_EQ(erase(db->getLayerZeroId()), eCannotBeErased) << "layer 0 also when another is current";
    EXPECT_FALSE(current.isErased());
    EXPECT_EQ(erase(addLayer(*db.get(), "FREE")), eOk);
}

TEST(LayerTest, RefusesToBeErasedUnderLiveEntitiesAnywhere) {
    const auto db = newDatabase();
    const OdDbObjectId layer = addLayer(*db.get(), "L");
    const OdDbObjectId block = addBlock(*db.get(), "B");
    const auto erase = [&] { return open<OdDbLayerTableRecord>(layer, OdDb::kForWrite)->erase(); };

    const auto inBlock = make<OdDbLine>();
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(inBlock);
    inBlock->setLayer(layer);
    EXPECT_EQ(erase(), eCannotBeErased) << "an entity in a block";
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->erase();
    EXPECT_FALSE(inBlock->isErased());
    EXPECT_EQ(erase(), eOk) << "an entity in an erased block doesn't live";
    ASSERT_EQ(open<OdDbLayerTableRecord>(layer, OdDb::kForWrite, true)->erase(false), eOk);

    const auto inPaper = make<OdDbLine>();
    open<OdDbBlockTableRecord>(db->getPaperSpaceId(), OdDb::kForWrite)->appendOdDbEntity(inPaper);
    inPaper->setLayer(layer);
    EXPECT_EQ(erase(), eCannotBeErased) << "an entity in a layout";
    inPaper->erase();

    const auto reference = make<OdDbBlockReference>();
    append(*db.get(), reference);
    const auto attribute = make<OdDbAttribute>();
    reference->appendAttribute(attribute);
    attribute->setLayer(layer);
    EXPECT_EQ(erase(), eCannotBeErased) << "an attribute";
    reference->erase();
    EXPECT_EQ(erase(), eOk) << "an attribute of an erased reference doesn't live";
}

namespace {

OdDbObjectId called(OdDbDatabase& db, const std::string& name) {
    return lm::drawing::recordCalled(*layerTable(db), od(name));
}

} // namespace

TEST(RecordCalled, FollowsNamesAfterItsFirstSearch) {
    const auto db = newDatabase();
    const OdDbObjectId first = addLayer(*db, "Page");
    EXPECT_EQ(called(*db, "PAGE"), first);
    EXPECT_EQ(called(*db, "Page"), first);
    EXPECT_TRUE(called(*db, "PAG").isNull());
    EXPECT_TRUE(called(*db, "").isNull());
    const OdDbObjectId second = addLayer(*db, "PAGe"); // new ones, and the first of several
    EXPECT_EQ(called(*db, "page"), first);
    EXPECT_EQ(called(*db, "PAGe"), second);
    open<OdDbLayerTableRecord>(first, OdDb::kForWrite)->setName(od("Other"));
    EXPECT_EQ(called(*db, "page"), second);
    EXPECT_EQ(called(*db, "OTHER"), first);
    open<OdDbLayerTableRecord>(second, OdDb::kForWrite)->erase();
    EXPECT_TRUE(called(*db, "page").isNull());
    open<OdDbLayerTableRecord>(first, OdDb::kForWrite)->setName(od("pAge")); // a name that it had before
    EXPECT_EQ(called(*db, "PAGE"), first);
    EXPECT_TRUE(called(*db, "OTHER").isNull());
    EXPECT_EQ(called(*db, "\xC3\x81"), OdDbObjectId());
    const OdDbObjectId accented = addLayer(*db, "\xC3\xA1"); // capitals of letters with accents
    EXPECT_EQ(called(*db, "\xC3\x81"), accented);
}

TEST(RecordCalled, FollowsWhatIsTakenBack) {
    const auto db = newDatabase();
    db->setUndoRecording(true);
    const OdDbObjectId layer = addLayer(*db, "Page");
    EXPECT_EQ(called(*db, "PAGE"), layer);
    db->startUndoRecord();
    open<OdDbLayerTableRecord>(layer, OdDb::kForWrite)->setName(od("Other"));
    const OdDbObjectId added = addLayer(*db, "New");
    EXPECT_EQ(called(*db, "OTHER"), layer);
    EXPECT_EQ(called(*db, "NEW"), added);
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(called(*db, "PAGE"), layer);
    EXPECT_TRUE(called(*db, "OTHER").isNull());
    EXPECT_TRUE(called(*db, "NEW").isNull());
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(called(*db, "OTHER"), layer);
    EXPECT_EQ(called(*db, "NEW"), added);
}

// A drawing gets its layers one by one, and each is looked for first. Twenty times as many may take as much
// longer, but not four hundred times.
TEST(RecordCalled, IsAsQuickAmongManyRecords) {
    const auto time = [](int layers) {
        double best = 1e9;
        for (int round = 0; round < 3; ++round) {
            const auto db = newDatabase();
            // The time of this process alone: others must not decide.
            const std::clock_t start = std::clock();
            for (int i = 0; i < layers; ++i) {
                const std::string name = "Layer " + std::to_string(i);
                if (called(*db, name).isNull()) addLayer(*db, name);
            }
            best = std::min(best, double(std::clock() - start));
        }
        return best;
    };
    EXPECT_LT(time(10000), 80 * time(500));
}
