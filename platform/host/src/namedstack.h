// SPDX-License-Identifier: MIT
// A table from name to entry in which a later entry hides an earlier one of the same name until it goes.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace lm::host {

/// `Less` orders the names. Numbers of entries begin at 1 and are never used again.
template<class Name, class Entry, class Less>
class NamedStack {
public:
    unsigned long add(const Name& name, Entry entry) {
        const unsigned long id = ++m_lastId;
        m_names[name].emplace_back(id, std::make_shared<const Entry>(std::move(entry)));
        return id;
    }

    void remove(unsigned long id) noexcept {
        for (auto at = m_names.begin(); at != m_names.end(); ++at) {
            auto& entries = at->second;
            for (std::size_t i = 0; i < entries.size(); ++i) {
                if (entries[i].first != id) continue;
                // The entry is let go last: its end may come back to this table.
                const std::shared_ptr<const Entry> last = std::move(entries[i].second);
                entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
                if (entries.empty()) m_names.erase(at);
                return;
            }
        }
    }

    template<class Key>
    std::shared_ptr<const Entry> find(const Key& name) const {
        const auto at = m_names.find(name);
        return at != m_names.end() ? at->second.back().second : nullptr;
    }

    /// The visible entries by name.
    std::vector<std::shared_ptr<const Entry>> visible() const {
        std::vector<std::shared_ptr<const Entry>> result;
        for (const auto& [name, entries] : m_names) result.push_back(entries.back().second);
        return result;
    }

    std::size_t size() const noexcept {
        std::size_t count = 0;
        for (const auto& [name, entries] : m_names) count += entries.size();
        return count;
    }

private:
    std::map<Name, std::vector<std::pair<unsigned long, std::shared_ptr<const Entry>>>, Less> m_names;
    unsigned long m_lastId = 0;
};

} // namespace lm::host
