// SPDX-License-Identifier: MIT
// Selection: which entities a box touches, filters, sets, the session's part, and the answers that choose.
#include "commandsupport.h"

#include "drawing/blockreference.h"

#include <chrono>
#include <memory>

namespace {

using namespace lm::test;

constexpr double kPi = 3.141592653589793;

std::unique_ptr<CHostSelectionSet> newSet(const Drawing& drawing) {
    return std::unique_ptr<CHostSelectionSet>(drawing.document().newSelectionSet());
}

/// Whether a box touches the only entity of a drawing.
bool touches(const Drawing& drawing, OdGePoint3d first, OdGePoint3d second) {
    const auto set = newSet(drawing);
    const int code = set->crossing(first, second, drawing.document().view(), nullptr);
    EXPECT_EQ(set->size() != 0 ? RTNORM : RTERROR, code);
    return set->size() != 0;
}

/// A filter for one layer for as long as it lives.
class LayerFilter {
public:
    LayerFilter(const Drawing& drawing, std::string_view layer)
        : m_api(*drawing.document().getAPI()), m_chain(hostSession()->buildList(8, hostText(layer))) {}
    ~LayerFilter() { m_api.relRb(m_chain); }
    operator const hst_resbufW*() const { return m_chain; }

private:
    CHostAPI& m_api;
    hst_resbufW* m_chain;
};

struct BoxCase {
    double x1, y1, x2, y2;
    bool touched;
};

void check(const Drawing& drawing, std::initializer_list<BoxCase> cases) {
    for (const BoxCase& box : cases) {
        EXPECT_EQ(box.touched, touches(drawing, {box.x1, box.y1, 0}, {box.x2, box.y2, 0}))
            << box.x1 << "," << box.y1 << " " << box.x2 << "," << box.y2;
        // Corners may come in any order, and z counts nothing.
        EXPECT_EQ(box.touched, touches(drawing, {box.x2, box.y2, 9}, {box.x1, box.y1, -9}));
        EXPECT_EQ(box.touched, touches(drawing, {box.x1, box.y2, 0}, {box.x2, box.y1, 0}));
    }
}

TEST(Crossing, TakesLinesByTheirShape) {
    const Drawing drawing;
    drawing.line(0, 0, 10, 10);
    check(drawing, {{4, 4, 6, 6, true},
                    {0, 5, 5, 10, true},          // the line goes through its corner
                    {0, 5.001, 4.999, 10, false}, // inside the line's extents, beside the line
                    {-2, -2, 0, 0, true},         // touching the end
                    {-2, -2, -0.001, -0.001, false},
                    {-5, -5, 20, 20, true}, // all of it
                    {10, 10, 12, 12, true},
                    {5, 5, 5, 5, true}}); // a box of no size
}

TEST(Crossing, TakesALineThroughABoxOfNoSizeAtTheOrigin) {
    const Drawing drawing;
    drawing.line(-1, 1, 1, -1);
    check(drawing, {{0, 0, 0, 0, true}});
}

TEST(Crossing, TakesLevelAndUprightLines) {
    const Drawing drawing;
    drawing.line(2, 3, 8, 3);
    check(drawing, {{0, 0, 10, 3, true},
                    {0, 3, 10, 9, true},
                    {4, 2, 5, 4, true},
                    {0, 0, 10, 2.999, false},
                    {8, 0, 9, 9, true},
                    {8.001, 0, 9, 9, false}});
}

TEST(Crossing, TakesALineOfNoLengthAsAPoint) {
    const Drawing drawing;
    drawing.line(1, 1, 1, 1);
    check(drawing, {{0, 0, 2, 2, true}, {1, 1, 2, 2, true}, {1.01, 1, 2, 2, false}});
}

TEST(Crossing, TakesCirclesByTheirLine) {
    const Drawing drawing;
    drawing.circle(0, 0, 5);
    check(drawing, {{-1, -1, 1, 1, false}, // inside the circle, away from its line
                    {-9, -9, 9, 9, true},  // around it
                    {5, -1, 6, 1, true},   // touching from outside
                    {-6, 5, 6, 7, true},
                    {4, 4, 6, 6, false}, // inside its extents
                    {3, 3, 6, 6, true},
                    {3, 4, 3, 4, true},       // a point of the line
                    {-0.1, -6, 0.1, 6, true}, // a thin box through it
                    {5.0001, -1, 6, 1, false}});
}

TEST(Crossing, TakesArcsByTheirLine) {
    const Drawing drawing;
    const OdSmartPtr<OdDbArc> arc(new OdDbArc, lm::drawing::kAttach);
    arc->setCenter({0, 0, 0});
    arc->setRadius(5);
    arc->setStartAngle(1.5 * kPi); // from below over the right to above
    arc->setEndAngle(0.5 * kPi);
    drawing.add(arc);
    check(drawing, {{4, -1, 6, 1, true},
                    {-6, -1, -4, 1, false}, // the part of the circle that isn't drawn
                    {-1, 4, 0, 6, true},    // its end
                    {-1, 4, -0.1, 6, false},
                    {-1, -1, 1, 1, false},
                    {2, 3, 3, 4, true}});
}

TEST(Crossing, TakesAnArcWithEqualAnglesAsACircle) {
    const Drawing drawing;
    const OdSmartPtr<OdDbArc> arc(new OdDbArc, lm::drawing::kAttach);
    arc->setRadius(5);
    drawing.add(arc);
    check(drawing, {{-6, -1, -4, 1, true}, {-1, -1, 1, 1, false}});
}

OdSmartPtr<OdDbPolyline> polyline(std::initializer_list<OdGePoint2d> points) {
    OdSmartPtr<OdDbPolyline> line(new OdDbPolyline, lm::drawing::kAttach);
    for (const OdGePoint2d& point : points) line->addVertexAt(line->numVerts(), point);
    return line;
}

TEST(Crossing, TakesPolylinesByTheirParts) {
    const Drawing drawing;
    const OdSmartPtr<OdDbPolyline> line = polyline({{0, 0}, {10, 0}, {10, 10}});
    drawing.add(line);
    check(drawing, {{4, -1, 6, 1, true}, {9, 4, 11, 6, true}, {4, 4, 6, 6, false}, {1, 1, 9, 9, false}});
    line->setClosed(true);
    check(drawing, {{4, 4, 6, 6, true}, {1, 2, 1.9, 9, false}});
}

TEST(Crossing, TakesPolylinesWithBulges) {
    const Drawing drawing;
    const OdSmartPtr<OdDbPolyline> line(new OdDbPolyline, lm::drawing::kAttach);
    line->addVertexAt(0, {0, 0}, 1); // half a circle to the right of the way: below
    line->addVertexAt(1, {10, 0});
    drawing.add(line);
    check(drawing, {{4, -6, 6, -4, true},
                    {4, -1, 6, 1, false},
                    {4, 4, 6, 6, false},
                    {-1, -1, 0, 0, true},
                    {5, -5, 5, -5, true},
                    {4, -4, 6, -1, false}});
}

TEST(Crossing, TakesBulgesToTheOtherSideAndShallowOnes) {
    const Drawing drawing;
    const OdSmartPtr<OdDbPolyline> line(new OdDbPolyline, lm::drawing::kAttach);
    line->addVertexAt(0, {0, 0}, -0.5); // rises by a quarter of the chord
    line->addVertexAt(1, {8, 0}, 0.25); // on the way back below, since closed: by an eighth above
    line->setClosed(true);
    drawing.add(line);
    check(drawing, {{3.9, 1.9, 4.1, 2.1, true},
                    {3.9, 0.9, 4.1, 1.1, true},
                    {3.9, 1.2, 4.1, 1.8, false},
                    {3.9, -0.5, 4.1, 0.5, false}});
}

TEST(Crossing, TakesAPolylineOfOneVertexAsAPointAndOneOfNoneNever) {
    const Drawing drawing;
    drawing.add(polyline({{3, 3}}));
    check(drawing, {{2, 2, 4, 4, true}, {4, 4, 5, 5, false}});
    const Drawing empty;
    empty.add(polyline({}));
    check(empty, {{-9, -9, 9, 9, false}});
}

TEST(Crossing, LooksAtMirroredShapesFromAbove) {
    const Drawing drawing;
    const OdSmartPtr<OdDbCircle> circle(new OdDbCircle, lm::drawing::kAttach);
    circle->setCenter({10, 0, 0});
    circle->setRadius(2);
    circle->setNormal({0, 0, -1}); // its x runs to the left
    drawing.add(circle);
    check(drawing, {{-13, -1, -11, 1, true}, {11, -1, 13, 1, false}});
}

TEST(Crossing, LooksAtTiltedCirclesFromAbove) {
    const Drawing drawing;
    const OdSmartPtr<OdDbCircle> circle(new OdDbCircle, lm::drawing::kAttach);
    circle->setRadius(5);
    circle->setNormal({1, 0, 0}); // seen from above a line along y
    drawing.add(circle);
    check(drawing, {{-1, 3, 1, 4, true}, {0.1, 3, 1, 4, false}, {-1, 5.1, 1, 6, false}});
}

TEST(Crossing, TakesOtherEntitiesByTheirExtents) {
    const Drawing drawing;
    const OdSmartPtr<OdDbText> text(new OdDbText, lm::drawing::kAttach);
    text->setPosition({10, 10, 0});
    text->setHeight(2);
    text->setTextString("ABCDE"); // 6 wide
    drawing.add(text);
    check(drawing, {{12, 10.5, 13, 11, true},
                    {16, 12, 20, 20, true},
                    {16.01, 12, 20, 20, false},
                    {0, 0, 10, 10, true},
                    {0, 0, 9.99, 9.99, false}});
}

TEST(Crossing, NeverTakesAnEntityWithoutExtents) {
    const Drawing drawing;
    drawing.add(OdSmartPtr<OdDbBlockReference>(new OdDbBlockReference, lm::drawing::kAttach));
    check(drawing, {{-99, -99, 99, 99, false}});
}

TEST(Crossing, WorksWithThePickBoxOfThePartsOnTop) {
    const double half = 0.30000001192092896;
    const Drawing drawing;
    drawing.line(1000.3, 0, 1000.3, 50);
    EXPECT_TRUE(touches(drawing, {1000 + half, 10 + half, 0}, {1000 - half, 10 - half, 0}));
    EXPECT_FALSE(touches(drawing, {999.9999 + half, 10 + half, 0}, {999.9999 - half, 10 - half, 0}));
}

TEST(Crossing, GivesLiveEntitiesOfModelSpaceInDrawingOrder) {
    const Drawing drawing;
    const OdDbObjectId first = drawing.circle(0, 0, 1), gone = drawing.line(0, 0, 1, 1),
                       last = drawing.line(0, 0, 2, 2);
    OdSmartPtr<OdDbEntity>(gone.openObject(OdDb::kForWrite))->erase(true);
    const OdSmartPtr<OdDbBlockTableRecord> paper(
        drawing.database().getPaperSpaceId().openObject(OdDb::kForWrite));
    paper->appendOdDbEntity(OdSmartPtr<OdDbLine>(new OdDbLine, lm::drawing::kAttach));
    const auto set = newSet(drawing);
    EXPECT_EQ(RTNORM, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, nullptr, -1));
    EXPECT_EQ((std::vector<OdDbObjectId>{first, last}), set->ids());
    EXPECT_EQ(first, set->id(0));
    EXPECT_EQ(last, set->id(1));
    EXPECT_TRUE(set->id(2).isNull());
}

