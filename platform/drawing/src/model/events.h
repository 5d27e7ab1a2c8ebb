// SPDX-License-Identifier: MIT
// Telling the reactors of a database. Without a reactor nothing here costs more than one comparison.
#pragma once

#include "drawing/reactor.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace lm::drawing {

/// The reactors of one database. Lists are walked as copies, without those that left meanwhile; an exception
/// keeps nobody else from being told, and the first one passes. Whoever tells goes on in the database
/// afterwards, so that it must not end in a callback: see isTelling.
class Events {
public:
    std::vector<OdDbDatabaseReactor*> reactors;
    std::vector<OdDbTransactionReactor*> transactionReactors;

    bool isAnybodyThere() const noexcept { return !reactors.empty(); }
    /// Whether somebody is being told something now.
    bool isTelling() const noexcept { return m_telling != 0; }

    /// Calls `tell` for each database reactor.
    template<class F>
    void tell(F&& call) {
        if (!reactors.empty()) each(reactors, call);
    }
    template<class F>
    void tellTransaction(F&& call) {
        if (!transactionReactors.empty()) each(transactionReactors, call);
    }

private:
    struct Telling {
        explicit Telling(unsigned& calls) : depth(calls) { ++depth; }
        ~Telling() { --depth; }
        Telling(const Telling&) = delete;
        Telling& operator=(const Telling&) = delete;
        unsigned& depth;
    };

    template<class R, class F>
    void each(std::vector<R*>& list, F& call) {
        const Telling telling(m_telling);
        const std::vector<R*> copy = list;
        std::exception_ptr first;
        for (R* reactor : copy) {
            if (std::find(list.begin(), list.end(), reactor) == list.end()) continue;
            try {
                call(*reactor);
            } catch (...) {
                if (!first) first = std::current_exception();
            }
        }
        if (first) std::rethrow_exception(first);
    }

    unsigned m_telling = 0;
};

/// Reports an exception that nobody can take; called inside its handler.
void dropException() noexcept;

} // namespace lm::drawing
