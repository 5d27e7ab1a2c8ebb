// SPDX-License-Identifier: MIT
#include "dxf/storedbodies.h"

#include "dxf/cursor.h"

namespace lm::drawing {

namespace {

/// Collects records from the groups of the section, one after the other.
class Records {
public:
    explicit Records(const DatabaseData& data) : m_data(data) {}

    void group(const Group& group, const char* begin, const char* end) {
        if (group.code == 0) {
            close(begin);
            m_begin = stripped(group.raw()) == kStoredRecord ? end : nullptr;
        }
        if (group.code != kBodyOf || m_begin == nullptr || m_entity != nullptr) return;
        bool bad = false;
        const std::uint64_t handle = Values(*m_data.source).handle(group, bad);
        Node* const node = bad ? nullptr : m_data.handles.find(handle);
        if (node != nullptr && node->has(Node::kEntity)) m_entity = node;
    }
    void close(const char* end) {
        if (m_begin != nullptr && m_entity != nullptr) found.push_back({m_entity, m_begin, end});
        m_begin = nullptr;
        m_entity = nullptr;
    }

    std::vector<StoredBody> found;

private:
    const DatabaseData& m_data;
    const char* m_begin = nullptr;
    Node* m_entity = nullptr;
};

} // namespace

std::vector<StoredBody> storedBodiesOf(const DatabaseData& data) {
    if (data.source == nullptr) return {};
    Records records(data);
    const Source& source = *data.source;
    for (const Section& section : data.sections) {
        if (section.name != kStoredBodies) continue;
        const char* const from = source.begin() + section.offset;
        const auto walk = [&](auto cursor) {
            Group group;
            for (const char* start = cursor.position(); cursor.next(group) == Step::kGroup;
                 start = cursor.position())
                records.group(group, start, cursor.position());
        };
        if (source.binary)
            walk(BinaryCursor(source, from, from + section.length));
        else
            walk(TextCursor(source, from, from + section.length));
        records.close(from + section.length);
    }
    return std::move(records.found);
}

} // namespace lm::drawing
