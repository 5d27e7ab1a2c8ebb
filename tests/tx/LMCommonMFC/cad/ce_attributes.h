// SPDX-License-Identifier: MIT
// Attribute records for tests.
#pragma once

#include "lmcommon/ceatributo.h"

#include <memory>
#include <vector>

namespace lm::tests {

/// A record without prompt and id, which the caller owns.
inline CEAtributo* makeAttribute(const char* tag, const char* value) {
    return new CEAtributo(OdString(tag), OdString(), OdString(value), OdDbObjectId(), false);
}

/// Makes records and deletes them at the end of the test: whoever else deletes one is found by the second
/// deletion.
class Records {
public:
    CEAtributo* operator()(const char* tag, const char* value) {
        m_records.emplace_back(makeAttribute(tag, value));
        return m_records.back().get();
    }

private:
    std::vector<std::unique_ptr<CEAtributo>> m_records;
};

} // namespace lm::tests
