// SPDX-License-Identifier: MIT
// The forms whose arguments come unevaluated: quotation, assignment, decisions, loops and definitions.
#include "machine.h"

namespace lm::host::lisp {

namespace {

[[noreturn]] void failCount(bool few, const char* name) {
    throw LispError(std::string(few ? "too few arguments: " : "too many arguments: ") + name);
}

/// The first element of what is left of a form, which moves on to the next.
const Value& takeNext(const Value*& rest, const char* name) {
    if (!rest->isCons()) failCount(true, name);
    const Value& first = rest->car();
    rest = &rest->cdr();
    return first;
}

Symbol* symbolOf(Machine& machine, const Value& value) {
    if (!value.isSymbol()) machine.failType("symbolp", value);
    return value.symbol();
}

Value quote(Machine&, const Value& rest) {
    const Value* at = &rest;
    const Value& quoted = takeNext(at, "QUOTE");
    if (!at->isNil()) failCount(false, "QUOTE");
    return quoted;
}

Value function(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value& named = takeNext(at, "FUNCTION");
    if (!at->isNil()) failCount(false, "FUNCTION");
    return named.isCons() ? machine.eval(named) : named;
}

Value setq(Machine& machine, const Value& rest) {
    Value last;
    for (const Value* at = &rest; at->isCons();) {
        Symbol* symbol = symbolOf(machine, takeNext(at, "SETQ"));
        last = machine.eval(takeNext(at, "SETQ"));
        machine.assign(symbol, last);
    }
    return last;
}

Value ifForm(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value& test = takeNext(at, "IF");
    const Value& then = takeNext(at, "IF");
    const Value* otherwise = at->isCons() ? &takeNext(at, "IF") : nullptr;
    if (!at->isNil()) failCount(false, "IF");
    if (machine.eval(test)) return machine.eval(then);
    return otherwise != nullptr ? machine.eval(*otherwise) : Value();
}

Value cond(Machine& machine, const Value& rest) {
    for (const Value* at = &rest; at->isCons(); at = &at->cdr()) {
        const Value& clause = at->car();
        if (!clause.isCons()) machine.fail("bad cond clause", clause);
        Value test = machine.eval(clause.car());
        if (test) return clause.cdr().isCons() ? machine.evalBody(clause.cdr()) : test;
    }
    return Value();
}

Value progn(Machine& machine, const Value& rest) {
    return machine.evalBody(rest);
}

Value andForm(Machine& machine, const Value& rest) {
    for (const Value* at = &rest; at->isCons(); at = &at->cdr())
        if (!machine.eval(at->car())) return Value();
    return machine.truth();
}

Value orForm(Machine& machine, const Value& rest) {
    for (const Value* at = &rest; at->isCons(); at = &at->cdr())
        if (machine.eval(at->car())) return machine.truth();
    return Value();
}

Value whileForm(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value& test = takeNext(at, "WHILE");
    Value last;
    while (machine.eval(test)) {
        machine.tick();
        last = machine.evalBody(*at);
    }
    return last;
}

Value repeat(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value count = machine.eval(takeNext(at, "REPEAT"));
    if (!count.isInteger()) machine.failType("fixnump", count);
    Value last;
    for (int i = 0; i < count.integer(); ++i) {
        machine.tick();
        last = machine.evalBody(*at);
    }
    return last;
}

Value forEachElement(Machine& machine, const Value& rest) {
    const Value* body = &rest;
    Symbol* symbol = symbolOf(machine, takeNext(body, "FOREACH"));
    const Value elements = machine.eval(takeNext(body, "FOREACH"));
    if (!elements.isList()) machine.failType("listp", elements);
    struct Binding {
        Symbol* symbol;
        Value before;
        ~Binding() { before.swap(symbol->value); }
    } const binding{symbol, symbol->value};
    Value last;
    for (const Value* at = &elements; at->isCons(); at = &at->cdr()) {
        machine.tick();
        machine.assign(symbol, at->car());
        last = machine.evalBody(*body);
    }
    return last;
}

Value defun(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value& name = takeNext(at, "DEFUN");
    const Value& variables = takeNext(at, "DEFUN");
    machine.assign(symbolOf(machine, name), machine.makeFunction(symbolOf(machine, name), variables, *at));
    return name;
}

// The function is a list then, which programs take apart and put together.
Value defunList(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value& name = takeNext(at, "DEFUN-Q");
    if (!at->isCons()) failCount(true, "DEFUN-Q");
    static_cast<void>(machine.makeFunction(symbolOf(machine, name), at->car(), at->cdr()));
    machine.assign(symbolOf(machine, name), *at);
    return name;
}

Value lambda(Machine& machine, const Value& rest) {
    const Value* at = &rest;
    const Value& variables = takeNext(at, "LAMBDA");
    return machine.makeFunction(nullptr, variables, *at);
}

constexpr Builtin form(const char* name, SpecialForm function) {
    return {name, 0, kAny, nullptr, function};
}

const Builtin kForms[] = {
    form("QUOTE", &quote),
    form("FUNCTION", &function),
    form("SETQ", &setq),
    form("IF", &ifForm),
    form("COND", &cond),
    form("PROGN", &progn),
    form("AND", &andForm),
    form("OR", &orForm),
    form("WHILE", &whileForm),
    form("REPEAT", &repeat),
    form("FOREACH", &forEachElement),
    form("DEFUN", &defun),
    form("DEFUN-Q", &defunList),
    form("LAMBDA", &lambda),
};

} // namespace

std::span<const Builtin> specialForms() {
    return kForms;
}

} // namespace lm::host::lisp
