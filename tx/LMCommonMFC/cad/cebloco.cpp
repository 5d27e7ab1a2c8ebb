// SPDX-License-Identifier: MIT
#include "cad/cebloco.h"

#include "cad/ceheap.h"

#include "host/hoststring.h"

CEBloco::CEBloco(RZString nome) : m_nome(nome) {}
CEBloco::CEBloco(const CEBloco& outro) = default;
CEBloco& CEBloco::operator=(const CEBloco& outro) = default;
CEBloco::~CEBloco() = default;

RZString CEBloco::GetNome() {
    return m_nome;
}
RZID CEBloco::GetObjectId() {
    return m_objectId;
}
void CEBloco::SetObjectId(RZID objectId) {
    m_objectId = objectId;
}

int CEBloco::AdicionarAtributo(CEAtributo* atributo) {
    const RZString tag(atributo->GetTag());
    m_atributos[tag.str()] = atributo;
    return static_cast<int>(m_atributos.size());
}

CEAtributo* CEBloco::GetAtributo(RZString tag) {
    const auto found = m_atributos.find(tag.str());
    return found != m_atributos.end() ? found->second : nullptr;
}

void* CEBloco::operator new(std::size_t size) {
    return lm::cad::allocate(size);
}
void CEBloco::operator delete(void* block) noexcept {
    odrxFree(block);
}
