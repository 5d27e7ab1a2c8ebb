// SPDX-License-Identifier: MIT
// Deep clones inside a drawing: what is cloned, in which order, and what happens to references among the
// clones.
#include "clone_support.h"

#include "drawing/deepclone.h"

#include <chrono>

using namespace drawing_test;

namespace {

using Ids = OdArray<OdDbObjectId>;
using Calls = std::vector<std::string>;

OdDbObjectId lineIn(OdDbDatabase& db, double x = 0) {
    const auto line = make<OdDbLine>();
    line->setEndPoint({x, 0, 0});
    return append(db, line);
}

void setXData(OdDbObjectId id, const std::string& notation) {
    id.openObject(OdDb::kForWrite)->setXData(chainOf(notation));
}

OdDbObjectId lineType(OdDbDatabase& db, const std::string& name) {
    const auto record = make<OdDbLinetypeTableRecord>();
    record->setName(od(name));
    return open<OdDbSymbolTable>(db.getLinetypeTableId(), OdDb::kForWrite)->add(record);
}

struct DeepCloneTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    OdDbIdMapping mapping;
    OdDbObjectId space = db->getModelSpaceId();

    OdDbObjectId clone(OdDbObjectId id, OdDbObjectId owner) {
        db->deepCloneObjects(Ids{id}, owner, mapping);
        return cloneIn(mapping, id);
    }
};

} // namespace

TEST(IdMappingTest, FindsTheValueOfAKey) {
    const auto db = newDatabase();
    const OdDbObjectId a = lineIn(*db), b = lineIn(*db), c = lineIn(*db);
    OdDbIdMapping mapping;
    EXPECT_EQ(mapping.destDb(), nullptr);
    mapping.assign(OdDbIdPair(a, b));
    OdDbIdPair pair(a);
    EXPECT_TRUE(mapping.compute(pair));
    EXPECT_EQ(pair.value(), b);
    OdDbIdPair unknown(b, c);
    EXPECT_FALSE(mapping.compute(unknown));
    EXPECT_EQ(unknown.value(), c) << "a pair that isn't found stays as it is";
    mapping.assign(OdDbIdPair(a, c));
    ASSERT_EQ(mapping.pairs().size(), 1u) << "a known key gets another value";
    EXPECT_EQ(mapping.pairs()[0].value(), c);
}

TEST_F(DeepCloneTest, ClonesAReferenceWithAttributesAndAPairForEach) {
    const OdDbObjectId block = addBlock(*db, "SYMBOL");
    const OdDbObjectId source = placeSymbol(*db, block, {"TAG=K1", "DESC=motor"});
    const OdDbObjectId target = addBlock(*db, "TARGET");
    const OdDbObjectId copy = clone(source, target);
    ASSERT_FALSE(copy.isNull());
    const auto reference = open<OdDbBlockReference>(copy);
    EXPECT_EQ(reference->ownerId(), target);
    EXPECT_EQ(reference->blockTableRecord(), block);
    EXPECT_EQ(attributesOf(reference), attributesOf(open<OdDbBlockReference>(source)));
    EXPECT_EQ(mapping.destDb(), db.get());

    const auto before = attributeIdsOf(source), after = attributeIdsOf(copy);
    ASSERT_EQ(mapping.pairs().size(), 3u) << "the reference and its two attributes, nothing else";
    EXPECT_EQ(mapping.pairs()[0].key(), source);
    EXPECT_EQ(mapping.pairs()[1].key(), before[0]);
    EXPECT_EQ(mapping.pairs()[1].value(), after[0]);
    EXPECT_EQ(mapping.pairs()[2].value(), after[1]);
    EXPECT_EQ(cloneIn(mapping, block), OdDbObjectId::kNull) << "only referred to";
    EXPECT_EQ(cloneIn(mapping, db->getLayerZeroId()), OdDbObjectId::kNull);
    EXPECT_EQ(open<OdDbBlockTableRecord>(block)->getBlockReferenceIds().size(), 2u);
    EXPECT_EQ(entitiesOf(space).size(), 1u) << "the source stays";
}

TEST_F(DeepCloneTest, ClonesInTheOrderOfTheIds) {
    const OdDbObjectId a = lineIn(*db, 1), b = lineIn(*db, 2), c = lineIn(*db, 3);
    const OdDbObjectId target = addBlock(*db, "T");
    db->deepCloneObjects(Ids{c, a, b}, target, mapping);
    std::vector<double> ends;
    for (const OdDbObjectId id : entitiesOf(target)) ends.push_back(open<OdDbLine>(id)->endPoint().x);
    EXPECT_EQ(ends, (std::vector<double>{3, 1, 2}));
    ASSERT_EQ(mapping.pairs().size(), 3u);
    EXPECT_EQ(mapping.pairs()[0].key(), c);
    EXPECT_EQ(mapping.pairs()[2].key(), b);
}

