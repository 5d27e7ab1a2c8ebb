// SPDX-License-Identifier: MIT
// References with fresh attributes, and references turned into plain geometry.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "host/services.h"

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kQuarter = 1.5707963267948966;

class Insertion : public Symbols {
protected:
    Reference insert(const char* name, const char* layer = "0") {
        return m_cad.InserirBloco(missing(), rz(name), rz(layer), 0, 0, 0, 0);
    }
};

// --- InserirBloco ---

TEST_F(Insertion, PlacesABlockOfTheDrawing) {
    const OdDbObjectId motor = block("MOTOR", {{"TAG", "Tag?", "M?"}, {"POWER", "", ""}});
    layer("P1");
    const Reference made = m_cad.InserirBloco(missing(), "MOTOR", "P1", 0.1f, -2.5f, 3.25f, 0.7f);
    ASSERT_FALSE(made.isNull());
    EXPECT_EQ(made->blockTableRecord(), motor);
    EXPECT_EQ(made->ownerId(), m_db.getModelSpaceId());
    EXPECT_EQ(made->position().x, static_cast<double>(0.1f)) << "widened, and not rounded to decimals";
    EXPECT_EQ(made->position().y, -2.5);
    EXPECT_EQ(made->position().z, 3.25);
    EXPECT_EQ(made->rotation(), static_cast<double>(0.7f));
    EXPECT_EQ(made->scaleFactors().sx, 1);
    EXPECT_EQ(made->scaleFactors().sy, 1);
    EXPECT_EQ(made->scaleFactors().sz, 1);
    EXPECT_EQ(plain(CHostString(made->layer())), "P1");
    EXPECT_EQ(made->graphicsRequests(), 1u);
    EXPECT_THAT(attributesOf(made), ElementsAre("TAG=M?", "POWER="));
}

TEST_F(Insertion, DoesNotReadTheFileOfABlockThatIsThere) {
    const RZString path = file("motor.dxf", *symbol({{"TAG", "", "first"}}));
    ASSERT_THAT(attributesOf(m_cad.InserirBloco(path, "MOTOR", "0", 0, 0, 0, 0)), ElementsAre("TAG=first"));
    file("motor.dxf", *symbol({{"TAG", "", "second"}}));
    EXPECT_THAT(attributesOf(m_cad.InserirBloco(path, "MOTOR", "0", 0, 0, 0, 0)), ElementsAre("TAG=first"));
    std::filesystem::remove(m_folder.path() / "motor.dxf");
    EXPECT_THAT(attributesOf(m_cad.InserirBloco(path, "MOTOR", "0", 0, 0, 0, 0)), ElementsAre("TAG=first"));
    const RZString bad = damaged();
    EXPECT_THAT(attributesOf(m_cad.InserirBloco(bad, "MOTOR", "0", 0, 0, 0, 0)), ElementsAre("TAG=first"));
}

TEST_F(Insertion, LoadsAMissingBlockFromItsFile) {
    const RZString path = file("motor.dxf", *symbol({{"TAG", "Tag?", "M?"}}));
    const Reference made = m_cad.InserirBloco(path, "MOTOR", "0", 1, 2, 3, 0);
    EXPECT_THAT(modelSpace(), ElementsAre("INSERT 0 1,2,3 shows MOTOR"));
    EXPECT_THAT(entitiesOf(made->blockTableRecord()), ElementsAre("LINE 0 0,0,0 10,0,0", "ATTDEF 0 'M?'"));
}

TEST_F(Insertion, MakesTheLayer) {
    block("MOTOR");
    EXPECT_EQ(plain(CHostString(insert("MOTOR", "PÁGINA 1")->layer())), "PÁGINA 1");
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "PÁGINA 1"));
    insert("MOTOR", "PÁGINA 1");
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "PÁGINA 1"));
}

