// SPDX-License-Identifier: MIT
// _U, _UNDO and _REDO: they work on the user's steps and are none themselves.
#include "hostcommands.h"

namespace lm::host {

namespace {

/// Undo takes back whole steps, so it can't run inside one.
CHostDocument& outsideSteps(OdEdCommandContext& context) {
    CHostDocument& document = documentOf(context);
    if (document.isInUndoStep()) throw CommandFailed("undo and redo can't run inside another command");
    return document;
}

void undoSteps(CHostDocument& document, int count) {
    for (; count > 0; --count) {
        document.checkTime();
        if (document.undo()) continue;
        tellUser("nothing to undo");
        return;
    }
}

void u(OdEdCommandContext& context) {
    undoSteps(outsideSteps(context), 1);
}

/// Asks for a number of steps, or for Begin or End of a block that counts as one step.
void undo(OdEdCommandContext& context) {
    const Answer answer = context.input().ask("Number of steps, Begin or End");
    AnswerList again{answer, answer};
    CommandInput input(&again, context.document());
    const bool isWord = answer.kind == Answer::kText && !answer.text.empty() &&
                        answer.text.find_first_of("0123456789") == std::string::npos;
    if (isWord) {
        const bool begins = input.keyword("Number of steps, Begin or End", {"Begin", "End"}) == 0;
        documentOf(context).database()->blockUndoRecording(begins);
        return;
    }
    const int count = input.integer("Number of steps", 1);
    if (count < 1) throw CommandFailed("the number of steps must be 1 or more");
    undoSteps(outsideSteps(context), count);
}

void redo(OdEdCommandContext& context) {
    if (!outsideSteps(context).redo()) tellUser("nothing to redo");
}

} // namespace

void addUndoCommands(OdEdCommandStack& stack) {
    constexpr auto kind = OdEdCommand::kOutsideUndo;
    addCommand(stack, "_U", &u, kind);
    addCommand(stack, "_UNDO", &undo, kind);
    addCommand(stack, "_REDO", &redo, kind);
}

} // namespace lm::host
