// SPDX-License-Identifier: MIT
#include "selectionfilter.h"

#include "entityfields.h"
#include "points.h"

#include "drawing/drawing.h"

#include <algorithm>

namespace lm::host::lisp {

namespace {

/// One entity while it is looked at; its list is made when a test needs it.
class Candidate {
public:
    Candidate(Machine& machine, const OdDbEntity& entity) : m_machine(machine), m_entity(entity) {}

    const OdDbEntity& entity() const noexcept { return m_entity; }
    /// The values of a group: those that the entity has, else what the group stands for when it is missing.
    std::vector<Value> values(int code) {
        if (!m_made) {
            m_list = entityList(m_machine, m_entity, Value(), Value());
            m_made = true;
        }
        std::vector<Value> found;
        for (const Value* at = &m_list; at->isCons(); at = &at->cdr())
            if (at->car().car().integer() == code) found.push_back(at->car().cdr());
        if (!found.empty()) return found;
        switch (code) {
        case 6:
            return {m_machine.text("BYLAYER")};
        case 48:
            return {Value::real(1)};
        case 60:
        case 66:
        case 67:
            return {Value::integer(0)};
        case 62:
            return {Value::integer(256)};
        case 370:
            return {Value::integer(-1)};
        case 410:
            return {m_machine.text("Model")};
        default:
            return {};
        }
    }

private:
    Machine& m_machine;
    const OdDbEntity& m_entity;
    Value m_list;
    bool m_made = false;
};

enum class Relation {
    kAny,
    kEqual,
    kDifferent,
    kLess,
    kLessOrSame,
    kGreater,
    kGreaterOrSame,
    kBits,
    kAllBits
};

/// The comparison that an operator names; false for no operator.
bool relationOf(std::string_view name, Relation& relation) {
    constexpr std::pair<std::string_view, Relation> kRelations[] = {
        {"*", Relation::kAny},         {"=", Relation::kEqual},      {"!=", Relation::kDifferent},
        {"/=", Relation::kDifferent},  {"<>", Relation::kDifferent}, {"<", Relation::kLess},
        {"<=", Relation::kLessOrSame}, {">", Relation::kGreater},    {">=", Relation::kGreaterOrSame},
        {"&", Relation::kBits},        {"&=", Relation::kAllBits},
    };
    for (const auto& [text, meaning] : kRelations) {
        if (text != name) continue;
        relation = meaning;
        return true;
    }
    return false;
}

bool holds(Relation relation, double found, double wanted) {
    const auto bits = [](double number) { return static_cast<long long>(std::clamp(number, -1e15, 1e15)); };
    switch (relation) {
    case Relation::kAny:
        return true;
    case Relation::kEqual:
        return found == wanted;
    case Relation::kDifferent:
        return found != wanted;
    case Relation::kLess:
        return found < wanted;
    case Relation::kLessOrSame:
        return found <= wanted;
    case Relation::kGreater:
        return found > wanted;
    case Relation::kGreaterOrSame:
        return found >= wanted;
    case Relation::kBits:
        return (bits(found) & bits(wanted)) != 0;
    case Relation::kAllBits:
        return (bits(found) & bits(wanted)) == bits(wanted);
    }
    return false;
}

} // namespace

/// A test of a filter: a group, or others joined by an operator.
struct SelectionFilter::Test {
    enum Kind { kGroup, kXData, kAll, kAny, kOne, kNone };
    Kind kind = kAll;
    int code = 0;
    Value wanted;
    OdString pattern; ///< of texts
    std::vector<Relation> relations;
    std::vector<std::unique_ptr<Test>> parts;

