// SPDX-License-Identifier: MIT
#include "library/cepasta.h"

#include "library/celstitens.h"

#include "cad/ceheap.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int kFolder = 0, kSymbol = 1;

int countOfType(const CELstItens& items, int type) {
    int count = 0;
    for (long long i = 0; i < items.GetSize(); ++i)
        if (items.GetAt(i) != nullptr && items.GetAt(i)->GetTipo() == type) ++count;
    return count;
}

} // namespace

const RZString CEPasta::TempFolderKey("-1000");

CEPasta::CEPasta() : CEPasta(false) {}

CEPasta::CEPasta(bool temFilhos) : m_temFilhos(temFilhos), m_itensFilhos(new CELstItens) {}

CEPasta::~CEPasta() {
    delete m_itensFilhos;
}

void CEPasta::copyDescricoes(CEPasta* origem) {
    std::copy(std::begin(origem->m_descricoes), std::end(origem->m_descricoes), m_descricoes);
}

void CEPasta::SetPastaPai(CEPasta* pai) {
    m_pastaPai = pai;
    if (marcado && pai != nullptr) pai->filhoMarcado = true;
}

bool CEPasta::VerificaPai(RZString key) const {
    for (const CEPasta* at = m_pastaPai; at != nullptr; at = at->m_pastaPai)
        if (at->m_key == key) return true;
    return false;
}

void CEPasta::AdicionarItem(CEPasta* filho) {
    if (filho != nullptr) filho->SetPastaPai(this);
    m_itensFilhos->Add(filho);
}

bool CEPasta::RemoverItem(CEPasta* filho) {
    const int index = m_itensFilhos->GetIndex(filho);
    if (index < 0) return false;
    m_itensFilhos->RemoveAt(index);
    m_itensFilhos->FreeExtra();
    return true;
}

int CEPasta::GetCountPastas() const {
    return countOfType(*m_itensFilhos, kFolder);
}

int CEPasta::GetCountSimbolos() const {
    return countOfType(*m_itensFilhos, kSymbol);
}

_TREEITEM* CEPasta::GetTreeItem(unsigned short arvore) const {
    void* item = nullptr;
    return m_treeItems.Lookup(arvore, item) ? static_cast<_TREEITEM*>(item) : nullptr;
}

void CEPasta::SetTreeItem(unsigned short arvore, _TREEITEM* item) {
    m_treeItems.SetAt(arvore, item);
}

void* CEPasta::operator new(std::size_t size) {
    return lm::cad::allocate(size);
}
void CEPasta::operator delete(void* block) noexcept {
    odrxFree(block);
}
