// SPDX-License-Identifier: MIT
#include "base/rxclass.h"

#include "drawing/alloc.h"
#include "drawing/module.h"
#include "drawing/resbuf.h"

#include <cstring>
#include <new>

#include <dlfcn.h>
#include <link.h>

namespace {
OdRxClass* g_firstClass = nullptr;
}

OdRxClass::OdRxClass(const char* name, OdRxClass* parent, Constructor constructor)
    : m_name(name), m_parent(parent), m_constructor(constructor), m_nextClass(g_firstClass) {
    g_firstClass = this;
}

OdRxClass::~OdRxClass() {
    while (m_extensions != nullptr) setX(m_extensions->protocol, nullptr);
    OdRxClass** link = &g_firstClass;
    while (*link != nullptr && *link != this) link = &(*link)->m_nextClass;
    if (*link != nullptr) *link = m_nextClass;
}

OdString OdRxClass::name() const {
    return lm::drawing::odText(m_name);
}

OdRxObject* OdRxClass::create() const {
    return m_loaded && m_constructor != nullptr ? m_constructor() : nullptr;
}

OdRxObject* OdRxClass::getX(const OdRxClass* protocol) const noexcept {
    for (const OdRxClass* at = this; at != nullptr; at = at->m_parent)
        for (const Extension* entry = at->m_extensions; entry != nullptr; entry = entry->next)
            if (entry->protocol == protocol && entry->object != nullptr) return entry->object;
    return nullptr;
}

void OdRxClass::setX(const OdRxClass* protocol, OdRxObject* extension) {
    Extension** link = &m_extensions;
    while (*link != nullptr && (*link)->protocol != protocol) link = &(*link)->next;
    if (*link != nullptr) {
        Extension* const old = *link;
        *link = old->next;
        delete old;
    }
    if (extension != nullptr) m_extensions = new Extension{protocol, extension, m_extensions};
}

OdRxClass* OdRxClass::find(const char* name) noexcept {
    for (OdRxClass* at = g_firstClass; at != nullptr; at = at->m_nextClass)
        if (std::strcmp(at->m_name, name) == 0) return at;
    return nullptr;
}

OdRxClass* OdRxObject::desc() {
    static OdRxClass cls("OdRxObject", nullptr, nullptr);
    return &cls;
}

OdRxObject::~OdRxObject() = default;

OdRxObject* OdRxObject::queryX(const OdRxClass* wanted) const {
    if (isKindOf(wanted)) return const_cast<OdRxObject*>(this);
    return x(wanted);
}

OdRxObject* OdRxObject::x(const OdRxClass* wanted) const {
    return isA()->getX(wanted);
}
OdRxClass* OdRxObject::isA() const {
    return desc();
}
long OdRxObject::numRefs() const {
    return 1;
}
OdRxObject* OdRxObject::clone() const {
    return nullptr;
}
OdResult OdRxObject::copyFrom(const OdRxObject*) {
    return eNotApplicable;
}
int OdRxObject::comparedTo(const OdRxObject* other) const {
    return other == this ? 0 : 1;
}
bool OdRxObject::isEqualTo(const OdRxObject* other) const {
    return other == this;
}

void* OdRxObject::operator new(std::size_t size) {
    if (void* const block = odrxAlloc(size)) return block;
    throw std::bad_alloc();
}

void OdRxObject::operator delete(void* block) noexcept {
    odrxFree(block);
}

LM_RX_DEFINE_ABSTRACT(OdRxModule, OdRxObject)
OdRxModule::~OdRxModule() = default;

OdRxObject* OdRxModule::queryX(const OdRxClass* wanted) const {
    return isKindOf(wanted) ? const_cast<OdRxModule*>(this) : nullptr;
}

namespace lm::drawing {

void raiseNullPointer() {
    throw OdError(eNullObjectPointer);
}

void raiseWrongClass(const OdRxObject* object, const OdRxClass* wanted) {
    throw OdError_NotThatKindOfClass(object->isA(), wanted);
}

OdString moduleFileName(void* handle) {
    constexpr std::size_t kLimit = 260;
    struct link_map* map = nullptr;
    if (handle == nullptr || ::dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr)
        return OdString();
    const WideString path = system::fromUtf8(map->l_name);
    return OdString(WideView(path).substr(0, kLimit));
}

ModuleAllocationError::~ModuleAllocationError() = default;
const char* ModuleAllocationError::what() const noexcept {
    return "bad allocation";
}

} // namespace lm::drawing
