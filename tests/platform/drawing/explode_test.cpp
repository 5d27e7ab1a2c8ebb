// SPDX-License-Identifier: MIT
// Parts of references, attributes made of definitions, and moving what isn't read.
#include "clone_support.h"

#include <numbers>

using namespace drawing_test;
using std::numbers::pi;

namespace {

using Pieces = OdArray<OdSmartPtr<OdDbEntity>>;
using Strings = std::vector<std::string>;

void expectNear(const OdGePoint3d& p, double x, double y, double z = 0) {
    EXPECT_NEAR(p.x, x, 1e-9);
    EXPECT_NEAR(p.y, y, 1e-9);
    EXPECT_NEAR(p.z, z, 1e-9);
}

struct ExplodeTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    OdDbObjectId block = addBlock(*db, "B");
    OdSmartPtr<OdDbBlockReference> reference = make<OdDbBlockReference>();

    ExplodeTest() { reference->setBlockTableRecord(block); }
    template<class T>
    OdSmartPtr<T> put(OdSmartPtr<T> entity) {
        open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(entity);
        return entity;
    }
    Pieces pieces(OdResult expected = eOk) {
        Pieces all;
        EXPECT_EQ(reference->explode(all), expected);
        return all;
    }
    template<class T>
    OdSmartPtr<T> only() {
        const Pieces all = pieces();
        EXPECT_EQ(all.size(), 1u);
        return OdSmartPtr<T>(all[0]);
    }
    /// Stretched to double in x, a quarter turn, then moved by (10, 20).
    void stretch() {
        reference->setScaleFactors({2, 1, 1});
        reference->setRotation(pi / 2);
        reference->setPosition({10, 20, 0});
    }
};

/// Points of an ellipse at the ends and in the middle of its parameters.
OdGePoint3d pointAt(const OdDbEllipse& e, double t) {
    const OdGeVector3d minor = e.normal().crossProduct(e.majorAxis()) * e.radiusRatio();
    return e.center() + e.majorAxis() * std::cos(t) + minor * std::sin(t);
}

std::string entity(const std::string& type, const std::string& groups) {
    return "0 " + type + "|5 100|330 30|100 AcDbEntity|8 0|" + groups;
}

} // namespace

TEST_F(ExplodeTest, OtherEntitiesHaveNoParts) {
    Pieces all;
    EXPECT_EQ(make<OdDbLine>()->explode(all), eNotApplicable);
    EXPECT_EQ(make<OdDbText>()->explode(all), eNotApplicable);
    EXPECT_EQ(make<OdDbUnreadEntity>()->explode(all), eNotApplicable);
    EXPECT_TRUE(all.isEmpty());
}

TEST_F(ExplodeTest, AnEmptyBlockHasNoPartsAndNoBlockIsAnError) {
    EXPECT_TRUE(pieces().isEmpty());
    reference->setBlockTableRecord(OdDbObjectId::kNull);
    EXPECT_TRUE(pieces(eNotApplicable).isEmpty());
    reference->setBlockTableRecord(block);
    block.openObject(OdDb::kForWrite)->erase();
    EXPECT_TRUE(pieces(eNotApplicable).isEmpty());
}

TEST_F(ExplodeTest, GivesCopiesMovedByTheBlockTransform) {
    const auto line = make<OdDbLine>();
    line->setStartPoint({1, 0, 0});
    line->setEndPoint({2, 0, 0});
    line->setColor(OdCmColor::fromIndex(4));
    line->setXData(chainOf("1001 A|1000 b"));
    put(line);
    line->setLayer(addLayer(*db, "L"));
    open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->setOrigin({1, 0, 0});
    reference->setScaleFactors({2, 2, 2});
    reference->setRotation(pi / 2);
    reference->setPosition({10, 20, 30});
    const auto piece = only<OdDbLine>();
    EXPECT_FALSE(piece->isDBRO());
    expectNear(piece->startPoint(), 10, 20, 30);
    expectNear(piece->endPoint(), 10, 22, 30);
    EXPECT_EQ(piece->layerId(), line->layerId());
    EXPECT_EQ(piece->color(), OdCmColor::fromIndex(4));
    EXPECT_EQ(textOf(piece->xData()), "1001 A|1000 b");
    EXPECT_EQ(line->endPoint(), OdGePoint3d(2, 0, 0)) << "the block stays";
}