TEST_F(DeepCloneTest, ClonesIntoTheSameBlock) {
    const OdDbObjectId a = lineIn(*db), b = lineIn(*db);
    db->deepCloneObjects(Ids{a, b}, space, mapping);
    EXPECT_EQ(entitiesOf(space).size(), 4u);
}

TEST_F(DeepCloneTest, KeepsPropertiesAndLayers) {
    const OdDbObjectId layer = addLayer(*db, "PAG1");
    const OdDbObjectId id = lineIn(*db);
    {
        const auto line = open<OdDbLine>(id, OdDb::kForWrite);
        line->setLayer(layer);
        line->setColor(OdCmColor::fromIndex(3));
        line->setLineWeight(50);
        line->setVisible(false);
    }
    const auto copy = open<OdDbLine>(clone(id, space));
    EXPECT_EQ(copy->layerId(), layer);
    EXPECT_EQ(copy->color(), OdCmColor::fromIndex(3));
    EXPECT_EQ(copy->lineWeight(), 50);
    EXPECT_FALSE(copy->isVisible());
}

TEST_F(DeepCloneTest, LeavesHandlesInTextsAndTranslatesHandleData) {
    const OdDbObjectId a = lineIn(*db), b = lineIn(*db), outside = lineIn(*db);
    setXData(a, "1001 TVO|1000 " + handleText(b) + "|1005 " + handleText(b) + "|1005 " + handleText(outside));
    db->deepCloneObjects(Ids{a, b}, space, mapping);
    const OdDbObjectId newA = cloneIn(mapping, a), newB = cloneIn(mapping, b);
    EXPECT_EQ(textOf(newA.openObject()->xData(od("TVO"))), "1001 TVO|1000 " + handleText(b) + "|1005 " +
                                                               handleText(newB) + "|1005 " +
                                                               handleText(outside));
    EXPECT_EQ(textOf(a.openObject()->xData(od("TVO"))),
              "1001 TVO|1000 " + handleText(b) + "|1005 " + handleText(b) + "|1005 " + handleText(outside));
}

TEST_F(DeepCloneTest, TranslatesHandleDataOfAttributes) {
    const OdDbObjectId block = addBlock(*db, "S");
    const OdDbObjectId source = placeSymbol(*db, block, {"A=1", "B=2"});
    const auto attributes = attributeIdsOf(source);
    setXData(attributes[0], "1001 LINK|1005 " + handleText(attributes[1]));
    const OdDbObjectId copy = clone(source, space);
    const auto copies = attributeIdsOf(copy);
    EXPECT_EQ(textOf(copies[0].openObject()->xData(od("LINK"))), "1001 LINK|1005 " + handleText(copies[1]));
}

TEST_F(DeepCloneTest, DeferredTranslationLeavesReferences) {
    const OdDbObjectId a = lineIn(*db), b = lineIn(*db);
    setXData(a, "1001 TVO|1005 " + handleText(b));
    db->deepCloneObjects(Ids{a, b}, space, mapping, true);
    EXPECT_EQ(textOf(cloneIn(mapping, a).openObject()->xData(od("TVO"))), "1001 TVO|1005 " + handleText(b));
}

TEST_F(DeepCloneTest, PassesOverErasedAndNullIdsAndTakesDoubledOnesOnce) {
    const OdDbObjectId a = lineIn(*db), erased = lineIn(*db);
    erased.openObject(OdDb::kForWrite)->erase();
    db->deepCloneObjects(Ids{erased, OdDbObjectId::kNull, a, a}, space, mapping);
    EXPECT_EQ(mapping.pairs().size(), 1u);
    EXPECT_EQ(entitiesOf(space).size(), 2u);
    db->deepCloneObjects(Ids{a}, space, mapping);
    EXPECT_EQ(entitiesOf(space).size(), 3u) << "another call clones again";
    EXPECT_EQ(mapping.pairs().size(), 1u);
    EXPECT_EQ(cloneIn(mapping, a), entitiesOf(space)[2]);
}

TEST_F(DeepCloneTest, ClonesNoErasedAttributes) {
    const OdDbObjectId source = placeSymbol(*db, addBlock(*db, "S"), {"A=1", "B=2"});
    attributeIdsOf(source)[0].openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(attributesOf(open<OdDbBlockReference>(clone(source, space))),
              (std::vector<std::string>{"B=2"}));
    EXPECT_EQ(mapping.pairs().size(), 2u);
}

TEST_F(DeepCloneTest, PutsAttributesBelowAReference) {
    const OdDbObjectId block = addBlock(*db, "S");
    const OdDbObjectId from = placeSymbol(*db, block, {"A=1"}), to = placeSymbol(*db, block, {"B=2"});
    db->deepCloneObjects(Ids{attributeIdsOf(from)[0]}, to, mapping);
    EXPECT_EQ(attributesOf(open<OdDbBlockReference>(to)), (std::vector<std::string>{"B=2", "A=1"}));
}

