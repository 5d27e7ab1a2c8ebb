// SPDX-License-Identifier: MIT
// A new database, its ids and its system variables.
#include "drawing_support.h"

#include "drawing/alloc.h"

using namespace drawing_test;

using Names = std::vector<std::string>;

TEST(NewDatabaseTest, HoldsWhatEveryDrawingNeedsAndNothingElse) {
    const auto db = newDatabase();
    EXPECT_EQ(namesOf(db->getLayerTableId()), Names{"0"});
    EXPECT_EQ(namesOf(db->getLinetypeTableId()), (Names{"ByBlock", "ByLayer", "Continuous"}));
    EXPECT_EQ(namesOf(db->getTextStyleTableId()), Names{"Standard"});
    EXPECT_EQ(namesOf(db->getBlockTableId()), (Names{"*Model_Space", "*Paper_Space"}));
    EXPECT_EQ(namesOf(db->getViewportTableId()), Names{"*Active"});
    EXPECT_EQ(namesOf(db->getViewTableId()), Names{});
    EXPECT_EQ(namesOf(db->getRegAppTableId()), Names{});
    EXPECT_EQ(open<OdDbDictionary>(db->getNamedObjectsDictionaryId())->numEntries(), 0u);
    EXPECT_EQ(db->report().total(), 0u);
    EXPECT_TRUE(db->originalFileVersion().isEmpty());
}

TEST(NewDatabaseTest, KnowsItsFixedEntries) {
    const auto db = newDatabase();
    const auto nameOf = [](OdDbObjectId id) { return utf8(open<OdDbSymbolTableRecord>(id)->getName()); };
    EXPECT_EQ(nameOf(db->getModelSpaceId()), "*Model_Space");
    EXPECT_EQ(nameOf(db->getPaperSpaceId()), "*Paper_Space");
    EXPECT_EQ(nameOf(db->getLayerZeroId()), "0");
    EXPECT_EQ(nameOf(db->getLinetypeByBlockId()), "ByBlock");
    EXPECT_EQ(nameOf(db->getLinetypeByLayerId()), "ByLayer");
    EXPECT_EQ(nameOf(db->getLinetypeContinuousId()), "Continuous");
    EXPECT_EQ(nameOf(db->getTextStyleStandardId()), "Standard");
    EXPECT_EQ(db->getCLAYER(), db->getLayerZeroId());
    EXPECT_EQ(db->getINSBASE(), OdGePoint3d());
    db->setINSBASE({1, 2, 3});
    EXPECT_EQ(db->getINSBASE(), OdGePoint3d(1, 2, 3));
}

TEST(NewDatabaseTest, IsBareWhenAskedFor) {
    const OdSmartPtr<OdDbDatabase> db(new OdDbDatabase(OdDbDatabase::kNothing), lm::drawing::kAttach);
    for (const OdDbObjectId id :
         {db->getBlockTableId(), db->getLayerTableId(), db->getLinetypeTableId(), db->getTextStyleTableId(),
          db->getRegAppTableId(), db->getViewportTableId(), db->getViewTableId(),
          db->getNamedObjectsDictionaryId(), db->getModelSpaceId(), db->getPaperSpaceId(),
          db->getLayerZeroId(), db->getCLAYER()})
        EXPECT_TRUE(id.isNull());
    EXPECT_TRUE(db->getSysVar(od("CLAYER")).isNull());
}

