// SPDX-License-Identifier: MIT
// Looking through lists, by equality and by functions of the program; and sorting.
#include "machine.h"

namespace lm::host::lisp {

namespace {

/// Calls a function with one value.
Value call(Machine& machine, const Value& function, const Value& argument) {
    Machine::Frame frame(machine, 1);
    frame[0] = argument;
    return machine.apply(function, frame.values());
}

Value member(Machine& machine, Arguments a) {
    for (const Value* at = &machine.listAt(a, 1); at->isCons(); at = &at->cdr()) {
        machine.tick();
        if (equalValues(machine, a[0], at->car())) return *at;
    }
    return Value();
}

// Elements that are no pairs are passed over.
Value assoc(Machine& machine, Arguments a) {
    for (const Value* at = &machine.listAt(a, 1); at->isCons(); at = &at->cdr()) {
        machine.tick();
        if (at->car().isCons() && equalValues(machine, a[0], at->car().car())) return at->car();
    }
    return Value();
}

Value subst(Machine& machine, Arguments a) {
    ListBuilder elements(machine.heap());
    const Value* at = &machine.listAt(a, 2);
    for (; at->isCons(); at = &at->cdr())
        elements.add(equalValues(machine, a[1], at->car()) ? a[0] : at->car());
    return elements.takeWithTail(*at);
}

Value position(Machine& machine, Arguments a) {
    int index = 0;
    for (const Value* at = &machine.listAt(a, 1); at->isCons(); at = &at->cdr(), ++index)
        if (equalValues(machine, a[0], at->car())) return Value::integer(index);
    return Value();
}

/// The elements of a list that a test keeps.
template<class Keep>
Value kept(Machine& machine, const Value& list, Keep keep) {
    ListBuilder elements(machine.heap());
    for (const Value* at = &list; at->isCons(); at = &at->cdr())
        if (keep(at->car())) elements.add(at->car());
    return elements.take();
}

Value removeEqual(Machine& machine, Arguments a) {
    return kept(machine, machine.listAt(a, 1),
                [&](const Value& element) { return !equalValues(machine, a[0], element); });
}

template<bool Wanted>
Value filter(Machine& machine, Arguments a) {
    const Value function = machine.resolveFunction(a[0]);
    return kept(machine, machine.listAt(a, 1), [&](const Value& element) {
        return static_cast<bool>(call(machine, function, element)) == Wanted;
    });
}

template<bool Wanted>
Value memberIf(Machine& machine, Arguments a) {
    const Value function = machine.resolveFunction(a[0]);
    for (const Value* at = &machine.listAt(a, 1); at->isCons(); at = &at->cdr())
        if (static_cast<bool>(call(machine, function, at->car())) == Wanted) return *at;
    return Value();
}

/// Calls a function with the first elements of several lists, then with the second ones, until `ends` says so
/// or a list is used up.
template<class Ends>
Value walkTogether(Machine& machine, Arguments a, Value atEnd, Ends ends) {
    const Value function = machine.resolveFunction(a[0]);
    for (std::size_t i = 1; i < a.size(); ++i) machine.listAt(a, i);
    for (;;) {
        Machine::Frame frame(machine, a.size() - 1);
        for (std::size_t i = 1; i < a.size(); ++i) {
            if (!a[i].isCons()) return atEnd;
            frame[i - 1] = a[i].car();
            a[i] = Value(a[i].cdr());
        }
        Value result = machine.apply(function, frame.values());
        if (ends(result)) return result;
    }
}

Value some(Machine& machine, Arguments a) {
    return walkTogether(machine, a, Value(), [](const Value& result) { return !result.isNil(); });
}

Value every(Machine& machine, Arguments a) {
    return walkTogether(machine, a, machine.truth(), [](const Value& result) { return result.isNil(); });
}

const Builtin kSearch[] = {
    {"MEMBER", 2, 2, &member},
    {"ASSOC", 2, 2, &assoc},
    {"SUBST", 3, 3, &subst},
    {"VL-POSITION", 2, 2, &position},
    {"VL-REMOVE", 2, 2, &removeEqual},
    {"VL-REMOVE-IF", 2, 2, &filter<false>},
    {"VL-REMOVE-IF-NOT", 2, 2, &filter<true>},
    {"VL-MEMBER-IF", 2, 2, &memberIf<true>},
    {"VL-MEMBER-IF-NOT", 2, 2, &memberIf<false>},
    {"VL-SOME", 2, kAny, &some},
    {"VL-EVERY", 2, kAny, &every},
};

/// Sorts places of elements by a function of the program. A merge sort of our own: whatever the function
/// answers, each place stays in the result once, and equal elements keep their order.
class Sorter {
public:
    Sorter(Machine& machine, const Value& list, const Value& function)
        : m_machine(machine), m_function(machine.resolveFunction(function)) {
        const std::size_t count = machine.lengthOf(list);
        machine.heap().expect(count * (sizeof(const Value*) + 2 * sizeof(std::size_t)));
        m_elements.reserve(count);
        for (const Value* at = &list; at->isCons(); at = &at->cdr()) m_elements.push_back(&at->car());
        m_order.resize(count);
        for (std::size_t i = 0; i < count; ++i) m_order[i] = i;
        m_spare = m_order;
    }

    const std::vector<std::size_t>& sort() {
        const std::size_t count = m_order.size();
        for (std::size_t width = 1; width < count; width *= 2) {
            for (std::size_t start = 0; start < count; start += 2 * width)
                merge(start, std::min(start + width, count), std::min(start + 2 * width, count));
            m_order.swap(m_spare);
        }
        return m_order;
    }
    const Value& element(std::size_t place) const { return *m_elements[place]; }

private:
    bool before(std::size_t x, std::size_t y) {
        Machine::Frame frame(m_machine, 2);
        frame[0] = *m_elements[x];
        frame[1] = *m_elements[y];
        return static_cast<bool>(m_machine.apply(m_function, frame.values()));
    }
    void merge(std::size_t start, std::size_t middle, std::size_t end) {
        std::size_t left = start, right = middle;
        for (std::size_t to = start; to < end; ++to) {
            const bool fromRight = left == middle || (right != end && before(m_order[right], m_order[left]));
            m_spare[to] = fromRight ? m_order[right++] : m_order[left++];
        }
    }

    Machine& m_machine;
    Value m_function;
    std::vector<const Value*> m_elements;
    std::vector<std::size_t> m_order, m_spare;
};

Value sort(Machine& machine, Arguments a) {
    Sorter sorter(machine, machine.listAt(a, 0), a[1]);
    ListBuilder elements(machine.heap());
    for (const std::size_t place : sorter.sort()) elements.add(sorter.element(place));
    return elements.take();
}

Value sortedPlaces(Machine& machine, Arguments a) {
    Sorter sorter(machine, machine.listAt(a, 0), a[1]);
    ListBuilder places(machine.heap());
    for (const std::size_t place : sorter.sort()) places.add(Value::integer(static_cast<int>(place)));
    return places.take();
}

const Builtin kSort[] = {
    {"VL-SORT", 2, 2, &sort},
    {"VL-SORT-I", 2, 2, &sortedPlaces},
};

} // namespace

std::span<const Builtin> searchFunctions() {
    return kSearch;
}

std::span<const Builtin> sortFunctions() {
    return kSort;
}

} // namespace lm::host::lisp
