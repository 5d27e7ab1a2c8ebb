// SPDX-License-Identifier: MIT
#include "cad/celistaatributos.h"

#include "cad/ceheap.h"
#include "vocabulary/cmensagem.h"

#include "host/hoststring.h"

namespace {

using RoleTest = bool (*)(RZString tag);

CEAtributo* firstOfRole(const CEListaAtributos& list, RoleTest isRole) {
    for (long long i = 0; i < list.GetSize(); ++i)
        if (isRole(RZString(list.GetAt(i)->GetTag()))) return list.GetAt(i);
    return nullptr;
}

// The next element moves to the index of a removed one, so the index stays after a removal: neighbours that
// both play the role go in one pass.
void removeRole(CEListaAtributos& list, RoleTest isRole) {
    for (long long i = 0; i < list.GetSize();) {
        if (isRole(RZString(list.GetAt(i)->GetTag())))
            list.RemoveAt(i);
        else
            ++i;
    }
}

/// Index of the first record with the tag, or -1.
long long indexOfTag(const CEListaAtributos& list, const RZString& tag) {
    const CHostString wanted = tag;
    for (long long i = 0; i < list.GetSize(); ++i)
        if (list.GetAt(i)->GetTag().compareNoCase(wanted) == 0) return i;
    return -1;
}

} // namespace

CEListaAtributos::CEListaAtributos() = default;
CEListaAtributos::~CEListaAtributos() = default;

CEAtributo* CEListaAtributos::AdicionarAtributo(CEAtributo* atributo) {
    Add(atributo);
    return atributo;
}

CEAtributo* CEListaAtributos::GetAtributo(RZString tag) {
    const long long index = indexOfTag(*this, tag);
    return index >= 0 ? GetAt(index) : nullptr;
}

// clang-format off
CEAtributo* CEListaAtributos::GetAtributoCabo() { return firstOfRole(*this, CMensagem::isAttCabo); }
CEAtributo* CEListaAtributos::GetAtributoNumber() { return firstOfRole(*this, CMensagem::isAttNumber); }
CEAtributo* CEListaAtributos::GetAtributoPin() { return firstOfRole(*this, CMensagem::isAttPin); }
CEAtributo* CEListaAtributos::GetAtributoPosCtt() { return firstOfRole(*this, CMensagem::isAttPosCtt); }
CEAtributo* CEListaAtributos::GetAtributoStrip() { return firstOfRole(*this, CMensagem::isAttStrip); }
CEAtributo* CEListaAtributos::GetAtributoTag() { return firstOfRole(*this, CMensagem::isAttTag); }
// clang-format on

void CEListaAtributos::RemoveAttribute(RZString tag) {
    const long long index = indexOfTag(*this, tag);
    if (index >= 0) RemoveAt(index);
}

// clang-format off
void CEListaAtributos::RemoveAttributeCabo() { removeRole(*this, CMensagem::isAttCabo); }
void CEListaAtributos::RemoveAttributeNumber() { removeRole(*this, CMensagem::isAttNumber); }
void CEListaAtributos::RemoveAttributePin() { removeRole(*this, CMensagem::isAttPin); }
void CEListaAtributos::RemoveAttributePosCtt() { removeRole(*this, CMensagem::isAttPosCtt); }
void CEListaAtributos::RemoveAttributeStrip() { removeRole(*this, CMensagem::isAttStrip); }
void CEListaAtributos::RemoveAttributeTag() { removeRole(*this, CMensagem::isAttTag); }
// clang-format on

void CEListaAtributos::releaseAllAttributes() {
    if (IsEmpty()) return;
    for (long long i = GetUpperBound(); i >= 0; --i) delete GetAt(i);
    RemoveAll();
}

void* CEListaAtributos::operator new(std::size_t size) {
    return lm::cad::allocate(size);
}
void CEListaAtributos::operator delete(void* block) noexcept {
    odrxFree(block);
}
