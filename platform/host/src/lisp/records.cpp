// SPDX-License-Identifier: MIT
#include "records.h"

#include "entityname.h"
#include "points.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace lm::host::lisp {

namespace {

constexpr short kFirstRecordCode = 5000; ///< smaller codes are group codes of drawings

bool inRange(short code, short first, short last) {
    return code >= first && code <= last;
}

bool isRealCode(short code) {
    return inRange(code, 38, 59) || inRange(code, 140, 149) || inRange(code, 460, 469) ||
           inRange(code, 1040, 1042);
}

bool isPointCode(short code) {
    return inRange(code, 10, 18) || code == 210 || inRange(code, 110, 112) || inRange(code, 1010, 1013);
}

bool isLongCode(short code) {
    return inRange(code, 90, 99) || inRange(code, 420, 429) || inRange(code, 440, 459) || code == 1071;
}

} // namespace

hst_resbufW& ChainBuilder::add(short restype) {
    // Records aren't the heap's, but a chain may not be larger than what values may take. A short one is
    // always allowed, so that a full session can be read.
    constexpr std::size_t kBytesEach = 64, kShort = 1024;
    m_machine.tick();
    if (++m_records % kShort == 0) m_machine.heap().expect(m_records * kBytesEach);
    *m_end = newRecord(restype);
    hst_resbufW& record = **m_end;
    m_end = &record.rbnext;
    return record;
}

void ChainBuilder::addText(WideView text) {
    hst_resbufW& record = add(RTSTR);
    const std::size_t bytes = text.size() * sizeof(WideChar);
    record.value.text = static_cast<unsigned short*>(std::malloc(bytes + sizeof(WideChar)));
    if (record.value.text == nullptr) throw std::bad_alloc();
    if (bytes != 0) std::memcpy(record.value.text, text.data(), bytes);
    record.value.text[text.size()] = 0;
}

void ChainBuilder::addValue(const Value& value) {
    switch (value.type()) {
    case Type::kInteger:
        if (value.integer() >= INT16_MIN && value.integer() <= INT16_MAX)
            add(RTSHORT).value.int16 = static_cast<short>(value.integer());
        else
            add(RTLONG).value.int32 = value.integer();
        break;
    case Type::kReal:
        add(RTREAL).value.real = value.real();
        break;
    case Type::kText:
        addText(value.text());
        break;
    case Type::kSymbol:
        if (value.symbol() == m_machine.truthSymbol())
            add(RTT);
        else
            addText(value.symbol()->name);
        break;
    case Type::kCons:
        addList(value);
        break;
    case Type::kForeign:
        addForeign(value);
        break;
    default:
        add(RTNIL);
        break;
    }
}

void ChainBuilder::addList(const Value& list) {
    m_machine.checkStack();
    add(RTLB);
    const Value* at = &list;
    for (; at->isCons(); at = &at->cdr()) addValue(at->car());
    if (!at->isNil()) {
        add(RTDOTE);
        addValue(*at);
    }
    add(RTLE);
}

void ChainBuilder::addForeign(const Value& value) {
    const auto addName = [this](OdDbObjectId id) {
        unsigned long long words[2];
        if (m_machine.api().GetADSName(id, words) != RTNORM) {
            add(RTNIL);
            return;
        }
        hst_resbufW& record = add(RTENAME);
        record.value.name[0] = words[0];
        record.value.name[1] = words[1];
    };
    if (const EntityName* name = foreignOf<EntityName>(value)) {
        addName(name->id());
    } else if (const SelectionSet* set = foreignOf<SelectionSet>(value)) {
        add(RTLB);
        for (const OdDbObjectId id : set->ids()) addName(id);
        add(RTLE);
    } else {
        add(RTNIL);
    }
}

void ChainBuilder::addCommandArgument(const Value& value) {
    if (const std::optional<Point> point = pointOf(value)) {
        hst_resbufW& record = add(RTPOINT);
        record.value.point[0] = point->x;
        record.value.point[1] = point->y;
        record.value.point[2] = point->z;
    } else {
        addValue(value);
    }
}