TEST_F(ExplodeTest, AddsToTheArrayAndPassesOverErasedEntities) {
    put(make<OdDbLine>());
    put(make<OdDbCircle>())->erase();
    Pieces all{make<OdDbPoint>()};
    EXPECT_EQ(reference->explode(all), eOk);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_TRUE(all[1]->isKindOf(OdDbLine::desc()));
}

TEST_F(ExplodeTest, DefinitionsComeOutAsDefinitions) {
    const auto definition = make<OdDbAttributeDefinition>();
    definition->setTag(od("TAG"));
    definition->setPosition({1, 2, 0});
    definition->setAlignmentPoint({3, 4, 0});
    put(definition);
    const auto attribute = make<OdDbAttribute>();
    attribute->setTag(od("TAG"));
    reference->appendAttribute(attribute);
    reference->setPosition({10, 0, 0});
    const auto piece = only<OdDbAttributeDefinition>();
    EXPECT_EQ(utf8(piece->tag()), "TAG");
    expectNear(piece->position(), 11, 2);
    expectNear(piece->alignmentPoint(), 13, 4);
}

TEST_F(ExplodeTest, InnerReferencesStayReferencesWithTheirAttributes) {
    const OdDbObjectId inner = addBlock(*db, "INNER");
    open<OdDbBlockTableRecord>(inner, OdDb::kForWrite)->appendOdDbEntity(make<OdDbLine>());
    const auto nested = make<OdDbBlockReference>();
    nested->setBlockTableRecord(inner);
    nested->setPosition({1, 0, 0});
    const auto attribute = make<OdDbAttribute>();
    attribute->setTag(od("A"));
    attribute->setTextString(od("1"));
    attribute->setPosition({1, 1, 0});
    nested->appendAttribute(attribute);
    put(nested);
    reference->setScaleFactors({3, 3, 3});
    const auto piece = only<OdDbBlockReference>();
    EXPECT_EQ(piece->blockTableRecord(), inner);
    expectNear(piece->position(), 3, 0);
    EXPECT_NEAR(piece->scaleFactors().sx, 3, 1e-9);
    EXPECT_EQ(attributesOf(piece), Strings{"A=1"});
    const OdSmartPtr<OdDbAttribute> moved(piece->attributeIterator()->entity());
    expectNear(moved->position(), 3, 3);
    EXPECT_EQ(open<OdDbBlockTableRecord>(inner)->getBlockReferenceIds().size(), 1u)
        << "pieces stand in no drawing";
}

TEST_F(ExplodeTest, StretchedCirclesBecomeEllipses) {
    const auto circle = make<OdDbCircle>();
    circle->setCenter({1, 1, 0});
    circle->setRadius(3);
    circle->setColor(OdCmColor::fromIndex(2));
    put(circle);
    stretch();
    const auto piece = only<OdDbEllipse>();
    expectNear(piece->center(), 9, 22);
    EXPECT_NEAR(piece->majorAxis().length(), 6, 1e-9);
    EXPECT_NEAR(std::fabs(piece->majorAxis().y), 6, 1e-9);
    EXPECT_NEAR(piece->radiusRatio(), 0.5, 1e-9);
    EXPECT_EQ(piece->startParam(), 0);
    EXPECT_NEAR(piece->endParam(), 2 * pi, 1e-9);
    EXPECT_EQ(piece->color(), OdCmColor::fromIndex(2));
}

TEST_F(ExplodeTest, StretchedArcsBecomeEllipticalArcsBetweenTheSamePoints) {
    const auto arc = make<OdDbArc>();
    arc->setRadius(2);
    arc->setStartAngle(3 * pi / 2);
    arc->setEndAngle(pi / 4);
    put(arc);
    for (const double sx : {3.0, -3.0}) {
        reference->setScaleFactors({sx, 1, 1});
        const auto piece = only<OdDbEllipse>();
        const double first = piece->startParam(), last = piece->endParam();
        const OdGeMatrix3d matrix = reference->blockTransform();
        const auto on = [&](double t) { return matrix * OdGePoint3d(2 * std::cos(t), 2 * std::sin(t), 0); };
        EXPECT_LT(pointAt(*piece, first).distanceTo(on(-pi / 2)), 1e-9);
        EXPECT_LT(pointAt(*piece, last).distanceTo(on(pi / 4)), 1e-9);
        EXPECT_LT(pointAt(*piece, (first + last) / 2).distanceTo(on(-pi / 8)), 1e-9) << "on the same side";
    }
}

