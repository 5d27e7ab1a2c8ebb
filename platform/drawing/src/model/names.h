// SPDX-License-Identifier: MIT
// Names of table records: how they are compared, and the map that a table keeps. Everything that decides
// whether two names are the same stands here.
#pragma once

#include "model/node.h"

#include "drawing/symboltable.h"

#include <unordered_map>

namespace lm::drawing {

struct WideHash {
    std::size_t operator()(WideView text) const noexcept {
        return std::hash<std::string_view>{}(
            std::string_view(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(WideChar)));
    }
};

struct WideSame {
    bool operator()(WideView a, WideView b) const noexcept { return system::wideEquals(a, b); }
};

/// From name to entry, exactly by unit. A key is a view into the text that the map holds beside it.
class NameMap {
public:
    Node* find(WideView name) const {
        const auto found = m_entries.find(name);
        return found == m_entries.end() ? nullptr : found->second.node;
    }
    void set(const OdString& name, Node* node) {
        m_entries.erase(name.view());
        m_entries.emplace(name.view(), Entry{name, node});
    }
    void remove(WideView name) { m_entries.erase(name); }

private:
    struct Entry {
        OdString name;
        Node* node;
    };
    std::unordered_map<WideView, Entry, WideHash, WideSame> m_entries;
};

/// Whether a block of this name is model space or a paper layout: "*Model_Space", "*Paper_Space" and
/// "*Paper_Space" with a number, ignoring case as files spell them in several ways.
bool isLayoutName(WideView name) noexcept;

/// Kind of a record or of an entity by its class.
std::uint16_t recordKind(const OdDbSymbolTableRecord& record);
std::uint16_t entityKind(const OdDbEntity& entity);

} // namespace lm::drawing
