// SPDX-License-Identifier: MIT
// Values of the LISP session: small immediate ones and counted references to what lies on the session's heap.
//
// A list never changes after it was built, a function holds no environment, and symbols belong to the session
// and not to values. So values form no cycles, and the counts alone say exactly when memory goes.
#pragma once

#include "system/wide.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace lm::host::lisp {

class Heap;
struct Builtin;
struct Cons;
struct Foreign;
struct Function;
struct Symbol;
struct Text;

enum class Type : std::uint8_t {
    kUnbound, ///< only ever the value of a symbol that nothing was stored in
    kNil,
    kInteger,
    kReal,
    kSymbol,
    kBuiltin,
    kText, ///< from here on counted
    kCons,
    kFunction,
    kForeign
};

/// What lies on the heap. The count begins with the value that its maker hands out.
struct Object {
    Object(Type kind, Heap& owner) noexcept : count(1), type(kind), heap(&owner) {}
    std::uint32_t count;
    Type type;
    union {
        Heap* heap;
        Object* nextDead; ///< while objects wait for their release
    };
};

/// A value. Copying one costs at most a count; nothing is copied behind it.
class Value {
public:
    Value() noexcept : m_type(Type::kNil) { m_data.object = nullptr; }
    Value(const Value& other) noexcept : m_data(other.m_data), m_type(other.m_type) { hold(); }
    Value(Value&& other) noexcept : m_data(other.m_data), m_type(std::exchange(other.m_type, Type::kNil)) {}
    ~Value() { drop(); }
    Value& operator=(const Value& other) noexcept {
        Value(other).swap(*this);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        Value(static_cast<Value&&>(other)).swap(*this);
        return *this;
    }
    void swap(Value& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_type, other.m_type);
    }

    static Value integer(std::int32_t number) noexcept {
        Value value(Type::kInteger);
        value.m_data.integer = number;
        return value;
    }
    static Value real(double number) noexcept {
        Value value(Type::kReal);
        value.m_data.real = number;
        return value;
    }
    static Value of(Symbol* symbol) noexcept {
        Value value(Type::kSymbol);
        value.m_data.symbol = symbol;
        return value;
    }
    static Value of(const Builtin* builtin) noexcept {
        Value value(Type::kBuiltin);
        value.m_data.builtin = builtin;
        return value;
    }
    static Value unbound() noexcept { return Value(Type::kUnbound); }
    /// Takes over the count that the maker of the object holds.
    static Value adopt(Object* object) noexcept {
        Value value(object->type);
        value.m_data.object = object;
        return value;
    }

    Type type() const noexcept { return m_type; }
    bool isNil() const noexcept { return m_type == Type::kNil; }
    explicit operator bool() const noexcept { return m_type != Type::kNil; }
    bool isUnbound() const noexcept { return m_type == Type::kUnbound; }
    bool isInteger() const noexcept { return m_type == Type::kInteger; }
    bool isReal() const noexcept { return m_type == Type::kReal; }
    bool isNumber() const noexcept { return isInteger() || isReal(); }
    bool isSymbol() const noexcept { return m_type == Type::kSymbol; }
    bool isBuiltin() const noexcept { return m_type == Type::kBuiltin; }
    bool isText() const noexcept { return m_type == Type::kText; }
    bool isCons() const noexcept { return m_type == Type::kCons; }
    bool isFunction() const noexcept { return m_type == Type::kFunction; }
    bool isForeign() const noexcept { return m_type == Type::kForeign; }
    bool isList() const noexcept { return isNil() || isCons(); }

    // Each of these stands for a value of its type only.
    std::int32_t integer() const noexcept { return m_data.integer; }
    double real() const noexcept { return m_data.real; }
    double number() const noexcept { return isInteger() ? m_data.integer : m_data.real; }
    Symbol* symbol() const noexcept { return m_data.symbol; }
    const Builtin* builtin() const noexcept { return m_data.builtin; }
    Object* object() const noexcept { return m_data.object; }
    const Cons* cons() const noexcept;
    const Value& car() const noexcept;
    const Value& cdr() const noexcept;
    const WideString& text() const noexcept;
    const Function* function() const noexcept;
    Foreign* foreign() const noexcept;

    /// Gives the object to the caller with its count; the value is nil then.
    Object* detach() noexcept {
        m_type = Type::kNil;
        return m_data.object;
    }
    bool isCounted() const noexcept { return m_type >= Type::kText; }