TEST_F(ExplodeTest, StretchedEllipsesStayEllipses) {
    const auto ellipse = make<OdDbEllipse>();
    ellipse->setMajorAxis({3, 3, 0});
    ellipse->setRadiusRatio(0.5);
    ellipse->setStartParam(0.25);
    ellipse->setEndParam(2);
    put(ellipse);
    stretch();
    const auto piece = only<OdDbEllipse>();
    const OdGeMatrix3d matrix = reference->blockTransform();
    for (const double t : {0.0, 0.5, 1.0})
        EXPECT_LT(pointAt(*piece, piece->startParam() + t * (piece->endParam() - piece->startParam()))
                      .distanceTo(matrix * pointAt(*ellipse, 0.25 + t * 1.75)),
                  1e-9);
    EXPECT_LE(piece->radiusRatio(), 1);
    EXPECT_NEAR(piece->normal().dotProduct(piece->majorAxis()), 0, 1e-9);
}

TEST_F(ExplodeTest, StretchedPolylinesStayPolylinesWithoutArcsAndFallApartWithThem) {
    const auto polyline = make<OdDbPolyline>();
    polyline->addVertexAt(0, {0, 0});
    polyline->addVertexAt(1, {2, 0});
    polyline->addVertexAt(2, {2, 1});
    polyline->setClosed(true);
    put(polyline);
    stretch();
    const auto straight = only<OdDbPolyline>();
    ASSERT_EQ(straight->numVerts(), 3u);
    EXPECT_TRUE(straight->isClosed());
    expectNear(straight->getPointAt(1), 10, 24);
    expectNear(straight->getPointAt(2), 9, 24);

    const auto open = drawing_test::open<OdDbPolyline>(polyline->objectId(), OdDb::kForWrite);
    open->addVertexAt(3, {0, 1}, 1); // back to the start by a half circle
    const Pieces all = pieces();
    ASSERT_EQ(all.size(), 4u);
    const OdSmartPtr<OdDbLine> line(all[0]);
    expectNear(line->startPoint(), 10, 20);
    expectNear(line->endPoint(), 10, 24);
    const OdSmartPtr<OdDbEllipse> arc(all[3]);
    const OdGeMatrix3d matrix = reference->blockTransform();
    EXPECT_LT(pointAt(*arc, arc->startParam()).distanceTo(matrix * OdGePoint3d(0, 1, 0)), 1e-9);
    EXPECT_LT(pointAt(*arc, arc->endParam()).distanceTo(matrix * OdGePoint3d(0, 0, 0)), 1e-9);
    EXPECT_LT(pointAt(*arc, (arc->startParam() + arc->endParam()) / 2)
                  .distanceTo(matrix * OdGePoint3d(-0.5, 0.5, 0)),
              1e-9);
}

TEST_F(ExplodeTest, StretchedTextsKeepTheirBox) {
    const auto text = make<OdDbText>();
    text->setTextString(od("ABCD"));
    text->setHeight(2);
    text->setPosition({1, 1, 0});
    put(text);
    reference->setScaleFactors({3, 1, 1});
    const auto piece = only<OdDbText>();
    OdArray<OdGePoint3d> before, after;
    text->getBoundingPoints(before);
    piece->getBoundingPoints(after);
    const OdGeMatrix3d matrix = reference->blockTransform();
    for (int i = 0; i < 4; ++i) EXPECT_LT(after[i].distanceTo(matrix * before[i]), 1e-9);
    EXPECT_NEAR(piece->height(), 2, 1e-9);
    EXPECT_NEAR(piece->widthFactor(), 3, 1e-9);
    EXPECT_NEAR(piece->oblique(), 0, 1e-9);

    drawing_test::open<OdDbText>(text->objectId(), OdDb::kForWrite)->setRotation(pi / 4);
    const auto leaning = only<OdDbText>();
    EXPECT_NEAR(leaning->rotation(), std::atan2(1, 3), 1e-9);
    EXPECT_GT(std::fabs(leaning->oblique()), 0.1) << "the right angle leans";
}

