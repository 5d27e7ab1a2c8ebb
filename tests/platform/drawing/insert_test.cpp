// SPDX-License-Identifier: MIT
// Other drawings as blocks of a drawing.
#include "clone_support.h"

#include <chrono>

using namespace drawing_test;

namespace {

using Strings = std::vector<std::string>;

OdDbObjectId definitionIn(OdDbDatabase& db, const std::string& tag) {
    const auto definition = make<OdDbAttributeDefinition>();
    definition->setTag(od(tag));
    definition->setPrompt(od("prompt?"));
    definition->setTextString(od("default"));
    definition->setXData(chainOf("1001 ATT|1000 kept"));
    return append(db, definition);
}

template<class T>
OdDbObjectId addTo(OdDbObjectId table, const std::string& name) {
    const auto record = make<T>();
    record->setName(od(name));
    return open<OdDbSymbolTable>(table, OdDb::kForWrite)->add(record);
}

OdDbObjectId putIn(OdDbObjectId block, OdSmartPtr<OdDbEntity> entity) {
    return open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(entity);
}

OdSmartPtr<OdDbBlockReference> referenceTo(OdDbObjectId block) {
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    return reference;
}

struct InsertTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    OdSmartPtr<OdDbDatabase> symbol = newDatabase();

    OdDbObjectId insert(const std::string& name = "SYM") { return db->insert(od(name), symbol, true); }
    template<class T>
    OdSmartPtr<T> part(OdDbObjectId block, std::size_t index) {
        return open<T>(entitiesOf(block).at(index));
    }
};

std::string entity(const std::string& type, const std::string& handle, const std::string& groups) {
    return "0 " + type + "|5 " + handle + "|330 1F|100 AcDbEntity|8 0|" + groups;
}

} // namespace

TEST_F(InsertTest, MakesModelSpaceABlock) {
    const auto line = make<OdDbLine>();
    line->setEndPoint({5, 0, 0});
    append(*symbol, line);
    definitionIn(*symbol, "TAG");
    symbol->setINSBASE({10, 5, 0});
    const OdDbObjectId id = insert();
    ASSERT_TRUE(id.isValid());
    EXPECT_EQ(id, blockTable(*db)->getAt(od("SYM")));
    const auto block = open<OdDbBlockTableRecord>(id);
    EXPECT_EQ(block->origin(), OdGePoint3d(10, 5, 0)) << "the base point";
    EXPECT_FALSE(block->isWriteEnabled());
    ASSERT_EQ(entitiesOf(id).size(), 2u);
    EXPECT_EQ(part<OdDbLine>(id, 0)->endPoint(), OdGePoint3d(5, 0, 0)) << "no scaling by units";
    const auto definition = part<OdDbAttributeDefinition>(id, 1);
    EXPECT_EQ(utf8(definition->tag()), "TAG");
    EXPECT_EQ(utf8(definition->prompt()), "prompt?");
    EXPECT_EQ(utf8(definition->textString()), "default");
    EXPECT_EQ(textOf(definition->xData(od("ATT"))), "1001 ATT|1000 kept");
    EXPECT_EQ(definition->layerId(), db->getLayerZeroId());
}

TEST_F(InsertTest, RefusesWithoutAnException) {
    addBlock(*db, "TAKEN");
    EXPECT_TRUE(insert("TAKEN").isNull());
    EXPECT_TRUE(insert("").isNull());
    EXPECT_TRUE(db->insert(od("X"), nullptr).isNull());
    const auto stripped =
        OdSmartPtr<OdDbDatabase>(new OdDbDatabase(OdDbDatabase::kNothing), lm::drawing::kAttach);
    EXPECT_TRUE(db->insert(od("X"), stripped).isNull());
    EXPECT_TRUE(stripped->insert(od("X"), symbol).isNull());
    EXPECT_TRUE(blockTable(*db)->getAt(od("X")).isNull());
}

TEST_F(InsertTest, AnErasedBlockOfTheNameIsNoObstacle) {
    addBlock(*db, "SYM").openObject(OdDb::kForWrite)->erase();
    EXPECT_TRUE(insert().isValid());
}

