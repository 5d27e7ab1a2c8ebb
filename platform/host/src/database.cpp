// SPDX-License-Identifier: MIT
#include "host/database.h"

#include "host/session.h"
#include "system/wide.h"

#include <map>

namespace {

/// What a reactor raised where nobody could take it goes to the log.
void logDropped(const OdString& reason) {
    if (CHostSession* const session = hostSession()) session->log(lm::drawing::odText("reactor : ") + reason);
}

struct Numbers {
    std::map<unsigned long long, CHostDatabase*> living;
    unsigned long long last = 0;
};

// Never destroyed: a database may end while the process ends.
Numbers& numbers() {
    static Numbers& table = *[] {
        lm::drawing::setDroppedExceptionHandler(logDropped);
        return new Numbers;
    }();
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
    const OdString active = lm::drawing::odText("*Active");
    // Saved arrangements of viewports stand in the same table, before or behind it.
    for (const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbSymbolTableRecord> record = walk->getRecord();
        if (lm::system::equalsNoCase(record->getName().view(), active.view())) return walk->getRecordId();
    }
    return OdDbObjectId::kNull;
}
