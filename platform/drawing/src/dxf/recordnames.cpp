// SPDX-License-Identifier: MIT
#include "dxf/recordnames.h"

namespace lm::drawing {

namespace {

std::string folded(const OdString& name) {
    WideString lower(name.view());
    for (WideChar& unit : lower) unit = system::toLower(unit);
    return system::toUtf8(lower);
}

} // namespace

const Node* RecordNames::find(const OdString& name) const {
    if (!m_ready) {
        m_ready = true;
        for (Node* record = m_table != nullptr ? m_table->firstPart : nullptr; record != nullptr;
             record = record->next) {
            if (!record->isLive() || record->has(Node::kGone)) continue;
            const auto* body = static_cast<OdDbSymbolTableRecord*>(record->database()->data().bodyOf(record));
            m_records.emplace(folded(body->getName()), record);
        }
    }
    const auto found = m_records.find(folded(name));
    return found != m_records.end() ? found->second : nullptr;
}

} // namespace lm::drawing