TEST_F(InsertTest, LeavesTheSourceAsItIs) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::layer("40", "PAG1");
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "IN");
    parts.blocks = dxf::Parts::block("IN", "31", "30");
    parts.entities =
        entity("INSERT", "100", "100 AcDbBlockReference|2 IN|10 0.0|20 0.0|30 0.0|1001 NEW|1000 x") + "|" +
        entity("MESH", "101", "100 AcDbMesh|71 2");
    symbol = readGroups(parts.groups());
    const std::string before = written(*symbol);
    ASSERT_TRUE(insert().isValid());
    EXPECT_EQ(written(*symbol), before);
    for (const OdDbObjectId id : entitiesOf(symbol->getModelSpaceId())) {
        EXPECT_FALSE(id.openObject()->isModified());
        EXPECT_FALSE(id.openObject()->isWriteEnabled());
    }
    EXPECT_EQ(entitiesOf(symbol->getModelSpaceId()).size(), 2u);
}

TEST_F(InsertTest, BringsWhatEntitiesStandOn) {
    const OdDbObjectId type = addTo<OdDbLinetypeTableRecord>(symbol->getLinetypeTableId(), "DASHED");
    const OdDbObjectId style = addTo<OdDbTextStyleTableRecord>(symbol->getTextStyleTableId(), "ROMANS");
    const OdDbObjectId layer = addLayer(*symbol, "WIRES");
    addLayer(*symbol, "EMPTY");
    {
        const auto record = open<OdDbLayerTableRecord>(layer, OdDb::kForWrite);
        record->setColor(OdCmColor::fromIndex(3));
        record->setLinetypeObjectId(type);
    }
    const auto text = make<OdDbText>();
    text->setTextStyle(style);
    append(*symbol, text);
    text->setLayer(layer);
    text->setLinetype(type);
    const OdDbObjectId id = insert();
    const auto copy = part<OdDbText>(id, 0);
    EXPECT_EQ(utf8(copy->layer()), "WIRES");
    EXPECT_EQ(copy->layerId().database(), db.get());
    EXPECT_EQ(copy->linetypeId(), open<OdDbSymbolTable>(db->getLinetypeTableId())->getAt(od("DASHED")));
    EXPECT_EQ(copy->textStyle(), open<OdDbSymbolTable>(db->getTextStyleTableId())->getAt(od("ROMANS")));
    const auto brought = open<OdDbLayerTableRecord>(copy->layerId());
    EXPECT_EQ(brought->color(), OdCmColor::fromIndex(3));
    EXPECT_EQ(brought->linetypeObjectId(), copy->linetypeId());
    EXPECT_EQ(namesOf(db->getLayerTableId()), (Strings{"0", "WIRES"})) << "only what is used";
}

TEST_F(InsertTest, TakesWhatBearsTheNameAlready) {
    const OdDbObjectId mine = addLayer(*db, "WIRES");
    open<OdDbLayerTableRecord>(mine, OdDb::kForWrite)->setColor(OdCmColor::fromIndex(1));
    const OdDbObjectId theirs = addLayer(*symbol, "WIRES");
    open<OdDbLayerTableRecord>(theirs, OdDb::kForWrite)->setColor(OdCmColor::fromIndex(2));
    const OdDbObjectId line = append(*symbol, make<OdDbLine>());
    open<OdDbLine>(line, OdDb::kForWrite)->setLayer(theirs);
    const OdDbObjectId myBlock = addBlock(*db, "INNER");
    putIn(myBlock, make<OdDbCircle>());
    const OdDbObjectId theirBlock = addBlock(*symbol, "INNER");
    append(*symbol, referenceTo(theirBlock));
    const OdDbObjectId id = insert();
    EXPECT_EQ(part<OdDbLine>(id, 0)->layerId(), mine);
    EXPECT_EQ(open<OdDbLayerTableRecord>(mine)->color(), OdCmColor::fromIndex(1))
        << "the drawing's own counts";
    EXPECT_EQ(part<OdDbBlockReference>(id, 1)->blockTableRecord(), myBlock);
    EXPECT_EQ(entitiesOf(myBlock).size(), 1u);
    EXPECT_EQ(open<OdDbBlockTableRecord>(myBlock)->getBlockReferenceIds().size(), 1u);
}

