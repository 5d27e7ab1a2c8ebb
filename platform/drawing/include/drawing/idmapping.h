// SPDX-License-Identifier: MIT
// OdDbIdMapping: which new object stands for which source after a deep clone.
#pragma once

#include "drawing/objectid.h"

#include <unordered_map>
#include <vector>

/// One cloned object: the source and what became of it.
class OdDbIdPair {
public:
    OdDbIdPair() = default;
    explicit OdDbIdPair(OdDbObjectId key, OdDbObjectId value = OdDbObjectId::kNull)
        : m_key(key), m_value(value) {}
    OdDbObjectId key() const { return m_key; }
    OdDbObjectId value() const { return m_value; }
    void setValue(OdDbObjectId value) { m_value = value; }

private:
    OdDbObjectId m_key, m_value;
};

/// The pairs of a deep clone in the order of cloning. It holds one pair for each cloned object, owned ones
/// included, and none for objects that were only referred to.
class LM_DRAWING_API OdDbIdMapping : public OdRxObject {
    LM_RX_CLASS(OdDbIdMapping)
public:
    OdDbIdMapping();
    ~OdDbIdMapping() override;

    /// Fills in the value of the pair's key; false, with nothing changed, when there is no such pair.
    bool compute(OdDbIdPair& pair) const;
    /// Adds a pair; for a known key its value is replaced.
    void assign(const OdDbIdPair& pair);
    const std::vector<OdDbIdPair>& pairs() const { return m_pairs; }
    /// Makes room for so many pairs.
    void reserve(std::size_t pairs) {
        m_pairs.reserve(pairs);
        m_index.reserve(pairs);
    }
    /// The database that the clones stand in; null before.
    OdDbDatabase* destDb() const { return m_destination; }
    void setDestDb(OdDbDatabase* database) { m_destination = database; }

    void addRef() override { ++m_refs; }
    void release() override {
        if (--m_refs == 0) delete this;
    }
    long numRefs() const override { return m_refs; }

private:
    struct Hash {
        std::size_t operator()(OdDbObjectId id) const noexcept { return std::hash<const void*>{}(id.node()); }
    };
    std::vector<OdDbIdPair> m_pairs;
    std::unordered_map<OdDbObjectId, std::size_t, Hash> m_index;
    OdDbDatabase* m_destination = nullptr;
    long m_refs = 1;
};
