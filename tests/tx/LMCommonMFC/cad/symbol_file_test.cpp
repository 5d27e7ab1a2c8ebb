// SPDX-License-Identifier: MIT
// Which files may become blocks, what is said of the others, and how a drawing is brought to the state of a
// symbol.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "host/services.h"

#include <QCoreApplication>
#include <QTranslator>

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kLayers = "\nInvalid block error - Block with multiple layers: ";
const std::string kBlocks = "\nInvalid block error - Block containing blocks: ";

class SymbolFile : public Symbols {
protected:
    /// What the command line gets when a file is refused; the block table must stay as it was.
    std::string refusal(const RZString& path, const char* name = "MOTOR") {
        const lm::test::ConsoleCapture console;
        const Texts before = blocks();
        EXPECT_TRUE(m_cad.carregaBTR(rz(name), path).isNull());
        EXPECT_EQ(blocks(), before);
        return console.text();
    }
    RZString withSecondLayer(const char* name = "layers.dxf") {
        const Source db = symbol();
        layerIn(*db, "EMPTY");
        return file(name, *db);
    }
};

// --- loading ---

TEST_F(SymbolFile, BecomesABlock) {
    const RZString path = file("motor.dxf", *symbol({{"TAG", "Tag?", "M?"}}));
    const lm::test::ConsoleCapture console;
    const RZID id = m_cad.carregaBTR("MOTOR", path);
    ASSERT_TRUE(id.isValid());
    EXPECT_EQ(id, blockNamed("MOTOR"));
    EXPECT_THAT(entitiesOf(id), ElementsAre("LINE 0 0,0,0 10,0,0", "ATTDEF 0 'M?'"));
    EXPECT_EQ(console.text(), "");
}

TEST_F(SymbolFile, GivesNothingWhenItIsMissing) {
    const lm::test::LogCapture log;
    EXPECT_EQ(refusal(missing()), "");
    EXPECT_EQ(refusal(""), "");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SymbolFile, RaisesWithoutALineWhenItCannotBeRead) {
    const lm::test::LogCapture log;
    const RZString folder = rz(m_folder.path().string()), bad = damaged();
    EXPECT_THROW(m_cad.carregaBTR("MOTOR", folder), OdError);
    EXPECT_THROW(m_cad.carregaBTR("MOTOR", bad), OdError);
    EXPECT_THAT(log.lines(), IsEmpty()) << "this member doesn't report";
}

TEST_F(SymbolFile, IsFoundWithEitherSeparator) {
    RZString path = file("motor.dxf", *symbol());
    path.replace("/", "\\");
    EXPECT_TRUE(m_cad.carregaBTR("MOTOR", path).isValid());
}

TEST_F(SymbolFile, GivesNothingUnderANameThatIsTakenOrEmpty) {
    const RZString path = file("motor.dxf", *symbol());
    const OdDbObjectId there = block("MOTOR");
    EXPECT_EQ(refusal(path), "");
    EXPECT_EQ(refusal(path, ""), "");
    EXPECT_EQ(refusal(path, "*Model_Space"), "");
    EXPECT_THAT(entitiesOf(there), IsEmpty());
}

TEST_F(SymbolFile, GivesNothingInAHostWithoutServicesOrWithoutADrawing) {
    const RZString path = file("motor.dxf", *symbol());
    lm::host::setServicesPresent(false);
    EXPECT_EQ(refusal(path), "");
    lm::host::setServicesPresent(true);
    m_documents.manager.closeAll();
    m_documents.manager.newDocumentWithoutDatabase();
    EXPECT_TRUE(m_cad.carregaBTR("MOTOR", path).isNull());
}

TEST_F(SymbolFile, StandsWithItsBasePointAtTheOrigin) {
    const Source db = symbol({{"TAG", "", ""}});
    line(db->getModelSpaceId(), {10, 5, 0}, {12, 5, 0});
    db->setINSBASE({10, 5, 0});
    const RZID id = m_cad.carregaBTR("MOTOR", file("motor.dxf", *db));
    EXPECT_EQ(told(openBlock(id)->origin()), "0,0,0");
    EXPECT_THAT(entitiesOf(id), ElementsAre("LINE 0 -10,-5,0 0,-5,0", "ATTDEF 0 ''", "LINE 0 0,0,0 2,0,0"));
}

