// SPDX-License-Identifier: MIT
// On large drawings a walk costs what it waits for memory; walks ask for it ahead.
#pragma once

#include "model/kinds.h"
#include "model/stub.h"

#include <cstdint>

namespace lm::drawing {

/// Asks for the object of an entry. An entry that lies far from a cache only delays the walk that is far
/// behind it.
inline void fetchBody(const Stub& stub) noexcept {
    constexpr std::uintptr_t kTagLine = 192; // tag and text lie in the last line of an attribute
    const auto body =
        reinterpret_cast<std::uintptr_t>(stub.body); // a number: an object that wasn't read yet is null
    __builtin_prefetch(reinterpret_cast<const void*>(body));
    if (stub.kind == kKindAttrib) __builtin_prefetch(reinterpret_cast<const void*>(body + kTagLine));
}

/// Looks three parts ahead: that one's entry was asked for one step ago, so its object and the entries that
/// hang on it are asked for now, and the objects of those that hang on the part before it.
inline void fetchAhead(const Stub* at) noexcept {
    const Stub* const one = at != nullptr ? at->next : nullptr;
    const Stub* const two = one != nullptr ? one->next : nullptr;
    if (two == nullptr) {
        if (one != nullptr) fetchBody(*one);
        return;
    }
    if (const Stub* const part = two->firstPart) {
        fetchBody(*part);
        if (part->next != nullptr) fetchBody(*part->next);
    }
    if (const Stub* const three = two->next) {
        fetchBody(*three);
        __builtin_prefetch(three->firstPart);
        __builtin_prefetch(three->next);
    }
}

} // namespace lm::drawing
