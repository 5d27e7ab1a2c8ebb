// SPDX-License-Identifier: MIT
// CEList: the linked list of the library's interfaces, passed by value: a copy is a real copy.
//
//     for (auto it = names.newIt(); !it.finished(); it.next()) use(it.get());
//     for (const RZString& name : names) use(name);
#pragma once

#include <initializer_list>
#include <iterator>
#include <list>
#include <type_traits>
#include <utility>

/// A position in a list, forward or backward. Finished when the list is empty or the position behind its end.
template<class List, class Position>
class CEListWalk {
public:
    using Element = typename List::value_type;

    explicit CEListWalk(List& list) : m_list(&list), m_at(start(list)) {}

    bool finished() const { return m_list->empty() || m_at == stop(*m_list); }
    /// A copy of the element; a finished iterator gives a value of the type's default.
    Element get() const { return finished() ? Element() : *m_at; }
    Element operator*() const { return get(); }
    /// On to the next element; nothing once finished.
    void next() {
        if (!finished()) ++m_at;
    }
    CEListWalk& operator++() {
        next();
        return *this;
    }

private:
    static constexpr bool kForward = std::is_same_v<Position, decltype(std::declval<List&>().begin())>;
    static Position start(List& list) {
        if constexpr (kForward)
            return list.begin();
        else
            return list.rbegin();
    }
    static Position stop(List& list) {
        if constexpr (kForward)
            return list.end();
        else
            return list.rend();
    }

    List* m_list;
    Position m_at;
};

template<class T>
using CEListIterator = CEListWalk<std::list<T>, typename std::list<T>::iterator>;
template<class T>
using CEListIteratorConst = CEListWalk<const std::list<T>, typename std::list<T>::const_iterator>;
template<class T>
using CEListReverseIterator = CEListWalk<std::list<T>, typename std::list<T>::reverse_iterator>;
template<class T>
using CEListReverseIteratorConst =
    CEListWalk<const std::list<T>, typename std::list<T>::const_reverse_iterator>;

/// A doubly linked list of T. What isn't there is answered with a value of the type's default, never with an
/// error.
template<class T>
class CEList {
public:
    CEList() = default;
    CEList(const CEList&) = default;
    CEList(CEList&&) = default;
    /// A copy of the other list's elements; null gives an empty list.
    CEList(CEList* other) {
        if (other != nullptr) m_items = other->m_items;
    }
    CEList(std::initializer_list<T> items) : m_items(items) {}
    CEList& operator=(const CEList&) = default;
    CEList& operator=(CEList&&) = default;

    void addHead(T item) { m_items.push_front(std::move(item)); }
    void addTail(T item) { m_items.push_back(std::move(item)); }
    /// Puts the other list's elements, in their order, in front of the present ones.
    void addHead(const CEList& other) {
        std::list<T> items(other.m_items); // a copy, since the other list may be this one
        m_items.splice(m_items.begin(), items);
    }
    void addTail(CEList other) { m_items.splice(m_items.end(), other.m_items); }
    void clear() { m_items.clear(); }

    bool isEmpty() const { return m_items.empty(); }
    int count() const { return static_cast<int>(m_items.size()); }
    /// Whether an element equals `item`.
    bool contains(const T& item) const {
        for (const T& element : m_items)
            if (element == item) return true;
        return false;
    }
    /// A copy of the element at an index from 0, found by walking; the default for an index outside.
    T getIndex(int index) const {
        if (index < 0 || index >= count()) return T();
        return *std::next(m_items.begin(), index);
    }
    T head() const { return m_items.empty() ? T() : m_items.front(); }
    T tail() const { return m_items.empty() ? T() : m_items.back(); }

    /// Removes every element that equals `item`.
    void remove(T item) {
        m_items.remove_if([&item](const T& element) { return element == item; });
    }
    /// Removes the first or last element. The list must not be empty.
    void removeHead() { m_items.pop_front(); }
    void removeTail() { m_items.pop_back(); }
    void revert() { m_items.reverse(); }

    /// The same number of elements, equal one by one.
    bool operator==(const CEList& other) const { return m_items == other.m_items; }
    CEList* operator->() { return this; }

    /// Iterators from the first element on, or from the last one back.
    CEListIterator<T> newIt() { return CEListIterator<T>(m_items); }
    CEListIteratorConst<T> newIt() const { return CEListIteratorConst<T>(m_items); }
    CEListReverseIterator<T> newReverseIt() { return CEListReverseIterator<T>(m_items); }
    CEListReverseIteratorConst<T> newReverseIt() const { return CEListReverseIteratorConst<T>(m_items); }

    /// For loops over the elements without copies.
    typename std::list<T>::const_iterator begin() const { return m_items.begin(); }
    typename std::list<T>::const_iterator end() const { return m_items.end(); }

private:
    std::list<T> m_items;
};
