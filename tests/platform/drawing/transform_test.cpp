// SPDX-License-Identifier: MIT
// Moving entities, and the transform of a block reference.
#include "drawing_support.h"

#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

namespace {

void expectNear(const OdGePoint3d& p, double x, double y, double z) {
    EXPECT_NEAR(p.x, x, 1e-9);
    EXPECT_NEAR(p.y, y, 1e-9);
    EXPECT_NEAR(p.z, z, 1e-9);
}

/// Scale 2, a quarter turn, then a move by (10, 20, 30).
OdGeMatrix3d sample() {
    return OdGeMatrix3d::translation({10, 20, 30}) * OdGeMatrix3d::rotationZ(pi / 2) *
           OdGeMatrix3d::scaling({2, 2, 2});
}

const OdGeMatrix3d kMirror = OdGeMatrix3d::scaling({-1, 1, 1});
const OdGeMatrix3d kUneven = OdGeMatrix3d::scaling({2, 1, 1});

} // namespace

TEST(TransformTest, MovesPointsAndLines) {
    const auto point = make<OdDbPoint>();
    point->setPosition({1, 2, 3});
    EXPECT_EQ(point->transformBy(sample()), eOk);
    expectNear(point->position(), 6, 22, 36);
    const auto line = make<OdDbLine>();
    line->setEndPoint({1, 0, 0});
    EXPECT_EQ(line->transformBy(kUneven), eOk) << "a line takes any transform";
    expectNear(line->endPoint(), 2, 0, 0);
    EXPECT_EQ(line->transformBy(OdGeMatrix3d::translation({-2, -1, 0})), eOk);
    expectNear(line->startPoint(), -2, -1, 0);
}

TEST(TransformTest, MovesCirclesArcsAndEllipses) {
    const auto circle = make<OdDbCircle>();
    circle->setCenter({1, 0, 0});
    circle->setRadius(3);
    EXPECT_EQ(circle->transformBy(sample()), eOk);
    expectNear(circle->center(), 10, 22, 30);
    EXPECT_NEAR(circle->radius(), 6, 1e-12);

    const auto arc = make<OdDbArc>();
    arc->setRadius(1);
    arc->setEndAngle(pi / 2);
    EXPECT_EQ(arc->transformBy(kMirror), eOk);
    EXPECT_NEAR(arc->startAngle(), pi / 2, 1e-12) << "counter-clockwise again: the ends change places";
    EXPECT_NEAR(std::abs(arc->endAngle()), pi, 1e-12);

    const auto ellipse = make<OdDbEllipse>();
    ellipse->setMajorAxis({4, 0, 0});
    ellipse->setRadiusRatio(0.5);
    EXPECT_EQ(ellipse->transformBy(sample()), eOk);
    expectNear(ellipse->center(), 10, 20, 30);
    EXPECT_NEAR(ellipse->majorAxis().y, 8, 1e-9);
    EXPECT_EQ(ellipse->radiusRatio(), 0.5);
}

TEST(TransformTest, TurnsTheBulgesOfAMirroredPolyline) {
    const auto wire = make<OdDbPolyline>();
    wire->addVertexAt(0, {1, 2}, 0.5);
    wire->addVertexAt(1, {3, 4});
    EXPECT_EQ(wire->transformBy(sample()), eOk);
    expectNear(wire->getPointAt(0), 6, 22, 30);
    EXPECT_EQ(wire->getBulgeAt(0), 0.5);
    EXPECT_EQ(wire->transformBy(kMirror), eOk);
    expectNear(wire->getPointAt(0), -6, 22, 30);
    EXPECT_EQ(wire->getBulgeAt(0), -0.5);
}

TEST(TransformTest, MovesBothPointsOfATextAndOfADefinition) {
    for (const OdSmartPtr<OdDbText>& text : std::initializer_list<OdSmartPtr<OdDbText>>{
             make<OdDbText>(), OdSmartPtr<OdDbText>(make<OdDbAttributeDefinition>()),
             OdSmartPtr<OdDbText>(make<OdDbAttribute>())}) {
        text->setPosition({1, 0, 0});
        text->setAlignmentPoint({2, 0, 0});
        text->setHeight(2.5);
        EXPECT_EQ(text->transformBy(sample()), eOk);
        expectNear(text->position(), 10, 22, 30);
        expectNear(text->alignmentPoint(), 10, 24, 30);
        EXPECT_NEAR(text->height(), 5, 1e-12);
        EXPECT_NEAR(text->rotation(), pi / 2, 1e-12);
    }
}

