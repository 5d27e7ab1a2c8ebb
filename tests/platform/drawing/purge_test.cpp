// SPDX-License-Identifier: MIT
// What can be purged.
#include "clone_support.h"

#include <chrono>

using namespace drawing_test;

namespace {

using Ids = OdArray<OdDbObjectId>;
using Strings = std::vector<std::string>;

/// Names of what stays in an array of ids.
Strings purged(const OdDbDatabase& db, Ids ids) {
    db.purge(ids);
    Strings names;
    for (const OdDbObjectId id : ids)
        names.push_back(utf8(open<OdDbSymbolTableRecord>(id, OdDb::kForRead, true)->getName()));
    return names;
}

Ids recordsOf(OdDbObjectId table) {
    Ids ids;
    const auto walk = open<OdDbSymbolTable>(table)->newIterator();
    for (walk->start(); !walk->done(); walk->step()) ids.append(walk->getRecordId());
    return ids;
}

OdSmartPtr<OdDbBlockReference> referenceTo(OdDbObjectId block) {
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    return reference;
}

OdDbObjectId putIn(OdDbObjectId block, OdSmartPtr<OdDbEntity> entity) {
    return open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(entity);
}

struct PurgeTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    Strings blocks() { return purged(*db, recordsOf(db->getBlockTableId())); }
    Strings layers() { return purged(*db, recordsOf(db->getLayerTableId())); }
};

std::string entity(const std::string& type, const std::string& handle, const std::string& groups) {
    return "0 " + type + "|5 " + handle + "|330 1F|100 AcDbEntity|8 0|" + groups;
}

} // namespace

TEST_F(PurgeTest, KeepsWhatEveryDrawingNeeds) {
    for (const OdDbObjectId table :
         {db->getBlockTableId(), db->getLayerTableId(), db->getLinetypeTableId(), db->getTextStyleTableId()})
        EXPECT_EQ(purged(*db, recordsOf(table)), Strings{});
    addBlock(*db, "*Paper_Space3");
    const OdDbObjectId current = addLayer(*db, "CURRENT");
    const auto value = OdResBuf::newRb(330);
    value->setObjectId(current);
    ASSERT_TRUE(db->setSysVar(od("CLAYER"), value));
    EXPECT_EQ(blocks(), Strings{});
    EXPECT_EQ(layers(), Strings{});
}

TEST_F(PurgeTest, GivesWhatNothingRefersTo) {
    addBlock(*db, "UNUSED");
    const OdDbObjectId used = addBlock(*db, "USED");
    append(*db, referenceTo(used));
    putIn(db->getPaperSpaceId(), referenceTo(addBlock(*db, "IN_PAPER")));
    EXPECT_EQ(blocks(), Strings{"UNUSED"});
}

TEST_F(PurgeTest, LooksOneLevelDeepOnly) {
    const OdDbObjectId inner = addBlock(*db, "INNER"), outer = addBlock(*db, "OUTER");
    putIn(outer, referenceTo(inner));
    EXPECT_EQ(blocks(), Strings{"OUTER"}) << "a block used by what is purged here stays";
    outer.openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(blocks(), Strings{"INNER"}) << "and goes at the next call";
}

TEST_F(PurgeTest, ABlockThatHoldsItselfIsUsed) {
    const OdDbObjectId block = addBlock(*db, "LOOP");
    putIn(block, referenceTo(block));
    EXPECT_EQ(blocks(), Strings{});
}

TEST_F(PurgeTest, CountsLiveReferencesOnly) {
    const OdDbObjectId block = addBlock(*db, "B");
    append(*db, referenceTo(block)).openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(blocks(), Strings{"B"});
}

TEST_F(PurgeTest, LeavesErasedIdsAndDropsWhatIsNobodysHere) {
    const auto other = newDatabase();
    const OdDbObjectId erased = addBlock(*db, "ERASED"), live = addBlock(*db, "LIVE");
    append(*db, referenceTo(erased));
    erased.openObject(OdDb::kForWrite)->erase();
    Ids ids{live, OdDbObjectId::kNull, erased, addBlock(*other, "FOREIGN")};
    db->purge(ids);
    ASSERT_EQ(ids.size(), 2u);
    EXPECT_EQ(ids[0], live);
    EXPECT_EQ(ids[1], erased);
    Ids none;
    db->purge(none);
    EXPECT_TRUE(none.isEmpty());
}

TEST_F(PurgeTest, ChangesNothing) {
    const OdDbObjectId block = addBlock(*db, "B");
    const std::string before = written(*db);
    blocks();
    layers();
    EXPECT_EQ(written(*db), before);
    EXPECT_FALSE(block.isErased());
}

