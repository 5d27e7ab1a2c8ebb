// SPDX-License-Identifier: MIT
// New content for blocks that are in use: what is kept, what is lost, and what a failure leaves.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "drawing/seams.h"

#include <cstdlib>

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class Redefinition : public Symbols {
protected:
    ~Redefinition() override { lm::drawing::refuseWriting(OdDbObjectId()); }

    /// A block with one point and attribute definitions.
    OdDbObjectId oldBlock(const std::vector<Definition>& definitions = {}) {
        const OdDbObjectId id = block("MOTOR", definitions);
        append(id, make(new OdDbPoint));
        return id;
    }
    /// A closed reference.
    OdDbObjectId placed(OdDbObjectId block, const std::vector<Attribute>& attributes = {},
                        OdDbObjectId owner = {}) {
        return place(block, attributes, "0", owner)->objectId();
    }
    bool redefine(const std::vector<Definition>& definitions = {}) {
        return m_cad.RedefinirBloco(symbol(definitions), "MOTOR");
    }
    /// The attributes of a reference that was redefined.
    Texts redefined(const std::vector<Attribute>& before, const std::vector<Definition>& after) {
        const OdDbObjectId reference = placed(oldBlock(), before);
        EXPECT_TRUE(redefine(after));
        return attributesOf(openReference(reference));
    }
    static OdDbObjectId attributeId(OdDbObjectId reference, int index = 0) {
        return attributeOf(openReference(reference), index)->objectId();
    }
};

// --- blocks that the drawing lacks ---

TEST_F(Redefinition, MakesABlockThatTheDrawingLacks) {
    const Source db = symbol({{"TAG", "", "M?"}});
    line(db->getModelSpaceId(), {10, 5, 0}, {12, 5, 0});
    db->setINSBASE({10, 5, 0});
    const std::string before = dumpOf(*db);
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_EQ(dumpOf(*db), before) << "the source stays as it is";
    EXPECT_EQ(told(openBlock(blockNamed("MOTOR"))->origin()), "0,0,0");
    EXPECT_THAT(entitiesOf(blockNamed("MOTOR")),
                ElementsAre("LINE 0 -10,-5,0 0,-5,0", "ATTDEF 0 'M?'", "LINE 0 0,0,0 2,0,0"));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR"));
}

TEST_F(Redefinition, ReadsAFile) {
    EXPECT_TRUE(m_cad.RedefinirBloco(file("motor.dxf", *symbol()), "MOTOR"));
    EXPECT_THAT(entitiesOf(blockNamed("MOTOR")), ElementsAre("LINE 0 0,0,0 10,0,0"));
}

TEST_F(Redefinition, GivesFalseForANullDrawing) {
    EXPECT_FALSE(m_cad.RedefinirBloco(Source(), "MOTOR"));
    oldBlock();
    const std::string before = dumpOf(m_db);
    EXPECT_FALSE(m_cad.RedefinirBloco(Source(), "MOTOR"));
    EXPECT_EQ(dumpOf(m_db), before);
}

TEST_F(Redefinition, GivesFalseForANameThatCannotBe) {
    EXPECT_FALSE(m_cad.RedefinirBloco(symbol(), ""));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space"));
}

TEST_F(Redefinition, GivesFalseWithoutACurrentDrawing) {
    m_documents.manager.closeAll();
    m_documents.manager.newDocumentWithoutDatabase();
    EXPECT_FALSE(m_cad.RedefinirBloco(symbol(), "MOTOR"));
}

// --- files ---

TEST_F(Redefinition, LeavesTheBlockWhenTheFileIsRefused) {
    const lm::test::ConsoleCapture console;
    placed(oldBlock({{"A", "", "1"}}), {{"A", "x"}});
    const Source second = symbol();
    layerIn(*second, "SECOND");
    const RZString path = file("refused.dxf", *second);
    const std::string before = dumpOf(m_db);
    EXPECT_FALSE(m_cad.RedefinirBloco(path, "MOTOR"));
    EXPECT_EQ(console.text(),
              "\nInvalid block error - Block with multiple layers: MOTOR = " + plain(path) + "\n");
    EXPECT_EQ(dumpOf(m_db), before);
}