TEST_F(Insertion, GoesOnWithoutABlock) {
    const lm::test::ConsoleCapture console;
    const Source refused = symbol();
    layerIn(*refused, "SECOND");
    for (const RZString& path : {missing(), file("refused.dxf", *refused)}) {
        const Reference made = m_cad.InserirBloco(path, "MOTOR", "P1", 1, 2, 3, 0);
        ASSERT_FALSE(made.isNull());
        EXPECT_TRUE(made->blockTableRecord().isNull());
        EXPECT_EQ(plain(m_cad.GetNomeBloco(made)), "");
        EXPECT_THAT(attributesOf(made), IsEmpty());
    }
    EXPECT_THAT(modelSpace(), ElementsAre("INSERT P1 1,2,3 shows ", "INSERT P1 1,2,3 shows "));
    EXPECT_EQ(blockNamed("MOTOR"), OdDbObjectId());
    // Such a reference must not keep the drawing from being saved and read.
    EXPECT_FALSE(GetHostSystemServices()->readFile(file("saved.dxf", m_db)).isNull());
}

TEST_F(Insertion, GivesNullWithoutModelSpace) {
    CHostDatabase bare(OdDbDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_TRUE(insert("MOTOR", "P1").isNull());
    EXPECT_TRUE(m_cad.InserirBloco(file("motor.dxf", *symbol()), "MOTOR", "P1", 0, 0, 0, 0).isNull());
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    m_documents.manager.newDocumentWithoutDatabase();
    EXPECT_TRUE(insert("MOTOR", "P1").isNull());
    EXPECT_TRUE(m_cad.InserirBloco(file("motor.dxf", *symbol()), "MOTOR", "P1", 0, 0, 0, 0).isNull());
}

TEST_F(Insertion, ReportsALayerThatCannotBe) {
    block("MOTOR", {{"TAG", "", ""}});
    const lm::test::LogCapture log;
    EXPECT_THROW(insert("MOTOR", ""), OdError);
    ASSERT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::InserirBloco : "));
    EXPECT_THAT(modelSpace(), ElementsAre("INSERT 0 0,0,0 shows MOTOR")) << "appended before that";
    EXPECT_THAT(attributesOf(Reference(openBlock(m_db.getModelSpaceId())->newIterator()->entity())),
                IsEmpty());
}

TEST_F(Insertion, ReportsAFileThatCannotBeRead) {
    const lm::test::LogCapture log;
    const RZString path = damaged();
    EXPECT_THROW(m_cad.InserirBloco(path, "MOTOR", "P1", 0, 0, 0, 0), OdError);
    ASSERT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::InserirBloco : "));
    EXPECT_THAT(modelSpace(), IsEmpty());
    EXPECT_FALSE(m_cad.ExisteLayer("P1", &m_db)) << "the block comes first";
}

TEST_F(Insertion, TellsOfTheReferenceWhenTheCallerLetsItGo) {
    block("MOTOR", {{"A", "", ""}, {"B", "", ""}});
    Recorder recorder(m_db);
    Reference made = insert("MOTOR", "P1");
    EXPECT_TRUE(made->isWriteEnabled());
    EXPECT_THAT(recorder.taken(), ElementsAre("appended LAYER P1", "appended ATTRIB", "appended ATTRIB"));
    made.release();
    EXPECT_THAT(recorder.taken(), ElementsAre("appended INSERT"));
}

TEST_F(Insertion, TellsOfALoadedBlockBeforeTheReference) {
    const RZString path = file("motor.dxf", *symbol());
    Recorder recorder(m_db);
    m_cad.InserirBloco(path, "MOTOR", "0", 0, 0, 0, 0);
    // The shift of the origin runs for a base point of (0, 0, 0) as well.
    EXPECT_THAT(recorder.taken(),
                ElementsAre("appended LINE", "appended BLOCK_RECORD MOTOR", "opened LINE", "modified LINE",
                            "opened BLOCK_RECORD MOTOR", "modified BLOCK_RECORD MOTOR", "appended INSERT"));
}

TEST_F(Insertion, IsTakenBackByUndo) {
    const RZString path = file("motor.dxf", *symbol({{"TAG", "", "M?"}}));
    const std::string before = dumpOf(m_db);
    undoBlockBegin(&m_db);
    m_cad.InserirBloco(path, "MOTOR", "P1", 1, 2, 3, 0.5);
    undoBlockEnd(&m_db);
    EXPECT_NE(dumpOf(m_db), before);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(dumpOf(m_db), before);
}

// --- CriarAtributos ---

class Creation : public Symbols {
protected:
    OdSmartPtr<OdDbAttributeDefinition> definition(OdDbObjectId block) {
        return OdSmartPtr<OdDbAttributeDefinition>(
            define(block, {"TAG", "Tag?", "M?"}).openObject(OdDb::kForWrite));
    }
    OdSmartPtr<OdDbAttribute> onlyAttribute(const Reference& reference) { return attributeOf(reference, 0); }
};

TEST_F(Creation, CopiesTheDefinition) {
    const OdDbObjectId motor = block("MOTOR");
    const OdSmartPtr<OdDbAttributeDefinition> from = definition(motor);
    from->setLayer(layer("TEXTS"));
    from->setInvisible(true);
    from->setHeight(2.5);
    from->setRotation(0.25);
    from->setTextStyle(m_db.getTextStyleStandardId());
    from->setColor(OdCmColor::fromIndex(3));
    from->setLinetype(m_db.getLinetypeContinuousId());
    from->setLinetypeScale(0.75);
    from->setLineWeight(50);
    from->setThickness(0.125);
    from->setTransparency(0x02000080);
    from->setWidthFactor(0.8);
    from->setHorizontalMode(OdDbText::kCenter);
    from->setVerticalMode(OdDbText::kTop);
    from->setFieldLength(12);
    from->setOblique(0.1);
    from->setMirrorInX(true);
    from->setPosition({3, 4, 0});
    from->setAlignmentPoint({5, 6, 0});
    const Reference reference = place(motor, {}, "0");
    ASSERT_EQ(m_cad.CriarAtributos(motor, reference), 0);
    const OdSmartPtr<OdDbAttribute> made = onlyAttribute(reference);
    EXPECT_EQ(made->ownerId(), reference->objectId());
    EXPECT_EQ(plain(CHostString(made->layer())), "TEXTS");
    EXPECT_TRUE(made->isInvisible());
    EXPECT_EQ(plain(CHostString(made->tag())), "TAG");
    EXPECT_EQ(plain(CHostString(made->textString())), "M?");
    EXPECT_EQ(made->height(), 2.5);
    EXPECT_EQ(made->rotation(), 0.25);
    EXPECT_EQ(made->textStyle(), m_db.getTextStyleStandardId());
    EXPECT_EQ(made->color().colorIndex(), 3);
    EXPECT_EQ(made->linetypeId(), m_db.getLinetypeContinuousId());
    EXPECT_EQ(made->linetypeScale(), 0.75);
    EXPECT_EQ(made->lineWeight(), 50);
    EXPECT_EQ(made->thickness(), 0.125);
    EXPECT_EQ(made->transparency(), 0x02000080u);
    EXPECT_EQ(made->widthFactor(), 0.8);
    EXPECT_EQ(made->horizontalMode(), OdDbText::kCenter);
    EXPECT_EQ(made->verticalMode(), OdDbText::kTop);
    EXPECT_EQ(made->fieldLength(), 12);
    EXPECT_NEAR(made->oblique(), 0.1, 1e-12);
    EXPECT_TRUE(made->isMirroredInX());
    EXPECT_EQ(told(made->position()), "3,4,0");
    EXPECT_EQ(told(made->alignmentPoint()), "5,6,0");
    EXPECT_FALSE(made->isMTextAttribute());
}

TEST_F(Creation, PlacesTheAttributesByTheReference) {
    const OdDbObjectId motor = block("MOTOR");
    openBlock(motor, OdDb::kForWrite)->setOrigin({1, 1, 0}); // as blocks of older drawings have it
    const OdSmartPtr<OdDbAttributeDefinition> from = definition(motor);
    from->setPosition({3, 1, 0});
    from->setHeight(2);
    const Reference reference = place(motor);
    reference->setPosition({100, 200, 0});
    reference->setRotation(kQuarter);
    reference->setScaleFactors({3, 3, 3});
    m_cad.CriarAtributos(motor, reference);
    const OdSmartPtr<OdDbAttribute> made = onlyAttribute(reference);
    EXPECT_EQ(told(made->position()), "100,206,0");
    EXPECT_NEAR(made->rotation(), kQuarter, 1e-12);
    EXPECT_NEAR(made->height(), 6, 1e-12);
}

TEST_F(Creation, ClonesTheFormOfSeveralLines) {
    const OdDbObjectId motor = block("MOTOR");
    const OdSmartPtr<OdDbAttributeDefinition> from = definition(motor);
    const OdSmartPtr<OdDbMText> lines = make(new OdDbMText);
    lines->setContents(od("one\\Ptwo"));
    from->setMTextAttributeDefinition(lines);
    const Reference reference = place(motor);
    m_cad.CriarAtributos(motor, reference);
    const OdSmartPtr<OdDbAttribute> made = onlyAttribute(reference);
    ASSERT_TRUE(made->isMTextAttribute());
    EXPECT_EQ(plain(CHostString(made->getMTextAttribute()->contents())), "one\\Ptwo");
    from->getMTextAttributeDefinition()->setContents(od("changed"));
    EXPECT_EQ(plain(CHostString(made->getMTextAttribute()->contents())), "one\\Ptwo") << "a copy of its own";
}

TEST_F(Creation, PlacesTheFormOfSeveralLinesByTheReference) {
    const OdDbObjectId motor = block("MOTOR");
    const OdSmartPtr<OdDbAttributeDefinition> from = definition(motor);
    const OdSmartPtr<OdDbMText> lines = make(new OdDbMText);
    lines->setContents(od("one\\Ptwo"));
    lines->setLocation({7, 8, 0});
    lines->setTextHeight(2);
    lines->setWidth(10);
    from->setMTextAttributeDefinition(lines);
    for (const double sy : {3.0, 4.0}) { // lengths change by one factor, and by two
        const Reference reference = place(motor);
        reference->setPosition({100, 200, 0});
        reference->setRotation(kQuarter);
        reference->setScaleFactors({3, sy, 3});
        m_cad.CriarAtributos(motor, reference);
        const OdSmartPtr<OdDbMText> made = onlyAttribute(reference)->getMTextAttribute();
        EXPECT_EQ(told(made->location()), told(OdGePoint3d(100 - 8 * sy, 221, 0)));
        EXPECT_EQ(told(OdGePoint3d() + made->direction()), "0,1,0");
        EXPECT_NEAR(made->textHeight(), 2 * sy, 1e-9);
        EXPECT_NEAR(made->width(), 30, 1e-9);
    }
}

TEST_F(Creation, FollowsMirroredTiltedAndUnequalReferences) {
    const OdDbObjectId motor = block("MOTOR");
    definition(motor)->setPosition({3, 1, 2});
    struct Row {
        OdGeScale3d scale;
        OdGeVector3d normal;
        const char* at; ///< in the world
        const char* along;
        const char* up;
    };
    const Row rows[] = {{{1, 1, 1}, {0, 0, 1}, "13,1,2", "1,0,0", "0,1,0"},
                        {{-1, 1, 1}, {0, 0, 1}, "7,1,2", "-1,0,0", "0,-1,0"},
                        {{1, -1, 1}, {0, 0, 1}, "13,-1,2", "1,0,0", "0,1,0"},
                        {{1, 1, -1}, {0, 0, 1}, "13,1,-2", "1,0,0", "0,1,0"},
                        {{-2, 2, -2}, {0, 0, 1}, "4,2,-4", "-1,0,0", "0,-1,0"},
                        {{2, 3, 1}, {0, 0, 1}, "16,3,2", "1,0,0", "0,1,0"},
                        {{1, 1, 1}, {0, 0, -1}, "-13,1,-2", "-1,0,0", "0,1,0"},
                        {{1, 1, -1}, {0, 0, -1}, "-13,1,2", "-1,0,0", "0,1,0"},
                        {{1, 1, 1}, {1, 0, 0}, "2,13,1", "0,1,0", "0,0,1"}};
    for (const Row& row : rows) {
        const Reference reference = place(motor);
        reference->setNormal(row.normal);
        reference->setPosition({10, 0, 0});
        reference->setScaleFactors(row.scale);
        m_cad.CriarAtributos(motor, reference);
        const OdSmartPtr<OdDbAttribute> made = onlyAttribute(reference);
        const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(made->normal());
        const double c = std::cos(made->rotation()), s = std::sin(made->rotation());
        EXPECT_EQ(told(plane * made->position()), row.at);
        EXPECT_EQ(told(OdGePoint3d() + plane * OdGeVector3d(c, s, 0)), row.along) << row.at;
        EXPECT_EQ(told(OdGePoint3d() + plane * OdGeVector3d(-s, c, 0)), row.up) << row.at;
    }
}

TEST_F(Creation, KeepsWhatIsHiddenHidden) {
    const OdDbObjectId motor = block("MOTOR");
    definition(motor)->setVisible(false);
    const Reference reference = place(motor);
    m_cad.CriarAtributos(motor, reference);
    EXPECT_FALSE(onlyAttribute(reference)->isVisible());
}

TEST_F(Creation, NeedsNoReferenceWhereNothingIsDefined) {
    EXPECT_EQ(m_cad.CriarAtributos(block("BARE", {{"CONST", "", "c", true}}), Reference()), 0);
    EXPECT_THROW(m_cad.CriarAtributos(block("MOTOR", {{"A", "", "1"}}), Reference()), OdError);
}

TEST_F(Creation, PlacesTheFormOfSeveralLinesUnderTheReference) {
    const OdDbObjectId motor = block("MOTOR");
    const OdSmartPtr<OdDbAttributeDefinition> from = definition(motor);
    const OdSmartPtr<OdDbMText> lines = make(new OdDbMText);
    lines->setLocation({3, 1, 0});
    lines->setTextHeight(2);
    from->setMTextAttributeDefinition(lines);
    const Reference reference = place(motor);
    reference->setPosition({100, 200, 0});
    reference->setScaleFactors({3, 3, 3});
    m_cad.CriarAtributos(motor, reference);
    const OdSmartPtr<OdDbMText> made = onlyAttribute(reference)->getMTextAttribute();
    EXPECT_EQ(told(made->location()), "109,203,0");
    EXPECT_DOUBLE_EQ(made->textHeight(), 6);
    EXPECT_EQ(told(lines->location()), "3,1,0") << "the definition's own stays";

    const Reference stretched = place(motor);
    stretched->setPosition({100, 200, 0});
    stretched->setScaleFactors({3, 2, 1});
    m_cad.CriarAtributos(motor, stretched);
    EXPECT_EQ(told(onlyAttribute(stretched)->getMTextAttribute()->location()), "109,202,0");
}

TEST_F(Creation, PassesOverWhatNeedsNoAttribute) {
    const OdDbObjectId motor = block("MOTOR", {{"CONST", "", "c", true}, {"A", "", "1"}});
    line(motor, {0, 0, 0}, {1, 0, 0});
    erase(define(motor, {"GONE", "", ""}));
    define(motor, {"B", "", "2"});
    const Reference reference = place(motor);
    m_cad.CriarAtributos(motor, reference);
    EXPECT_THAT(attributesOf(reference), ElementsAre("A=1", "B=2"));
}

TEST_F(Creation, DoublesTheAttributesWhenCalledTwice) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", "1"}});
    const Reference reference = place(motor);
    m_cad.CriarAtributos(motor, reference);
    m_cad.CriarAtributos(motor, reference);
    EXPECT_THAT(attributesOf(reference), ElementsAre("A=1", "A=1"));
}

