// SPDX-License-Identifier: MIT
// Commands of the host as programs run them.
#include "document.h"
#include "entityname.h"
#include "hoststate.h"
#include "points.h"
#include "questions.h"
#include "records.h"

#include "host/documentmanager.h"

namespace lm::host::lisp {

namespace {

/// An argument as the answer to a command's question.
Answer answerOfValue(Machine& machine, const Value& value) {
    if (value.isNil()) return Answer();
    // A lone "\\", the value of PAUSE, leaves the question to whoever answers.
    if (value.isText() && value.text() == system::widen("\\"))
        return Answer(system::toUtf8(takeAnswer(machine, "COMMAND")));
    if (value.isText()) return Answer(system::toUtf8(value.text()));
    if (value.isNumber()) return Answer(value.number());
    if (const EntityName* name = foreignOf<EntityName>(value)) return Answer(name->id());
    if (const SelectionSet* set = foreignOf<SelectionSet>(value)) return Answer(set->ids());
    if (const std::optional<Point> point = pointOf(value)) return Answer(point->inSpace());
    // What entsel gives: the entity with the point that it was shown at.
    if (value.isCons() && foreignOf<EntityName>(value.car()) != nullptr)
        return Answer(foreignOf<EntityName>(value.car())->id());
    machine.failType("command argument", value);
}

/// The host's own way: the first argument names the command, the others answer its questions.
int runOnDocument(Machine& machine, Arguments a) {
    CHostDocument* document = documentOf(machine);
    if (document == nullptr) Machine::fail("no drawing");
    if (a.empty() || a[0].isNil()) return RTCAN;
    const WideString name = machine.textAt(a, 0);
    AnswerList answers;
    for (std::size_t i = 1; i < a.size(); ++i) answers.add(answerOfValue(machine, a[i]));
    try {
        return executeCommand(document, OdString(WideView(name)), answers);
    } catch (const CommandFailed& failure) {
        throw LispError(system::fromUtf8(failure.what()));
    }
}

int run(Machine& machine, Arguments a) {
    const CommandHook hook = machine.host().command;
    if (!hook) return runOnDocument(machine, a);
    ChainBuilder chain(machine);
    for (const Value& argument : a) chain.addCommandArgument(argument);
    return hook(chain.head());
}

Value command(Machine& machine, Arguments a) {
    run(machine, a);
    return Value();
}

// As command, but tells whether it was done.
Value tellingCommand(Machine& machine, Arguments a) {
    return machine.boolean(run(machine, a) == RTNORM);
}

const Builtin kCommands[] = {
    {"COMMAND", 0, kAny, &command},
    {"COMMAND-S", 0, kAny, &command},
    {"VL-CMDF", 0, kAny, &tellingCommand},
};

} // namespace

std::span<const Builtin> commandFunctions() {
    return kCommands;
}

} // namespace lm::host::lisp
