// SPDX-License-Identifier: MIT
#include "host/document.h"

#include "host/documentmanager.h"

#include <utility>

CHostDocument::CHostDocument(int number, std::unique_ptr<CHostDatabase> database)
    : m_number(number), m_database(std::move(database)), m_api(std::make_unique<CHostAPI>()) {
    // The document owns its database: smart pointers to it come and go without ending it.
    if (m_database) m_database->setCountManaged(false);
}

CHostDocument::~CHostDocument() = default;

OdString CHostDocument::fileName() const {
    return m_database ? m_database->getFilename() : OdString();
}

CHostDocument* ACTIVE_DOCUMENT() {
    return lm::host::documentManager().activeDocument();
}
