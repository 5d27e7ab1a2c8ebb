// SPDX-License-Identifier: MIT
// The functions between numbers and the texts of lengths and angles.
#include "points.h"
#include "settings.h"
#include "units.h"

#include "system/codepage.h"

namespace lm::host::lisp {

namespace {

/// An integer argument, or a variable of the session where the argument is missing or nil.
int integerOr(Machine& machine, Arguments a, std::size_t index, std::string_view variable) {
    if (index < a.size() && !a[index].isNil()) return machine.integerAt(a, index);
    return integerVariable(machine, variable);
}

UnitStyle styleOf(Machine& machine, Arguments a, std::string_view precision) {
    UnitStyle style;
    style.precision = integerOr(machine, a, 2, precision);
    style.zeros = integerVariable(machine, "DIMZIN");
    style.asEntered = integerVariable(machine, "UNITMODE") != 0;
    if (style.precision < 0) machine.failType("non-negative fixnump", a[2]);
    return style;
}

LengthMode lengthMode(Machine& machine, Arguments a) {
    const int mode = integerOr(machine, a, 1, "LUNITS");
    if (mode < 1 || mode > 5) machine.failType("length mode", Value::integer(mode));
    return static_cast<LengthMode>(mode);
}

AngleMode angleMode(Machine& machine, Arguments a) {
    const int mode = integerOr(machine, a, 1, "AUNITS");
    if (mode < 0 || mode > 4) machine.failType("angle mode", Value::integer(mode));
    return static_cast<AngleMode>(mode);
}

Value realOrNil(const std::optional<double>& number) {
    return number ? Value::real(*number) : Value();
}

Value rtos(Machine& machine, Arguments a) {
    const double number = machine.numberAt(a, 0);
    const LengthMode mode = lengthMode(machine, a);
    return machine.text(std::string_view(lengthText(number, mode, styleOf(machine, a, "LUPREC"))));
}

Value distof(Machine& machine, Arguments a) {
    return realOrNil(lengthOfText(system::narrow(machine.textAt(a, 0)), lengthMode(machine, a)));
}

Value angtos(Machine& machine, Arguments a) {
    const double radians = machine.numberAt(a, 0);
    const AngleMode mode = angleMode(machine, a);
    return machine.text(std::string_view(angleText(radians, mode, styleOf(machine, a, "AUPREC"))));
}

Value angtof(Machine& machine, Arguments a) {
    return realOrNil(angleOfText(system::narrow(machine.textAt(a, 0)), angleMode(machine, a)));
}

Value cvunit(Machine& machine, Arguments a) {
    const std::optional<double> factor =
        unitFactor(system::narrow(machine.textAt(a, 1)), system::narrow(machine.textAt(a, 2)));
    if (!factor) return Value();
    if (a[0].isNumber()) return Value::real(a[0].number() * *factor);
    Point point = pointAt(machine, a, 0);
    point.x *= *factor;
    point.y *= *factor;
    point.z *= *factor;
    return listOf(machine, point);
}

const Builtin kUnits[] = {
    {"RTOS", 1, 3, &rtos},     {"DISTOF", 1, 2, &distof}, {"ANGTOS", 1, 3, &angtos},
    {"ANGTOF", 1, 2, &angtof}, {"CVUNIT", 3, 3, &cvunit},
};

} // namespace

std::span<const Builtin> unitFunctions() {
    return kUnits;
}

} // namespace lm::host::lisp