TEST_F(Redefinition, LeavesTheBlockWhenTheFileCannotBeMovedToItsOrigin) {
    const OdDbObjectId motor = oldBlock({{"A", "", "1"}});
    const OdDbObjectId reference = placed(motor, {{"A", "value"}});
    const Texts before = blocks(), content = entitiesOf(motor);
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.RedefinirBloco(unmovable("100.0"), "MOTOR"), OdError);
    EXPECT_THAT(linesOf(log), testing::Each(StartsWith("CICad::RedefinirBloco : ")));
    EXPECT_FALSE(linesOf(log).empty());
    EXPECT_EQ(blocks(), before) << "the temporary block is gone";
    EXPECT_EQ(entitiesOf(motor), content);
    EXPECT_THAT(attributesOf(openReference(reference)), ElementsAre("A=value"));
}

TEST_F(Redefinition, HoldsAnOpenDrawingToNoRules) {
    const lm::test::ConsoleCapture console;
    const Source db = symbol();
    layerIn(*db, "SECOND");
    refer(*db, blockIn(*db, "INNER"));
    oldBlock();
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_THAT(entitiesOf(blockNamed("MOTOR")),
                ElementsAre("LINE 0 0,0,0 10,0,0", "INSERT 0 0,0,0 shows INNER"));
    EXPECT_EQ(console.text(), "");
}

TEST_F(Redefinition, ReportsAFileThatIsMissingOrCannotBeRead) {
    oldBlock();
    const std::string before = dumpOf(m_db);
    for (const RZString& path : {missing(), damaged()}) {
        const lm::test::LogCapture log;
        EXPECT_THROW(m_cad.RedefinirBloco(path, "MOTOR"), OdError);
        ASSERT_EQ(linesOf(log).size(), 1u);
        EXPECT_THAT(linesOf(log)[0], StartsWith("CICad::RedefinirBloco : "));
    }
    EXPECT_EQ(dumpOf(m_db), before);
}

// --- what survives ---

TEST_F(Redefinition, KeepsTheBlockAndEverythingOnItButItsEntities) {
    const OdDbObjectId motor = oldBlock({{"A", "", "1"}});
    give(motor, "APP", {"kept"});
    openBlock(motor, OdDb::kForWrite)->setOrigin({3, 4, 0});
    const OdDbObjectId old = openBlock(motor)->newIterator()->objectId();
    const OdDbHandle handle = motor.getHandle();
    ASSERT_TRUE(redefine());
    EXPECT_EQ(blockNamed("MOTOR"), motor);
    EXPECT_EQ(motor.getHandle().value(), handle.value());
    EXPECT_EQ(data(motor), "1001:APP 1000:kept");
    EXPECT_EQ(told(openBlock(motor)->origin()), "0,0,0");
    EXPECT_TRUE(old.isErased());
    EXPECT_NE(openBlock(motor)->newIterator()->objectId(), old);
    EXPECT_THAT(entitiesOf(motor), ElementsAre("LINE 0 0,0,0 10,0,0"));
}

TEST_F(Redefinition, KeepsTheReferences) {
    const OdDbObjectId motor = oldBlock();
    layer("P1");
    Reference reference = place(motor, {}, "P1");
    reference->setPosition({7, 8, 9});
    reference->setRotation(0.5);
    reference->setScaleFactors({2, 2, 2});
    const OdDbObjectId id = reference->objectId();
    reference.release();
    give(id, "APP", {"kept"});
    const Source db = symbol();
    db->setINSBASE({10, 5, 0});
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    reference = openReference(id);
    EXPECT_EQ(reference->blockTableRecord(), motor);
    EXPECT_EQ(told(reference->position()), "7,8,9") << "references don't jump";
    EXPECT_EQ(reference->rotation(), 0.5);
    EXPECT_EQ(reference->scaleFactors().sx, 2);
    EXPECT_EQ(plain(CHostString(reference->layer())), "P1");
    EXPECT_EQ(data(id), "1001:APP 1000:kept");
    EXPECT_EQ(reference->graphicsRequests(), 1u) << "redrawn without attributes, too";
}

