// SPDX-License-Identifier: MIT
// Going to an object: which page is shown for it, how it is brought into view, and that it is selected.
#include "navigation_drawing.h"

#include "drawing/abstractview.h"

#include <cmath>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class GoingTo : public NavigationDrawing {
protected:
    GoingTo() {
        for (const char* name : {"P1", "P1$DE", "P1$FORMATO", "P1$SELO", "P2", "P2$DE"}) layer(name);
        hostSession()->setCurrentSelection(nullptr);
    }
    ~GoingTo() override {
        lm::host::setSessionPresent(true);
        hostSession()->setCurrentSelection(nullptr);
        lm::drawing::setViewProtocol(true);
    }
    void go(OdDbObjectId id, bool regen = false, double factor = 1) { m_cad.IrPara(id, regen, factor); }
    static const std::vector<OdDbObjectId>& selected() { return hostSession()->currentSelection(); }
    OdDbObjectId on(const char* layer) { return frameAt(0, 0, layer); }

    Texts m_calls; ///< the current layer at each call of the module that keeps the list of pages
    std::function<void()> m_onCall;
    lm::host::FunctionRegistration m_registration{"setaPaginaCorrente", [this](CHostAPI&) {
                                                      m_calls.push_back(current());
                                                      if (m_onCall) m_onCall();
                                                  }};
};

TEST_F(GoingTo, ShowsItsPageCallsTheModuleAndSelectsIt) {
    const OdDbObjectId target = on("P1");
    go(target);
    EXPECT_THAT(shown(), ElementsAre("0", "P1", "P1$DE", "P1$FORMATO", "P1$SELO"));
    EXPECT_THAT(m_calls, ElementsAre("P1")) << "once, with the page shown";
    EXPECT_THAT(selected(), ElementsAre(target));
    EXPECT_EQ(redrawings(), 1u) << "that of showing the page";
    EXPECT_EQ(viewport(), "4.95,4.95 12.1x12.1");
}

TEST_F(GoingTo, NothingThatCanBeSeenDoesNothing) {
    const OdDbObjectId gone = on("P1");
    erase(gone);
    const std::string view = viewport();
    Recorder recorder(m_db);
    for (const OdDbObjectId id : {OdDbObjectId(), gone, layerId("P1"), m_db.getModelSpaceId()}) go(id, true);
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_THAT(m_calls, IsEmpty());
    EXPECT_THAT(selected(), IsEmpty());
    EXPECT_EQ(viewport(), view);
    EXPECT_EQ(redrawings(), 0u);
}

TEST_F(GoingTo, WhatStandsOnLayerZeroThawsItAndLeavesThePage) {
    m_cad.MostrarPagina("P1", false);
    m_cad.CongelaLayer("0");
    const OdDbObjectId target = on("0");
    go(target);
    EXPECT_FALSE(isFrozen("0"));
    EXPECT_EQ(current(), "P1");
    EXPECT_THAT(m_calls, ElementsAre("P1"));
    EXPECT_THAT(selected(), ElementsAre(target));
}

TEST_F(GoingTo, ACompanionOfThePageThatIsShownLeavesIt) {
    m_cad.MostrarPagina("P1", false);
    Recorder recorder(m_db);
    for (const char* name : {"P1$DE", "P1$FORMATO", "P1$SELO"}) {
        const OdDbObjectId target = on(name);
        recorder.taken();
        go(target);
        EXPECT_THAT(recorder.taken(), ElementsAre("opened VPORT *Active", "modified VPORT *Active")) << name;
        EXPECT_EQ(current(), "P1");
        EXPECT_THAT(selected(), ElementsAre(target));
    }
    EXPECT_EQ(redrawings(), 1u);
}

TEST_F(GoingTo, ACompanionOfAnotherPageShowsThatOne) {
    go(on("P2$DE"));
    EXPECT_EQ(current(), "P2");
    EXPECT_THAT(m_calls, ElementsAre("P2"));
}