TEST_F(SymbolFile, IsRefusedWholeWhenAnEntityCannotBeMovedToTheOrigin) {
    const Texts before = blocks();
    try {
        m_cad.carregaBTR("MOTOR", unmovable("100.0"));
        FAIL() << "must raise";
    } catch (const OdError& error) {
        EXPECT_EQ(error.code(), eNotApplicable);
    }
    EXPECT_EQ(blocks(), before);
    EXPECT_EQ(blockNamed("MOTOR"), OdDbObjectId());
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.InserirBloco(unmovable("100.0"), "MOTOR", "0", 0, 0, 0, 0), OdError);
    ASSERT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::InserirBloco : "));
    EXPECT_THAT(modelSpace(), IsEmpty());
}

TEST_F(SymbolFile, MayHoldWhatCannotBeMovedWhereNothingMoves) {
    const RZID id = m_cad.carregaBTR("MOTOR", unmovable("0.0"));
    ASSERT_TRUE(id.isValid());
    EXPECT_EQ(entitiesOf(id).size(), 2u);
}

// --- admission ---

TEST_F(SymbolFile, IsRefusedForASecondLayerThatNothingUses) {
    const RZString path = withSecondLayer();
    EXPECT_EQ(refusal(path), kLayers + "MOTOR = " + plain(path) + "\n");
}

TEST_F(SymbolFile, MayHaveItsOneLayerOnly) {
    const RZString path = file("motor.dxf", *symbol());
    EXPECT_THAT(told(m_cad.GetLayers(GetHostSystemServices()->readFile(path).get())), ElementsAre("0"))
        << "reading makes no layer";
    EXPECT_TRUE(m_cad.carregaBTR("MOTOR", path).isValid());
}

TEST_F(SymbolFile, IsRefusedForANamedBlock) {
    const Source db = symbol();
    refer(*db, blockIn(*db, "INNER"));
    const RZString path = file("blocks.dxf", *db);
    EXPECT_EQ(refusal(path), kBlocks + "MOTOR = " + plain(path) + "\n");
}

TEST_F(SymbolFile, MayHoldANamedBlockThatNothingShows) {
    const Source db = symbol();
    const OdDbObjectId inner = blockIn(*db, "INNER");
    erase(refer(*db, inner));
    EXPECT_TRUE(m_cad.carregaBTR("MOTOR", file("motor.dxf", *db)).isValid());
}

TEST_F(SymbolFile, MayShowAnonymousBlocks) {
    const Source db = symbol();
    const OdDbObjectId anonymous = blockIn(*db, "*U1");
    line(anonymous, {0, 0, 0}, {1, 1, 0});
    refer(*db, anonymous);
    refer(*db, anonymous);
    const RZID id = m_cad.carregaBTR("MOTOR", file("motor.dxf", *db));
    ASSERT_TRUE(id.isValid());
    EXPECT_EQ(entitiesOf(id).size(), 3u);
}

TEST_F(SymbolFile, MayHoldReferencesToAnonymousBlocksAlone) {
    const Source db = drawing();
    refer(*db, blockIn(*db, "*U1"));
    refer(*db, blockIn(*db, "*X2"));
    EXPECT_TRUE(m_cad.carregaBTR("MOTOR", file("motor.dxf", *db)).isValid());
}

TEST_F(SymbolFile, IsRefusedForAReferenceWithoutABlock) {
    const Source nothing = symbol(), erased = symbol();
    refer(*nothing, OdDbObjectId());
    const OdDbObjectId gone = blockIn(*erased, "*U1");
    refer(*erased, gone);
    gone.openObject(OdDb::kForWrite)->erase();
    const lm::test::ConsoleCapture console;
    EXPECT_FALSE(m_cad.RedefinirBloco(file("nothing.dxf", *nothing), "A"));
    EXPECT_FALSE(m_cad.RedefinirBloco(file("erased.dxf", *erased), "B"));
    EXPECT_THAT(console.text(), testing::HasSubstr(kBlocks + "A = "));
    EXPECT_THAT(console.text(), testing::HasSubstr(kBlocks + "B = "));
}

