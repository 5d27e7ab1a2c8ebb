// SPDX-License-Identifier: MIT
// Boxes of entities.
#include "clone_support.h"

#include <chrono>
#include <ctime>
#include <limits>
#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

namespace {

/// The box as "x1 y1 z1 x2 y2 z2", to six digits; "none" for an entity without one.
std::string boxOf(const OdDbEntity& entity) {
    OdGeExtents3d box;
    const OdResult result = entity.getGeomExtents(box);
    EXPECT_EQ(result == eOk, !box.isEmpty());
    if (result != eOk) {
        EXPECT_EQ(result, eNotApplicable);
        return "none";
    }
    std::string out;
    const OdGePoint3d low = box.minPoint(), high = box.maxPoint();
    for (const double part : {low.x, low.y, low.z, high.x, high.y, high.z}) {
        char text[32];
        std::snprintf(text, sizeof text, "%s%g", out.empty() ? "" : " ", std::round(part * 1e6) / 1e6 + 0.0);
        out += text;
    }
    return out;
}

OdSmartPtr<OdDbLine> line(const OdGePoint3d& from, const OdGePoint3d& to) {
    const auto made = make<OdDbLine>();
    made->setStartPoint(from);
    made->setEndPoint(to);
    return made;
}

OdSmartPtr<OdDbArc> arc(double from, double to) {
    const auto made = make<OdDbArc>();
    made->setRadius(2);
    made->setStartAngle(from);
    made->setEndAngle(to);
    return made;
}

struct ReferenceExtentsTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    OdDbObjectId block = addBlock(*db, "B");
    OdSmartPtr<OdDbBlockReference> reference = make<OdDbBlockReference>();

    ReferenceExtentsTest() { reference->setBlockTableRecord(block); }
    template<class T>
    OdSmartPtr<T> put(OdDbObjectId in, OdSmartPtr<T> entity) {
        open<OdDbBlockTableRecord>(in, OdDb::kForWrite)->appendOdDbEntity(entity);
        return entity;
    }
    OdSmartPtr<OdDbBlockReference> to(OdDbObjectId shown, const OdGePoint3d& at = {}, double rotation = 0) {
        const auto made = make<OdDbBlockReference>();
        made->setBlockTableRecord(shown);
        made->setPosition(at);
        made->setRotation(rotation);
        return made;
    }
};

} // namespace

TEST(ExtentsTest, OfPointsLinesAndCircles) {
    const auto point = make<OdDbPoint>();
    point->setPosition({1, 2, 3});
    EXPECT_EQ(boxOf(*point), "1 2 3 1 2 3");
    EXPECT_EQ(boxOf(*line({5, 0, 1}, {1, 2, 0})), "1 0 0 5 2 1");
    const auto circle = make<OdDbCircle>();
    circle->setCenter({10, 5, 1});
    circle->setRadius(2);
    EXPECT_EQ(boxOf(*circle), "8 3 1 12 7 1");
    circle->setNormal({0, 0, -1});
    EXPECT_EQ(boxOf(*circle), "-12 3 -1 -8 7 -1") << "the centre lies in the system of the normal";
    circle->setCenter({0, 0, 0});
    circle->setNormal({1, 0, 0});
    EXPECT_EQ(boxOf(*circle), "0 -2 -2 0 2 2");
}

TEST(ExtentsTest, OfArcsByTheirShape) {
    EXPECT_EQ(boxOf(*arc(0, pi / 2)), "0 0 0 2 2 0");
    EXPECT_EQ(boxOf(*arc(pi / 2, 0)), "-2 -2 0 2 2 0") << "three quarters";
    EXPECT_EQ(boxOf(*arc(pi / 4, 3 * pi / 4)), "-1.41421 1.41421 0 1.41421 2 0");
    EXPECT_EQ(boxOf(*arc(7 * pi / 4, pi / 4)), "1.41421 -1.41421 0 2 1.41421 0") << "over the angle 0";
    EXPECT_EQ(boxOf(*arc(0.5, 0.5)), "-2 -2 0 2 2 0") << "all around";
}

TEST(ExtentsTest, OfEllipsesByTheirShape) {
    const auto ellipse = make<OdDbEllipse>();
    ellipse->setCenter({1, 1, 0});
    ellipse->setMajorAxis({4, 0, 0});
    ellipse->setRadiusRatio(0.5);
    EXPECT_EQ(boxOf(*ellipse), "-3 -1 0 5 3 0");
    ellipse->setMajorAxis({0, 4, 0});
    EXPECT_EQ(boxOf(*ellipse), "-1 -3 0 3 5 0");
    ellipse->setEndParam(pi / 2);
    EXPECT_EQ(boxOf(*ellipse), "-1 1 0 1 5 0");
    ellipse->setEndParam(2 * pi);
    ellipse->setMajorAxis({3, 3, 0});
    ellipse->setRadiusRatio(0);
    EXPECT_EQ(boxOf(*ellipse), "-2 -2 0 4 4 0");
}