TEST_F(GoingTo, ACompanionTakesTheFirstLayerInTableOrderThatBeginsAsItsHead) {
    for (const char* name : {"A10$DE", "A1", "A1$DE"}) layer(name);
    go(on("A1$DE"));
    EXPECT_EQ(current(), "A10$DE") << "a companion itself, of another page at that";
    m_cad.MostrarPagina("P1", false);
    go(on("A10$DE"));
    EXPECT_EQ(current(), "A10$DE");
}

TEST_F(GoingTo, ACurrentLayerThatOnlyBeginsAsTheHeadCountsAsThePage) {
    layer("P12");
    m_cad.MostrarPagina("P12", false);
    go(on("P1$SELO"));
    EXPECT_EQ(current(), "P12");
}

TEST_F(GoingTo, ACompanionWithoutAHeadIsAlwaysShown) {
    layer("$DE");
    m_cad.MostrarPagina("P1", false);
    go(on("$DE"));
    EXPECT_EQ(current(), "P1");
    EXPECT_TRUE(isFrozen("$DE"));
}

/// The test looks at the plain name, so what it takes for companions is part of how drawings are named.
TEST_F(GoingTo, TellsCompanionsByTheirNameAlone) {
    // "X" stands before each layer in the table and begins as its head, so a companion ends there.
    const struct {
        const char* layer;
        const char* begins;
        bool isCompanion;
    } kCases[] = {
        {"PEDRA", "P", false},
        {"1PEDESTAL", "1PEDESTAL", true},
        {"2FORMATOS", "2FORMATOS", true},
        {"3MODELO", "3M", true},
        {"4SELOS", "4SELOS", true},
        {"5$formato", "5", false},
        {"6$selo", "6", false},
        {"7$de", "7", false},
        {"8$D", "8", false},
        {"9$DEX", "9", true},
        {"10A$BSELO", "10A", true},
        {"11FORMAT", "11", false},
    };
    for (const auto& each : kCases) {
        const std::string name = each.layer, head = name.substr(0, name.find('$'));
        const std::string first = head + "_FIRST";
        layer(first.c_str());
        layer(each.layer);
        m_cad.MostrarPagina("P2", false);
        go(on(each.layer));
        EXPECT_EQ(current(), each.isCompanion ? first : name) << name;
    }
}

TEST_F(GoingTo, AnObjectOfAnotherDrawingShowsNoPageOfThis) {
    CHostDocument* const other = m_documents.manager.newDocument();
    m_documents.manager.setActiveDocument(m_document);
    CHostDatabase& db = *other->database();
    m_cad.CriarLayer("Q1$DE", &db);
    m_cad.CriarLayer("P1", &db);
    const OdSmartPtr<OdDbLine> line = make(new OdDbLine);
    line->setEndPoint({10, 20, 0});
    append(db.getModelSpaceId(), line);
    line->setLayer(od("Q1$DE"));
    line->downgradeOpen();
    const std::string view = viewport();
    go(line->objectId());
    EXPECT_EQ(current(), "0") << "no layer here begins so";
    EXPECT_EQ(viewport(), view);
    EXPECT_EQ(viewportOf(db), "4.95,9.9 12.1x24.2") << "the drawing that it belongs to";
    EXPECT_THAT(selected(), ElementsAre(line->objectId()));
    line->upgradeOpen();
    line->setLayer(od("P1"));
    go(line->objectId());
    EXPECT_EQ(current(), "P1") << "the page of this name here";
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&db)), "0");
}

/// Pages and the zoom are those of the drawing that work goes to; the view alone is the object's.
TEST_F(GoingTo, AnObjectOfAnotherDrawingOnLayerZeroThawsTheOneHere) {
    CHostDocument* const other = m_documents.manager.newDocument();
    CHostDatabase& db = *other->database();
    const OdSmartPtr<OdDbLine> line = make(new OdDbLine);
    line->setEndPoint({10, 20, 0});
    append(db.getModelSpaceId(), line);
    m_cad.CongelaLayer("0");
    m_documents.manager.setActiveDocument(m_document);
    m_cad.CongelaLayer("0");
    go(line->objectId());
    EXPECT_FALSE(isFrozen("0"));
    const OdSmartPtr<OdDbLayerTableRecord> there(db.getLayerZeroId().openObject());
    EXPECT_TRUE(there->isFrozen());
    EXPECT_EQ(viewportOf(db), "4.95,9.9 12.1x24.2");
}

