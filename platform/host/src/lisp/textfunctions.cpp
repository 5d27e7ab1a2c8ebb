// SPDX-License-Identifier: MIT
// Texts: joining, cutting, case, searching. Positions count units of 16 bits.
#include "machine.h"

#include "drawing/recordsearch.h"
#include "drawing/wildcard.h"

#include <algorithm>

namespace lm::host::lisp {

namespace {

Value strcat(Machine& machine, Arguments a) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < a.size(); ++i) length += machine.textAt(a, i).size();
    machine.heap().expect(2 * length * sizeof(WideChar));
    machine.tick(length);
    WideString joined;
    joined.reserve(length);
    for (const Value& part : a) joined += part.text();
    return machine.text(std::move(joined));
}

Value strlen(Machine& machine, Arguments a) {
    long long length = 0;
    for (std::size_t i = 0; i < a.size(); ++i) length += static_cast<long long>(machine.textAt(a, i).size());
    return Machine::integerOrReal(length);
}

// Positions begin at 1.
Value substr(Machine& machine, Arguments a) {
    const WideString& text = machine.textAt(a, 0);
    const int start = machine.integerAt(a, 1);
    const int length = a.size() > 2 ? machine.integerAt(a, 2) : INT32_MAX;
    if (start < 1) machine.failType("positive fixnump", a[1]);
    if (length < 0) machine.failType("non-negative fixnump", a[2]);
    const auto from = static_cast<std::size_t>(start - 1);
    if (from >= text.size()) return machine.text("");
    machine.tick(text.size());
    return machine.text(text.substr(from, static_cast<std::size_t>(length)));
}

Value changeCase(Machine& machine, Arguments a, bool lower) {
    WideString text = machine.textAt(a, 0);
    machine.tick(text.size());
    for (WideChar& unit : text) unit = lower ? system::toLower(unit) : system::toUpper(unit);
    return machine.text(std::move(text));
}

Value strcase(Machine& machine, Arguments a) {
    return changeCase(machine, a, a.size() > 1 && !a[1].isNil());
}

Value upperCase(Machine& machine, Arguments a) {
    return changeCase(machine, a, false);
}

Value ascii(Machine& machine, Arguments a) {
    const WideString& text = machine.textAt(a, 0);
    return Value::integer(text.empty() ? 0 : text[0]);
}

/// The unit of a number; raises LispError for a number that is none. 0 is one, though no text holds it.
WideChar unitOf(Machine& machine, const Value& value) {
    if (!value.isInteger() || value.integer() < 0 || value.integer() > 0xFFFF)
        machine.failType("character code", value);
    return static_cast<WideChar>(value.integer());
}

Value chr(Machine& machine, Arguments a) {
    const WideChar unit = unitOf(machine, a[0]);
    return machine.text(unit == 0 ? WideString() : WideString(1, unit));
}

Value wcmatch(Machine& machine, Arguments a) {
    const WideString& text = machine.textAt(a, 0);
    const WideString& pattern = machine.textAt(a, 1);
    machine.tick(text.size() + pattern.size());
    return machine.boolean(odutWcMatch(OdString(WideView(text)), OdString(WideView(pattern))));
}

Value toList(Machine& machine, Arguments a) {
    ListBuilder codes(machine.heap());
    for (const WideChar unit : machine.textAt(a, 0)) codes.add(Value::integer(unit));
    return codes.take();
}

Value fromList(Machine& machine, Arguments a) {
    const Value& list = machine.listAt(a, 0);
    machine.heap().expect(machine.lengthOf(list) * sizeof(WideChar));
    WideString text;
    for (const Value* at = &list; at->isCons(); at = &at->cdr())
        if (const WideChar unit = unitOf(machine, at->car())) text += unit;
    return machine.text(std::move(text));
}

// Whether a text can be the name of a record: not empty, and without the units that files and patterns need.
Value isValidName(Machine& machine, Arguments a) {
    const WideString& text = machine.textAt(a, 0);
    const bool barAllowed = a.size() > 1 && machine.integerAt(a, 1) != 0;
    return machine.boolean(lm::drawing::isValidName(text, barAllowed));
}

const Builtin kTexts[] = {
    {"STRCAT", 0, kAny, &strcat},
    {"STRLEN", 0, kAny, &strlen},
    {"SUBSTR", 2, 3, &substr},
    {"STRCASE", 1, 2, &strcase},
    {"XSTRCASE", 1, 1, &upperCase},
    {"ASCII", 1, 1, &ascii},
    {"CHR", 1, 1, &chr},
    {"WCMATCH", 2, 2, &wcmatch},
    {"VL-STRING->LIST", 1, 1, &toList},
    {"VL-LIST->STRING", 1, 1, &fromList},
    {"SNVALID", 1, 2, &isValidName},
};

/// An optional position from 0, at most at the text's end.
std::size_t startAt(Machine& machine, Arguments a, std::size_t index, const WideString& text) {
    if (index >= a.size() || a[index].isNil()) return 0;
    const int start = machine.integerAt(a, index);
    if (start < 0 || static_cast<std::size_t>(start) > text.size()) machine.failType("position", a[index]);
    return static_cast<std::size_t>(start);
}

