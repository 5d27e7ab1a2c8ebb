// SPDX-License-Identifier: MIT
// What a save has to do beyond copying, found before the first byte is written: which entries of the source
// are not as the database has them, what comes in where, and which handles the file needs besides.
#pragma once

#include "dxf/write_lists.h"
#include "dxf/write_names.h"

#include <unordered_map>
#include <unordered_set>

namespace lm::drawing {

/// Entries that a block has in a file and not in the database.
struct FrameHandles {
    std::uint64_t begin = 0, end = 0;
};

class WritePlan {
public:
    explicit WritePlan(DatabaseData& data);

    DatabaseData& data;
    SpareHandles handles;
    RenamedRecords renamed;

    /// Live objects that came from no file, in the order of their making.
    std::vector<Node*> created;
    /// Whether anything is erased, so that entries have to be asked whether they are live.
    bool anyDead = false;
    /// References whose attributes aren't those of the source; tables whose records aren't.
    std::unordered_set<const Node*> attributesChanged, recordsChanged;
    /// Handles of the SEQEND of owners that need one and have none.
    std::unordered_map<const Node*, std::uint64_t> ends;
    /// The frames of blocks by record; those of a file only when they count.
    std::unordered_map<const Node*, BlockFrame> frames;
    std::unordered_map<const Node*, FrameHandles> frameHandles;

    bool isLive(const Node& node) const { return !anyDead || node.isLive(); }
    /// Whether an entry of the source is to be written from its groups one by one.
    bool isEdited(const Node& node) const {
        return node.has(Node::kDirty) || (!m_edited.empty() && m_edited.count(&node) != 0) || holdsText(node);
    }
    void edit(const Node& node) { m_edited.insert(&node); }

    /// Whether a block has to get its entries BLOCK and ENDBLK: those of the source are there.
    bool lacksBlock(const Node& record) const;

    /// What was kept without being read.
    KeptKinds kept() const;

private:
    static bool holdsText(const Node& node);
    void look(Node& node);
    void lookAtDead(Node& node);
    void planFrames();
    void editHeadOf(const Node* record);
    void planEnds();
    void planDictionaries();
    void planNames();
    void planLists();

    std::unordered_set<const Node*> m_edited;
    std::vector<Node*> m_dead;
    bool m_definitionDied = false;
};

/// Whether a reference has an attribute that is written.
bool hasLiveAttributes(const Node& reference);

} // namespace lm::drawing
