// SPDX-License-Identifier: MIT
// Writes a drawing: goes through the source from front to end, copies what is as it was, and puts in the rest
// where it belongs. A drawing without a source is nothing but what is put in.
#pragma once

#include "dxf/write_entry.h"
#include "dxf/write_groups.h"

#include <functional>

namespace lm::drawing {

/// Things that come in at one place of the source, in this order.
enum class Rank : unsigned char {
    kLineEnd, ///< the end of the last line, where it lacks it
    kHeader,
    kPart,       ///< attributes of the reference in front
    kPartsEnd,   ///< the SEQEND behind them
    kEntry,      ///< entities of a block, records of a table
    kBlockEnd,   ///< an end that a block lacked
    kTableEnd,   ///< an end that a table lacked
    kTable,      ///< a table in front of the next, or at the end
    kTail,       ///< what stands at the end of a section, behind all that the source has open there
    kSectionEnd, ///< an end that a section lacked
    kSection,    ///< a section in front of the next, or at the end
    kFileEnd
};

/// One of them.
struct Change {
    std::uint64_t offset = 0;
    std::uint64_t skip = 0; ///< bytes of the source that it stands in place of
    Rank rank = Rank::kEntry;
    std::function<void()> write;
};

struct StoredBody;

class DrawingWriter {
public:
    DrawingWriter(DatabaseData& data, const WriteOptions& options, const FileForm& form,
                  const TextEncoder& encoder, bool watch, const ByteSink& sink);
    void run();
    KeptKinds kept() const { return m_plan.kept(); }
    /// The line for a number that no file can hold.
    std::string describe(const NotFinite& number) const;

private:
    // write.cpp: through the source
    void writeSource();
    void visit(Node& node);
    void drop(const char* begin, const char* end);
    void copyTo(const char* to);
    void applyChangesAt(const char* at);
    void copyBytes(const char* from, const char* to);
    /// Whether the bytes from m_pos on hold some that mean something else in the file.
    bool needsConversion(const char* to);
    const char* typeStart(const Node& node) const;
    const char* at(std::uint64_t offset) const { return m_source->begin() + offset; }
    std::uint64_t offsetOf(const char* at) const {
        return static_cast<std::uint64_t>(at - m_source->begin());
    }

    // write_changes.cpp: what comes in where
    void planChanges();
    void planHeader();
    /// A table of the source: which one of the order, and where it begins.
    struct SeenTable {
        std::size_t order;
        std::uint64_t offset;
    };
    std::vector<SeenTable> closeTables();
    void planTables();
    std::string_view nameOfTable(const Node& head) const;
    bool planTableOf(std::string_view name);
    void planBlocks();
    void planEntries();
    void planMissingRecords();
    void planSections();
    void planEnd();
    void addChange(std::uint64_t offset, Rank rank, std::function<void()> write, std::uint64_t skip = 0);
    bool groupIs(const char* at, int code, std::string_view value) const;
    bool hasType(const char* from, const char* to, std::string_view type) const;
    std::uint64_t anchorOfRecord(const Node& table);
    std::uint64_t anchorOfParts(const Node& owner);
    std::uint64_t anchorInBlock(const Node& record);
    const Section* section(std::string_view name) const;
    static std::uint64_t endOf(const Section& section) { return section.offset + section.length; }
    std::uint64_t endOf(const Node& node) const { return node.offset + node.length; }

    // write_bodies.cpp: what newer files hold apart from their entities
    void planBodies();
    void writeBody(const Node& node, const StoredBody& body);

    // write_new.cpp: what has no place in the source
    void writeSection(std::string_view name);
    void writeTail(std::string_view section);
    bool hasTail(std::string_view section) const;
    void writeHeaderTail();
    bool hasVariable(std::string_view name) const;
    OutGroups headerValue(std::string_view name) const;
    void writeTable(std::string_view name);
    void writeNewTables();
    bool hasNewTable(std::string_view name) const;
    Node* newTable(std::string_view name) const;
    void writeBlock(Node& record);
    void writeEntity(Node& node);
    void writeParts(Node& owner);
    void writeEnd(Node& owner);
    void writeNode(Node& node);
    void writeObjects();

    DatabaseData& m_data;
    WriteOptions m_options;
    WritePlan m_plan;
    Skeleton m_skeleton;
    EntryMaker m_maker;
    GroupWriter m_out;
    const Source* m_source;
    std::string m_codePage;          ///< what $DWGCODEPAGE says
    bool m_old;                      ///< every entry of the source is upgraded
    bool m_sameForm = false;         ///< bytes of the source may stay, as far as the form goes
    bool m_samePage = false;         ///< and as far as their encoding goes
    bool m_ended = false;            ///< EOF was converted; nothing comes behind it
    const Node* m_writing = nullptr; ///< the latest entry that was made from its groups
    const char* m_pos = nullptr;
    const char* m_lastEnd = nullptr; ///< of the last entry that stays
    const char* m_high = nullptr;    ///< the first byte from 0x80 on from m_pos, or behind it
    std::vector<Change> m_changes;
    std::size_t m_next = 0;
    std::unordered_set<const Node*>
        m_gathered; ///< records of the source that are written in a table elsewhere
    std::unordered_map<const Node*, std::uint64_t> m_anchors;
    std::unordered_map<const Node*, std::uint64_t> m_blockEnds; ///< of blocks without an end in the file

    friend void writeDrawing(OdDbDatabase&, const ByteSink&, const WriteOptions&, KeptKinds*);
};

/// The sections in the order that programs write them.
extern const std::string_view kSectionOrder[6];

} // namespace lm::drawing
