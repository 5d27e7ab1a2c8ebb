// SPDX-License-Identifier: MIT
#include "drawing/idmapping.h"

#include "base/rxclass.h"

LM_RX_DEFINE(OdDbIdMapping, OdRxObject)

OdDbIdMapping::OdDbIdMapping() = default;
OdDbIdMapping::~OdDbIdMapping() = default;

bool OdDbIdMapping::compute(OdDbIdPair& pair) const {
    const auto found = m_index.find(pair.key());
    if (found == m_index.end()) return false;
    pair.setValue(m_pairs[found->second].value());
    return true;
}

void OdDbIdMapping::assign(const OdDbIdPair& pair) {
    const auto [at, isNew] = m_index.try_emplace(pair.key(), m_pairs.size());
    if (isNew)
        m_pairs.push_back(pair);
    else
        m_pairs[at->second].setValue(pair.value());
}