TEST_F(SymbolFile, IsRefusedForItsLayersFirst) {
    const Source db = symbol();
    refer(*db, blockIn(*db, "INNER"));
    layerIn(*db, "EMPTY");
    const RZString path = file("both.dxf", *db);
    EXPECT_EQ(refusal(path), kLayers + "MOTOR = " + plain(path) + "\n");
}

TEST_F(SymbolFile, IsNamedWithATidyPath) {
    withSecondLayer();
    const std::string folder = m_folder.path().string();
    const std::pair<const char*, const char*> paths[] = {
        {"//layers.dxf", "/layers.dxf"},
        {"///layers.dxf", "//layers.dxf"},          // one pass: what a replacement makes isn't read again
        {"\\\\layers.dxf", "\\layers.dxf"},         // a double backslash
        {"\\\\\\layers.dxf", "\\\\layers.dxf"},     // three
        {"\\\\\\\\layers.dxf", "\\\\layers.dxf"},   // two double ones
        {"/\\/layers.dxf", "/\\/layers.dxf"},       // no pair
        {"/.//.\\\\layers.dxf", "/./.\\layers.dxf"} // both
    };
    for (const auto& [given, shown] : paths)
        EXPECT_EQ(refusal(rz(folder + given)), kLayers + "MOTOR = " + folder + shown + "\n");
}

TEST_F(SymbolFile, IsNamedByTextsThatAreNoFormats) {
    const RZString path = withSecondLayer("100%s %n.dxf");
    EXPECT_EQ(refusal(path, "A%d\xC3\xA7"), kLayers + "A%d\xC3\xA7 = " + plain(path) + "\n");
}

/// Answers for one context, as the translation of the program does.
class OneContext : public QTranslator {
public:
    QString translate(const char* context, const char* text, const char*, int) const override {
        return std::string_view(context) == "RZINC" ? "<" + QString::fromUtf8(text).left(13) + " \u00E7>"
                                                    : QString();
    }
    bool isEmpty() const override { return false; }
};

TEST_F(SymbolFile, IsRefusedInTheUsersLanguage) {
    const RZString path = withSecondLayer();
    OneContext translator;
    QCoreApplication::installTranslator(&translator);
    EXPECT_EQ(refusal(path), "\n<Invalid block \u00E7>MOTOR = " + plain(path) + "\n");
    QCoreApplication::removeTranslator(&translator);
}

// --- definitions by name ---

TEST_F(SymbolFile, GivesTheDefinitionsOfItsBlock) {
    const RZString path = file("motor.dxf", *symbol({{"TAG", "Tag?", "M?"}, {"CONST", "", "c", true}}));
    FoundList list;
    EXPECT_EQ(m_cad.SearchAttributes(path, "MOTOR", list.slot()), 0);
    EXPECT_THAT(list.told(), ElementsAre("TAG|Tag?|M?"));
    EXPECT_TRUE(blockNamed("MOTOR").isValid()) << "loaded for that";
    list.clear();
    EXPECT_EQ(m_cad.SearchAttributes(missing(), "MOTOR", list.slot()), 0) << "the drawing has it now";
    EXPECT_THAT(list.told(), ElementsAre("TAG|Tag?|M?"));
}

TEST_F(SymbolFile, GivesNoDefinitionsWithoutABlock) {
    CEListaAtributos mine;
    CEListaAtributos* list = &mine;
    EXPECT_EQ(m_cad.SearchAttributes(missing(), "MOTOR", list), 2);
    EXPECT_EQ(list, &mine);
    {
        const lm::test::ConsoleCapture console;
        EXPECT_EQ(m_cad.SearchAttributes(withSecondLayer(), "MOTOR", list), 2);
    }
    EXPECT_EQ(list, &mine);
    const RZString path = file("motor.dxf", *symbol());
    m_documents.manager.closeAll();
    m_documents.manager.newDocumentWithoutDatabase();
    EXPECT_EQ(m_cad.SearchAttributes(path, "MOTOR", list), 2);
    EXPECT_EQ(list, &mine);
}

