// SPDX-License-Identifier: MIT
// What ends an evaluation that doesn't end by itself, and what is told to `*error*` then.
#include "machine.h"

#include "printer.h"

#include <algorithm>

namespace lm::host::lisp {

namespace {

using Clock = std::chrono::steady_clock;

Clock::duration clockTime(double seconds) {
    constexpr double kLongest = 1e9; // more would not fit the clock's count
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(std::clamp(seconds, 0.0, kLongest)));
}

/// A full session must be able to run what empties it: so much may always be added.
constexpr std::size_t kFreshMemory = std::size_t{1} << 20;

} // namespace

Machine::Evaluation::Evaluation(Machine& machine) : m_machine(machine), m_catching(machine.m_catching) {
    machine.m_catching = 0;
    if (machine.m_depth++ != 0) return;
    machine.enterThread();
    machine.m_interruptsSeen = machine.m_interrupts.load(std::memory_order_relaxed);
    machine.m_hasDeadline = machine.m_seconds > 0;
    if (machine.m_hasDeadline) machine.m_deadline = Clock::now() + clockTime(machine.m_seconds);
    machine.m_ticks = kTicksPerCheck;
    machine.m_heap.setCeiling(std::max(machine.m_ceiling, machine.m_heap.used() + kFreshMemory));
}

void Machine::checkLimits() {
    m_ticks = kTicksPerCheck;
    if (m_depth == 0) return;
    const char* reason = nullptr;
    if (m_interrupts.load(std::memory_order_relaxed) != m_interruptsSeen)
        reason = "Function cancelled";
    else if (m_hasDeadline && Clock::now() >= m_deadline)
        reason = "time limit reached";
    if (reason == nullptr) return;
    LispError error{std::string_view(reason)};
    error.catchable = false;
    throw error;
}

// The function gets a second and some memory of its own, for it puts back what the program had changed.
void Machine::tellErrorFunction(LispError& error) {
    if (error.handled || (m_catching > 0 && error.catchable) || m_inErrorFunction) return;
    if (!hasRoomForErrorFunction()) return; // a caller further out will tell it
    const Value function = m_error->value;
    if (function.isUnbound() || function.isNil()) return;
    struct Grace {
        Machine& machine;
        const unsigned seen = machine.m_interruptsSeen;
        const Clock::time_point deadline = machine.m_deadline;
        const std::size_t ceiling = machine.m_heap.ceiling();
        explicit Grace(Machine& m) : machine(m) {
            machine.m_inErrorFunction = true;
            machine.m_interruptsSeen = machine.m_interrupts.load(std::memory_order_relaxed);
            machine.m_deadline =
                std::max(deadline, Clock::now() + clockTime(std::min(1.0, machine.m_seconds)));
            machine.m_heap.setCeiling(std::max(ceiling, machine.m_heap.used() + kFreshMemory));
        }
        ~Grace() {
            machine.m_inErrorFunction = false;
            machine.m_interruptsSeen = seen;
            machine.m_deadline = deadline;
            machine.m_heap.setCeiling(ceiling);
        }
    } const grace(*this);
    error.handled = true;
    try {
        Frame frame(*this, 1);
        frame[0] = text(error.message);
        apply(function, frame.values());
    } catch (const LispError&) {
        // The first error is the one to report.
    }
}

void Machine::fail(std::string_view message) {
    throw LispError(message);
}

void Machine::fail(std::string_view message, const Value& about) {
    WideString line = system::widen(message);
    line += system::widen(": ");
    line += printedShort(*this, about);
    throw LispError(std::move(line));
}

void Machine::failType(std::string_view wanted, const Value& found) {
    fail("bad argument type: " + std::string(wanted), found);
}

int Machine::integerAt(Arguments arguments, std::size_t index) {
    if (!arguments[index].isInteger()) failType("fixnump", arguments[index]);
    return arguments[index].integer();
}

double Machine::numberAt(Arguments arguments, std::size_t index) {
    if (!arguments[index].isNumber()) failType("numberp", arguments[index]);
    return arguments[index].number();
}

const WideString& Machine::textAt(Arguments arguments, std::size_t index) {
    if (!arguments[index].isText()) failType("stringp", arguments[index]);
    return arguments[index].text();
}

const Value& Machine::listAt(Arguments arguments, std::size_t index) {
    if (!arguments[index].isList()) failType("listp", arguments[index]);
    return arguments[index];
}

Symbol* Machine::symbolAt(Arguments arguments, std::size_t index) {
    if (!arguments[index].isSymbol()) failType("symbolp", arguments[index]);
    return arguments[index].symbol();
}

std::size_t Machine::lengthOf(const Value& list) {
    std::size_t count = 0;
    const Value* at = &list;
    for (; at->isCons(); at = &at->cdr()) ++count;
    if (!at->isNil()) failType("listp", list);
    return count;
}

} // namespace lm::host::lisp
