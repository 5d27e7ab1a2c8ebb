// SPDX-License-Identifier: MIT
// Commands: who is told when, what cancelling and failing take back, nesting, the stack, the reactors.
#include "commandsupport.h"

#include <type_traits>

namespace {

using namespace lm::test;

TEST(EditorReactor, BringsTheThreeKindsInOrderAndNeverEndsByItsCount) {
    static_assert(std::is_base_of_v<OdEditorReactor, CHostEditorReactor>);
    static_assert(std::is_base_of_v<OdEdCommandStackReactor, CHostEditorReactor>);
    static_assert(std::is_base_of_v<OdEdLispEngineReactor, CHostEditorReactor>);
    struct Mine : CHostEditorReactor {
        explicit Mine(bool& ended) : ended(ended) {}
        ~Mine() override { ended = true; }
        bool& ended;
    };
    bool ended = false;
    {
        Mine mine(ended);
        auto* const first = reinterpret_cast<char*>(static_cast<OdEditorReactor*>(&mine));
        auto* const second = reinterpret_cast<char*>(static_cast<OdEdCommandStackReactor*>(&mine));
        auto* const third = reinterpret_cast<char*>(static_cast<OdEdLispEngineReactor*>(&mine));
        EXPECT_LT(first, second);
        EXPECT_LT(second, third);
        { const OdSmartPtr<OdEdCommandStackReactor> held(&mine); }
        mine.release();
        mine.deleteModule();
        EXPECT_FALSE(ended);
        EXPECT_TRUE(mine.moduleName().isEmpty());
        EXPECT_EQ(nullptr, mine.sysData());
    }
    EXPECT_TRUE(ended);
}

TEST(CommandStack, TakesAReactorOnceAndLetsAnUnknownOneGoSilently) {
    const std::size_t before = stack().reactorCount();
    OdEdCommandStackReactor reactor, stranger;
    stack().addReactor(nullptr);
    stack().addReactor(&reactor);
    stack().addReactor(&reactor);
    EXPECT_EQ(before + 1, stack().reactorCount());
    stack().removeReactor(&stranger);
    stack().removeReactor(nullptr);
    stack().removeReactor(&reactor);
    EXPECT_EQ(before, stack().reactorCount());
    stack().removeReactor(&reactor);
}

TEST(CommandStack, FindsNamesIgnoringCaseAsUsersTypeThem) {
    for (const char* name : {"_ERASE", "erase", "_.Erase", ".ERASE", "'_erase", "-ERASE"})
        EXPECT_EQ("_ERASE", utf8(stack().lookupCmd(OdString(name))->globalName())) << name;
    for (const char* name : {"", "_", "ERAS", "_ERASES", "E RASE"})
        EXPECT_TRUE(stack().lookupCmd(OdString(name)).isNull()) << name;
}

TEST(CommandStack, KeepsNamesAsRegisteredAndRunsTheLatestOfOneName) {
    const std::size_t before = stack().commands().size();
    Lines lines;
    {
        lm::host::CommandRegistration first("_MyCmd", [&](OdEdCommandContext&) { lines.push_back("first"); });
        lm::host::CommandRegistration second("_MYCMD",
                                             [&](OdEdCommandContext&) { lines.push_back("second"); });
        EXPECT_EQ("_MyCmd", utf8(first.command()->globalName()));
        AnswerList none;
        lm::host::executeCommand(nullptr, OdString("mycmd"), none);
        second.reset();
        lm::host::executeCommand(nullptr, OdString("mycmd"), none);
        stack().addCmd(OdSmartPtr<OdEdCommand>(first.command())); // there already
        EXPECT_EQ(before + 1, stack().commands().size());
    }
    EXPECT_EQ((Lines{"second", "first"}), lines);
    EXPECT_EQ(before, stack().commands().size());
}

TEST(Commands, ThatAreUnknownFailAndNobodyIsTold) {
    const Drawing drawing;
    Lines lines;
    const Watcher watcher(lines);
    EXPECT_THROW(drawing.document().executeCommand("_NOSUCH"), CommandFailed);
    EXPECT_TRUE(lines.empty());
}

TEST(Commands, RunInOneTransactionThatEndsBeforeTheEndCallback) {
    const Drawing drawing;
    Events events;
    EXPECT_EQ(RTNORM, run(drawing.document(), "_MAKE", [&](OdEdCommandContext& context) {
                  EXPECT_EQ(1u, context.database()->numActiveTransactions());
                  EXPECT_EQ(&drawing.document(), context.document());
                  EXPECT_EQ("_MAKE", utf8(drawing.document().activeCommand()));
                  drawing.circle(0, 0, 1);
              }));
    const std::string circle = drawing.handle(drawing.entities().at(0));
    EXPECT_EQ((Lines{"commandWillStart _MAKE", "objectAppended CIRCLE " + circle, "transactionEnded",
                     "commandEnded _MAKE"}),
              events.take());
    EXPECT_EQ(0u, drawing.database().numActiveTransactions());
    EXPECT_EQ(0u, drawing.document().commandDepth());
}

TEST(Commands, ThatCancelTakeTheirBodyBackBeforeTheCallback) {
    const Drawing drawing;
    Events events;
    Lines lines;
    Watcher watcher(lines);
    std::size_t left = 99;
    watcher.also = [&](const std::string& what, OdEdCommandContext* context) {
        if (what != "cancelled") return;
        left = drawing.entities().size();
        EXPECT_EQ(0u, context->database()->numActiveTransactions());
        drawing.line(0, 0, 1, 1);
    };
    EXPECT_EQ(RTCAN, run(drawing.document(), "_GIVEUP", [&](OdEdCommandContext&) {
                  drawing.circle(0, 0, 1);
                  throw CommandCancelled();
              }));
    EXPECT_EQ((Lines{"start _GIVEUP", "cancelled _GIVEUP"}), lines);
    EXPECT_EQ(0u, left);
    ASSERT_EQ(1u, drawing.entities().size()) << "what the callback made stands";
    const Lines all = events.take();
    EXPECT_EQ("commandWillStart _GIVEUP", all.front());
    EXPECT_EQ(all.end(), std::find(all.begin(), all.end(), "transactionEnded"));
}

TEST(Commands, ThatFailTakeTheirBodyBackAndPassTheExceptionAfterTheCallback) {
    const Drawing drawing;
    Lines lines;
    const Watcher watcher(lines);
    const auto failing = [&](auto thrown) {
        return [&drawing, thrown](OdEdCommandContext&) {
            drawing.circle(0, 0, 1);
            throw thrown;
        };
    };
    EXPECT_THROW(run(drawing.document(), "_A", failing(CommandFailed("why"))), CommandFailed);
    EXPECT_THROW(run(drawing.document(), "_B", failing(std::logic_error("why"))), std::logic_error);
    EXPECT_THROW(run(drawing.document(), "_C", failing(OdError(eInvalidInput))), OdError);
    EXPECT_THROW(run(drawing.document(), "_D", failing(7)), int);
    EXPECT_EQ((Lines{"start _A", "failed _A", "start _B", "failed _B", "start _C", "failed _C", "start _D",
                     "failed _D"}),
              lines);
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_EQ(0u, drawing.document().commandDepth());
    EXPECT_FALSE(drawing.document().isInUndoStep());
}

TEST(Commands, TellBeforeTheirEndOfObjectsThatAreStillHeld) {
    for (const auto kind :
         {OdEdCommand::kOrdinary, OdEdCommand::kManyTransactions, OdEdCommand::kOutsideUndo}) {
        const Drawing drawing;
        Events events;
        const OdSmartPtr<OdDbLine> held(new OdDbLine, lm::drawing::kAttach);
        run(
            drawing.document(), "_X", [&](OdEdCommandContext&) { drawing.add(held); }, kind);
        Lines lines = events.take();
        std::erase(lines, "transactionEnded");
        ASSERT_EQ(3u, lines.size()) << kind;
        EXPECT_TRUE(lines[1].starts_with("objectAppended LINE")) << lines[1];
        EXPECT_EQ("commandEnded _X", lines[2]);
        held->downgradeOpen();
        EXPECT_EQ(Lines(), events.take()) << "once";
    }
}

TEST(Commands, LeaveNoTransactionOfTheirBodyOpen) {
    const Drawing drawing;
    run(drawing.document(), "_OPENED",
        [](OdEdCommandContext& context) { context.database()->startTransaction(); });
    EXPECT_EQ(0u, drawing.database().numActiveTransactions());
    EXPECT_EQ(RTCAN, run(drawing.document(), "_OPENED", [](OdEdCommandContext& context) {
                  context.database()->startTransaction();
                  throw CommandCancelled();
              }));
    EXPECT_EQ(0u, drawing.database().numActiveTransactions());
    run(drawing.document(), "_CLOSED",
        [](OdEdCommandContext& context) { context.database()->endTransaction(); });
    EXPECT_EQ(0u, drawing.database().numActiveTransactions());
}

TEST(Commands, Nest) {
    const Drawing drawing;
    Events events;
    run(drawing.document(), "_OUTER", [&](OdEdCommandContext& context) {
        run(*context.document(), "_INNER", [&](OdEdCommandContext&) {
            EXPECT_EQ(2u, drawing.document().commandDepth());
            EXPECT_EQ(2u, drawing.database().numActiveTransactions());
        });
        EXPECT_EQ("_OUTER", utf8(drawing.document().activeCommand()));
    });
    EXPECT_EQ((Lines{"commandWillStart _OUTER", "commandWillStart _INNER", "commandEnded _INNER",
                     "transactionEnded", "commandEnded _OUTER"}),
              events.take());
}

TEST(Commands, ThatFailInsideAnotherTakeBackTheirOwnPartOnly) {
    const Drawing drawing;
    run(drawing.document(), "_OUTER", [&](OdEdCommandContext& context) {
        drawing.circle(0, 0, 1);
        EXPECT_EQ(RTCAN, run(*context.document(), "_INNER", [&](OdEdCommandContext&) {
                      drawing.circle(0, 0, 2);
                      throw CommandCancelled();
                  }));
        EXPECT_EQ(1u, drawing.entities().size());
    });
    EXPECT_EQ(1u, drawing.entities().size());
}

TEST(Commands, RunWithoutADrawing) {
    Lines lines;
    const Watcher watcher(lines);
    AnswerList none;
    const OdSmartPtr<OdEdCommand> command(new OdEdCommand(OdString("_ALONE"),
                                                          [](OdEdCommandContext& context) {
                                                              EXPECT_EQ(nullptr, context.database());
                                                              EXPECT_EQ(nullptr, context.document());
                                                          }),
                                          lm::drawing::kAttach);
    EXPECT_EQ(RTNORM, lm::host::executeCommand(nullptr, *command, none));
    EXPECT_EQ((Lines{"start _ALONE", "ended _ALONE"}), lines);
    EXPECT_THROW(lm::host::executeCommand(nullptr, OdString("_ERASE"), none), CommandFailed);
}

TEST(Commands, ThatLeaveTheStackWhileTheyRunEndInOrder) {
    const Drawing drawing;
    lm::host::CommandRegistration registration;
    registration =
        lm::host::CommandRegistration("_LEAVE", [&](OdEdCommandContext&) { registration.reset(); });
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_LEAVE"));
    EXPECT_TRUE(stack().lookupCmd("_LEAVE").isNull());
}

TEST(CommandReactors, ThatRaiseKeepNobodyFromHearingAndTheFirstExceptionPasses) {
    const Drawing drawing;
    Lines lines;
    Watcher first(lines, "1 "), second(lines, "2 "), third(lines, "3 ");
    first.also = [](const std::string& what, auto*) {
        if (what == "ended") throw std::runtime_error("first");
    };
    second.also = [](const std::string& what, auto*) {
        if (what == "ended") throw std::runtime_error("second");
    };
    try {
        run(drawing.document(), "_X", [&](OdEdCommandContext&) { drawing.circle(0, 0, 1); });
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("first", error.what());
    }
    EXPECT_EQ((Lines{"1 start _X", "2 start _X", "3 start _X", "1 ended _X", "2 ended _X", "3 ended _X"}),
              lines);
    EXPECT_EQ(1u, drawing.entities().size()) << "the command had ended";
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(CommandReactors, ThatRaiseAtTheStartMakeTheCommandFailBeforeItsBody) {
    const Drawing drawing;
    Lines lines;
    Watcher watcher(lines);
    watcher.also = [](const std::string& what, auto*) {
        if (what == "start") throw std::runtime_error("no");
    };
    EXPECT_THROW(run(drawing.document(), "_X", [](OdEdCommandContext&) { FAIL() << "the body ran"; }),
                 std::runtime_error);
    EXPECT_EQ((Lines{"start _X", "failed _X"}), lines);
}

TEST(CommandReactors, ThatRaiseAtTheEndOfTheTransactionChangeNothingOfTheEnd) {
    struct Raising : OdDbTransactionReactor {
        void transactionEnded(OdDbDatabase*) override { throw std::runtime_error("late"); }
    } raising;
    const Drawing drawing;
    drawing.database().addTransactionReactor(&raising);
    Lines lines;
    const Watcher watcher(lines);
    EXPECT_THROW(run(drawing.document(), "_X", [&](OdEdCommandContext&) { drawing.circle(0, 0, 1); }),
                 std::runtime_error);
    EXPECT_EQ((Lines{"start _X", "ended _X"}), lines);
    EXPECT_EQ(1u, drawing.entities().size());
    drawing.database().removeTransactionReactor(&raising);
}

TEST(CommandReactors, MayLeaveAndJoinWhileTheyAreCalled) {
    const Drawing drawing;
    Lines lines;
    Watcher first(lines, "1 "), second(lines, "2 "), late(lines, "3 ");
    stack().removeReactor(&late);
    first.also = [&](const std::string& what, auto*) {
        if (what != "start") return;
        stack().removeReactor(&first);
        stack().removeReactor(&second);
        stack().addReactor(&late);
    };
    run(drawing.document(), "_X", {});
    EXPECT_EQ((Lines{"1 start _X", "3 ended _X"}), lines);
}

TEST(CommandReactors, TakeNullForCommandAndContext) {
    Lines lines;
    struct Bare : OdEdCommandStackReactor {
    } bare;
    bare.commandWillStart(nullptr, nullptr);
    bare.commandEnded(nullptr, nullptr);
    OdEdCommand command(OdString("_copy"));
    OdEdCommandContext context(nullptr);
    bare.commandFailed(&command, &context);
    EXPECT_EQ("_copy", utf8(command.globalName()));
    EXPECT_EQ(nullptr, context.database());
}

TEST(OpenCommand, IsToldWithTheDrawingThatWasThereBefore) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = folder.file("outro.dxf", kEmptyDrawing);
    Events events;
    Lines lines;
    Watcher watcher(lines);
    watcher.also = [&](const std::string&, OdEdCommandContext* context) {
        EXPECT_EQ(&drawing.database(), context->database());
    };
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_OPEN", {Answer(path)}));
    ASSERT_NE(&drawing.document(), ACTIVE_DOCUMENT());
    const std::string number = std::to_string(ACTIVE_DOCUMENT()->number());
    EXPECT_EQ((Lines{"commandWillStart _OPEN", "DatabaseAttached " + number, "commandEnded _OPEN"}),
              events.take());
    EXPECT_THROW(drawing.document().executeCommand("_OPEN", {Answer(path + "x")}), OdError);
    EXPECT_EQ("commandFailed _OPEN", events.take().back());
}

TEST(CloseCommand, ClosesTheDrawingAfterTheEndCallback) {
    const Drawing drawing;
    CHostDocument* const other = drawing.manager().newDocument();
    Events events;
    EXPECT_EQ(RTNORM, other->executeCommand("_CLOSE"));
    EXPECT_EQ(1, drawing.manager().documentCount());
    const Lines all = events.take();
    EXPECT_EQ("commandEnded _CLOSE", all.at(all.size() - 2));
    EXPECT_EQ(0u, all.back().find("DatabaseDetached"));
}

TEST(CloseCommand, WaitsForTheOutermostCommand) {
    const Drawing drawing;
    CHostDocument* const other = drawing.manager().newDocument();
    run(*other, "_OUTER", [&](OdEdCommandContext& context) {
        EXPECT_FALSE(drawing.manager().closeDocument(context.document())) << "a command is in progress";
        context.document()->executeCommand("_CLOSE");
        EXPECT_EQ(2, drawing.manager().documentCount());
    });
    EXPECT_EQ(1, drawing.manager().documentCount());
}

TEST(TimeLimit, EndsACommandThatAsksForTheTime) {
    const Drawing drawing;
    drawing.document().setTimeLimit(0.02);
    EXPECT_THROW(run(drawing.document(), "_LOOP",
                     [](OdEdCommandContext& context) {
                         for (;;) context.checkTime();
                     }),
                 CommandFailed);
    run(drawing.document(), "_SHORT", [](OdEdCommandContext& context) { context.checkTime(); });
    drawing.document().setTimeLimit(0);
    run(drawing.document(), "_FREE", [](OdEdCommandContext& context) { context.checkTime(); });
    drawing.document().checkTime();
}

TEST(TimeLimit, OfTheOuterCommandBoundsTheInnerOne) {
    const Drawing drawing;
    drawing.document().setTimeLimit(0.02);
    EXPECT_THROW(run(drawing.document(), "_OUTER",
                     [](OdEdCommandContext& context) {
                         context.document()->setTimeLimit(1000);
                         run(*context.document(), "_INNER", [](OdEdCommandContext& inner) {
                             for (;;) inner.checkTime();
                         });
                     }),
                 CommandFailed);
}

} // namespace
