// SPDX-License-Identifier: MIT
// Commands: who is told when, what cancelling and failing take back, nesting, the stack, the reactors.
#include "commandsupport.h"

#include <type_traits>

namespace {

using namespace lm::test;
using Kind = OdEdCommand::Kind;

OdEdCommandStack& stack() {
    return *odedRegCmds();
}

/// Runs code as a command of a document.
int run(CHostDocument& document, const char* name, OdEdCommand::Body body,
        Kind kind = OdEdCommand::kOrdinary) {
    return lm::host::runAsCommand(&document, OdString(name), std::move(body), kind);
}

/// Writes down the calls of the stack, and does more on request.
class Watcher : public OdEdCommandStackReactor {
public:
    explicit Watcher(Lines& lines, std::string name = "") : m_lines(lines), m_name(std::move(name)) {
        stack().addReactor(this);
    }
    ~Watcher() override { stack().removeReactor(this); }
    void commandWillStart(OdEdCommand* c, OdEdCommandContext* x) override { note("start", c, x); }
    void commandEnded(OdEdCommand* c, OdEdCommandContext* x) override { note("ended", c, x); }
    void commandCancelled(OdEdCommand* c, OdEdCommandContext* x) override { note("cancelled", c, x); }
    void commandFailed(OdEdCommand* c, OdEdCommandContext* x) override { note("failed", c, x); }
    std::function<void(const std::string& what, OdEdCommandContext* context)> also;

private:
    void note(const std::string& what, OdEdCommand* command, OdEdCommandContext* context) {
        m_lines.push_back(m_name + what + " " + utf8(command->globalName()));
        if (also) also(what, context);
    }
    Lines& m_lines;
    std::string m_name;
};

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

TEST(EraseCommand, ErasesWhatIsChosenButOnLockedLayers) {
    const Drawing drawing;
    const OdDbObjectId kept = drawing.circle(0, 0, 1), gone = drawing.circle(5, 5, 1);
    const OdDbObjectId locked = drawing.layer("LOCKED");
    OdSmartPtr<OdDbEntity>(kept.openObject(OdDb::kForWrite))->setLayer(locked);
    OdSmartPtr<OdDbLayerTableRecord>(locked.openObject(OdDb::kForWrite))->setIsLocked(true);
    Events events;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_ERASE", {"ALL", ""}));
    EXPECT_EQ(std::vector<OdDbObjectId>{kept}, drawing.entities());
    EXPECT_EQ((Lines{"commandWillStart _ERASE", "objectErased CIRCLE " + drawing.handle(gone),
                     "transactionEnded", "commandEnded _ERASE"}),
              events.take());
}

TEST(EraseCommand, FailsWithoutAnAnswerAndChangesNothing) {
    const Drawing drawing;
    drawing.circle(0, 0, 1);
    EXPECT_THROW(drawing.document().executeCommand("_ERASE"), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_ERASE", {"ALL"}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_ERASE", {"NONSENSE", ""}), CommandFailed);
    EXPECT_EQ(1u, drawing.entities().size());
}

TEST(MoveCommand, MovesByTheDifferenceOfTwoPoints) {
    const Drawing drawing;
    const OdDbObjectId id = drawing.circle(1, 1, 1);
    const auto center = [&] { return OdSmartPtr<OdDbCircle>(id.openObject())->center(); };
    drawing.document().executeCommand("_MOVE", {Answer(id), "", "10,10", "13,14"});
    EXPECT_EQ(OdGePoint3d(4, 5, 0), center());
    drawing.document().executeCommand("_MOVE", {Answer(id), "", "0,0", "@1,-2"});
    EXPECT_EQ(OdGePoint3d(5, 3, 0), center());
    drawing.document().executeCommand("_MOVE", {Answer(id), "", OdGePoint3d(1, 1, 1), ""});
    EXPECT_EQ(OdGePoint3d(6, 4, 1), center());
    drawing.document().executeCommand("_MOVE", {"P", "", "0,0", "@2<90"});
    EXPECT_NEAR(6, center().y, 1e-12);
}

TEST(CopyCommand, RunsOneSmallTransactionForEachObject) {
    const Drawing drawing;
    drawing.circle(0, 0, 1);
    drawing.circle(5, 0, 1);
    Events events;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_COPY", {"ALL", "", "0,0", "100,0", ""}));
    ASSERT_EQ(4u, drawing.entities().size());
    Lines shape;
    for (const std::string& line : events.take())
        if (line.find("object") != 0) shape.push_back(line);
    EXPECT_EQ((Lines{"commandWillStart _COPY", "transactionEnded", "transactionEnded", "commandEnded _COPY"}),
              shape);
    EXPECT_EQ(OdGePoint3d(105, 0, 0), OdSmartPtr<OdDbCircle>(drawing.entities()[3].openObject())->center());
}