TEST_F(Creation, AddsNothingForANullId) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", "1"}});
    const Reference reference = place(motor);
    EXPECT_EQ(m_cad.CriarAtributos(RZID(), reference), 0);
    EXPECT_EQ(m_cad.CriarAtributos(RZID(), Reference()), 0);
    EXPECT_THAT(attributesOf(reference), IsEmpty());
}

TEST_F(Creation, NeedsAReferenceThatIsOpenForWrite) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", "1"}});
    const OdDbObjectId id = place(motor)->objectId();
    const lm::test::LogCapture log;
    try {
        m_cad.CriarAtributos(motor, openReference(id));
        FAIL() << "must raise";
    } catch (const OdError& error) {
        EXPECT_EQ(error.code(), eNotOpenForWrite);
    }
    EXPECT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::CriarAtributos : "));
    EXPECT_THROW(m_cad.CriarAtributos(layer("L"), openReference(id)), OdError_NotThatKindOfClass);
    EXPECT_THAT(attributesOf(openReference(id)), IsEmpty());
}

// --- explodeEntitiesToLayer ---

class Explosion : public Symbols {
protected:
    bool explode(const std::vector<OdDbObjectId>& ids, const char* layer = "L") {
        CList<RZID, const RZID&> list;
        for (const OdDbObjectId id : ids) list.AddTail(RZID(id));
        return m_cad.explodeEntitiesToLayer(&list, rz(layer));
    }
    OdDbObjectId m_layer = layer("L");
};

