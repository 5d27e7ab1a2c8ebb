// SPDX-License-Identifier: MIT
#include "framework/values/object.h"

namespace {

constexpr CRuntimeClass kRoot("CObject", sizeof(CObject), nullptr);

} // namespace

bool CRuntimeClass::isDerivedFrom(const CRuntimeClass* other) const noexcept {
    for (const CRuntimeClass* at = this; at != nullptr; at = at->m_base)
        if (at == other) return true;
    return false;
}

const CRuntimeClass* CObject::GetRuntimeClass() const {
    return runtimeClass();
}

CObject::~CObject() = default;

void CObject::Serialize(CArchive&) {}

bool CObject::IsKindOf(const CRuntimeClass* wanted) const {
    return GetRuntimeClass()->isDerivedFrom(wanted);
}

const CRuntimeClass* CObject::runtimeClass() noexcept {
    return &kRoot;
}
