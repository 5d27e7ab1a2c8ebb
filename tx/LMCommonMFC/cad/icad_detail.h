// SPDX-License-Identifier: MIT
// What the groups of CICad share among themselves.
#pragma once

#include "cad/icad.h"
#include "vocabulary/cmensagem.h"

#include "lmcommon/ceatributo.h"

#include <memory>
#include <vector>

namespace lm::cad {

/// Deletes a list with its records.
struct ListDeleter {
    void operator()(CEListaAtributos* list) const {
        list->releaseAllAttributes();
        delete list;
    }
};
/// A list that is being filled; it goes with its records when an exception passes.
using ListOwner = std::unique_ptr<CEListaAtributos, ListDeleter>;

/// Hands a record to a list.
void append(CEListaAtributos& list, std::unique_ptr<CEAtributo> record);

/// Deletes a block that was never handed out, with its records.
struct BlockDeleter {
    void operator()(CEBloco* block) const;
};
using BlockOwner = std::unique_ptr<CEBloco, BlockDeleter>;

/// A list of blocks that is being filled: made at the first one, gone with all of them when an exception
/// passes.
class BlockListOwner {
public:
    BlockListOwner() = default;
    ~BlockListOwner();
    BlockListOwner(const BlockListOwner&) = delete;
    BlockListOwner& operator=(const BlockListOwner&) = delete;
    void append(BlockOwner block);
    /// The list for the caller; null when nothing came.
    std::list<CEBloco*>* release() { return m_blocks.release(); }

private:
    std::unique_ptr<std::list<CEBloco*>> m_blocks;
};

/// A map of blocks that is being filled.
class BlockMapOwner {
public:
    BlockMapOwner() = default;
    ~BlockMapOwner();
    BlockMapOwner(const BlockMapOwner&) = delete;
    BlockMapOwner& operator=(const BlockMapOwner&) = delete;
    /// Makes the map unless it is there.
    void make();
    /// Enters a block under the value of its attribute of exactly this tag. A block without it is dropped,
    /// and so is the one that had the value before.
    void enter(BlockOwner block, const RZString& keyTag);
    /// The map for the caller; null when none was made.
    std::map<WideString, CEBloco*>* release() { return m_blocks.release(); }

private:
    std::unique_ptr<std::map<WideString, CEBloco*>> m_blocks;
};

/// Enters the records of one walk into a block. One that a later record of the walk replaces is deleted,
/// since nobody else has it; one that the block brought along stays its owner's.
class RecordEntry {
public:
    explicit RecordEntry(CEBloco& block) : m_block(block) {}
    void enter(std::unique_ptr<CEAtributo> record);

private:
    CEBloco& m_block;
    std::vector<CEAtributo*> m_made;
};

/// The text without white space at both ends; the same buffer when there is none.
OdString trimmed(const OdString& text);

/// The record at a position of a chain, counted from 0; null beyond its ends and for a null chain.
OdSmartPtr<OdResBuf> recordAt(const OdSmartPtr<OdResBuf>& chain, int position);

/// Model space of the current database, null without one.
OdSmartPtr<OdDbBlockTableRecord> openModelSpace(OdDb::OpenMode mode = OdDb::kForRead);
/// The dictionary of the virtual schematic, null when the drawing has none.
OdSmartPtr<OdDbDictionary> openVirtualSchematic();

/// Tries the names of a role in languages 1, 2 and 3 until `search` answers true.
template<class Search>
bool tryNames(RZString (*nameOf)(int language), Search&& search) {
    constexpr int kLanguages = 3;
    for (int language = 1; language <= kLanguages; ++language)
        if (search(nameOf(language))) return true;
    return false;
}

/// An attribute of a walk: opened through its id where the reference stands in a database, taken from the
/// walk where it doesn't. Null for one that can't be opened; raises for an object of another class.
OdSmartPtr<OdDbAttribute> attributeAt(const OdDbObjectIterator& walk, bool resident);

} // namespace lm::cad