private:
    explicit Value(Type type) noexcept : m_type(type) { m_data.object = nullptr; }
    void hold() const noexcept {
        if (isCounted()) ++m_data.object->count;
    }
    void drop() noexcept {
        if (isCounted() && --m_data.object->count == 0) destroy(m_data.object);
    }
    static void destroy(Object* object) noexcept;

    union {
        std::int32_t integer;
        double real;
        Symbol* symbol;
        const Builtin* builtin;
        Object* object;
    } m_data;
    Type m_type;
};

/// A name of the session with its value. Symbols live as long as the session.
struct Symbol {
    explicit Symbol(WideView text) : name(text) {}
    WideString name;
    Value value = Value::unbound();
};

/// A link of a list. Only ListBuilder (listbuilder.h) writes the second half, and only before anybody sees
/// the link.
struct Cons : Object {
    Cons(Heap& owner, Value first, Value second) noexcept
        : Object(Type::kCons, owner), car(std::move(first)), cdr(std::move(second)) {}
    Value car;
    Value cdr;
};

struct Text : Object {
    Text(Heap& owner, WideString text) noexcept : Object(Type::kText, owner), units(std::move(text)) {}
    WideString units;
};

/// A function of the program: names of its arguments and of its further locals, and its expressions.
struct Function : Object {
    explicit Function(Heap& owner) noexcept : Object(Type::kFunction, owner) {}
    Symbol* name = nullptr; ///< null for a function without one
    std::vector<Symbol*> variables;
    std::size_t arguments = 0; ///< so many of the variables are arguments
    Value body;
};

/// What kinds of values the host adds.
enum class ForeignKind : std::uint8_t { kFile, kCaughtError, kEntityName, kSelectionSet };

/// A value of the host. It holds no values itself.
struct Foreign : Object {
    Foreign(ForeignKind which, Heap& owner) noexcept : Object(Type::kForeign, owner), kind(which) {}
    virtual ~Foreign() = default;
    /// As it is printed.
    virtual WideString printed() const = 0;
    /// The name that the function `type` gives.
    virtual const char* typeName() const = 0;
    /// Whether another value of the same kind names the same thing.
    virtual bool sameAs(const Foreign& other) const { return this == &other; }
    /// Bytes that the heap counts for it.
    virtual std::size_t bytes() const = 0;
    const ForeignKind kind;
};

/// The host's value of a kind, or null for anything else.
template<class T>
T* foreignOf(const Value& value) noexcept {
    if (!value.isForeign() || value.foreign()->kind != T::kKind) return nullptr;
    return static_cast<T*>(value.foreign());
}

/// Makes objects and counts their memory before it takes it.
class Heap {
public:
    Heap() = default;
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    Value cons(Value car, Value cdr) {
        charge(sizeof(Cons));
        return Value::adopt(new Cons(*this, std::move(car), std::move(cdr)));
    }
    Value text(WideString units);
    Value function(Symbol* name, std::vector<Symbol*> variables, std::size_t arguments, Value body);
    /// Makes a value of the host; further arguments go to its constructor.
    template<class T, class... Arguments>
    Value foreign(Arguments&&... arguments) {
        expect(sizeof(T));
        T* made = new T(*this, std::forward<Arguments>(arguments)...);
        m_used += made->bytes();
        return Value::adopt(made);
    }

    /// Counts memory that is about to be taken. Raises LispError when the ceiling doesn't allow it.
    void charge(std::size_t bytes) {
        if (bytes > m_ceiling || m_used > m_ceiling - bytes) exhausted();
        m_used += bytes;
    }
    /// Raises as charge does, without counting: for work whose result is counted afterwards.
    void expect(std::size_t bytes) const {
        if (bytes > m_ceiling || m_used > m_ceiling - bytes) exhausted();
    }
    void discharge(std::size_t bytes) noexcept { m_used -= bytes; }
    std::size_t used() const noexcept { return m_used; }
    std::size_t ceiling() const noexcept { return m_ceiling; }
    void setCeiling(std::size_t bytes) noexcept { m_ceiling = bytes; }

private:
    [[noreturn]] static void exhausted();
    std::size_t m_used = 0;
    std::size_t m_ceiling = SIZE_MAX;
};

inline const Cons* Value::cons() const noexcept {
    return static_cast<const Cons*>(m_data.object);
}
inline const Value& Value::car() const noexcept {
    return cons()->car;
}
inline const Value& Value::cdr() const noexcept {
    return cons()->cdr;
}
inline const WideString& Value::text() const noexcept {
    return static_cast<const Text*>(m_data.object)->units;
}
inline const Function* Value::function() const noexcept {
    return static_cast<const Function*>(m_data.object);
}
inline Foreign* Value::foreign() const noexcept {
    return static_cast<Foreign*>(m_data.object);
}

} // namespace lm::host::lisp
