// SPDX-License-Identifier: MIT
#include "drawing/dictionary.h"

#include "base/rxclass.h"
#include "model/databasedata.h"
#include "model/names.h"

using lm::drawing::Node;

LM_RX_DEFINE_ABSTRACT(OdDbDictionaryIterator, OdRxObject)
LM_RX_DEFINE(OdDbDictionary, OdDbObject)
LM_RX_DEFINE(OdDbXrecord, OdDbObject)

OdDbDictionaryIterator::OdDbDictionaryIterator(OdSmartPtr<OdDbDictionary> dictionary)
    : m_dictionary(dictionary) {
    skip();
}
OdDbDictionaryIterator::~OdDbDictionaryIterator() = default;

bool OdDbDictionaryIterator::done() const {
    return m_at >= m_dictionary->m_entries.size();
}

void OdDbDictionaryIterator::skip() {
    const auto dead = [this] {
        const OdDbObjectId id = m_dictionary->m_entries[m_at].id;
        return !id.isValid() || id.isErased();
    };
    while (!done() && dead()) ++m_at;
}

void OdDbDictionaryIterator::next() {
    if (done()) return;
    ++m_at;
    skip();
}

OdString OdDbDictionaryIterator::name() const {
    return done() ? OdString() : m_dictionary->m_entries[m_at].name;
}

OdDbObjectId OdDbDictionaryIterator::objectId() const {
    return done() ? OdDbObjectId::kNull : m_dictionary->m_entries[m_at].id;
}

OdSmartPtr<OdDbObject> OdDbDictionaryIterator::getObject(OdDb::OpenMode mode) const {
    return objectId().openObject(mode);
}

/// Entries by the hash of their name, for dictionaries that are too long to be walked at each look-up. It
/// follows the list when it is asked.
struct OdDbDictionary::Index {
    std::unordered_multimap<std::size_t, std::size_t> places;
    std::size_t indexed = 0;

    template<class Entries>
    void follow(const Entries& entries) {
        if (indexed > entries.size()) {
            places.clear();
            indexed = 0;
        }
        for (; indexed < entries.size(); ++indexed)
            places.emplace(lm::drawing::WideHash()(entries[indexed].name.view()), indexed);
    }
};

OdDbDictionary::OdDbDictionary() = default;
OdDbDictionary::~OdDbDictionary() = default;

OdDbDictionary& OdDbDictionary::operator=(const OdDbDictionary& other) {
    OdDbObject::operator=(other); // the undo log has records of its own for entries
    return *this;
}

OdDbObjectId OdDbDictionary::getAt(const OdString& name) const {
    constexpr std::size_t kWalked = 16;
    const auto isHit = [&](const Entry& entry) {
        return entry.id.isValid() && !entry.id.isErased() && entry.name == name;
    };
    if (m_entries.size() <= kWalked) {
        for (const Entry& entry : m_entries)
            if (isHit(entry)) return entry.id;
        return OdDbObjectId::kNull;
    }
    if (m_index == nullptr) m_index = std::make_unique<Index>();
    m_index->follow(m_entries);
    const auto [from, to] = m_index->places.equal_range(lm::drawing::WideHash()(name.view()));
    std::size_t first = m_entries.size(); // a file may have a name twice: the first one is found
    for (auto at = from; at != to; ++at)
        if (at->second < first && isHit(m_entries[at->second])) first = at->second;
    return first < m_entries.size() ? m_entries[first].id : OdDbObjectId::kNull;
}

OdSmartPtr<OdDbObject> OdDbDictionary::getAt(const OdString& name, OdDb::OpenMode mode) const {
    return getAt(name).openObject(mode);
}

OdDbObjectId OdDbDictionary::setAt(const OdString& name, OdSmartPtr<OdDbObject> object) {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    if (name.isEmpty()) throw OdError(eInvalidKey);
    assertWriteEnabled(false, false); // an entry more is no change of the dictionary itself
    if (object->isDBRO() && object->database() != database()) throw OdError(eInvalidInput);
    if (object->isDBRO() && getAt(name) == object->objectId()) return object->objectId();
    remove(name);
    if (!object->isDBRO()) database()->addOdDbObject(object, objectId());
    m_entries.push_back({name, object->objectId()});
    Node* const node = objectId().node();
    node->flags |= Node::kDirty;
    database()->data().undo.file(node, lm::drawing::UndoRecord::Entry{name, object->objectId()});
    return object->objectId();
}

void OdDbDictionary::remove(const OdString& name) {
    const OdDbObjectId id = getAt(name);
    if (id.isNull()) return;
    assertWriteEnabled(false, false);
    objectId().node()->flags |= Node::kDirty;
    id.openObject(OdDb::kForWrite)->erase();
}

unsigned int OdDbDictionary::numEntries() const {
    unsigned int count = 0;
    for (const Entry& entry : m_entries)
        if (entry.id.isValid() && !entry.id.isErased()) ++count;
    return count;
}

OdSmartPtr<OdDbDictionaryIterator> OdDbDictionary::newIterator() const {
    return OdSmartPtr<OdDbDictionaryIterator>(
        new OdDbDictionaryIterator(OdSmartPtr<OdDbDictionary>(const_cast<OdDbDictionary*>(this))),
        lm::drawing::kAttach);
}

OdDbXrecord::OdDbXrecord() = default;
OdDbXrecord::~OdDbXrecord() = default;

OdSmartPtr<OdResBuf> OdDbXrecord::rbChain() const {
    return m_chain.isNull() ? m_chain : m_chain->cloneChain();
}

void OdDbXrecord::setFromRbChain(OdSmartPtr<OdResBuf> chain) {
    beginChange();
    m_chain = chain.isNull() ? chain : chain->cloneChain();
}

namespace lm::drawing {

void ObjectAccess::addEntry(OdDbDictionary& dictionary, const OdString& name, OdDbObjectId id) {
    dictionary.m_entries.push_back({name, id});
}

void ObjectAccess::takeEntry(OdDbDictionary& dictionary) {
    dictionary.m_entries.pop_back();
    if (dictionary.m_index != nullptr) dictionary.m_index.reset(); // the next entry may be another one
}

std::vector<std::pair<OdString, OdDbObjectId>> ObjectAccess::entries(const OdDbDictionary& dictionary) {
    std::vector<std::pair<OdString, OdDbObjectId>> all;
    all.reserve(dictionary.m_entries.size());
    for (const OdDbDictionary::Entry& entry : dictionary.m_entries) all.emplace_back(entry.name, entry.id);
    return all;
}

void ObjectAccess::setEntries(OdDbDictionary& dictionary,
                              const std::vector<std::pair<OdString, OdDbObjectId>>& entries) {
    dictionary.m_entries.clear();
    for (const auto& [name, id] : entries) dictionary.m_entries.push_back({name, id});
    dictionary.m_index.reset();
}

} // namespace lm::drawing
