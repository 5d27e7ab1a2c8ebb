// SPDX-License-Identifier: MIT
// The stack of active commands, the ends of commands, and drawings that are no projects.
#include "follower.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using HostCall = void (CCReactorBase::*)(OdEdCommand*, OdEdCommandContext*);

class CommandTracking : public Followed {
protected:
    void call(HostCall what, const char* name, OdDbDatabase* database) {
        Named named(name, database);
        (m_follower.*what)(named.command, &named.context);
    }
    void call(HostCall what, const char* name) { call(what, name, &m_db); }

    const HostCall m_start = &CCReactorBase::commandWillStart;
    struct End {
        HostCall call;
        const char* event;
    };
    const End m_ends[3] = {{&CCReactorBase::commandEnded, "ended"},
                           {&CCReactorBase::commandCancelled, "cancelled"},
                           {&CCReactorBase::commandFailed, "failed"}};
};

TEST_F(CommandTracking, KnowsTheInnermostCommand) {
    EXPECT_EQ(active(), "");
    start("_LINE");
    EXPECT_EQ(active(), "_LINE");
    start("_Zoom");
    EXPECT_EQ(active(), "_Zoom") << "as it is written";
    EXPECT_EQ(depth(), 2);
    end("_Zoom");
    EXPECT_EQ(active(), "_LINE");
    end("_LINE");
    EXPECT_EQ(active(), "");
    EXPECT_EQ(depth(), 0);
    EXPECT_THAT(events(), ElementsAre("start _LINE", "start _Zoom", "ended _Zoom", "ended _LINE"));
}

TEST_F(CommandTracking, IsActiveAlreadyWhenItsStartIsTold) {
    m_follower.once("start _X", [&] { EXPECT_EQ(active(), "_X"); });
    start("_X");
    m_follower.once("ended _X", [&] { EXPECT_EQ(active(), ""); });
    end("_X");
    EXPECT_EQ(events().size(), 2u);
}

TEST_F(CommandTracking, PassesOverTheStartOfInternalCommandsInAnyCase) {
    for (const char* name : {"_OPEN", "_DOCINIT", "_MAINSELECT", "_PAN_INTERNAL", "_open", "_Pan_Internal"}) {
        start(name);
        EXPECT_EQ(depth(), 0) << name;
        EXPECT_EQ(active(), "");
    }
    EXPECT_THAT(events(), IsEmpty());
    for (const char* name : {"OPEN", "_OPEN2", "_PAN", "_DOCINIT "}) start(name);
    EXPECT_EQ(depth(), 4);
}

TEST_F(CommandTracking, TellsTheEndOfInternalCommands) {
    start("_LINE");
    const OdDbObjectId id = eraseNow(point());
    clear();
    end("_OPEN");
    EXPECT_THAT(events(), ElementsAre("ended _OPEN"));
    EXPECT_FALSE(isUserErased(id)) << "the lists are empty as at any end";
    EXPECT_EQ(active(), "_LINE");
}

TEST_F(CommandTracking, TakesOffTheTopOnly) {
    for (const End& each : m_ends) {
        const std::string ended = each.event;
        start("_A");
        start("_B");
        const OdDbObjectId id = eraseNow(point());
        clear();
        call(each.call, "_A");
        EXPECT_EQ(depth(), 2) << each.event << ": the outer one ended first";
        EXPECT_EQ(active(), "_B");
        EXPECT_FALSE(isUserErased(id));
        EXPECT_THAT(events(), ElementsAre(ended + " _A"));
        call(each.call, "_b");
        EXPECT_EQ(depth(), 2) << "case counts";
        call(each.call, "_B");
        EXPECT_EQ(active(), "_A");
        call(each.call, "_A");
        call(each.call, "_A");
        EXPECT_EQ(depth(), 0);
        EXPECT_THAT(events(), ElementsAre(ended + " _b", ended + " _B", ended + " _A", ended + " _A"));
    }
}