TEST_F(PurgeTest, KeepsLayersThatLiveEntitiesStandOn) {
    const auto onLayer = [&](const char* name, OdDbObjectId block) {
        const auto line = make<OdDbLine>();
        putIn(block, line);
        line->setLayer(addLayer(*db, name));
        return line;
    };
    const OdDbObjectId block = addBlock(*db, "B"), gone = addBlock(*db, "GONE");
    onLayer("MODEL", db->getModelSpaceId());
    onLayer("PAPER", db->getPaperSpaceId());
    onLayer("BLOCK", block);
    onLayer("ERASED", block)->erase();
    onLayer("IN_ERASED", gone);
    gone.openObject(OdDb::kForWrite)->erase();
    const OdDbObjectId reference = placeSymbol(*db, block, {"A=1"});
    open<OdDbAttribute>(attributeIdsOf(reference)[0], OdDb::kForWrite)->setLayer(addLayer(*db, "ATTRIBUTE"));
    addLayer(*db, "EMPTY");
    EXPECT_EQ(layers(), (Strings{"ERASED", "IN_ERASED", "EMPTY"}));
    reference.openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(layers(), (Strings{"ERASED", "IN_ERASED", "ATTRIBUTE", "EMPTY"}))
        << "an attribute below an erased reference isn't live";
}

TEST_F(PurgeTest, KeepsLineTypesAndStylesOfEntitiesAndLayers) {
    const auto add = [](OdDbObjectId table, auto record, const char* name) {
        record->setName(od(name));
        return open<OdDbSymbolTable>(table, OdDb::kForWrite)->add(record);
    };
    const OdDbObjectId types = db->getLinetypeTableId(), styles = db->getTextStyleTableId();
    const OdDbObjectId ofLayer = add(types, make<OdDbLinetypeTableRecord>(), "LAYER");
    const OdDbObjectId ofLine = add(types, make<OdDbLinetypeTableRecord>(), "LINE");
    add(types, make<OdDbLinetypeTableRecord>(), "NONE");
    open<OdDbLayerTableRecord>(addLayer(*db, "L"), OdDb::kForWrite)->setLinetypeObjectId(ofLayer);
    const auto line = make<OdDbLine>();
    append(*db, line);
    line->setLinetype(ofLine);
    EXPECT_EQ(purged(*db, recordsOf(types)), Strings{"NONE"});

    const auto text = make<OdDbText>();
    text->setTextStyle(add(styles, make<OdDbTextStyleTableRecord>(), "TEXT"));
    append(*db, text);
    const auto lines = make<OdDbMText>();
    lines->setTextStyle(add(styles, make<OdDbTextStyleTableRecord>(), "MTEXT"));
    append(*db, lines);
    const auto attribute = make<OdDbAttribute>();
    const auto embedded = make<OdDbMText>();
    embedded->setTextStyle(add(styles, make<OdDbTextStyleTableRecord>(), "EMBEDDED"));
    attribute->setMTextAttribute(embedded);
    const auto reference = make<OdDbBlockReference>();
    reference->appendAttribute(attribute);
    append(*db, reference);
    add(styles, make<OdDbTextStyleTableRecord>(), "NONE");
    EXPECT_EQ(purged(*db, recordsOf(styles)), Strings{"NONE"});
}

TEST_F(PurgeTest, KeepsWhatUnreadEntitiesAndStylesName) {
    dxf::Parts parts;
    parts.tables = dxf::Parts::table(
        "DIMSTYLE", "A",
        "0 DIMSTYLE|105 50|330 A|100 AcDbSymbolTableRecord|100 AcDbDimStyleTableRecord|2 MINE|70 0|342 32");
    for (const auto& [name, record, block] :
         {std::array{"*D1", "30", "31"}, std::array{"ARROW", "32", "33"}, std::array{"OTHER", "34", "35"},
          std::array{"TABLE", "36", "37"}, std::array{"LINKED", "38", "39"},
          std::array{"REACTED", "3A", "3B"}}) {
        parts.blockRecords =
            dxf::Parts::joined({parts.blockRecords, dxf::Parts::record("BLOCK_RECORD", record, "1", name)});
        parts.blocks = dxf::Parts::joined({parts.blocks, dxf::Parts::block(name, block, record)});
    }
    parts.entities = entity("DIMENSION", "100", "100 AcDbDimension|2 *d1|3 MINE") + "|" +
                     entity("ACAD_TABLE", "101", "100 AcDbBlockReference|2 *T|343 36") + "|" +
                     "0 MESH|5 102|102 {ACAD_REACTORS|330 3A|102 }|330 1F|100 AcDbEntity|8 0|100 AcDbMesh";
    parts.objects = "3 X|350 60|0 XRECORD|5 60|330 C|100 AcDbXrecord|340 38";
    db = readGroups(parts.groups());
    EXPECT_EQ(blocks(), (Strings{"OTHER", "REACTED"}));
    byHandle<OdDbObject>(*db, "100", OdDb::kForWrite)->erase();
    byHandle<OdDbObject>(*db, "60", OdDb::kForWrite)->erase();
    EXPECT_EQ(blocks(), (Strings{"*D1", "OTHER", "LINKED", "REACTED"}));
}