TEST_F(DeepCloneTest, RefusesWhatDoesNotFitAndChangesNothing) {
    const auto other = newDatabase();
    const OdDbObjectId line = lineIn(*db), foreign = lineIn(*other);
    const OdDbObjectId layer = addLayer(*db, "L");
    const OdDbObjectId reference = placeSymbol(*db, addBlock(*db, "S"), {"A=1"});
    const OdDbObjectId attribute = attributeIdsOf(reference)[0];
    const OdDbObjectId erasedBlock = addBlock(*db, "GONE");
    erasedBlock.openObject(OdDb::kForWrite)->erase();
    struct Row {
        const char* what;
        OdDbObjectId id, owner;
        OdResult code;
    };
    const Row rows[] = {{"another drawing's object", foreign, space, eInvalidInput},
                        {"another drawing's owner", line, other->getModelSpaceId(), eInvalidInput},
                        {"no owner", line, OdDbObjectId::kNull, eInvalidInput},
                        {"an erased owner", line, erasedBlock, eWasErased},
                        {"an entity in a table", line, db->getLayerTableId(), eInvalidInput},
                        {"a record in a block", layer, space, eInvalidInput},
                        {"a layer among blocks", layer, db->getBlockTableId(), eInvalidInput},
                        {"an attribute in a block", attribute, space, eInvalidInput},
                        {"a line below a reference", line, reference, eInvalidInput},
                        {"an entity in a dictionary", line, db->getNamedObjectsDictionaryId(), eInvalidInput},
                        {"something below a line", line, line, eInvalidInput},
                        {"the root dictionary", db->getNamedObjectsDictionaryId(),
                         db->getNamedObjectsDictionaryId(), eInvalidInput},
                        {"a table", db->getLayerTableId(), db->getNamedObjectsDictionaryId(), eInvalidInput}};
    for (const Row& row : rows) {
        const std::size_t before = entitiesOf(space).size();
        // The first id would fit, and isn't cloned all the same.
        const Ids ids = row.owner == space ? Ids{line, row.id} : Ids{row.id};
        EXPECT_EQ(codeOf([&] { db->deepCloneObjects(ids, row.owner, mapping); }), row.code) << row.what;
        EXPECT_EQ(entitiesOf(space).size(), before) << row.what;
    }
    EXPECT_TRUE(mapping.pairs().empty());
}

TEST_F(DeepCloneTest, LeavesTheOwnerAsOpenAsItWas) {
    const OdDbObjectId line = lineIn(*db);
    const auto forRead = open<OdDbBlockTableRecord>(space);
    clone(line, space);
    EXPECT_FALSE(forRead->isWriteEnabled());
    const auto forWrite = open<OdDbBlockTableRecord>(space, OdDb::kForWrite);
    clone(line, space);
    EXPECT_TRUE(forWrite->isWriteEnabled());
}

// --- records
// ----------------------------------------------------------------------------------------------------

TEST_F(DeepCloneTest, NamesClonedRecordsBehindTheirSources) {
    const OdDbObjectId layer = addLayer(*db, "PAG1");
    const OdDbObjectId type = lineType(*db, "DASHED");
    {
        const auto record = open<OdDbLayerTableRecord>(layer, OdDb::kForWrite);
        record->setLinetypeObjectId(type);
        record->setIsFrozen(true);
        record->setColor(OdCmColor::fromIndex(5));
    }
    const auto first = open<OdDbLayerTableRecord>(clone(layer, db->getLayerTableId()));
    EXPECT_EQ(utf8(first->getName()), "PAG1_1");
    EXPECT_EQ(first->linetypeObjectId(), type);
    EXPECT_TRUE(first->isFrozen());
    EXPECT_EQ(first->color(), OdCmColor::fromIndex(5));
    EXPECT_EQ(layerTable(*db)->getAt(od("PAG1_1")), first->objectId());
    EXPECT_EQ(utf8(open<OdDbLayerTableRecord>(clone(layer, db->getLayerTableId()))->getName()), "PAG1_2");
}

TEST_F(DeepCloneTest, DoesNotTakeTheNameOfAnErasedRecord) {
    const OdDbObjectId layer = addLayer(*db, "A");
    addLayer(*db, "A_1").openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(utf8(open<OdDbLayerTableRecord>(clone(layer, db->getLayerTableId()))->getName()), "A_2");
}

