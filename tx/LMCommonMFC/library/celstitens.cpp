// SPDX-License-Identifier: MIT
#include "library/celstitens.h"

#include "library/cepasta.h"

#include "cad/ceheap.h"

#include <memory>

namespace {

RZString keyOf(const CEPasta* item) {
    return item == nullptr ? RZString() : item->GetKey();
}

} // namespace

CELstItens::CELstItens() = default;
CELstItens::~CELstItens() = default;

long long CELstItens::Add(CEPasta* item) {
    m_itens[keyOf(item).str()] = item;
    return CArray::Add(item);
}

CEPasta* CELstItens::GetItem(RZString key) {
    const auto found = m_itens.find(key.str());
    return found == m_itens.end() ? nullptr : found->second;
}

int CELstItens::GetIndex(CEPasta* item) {
    const RZString key = keyOf(item);
    for (long long i = 0; i < GetSize(); ++i)
        if (keyOf(GetAt(i)) == key) return static_cast<int>(i);
    return -1;
}

int CELstItens::Start() {
    return m_cursor = 0;
}

int CELstItens::MoveNext() {
    return m_cursor++;
}

bool CELstItens::Done() {
    return m_cursor == GetSize();
}

CEPasta* CELstItens::GetItem() {
    return GetAt(m_cursor);
}

CELstItens* CELstItens::ItensNivel(RZString nivel) {
    std::unique_ptr<CELstItens> found(new CELstItens);
    for (long long i = 0; i < GetSize(); ++i)
        if (GetAt(i) != nullptr && GetAt(i)->GetNivel() == nivel) found->Add(GetAt(i));
    return found.release();
}

void CELstItens::RemoveAt(long long i, long long n) {
    CArray::RemoveAt(i, n);
}

// Both walks below end at index 1: the first node of a list stays, and callers count on it being there
// afterwards.

void CELstItens::remove(RZString key) {
    for (long long i = GetUpperBound(); i > 0; --i) {
        if (keyOf(GetAt(i)) != key) continue;
        m_itens.erase(key.str());
        CArray::RemoveAt(i);
    }
}

bool CELstItens::RemoveTodos() {
    for (long long i = GetUpperBound(); i > 0; --i) {
        CEPasta* const item = GetAt(i);
        CArray::RemoveAt(i);
        delete item;
    }
    m_itens.clear();
    return false;
}

void* CELstItens::operator new(std::size_t size) {
    return lm::cad::allocate(size);
}
void CELstItens::operator delete(void* block) noexcept {
    odrxFree(block);
}
