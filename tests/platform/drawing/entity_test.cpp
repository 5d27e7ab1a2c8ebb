// SPDX-License-Identifier: MIT
// Common properties of entities, texts and shapes.
#include "drawing_support.h"

#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

TEST(EntityTest, TakesALayerByName) {
    const auto db = newDatabase();
    const OdDbObjectId layer = addLayer(*db.get(), "PAG1");
    const auto line = make<OdDbLine>();
    EXPECT_EQ(utf8(line->layer()), "0");
    EXPECT_EQ(codeOf([&] { line->setLayer(od("PAG1")); }), eNotInDatabase) << "a name needs a database";
    append(*db.get(), line);
    line->setLayer(od("PAG1"));
    EXPECT_EQ(line->layerId(), layer);
    EXPECT_EQ(codeOf([&] { line->setLayer(od("pag1")); }), eKeyNotFound);
    EXPECT_EQ(codeOf([&] { line->setLayer(od("NOPE")); }), eKeyNotFound);
    EXPECT_EQ(utf8(line->layer()), "PAG1") << "a failure changes nothing";
    EXPECT_EQ(namesOf(db->getLayerTableId()).size(), 2u) << "and makes no layer";
    open<OdDbLayerTableRecord>(addLayer(*db.get(), "ERASED"), OdDb::kForWrite)->erase();
    EXPECT_EQ(codeOf([&] { line->setLayer(od("ERASED")); }), eKeyNotFound);
}

TEST(EntityTest, TakesALayerById) {
    const auto db = newDatabase();
    const OdDbObjectId layer = addLayer(*db.get(), "L");
    const auto line = make<OdDbLine>();
    line->setLayer(layer);
    EXPECT_EQ(utf8(line->layer()), "L") << "an id needs no database of the entity";
    append(*db.get(), line);
    EXPECT_EQ(utf8(line->layer()), "L");
    EXPECT_EQ(codeOf([&] { line->setLayer(OdDbObjectId::kNull); }), eKeyNotFound);
    EXPECT_EQ(codeOf([&] { line->setLayer(db->getModelSpaceId()); }), eNotThatKindOfClass);
    EXPECT_EQ(line->layerId(), layer);
}

TEST(EntityTest, StandsOnLayerZeroWhenItsLayerBelongsToAnotherDrawing) {
    const auto db = newDatabase(), other = newDatabase();
    const auto line = make<OdDbLine>();
    line->setLayer(addLayer(*other.get(), "FOREIGN"));
    append(*db.get(), line);
    EXPECT_EQ(line->layerId(), db->getLayerZeroId());
}

TEST(EntityTest, CopiesPropertiesFromAnother) {
    const auto db = newDatabase();
    const auto from = make<OdDbCircle>(), untouched = make<OdDbCircle>();
    append(*db.get(), from);
    from->setLayer(addLayer(*db.get(), "L"));
    from->setColor(OdCmColor::fromRgb(1, 2, 3));
    from->setLinetype(db->getLinetypeContinuousId());
    from->setLinetypeScale(2.5);
    from->setLineWeight(35);
    from->setTransparency(0x02000050);
    from->setVisible(false);
    const auto to = make<OdDbLine>();
    append(*db.get(), to);
    to->setPropertiesFrom(from.get());
    EXPECT_FALSE(to->isVisible());
    EXPECT_EQ(utf8(to->layer()), "L");
    EXPECT_EQ(to->color(), OdCmColor::fromRgb(1, 2, 3));
    EXPECT_EQ(to->linetypeId(), db->getLinetypeContinuousId());
    EXPECT_EQ(to->linetypeScale(), 2.5);
    EXPECT_EQ(to->lineWeight(), 35);
    EXPECT_EQ(to->transparency(), 0x02000050u);
    to->setPropertiesFrom(nullptr);
    EXPECT_EQ(to->lineWeight(), 35);
    EXPECT_EQ(untouched->lineWeight(), -1);
    EXPECT_TRUE(untouched->linetypeId().isNull());
    EXPECT_TRUE(untouched->isVisible());
    EXPECT_EQ(untouched->color(), OdCmColor());
}

TEST(EntityTest, CountsRequestsForRedraw) {
    const auto line = make<OdDbLine>();
    line->recordGraphicsModified(true);
    line->recordGraphicsModified(false);
    line->recordGraphicsModified();
    EXPECT_EQ(line->graphicsRequests(), 2u);
}

TEST(EntityTest, CopiesEveryShapeOutsideTheDatabase) {
    const auto db = newDatabase();
    const auto polyline = make<OdDbPolyline>();
    polyline->addVertexAt(0, {1, 2});
    append(*db.get(), polyline);
    polyline->setColor(OdCmColor::fromIndex(4));
    const OdSmartPtr<OdDbPolyline> copy(OdDbPolyline::cast(polyline->clone()), lm::drawing::kAttach);
    ASSERT_FALSE(copy.isNull());
    EXPECT_FALSE(copy->isDBRO());
    EXPECT_EQ(copy->numRefs(), 1);
    EXPECT_EQ(copy->numVerts(), 1u);
    EXPECT_EQ(copy->color().colorIndex(), 4);
    copy->addVertexAt(1, {3, 4});
    EXPECT_EQ(polyline->numVerts(), 1u);
    const std::vector<OdSmartPtr<OdDbEntity>> others = {
        make<OdDbLine>(),          make<OdDbCircle>(),    make<OdDbArc>(),
        make<OdDbEllipse>(),       make<OdDbPoint>(),     make<OdDbText>(),
        make<OdDbMText>(),         make<OdDbAttribute>(), make<OdDbAttributeDefinition>(),
        make<OdDbBlockReference>()};
    for (const auto& entity : others) {
        const OdSmartPtr<OdRxObject> other(entity->clone(), lm::drawing::kAttach);
        ASSERT_FALSE(other.isNull()) << entity->isA()->asciiName();
        EXPECT_EQ(other->isA(), entity->isA());
    }
}

