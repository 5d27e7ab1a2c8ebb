// SPDX-License-Identifier: MIT
#include "host/database.h"

#include <map>

namespace {

struct Numbers {
    std::map<unsigned long long, CHostDatabase*> living;
    unsigned long long last = 0;
};

// Never destroyed: a database may end while the process ends.
Numbers& numbers() {
    static Numbers& table = *new Numbers;
    return table;
}

} // namespace

OdRxClass* CHostDatabase::desc() {
    static OdRxClass description("CHostDatabase", OdDbDatabase::desc(), nullptr);
    return &description;
}

OdRxClass* CHostDatabase::isA() const {
    return desc();
}

CHostDatabase::CHostDatabase(Content content) : OdDbDatabase(content), m_number(++numbers().last) {
    numbers().living.emplace(m_number, this);
}

CHostDatabase::~CHostDatabase() {
    numbers().living.erase(m_number);
}

CHostDatabase* CHostDatabase::byNumber(unsigned long long number) {
    const auto at = numbers().living.find(number);
    return at != numbers().living.end() ? at->second : nullptr;
}

OdDbObjectId CHostDatabase::GetActiveViewportId(OdDbObjectId) const {
    const OdSmartPtr<OdDbSymbolTable> table(getViewportTableId().openObject());
    if (table.isNull()) return OdDbObjectId::kNull;
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    return walk->done() ? OdDbObjectId::kNull : walk->getRecordId();
}
