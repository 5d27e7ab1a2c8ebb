// SPDX-License-Identifier: MIT
// The machine of a LISP session: its symbols, its heap, evaluation and its limits. Dynamic scope: a function
// sees the variables of whoever called it, and a binding is undone by a destructor.
//
// Every walk that recurses asks checkStack, every loop and every entry into a function asks tick. So endless
// loops, endless recursion and endless growth all end in a LispError.
#pragma once

#include "argumentstack.h"
#include "error.h"
#include "listbuilder.h"
#include "native.h"

#include "host/functions.h"
#include "host/session.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace lm::host::lisp {

struct HostState;

class Machine {
public:
    explicit Machine(CHostAPI& api);
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    // Symbols and values.
    Heap& heap() noexcept { return m_heap; }
    /// The symbol of a name, made when it is new. The spelling counts.
    Symbol* intern(WideView name);
    Symbol* intern(std::string_view ascii) { return intern(WideView(system::widen(ascii))); }
    /// The symbol of a name, or null.
    Symbol* find(WideView name) const noexcept;
    template<class Use>
    void forEachSymbol(Use use) const {
        for (const auto& entry : m_symbols) use(*entry.second);
    }
    /// Enters functions of the host as values of the symbols of their names. Of two of one name the later
    /// counts.
    void add(std::span<const Builtin> rows);
    /// Rows that were entered.
    const std::vector<const Builtin*>& builtins() const noexcept { return m_builtins; }
    Value truth() const noexcept { return Value::of(m_truth); }
    Value boolean(bool value) const noexcept { return value ? truth() : Value(); }
    /// What (princ) gives: a symbol that prints as nothing.
    Value quiet() const noexcept { return Value::of(m_quiet); }
    Symbol* truthSymbol() const noexcept { return m_truth; }
    Value text(WideString units) { return m_heap.text(std::move(units)); }
    /// Text up to its first 0 unit from an OdString and the like.
    Value text(WideView units) { return m_heap.text(WideString(units)); }
    Value text(std::string_view ascii) { return m_heap.text(system::widen(ascii)); }
    /// An integer, or a real when it doesn't fit 32 bits.
    static Value integerOrReal(long long number) noexcept;
    template<class... Elements>
    Value list(Elements&&... elements) {
        ListBuilder builder(m_heap);
        (builder.add(std::forward<Elements>(elements)), ...);
        return builder.take();
    }

    // Evaluation.
    Value eval(const Value& form) {
        if (form.isSymbol()) return form.symbol()->value.isUnbound() ? Value() : form.symbol()->value;
        if (form.isCons()) return evalCall(form);
        return form;
    }
    /// Evaluates the expressions of a list in order and gives the value of the last, nil for none.
    Value evalBody(const Value& expressions);
    /// Calls what stands for a function (a function, a symbol, a lambda list) with arguments as they are.
    Value apply(const Value& function, Arguments arguments);
    /// What `apply` calls, found once for many calls. Raises LispError for what is no function.
    Value resolveFunction(const Value& function);
    /// A function of the program from (arguments... / locals...) and its expressions.
    Value makeFunction(Symbol* name, const Value& variables, const Value& body);
    /// Reads and evaluates all expressions of a text; the value of the last. Errors get the place of the
    /// expression, in the file `source` when it isn't empty.
    Value evalText(WideView text, const WideString& source = WideString());
    /// Stores a value in a symbol. Raises LispError for T.
    void assign(Symbol* symbol, Value value);
    /// Tells `*error*` of an error unless that happened or somebody catches it.
    void tellErrorFunction(LispError& error);

    // Limits.
    /// Counts one step of work. Raises LispError when time is up or somebody interrupted.
    void tick() {
        if (--m_ticks <= 0) checkLimits();
    }
    /// Counts the steps of a walk over `count` units.
    void tick(std::size_t count) {
        constexpr std::size_t kUnitsPerStep = 64;
        m_ticks -= static_cast<long>(count / kUnitsPerStep) + 1;
        if (m_ticks <= 0) checkLimits();
    }
    /// Raises LispError when the stack is nearly used up.
    void checkStack() const {
        if (static_cast<char*>(__builtin_frame_address(0)) < m_stackLimit) stackUsedUp();
    }
    /// Takes the stack of the current thread as the one to watch.
    void enterThread() noexcept;
    void setTimeLimit(double seconds) noexcept { m_seconds = seconds; }
    double timeLimit() const noexcept { return m_seconds; }
    void setMemoryCeiling(std::size_t bytes) noexcept { m_ceiling = bytes; }
    std::size_t memoryCeiling() const noexcept { return m_ceiling; }
    /// Ends the evaluation in progress. May be called on any thread.
    void interrupt() noexcept { m_interrupts.fetch_add(1, std::memory_order_relaxed); }
    /// Evaluations in progress, each in the other.
    int depth() const noexcept { return m_depth; }