TEST(Crossing, TakesAtMostTheLimit) {
    const Drawing drawing;
    for (int i = 0; i < 5; ++i) drawing.circle(i, 0, 1);
    const auto set = newSet(drawing);
    EXPECT_EQ(RTNORM, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, nullptr, 2));
    EXPECT_EQ(2u, set->size());
    EXPECT_EQ(RTERROR, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, nullptr, 0));
    EXPECT_EQ(RTNORM, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, nullptr, -1));
    EXPECT_EQ(5u, set->size());
}

TEST(Crossing, FiltersByTheExactNameOfTheLayerWhateverItsState) {
    const Drawing drawing;
    const OdDbObjectId layer = drawing.layer("Página 1");
    const OdDbObjectId inside = drawing.circle(0, 0, 1);
    drawing.circle(0, 0, 2);
    OdSmartPtr<OdDbEntity>(inside.openObject(OdDb::kForWrite))->setLayer(layer);
    {
        const OdSmartPtr<OdDbLayerTableRecord> record(layer.openObject(OdDb::kForWrite));
        record->setIsFrozen(true);
        record->setIsOff(true);
        record->setIsLocked(true);
    }
    const auto set = newSet(drawing);
    EXPECT_EQ(RTNORM, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, LayerFilter(drawing, "Página 1")));
    EXPECT_EQ(std::vector<OdDbObjectId>{inside}, set->ids());
    for (const char* name : {"página 1", "Página", "Página 1 ", "*", "", "NONE"})
        EXPECT_EQ(RTERROR,
                  newSet(drawing)->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, LayerFilter(drawing, name)))
            << name;
}