TEST_F(CommandTracking, KeepsTheNameOfAnEventExactButNotThatOfTheStack) {
    start("_\u03a9");
    EXPECT_THAT(events(), ElementsAre("start _\u03a9"));
    EXPECT_EQ(active(), "_?") << "a text of Qt loses what the code page lacks";
    end("_\u03a9");
    EXPECT_EQ(depth(), 0) << "compared whole";
    EXPECT_THAT(events(), ElementsAre("ended _\u03a9"));
}

TEST_F(CommandTracking, PassesOverANullCommand) {
    OdEdCommandContext context(&m_db);
    const OdDbObjectId id = eraseNow(point());
    clear();
    m_follower.commandWillStart(static_cast<OdEdCommand*>(nullptr), &context);
    for (const End& each : m_ends) (m_follower.*each.call)(nullptr, &context);
    m_follower.commandWillStart(static_cast<OdEdCommand*>(nullptr), nullptr);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(depth(), 0);
    EXPECT_TRUE(isUserErased(id));
}

TEST_F(CommandTracking, LeavesOutTheEventAloneWithoutAContext) {
    for (const End& each : m_ends) {
        Named copy("_COPY", nullptr);
        m_follower.commandWillStart(copy.command, nullptr);
        EXPECT_EQ(active(), "_COPY");
        const OdDbObjectId erased = eraseNow(point()), queued = point();
        m_follower.addObjectsToErase(queued);
        clear();
        (m_follower.*each.call)(copy.command, nullptr);
        EXPECT_EQ(depth(), 0);
        EXPECT_FALSE(isUserErased(erased));
        EXPECT_FALSE(isAlive(queued)) << "the queue that the copy held back";
        EXPECT_THAT(events(), ElementsAre("begin", "end"));
    }
}

TEST_F(CommandTracking, NamesTheDocumentOfTheContext) {
    CHostDocument* const other = m_documents.manager.newDocument();
    const OdSmartPtr<OdDbDatabase> side = drawing();
    clear();
    const std::string number = " @" + std::to_string(other->number());
    call(m_start, "_A", other->database());
    call(m_start, "_A", side.get());
    call(m_start, "_A", nullptr);
    EXPECT_THAT(events(), ElementsAre("start _A" + number, "start _A @null", "start _A @null"));
    for (const End& each : m_ends) {
        call(each.call, "_A", other->database());
        EXPECT_THAT(events(), ElementsAre(each.event + (" _A" + number)));
    }
}

TEST_F(CommandTracking, NeedsADatabaseForTheGoodEndAlone) {
    m_documents.manager.newDocumentWithoutDatabase();
    ASSERT_EQ(getDatabase(), nullptr);
    const OdDbObjectId id = eraseNow(point());
    start("_A");
    clear();
    call(m_ends[0].call, "_A");
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(depth(), 1);
    EXPECT_TRUE(isUserErased(id));
    setDatabase(&m_db);
    call(m_ends[0].call, "_A");
    EXPECT_THAT(events(), ElementsAre("ended _A"));
    EXPECT_EQ(depth(), 0);
    setDatabase(nullptr);
    for (const End& each : {m_ends[1], m_ends[2]}) {
        start("_A");
        clear();
        call(each.call, "_A");
        EXPECT_THAT(events(), ElementsAre(std::string(each.event) + " _A"));
        EXPECT_EQ(depth(), 0);
    }
}

TEST_F(CommandTracking, EmptiesTheListsBeforeTheEvent) {
    for (const End& each : m_ends) {
        const OdDbObjectId id = eraseNow(point());
        EXPECT_TRUE(isUserErased(id));
        bool isTold = false;
        m_follower.once(std::string(each.event) + " _A", [&] {
            isTold = true;
            EXPECT_FALSE(isUserErased(id)) << each.event;
        });
        call(each.call, "_A");
        EXPECT_TRUE(isTold);
        EXPECT_FALSE(isUserErased(id));
    }
}

