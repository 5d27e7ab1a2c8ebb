// SPDX-License-Identifier: MIT
// Where in the source something comes in that isn't there.
#include "dxf/write.h"

#include <algorithm>

namespace lm::drawing {

namespace {

/// Tables in the order that programs write them: layers name line types, and blocks come last.
constexpr std::string_view kTableOrder[] = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                            "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};

constexpr std::string_view kHeaderNames[] = {"ACADVER", "DWGCODEPAGE", "HANDSEED", "CLAYER", "INSBASE"};

std::size_t orderOf(std::string_view table) {
    return static_cast<std::size_t>(std::find(std::begin(kTableOrder), std::end(kTableOrder), table) -
                                    std::begin(kTableOrder));
}

} // namespace

void DrawingWriter::addChange(std::uint64_t offset, Rank rank, std::function<void()> write,
                              std::uint64_t skip) {
    m_changes.push_back({offset, skip, rank, std::move(write)});
}

void DrawingWriter::planChanges() {
    planTables();
    planBlocks();
    planEntries();
    planBodies();
    planSections();
    planEnd();
    planHeader(); // last, since it tells the handles that the others took
    std::stable_sort(m_changes.begin(), m_changes.end(), [](const Change& a, const Change& b) {
        return a.offset != b.offset ? a.offset < b.offset : a.rank < b.rank;
    });
}

const Section* DrawingWriter::section(std::string_view name) const {
    for (const Section& section : m_data.sections)
        if (section.name == name) return &section;
    return nullptr;
}

namespace {

template<class F>
void walk(const Source& source, const char* from, const char* to, F&& visit) {
    const auto each = [&](auto cursor) {
        Group group;
        while (cursor.next(group) == Step::kGroup)
            if (!visit(group, cursor.position())) return;
    };
    if (source.binary)
        each(BinaryCursor(source, from, to));
    else
        each(TextCursor(source, from, to));
}

/// Finds the sections that entries stand in, which are taken in the order of the source.
class SectionWalk {
public:
    explicit SectionWalk(const std::vector<Section>& sections)
        : m_at(sections.data()), m_end(m_at + sections.size()) {}
    /// The groups of an entry begin behind its type, so those of the last one may begin where the section
    /// ends.
    const Section* of(const Node& node) {
        while (m_at != m_end && m_at->offset + m_at->length < node.offset) ++m_at;
        return m_at != m_end && m_at->offset < node.offset ? m_at : nullptr;
    }

private:
    const Section* m_at;
    const Section* m_end;
};

} // namespace

/// Whether the next group, comments passed over, is this one.
bool DrawingWriter::groupIs(const char* place, int code, std::string_view value) const {
    constexpr int kComment = 999;
    bool same = false;
    walk(*m_source, place, m_source->end(), [&](const Group& group, const char*) {
        if (group.code == kComment) return true;
        same = group.code == code && stripped(group.raw()) == value;
        return false;
    });
    return same;
}

bool DrawingWriter::hasType(const char* from, const char* to, std::string_view type) const {
    bool found = false;
    walk(*m_source, from, to, [&](const Group& group, const char*) {
        found = group.code == 0 && stripped(group.raw()) == type;
        return !found;
    });
    return found;
}

void DrawingWriter::planHeader() {
    const Section* const header = section("HEADER");
    if (header == nullptr) return;
    for (const HeaderVariable& variable : m_data.header) {
        OutGroups value;
        const std::string_view name = std::string_view(variable.name).substr(variable.name.empty() ? 0 : 1);
        if (std::find(std::begin(kHeaderNames), std::end(kHeaderNames), name) != std::end(kHeaderNames)) {
            value = headerValue(name);
        } else if (!m_plan.renamed.isEmpty()) {
            walk(*m_source, at(variable.offset), at(variable.offset + variable.length),
                 [&](const Group& group, const char*) {
                     if (const OdString* name = m_plan.renamed.find(kKindNone, group))
                         value.push_back(OutGroup::text(group.code, *name));
                     return value.empty();
                 });
        }
        if (!value.empty())
            addChange(
                variable.offset, Rank::kHeader, [this, value] { m_out.put(value); }, variable.length);
    }
    if (!hasVariable("ACADVER")) {
        // Programs look at the version before anything else.
        std::uint64_t first = endOf(*header);
        walk(*m_source, at(header->offset), at(endOf(*header)), [&](const Group& group, const char* end) {
            if (group.code == 2) first = offsetOf(end);
            return group.code != 2;
        });
        addChange(first, Rank::kHeader, [this] {
            m_out.put(9, "$ACADVER");
            m_out.put(headerValue("ACADVER"));
        });
    }
    addChange(endOf(*header), Rank::kTail, [this] { writeTail("HEADER"); });
}

// --- tables
// -------------------------------------------------------------------------------------------------------------

/// The first name that isn't in braces, as the reader has it.
std::string_view DrawingWriter::nameOfTable(const Node& head) const {
    constexpr int kName = 2, kBraces = 102, kFirstXData = 1000;
    std::string_view name;
    bool braces = false;
    walk(*m_source, at(head.offset), at(endOf(head)), [&](const Group& group, const char*) {
        if (group.code == kBraces) braces = stripped(group.raw()).substr(0, 1) == "{";
        const bool found = group.code == kName && !braces;
        if (found) name = stripped(group.raw());
        return !found && group.code < kFirstXData;
    });
    return name;
}

/// Gives the tables of the source their ends where they lack them, and lists them.
std::vector<DrawingWriter::SeenTable> DrawingWriter::closeTables() {
    std::vector<SeenTable> seen;
    SectionWalk walker(m_data.sections);
    const Section* current = nullptr; // the section of the last entry
    const Node* open = nullptr;       // a table whose end wasn't met yet
    const char* last = nullptr;       // the end of the last entry
    const auto close = [&](const char* next) {
        if (open != nullptr && !hasType(last, next, "ENDTAB"))
            addChange(offsetOf(last), Rank::kTableEnd, [this] { m_out.put(0, "ENDTAB"); });
        open = nullptr;
    };
    m_data.nodes.forEach([&](Node& node) {
        const Section* const section = node.offset != 0 ? walker.of(node) : nullptr;
        if (section == nullptr || section->name != "TABLES") return;
        if (section != current && open != nullptr) close(at(endOf(*current)));
        current = section;
        const char* const start = typeStart(node);
        const bool head = node.kind == kKindTable && !node.has(Node::kTableRecord);
        if (head || (open != nullptr && last != start && hasType(last, start, "ENDTAB"))) close(start);
        if (head) {
            open = &node;
            seen.push_back({orderOf(nameOfTable(node)), offsetOf(start)});
        }
        last = at(endOf(node));
    });
    if (open != nullptr) close(at(endOf(*current)));
    return seen;
}

void DrawingWriter::planTables() {
    const Section* const tables = section("TABLES");
    if (tables == nullptr) return;
    const std::vector<SeenTable> seen = closeTables();
    for (std::size_t order = 0; order < std::size(kTableOrder); ++order) {
        const auto isSame = [order](const SeenTable& table) { return table.order == order; };
        if (std::any_of(seen.begin(), seen.end(), isSame) || planTableOf(kTableOrder[order])) continue;
        const auto later = std::find_if(seen.begin(), seen.end(), [order](const SeenTable& table) {
            return table.order > order && table.order < std::size(kTableOrder);
        });
        addChange(later != seen.end() ? later->offset : endOf(*tables), Rank::kTable,
                  [this, order] { writeTable(kTableOrder[order]); });
    }
}

/// Records that stand in the source without their table go into one where the first of them stands: there may
/// be other tables between them, or ends of tables.
bool DrawingWriter::planTableOf(std::string_view name) {
    Node* const table = newTable(name);
    Node* first = nullptr;
    for (Node* record = table != nullptr ? table->firstPart : nullptr; record != nullptr;
         record = record->next) {
        if (record->offset == 0) continue;
        m_gathered.insert(record);
        if (first == nullptr || record->offset < first->offset) first = record;
    }
    if (first == nullptr) return false;
    addChange(offsetOf(typeStart(*first)), Rank::kTable, [this, name] { writeTable(name); });
    return true;
}

/// Records go behind the last one that the table has in the source.
std::uint64_t DrawingWriter::anchorOfRecord(const Node& table) {
    const auto [known, isNew] = m_anchors.try_emplace(&table, endOf(table));
    if (isNew)
        for (const Node* part = table.firstPart; part != nullptr; part = part->next)
            if (part->offset != 0) known->second = endOf(*part);
    return known->second;
}

// --- blocks and entities
// ------------------------------------------------------------------------------------------------

/// Ends that blocks lack, and where these blocks end.
void DrawingWriter::planBlocks() {
    std::unordered_map<const Node*, Node*> without; // record by BLOCK
    for (const BlockFrame& frame : m_data.frames)
        if (frame.end == nullptr && frame.begin->offset != 0) without.emplace(frame.begin, frame.record);
    if (without.empty()) return;
    SectionWalk walker(m_data.sections);
    const Section* current = nullptr; // the section of the open block
    Node* open = nullptr;
    std::uint64_t last = 0;
    const auto close = [&] {
        if (open == nullptr) return;
        Node* const record = open;
        m_plan.frameHandles.emplace(record, FrameHandles{0, m_plan.handles.take()});
        m_blockEnds.emplace(record, last);
        if (m_plan.isLive(*record))
            addChange(last, Rank::kBlockEnd, [this, record] {
                m_out.put({"ENDBLK", m_maker.blockEnd(*record)});
            });
        open = nullptr;
    };
    m_data.nodes.forEach([&](Node& node) {
        if (node.offset == 0) return;
        const Section* const section = walker.of(node);
        if (node.kind == kKindBlock || section != current) close();
        if (const auto found = without.find(&node); found != without.end()) {
            open = found->second;
            current = section;
        }
        last = endOf(node);
    });
    close();
}

std::uint64_t DrawingWriter::anchorOfParts(const Node& owner) {
    const auto [known, isNew] = m_anchors.try_emplace(&owner, endOf(owner));
    if (isNew)
        for (const Node* part = owner.firstPart; part != nullptr; part = part->next) {
            if (part->offset == 0) continue;
            if (part->kind == kKindSeqend) {
                known->second = offsetOf(typeStart(*part));
                break;
            }
            known->second = endOf(*part);
        }
    return known->second;
}

/// Entities of model space and of the first paper layout stand in a section of their own, others in their
/// block.
std::uint64_t DrawingWriter::anchorInBlock(const Node& record) {
    if (&record == m_data.fixed.modelSpace || &record == m_data.fixed.paperSpace) return 0;
    const auto end = m_blockEnds.find(&record);
    if (end != m_blockEnds.end()) return end->second;
    const auto frame = m_plan.frames.find(&record);
    if (frame == m_plan.frames.end() || frame->second.begin->offset == 0 || frame->second.end == nullptr)
        return 0;
    return offsetOf(typeStart(*frame->second.end));
}

void DrawingWriter::planEntries() {
    for (Node* node : m_plan.created) {
        Node* const owner = node->owner;
        if (owner == nullptr) continue;
        if (node->has(Node::kTableRecord)) {
            if (owner->offset != 0)
                addChange(anchorOfRecord(*owner), Rank::kEntry, [this, node] { writeNode(*node); });
            continue;
        }
        if (!node->has(Node::kEntity) || node->kind == kKindSeqend) continue;
        if (owner->has(Node::kEntity)) {
            if (owner->offset != 0)
                addChange(anchorOfParts(*owner), Rank::kPart, [this, node] { writeNode(*node); });
            continue;
        }
        if (const std::uint64_t anchor = anchorInBlock(*owner))
            addChange(anchor, Rank::kEntry, [this, node] { writeEntity(*node); });
    }
    planMissingRecords();
    for (const auto& entry : m_plan.ends) {
        Node* const owner = const_cast<Node*>(entry.first);
        if (owner->offset != 0 && m_plan.isLive(*owner))
            addChange(anchorOfParts(*owner), Rank::kPartsEnd, [this, owner] { writeEnd(*owner); });
    }
}

/// Records that every program looks for, in tables of the source.
void DrawingWriter::planMissingRecords() {
    const FixedEntries& f = m_data.fixed;
    for (Node* const table : {f.viewportTable, f.linetypeTable, f.layerTable, f.styleTable, f.viewTable,
                              f.ucsTable, f.appTable, f.dimstyleTable, f.blockTable}) {
        if (table == nullptr || table->offset == 0 || m_skeleton.records(*table).empty()) continue;
        m_plan.edit(*table);
        m_plan.recordsChanged.insert(table);
        addChange(anchorOfRecord(*table), Rank::kEntry, [this, table] {
            for (const OutEntry& entry : m_skeleton.records(*table)) m_out.put(entry);
        });
    }
}

// --- sections
// -----------------------------------------------------------------------------------------------------------

void DrawingWriter::planSections() {
    for (const Section& section : m_data.sections) {
        if (section.name != "HEADER" && section.name != "TABLES" && this->section(section.name) == &section &&
            hasTail(section.name))
            addChange(endOf(section), Rank::kTail, [this, &section] { writeTail(section.name); });
        if (!groupIs(at(endOf(section)), 0, "ENDSEC"))
            addChange(endOf(section), Rank::kSectionEnd, [this] { m_out.put(0, "ENDSEC"); });
    }
    for (std::size_t i = 0; i < std::size(kSectionOrder); ++i) {
        if (section(kSectionOrder[i]) != nullptr) continue;
        const Section* next = nullptr;
        for (std::size_t k = i + 1; k < std::size(kSectionOrder) && next == nullptr; ++k)
            next = section(kSectionOrder[k]);
        const Section& last = m_data.sections.back();
        std::uint64_t place = next != nullptr ? next->offset : endOf(last);
        if (next == nullptr && groupIs(at(place), 0, "ENDSEC"))
            walk(*m_source, at(place), m_source->end(), [&](const Group& group, const char* end) {
                place = offsetOf(end);
                return group.code != 0;
            });
        addChange(place, Rank::kSection, [this, i] { writeSection(kSectionOrder[i]); });
    }
}

void DrawingWriter::planEnd() {
    const std::uint64_t behind = endOf(m_data.sections.back());
    const char* start = at(behind);
    const std::uint64_t end = offsetOf(m_source->end());
    bool found = false;
    walk(*m_source, at(behind), m_source->end(), [&](const Group& group, const char* next) {
        found = group.code == 0 && stripped(group.raw()) == "EOF";
        if (!found) start = next;
        return !found;
    });
    // Behind the last whole group there may be the beginning of one, or blank lines: with EOF behind it
    // nobody could read that.
    const std::uint64_t place = offsetOf(start);
    if (!found) addChange(place, Rank::kLineEnd, [this] { m_out.endLine(); });
    addChange(
        place, Rank::kFileEnd,
        [this, found] {
            m_out.putPageMark();
            if (!found) m_out.put(0, "EOF");
        },
        found ? 0 : end - place);
}

} // namespace lm::drawing