TEST_F(PurgeTest, SoftHandlesKeepARecordAndWhatBelongsToItDoesNot) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::joined({dxf::Parts::layer("40", "PAG1"), dxf::Parts::layer("41", "FREE")});
    parts.blockRecords =
        "0 BLOCK_RECORD|5 30|102 {ACAD_XDICTIONARY|360 50|102 }|330 1|100 AcDbSymbolTableRecord|2 B|70 0";
    parts.blocks = dxf::Parts::block("B", "31", "30");
    parts.entities = entity("VIEWPORT", "100", "100 AcDbViewport|331 40");
    parts.objects = "0 DICTIONARY|5 50|330 30|100 AcDbDictionary|3 X|360 51|0 THING|5 51|330 50|340 30";
    db = readGroups(parts.groups());
    EXPECT_EQ(layers(), Strings{"FREE"}) << "a viewport that has a layer frozen names it";
    EXPECT_EQ(blocks(), Strings{"B"});
}

TEST_F(PurgeTest, KeepsWhatExtendedDataNames) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::joined({dxf::Parts::layer("40", "NAMED"), dxf::Parts::layer("41", "HANDLED"),
                                       dxf::Parts::layer("42", "FREE")});
    parts.entities = entity("LINE", "100", "100 AcDbLine|10 0|20 0|11 1|21 0") +
                     "|1001 MINE|1003 named|1005 41|1000 FREE|" + entity("MESH", "101", "100 AcDbSubDMesh") +
                     "|1001 THEIRS|1000 x";
    db = readGroups(parts.groups());
    EXPECT_EQ(layers(), Strings{"FREE"});
    const OdDbObjectId table = db->getRegAppTableId();
    for (const char* name : {"MINE", "THEIRS", "NOBODYS"}) {
        const auto record = make<OdDbRegAppTableRecord>();
        record->setName(od(name));
        if (!open<OdDbSymbolTable>(table)->has(od(name)))
            open<OdDbSymbolTable>(table, OdDb::kForWrite)->add(record);
    }
    EXPECT_EQ(purged(*db, recordsOf(table)), Strings{"NOBODYS"});
    byHandle<OdDbObject>(*db, "100", OdDb::kForWrite)->erase();
    EXPECT_EQ(layers(), (Strings{"NAMED", "HANDLED", "FREE"}));
    EXPECT_EQ(purged(*db, recordsOf(table)), (Strings{"MINE", "NOBODYS"}));
}

TEST_F(PurgeTest, KeepsTheLayersThatBlocksBeginAndEndOn) {
    dxf::Parts parts;
    parts.layers = dxf::Parts::joined({dxf::Parts::layer("40", "HEAD"), dxf::Parts::layer("41", "FREE")});
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
    std::string block = dxf::Parts::block("B", "31", "30");
    block.replace(block.find("|8 0|"), 5, "|8 head|");
    parts.blocks = block;
    db = readGroups(parts.groups());
    EXPECT_EQ(layers(), Strings{"FREE"});
}

TEST_F(PurgeTest, KeepsWhatTheHeaderNames) {
    dxf::Parts parts;
    parts.header = "9 $CELTYPE|6 dashed|9 $TEXTSTYLE|7 ROMANS|9 $CLAYER|8 0";
    parts.layers = dxf::Parts::layer("40", "UNUSED");
    db = readGroups(parts.groups());
    const auto add = [](OdDbObjectId table, auto record, const char* name) {
        record->setName(od(name));
        return open<OdDbSymbolTable>(table, OdDb::kForWrite)->add(record);
    };
    add(db->getLinetypeTableId(), make<OdDbLinetypeTableRecord>(), "DASHED");
    add(db->getLinetypeTableId(), make<OdDbLinetypeTableRecord>(), "HIDDEN");
    add(db->getTextStyleTableId(), make<OdDbTextStyleTableRecord>(), "ROMANS");
    EXPECT_EQ(purged(*db, recordsOf(db->getLinetypeTableId())), Strings{"HIDDEN"});
    EXPECT_EQ(purged(*db, recordsOf(db->getTextStyleTableId())), Strings{});
    EXPECT_EQ(layers(), Strings{"UNUSED"});
}

TEST_F(PurgeTest, AHeaderThatNamedAnotherLayerOnceDoesNotKeepIt) {
    dxf::Parts parts;
    parts.header = "9 $CLAYER|8 PAG1";
    parts.layers = dxf::Parts::layer("40", "PAG1");
    db = readGroups(parts.groups());
    EXPECT_EQ(layers(), Strings{});
    const auto value = OdResBuf::newRb(330);
    value->setObjectId(db->getLayerZeroId());
    ASSERT_TRUE(db->setSysVar(od("CLAYER"), value));
    EXPECT_EQ(layers(), Strings{"PAG1"});
}

TEST_F(PurgeTest, TakesTimeByTheDrawingAndNotByTheProduct) {
    constexpr int kBlocks = 4000, kReferences = 10;
    for (int i = 0; i < kBlocks; ++i) {
        const OdDbObjectId block = addBlock(*db, "B" + std::to_string(i));
        const OdDbObjectId layer = addLayer(*db, "L" + std::to_string(i));
        for (int k = 0; i % 2 == 0 && k < kReferences; ++k) {
            const auto reference = referenceTo(block);
            append(*db, reference);
            reference->setLayer(layer);
        }
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(blocks().size(), kBlocks / 2u);
    EXPECT_EQ(layers().size(), kBlocks / 2u);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 3000);
}