TEST_F(ExplodeTest, StretchedInnerReferencesAndAttributesAreKept) {
    const OdDbObjectId inner = addBlock(*db, "INNER");
    const auto nested = make<OdDbBlockReference>();
    nested->setBlockTableRecord(inner);
    nested->setPosition({1, 0, 0});
    nested->setRotation(pi / 2);
    nested->setScaleFactors({2, 5, 1});
    const auto attribute = make<OdDbAttribute>();
    attribute->setTag(od("A"));
    attribute->setPosition({1, 0, 0});
    nested->appendAttribute(attribute);
    put(nested);
    const OdGeMatrix3d inside = nested->blockTransform();
    reference->setScaleFactors({3, 1, 1});
    auto piece = only<OdDbBlockReference>();
    const OdGeMatrix3d place = reference->blockTransform() * inside;
    for (const OdGePoint3d p : {OdGePoint3d(0, 0, 0), OdGePoint3d(1, 0, 0), OdGePoint3d(0, 1, 0)})
        EXPECT_LT((piece->blockTransform() * p).distanceTo(place * p), 1e-9)
            << "its axes stay at right angles";
    expectNear(OdSmartPtr<OdDbAttribute>(piece->attributeIterator()->entity())->position(), 3, 0);

    drawing_test::open<OdDbBlockReference>(nested->objectId(), OdDb::kForWrite)->setRotation(pi / 4);
    piece = only<OdDbBlockReference>(); // would lean: place and lengths of the axes stay
    expectNear(piece->position(), 3, 0);
    const OdGeMatrix3d leaning = reference->blockTransform() * nested->blockTransform();
    EXPECT_NEAR(piece->scaleFactors().sx, (leaning * OdGeVector3d::kXAxis).length(), 1e-9);
    EXPECT_NEAR(piece->scaleFactors().sy, (leaning * OdGeVector3d::kYAxis).length(), 1e-9);
    EXPECT_EQ(attributesOf(piece).size(), 1u);
}

TEST_F(ExplodeTest, MirroredAndLeaningNormalsKeepTheirPlace) {
    const auto circle = make<OdDbCircle>();
    circle->setCenter({2, 1, 0});
    circle->setRadius(1);
    put(circle);
    reference->setScaleFactors({-1, 1, 1});
    reference->setNormal({0, 0, -1});
    const auto piece = only<OdDbCircle>();
    const OdGePoint3d world = OdGeMatrix3d::planeToWorld(piece->normal()) * piece->center();
    EXPECT_LT(world.distanceTo(reference->blockTransform() * OdGePoint3d(2, 1, 0)), 1e-9);
}

// --- what isn't read
// --------------------------------------------------------------------------------------------

namespace {

/// Puts an entity that isn't read into the block "B" of a file, and gives the entry of its piece in model
/// space.
std::string pieceOf(const std::string& groups, const OdGeScale3d& scale, double rotation,
                    const OdGePoint3d& position, bool binary = false) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
    parts.blocks = dxf::Parts::block("B", "31", "30", groups);
    const auto db = readBytes(binary ? dxf::binary(parts.groups()) : dxf::text(parts.groups()));
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(blockTable(*db)->getAt(od("B")));
    reference->setScaleFactors(scale);
    reference->setRotation(rotation);
    reference->setPosition(position);
    Pieces all;
    EXPECT_EQ(reference->explode(all), eOk);
    EXPECT_EQ(all.size(), 1u);
    return entryOf(*db, append(*db, all[0]));
}

/// The numbers of a code in an entry, to six digits.
std::string numbers(const std::string& entry, int code) {
    std::string out;
    for (const auto& [c, value] : dxf::split(entry))
        if (c == code) {
            char text[32];
            const double number = std::round(std::strtod(value.c_str(), nullptr) * 1e6) / 1e6;
            std::snprintf(text, sizeof text, "%g ", number + 0.0);
            out += text;
        }
    return out;
}

} // namespace

