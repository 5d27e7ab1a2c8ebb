// SPDX-License-Identifier: MIT
// Selection by a box and around a point, on one layer.
#include "project_drawing.h"

#include "drawing/alloc.h"
#include "drawing/curves.h"

#include <memory>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

const char kSetting[] = "SELECTHIDDENLAYERS";

/// A point that does something when a search measures it.
class WatchedPoint : public OdDbPoint {
public:
    OdResult getGeomExtents(OdGeExtents3d& extents) const override {
        if (watch) watch();
        return OdDbPoint::getGeomExtents(extents);
    }
    std::function<void()> watch;
};

class Crossing : public ProjectDrawing {
protected:
    using Ids = std::vector<OdDbObjectId>;

    Crossing() { hostSession()->setSetting(kSetting, 7); }
    ~Crossing() override {
        lm::host::setSessionPresent(true);
        hostSession()->setSetting(kSetting, 0);
    }

    OdDbObjectId pointAt(double x, double y, const char* layer = "P1") {
        const OdDbObjectId id = entityOn(layer);
        OdSmartPtr<OdDbPoint>(id.openObject(OdDb::kForWrite))->setPosition({x, y, 0});
        return id;
    }
    OdSmartPtr<WatchedPoint> watched(std::function<void()> watch) {
        const OdSmartPtr<WatchedPoint> point(
            static_cast<WatchedPoint*>(entityOn<WatchedPoint>("P1").openObject().get()));
        point->watch = std::move(watch);
        return point;
    }
    /// The members of a selection, which is deleted; a null one has none.
    static Ids taken(CHostSelectionSet* set) {
        const std::unique_ptr<CHostSelectionSet> owner(set);
        if (set == nullptr) return {};
        EXPECT_GT(set->size(), 0u);
        return set->ids();
    }
    Ids in(const OdGePoint3d& first, const OdGePoint3d& second, const char* layer = "P1") {
        return taken(m_cad.SSGetCrossing(first, second, layer, &m_db));
    }
    Ids around(const OdGePoint3d& point, const char* layer = "P1") {
        return taken(m_cad.SSGetCrossing(point, layer, &m_db));
    }
    static int setting() { return hostSession()->setting(kSetting); }

    OdDbObjectId m_page = layer("P1");
};

TEST_F(Crossing, TakesWhatTheBoxTouchesInDrawingOrder) {
    const OdDbObjectId b = pointAt(2, 2), a = pointAt(1, 1), border = pointAt(0, 3);
    pointAt(5, 5);
    EXPECT_THAT(in({0, 0, 0}, {3, 3, 0}), ElementsAre(b, a, border));
    EXPECT_THAT(in({3, 3, 0}, {0, 0, 0}), ElementsAre(b, a, border)) << "corners in any order";
    EXPECT_THAT(in({0, 3, 0}, {3, 0, 0}), ElementsAre(b, a, border));
    erase(a);
    EXPECT_THAT(in({0, 0, 0}, {3, 3, 0}), ElementsAre(b, border));
}

TEST_F(Crossing, TakesALineThatCutsACorner) {
    const OdDbObjectId cut = entityOn<OdDbLine>("P1"), past = entityOn<OdDbLine>("P1");
    OdSmartPtr<OdDbLine>(cut.openObject(OdDb::kForWrite))->setEndPoint({-1, 1.5, 0});
    OdSmartPtr<OdDbLine>(cut.openObject(OdDb::kForWrite))->setStartPoint({1.5, -1, 0});
    OdSmartPtr<OdDbLine>(past.openObject(OdDb::kForWrite))->setEndPoint({-1, 0.5, 0});
    OdSmartPtr<OdDbLine>(past.openObject(OdDb::kForWrite))->setStartPoint({0.5, -1, 0});
    EXPECT_THAT(in({0, 0, 0}, {5, 5, 0}), ElementsAre(cut));
}

TEST_F(Crossing, GoesByTheExactLayerBeItFrozenOrNot) {
    layer("p1");
    layer("P11");
    const OdDbObjectId here = pointAt(1, 1);
    pointAt(1, 1, "p1");
    pointAt(1, 1, "P11");
    pointAt(1, 1, "0");
    EXPECT_THAT(around({1, 1, 0}), ElementsAre(here));
    m_cad.CongelaLayer("P1");
    EXPECT_THAT(around({1, 1, 0}), ElementsAre(here));
    EXPECT_THAT(around({1, 1, 0}, "P"), IsEmpty());
    EXPECT_THAT(around({1, 1, 0}, "*"), IsEmpty()) << "no pattern";
}

TEST_F(Crossing, AroundAPointReachesThreeTenthsOfSinglePrecision) {
    const OdDbObjectId borders[] = {pointAt(10.30000001, 5), pointAt(9.69999999, 5), pointAt(10, 5.30000001),
                                    pointAt(10, 4.69999999), pointAt(10.3, 5.3)};
    pointAt(10.30000002, 5);
    pointAt(10, 4.69999998);
    EXPECT_THAT(around({10, 5, 0}), testing::ElementsAreArray(borders));
}

TEST_F(Crossing, ConvertsItsPointsFromTheUsersCoordinates) {
    OdGeMatrix3d system;
    system.entry[0][3] = 100; // x' = x + z + 100
    system.entry[0][2] = 1;
    m_db.coordinates().setUserSystem(system);
    const OdDbObjectId there = pointAt(106, 1);
    pointAt(101, 1);
    const unsigned long before = m_db.coordinates().conversions();
    EXPECT_THAT(around({1, 1, 5}), ElementsAre(there)) << "z stays in both corners";
    EXPECT_EQ(m_db.coordinates().conversions(), before + 2);
    EXPECT_THAT(in({0, 0, 5}, {2, 2, 5}), ElementsAre(there));
    EXPECT_THAT(in({0, 0, 3}, {1, 2, 3}), IsEmpty());
}

