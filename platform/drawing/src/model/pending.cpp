// SPDX-License-Identifier: MIT
#include "model/pending.h"

#include "model/databasedata.h"

#include <unordered_set>

namespace lm::drawing {

namespace {

bool isWaiting(const Node& node) noexcept {
    return node.body != nullptr && ObjectAccess::isPending(*node.body);
}

} // namespace

void Pending::remove(const Node& node) noexcept {
    constexpr std::size_t kSlack = 16;
    --m_count;
    if (!m_nodes.empty() && m_nodes.back() == &node) m_nodes.pop_back(); // the usual case: the latest one
    if (m_count == 0)
        m_nodes.clear();
    else if (m_nodes.size() > 2 * m_count + kSlack)
        tryToCompact();
}

void Pending::tryToCompact() noexcept {
    try {
        compact();
    } catch (const std::bad_alloc&) {
        return; // a longer list is no harm
    }
}

/// Leaves those that have something to tell, once each.
void Pending::compact() {
    std::unordered_set<const Node*> known;
    std::erase_if(m_nodes, [&](const Node* node) { return !isWaiting(*node) || !known.insert(node).second; });
}

void Pending::closeHeld(Node& owner) {
    const auto found = m_held.find(&owner);
    if (found == m_held.end()) return;
    Parts parts = std::move(found->second);
    m_held.erase(found);
    std::exception_ptr first;
    for (OdSmartPtr<OdDbObject>& held : parts) {
        const OdSmartPtr<OdDbObject> part = std::move(held);
        if (part->numRefs() > 1) continue; // whoever holds it as well closes it
        try {
            part->downgradeOpen();
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

void Pending::forgetWords(const Parts& parts) noexcept {
    for (const OdSmartPtr<OdDbObject>& part : parts)
        if (part->numRefs() == 1) ObjectAccess::clearPending(*part.get());
}

void Pending::dropHeld(Node& owner) noexcept {
    const auto found = m_held.find(&owner);
    if (found == m_held.end()) return;
    const Parts parts = std::move(found->second);
    m_held.erase(found);
    forgetWords(parts);
}

void Pending::dropAll() noexcept {
    const auto held = std::move(m_held);
    m_held.clear();
    for (const auto& [owner, parts] : held) forgetWords(parts);
}

void Pending::tellAll() {
    std::unordered_set<const Node*> told;
    std::exception_ptr first;
    for (bool more = m_count != 0; more;) {
        more = false;
        compact();
        const std::vector<Node*> now = m_nodes; // callbacks may open and change further objects
        for (Node* const node : now) {
            if (!isWaiting(*node) || !told.insert(node).second) continue;
            more = true;
            try {
                ObjectAccess::tellClosed(*node->body);
            } catch (...) {
                if (!first) first = std::current_exception();
            }
        }
    }
    if (first) std::rethrow_exception(first);
}

} // namespace lm::drawing
