// SPDX-License-Identifier: MIT
// Views and viewports.
#include "clone_support.h"

#include "drawing/abstractview.h"

using namespace drawing_test;

namespace {

struct ViewTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    OdSmartPtr<OdDbViewportTableRecord> viewport = OdSmartPtr<OdDbViewportTableRecord>(
        open<OdDbSymbolTable>(db->getViewportTableId())->newIterator()->getRecord(OdDb::kForWrite));

    ViewTest() {
        viewport->setCenterPoint({1, 2});
        viewport->setHeight(100);
        viewport->setWidth(200);
    }
    ~ViewTest() override { lm::drawing::setViewProtocol(true); }

    OdSmartPtr<OdDbLine> line(const OdGePoint3d& from, const OdGePoint3d& to) {
        const auto made = make<OdDbLine>();
        made->setStartPoint(from);
        made->setEndPoint(to);
        append(*db, made);
        return made;
    }
    void expectView(double x, double y, double height, double width) {
        EXPECT_NEAR(viewport->centerPoint().x, x, 1e-9);
        EXPECT_NEAR(viewport->centerPoint().y, y, 1e-9);
        EXPECT_NEAR(viewport->height(), height, 1e-9);
        EXPECT_NEAR(viewport->width(), width, 1e-9);
    }
};

} // namespace

TEST_F(ViewTest, FitsTheDrawingIntoTheShapeOfTheWindow) {
    line({10, 10, 0}, {20, 60, 0});
    viewport->zoomExtents();
    expectView(15, 35, 50, 100);
    line({10, 10, 0}, {310, 10, 0});
    viewport->zoomExtents();
    expectView(160, 35, 150, 300);
}

TEST_F(ViewTest, ShowsReferencesWithWhatTheirBlocksHold) {
    const OdDbObjectId block = addBlock(*db, "B");
    const auto circle = make<OdDbCircle>();
    circle->setRadius(10);
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(circle);
    placeSymbol(*db, block, {});
    viewport->zoomExtents();
    expectView(0, 0, 20, 40);
}

TEST_F(ViewTest, LooksAtLiveEntitiesOfModelSpaceOnLayersThatAreShown) {
    line({0, 0, 0}, {10, 10, 0});
    const OdDbObjectId frozen = addLayer(*db, "FROZEN"), off = addLayer(*db, "OFF"),
                       locked = addLayer(*db, "LOCKED");
    open<OdDbLayerTableRecord>(frozen, OdDb::kForWrite)->setIsFrozen(true);
    open<OdDbLayerTableRecord>(off, OdDb::kForWrite)->setIsOff(true);
    open<OdDbLayerTableRecord>(locked, OdDb::kForWrite)->setIsLocked(true);
    line({0, 0, 0}, {1000, 1000, 0})->setLayer(frozen);
    line({0, 0, 0}, {1000, 1000, 0})->setLayer(off);
    line({0, 0, 0}, {2000, 2000, 0})->erase();
    const auto inPaper = make<OdDbLine>();
    inPaper->setEndPoint({3000, 3000, 0});
    open<OdDbBlockTableRecord>(db->getPaperSpaceId(), OdDb::kForWrite)->appendOdDbEntity(inPaper);
    viewport->zoomExtents();
    expectView(5, 5, 10, 20);
    line({0, 0, 0}, {10, 40, 0})->setLayer(locked);
    viewport->zoomExtents();
    expectView(5, 20, 40, 80);
}

TEST_F(ViewTest, StaysWithoutAnythingToShow) {
    viewport->zoomExtents();
    expectView(1, 2, 100, 200);
    const auto point = make<OdDbPoint>();
    point->setPosition({7, 8, 0});
    append(*db, point);
    viewport->zoomExtents();
    expectView(7, 8, 100, 200); // a point has no size to fit
}

TEST_F(ViewTest, FitsAViewWithoutASize) {
    viewport->setHeight(0);
    viewport->setWidth(0);
    line({0, 0, 0}, {10, 20, 0});
    viewport->zoomExtents();
    expectView(5, 10, 20, 20);
}

TEST_F(ViewTest, NeedsToBeOpenForWriteInADrawing) {
    line({0, 0, 0}, {10, 10, 0});
    viewport->downgradeOpen();
    EXPECT_EQ(codeOf([&] { viewport->zoomExtents(); }), eNotOpenForWrite);
    EXPECT_EQ(codeOf([] { make<OdDbViewportTableRecord>()->zoomExtents(); }), eNotInDatabase);
    expectView(1, 2, 100, 200);
}

TEST_F(ViewTest, CopiesAViewToTheViewportByTheProtocol) {
    const auto view = make<OdDbViewTableRecord>();
    view->setCenterPoint({5, 6});
    view->setHeight(7);
    view->setWidth(8);
    const auto* const protocol = OdAbstractViewPE::cast(viewport->queryX(OdAbstractViewPE::desc()));
    ASSERT_NE(protocol, nullptr);
    protocol->setView(viewport, view);
    expectView(5, 6, 7, 8);
}

TEST_F(ViewTest, TheProtocolRefusesWhatItCannotUse) {
    const auto view = make<OdDbViewTableRecord>();
    const auto* const protocol = OdAbstractViewPE::cast(viewport->queryX(OdAbstractViewPE::desc()));
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(codeOf([&] { protocol->setView(nullptr, view); }), eNullObjectPointer);
    EXPECT_EQ(codeOf([&] { protocol->setView(viewport, nullptr); }), eNullObjectPointer);
    EXPECT_EQ(codeOf([&] { protocol->setView(make<OdDbLine>(), view); }), eNotThatKindOfClass);
    viewport->downgradeOpen();
    EXPECT_EQ(codeOf([&] { protocol->setView(viewport, view); }), eNotOpenForWrite);
    expectView(1, 2, 100, 200);
}

TEST_F(ViewTest, OnlyViewportsHaveTheProtocolAndItCanBeTakenAway) {
    EXPECT_EQ(make<OdDbViewTableRecord>()->queryX(OdAbstractViewPE::desc()), nullptr);
    EXPECT_EQ(make<OdDbLine>()->queryX(OdAbstractViewPE::desc()), nullptr);
    lm::drawing::setViewProtocol(false);
    EXPECT_EQ(viewport->queryX(OdAbstractViewPE::desc()), nullptr);
    lm::drawing::setViewProtocol(true);
    EXPECT_NE(viewport->queryX(OdAbstractViewPE::desc()), nullptr);
}
