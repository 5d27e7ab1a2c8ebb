// SPDX-License-Identifier: MIT
// The user's undo: a command is one step with everything that belongs to it; _U, _UNDO and _REDO.
#include "commandsupport.h"

namespace {

using namespace lm::test;

void run(const Drawing& drawing, OdEdCommand::Body body) {
    lm::host::runAsCommand(&drawing.document(), OdString("_RUN"), std::move(body));
}

/// A command that makes a circle; gives its id.
OdDbObjectId circleByCommand(const Drawing& drawing, double x = 0) {
    OdDbObjectId id;
    run(drawing, [&](OdEdCommandContext&) { id = drawing.circle(x, 0, 1); });
    return id;
}

TEST(UserUndo, HasNothingToTakeBackInANewDrawing) {
    const Drawing drawing;
    EXPECT_TRUE(drawing.database().isUndoRecording());
    EXPECT_FALSE(drawing.document().undo());
    EXPECT_FALSE(drawing.document().redo());
}

TEST(UserUndo, IsNotThereWithoutADatabase) {
    Documents documents;
    CHostDocument* const document = documents.manager.newDocumentWithoutDatabase();
    EXPECT_FALSE(document->undo());
    EXPECT_FALSE(document->redo());
    EXPECT_FALSE(document->isModified());
    document->markSaved();
    const lm::host::UndoStepScope scope(document);
}

TEST(UserUndo, KeepsSideDatabasesOutOfIt) {
    const CHostDatabase side;
    EXPECT_FALSE(side.isUndoRecording());
}

TEST(UserUndo, TakesCommandsBackOneByOneAndRepeatsThem) {
    const Drawing drawing;
    const OdDbObjectId first = circleByCommand(drawing), second = circleByCommand(drawing);
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{first}, drawing.entities());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_FALSE(drawing.document().undo());
    EXPECT_TRUE(drawing.document().redo());
    EXPECT_TRUE(drawing.document().redo());
    EXPECT_EQ((std::vector<OdDbObjectId>{first, second}), drawing.entities());
    EXPECT_FALSE(drawing.document().redo());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{first}, drawing.entities());
}

