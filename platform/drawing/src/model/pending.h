// SPDX-License-Identifier: MIT
// What the closing of objects has still to tell. An object that is new or changed stands in the list until
// reactors heard of it, so the end of a transaction finds it however long ago it was opened.
#pragma once

#include "model/node.h"

#include <unordered_map>
#include <vector>

namespace lm::drawing {

class Pending {
public:
    Pending() = default;
    Pending(const Pending&) = delete;
    Pending& operator=(const Pending&) = delete;
    /// What is still held goes without a word.
    ~Pending() { dropAll(); }

    /// An object that told everything has something to tell again.
    void add(Node& node) {
        m_nodes.push_back(&node);
        ++m_count;
    }
    /// An object has nothing to tell any more.
    void remove(const Node& node) noexcept;

    /// Keeps a part open that came with its owner: nobody else may hold it, and to let it go at once would
    /// tell of it while the owner is still being appended.
    void hold(Node& owner, OdSmartPtr<OdDbObject> part) { m_held[&owner].push_back(std::move(part)); }
    bool holds(Node& owner) const { return !m_held.empty() && m_held.count(&owner) != 0; }
    /// Closes the parts of an owner in their order. An exception of a reactor keeps none of them open; the
    /// first one passes.
    void closeHeld(Node& owner);
    /// Lets the parts of an owner go without a word.
    void dropHeld(Node& owner) noexcept;
    void dropAll() noexcept;

    /// Tells reactors what objects that are open would tell at their closing, each object once. An exception
    /// keeps no other object from being told of; the first one passes.
    void tellAll();

private:
    using Parts = std::vector<OdSmartPtr<OdDbObject>>;
    static void forgetWords(const Parts& parts) noexcept;
    void compact();
    void tryToCompact() noexcept;

    std::vector<Node*> m_nodes; ///< in the order of coming; may name nodes that told already
    std::size_t m_count = 0;    ///< of those that didn't
    std::unordered_map<Node*, Parts> m_held;
};

} // namespace lm::drawing