// --- "_COPY" ---

TEST_F(CommandTracking, EndsACopyWithOneMoreEndOfATransaction) {
    for (const End& each : m_ends) {
        call(each.call, "_COPY");
        EXPECT_THAT(events(), ElementsAre(std::string(each.event) + " _COPY", "begin", "end"));
        call(each.call, "_copy");
        call(each.call, "_COPYCLIP");
        EXPECT_THAT(events(),
                    ElementsAre(std::string(each.event) + " _copy", std::string(each.event) + " _COPYCLIP"));
    }
}

TEST_F(CommandTracking, HoldsTheQueueBackWhileACopyIsActiveAnywhere) {
    for (const char* name : {"_COPY", "_copy", "_Copy"}) {
        start(name);
        start("_LINE");
        const OdDbObjectId id = point();
        m_follower.addObjectsToErase(id);
        clear();
        m_follower.transactionEnded(&m_db);
        EXPECT_THAT(events(), ElementsAre("begin", "end")) << "they come all the same";
        EXPECT_TRUE(isAlive(id)) << name;
        end("_LINE");
        EXPECT_TRUE(isAlive(id));
        end(name);
        EXPECT_EQ(isAlive(id), std::string(name) != "_COPY") << "the end itself is told by its exact name";
        m_follower.transactionEnded(nullptr);
        EXPECT_FALSE(isAlive(id));
    }
    start("_COPYCLIP");
    const OdDbObjectId id = point();
    m_follower.addObjectsToErase(id);
    m_follower.transactionEnded(&m_db);
    EXPECT_FALSE(isAlive(id)) << "another command";
}

TEST_F(CommandTracking, HoldsTheQueueBackUntilTheOuterOfTwoCopiesEnds) {
    start("_COPY");
    start("_COPY");
    const OdDbObjectId id = point();
    m_follower.addObjectsToErase(id);
    clear();
    end("_COPY");
    EXPECT_TRUE(isAlive(id));
    EXPECT_THAT(events(), ElementsAre("ended _COPY", "begin", "end"));
    end("_COPY");
    EXPECT_FALSE(isAlive(id));
}

/// A module may override what the end of a copy calls; no database stands behind that call.
TEST_F(CommandTracking, EndsACopyThroughTheOverriddenOperationWithoutADatabase) {
    struct Overriding : CCReactorBase {
        void transactionEnded(OdDbDatabase* database) override { told.push_back(database); }
        std::vector<OdDbDatabase*> told;
    } reactor;
    for (const End& each : m_ends) {
        Named copy("_COPY", &m_db);
        (reactor.*each.call)(copy.command, &copy.context);
        EXPECT_THAT(std::exchange(reactor.told, {}), ElementsAre(nullptr)) << each.event;
    }
}

TEST_F(CommandTracking, HoldsTheQueuesOfAllDocumentsBack) {
    CHostDocument* const other = m_documents.manager.newDocument();
    call(m_start, "_COPY", &m_db);
    const OdDbObjectId id = point(*other->database());
    m_follower.addObjectsToErase(id);
    other->database()->startTransaction();
    other->database()->endTransaction();
    EXPECT_TRUE(isAlive(id)) << "one stack of commands for all documents";
    call(m_ends[0].call, "_COPY", &m_db);
    EXPECT_FALSE(isAlive(id));
}

TEST_F(CommandTracking, LeavesTheQueueWhenTheEventOfACopyRaises) {
    for (const End& each : m_ends) {
        start("_COPY");
        const OdDbObjectId erased = eraseNow(point()), queued = point();
        m_follower.addObjectsToErase(queued);
        clear();
        const std::string ended = std::string(each.event) + " _COPY";
        m_follower.once(ended, [] { throw OdError(OdString("broken")); });
        EXPECT_THROW(call(each.call, "_COPY"), OdError);
        EXPECT_THAT(events(), ElementsAre(ended));
        EXPECT_TRUE(isAlive(queued));
        EXPECT_EQ(depth(), 0) << "all that comes before the event is done";
        EXPECT_FALSE(isUserErased(erased));
        m_follower.transactionEnded(&m_db);
        EXPECT_FALSE(isAlive(queued));
    }
}

