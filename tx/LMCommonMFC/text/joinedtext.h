// SPDX-License-Identifier: MIT
// The store of RZString and its concatenating constructors. Each JoinedText<N> adds the constructor of N
// parts to those of its base, so that the thirty of them are written once and still are ordinary
// constructors: every argument may be anything that converts to an RZString.
#pragma once

#include "export.h"

#include "system/wide.h"

#include <utility>

class RZString;

namespace lm::text {

/// Selects a constructor of the store that callers of RZString must not reach by accident.
struct FromUnits {};

/// The units of an RZString.
class LM_COMMONMFC_API TextStore {
protected:
    constexpr TextStore() = default;
    /// An empty view may lack a pointer, which the string's copying doesn't take.
    constexpr TextStore(FromUnits, WideView text) : m_text(text.empty() ? WideView(&kNothing, 0) : text) {}
    constexpr TextStore(FromUnits, WideString&& text) : m_text(std::move(text)) {}
    /// A unit for each byte.
    TextStore(FromUnits, const unsigned char* bytes, std::size_t size) : m_text(bytes, bytes + size) {}
    constexpr TextStore(FromUnits, WideChar unit) : m_text(1, unit) {}

    /// Makes this the concatenation of the parts in one allocation: the first one whole, each further one up
    /// to its first 0 unit.
    void join(const RZString* const* parts, std::size_t count);

    static constexpr WideChar kNothing = 0;
    WideString m_text;
};

template<std::size_t>
using TextPart = const RZString&;

template<std::size_t Count, class Sequence = std::make_index_sequence<Count>>
class JoinedText;

template<>
class JoinedText<1, std::index_sequence<0>> : protected TextStore {
protected:
    using TextStore::TextStore;
    constexpr JoinedText() = default;
};

template<std::size_t Count, std::size_t... Index>
class JoinedText<Count, std::index_sequence<Index...>> : protected JoinedText<Count - 1> {
public:
    using JoinedText<Count - 1>::JoinedText;
    JoinedText(TextPart<Index>... part) {
        const RZString* const parts[] = {&part...};
        this->join(parts, Count);
    }

protected:
    constexpr JoinedText() = default;
};

} // namespace lm::text
