// SPDX-License-Identifier: MIT
// From handle to entry. Handles are handed out one after the other, so nearly all stand in a plain array; the
// few that lie far out stand in a hash table, so that a wild handle in a file costs no memory.
#pragma once

#include "model/node.h"

#include "drawing/database.h"

#include <unordered_map>

namespace lm::drawing {

class HandleIndex {
public:
    /// `shown` is kept as a view of the plain array, for look-ups that can't afford a call.
    explicit HandleIndex(DenseHandles& shown) : m_shown(shown) {}

    Node* find(std::uint64_t handle) const noexcept {
        if (handle < m_dense.size()) return m_dense[handle];
        if (m_far.empty()) return nullptr;
        const auto found = m_far.find(handle);
        return found == m_far.end() ? nullptr : found->second;
    }
    /// Tells how many objects are coming, so that the array can be made in one step.
    void expect(std::size_t objects, std::uint64_t highest) {
        m_objects = objects;
        if (highest < limit()) widen(static_cast<std::size_t>(highest) + 1 + kSpare);
    }
    void insert(std::uint64_t handle, Node* node) {
        if (handle >= m_dense.size() && handle < limit())
            widen(static_cast<std::size_t>(handle) + 1 + kSpare + m_dense.size() / 2);
        if (handle < m_dense.size())
            m_dense[static_cast<std::size_t>(handle)] = node;
        else
            m_far[handle] = node;
        ++m_objects;
    }

    /// Forgets an object; a handle that isn't its own stays.
    void remove(std::uint64_t handle, const Node* node) noexcept {
        if (handle < m_dense.size()) {
            if (m_dense[static_cast<std::size_t>(handle)] == node)
                m_dense[static_cast<std::size_t>(handle)] = nullptr;
        } else if (const auto found = m_far.find(handle); found != m_far.end() && found->second == node) {
            m_far.erase(found);
        }
    }

private:
    static constexpr std::size_t kSpare = 256;
    /// Makes the array longer; handles that lay far out until now and lie inside it then move over.
    void widen(std::size_t size) {
        m_dense.resize(size, nullptr);
        m_shown = {m_dense.data(), m_dense.size()};
        for (auto at = m_far.begin(); at != m_far.end();) {
            if (at->first >= size) {
                ++at;
                continue;
            }
            m_dense[static_cast<std::size_t>(at->first)] = at->second;
            at = m_far.erase(at);
        }
    }
    std::uint64_t limit() const noexcept { return 65536 + 8 * static_cast<std::uint64_t>(m_objects); }

    DenseHandles& m_shown;
    std::vector<Node*> m_dense;
    std::unordered_map<std::uint64_t, Node*> m_far;
    std::size_t m_objects = 0;
};

} // namespace lm::drawing