TEST_F(CommandTracking, AsksAgainBehindTheEventOfACopy) {
    for (const End& each : m_ends) {
        start("_COPY");
        const OdDbObjectId queued = point();
        m_follower.addObjectsToErase(queued);
        clear();
        const std::string ended = std::string(each.event) + " _COPY";
        m_follower.once(ended, [&] { setNoProject(true); });
        call(each.call, "_COPY");
        EXPECT_THAT(events(), ElementsAre(ended)) << "it is no project any more";
        EXPECT_TRUE(isAlive(queued));
        setNoProject(false);
        m_follower.transactionEnded(&m_db);
    }
}

// --- Drawings that are no projects ---

TEST_F(CommandTracking, PassesOverADrawingThatIsNoProject) {
    start("_A");
    const OdDbObjectId erased = eraseNow(point()), kept = point();
    setNoProject(true);
    clear();
    start("_B");
    for (const End& each : m_ends) {
        call(each.call, "_A");
        call(each.call, "_COPY");
    }
    m_follower.addObjectsToErase(kept);
    m_follower.transactionEnded(&m_db);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(active(), "_A");
    EXPECT_TRUE(isUserErased(erased)) << "the list keeps growing";
    setNoProject(false);
    m_follower.transactionEnded(&m_db);
    EXPECT_TRUE(isAlive(kept)) << "it was never queued";
    EXPECT_THAT(events(), ElementsAre("begin", "end"));
    end("_A");
    EXPECT_EQ(depth(), 0);
    EXPECT_FALSE(isUserErased(erased));
}

TEST_F(CommandTracking, KeepsTheQueueWhileADrawingIsNoProject) {
    const OdDbObjectId id = point();
    m_follower.addObjectsToErase(id);
    setNoProject(true);
    m_follower.transactionEnded(&m_db);
    EXPECT_TRUE(isAlive(id));
    setNoProject(false);
    m_follower.transactionEnded(&m_db);
    EXPECT_FALSE(isAlive(id));
}

TEST_F(CommandTracking, TellsOfTheObjectsOfADrawingThatIsNoProject) {
    const OdDbObjectId id = shown("NAF-01");
    setNoProject(true);
    clear();
    erase(id);
    EXPECT_THAT(events(), ElementsAre("blockErased NAF-01", "ctoErased NAF-01"));
    run("_X");
    EXPECT_TRUE(isUserErased(id));
}

TEST_F(CommandTracking, TakesAnUnsetVariableForAProject) {
    m_cad.SetVarStr("*IS_NOT_RZ_PROJECT*", "", m_document);
    start("_A");
    EXPECT_EQ(depth(), 0) << "any value but nil, the empty text too";
    setNoProject(false);
    start("_A");
    EXPECT_EQ(depth(), 1);
}

TEST_F(CommandTracking, AsksTheActiveDocumentAndNotThatOfTheEvent) {
    CHostDocument* const other = m_documents.manager.newDocument();
    setNoProject(true, other);
    clear();
    start("_A");
    m_follower.transactionEnded(&m_db);
    EXPECT_THAT(events(), IsEmpty());
    m_documents.manager.setActiveDocument(m_document);
    call(m_start, "_A", other->database());
    EXPECT_EQ(depth(), 1);
    EXPECT_EQ(events().size(), 1u);
    m_documents.manager.setActiveDocument(nullptr);
    start("_B");
    EXPECT_EQ(depth(), 2) << "no document is no reason to pass over anything";
}