TEST(CopyCommand, KeepsItsTwoMappingsForModules) {
    const Drawing drawing;
    EXPECT_TRUE(drawing.document().copyMapping(0).isNull());
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    drawing.document().executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", ""});
    const OdSmartPtr<OdDbIdMapping> first = drawing.document().copyMapping(0);
    const OdSmartPtr<OdDbIdMapping> second = drawing.document().copyMapping(1);
    ASSERT_FALSE(first.isNull());
    ASSERT_FALSE(second.isNull());
    OdDbIdPair pair(source);
    ASSERT_TRUE(first->compute(pair));
    EXPECT_EQ(drawing.entities().at(1), pair.value());
    EXPECT_EQ(1u, first->pairs().size());
    EXPECT_TRUE(second->pairs().empty());
    EXPECT_EQ(&drawing.database(), first->destDb());
    EXPECT_TRUE(drawing.document().copyMapping(2).isNull());
}

TEST(CopyCommand, ThatFailsTakesBackEveryTransactionAndLetsTheCallbackChangeThings) {
    const Drawing drawing;
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    Lines lines;
    Watcher watcher(lines);
    std::size_t left = 99;
    watcher.also = [&](const std::string& what, auto*) {
        if (what != "failed") return;
        left = drawing.entities().size();
        drawing.line(0, 0, 1, 1);
    };
    // The second place is no point, when the copy to the first is committed already.
    EXPECT_THROW(drawing.document().executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", "nowhere"}),
                 CommandFailed);
    EXPECT_EQ((Lines{"start _COPY", "failed _COPY"}), lines);
    EXPECT_EQ(1u, left);
    EXPECT_EQ(2u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{source}, drawing.entities());
}

TEST(CopyCommand, ThatFailsInsideAnUndoBlockTakesBackItsOwnPartOnly) {
    const Drawing drawing;
    drawing.database().startUndoRecord();
    drawing.database().blockUndoRecording(true);
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    EXPECT_THROW(drawing.document().executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", "nowhere"}),
                 CommandFailed);
    EXPECT_EQ(std::vector<OdDbObjectId>{source}, drawing.entities());
    EXPECT_TRUE(drawing.database().isUndoBlockStarted());
}

TEST(CopyCommand, InsideAnotherCommandEndsNoTransactionOfTheOuterOne) {
    const Drawing drawing;
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    Events events;
    run(drawing.document(), "_OUTER", [&](OdEdCommandContext& context) {
        context.document()->executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", ""});
        EXPECT_THROW(
            context.document()->executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", "nowhere"}),
            CommandFailed);
    });
    EXPECT_EQ(2u, drawing.entities().size());
    const Lines all = events.take();
    EXPECT_EQ(1, std::count(all.begin(), all.end(), "transactionEnded"));
}

TEST(LayerCommand, MakesSetsAndChangesLayersUntilAnEmptyAnswer) {
    const Drawing drawing;
    const ConsoleCapture console;
    drawing.document().executeCommand("_LAYER", {"_M", "P01", "New", "P02", "N", "PX", ""});
    EXPECT_EQ(drawing.layerCalled("P01")->objectId(), drawing.database().getCLAYER());
    drawing.document().executeCommand("-LAYER", {
                                                    "F",
                                                    "P*",
                                                    "OF",
                                                    "P02",
                                                    "LO",
                                                    "PX",
                                                    "S",
                                                    "0",
                                                    "",
                                                });
    EXPECT_FALSE(drawing.layerCalled("P01")->isFrozen()) << "the current layer isn't frozen";
    EXPECT_NE(std::string::npos, console.text().find("P01"));
    EXPECT_TRUE(drawing.layerCalled("P02")->isFrozen());
    EXPECT_TRUE(drawing.layerCalled("P02")->isOff());
    EXPECT_TRUE(drawing.layerCalled("PX")->isLocked());
    EXPECT_EQ(drawing.database().getLayerZeroId(), drawing.database().getCLAYER());
    drawing.document().executeCommand("_LAYER", {"Thaw", "P02,PX", "ON", "*", "U", "P?", ""});
    EXPECT_FALSE(drawing.layerCalled("P02")->isFrozen());
    EXPECT_FALSE(drawing.layerCalled("P02")->isOff());
    EXPECT_FALSE(drawing.layerCalled("PX")->isLocked());
}

TEST(LayerCommand, RefusesUnknownOptionsAndNames) {
    const Drawing drawing;
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"X", "P01", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"O", "0", ""}), CommandFailed) << "ON or OFf";
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"S", "NONE", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"N", "MADE", "F", "NONE", ""}), CommandFailed);
    EXPECT_TRUE(drawing.layerCalled("MADE").isNull()) << "taken back";
}

