// SPDX-License-Identifier: MIT
// What stands at the end of the sections of a source, and whole sections of a drawing that has none.
#include "dxf/write.h"

#include "dxf/read.h"

#include <algorithm>
#include <cstring>

namespace lm::drawing {

const std::string_view kSectionOrder[6] = {"HEADER", "CLASSES", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"};

namespace {

constexpr std::string_view kTables[] = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                        "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};

} // namespace

void DrawingWriter::writeSection(std::string_view name) {
    if (name == "CLASSES" && !hasTail(name)) return;
    m_out.put(0, "SECTION");
    m_out.put(2, name);
    if (name == "TABLES")
        writeNewTables();
    else
        writeTail(name);
    m_out.put(0, "ENDSEC");
}

bool DrawingWriter::hasTail(std::string_view section) const {
    return section != "CLASSES" || !m_skeleton.classes().empty();
}

void DrawingWriter::writeTail(std::string_view section) {
    if (section == "HEADER") {
        writeHeaderTail();
    } else if (section == "CLASSES") {
        for (const OutEntry& entry : m_skeleton.classes()) m_out.put(entry);
    } else if (section == "BLOCKS" && m_data.fixed.blockTable != nullptr) {
        for (Node* record = m_data.fixed.blockTable->firstPart; record != nullptr; record = record->next)
            if (m_plan.isLive(*record) && m_plan.lacksBlock(*record)) writeBlock(*record);
    } else if (section == "ENTITIES") {
        for (Node* node : m_plan.created) {
            const bool inSpace = node->owner != nullptr && (node->owner == m_data.fixed.modelSpace ||
                                                            node->owner == m_data.fixed.paperSpace);
            if (inSpace && node->has(Node::kEntity)) writeEntity(*node);
        }
    } else if (section == "OBJECTS") {
        writeObjects();
    }
}

// --- header
// -------------------------------------------------------------------------------------------------------------

/// The groups of a variable that the database knows better than the source; empty when the source is right.
OutGroups DrawingWriter::headerValue(std::string_view name) const {
    const OdSmartPtr<OdResBuf> old =
        m_source != nullptr ? readHeaderVariable(m_data, name) : OdSmartPtr<OdResBuf>();
    const auto text = [&old](int code, std::string_view value) -> OutGroups {
        if (!old.isNull() && stripped(utf8(old->getString())) == value) return {};
        return {OutGroup::text(code, odText(value))};
    };
    if (name == "ACADVER") return text(1, versionText(m_options.version));
    if (name == "DWGCODEPAGE") {
        if (!old.isNull() && m_codePage == m_data.codePage) return {}; // whatever its bytes are
        return text(3, m_codePage);
    }
    if (name == "HANDSEED") {
        bool bad = false;
        const std::uint64_t seed = const_cast<DrawingWriter*>(this)->m_plan.handles.seed();
        if (!old.isNull() && parseHandle(utf8(old->getString()), bad) == seed && !bad) return {};
        return {OutGroup::handle(5, seed)};
    }
    if (name == "CLAYER") {
        if (m_data.currentLayer == nullptr) return {};
        const auto* layer = static_cast<OdDbSymbolTableRecord*>(m_data.bodyOf(m_data.currentLayer));
        if (!old.isNull() && (old->getString() == layer->getName() ||
                              (m_plan.renamed.isEmpty() &&
                               m_data.tableRecord(m_data.fixed.layerTable, old->getString()) == nullptr &&
                               system::equalsNoCase(old->getString().view(), layer->getName().view()))))
            return {};
        return {OutGroup::text(8, layer->getName())};
    }
    const OdGePoint3d base = m_data.basePoint;
    if (!old.isNull()) {
        const OdGePoint3d before = old->getPoint3d();
        if (before.x == base.x && before.y == base.y && before.z == base.z) return {};
    }
    return {OutGroup::real(10, base.x), OutGroup::real(20, base.y), OutGroup::real(30, base.z)};
}

bool DrawingWriter::hasVariable(std::string_view name) const {
    return std::any_of(m_data.header.begin(), m_data.header.end(), [name](const HeaderVariable& variable) {
        return variable.name.size() == name.size() + 1 && variable.name.ends_with(name);
    });
}

void DrawingWriter::writeHeaderTail() {
    const auto write = [&](const char* name) {
        if (hasVariable(name + 1)) return;
        m_out.put(9, name);
        m_out.put(headerValue(name + 1));
    };
    if (section("HEADER") == nullptr) write("$ACADVER");
    write("$DWGCODEPAGE");
    write("$INSBASE");
    write("$CLAYER");
    m_out.put(m_skeleton.header());
    write("$HANDSEED");
}

// --- tables
// -------------------------------------------------------------------------------------------------------------

Node* DrawingWriter::newTable(std::string_view name) const {
    const FixedEntries& f = m_data.fixed;
    Node* const tables[] = {f.viewportTable, f.linetypeTable, f.layerTable,    f.styleTable, f.viewTable,
                            f.ucsTable,      f.appTable,      f.dimstyleTable, f.blockTable};
    for (std::size_t i = 0; i < std::size(kTables); ++i)
        if (kTables[i] == name) return tables[i] != nullptr && tables[i]->offset == 0 ? tables[i] : nullptr;
    return nullptr;
}

void DrawingWriter::writeTable(std::string_view name) {
    if (Node* const table = newTable(name)) {
        m_out.put(0, "TABLE");
        m_out.put(m_maker.make(*table));
        for (Node* record = table->firstPart; record != nullptr; record = record->next)
            if (m_plan.isLive(*record)) writeNode(*record);
        for (const OutEntry& entry : m_skeleton.records(*table)) m_out.put(entry);
        m_out.put(0, "ENDTAB");
        return;
    }
    const std::vector<OutEntry> entries = m_skeleton.table(name);
    if (entries.empty()) return;
    for (const OutEntry& entry : entries) m_out.put(entry);
    m_out.put(0, "ENDTAB");
}

void DrawingWriter::writeNewTables() {
    for (const std::string_view name : kTables) writeTable(name);
}

// --- entries
// ------------------------------------------------------------------------------------------------------------

void DrawingWriter::writeNode(Node& node) {
    m_writing = &node;
    OutGroups groups = m_maker.make(node);
    if (groups.empty()) return; // a class that a file can't hold
    m_out.put(0, m_data.kinds.name(node.kind));
    m_out.put(groups);
}

void DrawingWriter::writeEntity(Node& node) {
    writeNode(node);
    writeParts(node);
}

void DrawingWriter::writeParts(Node& owner) {
    for (Node* part = owner.firstPart; part != nullptr; part = part->next)
        if (part->kind != kKindSeqend && part->offset == 0 && m_plan.isLive(*part)) writeNode(*part);
    writeEnd(owner);
}

/// The SEQEND behind the parts of an owner; what owners had in the file stands there.
void DrawingWriter::writeEnd(Node& owner) {
    if (m_plan.ends.count(&owner) == 0) {
        for (Node* part = owner.firstPart; part != nullptr; part = part->next)
            if (part->kind == kKindSeqend && part->offset == 0 && m_plan.isLive(*part)) writeNode(*part);
        return;
    }
    if (owner.kind == kKindInsert && !hasLiveAttributes(owner)) return;
    m_out.put(0, "SEQEND");
    m_out.put(m_maker.end(owner));
}

void DrawingWriter::writeBlock(Node& record) {
    const auto frame = m_plan.frames.find(&record);
    const bool framed = frame != m_plan.frames.end();
    m_out.put(0, "BLOCK");
    m_writing = &record;
    m_out.put(framed ? m_maker.make(*frame->second.begin) : m_maker.blockBegin(record));
    const bool space = &record == m_data.fixed.modelSpace || &record == m_data.fixed.paperSpace;
    for (Node* part = record.firstPart; !space && part != nullptr; part = part->next)
        if (part->offset == 0 && m_plan.isLive(*part)) writeEntity(*part);
    m_out.put(0, "ENDBLK");
    if (framed && frame->second.end != nullptr)
        m_out.put(m_maker.make(*frame->second.end));
    else
        m_out.put(m_maker.blockEnd(record));
}

void DrawingWriter::writeObjects() {
    // The dictionary of named objects is known by being the first.
    Node* const root = m_data.fixed.dictionary;
    const bool newRoot = root != nullptr && root->offset == 0 && m_plan.isLive(*root);
    if (newRoot) writeNode(*root);
    for (Node* node : m_plan.created) {
        const bool other = node->has(Node::kEntity) || node->has(Node::kTableRecord) ||
                           node->kind == kKindTable || node->kind == kKindBlock ||
                           node->kind == kKindEndblk || node->kind == kKindSeqend;
        if (!other && !(newRoot && node == root)) writeNode(*node);
    }
    for (const OutEntry& entry : m_skeleton.objects()) m_out.put(entry);
}

} // namespace lm::drawing
