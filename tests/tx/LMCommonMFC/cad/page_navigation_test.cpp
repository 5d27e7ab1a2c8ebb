// SPDX-License-Identifier: MIT
// Showing pages, one by one and in a series, erasing them, and what the host is asked for: zoom, redrawing,
// LISP. Going to an object has tests of its own.
#include "navigation_drawing.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class Showing : public NavigationDrawing {
protected:
    Showing() {
        for (const char* name :
             {"P1", "P1$DE", "P1$FORMATO", "P1$SELO", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"})
            layer(name);
    }
    /// Renames a page as soon as it is thawed, so that it can't become the current layer under its name.
    void renameWhenThawed(Recorder& recorder, const char* name) {
        m_cad.CongelaLayer(name);
        recorder.taken();
        recorder.armed = [this, &recorder, name] {
            if (isFrozen(name)) return;
            CICad& cad = m_cad;
            const char* const page = name;
            recorder.armed = nullptr; // what was captured goes with it
            cad.RenomearLayer(page, "RENAMED");
        };
    }
};

TEST_F(Showing, ThawsAPageWithItsCompanionsAndFreezesTheRest) {
    EXPECT_EQ(m_cad.MostrarPagina("P1", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P1", "P1$DE", "P1$FORMATO", "P1$SELO"));
    EXPECT_EQ(current(), "P1");
    EXPECT_TRUE(isFrozen("RZ_FREEZE"));
    EXPECT_EQ(m_cad.MostrarPagina("P2", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"));
    EXPECT_EQ(current(), "P2");
}

TEST_F(Showing, NeedsNoCompanions) {
    layer("P3");
    EXPECT_EQ(m_cad.MostrarPagina("P3", true), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P3"));
}

TEST_F(Showing, RefusesLayerZeroAndMissingPages) {
    erase(layer("GONE"));
    frameAt(0, 0, "P1");
    const std::string view = viewport();
    const Texts before = shown();
    Recorder recorder(m_db);
    for (const char* name : {"0", "P9", "p1", "", "P1$", "GONE", "P*"}) {
        EXPECT_EQ(m_cad.MostrarPagina(name, true), 1) << name;
        EXPECT_THAT(recorder.taken(), IsEmpty()) << name;
    }
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(current(), "0");
    EXPECT_EQ(viewport(), view);
    EXPECT_EQ(redrawings(), 0u);
}

TEST_F(Showing, LeavesTheStampOutForCoversAndIndexes) {
    m_cad.setPaginaCapa("P1");
    m_cad.setPaginaIndice("P2");
    for (const std::string page : {"P1", "P2"}) {
        EXPECT_EQ(m_cad.MostrarPagina(rz(page), false), 0);
        EXPECT_THAT(shown(), ElementsAre("0", page, page + "$DE", page + "$FORMATO"));
        m_cad.DescongelaLayer(rz(page + "$SELO"), &m_db);
        EXPECT_EQ(m_cad.MostrarPaginaPDF(rz(page), false), 0);
        EXPECT_THAT(shown(), ElementsAre("0", page, page + "$DE", page + "$FORMATO"));
    }
    m_cad.setPaginaCapa("P2");
    EXPECT_EQ(m_cad.MostrarPagina("P2", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P2", "P2$DE", "P2$FORMATO")) << "one that is both";
}

TEST_F(Showing, TakesTheHeadUpToTheFirstMark) {
    for (const char* name : {"A$B", "A$B$C", "A$DE", "A$B$DE", "A$FORMATO", "A$SELO", "$X", "$DE", "$SELO"})
        layer(name);
    EXPECT_EQ(m_cad.MostrarPagina("A$B", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "A$B", "A$DE", "A$FORMATO", "A$SELO"));
    EXPECT_EQ(m_cad.MostrarPagina("A$B$C", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "A$B$C", "A$DE", "A$FORMATO", "A$SELO"));
    EXPECT_EQ(m_cad.MostrarPagina("$X", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "$X", "$DE", "$SELO")) << "an empty head";
}

TEST_F(Showing, ShowsCompanionsLikePages) {
    EXPECT_EQ(m_cad.MostrarPagina("P1$SELO", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P1$DE", "P1$FORMATO", "P1$SELO"));
}

TEST_F(Showing, ThawsAPageThatIsFrozenAndLeavesItLocked) {
    m_cad.CongelaLayer("P1");
    OdSmartPtr<OdDbLayerTableRecord>(layerId("P1").openObject(OdDb::kForWrite))->setIsLocked(true);
    EXPECT_EQ(m_cad.MostrarPagina("P1", false), 0);
    EXPECT_EQ(current(), "P1");
    EXPECT_TRUE(OdSmartPtr<OdDbLayerTableRecord>(layerId("P1").openObject())->isLocked());
}

TEST_F(Showing, ThawsLayerZero) {
    m_cad.CongelaLayer("0");
    EXPECT_EQ(m_cad.MostrarPagina("P1", false), 0);
    EXPECT_FALSE(isFrozen("0"));
}

TEST_F(Showing, RedrawsOnceAndLast) {
    frameAt(0, 0, "P1");
    const std::string view = viewport();
    EXPECT_EQ(m_cad.MostrarPagina("P1", false), 0);
    EXPECT_EQ(redrawings(), 1u) << "without a zoom too";
    EXPECT_EQ(viewport(), view);
    unsigned long before = 99;
    Recorder recorder(m_db);
    recorder.armed = [&] { before = redrawings(); };
    EXPECT_EQ(m_cad.MostrarPagina("P1", true), 0);
    EXPECT_EQ(before, 1u) << "the viewport changed before the second one";
    EXPECT_EQ(redrawings(), 2u);
    EXPECT_EQ(viewport(), "5,5 10x10");
}

TEST_F(Showing, ZoomsToWhatIsShown) {
    frameAt(0, 0, "P1");
    frameAt(100, 100, "P2");
    EXPECT_EQ(m_cad.MostrarPagina("P1", true), 0);
    EXPECT_EQ(viewport(), "5,5 10x10");
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", true), 0);
    EXPECT_EQ(viewport(), "105,105 10x10");
}

TEST_F(Showing, TellsOfAPageThatDoesntBecomeCurrent) {
    frameAt(0, 0, "P1");
    const std::string view = viewport();
    m_cad.MostrarPagina("P2", false);
    Recorder recorder(m_db);
    renameWhenThawed(recorder, "P1");
    EXPECT_EQ(m_cad.MostrarPagina("P1", true), 2);
    EXPECT_EQ(current(), "0");
    EXPECT_THAT(shown(), ElementsAre("0", "RENAMED", "P1$DE", "P1$FORMATO", "P1$SELO"));
    EXPECT_EQ(redrawings(), 1u) << "that of the page before";
    EXPECT_EQ(viewport(), view);
}

TEST_F(Showing, TellsReactorsOfTheLayersThatChange) {
    m_cad.MostrarPagina("P1", false);
    m_db.startUndoRecord();
    Recorder recorder(m_db);
    EXPECT_EQ(m_cad.MostrarPagina("P2", false), 0);
    Texts wanted;
    for (const char* name : {"P1", "P1$DE", "P1$FORMATO", "P1$SELO", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"})
        for (const char* event : {"opened LAYER ", "modified LAYER "})
            wanted.push_back(event + std::string(name));
    EXPECT_EQ(recorder.taken(), wanted) << "first all that freezes, then what thaws";
    ASSERT_TRUE(m_db.undo());
    EXPECT_THAT(shown(), ElementsAre("0", "P1", "P1$DE", "P1$FORMATO", "P1$SELO"));
    EXPECT_EQ(current(), "P1");
    ASSERT_TRUE(m_db.redo());
    EXPECT_THAT(shown(), ElementsAre("0", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"));
    EXPECT_EQ(current(), "P2");
}

/// The current layer can't be frozen together with the others, so it is "0" before the first of them.
TEST_F(Showing, MakesLayerZeroCurrentBeforeItFreezes) {
    m_cad.MostrarPagina("P1", false);
    Texts seen;
    Recorder recorder(m_db);
    recorder.armed = [&] { seen.push_back(current()); };
    m_cad.MostrarPagina("P2", false);
    m_cad.MostrarPaginaPDF("P1", false);
    EXPECT_THAT(seen, Not(IsEmpty()));
    EXPECT_THAT(seen, testing::Each("0"));
}

TEST_F(Showing, WorksOnTheDatabaseThatWorkGoesTo) {
    CHostDatabase side;
    m_cad.CriarLayer("S1", &side);
    setDatabase(&side);
    EXPECT_EQ(m_cad.MostrarPagina("S1", false), 0);
    EXPECT_EQ(m_cad.MostrarPagina("P1", false), 1);
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&side)), "S1");
    setDatabase(nullptr);
    EXPECT_EQ(current(), "0");
    EXPECT_EQ(redrawings(), 1u) << "of the active document all the same";
}

TEST_F(Showing, ShowsInASeriesAndErasesInTheDatabaseThatWorkGoesTo) {
    CHostDatabase side;
    for (const char* name : {"S1", "S2", "P1"}) m_cad.CriarLayer(name, &side);
    m_cad.MostrarPagina("P2", false);
    const OdDbObjectId here = frameAt(0, 0, "P1");
    const Texts before = shown();
    setDatabase(&side);
    EXPECT_EQ(m_cad.MostrarPaginaPDF("S1", false), 0);
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&side)), "S1");
    EXPECT_EQ(m_cad.MostrarPaginaPDF("S2", false), 0);
    const OdSmartPtr<OdDbSymbolTable> layers(side.getLayerTableId().openObject());
    const OdSmartPtr<OdDbLayerTableRecord> first(layers->getAt(od("S1")).openObject());
    EXPECT_TRUE(first->isFrozen()) << "it was shown there";
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", false), 1);
    m_cad.ApagarPagina("P1");
    EXPECT_FALSE(m_cad.ExisteLayer("P1", &side));
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&side)), "0");
    setDatabase(nullptr);
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(current(), "P2");
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db));
    EXPECT_FALSE(here.isErased());
}

/// Pages are shown layer by layer, and each layer has events, in which the drawing can't be closed: the next
/// layer is due.
TEST_F(Showing, StaysOpenWhoeverWantsItClosedInAnEvent) {
    const OdDbObjectId there = frameAt(0, 0, "P2");
    for (const bool isAlone : {true, false}) {
        if (!isAlone) m_documents.manager.newDocument();
        m_documents.manager.setActiveDocument(m_document);
        Recorder recorder(m_db);
        std::size_t refusals = 0;
        recorder.armed = [&] { refusals += m_documents.manager.closeDocument(m_document) ? 0 : 1; };
        EXPECT_EQ(m_cad.MostrarPagina("P1", true), 0);
        EXPECT_THAT(shown(), ElementsAre("0", "P1", "P1$DE", "P1$FORMATO", "P1$SELO"));
        EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", true), 0);
        EXPECT_THAT(shown(), ElementsAre("0", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"));
        m_cad.IrPara(there, true, 1);
        if (!isAlone) m_cad.ApagarPagina("P2");
        const Texts told = recorder.taken();
        EXPECT_EQ(refusals, told.size());
        EXPECT_GT(told.size(), 30u);
    }
    EXPECT_TRUE(there.isErased());
    EXPECT_FALSE(m_cad.ExisteLayer("P2", &m_db));
    EXPECT_EQ(current(), "0");
    EXPECT_TRUE(m_documents.manager.closeDocument(m_document));
}

TEST_F(Showing, NeedsADatabase) {
    CHostDatabase bare(OdDbDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_EQ(m_cad.MostrarPagina("P1", true), 1);
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P1", true), 1);
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_EQ(m_cad.MostrarPagina("P1", true), 1);
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P1", true), 1);
    m_cad.ApagarPagina("P1");
}

// --- a series of pages ---

class Series : public Showing {
protected:
    Series() { m_cad.MostrarPagina("P1", false); }
};

TEST_F(Series, FreezesOnlyWhatWasShown) {
    layer("OTHER");
    const unsigned long before = redrawings();
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", true), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P2", "P2$DE", "P2$FORMATO", "P2$SELO", "OTHER"));
    EXPECT_EQ(current(), "P2");
    EXPECT_EQ(redrawings(), before) << "nothing is redrawn";
}

TEST_F(Series, GoesByTheHeadOfTheCurrentPage) {
    for (const char* name : {"A$B", "A$DE", "A$FORMATO", "A$SELO"}) layer(name);
    m_cad.MostrarPagina("A$B", false);
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"));
}

TEST_F(Series, LeavesThePageThatIsShown) {
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P1", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0", "P1", "P1$DE", "P1$FORMATO", "P1$SELO"));
    EXPECT_EQ(current(), "P1");
}

TEST_F(Series, RefusesMissingPagesAndChangesNothing) {
    Recorder recorder(m_db);
    for (const char* name : {"P9", "p2", ""}) EXPECT_EQ(m_cad.MostrarPaginaPDF(name, true), 1) << name;
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_EQ(current(), "P1");
}

/// Whatever is current is frozen by its name: callers begin a series on a page.
TEST_F(Series, FreezesLayerZeroWhereItIsCurrent) {
    m_cad.SetLayerCorrente("0", &m_db);
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", false), 0);
    EXPECT_TRUE(isFrozen("0"));
    EXPECT_FALSE(isFrozen("P1")) << "it wasn't current";
}

TEST_F(Series, ShowsLayerZeroLikeAnyOther) {
    EXPECT_EQ(m_cad.MostrarPaginaPDF("0", false), 0);
    EXPECT_THAT(shown(), ElementsAre("0"));
    EXPECT_EQ(current(), "0");
}

TEST_F(Series, TellsOfAPageThatDoesntBecomeCurrent) {
    frameAt(0, 0, "P2");
    const std::string view = viewport();
    Recorder recorder(m_db);
    renameWhenThawed(recorder, "P2");
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", true), 2);
    EXPECT_EQ(current(), "0");
    EXPECT_EQ(viewport(), view);
}

TEST_F(Series, TellsReactorsAlsoOfLayersThatWereFrozen) {
    m_cad.CongelaLayer("P1$DE");
    m_db.startUndoRecord();
    Recorder recorder(m_db);
    EXPECT_EQ(m_cad.MostrarPaginaPDF("P2", false), 0);
    Texts wanted;
    for (const char* name : {"P1", "P1$DE", "P1$FORMATO", "P1$SELO", "P2", "P2$DE", "P2$FORMATO", "P2$SELO"})
        for (const char* event : {"opened LAYER ", "modified LAYER "})
            wanted.push_back(event + std::string(name));
    EXPECT_EQ(recorder.taken(), wanted);
    ASSERT_TRUE(m_db.undo());
    EXPECT_THAT(shown(), ElementsAre("0", "P1", "P1$FORMATO", "P1$SELO"));
    EXPECT_EQ(current(), "P1");
}

// --- erasing a page ---

TEST_F(Showing, ErasesAPageAndLeavesItsCompanions) {
    const OdDbObjectId here = frameAt(0, 0, "P1"), there = frameAt(0, 0, "P2"),
                       drawing = frameAt(0, 0, "P1$DE");
    m_cad.MostrarPagina("P1", false);
    m_db.startUndoRecord();
    m_cad.ApagarPagina("P1");
    EXPECT_TRUE(here.isErased());
    EXPECT_FALSE(there.isErased());
    EXPECT_FALSE(drawing.isErased());
    EXPECT_EQ(current(), "0");
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "RZ_FREEZE", "P1$DE", "P1$FORMATO", "P1$SELO",
                                                          "P2", "P2$DE", "P2$FORMATO", "P2$SELO"));
    ASSERT_TRUE(m_db.undo());
    EXPECT_FALSE(here.isErased());
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db));
    EXPECT_EQ(current(), "P1");
}