/// A block with a circle and the definitions of two attributes.
OdDbObjectId blockWithAttributes(const Drawing& drawing, const char* name) {
    const OdSmartPtr<OdDbSymbolTable> table(drawing.database().getBlockTableId().openObject(OdDb::kForWrite));
    const OdSmartPtr<OdDbBlockTableRecord> block(new OdDbBlockTableRecord, lm::drawing::kAttach);
    block->setName(OdString(name));
    const OdDbObjectId id = table->add(block);
    block->appendOdDbEntity(OdSmartPtr<OdDbCircle>(new OdDbCircle, lm::drawing::kAttach));
    for (const char* tag : {"TAG", "NUMERO"}) {
        const OdSmartPtr<OdDbAttributeDefinition> definition(new OdDbAttributeDefinition,
                                                             lm::drawing::kAttach);
        block->appendOdDbEntity(definition);
        definition->setTag(OdString(tag));
        definition->setPrompt(OdString(tag));
        definition->setTextString(OdString("default"));
        definition->setPosition({1, 0, 0});
        definition->setHeight(2.5);
    }
    return id;
}

TEST(InsertCommand, PlacesABlockOfTheDrawingWithItsAttributes) {
    const Drawing drawing;
    const OdDbObjectId block = blockWithAttributes(drawing, "MOTOR");
    drawing.document().executeCommand("_LAYER", {"M", "P01", ""});
    drawing.document().executeCommand("_INSERT", {"MOTOR", "10,20", "2", "", "90", "-M1", ""});
    ASSERT_EQ(1u, drawing.entities().size());
    const OdSmartPtr<OdDbBlockReference> reference(drawing.entities()[0].openObject());
    EXPECT_EQ(block, reference->blockTableRecord());
    EXPECT_EQ(OdGePoint3d(10, 20, 0), reference->position());
    EXPECT_EQ(OdGeScale3d(2, 2, 2), reference->scaleFactors());
    EXPECT_NEAR(1.5707963, reference->rotation(), 1e-6);
    EXPECT_EQ("P01", utf8(reference->layer()));
    Lines values;
    const OdSmartPtr<OdDbObjectIterator> walk = reference->attributeIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbAttribute> attribute(walk->entity());
        values.push_back(utf8(attribute->tag()) + "=" + utf8(attribute->textString()));
        EXPECT_NEAR(10, attribute->position().x, 1e-9);
        EXPECT_NEAR(22, attribute->position().y, 1e-9);
        EXPECT_NEAR(5, attribute->height(), 1e-9);
    }
    EXPECT_EQ((Lines{"TAG=-M1", "NUMERO=default"}), values);
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(InsertCommand, BringsAFileInAsABlockOnce) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = folder.file("símbolo um.dwg", kEmptyDrawing);
    drawing.document().executeCommand("_INSERT", {Answer(path), "0,0", "", "", ""});
    drawing.document().executeCommand("_INSERT", {Answer(path), "5,0", "", "", ""});
    drawing.document().executeCommand("_INSERT", {Answer("OTHER=" + path), "9,0", "", "", ""});
    ASSERT_EQ(3u, drawing.entities().size());
    const auto nameOf = [&](std::size_t index) {
        const OdSmartPtr<OdDbBlockReference> reference(drawing.entities()[index].openObject());
        return utf8(OdSmartPtr<OdDbBlockTableRecord>(reference->blockTableRecord().openObject())->getName());
    };
    EXPECT_EQ("símbolo um", nameOf(0));
    EXPECT_EQ("símbolo um", nameOf(1));
    EXPECT_EQ("OTHER", nameOf(2));
}

TEST(InsertCommand, RefusesWhatItCannotInsertAndChangesNothing) {
    const Drawing drawing;
    const TemporaryFolder folder;
    blockWithAttributes(drawing, "MOTOR");
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"NONE", "0,0", "", "", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"*Model_Space", "0,0", "", "", ""}),
                 CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"MOTOR", "0,0", "0", "", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"MOTOR", "0,0", "", "", ""}), CommandFailed)
        << "the attributes want answers";
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {Answer(folder.file("x.dwg", "no drawing"))}),
                 OdError);
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(ExplodeCommand, PutsThePartsInPlaceOfTheReference) {
    const Drawing drawing;
    const ConsoleCapture console;
    blockWithAttributes(drawing, "MOTOR");
    drawing.document().executeCommand("_INSERT", {"MOTOR", "10,20", "", "", "", "", ""});
    const OdDbObjectId line = drawing.line(0, 0, 1, 1);
    drawing.document().executeCommand("_EXPLODE", {"ALL", ""});
    const std::vector<OdDbObjectId> left = drawing.entities();
    ASSERT_EQ(4u, left.size()) << "the line, the circle and two definitions";
    EXPECT_EQ(line, left[0]);
    EXPECT_EQ("can't be exploded: LINE " + drawing.handle(line) + "\n", console.text());
    EXPECT_EQ(OdGePoint3d(10, 20, 0), OdSmartPtr<OdDbCircle>(left[1].openObject())->center());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(2u, drawing.entities().size());
}