TEST_F(Redefinition, KeepsTheValuesOfTagsThatRemain) {
    EXPECT_THAT(redefined({{"A", "1"}, {"B", "2"}}, {{"A", "", "a"}, {"C", "", "c"}}),
                ElementsAre("A=1", "C=c"));
}

TEST_F(Redefinition, MatchesTagsIgnoringCase) {
    EXPECT_THAT(redefined({{"tag", "M1"}, {"PRE\u00C7O", "9"}}, {{"TAG", "", "d"}, {"pre\u00E7o", "", "d"}}),
                ElementsAre("TAG=M1", "pre\u00E7o=9"));
}

TEST_F(Redefinition, KeepsInvisibilityAgainstTheDefinition) {
    const OdDbObjectId reference = placed(oldBlock(), {{"HIDDEN", "1", true}, {"SHOWN", "2", false}});
    const Source db = symbol({{"HIDDEN", "", ""}});
    const OdDbObjectId shown = define(db->getModelSpaceId(), {"SHOWN", "", ""});
    OdSmartPtr<OdDbAttributeDefinition>(shown.openObject(OdDb::kForWrite))->setInvisible(true);
    const OdDbObjectId fresh = define(db->getModelSpaceId(), {"NEW", "", "n"});
    OdSmartPtr<OdDbAttributeDefinition>(fresh.openObject(OdDb::kForWrite))->setInvisible(true);
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_THAT(attributesOf(openReference(reference)), ElementsAre("HIDDEN=1|i", "SHOWN=2", "NEW=n|i"));
}

TEST_F(Redefinition, MakesAllAttributesNew) {
    const OdDbObjectId reference = placed(oldBlock({{"A", "", ""}}), {{"A", "1"}});
    const OdDbObjectId old = attributeId(reference);
    give(old, "APP", {"lost"});
    ASSERT_TRUE(redefine({{"A", "", ""}}));
    const OdDbObjectId made = attributeId(reference);
    EXPECT_TRUE(old.isErased());
    EXPECT_NE(made, old);
    EXPECT_NE(made.getHandle().value(), old.getHandle().value());
    EXPECT_EQ(data(made), "null");
}

TEST_F(Redefinition, TakesTheFormOfAttributesFromTheDefinition) {
    layer("MOVED");
    const OdDbObjectId reference = placed(oldBlock({{"A", "", ""}}), {{"A", "1"}});
    {
        const Reference open(reference.openObject(OdDb::kForWrite));
        open->setPosition({100, 0, 0});
        const OdSmartPtr<OdDbAttribute> moved(attributeId(reference).openObject(OdDb::kForWrite));
        moved->setPosition({55, 55, 0});
        moved->setRotation(1);
        moved->setHeight(9);
        moved->setLayer(od("MOVED"));
    }
    const Source db = symbol();
    const OdSmartPtr<OdDbAttributeDefinition> definition(
        define(db->getModelSpaceId(), {"A", "", ""}).openObject(OdDb::kForWrite));
    definition->setPosition({1, 2, 0});
    definition->setHeight(2.5);
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    const OdSmartPtr<OdDbAttribute> made = attributeOf(openReference(reference), 0);
    EXPECT_EQ(told(made->position()), "101,2,0");
    EXPECT_EQ(made->rotation(), 0);
    EXPECT_EQ(made->height(), 2.5);
    EXPECT_EQ(plain(CHostString(made->layer())), "0");
    EXPECT_EQ(plain(CHostString(made->textString())), "1");
}