TEST_F(DeepCloneTest, ClonesEveryKindOfRecord) {
    struct Row {
        OdDbObjectId table;
        OdSmartPtr<OdDbSymbolTableRecord> record;
    };
    const Row rows[] = {{db->getLayerTableId(), make<OdDbLayerTableRecord>()},
                        {db->getLinetypeTableId(), make<OdDbLinetypeTableRecord>()},
                        {db->getTextStyleTableId(), make<OdDbTextStyleTableRecord>()},
                        {db->getRegAppTableId(), make<OdDbRegAppTableRecord>()},
                        {db->getViewTableId(), make<OdDbViewTableRecord>()},
                        {db->getViewportTableId(), make<OdDbViewportTableRecord>()},
                        {db->getBlockTableId(), make<OdDbBlockTableRecord>()}};
    for (const Row& row : rows) {
        row.record->setName(od("NAME"));
        const OdDbObjectId id = open<OdDbSymbolTable>(row.table, OdDb::kForWrite)->add(row.record);
        const auto copy = open<OdDbSymbolTableRecord>(clone(id, row.table));
        EXPECT_EQ(copy->isA(), row.record->isA());
        EXPECT_EQ(utf8(copy->getName()), "NAME_1");
        EXPECT_EQ(copy->dxfName(), row.record->dxfName());
    }
}

TEST_F(DeepCloneTest, ClonesABlockWithItsEntities) {
    const OdDbObjectId block = addBlock(*db, "B");
    {
        const auto record = open<OdDbBlockTableRecord>(block, OdDb::kForWrite);
        record->setOrigin({1, 2, 3});
        record->appendOdDbEntity(make<OdDbLine>());
        record->appendOdDbEntity(make<OdDbCircle>());
    }
    const OdDbObjectId copy = clone(block, db->getBlockTableId());
    EXPECT_EQ(open<OdDbBlockTableRecord>(copy)->origin(), OdGePoint3d(1, 2, 3));
    EXPECT_EQ(entitiesOf(copy).size(), 2u);
    EXPECT_EQ(mapping.pairs().size(), 3u);
    EXPECT_EQ(mapping.pairs()[0].value(), copy);
    EXPECT_EQ(mapping.pairs()[1].value(), entitiesOf(copy)[0]);
}

TEST_F(DeepCloneTest, RepointsReferencesBetweenClonedBlocksOnly) {
    const OdDbObjectId inner = addBlock(*db, "INNER"), outer = addBlock(*db, "OUTER"),
                       kept = addBlock(*db, "KEPT");
    for (const OdDbObjectId shown : {inner, kept}) {
        const auto reference = make<OdDbBlockReference>();
        reference->setBlockTableRecord(shown);
        open<OdDbBlockTableRecord>(outer, OdDb::kForWrite)->appendOdDbEntity(reference);
    }
    // The outer one comes first, so that what it shows is cloned later.
    db->deepCloneObjects(Ids{outer, inner}, db->getBlockTableId(), mapping);
    const OdDbObjectId newOuter = cloneIn(mapping, outer), newInner = cloneIn(mapping, inner);
    const auto parts = entitiesOf(newOuter);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(open<OdDbBlockReference>(parts[0])->blockTableRecord(), newInner);
    EXPECT_EQ(open<OdDbBlockReference>(parts[1])->blockTableRecord(), kept);
    EXPECT_EQ(open<OdDbBlockTableRecord>(newInner)->getBlockReferenceIds().size(), 1u);
    EXPECT_EQ(open<OdDbBlockTableRecord>(inner)->getBlockReferenceIds().size(), 1u);
    EXPECT_EQ(open<OdDbBlockTableRecord>(kept)->getBlockReferenceIds().size(), 2u);
}

TEST_F(DeepCloneTest, ABlockThatHoldsItselfBecomesABlockThatHoldsItself) {
    const OdDbObjectId block = addBlock(*db, "LOOP");
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(reference);
    const OdDbObjectId copy = clone(block, db->getBlockTableId());
    ASSERT_EQ(entitiesOf(copy).size(), 1u);
    EXPECT_EQ(open<OdDbBlockReference>(entitiesOf(copy)[0])->blockTableRecord(), copy);
}

TEST_F(DeepCloneTest, GivesAnonymousBlocksAndCopiesOfLayoutsTheNextFreeNumber) {
    const OdDbObjectId first = addBlock(*db, "*U1");
    addBlock(*db, "*U2");
    const OdDbObjectId dimension = addBlock(*db, "*D7");
    const auto nameOf = [&](OdDbObjectId id) {
        return utf8(open<OdDbBlockTableRecord>(clone(id, db->getBlockTableId()))->getName());
    };
    EXPECT_EQ(nameOf(first), "*U3");
    EXPECT_EQ(nameOf(dimension), "*D1");
    EXPECT_EQ(nameOf(first), "*U4");
    EXPECT_EQ(nameOf(space), "*U5") << "a drawing has one model space";
    EXPECT_EQ(nameOf(db->getPaperSpaceId()), "*U6");
}

// --- dictionaries
// -----------------------------------------------------------------------------------------------

