// SPDX-License-Identifier: MIT
#include "host/functions.h"

#include "functiontable.h"
#include "namedstack.h"

#include <utility>

namespace lm::host {

namespace {

struct NoCaseLess {
    bool operator()(const CHostString& a, const CHostString& b) const { return a.compareNoCase(b) < 0; }
};
using FunctionTable = NamedStack<CHostString, HostFunction, NoCaseLess>;

// Never destroyed: a module may leave the table while the process ends.
FunctionTable& table() {
    static FunctionTable& functions = *new FunctionTable;
    return functions;
}

} // namespace

FunctionRegistration::FunctionRegistration(const CHostString& name, HostFunction function) {
    if (!name.isEmpty() && function) m_id = table().add(name, std::move(function));
}

FunctionRegistration::FunctionRegistration(FunctionRegistration&& other) noexcept
    : m_id(std::exchange(other.m_id, 0)) {}

FunctionRegistration& FunctionRegistration::operator=(FunctionRegistration&& other) noexcept {
    if (this != &other) {
        reset();
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

void FunctionRegistration::reset() noexcept {
    if (m_id != 0) table().remove(std::exchange(m_id, 0));
}

std::size_t functionCount() noexcept {
    return table().size();
}

bool hasFunction(const CHostString& name) {
    return table().find(name) != nullptr;
}

std::shared_ptr<const HostFunction> findFunction(const CHostString& name) {
    return table().find(name);
}

} // namespace lm::host