TEST_F(Redefinition, ShowsTheFrontOfAttributesUnderANegativeScaleInZ) {
    const OdDbObjectId reference = placed(oldBlock({{"A", "", ""}}), {{"A", "1"}});
    {
        const Reference open(reference.openObject(OdDb::kForWrite));
        open->setPosition({100, 0, 0});
        open->setScaleFactors({-1, 1, -1});
    }
    const Source db = symbol();
    const OdSmartPtr<OdDbAttributeDefinition> definition(
        define(db->getModelSpaceId(), {"A", "", ""}).openObject(OdDb::kForWrite));
    definition->setPosition({1, 2, 0});
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_THAT(attributesOf(openReference(reference)), ElementsAre("A=1"));
    const OdSmartPtr<OdDbAttribute> made = attributeOf(openReference(reference), 0);
    EXPECT_EQ(told(made->position()), "99,2,0");
    EXPECT_EQ(told(OdGePoint3d() + made->normal()), "0,0,1");
    EXPECT_NEAR(std::fabs(made->rotation()), 2 * std::acos(0.0), 1e-9);
}

TEST_F(Redefinition, KeepsTheLinesOfAnAttributeInTheNewPlace) {
    const OdDbObjectId reference = placed(oldBlock({{"A", "", ""}}), {{"A", ""}});
    {
        const Reference open(reference.openObject(OdDb::kForWrite));
        open->setPosition({100, 0, 0});
        const OdSmartPtr<OdDbAttribute> attribute(attributeId(reference).openObject(OdDb::kForWrite));
        attribute->setMTextAttribute(make(new OdDbMText));
        attribute->setTextString(od("two\nlines"));
    }
    const Source db = symbol();
    const OdSmartPtr<OdDbAttributeDefinition> definition(
        define(db->getModelSpaceId(), {"A", "", "default"}).openObject(OdDb::kForWrite));
    const OdSmartPtr<OdDbMText> lines = make(new OdDbMText);
    lines->setContents(od("default"));
    lines->setLocation({1, 2, 0});
    definition->setMTextAttributeDefinition(lines);
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_THAT(attributesOf(openReference(reference)), ElementsAre("A=two\nlines"));
    const OdSmartPtr<OdDbMText> made = attributeOf(openReference(reference), 0)->getMTextAttribute();
    EXPECT_EQ(told(made->location()), "101,2,0");
    EXPECT_EQ(plain(CHostString(made->contents())), "two\\Plines");
}

TEST_F(Redefinition, LetsTheSpellingOfTheNewDefaultWin) {
    EXPECT_THAT(redefined({{"A", "motor"}, {"B", "\u00C7"}}, {{"A", "", "Motor"}, {"B", "", "\u00E7"}}),
                ElementsAre("A=Motor", "B=\u00E7"));
}

TEST_F(Redefinition, TrimsValues) {
    EXPECT_THAT(redefined({{"A", "  M 1 "}, {"B", "   "}}, {{"A", "", ""}, {"B", "", "default"}}),
                ElementsAre("A=M 1", "B="));
}

TEST_F(Redefinition, GivesAllAttributesOfATagTheLastValue) {
    EXPECT_THAT(redefined({{"A", "1"}, {"a", "2"}}, {{"A", "", ""}, {"A", "", ""}}),
                ElementsAre("A=2", "A=2"));
}

TEST_F(Redefinition, GivesConstantDefinitionsNoAttribute) {
    EXPECT_THAT(redefined({{"A", "1"}}, {{"A", "", "c", true}}), IsEmpty());
}

TEST_F(Redefinition, GivesAttributesToReferencesThatHadNone) {
    EXPECT_THAT(redefined({}, {{"A", "", "default"}}), ElementsAre("A=default"));
}

