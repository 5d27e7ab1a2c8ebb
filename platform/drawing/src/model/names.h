// SPDX-License-Identifier: MIT
// Names of table records: how they are compared, and the map that a table keeps. Everything that decides
// whether two names are the same stands here.
#pragma once

#include "model/node.h"

#include "drawing/symboltable.h"

#include <algorithm>
#include <span>
#include <unordered_map>
#include <vector>

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

/// From name to entry, exactly by unit. A key is a view into the text that the map holds beside it, with its
/// hash, so that a look-up reads the text of no other name.
class NameMap {
public:
    Node* find(WideView name) const {
        const auto found = m_entries.find(Key(name));
        return found == m_entries.end() ? nullptr : found->second.node;
    }
    void set(const OdString& name, Node* node) {
        const auto [at, isNew] = m_entries.try_emplace(Key(name.view()), Entry{name, node});
        if (!isNew) at->second.node = node;
    }
    /// Enters a name that isn't there yet; false, with nothing changed, for one that is.
    bool add(const OdString& name, Node* node) {
        return m_entries.try_emplace(Key(name.view()), Entry{name, node}).second;
    }
    /// Tells how many names are coming.
    void expect(std::size_t names) { m_entries.reserve(m_entries.size() + names); }
    void remove(WideView name) { m_entries.erase(Key(name)); }

private:
    struct Entry {
        OdString name;
        Node* node;
    };
    struct Key {
        explicit Key(WideView name) : text(name), hash(WideHash()(name)) {}
        bool operator==(const Key& other) const noexcept {
            return hash == other.hash && system::wideEquals(text, other.text);
        }
        WideView text;
        std::size_t hash;
    };
    struct KnownHash {
        std::size_t operator()(const Key& key) const noexcept { return key.hash; }
    };
    std::unordered_map<Key, Entry, KnownHash> m_entries;
};

/// From names without their case to the entries that have such a name or had one: whoever asks looks whether
/// an entry still has it. Nothing is ever taken out, so that undoing needs no look-up of what was there.
class FoldedNames {
public:
    void add(WideView name, Node* node) {
        std::vector<Node*>& nodes = m_entries[foldedName(name)];
        if (std::find(nodes.begin(), nodes.end(), node) == nodes.end()) nodes.push_back(node);
    }
    std::span<Node* const> find(WideView name) const {
        const auto found = m_entries.find(foldedName(name));
        if (found == m_entries.end()) return {};
        return found->second;
    }

private:
    static WideString foldedName(WideView name) {
        WideString folded(name);
        for (WideChar& unit : folded) unit = system::toLower(unit);
        return folded;
    }
    std::unordered_map<WideString, std::vector<Node*>, WideHash, WideSame> m_entries;
};

/// Whether a block of this name is model space or a paper layout: "*Model_Space", "*Paper_Space" and
/// "*Paper_Space" with a number, ignoring case as files spell them in several ways.
bool isLayoutName(WideView name) noexcept;

/// Kind of a record or of an entity by its class.
std::uint16_t recordKind(const OdDbSymbolTableRecord& record);
std::uint16_t entityKind(const OdDbEntity& entity);

} // namespace lm::drawing
