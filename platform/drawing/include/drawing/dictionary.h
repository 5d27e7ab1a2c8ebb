// SPDX-License-Identifier: MIT
// Named dictionaries and xrecords: what a drawing knows beyond its geometry.
#pragma once

#include "drawing/object.h"

class OdDbDictionary;

/// A walk over the live entries of a dictionary, in order of creation.
class LM_DRAWING_API OdDbDictionaryIterator : public OdRxObject {
    LM_RX_CLASS(OdDbDictionaryIterator)
public:
    explicit OdDbDictionaryIterator(OdSmartPtr<OdDbDictionary> dictionary);
    ~OdDbDictionaryIterator() override;
    bool done() const;
    void next();
    OdString name() const;
    OdDbObjectId objectId() const;
    OdSmartPtr<OdDbObject> getObject(OdDb::OpenMode mode = OdDb::kForRead) const;

    void addRef() override { ++m_refs; }
    void release() override {
        if (--m_refs == 0) delete this;
    }
    long numRefs() const override { return m_refs; }

private:
    void skip();
    OdSmartPtr<OdDbDictionary> m_dictionary;
    std::size_t m_at = 0;
    long m_refs = 1;
};

/// Names and the objects that they stand for. Names are compared exactly.
class LM_DRAWING_API OdDbDictionary : public OdDbObject {
    LM_RX_CLASS(OdDbDictionary)
public:
    OdDbDictionary();
    ~OdDbDictionary() override;

    /// Id of a live entry, else null.
    OdDbObjectId getAt(const OdString& name) const;
    /// The object of a live entry in a mode, else null.
    OdSmartPtr<OdDbObject> getAt(const OdString& name, OdDb::OpenMode mode) const;
    bool has(const OdString& name) const { return !getAt(name).isNull(); }
    /// Enters an object under a name; an object that stood there is erased. The object becomes resident with
    /// its extended data and is left write-enabled. Raises OdError when the dictionary isn't open for write.
    OdDbObjectId setAt(const OdString& name, OdSmartPtr<OdDbObject> object);
    /// Takes an entry out and erases its object; an unknown name changes nothing.
    void remove(const OdString& name);
    /// Number of live entries.
    unsigned int numEntries() const;
    OdSmartPtr<OdDbDictionaryIterator> newIterator() const;

    LM_DB_STATE(OdDbDictionary)
    OdDbDictionary& operator=(const OdDbDictionary&);

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    friend class OdDbDictionaryIterator;
    struct Entry {
        OdString name;
        OdDbObjectId id;
    };
    struct Index;
    std::vector<Entry> m_entries;
    mutable std::unique_ptr<Index> m_index;
};

/// A chain of typed records as an object.
class LM_DRAWING_API OdDbXrecord : public OdDbObject {
    LM_RX_CLASS(OdDbXrecord)
public:
    OdDbXrecord();
    ~OdDbXrecord() override;
    /// A copy of the chain; null when it is empty.
    OdSmartPtr<OdResBuf> rbChain() const;
    /// Replaces the chain by a copy of the given one.
    void setFromRbChain(OdSmartPtr<OdResBuf> chain);

    LM_DB_STATE(OdDbXrecord)
    OdDbXrecord& operator=(const OdDbXrecord&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    OdSmartPtr<OdResBuf> m_chain;
};
