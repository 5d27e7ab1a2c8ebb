// SPDX-License-Identifier: MIT
#include "dxf/build.h"

#include "dxf/read.h"
#include "dxf/resolver.h"
#include "model/iterators.h"
#include "model/names.h"

#include <algorithm>

namespace lm::drawing {

namespace {

/// Versions by their text. From R2007 on text is UTF-8 whatever code page the header names.
constexpr std::string_view kFirstUtf8Version = "AC1021";
constexpr std::string_view kFirstHandleVersion = "AC1012";
constexpr std::string_view kNewestVersion = "AC1032";

class Builder {
public:
    Builder(DatabaseData& data, const ReadOptions& options, ScanResult& scanned)
        : m_data(data), m_options(options), m_scanned(scanned), m_source(*data.source) {}

    void run() {
        takeVersion();
        chooseDecoder();
        m_data.resolver = std::make_unique<DatabaseData::Resolver>(m_data);
        indexHandles();
        placeTables();
        makeRecordsOfBlocks();
        placeObjects();
        completeDefaults(m_data, m_data.version >= kFirstHandleVersion);
        m_data.resolver->clear();
        nameLinetypesOfLayers();
        placeEntities();
        makeMissingLayers();
        linkReferences();
        readHeader();
    }

private:
    [[noreturn]] void raise(OdResult code, const std::string& reason) const {
        throw OdError(code, OdString(WideView(system::fromUtf8(m_source.name + ": " + reason))));
    }

    std::string headerText(std::string_view name) const {
        const OdSmartPtr<OdResBuf> value = readHeaderVariable(m_data, name);
        return value.isNull() ? std::string() : utf8(value->getString());
    }

    void takeVersion() {
        m_data.version = std::string(stripped(headerText("ACADVER")));
        m_data.codePage = std::string(stripped(headerText("DWGCODEPAGE")));
        const std::string& version = m_data.version;
        const bool known =
            version.empty() ||
            (version.size() == 6 && version.substr(0, 2) == "AC" && version <= kNewestVersion &&
             std::all_of(version.begin() + 2, version.end(), [](char c) { return c >= '0' && c <= '9'; }));
        if (!known)
            raise(eUnsupportedVersion, "version \"" + version + "\" isn't supported, expected one up to " +
                                           std::string(kNewestVersion));
    }

    /// Some older files hold UTF-8 in spite of their version. Text of a code page is hardly ever UTF-8 by
    /// chance.
    bool looksLikeUtf8() const {
        const std::string_view all(m_source.begin(), m_source.bytes.size());
        if (m_source.binary) return false;
        const bool high = std::any_of(all.begin(), all.end(), [](char c) { return (c & 0x80) != 0; });
        return high && system::isUtf8(all);
    }

    void chooseDecoder() {
        if (m_data.version >= kFirstUtf8Version || looksLikeUtf8()) return;
        m_data.source->decoder =
            TextDecoder::forCodePage(m_options.convertCodePage ? m_data.codePage : std::string());
    }

    OdString decode(std::string_view bytes) {
        bool bad = false;
        return m_source.decoder.decode(bytes, bad);
    }

    // --- handles
    // ------------------------------------------------------------------------------------------------

    void indexHandles() {
        HandleIndex& handles = m_data.handles;
        handles.expect(m_scanned.handled, m_scanned.highestHandle);
        std::vector<Node*> doubled;
        m_data.nodes.forEach([&](Node& node) {
            if (node.handle == 0) return;
            if (handles.find(node.handle) != nullptr)
                doubled.push_back(&node);
            else
                handles.insert(node.handle, &node);
        });
        bool bad = false;
        const std::uint64_t seed = parseHandle(headerText("HANDSEED"), bad);
        const std::uint64_t behind =
            m_scanned.highestHandle == ~std::uint64_t{0} ? 1 : m_scanned.highestHandle + 1;
        m_data.nextHandle = std::max(seed, behind);
        for (Node* node : doubled) {
            const std::uint64_t old = node->handle;
            giveHandle(*node);
            report(Defect::kDoubledHandle, *node, hex(old) + " became " + hex(node->handle));
        }
        giveMissingHandles();
    }

    void giveMissingHandles() {
        // Older files needn't have handles at all, so one that is missing there is no defect.
        const bool expected = m_data.version >= kFirstHandleVersion;
        auto bad = m_scanned.badHandles.begin();
        m_data.nodes.forEach([&](Node& node) {
            if (node.handle != 0) return;
            giveHandle(node);
            if (bad != m_scanned.badHandles.end() && bad->node == &node)
                report(Defect::kBadHandle, node, "\"" + bad++->found + "\" became " + hex(node.handle));
            else if (expected)
                report(Defect::kMissingHandle, node, "became " + hex(node.handle));
        });
    }

