// SPDX-License-Identifier: MIT
// What vl-catch-all-apply gives for a call that failed.
#pragma once

#include "value.h"

namespace lm::host::lisp {

/// An error as a value.
class CaughtError final : public Foreign {
public:
    static constexpr ForeignKind kKind = ForeignKind::kCaughtError;
    CaughtError(Heap& heap, WideString message) : Foreign(kKind, heap), m_message(std::move(message)) {}
    const WideString& message() const noexcept { return m_message; }

    WideString printed() const override { return system::widen("#<%catch-all-apply-error%>"); }
    const char* typeName() const override { return "VL-CATCH-ALL-APPLY-ERROR"; }
    std::size_t bytes() const override { return sizeof(*this) + m_message.size() * sizeof(WideChar); }

private:
    WideString m_message;
};

} // namespace lm::host::lisp