TEST(PurgeCommand, ErasesWhatNothingRefersTo) {
    const Drawing drawing;
    const ConsoleCapture console;
    const OdDbObjectId used = blockWithAttributes(drawing, "USED"),
                       spare = blockWithAttributes(drawing, "SPARE");
    const OdDbObjectId free = drawing.layer("FREE"), kept = drawing.layer("KEPT");
    drawing.document().executeCommand("_INSERT", {"USED", "0,0", "", "", "", "", ""});
    drawing.document().executeCommand("_PURGE", {"LA", "F*", "N"});
    EXPECT_TRUE(free.isErased());
    EXPECT_FALSE(kept.isErased());
    EXPECT_FALSE(spare.isErased());
    drawing.document().executeCommand("-PURGE", {"All", "", "Yes", "N", "Y"});
    EXPECT_FALSE(spare.isErased()) << "asked for, and refused";
    EXPECT_TRUE(kept.isErased());
    drawing.document().executeCommand("-PURGE", {"A", "*", "No"});
    EXPECT_TRUE(spare.isErased());
    EXPECT_FALSE(used.isErased());
    EXPECT_FALSE(drawing.database().getTextStyleStandardId().isErased());
    EXPECT_EQ("purged: 1\npurged: 1\npurged: 1\n", console.text());
}

TEST(SaveCommands, WriteTheDrawingAndClearItsModifiedMark) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = (folder.path() / "novo.dxf").string(),
                      other = (folder.path() / "b.dxf").string();
    drawing.circle(0, 0, 1);
    EXPECT_TRUE(drawing.document().isModified());
    EXPECT_THROW(drawing.document().executeCommand("_SAVE"), CommandFailed) << "it has no file yet";
    drawing.document().executeCommand("_SAVE", {Answer(path)});
    EXPECT_EQ(path, utf8(drawing.document().fileName()));
    EXPECT_FALSE(drawing.document().isModified());
    drawing.circle(0, 0, 2);
    EXPECT_TRUE(drawing.document().isModified());
    drawing.document().executeCommand("_QSAVE");
    EXPECT_FALSE(drawing.document().isModified());
    drawing.document().executeCommand("_SAVEAS", {"r2000", "binary", Answer(other)});
    EXPECT_EQ(other, utf8(drawing.document().fileName()));
    CHostDocument* const read = drawing.manager().openDocument(odPath(other));
    EXPECT_EQ("AC1015", utf8(read->database()->originalFileVersion()));
    std::ifstream file(other, std::ios::binary);
    EXPECT_NE(' ', file.get()) << "text begins with the blank of a group code";
}

TEST(SaveCommands, ThatFailLeaveTheDrawingModifiedAndItsNameAlone) {
    const Drawing drawing;
    const TemporaryFolder folder;
    drawing.circle(0, 0, 1);
    const std::string path = (folder.path() / "none" / "x.dxf").string();
    EXPECT_THROW(drawing.document().executeCommand("_SAVE", {Answer(path)}), OdError);
    EXPECT_THROW(drawing.document().executeCommand("_SAVEAS", {Answer(path)}), OdError);
    EXPECT_TRUE(drawing.document().isModified());
    EXPECT_TRUE(drawing.document().fileName().isEmpty());
}

TEST(RegenCommand, RegeneratesTheView) {
    const Drawing drawing;
    drawing.document().executeCommand("_REGEN");
    EXPECT_EQ(1u, drawing.document().view()->regenerations());
    CHostView other;
    drawing.document().regen(&other);
    drawing.document().regen(nullptr);
    EXPECT_EQ(1u, drawing.document().view()->regenerations());
}

TEST(ZoomCommand, FitsTheViewOrShowsAWindow) {
    const Drawing drawing;
    const auto viewport = [&] {
        return OdSmartPtr<OdDbViewportTableRecord>(drawing.database().GetActiveViewportId().openObject());
    };
    drawing.document().executeCommand("_ZOOM", {"W", "10,20", "30,10"});
    EXPECT_EQ(OdGePoint2d(20, 15), viewport()->centerPoint());
    EXPECT_DOUBLE_EQ(10, viewport()->height());
    drawing.circle(5, 5, 1);
    drawing.document().executeCommand("_ZOOM", {"_E"});
    EXPECT_NEAR(5, viewport()->centerPoint().x, 1e-9);
    EXPECT_THROW(drawing.document().executeCommand("_ZOOM", {"Sideways"}), CommandFailed);
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