TEST(NewDatabaseTest, EndsWithItsLastPointerUnlessADocumentOwnsIt) {
    const std::size_t before = lm::drawing::liveBlocks();
    newDatabase();
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
    auto* const owned = new OdDbDatabase();
    owned->setCountManaged(false);
    owned->release();
    {
        const OdSmartPtr<OdDbDatabase> pointer(owned);
        EXPECT_EQ(owned->numRefs(), 1);
    }
    EXPECT_TRUE(owned->getLayerZeroId().isValid());
    delete owned;
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(SysVarTest, AnswersTheCurrentLayerAsAnId) {
    const auto db = newDatabase();
    const auto record = db->getSysVar(od("CLAYER"));
    ASSERT_FALSE(record.isNull());
    EXPECT_EQ(record->restype(), 330);
    EXPECT_EQ(record->getObjectId(), db->getLayerZeroId());
    db->setCurrentLayerAsText(true);
    const auto text = db->getSysVar(od("CLAYER"));
    EXPECT_EQ(text->payload(), OdResBuf::kText);
    EXPECT_EQ(utf8(text->getString()), "0");
}

TEST(SysVarTest, SetsTheCurrentLayerById) {
    const auto db = newDatabase(), other = newDatabase();
    const OdDbObjectId layer = addLayer(*db.get(), "L"), erased = addLayer(*db.get(), "E");
    open<OdDbLayerTableRecord>(erased, OdDb::kForWrite)->erase();
    const auto set = [&](OdDbObjectId id) {
        const auto record = OdResBuf::newRb(330);
        record->setObjectId(id);
        return db->setSysVar(od("CLAYER"), record);
    };
    EXPECT_TRUE(set(layer));
    EXPECT_EQ(db->getCLAYER(), layer);
    for (const OdDbObjectId bad :
         {OdDbObjectId::kNull, erased, other->getLayerZeroId(), db->getModelSpaceId()})
        EXPECT_FALSE(set(bad));
    EXPECT_FALSE(db->setSysVar(od("CLAYER"), {}));
    EXPECT_FALSE(db->setSysVar(od("CLAYER"), OdResBuf::newRb(1, od("0"))));
    EXPECT_FALSE(db->setSysVar(od("NOPE"), OdResBuf::newRb(70, 1)));
    EXPECT_FALSE(db->setSysVar(od("clayer"), OdResBuf::newRb(70, 1)));
    EXPECT_EQ(db->getCLAYER(), layer) << "a failure changes nothing";
    open<OdDbLayerTableRecord>(db->getLayerZeroId(), OdDb::kForWrite)->setIsFrozen(true);
    EXPECT_TRUE(set(db->getLayerZeroId())) << "a frozen layer is accepted";
}

TEST(SysVarTest, SplitsTheFileName) {
    const auto db = newDatabase();
    EXPECT_TRUE(db->getSysVar(od("DWGNAME")).isNull()) << "a drawing that was never saved has none";
    EXPECT_TRUE(db->getSysVar(od("DWGPREFIX")).isNull());
    struct Row {
        const char* path;
        const char* name;
        const char* prefix;
    };
    const Row rows[] = {{"/home/a b/Projeto ç.dxf", "Projeto ç.dxf", "/home/a b/"},
                        {"C:\\Projetos\\P1.dwg", "P1.dwg", "C:\\Projetos\\"},
                        {"C:\\Projetos/P1.dwg", "P1.dwg", "C:\\Projetos/"},
                        {"P1.dxf", "P1.dxf", ""},
                        {"/P1", "P1", "/"}};
    for (const Row& row : rows) {
        db->setFilename(od(row.path));
        EXPECT_EQ(utf8(db->getSysVar(od("DWGNAME"))->getString()), row.name);
        EXPECT_EQ(utf8(db->getSysVar(od("DWGPREFIX"))->getString()), row.prefix);
        EXPECT_EQ(utf8(db->getFilename()), row.path);
    }
}

TEST(SysVarTest, ReadsOtherNamesFromTheFilesHeader) {
    dxf::Parts parts;
    parts.header =
        "9 $LTSCALE|40 2.5|9 $EXTMIN|10 1.0|20 2.0|30 3.0|9 $CLAYER|8 PAG1|9 $PROJECTNAME|1 Ω\\U+00E7";
    parts.layers = dxf::Parts::layer("100", "PAG1", "62 7");
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(db.getSysVar(od("LTSCALE"))->getDouble(), 2.5);
        EXPECT_EQ(db.getSysVar(od("LTSCALE"))->restype(), 40);
        EXPECT_EQ(db.getSysVar(od("EXTMIN"))->getPoint3d(), OdGePoint3d(1, 2, 3));
        EXPECT_EQ(utf8(db.getSysVar(od("PROJECTNAME"))->getString()), "Ωç");
        EXPECT_TRUE(db.getSysVar(od("NOPE")).isNull());
        EXPECT_TRUE(db.getSysVar(od("")).isNull());
        EXPECT_EQ(db.getCLAYER(), db.getOdDbObjectId(OdDbHandle(0x100)));
    });
}

TEST(UndoBlockTest, TellsWhetherOneIsOpen) {
    const auto db = newDatabase();
    EXPECT_FALSE(db->isUndoBlockStarted());
    db->blockUndoRecording(true);
    EXPECT_TRUE(db->isUndoBlockStarted());
    db->blockUndoRecording(false);
    EXPECT_FALSE(db->isUndoBlockStarted());
    db->blockUndoRecording(false);
    EXPECT_FALSE(db->isUndoBlockStarted());
}

TEST(UndoBlockTest, CountsMarksOutsideABlockOnly) {
    const auto db = newDatabase();
    EXPECT_EQ(db->undoMarks(), 0u);
    db->startUndoRecord();
    db->blockUndoRecording(true);
    db->startUndoRecord();
    EXPECT_EQ(db->undoMarks(), 1u) << "a mark inside a block belongs to its one step";
    db->blockUndoRecording(false);
    EXPECT_EQ(db->undoMarks(), 1u);
    db->startUndoRecord();
    EXPECT_EQ(db->undoMarks(), 2u);
}