TEST(Crossing, FiltersByTheTypeNameAndByNothingItDoesNotKnow) {
    const Drawing drawing;
    const OdDbObjectId circle = drawing.circle(0, 0, 1);
    drawing.line(0, 0, 1, 1);
    CHostAPI& api = *drawing.document().getAPI();
    hst_resbufW* const filter = hostSession()->buildList(0, "CIRCLE");
    filter->rbnext = hostSession()->buildList(8, "0");
    const auto set = newSet(drawing);
    EXPECT_EQ(RTNORM, set->all(filter));
    EXPECT_EQ(std::vector<OdDbObjectId>{circle}, set->ids());
    api.relRb(filter);
    hst_resbufW* const unknown = hostSession()->buildList(7, "x");
    EXPECT_EQ(RTERROR, newSet(drawing)->all(unknown));
    api.relRb(unknown);
}

TEST(Crossing, LeavesTheSetAsItWasWhenNothingIsChosen) {
    const Drawing drawing;
    const OdDbObjectId circle = drawing.circle(0, 0, 1), far = drawing.circle(100, 0, 1);
    const auto set = newSet(drawing);
    EXPECT_EQ(0, set->option());
    set->setOption(0);
    EXPECT_EQ(RTNORM, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, nullptr));
    EXPECT_EQ(RTERROR, set->crossing({50, 50, 0}, {60, 60, 0}, nullptr, nullptr));
    EXPECT_EQ(std::vector<OdDbObjectId>{circle}, set->ids());
    EXPECT_EQ(RTNORM, set->crossing({90, -9, 0}, {110, 9, 0}, nullptr, nullptr));
    EXPECT_EQ(std::vector<OdDbObjectId>{far}, set->ids()) << "option 0 replaces";
    set->setOption(1);
    EXPECT_EQ(RTNORM, set->all(nullptr));
    EXPECT_EQ((std::vector<OdDbObjectId>{far, circle}), set->ids());
}

