// SPDX-License-Identifier: MIT
// Objects that a reactor has erased at the end of a transaction, and how they differ from those that the user
// erased.
#include "follower.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class EraseQueue : public Followed {
protected:
    void queue(OdDbObjectId id) { m_follower.addObjectsToErase(id); }
    void endTransaction() { m_follower.transactionEnded(&m_db); }
    void command(const char* name, std::initializer_list<lm::host::Answer> answers) {
        m_document->executeCommand(OdString(name), answers);
    }
};

TEST_F(EraseQueue, IsErasedInOrderAtTheEndOfATransaction) {
    const OdDbObjectId first = shown("INS-1"), second = shown("NA-1"), third = shown("PLAIN");
    clear();
    queue(second);
    queue(third);
    queue(first);
    EXPECT_TRUE(isAlive(first));
    EXPECT_THAT(events(), IsEmpty()) << "nothing happens at once";
    m_db.startTransaction();
    m_db.startTransaction();
    m_db.endTransaction();
    EXPECT_TRUE(isAlive(second)) << "an inner transaction";
    m_db.endTransaction();
    EXPECT_THAT(events(), ElementsAre("begin", "blockErased NA-1", "ctoErased NA-1", "blockErased PLAIN",
                                      "blockErased INS-1", "insErased INS-1", "end"));
    for (const OdDbObjectId id : {first, second, third}) EXPECT_FALSE(isAlive(id));
    endTransaction();
    EXPECT_THAT(events(), ElementsAre("begin", "end")) << "once";
}

TEST_F(EraseQueue, WaitsThroughATransactionThatIsTakenBack) {
    const OdDbObjectId id = point();
    m_db.startTransaction();
    queue(id);
    m_db.abortTransaction();
    EXPECT_TRUE(isAlive(id));
    m_db.startTransaction();
    m_db.endTransaction();
    EXPECT_FALSE(isAlive(id));
}

TEST_F(EraseQueue, IsNotTakenForErasedByTheUser) {
    const OdDbObjectId byUser = point(), byQueue = shown("NA-1"), alive = point();
    queue(byQueue);
    bool isTold = false;
    m_follower.once("blockErased NA-1", [&] {
        isTold = true;
        EXPECT_FALSE(isUserErased(byQueue)) << "already in the midst of it";
    });
    erase(byUser);
    endTransaction();
    EXPECT_TRUE(isTold);
    EXPECT_FALSE(isAlive(byQueue));
    EXPECT_TRUE(isUserErased(byUser));
    EXPECT_FALSE(isUserErased(byQueue));
    EXPECT_FALSE(isUserErased(alive));
    end("_X");
    for (const OdDbObjectId id : {byUser, byQueue, alive}) EXPECT_FALSE(isUserErased(id));
}

TEST_F(EraseQueue, NotesAllHandlesBeforeItErases) {
    const OdDbObjectId first = shown("NA-1"), second = shown("NA-2");
    queue(first);
    queue(second);
    bool isTold = false;
    m_follower.once("blockErased NA-1", [&] {
        isTold = true;
        erase(second);
        EXPECT_FALSE(isUserErased(second)) << "its own turn was still to come";
    });
    endTransaction();
    EXPECT_TRUE(isTold);
    EXPECT_FALSE(isUserErased(first));
    EXPECT_FALSE(isUserErased(second));
}

TEST_F(EraseQueue, ForgetsItsOwnHandlesAtTheEndOfACommandToo) {
    const OdDbObjectId id = point();
    queue(id);
    endTransaction();
    id.openObject(OdDb::kForWrite, true)->erase(false);
    erase(id);
    EXPECT_FALSE(isUserErased(id)) << "in the same command nobody can tell";
    end("_X");
    id.openObject(OdDb::kForWrite, true)->erase(false);
    erase(id);
    EXPECT_TRUE(isUserErased(id));
}

TEST_F(EraseQueue, ComparesHandlesExactly) {
    OdDbObjectId id = point();
    while (handle(id).find_first_of("ABCDEF") == std::string::npos) id = point();
    erase(id);
    EXPECT_TRUE(m_follower.wasUserErased(handleOf(id)));
    EXPECT_FALSE(m_follower.wasUserErased(rz("0" + handle(id))));
    EXPECT_FALSE(m_follower.wasUserErased(handleOf(id).asLower()));
    EXPECT_FALSE(m_follower.wasUserErased(""));
}

TEST_F(EraseQueue, PassesOverWhatIsGoneButNotesItsHandle) {
    const OdDbObjectId erased = eraseNow(point()), alive = point();
    EXPECT_TRUE(isUserErased(erased));
    clear();
    queue(erased);
    queue(OdDbObjectId());
    queue(alive);
    endTransaction();
    EXPECT_THAT(events(), ElementsAre("begin", "end"));
    EXPECT_FALSE(isAlive(alive)) << "the others have their turn";
    EXPECT_FALSE(isUserErased(erased)) << "its handle went to both lists";
    EXPECT_FALSE(m_follower.wasUserErased("0"));
}

