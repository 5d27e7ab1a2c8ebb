// SPDX-License-Identifier: MIT
// Parts near a box: in drawing order, made when asked for, and right after each kind of change.
#include "clone_support.h"

#include "drawing/nearparts.h"

#include <functional>
#include <limits>

using namespace drawing_test;

namespace {

using lm::drawing::keepsPlacesOf;
using lm::drawing::partsNear;
using lm::drawing::PlaneBox;
using Ids = std::vector<OdDbObjectId>;

Ids near(OdDbObjectId block, const PlaneBox& box) {
    std::vector<const OdDbEntity*> parts;
    EXPECT_TRUE(partsNear(block, box, parts));
    Ids ids;
    for (const OdDbEntity* const part : parts) ids.push_back(part->objectId());
    return ids;
}

constexpr PlaneBox kHere{-1, -1, 1, 1}, kThere{99, 99, 101, 101};

OdSmartPtr<OdDbPoint> pointAt(double x, double y) {
    const auto point = make<OdDbPoint>();
    point->setPosition({x, y, 0});
    return point;
}

std::string entity(const std::string& kind, const std::string& groups, const std::string& handle = "100",
                   const std::string& owner = "1F") {
    return "0 " + kind + "|5 " + handle + "|330 " + owner + "|100 AcDbEntity|8 0|" + groups;
}

struct NearPartsTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    NearPartsTest() { db->setUndoRecording(true); }
    OdDbObjectId space() const { return db->getModelSpaceId(); }
    bool isHere() { return !near(space(), kHere).empty(); }
    void appendTo(OdDbObjectId block, const OdSmartPtr<OdDbEntity>& part) {
        open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(part);
    }
    OdDbObjectId reference(OdDbObjectId block, double x, double y) {
        const auto made = make<OdDbBlockReference>();
        made->setBlockTableRecord(block);
        made->setPosition({x, y, 0});
        return append(*db, made);
    }
    /// Makes a change, takes it back and repeats it; `after` tells whether something is here with it.
    void check(bool after, const std::function<void()>& change) {
        ASSERT_NE(after, isHere());
        db->startUndoRecord();
        change();
        EXPECT_EQ(after, isHere());
        ASSERT_TRUE(db->undo());
        EXPECT_NE(after, isHere()) << "taken back";
        ASSERT_TRUE(db->redo());
        EXPECT_EQ(after, isHere()) << "repeated";
    }
};

TEST_F(NearPartsTest, AreKeptFromTheFirstQuestionOn) {
    append(*db, pointAt(0, 0));
    EXPECT_FALSE(keepsPlacesOf(space()));
    EXPECT_TRUE(isHere());
    EXPECT_TRUE(keepsPlacesOf(space()));
    EXPECT_FALSE(keepsPlacesOf(db->getPaperSpaceId()));
    EXPECT_FALSE(keepsPlacesOf(OdDbObjectId::kNull));
}

TEST_F(NearPartsTest, OfNoBlockAreNone) {
    EXPECT_TRUE(near(OdDbObjectId::kNull, kHere).empty());
}

TEST_F(NearPartsTest, CantBeToldForABoxThatIsNone) {
    append(*db, pointAt(0, 0));
    std::vector<const OdDbEntity*> parts;
    EXPECT_FALSE(partsNear(space(), {std::numeric_limits<double>::quiet_NaN(), 0, 1, 1}, parts));
    EXPECT_TRUE(parts.empty());
}

TEST_F(NearPartsTest, StandInDrawingOrderWithoutErasedOnes) {
    const OdDbObjectId a = append(*db, pointAt(0, 0)), b = append(*db, pointAt(1, 1));
    EXPECT_EQ((Ids{a, b}), near(space(), kHere));
    const OdDbObjectId c = append(*db, pointAt(-1, -1));
    open<OdDbEntity>(a, OdDb::kForWrite)->erase();
    EXPECT_EQ((Ids{b, c}), near(space(), kHere));
    open<OdDbEntity>(a, OdDb::kForWrite, true)->erase(false);
    open<OdDbPoint>(b, OdDb::kForWrite)->setPosition({0.5, 0.5, 0});
    EXPECT_EQ((Ids{a, b, c}), near(space(), kHere));
}