TEST(MoveUnreadTest, MovesPointsOfTheWorld) {
    const std::string spline =
        entity("SPLINE", "100 AcDbSpline|210 0.0|220 0.0|230 1.0|70 8|71 3|72 8|73 4|40 0.0|40 "
                         "1.0|10 1.0|20 0.0|30 0.0|10 2.0|20 3.0|30 0.0|12 1.0|22 0.0|32 0.0");
    for (const bool binary : {false, true}) {
        const std::string entry = pieceOf(spline, {2, 2, 2}, pi / 2, {10, 20, 0}, binary);
        EXPECT_EQ(numbers(entry, 10), "10 4 ") << entry;
        EXPECT_EQ(numbers(entry, 20), "22 24 ");
        EXPECT_EQ(numbers(entry, 12) + numbers(entry, 22), "0 2 ") << "a vector isn't moved along";
        EXPECT_EQ(numbers(entry, 40), "0 1 ") << "knots are no lengths";
    }
    const std::string stretched = pieceOf(spline, {2, 1, 1}, 0, {0, 0, 0});
    EXPECT_EQ(numbers(stretched, 10) + numbers(stretched, 20), "2 4 0 3 ");
}

TEST(MoveUnreadTest, MovesPointsInAPlane) {
    const std::string solid = entity(
        "SOLID",
        "100 AcDbTrace|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0|12 0.0|22 1.0|32 0.0|13 1.0|23 1.0|33 "
        "0.0");
    const std::string turned = pieceOf(solid, {3, 3, 3}, pi / 2, {5, 0, 0});
    EXPECT_EQ(numbers(turned, 11) + numbers(turned, 21), "5 3 ");
    // A mirrored one gets the opposite normal, whose system has its x axis the other way.
    const std::string mirrored = pieceOf(solid, {-1, 1, 1}, 0, {5, 0, 0});
    EXPECT_EQ(numbers(mirrored, 230), "-1 ") << mirrored;
    EXPECT_EQ(numbers(mirrored, 11) + numbers(mirrored, 21), "-4 0 ");
}

TEST(MoveUnreadTest, MovesHatches) {
    const std::string hatch = entity("HATCH", "100 AcDbHatch|10 0.0|20 0.0|30 0.0|210 0.0|220 0.0|230 1.0|2 "
                                              "ANSI31|70 0|71 0|91 2|92 7|72 1|73 1|93 2|10 "
                                              "1.0|20 0.0|42 0.5|10 2.0|20 0.0|42 0.0|97 0|92 1|93 2|72 1|10 "
                                              "0.0|20 0.0|11 1.0|21 1.0|72 2|10 3.0|20 0.0|40 "
                                              "2.0|50 0.0|51 90.0|73 1|97 0|75 0|76 1|52 45.0|41 2.0|77 0|78 "
                                              "1|53 45.0|43 1.0|44 0.0|45 0.0|46 1.0|79 "
                                              "0|98 1|10 1.0|20 1.0");
    const std::string entry = pieceOf(hatch, {2, 2, 2}, pi / 2, {100, 0, 0});
    EXPECT_EQ(numbers(entry, 10), "0 100 100 100 100 98 ") << entry;
    EXPECT_EQ(numbers(entry, 20), "0 2 4 0 6 2 ");
    EXPECT_EQ(numbers(entry, 11) + numbers(entry, 21), "98 2 ");
    EXPECT_EQ(numbers(entry, 40), "4 ");
    EXPECT_EQ(numbers(entry, 42), "0.5 0 ");
    EXPECT_EQ(numbers(entry, 50) + numbers(entry, 51), "90 180 ");
    EXPECT_EQ(numbers(entry, 52) + numbers(entry, 53), "135 135 ");
    EXPECT_EQ(numbers(entry, 41), "4 ");
    EXPECT_EQ(numbers(entry, 43) + numbers(entry, 44) + numbers(entry, 45) + numbers(entry, 46),
              "100 2 -2 0 ");
}