TEST_F(SymbolFile, IsReportedByTheSearchForDefinitionsWhenItCannotBeRead) {
    const lm::test::LogCapture log;
    const RZString bad = damaged();
    CEListaAtributos* list = nullptr;
    EXPECT_THROW(m_cad.SearchAttributes(bad, "MOTOR", list), OdError);
    ASSERT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::SearchAttributes : "));
}

// --- tudoParaLayerZero ---

class ToLayerZero : public Symbols {
protected:
    using Layer = OdSmartPtr<OdDbLayerTableRecord>;
    static bool isFrozen(OdDbObjectId layer) { return Layer(layer.openObject())->isFrozen(); }
    static void freeze(OdDbObjectId layer) { Layer(layer.openObject(OdDb::kForWrite))->setIsFrozen(true); }
    static void makeCurrent(OdDbDatabase& db, OdDbObjectId layer) {
        const OdSmartPtr<OdResBuf> value = OdResBuf::newRb(330);
        value->setObjectId(layer);
        ASSERT_TRUE(db.setSysVar("CLAYER", value));
    }
    OdSmartPtr<CHostDatabase> current() { return OdSmartPtr<CHostDatabase>(&m_db); }
};

TEST_F(ToLayerZero, BringsModelSpaceWithItsAttributesToLayerZeroAndErasesTheOthers) {
    const OdDbObjectId pages[] = {layer("P1"), layer("P2"), layer("UNUSED")};
    makeCurrent(m_db, pages[0]);
    const Reference reference = place(block("B"), {{"A", "1"}, {"B", "2"}}, "P1");
    for (int i : {0, 1}) {
        const OdDbObjectId attribute = attributeOf(reference, i)->objectId();
        OdSmartPtr<OdDbEntity>(attribute.openObject(OdDb::kForWrite))->setLayer(pages[1]);
    }
    const OdDbObjectId point = this->point();
    OdSmartPtr<OdDbEntity>(point.openObject(OdDb::kForWrite))->setLayer(pages[1]);
    m_cad.tudoParaLayerZero(current());
    EXPECT_THAT(modelSpace(), ElementsAre("INSERT 0 0,0,0 shows B", "POINT 0"));
    for (int i : {0, 1}) EXPECT_EQ(plain(CHostString(attributeOf(reference, i)->layer())), "0");
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "0");
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0"));
}

TEST_F(ToLayerZero, KeepsTheLayersOfEntitiesInBlocksAndLayouts) {
    const OdDbObjectId inner = layer("INNER"), paper = layer("PAPER");
    layer("UNUSED");
    const OdDbObjectId line = this->line(block("B"), {0, 0, 0}, {1, 0, 0});
    OdSmartPtr<OdDbEntity>(line.openObject(OdDb::kForWrite))->setLayer(inner);
    const OdDbObjectId onPaper = this->line(m_db.getPaperSpaceId(), {0, 0, 0}, {1, 0, 0});
    OdSmartPtr<OdDbEntity>(onPaper.openObject(OdDb::kForWrite))->setLayer(paper);
    m_cad.tudoParaLayerZero(current());
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "INNER", "PAPER"));
    EXPECT_EQ(plain(CHostString(OdSmartPtr<OdDbEntity>(line.openObject())->layer())), "INNER");
    EXPECT_EQ(plain(CHostString(OdSmartPtr<OdDbEntity>(onPaper.openObject())->layer())), "PAPER");
}

