// SPDX-License-Identifier: MIT
// Boxes of entities and blocks, angles, and the small services of making and erasing one object.
#include "project_drawing.h"
#include "symbols.h"

#include "drawing/curves.h"

#include <numbers>

namespace {

using namespace lm::tests;
using std::numbers::pi;
using testing::ElementsAre;
using testing::IsEmpty;

OdSmartPtr<OdDbLine> line(double x1, double y1, double x2, double y2) {
    const OdSmartPtr<OdDbLine> made = make(new OdDbLine);
    made->setStartPoint({x1, y1, 7});
    made->setEndPoint({x2, y2, -7});
    return made;
}
OdSmartPtr<OdDbPolyline> polyline(const std::vector<OdGePoint2d>& points, double bulge = 0) {
    const OdSmartPtr<OdDbPolyline> made = make(new OdDbPolyline);
    for (const OdGePoint2d& point : points) made->addVertexAt(made->numVerts(), point, bulge);
    return made;
}
OdSmartPtr<OdDbCircle> circle(double x, double y, double radius) {
    const OdSmartPtr<OdDbCircle> made = make(new OdDbCircle);
    made->setCenter({x, y, 0});
    made->setRadius(radius);
    return made;
}
OdSmartPtr<OdDbEllipse> ellipse(double x, double y, const OdGeVector3d& axis, double ratio) {
    const OdSmartPtr<OdDbEllipse> made = make(new OdDbEllipse);
    made->setCenter({x, y, 0});
    made->setMajorAxis(axis);
    made->setRadiusRatio(ratio);
    return made;
}
/// Five units of height 10 are 30 wide.
template<class T>
OdSmartPtr<T> text(double x, double y, double rotation = 0) {
    const OdSmartPtr<T> made = make(new T);
    made->setPosition({x, y, 0});
    made->setTextString(od("ABCDE"));
    made->setHeight(10);
    made->setRotation(rotation);
    return made;
}

/// The values that a caller passes.
struct Start {
    double xMax = 0, xMin = 0, yMax = 0, yMin = 0;
};

class Boxes : public CadDrawing {
protected:
    static std::string told(bool found, const Start& box) {
        return std::string(found ? "true " : "false ") + number(box.xMax) + " " + number(box.xMin) + " " +
               number(box.yMax) + " " + number(box.yMin);
    }
    /// "found xMax xMin yMax yMin".
    std::string boxOf(const OdSmartPtr<OdDbEntity>& entity, bool full = false) {
        return boxFrom({}, entity, full);
    }
    std::string boxFrom(Start box, const OdSmartPtr<OdDbEntity>& entity, bool full = false) {
        const bool found = m_cad.getBoundingBox(entity, box.xMax, box.xMin, box.yMax, box.yMin, full);
        return told(found, box);
    }
    std::string boxOfBlock(OdDbObjectId block, Start box = {}, bool flag = false) {
        return boxOfBlock(OdSmartPtr<OdDbBlockTableRecord>(block.openObject()), box, flag);
    }
    std::string boxOfBlock(const OdSmartPtr<OdDbBlockTableRecord>& block, Start box, bool flag = false) {
        const bool found = m_cad.getBoundingBoxBTR(block, box.xMax, box.xMin, box.yMax, box.yMin, flag);
        return told(found, box);
    }
    OdDbObjectId blockOf(const char* name, const std::vector<OdSmartPtr<OdDbEntity>>& entities) {
        const OdDbObjectId made = block(name);
        for (const OdSmartPtr<OdDbEntity>& entity : entities) append(made, entity);
        return made;
    }
    Reference at(double x, double y, OdDbObjectId block, double sx = 1, double sy = 1) {
        const Reference made = loose(block);
        made->setPosition({x, y, 0});
        made->setScaleFactors({sx, sy, 1});
        return made;
    }
    static void addText(const Reference& reference, double x, double y) {
        reference->appendAttribute(text<OdDbAttribute>(x, y));
    }
};

TEST_F(Boxes, OfShapes) {
    const struct {
        const char* what;
        OdSmartPtr<OdDbEntity> entity;
        const char* box;
    } kCases[] = {
        {"a line in any direction", line(4, 1, -2, 3), "true 4 -2 3 1"},
        {"a polyline", polyline({{1, 9}, {5, 2}, {-3, 4}}), "true 5 -3 9 2"},
        {"a polyline whose bulges reach farther", polyline({{0, 0}, {10, 0}}, 1), "true 10 0 0 0"},
        {"a polyline with one vertex", polyline({{6, -2}}), "true 6 6 -2 -2"},
        {"a polyline without vertices", polyline({}), "false 50 -50 60 -60"},
        {"a circle", circle(10, 20, 3), "true 13 7 23 17"},
        {"an ellipse, whose minor axis isn't looked at", ellipse(1, 2, {3, 4, 0}, 0.1), "true 6 -4 7 -3"},
        {"a point", make(new OdDbPoint), "false 50 -50 60 -60"},
        {"an arc", make(new OdDbArc), "false 50 -50 60 -60"},
        {"a text of several lines", make(new OdDbMText), "false 50 -50 60 -60"},
        {"an entity of a kind that isn't read", make(new OdDbUnreadEntity), "false 50 -50 60 -60"},
        {"nothing", {}, "false 50 -50 60 -60"},
    };
    for (const auto& each : kCases)
        for (const bool full : {false, true})
            EXPECT_EQ(boxFrom({50, -50, 60, -60}, each.entity, full), each.box) << each.what;
}

template<class T>
OdSmartPtr<T> facing(const OdGeVector3d& normal, const OdSmartPtr<T>& entity) {
    entity->setNormal(normal);
    return entity;
}

/// Objects keep their points in coordinates of their own when they were mirrored or lean; boxes are of the
/// drawing, where views and selections are.
TEST_F(Boxes, OfMirroredShapesLieWhereTheyAreSeen) {
    const OdGeVector3d back(0, 0, -1), aside(1, 0, 0);
    const OdDbObjectId symbol = blockOf("S", {line(-1, -2, 3, 4)});
    const OdSmartPtr<OdDbCircle> leaning = facing(aside, circle(10, 5, 1));
    leaning->setCenter({10, 5, 3});
    const struct {
        const char* what;
        OdSmartPtr<OdDbEntity> entity;
        const char* box;
    } kCases[] = {
        {"a circle", facing(back, circle(10, 5, 1)), "true -9 -11 6 4"},
        {"a circle that leans", leaning, "true 4 2 11 9"},
        {"a polyline", facing(back, polyline({{1, 9}, {5, 2}})), "true -1 -5 9 2"},
        {"a text", facing(back, text<OdDbText>(1, 2)), "true -1 -31 12 2"},
        {"an attribute", facing(back, text<OdDbAttribute>(1, 2)), "true -1 -31 12 2"},
        {"an ellipse, which has no others", facing(back, ellipse(1, 2, {3, 4, 0}, 0.1)), "true 6 -4 7 -3"},
    };
    for (const auto& each : kCases) EXPECT_EQ(boxOf(each.entity, true), each.box) << each.what;
    EXPECT_EQ(boxOf(facing(back, at(100, 200, symbol))), "true -97 -101 204 198")
        << "moved there, and not turned, as with any rotation";
    const Reference reference = facing(back, at(100, 200, block("EMPTY")));
    reference->appendAttribute(facing(back, text<OdDbAttribute>(90, 195)));
    EXPECT_EQ(boxOf(reference, true), "true -90 -120 205 195");
    EXPECT_EQ(boxOfBlock(blockOf("M", {facing(back, circle(10, 5, 1))})), "true -9 -11 6 4");
}

TEST_F(Boxes, OfTextsAreWantedOrNot) {
    const OdSmartPtr<OdDbEntity> texts[] = {text<OdDbText>(1, 2), text<OdDbAttribute>(1, 2),
                                            text<OdDbAttributeDefinition>(1, 2)};
    for (const OdSmartPtr<OdDbEntity>& each : texts) {
        EXPECT_EQ(boxFrom({50, -50, 60, -60}, each, true), "true 31 1 12 2");
        EXPECT_EQ(boxFrom({50, -50, 60, -60}, each, false), "false 50 -50 60 -60");
    }
    EXPECT_EQ(boxOf(text<OdDbText>(1, 2, pi / 2), true), "true 1 -9 32 2") << "turned";
}

TEST_F(Boxes, OfAReferenceAreScaledAndMoved) {
    const OdDbObjectId symbol = blockOf("S", {line(-1, -2, 3, 4)});
    EXPECT_EQ(boxOf(at(100, 200, symbol)), "true 103 99 204 198");
    EXPECT_EQ(boxOf(at(100, 200, symbol, 2, 10)), "true 106 98 240 180");
    const Reference turned = at(100, 200, symbol);
    turned->setRotation(pi / 2);
    EXPECT_EQ(boxOf(turned), "true 103 99 204 198") << "the rotation isn't taken into account";
}

TEST_F(Boxes, OfAReferenceReachFromTheCallersValues) {
    const OdDbObjectId symbol = blockOf("S", {line(2, 3, 4, 5)});
    EXPECT_EQ(boxOf(at(100, 200, symbol)), "true 104 100 205 200") << "the insertion point belongs to it";
    EXPECT_EQ(boxFrom({50, -50, 60, -60}, at(100, 200, symbol)), "true 150 50 260 140");
    EXPECT_EQ(boxFrom({-9, 9, -9, 9}, at(100, 200, symbol)), "true 104 102 205 203");
}

TEST_F(Boxes, OfAMirroredReferenceAreNotTurnedRight) {
    const OdDbObjectId symbol = blockOf("S", {line(1, 2, 4, 5)});
    EXPECT_EQ(boxOf(at(0, 0, symbol, -1, -1)), "true 0 -1 0 -2");
    EXPECT_EQ(boxFrom({-100, 100, -100, 100}, at(0, 0, symbol, -1, -1)), "true -4 -1 -5 -2")
        << "the greatest below the least";
}

TEST_F(Boxes, OfAReferenceWithoutOneStillMove) {
    const OdDbObjectId gone = blockOf("G", {line(0, 0, 1, 1)});
    erase(gone);
    for (const OdDbObjectId block :
         {OdDbObjectId(), gone, block("EMPTY"), block("TEXTS", {{"T", "", "V"}})}) {
        EXPECT_EQ(boxFrom({1, 2, 3, 4}, at(10, 20, block)), "false 11 12 23 24");
        EXPECT_EQ(boxFrom({1, 2, 3, 4}, at(10, 20, block), true), "false 11 12 23 24");
    }
}

TEST_F(Boxes, OfAReferenceHoldItsAttributesWhenWanted) {
    const OdDbObjectId symbol = blockOf("S", {line(0, 0, 2, 2)});
    const Reference reference = at(100, 200, symbol);
    append(m_db.getModelSpaceId(), reference);
    addText(reference, 90, 195);
    addText(reference, 150, 300);
    EXPECT_EQ(boxOf(reference), "true 102 100 202 200");
    EXPECT_EQ(boxOf(reference, true), "true 180 90 310 195");
    erase(attributeOf(reference, 1)->objectId());
    EXPECT_EQ(boxOf(reference, true), "true 120 90 205 195") << "an erased one doesn't count";
}

TEST_F(Boxes, OfAReferenceAreThoseOfItsAttributesWhereTheBlockHasNone) {
    const Reference reference = at(100, 200, block("EMPTY"));
    append(m_db.getModelSpaceId(), reference);
    addText(reference, 90, 195);
    EXPECT_EQ(boxFrom({1000, -1000, 1000, -1000}, reference, true), "true 120 90 205 195");
    EXPECT_EQ(boxOf(reference), "false 100 100 200 200");
    addText(reference, 150, 300);
    EXPECT_EQ(boxOf(reference, true), "true 180 90 310 195");
}

TEST_F(Boxes, OfAReferenceOutsideTheDrawing) {
    const Reference reference = at(100, 200, {});
    addText(reference, 90, 195);
    EXPECT_EQ(boxOf(reference, true), "true 120 90 205 195");
    reference->setWithoutIterator(true);
    EXPECT_EQ(boxOf(reference, true), "false 100 100 200 200");
}

TEST_F(Boxes, OfABlock) {
    const OdDbObjectId symbol = blockOf("S", {make(new OdDbPoint), line(2, 3, 4, 5), circle(10, 10, 1)});
    EXPECT_EQ(boxOfBlock(symbol), "true 11 2 11 3");
    EXPECT_EQ(boxOfBlock(symbol, {50, -50, 60, -60}, true), "true 11 2 11 3") << "in place of what was there";
    EXPECT_EQ(boxOfBlock(OdSmartPtr<OdDbBlockTableRecord>(), {1, 2, 3, 4}), "false 1 2 3 4");
}

TEST_F(Boxes, OfABlockPassOverErasedEntitiesAndTexts) {
    const OdDbObjectId symbol = blockOf("S", {line(2, 3, 4, 5), text<OdDbText>(50, 50)});
    define(symbol, {"T", "", "VALUE"});
    const OdDbObjectId far = append(symbol, line(0, 0, 90, 90));
    EXPECT_EQ(boxOfBlock(symbol), "true 90 0 90 0");
    erase(far);
    EXPECT_EQ(boxOfBlock(symbol), "true 4 2 5 3");
    const OdDbObjectId texts = block("TEXTS", {{"T", "", "VALUE"}});
    EXPECT_EQ(boxOfBlock(texts, {1, 2, 3, 4}, true), "false 1 2 3 4");
}

TEST_F(Boxes, OfModelSpaceAsOfABlock) {
    append(m_db.getModelSpaceId(), line(2, 3, 4, 5));
    EXPECT_EQ(boxOfBlock(m_db.getModelSpaceId()), "true 4 2 5 3");
    EXPECT_THROW(boxOfBlock(make(new OdDbBlockTableRecord), {}), OdError)
        << "outside a drawing it has no entities";
}

TEST_F(Boxes, OfABlockHoldReferencesInside) {
    const OdDbObjectId inner = blockOf("INNER", {line(2, 3, 4, 5)});
    const Reference inside = at(10, 20, inner, 2, 2);
    const OdDbObjectId outer = blockOf("OUTER", {inside});
    addText(inside, -500, -500);
    EXPECT_EQ(boxOfBlock(outer), "true 18 10 30 20") << "with its insertion point, without its attributes";
    EXPECT_EQ(boxOf(at(100, 100, outer), true), "true 118 100 130 100");
}

TEST_F(Boxes, OfABlockInsideItselfAreNone) {
    const OdDbObjectId loop = block("LOOP");
    append(loop, at(10, 20, loop));
    EXPECT_EQ(boxOfBlock(loop), "false 0 0 0 0");
    append(loop, line(2, 3, 4, 5));
    EXPECT_EQ(boxOfBlock(loop), "true 4 2 5 3");
    const OdDbObjectId other = blockOf("OTHER", {at(0, 0, loop), line(0, 0, 1, 1)});
    append(loop, at(100, 100, other));
    EXPECT_EQ(boxOfBlock(loop), "true 101 2 101 3");
}

TEST_F(Boxes, OfBlocksMayBeNestedAsDeepAndAsOftenAsOneLikes) {
    OdDbObjectId innermost = blockOf("B", {line(0, 0, 1, 1)});
    constexpr int kDepth = 20000;
    for (int i = 1; i <= kDepth; ++i)
        innermost = blockOf(("B" + std::to_string(i)).c_str(), {at(1, 0, innermost), at(0, 1, innermost)});
    EXPECT_EQ(boxOfBlock(innermost), "true 20001 0 20001 0");
}

TEST_F(Boxes, ChangeNothingAndTellNobody) {
    const OdDbObjectId symbol = blockOf("S", {line(2, 3, 4, 5)});
    const Reference reference = at(100, 200, symbol);
    append(m_db.getModelSpaceId(), reference);
    addText(reference, 90, 195);
    reference->downgradeOpen();
    Recorder recorder(m_db);
    boxOf(reference, true);
    boxOfBlock(symbol);
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_FALSE(reference->isWriteEnabled());
}

// --- angles ---

TEST(Angles, AreThoseBetweenTwoDirections) {
    CICad cad;
    const OdGePoint3d origin;
    const struct {
        OdGePoint3d to;
        double degrees;
    } kCases[] = {
        {{1, 0, 0}, 0},  {{0, 1, 0}, 90},   {{0, -1, 0}, 90}, {{-1, 0, 0}, 180},
        {{5, 5, 0}, 45}, {{-3, 3, 0}, 135}, {{0, 0, 2}, 90},  {{0, 0, 0}, 0},
    };
    const OdGePoint3d from(10, 20, 30);
    for (const auto& each : kCases) {
        const double radians = each.degrees * pi / 180;
        const OdGePoint3d to = from + each.to.asVector();
        EXPECT_NEAR(cad.getAngulo(CICad::kGraus, from, to), each.degrees, 1e-12);
        EXPECT_NEAR(cad.getAngulo(CICad::kRadianos, from, to), radians, 1e-15);
        EXPECT_NEAR(cad.getAngulo(CICad::kRadianos, OdGeVector3d::kXAxis, each.to.asVector()), radians,
                    1e-15);
        EXPECT_NEAR(cad.getAngulo(CICad::kGraus, origin, {9, 0, 0}, from, to), each.degrees, 1e-12);
        EXPECT_NEAR(cad.getAngulo(CICad::kGraus, from, to, origin, {9, 0, 0}), each.degrees, 1e-12);
    }
    EXPECT_DOUBLE_EQ(cad.getAngulo(CICad::kGraus, origin, {0, 1, 0}), 90);
}

TEST(Angles, TakeBothEndsOfBothDirections) {
    CICad cad;
    EXPECT_DOUBLE_EQ(cad.getAngulo(CICad::kGraus, {1, 1, 0}, {1, 3, 0}, {5, 5, 0}, {4, 5, 0}), 90);
    EXPECT_DOUBLE_EQ(cad.getAngulo(CICad::kGraus, {1, 1, 0}, {3, 3, 0}, {5, 5, 0}, {4, 5, 0}), 135);
    EXPECT_DOUBLE_EQ(cad.getAngulo(CICad::kGraus, OdGeVector3d(0, 2, 0), OdGeVector3d(-7, 0, 0)), 90);
}

TEST(Angles, ComeInDegreesForOneValueOnly) {
    CICad cad;
    const OdGeVector3d x(1, 0, 0), y(0, 1, 0);
    for (const int unit : {0, 2, -1, 1000})
        EXPECT_DOUBLE_EQ(cad.getAngulo(static_cast<CICad::enTipoAngulo>(unit), x, y), pi / 2) << unit;
    EXPECT_DOUBLE_EQ(cad.getAngulo(static_cast<CICad::enTipoAngulo>(1), x, y), 90);
}

// --- one object ---

class SingleObjects : public ProjectDrawing {};

TEST_F(SingleObjects, ArePointsAtTheOriginOfModelSpace) {
    layer("P1");
    Recorder recorder(m_db);
    EXPECT_EQ(m_cad.CriarPonto("P1"), 0);
    EXPECT_THAT(recorder.taken(), ElementsAre("appended POINT"));
    EXPECT_THAT(entitiesOf(m_db.getModelSpaceId()), ElementsAre("POINT P1"));
    const auto walk = OdSmartPtr<OdDbBlockTableRecord>(m_db.getModelSpaceId().openObject())->newIterator();
    EXPECT_EQ(OdDbPoint::cast(walk->entity().get())->position(), OdGePoint3d());
    EXPECT_FALSE(walk->entity()->isWriteEnabled());
}

TEST_F(SingleObjects, ArePointsOfTheDatabaseThatWorkGoesTo) {
    CHostDatabase side;
    setDatabase(&side);
    EXPECT_EQ(m_cad.CriarPonto("0"), 0);
    setDatabase(nullptr);
    EXPECT_THAT(entitiesOf(side.getModelSpaceId()), ElementsAre("POINT 0"));
    EXPECT_THAT(entitiesOf(m_db.getModelSpaceId()), IsEmpty());
}

TEST_F(SingleObjects, CanBeTheCarrierOfTheSettings) {
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 2);
    m_cad.CriarPonto("RZ_FREEZE");
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 0);
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(&m_db), 1);
}

