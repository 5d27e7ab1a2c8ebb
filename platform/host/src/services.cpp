// SPDX-License-Identifier: MIT
#include "host/services.h"

#include "readdatabase.h"

namespace {

CHostSystemServices hostServices;
CHostLocale hostLocale;
bool servicesPresent = true;
bool localePresent = true;

} // namespace

CHostDocumentManager* CHostSystemServices::documentManager() const {
    return &lm::host::documentManager();
}

CHostLocale* CHostSystemServices::locale() const {
    return localePresent ? &hostLocale : nullptr;
}

OdSmartPtr<CHostDatabase> CHostSystemServices::readFile(const OdString& path, bool allowCPConversion, bool,
                                                        int, const OdString&) {
    return OdSmartPtr<CHostDatabase>(lm::host::readDatabase(path, allowCPConversion).release(),
                                     lm::drawing::kAttach);
}

CHostString CHostSystemServices::title() const {
    return "LMHost";
}

CHostSystemServices* GetHostSystemServices() {
    return servicesPresent ? &hostServices : nullptr;
}

namespace lm::host {

void setServicesPresent(bool present) {
    servicesPresent = present;
}

void setLocalePresent(bool present) {
    localePresent = present;
}

} // namespace lm::host
