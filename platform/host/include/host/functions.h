// SPDX-License-Identifier: MIT
// The functions that can be called by name through CHostAPI::invoke.
//
//     lm::host::FunctionRegistration registration("rzEcho", [](CHostAPI& api) { api.retList(api.getArgs());
//     });
#pragma once

#include "host/hostapi.h"
#include "host/hoststring.h"

#include <functional>

namespace lm::host {

/// A function that can be called by name. It asks `api`, the interface of the document in which it was
/// called, for its arguments and leaves its result there.
using HostFunction = std::function<void(CHostAPI& api)>;

/// Holds one function in the table for as long as it lives, so that a function goes when its module goes.
/// Names ignore case. Of several functions under one name the latest is called; when it goes, the one before
/// it returns.
class LM_HOST_API FunctionRegistration {
public:
    FunctionRegistration() = default;
    /// An empty name or an empty function registers nothing.
    FunctionRegistration(const CHostString& name, HostFunction function);
    FunctionRegistration(FunctionRegistration&& other) noexcept;
    FunctionRegistration& operator=(FunctionRegistration&& other) noexcept;
    ~FunctionRegistration() { reset(); }

    /// Takes the function out of the table. A call of it that is in progress goes on.
    void reset() noexcept;

private:
    unsigned long m_id = 0;
};

/// Functions in the table, hidden ones too.
LM_HOST_API std::size_t functionCount() noexcept;
/// Whether a function of this name can be called.
LM_HOST_API bool hasFunction(const CHostString& name);

} // namespace lm::host