TEST_F(DeepCloneTest, ClonesADictionaryWithWhatItOwns) {
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    const auto settings = make<OdDbDictionary>();
    const OdDbObjectId source = root->setAt(od("SETTINGS"), settings);
    const auto record = make<OdDbXrecord>();
    const OdDbObjectId entry = settings->setAt(od("FIRST"), record);
    const OdDbObjectId second = settings->setAt(od("SECOND"), make<OdDbXrecord>());
    const OdDbObjectId line = lineIn(*db);
    record->setFromRbChain(chainOf("1 text|340 " + handleText(second) + "|330 " + handleText(line)));
    setXData(source, "1001 APP|1000 x");

    const auto copy = open<OdDbDictionary>(clone(source, root->objectId()));
    EXPECT_EQ(root->getAt(od("SETTINGS_1")), copy->objectId()) << "the name is taken";
    EXPECT_EQ(copy->ownerId(), root->objectId());
    EXPECT_EQ(textOf(copy->xData(od("APP"))), "1001 APP|1000 x");
    ASSERT_EQ(copy->numEntries(), 2u);
    EXPECT_EQ(copy->getAt(od("FIRST")), cloneIn(mapping, entry));
    EXPECT_EQ(mapping.pairs().size(), 3u);
    const OdSmartPtr<OdDbXrecord> first(copy->getAt(od("FIRST"), OdDb::kForRead));
    EXPECT_EQ(textOf(first->rbChain()),
              "1 text|340 " + handleText(copy->getAt(od("SECOND"))) + "|330 " + handleText(line));
    EXPECT_EQ(first->ownerId(), copy->objectId());
}

TEST_F(DeepCloneTest, KeepsTheEntryNameInAnotherDictionary) {
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    const auto a = make<OdDbDictionary>(), b = make<OdDbDictionary>();
    root->setAt(od("A"), a);
    root->setAt(od("B"), b);
    const OdDbObjectId entry = a->setAt(od("NAME"), make<OdDbXrecord>());
    clone(entry, b->objectId());
    EXPECT_EQ(b->getAt(od("NAME")), cloneIn(mapping, entry));
    EXPECT_EQ(a->numEntries(), 1u);
}

// --- reactors and undo
// ------------------------------------------------------------------------------------------

TEST_F(DeepCloneTest, TellsReactorsAtTheEndWhenReferencesPointToTheClones) {
    const OdDbObjectId block = addBlock(*db, "S");
    const OdDbObjectId a = placeSymbol(*db, block, {"A=1"});
    const OdDbObjectId b = lineIn(*db);
    setXData(a, "1001 TVO|1005 " + handleText(b));
    CloneRecorder recorder;
    std::string seen;
    std::size_t there = 0;
    recorder.onAppended = [&](const OdDbObject* object) {
        if (object->isKindOf(OdDbBlockReference::desc())) {
            seen = textOf(object->xData(od("TVO")));
            there = mapping.pairs().size();
        }
    };
    db->addReactor(&recorder);
    db->deepCloneObjects(Ids{a, b}, space, mapping);
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT", "appended LINE"}));
    EXPECT_EQ(seen, "1001 TVO|1005 " + handleText(cloneIn(mapping, b)));
    EXPECT_EQ(there, 3u);
}

TEST_F(DeepCloneTest, TellsOfClonesAsTheyWereChangedAtOnce) {
    const OdDbObjectId source = placeSymbol(*db, addBlock(*db, "S"), {"A=1"});
    db->setUndoRecording(true);
    db->startUndoRecord();
    CloneRecorder recorder;
    double seen = 0;
    recorder.onAppended = [&](const OdDbObject* object) {
        if (const auto* reference = OdDbBlockReference::cast(object)) seen = reference->position().x;
    };
    db->addReactor(&recorder);
    lm::drawing::deepCloneChanged(*db, Ids{source}, space, mapping, [&] {
        EXPECT_TRUE(recorder.calls.empty()) << "nobody was told yet";
        EXPECT_EQ(mapping.pairs().size(), 2u);
        const auto copy = open<OdDbBlockReference>(cloneIn(mapping, source), OdDb::kForWrite);
        copy->transformBy(OdGeMatrix3d::translation({100, 0, 0}));
    });
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT"})) << "and once";
    EXPECT_EQ(seen, open<OdDbBlockReference>(source)->position().x + 100);
    const OdDbObjectId copy = cloneIn(mapping, source);
    ASSERT_TRUE(db->undo());
    EXPECT_FALSE(copy.isValid());
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(open<OdDbBlockReference>(copy)->position().x, seen);
    db->removeReactor(&recorder);
}

TEST_F(DeepCloneTest, TellsOfClonesWhoseChangeRaised) {
    const OdDbObjectId a = lineIn(*db), b = lineIn(*db);
    CloneRecorder recorder;
    recorder.onAppended = [](const OdDbObject*) { throw OdError(eInvalidInput); };
    db->addReactor(&recorder);
    EXPECT_EQ(codeOf([&] {
                  lm::drawing::deepCloneChanged(*db, Ids{a, b}, space, mapping,
                                                [] { throw OdError(eNotApplicable); });
              }),
              eNotApplicable)
        << "the first exception passes";
    EXPECT_EQ(recorder.take().size(), 2u);
    for (const OdDbObjectId id : {a, b}) EXPECT_FALSE(cloneIn(mapping, id).openObject()->isWriteEnabled());
}