TEST(MoveUnreadTest, MovesVerticesOfPolylines) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
    parts.blocks =
        dxf::Parts::block("B", "31", "30",
                          entity("POLYLINE", "100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 5.0|70 1|40 1.0") +
                              "|0 VERTEX|5 101|330 100|100 AcDbEntity|8 0|100 AcDbVertex|100 AcDb2dVertex|10 "
                              "1.0|20 0.0|30 5.0|42 0.5"
                              "|0 SEQEND|5 103|330 100|100 AcDbEntity|8 0");
    const auto db = readGroups(parts.groups());
    db->setUndoRecording(true);
    const auto before = entryOf(*db, db->getOdDbObjectId(OdDbHandle(0x101)));
    const auto polyline = byHandle<OdDbUnreadEntity>(*db, "100", OdDb::kForWrite);
    ASSERT_EQ(polyline->transformBy(OdGeMatrix3d::translation({1, 2, 3}) * OdGeMatrix3d::scaling({2, 2, 2})),
              eOk);
    const std::string head = entryOf(*db, polyline->objectId());
    EXPECT_EQ(numbers(head, 10) + numbers(head, 20) + numbers(head, 30), "0 0 13 ") << head;
    EXPECT_EQ(numbers(head, 40), "2 ");
    const std::string vertex = entryOf(*db, db->getOdDbObjectId(OdDbHandle(0x101)));
    EXPECT_EQ(numbers(vertex, 10) + numbers(vertex, 20) + numbers(vertex, 42), "3 2 0.5 ") << vertex;
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(entryOf(*db, db->getOdDbObjectId(OdDbHandle(0x101))), before);
    EXPECT_EQ(numbers(entryOf(*db, polyline->objectId()), 30), "5 ");
}

TEST(MoveUnreadTest, RefusesWhatItDoesNotKnow) {
    dxf::Parts parts;
    const std::string lead = "|330 1F|100 AcDbEntity|8 0|";
    parts.entities = "0 REGION|5 100" + lead + "100 AcDbModelerGeometry|10 1.0|20 1.0|30 1.0|0 SHAPE|5 101" +
                     lead + "100 AcDbShape|10 1.0|20 1.0|30 1.0|40 1.0|2 X";
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(byHandle<OdDbEntity>(*db, "100", OdDb::kForWrite)->transformBy(OdGeMatrix3d()), eNotApplicable);
    const auto shape = byHandle<OdDbEntity>(*db, "101", OdDb::kForWrite);
    EXPECT_EQ(shape->transformBy(OdGeMatrix3d::scaling({2, 1, 1})), eNotApplicable);
    EXPECT_EQ(shape->transformBy(OdGeMatrix3d::scaling({2, 2, 2})), eOk);
    EXPECT_FALSE(byHandle<OdDbEntity>(*db, "100")->isModified());
    EXPECT_EQ(codeOf([&] {
                  byHandle<OdDbEntity>(*db, "101")->downgradeOpen();
                  byHandle<OdDbEntity>(*db, "101")->transformBy(OdGeMatrix3d());
              }),
              eNotOpenForWrite);
}

TEST(MoveUnreadTest, ADimensionComesOutAsItsPicture) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B") + "|" +
                         dxf::Parts::record("BLOCK_RECORD", "40", "1", "*D1");
    parts.blocks = dxf::Parts::block("B", "31", "30",
                                     entity("DIMENSION", "100 AcDbDimension|2 *D1|10 1.0|20 0.0|30 0.0")) +
                   "|" + dxf::Parts::block("*D1", "41", "40");
    const auto db = readGroups(parts.groups());
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(blockTable(*db)->getAt(od("B")));
    reference->setPosition({10, 0, 0});
    reference->setRotation(pi / 2);
    Pieces all;
    ASSERT_EQ(reference->explode(all), eOk);
    ASSERT_EQ(all.size(), 1u);
    const OdSmartPtr<OdDbBlockReference> picture(all[0]);
    EXPECT_EQ(picture->blockTableRecord(), blockTable(*db)->getAt(od("*D1")));
    EXPECT_EQ(picture->position(), OdGePoint3d(10, 0, 0));
    EXPECT_NEAR(picture->rotation(), pi / 2, 1e-9);
}

TEST(MoveUnreadTest, AnUnknownKindComesOutWhereItStands) {
    const std::string entry =
        pieceOf(entity("REGION", "100 AcDbModelerGeometry|10 1.0|20 2.0|30 3.0"), {1, 1, 1}, 0, {50, 0, 0});
    EXPECT_TRUE(contains(entry, "0 REGION|")) << entry;
    EXPECT_EQ(numbers(entry, 10), "1 ");
}

// --- attributes
// -------------------------------------------------------------------------------------------------

namespace {

OdSmartPtr<OdDbAttributeDefinition> definition(OdDbDatabase& db) {
    const auto made = make<OdDbAttributeDefinition>();
    made->setTag(od("DEF"));
    made->setTextString(od("default"));
    made->setPosition({1, 0, 0});
    made->setAlignmentPoint({2, 0, 0});
    made->setHeight(3);
    made->setRotation(0.25);
    made->setOblique(0.1);
    made->setWidthFactor(0.8);
    made->setThickness(1);
    made->setTextStyle(db.getTextStyleStandardId());
    made->setHorizontalMode(OdDbText::kCenter);
    made->setVerticalMode(OdDbText::kTop);
    made->setMirrorInX(true);
    made->setInvisible(true);
    return made;
}

} // namespace

