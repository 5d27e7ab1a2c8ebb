// SPDX-License-Identifier: MIT
// Values as chains of records and back.
#pragma once

#include "machine.h"

#include "host/resbuf.h"

namespace lm::host::lisp {

/// A chain that is being built; it is released with the builder unless somebody takes it.
class ChainBuilder {
public:
    explicit ChainBuilder(Machine& machine) noexcept : m_machine(machine) {}
    ~ChainBuilder() { releaseChain(m_head); }
    ChainBuilder(const ChainBuilder&) = delete;
    ChainBuilder& operator=(const ChainBuilder&) = delete;

    /// Adds a record and gives it.
    hst_resbufW& add(short restype);
    void addText(WideView text);
    /// Adds the records of a value. Raises LispError for lists that go too deep.
    void addValue(const Value& value);
    /// As addValue, but a list of two or three numbers becomes one RTPOINT.
    void addCommandArgument(const Value& value);

    hst_resbufW* head() const noexcept { return m_head; }
    hst_resbufW* take() noexcept {
        m_end = &m_head;
        return std::exchange(m_head, nullptr);
    }

private:
    void addList(const Value& list);
    void addForeign(const Value& value);

    Machine& m_machine;
    hst_resbufW* m_head = nullptr;
    hst_resbufW** m_end = &m_head;
    std::size_t m_records = 0;
};

/// The value of a chain: nil for null, several elements make a list. Records with group codes become pairs of
/// code and value. Raises LispError for lists that don't close.
Value valueOfChain(Machine& machine, const hst_resbufW* chain);

} // namespace lm::host::lisp
