// SPDX-License-Identifier: MIT
// Arithmetic: integers of 32 bits that wrap around, and reals. One real among the arguments makes the result
// real.
#include "machine.h"
#include "reader.h"

#include <cmath>
#include <numeric>

namespace lm::host::lisp {

namespace {

std::int32_t wrapped(std::int64_t number) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

/// Folds the arguments from the left: integers by one function, reals by another.
template<class Integers, class Reals>
Value fold(Machine& machine, Arguments a, Integers integers, Reals reals) {
    if (a.empty()) return Value::integer(0);
    for (std::size_t i = 0; i < a.size(); ++i) machine.numberAt(a, i);
    Value result = a[0];
    for (std::size_t i = 1; i < a.size(); ++i) {
        if (result.isInteger() && a[i].isInteger())
            result = Value::integer(integers(result.integer(), a[i].integer()));
        else
            result = Value::real(reals(result.number(), a[i].number()));
    }
    return result;
}

Value add(Machine& machine, Arguments a) {
    return fold(
        machine, a, [](std::int64_t x, std::int64_t y) { return wrapped(x + y); },
        [](double x, double y) { return x + y; });
}

Value subtract(Machine& machine, Arguments a) {
    if (a.size() == 1) {
        machine.numberAt(a, 0);
        return a[0].isInteger() ? Value::integer(wrapped(-std::int64_t{a[0].integer()}))
                                : Value::real(-a[0].real());
    }
    return fold(
        machine, a, [](std::int64_t x, std::int64_t y) { return wrapped(x - y); },
        [](double x, double y) { return x - y; });
}

Value multiply(Machine& machine, Arguments a) {
    return fold(
        machine, a, [](std::int64_t x, std::int64_t y) { return wrapped(x * y); },
        [](double x, double y) { return x * y; });
}

template<class Number>
Number divisor(Number number) {
    if (number == 0) Machine::fail("divide by zero");
    return number;
}

Value divide(Machine& machine, Arguments a) {
    return fold(
        machine, a, [](std::int64_t x, std::int64_t y) { return wrapped(x / divisor(y)); },
        [](double x, double y) { return x / divisor(y); });
}

Value remainder(Machine& machine, Arguments a) {
    return fold(
        machine, a, [](std::int64_t x, std::int64_t y) { return wrapped(x % divisor(y)); },
        [](double x, double y) { return std::fmod(x, divisor(y)); });
}

template<bool Greatest>
Value extreme(Machine& machine, Arguments a) {
    return fold(
        machine, a, [](std::int32_t x, std::int32_t y) { return (x < y) == Greatest ? y : x; },
        [](double x, double y) { return (x < y) == Greatest ? y : x; });
}

Value increment(Machine& machine, Arguments a) {
    machine.numberAt(a, 0);
    return a[0].isInteger() ? Value::integer(wrapped(std::int64_t{a[0].integer()} + 1))
                            : Value::real(a[0].real() + 1);
}

Value decrement(Machine& machine, Arguments a) {
    machine.numberAt(a, 0);
    return a[0].isInteger() ? Value::integer(wrapped(std::int64_t{a[0].integer()} - 1))
                            : Value::real(a[0].real() - 1);
}

Value absolute(Machine& machine, Arguments a) {
    machine.numberAt(a, 0);
    return a[0].isInteger() ? Value::integer(wrapped(std::abs(std::int64_t{a[0].integer()})))
                            : Value::real(std::abs(a[0].real()));
}

// A number that no integer holds stays a real without its fraction.
Value fix(Machine& machine, Arguments a) {
    const double whole = std::trunc(machine.numberAt(a, 0));
    if (a[0].isInteger()) return a[0];
    if (whole >= INT32_MIN && whole <= INT32_MAX) return Value::integer(static_cast<std::int32_t>(whole));
    return Value::real(whole);
}

Value toReal(Machine& machine, Arguments a) {
    return Value::real(machine.numberAt(a, 0));
}

Value greatestDivisor(Machine& machine, Arguments a) {
    const std::int64_t x = machine.integerAt(a, 0), y = machine.integerAt(a, 1);
    return Machine::integerOrReal(std::gcd(x, y));
}

Value squareRoot(Machine& machine, Arguments a) {
    const double number = machine.numberAt(a, 0);
    if (number < 0) machine.fail("function undefined for argument", a[0]);
    return Value::real(std::sqrt(number));
}

Value logarithm(Machine& machine, Arguments a) {
    const double number = machine.numberAt(a, 0);
    if (!(number > 0)) machine.fail("function undefined for argument", a[0]);
    return Value::real(std::log(number));
}

Value exponential(Machine& machine, Arguments a) {
    return Value::real(std::exp(machine.numberAt(a, 0)));
}

Value power(Machine& machine, Arguments a) {
    const double base = machine.numberAt(a, 0), exponent = machine.numberAt(a, 1);
    if (base == 0 && exponent < 0) Machine::fail("divide by zero");
    const double result = std::pow(base, exponent);
    if (std::isnan(result) && !std::isnan(base) && !std::isnan(exponent))
        machine.fail("function undefined for argument", a[0]);
    const bool whole = a[0].isInteger() && a[1].isInteger() && exponent >= 0;
    if (whole && std::abs(result) <= INT32_MAX) return Value::integer(static_cast<std::int32_t>(result));
    return Value::real(result);
}

Value sine(Machine& machine, Arguments a) {
    return Value::real(std::sin(machine.numberAt(a, 0)));
}

Value cosine(Machine& machine, Arguments a) {
    return Value::real(std::cos(machine.numberAt(a, 0)));
}

Value arcTangent(Machine& machine, Arguments a) {
    const double number = machine.numberAt(a, 0);
    return Value::real(a.size() > 1 ? std::atan2(number, machine.numberAt(a, 1)) : std::atan(number));
}

/// The longest start of a text that spells a number; nil when none does.
Value numberAtStart(WideView text, bool real) {
    constexpr std::size_t kLongest = 512;
    static const WideString kReal = system::widen("0123456789+-.eE"),
                            kInteger = system::widen("0123456789+-");
    std::size_t begin = 0;
    while (begin < text.size() && text[begin] <= ' ') ++begin;
    text = text.substr(begin, kLongest);
    text = text.substr(0, text.find_first_not_of(real ? kReal : kInteger));
    for (std::size_t length = text.size(); length > 0; --length)
        if (const Value number = numberOf(text.substr(0, length))) return number;
    return Value();
}

// A number that no integer holds comes as the nearest one.
Value atoi(Machine& machine, Arguments a) {
    const Value number = numberAtStart(machine.textAt(a, 0), false);
    if (number.isReal()) return Value::integer(number.real() < 0 ? INT32_MIN : INT32_MAX);
    return number.isNil() ? Value::integer(0) : number;
}

Value atof(Machine& machine, Arguments a) {
    const Value number = numberAtStart(machine.textAt(a, 0), true);
    return Value::real(number.isNil() ? 0 : number.number());
}

Value itoa(Machine& machine, Arguments a) {
    return machine.text(std::string_view(std::to_string(machine.integerAt(a, 0))));
}

const Builtin kArithmetic[] = {
    {"+", 0, kAny, &add},
    {"-", 0, kAny, &subtract},
    {"*", 0, kAny, &multiply},
    {"/", 0, kAny, &divide},
    {"REM", 0, kAny, &remainder},
    {"MAX", 0, kAny, &extreme<true>},
    {"MIN", 0, kAny, &extreme<false>},
    {"1+", 1, 1, &increment},
    {"1-", 1, 1, &decrement},
    {"ABS", 1, 1, &absolute},
    {"FIX", 1, 1, &fix},
    {"FLOAT", 1, 1, &toReal},
    {"GCD", 2, 2, &greatestDivisor},
    {"SQRT", 1, 1, &squareRoot},
    {"LOG", 1, 1, &logarithm},
    {"EXP", 1, 1, &exponential},
    {"EXPT", 2, 2, &power},
    {"SIN", 1, 1, &sine},
    {"COS", 1, 1, &cosine},
    {"ATAN", 1, 2, &arcTangent},
    {"ATOI", 1, 1, &atoi},
    {"ATOF", 1, 1, &atof},
    {"ITOA", 1, 1, &itoa},
};

template<class Combine>
Value combineBits(Machine& machine, Arguments a, int start, Combine combine) {
    int bits = start;
    for (std::size_t i = 0; i < a.size(); ++i)
        bits = i == 0 ? machine.integerAt(a, 0) : combine(bits, machine.integerAt(a, i));
    return Value::integer(bits);
}

Value bitAnd(Machine& machine, Arguments a) {
    return combineBits(machine, a, 0, [](int x, int y) { return x & y; });
}

Value bitOr(Machine& machine, Arguments a) {
    return combineBits(machine, a, 0, [](int x, int y) { return x | y; });
}

Value bitNot(Machine& machine, Arguments a) {
    return Value::integer(~machine.integerAt(a, 0));
}

// To the left for a positive count, to the right, filled with zeros, for a negative one.
Value shift(Machine& machine, Arguments a) {
    constexpr int kBits = 32;
    const auto bits = static_cast<std::uint32_t>(machine.integerAt(a, 0));
    const int by = machine.integerAt(a, 1);
    if (by >= kBits || by <= -kBits) return Value::integer(0);
    return Value::integer(static_cast<std::int32_t>(by >= 0 ? bits << by : bits >> -by));
}

// The first argument's bits say for which pairs of bits the result has a one: 8 neither, 4 the second alone,
// 2 the first alone, 1 both.
Value boole(Machine& machine, Arguments a) {
    const int table = machine.integerAt(a, 0);
    int result = machine.integerAt(a, 1);
    for (std::size_t i = 2; i < a.size(); ++i) {
        const int x = result, y = machine.integerAt(a, i);
        result = (table & 1 ? x & y : 0) | (table & 2 ? x & ~y : 0) | (table & 4 ? ~x & y : 0) |
                 (table & 8 ? ~x & ~y : 0);
    }
    return Value::integer(result);
}

const Builtin kBits[] = {
    {"LOGAND", 0, kAny, &bitAnd}, {"LOGIOR", 0, kAny, &bitOr}, {"~", 1, 1, &bitNot},
    {"LSH", 2, 2, &shift},        {"BOOLE", 2, kAny, &boole},
};

} // namespace

std::span<const Builtin> arithmeticFunctions() {
    return kArithmetic;
}

std::span<const Builtin> bitFunctions() {
    return kBits;
}

} // namespace lm::host::lisp