    void giveHandle(Node& node) {
        node.handle = m_data.freeHandle();
        node.flags |= Node::kDirty;
        m_data.handles.insert(node.handle, &node);
    }

    static std::string hex(std::uint64_t value) { return utf8(OdDbHandle(value).ascii()); }

    void report(Defect defect, const Node& node, std::string detail) {
        // Lines are counted from the start for each report, so only those that are kept are given one.
        const bool kept = m_data.report.count(defect) < Report::kKept;
        const std::uint64_t place =
            kept && node.length != 0 ? m_source.placeOf(m_source.begin() + node.offset) : 0;
        m_data.report.add(
            {defect, node.handle, place, std::string(m_data.kinds.name(node.kind)) + ": " + detail});
    }

    // --- tables
    // -------------------------------------------------------------------------------------------------

    Node** slotOf(std::string_view name) {
        FixedEntries& f = m_data.fixed;
        if (name == "LAYER") return &f.layerTable;
        if (name == "LTYPE") return &f.linetypeTable;
        if (name == "STYLE") return &f.styleTable;
        if (name == "APPID") return &f.appTable;
        if (name == "VPORT") return &f.viewportTable;
        if (name == "VIEW") return &f.viewTable;
        if (name == "BLOCK_RECORD") return &f.blockTable;
        if (name == "DIMSTYLE") return &f.dimstyleTable;
        if (name == "UCS") return &f.ucsTable;
        return nullptr;
    }

    void placeTables() {
        // Strays that come to light below stand inside a table, where no other one can be made.
        const std::size_t loose = m_data.strays.size();
        // Layers name line types, so line types come first.
        std::stable_sort(m_scanned.tables.begin(), m_scanned.tables.end(),
                         [](const ScannedTable& a, const ScannedTable& b) {
                             return (a.name == "LTYPE") > (b.name == "LTYPE");
                         });
        for (const ScannedTable& scanned : m_scanned.tables) {
            Node* table = scanned.head;
            dropStrangers(*table, scanned.name);
            Node* const first = table->firstPart;
            Node** const slot = slotOf(scanned.name);
            if (slot != nullptr && *slot != nullptr) {
                m_data.strays.push_back(scanned.head);
                report(Defect::kStrayEntry, *scanned.head, "a second table " + std::string(scanned.name));
                table = *slot;
                moveParts(*scanned.head, *table);
            }
            if (slot != nullptr) *slot = table;
            enterRecords(*table, first);
        }
        gatherLooseRecords(loose);
    }

    /// Records that stand outside any table, in a file that lacks the table of their kind, make the table:
    /// without the records of the blocks no entity would have an owner.
    void gatherLooseRecords(std::size_t loose) {
        std::vector<Node*> rest;
        std::vector<Node*> made;
        for (std::size_t i = 0; i < m_data.strays.size(); ++i) {
            Node* const stray = m_data.strays[i];
            Node** slot = nullptr;
            if (i < loose && standsInTables(*stray) &&
                recordKindOf(m_data.kinds.name(stray->kind)) != kKindNone)
                slot = slotOf(m_data.kinds.name(stray->kind));
            if (slot != nullptr && *slot == nullptr) {
                *slot = makeTableFor(*stray);
                made.push_back(*slot);
            }
            if (slot == nullptr || std::find(made.begin(), made.end(), *slot) == made.end()) {
                rest.push_back(stray);
                continue;
            }
            stray->flags |= Node::kTableRecord;
            (*slot)->appendPart(stray);
        }
        for (Node* table : made) enterRecords(*table, table->firstPart);
        m_data.strays = std::move(rest);
    }

    bool standsInTables(const Node& node) const {
        return std::any_of(m_data.sections.begin(), m_data.sections.end(), [&node](const Section& section) {
            return section.name == "TABLES" && node.offset >= section.offset &&
                   node.offset < section.offset + section.length;
        });
    }

    /// A table under the handle that a record names as its owner, where that is free.
    Node* makeTableFor(Node& record) {
        Node* const table = m_data.makeEntry(kKindTable);
        std::uint64_t owner = 0;
        const Values values(m_source);
        forEachGroup(m_source, record, [&](const Group& group) {
            bool bad = false;
            if (group.code == 330) owner = values.handle(group, bad);
            return group.code != 330 && group.code != 100;
        });
        if (owner != 0 && m_data.handles.find(owner) == nullptr) {
            m_data.handles.remove(table->handle, table);
            table->handle = owner;
            m_data.handles.insert(owner, table);
            if (owner != ~std::uint64_t{0}) m_data.nextHandle = std::max(m_data.nextHandle, owner + 1);
        }
        tableBody(*table);
        return table;
    }

