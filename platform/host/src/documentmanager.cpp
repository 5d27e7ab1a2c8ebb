// SPDX-License-Identifier: MIT
#include "host/documentmanager.h"

#include "host/modulecallbacks.h"
#include "readdatabase.h"
#include "stillthere.h"

#include <exception>
#include <utility>

using lm::host::ModuleCallbacks;

CHostDocumentManagerReactor::~CHostDocumentManagerReactor() = default;
void CHostDocumentManagerReactor::DatabaseAttached(CHostDocument*) {}
void CHostDocumentManagerReactor::DatabaseDetached(CHostDocument*) {}

void CHostDocumentManager::addReactor(CHostDocumentManagerReactor* reactor) {
    lm::host::addOnce(m_reactors, reactor);
}

void CHostDocumentManager::removeReactor(CHostDocumentManagerReactor* reactor) {
    std::erase(m_reactors, reactor);
}

CHostDocument* CHostDocumentManager::documentAt(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= m_documents.size()) return nullptr;
    return m_documents[static_cast<std::size_t>(index)].get();
}

CHostDocument* CHostDocumentManager::document(const OdDbDatabase* database) const {
    if (database == nullptr) return nullptr;
    for (const auto& document : m_documents)
        if (document->database() == database) return document.get();
    return nullptr;
}

bool CHostDocumentManager::isOpen(const CHostDocument* document) const {
    for (const auto& open : m_documents)
        if (open.get() == document) return true;
    return false;
}

void CHostDocumentManager::setActiveDocument(CHostDocument* document) {
    if (document == m_active || (document != nullptr && !isOpen(document))) return;
    m_active = document;
    if (document != nullptr) lm::host::tellModules(&ModuleCallbacks::onDocumentActivated, document);
}

CHostDocument* CHostDocumentManager::openDocument(const OdString& path) {
    return add(lm::host::readDatabase(path, true));
}

CHostDocument* CHostDocumentManager::newDocument() {
    return add(std::make_unique<CHostDatabase>());
}

CHostDocument* CHostDocumentManager::newDocumentWithoutDatabase() {
    return add(nullptr);
}

namespace {

/// Takes back the transactions that somebody opened and, having raised, will never end.
void abortTransactions(OdDbDatabase& database) noexcept {
    for (unsigned int left = database.numActiveTransactions(); left > 0; --left) {
        try {
            database.abortTransaction();
        } catch (...) {
            // A reactor's failure on the way back tells nothing that the first one doesn't.
        }
    }
}

} // namespace

CHostDocument* CHostDocumentManager::add(std::unique_ptr<CHostDatabase> database) {
    m_documents.push_back(
        std::unique_ptr<CHostDocument>(new CHostDocument(m_lastNumber + 1, std::move(database))));
    ++m_lastNumber;
    CHostDocument* document = m_documents.back().get();
    try {
        announce(document);
    } catch (...) {
        const std::exception_ptr cause = std::current_exception();
        if (isOpen(document) && document->database() != nullptr) abortTransactions(*document->database());
        try {
            closeDocument(document);
        } catch (...) {
            // What the opening raised is the cause; a failure while taking it back adds nothing.
        }
        std::rethrow_exception(cause);
    }
    return isOpen(document) ? document : nullptr;
}

// A callback may close the document that is being announced; those behind it are then not told of it.
void CHostDocumentManager::announce(CHostDocument* document) {
    setActiveDocument(document);
    if (!isOpen(document) || document->database() == nullptr) return;
    lm::host::visitThoseStillThere(m_reactors, [&](CHostDocumentManagerReactor& reactor) {
        if (isOpen(document)) reactor.DatabaseAttached(document);
    });
    if (isOpen(document)) lm::host::tellModules(&ModuleCallbacks::onDatabaseAttached, document);
    if (isOpen(document)) lm::host::tellModules(&ModuleCallbacks::onDatabaseReady, document);
}

// Everybody is told, modules behind a reactor that throws too: whoever holds on to the database must let go
// before it ends.
void CHostDocumentManager::tellDetached(CHostDocument* document) {
    try {
        lm::host::visitThoseStillThere(
            m_reactors, [&](CHostDocumentManagerReactor& reactor) { reactor.DatabaseDetached(document); });
    } catch (...) {
        const std::exception_ptr first = std::current_exception();
        try {
            lm::host::tellModules(&ModuleCallbacks::onDatabaseDetached, document);
        } catch (...) {
            // The first exception is the one that passes.
        }
        std::rethrow_exception(first);
    }
    lm::host::tellModules(&ModuleCallbacks::onDatabaseDetached, document);
}

bool CHostDocumentManager::closeDocument(CHostDocument* document) {
    if (!isOpen(document) || document->isBusy()) return false;
    if (std::find(m_closing.begin(), m_closing.end(), document) != m_closing.end()) return false;
    m_closing.push_back(document);
    std::exception_ptr thrown;
    if (document->database() != nullptr) {
        try {
            tellDetached(document);
        } catch (...) {
            thrown = std::current_exception();
        }
    }
    remove(document);
    if (thrown) std::rethrow_exception(thrown);
    return true;
}

void CHostDocumentManager::remove(CHostDocument* document) {
    std::erase(m_closing, document);
    const auto at = std::find_if(m_documents.begin(), m_documents.end(),
                                 [document](const auto& open) { return open.get() == document; });
    const std::unique_ptr<CHostDocument> last = std::move(*at);
    m_documents.erase(at);
    if (m_active != document) return;
    m_active = nullptr;
    if (!m_documents.empty()) setActiveDocument(m_documents.back().get());
}

void CHostDocumentManager::closeAll() {
    for (std::size_t i = m_documents.size(); i-- > 0;)
        if (i < m_documents.size()) closeDocument(m_documents[i].get());
}

/// Makes the one manager, which is never destroyed: documents left open end with the process.
struct ManagerInstance {
    static CHostDocumentManager& get() {
        static CHostDocumentManager& manager = *new CHostDocumentManager;
        return manager;
    }
};

namespace lm::host {

CHostDocumentManager& documentManager() {
    return ManagerInstance::get();
}

} // namespace lm::host