TEST(TransformTest, MovesMultiLineText) {
    const auto text = make<OdDbMText>();
    text->setLocation({1, 0, 0});
    text->setTextHeight(2);
    text->setWidth(10);
    EXPECT_EQ(text->transformBy(sample()), eOk);
    expectNear(text->location(), 10, 22, 30);
    EXPECT_NEAR(text->textHeight(), 4, 1e-12);
    EXPECT_NEAR(text->width(), 20, 1e-12);
    EXPECT_NEAR(text->direction().y, 1, 1e-12);
}

TEST(TransformTest, RefusesUnevenScalesWhereAClassCantTakeThem) {
    const auto db = newDatabase();
    const auto wire = make<OdDbPolyline>();
    wire->addVertexAt(0, {1, 2});
    const auto text = make<OdDbText>();
    text->setPosition({1, 2, 0});
    const auto circle = make<OdDbCircle>();
    circle->setCenter({1, 2, 0});
    const auto reference = make<OdDbBlockReference>();
    reference->setPosition({1, 2, 0});
    for (const OdSmartPtr<OdDbEntity>& entity : std::initializer_list<OdSmartPtr<OdDbEntity>>{
             wire, text, circle, reference, make<OdDbArc>(), make<OdDbEllipse>(), make<OdDbMText>()}) {
        EXPECT_EQ(entity->transformBy(kUneven), eNotApplicable) << entity->isA()->asciiName();
        EXPECT_EQ(entity->transformBy(OdGeMatrix3d::scaling({0, 0, 0})), eNotApplicable)
            << entity->isA()->asciiName();
    }
    EXPECT_EQ(wire->getPointAt(0), OdGePoint3d(1, 2, 0));
    EXPECT_EQ(text->position(), OdGePoint3d(1, 2, 0));
    EXPECT_EQ(circle->center(), OdGePoint3d(1, 2, 0));
    EXPECT_EQ(reference->position(), OdGePoint3d(1, 2, 0));
    EXPECT_EQ(make<OdDbUnreadEntity>()->transformBy(OdGeMatrix3d()), eNotApplicable);
}

TEST(TransformTest, MovesAReferenceWithItsAttributes) {
    const auto db = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    reference->setPosition({1, 0, 0});
    append(*db.get(), reference);
    auto attribute = make<OdDbAttribute>();
    attribute->setPosition({2, 0, 0});
    reference->appendAttribute(attribute);
    attribute->downgradeOpen();
    EXPECT_EQ(reference->transformBy(sample()), eOk);
    expectNear(reference->position(), 10, 22, 30);
    EXPECT_NEAR(reference->rotation(), pi / 2, 1e-12);
    EXPECT_NEAR(reference->scaleFactors().sx, 2, 1e-12);
    expectNear(attribute->position(), 10, 24, 30);
}

TEST(TransformTest, KeepsWhereAMirroredReferencePutsItsPieces) {
    const auto reference = make<OdDbBlockReference>();
    reference->setPosition({5, 1, 0});
    reference->setRotation(0.3);
    const OdGePoint3d before = kMirror * (reference->blockTransform() * OdGePoint3d(2, 1, 0));
    EXPECT_EQ(reference->transformBy(kMirror), eOk);
    const OdGePoint3d after = reference->blockTransform() * OdGePoint3d(2, 1, 0);
    expectNear(after, before.x, before.y, before.z);
    EXPECT_LT(reference->scaleFactors().sx * reference->scaleFactors().sy, 0);
}

TEST(BlockTransformTest, PlacesTurnsScalesAndShiftsByTheOrigin) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db.get(), "B");
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->setOrigin({10, 5, 0});
    const auto reference = make<OdDbBlockReference>();
    EXPECT_EQ(reference->scaleFactors(), OdGeScale3d(1, 1, 1));
    reference->setBlockTableRecord(block);
    reference->setPosition({100, 200, 0});
    expectNear(reference->blockTransform() * OdGePoint3d(10, 5, 0), 100, 200, 0);
    reference->setScaleFactors({2, -3, 1});
    reference->setRotation(pi / 2);
    expectNear(reference->blockTransform() * OdGePoint3d(11, 6, 0), 103, 202, 0);
    reference->setNormal({0, 0, -1});
    expectNear(reference->blockTransform() * OdGePoint3d(10, 5, 0), -100, 200, 0);
}

TEST(BlockTransformTest, TakesAReferenceToNothing) {
    const auto reference = make<OdDbBlockReference>();
    EXPECT_TRUE(reference->blockTableRecord().isNull());
    reference->setPosition({1, 2, 3});
    expectNear(reference->blockTransform() * OdGePoint3d(), 1, 2, 3);
}