TEST_F(SingleObjects, NeedALayerThatIsThere) {
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.CriarPonto("P9"), OdError);
    EXPECT_THAT(entitiesOf(m_db.getModelSpaceId()), ElementsAre("POINT 0"));
    EXPECT_FALSE(m_cad.ExisteLayer("P9", &m_db));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SingleObjects, NeedTheClassOfPoints) {
    const lm::test::LogCapture log;
    OdDbPoint::desc()->setLoaded(false);
    try {
        m_cad.CriarPonto("0");
        ADD_FAILURE();
    } catch (const OdError& error) {
        EXPECT_EQ(plain(CHostString(error.description())), "OdDbOdDbPointis not loaded");
    }
    OdDbPoint::desc()->setLoaded(true);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(entitiesOf(m_db.getModelSpaceId()), IsEmpty());
}

TEST_F(SingleObjects, AreNotMadeWithoutADrawing) {
    CHostDatabase bare(OdDbDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_EQ(m_cad.CriarPonto("0"), 0);
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_EQ(m_cad.CriarPonto("0"), 0);
}

TEST_F(SingleObjects, AreErasedOnce) {
    const OdDbObjectId doomed = point();
    Recorder recorder(m_db);
    m_db.startUndoRecord();
    m_cad.erase(doomed);
    EXPECT_TRUE(doomed.isErased());
    EXPECT_THAT(recorder.taken(), ElementsAre("erased POINT"));
    m_cad.erase(doomed);
    m_cad.erase(RZID());
    EXPECT_THAT(recorder.taken(), IsEmpty());
    ASSERT_TRUE(m_db.undo());
    EXPECT_FALSE(doomed.isErased());
}

TEST_F(SingleObjects, AreErasedWhileSomebodyReadsThem) {
    const OdDbObjectId doomed = point();
    const OdSmartPtr<OdDbObject> held = doomed.openObject();
    m_cad.erase(doomed);
    EXPECT_TRUE(held->isErased());
}

TEST_F(SingleObjects, ThatRefuseToGoAreLeftWithoutAWord) {
    const lm::test::LogCapture log;
    m_cad.erase(m_db.getLayerZeroId());
    m_cad.erase(m_db.getModelSpaceId());
    EXPECT_FALSE(m_db.getLayerZeroId().isErased());
    EXPECT_FALSE(m_db.getModelSpaceId().isErased());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Paths, ExistAsFilesAndAsFolders) {
    const lm::test::TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "sub");
    std::ofstream(folder.path() / "sub" / "símbolo.dwg") << "x";
    CICad cad;
    const std::string base = folder.path().string();
    EXPECT_TRUE(cad.FileExists(rz(base)));
    EXPECT_TRUE(cad.FileExists(rz(base + "/sub")));
    EXPECT_TRUE(cad.FileExists(rz(base + "/sub/símbolo.dwg")));
    EXPECT_TRUE(cad.FileExists(rz(base + "\\sub\\símbolo.dwg"))) << "either separator";
    EXPECT_FALSE(cad.FileExists(rz(base + "/sub/none.dwg")));
    EXPECT_FALSE(cad.FileExists(rz(base + "/sub/símbolo.dwg/below")));
    EXPECT_FALSE(cad.FileExists(""));
}

} // namespace
