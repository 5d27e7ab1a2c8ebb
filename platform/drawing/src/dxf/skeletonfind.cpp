// SPDX-License-Identifier: MIT
#include "dxf/skeletonfind.h"

#include "dxf/read.h"
#include "dxf/skeletonentries.h"
#include "dxf/write_fields.h"
#include "model/rawgroups.h"

#include "drawing/dictionary.h"

#include <algorithm>

namespace lm::drawing {

namespace {

constexpr int kFirstXData = 1000;

/// An item of a dictionary.
struct Item {
    OdString name;
    Node* node = nullptr;
};

/// Whether one group is as another: texts and integers by value, numbers and handles by code alone, since
/// they are each drawing's own.
bool isAs(const OutGroup& there, const OutGroup& expected) {
    if (there.code != expected.code) return false;
    if (std::holds_alternative<long long>(expected.value)) return integerOf(there) == integerOf(expected);
    const bool text = std::holds_alternative<AsciiValue>(expected.value) ||
                      std::holds_alternative<OdString>(expected.value);
    return !text || textOf(there) == textOf(expected);
}

/// Whether an entry of the source is as it would be made, without anything else.
bool isAs(const DatabaseData& data, const Node& node, const OutEntry& expected) {
    if (node.has(Node::kDirty) || data.kinds.name(node.kind) != expected.type) return false;
    const GroupSpan span = groupsOf(data, node);
    std::size_t next = 0;
    bool same = !span.isEmpty();
    forEachGroupIn(span, [&](const Group& group, const char* begin, const char* end) {
        const OutGroup there{group.code, SourceGroup{group, begin, end, span.form}};
        same =
            group.code < kFirstXData && next < expected.groups.size() && isAs(there, expected.groups[next++]);
        return same;
    });
    return same && next == expected.groups.size();
}

class Finder {
public:
    explicit Finder(const DatabaseData& data) : m_data(const_cast<DatabaseData&>(data)) {}

    SkeletonParts run() {
        const bool known = m_data.source != nullptr && findLayouts();
        if (known) {
            findOthers();
            findDimensionStyle();
        }
        m_parts.onlyItsClasses = hasOnlyClasses(known);
        return std::move(m_parts);
    }

private:
    /// The object that the dictionary of named objects has under a name.
    Node* rootItem(std::string_view name) const {
        for (const Item& item : itemsOf(m_data.fixed.dictionary))
            if (item.name == odText(name)) return item.node;
        return nullptr;
    }

    std::vector<Item> itemsOf(Node* node) const {
        std::vector<Item> items;
        auto* dictionary = node != nullptr ? OdDbDictionary::cast(m_data.bodyOf(node)) : nullptr;
        if (dictionary == nullptr) return items;
        const auto walk = dictionary->newIterator();
        for (; !walk->done(); walk->next()) items.push_back({walk->name(), walk->objectId().node()});
        return items;
    }

    bool findLayouts() {
        Node* const dictionary = rootItem(kLayouts);
        const std::vector<Item> items = itemsOf(dictionary);
        if (items.empty()) return false;
        OutEntry expected = dictionaryEntry("DICTIONARY", 0, 0);
        for (const Item& item : items) addItem(expected.groups, item.name, 0);
        if (!isAs(m_data, *dictionary, expected)) return false;
        int order = 0;
        for (const Item& item : items)
            if (!isLayout(*item.node, utf8(item.name), order++)) return false;
        m_parts.entries.insert(dictionary);
        for (const Item& item : items) m_parts.entries.insert(item.node);
        return true;
    }

    bool isLayout(const Node& node, const std::string& name, int order) const {
        LayoutFacts facts;
        facts.name = name;
        facts.order = order;
        // A later version may have been written since the layout was made.
        return isAs(m_data, node, layoutEntry(facts, FileVersion::kR2000)) ||
               isAs(m_data, node, layoutEntry(facts, FileVersion::kR2018));
    }

    void findOthers() {
        const OutEntry empty = dictionaryEntry("DICTIONARY", 0, 0);
        OutEntry styles = empty;
        addItem(styles.groups, odText("Standard"), 0);
        take(kGroups, empty, {});
        take(kPageSetups, empty, {});
        take(kLineStyles, styles, lineStyleEntry(0, 0));
        take(kPlotStyles, plotStylesEntry(0, 0, 0), bareEntry("ACDBPLACEHOLDER", 0, 0));
    }

    /// Takes an item with the one object that it lists, if both are as expected.
    void take(std::string_view name, const OutEntry& expected, const OutEntry& part) {
        Node* const node = rootItem(name);
        if (node == nullptr || !isAs(m_data, *node, expected)) return;
        const std::vector<Item> items = itemsOf(node);
        if (items.size() != (part.type.empty() ? 0u : 1u)) return;
        for (const Item& item : items)
            if (!isAs(m_data, *item.node, part)) return;
        m_parts.entries.insert(node);
        for (const Item& item : items) m_parts.entries.insert(item.node);
    }

    void findDimensionStyle() {
        const Node* const table = m_data.fixed.dimstyleTable;
        const Node* const record = table != nullptr ? table->firstPart : nullptr;
        if (record == nullptr || record->next != nullptr) return;
        if (isAs(m_data, *record, dimensionStyleEntry(0, 0, 0))) m_parts.entries.insert(record);
    }

    bool hasOnlyClasses(bool known) const {
        bool only = true;
        for (const Section& section : m_data.sections) {
            if (section.name != "CLASSES") continue;
            Node place;
            place.offset = section.offset;
            place.length = static_cast<std::uint32_t>(section.length);
            forEachGroup(*m_data.source, place, [&](const Group& group) {
                only = only && (group.code != 1 || (known && isSkeletonClass(stripped(group.raw()))));
                return only;
            });
        }
        return only;
    }

    static bool isSkeletonClass(std::string_view type) {
        const auto rows = skeletonClasses();
        return std::any_of(rows.begin(), rows.end(), [&](const ClassRow& row) { return row.type == type; });
    }

    DatabaseData& m_data;
    SkeletonParts m_parts;
};

} // namespace

SkeletonParts findSkeleton(const DatabaseData& data) {
    return Finder(data).run();
}

} // namespace lm::drawing