TEST_F(GoingTo, AnObjectOfAnotherDrawingWithoutABoxZoomsHere) {
    frameAt(100, 100, "0");
    CHostDocument* const other = m_documents.manager.newDocument();
    CHostDatabase& db = *other->database();
    append(db.getModelSpaceId(), make(new OdDbLine));
    const OdDbObjectId target = append(db.getModelSpaceId(), make(new OdDbPoint));
    m_documents.manager.setActiveDocument(m_document);
    const std::string there = viewportOf(db);
    go(target, true);
    EXPECT_EQ(viewport(), "105,105 10x10");
    EXPECT_EQ(viewportOf(db), there);
    EXPECT_EQ(redrawings(), 1u);
    EXPECT_THAT(selected(), ElementsAre(target));
}

TEST_F(GoingTo, ADrawingWithoutAViewportIsPassedOver) {
    const OdDbObjectId target = on("P1");
    erase(m_db.GetActiveViewportId());
    go(target);
    EXPECT_THAT(selected(), ElementsAre(target));
}

// --- the view ---

TEST_F(GoingTo, WidensTheBoxInAWrittenOrder) {
    const OdDbObjectId target = lineFrom({100, 50, 0}, {110, 70, 0}, "P1");
    // x: 110 + 10 * 0.1 = 111, 100 - 11 * 0.1 = 98.9; y: 70 + 20 * 0.1 = 72, 50 - 22 * 0.1 = 47.8.
    go(target);
    EXPECT_EQ(viewport(), "104.95,59.9 12.1x24.2");
    go(target, false, 2);
    EXPECT_EQ(viewport(), "104.95,59.9 24.2x48.4");
    go(target, false, 0.5);
    EXPECT_EQ(viewport(), "104.95,59.9 6.05x12.1");
}

TEST_F(GoingTo, WidensInDoublePrecisionToTheLastBit) {
    double xMax = 3.3, xMin = 1.1, yMax = 9.7, yMin = 2.3;
    go(lineFrom({xMin, yMin, 0}, {xMax, yMax, 0}, "P1"), false, 1.7);
    xMax = xMax + (xMax - xMin) * 0.1;
    xMin = xMin - (xMax - xMin) * 0.1;
    yMax = yMax + (yMax - yMin) * 0.1;
    yMin = yMin - (yMax - yMin) * 0.1;
    const OdSmartPtr<OdDbViewportTableRecord> record(m_db.GetActiveViewportId().openObject());
    EXPECT_DOUBLE_EQ(record->centerPoint().x, (xMax + xMin) / 2);
    EXPECT_DOUBLE_EQ(record->centerPoint().y, (yMax + yMin) / 2);
    EXPECT_EQ(record->width(), (xMax - xMin) * 1.7);
    EXPECT_EQ(record->height(), (yMax - yMin) * 1.7);
}

TEST_F(GoingTo, SmallObjectsGetRoomByHeightAndByWidth) {
    const OdDbObjectId dot = entityOn<OdDbPolyline>("P1");
    OdSmartPtr<OdDbPolyline>(dot.openObject(OdDb::kForWrite))->addVertexAt(0, {5, 6});
    go(dot);
    EXPECT_EQ(viewport(), "5,6 1x1");
    go(dot, false, 3);
    EXPECT_EQ(viewport(), "5,6 3x3");
    go(lineFrom({0, 5, 0}, {10, 5, 0}, "P1"));
    EXPECT_EQ(viewport(), "4.95,5 12.1x1") << "low";
    go(lineFrom({5, 0, 0}, {5, 10, 0}, "P1"));
    EXPECT_EQ(viewport(), "5,4.95 1x12.1") << "narrow";
    // 0.9 wide is more than 1.0 with its border: 0.99 + 0.099 = 1.089.
    go(lineFrom({0, 0, 0}, {0.9, 0.8, 0}, "P1"));
    EXPECT_EQ(viewport(), "0.4455,0.396 1.089x1.968") << "the border counts before the room";
}

