// SPDX-License-Identifier: MIT
#include "dxf/write_lists.h"

#include "dxf/foreach.h"
#include "dxf/write_fields.h"

#include <cstring>

namespace lm::drawing {

namespace {

constexpr int kMark = 100, kBraces = 102, kReactor = 330, kUser = 331, kMember = 340, kDictionary = 360;
constexpr int kSortKey = 5, kFirstXData = 1000;
/// What the braces of reactors and of extension dictionaries begin with.
constexpr std::string_view kBracesHead = "{ACAD_";

/// Tells of the groups of one entry, taken in their order, which ones name an object in a list.
class ListReader {
public:
    explicit ListReader(std::string_view kind)
        : m_isGroup(kind == "GROUP"), m_isOrder(kind == "SORTENTSTABLE"), m_isBlock(kind == "BLOCK_RECORD") {}

    bool isInList(int code, std::string_view value) {
        if (code == kMark) m_isMarked = true;
        if (code == kBraces) {
            value = stripped(value);
            m_braces = value.substr(0, 1) == "{" ? value : std::string_view();
            return false;
        }
        if (m_braces == "{ACAD_REACTORS") return code == kReactor;
        if (m_braces == "{ACAD_XDICTIONARY") return code == kDictionary;
        if (m_braces == "{BLKREFS") return m_isBlock && code == kUser;
        if (!m_braces.empty()) return false;
        return (m_isGroup && code == kMember) || (m_isOrder && m_isMarked && code == kUser);
    }
    /// Whether the group belongs to the entry of the drawing order in front of it.
    bool isSortKey(int code) const { return m_isOrder && m_isMarked && m_braces.empty() && code == kSortKey; }

private:
    bool m_isGroup, m_isOrder, m_isBlock;
    bool m_isMarked = false;
    std::string_view m_braces; // what opened the braces that are open
};

bool isDead(const DatabaseData& data, std::uint64_t handle) {
    const Node* const node = handle != 0 ? data.handles.find(handle) : nullptr;
    return node != nullptr && !node->isLive();
}

bool hasDead(const DatabaseData& data, const Node& node) {
    ListReader lists(data.kinds.name(node.kind));
    const Values values(*data.source);
    bool found = false;
    forEachGroup(*data.source, node, [&](const Group& group) {
        bool bad = false;
        if (group.code >= kFirstXData) return false;
        found = lists.isInList(group.code, group.raw()) && isDead(data, values.handle(group, bad));
        return !found;
    });
    return found;
}

} // namespace

void forListsWithDead(DatabaseData& data, const std::function<void(const Node&)>& visit) {
    const char* const begin = data.source->begin();
    const char* const end = data.source->end();
    const auto findFrom = [end](const char* at) {
        const void* const found =
            ::memmem(at, static_cast<std::size_t>(end - at), kBracesHead.data(), kBracesHead.size());
        return found != nullptr ? static_cast<const char*>(found) : end;
    };
    const char* braces = findFrom(begin);
    data.nodes.forEach([&](Node& node) {
        if (node.offset == 0) return;
        const char* const from = begin + node.offset;
        if (braces < from) braces = findFrom(from);
        const std::string_view kind = data.kinds.name(node.kind);
        const bool mayHave = braces < from + node.length || node.kind == kKindBlockRecord ||
                             kind == "GROUP" || kind == "SORTENTSTABLE";
        if (mayHave && node.isLive() && hasDead(data, node)) visit(node);
    });
}

void dropDead(const DatabaseData& data, std::string_view kind, OutGroups& groups) {
    ListReader lists(kind);
    std::vector<bool> remove(groups.size(), false);
    bool any = false;
    for (std::size_t i = 0; i < groups.size() && groups[i].code < kFirstXData; ++i) {
        const OutGroup& group = groups[i];
        if (!lists.isInList(group.code, group.raw()) || !isDead(data, handleOf(group))) continue;
        remove[i] = any = true;
        if (i + 1 < groups.size() && lists.isSortKey(groups[i + 1].code)) remove[i + 1] = true;
    }
    if (!any) return;
    // Braces around nothing but what goes.
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code != kBraces || stripped(groups[i].raw()).substr(0, 1) != "{") continue;
        std::size_t last = i + 1;
        while (last < groups.size() && remove[last]) ++last;
        if (last == i + 1 || last == groups.size() || groups[last].code != kBraces) continue;
        remove[i] = remove[last] = true;
    }
    removeMarked(groups, remove);
}

} // namespace lm::drawing
