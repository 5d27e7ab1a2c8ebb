// SPDX-License-Identifier: MIT
#include "host/services.h"

#include "readdatabase.h"

namespace {

CHostSystemServices hostServices;
CHostLocale hostLocale;
bool servicesPresent = true;
bool localePresent = true;
QWidget* hostWindow = nullptr;

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

QWidget* CHostSystemServices::mainWindow() const {
    return hostWindow;
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

void setMainWindow(QWidget* window) {
    hostWindow = window;
}

} // namespace lm::host
