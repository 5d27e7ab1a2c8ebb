// SPDX-License-Identifier: MIT
#include "drawing/dictionary.h"

#include "base/rxclass.h"
#include "model/databasedata.h"

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

OdDbDictionary::OdDbDictionary() = default;
OdDbDictionary::~OdDbDictionary() = default;

OdDbObjectId OdDbDictionary::getAt(const OdString& name) const {
    for (const Entry& entry : m_entries)
        if (entry.id.isValid() && !entry.id.isErased() && entry.name == name) return entry.id;
    return OdDbObjectId::kNull;
}

OdSmartPtr<OdDbObject> OdDbDictionary::getAt(const OdString& name, OdDb::OpenMode mode) const {
    return getAt(name).openObject(mode);
}

OdDbObjectId OdDbDictionary::setAt(const OdString& name, OdSmartPtr<OdDbObject> object) {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    if (name.isEmpty()) throw OdError(eInvalidKey);
    beginChange();
    if (object->isDBRO() && object->database() != database()) throw OdError(eInvalidInput);
    if (object->isDBRO() && getAt(name) == object->objectId()) return object->objectId();
    remove(name);
    if (!object->isDBRO()) database()->addOdDbObject(object, objectId());
    m_entries.push_back({name, object->objectId()});
    return object->objectId();
}

void OdDbDictionary::remove(const OdString& name) {
    const OdDbObjectId id = getAt(name);
    if (id.isNull()) return;
    beginChange();
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
