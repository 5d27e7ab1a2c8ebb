// SPDX-License-Identifier: MIT
// Functions about evaluation, symbols and functions, and those that catch errors.
#include "caughterror.h"
#include "machine.h"
#include "printer.h"
#include "reader.h"

#include <algorithm>

namespace lm::host::lisp {

namespace {

Value eval(Machine& machine, Arguments a) {
    return machine.eval(a[0]);
}

/// Calls a function with the elements of a list.
Value applyList(Machine& machine, const Value& function, const Value& elements) {
    Machine::Frame frame(machine, machine.lengthOf(elements));
    std::size_t index = 0;
    for (const Value* at = &elements; at->isCons(); at = &at->cdr()) frame[index++] = at->car();
    return machine.apply(function, frame.values());
}

Value apply(Machine& machine, Arguments a) {
    return applyList(machine, a[0], machine.listAt(a, 1));
}

Value mapcar(Machine& machine, Arguments a) {
    const Value function = machine.resolveFunction(a[0]);
    for (std::size_t i = 1; i < a.size(); ++i) machine.listAt(a, i);
    ListBuilder results(machine.heap());
    for (;;) {
        Machine::Frame frame(machine, a.size() - 1);
        for (std::size_t i = 1; i < a.size(); ++i) {
            if (!a[i].isCons()) return results.take();
            frame[i - 1] = a[i].car();
            a[i] = Value(a[i].cdr());
        }
        results.add(machine.apply(function, frame.values()));
    }
}

Value set(Machine& machine, Arguments a) {
    machine.assign(machine.symbolAt(a, 0), a[1]);
    return a[1];
}

Value boundp(Machine& machine, Arguments a) {
    const Value& value = machine.symbolAt(a, 0)->value;
    return machine.boolean(!value.isUnbound() && !value.isNil());
}

Value type(Machine& machine, Arguments a) {
    const auto name = [&]() -> const char* {
        switch (a[0].type()) {
        case Type::kInteger:
            return "INT";
        case Type::kReal:
            return "REAL";
        case Type::kText:
            return "STR";
        case Type::kSymbol:
            return "SYM";
        case Type::kCons:
            return "LIST";
        case Type::kBuiltin:
            return "SUBR";
        case Type::kFunction:
            return "USUBR";
        case Type::kForeign:
            return a[0].foreign()->typeName();
        default:
            return nullptr;
        }
    }();
    return name == nullptr ? Value() : Value::of(machine.intern(name));
}

Value read(Machine& machine, Arguments a) {
    if (a.empty()) return Value();
    const WideString text = machine.textAt(a, 0);
    Value form;
    Reader(machine, text).next(form);
    return form;
}

Value symbolp(Machine& machine, Arguments a) {
    return machine.boolean(a[0].isSymbol());
}

Value symbolName(Machine& machine, Arguments a) {
    return machine.text(machine.symbolAt(a, 0)->name);
}

Value symbolValue(Machine& machine, Arguments a) {
    const Value& value = machine.symbolAt(a, 0)->value;
    return value.isUnbound() ? Value() : value;
}

Value functionList(Machine& machine, Arguments a) {
    const Value& value = machine.symbolAt(a, 0)->value;
    return value.isCons() ? value : Value();
}

Value setFunctionList(Machine& machine, Arguments a) {
    if (!a[1].isCons()) machine.failType("listp", a[1]);
    static_cast<void>(machine.makeFunction(nullptr, a[1].car(), a[1].cdr()));
    machine.assign(machine.symbolAt(a, 0), a[1]);
    return a[0];
}

// The names of all symbols with a value, as symbols (0) or texts (1), or those of a list that have one.
Value atomsFamily(Machine& machine, Arguments a) {
    const bool texts = machine.integerAt(a, 0) == 1;
    const auto entry = [&](Symbol* symbol) { return texts ? machine.text(symbol->name) : Value::of(symbol); };
    ListBuilder names(machine.heap());
    if (a.size() > 1) {
        for (const Value* at = &machine.listAt(a, 1); at->isCons(); at = &at->cdr()) {
            if (!at->car().isText()) machine.failType("stringp", at->car());
            WideString name = at->car().text();
            for (WideChar& unit : name) unit = system::toUpper(unit);
            Symbol* symbol = machine.find(name);
            names.add(symbol != nullptr && !symbol->value.isUnbound() ? entry(symbol) : Value());
        }
        return names.take();
    }
    std::vector<Symbol*> symbols;
    machine.forEachSymbol([&](Symbol& symbol) {
        if (!symbol.value.isUnbound() && !symbol.name.empty()) symbols.push_back(&symbol);
    });
    std::sort(symbols.begin(), symbols.end(),
              [](const Symbol* x, const Symbol* y) { return system::wideCompare(x->name, y->name) < 0; });
    for (Symbol* symbol : symbols) names.add(entry(symbol));
    return names.take();
}

Value nothing(Machine&, Arguments) {
    return Value();
}

Value version(Machine& machine, Arguments) {
    return machine.text("LMHost LISP");
}

const Builtin kControl[] = {
    {"EVAL", 1, 1, &eval},
    {"APPLY", 2, 2, &apply},
    {"MAPCAR", 2, kAny, &mapcar},
    {"SET", 2, 2, &set},
    {"BOUNDP", 1, 1, &boundp},
    {"TYPE", 1, 1, &type},
    {"READ", 0, 1, &read},
    {"VL-SYMBOLP", 1, 1, &symbolp},
    {"VL-SYMBOL-NAME", 1, 1, &symbolName},
    {"VL-SYMBOL-VALUE", 1, 1, &symbolValue},
    {"DEFUN-Q-LIST-REF", 1, 1, &functionList},
    {"DEFUN-Q-LIST-SET", 2, 2, &setFunctionList},
    {"ATOMS-FAMILY", 1, 2, &atomsFamily},
    {"VL-LOAD-COM", 0, 0, &nothing},
    {"GC", 0, 0, &nothing},
    {"VER", 0, 0, &version},
};

Value catchAllApply(Machine& machine, Arguments a) {
    const Value elements = a.size() > 1 ? machine.listAt(a, 1) : Value();
    const Machine::Catching catching(machine);
    try {
        return applyList(machine, a[0], elements);
    } catch (LispError& error) {
        if (!error.catchable) throw;
        return machine.heap().foreign<CaughtError>(std::move(error.message));
    }
}

Value isCaughtError(Machine& machine, Arguments a) {
    return machine.boolean(foreignOf<CaughtError>(a[0]) != nullptr);
}

Value caughtMessage(Machine& machine, Arguments a) {
    const CaughtError* error = foreignOf<CaughtError>(a[0]);
    if (error == nullptr) machine.failType("vl-catch-all-error-p", a[0]);
    return machine.text(error->message());
}

Value quit(Machine&, Arguments) {
    Machine::fail("quit / exit abort");
}

const Builtin kCatch[] = {
    {"VL-CATCH-ALL-APPLY", 1, 2, &catchAllApply},
    {"VL-CATCH-ALL-ERROR-P", 1, 1, &isCaughtError},
    {"VL-CATCH-ALL-ERROR-MESSAGE", 1, 1, &caughtMessage},
    {"QUIT", 0, 0, &quit},
    {"EXIT", 0, 0, &quit},
};

} // namespace

std::span<const Builtin> controlFunctions() {
    return kControl;
}

std::span<const Builtin> catchFunctions() {
    return kCatch;
}

} // namespace lm::host::lisp
