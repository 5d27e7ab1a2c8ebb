// SPDX-License-Identifier: MIT
#include "cad/cecomponente.h"

#include "cad/ceheap.h"

#include "host/hoststring.h"

CEComponente::CEComponente() = default;

CEComponente::CEComponente(RZString key, RZString descricao) : m_key(key), m_descricao(descricao) {}

CEComponente::CEComponente(RZString key, RZString descricao, CStringArray& textos)
    : m_key(key), m_descricao(descricao) {
    m_textos.Copy(textos);
}

RZString CEComponente::GetKey() {
    return m_key;
}
RZString CEComponente::GetDescricao() {
    return m_descricao;
}

void CEComponente::AdicionarAtributo(CEAtributo* atributo) {
    const RZString tag(atributo->GetTag());
    m_atributos[tag.str()] = atributo;
}

CEAtributo* CEComponente::GetAtributo(RZString tag) {
    const auto found = m_atributos.find(tag.str());
    return found != m_atributos.end() ? found->second : nullptr;
}

void* CEComponente::operator new(std::size_t size) {
    return lm::cad::allocate(size);
}
void CEComponente::operator delete(void* block) noexcept {
    odrxFree(block);
}