    /// The kind of the records of a table that the database reads; kKindNone for the other tables.
    static Kind recordKindOf(std::string_view table) {
        if (table == "LAYER") return kKindLayer;
        if (table == "LTYPE") return kKindLtype;
        if (table == "STYLE") return kKindStyle;
        if (table == "APPID") return kKindAppid;
        if (table == "VPORT") return kKindVport;
        if (table == "VIEW") return kKindView;
        return table == "BLOCK_RECORD" ? kKindBlockRecord : kKindNone;
    }

    /// Takes records of other kinds out of a table: whoever finds a record by name counts on its class.
    void dropStrangers(Node& table, std::string_view name) {
        const Kind wanted = recordKindOf(name);
        const auto belongs = [this, wanted](std::uint16_t kind) {
            if (wanted != kKindNone) return kind == wanted;
            return recordKindOf(m_data.kinds.name(kind)) == kKindNone; // a table whose records aren't read
        };
        Node* part = table.firstPart;
        table.firstPart = table.lastPart = nullptr;
        for (Node* next = nullptr; part != nullptr; part = next) {
            next = part->next;
            if (belongs(part->kind)) {
                table.appendPart(part);
                continue;
            }
            part->owner = part->next = nullptr;
            part->flags &= static_cast<std::uint8_t>(~Node::kTableRecord);
            m_data.strays.push_back(part);
            report(Defect::kStrayEntry, *part, "in the table " + std::string(name));
        }
    }

    static void moveParts(Node& from, Node& to) {
        for (Node *part = from.firstPart, *next = nullptr; part != nullptr; part = next) {
            next = part->next;
            to.appendPart(part);
        }
        from.firstPart = from.lastPart = nullptr;
    }

    OdDbSymbolTable& tableBody(Node& table) {
        if (table.body == nullptr) {
            auto* body = new OdDbSymbolTable();
            table.body = body;
            ObjectAccess::setNode(*body, &table);
            ObjectAccess::setRefs(*body, 0);
        }
        return *static_cast<OdDbSymbolTable*>(table.body);
    }

    /// Enters the names of a table's records from `first` on.
    void enterRecords(Node& table, Node* first) {
        OdDbSymbolTable& body = tableBody(table);
        for (Node* record = first; record != nullptr; record = record->next) enterRecord(body, *record);
    }

    void enterRecord(OdDbSymbolTable& table, Node& record) {
        auto* body = static_cast<OdDbSymbolTableRecord*>(m_data.bodyOf(&record));
        if (body->getName().isEmpty()) {
            // Shape files are text styles without a name.
            if (record.kind == kKindStyle) return;
            ObjectAccess::setName(*body, odText("$" + hex(record.handle)));
            record.flags |= Node::kDirty;
            report(Defect::kMissingName, record, "named " + utf8(body->getName()));
        }
        if (!ObjectAccess::enterNewName(table, body->getName(), &record)) {
            // Several viewports are active side by side under one name.
            if (record.kind != kKindVport)
                report(Defect::kDoubledName, record,
                       "\"" + utf8(body->getName()) + "\", the first one is found");
        }
    }

    // --- blocks
    // -------------------------------------------------------------------------------------------------

    /// R12 files of some programs spell the layout blocks with a dollar sign.
    OdString blockName(const ScannedBlock& block) {
        OdString name = decode(block.name);
        if (stripped(block.name).empty()) return odText("$" + hex(block.begin->handle));
        if (m_data.version < kFirstHandleVersion && name.view().front() == '$') {
            WideString star(name.view());
            star[0] = '*';
            if (isLayoutName(star)) return OdString(WideView(star));
        }
        return name;
    }

    const OdString& nameOf(Node& record) {
        return static_cast<OdDbSymbolTableRecord*>(m_data.bodyOf(&record))->getName();
    }

    /// The record that a block names as its owner.
    Node* ownerRecord(const ScannedBlock& block) {
        Node* const owner = block.owner != 0 ? m_data.handles.find(block.owner) : nullptr;
        return owner != nullptr && owner->kind == kKindBlockRecord && owner->has(Node::kTableRecord)
                   ? owner
                   : nullptr;
    }