TEST_F(DeepCloneTest, TellsOfABlockBehindItsEntities) {
    const OdDbObjectId block = addBlock(*db, "B");
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(make<OdDbLine>());
    CloneRecorder recorder;
    db->addReactor(&recorder);
    clone(block, db->getBlockTableId());
    EXPECT_EQ(recorder.take(), (Calls{"appended LINE", "appended BLOCK_RECORD"}));
}

TEST_F(DeepCloneTest, LetsAnExceptionOfAReactorPassAndClosesEverything) {
    const OdDbObjectId a = lineIn(*db), b = lineIn(*db);
    CloneRecorder recorder;
    recorder.onAppended = [](const OdDbObject*) { throw OdError(eNotApplicable); };
    db->addReactor(&recorder);
    EXPECT_EQ(codeOf([&] { db->deepCloneObjects(Ids{a, b}, space, mapping); }), eNotApplicable);
    EXPECT_EQ(recorder.take().size(), 2u);
    for (const OdDbObjectId id : {a, b}) EXPECT_FALSE(cloneIn(mapping, id).openObject()->isWriteEnabled());
}

TEST_F(DeepCloneTest, IsTakenBackAndRepeatedAsAWhole) {
    const OdDbObjectId block = addBlock(*db, "S");
    const OdDbObjectId a = placeSymbol(*db, block, {"A=1"});
    db->setUndoRecording(true);
    db->startUndoRecord();
    const OdDbObjectId copy = clone(a, space);
    const OdDbObjectId record = clone(block, db->getBlockTableId());
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(entitiesOf(space).size(), 1u);
    EXPECT_FALSE(copy.isValid());
    EXPECT_TRUE(blockTable(*db)->getAt(od("S_1")).isNull());
    EXPECT_EQ(open<OdDbBlockTableRecord>(block)->getBlockReferenceIds().size(), 1u);
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(entitiesOf(space).size(), 2u);
    EXPECT_EQ(attributesOf(open<OdDbBlockReference>(copy)), (std::vector<std::string>{"A=1"}));
    EXPECT_EQ(blockTable(*db)->getAt(od("S_1")), record);
}

// --- what isn't read
// --------------------------------------------------------------------------------------------

namespace {

std::string entity(const std::string& type, const std::string& handle, const std::string& groups) {
    return "0 " + type + "|5 " + handle + "|330 1F|100 AcDbEntity|8 0|" + groups;
}

OdDbObjectId idOf(const OdDbDatabase& db, const char* handle) {
    return db.getOdDbObjectId(OdDbHandle(std::stoull(handle, nullptr, 16)));
}

OdDbObjectId cloned(OdDbDatabase& db, OdDbIdMapping& mapping, const char* handle) {
    db.deepCloneObjects(Ids{idOf(db, handle)}, db.getModelSpaceId(), mapping);
    return cloneIn(mapping, idOf(db, handle));
}

} // namespace

TEST(DeepCloneUnreadTest, KeepsTheGroupsOfKindsThatAreNotRead) {
    dxf::Parts parts;
    const std::string mesh = "100 AcDbMesh|71 2|72 0|91 1|92 3|10 1.5|20 2.5|30 3.5|10 4.0|20 5.0|30 6.0";
    parts.entities = entity("MESH", "100", mesh + "|1001 ACAD|1000 kept");
    inBothForms(parts.groups(), [&](OdDbDatabase& db) {
        OdDbIdMapping mapping;
        const OdDbObjectId copy = cloned(db, mapping, "100");
        ASSERT_FALSE(copy.isNull());
        EXPECT_EQ(utf8(copy.openObject()->dxfName()), "MESH");
        const std::string entry = entryOf(db, copy);
        EXPECT_TRUE(
            contains(entry, "0 MESH|5 " + handleText(copy) + "|330 1F|100 AcDbEntity|8 0|100 AcDbMesh|71"))
            << entry;
        for (const char* group : {"|91 1|", "|92 3|", "|1001 ACAD|1000 kept"})
            EXPECT_TRUE(contains(entry, group)) << entry;
        const std::string again = entryOf(*readBytes(written(db)), copy);
        EXPECT_EQ(again, entry) << "read and written again";
    });
}

TEST(DeepCloneUnreadTest, KeepsUnreadGroupsOfKindsThatAreRead) {
    dxf::Parts parts;
    parts.entities = entity("CIRCLE", "100", "100 AcDbCircle|39 2.5|10 1.0|20 2.0|30 0.0|40 3.0");
    const auto db = readGroups(parts.groups());
    OdDbIdMapping mapping;
    const OdDbObjectId copy = cloned(*db, mapping, "100");
    open<OdDbCircle>(copy, OdDb::kForWrite)->setRadius(7);
    const std::string entry = entryOf(*db, copy);
    EXPECT_TRUE(contains(entry, "|39 2.5|")) << entry;
    EXPECT_TRUE(contains(entry, "|40 7")) << entry;
}