TEST_F(Crossing, GivesNothingWithoutADocument) {
    CHostDatabase side;
    EXPECT_EQ(m_cad.SSGetCrossing({0, 0, 0}, {1, 1, 0}, "0", &side), nullptr);
    EXPECT_EQ(m_cad.SSGetCrossing({0, 0, 0}, {1, 1, 0}, "0", nullptr), nullptr);
    EXPECT_EQ(m_cad.SSGetCrossing({0, 0, 0}, "0", nullptr), nullptr);
    pointAt(0, 0);
    lm::host::setSessionPresent(false);
    EXPECT_EQ(m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db), nullptr) << "nobody to make a filter";
}

TEST_F(Crossing, LooksIntoTheDrawingThatItIsGiven) {
    CHostDocument* const other = m_documents.manager.newDocument();
    const OdDbObjectId mine = pointAt(0, 0);
    EXPECT_THAT(around({0, 0, 0}), ElementsAre(mine)) << "active or not";
    EXPECT_EQ(m_cad.SSGetCrossing({0, 0, 0}, "P1", other->database()), nullptr);
}

TEST_F(Crossing, SetsTheSettingForTheSearchAlone) {
    std::vector<int> seen;
    const auto point = watched([&] { seen.push_back(setting()); });
    EXPECT_EQ(around({0, 0, 0}).size(), 1u);
    EXPECT_EQ(setting(), 7);
    EXPECT_THAT(around({50, 50, 0}), IsEmpty());
    EXPECT_EQ(setting(), 7);
    EXPECT_THAT(seen, ElementsAre(1, 1));
    CHostDatabase side;
    m_cad.SSGetCrossing({0, 0, 0}, "0", &side);
    EXPECT_EQ(setting(), 7);
}

TEST_F(Crossing, PutsEverythingBackWhenTheSearchFails) {
    const lm::test::LogCapture log;
    for (const Kind kind : {Kind::kOdError, Kind::kStandard, Kind::kOther}) {
        const auto point = watched([kind] { fail(kind); });
        EXPECT_ANY_THROW(around({0, 0, 0}));
        EXPECT_ANY_THROW(m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db, [](OdDbObjectId) { ADD_FAILURE(); }));
        EXPECT_EQ(setting(), 7);
        erase(point->objectId());
    }
    EXPECT_THAT(log.lines(), IsEmpty()) << "no guard";
}

TEST_F(Crossing, ReleasesItsFilterOnEveryWay) {
    const auto point = watched({});
    const auto searches = [&] {
        for (const bool fails : {false, true}) {
            point->watch = fails ? std::function<void()>([] { fail(Kind::kOdError); }) : nullptr;
            try {
                around({0, 0, 0});
            } catch (const OdError&) {
            }
        }
        around({0, 0, 0}, "0");
        m_cad.SSGetCrossing({9, 9, 0}, "P1", nullptr);
    };
    searches();
    const std::size_t before = lm::drawing::liveBlocks();
    searches();
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(Crossing, CallsAFunctionForEachMemberOnce) {
    const OdDbObjectId b = pointAt(0.2, 0), a = pointAt(0, 0.1);
    Ids met;
    const auto meet = [&](OdDbObjectId id) {
        EXPECT_EQ(setting(), 7) << "the search has ended";
        met.push_back(id);
    };
    m_cad.SSGetCrossing({0, 0, 0}, {1, 1, 0}, "P1", &m_db, meet);
    EXPECT_THAT(met, ElementsAre(b, a));
    m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db, meet);
    EXPECT_THAT(met, ElementsAre(b, a, b, a));
    m_cad.SSGetCrossing({8, 8, 0}, {9, 9, 0}, "P1", &m_db, meet);
    m_cad.SSGetCrossing({8, 8, 0}, "P1", &m_db, meet);
    m_cad.SSGetCrossing({0, 0, 0}, "0", &m_db, meet);
    m_cad.SSGetCrossing({0, 0, 0}, "P1", nullptr, meet);
    EXPECT_EQ(met.size(), 4u) << "nothing selected, no call";
}

TEST_F(Crossing, CallsAFunctionThatSearchesErasesAndAppends) {
    pointAt(0, 0);
    pointAt(0.1, 0);
    std::size_t inner = 0, calls = 0;
    m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db, [&](OdDbObjectId id) {
        ++calls;
        erase(id);
        pointAt(0.2, 0);
        m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db, [&](OdDbObjectId) { ++inner; });
    });
    EXPECT_EQ(calls, 2u) << "what is new isn't in the set";
    EXPECT_EQ(inner, 4u);
    EXPECT_EQ(setting(), 7);
}

TEST_F(Crossing, LetsTheFunctionGo) {
    const auto held = std::make_shared<int>();
    m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db, [held](OdDbObjectId) {});
    EXPECT_EQ(held.use_count(), 1);
    pointAt(0, 0);
    m_cad.SSGetCrossing({0, 0, 0}, "P1", &m_db, [held](OdDbObjectId) {});
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_THROW(m_cad.SSGetCrossing({0, 0, 0}, {1, 1, 0}, "P1", &m_db,
                                     [held](OdDbObjectId) { fail(Kind::kOdError); }),
                 OdError);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(Crossing, ChangesNeitherDrawingNorCurrentSelection) {
    const OdDbObjectId here = pointAt(0, 0);
    hostSession()->setCurrentSelection(nullptr);
    Recorder recorder(m_db);
    around({0, 0, 0});
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_THAT(hostSession()->currentSelection(), IsEmpty());
    EXPECT_FALSE(isWriteEnabled(here));
}

} // namespace