TEST_F(Showing, KeepsAPageThatTheDrawingWontGiveUp) {
    const OdDbObjectId here = frameAt(0, 0, "P1");
    entityOn<OdDbLine>("P1", block("SYMBOL"));
    m_cad.ApagarPagina("P1");
    EXPECT_TRUE(here.isErased());
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db)) << "an entity in a block stands on it";
    const OdDbObjectId zero = frameAt(0, 0, "0");
    m_cad.ApagarPagina("0");
    EXPECT_TRUE(zero.isErased());
    EXPECT_TRUE(m_cad.ExisteLayer("0", &m_db));
}

TEST_F(Showing, ErasingAMissingPageMakesLayerZeroCurrent) {
    m_cad.MostrarPagina("P1", false);
    m_cad.ApagarPagina("P9");
    EXPECT_EQ(current(), "0");
}

// --- zoom, redrawing and LISP ---

TEST_F(Showing, ZoomNeedsAViewport) {
    frameAt(0, 0, "0");
    EXPECT_EQ(m_cad.ZoomExtends(), 0);
    EXPECT_EQ(viewport(), "5,5 10x10");
    CHostDatabase bare(OdDbDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_EQ(m_cad.ZoomExtends(), 2);
    setDatabase(nullptr);
    erase(m_db.GetActiveViewportId());
    EXPECT_EQ(m_cad.ZoomExtends(), 2);
    m_documents.manager.closeAll();
    EXPECT_EQ(m_cad.ZoomExtends(), 2);
}

TEST_F(Showing, ZoomActsOnTheDatabaseThatWorkGoesToAndCanBeTakenBack) {
    frameAt(0, 0, "0");
    const std::string before = viewport();
    m_db.startUndoRecord();
    EXPECT_EQ(m_cad.ZoomExtends(), 0);
    EXPECT_EQ(viewport(), "5,5 10x10");
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(viewport(), before);
    CHostDatabase side;
    setDatabase(&side);
    EXPECT_EQ(m_cad.ZoomExtends(), 0);
    setDatabase(nullptr);
    EXPECT_EQ(viewport(), before);
}

TEST_F(Showing, ZoomOfAnEmptyDrawingLeavesTheView) {
    const std::string before = viewport();
    EXPECT_EQ(m_cad.ZoomExtends(), 0);
    EXPECT_EQ(viewport(), before);
}

TEST_F(Showing, RedrawingNeedsADocumentAndNoDrawing) {
    EXPECT_EQ(m_cad.Regen(), 0);
    EXPECT_EQ(redrawings(), 1u);
    CHostDocument* const empty = m_documents.manager.newDocumentWithoutDatabase();
    EXPECT_EQ(m_cad.Regen(), 0);
    EXPECT_EQ(empty->view()->regenerations(), 1u);
    EXPECT_EQ(redrawings(), 1u) << "the active one alone";
    m_documents.manager.closeAll();
    EXPECT_EQ(m_cad.Regen(), 2);
}

TEST_F(Showing, LispIsEvaluatedInTheActiveDocument) {
    const lm::test::ConsoleCapture console;
    EXPECT_TRUE(m_cad.ExecutaFuncaoCad(rz("(setq N 5) (setq S \"página Ω\")")));
    EXPECT_EQ(m_cad.GetVarInt("N", 0, m_document), 5);
    EXPECT_EQ(plain(m_cad.GetVarStr("S", "", m_document)), "página Ω");
    EXPECT_TRUE(m_cad.ExecutaFuncaoCad(""));
    EXPECT_EQ(console.text(), "") << "as one expression that prints nothing";
    CHostDocument* const second = m_documents.manager.newDocument();
    EXPECT_EQ(m_cad.GetVarInt("N", 0, second), 0);
    EXPECT_TRUE(m_cad.ExecutaFuncaoCad("(setq N 6)"));
    EXPECT_EQ(m_cad.GetVarInt("N", 0, second), 6);
    EXPECT_EQ(m_cad.GetVarInt("N", 0, m_document), 5) << "each document has variables of its own";
}

TEST_F(Showing, LispThatIsWrongIsNoFailure) {
    const lm::test::LogCapture log;
    const lm::test::ConsoleCapture console;
    for (const char* text : {"(setq N 5", "(setq N 6))", "(NOBODY)", "\"open", ")", "; comment", "(/ 1 0)"})
        EXPECT_TRUE(m_cad.ExecutaFuncaoCad(text)) << text;
    EXPECT_THAT(log.lines(), IsEmpty());
    m_documents.manager.closeAll();
    EXPECT_TRUE(m_cad.ExecutaFuncaoCad("(setq N 5)")) << "without a document";
}

// --- the stamp ---

class Stamps : public NavigationDrawing {
protected:
    Stamps() { layer("P1"); }
    Reference stamp(const char* block, const std::vector<Attribute>& attributes, const char* page = "P1") {
        RZID known;
        m_cad.ExisteBloco(rz(block), known, OdSmartPtr<OdDbDatabase>(&m_db));
        return place(known.isNull() ? this->block(block) : static_cast<OdDbObjectId>(known), attributes,
                     page);
    }
    std::string description(const char* page = "P1") {
        return plain(m_cad.BuscarDescricaoPagina("DESCR", "SELO_A3", page));
    }
};

TEST_F(Stamps, ArePreferredInTheirPlainForm) {
    EXPECT_EQ(description(), "");
    stamp("SELO_A3_I", {{"DESCR", "of an index"}});
    EXPECT_EQ(description(), "of an index");
    stamp("SELO_A3_C", {{"DESCR", "of a cover"}});
    EXPECT_EQ(description(), "of a cover");
    stamp("SELO_A3", {{"DESCR", "of a page"}});
    EXPECT_EQ(description(), "of a page");
}

TEST_F(Stamps, DecideAlsoWithoutTheAttribute) {
    stamp("SELO_A3_C", {{"DESCR", "of a cover"}});
    const Reference plain = stamp("SELO_A3", {{"TITLE", "something else"}});
    EXPECT_EQ(description(), "");
    plain->appendAttribute(attribute({"descr", "\tMotor 1 "}));
    EXPECT_EQ(description(), "Motor 1") << "tags go without regard to case, values are trimmed";
}

TEST_F(Stamps, AreThoseOfTheExactPage) {
    layer("P11");
    stamp("SELO_A3", {{"DESCR", "elsewhere"}}, "P11");
    stamp("SELO_A3_C", {{"DESCR", "on layer zero"}}, "0");
    EXPECT_EQ(description(), "");
    EXPECT_EQ(description("P11"), "elsewhere");
}

TEST_F(Stamps, TellTheirTextInTheNarrowCodePage) {
    stamp("SELO_A3", {{"DESCR", "Ação 5 Ω"}});
    EXPECT_EQ(description(), "Ação 5 ?");
}

// --- failures ---

class NavigationFailures : public NavigationDrawing {
protected:
    NavigationFailures() {
        layer("P1");
        layer("P2");
        m_cad.MostrarPagina("P1", false);
    }
    void report(const std::vector<Call>& calls) {
        Recorder recorder(m_db);
        expectReports(
            calls, [&](Kind kind) { recorder.armed = [kind] { fail(kind); }; },
            [&] { recorder.armed = nullptr; });
    }
};

TEST_F(NavigationFailures, OfFreezingAndZoomingAreReported) {
    frameAt(0, 0, "0");
    report({{"show", [&] { m_cad.MostrarPagina("P2", false); }, {"CICad::MostrarPagina"}},
            {"zoom", [&] { m_cad.ZoomExtends(); }, {"CICad::ZoomExtends"}},
            {"series", [&] { m_cad.MostrarPaginaPDF("P2", false); }, {}}});
}

TEST_F(NavigationFailures, OfAnInnerMemberAreReportedByBoth) {
    m_cad.CongelaLayer("0");
    report({{"show",
             [&] { m_cad.MostrarPagina("P2", false); },
             {"CICad::SetLayerCorrente", "CICad::MostrarPagina"}},
            {"series", [&] { m_cad.MostrarPaginaPDF("P2", false); }, {"CICad::SetLayerCorrente"}}});
}

TEST_F(NavigationFailures, OfErasingAPageAreThoseOfItsEntities) {
    Recorder recorder(m_db);
    expectReports(
        {{"erase", [&] { m_cad.ApagarPagina("P1"); }, {"CICad::ApagarEntidadesLayer"}}},
        [&](Kind kind) {
            frameAt(0, 0, "P1");
            recorder.armed = [kind] { fail(kind); };
        },
        [&] { recorder.armed = nullptr; });
    EXPECT_EQ(current(), "P1");
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db));
}

