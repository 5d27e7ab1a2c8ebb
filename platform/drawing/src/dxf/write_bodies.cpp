// SPDX-License-Identifier: MIT
// Bodies of the modeller for copies of their entities: each gets a record of its own beside the original's.
#include "dxf/storedbodies.h"
#include "dxf/write.h"

namespace lm::drawing {

namespace {

constexpr int kHandle = 5, kInlineBody = 1, kSubclass = 100;

/// The handle of the entity that a copy was made of, by the groups that came along. 0 for a copy that brings
/// its body with it.
std::uint64_t originalOf(const GroupSpan& span) {
    std::uint64_t handle = 0;
    bool head = true, whole = false, bad = false;
    forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
        head = head && group.code != kSubclass;
        if (head && group.code == kHandle) handle = Values(*span.form).handle(group, bad);
        whole = whole || group.code == kInlineBody;
        return group.code < 1000;
    });
    return bad || whole ? 0 : handle;
}

} // namespace

void DrawingWriter::planBodies() {
    const Section* const section = this->section(kStoredBodies);
    if (section == nullptr || m_plan.created.empty()) return;
    std::unordered_map<std::uint64_t, StoredBody> bodies;
    for (const StoredBody& body : storedBodiesOf(m_data)) bodies.emplace(body.entity->handle, body);
    if (bodies.empty()) return;
    for (Node* const node : m_plan.created) {
        if (!node->has(Node::kEntity)) continue;
        const auto found = bodies.find(originalOf(groupsOf(m_data, *node)));
        if (found == bodies.end() || found->second.entity->kind != node->kind) continue;
        const StoredBody body = found->second;
        addChange(endOf(*section), Rank::kEntry, [this, node, body] { writeBody(*node, body); });
    }
}

void DrawingWriter::writeBody(const Node& node, const StoredBody& body) {
    OutGroups groups;
    const GroupSpan span{m_source, body.begin, static_cast<std::size_t>(body.end - body.begin), false};
    forEachGroupIn(span, [&](const Group& group, const char* begin, const char* end) {
        if (group.code == kBodyOf)
            groups.push_back(OutGroup::handle(kBodyOf, node.handle));
        else
            groups.push_back({group.code, SourceGroup{group, begin, end, m_source}});
        return true;
    });
    m_out.put(0, kStoredRecord);
    m_out.put(groups);
}

} // namespace lm::drawing