TEST_F(Redefinition, OnlyRedrawsAReferenceThatOffersNoAttributes) {
    const OdDbObjectId id = placed(oldBlock(), {{"A", "1"}});
    Reference reference(id.openObject());
    reference->setWithoutIterator(true);
    ASSERT_TRUE(redefine({{"A", "", ""}, {"B", "", ""}}));
    EXPECT_EQ(reference->graphicsRequests(), 1u);
    reference->setWithoutIterator(false);
    EXPECT_THAT(attributesOf(reference), ElementsAre("A=1"));
}

TEST_F(Redefinition, ReplacesTheContentOfABlockWithoutReferences) {
    const OdDbObjectId motor = oldBlock();
    EXPECT_TRUE(redefine());
    EXPECT_THAT(entitiesOf(motor), ElementsAre("LINE 0 0,0,0 10,0,0"));
}

TEST_F(Redefinition, ReachesReferencesInAllOwners) {
    const OdDbObjectId motor = oldBlock(), outer = block("OUTER");
    const OdDbObjectId references[] = {placed(motor, {{"A", "model"}}),
                                       placed(motor, {{"A", "inner"}}, outer),
                                       placed(motor, {{"A", "paper"}}, m_db.getPaperSpaceId())};
    const OdDbObjectId other = placed(outer, {{"A", "other"}});
    const OdDbObjectId untouched = attributeId(other);
    ASSERT_TRUE(redefine({{"A", "", ""}, {"B", "", "b"}}));
    EXPECT_THAT(attributesOf(openReference(references[0])), ElementsAre("A=model", "B=b"));
    EXPECT_THAT(attributesOf(openReference(references[1])), ElementsAre("A=inner", "B=b"));
    EXPECT_THAT(attributesOf(openReference(references[2])), ElementsAre("A=paper", "B=b"));
    EXPECT_EQ(attributeId(other), untouched);
}

TEST_F(Redefinition, LeavesOtherDrawingsAlone) {
    const OdSmartPtr<CHostDatabase> other = make(new CHostDatabase);
    const OdDbObjectId block = blockIn(*other, "MOTOR");
    refer(*other, block);
    const std::string before = dumpOf(*other);
    oldBlock();
    ASSERT_TRUE(redefine());
    EXPECT_EQ(dumpOf(*other), before);
}

TEST_F(Redefinition, MayBeRepeated) {
    const OdDbObjectId reference = placed(oldBlock(), {{"A", "1"}});
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(redefine({{"A", "", "d"}, {"B", "", "d"}}));
    EXPECT_THAT(attributesOf(openReference(reference)), ElementsAre("A=1", "B=d"));
    EXPECT_EQ(entitiesOf(blockNamed("MOTOR")).size(), 3u);
}

// --- the temporary block ---

TEST_F(Redefinition, LeavesNoTraceOfItsTemporaryBlock) {
    oldBlock();
    ASSERT_TRUE(redefine());
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR"));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0"));
    lm::drawing::WriteOptions options;
    std::string bytes;
    lm::drawing::writeDrawing(
        m_db, [&](const char* at, std::size_t size) { bytes.append(at, size); }, options);
    EXPECT_EQ(bytes.find("RZ_TMP_"), std::string::npos);
}

TEST_F(Redefinition, DrawsAnotherNameWhereTheFirstIsTaken) {
    oldBlock();
    std::srand(4711);
    const std::string names[] = {"RZ_TMP_" + std::to_string(std::rand()),
                                 "RZ_TMP_" + std::to_string(std::rand()),
                                 "RZ_TMP_" + std::to_string(std::rand())};
    block(names[0].c_str());
    block(names[1].c_str());
    std::srand(4711);
    Recorder recorder(m_db);
    ASSERT_TRUE(redefine());
    EXPECT_THAT(recorder.taken(), testing::Contains("erased BLOCK_RECORD " + names[2]));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR", names[0], names[1]));
}

// --- events ---

