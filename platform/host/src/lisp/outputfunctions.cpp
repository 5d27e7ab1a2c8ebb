// SPDX-License-Identifier: MIT
// What a program writes: values and lines, to the console or to a file.
#include "filevalue.h"
#include "files.h"
#include "printer.h"

namespace lm::host::lisp {

void writeTo(Machine& machine, Arguments a, std::size_t index, WideView text) {
    if (index >= a.size() || a[index].isNil()) {
        machine.write(text);
        return;
    }
    FileValue& file = fileAt(machine, a, index);
    if (!file.writes()) machine.fail("file isn't open for writing", a[index]);
    if (!file.write(text)) machine.fail("file can't be written", a[index]);
}

namespace {

Value princ(Machine& machine, Arguments a) {
    if (a.empty()) return machine.quiet();
    writeTo(machine, a, 1, printed(machine, a[0], Style::kPrinc));
    return a[0];
}

Value prin1(Machine& machine, Arguments a) {
    if (a.empty()) return machine.quiet();
    writeTo(machine, a, 1, printed(machine, a[0], Style::kPrin1));
    return a[0];
}

Value print(Machine& machine, Arguments a) {
    if (a.empty()) return machine.quiet();
    writeTo(machine, a, 1, system::widen("\n") + printed(machine, a[0], Style::kPrin1) + system::widen(" "));
    return a[0];
}

Value terpri(Machine& machine, Arguments) {
    machine.write(system::widen("\n"));
    return Value();
}

Value prompt(Machine& machine, Arguments a) {
    machine.write(machine.textAt(a, 0));
    return Value();
}

// Without a window an alert is a line on the console.
Value alert(Machine& machine, Arguments a) {
    machine.write(machine.textAt(a, 0) + system::widen("\n"));
    return Value();
}

Value princText(Machine& machine, Arguments a) {
    return machine.text(printed(machine, a[0], Style::kPrinc));
}

Value prin1Text(Machine& machine, Arguments a) {
    return machine.text(printed(machine, a[0], Style::kPrin1));
}

Value writeLine(Machine& machine, Arguments a) {
    writeTo(machine, a, 1, machine.textAt(a, 0) + system::widen("\n"));
    return a[0];
}

Value writeChar(Machine& machine, Arguments a) {
    const int code = machine.integerAt(a, 0);
    if (code < 1 || code > 0xFFFF) machine.failType("character code", a[0]);
    writeTo(machine, a, 1, WideString(1, static_cast<WideChar>(code)));
    return a[0];
}

// There is no screen to turn to.
Value screen(Machine&, Arguments) {
    return Value();
}

const Builtin kOutput[] = {
    {"PRINC", 0, 2, &princ},
    {"PRIN1", 0, 2, &prin1},
    {"PRINT", 0, 2, &print},
    {"TERPRI", 0, 0, &terpri},
    {"PROMPT", 1, 1, &prompt},
    {"ALERT", 1, 1, &alert},
    {"VL-PRINC-TO-STRING", 1, 1, &princText},
    {"VL-PRIN1-TO-STRING", 1, 1, &prin1Text},
    {"WRITE-LINE", 1, 2, &writeLine},
    {"WRITE-CHAR", 1, 2, &writeChar},
    {"TEXTSCR", 0, 0, &screen},
    {"GRAPHSCR", 0, 0, &screen},
    {"TEXTPAGE", 0, 0, &screen},
    {"REDRAW", 0, 2, &screen},
};

} // namespace

std::span<const Builtin> outputFunctions() {
    return kOutput;
}

} // namespace lm::host::lisp
