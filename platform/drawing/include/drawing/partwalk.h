// SPDX-License-Identifier: MIT
// PartWalk: the plain walk over the entities of a block, or the attributes of a reference, for hot paths. It
// counts nothing and calls nothing virtual: what it shows is the database's own and holds until the database
// changes.
//
//     for (PartWalk entity(space); !entity.done(); entity.next())
//         if (entity.isReference())
//             for (PartWalk part = entity.parts(); !part.done(); part.next()) use(part.attribute()->tag());
#pragma once

#include "drawing/blockreference.h"

namespace lm::drawing {

/// A walk in drawing order, past erased parts. Appending and erasing during the walk are allowed.
class LM_DRAWING_API PartWalk {
public:
    /// Begins at the first part of an owner; a null or invalid id has none.
    explicit PartWalk(OdDbObjectId owner) noexcept;

    bool done() const noexcept { return m_at == nullptr; }
    void next() noexcept;
    OdDbObjectId id() const noexcept { return OdDbObjectId(m_at); }
    bool isReference() const noexcept;
    bool isAttribute() const noexcept;
    /// The walk over what hangs on the current part.
    PartWalk parts() const noexcept;
    /// The current part, read at the first time; never null before the end.
    const OdDbEntity* entity() const;
    /// The current part as a reference or as an attribute; null for another kind.
    const OdDbBlockReference* reference() const;
    const OdDbAttribute* attribute() const;

private:
    PartWalk() = default;
    void skip() noexcept;
    void lookAhead() noexcept;
    Node* m_at = nullptr;
    // Run in front of the walk over a block and ask the memory for what comes: nodes first, then tags.
    Node* m_nodes = nullptr;
    Node* m_tags = nullptr;
};

} // namespace lm::drawing
