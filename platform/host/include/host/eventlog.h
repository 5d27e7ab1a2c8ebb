// SPDX-License-Identifier: MIT
// EventLog: writes down every call that reactors get, one line each, so that two runs can be compared.
//
//     lm::host::EventLog log([&](std::string_view line) { out.write(line); out.put('\n'); });
//
// The lines, with the type name that a drawing file has and the handle:
//     DatabaseAttached 1                a document by its number; DatabaseDetached likewise
//     commandWillStart _ERASE           commandEnded, commandCancelled and commandFailed likewise
//     objectAppended INSERT 2F          objectOpenedForModify, objectModified, objectErased, objectUnerased,
//                                       objectUnAppended, objectReAppended and modifyUndone likewise
//     transactionEnded
#pragma once

#include "host/documentmanager.h"
#include "host/editorreactor.h"

#include <functional>
#include <string>
#include <string_view>

namespace lm::host {

/// Watches the command stack, the documents and the databases of all of them, those that are open already
/// too.
class LM_HOST_API EventLog : private CHostDocumentManagerReactor,
                             private OdDbDatabaseReactor,
                             private OdDbTransactionReactor,
                             private CHostEditorReactor {
public:
    /// Takes one line, UTF-8 without its end.
    using Sink = std::function<void(std::string_view line)>;

    explicit EventLog(Sink sink);
    ~EventLog() override;
    EventLog(const EventLog&) = delete;
    EventLog& operator=(const EventLog&) = delete;

private:
    void addRef() override;
    void release() override;
    void DatabaseAttached(CHostDocument* document) override;
    void DatabaseDetached(CHostDocument* document) override;
    void objectAppended(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectOpenedForModify(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectModified(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectErased(const OdDbDatabase* database, const OdDbObject* object, bool erased) override;
    void objectUnAppended(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectReAppended(const OdDbDatabase* database, const OdDbObject* object) override;
    void modifyUndone(const OdDbDatabase* database, const OdDbObject* object) override;
    void transactionEnded(OdDbDatabase* database) override;
    void commandWillStart(OdEdCommand* command, OdEdCommandContext* context) override;
    void commandEnded(OdEdCommand* command, OdEdCommandContext* context) override;
    void commandCancelled(OdEdCommand* command, OdEdCommandContext* context) override;
    void commandFailed(OdEdCommand* command, OdEdCommandContext* context) override;

    void attach(CHostDocument& document);
    void detach(CHostDocument& document);
    void tellObject(std::string_view what, const OdDbObject* object);
    void tellCommand(std::string_view what, const OdEdCommand* command);

    Sink m_sink;
};

} // namespace lm::host