TEST(UserUndo, TakesBackMarksAndBlocksOfTheCommandsOwnCodeTogether) {
    const Drawing drawing;
    run(drawing, [&](OdEdCommandContext& context) {
        drawing.circle(0, 0, 1);
        context.database()->startUndoRecord();
        drawing.circle(0, 0, 2);
        context.database()->blockUndoRecording(true);
        drawing.circle(0, 0, 3);
        context.database()->startUndoRecord();
        drawing.circle(0, 0, 4);
        context.database()->blockUndoRecording(false);
        context.database()->startUndoRecord();
        drawing.circle(0, 0, 5);
    });
    EXPECT_EQ(5u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_TRUE(drawing.document().redo());
    EXPECT_EQ(5u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(UserUndo, TakesBackWhatReactorsDidInTheCommand) {
    const Drawing drawing;
    const OdDbObjectId bystander = drawing.circle(9, 9, 1);
    struct Eraser : OdDbTransactionReactor, OdEdCommandStackReactor {
        Eraser(const Drawing& where, OdDbObjectId what) : drawing(where), id(what) {}
        void addRef() override {}
        void release() override {}
        void transactionEnded(OdDbDatabase*) override {
            const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite);
            if (!object.isNull()) object->erase(true);
        }
        void commandWillStart(OdEdCommand*, OdEdCommandContext*) override { drawing.circle(1, 1, 1); }
        void commandEnded(OdEdCommand*, OdEdCommandContext*) override { drawing.circle(2, 2, 1); }
        const Drawing& drawing;
        OdDbObjectId id;
    } eraser(drawing, bystander);
    drawing.database().addTransactionReactor(&eraser);
    odedRegCmds()->addReactor(&eraser);
    circleByCommand(drawing);
    odedRegCmds()->removeReactor(&eraser);
    drawing.database().removeTransactionReactor(&eraser);
    EXPECT_TRUE(bystander.isErased());
    EXPECT_EQ(3u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{bystander}, drawing.entities());
}

TEST(UserUndo, MakesNestedCommandsOneStep) {
    const Drawing drawing;
    run(drawing, [&](OdEdCommandContext&) {
        circleByCommand(drawing);
        circleByCommand(drawing);
        EXPECT_FALSE(drawing.document().undo()) << "a step is open";
        EXPECT_FALSE(drawing.document().redo());
    });
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(UserUndo, GoesOutsideOfCommandsBackToTheLastMark) {
    const Drawing drawing;
    const OdDbObjectId first = circleByCommand(drawing);
    drawing.database().startUndoRecord();
    const OdDbObjectId second = drawing.circle(1, 1, 1);
    drawing.database().startUndoRecord();
    drawing.circle(2, 2, 1);
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ((std::vector<OdDbObjectId>{first, second}), drawing.entities());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{first}, drawing.entities());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
    for (std::size_t count = 1; count <= 3; ++count) {
        EXPECT_TRUE(drawing.document().redo());
        EXPECT_EQ(count, drawing.entities().size());
    }
}

TEST(UserUndo, KeepsWhatComesAfterACommandApartFromIt) {
    const Drawing drawing;
    const OdDbObjectId first = circleByCommand(drawing);
    drawing.circle(1, 1, 1); // no command, no mark
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{first}, drawing.entities());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(UserUndo, PassesOverCommandsThatChangedNothing) {
    const Drawing drawing;
    circleByCommand(drawing);
    run(drawing, [](OdEdCommandContext& context) { context.database()->startUndoRecord(); });
    drawing.document().executeCommand("_REGEN");
    EXPECT_EQ(RTCAN, lm::host::runAsCommand(&drawing.document(), "_X", [&](OdEdCommandContext&) {
                  drawing.circle(0, 0, 2);
                  throw CommandCancelled();
              }));
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_TRUE(drawing.document().redo());
    EXPECT_EQ(1u, drawing.entities().size());
}

TEST(UserUndo, ForgetsWhatToRepeatAfterAChange) {
    const Drawing drawing;
    circleByCommand(drawing);
    circleByCommand(drawing);
    EXPECT_TRUE(drawing.document().undo());
    circleByCommand(drawing, 7);
    EXPECT_FALSE(drawing.document().redo());
    EXPECT_EQ(2u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(UserUndo, StandsUndosOfTheDatabaseItselfInBetween) {
    const Drawing drawing;
    circleByCommand(drawing);
    circleByCommand(drawing);
    while (drawing.entities().size() > 1) ASSERT_TRUE(drawing.database().undo());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
    circleByCommand(drawing);
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(UserUndo, CountsAnUndoBlockAroundCommandsAsOneStep) {
    const Drawing drawing;
    drawing.database().startUndoRecord();
    drawing.database().blockUndoRecording(true);
    circleByCommand(drawing);
    circleByCommand(drawing);
    drawing.database().blockUndoRecording(false);
    EXPECT_EQ(2u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(UserUndo, FinishesAStepWhenAReactorRaises) {
    const Drawing drawing;
    struct Raising : OdDbDatabaseReactor {
        void objectUnAppended(const OdDbDatabase*, const OdDbObject*) override {
            throw std::runtime_error("no");
        }
    } raising;
    run(drawing, [&](OdEdCommandContext& context) {
        drawing.circle(0, 0, 1);
        context.database()->startUndoRecord();
        drawing.circle(0, 0, 2);
    });
    drawing.database().addReactor(&raising);
    EXPECT_THROW(drawing.document().undo(), std::runtime_error);
    drawing.database().removeReactor(&raising);
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_TRUE(drawing.document().redo());
    EXPECT_EQ(2u, drawing.entities().size());
}

TEST(UserUndo, TellsTheReactorsOfAnErasureThatIsTakenBack) {
    const Drawing drawing;
    const OdDbObjectId id = circleByCommand(drawing);
    drawing.document().executeCommand("_ERASE", {Answer(id), ""});
    Events events;
    drawing.document().executeCommand("_U");
    EXPECT_EQ(
        (Lines{"commandWillStart _U", "objectUnerased CIRCLE " + drawing.handle(id), "commandEnded _U"}),
        events.take());
    drawing.document().executeCommand("_REDO");
    EXPECT_EQ(
        (Lines{"commandWillStart _REDO", "objectErased CIRCLE " + drawing.handle(id), "commandEnded _REDO"}),
        events.take());
}

TEST(UndoCommands, TakeANumberOfSteps) {
    const Drawing drawing;
    const ConsoleCapture console;
    for (int i = 0; i < 4; ++i) circleByCommand(drawing, i);
    drawing.document().executeCommand("_UNDO", {"3"});
    EXPECT_EQ(1u, drawing.entities().size());
    drawing.document().executeCommand("_REDO");
    EXPECT_EQ(2u, drawing.entities().size());
    drawing.document().executeCommand("_UNDO", {""});
    EXPECT_EQ(1u, drawing.entities().size());
    EXPECT_EQ("", console.text());
    drawing.document().executeCommand("_UNDO", {Answer(9.0)});
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_EQ("nothing to undo\n", console.text());
    EXPECT_THROW(drawing.document().executeCommand("_UNDO", {"0"}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_UNDO", {"1.5"}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_UNDO"), CommandFailed);
}

TEST(UndoCommands, SayThatThereIsNothing) {
    const Drawing drawing;
    const ConsoleCapture console;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_U"));
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_REDO"));
    EXPECT_EQ("nothing to undo\nnothing to redo\n", console.text());
}

TEST(UndoCommands, FailInsideAnotherCommand) {
    const Drawing drawing;
    circleByCommand(drawing);
    run(drawing, [&](OdEdCommandContext&) {
        EXPECT_THROW(drawing.document().executeCommand("_U"), CommandFailed);
        EXPECT_THROW(drawing.document().executeCommand("_REDO"), CommandFailed);
    });
    EXPECT_EQ(1u, drawing.entities().size());
}

TEST(UndoCommands, OpenAndCloseABlock) {
    const Drawing drawing;
    drawing.document().executeCommand("_UNDO", {"_Begin"});
    EXPECT_TRUE(drawing.database().isUndoBlockStarted());
    drawing.document().executeCommand("_UNDO", {"E"});
    EXPECT_FALSE(drawing.database().isUndoBlockStarted());
}

TEST(ModifiedMark, FollowsChangesAndSaving) {
    const Drawing drawing;
    EXPECT_FALSE(drawing.document().isModified());
    const OdDbObjectId id = circleByCommand(drawing);
    EXPECT_TRUE(drawing.document().isModified());
    drawing.document().markSaved();
    EXPECT_FALSE(drawing.document().isModified());
    OdSmartPtr<OdDbCircle>(id.openObject(OdDb::kForWrite))->setRadius(3);
    EXPECT_TRUE(drawing.document().isModified());
    drawing.document().markSaved();
    drawing.document().undo();
    EXPECT_TRUE(drawing.document().isModified()) << "taking back is a change";
}

} // namespace