    /// An evaluation in progress; the outermost sets the limits.
    class Evaluation {
    public:
        explicit Evaluation(Machine& machine);
        ~Evaluation() {
            if (--m_machine.m_depth == 0) m_machine.m_hasDeadline = false;
            m_machine.m_catching = m_catching;
        }
        Evaluation(const Evaluation&) = delete;
        Evaluation& operator=(const Evaluation&) = delete;

    private:
        Machine& m_machine;
        int m_catching; // an evaluation inside another ends its own errors
    };

    /// While it lives, errors are caught by the program and `*error*` isn't told.
    class Catching {
    public:
        explicit Catching(Machine& machine) noexcept : m_machine(machine) { ++m_machine.m_catching; }
        ~Catching() { --m_machine.m_catching; }
        Catching(const Catching&) = delete;
        Catching& operator=(const Catching&) = delete;

    private:
        Machine& m_machine;
    };

    /// Arguments for a call: `count` values, all nil.
    class Frame : public ArgumentStack::Frame {
    public:
        Frame(Machine& machine, std::size_t count) : ArgumentStack::Frame(machine.m_stack, count) {}
    };

    // What functions ask of their arguments. Each raises LispError, naming what was wanted and what came.
    int integerAt(Arguments arguments, std::size_t index);
    double numberAt(Arguments arguments, std::size_t index);
    const WideString& textAt(Arguments arguments, std::size_t index);
    const Value& listAt(Arguments arguments, std::size_t index);
    Symbol* symbolAt(Arguments arguments, std::size_t index);
    [[noreturn]] void failType(std::string_view wanted, const Value& found);
    [[noreturn]] static void fail(std::string_view message);
    [[noreturn]] void fail(std::string_view message, const Value& about);
    /// Number of elements; raises LispError for a list that ends in a dot.
    std::size_t lengthOf(const Value& list);

    // The world outside.
    void write(WideView text);
    TextSink setOutput(TextSink sink);
    CHostAPI& api() const noexcept { return m_api; }
    HostState& host() noexcept { return *m_host; }

private:
    struct ViewHash {
        std::size_t operator()(WideView text) const noexcept {
            return std::hash<std::string_view>{}(
                {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(WideChar)});
        }
    };
    struct ViewSame {
        bool operator()(WideView a, WideView b) const noexcept { return system::wideEquals(a, b); }
    };

    Value evalCall(const Value& form);
    Value evalOtherCall(const Value& form);
    Value callBuiltin(const Builtin& builtin, const Value& arguments);
    Value callFunction(const Value& function, const Value& arguments);
    Value runFunction(const Function& function, Frame& frame);
    Value applyForm(const Builtin& builtin, Arguments arguments);
    Value callRegistered(const Symbol& name, Arguments arguments);
    std::size_t countArguments(const Value& arguments);
    void evalArguments(const Value& arguments, Frame& frame);
    static void checkCount(const Builtin& builtin, std::size_t count);
    void checkLimits();
    [[noreturn]] static void stackUsedUp();
    bool hasRoomForErrorFunction() const noexcept;

    static constexpr long kTicksPerCheck = 1024;
    static constexpr std::size_t kDefaultCeiling = std::size_t{256} << 20;

    CHostAPI& m_api;
    Heap m_heap;
    std::unordered_map<WideView, std::unique_ptr<Symbol>, ViewHash, ViewSame> m_symbols;
    ArgumentStack m_stack{m_heap};
    std::vector<const Builtin*> m_builtins;
    Symbol* m_truth = nullptr;
    Symbol* m_quiet = nullptr;
    Symbol* m_quote = nullptr;
    Symbol* m_lambda = nullptr;
    Symbol* m_slash = nullptr;
    Symbol* m_error = nullptr;
    TextSink m_output;
    std::unique_ptr<HostState> m_host;

    long m_ticks = kTicksPerCheck;
    char* m_stackLimit = nullptr;
    int m_depth = 0;
    int m_catching = 0;
    bool m_inErrorFunction = false;
    double m_seconds = 0;
    bool m_hasDeadline = false;
    std::chrono::steady_clock::time_point m_deadline;
    std::size_t m_ceiling = kDefaultCeiling;
    std::atomic<unsigned> m_interrupts{0};
    unsigned m_interruptsSeen = 0;

    friend class Reader;
};

/// Whether two values are equal: numbers by value within `fuzz`, texts by units, lists by their elements.
bool equalValues(Machine& machine, const Value& a, const Value& b, double fuzz = 0);

/// Whether two values are the same thing; numbers and texts are compared by what they hold.
bool sameValue(const Value& a, const Value& b) noexcept;

} // namespace lm::host::lisp