namespace {

/// Builds the value of a chain with a stack of its own, so that no chain is too deep.
class ChainReader {
public:
    explicit ChainReader(Machine& machine) : m_machine(machine) { m_open.emplace_back(machine.heap()); }

    Value read(const hst_resbufW* chain) {
        std::size_t elements = 0;
        for (const hst_resbufW* at = chain; at != nullptr; at = at->rbnext) {
            m_machine.tick();
            if (at->restype == RTLB) {
                m_open.emplace_back(m_machine.heap());
            } else if (at->restype == RTDOTE) {
                if (m_open.size() == 1 || m_open.back().elements.isEmpty() || m_open.back().dotted) bad();
                m_open.back().dotted = true;
            } else if (at->restype == RTLE) {
                closeList();
            } else {
                add(elementOf(*at));
            }
            if (m_open.size() == 1 && at->restype != RTLB) ++elements;
        }
        if (m_open.size() != 1) bad();
        Value all = m_open.back().elements.take();
        return elements == 1 ? Value(all.car()) : all;
    }

private:
    struct Open {
        explicit Open(Heap& heap) : elements(heap) {}
        ListBuilder elements;
        bool dotted = false;
        bool hasTail = false;
        Value tail;
    };

    [[noreturn]] static void bad() { Machine::fail("record chain with lists that don't close"); }

    void add(Value value) {
        Open& open = m_open.back();
        if (!open.dotted) {
            open.elements.add(std::move(value));
            return;
        }
        if (open.hasTail) bad();
        open.hasTail = true;
        open.tail = std::move(value);
    }

    void closeList() {
        if (m_open.size() == 1) bad();
        Open& open = m_open.back();
        if (open.dotted && !open.hasTail) bad();
        Value list = open.elements.takeWithTail(std::move(open.tail));
        m_open.pop_back();
        add(std::move(list));
    }

    Value textOf(const unsigned short* text) {
        return m_machine.text(WideView(text, system::wideLength(text)));
    }

    Value pointValue(const double (&parts)[3]) {
        return m_machine.list(Value::real(parts[0]), Value::real(parts[1]), Value::real(parts[2]));
    }

    Value elementOf(const hst_resbufW& record) {
        switch (record.restype) {
        case RTREAL:
            return Value::real(record.value.real);
        case RTPOINT:
            return pointValue(record.value.point);
        case RTSHORT:
            return Value::integer(record.value.int16);
        case RTLONG:
            return Value::integer(record.value.int32);
        case RTSTR:
            return textOf(record.value.text);
        case RTENAME: {
            OdDbObjectId id;
            if (m_machine.api().GetObjectId(record.value.name, id) != RTNORM) return Value();
            return m_machine.heap().foreign<EntityName>(id);
        }
        case RTT:
            return m_machine.truth();
        default:
            break;
        }
        if (record.restype >= kFirstRecordCode) return Value();
        return m_machine.heap().cons(Value::integer(record.restype), groupValue(record));
    }

    /// The value of a record with a group code.
    Value groupValue(const hst_resbufW& record) {
        const short code = record.restype;
        if (isTextCode(code)) return textOf(record.value.text);
        if (isPointCode(code)) return pointValue(record.value.point);
        if (isRealCode(code)) return Value::real(record.value.real);
        if (isLongCode(code)) return Value::integer(record.value.int32);
        return Value::integer(record.value.int16);
    }

    Machine& m_machine;
    std::vector<Open> m_open;
};

} // namespace

Value valueOfChain(Machine& machine, const hst_resbufW* chain) {
    return chain == nullptr ? Value() : ChainReader(machine).read(chain);
}

Value Machine::callRegistered(const Symbol& name, Arguments arguments) {
    ChainBuilder call(*this);
    call.addText(name.name);
    for (const Value& argument : arguments) call.addValue(argument);
    hst_resbufW* result = nullptr;
    m_api.invoke(call.head(), result);
    struct Release {
        hst_resbufW* chain;
        ~Release() { releaseChain(chain); }
    } const release{result};
    return valueOfChain(*this, result);
}

} // namespace lm::host::lisp