TEST_F(ToLayerZero, PassesOverErasedObjectsWhichHoldNoLayer) {
    const OdDbObjectId pages[] = {layer("P1"), layer("P2"), layer("P3"), layer("P4"), layer("GONE")};
    const auto put = [](OdDbObjectId id, OdDbObjectId layer) {
        OdSmartPtr<OdDbEntity>(id.openObject(OdDb::kForWrite))->setLayer(layer);
    };
    const auto layerOf = [](OdDbObjectId id) {
        return plain(CHostString(OdSmartPtr<OdDbEntity>(id.openObject(OdDb::kForRead, true))->layer()));
    };
    const OdDbObjectId motor = block("B");
    const OdDbObjectId line = this->line(m_db.getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId live = place(motor, {{"A", "1"}, {"B", "2"}}, "P4")->objectId();
    const OdDbObjectId gone = place(motor, {{"C", "3"}}, "P4")->objectId();
    const OdDbObjectId erasedAttribute = attributeOf(openReference(live), 0)->objectId();
    const OdDbObjectId attribute = attributeOf(openReference(live), 1)->objectId();
    const OdDbObjectId ofErased = attributeOf(openReference(gone), 0)->objectId();
    put(line, pages[0]);
    put(erasedAttribute, pages[1]);
    put(ofErased, pages[2]);
    for (const OdDbObjectId id : {line, erasedAttribute, gone, pages[4]}) erase(id);
    const std::string before = dumpOf(m_db);
    Recorder recorder(m_db);
    undoBlockBegin(&m_db);
    m_cad.tudoParaLayerZero(current());
    undoBlockEnd(&m_db);
    EXPECT_THAT(recorder.taken(),
                ElementsAre("opened INSERT", "opened ATTRIB", "modified ATTRIB", "modified INSERT",
                            "erased LAYER P1", "erased LAYER P2", "erased LAYER P3", "erased LAYER P4"));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0"));
    EXPECT_EQ(layerOf(live) + layerOf(attribute), "00");
    EXPECT_EQ(layerOf(line) + layerOf(erasedAttribute) + layerOf(ofErased) + layerOf(gone), "P1P2P3P4");
    for (const OdDbObjectId id : {line, erasedAttribute, gone, pages[4]}) EXPECT_TRUE(id.isErased());
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(dumpOf(m_db), before);
}

TEST_F(ToLayerZero, ThawsInTheCurrentDrawingAndChangesTheOther) {
    const OdSmartPtr<CHostDatabase> other = make(new CHostDatabase);
    const OdDbObjectId page = layerIn(*other, "P1");
    makeCurrent(*other, page);
    freeze(other->getLayerZeroId());
    freeze(m_db.getLayerZeroId());
    layer("MINE");
    m_cad.tudoParaLayerZero(other);
    EXPECT_FALSE(isFrozen(m_db.getLayerZeroId()));
    EXPECT_TRUE(isFrozen(other->getLayerZeroId()));
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(other.get())), "0");
    EXPECT_THAT(told(m_cad.GetLayers(other.get())), ElementsAre("0"));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "MINE"));
}

TEST_F(ToLayerZero, MakesADrawingASymbol) {
    const OdSmartPtr<CHostDatabase> other = make(new CHostDatabase);
    const OdDbObjectId page = layerIn(*other, "P1");
    const OdDbObjectId made = line(other->getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    OdSmartPtr<OdDbEntity>(made.openObject(OdDb::kForWrite))->setLayer(page);
    {
        const lm::test::ConsoleCapture console;
        EXPECT_FALSE(m_cad.carregaBTR("B", file("before.dxf", *other)).isValid());
    }
    m_cad.tudoParaLayerZero(other);
    EXPECT_TRUE(m_cad.carregaBTR("B", file("after.dxf", *other)).isValid());
}

TEST_F(ToLayerZero, ReportsANullDrawing) {
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.tudoParaLayerZero(OdSmartPtr<CHostDatabase>()), OdError);
    ASSERT_EQ(linesOf(log).size(), 1u);
    EXPECT_THAT(linesOf(log)[0], testing::StartsWith("CICad::tudoParaLayerZero : "));
}

TEST_F(ToLayerZero, TellsOfWhatItChanges) {
    layer("P1");
    place(block("B"), {{"A", "1"}}, "P1");
    Recorder recorder(m_db);
    m_cad.tudoParaLayerZero(current());
    EXPECT_THAT(recorder.taken(), ElementsAre("opened INSERT", "opened ATTRIB", "modified ATTRIB",
                                              "modified INSERT", "erased LAYER P1"));
}

TEST_F(ToLayerZero, IsTakenBackByUndo) {
    makeCurrent(m_db, layer("P1"));
    place(block("B"), {{"A", "1"}}, "P1");
    const std::string before = dumpOf(m_db);
    undoBlockBegin(&m_db);
    m_cad.tudoParaLayerZero(current());
    undoBlockEnd(&m_db);
    EXPECT_NE(dumpOf(m_db), before);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(dumpOf(m_db), before);
}

} // namespace