TEST_F(Redefinition, TellsOfEachReferenceOnce) {
    const OdDbObjectId motor = oldBlock();
    placed(motor, {{"A", "1"}});
    placed(motor);
    std::srand(1);
    const std::string temporary = "BLOCK_RECORD RZ_TMP_" + std::to_string(std::rand());
    std::srand(1);
    Recorder recorder(m_db);
    ASSERT_TRUE(redefine({{"A", "", "d"}}));
    EXPECT_THAT(recorder.taken(),
                ElementsAre(
                    // the temporary block
                    "appended LINE", "appended ATTDEF", "appended " + temporary, "opened LINE",
                    "modified LINE", "opened ATTDEF", "modified ATTDEF", "opened " + temporary,
                    "modified " + temporary,
                    // the content
                    "opened BLOCK_RECORD MOTOR", "erased POINT", "appended LINE", "appended ATTDEF",
                    "erased LINE", "erased ATTDEF", "erased " + temporary, "modified BLOCK_RECORD MOTOR",
                    // the references
                    "erased ATTRIB", "appended ATTRIB", "opened ATTRIB", "modified ATTRIB", "opened INSERT",
                    "modified INSERT", "appended ATTRIB", "opened INSERT", "modified INSERT"));
}

// --- failures ---

TEST_F(Redefinition, IsTakenBackByUndo) {
    placed(oldBlock({{"A", "", "1"}}), {{"A", "x"}, {"B", "y"}});
    const std::string before = dumpOf(m_db);
    undoBlockBegin(&m_db);
    ASSERT_TRUE(redefine({{"A", "", "1"}, {"C", "", "2"}}));
    undoBlockEnd(&m_db);
    const std::string after = dumpOf(m_db);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(dumpOf(m_db), before);
    ASSERT_TRUE(m_db.redo());
    EXPECT_EQ(dumpOf(m_db), after);
}

TEST_F(Redefinition, IsTakenBackByUndoWhereverItFails) {
    const OdDbObjectId motor = oldBlock({{"A", "", "1"}});
    const OdDbObjectId references[] = {placed(motor, {{"A", "x"}}), placed(motor, {{"A", "y"}, {"B", "z"}})};
    const std::pair<const char*, OdDbObjectId> refusals[] = {
        {"the block", motor},
        {"an entity of the block", openBlock(motor)->newIterator()->objectId()},
        {"the first reference", references[0]},
        {"an attribute of the last reference", attributeId(references[1], 1)},
    };
    const std::string before = dumpOf(m_db);
    for (const auto& [what, id] : refusals) {
        SCOPED_TRACE(what);
        const lm::test::LogCapture log;
        lm::drawing::refuseWriting(id);
        undoBlockBegin(&m_db);
        EXPECT_THROW(redefine({{"A", "", "1"}, {"C", "", "2"}}), OdError);
        undoBlockEnd(&m_db);
        lm::drawing::refuseWriting(OdDbObjectId());
        ASSERT_EQ(linesOf(log).size(), 1u);
        EXPECT_THAT(linesOf(log)[0], StartsWith("CICad::RedefinirBloco : "));
        EXPECT_NE(dumpOf(m_db), before) << "half done";
        ASSERT_TRUE(m_db.undo());
        EXPECT_EQ(dumpOf(m_db), before);
    }
    EXPECT_TRUE(redefine()) << "and can be done";
}

// --- many blocks ---

TEST_F(Redefinition, OfManyBlocksGoesOnBehindARefusedFile) {
    const lm::test::ConsoleCapture console;
    const Source refused = symbol();
    layerIn(*refused, "SECOND");
    CEMap<RZString> map;
    map[file("a.dxf", *symbol()).str()] = "A";
    map[file("b.dxf", *refused).str()] = "B";
    map[file("c.dxf", *symbol()).str()] = "C";
    EXPECT_FALSE(m_cad.RedefinirBlocos(map));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "A", "C"));
    map.erase(file("b.dxf", *refused).str());
    EXPECT_TRUE(m_cad.RedefinirBlocos(map));
}

