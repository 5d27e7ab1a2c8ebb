// SPDX-License-Identifier: MIT
// CArray: the framework's growing array for pointers, numbers and other plain data, with a growth rule that
// callers can rely on: SetSize is the one place where the storage changes.
//
//     CArray<Record*, Record*> records;     records.Add(record);     records[0]->...
#pragma once

#include "framework/values/archive.h"
#include "framework/values/exceptions.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

/// An array of T, taken as argument as A. New elements are zero. The array doesn't own what its pointers
/// point at. Access with an index outside the array raises CInvalidArgException and leaves the array as it
/// was; exhausted memory raises std::bad_alloc.
template<class T, class A = const T&>
class CArray : public CObject {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved and stored as bytes");

public:
    CArray() = default;
    CArray(const CArray&) = delete;
    CArray& operator=(const CArray&) = delete;
    ~CArray() override { ::operator delete(m_data); }

    long long GetSize() const noexcept { return m_size; }
    long long GetCount() const noexcept { return m_size; }
    bool IsEmpty() const noexcept { return m_size == 0; }
    /// The highest index, -1 for an empty array.
    long long GetUpperBound() const noexcept { return m_size - 1; }

    /// Changes the number of elements. A `growBy` of 0 or more is stored as the step in which the storage
    /// grows (0: an eighth of the size, at least 4 and at most 1024); -1 keeps the stored one. A size of 0
    /// frees the storage, a smaller size keeps it. A negative size raises CInvalidArgException.
    void SetSize(long long newSize, long long growBy = -1);
    /// Gives back the storage beyond the size.
    void FreeExtra();
    void RemoveAll() { SetSize(0, -1); }

    const T& GetAt(long long index) const { return m_data[checked(index)]; }
    T& GetAt(long long index) { return m_data[checked(index)]; }
    T& ElementAt(long long index) { return m_data[checked(index)]; }
    void SetAt(long long index, A value) { m_data[checked(index)] = value; }
    const T& operator[](long long index) const { return m_data[checked(index)]; }
    T& operator[](long long index) { return m_data[checked(index)]; }
    /// The elements one behind the other, null without storage; valid until the size changes.
    const T* GetData() const noexcept { return m_data; }
    T* GetData() noexcept { return m_data; }

    /// Writes an element and grows the array up to it where needed. A negative index raises.
    void SetAtGrow(long long index, A value);
    /// Appends an element and gives its index.
    long long Add(A value);
    /// Appends the elements of another array and gives the index of the first.
    long long Append(const CArray& other);
    /// Makes this array a copy of the other's elements.
    void Copy(const CArray& other);
    /// Puts `count` equal elements in front of the one at `index`; the size as index appends. Nothing for a
    /// count of 0; a negative count raises.
    void InsertAt(long long index, A value, long long count = 1);
    /// Puts the elements of another array in front of the one at `index`. Null raises.
    void InsertAt(long long index, const CArray* other);
    /// Removes `count` elements; all of them must lie in the array. The storage stays.
    void RemoveAt(long long index, long long count = 1);

    /// Writes or reads the number of elements and then their bytes as they stand. A reader that meets the end
    /// too early raises CArchiveException with endOfFile; the elements that weren't reached are zero.
    void Serialize(CArchive& archive) override;

private:
    static constexpr long long kMaxElements = std::numeric_limits<long long>::max() / (2 * sizeof(T));
    static constexpr long long kChunk = 0xFFFFFFF;

    long long checked(long long index) const {
        if (index < 0 || index >= m_size) AfxThrowInvalidArgException();
        return index;
    }
    static T* allocate(long long capacity) {
        if (capacity > kMaxElements) throw std::bad_alloc();
        return static_cast<T*>(::operator new(static_cast<std::size_t>(capacity) * sizeof(T)));
    }
    static void copy(T* to, const T* from, long long count) {
        if (count > 0)
            std::memmove(static_cast<void*>(to), from, static_cast<std::size_t>(count) * sizeof(T));
    }
    static void zero(T* from, long long count) {
        if (count > 0) std::memset(static_cast<void*>(from), 0, static_cast<std::size_t>(count) * sizeof(T));
    }
    void replaceStorage(T* data, long long capacity) noexcept {
        ::operator delete(m_data);
        m_data = data;
        m_capacity = capacity;
    }
    void openGap(long long index, long long count);

    T* m_data = nullptr;
    long long m_size = 0;
    long long m_capacity = 0;
    long long m_growBy = 0;
};

