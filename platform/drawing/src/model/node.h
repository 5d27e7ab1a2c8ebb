// SPDX-License-Identifier: MIT
// The entry of an object in its database: everything that must be known before the object itself is read. An
// object id is a pointer to one of these. Entries lie densely in file order and never move.
#pragma once

#include "drawing/object.h"

#include <cstdint>

namespace lm::drawing {

/// Entry of one object, one line of the cache. The memory of an entry is never given to anything else, not
/// even after its database went: it then reads as zeros, so an id that is kept too long finds no database and
/// answers as null.
struct alignas(64) Node {
    OdDbObject* body = nullptr; ///< made at the first opening
    Node* owner = nullptr;
    Node* next = nullptr;      ///< the part behind this one in the owner's list
    Node* firstPart = nullptr; ///< parts: entities of a block, attributes of a reference, records of a table
    Node* lastPart = nullptr;
    std::uint64_t handle = 0;
    std::uint64_t offset : 48 = 0; ///< of the object's groups in its source, behind the type name
    std::uint64_t kind : 16 = 0;   ///< index of the DXF name in the database's list of kinds
    std::uint32_t length = 0;      ///< of these groups in bytes; 0 for an object that came from no file
    std::uint8_t flags = 0;

    enum Flag : std::uint8_t {
        kErased = 1,
        kEntity = 2, ///< stands in a block or below a reference
        kDirty = 4,  ///< differs from its source
        kPaper = 8,  ///< marked for paper space in the file
        kTableRecord = 16,
        kFramed = 32, ///< a block whose BLOCK entry was found
        kGone = 64    ///< its appending was taken back: no id of it is valid
    };
    /// The database, null once it went. Only for entries of an arena.
    inline OdDbDatabase* database() const noexcept;
    bool has(Flag flag) const noexcept { return (flags & flag) != 0; }
    bool isErased() const noexcept { return has(kErased); }
    /// Neither erased itself nor below an erased owner.
    bool isLive() const noexcept {
        for (const Node* at = this; at != nullptr; at = at->owner)
            if ((at->flags & (kErased | kGone)) != 0) return false;
        return true;
    }
    void appendPart(Node* part) noexcept {
        part->owner = this;
        part->next = nullptr;
        if (lastPart != nullptr)
            lastPart->next = part;
        else
            firstPart = part;
        lastPart = part;
    }
};

/// Gives out entries in address space of its own, in pieces that begin with the database that they belong to.
/// At the end the memory goes back to the system, the addresses stay taken and read as zeros.
class NodeArena {
public:
    explicit NodeArena(OdDbDatabase& database) : m_database(database) {}
    NodeArena(const NodeArena&) = delete;
    NodeArena& operator=(const NodeArena&) = delete;
    ~NodeArena();

    Node* make();
    std::size_t count() const noexcept;
    /// Lets no id find the database any more; the entries stay readable until the arena goes.
    void forgetDatabase() noexcept;

    template<class F>
    void forEach(F&& visit) {
        for (std::size_t p = 0; p < m_pieces.size(); ++p)
            for (std::size_t i = 0; i < usedIn(p); ++i) visit(m_pieces[p]->nodes()[i]);
    }

    /// The same for entries from a number on, counted in order of their making; gives the number of the next
    /// one to be made.
    template<class F>
    std::size_t forEachFrom(std::size_t first, F&& visit) {
        for (std::size_t p = first / kNodes; p < m_pieces.size(); ++p)
            for (std::size_t i = p == first / kNodes ? first % kNodes : 0; i < usedIn(p); ++i)
                visit(m_pieces[p]->nodes()[i]);
        return m_pieces.empty() ? 0 : (m_pieces.size() - 1) * kNodes + m_used;
    }

    /// Pieces begin at multiples of their size, so an entry finds the head of its piece.
    static constexpr std::size_t kPiece = std::size_t{1} << 20;
    struct Head {
        OdDbDatabase* database;
        Node* nodes() { return reinterpret_cast<Node*>(this) + 1; }
    };
    static constexpr std::size_t kNodes = kPiece / sizeof(Node) - 1;

private:
    std::size_t usedIn(std::size_t piece) const noexcept {
        return piece + 1 < m_pieces.size() ? kNodes : m_used;
    }
    void addPiece();

    OdDbDatabase& m_database;
    std::vector<Head*> m_pieces;
    std::size_t m_used = kNodes; // of the last piece
    char* m_reserve = nullptr;   // address space for further pieces
    std::size_t m_reserved = 0;
};

OdDbDatabase* Node::database() const noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(this);
    return reinterpret_cast<const NodeArena::Head*>(address & ~(NodeArena::kPiece - 1))->database;
}

static_assert(sizeof(Node) == 64);

} // namespace lm::drawing