/// Place of a pattern in a text, or npos; every unit that is looked at counts against the limits.
std::size_t placeOf(Machine& machine, const WideString& pattern, const WideString& text, std::size_t start) {
    if (pattern.size() > text.size()) return WideString::npos;
    for (std::size_t at = start; at + pattern.size() <= text.size(); ++at) {
        std::size_t same = 0;
        while (same < pattern.size() && text[at + same] == pattern[same]) ++same;
        if (same == pattern.size()) return at;
        machine.tick(same);
    }
    return WideString::npos;
}

Value placeOrNil(std::size_t place) {
    return place == WideString::npos ? Value() : Value::integer(static_cast<int>(place));
}

Value search(Machine& machine, Arguments a) {
    const WideString& text = machine.textAt(a, 1);
    return placeOrNil(placeOf(machine, machine.textAt(a, 0), text, startAt(machine, a, 2, text)));
}

Value position(Machine& machine, Arguments a) {
    const WideChar unit = unitOf(machine, a[0]);
    const WideString& text = machine.textAt(a, 1);
    const std::size_t start = startAt(machine, a, 2, text);
    machine.tick(text.size());
    if (a.size() < 4 || a[3].isNil()) return placeOrNil(text.find(unit, start));
    const std::size_t place = text.rfind(unit);
    return placeOrNil(place != WideString::npos && place < start ? WideString::npos : place);
}

// The first place only.
Value substitute(Machine& machine, Arguments a) {
    const WideString& wanted = machine.textAt(a, 0);
    const WideString& old = machine.textAt(a, 1);
    const WideString& text = machine.textAt(a, 2);
    const std::size_t place = placeOf(machine, old, text, startAt(machine, a, 3, text));
    if (place == WideString::npos) return a[2];
    machine.heap().expect(2 * (text.size() + wanted.size()) * sizeof(WideChar));
    machine.tick(text.size() + wanted.size());
    return machine.text(text.substr(0, place) + wanted + text.substr(place + old.size()));
}

Value translate(Machine& machine, Arguments a) {
    const WideString& from = machine.textAt(a, 0);
    const WideString& to = machine.textAt(a, 1);
    WideString text = machine.textAt(a, 2);
    for (WideChar& unit : text) {
        machine.tick(from.size());
        const std::size_t place = from.find(unit);
        if (place < to.size()) unit = to[place];
    }
    return machine.text(std::move(text));
}

Value trimmed(Machine& machine, Arguments a, bool left, bool right) {
    const WideString& set = machine.textAt(a, 0);
    const WideString& text = machine.textAt(a, 1);
    const auto isIn = [&](WideChar unit) {
        machine.tick(set.size());
        return set.find(unit) != WideString::npos;
    };
    std::size_t begin = 0, end = text.size();
    while (left && begin < end && isIn(text[begin])) ++begin;
    while (right && end > begin && isIn(text[end - 1])) --end;
    return machine.text(text.substr(begin, end - begin));
}

Value trim(Machine& machine, Arguments a) {
    return trimmed(machine, a, true, true);
}
Value trimLeft(Machine& machine, Arguments a) {
    return trimmed(machine, a, true, false);
}
Value trimRight(Machine& machine, Arguments a) {
    return trimmed(machine, a, false, true);
}

Value element(Machine& machine, Arguments a) {
    const WideString& text = machine.textAt(a, 0);
    const int index = machine.integerAt(a, 1);
    if (index < 0 || static_cast<std::size_t>(index) >= text.size()) machine.failType("position", a[1]);
    return Value::integer(text[static_cast<std::size_t>(index)]);
}

// How many units two texts share from their starts on.
Value mismatch(Machine& machine, Arguments a) {
    const WideString& x = machine.textAt(a, 0);
    const WideString& y = machine.textAt(a, 1);
    const std::size_t i = startAt(machine, a, 2, x), j = startAt(machine, a, 3, y);
    const bool ignoreCase = a.size() > 4 && !a[4].isNil();
    machine.tick(x.size());
    std::size_t same = 0;
    for (; i + same < x.size() && j + same < y.size(); ++same) {
        const WideChar u = x[i + same], v = y[j + same];
        if (ignoreCase ? system::toLower(u) != system::toLower(v) : u != v) break;
    }
    return Value::integer(static_cast<int>(same));
}

const Builtin kTextSearch[] = {
    {"VL-STRING-SEARCH", 2, 3, &search},
    {"VL-STRING-POSITION", 2, 4, &position},
    {"VL-STRING-SUBST", 3, 4, &substitute},
    {"VL-STRING-TRANSLATE", 3, 3, &translate},
    {"VL-STRING-TRIM", 2, 2, &trim},
    {"VL-STRING-LEFT-TRIM", 2, 2, &trimLeft},
    {"VL-STRING-RIGHT-TRIM", 2, 2, &trimRight},
    {"VL-STRING-ELT", 2, 2, &element},
    {"VL-STRING-MISMATCH", 2, 5, &mismatch},
};

} // namespace

std::span<const Builtin> textFunctions() {
    return kTexts;
}

std::span<const Builtin> textSearchFunctions() {
    return kTextSearch;
}

} // namespace lm::host::lisp