    bool fits(Candidate& candidate) const;
    bool groupFits(Candidate& candidate) const;
    bool valueFits(const Value& found) const;
    bool xdataFits(const OdDbEntity& entity) const;
};

bool SelectionFilter::Test::fits(Candidate& candidate) const {
    std::size_t fitting = 0;
    switch (kind) {
    case kGroup:
        return groupFits(candidate);
    case kXData:
        return xdataFits(candidate.entity());
    default:
        break;
    }
    for (const auto& part : parts) {
        const bool fit = part->fits(candidate);
        fitting += fit ? 1 : 0;
        if (kind == kAll && !fit) return false;
        if (kind == kAny && fit) return true;
    }
    if (kind == kOne) return fitting == 1;
    return kind == kAll || (kind == kNone && fitting == 0);
}

bool SelectionFilter::Test::groupFits(Candidate& candidate) const {
    // The two groups that nearly every filter asks for need no list.
    if (code == 0) return odutWcMatch(candidate.entity().dxfName(), pattern);
    if (code == 8) return odutWcMatch(candidate.entity().layer(), pattern);
    for (const Value& found : candidate.values(code))
        if (valueFits(found)) return true;
    return false;
}

bool SelectionFilter::Test::valueFits(const Value& found) const {
    if (wanted.isText()) return found.isText() && odutWcMatch(OdString(WideView(found.text())), pattern);
    const auto relation = [this](std::size_t index) {
        if (relations.empty()) return Relation::kEqual;
        return index < relations.size() ? relations[index]
               : relations.size() == 1  ? relations[0]
                                        : Relation::kAny;
    };
    if (wanted.isNumber()) return found.isNumber() && holds(relation(0), found.number(), wanted.number());
    const std::optional<Point> p = pointOf(found), q = pointOf(wanted);
    if (p && q)
        return holds(relation(0), p->x, q->x) && holds(relation(1), p->y, q->y) &&
               (q->flat || p->flat || holds(relation(2), p->z, q->z));
    return sameValue(found, wanted);
}

bool SelectionFilter::Test::xdataFits(const OdDbEntity& entity) const {
    const OdSmartPtr<OdResBuf> chain = entity.xData();
    for (const OdResBuf* at = chain.get(); at != nullptr; at = at->next().get())
        if (at->restype() == 1001 && odutWcMatch(at->getString(), pattern)) return true;
    return false;
}

namespace {

using Test = SelectionFilter::Test;

/// Reads the list of a filter.
class FilterReader {
public:
    FilterReader(Machine& machine, const Value& list) : m_machine(machine), m_list(list), m_at(&list) {}

    std::unique_ptr<Test> read() {
        auto all = std::make_unique<Test>();
        readUntil(*all, "");
        return all;
    }

private:
    [[noreturn]] void bad() { m_machine.fail("bad selection filter", m_list); }

    void readUntil(Test& into, const std::string& end) {
        m_machine.checkStack();
        for (; m_at->isCons();) {
            m_machine.tick();
            const Value& entry = m_at->car();
            if (!entry.isCons() || !entry.car().isInteger()) bad();
            m_at = &m_at->cdr();
            if (entry.car().integer() != -4) {
                into.parts.push_back(group(entry, {}));
                continue;
            }
            if (!entry.cdr().isText()) bad();
            std::string name;
            for (const WideChar unit : entry.cdr().text()) name += static_cast<char>(system::toUpper(unit));
            if (!end.empty() && name == end) return;
            into.parts.push_back(operation(name));
        }
        if (!end.empty()) bad();
    }

    std::unique_ptr<Test> operation(const std::string& name) {
        constexpr std::pair<std::string_view, Test::Kind> kOperators[] = {
            {"AND", Test::kAll}, {"OR", Test::kAny}, {"XOR", Test::kOne}, {"NOT", Test::kNone}};
        for (const auto& [word, kind] : kOperators) {
            if (name != "<" + std::string(word)) continue;
            auto test = std::make_unique<Test>();
            test->kind = kind;
            readUntil(*test, std::string(word) + ">");
            return test;
        }
        std::vector<Relation> relations;
        for (std::size_t from = 0; from <= name.size();) {
            const std::size_t comma = std::min(name.find(',', from), name.size());
            Relation relation = Relation::kAny;
            if (!relationOf(std::string_view(name).substr(from, comma - from), relation)) bad();
            relations.push_back(relation);
            from = comma + 1;
        }
        if (!m_at->isCons() || !m_at->car().isCons() || !m_at->car().car().isInteger()) bad();
        const Value& entry = m_at->car();
        m_at = &m_at->cdr();
        return group(entry, std::move(relations));
    }

    std::unique_ptr<Test> group(const Value& entry, std::vector<Relation> relations) {
        auto test = std::make_unique<Test>();
        test->kind = Test::kGroup;
        test->code = entry.car().integer();
        test->wanted = entry.cdr();
        test->relations = std::move(relations);
        if (test->code == -3) {
            test->kind = Test::kXData;
            const Value* name = &entry.cdr();
            while (name->isCons()) name = &name->car();
            if (!name->isText()) bad();
            test->pattern = OdString(WideView(name->text()));
        } else if (test->wanted.isText()) {
            // Types of entities are in capitals, however a program writes them.
            WideString pattern = test->wanted.text();
            if (test->code == 0)
                for (WideChar& unit : pattern) unit = system::toUpper(unit);
            test->pattern = OdString(WideView(pattern));
        } else if (test->code == 0 || test->code == 8) {
            bad();
        }
        return test;
    }

    Machine& m_machine;
    const Value& m_list;
    const Value* m_at;
};

} // namespace

SelectionFilter::SelectionFilter(Machine& machine, const Value& list)
    : m_machine(machine), m_test(FilterReader(machine, list).read()) {}

SelectionFilter::~SelectionFilter() = default;

bool SelectionFilter::fits(const OdDbEntity& entity) const {
    Candidate candidate(m_machine, entity);
    return m_test->fits(candidate);
}

} // namespace lm::host::lisp