TEST(ExtentsTest, OfPolylinesWithBulges) {
    const auto polyline = make<OdDbPolyline>();
    EXPECT_EQ(boxOf(*polyline), "none");
    polyline->addVertexAt(0, {0, 0});
    EXPECT_EQ(boxOf(*polyline), "0 0 0 0 0 0");
    polyline->addVertexAt(1, {4, 0});
    EXPECT_EQ(boxOf(*polyline), "0 0 0 4 0 0");
    struct Row {
        double bulge;
        const char* box;
    };
    // A half circle to the right of the way, one to the left, a quarter, three quarters.
    const Row rows[] = {{1, "0 -2 0 4 0 0"},
                        {-1, "0 0 0 4 2 0"},
                        {std::tan(pi / 8), "0 -0.828427 0 4 0 0"},
                        {std::tan(3 * pi / 8), "-0.828427 -4.82843 0 4.82843 0 0"}};
    for (const Row& row : rows) {
        const auto bent = make<OdDbPolyline>();
        bent->addVertexAt(0, {0, 0}, row.bulge);
        bent->addVertexAt(1, {4, 0}, 1);
        EXPECT_EQ(boxOf(*bent), row.box) << row.bulge << ": the last bulge counts in closed ones only";
    }
    polyline->addVertexAt(2, {4, 3}, 1);
    polyline->setElevation(7);
    EXPECT_EQ(boxOf(*polyline), "0 0 7 4 3 7");
    polyline->setClosed(true);
    EXPECT_EQ(boxOf(*polyline), "-0.5 0 7 4 4 7");
}

TEST(ExtentsTest, OfTextsByTheirBoundingPoints) {
    for (const OdSmartPtr<OdDbText>& text :
         {OdSmartPtr<OdDbText>(make<OdDbText>()), OdSmartPtr<OdDbText>(make<OdDbAttribute>()),
          OdSmartPtr<OdDbText>(make<OdDbAttributeDefinition>())}) {
        text->setTextString(od("ABCDE"));
        text->setHeight(2);
        text->setPosition({1, 1, 0});
        EXPECT_EQ(boxOf(*text), "1 1 0 7 3 0");
        text->setRotation(pi / 2);
        EXPECT_EQ(boxOf(*text), "-1 1 0 1 7 0");
    }
}

TEST(ExtentsTest, OfMultiLineTextsByAFixedRule) {
    const auto text = make<OdDbMText>();
    text->setContents(od("ABCDE\\Pxy"));
    text->setTextHeight(3);
    text->setLocation({10, 10, 0});
    EXPECT_EQ(boxOf(*text), "10 2 0 19 10 0") << "0.6 of the height a unit, 5/3 of it a further line";
    text->setWidth(20);
    EXPECT_EQ(boxOf(*text), "10 2 0 30 10 0") << "the frame's width";
    text->setAttachment(5);
    EXPECT_EQ(boxOf(*text), "0 6 0 20 14 0");
    text->setAttachment(9);
    EXPECT_EQ(boxOf(*text), "-10 10 0 10 18 0");
    text->setAttachment(1);
    text->setDirection({0, 1, 0});
    EXPECT_EQ(boxOf(*text), "10 10 0 18 30 0");
}

TEST(ExtentsTest, OtherKindsHaveNone) {
    EXPECT_EQ(boxOf(*make<OdDbUnreadEntity>()), "none");
    EXPECT_EQ(boxOf(*make<OdDbBlockReference>()), "none");
    OdGeExtents3d box;
    box.addPoint({1, 1, 1});
    EXPECT_EQ(make<OdDbUnreadEntity>()->getGeomExtents(box), eNotApplicable);
    EXPECT_EQ(box.maxPoint(), OdGePoint3d(1, 1, 1)) << "nothing was added";
    EXPECT_EQ(line({0, 0, 0}, {2, 2, 2})->getGeomExtents(box), eOk);
    EXPECT_EQ(box.minPoint(), OdGePoint3d(0, 0, 0)) << "added to what was there";
}

TEST_F(ReferenceExtentsTest, HoldTheBlockUnderItsTransformAndTheAttributes) {
    EXPECT_EQ(boxOf(*reference), "none");
    put(block, line({1, 0, 0}, {3, 1, 0}));
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->setOrigin({1, 0, 0});
    reference->setPosition({10, 20, 0});
    EXPECT_EQ(boxOf(*reference), "10 20 0 12 21 0");
    reference->setRotation(pi / 2);
    reference->setScaleFactors({2, 2, 2});
    EXPECT_EQ(boxOf(*reference), "8 20 0 10 24 0");
    const auto attribute = make<OdDbAttribute>();
    attribute->setTextString(od("A"));
    attribute->setHeight(10);
    attribute->setPosition({100, 0, 0});
    reference->appendAttribute(attribute);
    EXPECT_EQ(boxOf(*reference), "8 0 0 106 24 0");
    append(*db, reference);
    EXPECT_EQ(boxOf(*reference), "8 0 0 106 24 0");
    attribute->erase();
    EXPECT_EQ(boxOf(*reference), "8 20 0 10 24 0");
}

