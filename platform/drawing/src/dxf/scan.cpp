// SPDX-License-Identifier: MIT
#include "dxf/scan.h"

#include "dxf/cursor.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace lm::drawing {

namespace {

constexpr int kComment = 999;
constexpr int kFirstXData = 1000;

/// What the scan picks out of the groups of one entry.
struct Head {
    std::uint64_t owner = 0;
    std::string_view handle;
    std::string_view layer;
    std::string_view name;
    bool hasHandle = false;
    bool hasOwner = false;
    bool hasLayer = false;
    bool hasName = false;
    bool paper = false;
};

template<class Cursor>
class Scanner {
public:
    Scanner(DatabaseData& data, ScanResult& result)
        : m_data(data), m_source(*data.source), m_result(result), m_values(m_source),
          m_cursor(m_source, m_source.begin(), m_source.end()) {}

    void run() {
        advance();
        while (!atEnd()) {
            if (m_group.code == kComment) {
                advance();
                continue;
            }
            const std::string_view type = expectType("a section or the end of the file");
            if (type == "EOF") {
                m_closed = true;
                break;
            }
            if (type == "ENDSEC") { // one too many closes nothing
                report(Defect::kStrayEntry, m_before, "ENDSEC outside a section");
                advance();
                continue;
            }
            if (type != "SECTION") fail(m_group.data, "SECTION or EOF", type);
            section();
        }
        if (!m_closed) reportMissingEnd();
        if (m_data.sections.empty()) fail(m_source.begin(), "a section", "none");
    }

private:
    // --- groups
    // -------------------------------------------------------------------------------------------------

    bool atEnd() const { return m_step != Step::kGroup; }

    void advance() {
        do {
            m_before = m_cursor.position();
            m_step = m_cursor.next(m_group);
        } while (m_step == Step::kGroup && m_group.code == kComment);
        if (m_step == Step::kBadCode || m_step == Step::kCut) {
            // Blank lines and the mark of an old system may follow the last section.
            if (m_betweenSections && isBlankFrom(m_before))
                m_step = Step::kEnd;
            else if (m_step == Step::kBadCode)
                failCode(m_before);
        }
    }

    void reportMissingEnd() {
        const bool hasRest = m_before != m_source.end();
        report(Defect::kMissingEnd, hasRest ? m_before : m_source.end(),
               hasRest ? "the file has no EOF; what it ends with is no group and is dropped"
                       : "the file has no EOF");
    }

    bool isBlankFrom(const char* at) const {
        constexpr char kOldEnd = 0x1A;
        return !m_source.binary && std::all_of(at, m_source.end(), [](char c) {
            return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == kOldEnd;
        });
    }

    [[noreturn]] void failCode(const char* at) const {
        std::string found = "a code that doesn't exist";
        if (!m_source.binary) {
            const char* const line = findLineEnd(at, m_source.end());
            found = "\"" + printable({at, static_cast<std::size_t>(line - at)}) + "\"";
        }
        raise(at, "expected a group code, found " + found);
    }

    [[noreturn]] void fail(const char* at, const std::string& expected, std::string_view found) const {
        raise(at, "expected " + expected + ", found \"" + printable(found) + "\"");
    }

    [[noreturn]] void raise(const char* at, const std::string& reason) const {
        const std::string line = m_source.name + ": " + m_source.placeText(at) + ": " + reason;
        throw OdError(eBrokenFile, OdString(WideView(system::fromUtf8(line))));
    }

    static std::string printable(std::string_view text) {
        constexpr std::size_t kShown = 40;
        std::string out;
        for (const char c : text.substr(0, kShown)) out.push_back(c >= ' ' && c < 0x7F ? c : '?');
        return text.size() > kShown ? out + "..." : out;
    }

    void report(Defect defect, const char* at, std::string detail, std::uint64_t handle = 0) {
        const bool kept = m_data.report.count(defect) < Report::kKept;
        m_data.report.add({defect, handle, kept ? m_source.placeOf(at) : 0, std::move(detail)});
    }

    /// The type name of the entry that the current group begins.
    std::string_view expectType(const char* expected) {
        if (m_group.code != 0)
            raise(m_before,
                  std::string("expected ") + expected + ", found group code " + std::to_string(m_group.code));
        return stripped(m_group.raw());
    }

    // --- sections
    // -----------------------------------------------------------------------------------------------