TEST(Crossing, ReachesKindsThatAreNotReadByTheirExtents) {
    const auto entity = [](const std::string& kind, const std::string& groups) {
        return "0\n" + kind + "\n100\nAcDbEntity\n8\n0\n100\nAcDbX\n" + groups;
    };
    const TemporaryFolder folder;
    const std::string path = folder.file(
        "kinds.dxf",
        "0\nSECTION\n2\nENTITIES\n" +
            entity("SOLID", "10\n0.0\n20\n0.0\n11\n1.0\n21\n0.0\n12\n0.0\n22\n1.0\n13\n1.0\n23\n1.0\n") +
            entity("SPLINE", "70\n8\n71\n3\n10\n10.0\n20\n0.0\n30\n0.0\n10\n12.0\n20\n5.0\n30\n0.0\n") +
            "0\nPOLYLINE\n8\n0\n66\n1\n70\n0\n0\nVERTEX\n8\n0\n10\n20.0\n20\n0.0\n0\nVERTEX\n8\n0\n10\n25."
            "0\n20\n0."
            "0\n0\nSEQEND\n8\n0\n" +
            entity("3DSOLID", "1\ntext\n") + "0\nENDSEC\n0\nEOF\n");
    Documents documents;
    CHostDocument* const document = documents.manager.openDocument(odPath(path));
    const std::unique_ptr<CHostSelectionSet> set(document->newSelectionSet());
    const auto chosen = [&](const OdGePoint3d& first, const OdGePoint3d& second) {
        set->crossing(first, second, document->view(), nullptr);
        return set->size();
    };
    EXPECT_EQ(1u, chosen({0.4, 0.4, 0}, {0.6, 0.6, 0}));
    EXPECT_EQ(1u, chosen({11, 4, 0}, {30, 9, 0}));
    EXPECT_EQ(1u, chosen({21, -1, 0}, {22, 1, 0}));
    EXPECT_EQ(3u, chosen({-99, -99, 0}, {99, 99, 0})) << "nobody knows where the body is";
    EXPECT_EQ(RTERROR, set->crossing({50, 50, 0}, {60, 60, 0}, document->view(), nullptr));
}

