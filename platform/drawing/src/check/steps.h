// SPDX-License-Identifier: MIT
// The steps of a check, and what they share.
#pragma once

#include "model/databasedata.h"

#include "drawing/check.h"

#include <unordered_map>
#include <unordered_set>

namespace lm::drawing {

/// What the steps of one check share.
struct CheckContext {
    DatabaseData& data;
    const bool fix;
    CheckResult& result;
    /// Objects that name an owner that isn't there.
    std::vector<Node*> ownerless;
    /// Entities that the reader placed, and that name their place as their owner when they are saved.
    std::unordered_set<const Node*> placed;
    /// Records that keep a name that an earlier one has.
    std::unordered_set<const Node*> stillDoubled;

    /// Enters a finding. `text()` is asked only where it is kept.
    template<class Text>
    void add(Flaw flaw, const Node* node, Text&& text, bool mended = false) {
        const int number = static_cast<int>(flaw);
        if (!result.keeps(number)) {
            result.addCount(number, {1, mended ? std::size_t{1} : std::size_t{0}});
            return;
        }
        Finding finding{number, 0, {}, text(), mended};
        if (node != nullptr) {
            finding.handle = node->handle;
            finding.kind = std::string(data.kinds.name(node->kind));
        }
        result.add(std::move(finding));
    }
    /// Whether the drawing is of a time when handles and block records are the rule.
    bool isHandleVersion() const { return data.version >= "AC1012"; }
    bool isFromFile() const { return data.source != nullptr; }
};

/// Upper-case hexadecimal digits.
std::string hexText(std::uint64_t handle);
/// A name between quotation marks, in UTF-8.
std::string quoted(const OdString& name);
/// The name of a table record, empty for another object.
OdString recordName(DatabaseData& data, Node* node);
/// A name as it is compared without its case.
WideString foldedName(WideView name);

bool isDictionary(const Node& node);
/// The dictionary of a live entry, null for anything else.
OdDbDictionary* dictionaryOf(DatabaseData& data, Node& node);

/// The groups of every entry: owners, references by handle and by name, applications, encoding.
void checkEntries(CheckContext& context);
/// Names in tables and dictionaries, and the mending of both.
void checkNames(CheckContext& context);
/// Blocks and dictionaries that contain themselves.
void checkCircles(CheckContext& context);
/// What every drawing has: fixed records, blocks with records, the header.
void checkStructure(CheckContext& context);

} // namespace lm::drawing