TEST_F(Redefinition, OfManyBlocksFollowsTheLengthOfTheirPaths) {
    CEMap<RZString> map;
    map[file("zz.dxf", *symbol()).str()] = "SHORT";
    map[file("aaa.dxf", *symbol()).str()] = "LONG";
    EXPECT_TRUE(m_cad.RedefinirBlocos(map));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "SHORT", "LONG"));
}

TEST_F(Redefinition, OfManyBlocksEndsWithAnException) {
    CEMap<RZString> map;
    map[file("a.dxf", *symbol()).str()] = "A";
    map[rz((m_folder.path() / "b.dxf").string()).str()] = "B";
    map[file("c.dxf", *symbol()).str()] = "C";
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.RedefinirBlocos(map), OdError);
    ASSERT_EQ(linesOf(log).size(), 2u);
    EXPECT_THAT(linesOf(log)[0], StartsWith("CICad::RedefinirBloco : "));
    EXPECT_THAT(linesOf(log)[1], StartsWith("CICad::RedefinirBlocos : "));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "A"));
}

TEST_F(Redefinition, OfNoBlocksIsDone) {
    EXPECT_TRUE(m_cad.RedefinirBlocos(CEMap<RZString>()));
}

// --- purging ---

TEST_F(Redefinition, PurgingTakesUnusedBlocksInOnePass) {
    const OdDbObjectId inner = block("INNER"), outer = block("OUTER"), used = block("USED");
    placed(inner, {}, outer);
    placed(used);
    block("UNUSED");
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&m_db));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "INNER", "USED"))
        << "what a purged block uses stays until the next call";
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&m_db));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "USED"));
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&m_db));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "USED"));
}

TEST_F(Redefinition, PurgingWorksOnTheGivenDrawing) {
    const Source other = symbol();
    blockIn(*other, "UNUSED");
    block("MINE");
    m_cad.PurgeBlocks(other);
    EXPECT_THAT(recordsOf(other->getBlockTableId()), ElementsAre("*Model_Space", "*Paper_Space"));
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MINE"));
    m_cad.PurgeBlocks(Source());
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(make(new OdDbDatabase(OdDbDatabase::kNothing))));
}

/// The erased record of the temporary block and what stood in it count as nothing: neither are they erased
/// again, nor do they keep a block in use.
TEST_F(Redefinition, PurgingPassesOverTheErasedTemporaryBlock) {
    placed(oldBlock());
    const Source db = symbol();
    refer(*db, blockIn(*db, "INNER"));
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    Recorder recorder(m_db);
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&m_db));
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR", "INNER"));
    ASSERT_TRUE(redefine());
    recorder.taken();
    undoBlockBegin(&m_db);
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&m_db));
    undoBlockEnd(&m_db);
    EXPECT_THAT(recorder.taken(), ElementsAre("erased BLOCK_RECORD INNER"))
        << "shown by erased entities alone, of the old content and of two temporary blocks";
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR"));
    ASSERT_TRUE(m_db.undo());
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR", "INNER"));
}

TEST_F(Redefinition, PurgingTellsOfTheErasedBlocks) {
    block("UNUSED");
    Recorder recorder(m_db);
    m_cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&m_db));
    EXPECT_THAT(recorder.taken(), ElementsAre("erased BLOCK_RECORD UNUSED"));
}

// --- the setting of macros ---

TEST_F(Redefinition, OfMacrosFollowsTheVariableOfTheDocument) {
    EXPECT_FALSE(m_cad.BuscarAtualizarMacros());
    m_cad.SetVarBool("*MACRONASPAGINAS*", true, m_document);
    EXPECT_TRUE(m_cad.BuscarAtualizarMacros());
    m_cad.SetVarBool("*MACRONASPAGINAS*", false, m_document);
    EXPECT_FALSE(m_cad.BuscarAtualizarMacros());
    m_documents.manager.closeAll();
    EXPECT_FALSE(m_cad.BuscarAtualizarMacros()) << "without a document";
}

} // namespace
