// SPDX-License-Identifier: MIT
#include "host/lisp.h"

#include "hoststate.h"
#include "machine.h"
#include "printer.h"
#include "records.h"

#include <algorithm>

namespace lm::host {

namespace {

using lisp::LispError;
using lisp::Machine;
using lisp::Symbol;
using lisp::Type;

/// The one line of an error: what failed, and where.
WideString errorLine(const LispError& error) {
    WideString line = system::widen("error: ") + error.message + system::widen(" (");
    if (!error.source.empty()) line += error.source + system::widen(", ");
    line += system::widen("line " + std::to_string(error.line) + ", column " + std::to_string(error.column) +
                          ")");
    for (WideChar& unit : line)
        if (unit < ' ' || unit == 127) unit = ' ';
    return line;
}

WideString commandFunction(WideView name) {
    WideString function = system::widen("C:");
    for (const WideChar unit : name) function += system::toUpper(unit);
    return function;
}

} // namespace

LispSession::LispSession(CHostAPI& api) : m_machine(std::make_unique<Machine>(api)) {}

LispSession::~LispSession() = default;

LispOutcome LispSession::evaluate(WideView text) {
    LispOutcome outcome;
    const Machine::Evaluation evaluation(*m_machine);
    try {
        outcome.value = lisp::printed(*m_machine, m_machine->evalText(text), lisp::Style::kPrin1);
    } catch (LispError& error) {
        m_machine->tellErrorFunction(error);
        outcome.ok = false;
        outcome.line = std::max(error.line, 1);
        outcome.column = std::max(error.column, 1);
        error.line = outcome.line;
        error.column = outcome.column;
        outcome.error = errorLine(error);
    }
    return outcome;
}

bool LispSession::hasCommand(WideView name) const {
    const Symbol* symbol = m_machine->find(commandFunction(name));
    return symbol != nullptr && (symbol->value.isFunction() || symbol->value.isCons());
}

LispOutcome LispSession::runCommand(WideView name) {
    return evaluate(system::widen("(") + commandFunction(name) + system::widen(")"));
}

int LispSession::depth() const noexcept {
    return m_machine->depth();
}

int LispSession::read(WideView name, hst_resbufW*& result) {
    result = nullptr;
    const Symbol* symbol = m_machine->find(name);
    if (symbol == nullptr) return RTERROR;
    switch (symbol->value.type()) {
    case Type::kUnbound:
    case Type::kBuiltin:
    case Type::kFunction:
        return RTERROR;
    default:
        break;
    }
    lisp::ChainBuilder chain(*m_machine);
    if (!symbol->value.isCounted()) {
        // Numbers, nil and symbols need no limits.
        chain.addValue(symbol->value);
    } else {
        const Machine::Evaluation evaluation(*m_machine);
        try {
            chain.addValue(symbol->value);
        } catch (const LispError&) {
            return RTERROR;
        }
    }
    result = chain.take();
    return RTNORM;
}

int LispSession::store(WideView name, const hst_resbufW* list) {
    if (name.empty() || system::wideEquals(name, system::widen("T")) ||
        system::wideEquals(name, system::widen("NIL")))
        return RTERROR;
    const Machine::Evaluation evaluation(*m_machine);
    try {
        lisp::Value value = lisp::valueOfChain(*m_machine, list);
        m_machine->assign(m_machine->intern(name), std::move(value));
    } catch (const LispError&) {
        return RTERROR;
    }
    return RTNORM;
}

void LispSession::setTimeLimit(double seconds) noexcept {
    m_machine->setTimeLimit(seconds);
}

void LispSession::setMemoryCeiling(std::size_t bytes) noexcept {
    m_machine->setMemoryCeiling(bytes);
}

std::size_t LispSession::memoryInUse() const noexcept {
    return m_machine->heap().used();
}

void LispSession::interrupt() noexcept {
    m_machine->interrupt();
}

TextSink LispSession::setOutput(TextSink sink) {
    return m_machine->setOutput(std::move(sink));
}

void LispSession::pushAnswer(WideView text) {
    m_machine->host().answers.emplace_back(text);
}

void LispSession::clearAnswers() {
    m_machine->host().answers.clear();
}

std::size_t LispSession::answersLeft() const noexcept {
    return m_machine->host().answers.size();
}

CommandHook LispSession::setCommandHook(CommandHook hook) {
    return std::exchange(m_machine->host().command, std::move(hook));
}

void LispSession::setFilesAllowed(bool allowed) noexcept {
    m_machine->host().filesAllowed = allowed;
}

std::vector<std::string> LispSession::functionNames() const {
    std::vector<std::string> names;
    for (const lisp::Builtin* builtin : m_machine->builtins()) names.emplace_back(builtin->name);
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lm::host
