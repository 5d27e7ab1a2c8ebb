// SPDX-License-Identifier: MIT
// Lists from their first element to their last: the only place where a link is written after it was made.
#pragma once

#include "value.h"

namespace lm::host::lisp {

/// Builds a list from its first element to its last.
class ListBuilder {
public:
    explicit ListBuilder(Heap& heap) noexcept : m_heap(heap) {}
    void add(Value element) {
        Value link = m_heap.cons(std::move(element), Value());
        Cons* made = static_cast<Cons*>(link.object());
        if (m_last == nullptr)
            m_head = std::move(link);
        else
            m_last->cdr = std::move(link);
        m_last = made;
    }
    bool isEmpty() const noexcept { return m_last == nullptr; }
    /// The list; the builder is empty then.
    Value take() noexcept {
        m_last = nullptr;
        return std::move(m_head);
    }
    /// The list with `tail` behind its last element.
    Value takeWithTail(Value tail) noexcept {
        if (m_last == nullptr) return tail;
        m_last->cdr = std::move(tail);
        return take();
    }

private:
    Heap& m_heap;
    Value m_head;
    Cons* m_last = nullptr;
};

} // namespace lm::host::lisp
