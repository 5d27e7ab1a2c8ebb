// SPDX-License-Identifier: MIT
#include "drawing/partwalk.h"

#include "model/databasedata.h"
#include "model/fetch.h"

namespace lm::drawing {

PartWalk::PartWalk(OdDbObjectId owner) noexcept : m_at(owner.isValid() ? owner.stub()->firstPart : nullptr) {
    skip();
}

void PartWalk::next() noexcept {
    m_at = m_at->next;
    skip();
}

void PartWalk::skip() noexcept {
    while (m_at != nullptr && (m_at->kind == kKindSeqend || m_at->isErased())) m_at = m_at->next;
    fetchAhead(m_at);
}

bool PartWalk::isReference() const noexcept {
    return m_at->kind == kKindInsert;
}
bool PartWalk::isAttribute() const noexcept {
    return m_at->kind == kKindAttrib;
}

const OdDbEntity* PartWalk::entity() const {
    OdDbObject* const body = m_at->body != nullptr ? m_at->body : m_at->database()->data().bodyOf(m_at);
    return static_cast<const OdDbEntity*>(body);
}

const OdDbBlockReference* PartWalk::reference() const {
    return isReference() ? static_cast<const OdDbBlockReference*>(entity()) : nullptr;
}

const OdDbAttribute* PartWalk::attribute() const {
    return isAttribute() ? static_cast<const OdDbAttribute*>(entity()) : nullptr;
}

} // namespace lm::drawing