TEST_F(EraseQueue, TakesAnObjectTwice) {
    const OdDbObjectId id = shown("NA-1");
    clear();
    queue(id);
    queue(id);
    endTransaction();
    EXPECT_THAT(events(), ElementsAre("begin", "blockErased NA-1", "ctoErased NA-1", "end"));
}

TEST_F(EraseQueue, PassesOverARefusal) {
    const OdDbObjectId alive = point();
    queue(m_db.getLayerZeroId());
    queue(alive);
    endTransaction();
    EXPECT_TRUE(isAlive(m_db.getLayerZeroId()));
    EXPECT_FALSE(isAlive(alive));
}

TEST_F(EraseQueue, LeavesWhatIsQueuedMeanwhileForTheNextTransaction) {
    const OdDbObjectId first = shown("NA-1"), second = point(), third = point();
    queue(first);
    m_follower.also = [&](const std::string& event) {
        if (event == "blockErased NA-1") queue(second);
        if (event == "end") queue(third);
    };
    endTransaction();
    m_follower.also = nullptr;
    EXPECT_FALSE(isAlive(first));
    EXPECT_TRUE(isAlive(second));
    endTransaction();
    EXPECT_FALSE(isAlive(second));
    EXPECT_FALSE(isAlive(third));
}

TEST_F(EraseQueue, TakesWhatIsQueuedAtTheBeginOfTheSameEnd) {
    const OdDbObjectId id = point();
    m_follower.once("begin", [&] { queue(id); });
    endTransaction();
    EXPECT_FALSE(isAlive(id));
}

TEST_F(EraseQueue, GrowsAndShrinksThroughTransactionsInsideItsEvents) {
    const OdDbObjectId first = shown("NA-1"), second = shown("NA-2"), third = point();
    clear();
    queue(first);
    queue(second);
    m_follower.once("blockErased NA-1", [&] {
        queue(third);
        m_db.startTransaction();
        m_db.endTransaction();
        EXPECT_FALSE(isAlive(third)) << "an end of its own";
        EXPECT_TRUE(isAlive(second));
    });
    endTransaction();
    EXPECT_FALSE(isAlive(second));
    EXPECT_THAT(events(), ElementsAre("begin", "blockErased NA-1", "begin", "end", "ctoErased NA-1",
                                      "blockErased NA-2", "ctoErased NA-2", "end"));
}

TEST_F(EraseQueue, ClosesEachObjectBeforeTheNext) {
    const OdDbObjectId first = shown("NA-1"), second = shown("NA-2");
    queue(first);
    queue(second);
    const OdSmartPtr<OdDbObject> watched = first.openObject();
    const long before = watched->numRefs();
    m_follower.once("blockErased NA-2", [&] { EXPECT_EQ(watched->numRefs(), before); });
    endTransaction();
    EXPECT_FALSE(isAlive(second));
    EXPECT_EQ(watched->numRefs(), before);
}

TEST_F(EraseQueue, PassesAFailureOnAndIsEmptyThen) {
    const OdDbObjectId first = shown("NA-1"), second = shown("NA-2");
    queue(first);
    queue(second);
    clear();
    m_follower.once("blockErased NA-1", [] { throw OdError(OdString("broken")); });
    EXPECT_THROW(endTransaction(), OdError);
    EXPECT_THAT(events(), ElementsAre("begin", "blockErased NA-1"));
    EXPECT_FALSE(isAlive(first)) << "the deed itself is done";
    EXPECT_TRUE(isAlive(second));
    endTransaction();
    EXPECT_TRUE(isAlive(second)) << "nothing is left of the queue";
}

TEST_F(EraseQueue, ForgetsADrawingThatWasClosed) {
    CHostDocument* const other = m_documents.manager.newDocument();
    const OdDbObjectId there = point(*other->database()), here = point();
    queue(there);
    queue(here);
    m_documents.manager.closeDocument(other);
    m_documents.manager.setActiveDocument(m_document);
    m_db.startTransaction();
    m_db.endTransaction();
    EXPECT_FALSE(isAlive(here));
}

TEST_F(EraseQueue, SpansTheOpenDocuments) {
    CHostDocument* const other = m_documents.manager.newDocument();
    m_documents.manager.setActiveDocument(m_document);
    const OdDbObjectId there = append(other->database()->getModelSpaceId(), make(new OdDbPolyline));
    queue(there);
    clear();
    m_db.startTransaction();
    m_db.endTransaction();
    EXPECT_FALSE(isAlive(there)) << "by the end of another document's transaction";
    EXPECT_THAT(events(),
                ElementsAre("begin", "plineErased LWPOLYLINE @" + std::to_string(other->number()), "end"));
}

// --- With the commands of the host ---

TEST_F(EraseQueue, IsErasedBeforeItsCommandEnds) {
    const OdDbObjectId id = shown("NA-1");
    clear();
    run("_X", [&](OdEdCommandContext&) { queue(id); });
    EXPECT_THAT(events(),
                ElementsAre("start _X", "begin", "blockErased NA-1", "ctoErased NA-1", "end", "ended _X"));
}

