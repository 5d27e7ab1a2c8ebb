// SPDX-License-Identifier: MIT
#include "cad/icad_definition_texts.h"

#include <algorithm>

namespace lm::cad {

DefinitionTexts::DefinitionTexts(const OdDbBlockTableRecord& block) {
    forEachDefinition(block, false, [&](const OdDbAttributeDefinition& definition) {
        m_entries.push_back({definition.tag(), definition.prompt(), definition.textString()});
        return true;
    });
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
}

const DefinitionTexts::Entry* DefinitionTexts::find(const OdString& tag, std::size_t index) const {
    const auto first =
        std::lower_bound(m_entries.begin(), m_entries.end(), tag,
                         [](const Entry& entry, const OdString& wanted) { return entry.tag < wanted; });
    if (index >= static_cast<std::size_t>(m_entries.end() - first)) return nullptr;
    const Entry& entry = first[static_cast<std::ptrdiff_t>(index)];
    return entry.tag == tag ? &entry : nullptr;
}

OdString DefinitionTexts::prompt(const OdString& tag, std::size_t index) const {
    const Entry* const entry = find(tag, index);
    return entry != nullptr ? entry->prompt : tag;
}

OdString DefinitionTexts::defaultText(const OdString& tag) const {
    const Entry* const entry = find(tag, 0);
    return entry != nullptr ? entry->text : OdString();
}

std::size_t TagCounts::Hash::operator()(const OdString& tag) const noexcept {
    std::size_t hash = 14695981039346656037ULL; // FNV-1a
    for (const WideChar unit : tag.view()) hash = (hash ^ system::toLower(unit)) * 1099511628211ULL;
    return hash;
}

} // namespace lm::cad
