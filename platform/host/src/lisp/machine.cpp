// SPDX-License-Identifier: MIT
#include "machine.h"

#include "hoststate.h"
#include "printer.h"
#include "reader.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <pthread.h>

namespace lm::host::lisp {

namespace {

/// Where the stack of this thread may no longer be used; null until somebody asked.
thread_local char* threadStackLimit = nullptr;

// What is left below the limit belongs to functions of the host and to the way out.
char* findStackLimit() noexcept {
    constexpr std::size_t kReserve = 512 * 1024;
    constexpr std::size_t kUnknown = 2 * 1024 * 1024;
    char* here = static_cast<char*>(__builtin_frame_address(0));
    pthread_attr_t attributes;
    void* lowest = nullptr;
    std::size_t size = 0;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return here - kUnknown;
    const bool known = pthread_attr_getstack(&attributes, &lowest, &size) == 0 && size != 0;
    pthread_attr_destroy(&attributes);
    if (!known) return here - kUnknown;
    return static_cast<char*>(lowest) + std::min(kReserve, size / 4);
}

} // namespace

Machine::Machine(CHostAPI& api) : m_api(api), m_host(std::make_unique<HostState>()) {
    m_truth = intern("T");
    m_truth->value = Value::of(m_truth);
    m_quiet = intern("");
    m_quote = intern("QUOTE");
    m_lambda = intern("LAMBDA");
    m_slash = intern("/");
    m_error = intern("*ERROR*");
    for (const auto table :
         {specialForms(),        controlFunctions(),    catchFunctions(),      compareFunctions(),
          listFunctions(),       partFunctions(),       searchFunctions(),     sortFunctions(),
          arithmeticFunctions(), bitFunctions(),        geometryFunctions(),   unitFunctions(),
          textFunctions(),       textSearchFunctions(), outputFunctions(),     fileFunctions(),
          fileNameFunctions(),   settingFunctions(),    entityFunctions(),     entityMakers(),
          selectionFunctions(),  tableFunctions(),      dictionaryFunctions(), questionFunctions(),
          commandFunctions()})
        add(table);
    intern("PI")->value = Value::real(std::numbers::pi);
    intern("PAUSE")->value = text("\\");
}

Machine::~Machine() {
    // Values go before the heap that counts them.
    for (auto& entry : m_symbols) entry.second->value = Value::unbound();
}

Symbol* Machine::intern(WideView name) {
    if (Symbol* known = find(name)) return known;
    m_heap.charge(sizeof(Symbol) + name.size() * sizeof(WideChar));
    auto made = std::make_unique<Symbol>(name);
    Symbol* symbol = made.get();
    m_symbols.emplace(WideView(symbol->name), std::move(made));
    return symbol;
}

Symbol* Machine::find(WideView name) const noexcept {
    const auto found = m_symbols.find(name);
    return found == m_symbols.end() ? nullptr : found->second.get();
}

void Machine::add(std::span<const Builtin> rows) {
    for (const Builtin& row : rows) {
        intern(row.name)->value = Value::of(&row);
        m_builtins.push_back(&row);
    }
}

Value Machine::integerOrReal(long long number) noexcept {
    if (number < INT32_MIN || number > INT32_MAX) return Value::real(static_cast<double>(number));
    return Value::integer(static_cast<std::int32_t>(number));
}

Value Machine::evalBody(const Value& expressions) {
    Value last;
    const Value* at = &expressions;
    for (; at->isCons(); at = &at->cdr()) last = eval(at->car());
    return last;
}

Value Machine::evalCall(const Value& form) {
    checkStack();
    tick();
    const Value& head = form.car();
    if (head.isSymbol()) {
        const Value& value = head.symbol()->value;
        if (value.isBuiltin()) {
            const Builtin& builtin = *value.builtin();
            return builtin.form != nullptr ? builtin.form(*this, form.cdr())
                                           : callBuiltin(builtin, form.cdr());
        }
        if (value.isFunction()) return callFunction(value, form.cdr());
    }
    return evalOtherCall(form);
}

// Lambda expressions, lists that stand for functions, functions of the host's table, and what is no function.
Value Machine::evalOtherCall(const Value& form) {
    const Value& head = form.car();
    const Value function = resolveFunction(head.isCons() ? eval(head) : head);
    if (function.isFunction()) return callFunction(function, form.cdr());
    if (function.isBuiltin()) {
        const Builtin& builtin = *function.builtin();
        return builtin.form != nullptr ? builtin.form(*this, form.cdr()) : callBuiltin(builtin, form.cdr());
    }
    Frame frame(*this, countArguments(form.cdr()));
    evalArguments(form.cdr(), frame);
    return callRegistered(*function.symbol(), frame.values());
}

std::size_t Machine::countArguments(const Value& arguments) {
    std::size_t count = 0;
    const Value* at = &arguments;
    for (; at->isCons(); at = &at->cdr()) ++count;
    if (!at->isNil()) fail("malformed list", arguments);
    return count;
}

void Machine::evalArguments(const Value& arguments, Frame& frame) {
    std::size_t index = 0;
    for (const Value* at = &arguments; at->isCons(); at = &at->cdr()) frame[index++] = eval(at->car());
}

void Machine::checkCount(const Builtin& builtin, std::size_t count) {
    if (count < static_cast<std::size_t>(builtin.minimum))
        throw LispError(std::string("too few arguments: ") + builtin.name);
    if (builtin.maximum != kAny && count > static_cast<std::size_t>(builtin.maximum))
        throw LispError(std::string("too many arguments: ") + builtin.name);
}

Value Machine::callBuiltin(const Builtin& builtin, const Value& arguments) {
    const std::size_t count = countArguments(arguments);
    checkCount(builtin, count);
    Frame frame(*this, count);
    evalArguments(arguments, frame);
    return builtin.function(*this, frame.values());
}

Value Machine::callFunction(const Value& function, const Value& arguments) {
    const Value held(function); // the symbol may get another value while the function runs
    const Function& called = *held.function();
    const std::size_t count = countArguments(arguments);
    if (count < called.arguments) fail("too few arguments", function);
    if (count > called.arguments) fail("too many arguments", function);
    Frame frame(*this, called.variables.size());
    evalArguments(arguments, frame);
    return runFunction(called, frame);
}

// The frame holds the arguments and nil for each further local. They change places with what the symbols
// held, so that the frame keeps the old values until the function ends.
Value Machine::runFunction(const Function& function, Frame& frame) {
    struct Binding {
        const Function& function;
        Frame& frame;
        Binding(const Function& f, Frame& values) : function(f), frame(values) {
            for (std::size_t i = 0; i < frame.size(); ++i) frame[i].swap(function.variables[i]->value);
        }
        ~Binding() {
            // Backwards, since a name may stand twice.
            for (std::size_t i = frame.size(); i-- > 0;) frame[i].swap(function.variables[i]->value);
        }
    } const binding(function, frame);
    try {
        return evalBody(function.body);
    } catch (LispError& error) {
        tellErrorFunction(error); // while the function's locals still hold, its own `*error*` among them
        throw;
    }
}

Value Machine::apply(const Value& function, Arguments arguments) {
    checkStack();
    tick();
    const Value held = resolveFunction(function);
    if (held.isBuiltin()) {
        const Builtin& builtin = *held.builtin();
        if (builtin.form != nullptr) return applyForm(builtin, arguments);
        checkCount(builtin, arguments.size());
        return builtin.function(*this, arguments);
    }
    if (held.isSymbol()) return callRegistered(*held.symbol(), arguments);
    const Function& called = *held.function();
    if (arguments.size() < called.arguments) fail("too few arguments", held);
    if (arguments.size() > called.arguments) fail("too many arguments", held);
    Frame frame(*this, called.variables.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) frame[i] = arguments[i];
    return runFunction(called, frame);
}

// A form gets its arguments quoted, so that (apply 'and list) looks at the elements as they are.
Value Machine::applyForm(const Builtin& builtin, Arguments arguments) {
    ListBuilder rest(m_heap);
    for (const Value& argument : arguments) rest.add(list(Value::of(m_quote), argument));
    const Value held = rest.take();
    return builtin.form(*this, held);
}

Value Machine::resolveFunction(const Value& function) {
    const Value* value = &function;
    if (function.isSymbol()) {
        Symbol* symbol = function.symbol();
        value = &symbol->value;
        if (value->isUnbound() || value->isNil()) {
            if (hasFunction(CHostString(WideView(symbol->name)))) return function;
            fail("no function definition", function);
        }
    }
    if (value->isBuiltin() || value->isFunction()) return *value;
    if (value->isCons()) {
        const Value held(*value);
        if (held.car().isSymbol() && held.car().symbol() == m_lambda && held.cdr().isCons())
            return makeFunction(nullptr, held.cdr().car(), held.cdr().cdr());
        if (held.car().isList()) return makeFunction(nullptr, held.car(), held.cdr());
    }
    fail("bad function", *value);
}

Value Machine::makeFunction(Symbol* name, const Value& variables, const Value& body) {
    std::vector<Symbol*> symbols;
    std::size_t arguments = 0;
    bool locals = false;
    const Value* at = &variables;
    for (; at->isCons(); at = &at->cdr()) {
        const Value& variable = at->car();
        if (!variable.isSymbol() || variable.symbol() == m_truth) fail("bad argument list", variables);
        if (variable.symbol() == m_slash) {
            if (locals) fail("bad argument list", variables);
            locals = true;
            continue;
        }
        symbols.push_back(variable.symbol());
        if (!locals) ++arguments;
    }
    if (!at->isNil()) fail("bad argument list", variables);
    if (!body.isList()) fail("bad function body", body);
    return m_heap.function(name, std::move(symbols), arguments, body);
}

Value Machine::evalText(WideView text, const WideString& source) {
    Reader reader(*this, text);
    Value last;
    try {
        Value form;
        while (reader.next(form)) last = eval(form);
    } catch (LispError& error) {
        if (error.line == 0) {
            error.line = reader.line();
            error.column = reader.column();
        }
        if (error.source.empty()) error.source = source;
        throw;
    }
    return last;
}

void Machine::assign(Symbol* symbol, Value value) {
    if (symbol == m_truth) fail("symbol can't be changed: T");
    symbol->value = std::move(value);
}

void Machine::write(WideView text) {
    if (text.empty()) return;
    if (m_output)
        m_output(text);
    else
        writeConsole(text);
}

TextSink Machine::setOutput(TextSink sink) {
    return std::exchange(m_output, std::move(sink));
}

void Machine::enterThread() noexcept {
    if (threadStackLimit == nullptr) threadStackLimit = findStackLimit();
    m_stackLimit = threadStackLimit;
}

void Machine::stackUsedUp() {
    throw LispError("recursion too deep");
}

bool Machine::hasRoomForErrorFunction() const noexcept {
    constexpr std::ptrdiff_t kRoom = 256 * 1024;
    return static_cast<char*>(__builtin_frame_address(0)) - m_stackLimit > kRoom;
}

} // namespace lm::host::lisp