template<class T, class A>
void CArray<T, A>::SetSize(long long newSize, long long growBy) {
    if (newSize < 0) AfxThrowInvalidArgException();
    if (growBy >= 0) m_growBy = growBy;
    if (newSize == 0) {
        replaceStorage(nullptr, 0);
    } else if (m_data == nullptr) {
        const long long capacity = std::max(newSize, m_growBy);
        m_data = allocate(capacity);
        m_capacity = capacity;
        zero(m_data, capacity);
    } else if (newSize <= m_capacity) {
        zero(m_data + m_size, newSize - m_size);
    } else {
        const long long step = m_growBy != 0 ? m_growBy : std::clamp(m_size / 8, 4LL, 1024LL);
        const long long capacity = newSize - m_capacity < step ? m_capacity + step : newSize;
        T* data = allocate(capacity);
        copy(data, m_data, m_size);
        zero(data + m_size, newSize - m_size);
        replaceStorage(data, capacity);
    }
    m_size = newSize;
}

template<class T, class A>
void CArray<T, A>::FreeExtra() {
    if (m_size == m_capacity) return;
    T* data = m_size == 0 ? nullptr : allocate(m_size);
    copy(data, m_data, m_size);
    replaceStorage(data, m_size);
}

template<class T, class A>
void CArray<T, A>::SetAtGrow(long long index, A value) {
    if (index < 0) AfxThrowInvalidArgException();
    if (index >= kMaxElements) throw std::bad_alloc();
    const T kept = value; // may stand in the storage that SetSize frees
    if (index >= m_size) SetSize(index + 1, -1);
    m_data[index] = kept;
}

template<class T, class A>
long long CArray<T, A>::Add(A value) {
    const long long index = m_size;
    SetAtGrow(index, value);
    return index;
}

template<class T, class A>
long long CArray<T, A>::Append(const CArray& other) {
    const long long first = m_size;
    const long long count = other.m_size; // read before the size changes: the other array may be this one
    if (count > 0) {
        SetSize(first + count, -1);
        copy(m_data + first, other.m_data, count);
    }
    return first;
}

template<class T, class A>
void CArray<T, A>::Copy(const CArray& other) {
    if (this == &other) return;
    SetSize(other.m_size, -1);
    copy(m_data, other.m_data, m_size);
}

template<class T, class A>
void CArray<T, A>::openGap(long long index, long long count) {
    if (count > kMaxElements - m_size) throw std::bad_alloc();
    const long long behind = m_size - index;
    SetSize(m_size + count, -1);
    copy(m_data + index + count, m_data + index, behind);
}

template<class T, class A>
void CArray<T, A>::InsertAt(long long index, A value, long long count) {
    if (index < 0 || index > m_size || count < 0) AfxThrowInvalidArgException();
    if (count == 0) return;
    const T kept = value; // may stand in the storage that SetSize frees
    openGap(index, count);
    std::fill_n(m_data + index, count, kept);
}

template<class T, class A>
void CArray<T, A>::InsertAt(long long index, const CArray* other) {
    if (other == nullptr || index < 0 || index > m_size) AfxThrowInvalidArgException();
    if (other->m_size == 0) return;
    CArray elements; // a copy, since the other array may be this one
    elements.Copy(*other);
    openGap(index, elements.m_size);
    copy(m_data + index, elements.m_data, elements.m_size);
}

template<class T, class A>
void CArray<T, A>::RemoveAt(long long index, long long count) {
    if (index < 0 || count < 0 || index > m_size || count > m_size - index) AfxThrowInvalidArgException();
    copy(m_data + index, m_data + index + count, m_size - index - count);
    m_size -= count;
}

template<class T, class A>
void CArray<T, A>::Serialize(CArchive& archive) {
    if (archive.IsStoring()) {
        archive.WriteCount(static_cast<unsigned long long>(m_size));
    } else {
        const unsigned long long count = archive.ReadCount();
        if (count > static_cast<unsigned long long>(kMaxElements)) throw std::bad_alloc();
        SetSize(static_cast<long long>(count), -1);
    }
    for (long long first = 0; first < m_size; first += kChunk) {
        const std::size_t bytes = static_cast<std::size_t>(std::min(kChunk, m_size - first)) * sizeof(T);
        if (archive.IsStoring())
            archive.Write(m_data + first, bytes);
        else if (archive.Read(m_data + first, bytes) != bytes)
            AfxThrowArchiveException(CArchiveException::endOfFile);
    }
}
