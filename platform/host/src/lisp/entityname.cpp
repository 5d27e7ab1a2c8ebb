// SPDX-License-Identifier: MIT
#include "entityname.h"

#include <algorithm>

namespace lm::host::lisp {

namespace {

/// For the printed form alone. Sessions belong to the main thread.
int lastSet = 0;

} // namespace

WideString EntityName::printed() const {
    const OdDbHandle handle = (m_endOf.isNull() ? id() : m_endOf).getHandle();
    return system::widen("<Entity name: ") + WideString(handle.ascii().view()) + system::widen(">");
}

bool EntityName::sameAs(const Foreign& other) const {
    const auto& name = static_cast<const EntityName&>(other);
    if (this == &other) return true;
    if (!m_endOf.isNull()) return m_endOf == name.m_endOf;
    return !id().isNull() && id() == name.id();
}

SelectionSet::SelectionSet(Heap& heap) : Foreign(kKind, heap), m_heap(heap), m_number(++lastSet) {}

void SelectionSet::add(OdDbObjectId id) {
    if (has(id)) return;
    m_heap.charge(kBytesEach);
    m_charged += kBytesEach;
    m_ids.push_back(id);
    m_members.insert(id.node());
}

bool SelectionSet::remove(OdDbObjectId id) {
    if (m_members.erase(id.node()) == 0) return false;
    m_ids.erase(std::find(m_ids.begin(), m_ids.end(), id));
    m_charged -= kBytesEach;
    m_heap.discharge(kBytesEach);
    return true;
}

WideString SelectionSet::printed() const {
    return system::widen("<Selection set: " + std::to_string(m_number) + ">");
}

} // namespace lm::host::lisp