TEST_F(CommandTracking, PassesOnWhatAnEventRaises) {
    m_follower.once("start _A", [] { throw OdError(OdString("broken")); });
    const lm::test::LogCapture log;
    EXPECT_THROW(start("_A"), OdError);
    EXPECT_EQ(depth(), 1) << "it was active before the event";
    m_follower.once("ended _A", [] { throw OdError(OdString("broken")); });
    EXPECT_THROW(end("_A"), OdError);
    EXPECT_EQ(depth(), 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CommandTracking, PassesOnWhatTheProjectTestRaises) {
    start("_A");
    const OdDbObjectId erased = eraseNow(point()), queued = point(), other = point();
    m_follower.addObjectsToErase(queued);
    setNoProject(true); // a variable that is set takes memory to be read
    clear();
    Named named("_A", &m_db);
    std::vector<std::function<void()>> calls = {
        [&] { m_follower.commandWillStart(named.command, &named.context); },
        [&] { m_follower.transactionEnded(&m_db); },
        [&] { m_follower.addObjectsToErase(other); },
    };
    for (const End& each : m_ends)
        calls.push_back([&] { (m_follower.*each.call)(named.command, &named.context); });
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const lm::test::LogCapture log;
        lm::drawing::failAllocationAfter(0);
        EXPECT_THROW(calls[i](), std::bad_alloc) << i;
        lm::drawing::failAllocationAfter(-1);
        EXPECT_THAT(linesOf(log), ElementsAre(testing::StartsWith("CICad::GetVarBool : "))) << i;
    }
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(active(), "_A");
    EXPECT_TRUE(isUserErased(erased));
    setNoProject(false);
    m_follower.transactionEnded(&m_db);
    EXPECT_FALSE(isAlive(queued));
    EXPECT_TRUE(isAlive(other)) << "it was never queued";
}

// --- With the commands of the host ---

TEST_F(CommandTracking, FollowsTheLifeOfACommand) {
    run("_X", [&](OdEdCommandContext&) {
        EXPECT_EQ(active(), "_X");
        point();
    });
    EXPECT_THAT(events(), ElementsAre("start _X", "entityAppended POINT", "begin", "end", "ended _X"));
}

TEST_F(CommandTracking, FollowsCommandsInsideCommands) {
    run("_X", [&](OdEdCommandContext&) {
        run("_Y", [&](OdEdCommandContext&) {
            EXPECT_EQ(active(), "_Y");
            EXPECT_EQ(depth(), 2);
        });
        EXPECT_EQ(active(), "_X");
        EXPECT_EQ(depth(), 1);
    });
    EXPECT_EQ(depth(), 0);
    EXPECT_THAT(events(), ElementsAre("start _X", "start _Y", "ended _Y", "begin", "end", "ended _X"))
        << "the inner transaction is none of its own";
}

TEST_F(CommandTracking, FollowsCommandsThatAreCancelledOrFail) {
    run("_X", [&](OdEdCommandContext&) {
        point();
        throw lm::host::CommandCancelled();
    });
    EXPECT_EQ(depth(), 0);
    EXPECT_THAT(events(), ElementsAre("start _X", "entityAppended POINT", "cancelled _X"))
        << "no end of a transaction that was aborted";
    EXPECT_THROW(run("_X", [](OdEdCommandContext&) { throw std::runtime_error("x"); }), std::runtime_error);
    EXPECT_EQ(depth(), 0);
    EXPECT_THAT(events(), ElementsAre("start _X", "failed _X"));
}

TEST_F(CommandTracking, TellsTheOpeningOfADrawingByItsEndAlone) {
    const std::string path = m_folder.file("drawing.dxf", lm::test::kEmptyDrawing);
    m_document->executeCommand(OdString("_OPEN"), {lm::host::Answer(path)});
    CHostDocument* const opened = m_documents.manager.activeDocument();
    ASSERT_NE(opened, m_document);
    const Texts told = events();
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front(), "cargaInicial @" + std::to_string(opened->number()));
    EXPECT_EQ(told.back(), "ended _OPEN");
    EXPECT_EQ(depth(), 0);
}

} // namespace