    Node* findRecord(const ScannedBlock& block, const OdString& name) {
        Node* const table = m_data.fixed.blockTable;
        Node* const owner = ownerRecord(block);
        if (!block.named) return owner;
        // Of several blocks under one name each has its own record.
        if (owner != nullptr && system::equalsNoCase(nameOf(*owner).view(), name.view())) return owner;
        if (Node* const exact = m_data.tableRecord(table, name)) return exact;
        for (Node* record = table->firstPart; isLayoutName(name.view()) && record != nullptr;
             record = record->next)
            if (system::equalsNoCase(nameOf(*record).view(), name.view())) return record;
        return owner;
    }

    Node* makeRecord(const ScannedBlock& block, const OdString& name) {
        auto* record = new OdDbBlockTableRecord();
        ObjectAccess::setName(*record, name);
        Node* const node = m_data.adopt(record, kKindBlockRecord);
        ObjectAccess::setRefs(*record, 0);
        node->flags |= Node::kTableRecord;
        m_data.fixed.blockTable->appendPart(node);
        OdDbSymbolTable& table = tableBody(*m_data.fixed.blockTable);
        if (!ObjectAccess::enterNewName(table, name, node))
            report(Defect::kDoubledName, *block.begin, "\"" + utf8(name) + "\", the first one is found");
        return node;
    }

    void makeRecordsOfBlocks() {
        if (m_data.fixed.blockTable == nullptr) {
            m_data.fixed.blockTable = m_data.makeEntry(kKindTable);
            tableBody(*m_data.fixed.blockTable);
        }
        ObjectAccess::expectNames(tableBody(*m_data.fixed.blockTable), m_scanned.blocks.size());
        m_data.frames.reserve(m_scanned.blocks.size());
        for (const ScannedBlock& block : m_scanned.blocks) {
            const OdString name = blockName(block);
            const bool named = block.named && !stripped(block.name).empty();
            if (!named) {
                block.begin->flags |= Node::kDirty; // gets its record's name when it is written
                report(Defect::kMissingName, *block.begin, "named " + utf8(name));
            }
            Node* record = findRecord(block, name);
            if (record == nullptr || record->firstPart != nullptr || record->has(Node::kFramed))
                record = makeRecord(block, name);
            if (named && !system::equalsNoCase(nameOf(*record).view(), name.view())) {
                block.begin->flags |= Node::kDirty; // else it is found by that name as soon as one has it
                report(Defect::kMissingName, *block.begin,
                       "\"" + utf8(name) + "\" is nobody's, named " + utf8(nameOf(*record)));
            }
            m_data.frames.push_back({record, block.begin, block.end});
            record->flags |= Node::kFramed;
            readFieldsFrom(m_data, *block.begin, *m_data.bodyOf(record), blockSpec());
            moveParts(*block.begin, *record);
            block.begin->owner = record;
            if (block.end != nullptr) block.end->owner = record;
        }
        findLayoutBlocks();
    }

    void findLayoutBlocks() {
        const WideString model = system::widen("*Model_Space");
        const WideString paper = system::widen("*Paper_Space");
        for (Node* record = m_data.fixed.blockTable->firstPart; record != nullptr; record = record->next) {
            const OdString name = static_cast<OdDbSymbolTableRecord*>(m_data.bodyOf(record))->getName();
            if (m_data.fixed.modelSpace == nullptr && system::equalsNoCase(name.view(), model))
                m_data.fixed.modelSpace = record;
            if (m_data.fixed.paperSpace == nullptr && system::equalsNoCase(name.view(), paper))
                m_data.fixed.paperSpace = record;
        }
    }

    // --- entities
    // -----------------------------------------------------------------------------------------------

    Node* placeFor(const Node& entity, std::uint64_t owner) {
        Node* const named = owner != 0 ? m_data.handles.find(owner) : nullptr;
        if (named != nullptr && named->kind == kKindBlockRecord && named->has(Node::kTableRecord))
            return named;
        Node* const place = entity.has(Node::kPaper) ? m_data.fixed.paperSpace : m_data.fixed.modelSpace;
        if (owner != 0 && m_data.version >= kFirstHandleVersion)
            report(Defect::kUnknownOwner, entity, hex(owner) + " is no block");
        return place;
    }

    void placeEntities() {
        std::size_t run = 0;
        std::uint64_t owner = 0;
        for (Node *entity = m_scanned.entities.firstPart, *next = nullptr; entity != nullptr; entity = next) {
            next = entity->next;
            if (run < m_scanned.entityOwners.size() && m_scanned.entityOwners[run].first == entity)
                owner = m_scanned.entityOwners[run++].owner;
            placeFor(*entity, owner)->appendPart(entity);
        }
    }