TEST_F(Explosion, NeedsAListALayerAndModelSpace) {
    const OdDbObjectId point = this->point();
    const std::string before = dumpOf(m_db);
    EXPECT_FALSE(m_cad.explodeEntitiesToLayer(nullptr, "L"));
    EXPECT_FALSE(explode({point}, ""));
    EXPECT_EQ(dumpOf(m_db), before);
    CHostDatabase bare(OdDbDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_FALSE(explode({point}));
    setDatabase(nullptr);
    EXPECT_EQ(dumpOf(m_db), before);
    EXPECT_TRUE(explode({}));
    EXPECT_EQ(dumpOf(m_db), before);
}

TEST_F(Explosion, MovesPlainEntitiesToTheLayerAsCopies) {
    const OdDbObjectId source = line(m_db.getModelSpaceId(), {1, 0, 0}, {2, 0, 0});
    give(source, "A", {"one"});
    give(source, "B", {"two", "three"});
    EXPECT_TRUE(explode({source}));
    EXPECT_TRUE(source.isErased());
    EXPECT_EQ(data(source), "1001:A 1000:one 1001:B 1000:two 1000:three") << "the source keeps its data";
    EXPECT_THAT(modelSpace(), ElementsAre("LINE L 1,0,0 2,0,0"));
    const OdDbObjectId made = openBlock(m_db.getModelSpaceId())->newIterator()->objectId();
    EXPECT_NE(made, source);
    EXPECT_EQ(data(made), "null");
}

TEST_F(Explosion, PutsEntitiesOfOtherBlocksIntoModelSpace) {
    const OdDbObjectId source = line(block("B"), {1, 0, 0}, {2, 0, 0});
    EXPECT_TRUE(explode({source}));
    EXPECT_THAT(modelSpace(), ElementsAre("LINE L 1,0,0 2,0,0"));
    EXPECT_TRUE(source.isErased());
}

TEST_F(Explosion, OpensReferencesByOneLevel) {
    const OdDbObjectId inner = block("INNER", {{"X", "", "x"}});
    line(inner, {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId outer = block("OUTER");
    line(outer, {0, 0, 0}, {1, 0, 0});
    place(inner, {{"X", "value"}}, "0", outer);
    const Reference reference = place(outer);
    reference->setPosition({10, 0, 0});
    const OdDbObjectId id = reference->objectId();
    EXPECT_TRUE(explode({id}));
    EXPECT_TRUE(id.isErased());
    EXPECT_THAT(modelSpace(), ElementsAre("LINE L 10,0,0 11,0,0", "INSERT L 10,0,0 shows INNER"));
}

TEST_F(Explosion, LeavesATextForAVisibleAttributeWithoutAValueOnly) {
    const OdDbObjectId motor = block("MOTOR", {{"EMPTY", "", "d"},
                                               {"BLANKS", "", "d"},
                                               {"FULL", "", "d"},
                                               {"HIDDEN", "", "d"},
                                               {"NONE", "", ""},
                                               {"CONST", "", "", true}});
    const Reference reference =
        place(motor, {{"empty", ""}, {"BLANKS", "  "}, {"FULL", "value"}, {"HIDDEN", "", true}});
    EXPECT_TRUE(explode({reference->objectId()}));
    EXPECT_THAT(modelSpace(), ElementsAre("TEXT L ''", "TEXT L ''"));
}

TEST_F(Explosion, GivesTheTextTheFormOfItsDefinition) {
    const OdDbObjectId motor = block("MOTOR");
    const OdSmartPtr<OdDbAttributeDefinition> from(define(motor, {"A", "", "d"}).openObject(OdDb::kForWrite));
    from->setPosition({1, 2, 0});
    from->setAlignmentPoint({3, 4, 0});
    from->setColor(OdCmColor::fromIndex(5));
    from->setHeight(2.5);
    from->setHorizontalMode(OdDbText::kRight);
    from->setLinetype(m_db.getLinetypeContinuousId());
    from->setLinetypeScale(0.5);
    from->setLineWeight(25);
    from->setOblique(0.2);
    from->setRotation(0.3);
    from->setTextStyle(m_db.getTextStyleStandardId());
    from->setThickness(0.5);
    from->setWidthFactor(0.9);
    from->setMirrorInX(true);
    from->setMirrorInY(true);
    from->setTransparency(0x02000040);
    from->setVerticalMode(OdDbText::kVertMid);
    const Reference reference = place(motor, {{"A", ""}});
    reference->setPosition({10, 20, 0});
    reference->setRotation(kQuarter);
    EXPECT_TRUE(explode({reference->objectId()}));
    const OdSmartPtr<OdDbText> made(openBlock(m_db.getModelSpaceId())->newIterator()->entity());
    EXPECT_EQ(told(made->position()), "8,21,0");
    EXPECT_EQ(told(made->alignmentPoint()), "6,23,0");
    EXPECT_EQ(made->color().colorIndex(), 5);
    EXPECT_NEAR(made->height(), 2.5, 1e-12);
    EXPECT_EQ(made->horizontalMode(), OdDbText::kRight);
    EXPECT_EQ(made->linetypeId(), m_db.getLinetypeContinuousId());
    EXPECT_EQ(made->linetypeScale(), 0.5);
    EXPECT_EQ(made->lineWeight(), 25);
    EXPECT_EQ(told(OdGePoint3d() + made->normal()), "0,0,1");
    EXPECT_NEAR(made->oblique(), 0.2, 1e-12);
    EXPECT_NEAR(made->rotation(), 0.3 + kQuarter, 1e-12);
    EXPECT_EQ(made->textStyle(), m_db.getTextStyleStandardId());
    EXPECT_NEAR(made->thickness(), 0.5, 1e-12);
    EXPECT_NEAR(made->widthFactor(), 0.9, 1e-12);
    EXPECT_TRUE(made->isMirroredInX());
    EXPECT_TRUE(made->isMirroredInY());
    EXPECT_EQ(made->transparency(), 0x02000040u);
    EXPECT_EQ(made->verticalMode(), OdDbText::kVertMid);
}

TEST_F(Explosion, ErasesAReferenceThatOffersNoAttributesAndTakesNothingFromIt) {
    const OdDbObjectId motor = block("MOTOR");
    line(motor, {0, 0, 0}, {1, 0, 0});
    Reference reference = place(motor);
    reference->setWithoutIterator(true);
    const OdDbObjectId id = reference->objectId();
    EXPECT_TRUE(explode({id}));
    EXPECT_TRUE(id.isErased());
    EXPECT_THAT(modelSpace(), IsEmpty());
}

TEST_F(Explosion, LeavesTheSourcesWhenAReferenceCannotBeExploded) {
    const OdDbObjectId kept = line(m_db.getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId gone = block("GONE");
    const OdDbObjectId orphan = place(gone)->objectId();
    erase(gone);
    ASSERT_TRUE(gone.isErased());
    for (const OdDbObjectId id : {orphan, place(OdDbObjectId())->objectId()}) {
        const std::string before = dumpOf(m_db);
        const lm::test::LogCapture log;
        try {
            explode({kept, id});
            FAIL() << "must raise";
        } catch (const OdError& error) {
            EXPECT_EQ(error.code(), eNotApplicable);
        }
        EXPECT_EQ(linesOf(log).size(), 1u);
        EXPECT_EQ(dumpOf(m_db), before);
    }
}

TEST_F(Explosion, LeavesNoDataOnPiecesAndOnTheirTexts) {
    const OdDbObjectId motor = block("MOTOR");
    give(line(motor, {0, 0, 0}, {1, 0, 0}), "A", {"one"});
    give(define(motor, {"EMPTY", "", ""}), "A", {"two"});
    EXPECT_TRUE(explode({place(motor, {{"EMPTY", ""}})->objectId()}));
    EXPECT_EQ(modelSpace().size(), 2u);
    const auto walk = openBlock(m_db.getModelSpaceId())->newIterator();
    for (; !walk->done(); walk->step()) EXPECT_EQ(data(walk->objectId()), "null");
}

TEST_F(Explosion, PassesOverWhatCannotBeOpened) {
    const OdDbObjectId gone = point(), kept = line(m_db.getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    erase(gone);
    EXPECT_TRUE(explode({OdDbObjectId(), gone, kept}));
    EXPECT_THAT(modelSpace(), ElementsAre("LINE L 0,0,0 1,0,0"));
    EXPECT_TRUE(gone.isErased());
}

TEST_F(Explosion, TakesAnEntityAsOftenAsItIsListed) {
    const OdDbObjectId source = line(m_db.getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    EXPECT_TRUE(explode({source, source}));
    EXPECT_EQ(modelSpace().size(), 2u);
}

TEST_F(Explosion, LeavesTheSourcesWhenTheLayerIsMissing) {
    const OdDbObjectId source = line(m_db.getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    const lm::test::LogCapture log;
    EXPECT_THROW(explode({source}, "NONE"), OdError);
    EXPECT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::explodeEntitiesToLayer : "));
    EXPECT_FALSE(source.isErased());
    EXPECT_FALSE(m_cad.ExisteLayer("NONE", &m_db)) << "this member makes none";
    EXPECT_EQ(modelSpace().size(), 2u) << "what was appended before stays";
}

TEST_F(Explosion, TellsOfEachNewEntityAndOfTheSourcesLast) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", ""}});
    line(motor, {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId reference = place(motor, {{"A", ""}})->objectId(), point = this->point();
    Recorder recorder(m_db);
    EXPECT_TRUE(explode({point, reference}));
    EXPECT_THAT(recorder.taken(), ElementsAre("appended POINT", "appended TEXT", "appended LINE",
                                              "erased POINT", "erased INSERT"));
}

TEST_F(Explosion, IsTakenBackByUndo) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", ""}});
    line(motor, {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId reference = place(motor, {{"A", ""}})->objectId();
    const std::string before = dumpOf(m_db);
    undoBlockBegin(&m_db);
    EXPECT_TRUE(explode({reference}));
    undoBlockEnd(&m_db);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(dumpOf(m_db), before);
}

} // namespace
