// SPDX-License-Identifier: MIT
// Names in tables and dictionaries. Of several records or entries of one name only the first can be found,
// and other programs throw the others away: those get a name of their own.
#include "check/steps.h"

#include "model/names.h"

namespace lm::drawing {

namespace {

/// A name that nobody else has as long as handles are unique: the old one and the handle.
OdString freeName(const OdString& name, std::uint64_t handle) {
    return name + odText("$" + hexText(handle));
}

class TableNames {
public:
    TableNames(CheckContext& context, Node& table) : m_context(context), m_table(table) {}

    void run() {
        for (Node* record = m_table.firstPart; record != nullptr; record = record->next) {
            // Several viewports are active side by side under one name.
            if (record->isErased() || record->kind == kKindVport) continue;
            const OdString name = recordName(m_context.data, record);
            if (!name.isEmpty()) one(*record, name);
        }
    }

private:
    void one(Node& record, const OdString& name) {
        if (!m_exact.insert(WideString(name.view())).second) {
            if (!m_context.fix || !rename(record, name)) m_context.stillDoubled.insert(&record);
            return;
        }
        const auto [other, isNew] = m_folded.try_emplace(foldedName(name.view()), &record);
        if (isNew) return;
        m_context.add(Flaw::kNamesByCase, &record, [&, other = other] {
            return quoted(name) + ", like " + quoted(recordName(m_context.data, other->second)) + " at " +
                   hexText(other->second->handle);
        });
    }

    /// Names with a star mean something to every program, so they stay.
    bool rename(Node& record, const OdString& name) {
        if (name.view().front() == '*') return false;
        const OdSmartPtr<OdDbSymbolTableRecord> body(OdDbObjectId(&record).openObject(OdDb::kForWrite));
        OdString wanted = freeName(name, record.handle);
        while (m_context.data.tableRecord(&m_table, wanted) != nullptr) wanted = wanted + odText("$");
        body->setName(wanted);
        return true;
    }

    CheckContext& m_context;
    Node& m_table;
    std::unordered_set<WideString, WideHash> m_exact;
    std::unordered_map<WideString, Node*, WideHash> m_folded;
};

class DictionaryNames {
public:
    using Entries = std::vector<std::pair<OdString, OdDbObjectId>>;

    DictionaryNames(CheckContext& context, Node& node, OdDbDictionary& dictionary)
        : m_context(context), m_node(node), m_dictionary(dictionary) {}

    void run() {
        const Entries entries = ObjectAccess::entries(m_dictionary);
        for (const auto& [name, id] : entries) {
            if (id.isNull())
                m_changed = m_changed || m_context.fix; // without an object it is left out
            else if (id.isErased())
                m_kept.emplace_back(name, id);
            else
                one(name, id);
        }
        if (!m_changed) return;
        ObjectAccess::setEntries(m_dictionary, m_kept);
        m_node.flags |= Node::kDirty;
    }

private:
    void one(const OdString& name, OdDbObjectId id) {
        const auto [first, isNew] = m_exact.try_emplace(WideString(name.view()), id);
        if (!isNew) {
            doubled(name, id, first->second);
            return;
        }
        m_kept.emplace_back(name, id);
        const auto [other, isNewFolded] = m_folded.try_emplace(foldedName(name.view()), name);
        if (!isNewFolded)
            m_context.add(Flaw::kEntriesByCase, &m_node,
                          [&, other = other] { return quoted(name) + ", like " + quoted(other->second); });
    }

    /// A second entry for the same object says nothing; one for another gets a name of its own.
    void doubled(const OdString& name, OdDbObjectId id, OdDbObjectId first) {
        OdString wanted = freeName(name, id.getHandle().value());
        bool same = id == first;
        while (!same && m_dictionary.has(wanted)) wanted = wanted + odText("$");
        if (!same) {
            const auto [taken, isNew] = m_exact.try_emplace(WideString(wanted.view()), id);
            same = !isNew && taken->second == id; // a third entry, for the same object as the second
        }
        m_context.add(
            Flaw::kDoubledEntry, &m_node,
            [&] {
                const std::string what = quoted(name) + " for " + hexText(id.getHandle().value());
                if (!m_context.fix) return what;
                return what + (same ? ", the second entry was left out" : ", became " + quoted(wanted));
            },
            m_context.fix);
        if (!same) m_kept.emplace_back(wanted, id);
        m_changed = m_changed || m_context.fix;
    }

    CheckContext& m_context;
    Node& m_node;
    OdDbDictionary& m_dictionary;
    Entries m_kept; // with the changes; only taken over when something is mended
    bool m_changed = false;
    std::unordered_map<WideString, OdDbObjectId, WideHash> m_exact;
    std::unordered_map<WideString, OdString, WideHash> m_folded;
};

/// Whether the owners above an object lead to another.
bool leadsTo(const Node* from, const Node* to) {
    for (const Node* at = from; at != nullptr; at = at->owner)
        if (at == to) return true;
    return false;
}

/// An object that names an owner that isn't there belongs to the first dictionary that lists it.
void findOwners(CheckContext& context) {
    if (context.ownerless.empty()) return;
    std::unordered_map<Node*, Node*> owners;
    for (Node* object : context.ownerless) owners.emplace(object, nullptr);
    context.data.nodes.forEach([&](Node& node) {
        const OdDbDictionary* const dictionary = dictionaryOf(context.data, node);
        if (dictionary == nullptr) return;
        for (const auto& [name, id] : ObjectAccess::entries(*dictionary)) {
            const auto found = owners.find(id.node());
            if (found != owners.end() && found->second == nullptr && found->first != &node)
                found->second = &node;
        }
    });
    for (Node* object : context.ownerless) {
        Node* const owner = owners[object];
        const bool mended = context.fix && owner != nullptr && !leadsTo(owner, object);
        context.add(
            Flaw::kUnknownOwner, object,
            [&] {
                return owner != nullptr ? "listed by the dictionary " + hexText(owner->handle)
                                        : std::string("listed by no dictionary");
            },
            mended);
        if (!mended) continue;
        object->owner = owner;
        object->flags |= Node::kDirty;
    }
}

} // namespace

void checkNames(CheckContext& context) {
    findOwners(context);
    context.data.nodes.forEach([&context](Node& node) {
        if (node.kind == kKindTable && node.isLive()) TableNames(context, node).run();
        if (OdDbDictionary* const dictionary = dictionaryOf(context.data, node))
            DictionaryNames(context, node, *dictionary).run();
    });
}

} // namespace lm::drawing
