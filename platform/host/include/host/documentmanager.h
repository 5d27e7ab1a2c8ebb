// SPDX-License-Identifier: MIT
// CHostDocumentManager: the list of open documents, the active one, and who is told when they come and go.
//
//     CHostDocumentManager& manager = lm::host::documentManager();
//     CHostDocument* document = manager.openDocument(path);     // raises OdError
//     manager.closeDocument(document);
#pragma once

#include "host/document.h"

#include <vector>

/// Is told of databases of documents. Not owned; must be removed before it ends. Documents that are open
/// already when it is added are not reported.
class LM_HOST_API CHostDocumentManagerReactor {
public:
    virtual ~CHostDocumentManagerReactor();
    /// After a drawing was loaded into a document, which is then active and in the list.
    virtual void DatabaseAttached(CHostDocument* document);
    /// Before a document and its database go.
    virtual void DatabaseDetached(CHostDocument* document);
};

/// The open documents, in the order of opening.
///
/// Opening puts the document into the list and makes it active; then, for a document with a database, each
/// reactor gets DatabaseAttached and each module onDatabaseAttached, and last each module onDatabaseReady.
/// Closing tells reactors and modules first, then ends the document; the latest opened of those that remain
/// becomes active. Lists are walked as copies, without those who left meanwhile, so a callback may add and
/// remove reactors and open further documents. An exception keeps nobody else in the same list from being
/// told; the first one passes.
class LM_HOST_API CHostDocumentManager {
public:
    CHostDocumentManager(const CHostDocumentManager&) = delete;
    CHostDocumentManager& operator=(const CHostDocumentManager&) = delete;

    /// Adding a reactor twice counts once; null is ignored.
    void addReactor(CHostDocumentManagerReactor* reactor);
    /// Removing what isn't there is silent.
    void removeReactor(CHostDocumentManagerReactor* reactor);
    std::size_t reactorCount() const { return m_reactors.size(); }

    /// Number of open documents, 16 bits wide.
    unsigned short documentCount() const { return static_cast<unsigned short>(m_documents.size()); }
    /// The document at an index from 0, or null outside the list.
    CHostDocument* documentAt(int index) const;
    /// The document that owns a database, or null (a separate database, or null).
    CHostDocument* document(const OdDbDatabase* database) const;
    CHostDocument* activeDocument() const { return m_active; }
    /// Makes an open document the active one and tells the modules when it wasn't; null leaves none active. A
    /// pointer that isn't in the list changes nothing.
    void setActiveDocument(CHostDocument* document);

    /// Opens a drawing file as a new document. Raises OdError when it can't be read; nothing has changed then
    /// and nobody was told. An exception out of a reactor or module closes the document again and passes; who
    /// never heard of the database is told of its end all the same.
    CHostDocument* openDocument(const OdString& path);
    /// Opens a new, empty drawing. Exceptions as for openDocument.
    CHostDocument* newDocument();
    /// Opens a document that has no database; nobody is told of a database. For tests of what callers do
    /// then.
    CHostDocument* newDocumentWithoutDatabase();
    /// Closes a document. False for a pointer that isn't in the list, for a document that is busy (see
    /// CHostDocument::isBusy), and for one that is closing already. An exception out of a reactor or module
    /// passes after the document has gone.
    bool closeDocument(CHostDocument* document);
    /// Closes all documents that aren't busy, the latest first.
    void closeAll();

private:
    friend struct ManagerInstance;
    CHostDocumentManager() = default;
    ~CHostDocumentManager() = default;

    CHostDocument* add(std::unique_ptr<CHostDatabase> database);
    void announce(CHostDocument* document);
    void tellDetached(CHostDocument* document);
    void remove(CHostDocument* document);
    bool isOpen(const CHostDocument* document) const;

    std::vector<std::unique_ptr<CHostDocument>> m_documents;
    std::vector<CHostDocument*> m_closing;
    std::vector<CHostDocumentManagerReactor*> m_reactors;
    CHostDocument* m_active = nullptr;
    int m_lastNumber = 0;
};

namespace lm::host {

/// The document manager of the process.
LM_HOST_API CHostDocumentManager& documentManager();

} // namespace lm::host
