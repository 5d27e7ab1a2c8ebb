// SPDX-License-Identifier: MIT
// CList: the framework's linked list, walked with positions.
//
//     for (POSITION at = list.GetHeadPosition(); at != nullptr;) use(list.GetNext(at));
#pragma once

#include "framework/values/exceptions.h"

#include <utility>

/// A place in a list; null is behind the end. It holds until the element goes.
using POSITION = struct ListPosition*;

/// A linked list of T, taken as argument as A. It owns its elements and copies as a value.
template<class T, class A = const T&>
class CList : public CObject {
public:
    /// The block size is a hint of the framework's interface; elements are allocated one by one.
    explicit CList(long long /*blockSize*/ = 10) {}
    CList(const CList& other) : CList() { append(other); }
    CList& operator=(const CList& other) {
        if (this == &other) return *this;
        RemoveAll();
        append(other);
        return *this;
    }
    ~CList() override { RemoveAll(); }

    long long GetCount() const noexcept { return m_count; }
    bool IsEmpty() const noexcept { return m_count == 0; }

    /// Adds an element at the end or at the front and gives its position.
    POSITION AddTail(A value) { return link(new Node{value, m_tail, nullptr}); }
    POSITION AddHead(A value) { return link(new Node{value, nullptr, m_head}); }
    void RemoveAll() noexcept {
        while (m_head != nullptr) delete std::exchange(m_head, m_head->next);
        m_tail = nullptr;
        m_count = 0;
    }

    POSITION GetHeadPosition() const noexcept { return position(m_head); }
    /// The element at a position, which then moves on and is null behind the last. A null position raises
    /// CInvalidArgException.
    const T& GetNext(POSITION& at) const {
        Node* node = checked(at);
        at = position(node->next);
        return node->value;
    }
    T& GetNext(POSITION& at) { return const_cast<T&>(std::as_const(*this).GetNext(at)); }
    /// The element at a position; a null position raises CInvalidArgException.
    const T& GetAt(POSITION at) const { return checked(at)->value; }
    T& GetAt(POSITION at) { return checked(at)->value; }
    /// The position of the first element equal to `value`, behind `after` where that is given; null if there
    /// is none.
    POSITION Find(A value, POSITION after = nullptr) const {
        for (Node* node = after == nullptr ? m_head : checked(after)->next; node != nullptr;
             node = node->next)
            if (node->value == value) return position(node);
        return nullptr;
    }

private:
    struct Node {
        T value;
        Node* previous;
        Node* next;
    };
    static POSITION position(Node* node) noexcept { return reinterpret_cast<POSITION>(node); }
    static Node* checked(POSITION at) {
        if (at == nullptr) AfxThrowInvalidArgException();
        return reinterpret_cast<Node*>(at);
    }
    POSITION link(Node* node) noexcept {
        (node->previous != nullptr ? node->previous->next : m_head) = node;
        (node->next != nullptr ? node->next->previous : m_tail) = node;
        ++m_count;
        return position(node);
    }
    void append(const CList& other) {
        for (Node* node = other.m_head; node != nullptr; node = node->next) AddTail(node->value);
    }

    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    long long m_count = 0;
};