TEST_F(InsertTest, TakesWhatBearsTheNameInAnotherCase) {
    const OdDbObjectId mine = addLayer(*db, "Wires");
    const OdDbObjectId theirs = addLayer(*symbol, "WIRES");
    open<OdDbLine>(append(*symbol, make<OdDbLine>()), OdDb::kForWrite)->setLayer(theirs);
    EXPECT_EQ(part<OdDbLine>(insert(), 0)->layerId(), mine);
    EXPECT_EQ(namesOf(db->getLayerTableId()), (Strings{"0", "Wires"}));
}

TEST_F(InsertTest, BringsInnerBlocksWithAttributesAndTheirOwnBlocks) {
    const OdDbObjectId deepest = addBlock(*symbol, "DEEPEST"), inner = addBlock(*symbol, "INNER");
    putIn(deepest, make<OdDbCircle>());
    open<OdDbBlockTableRecord>(inner, OdDb::kForWrite)->setOrigin({1, 2, 0});
    putIn(inner, referenceTo(deepest));
    placeSymbol(*symbol, inner, {"A=1", "B=2"});
    append(*symbol, referenceTo(inner));
    const OdDbObjectId id = insert();
    const auto first = part<OdDbBlockReference>(id, 0), second = part<OdDbBlockReference>(id, 1);
    const OdDbObjectId newInner = blockTable(*db)->getAt(od("INNER"));
    EXPECT_EQ(first->blockTableRecord(), newInner);
    EXPECT_EQ(second->blockTableRecord(), newInner);
    EXPECT_EQ(attributesOf(first), (Strings{"A=1", "B=2"}));
    EXPECT_EQ(open<OdDbBlockTableRecord>(newInner)->origin(), OdGePoint3d(1, 2, 0));
    const OdDbObjectId newDeepest = part<OdDbBlockReference>(newInner, 0)->blockTableRecord();
    EXPECT_EQ(utf8(open<OdDbBlockTableRecord>(newDeepest)->getName()), "DEEPEST");
    EXPECT_EQ(part<OdDbCircle>(newDeepest, 0)->database(), db.get());
    EXPECT_EQ(open<OdDbBlockTableRecord>(newInner)->getBlockReferenceIds().size(), 2u);
}

TEST_F(InsertTest, GivesAnonymousBlocksTheNextFreeNumber) {
    addBlock(*db, "*U1");
    addBlock(*db, "*U2");
    for (const char* name : {"*U1", "*U7"}) {
        const OdDbObjectId block = addBlock(*symbol, name);
        putIn(block, make<OdDbLine>());
        append(*symbol, referenceTo(block));
        append(*symbol, referenceTo(block));
    }
    const OdDbObjectId id = insert();
    const auto nameOf = [&](std::size_t i) {
        return utf8(
            open<OdDbBlockTableRecord>(part<OdDbBlockReference>(id, i)->blockTableRecord())->getName());
    };
    EXPECT_EQ(nameOf(0), "*U3");
    EXPECT_EQ(nameOf(1), "*U3") << "one block, one copy";
    EXPECT_EQ(nameOf(2), "*U4");
    insert("SECOND");
    EXPECT_EQ(namesOf(db->getBlockTableId()).back(), "*U6") << "anonymous blocks are never shared by name";
}

TEST_F(InsertTest, ReferencesToLayoutsDoNotReachTheOtherDrawing) {
    append(*symbol, referenceTo(symbol->getModelSpaceId()));
    append(*symbol, referenceTo(symbol->getPaperSpaceId()));
    putIn(symbol->getPaperSpaceId(), make<OdDbLine>());
    append(*symbol, referenceTo(OdDbObjectId::kNull));
    const OdDbObjectId id = insert();
    EXPECT_EQ(part<OdDbBlockReference>(id, 0)->blockTableRecord(), id) << "the same circle as in the source";
    const auto paper = open<OdDbBlockTableRecord>(part<OdDbBlockReference>(id, 1)->blockTableRecord());
    EXPECT_EQ(utf8(paper->getName()), "*U1");
    EXPECT_EQ(entitiesOf(paper->objectId()).size(), 1u);
    EXPECT_TRUE(part<OdDbBlockReference>(id, 2)->blockTableRecord().isNull());
}

