// SPDX-License-Identifier: MIT
// The framework's ready-made containers: lists and arrays of text, and a map from 16-bit numbers to pointers.
#pragma once

#include "framework/values/clist.h"

#include <unordered_map>
#include <vector>

/// A linked list of texts. The block size is a hint of the framework's interface.
class LM_VALUES_API CStringList : public CList<CString, const CString&> {
    LM_RUNTIME_CLASS(CStringList)
public:
    explicit CStringList(long long blockSize = 10) : CList(blockSize) {}
    ~CStringList() override;
};

/// A growing array of texts. An index outside the array raises CInvalidArgException.
class LM_VALUES_API CStringArray : public CObject {
    LM_RUNTIME_CLASS(CStringArray)
public:
    CStringArray() = default;
    CStringArray(const CStringArray&) = default;
    CStringArray& operator=(const CStringArray&) = default;
    ~CStringArray() override;

    long long GetSize() const noexcept { return static_cast<long long>(m_texts.size()); }
    bool IsEmpty() const noexcept { return m_texts.empty(); }
    const CString& GetAt(long long index) const;
    void SetAt(long long index, const CString& text);
    /// Appends a text and gives its index.
    long long Add(const CString& text);
    void RemoveAll() noexcept { m_texts.clear(); }
    /// Makes this array a copy of the other.
    void Copy(const CStringArray& other) { m_texts = other.m_texts; }

private:
    std::vector<CString> m_texts;
};

/// A map from 16-bit numbers to pointers that it doesn't own.
class LM_VALUES_API CMapWordToPtr : public CObject {
    LM_RUNTIME_CLASS(CMapWordToPtr)
public:
    /// The block size is a hint of the framework's interface.
    explicit CMapWordToPtr(long long /*blockSize*/ = 10) {}
    ~CMapWordToPtr() override;

    long long GetCount() const noexcept { return static_cast<long long>(m_values.size()); }
    bool IsEmpty() const noexcept { return m_values.empty(); }
    /// Makes or overwrites the entry of a key.
    void SetAt(unsigned short key, void* value) { m_values[key] = value; }
    /// Whether the key is there; only then `value` is written.
    bool Lookup(unsigned short key, void*& value) const;
    /// Whether the key was there.
    bool RemoveKey(unsigned short key) { return m_values.erase(key) != 0; }
    void RemoveAll() noexcept { m_values.clear(); }

private:
    std::unordered_map<unsigned short, void*> m_values;
};
