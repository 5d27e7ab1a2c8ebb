// SPDX-License-Identifier: MIT
// How the reactor finds documents; the services of the host may be missing.
#pragma once

#include "host/services.h"

namespace lm::reactor {

/// Null in a host without services.
inline CHostDocumentManager* documentManager() {
    const CHostSystemServices* const services = GetHostSystemServices();
    return services == nullptr ? nullptr : services->documentManager();
}

/// The document of a database; null for one without document and for null.
inline CHostDocument* documentOf(const OdDbDatabase* database) {
    const CHostDocumentManager* const manager = documentManager();
    return manager == nullptr ? nullptr : manager->document(database);
}

} // namespace lm::reactor