TEST_F(InsertTest, PassesOverWhatIsErased) {
    append(*symbol, make<OdDbLine>()).openObject(OdDb::kForWrite)->erase();
    const OdDbObjectId inner = addBlock(*symbol, "INNER");
    append(*symbol, referenceTo(inner));
    inner.openObject(OdDb::kForWrite)->erase();
    const OdDbObjectId id = insert();
    ASSERT_EQ(entitiesOf(id).size(), 1u);
    EXPECT_TRUE(part<OdDbBlockReference>(id, 0)->blockTableRecord().isNull());
    EXPECT_TRUE(blockTable(*db)->getAt(od("INNER")).isNull());
}

TEST_F(InsertTest, BringsApplicationIdsAndTranslatesHandleData) {
    addTo<OdDbRegAppTableRecord>(symbol->getRegAppTableId(), "KNOWN");
    const OdDbObjectId a = append(*symbol, make<OdDbLine>()), b = append(*symbol, make<OdDbLine>());
    const OdDbObjectId layer = addLayer(*symbol, "L");
    a.openObject(OdDb::kForWrite)
        ->setXData(chainOf("1001 KNOWN|1000 " + handleText(b) + "|1005 " + handleText(b) + "|1005 " +
                           handleText(layer) + "|1005 0"));
    const unsigned silent = db->silentRegistrations();
    const OdDbObjectId id = insert();
    EXPECT_EQ(textOf(part<OdDbLine>(id, 0)->xData(od("KNOWN"))),
              "1001 KNOWN|1000 " + handleText(b) + "|1005 " + handleText(entitiesOf(id)[1]) +
                  "|1005 0|1005 0")
        << "a handle of what didn't come would be another object's";
    EXPECT_TRUE(open<OdDbSymbolTable>(db->getRegAppTableId())->has(od("KNOWN")));
    EXPECT_EQ(db->silentRegistrations(), silent);
}

TEST_F(InsertTest, CarriesWhatIsNotRead) {
    dxf::Parts parts;
    parts.version = "AC1015";
    parts.layers = dxf::Parts::layer("40", "PAG1", "62 3|290 0|370 25");
    parts.tables = dxf::Parts::table(
        "DIMSTYLE", "A",
        "0 DIMSTYLE|105 50|330 A|100 AcDbSymbolTableRecord|100 AcDbDimStyleTableRecord|2 MINE|70 "
        "0|40 7.5|340 11|342 32");
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "*D1") + "|" +
                         dxf::Parts::record("BLOCK_RECORD", "32", "1", "ARROW");
    parts.blocks =
        dxf::Parts::block("*D1", "31", "30", entity("LINE", "60", "100 AcDbLine|10 0.0|20 0.0|30 0.0")) +
        "|" + dxf::Parts::block("ARROW", "33", "32", "");
    parts.entities =
        entity("DIMENSION", "100", "100 AcDbDimension|2 *D1|3 MINE|1 \xE7|70 0|330 60") + "|" +
        "0 LINE|5 101|330 1F|100 AcDbEntity|8 PAG1|390 99|100 AcDbLine|39 3.5|10 0.0|20 0.0|30 0.0|11 "
        "1.0|21 0.0|31 0.0";
    symbol = readGroups(parts.groups());
    addBlock(*db, "*D1");
    const OdDbObjectId id = insert();
    ASSERT_EQ(entitiesOf(id).size(), 2u);
    symbol.release(); // the library file may go

    const std::string dimension = entryOf(*db, entitiesOf(id)[0]);
    EXPECT_TRUE(contains(dimension, "0 DIMENSION|")) << dimension;
    EXPECT_TRUE(contains(dimension, "|2 *D2|")) << "the picture got another number: " << dimension;
    EXPECT_TRUE(contains(dimension, "|3 MINE|")) << dimension;
    EXPECT_TRUE(contains(dimension, "|1 \xC3\xA7|")) << dimension;
    const OdDbObjectId picture = blockTable(*db)->getAt(od("*D2"));
    EXPECT_TRUE(contains(dimension, "|330 " + handleText(entitiesOf(picture)[0]))) << dimension;
    const std::string line = entryOf(*db, entitiesOf(id)[1]);
    EXPECT_TRUE(contains(line, "|39 3.5|")) << line;
    EXPECT_FALSE(contains(line, "390")) << "a plot style that isn't there: " << line;
    const std::string layer = entryOf(*db, layerTable(*db)->getAt(od("PAG1")));
    EXPECT_TRUE(contains(layer, "|290 0")) << layer;
    EXPECT_TRUE(contains(layer, "|370 25")) << layer;

    const auto again = readBytes(written(*db));
    EXPECT_EQ(reportOf(*again), "");
    const std::string bytes = written(*db);
    EXPECT_TRUE(contains(bytes, "DIMSTYLE")) << "its style came along";
    EXPECT_TRUE(contains(bytes, "MINE"));
    EXPECT_FALSE(blockTable(*db)->getAt(od("ARROW")).isNull()) << "and the arrow block of the style";
}

