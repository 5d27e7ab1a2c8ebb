// SPDX-License-Identifier: MIT
// Prompts and defaults of a block's definitions, read in one walk for any number of look-ups.
#pragma once

#include "drawing/symboltable.h"
#include "drawing/text.h"

#include <unordered_map>
#include <vector>

namespace lm::cad {

/// What the definitions of a block that aren't constant tell. Tags compare exactly.
class DefinitionTexts {
public:
    explicit DefinitionTexts(const OdDbBlockTableRecord& block);
    /// The prompt of the definition number `index` (from 0) of a tag; the tag where there is none.
    OdString prompt(const OdString& tag, std::size_t index) const;
    /// The default text of the first definition of a tag; empty where there is none.
    OdString defaultText(const OdString& tag) const;

private:
    struct Entry {
        OdString tag, prompt, text;
    };
    /// The entry number `index` of a tag, null without one.
    const Entry* find(const OdString& tag, std::size_t index) const;

    std::vector<Entry> m_entries; // by tag, those of one tag in drawing order
};

/// Counts tags ignoring case.
class TagCounts {
public:
    std::size_t of(const OdString& tag) const {
        const auto found = m_counts.find(tag);
        return found == m_counts.end() ? 0 : found->second;
    }
    void add(const OdString& tag) { ++m_counts[tag]; }

private:
    struct Hash {
        std::size_t operator()(const OdString& tag) const noexcept;
    };
    struct Same {
        bool operator()(const OdString& a, const OdString& b) const noexcept {
            return system::equalsNoCase(a.view(), b.view());
        }
    };
    std::unordered_map<OdString, std::size_t, Hash, Same> m_counts;
};

/// Walks the definitions of a block that are, or are not, constant, until `visit` answers false.
template<class Visit>
void forEachDefinition(const OdDbBlockTableRecord& btr, bool constant, Visit&& visit) {
    const OdSmartPtr<OdDbObjectIterator> walk = btr.newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbObject> object = walk->objectId().openObject();
        const auto* definition = OdDbAttributeDefinition::cast(object.get());
        if (definition != nullptr && definition->isConstant() == constant && !visit(*definition)) return;
    }
}

} // namespace lm::cad
