// SPDX-License-Identifier: MIT
// A redefinition that fails at any step is taken back by the undo group around it to the very state before.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "drawing/alloc.h"
#include "drawing/check.h"
#include "drawing/seams.h"

#include <stdexcept>

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::StartsWith;

class FailingRedefinition : public Symbols {
protected:
    FailingRedefinition() {
        m_motor = block("MOTOR", {{"A", "", "1"}, {"B", "", ""}});
        append(m_motor, make(new OdDbPoint));
        give(m_motor, "APP", {"of the block"});
        openBlock(m_motor, OdDb::kForWrite)->setOrigin({3, 4, 0});
        layer("P1");
        const OdDbObjectId outer = block("OUTER");
        m_references = {place(m_motor, {{"A", "x"}, {"B", "y"}}, "P1")->objectId(),
                        place(m_motor, {{"A", " z ", true}, {"a", "w"}})->objectId(),
                        place(m_motor, {{"B", "inner"}}, "0", outer)->objectId(), place(m_motor)->objectId()};
        give(m_references[0], "APP", {"of the reference"});
        give(attributeOf(openReference(m_references[0]), 0)->objectId(), "APP", {"of the attribute"});
        m_source = symbol({{"A", "", "d"}, {"C", "", "c"}});
        const OdDbObjectId inner = blockIn(*m_source, "INNER");
        line(inner, {0, 0, 0}, {1, 1, 0});
        refer(*m_source, inner);
        m_source->setINSBASE({1, 2, 0});
        m_before = dumpOf(m_db);
        m_defects = lm::drawing::check(m_db).total();
    }
    ~FailingRedefinition() override {
        lm::drawing::refuseWriting(OdDbObjectId());
        lm::drawing::failAllocationAfter(-1);
    }

    bool redefine() { return m_cad.RedefinirBloco(m_source, "MOTOR"); }

    void expectAsBefore() {
        EXPECT_EQ(dumpOf(m_db), m_before);
        EXPECT_EQ(lm::drawing::check(m_db).total(), m_defects);
    }

    OdDbObjectId m_motor;
    std::vector<OdDbObjectId> m_references;
    Source m_source;
    std::string m_before;
    std::size_t m_defects = 0;
};

/// A reactor raises at the first event, then at the second one, and so on until there is no such event. Where
/// an object is closed by the last pointer to it nothing can pass, so the call gets through then.
TEST_F(FailingRedefinition, IsTakenBackWhereverAReactorRaises) {
    Recorder recorder(m_db);
    int failures = 0;
    bool raised = true;
    for (int events = 0; raised; ++events) {
        SCOPED_TRACE(events);
        const lm::test::LogCapture log;
        raised = false;
        recorder.armed = [&, left = events]() mutable {
            if (left-- != 0) return;
            raised = true;
            throw std::runtime_error("broken");
        };
        undoBlockBegin(&m_db);
        try {
            EXPECT_TRUE(redefine());
        } catch (const std::runtime_error&) {
            ++failures;
            EXPECT_THAT(log.lines().back(), testing::HasSubstr("CICad::RedefinirBloco : broken"));
        }
        undoBlockEnd(&m_db);
        recorder.armed = nullptr;
        if (!raised) {
            EXPECT_THAT(attributesOf(openReference(m_references[0])), ElementsAre("A=x", "C=c"));
        }
        ASSERT_TRUE(m_db.undo());
        expectAsBefore();
    }
    EXPECT_GE(failures, 10) << "at many steps";
}

TEST_F(FailingRedefinition, IsTakenBackWhereverMemoryEnds) {
    long successes = 0;
    int failures = 0;
    for (bool failed = true; failed && successes < 20000; successes += 1 + successes / 16) {
        SCOPED_TRACE(successes);
        failed = false;
        undoBlockBegin(&m_db);
        lm::drawing::failAllocationAfter(successes);
        try {
            redefine();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        lm::drawing::failAllocationAfter(-1);
        undoBlockEnd(&m_db);
        hostSession()->clearLines();
        if (!failed) break;
        ++failures;
        if (dumpOf(m_db) != m_before) {
            ASSERT_TRUE(m_db.undo());
        }
        expectAsBefore();
    }
    EXPECT_GT(failures, 20);
    ASSERT_TRUE(m_db.undo());
    expectAsBefore();
}

/// Each object of the drawing in turn refuses to be opened for write.
TEST_F(FailingRedefinition, IsTakenBackWhateverObjectRefusesToBeWritten) {
    std::vector<OdDbObjectId> objects = {m_motor};
    for (const auto walk = openBlock(m_motor)->newIterator(); !walk->done(); walk->step())
        objects.push_back(walk->objectId());
    for (const OdDbObjectId id : m_references) {
        objects.push_back(id);
        for (const auto walk = openReference(id)->attributeIterator(); !walk->done(); walk->step())
            objects.push_back(walk->objectId());
    }
    ASSERT_EQ(objects.size(), 13u);
    for (const OdDbObjectId id : objects) {
        SCOPED_TRACE(plain(CHostString(id.openObject()->dxfName())));
        lm::drawing::refuseWriting(id);
        undoBlockBegin(&m_db);
        EXPECT_THROW(redefine(), OdError);
        undoBlockEnd(&m_db);
        lm::drawing::refuseWriting(OdDbObjectId());
        EXPECT_NE(dumpOf(m_db), m_before);
        ASSERT_TRUE(m_db.undo());
        expectAsBefore();
    }
    EXPECT_TRUE(redefine());
}

/// A lock keeps people from changing what they see by hand; a command that renews symbols goes past it.
TEST_F(FailingRedefinition, IsNotKeptFromLockedLayers) {
    for (const char* name : {"0", "P1"}) {
        const OdSmartPtr<OdDbSymbolTable> table(m_db.getLayerTableId().openObject());
        OdSmartPtr<OdDbLayerTableRecord>(table->getAt(od(name)).openObject(OdDb::kForWrite))
            ->setIsLocked(true);
    }
    const std::string locked = dumpOf(m_db);
    undoBlockBegin(&m_db);
    EXPECT_TRUE(redefine());
    undoBlockEnd(&m_db);
    EXPECT_THAT(attributesOf(openReference(m_references[0])), ElementsAre("A=x", "C=c"));
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(dumpOf(m_db), locked);
}

/// Without a group around it the block is left half done, which is why callers bracket the call.
TEST_F(FailingRedefinition, LeavesWhatWasDoneWithoutAnUndoGroup) {
    lm::drawing::refuseWriting(m_references[0]);
    EXPECT_THROW(redefine(), OdError);
    lm::drawing::refuseWriting(OdDbObjectId());
    EXPECT_THAT(entitiesOf(m_motor), testing::Contains("LINE 0 -1,-2,0 9,-2,0")) << "the new content";
    EXPECT_THAT(attributesOf(openReference(m_references[0])), ElementsAre("A=x", "B=y")) << "the old values";
    EXPECT_THAT(blocks(), ElementsAre("*Model_Space", "*Paper_Space", "MOTOR", "OUTER", "INNER"));
    EXPECT_EQ(lm::drawing::check(m_db).total(), m_defects) << "and yet the drawing is sound";
}

} // namespace