TEST(DeepCloneUnreadTest, TranslatesHandlesInsideTheSetAndKeepsOthers) {
    dxf::Parts parts;
    parts.entities = entity("LINE", "100", "100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0") + "|" +
                     entity("LINE", "101", "100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0") + "|" +
                     entity("LEADER", "102", "100 AcDbLeader|3 Standard|340 100|330 101");
    const auto db = readGroups(parts.groups());
    OdDbIdMapping mapping;
    db->deepCloneObjects(Ids{idOf(*db, "102"), idOf(*db, "100")}, db->getModelSpaceId(), mapping);
    const std::string entry = entryOf(*db, cloneIn(mapping, idOf(*db, "102")));
    EXPECT_TRUE(contains(entry, "|340 " + handleText(cloneIn(mapping, idOf(*db, "100"))))) << entry;
    EXPECT_TRUE(contains(entry, "|330 101")) << entry;
}

TEST(DeepCloneUnreadTest, DropsReactorsAndClonesTheExtensionDictionary) {
    dxf::Parts parts;
    parts.entities =
        "0 LINE|5 100|102 {ACAD_REACTORS|330 C|102 }|102 {ACAD_XDICTIONARY|360 110|102 }|330 1F|100 "
        "AcDbEntity|8 0|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0";
    parts.objects =
        "0 DICTIONARY|5 110|330 100|100 AcDbDictionary|281 1|3 DATA|360 111|0 XRECORD|5 111|330 110|100 "
        "AcDbXrecord|280 1|1 hello|340 100";
    const auto db = readGroups(parts.groups());
    OdDbIdMapping mapping;
    const OdDbObjectId copy = cloned(*db, mapping, "100");
    EXPECT_EQ(mapping.pairs().size(), 3u) << "with the dictionary and its entry";
    const OdDbObjectId dictionary = cloneIn(mapping, idOf(*db, "110"));
    ASSERT_FALSE(dictionary.isNull());
    EXPECT_EQ(dictionary.openObject()->ownerId(), copy);
    const OdSmartPtr<OdDbXrecord> record(open<OdDbDictionary>(dictionary)->getAt(od("DATA"), OdDb::kForRead));
    EXPECT_EQ(textOf(record->rbChain()), "1 hello|340 " + handleText(copy));
    const std::string entry = entryOf(*db, copy);
    EXPECT_FALSE(contains(entry, "REACTORS")) << entry;
    EXPECT_TRUE(contains(entry, "102 {ACAD_XDICTIONARY|360 " + handleText(dictionary) + "|102 }")) << entry;
}

TEST(DeepCloneUnreadTest, ClonesPolylinesWithTheirVertices) {
    dxf::Parts parts;
    const auto vertex = [](const char* handle, const char* x) {
        return std::string("0 VERTEX|5 ") + handle +
               "|330 100|100 AcDbEntity|8 0|100 AcDbVertex|100 AcDb2dVertex|10 " + x +
               "|20 0.0|30 0.0|42 0.5";
    };
    parts.entities = entity("POLYLINE", "100", "100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 1") + "|" +
                     vertex("101", "1.0") + "|" + vertex("102", "2.0") +
                     "|0 SEQEND|5 103|330 100|100 AcDbEntity|8 0";
    const auto db = readGroups(parts.groups());
    OdDbIdMapping mapping;
    const OdDbObjectId copy = cloned(*db, mapping, "100");
    EXPECT_EQ(mapping.pairs().size(), 3u);
    const OdDbObjectId second = cloneIn(mapping, idOf(*db, "102"));
    ASSERT_FALSE(second.isNull());
    EXPECT_EQ(second.openObject()->ownerId(), copy);
    EXPECT_EQ(utf8(second.openObject()->dxfName()), "VERTEX");
    const std::string entry = entryOf(*db, second);
    EXPECT_TRUE(contains(entry, "|10 2.0|")) << entry;
    EXPECT_TRUE(contains(entry, "|42 0.5")) << entry;
    const auto again = readBytes(written(*db));
    EXPECT_EQ(reportOf(*again), "");
    EXPECT_EQ(entryOf(*again, second), entry);
}

