// SPDX-License-Identifier: MIT
// Equality, order and the tests of what a value is.
#include "machine.h"

#include <cmath>

namespace lm::host::lisp {

bool sameValue(const Value& a, const Value& b) noexcept {
    if (a.isNumber() && b.isNumber()) return a.number() == b.number();
    if (a.type() != b.type()) return false;
    switch (a.type()) {
    case Type::kUnbound:
    case Type::kNil:
        return true;
    case Type::kSymbol:
        return a.symbol() == b.symbol();
    case Type::kBuiltin:
        return a.builtin() == b.builtin();
    case Type::kText:
        return system::wideEquals(a.text(), b.text());
    case Type::kForeign:
        return a.object() == b.object() ||
               (a.foreign()->kind == b.foreign()->kind && a.foreign()->sameAs(*b.foreign()));
    default:
        return a.object() == b.object();
    }
}

bool equalValues(Machine& machine, const Value& a, const Value& b, double fuzz) {
    machine.checkStack();
    const Value* x = &a;
    const Value* y = &b;
    for (; x->isCons() && y->isCons(); x = &x->cdr(), y = &y->cdr()) {
        if (x->object() == y->object()) return true;
        machine.tick();
        if (!equalValues(machine, x->car(), y->car(), fuzz)) return false;
    }
    if (fuzz != 0 && x->isNumber() && y->isNumber()) return std::abs(x->number() - y->number()) <= fuzz;
    return sameValue(*x, *y);
}

namespace {

/// Whether each pair of neighbours is in an order; texts go with texts, numbers with numbers.
template<class Order>
Value ordered(Machine& machine, Arguments a, Order inOrder) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!a[i].isNumber() && !a[i].isText()) machine.failType("numberp", a[i]);
    for (std::size_t i = 0; i + 1 < a.size(); ++i) {
        const Value& x = a[i];
        const Value& y = a[i + 1];
        if (x.isText() != y.isText()) machine.failType("comparable", y);
        const bool fits = x.isText() ? inOrder(system::wideCompare(x.text(), y.text()), 0)
                                     : inOrder(x.number(), y.number());
        if (!fits) return Value();
    }
    return machine.truth();
}

Value less(Machine& machine, Arguments a) {
    return ordered(machine, a, [](auto x, auto y) { return x < y; });
}
Value greater(Machine& machine, Arguments a) {
    return ordered(machine, a, [](auto x, auto y) { return x > y; });
}
Value lessOrSame(Machine& machine, Arguments a) {
    return ordered(machine, a, [](auto x, auto y) { return x <= y; });
}
Value greaterOrSame(Machine& machine, Arguments a) {
    return ordered(machine, a, [](auto x, auto y) { return x >= y; });
}

Value same(Machine& machine, Arguments a) {
    for (std::size_t i = 0; i + 1 < a.size(); ++i)
        if (!sameValue(a[i], a[i + 1])) return Value();
    return machine.truth();
}
Value different(Machine& machine, Arguments a) {
    for (std::size_t i = 0; i + 1 < a.size(); ++i)
        if (sameValue(a[i], a[i + 1])) return Value();
    return machine.truth();
}

Value eq(Machine& machine, Arguments a) {
    return machine.boolean(sameValue(a[0], a[1]));
}
Value equal(Machine& machine, Arguments a) {
    return machine.boolean(equalValues(machine, a[0], a[1], a.size() > 2 ? machine.numberAt(a, 2) : 0));
}
Value isNil(Machine& machine, Arguments a) {
    return machine.boolean(a[0].isNil());
}
Value atom(Machine& machine, Arguments a) {
    return machine.boolean(!a[0].isCons());
}
Value listp(Machine& machine, Arguments a) {
    return machine.boolean(a[0].isList());
}
Value consp(Machine& machine, Arguments a) {
    return machine.boolean(a[0].isCons());
}
Value numberp(Machine& machine, Arguments a) {
    return machine.boolean(a[0].isNumber());
}
Value zerop(Machine& machine, Arguments a) {
    return machine.boolean(machine.numberAt(a, 0) == 0);
}
Value minusp(Machine& machine, Arguments a) {
    return machine.boolean(machine.numberAt(a, 0) < 0);
}

const Builtin kCompare[] = {
    {"=", 1, kAny, &same},      {"/=", 1, kAny, &different},  {"<", 1, kAny, &less},
    {">", 1, kAny, &greater},   {"<=", 1, kAny, &lessOrSame}, {">=", 1, kAny, &greaterOrSame},
    {"EQ", 2, 2, &eq},          {"EQUAL", 2, 3, &equal},      {"NOT", 1, 1, &isNil},
    {"NULL", 1, 1, &isNil},     {"ATOM", 1, 1, &atom},        {"LISTP", 1, 1, &listp},
    {"VL-CONSP", 1, 1, &consp}, {"NUMBERP", 1, 1, &numberp},  {"ZEROP", 1, 1, &zerop},
    {"MINUSP", 1, 1, &minusp},
};

} // namespace

std::span<const Builtin> compareFunctions() {
    return kCompare;
}

} // namespace lm::host::lisp