    void section() {
        const char* const start = m_before;
        m_betweenSections = false;
        advance();
        if (atEnd() || m_group.code != 2) raise(m_before, "expected the name of a section");
        const std::string name(stripped(m_group.raw()));
        advance();
        if (name == "HEADER")
            header();
        else if (name == "TABLES")
            tables();
        else if (name == "BLOCKS")
            blocks();
        else if (name == "ENTITIES")
            entities();
        else if (name == "OBJECTS")
            objects();
        else
            skipSection();
        if (atEnd()) raise(m_source.end(), "the file ends inside section " + name);
        m_data.sections.push_back({name, static_cast<std::uint64_t>(start - m_source.begin()),
                                   static_cast<std::uint64_t>(m_before - start)});
        m_betweenSections = true;
        if (isType("ENDSEC"))
            advance();
        else
            report(Defect::kMissingEnd, m_before, "section " + name + " has no ENDSEC");
    }

    /// Where a section ends: at its mark, or where the next section or the end of the file shows that it has
    /// none.
    bool atSectionEnd() const { return atEnd() || isType("ENDSEC") || isType("SECTION") || isType("EOF"); }

    bool isType(std::string_view type) const { return m_group.code == 0 && stripped(m_group.raw()) == type; }

    void skipSection() {
        while (!atSectionEnd()) advance();
    }

    void header() {
        HeaderVariable* open = nullptr;
        while (!atEnd() && m_group.code != 0) {
            if (m_group.code == 9) {
                m_data.header.push_back({std::string(stripped(m_group.raw())), 0, 0});
                open = &m_data.header.back();
                advance();
                open->offset = static_cast<std::uint64_t>(m_before - m_source.begin());
                continue;
            }
            advance();
            if (open != nullptr)
                open->length = static_cast<std::uint32_t>(
                    static_cast<std::uint64_t>(m_before - m_source.begin()) - open->offset);
        }
        if (!atSectionEnd()) fail(m_group.data, "ENDSEC", m_group.raw());
    }

    void tables() {
        while (!atSectionEnd()) {
            const std::string_view type = expectType("a table");
            if (type == "TABLE")
                table();
            else if (type == "ENDTAB")
                advance();
            else
                strayEntry();
        }
    }

    void table() {
        Head head;
        Node* const entry = readEntry(kKindTable, head);
        m_result.tables.push_back({entry, stripped(head.name)});
        while (!atEnd()) {
            const std::string_view type = expectType("a record of a table");
            if (type == "ENDTAB") {
                advance();
                return;
            }
            if (type == "ENDSEC" || type == "TABLE" || type == "SECTION" || type == "EOF") {
                report(Defect::kMissingEnd, m_before, "table " + std::string(head.name) + " has no ENDTAB");
                return;
            }
            Head recordHead;
            Node* const record = readEntry(kindOf(type), recordHead);
            record->flags |= Node::kTableRecord;
            entry->appendPart(record);
        }
    }

    void strayEntry() {
        const std::string type(printable(stripped(m_group.raw())));
        const char* const at = m_before;
        Head head;
        Node* const entry = readEntry(kindOf(stripped(m_group.raw())), head);
        m_data.strays.push_back(entry);
        report(Defect::kStrayEntry, at, type, entry->handle);
    }

    void blocks() {
        while (!atSectionEnd()) {
            if (expectType("a block") == "BLOCK")
                block();
            else
                strayEntry();
        }
    }

    void block() {
        Head head;
        Node* const begin = readEntry(kKindBlock, head);
        ScannedBlock block{begin, nullptr, head.name, head.owner, head.hasName};
        while (!atEnd()) {
            const std::string_view type = expectType("an entity of a block");
            if (type == "BLOCK" || type == "ENDSEC" || type == "SECTION" || type == "EOF") {
                report(Defect::kMissingEnd, m_before, "a block has no ENDBLK", begin->handle);
                break;
            }
            if (type == "ENDBLK") {
                Head endHead;
                block.end = readEntry(kKindEndblk, endHead);
                break;
            }
            entity(type, *begin);
        }
        m_result.blocks.push_back(block);
    }

    void entities() {
        while (!atSectionEnd()) {
            const std::uint64_t owner = entity(expectType("an entity"), m_result.entities);
            if (m_result.entityOwners.empty() || m_result.entityOwners.back().owner != owner)
                m_result.entityOwners.push_back({m_lastEntity, owner});
        }
    }

    void objects() {
        while (!atSectionEnd()) {
            Head head;
            m_result.objects.push_back(readEntry(kindOf(expectType("an object")), head));
            m_result.objectOwners.push_back(head.owner);
        }
    }

    // --- entries
    // ------------------------------------------------------------------------------------------------

    std::uint16_t kindOf(std::string_view type) {
        if (type == m_lastType) return m_lastKind;
        m_lastType = type;
        return m_lastKind = m_data.kinds.indexOf(type);
    }