TEST_F(InsertTest, BringsObjectsOfNamedDictionariesUnderTheirNames) {
    dxf::Parts parts;
    parts.objects =
        "3 STYLES|350 200|3 OTHER|350 201|0 DICTIONARY|5 200|330 C|100 AcDbDictionary|281 1|3 MINE|350 "
        "210|3 UNUSED|350 211|0 DICTIONARY|5 201|330 C|100 AcDbDictionary|0 MLEADERSTYLE|5 210|330 200|100 "
        "AcDbMLeaderStyle|40 3.0|0 MLEADERSTYLE|5 211|330 200|100 AcDbMLeaderStyle|40 4.0";
    parts.entities = entity("MULTILEADER", "100", "100 AcDbMLeader|340 210|341 10");
    symbol = readGroups(parts.groups());
    const OdDbObjectId id = insert();
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId());
    const OdSmartPtr<OdDbDictionary> styles(root->getAt(od("STYLES"), OdDb::kForRead));
    ASSERT_FALSE(styles.isNull());
    EXPECT_TRUE(root->getAt(od("OTHER")).isNull());
    ASSERT_EQ(styles->numEntries(), 1u) << "only what is used";
    const OdDbObjectId style = styles->getAt(od("MINE"));
    EXPECT_EQ(utf8(style.openObject()->dxfName()), "MLEADERSTYLE");
    EXPECT_TRUE(contains(entryOf(*db, style), "|40 3.0"));
    const std::string leader = entryOf(*db, entitiesOf(id)[0]);
    EXPECT_TRUE(contains(leader, "|340 " + handleText(style))) << leader;
    EXPECT_TRUE(contains(leader, "|341 " + handleText(db->getLayerZeroId()))) << "found by name: " << leader;
    insert("AGAIN");
    EXPECT_EQ(styles->numEntries(), 1u) << "and found at the second time";
}

TEST_F(InsertTest, ObjectsThatReferInCirclesComeToAnEnd) {
    dxf::Parts parts;
    parts.objects = "3 A|350 200|3 B|350 201|0 THING|5 200|330 C|340 201|0 THING|5 201|330 C|340 200";
    parts.entities = entity("MESH", "100", "100 AcDbMesh|340 200");
    symbol = readGroups(parts.groups());
    insert();
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId());
    const OdDbObjectId a = root->getAt(od("A")), b = root->getAt(od("B"));
    ASSERT_FALSE(a.isNull() || b.isNull());
    EXPECT_TRUE(contains(entryOf(*db, a), "|340 " + handleText(b)));
    EXPECT_TRUE(contains(entryOf(*db, b), "|340 " + handleText(a)));
}

TEST_F(InsertTest, KeepsTheHeadOfInnerBlocks) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "IN");
    parts.blocks =
        "0 BLOCK|5 31|330 30|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 IN|70 0|10 0.0|20 0.0|30 0.0|3 IN|1 |4 "
        "a motor|0 ENDBLK|5 32|330 30|100 AcDbEntity|8 0|100 AcDbBlockEnd";
    parts.entities = entity("INSERT", "100", "100 AcDbBlockReference|2 IN|10 0.0|20 0.0|30 0.0");
    symbol = readGroups(parts.groups());
    insert();
    const std::string bytes = written(*db);
    EXPECT_TRUE(contains(bytes, "a motor"));
    const auto again = readBytes(bytes);
    EXPECT_EQ(reportOf(*again), "");
    EXPECT_EQ(namesOf(again->getBlockTableId()), namesOf(db->getBlockTableId()));
}

