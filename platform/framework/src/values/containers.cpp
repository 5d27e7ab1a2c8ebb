// SPDX-License-Identifier: MIT
#include "framework/values/containers.h"

LM_RUNTIME_CLASS_BODY(CStringList, CObject)
LM_RUNTIME_CLASS_BODY(CStringArray, CObject)
LM_RUNTIME_CLASS_BODY(CMapWordToPtr, CObject)

CStringList::~CStringList() = default;
CStringArray::~CStringArray() = default;
CMapWordToPtr::~CMapWordToPtr() = default;

const CString& CStringArray::GetAt(long long index) const {
    if (index < 0 || index >= GetSize()) AfxThrowInvalidArgException();
    return m_texts[static_cast<std::size_t>(index)];
}

void CStringArray::SetAt(long long index, const CString& text) {
    if (index < 0 || index >= GetSize()) AfxThrowInvalidArgException();
    m_texts[static_cast<std::size_t>(index)] = text;
}

long long CStringArray::Add(const CString& text) {
    m_texts.push_back(text);
    return GetSize() - 1;
}

bool CMapWordToPtr::Lookup(unsigned short key, void*& value) const {
    const auto found = m_values.find(key);
    if (found == m_values.end()) return false;
    value = found->second;
    return true;
}