TEST(AttributeFromBlockTest, TakesPlaceAndLooksUnderAMatrix) {
    const auto db = newDatabase();
    const auto from = definition(*db);
    const auto attribute = make<OdDbAttribute>();
    attribute->setAttributeFromBlock(from, OdGeMatrix3d::translation({10, 20, 0}) *
                                               OdGeMatrix3d::rotationZ(pi / 2) *
                                               OdGeMatrix3d::scaling({2, 2, 2}));
    EXPECT_EQ(utf8(attribute->textString()), "default");
    expectNear(attribute->position(), 10, 22);
    expectNear(attribute->alignmentPoint(), 10, 24);
    EXPECT_NEAR(attribute->height(), 6, 1e-9);
    EXPECT_NEAR(attribute->rotation(), 0.25 + pi / 2, 1e-9);
    EXPECT_NEAR(attribute->oblique(), 0.1, 1e-9);
    EXPECT_NEAR(attribute->widthFactor(), 0.8, 1e-9);
    EXPECT_NEAR(attribute->thickness(), 2, 1e-9);
    EXPECT_EQ(attribute->textStyle(), db->getTextStyleStandardId());
    EXPECT_EQ(attribute->horizontalMode(), OdDbText::kCenter);
    EXPECT_EQ(attribute->verticalMode(), OdDbText::kTop);
    EXPECT_TRUE(attribute->isMirroredInX());
    EXPECT_EQ(from->position(), OdGePoint3d(1, 0, 0));
}

TEST(AttributeFromBlockTest, LeavesTagInvisibilityLayerAndTheMultiLineForm) {
    const auto db = newDatabase();
    const OdDbObjectId layer = addLayer(*db, "MINE");
    const auto reference = make<OdDbBlockReference>();
    append(*db, reference);
    const auto attribute = make<OdDbAttribute>();
    reference->appendAttribute(attribute);
    attribute->setLayer(layer);
    attribute->setTag(od("MINE"));
    const auto lines = make<OdDbMText>();
    lines->setContents(od("a\\Pb"));
    attribute->setMTextAttribute(lines);
    attribute->setAttributeFromBlock(definition(*db), OdGeMatrix3d());
    EXPECT_EQ(utf8(attribute->tag()), "MINE");
    EXPECT_FALSE(attribute->isInvisible());
    EXPECT_EQ(attribute->layerId(), layer);
    EXPECT_EQ(utf8(attribute->getMTextAttribute()->contents()), "a\\Pb");
}

TEST(AttributeFromBlockTest, TakesAStretchAsWellAsATextCan) {
    const auto db = newDatabase();
    const auto from = definition(*db);
    from->setRotation(0);
    from->setOblique(0);
    const auto attribute = make<OdDbAttribute>();
    attribute->setAttributeFromBlock(from, OdGeMatrix3d::scaling({2, 3, 1}));
    expectNear(attribute->position(), 2, 0);
    EXPECT_NEAR(attribute->height(), 9, 1e-9);
    EXPECT_NEAR(attribute->widthFactor(), 0.8 * 2 / 3, 1e-9);
}

TEST(AttributeFromBlockTest, RefusesNothingAndForeignStyles) {
    const auto db = newDatabase(), other = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    append(*db, reference);
    const auto attribute = make<OdDbAttribute>();
    reference->appendAttribute(attribute);
    EXPECT_EQ(codeOf([&] { attribute->setAttributeFromBlock(nullptr, OdGeMatrix3d()); }), eNullObjectPointer);
    EXPECT_EQ(codeOf([&] { attribute->setAttributeFromBlock(definition(*other), OdGeMatrix3d()); }),
              eInvalidInput);
    EXPECT_TRUE(attribute->textString().isEmpty());
    attribute->downgradeOpen();
    EXPECT_EQ(codeOf([&] { attribute->setAttributeFromBlock(definition(*db), OdGeMatrix3d()); }),
              eNotOpenForWrite);
}