    /// One entity with what hangs on it: attributes and vertices up to the SEQEND that closes them. Gives the
    /// owner that it names.
    std::uint64_t entity(std::string_view type, Node& place) {
        Head head;
        Node* const node = readEntity(kindOf(type), head);
        place.appendPart(node);
        m_lastEntity = node;
        const std::uint16_t part = node->kind == kKindInsert     ? kKindAttrib
                                   : node->kind == kKindPolyline ? kKindVertex
                                                                 : kKindNone;
        if (node->kind == kKindInsert) m_result.inserts.push_back({node, head.name});
        if (part == kKindNone) return head.owner;
        while (!atEnd() && m_group.code == 0) {
            const std::uint16_t kind = kindOf(stripped(m_group.raw()));
            if (kind != part && kind != kKindSeqend) break;
            Head partHead;
            node->appendPart(readEntity(kind, partHead));
            if (kind == kKindSeqend) break;
        }
        return head.owner;
    }

    Node* readEntity(std::uint16_t kind, Head& head) {
        Node* const node = readEntry(kind, head);
        node->flags |= Node::kEntity;
        if (head.paper) node->flags |= Node::kPaper;
        if (head.hasLayer) noteLayer(head.layer, node);
        return node;
    }

    void noteLayer(std::string_view name, Node* node) {
        if (name == m_lastLayer) return;
        m_lastLayer = name;
        if (m_knownLayers.insert(name).second) m_result.layers.push_back({name, node});
    }

    /// Reads an entry from behind its type to the next one.
    Node* readEntry(std::uint16_t kind, Head& head) {
        Node* const node = m_data.nodes.make();
        const char* const start = m_cursor.position();
        pickHead(kind, head);
        const std::size_t length = static_cast<std::size_t>(m_before - start);
        if (length > std::numeric_limits<std::uint32_t>::max()) raise(start, "an entry is longer than 4 GiB");
        node->kind = kind;
        node->offset = static_cast<std::uint64_t>(start - m_source.begin());
        node->length = static_cast<std::uint32_t>(length);
        takeHandle(*node, head);
        return node;
    }

    void pickHead(std::uint16_t kind, Head& head) {
        // The handle of a dimension style has a code of its own, since 5 means something else there.
        const int handleCode = kind == kKindDimstyle ? 105 : 5;
        bool braces = false;
        bool subclass = false;
        bool xdata = false;
        for (;;) {
            advance();
            if (atEnd()) {
                raise(m_source.end(), "the file ends inside an entry");
            }
            const int code = m_group.code;
            if (code == 0) return;
            xdata = xdata || code >= kFirstXData; // behind it there are no fields
            if (xdata) continue;
            if (code == handleCode && !head.hasHandle && !subclass) {
                head.handle = m_group.raw();
                head.hasHandle = true;
                continue;
            }
            switch (code) {
            case 2:
                if (!head.hasName && !braces) head.name = m_group.raw(), head.hasName = true;
                break;
            case 8:
                if (!head.hasLayer && !braces) head.layer = m_group.raw(), head.hasLayer = true;
                break;
            case 67: {
                bool bad = false;
                head.paper = head.paper || m_values.integer(m_group, bad) == 1;
                break;
            }
            case 100:
                subclass = true;
                break;
            case 102: {
                const std::string_view mark = stripped(m_group.raw());
                braces = !mark.empty() && mark.front() == '{';
                break;
            }
            case 330:
                if (!head.hasOwner && !braces && !subclass) {
                    bool bad = false;
                    head.owner = m_values.handle(m_group, bad);
                    head.hasOwner = true;
                }
                break;
            default:
                break;
            }
        }
    }

    void takeHandle(Node& node, const Head& head) {
        bool bad = false;
        const std::uint64_t handle = head.hasHandle ? parseHandle(head.handle, bad) : 0;
        if (handle != 0) {
            node.handle = handle;
            if (handle > m_result.highestHandle) m_result.highestHandle = handle;
            ++m_result.handled;
            return;
        }
        if (bad && !stripped(head.handle).empty())
            m_result.badHandles.push_back({&node, printable(head.handle)});
    }

    DatabaseData& m_data;
    const Source& m_source;
    ScanResult& m_result;
    Values m_values;
    Cursor m_cursor;
    Group m_group;
    Step m_step = Step::kEnd;
    const char* m_before = nullptr; // where the current group begins
    bool m_closed = false;
    bool m_betweenSections = false;
    std::string_view m_lastType;
    std::uint16_t m_lastKind = kKindNone;
    std::string_view m_lastLayer;
    std::unordered_set<std::string_view> m_knownLayers;
    Node* m_lastEntity = nullptr;
};

} // namespace

void scan(DatabaseData& data, const ReadOptions&, ScanResult& result) {
    if (data.source->binary)
        Scanner<BinaryCursor>(data, result).run();
    else
        Scanner<TextCursor>(data, result).run();
}

} // namespace lm::drawing
