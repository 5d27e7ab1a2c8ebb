// SPDX-License-Identifier: MIT
#include "dxf/write_names.h"

#include "dxf/read.h"
#include "dxf/resolver.h"

namespace lm::drawing {

namespace {

constexpr int kLayerData = 1003;

/// Which table a group of an entry names a record of; false for a group that names none.
bool tableOf(std::uint16_t kind, std::string_view kindName, int code, Names& table) {
    switch (code) {
    case 8:
    case kLayerData:
        table = Names::kLayers;
        return true;
    case 6:
        table = Names::kLinetypes;
        return true;
    case 7:
        table = Names::kStyles;
        return true;
    case 2:
        table = Names::kBlocks;
        return kind == kKindInsert || kindName.ends_with("DIMENSION") || kindName == "ACAD_TABLE";
    default:
        return false;
    }
}

/// Kinds whose groups don't name records under these codes.
bool namesNothing(const Node& node) {
    return node.kind == kKindXrecord || node.kind == kKindTable ||
           (node.has(Node::kTableRecord) && node.kind != kKindLayer);
}

} // namespace

RenamedRecords::RenamedRecords(DatabaseData& data) : m_data(data) {
    if (data.source == nullptr) return;
    collect(data.fixed.layerTable);
    collect(data.fixed.linetypeTable);
    collect(data.fixed.styleTable);
    collect(data.fixed.blockTable);
}

void RenamedRecords::collect(Node* table) {
    if (table == nullptr) return;
    for (Node* record = table->firstPart; record != nullptr; record = record->next) {
        if (record->offset == 0 || !record->has(Node::kDirty) || record->body == nullptr) continue;
        const OdString& now = static_cast<OdDbSymbolTableRecord*>(record->body)->getName();
        OdString then;
        const Values values(*m_data.source);
        forEachGroup(*m_data.source, *record, [&](const Group& group) {
            constexpr int kName = 2;
            bool bad = false;
            if (group.code == kName) then = values.text(group, bad);
            return true;
        });
        if (then != now) m_renamed.insert(record);
    }
}

const OdString* RenamedRecords::find(std::uint16_t kind, const Group& group) const {
    Names table{};
    if (!tableOf(kind, m_data.kinds.name(kind), group.code, table)) return nullptr;
    const Node* const record = m_data.resolver->find(table, group.raw());
    if (record == nullptr || m_renamed.count(record) == 0) return nullptr;
    return &static_cast<const OdDbSymbolTableRecord*>(record->body)->getName();
}

bool RenamedRecords::areNamedIn(const Node& node) const {
    if (m_renamed.empty() || namesNothing(node)) return false;
    bool named = false;
    forEachGroup(*m_data.source, node, [&](const Group& group) {
        named = find(node.kind, group) != nullptr;
        return !named;
    });
    return named;
}

void RenamedRecords::apply(std::uint16_t kind, OutGroups& groups) const {
    if (m_renamed.empty()) return;
    for (OutGroup& group : groups) {
        const auto* const source = std::get_if<SourceGroup>(&group.value);
        if (source == nullptr || source->form != m_data.source.get()) continue;
        if (const OdString* name = find(kind, source->group)) group = OutGroup::text(group.code, *name);
    }
}

} // namespace lm::drawing