TEST_F(EraseQueue, IsTakenBackWithItsCommandInOneStep) {
    const OdDbObjectId id = shown("NA-1");
    OdDbObjectId made;
    run("_X", [&](OdEdCommandContext&) {
        made = point();
        queue(id);
    });
    ASSERT_FALSE(isAlive(id));
    clear();
    command("_U", {});
    EXPECT_TRUE(isAlive(id));
    EXPECT_FALSE(isAlive(made));
    EXPECT_THAT(events(), ElementsAre("start _U", "blockAppended NA-1", "ctoAppended NA-1",
                                      "entityAppended INSERT", "ended _U"));
    command("_REDO", {});
    EXPECT_FALSE(isAlive(id));
    EXPECT_TRUE(isAlive(made));
    EXPECT_THAT(events(), ElementsAre("start _REDO", "blockErased NA-1", "ctoErased NA-1", "ended _REDO"));
}

TEST_F(EraseQueue, WaitsForTheNextTransactionWhenItsCommandIsTakenBack) {
    const OdDbObjectId id = point();
    OdDbObjectId made;
    run("_X", [&](OdEdCommandContext&) {
        made = point();
        queue(id);
        queue(made);
        throw lm::host::CommandCancelled();
    });
    EXPECT_TRUE(isAlive(id));
    run("_Y");
    EXPECT_FALSE(isAlive(id));
    EXPECT_FALSE(isAlive(made));
}

TEST_F(EraseQueue, WaitsForTheEndOfACopyWithItsManyTransactions) {
    const OdDbObjectId first = point(), second = point();
    clear();
    std::vector<OdDbObjectId> copies;
    bool areAllAlive = true, isOver = false;
    m_follower.also = [&](const std::string& event) {
        for (const OdDbObjectId each : copies) areAllAlive = areAllAlive && (isOver || isAlive(each));
        isOver = isOver || event == "ended _COPY";
        if (event != "entityAppended POINT") return;
        // Whoever watches a copy finds the new object at the end of model space.
        const auto space = OdSmartPtr<OdDbBlockTableRecord>(m_db.getModelSpaceId().openObject());
        OdDbObjectId last;
        for (const auto walk = space->newIterator(); !walk->done(); walk->step()) last = walk->objectId();
        copies.push_back(last);
        queue(last);
    };
    m_document->executeCommand(OdString("_COPY"), {lm::host::Answer(std::vector<OdDbObjectId>{first, second}),
                                                   lm::host::Answer(""), lm::host::Answer("0,0"),
                                                   lm::host::Answer("1,1"), lm::host::Answer("")});
    m_follower.also = nullptr;
    EXPECT_THAT(events(), ElementsAre("start _COPY", "entityAppended POINT", "begin", "end",
                                      "entityAppended POINT", "begin", "end", "ended _COPY", "begin", "end"));
    ASSERT_EQ(copies.size(), 2u);
    EXPECT_TRUE(areAllAlive && isOver) << "until the event of its end";
    for (const OdDbObjectId each : copies) EXPECT_FALSE(isAlive(each));
    EXPECT_TRUE(isAlive(first));
    EXPECT_TRUE(isAlive(second));
    EXPECT_EQ(depth(), 0);
}

TEST_F(EraseQueue, IsErasedByACopyThatWasCancelledOrFailed) {
    for (const bool isFailure : {false, true}) {
        const OdDbObjectId id = point();
        const auto body = [&](OdEdCommandContext&) {
            m_db.startTransaction();
            queue(id);
            m_db.endTransaction();
            EXPECT_TRUE(isAlive(id));
            if (isFailure) throw std::runtime_error("x");
            throw lm::host::CommandCancelled();
        };
        clear();
        if (isFailure)
            EXPECT_THROW(run(m_document, "_COPY", body, OdEdCommand::kManyTransactions), std::runtime_error);
        else
            run(m_document, "_COPY", body, OdEdCommand::kManyTransactions);
        EXPECT_FALSE(isAlive(id)) << "what comes after the taking back stands";
        EXPECT_THAT(events(), ElementsAre("start _COPY", "begin", "end",
                                          isFailure ? "failed _COPY" : "cancelled _COPY", "begin", "end"));
        m_document->undo();
        EXPECT_TRUE(isAlive(id)) << "and belongs to the command's step";
    }
}

TEST_F(EraseQueue, KnowsWhatTheUserErased) {
    const OdDbObjectId byUser = shown("NA-1"), byQueue = shown("NA-2");
    clear();
    bool isTold = false;
    m_follower.also = [&](const std::string& event) {
        if (event == "ctoErased NA-1") queue(byQueue);
        if (event != "end") return;
        isTold = true;
        EXPECT_TRUE(isUserErased(byUser));
        EXPECT_FALSE(isUserErased(byQueue));
    };
    command("_ERASE", {lm::host::Answer(byUser), lm::host::Answer("")});
    m_follower.also = nullptr;
    EXPECT_TRUE(isTold);
    EXPECT_THAT(events(), ElementsAre("start _ERASE", "blockErased NA-1", "ctoErased NA-1", "begin",
                                      "blockErased NA-2", "ctoErased NA-2", "end", "ended _ERASE"));
    EXPECT_FALSE(isUserErased(byUser));
}

} // namespace