TEST(Crossing, ChoosesNothingWithoutADatabase) {
    Documents documents;
    const std::unique_ptr<CHostSelectionSet> set(
        documents.manager.newDocumentWithoutDatabase()->newSelectionSet());
    EXPECT_EQ(RTERROR, set->crossing({-9, -9, 0}, {9, 9, 0}, nullptr, nullptr));
    EXPECT_EQ(RTERROR, set->all(nullptr));
}

TEST(Crossing, CostsOneWalkOverModelSpace) {
    const Drawing drawing;
    for (int i = 0; i < 50000; ++i) drawing.line(i, 0, i, 1);
    const auto set = newSet(drawing);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RTNORM, set->crossing({10.5, 0, 0}, {12.5, 1, 0}, nullptr, nullptr));
    EXPECT_EQ(2u, set->size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(RTNORM, set->all(nullptr));
    set->setOption(1);
    EXPECT_EQ(RTNORM, set->all(nullptr));
    EXPECT_EQ(50000u, set->size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST(Window, TakesWhatLiesInsideAsAWhole) {
    const Drawing drawing;
    const OdDbObjectId inside = drawing.circle(0, 0, 1);
    drawing.circle(4.5, 0, 1);
    const auto set = newSet(drawing);
    EXPECT_EQ(RTNORM, set->window({5, 5, 0}, {-1, -1, 0}, nullptr, nullptr));
    EXPECT_EQ(std::vector<OdDbObjectId>{inside}, set->ids());
    EXPECT_EQ(RTERROR, set->window({5, 5, 0}, {-0.99, -1, 0}, nullptr, nullptr));
}

TEST(SelectionSet, OutlivesItsDocument) {
    std::unique_ptr<CHostSelectionSet> set;
    {
        const Drawing drawing;
        drawing.circle(0, 0, 1);
        set = newSet(drawing);
        set->all(nullptr);
        EXPECT_TRUE(set->id(0).isValid());
    }
    EXPECT_FALSE(set->id(0).isValid());
    EXPECT_EQ(RTERROR, set->all(nullptr));
}

TEST(SelectionSet, TakesAnObjectOnce) {
    const Drawing drawing;
    const OdDbObjectId id = drawing.circle(0, 0, 1);
    const auto set = newSet(drawing);
    EXPECT_TRUE(set->add(id));
    EXPECT_FALSE(set->add(id));
    EXPECT_FALSE(set->add(OdDbObjectId::kNull));
    EXPECT_EQ(1u, set->size());
    set->clear();
    EXPECT_EQ(0u, set->size());
}

TEST(Session, BuildsListsThatAreReleasedLikeAnyOther) {
    const Drawing drawing;
    hst_resbufW* const list = hostSession()->buildList(8, hostText("Página"));
    ASSERT_NE(nullptr, list);
    EXPECT_EQ(8, list->restype);
    EXPECT_EQ(nullptr, list->rbnext);
    EXPECT_EQ("Página", utf8(CHostString(list->value.text)));
    drawing.document().getAPI()->relRb(list);
    EXPECT_EQ(nullptr, hostSession()->buildList(40, "no text goes there"));
}

TEST(Session, AddsEntitiesToASetAndMakesASetCurrent) {
    const Drawing drawing;
    const OdDbObjectId id = drawing.circle(0, 0, 1);
    CHostSession& session = *hostSession();
    const auto set = newSet(drawing);
    unsigned long long name[2];
    ASSERT_EQ(RTNORM, drawing.document().getAPI()->GetADSName(id, name));
    EXPECT_EQ(RTNORM, session.addToSelection(set.get(), name));
    EXPECT_EQ(RTERROR, session.addToSelection(set.get(), name));
    EXPECT_EQ(RTERROR, session.addToSelection(nullptr, name));
    name[0] = 0xFFFFFF;
    EXPECT_EQ(RTERROR, session.addToSelection(set.get(), name));
    name[1] = 0;
    EXPECT_EQ(RTERROR, session.addToSelection(set.get(), name));
    session.setCurrentSelection(set.get());
    set->clear(); // a copy was made current
    EXPECT_EQ(std::vector<OdDbObjectId>{id}, session.currentSelection());
    session.setCurrentSelection(nullptr);
    EXPECT_TRUE(session.currentSelection().empty());
}

TEST(CoordinateService, IsTheIdentityUntilAUserSystemIsSet) {
    const Drawing drawing;
    CHostCoordinateService& service = drawing.database().coordinates();
    OdGePoint3d point(1, 2, 3);
    service.toDrawing(point);
    EXPECT_EQ(OdGePoint3d(1, 2, 3), point);
    EXPECT_EQ(1u, service.conversions());
    service.setUserSystem(OdGeMatrix3d::translation({10, 0, 0}));
    service.toDrawing(point);
    EXPECT_EQ(OdGePoint3d(11, 2, 3), point);
    EXPECT_EQ(2u, service.conversions());
}

/// The entities that answers choose.
std::vector<OdDbObjectId> chosen(const Drawing& drawing, std::initializer_list<Answer> answers) {
    AnswerList list(answers);
    lm::host::CommandInput input(&list, &drawing.document());
    return input.selection("Select objects");
}

TEST(SelectionAnswers, ChooseByWordPointBoxAndEntity) {
    using Ids = std::vector<OdDbObjectId>;
    const Drawing drawing;
    const OdDbObjectId a = drawing.circle(0, 0, 1), b = drawing.circle(10, 0, 1),
                       c = drawing.circle(20, 0, 1);
    EXPECT_EQ((Ids{a, b, c}), chosen(drawing, {"ALL", ""}));
    EXPECT_EQ((Ids{c}), chosen(drawing, {"L", ""}));
    EXPECT_EQ((Ids{c}), chosen(drawing, {"_Last", ""}));
    EXPECT_EQ((Ids{c}), chosen(drawing, {"p", ""}));
    EXPECT_EQ((Ids{b}), chosen(drawing, {"11.2,0", ""}));
    EXPECT_EQ((Ids{}), chosen(drawing, {"11.4,0", ""}));
    EXPECT_EQ((Ids{b}), chosen(drawing, {"P", ""})) << "choosing nothing keeps what was chosen before";
    EXPECT_EQ((Ids{a, b}), chosen(drawing, {"C", "0.5,-1", "9.5,1", ""}));
    EXPECT_EQ((Ids{b}), chosen(drawing, {"Window", "9,-1", "@10,2", ""}));
    EXPECT_EQ((Ids{b, a}), chosen(drawing, {Answer(b), Answer(Ids{a, b}), ""}));
    EXPECT_EQ((Ids{}), chosen(drawing, {""}));
    EXPECT_THROW(chosen(drawing, {"X", ""}), CommandFailed);
    EXPECT_THROW(chosen(drawing, {Answer(3.0), ""}), CommandFailed);
    EXPECT_THROW(chosen(drawing, {"C", "0,0"}), CommandFailed);
}

TEST(SelectionAnswers, TakeTheLastDrawnOfWhatAPointTouches) {
    const Drawing drawing;
    drawing.line(0, 0, 10, 0);
    const OdDbObjectId above = drawing.line(5, -5, 5, 5);
    EXPECT_EQ(std::vector<OdDbObjectId>{above}, chosen(drawing, {Answer(OdGePoint3d(5, 0, 0)), ""}));
}

TEST(SelectionAnswers, PassOverWhatIsNoLiveEntityOfTheDrawing) {
    const Drawing drawing;
    const OdDbObjectId gone = drawing.circle(0, 0, 1);
    OdSmartPtr<OdDbEntity>(gone.openObject(OdDb::kForWrite))->erase(true);
    CHostDatabase other;
    EXPECT_TRUE(chosen(drawing, {Answer(gone), Answer(drawing.database().getLayerZeroId()),
                                 Answer(OdDbObjectId::kNull), Answer(other.getModelSpaceId()), ""})
                    .empty());
}

TEST(Answers, BecomePointsNumbersWordsAndTexts) {
    const Drawing drawing;
    AnswerList list{"1,2", "@1,1,5", "@2<0", " 3.5 ", "", "+2", "2e3", "abc", Answer(7.25), "lo", "ON", "7"};
    lm::host::CommandInput input(&list, &drawing.document());
    EXPECT_EQ(OdGePoint3d(1, 2, 0), input.point("p"));
    EXPECT_EQ(OdGePoint3d(2, 3, 5), input.point("p"));
    EXPECT_EQ(OdGePoint3d(4, 3, 5), input.point("p"));
    EXPECT_EQ(OdGePoint3d(4, 3, 5), drawing.document().lastPoint());
    EXPECT_EQ(3.5, input.number("n", 0));
    EXPECT_EQ(9, input.number("n", 9));
    EXPECT_EQ(2, input.integer("n", 0));
    EXPECT_EQ(2000, input.integer("n", 0));
    EXPECT_EQ("abc", input.text("t"));
    EXPECT_EQ("7.25", input.text("t"));
    EXPECT_EQ(1, input.keyword("k", {"ON", "LOck"}));
    EXPECT_EQ(0, input.keyword("k", {"ON", "LOck"}));
    EXPECT_EQ("7", input.name("t"));
    EXPECT_EQ(0u, list.left());
    EXPECT_THROW(input.text("t"), CommandFailed);
}

TEST(Answers, ThatDoNotFitFailWithThePrompt) {
    const Drawing drawing;
    const auto reasonOf = [&](Answer answer, auto ask) {
        AnswerList list{std::move(answer)};
        lm::host::CommandInput input(&list, &drawing.document());
        try {
            ask(input);
        } catch (const CommandFailed& failure) {
            return std::string(failure.what());
        }
        return std::string("no failure");
    };
    const auto point = [](lm::host::CommandInput& input) { input.point("Base point"); };
    for (const char* text : {"", "1", "1,", ",1", "1,2,3,4", "1,x", "@", "@1<", "1;2", "nan,1"})
        EXPECT_EQ(0u, reasonOf(text, point).find("\"Base point\": expected a point, found \"")) << text;
    const auto number = [](lm::host::CommandInput& input) { input.number("Scale", 1); };
    for (const char* text : {"x", "1x", "1,5", "inf"})
        EXPECT_EQ("\"Scale\": expected a number, found \"" + std::string(text) + "\"",
                  reasonOf(text, number));
    EXPECT_EQ("\"Way\": expected one of ALL, Last, found \"A\"",
              reasonOf("A", [](lm::host::CommandInput& input) {
                  input.keyword("Way", {"ALL", "Last"});
              }));
    EXPECT_EQ("\"Name\" needs an answer that isn't empty",
              reasonOf("", [](lm::host::CommandInput& input) { input.name("Name"); }));
    lm::host::CommandInput nobody(nullptr, nullptr);
    EXPECT_THROW(nobody.text("t"), CommandFailed);
    EXPECT_THROW(nobody.selection("s"), CommandFailed);
}

TEST(Answers, ComeFromRecordsOfPrograms) {
    const Drawing drawing;
    const OdDbObjectId id = drawing.circle(0, 0, 1);
    Answer answer;
    hst_resbufW record{};
    record.restype = RTREAL;
    record.value.real = 2.5;
    ASSERT_TRUE(lm::host::answerOf(&record, answer));
    EXPECT_EQ(2.5, answer.number);
    record.restype = RTENAME;
    ASSERT_EQ(RTNORM, drawing.document().getAPI()->GetADSName(id, record.value.name));
    ASSERT_TRUE(lm::host::answerOf(&record, answer));
    EXPECT_EQ(std::vector<OdDbObjectId>{id}, answer.entities);
    record.restype = RTPOINT;
    record.value.point[0] = 1, record.value.point[1] = 2, record.value.point[2] = 3;
    ASSERT_TRUE(lm::host::answerOf(&record, answer));
    EXPECT_EQ(OdGePoint3d(1, 2, 3), answer.point);
    hst_resbufW open{}, close{};
    open.restype = RTLB, close.restype = RTLE;
    hst_resbufW* const numbers = shortRecord(4, shortRecord(5));
    open.rbnext = numbers;
    numbers->rbnext->rbnext = &close;
    ASSERT_TRUE(lm::host::answerOf(&open, answer));
    EXPECT_EQ(OdGePoint3d(4, 5, 0), answer.point);
    numbers->rbnext->rbnext = nullptr;
    lm::host::releaseChain(numbers);
    ASSERT_TRUE(lm::host::answerOf(nullptr, answer));
    EXPECT_TRUE(answer.isEmpty());
    record.restype = RTT;
    EXPECT_FALSE(lm::host::answerOf(&record, answer));
}

} // namespace
