// SPDX-License-Identifier: MIT
// On large drawings a walk costs what it waits for memory; walks ask for it ahead.
#pragma once

#include "model/kinds.h"
#include "model/node.h"

#include "drawing/text.h"

#include <cstdint>

// A function that only asks for memory has no effect that the compiler knows of: g++ drops calls of it, so
// these are put in place before it looks.
#define LM_FETCH [[gnu::always_inline]] inline

namespace lm::drawing {

/// Asks for the object of an entry. An entry that lies far from a cache only delays the walk that is far
/// behind it.
LM_FETCH void fetchBody(const Node& node) noexcept {
    constexpr std::uintptr_t kTagLine = 192; // tag and text lie in the last line of an attribute
    const auto body =
        reinterpret_cast<std::uintptr_t>(node.body); // a number: an object that wasn't read yet is null
    __builtin_prefetch(reinterpret_cast<const void*>(body));
    if (node.kind == kKindAttrib) __builtin_prefetch(reinterpret_cast<const void*>(body + kTagLine));
}

/// Looks three parts ahead: that one's entry was asked for one step ago, so its object and the entries that
/// hang on it are asked for now, and the objects of those that hang on the part before it.
LM_FETCH void fetchAhead(const Node* at) noexcept {
    const Node* const one = at != nullptr ? at->next : nullptr;
    const Node* const two = one != nullptr ? one->next : nullptr;
    if (two == nullptr) {
        if (one != nullptr) fetchBody(*one);
        return;
    }
    if (const Node* const part = two->firstPart) {
        fetchBody(*part);
        if (part->next != nullptr) fetchBody(*part->next);
    }
    if (const Node* const three = two->next) {
        fetchBody(*three);
        __builtin_prefetch(three->firstPart);
        __builtin_prefetch(three->next);
    }
}

/// Asks for the line of an attribute with its tag and text; what a plain walk looks at.
LM_FETCH void fetchTag(const Node& node) noexcept {
    constexpr std::ptrdiff_t kTagLine = 200;
    if (node.kind == kKindAttrib && node.body != nullptr)
        __builtin_prefetch(reinterpret_cast<const char*>(node.body) + kTagLine);
}

/// Asks for the tags of the first two attributes of a reference; whoever looks further finds the rest beside
/// them.
LM_FETCH void fetchTagsOf(const Node& reference) noexcept {
    const Node* const part = reference.firstPart;
    if (part == nullptr) return;
    fetchTag(*part);
    if (part->next != nullptr) fetchTag(*part->next);
}

/// Asks for the texts of the first two attributes of a reference, whose lines with the tags have come
/// meanwhile.
LM_FETCH void fetchTextsOf(const Node& reference) noexcept {
    const Node* part = reference.firstPart;
    for (int i = 0; i < 2 && part != nullptr && part->kind == kKindAttrib; ++i, part = part->next)
        if (part->body != nullptr)
            __builtin_prefetch(static_cast<const OdDbText*>(part->body)->textString().buffer());
}

/// Asks for the node behind another and for the first that hangs on it.
LM_FETCH void fetchNodesOf(const Node& node) noexcept {
    if (node.firstPart != nullptr) __builtin_prefetch(node.firstPart);
    if (node.next != nullptr) __builtin_prefetch(node.next);
}

} // namespace lm::drawing
