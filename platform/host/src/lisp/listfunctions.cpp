// SPDX-License-Identifier: MIT
// Making lists and taking them apart.
#include "machine.h"

namespace lm::host::lisp {

namespace {

/// The letters between "c" and "r" of a name such as caddr.
struct Letters {
    char letter[8] = {};
    std::size_t count = 0;
    template<std::size_t N>
    constexpr Letters(const char (&text)[N]) : count(N - 1) {
        for (std::size_t i = 0; i < N - 1; ++i) letter[i] = text[i];
    }
};

template<Letters Path>
Value part(Machine& machine, Arguments a) {
    const Value* at = &a[0];
    for (std::size_t i = Path.count; i-- > 0;) {
        if (at->isNil()) return Value();
        if (!at->isCons()) machine.failType("consp", *at);
        at = Path.letter[i] == 'A' ? &at->car() : &at->cdr();
    }
    return *at;
}

const Builtin kParts[] = {
    {"CAR", 1, 1, &part<"A">},       {"CDR", 1, 1, &part<"D">},       {"CAAR", 1, 1, &part<"AA">},
    {"CADR", 1, 1, &part<"AD">},     {"CDAR", 1, 1, &part<"DA">},     {"CDDR", 1, 1, &part<"DD">},
    {"CAAAR", 1, 1, &part<"AAA">},   {"CAADR", 1, 1, &part<"AAD">},   {"CADAR", 1, 1, &part<"ADA">},
    {"CADDR", 1, 1, &part<"ADD">},   {"CDAAR", 1, 1, &part<"DAA">},   {"CDADR", 1, 1, &part<"DAD">},
    {"CDDAR", 1, 1, &part<"DDA">},   {"CDDDR", 1, 1, &part<"DDD">},   {"CAAAAR", 1, 1, &part<"AAAA">},
    {"CAAADR", 1, 1, &part<"AAAD">}, {"CAADAR", 1, 1, &part<"AADA">}, {"CAADDR", 1, 1, &part<"AADD">},
    {"CADAAR", 1, 1, &part<"ADAA">}, {"CADADR", 1, 1, &part<"ADAD">}, {"CADDAR", 1, 1, &part<"ADDA">},
    {"CADDDR", 1, 1, &part<"ADDD">}, {"CDAAAR", 1, 1, &part<"DAAA">}, {"CDAADR", 1, 1, &part<"DAAD">},
    {"CDADAR", 1, 1, &part<"DADA">}, {"CDADDR", 1, 1, &part<"DADD">}, {"CDDAAR", 1, 1, &part<"DDAA">},
    {"CDDADR", 1, 1, &part<"DDAD">}, {"CDDDAR", 1, 1, &part<"DDDA">}, {"CDDDDR", 1, 1, &part<"DDDD">},
};

Value cons(Machine& machine, Arguments a) {
    return machine.heap().cons(std::move(a[0]), std::move(a[1]));
}

Value list(Machine& machine, Arguments a) {
    ListBuilder elements(machine.heap());
    for (Value& element : a) elements.add(std::move(element));
    return elements.take();
}

Value listWithTail(Machine& machine, Arguments a) {
    ListBuilder elements(machine.heap());
    for (std::size_t i = 0; i + 1 < a.size(); ++i) elements.add(std::move(a[i]));
    return elements.takeWithTail(std::move(a.back()));
}

// The last list is shared and not copied, since no list ever changes.
Value append(Machine& machine, Arguments a) {
    if (a.empty()) return Value();
    ListBuilder elements(machine.heap());
    for (std::size_t i = 0; i < a.size(); ++i) machine.listAt(a, i);
    for (std::size_t i = 0; i + 1 < a.size(); ++i) {
        const Value* at = &a[i];
        for (; at->isCons(); at = &at->cdr()) elements.add(at->car());
        if (!at->isNil()) machine.failType("listp", a[i]);
    }
    return elements.takeWithTail(std::move(a.back()));
}

Value length(Machine& machine, Arguments a) {
    return Value::integer(static_cast<int>(machine.lengthOf(machine.listAt(a, 0))));
}

Value lengthOfProperList(Machine& machine, Arguments a) {
    int count = 0;
    const Value* at = &machine.listAt(a, 0);
    for (; at->isCons(); at = &at->cdr()) ++count;
    return at->isNil() ? Value::integer(count) : Value();
}

Value last(Machine& machine, Arguments a) {
    const Value* at = &machine.listAt(a, 0);
    if (at->isNil()) return Value();
    while (at->cdr().isCons()) at = &at->cdr();
    return at->car();
}

Value nth(Machine& machine, Arguments a) {
    const int index = machine.integerAt(a, 0);
    const Value* at = &machine.listAt(a, 1);
    if (index < 0) machine.failType("non-negative fixnump", a[0]);
    for (int i = 0; i < index && at->isCons(); ++i) at = &at->cdr();
    return at->isCons() ? at->car() : Value();
}

Value reverse(Machine& machine, Arguments a) {
    Value reversed;
    const Value* at = &machine.listAt(a, 0);
    for (; at->isCons(); at = &at->cdr()) reversed = machine.heap().cons(at->car(), std::move(reversed));
    if (!at->isNil()) machine.failType("listp", a[0]);
    return reversed;
}

const Builtin kLists[] = {
    {"CONS", 2, 2, &cons},        {"LIST", 0, kAny, &list},  {"VL-LIST*", 1, kAny, &listWithTail},
    {"APPEND", 0, kAny, &append}, {"LENGTH", 1, 1, &length}, {"VL-LIST-LENGTH", 1, 1, &lengthOfProperList},
    {"LAST", 1, 1, &last},        {"NTH", 2, 2, &nth},       {"REVERSE", 1, 1, &reverse},
};

} // namespace

std::span<const Builtin> partFunctions() {
    return kParts;
}

std::span<const Builtin> listFunctions() {
    return kLists;
}

} // namespace lm::host::lisp
