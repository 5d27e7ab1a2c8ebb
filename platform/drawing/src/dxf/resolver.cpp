// SPDX-License-Identifier: MIT
#include "dxf/resolver.h"

#include "dxf/read.h"

namespace lm::drawing {

namespace {

constexpr std::size_t kRemembered = 65536;

std::string folded(WideView name) {
    WideString lower(name);
    for (WideChar& unit : lower) unit = system::toLower(unit);
    return system::toUtf8(lower);
}

} // namespace

Node* DatabaseData::Resolver::tableOf(Names table) const {
    switch (table) {
    case Names::kLayers:
        return data.fixed.layerTable;
    case Names::kLinetypes:
        return data.fixed.linetypeTable;
    case Names::kStyles:
        return data.fixed.styleTable;
    case Names::kBlocks:
        return data.fixed.blockTable;
    }
    return nullptr;
}

Node* DatabaseData::Resolver::lookUp(Names table, Memo& memo, std::string_view bytes) {
    Node* const head = tableOf(table);
    if (head == nullptr) return nullptr;
    bool bad = false;
    const OdString name = data.source->decoder.decode(bytes, bad);
    if (Node* const exact = data.tableRecord(head, name)) return exact;
    if (!memo.foldedReady) {
        memo.foldedReady = true;
        for (Node* record = head->firstPart; record != nullptr; record = record->next) {
            const auto* body = static_cast<OdDbSymbolTableRecord*>(data.bodyOf(record));
            memo.folded.emplace(folded(body->getName().view()), record);
        }
    }
    const auto found = memo.folded.find(folded(name.view()));
    return found != memo.folded.end() ? found->second : nullptr;
}

Node* DatabaseData::Resolver::findSlowly(Names table, std::string_view bytes) {
    Memo& memo = memos[static_cast<int>(table)];
    const auto known = memo.known.find(bytes);
    Node* const node = known != memo.known.end() ? known->second : lookUp(table, memo, bytes);
    // A drawing has few names and many uses of each; one with more names gains nothing from remembering them.
    if (known == memo.known.end() && memo.known.size() < kRemembered) memo.known.emplace(bytes, node);
    memo.lastBytes = bytes;
    memo.lastNode = node;
    return node;
}

void DatabaseData::Resolver::set(Names table, std::string_view bytes, Node* node) {
    Memo& memo = memos[static_cast<int>(table)];
    memo.known[bytes] = node;
    memo.lastNode = nullptr;
}

void DatabaseData::Resolver::keepName(Node& record) {
    constexpr int kName = 2;
    for (const Names table : {Names::kLayers, Names::kLinetypes, Names::kStyles, Names::kBlocks}) {
        if (record.owner == nullptr || tableOf(table) != record.owner || record.offset == 0) continue;
        std::string_view bytes;
        forEachGroup(*data.source, record, [&bytes](const Group& group) {
            if (group.code == kName) bytes = group.raw();
            return true;
        });
        if (!bytes.empty() && memos[static_cast<int>(table)].known.count(bytes) == 0)
            set(table, bytes, &record);
    }
}

} // namespace lm::drawing
