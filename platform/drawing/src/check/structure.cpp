// SPDX-License-Identifier: MIT
// What a drawing as a whole must have: its fixed records, a record for each block and a block for each
// record, parts below what they are parts of, and a header that fits.
#include "check/steps.h"

#include "dxf/read.h"

#include <algorithm>

namespace lm::drawing {

namespace {

/// Whether an entry was made by the reader, since the file lacked it.
bool wasMade(const Node* node) {
    return node != nullptr && node->length == 0;
}

void checkFixed(CheckContext& context) {
    const FixedEntries& fixed = context.data.fixed;
    const auto made = [&](const Node* node, const char* name) {
        context.add(
            Flaw::kMissingRecord, node, [&] { return "\"" + std::string(name) + "\" was made"; }, true);
    };
    const struct {
        const Node* table;
        const Node* record;
        const char* name;
    } rows[] = {
        {fixed.layerTable, fixed.layerZero, "0"},
        {fixed.linetypeTable, fixed.byBlock, "ByBlock"},
        {fixed.linetypeTable, fixed.byLayer, "ByLayer"},
        {fixed.linetypeTable, fixed.continuous, "Continuous"},
        {fixed.styleTable, fixed.standardStyle, "Standard"},
    };
    // Where a whole table was missing, the reader has said so.
    for (const auto& row : rows)
        if (!wasMade(row.table) && wasMade(row.record)) made(row.record, row.name);
    if (wasMade(fixed.blockTable)) {
        made(fixed.blockTable, "BLOCK_RECORD");
    } else {
        for (const auto& [space, name] :
             {std::pair{fixed.modelSpace, "*Model_Space"}, std::pair{fixed.paperSpace, "*Paper_Space"}})
            if (wasMade(space) && !space->has(Node::kFramed)) made(space, name);
    }
    if (wasMade(fixed.dictionary)) made(fixed.dictionary, "named objects");
}

/// Blocks and their records. Whoever saves the drawing writes both for each of them.
void checkFrames(CheckContext& context) {
    DatabaseData& data = context.data;
    if (wasMade(data.fixed.blockTable)) return;
    for (Node* record = data.fixed.blockTable->firstPart; record != nullptr; record = record->next) {
        if (!record->isLive()) continue;
        const auto name = [&] { return quoted(recordName(data, record)); };
        const bool framed = record->has(Node::kFramed);
        if (framed && wasMade(record))
            context.add(
                Flaw::kNoRecord, record, [&] { return name() + " was entered"; }, true);
        if (!framed && !wasMade(record))
            context.add(
                Flaw::kNoBlock, record, [&] { return name() + " is taken as empty"; }, true);
    }
}

void checkParts(CheckContext& context) {
    context.data.nodes.forEach([&context](Node& node) {
        const bool part = node.kind == kKindAttrib || node.kind == kKindVertex || node.kind == kKindSeqend;
        if (!part || node.owner == nullptr || node.owner->kind != kKindBlockRecord || !node.isLive()) return;
        context.add(Flaw::kStrayPart, &node,
                    [&] { return "it stands by itself in " + quoted(recordName(context.data, node.owner)); });
    });
}

void checkSeed(CheckContext& context) {
    DatabaseData& data = context.data;
    const OdSmartPtr<OdResBuf> value = readHeaderVariable(data, "HANDSEED");
    if (value.isNull()) return;
    bool bad = false;
    const std::string digits = utf8(value->getString());
    const std::uint64_t seed = parseHandle(digits, bad);
    std::uint64_t highest = 0;
    data.nodes.forEach([&highest](Node& node) {
        // The reader and later changes give their own handles beyond $HANDSEED.
        if (node.length != 0 && !node.has(Node::kDirty)) highest = std::max(highest, node.handle);
    });
    if (!bad && seed > highest) return;
    context.add(
        Flaw::kLowSeed, nullptr, [&] { return "\"" + digits + "\", the highest is " + hexText(highest); },
        true); // new handles go on behind the highest, and so does what is saved as $HANDSEED
}

/// Header variables that name records.
void checkHeader(CheckContext& context) {
    DatabaseData& data = context.data;
    const struct {
        const char* variable;
        Node* table;
    } rows[] = {{"CLAYER", data.fixed.layerTable},
                {"CELTYPE", data.fixed.linetypeTable},
                {"TEXTSTYLE", data.fixed.styleTable}};
    for (const auto& row : rows) {
        const OdSmartPtr<OdResBuf> value = readHeaderVariable(data, row.variable);
        if (value.isNull() || value->getString().isEmpty()) continue;
        const OdString name = value->getString();
        bool there = false;
        for (Node* record = row.table->firstPart; record != nullptr && !there; record = record->next)
            there = record->isLive() && system::equalsNoCase(recordName(data, record).view(), name.view());
        // The current layer is another one since the drawing was read; the others are only kept.
        const bool mended = row.table == data.fixed.layerTable;
        if (!there)
            context.add(
                Flaw::kUnknownSetting, nullptr,
                [&] { return std::string(row.variable) + " is " + quoted(name); }, mended);
    }
}

/// Other programs refuse a file that names an empty version. One that names none is an old one.
void checkVersion(CheckContext& context) {
    const OdSmartPtr<OdResBuf> value = readHeaderVariable(context.data, "ACADVER");
    if (!value.isNull() && stripped(utf8(value->getString())).empty())
        context.add(
            Flaw::kNoVersion, nullptr, [] { return std::string("ACADVER"); }, true);
}

} // namespace

void checkStructure(CheckContext& context) {
    if (!context.isFromFile()) return; // a drawing that was made here has all this
    checkVersion(context);
    if (context.isHandleVersion()) {
        checkFixed(context);
        checkFrames(context);
    }
    checkParts(context);
    checkSeed(context);
    checkHeader(context);
}

} // namespace lm::drawing
