// SPDX-License-Identifier: MIT
// How entries are divided from R13 on: behind which subclass mark each group stands, and in which order.
// Source: the DXF reference, entities, tables and objects.
#pragma once

#include <span>
#include <string_view>

namespace lm::drawing {

/// One part of an entry: the mark that begins it (group 100) and the codes of its groups in their order. The
/// code of an x stands for y and z as well.
struct Subclass {
    const char* mark;
    std::span<const short> codes;
    /// Takes the groups that no part lists, behind its own and in the order of the file.
    bool rest = false;
};

/// What tells the forms of one kind apart.
struct EntryFacts {
    int flags = 0;      ///< group 70
    int ownerFlags = 0; ///< group 70 of the POLYLINE that a VERTEX belongs to
    bool array = false; ///< an INSERT with rows or columns
};

/// The parts of an entity behind AcDbEntity; empty for SEQEND and for kinds that aren't known here.
std::span<const Subclass> partsOfEntity(std::string_view kind, const EntryFacts& facts);

/// Whether entities of this kind are known here.
bool isKnownEntity(std::string_view kind);

/// The mark of a table's records behind AcDbSymbolTableRecord; null for an unknown kind.
const char* markOfRecord(std::string_view kind);

/// The mark of an object's only part; null for kinds that have several, or that aren't known here.
const char* markOfObject(std::string_view kind);

/// Whether a group belongs to what all entities have: layer, colour, line type and the like.
bool isCommonCode(int code);

} // namespace lm::drawing
