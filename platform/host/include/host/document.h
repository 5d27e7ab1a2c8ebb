// SPDX-License-Identifier: MIT
// CHostDocument: a drawing that is open in the host, with its database and its interface for calls.
//
//     if (CHostDocument* document = ACTIVE_DOCUMENT()) document->getAPI()->...
#pragma once

#include "host/database.h"
#include "host/hostapi.h"

#include <memory>

class CHostDocumentManager;

/// An open drawing. The document manager makes and ends documents. Belongs to the host's main thread.
class LM_HOST_API CHostDocument {
public:
    CHostDocument(const CHostDocument&) = delete;
    CHostDocument& operator=(const CHostDocument&) = delete;
    ~CHostDocument();

    /// The document's interface for calls by name and output; never null.
    CHostAPI* getAPI() const { return m_api.get(); }
    /// The document's database, which the document owns, or null for a document without one.
    CHostDatabase* database() const { return m_database.get(); }
    /// The document's number in the log: 1 for the first document of the process, never used again.
    int number() const { return m_number; }
    /// Path of the drawing file; empty for a drawing that was never saved.
    OdString fileName() const;

private:
    friend class CHostDocumentManager;
    CHostDocument(int number, std::unique_ptr<CHostDatabase> database);

    int m_number;
    std::unique_ptr<CHostDatabase> m_database;
    std::unique_ptr<CHostAPI> m_api;
};

/// The active document at this moment, or null. Ask anew at each use: any call can change it.
LM_HOST_API CHostDocument* ACTIVE_DOCUMENT();