TEST_F(NearPartsTest, AreFewInALargeDrawing) {
    const OdDbObjectId block = addBlock(*db, "B");
    appendTo(block, pointAt(0, 0));
    for (int i = 0; i < 5000; ++i) reference(block, i % 70 * 10, i / 70 * 10);
    EXPECT_EQ(1U, near(space(), {99, 99, 101, 101}).size());
    EXPECT_EQ(4U, near(space(), {90, 90, 100, 100}).size());
}

TEST_F(NearPartsTest, FollowAppendingMovingAndErasing) {
    check(true, [&] { append(*db, pointAt(0, 0)); });
    const OdDbObjectId id = near(space(), kHere).front();
    check(false, [&] { open<OdDbPoint>(id, OdDb::kForWrite)->setPosition({100, 100, 0}); });
    EXPECT_EQ(Ids{id}, near(space(), kThere));
    check(true, [&] {
        open<OdDbEntity>(id, OdDb::kForWrite)->transformBy(OdGeMatrix3d::translation({-100, -100, 0}));
    });
    check(false, [&] { open<OdDbEntity>(id, OdDb::kForWrite)->erase(); });
}

TEST_F(NearPartsTest, FollowATransactionThatIsTakenBack) {
    EXPECT_FALSE(isHere());
    db->startTransaction();
    append(*db, pointAt(0, 0));
    EXPECT_TRUE(isHere());
    db->abortTransaction();
    EXPECT_FALSE(isHere());
}

TEST_F(NearPartsTest, FollowTheAttributesOfAReference) {
    const OdDbObjectId id = reference(addBlock(*db, "B"), 100, 100);
    const auto attribute = make<OdDbAttribute>();
    attribute->setTextString(od("x"));
    attribute->setHeight(0.1);
    check(true, [&] { open<OdDbBlockReference>(id, OdDb::kForWrite)->appendAttribute(attribute); });
    check(false, [&] {
        attribute->upgradeOpen();
        attribute->setPosition({100, 100, 0});
    });
    check(true, [&] { attribute->setPosition({0, 0, 0}); });
    check(false, [&] { attribute->erase(); });
}

TEST_F(NearPartsTest, AreAlwaysThoseWhoseLinesNobodyIsToldOf) {
    const OdDbObjectId id = reference(addBlock(*db, "B"), 100, 100);
    const auto attribute = make<OdDbAttribute>();
    const auto lines = make<OdDbMText>();
    attribute->setMTextAttribute(lines);
    open<OdDbBlockReference>(id, OdDb::kForWrite)->appendAttribute(attribute);
    EXPECT_EQ(Ids{id}, near(space(), {500, 500, 501, 501}));
    attribute->upgradeOpen();
    attribute->setMTextAttribute({});
    EXPECT_TRUE(near(space(), {500, 500, 501, 501}).empty());
}

TEST_F(NearPartsTest, FollowWhatTheirBlocksShow) {
    const OdDbObjectId inner = addBlock(*db, "INNER"), outer = addBlock(*db, "OUTER");
    const auto nested = make<OdDbBlockReference>();
    nested->setBlockTableRecord(inner);
    appendTo(outer, nested);
    reference(outer, 0, 0);
    check(true, [&] { appendTo(inner, pointAt(0, 0)); });
    const OdDbObjectId point = near(inner, kHere).front();
    check(false, [&] { open<OdDbPoint>(point, OdDb::kForWrite)->setPosition({50, 0, 0}); });
    check(true, [&] { open<OdDbBlockTableRecord>(inner, OdDb::kForWrite)->setOrigin({50, 0, 0}); });
    check(false, [&] { open<OdDbBlockTableRecord>(inner, OdDb::kForWrite)->erase(); });
    check(true, [&] { open<OdDbBlockTableRecord>(inner, OdDb::kForWrite, true)->erase(false); });
    check(false, [&] { open<OdDbEntity>(point, OdDb::kForWrite)->erase(); });
}

TEST_F(NearPartsTest, FollowAReferenceToAnotherBlock) {
    const OdDbObjectId empty = addBlock(*db, "E"), full = addBlock(*db, "F");
    appendTo(full, pointAt(0, 0));
    const OdDbObjectId id = reference(empty, 0, 0);
    check(true, [&] { open<OdDbBlockReference>(id, OdDb::kForWrite)->setBlockTableRecord(full); });
    check(false, [&] { open<OdDbBlockReference>(id, OdDb::kForWrite)->setBlockTableRecord(empty); });
    check(true, [&] { appendTo(empty, pointAt(1, 0)); });
}

