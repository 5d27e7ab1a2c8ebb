// SPDX-License-Identifier: MIT
// OdArray: a growing array with value semantics whose every index is checked.
#pragma once

#include "drawing/error.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

/// A growing array by value. An index outside raises OdError_InvalidIndex and changes nothing.
template<class T>
class OdArray {
public:
    OdArray() = default;
    OdArray(std::initializer_list<T> items) : m_items(items) {}

    unsigned int size() const { return static_cast<unsigned int>(m_items.size()); }
    bool isEmpty() const { return m_items.empty(); }
    void clear() { m_items.clear(); }
    void reserve(unsigned int count) { m_items.reserve(count); }

    /// Adds at the end; gives the new element's index.
    unsigned int append(const T& item) {
        m_items.push_back(item);
        return size() - 1;
    }

    T& operator[](int index) { return m_items[checked(index)]; }
    const T& operator[](int index) const { return m_items[checked(index)]; }
    void removeAt(int index) { m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(checked(index))); }
    bool contains(const T& item) const {
        return std::find(m_items.begin(), m_items.end(), item) != m_items.end();
    }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    std::size_t checked(int index) const {
        if (index < 0 || static_cast<std::size_t>(index) >= m_items.size()) throw OdError_InvalidIndex(index);
        return static_cast<std::size_t>(index);
    }
    std::vector<T> m_items;
};