TEST(DeepCloneUnreadTest, ACopyOutsideTravelsIntoAnotherDrawing) {
    dxf::Parts parts;
    parts.version = "AC1015";
    parts.entities =
        entity("MESH", "100", "100 AcDbMesh|1 \xE7\xE3o|340 14|71 2") + "|" +
        entity("POLYLINE", "110", "100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 1") +
        "|0 VERTEX|5 111|330 110|100 AcDbEntity|8 0|100 AcDbVertex|100 AcDb2dVertex|10 4.0|20 0.0|30 0.0" +
        "|0 SEQEND|5 112|330 110|100 AcDbEntity|8 0";
    OdSmartPtr<OdDbEntity> mesh, polyline;
    {
        const auto db = readGroups(parts.groups());
        const auto copyOf = [&](const char* handle) {
            return OdSmartPtr<OdDbEntity>(OdDbEntity::cast(idOf(*db, handle).openObject()->clone()),
                                          lm::drawing::kAttach);
        };
        mesh = copyOf("100");
        polyline = copyOf("110");
    } // the first drawing is gone now
    const auto other = newDatabase();
    const OdDbObjectId meshId = append(*other, mesh), polylineId = append(*other, polyline);
    EXPECT_EQ(utf8(mesh->dxfName()), "MESH");
    const std::string entry = entryOf(*other, meshId);
    EXPECT_TRUE(contains(entry, "|1 \xC3\xA7\xC3\xA3o")) << "in the code page of the new file: " << entry;
    EXPECT_TRUE(contains(entry, "|340 0|71 2")) << "handles of the old drawing mean nothing here: " << entry;
    EXPECT_TRUE(contains(entry, "|5 " + handleText(meshId))) << entry;
    EXPECT_TRUE(contains(entryOf(*other, polylineId), "0 POLYLINE|5 " + handleText(polylineId)));
    const std::string bytes = written(*other);
    EXPECT_TRUE(contains(bytes, "VERTEX")) << bytes.substr(bytes.find("POLYLINE"), 600);
    EXPECT_EQ(reportOf(*readBytes(written(*other))), "");
}

TEST(DeepCloneUnreadTest, EveryClassHasACopyOutside) {
    const OdSmartPtr<OdDbObject> objects[] = {make<OdDbPoint>(),
                                              make<OdDbLine>(),
                                              make<OdDbCircle>(),
                                              make<OdDbArc>(),
                                              make<OdDbEllipse>(),
                                              make<OdDbPolyline>(),
                                              make<OdDbText>(),
                                              make<OdDbAttribute>(),
                                              make<OdDbAttributeDefinition>(),
                                              make<OdDbMText>(),
                                              make<OdDbBlockReference>(),
                                              make<OdDbUnreadEntity>(),
                                              make<OdDbUnreadObject>(),
                                              make<OdDbLayerTableRecord>(),
                                              make<OdDbLinetypeTableRecord>(),
                                              make<OdDbTextStyleTableRecord>(),
                                              make<OdDbRegAppTableRecord>(),
                                              make<OdDbViewTableRecord>(),
                                              make<OdDbViewportTableRecord>(),
                                              make<OdDbUnreadTableRecord>(),
                                              make<OdDbBlockTableRecord>(),
                                              make<OdDbDictionary>(),
                                              make<OdDbXrecord>()};
    for (const auto& object : objects) {
        object->setXData(chainOf("1001 A|1000 b"));
        const OdSmartPtr<OdDbObject> copy(OdDbObject::cast(object->clone()), lm::drawing::kAttach);
        ASSERT_FALSE(copy.isNull()) << object->isA()->asciiName();
        EXPECT_EQ(copy->isA(), object->isA());
        EXPECT_EQ(textOf(copy->xData()), "1001 A|1000 b");
        EXPECT_FALSE(copy->isDBRO());
    }
}

TEST_F(DeepCloneTest, ATextMadeOfAnAttributeIsATextInTheFile) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "S");
    parts.blocks = dxf::Parts::block("S", "31", "30");
    parts.entities =
        entity("INSERT", "100", "100 AcDbBlockReference|66 1|2 S|10 0.0|20 0.0|30 0.0") +
        "|0 ATTRIB|5 101|330 100|100 AcDbEntity|8 0|100 AcDbText|10 0.0|20 0.0|30 0.0|40 1.0|1 v|100 "
        "AcDbAttribute|2 TAG|70 0|0 SEQEND|5 102|330 100|100 AcDbEntity|8 0";
    const auto read = readGroups(parts.groups());
    const auto attribute = byHandle<OdDbAttribute>(*read, "101");
    const OdSmartPtr<OdDbText> text(new OdDbText(*attribute.get()), lm::drawing::kAttach);
    const std::string entry = entryOf(*read, append(*read, text));
    EXPECT_TRUE(contains(entry, "0 TEXT|")) << entry;
    EXPECT_FALSE(contains(entry, "AcDbAttribute")) << entry;
}

TEST_F(DeepCloneTest, ClonesThousandsInNoTime) {
    const OdDbObjectId block = addBlock(*db, "S");
    Ids ids;
    for (int i = 0; i < 10000; ++i) ids.append(placeSymbol(*db, block, {"A=1", "B=2"}));
    const auto start = std::chrono::steady_clock::now();
    db->deepCloneObjects(ids, space, mapping);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(mapping.pairs().size(), 30000u);
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 5000);
}