TEST_F(NavigationFailures, OfFunctionsCalledFromLispAreReported) {
    Kind kind = Kind::kOther;
    const lm::host::FunctionRegistration registration("rzRaise", [&](CHostAPI&) { fail(kind); });
    expectReports(
        {{"lisp", [&] { m_cad.ExecutaFuncaoCad("(rzRaise)"); }, {"CICad::ExecutaFuncaoCad"}}},
        [&](Kind wanted) { kind = wanted; }, [] {});
}

/// A reference that raises when it is asked for its class.
class RaisingReference : public OdDbBlockReference {
public:
    OdRxClass* isA() const override {
        if (isArmed) fail(kind);
        return OdDbBlockReference::isA();
    }
    bool isArmed = false;
    Kind kind = Kind::kOdError;
};

TEST_F(NavigationFailures, OfTheStampAreReported) {
    const OdSmartPtr<RaisingReference> stamp = make(new RaisingReference);
    stamp->setBlockTableRecord(block("SELO"));
    append(m_db.getModelSpaceId(), stamp);
    stamp->setLayer(od("P1"));
    expectReports(
        {{"stamp",
          [&] { m_cad.BuscarDescricaoPagina("T", "SELO", "P1"); },
          {"CICad::BuscarDescricaoPagina"}}},
        [&](Kind kind) {
            stamp->kind = kind;
            stamp->isArmed = true;
        },
        [&] { stamp->isArmed = false; });
}

} // namespace
