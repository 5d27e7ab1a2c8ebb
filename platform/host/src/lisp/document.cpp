// SPDX-License-Identifier: MIT
#include "document.h"

#include "host/documentmanager.h"

namespace lm::host::lisp {

CHostDocument* documentOf(Machine& machine) {
    const CHostDocumentManager& manager = documentManager();
    for (int i = 0; i < manager.documentCount(); ++i)
        if (manager.documentAt(i)->getAPI() == &machine.api()) return manager.documentAt(i);
    return nullptr;
}

CHostDatabase* databaseOf(Machine& machine) {
    const CHostDocument* document = documentOf(machine);
    return document == nullptr ? nullptr : document->database();
}

CHostDatabase& requireDatabase(Machine& machine) {
    CHostDatabase* database = databaseOf(machine);
    if (database == nullptr) Machine::fail("no drawing");
    return *database;
}

} // namespace lm::host::lisp