TEST_F(ReferenceExtentsTest, AreThoseOfTheTurnedShapeAndNotOfATurnedBox) {
    put(block, line({0, 0, 0}, {1, 1, 0}));
    const auto circle = make<OdDbCircle>();
    circle->setRadius(1);
    const OdDbObjectId round = addBlock(*db, "ROUND");
    put(round, circle);
    reference->setRotation(pi / 4);
    EXPECT_EQ(boxOf(*reference), "0 0 0 0 1.41421 0");
    EXPECT_EQ(boxOf(*to(round, {}, pi / 4)), "-1 -1 0 1 1 0");
    const OdDbObjectId outer = addBlock(*db, "OUTER");
    put(outer, to(block, {1, 0, 0}, pi / 8));
    EXPECT_EQ(boxOf(*to(outer, {}, pi / 8)), "0.92388 0.382683 0 0.92388 1.7969 0") << "inner ones as well";
}

TEST_F(ReferenceExtentsTest, CountLiveEntitiesOnly) {
    put(block, line({0, 0, 0}, {1, 1, 0}));
    put(block, line({0, 0, 0}, {9, 9, 0}))->erase();
    const OdDbObjectId inner = addBlock(*db, "INNER");
    put(inner, line({0, 0, 0}, {50, 50, 0}));
    put(block, to(inner));
    EXPECT_EQ(boxOf(*reference), "0 0 0 50 50 0");
    inner.openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(boxOf(*reference), "0 0 0 1 1 0");
}

TEST_F(ReferenceExtentsTest, OfInnerReferencesHoldTheirAttributes) {
    const OdDbObjectId inner = addBlock(*db, "INNER");
    const auto nested = to(inner);
    const auto attribute = make<OdDbAttribute>();
    attribute->setTextString(od("A"));
    attribute->setHeight(10);
    nested->appendAttribute(attribute);
    put(block, nested);
    reference->setPosition({1, 0, 0});
    EXPECT_EQ(boxOf(*reference), "1 0 0 7 10 0");
}

TEST_F(ReferenceExtentsTest, BlocksInsideThemselvesComeToAnEnd) {
    const OdDbObjectId other = addBlock(*db, "OTHER");
    put(block, line({0, 0, 0}, {1, 1, 0}));
    put(block, to(other, {1, 0, 0}));
    put(other, to(block, {1, 0, 0}, 1));
    put(other, line({0, 0, 0}, {5, 1, 0}));
    EXPECT_EQ(boxOf(*reference), "0 0 0 6 1 0");
}

TEST_F(ReferenceExtentsTest, CostNoMoreThanTheBlocks) {
    // Each block shows the one below it twice, turned by angles of its own: 2^40 lines in all, no two alike.
    OdDbObjectId below = block;
    put(block, line({0, 0, 0}, {1, 0, 0}));
    for (int i = 1; i <= 40; ++i) {
        const OdDbObjectId next = addBlock(*db, "L" + std::to_string(i));
        put(next, to(below, {}, 0.01 * i));
        put(next, to(below, {}, -0.013 * i));
        below = next;
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(boxOf(*to(below)), "none");
    // A chain deeper than any stack.
    below = block;
    for (int i = 0; i < 20000; ++i) {
        const OdDbObjectId next = addBlock(*db, "C" + std::to_string(i));
        put(next, to(below, {1, 0, 0}));
        below = next;
    }
    EXPECT_EQ(boxOf(*to(below)), "20000 0 0 20001 0 0");
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 5000);
}

// What is remembered of a block is found again under a transform that isn't equal to itself.
TEST_F(ReferenceExtentsTest, CostNoMoreThanTheBlocksWhereTheTransformHoldsNoNumbers) {
    OdDbObjectId below = block;
    put(block, line({0, 0, 0}, {1, 0, 0}));
    for (int i = 1; i <= 40; ++i) {
        const OdDbObjectId next = addBlock(*db, "L" + std::to_string(i));
        put(next, to(below));
        put(next, to(below));
        below = next;
    }
    const std::clock_t start = std::clock();
    boxOf(*to(below, {}, std::numeric_limits<double>::quiet_NaN()));
    boxOf(*to(below, {std::numeric_limits<double>::infinity(), 0, 0}));
    EXPECT_LT(double(std::clock() - start) / CLOCKS_PER_SEC, 1);
}