TEST(PolylineTest, ChecksVertexIndices) {
    const auto wire = make<OdDbPolyline>();
    EXPECT_EQ(wire->numVerts(), 0u);
    EXPECT_THROW(wire->getPointAt(0), OdError_InvalidIndex);
    wire->addVertexAt(0, {1, 1});
    wire->addVertexAt(1, {3, 3}, 0.5);
    wire->addVertexAt(1, {2, 2});
    EXPECT_EQ(wire->getPointAt(1), OdGePoint3d(2, 2, 0));
    EXPECT_EQ(wire->getBulgeAt(2), 0.5);
    EXPECT_THROW(wire->addVertexAt(4, {0, 0}), OdError_InvalidIndex);
    EXPECT_THROW(wire->getPointAt(3), OdError_InvalidIndex);
    EXPECT_THROW(wire->getBulgeAt(3), OdError_InvalidIndex);
    EXPECT_FALSE(wire->isClosed());
    wire->setClosed(true);
    EXPECT_TRUE(wire->isClosed());
}

TEST(TextTest, BoundsItselfByAFixedRule) {
    const auto text = make<OdDbText>();
    text->setTextString(od("NUMERO"));
    text->setHeight(2.5);
    text->setWidthFactor(0.8);
    text->setPosition({10, 20, 3});
    OdArray<OdGePoint3d> corners{{9, 9, 9}};
    text->getBoundingPoints(corners);
    ASSERT_EQ(corners.size(), 4u);
    const double width = 0.6 * 2.5 * 0.8 * 6;
    EXPECT_EQ(corners[0], OdGePoint3d(10, 20, 3));
    EXPECT_EQ(corners[1], OdGePoint3d(10 + width, 20, 3));
    EXPECT_EQ(corners[2], OdGePoint3d(10 + width, 22.5, 3));
    EXPECT_EQ(corners[3], OdGePoint3d(10, 22.5, 3));
    text->setRotation(pi / 2);
    text->getBoundingPoints(corners);
    EXPECT_NEAR(corners[1].x, 10, 1e-12);
    EXPECT_NEAR(corners[1].y, 20 + width, 1e-12);
    EXPECT_NEAR(corners[2].x, 7.5, 1e-12);
    EXPECT_NEAR(corners[3].x, 7.5, 1e-12);
    EXPECT_NEAR(corners[3].y, 20, 1e-12);
    text->setTextString(od(""));
    text->getBoundingPoints(corners);
    EXPECT_EQ(corners[0], corners[1]);
}

TEST(TextTest, StandsByItsPositionUnlessAligned) {
    const auto text = make<OdDbText>();
    EXPECT_TRUE(text->isDefaultAlignment());
    text->setHorizontalMode(OdDbText::kCenter);
    EXPECT_FALSE(text->isDefaultAlignment());
    text->setHorizontalMode(OdDbText::kLeft);
    text->setVerticalMode(OdDbText::kTop);
    EXPECT_FALSE(text->isDefaultAlignment());
    text->setMirrorInX(true);
    EXPECT_TRUE(text->isMirroredInX());
    EXPECT_FALSE(text->isMirroredInY());
    text->setMirrorInY(true);
    text->setMirrorInX(false);
    EXPECT_FALSE(text->isMirroredInX());
    EXPECT_TRUE(text->isMirroredInY());
}

TEST(EntityTest, RefusesLayersAndLineTypesOfAnotherDrawing) {
    const auto db = newDatabase(), other = newDatabase();
    const auto line = make<OdDbLine>();
    append(*db, line);
    const OdDbObjectId layer = line->layerId();
    EXPECT_EQ(codeOf([&] { line->setLayer(other->getLayerZeroId()); }), eInvalidInput);
    EXPECT_EQ(codeOf([&] { line->setLinetype(other->getLinetypeByBlockId()); }), eInvalidInput);
    const auto there = make<OdDbLine>();
    append(*other, there);
    there->setColor(OdCmColor::fromIndex(5));
    EXPECT_EQ(codeOf([&] { line->setPropertiesFrom(there); }), eInvalidInput);
    EXPECT_EQ(line->layerId(), layer);
    EXPECT_TRUE(line->linetypeId().isNull());
    EXPECT_NE(line->color(), OdCmColor::fromIndex(5));

    const auto outside = make<OdDbLine>();
    outside->setPropertiesFrom(there);
    outside->setLinetype(other->getLinetypeByBlockId());
    EXPECT_EQ(outside->layerId(), other->getLayerZeroId()) << "outside any drawing every layer will do";
    line->setLinetype(db->getLinetypeByBlockId());
    line->setLinetype(OdDbObjectId::kNull);
    EXPECT_TRUE(line->linetypeId().isNull());
}
