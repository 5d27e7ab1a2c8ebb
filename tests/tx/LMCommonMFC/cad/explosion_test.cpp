// SPDX-License-Identifier: MIT
// References turned into plain geometry: the data on it, references in other planes, and what a failure in
// the middle leaves.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "drawing/alloc.h"

#include <stdexcept>

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::IsEmpty;

class ExplosionToLayer : public Symbols {
protected:
    bool explode(const std::vector<OdDbObjectId>& ids) {
        CList<RZID, const RZID&> list;
        for (const OdDbObjectId id : ids) list.AddTail(RZID(id));
        return m_cad.explodeEntitiesToLayer(&list, "L");
    }
    /// The ids of model space that aren't among those given.
    std::vector<OdDbObjectId> others(const std::vector<OdDbObjectId>& known) {
        std::vector<OdDbObjectId> ids;
        const auto walk = openBlock(m_db.getModelSpaceId())->newIterator();
        for (; !walk->done(); walk->step())
            if (std::find(known.begin(), known.end(), walk->objectId()) == known.end())
                ids.push_back(walk->objectId());
        return ids;
    }
    const OdDbObjectId m_layer = layer("L");
};

TEST_F(ExplosionToLayer, ClearsTheDataOfAllApplicationsOnPiecesTextsAndClones) {
    const OdDbObjectId motor = block("MOTOR"), inner = block("INNER");
    const OdDbObjectId line = this->line(motor, {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId definition = define(motor, {"EMPTY", "", ""});
    const OdDbObjectId shown = place(inner, {{"X", "x"}}, "0", motor)->objectId();
    const OdDbObjectId reference = place(motor, {{"EMPTY", ""}})->objectId(), point = this->point();
    for (const OdDbObjectId id : {line, definition, shown, reference, point})
        for (const char* application : {"FIRST", "SECOND", "TVO_RZ"}) give(id, application, {"a", "b"});
    EXPECT_TRUE(explode({reference, point}));
    const std::vector<OdDbObjectId> made = others({});
    EXPECT_THAT(modelSpace(),
                ElementsAre("LINE L 0,0,0 1,0,0", "TEXT L ''", "INSERT L 0,0,0 shows INNER", "POINT L"));
    ASSERT_EQ(made.size(), 4u);
    for (const OdDbObjectId id : made) EXPECT_EQ(data(id), "null");
    const std::string all = "1001:FIRST 1000:a 1000:b 1001:SECOND 1000:a 1000:b 1001:TVO_RZ 1000:a 1000:b";
    for (const OdDbObjectId id : {line, definition, shown, reference, point})
        EXPECT_EQ(data(id), all) << "the block and the sources keep theirs";
}

TEST_F(ExplosionToLayer, LeavesTheWorldWhereATiltedReferenceShowedIt) {
    const OdDbObjectId motor = block("MOTOR");
    line(motor, {0, 0, 0}, {1, 2, 3});
    const OdSmartPtr<OdDbAttributeDefinition> from(
        define(motor, {"EMPTY", "", "d"}).openObject(OdDb::kForWrite));
    from->setPosition({3, 1, 2});
    from->setHeight(2);
    struct Row {
        OdGeVector3d normal;
        const char* line;
        const char* text; ///< in the world
        const char* along;
        const char* up;
    };
    const Row rows[] = {
        {{0, 0, 1}, "LINE L 10,0,0 11,2,3", "13,1,2", "1,0,0", "0,1,0"},
        {{0, 0, -1}, "LINE L -10,0,0 -11,2,-3", "-13,1,-2", "-1,0,0", "0,1,0"},
        {{1, 0, 0}, "LINE L 0,10,0 3,11,2", "2,13,1", "0,1,0", "0,0,1"},
        {{0, -1, 0}, "LINE L 10,0,0 11,-3,2", "13,-2,1", "1,0,0", "0,0,1"},
    };
    std::vector<OdDbObjectId> known;
    for (const Row& row : rows) {
        Reference reference = place(motor, {{"EMPTY", ""}});
        reference->setNormal(row.normal);
        reference->setPosition({10, 0, 0});
        const OdDbObjectId id = reference->objectId();
        reference.release();
        EXPECT_TRUE(explode({id}));
        const std::vector<OdDbObjectId> made = others(known);
        ASSERT_EQ(made.size(), 2u);
        EXPECT_EQ(told(*OdSmartPtr<OdDbEntity>(made[0].openObject())), row.line);
        const OdSmartPtr<OdDbText> text(made[1].openObject());
        const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text->normal());
        const double c = std::cos(text->rotation()), s = std::sin(text->rotation());
        EXPECT_EQ(told(plane * text->position()), row.text);
        EXPECT_EQ(told(OdGePoint3d() + plane * OdGeVector3d(c, s, 0)), row.along) << row.text;
        EXPECT_EQ(told(OdGePoint3d() + plane * OdGeVector3d(-s, c, 0)), row.up) << row.text;
        EXPECT_NEAR(text->height(), 2, 1e-12);
        known.insert(known.end(), made.begin(), made.end());
    }
}

/// An attribute among those of a reference that is none: the list can't be read.
class NoAttribute : public OdDbAttribute {
public:
    OdRxClass* isA() const override { return OdDbLine::desc(); }
};

TEST_F(ExplosionToLayer, ThatFailsWhileItGathersLeavesTheDrawingAsItWas) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", ""}});
    line(motor, {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId first = place(motor, {{"A", ""}})->objectId(), point = this->point();
    Reference broken = place(motor, {{"A", ""}});
    broken->appendAttribute(filled(make<OdDbAttribute>(new NoAttribute), {"S", "0"}));
    const OdDbObjectId last = broken->objectId();
    broken.release();
    const Texts before = modelSpace();
    Recorder recorder(m_db);
    const lm::test::LogCapture log;
    EXPECT_THROW(explode({point, first, last}), OdError_NotThatKindOfClass);
    EXPECT_THAT(linesOf(log), ElementsAre(testing::StartsWith("CICad::SearchAttributes : "),
                                          testing::StartsWith("CICad::explodeEntitiesToLayer : ")));
    EXPECT_THAT(recorder.taken(), IsEmpty()) << "nothing was appended, erased or changed";
    EXPECT_EQ(modelSpace(), before);
    EXPECT_TRUE(explode({point, first})) << "and the others can go without it";
}

/// Each allocation fails in turn until the call gets through.
TEST_F(ExplosionToLayer, ThatFailsAnywhereLeavesTheSourcesUntilAllIsThere) {
    const OdDbObjectId motor = block("MOTOR", {{"A", "", ""}});
    line(motor, {0, 0, 0}, {1, 0, 0});
    const OdDbObjectId reference = place(motor, {{"A", ""}})->objectId(), point = this->point();
    const std::string before = dumpOf(m_db);
    int failures = 0, halfway = 0;
    for (bool failed = true; failed && failures < 1000;) {
        SCOPED_TRACE(failures);
        failed = false;
        undoBlockBegin(&m_db);
        lm::drawing::failAllocationAfter(failures);
        try {
            explode({point, reference});
        } catch (const std::bad_alloc&) {
            failed = true;
            ++failures;
        }
        lm::drawing::failAllocationAfter(-1);
        undoBlockEnd(&m_db);
        hostSession()->clearLines();
        if (!failed) break;
        const std::size_t made = others({point, reference}).size();
        if (made < 3) {
            EXPECT_FALSE(point.isErased());
            EXPECT_FALSE(reference.isErased());
        }
        halfway += made == 1 || made == 2;
        if (dumpOf(m_db) != before) {
            ASSERT_TRUE(m_db.undo());
        }
        EXPECT_EQ(dumpOf(m_db), before);
    }
    EXPECT_GT(halfway, 0) << "of three new entities";
    EXPECT_LT(failures, 1000);
    EXPECT_TRUE(point.isErased());
    EXPECT_TRUE(reference.isErased());
}

/// At the end sources go one after the other; a reactor that raises then leaves the later ones beside their
/// copies, and nothing is lost.
TEST_F(ExplosionToLayer, ThatFailsWhileItErasesLosesNothing) {
    const OdDbObjectId first = point(), second = line(m_db.getModelSpaceId(), {0, 0, 0}, {1, 0, 0});
    Recorder recorder(m_db);
    recorder.armed = [left = 2]() mutable {
        if (left-- == 0) throw std::runtime_error("broken");
    };
    EXPECT_THROW(explode({first, second}), std::runtime_error);
    recorder.armed = nullptr;
    EXPECT_TRUE(first.isErased());
    EXPECT_FALSE(second.isErased());
    EXPECT_THAT(modelSpace(), ElementsAre("LINE 0 0,0,0 1,0,0", "POINT L", "LINE L 0,0,0 1,0,0"));
}

} // namespace