    /// Layers were read before the line types that a file may leave out were made.
    void nameLinetypesOfLayers() {
        constexpr int kLinetype = 6;
        const Values values(m_source);
        for (Node* record = m_data.fixed.layerTable->firstPart; record != nullptr; record = record->next) {
            if (record->length == 0) continue;
            auto& layer = static_cast<OdDbLayerTableRecord&>(*m_data.bodyOf(record));
            if (!layer.linetypeObjectId().isNull()) continue;
            ReadContext context{m_data, values, *record};
            forEachGroup(m_source, *record, [&](const Group& group) {
                if (group.code == kLinetype)
                    specOf(*record).fields->find(kLinetype)->read(layer, group, context);
                return group.code != kLinetype;
            });
        }
    }

    void makeMissingLayers() {
        for (const UsedLayer& used : m_scanned.layers) {
            if (m_data.resolver->find(Names::kLayers, used.name) != nullptr) continue;
            const OdString name = decode(used.name);
            Node* layer = stripped(used.name).empty() ? m_data.fixed.layerZero : nullptr;
            if (layer == nullptr) {
                auto* record = new OdDbLayerTableRecord();
                ObjectAccess::setName(*record, name);
                layer = m_data.adopt(record, kKindLayer);
                ObjectAccess::setRefs(*record, 0);
                layer->flags |= Node::kTableRecord;
                m_data.fixed.layerTable->appendPart(layer);
                ObjectAccess::enterName(tableBody(*m_data.fixed.layerTable), name, layer);
                report(Defect::kUnlistedLayer, *used.first, "layer \"" + utf8(name) + "\" was made");
            }
            m_data.resolver->set(Names::kLayers, used.name, layer);
        }
    }

    void linkReferences() {
        for (const ScannedInsert& reference : m_scanned.inserts) {
            Node* const block = m_data.resolver->find(Names::kBlocks, reference.name);
            if (block == nullptr) {
                report(Defect::kUnknownBlock, *reference.insert,
                       "block \"" + utf8(decode(reference.name)) + "\"");
                continue;
            }
            ObjectAccess::references(static_cast<OdDbBlockTableRecord&>(*m_data.bodyOf(block)))
                .push_back(reference.insert);
        }
    }

    // --- objects and header
    // -------------------------------------------------------------------------------------

    void placeObjects() {
        for (std::size_t i = 0; i < m_scanned.objects.size(); ++i) {
            Node* const object = m_scanned.objects[i];
            const std::uint64_t owner = m_scanned.objectOwners[i];
            object->owner = owner != 0 ? m_data.handles.find(owner) : nullptr;
            if (object->owner == object) object->owner = nullptr;
            if (object->kind == kKindDictionary && owner == 0 && m_fileDictionary == nullptr)
                m_fileDictionary = object;
        }
        for (std::size_t i = 0; m_fileDictionary == nullptr && i < m_scanned.objects.size(); ++i)
            if (m_scanned.objects[i]->kind == kKindDictionary) m_fileDictionary = m_scanned.objects[i];
        m_data.fixed.dictionary = m_fileDictionary;
        breakOwnerLoops();
    }

    /// Owners that lead in a circle would never end a walk upwards.
    void breakOwnerLoops() {
        constexpr int kDeepest = 1000;
        for (Node* object : m_scanned.objects) {
            int depth = 0;
            for (const Node* at = object->owner; at != nullptr && depth <= kDeepest; at = at->owner) ++depth;
            if (depth <= kDeepest) continue;
            report(Defect::kUnknownOwner, *object, "owners in a circle");
            object->owner = nullptr;
        }
    }

    void readHeader() {
        const OdSmartPtr<OdResBuf> current = readHeaderVariable(m_data, "CLAYER");
        if (!current.isNull()) {
            Node* layer = m_data.tableRecord(m_data.fixed.layerTable, current->getString());
            for (Node* at = m_data.fixed.layerTable->firstPart; layer == nullptr && at != nullptr;
                 at = at->next) {
                const auto* body = static_cast<OdDbSymbolTableRecord*>(m_data.bodyOf(at));
                if (system::equalsNoCase(body->getName().view(), current->getString().view())) layer = at;
            }
            if (layer != nullptr) m_data.currentLayer = layer;
        }
        if (const OdSmartPtr<OdResBuf> base = readHeaderVariable(m_data, "INSBASE"); !base.isNull())
            m_data.basePoint = base->getPoint3d();
    }

    DatabaseData& m_data;
    const ReadOptions& m_options;
    ScanResult& m_scanned;
    const Source& m_source;
    Node* m_fileDictionary = nullptr;
};

} // namespace

void build(DatabaseData& data, const ReadOptions& options, ScanResult& scanned) {
    Builder(data, options, scanned).run();
}

} // namespace lm::drawing