TEST_F(NearPartsTest, OfBlocksThatHoldEachOtherAreFound) {
    const OdDbObjectId a = addBlock(*db, "A"), b = addBlock(*db, "B");
    for (const auto& [in, shown] : {std::pair(a, b), std::pair(b, a)}) {
        const auto nested = make<OdDbBlockReference>();
        nested->setBlockTableRecord(shown);
        appendTo(in, nested);
    }
    appendTo(a, pointAt(100, 100));
    appendTo(b, pointAt(0, 0));
    const OdDbObjectId first = reference(a, 0, 0), second = reference(b, 0, 0);
    EXPECT_EQ((Ids{first, second}), near(space(), kHere));
    EXPECT_EQ((Ids{first, second}), near(space(), kThere));
}

TEST_F(NearPartsTest, FollowThePicturesOfDimensionsByName) {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "*D1");
    parts.blocks = dxf::Parts::block(
        "*D1", "31", "30",
        entity("LINE", "100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0", "32", "30"));
    parts.entities = entity(
        "DIMENSION", "100 AcDbDimension|2 *D1|10 100.0|20 100.0|30 0.0|11 100.0|21 100.0|31 0.0|70 32");
    db = readGroups(parts.groups());
    db->setUndoRecording(true);
    ASSERT_TRUE(isHere());
    check(false, [&] { byHandle<OdDbBlockTableRecord>(*db, "30", OdDb::kForWrite)->setName(od("OTHER")); });
    check(true, [&] { byHandle<OdDbBlockTableRecord>(*db, "30", OdDb::kForWrite)->setName(od("*D1")); });
    check(false, [&] {
        byHandle<OdDbEntity>(*db, "32", OdDb::kForWrite)->transformBy(OdGeMatrix3d::translation({50, 50, 0}));
    });
}

TEST_F(NearPartsTest, FollowTheVerticesOfPolylines) {
    dxf::Parts parts;
    const auto vertex = [](const char* handle, const char* x) {
        return "|0 VERTEX|5 " + std::string(handle) + "|330 100|100 AcDbEntity|8 0|100 AcDbVertex|100 x|10 " +
               x + "|20 0.0|30 0.0";
    };
    parts.entities = entity("POLYLINE", "100 AcDb2dPolyline|66 1|10 0.0|20 0.0|30 0.0|70 0") +
                     vertex("101", "0.0") + vertex("102", "50.0") +
                     "|0 SEQEND|5 110|330 100|100 AcDbEntity|8 0";
    db = readGroups(parts.groups());
    db->setUndoRecording(true);
    check(false, [&] { byHandle<OdDbEntity>(*db, "101", OdDb::kForWrite)->erase(); });
    check(true, [&] {
        byHandle<OdDbEntity>(*db, "100", OdDb::kForWrite)
            ->transformBy(OdGeMatrix3d::translation({-50, 0, 0}));
    });
}

TEST_F(NearPartsTest, AreNoLinesWithoutAnEnd) {
    dxf::Parts parts;
    parts.entities = entity("RAY", "100 AcDbRay|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0") + "|" +
                     entity("XLINE", "100 AcDbXline|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0", "101");
    db = readGroups(parts.groups());
    EXPECT_FALSE(isHere());
}

/// A point that stands where its class wants.
class Wandering : public OdDbPoint {
public:
    OdResult getGeomExtents(OdGeExtents3d& extents) const override {
        extents.addPoint(place);
        return eOk;
    }
    OdGePoint3d place;
};

TEST_F(NearPartsTest, AreAlwaysThoseOfClassesOfOthers) {
    const auto point = make<Wandering>();
    const OdDbObjectId id = append(*db, point);
    point->place = {100, 100, 0};
    EXPECT_EQ(Ids{id}, near(space(), kHere));
    EXPECT_EQ(Ids{id}, near(space(), kThere));
}

TEST_F(NearPartsTest, TellNobody) {
    const OdDbObjectId id = append(*db, pointAt(0, 0));
    CloneRecorder recorder;
    db->addReactor(&recorder);
    EXPECT_TRUE(isHere());
    db->removeReactor(&recorder);
    EXPECT_TRUE(recorder.calls.empty());
    EXPECT_EQ(1, id.openObject()->numRefs()) << "nothing is held beside this pointer";
}

} // namespace