/// Less than 1.0 gets room, and 1.0 doesn't.
TEST_F(GoingTo, AnObjectOfExactlyOneGetsNoRoom) {
    const auto widened = [](double low, double high) {
        high += (high - low) * 0.1;
        low -= (high - low) * 0.1;
        return high - low;
    };
    double low = 0, high = 0;
    for (int base = 0; base < 1000 && widened(low, high) != 1.0; ++base) {
        low = base / 1000.0;
        high = low + 1 / 1.21;
        for (int step = 0; step < 8; ++step) high = std::nextafter(high, 0);
        for (int step = 0; step < 16 && widened(low, high) != 1.0; ++step) high = std::nextafter(high, 10);
    }
    ASSERT_EQ(widened(low, high), 1.0) << "bit for bit";
    go(lineFrom({0, low, 0}, {10, high, 0}, "P1"));
    const OdSmartPtr<OdDbViewportTableRecord> record(m_db.GetActiveViewportId().openObject());
    EXPECT_EQ(record->height(), 1.0);
    go(lineFrom({low, 0, 0}, {high, 10, 0}, "P1"));
    EXPECT_EQ(record->width(), 1.0);
}

/// A circle that was mirrored keeps its centre in coordinates of its own.
TEST_F(GoingTo, MirroredObjectsAreShownWhereTheyStand) {
    const OdDbObjectId target = entityOn<OdDbCircle>("P1");
    {
        const OdSmartPtr<OdDbCircle> circle(target.openObject(OdDb::kForWrite));
        circle->setNormal({0, 0, -1});
        circle->setCenter({10, 5, 0});
        circle->setRadius(5);
    }
    m_cad.MostrarPagina("P1", true);
    EXPECT_EQ(viewport(), "-10,5 10x10") << "as the zoom sees it";
    go(target);
    EXPECT_EQ(viewport(), "-10.05,4.95 12.1x12.1");
}

TEST_F(GoingTo, ReferencesAreMeasuredWithTheirAttributes) {
    const OdDbObjectId symbol = block("S");
    OdSmartPtr<OdDbLine> line = make(new OdDbLine);
    line->setEndPoint({10, 10, 0});
    append(symbol, line);
    const Reference reference = place(symbol, {{"TAG", "ABCDE"}}, "P1");
    OdSmartPtr<OdDbAttribute>(attributeOf(reference, 0)->objectId().openObject(OdDb::kForWrite))
        ->setHeight(10);
    reference->downgradeOpen();
    go(reference->objectId());
    // 30 wide by the attribute: 33 + 3.3 = 36.3.
    EXPECT_EQ(viewport(), "14.85,4.95 36.3x12.1");
}

TEST_F(GoingTo, WhatHasNoBoxShowsEverything) {
    const OdDbObjectId target = entityOn("P1");
    frameAt(100, 100, "P1");
    frameAt(-500, 0, "P2");
    OdSmartPtr<OdDbPoint>(target.openObject(OdDb::kForWrite))->setPosition({100, 100, 0});
    go(target, false, 5);
    EXPECT_EQ(viewport(), "105,105 10x10") << "the factor isn't looked at";
    EXPECT_EQ(redrawings(), 1u);
    EXPECT_THAT(selected(), ElementsAre(target));
    go(target, true);
    EXPECT_EQ(redrawings(), 3u) << "one for the page and one that was asked for";
}

TEST_F(GoingTo, TheFlagForRedrawingActsOnlyWithoutABox) {
    const OdDbObjectId target = on("P1");
    go(target, true);
    EXPECT_EQ(redrawings(), 1u);
}

TEST_F(GoingTo, CanBeTakenBack) {
    const OdDbObjectId target = on("P1");
    m_cad.MostrarPagina("P2", false);
    const std::string view = viewport();
    m_db.startUndoRecord();
    go(target);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(current(), "P2");
    EXPECT_EQ(viewport(), view);
}

// --- the called module and the selection ---

TEST_F(GoingTo, WorksWithoutTheModule) {
    m_registration.reset();
    const OdDbObjectId target = on("P1");
    go(target);
    EXPECT_THAT(selected(), ElementsAre(target));
}