TEST_F(InsertTest, LeavesNoTraceInTheFileWhenTakenBack) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "IN");
    parts.blocks = dxf::Parts::block("IN", "31", "30");
    parts.entities = entity("INSERT", "100", "100 AcDbBlockReference|2 IN|10 0.0|20 0.0|30 0.0");
    symbol = readGroups(parts.groups());
    db->setUndoRecording(true);
    db->startUndoRecord();
    insert();
    ASSERT_TRUE(db->undo());
    EXPECT_FALSE(contains(written(*db), "\nIN\r"));
    EXPECT_EQ(namesOf(readBytes(written(*db))->getBlockTableId()).size(), 2u);
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(namesOf(readBytes(written(*db))->getBlockTableId()), namesOf(db->getBlockTableId()));
}

TEST_F(InsertTest, TakesBlocksNestedDeeperThanAnyStack) {
    constexpr int kDeep = 20000;
    OdDbObjectId inner;
    for (int i = 0; i < kDeep; ++i) {
        const OdDbObjectId block = addBlock(*symbol, "B" + std::to_string(i));
        if (!inner.isNull()) putIn(block, referenceTo(inner));
        inner = block;
    }
    append(*symbol, referenceTo(inner));
    EXPECT_TRUE(insert().isValid());
    EXPECT_EQ(namesOf(db->getBlockTableId()).size(), kDeep + 3u);
}

TEST_F(InsertTest, TellsOfEntitiesFirstAndOfTheBlockLast) {
    append(*symbol, make<OdDbLine>());
    append(*symbol, make<OdDbPolyline>());
    CloneRecorder recorder, there;
    std::size_t entities = 0;
    recorder.onAppended = [&](const OdDbObject* object) {
        if (object->isKindOf(OdDbBlockTableRecord::desc())) entities = entitiesOf(object->objectId()).size();
    };
    db->addReactor(&recorder);
    symbol->addReactor(&there);
    insert();
    EXPECT_EQ(recorder.take(), (Strings{"appended LINE", "appended LWPOLYLINE", "appended BLOCK_RECORD"}));
    EXPECT_EQ(entities, 2u);
    EXPECT_EQ(there.take(), Strings{});
}

TEST_F(InsertTest, IsTakenBackAsAWhole) {
    const OdDbObjectId layer = addLayer(*symbol, "WIRES");
    const OdDbObjectId line = append(*symbol, make<OdDbLine>());
    open<OdDbLine>(line, OdDb::kForWrite)->setLayer(layer);
    placeSymbol(*symbol, addBlock(*symbol, "INNER"), {"A=1"});
    db->setUndoRecording(true);
    db->startUndoRecord();
    const OdDbObjectId id = insert();
    ASSERT_TRUE(db->undo());
    EXPECT_FALSE(id.isValid());
    EXPECT_EQ(namesOf(db->getBlockTableId()).size(), 2u);
    EXPECT_EQ(namesOf(db->getLayerTableId()), Strings{"0"});
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(entitiesOf(id).size(), 2u);
    EXPECT_EQ(utf8(part<OdDbLine>(id, 0)->layer()), "WIRES");
}

TEST_F(InsertTest, ADrawingCanBeInsertedIntoItself) {
    const OdDbObjectId block = addBlock(*db, "S");
    placeSymbol(*db, block, {"A=1"});
    const OdDbObjectId id = db->insert(od("COPY"), db);
    ASSERT_EQ(entitiesOf(id).size(), 1u);
    EXPECT_EQ(part<OdDbBlockReference>(id, 0)->blockTableRecord(), block);
    EXPECT_EQ(entitiesOf(db->getModelSpaceId()).size(), 1u);
}

TEST_F(InsertTest, CostsNothingOfTheDestination) {
    const OdDbObjectId block = addBlock(*db, "S");
    for (int i = 0; i < 20000; ++i) placeSymbol(*db, block, {"A=1"});
    for (int i = 0; i < 20; ++i) append(*symbol, make<OdDbLine>());
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) insert("B" + std::to_string(i));
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 2000);
}
