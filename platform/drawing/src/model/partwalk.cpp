// SPDX-License-Identifier: MIT
#include "drawing/partwalk.h"

#include "model/databasedata.h"
#include "model/fetch.h"

namespace lm::drawing {

namespace {
// In entities. The memory answers a request about as late as a walk needs for a few references.
constexpr int kNodesAhead = 12;
constexpr int kTagsAhead = 6;
} // namespace

PartWalk::PartWalk(OdDbObjectId owner) noexcept : m_at(owner.isValid() ? owner.node()->firstPart : nullptr) {
    m_nodes = m_tags = m_at;
    for (int i = 0; i < kNodesAhead && m_nodes != nullptr; ++i) {
        fetchNodesOf(*m_nodes);
        m_nodes = m_nodes->next;
        if (i < kTagsAhead) {
            fetchTagsOf(*m_tags);
            m_tags = m_tags->next;
        }
    }
    skip();
}

PartWalk PartWalk::parts() const noexcept {
    PartWalk walk;
    walk.m_at = m_at->firstPart;
    walk.skip();
    return walk;
}

void PartWalk::next() noexcept {
    m_at = m_at->next;
    if (m_tags != nullptr) lookAhead();
    skip();
}

void PartWalk::lookAhead() noexcept {
    if (m_nodes != nullptr) {
        fetchNodesOf(*m_nodes);
        m_nodes = m_nodes->next;
    }
    fetchTagsOf(*m_tags);
    m_tags = m_tags->next;
    if (m_at != nullptr && m_at->next != nullptr) fetchTextsOf(*m_at->next);
}

void PartWalk::skip() noexcept {
    while (m_at != nullptr && (m_at->kind == kKindSeqend || m_at->isErased())) m_at = m_at->next;
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