TEST_F(GoingTo, MeasuresAfterTheModuleWasCalled) {
    const OdDbObjectId target = on("P1");
    m_onCall = [&] { OdSmartPtr<OdDbLine>(target.openObject(OdDb::kForWrite))->setEndPoint({20, 10, 0}); };
    go(target);
    EXPECT_EQ(viewport(), "9.9,4.95 24.2x12.1");
}

TEST_F(GoingTo, TheModuleMayEraseTheObject) {
    const OdDbObjectId target = on("P1");
    m_onCall = [&] { erase(target); };
    go(target);
    EXPECT_EQ(viewport(), "4.95,4.95 12.1x12.1") << "it is shown where it was";
    EXPECT_THAT(selected(), ElementsAre(target));
}

TEST_F(GoingTo, TheModuleMayOpenADocument) {
    const OdDbObjectId target = on("P1");
    CHostDocument* opened = nullptr;
    m_onCall = [&] { opened = m_documents.manager.newDocument(); };
    go(target);
    ASSERT_EQ(ACTIVE_DOCUMENT(), opened);
    EXPECT_EQ(viewport(), "4.95,4.95 12.1x12.1") << "in the drawing of the object";
    EXPECT_NE(viewportOf(*opened->database()), viewport());
    EXPECT_THAT(selected(), ElementsAre(target));
}

TEST_F(GoingTo, ReplacesTheCurrentSelection) {
    const OdDbObjectId first = on("P1"), second = on("P2");
    go(first);
    go(second);
    EXPECT_THAT(selected(), ElementsAre(second));
}

TEST_F(GoingTo, NeedsNoSession) {
    const OdDbObjectId target = on("P1");
    lm::host::setSessionPresent(false);
    go(target);
    lm::host::setSessionPresent(true);
    EXPECT_EQ(current(), "P1");
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(GoingTo, NeedsNoDocument) {
    CHostDatabase side;
    m_cad.CriarLayer("S1", &side);
    const OdSmartPtr<OdDbLine> line = make(new OdDbLine);
    line->setEndPoint({10, 20, 0});
    append(side.getModelSpaceId(), line);
    line->setLayer(od("S1"));
    setDatabase(&side);
    go(line->objectId());
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&side)), "S1");
    EXPECT_EQ(viewportOf(side), "4.95,9.9 12.1x24.2");
    EXPECT_THAT(selected(), ElementsAre(line->objectId())) << "by the name of the active document";
    hostSession()->setCurrentSelection(nullptr);
    m_registration.reset();
    m_documents.manager.closeAll();
    go(line->objectId());
    EXPECT_THAT(selected(), IsEmpty());
    setDatabase(nullptr);
}

// --- failures ---

TEST_F(GoingTo, AViewportWithoutViewsIsAFailure) {
    const OdDbObjectId target = on("P1");
    lm::drawing::setViewProtocol(false);
    const lm::test::LogCapture log;
    EXPECT_THROW(go(target), OdError_NotThatKindOfClass);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].find("} CICad::IrPara : "), std::string::npos);
    EXPECT_EQ(current(), "P1");
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(GoingTo, NeedsTheClassOfViews) {
    const OdDbObjectId target = on("P1");
    OdDbViewTableRecord::desc()->setLoaded(false);
    try {
        go(target);
        ADD_FAILURE();
    } catch (const OdError& error) {
        EXPECT_EQ(plain(CHostString(error.description())), "OdDbOdDbViewTableRecordis not loaded");
    }
    OdDbViewTableRecord::desc()->setLoaded(true);
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(GoingTo, FailuresAreReported) {
    const OdSmartPtr<RaisingPoint> target = raisingPoint();
    expectReports(
        {{"class", [&] { go(target->objectId()); }, {"CICad::IrPara"}}},
        [&](Kind kind) {
            target->kind = kind;
            target->isArmed = true;
        },
        [&] { target->isArmed = false; });
    Kind raised = Kind::kOther;
    m_onCall = [&] { fail(raised); };
    const OdDbObjectId other = on("P1");
    expectReports(
        {{"called module", [&] { go(other); }, {"rzInvoke2", "rzInvokeVoid", "CICad::IrPara"}}},
        [&](Kind kind) { raised = kind; }, [] {});
    EXPECT_THAT(selected(), IsEmpty());
}

} // namespace
