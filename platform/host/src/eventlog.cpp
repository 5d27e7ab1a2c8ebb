// SPDX-License-Identifier: MIT
#include "host/eventlog.h"

#include <utility>

namespace lm::host {

EventLog::EventLog(Sink sink) : m_sink(std::move(sink)) {
    CHostDocumentManager& manager = documentManager();
    manager.addReactor(this);
    odedRegCmds()->addReactor(this);
    for (int i = 0; i < manager.documentCount(); ++i) attach(*manager.documentAt(i));
}

EventLog::~EventLog() {
    CHostDocumentManager& manager = documentManager();
    manager.removeReactor(this);
    odedRegCmds()->removeReactor(this);
    for (int i = 0; i < manager.documentCount(); ++i) detach(*manager.documentAt(i));
}

void EventLog::addRef() {}
void EventLog::release() {}

void EventLog::attach(CHostDocument& document) {
    if (document.database() == nullptr) return;
    document.database()->addReactor(this);
    document.database()->addTransactionReactor(this);
}

void EventLog::detach(CHostDocument& document) {
    if (document.database() == nullptr) return;
    document.database()->removeReactor(this);
    document.database()->removeTransactionReactor(this);
}

void EventLog::DatabaseAttached(CHostDocument* document) {
    m_sink("DatabaseAttached " + std::to_string(document->number()));
    attach(*document);
}

void EventLog::DatabaseDetached(CHostDocument* document) {
    detach(*document);
    m_sink("DatabaseDetached " + std::to_string(document->number()));
}

void EventLog::tellObject(std::string_view what, const OdDbObject* object) {
    m_sink(std::string(what) + " " + lm::drawing::utf8(object->dxfName()) + " " +
           lm::drawing::utf8(object->getDbHandle().ascii()));
}

void EventLog::objectAppended(const OdDbDatabase*, const OdDbObject* object) {
    tellObject("objectAppended", object);
}
void EventLog::objectOpenedForModify(const OdDbDatabase*, const OdDbObject* object) {
    tellObject("objectOpenedForModify", object);
}
void EventLog::objectModified(const OdDbDatabase*, const OdDbObject* object) {
    tellObject("objectModified", object);
}
void EventLog::objectErased(const OdDbDatabase*, const OdDbObject* object, bool erased) {
    tellObject(erased ? "objectErased" : "objectUnerased", object);
}
void EventLog::objectUnAppended(const OdDbDatabase*, const OdDbObject* object) {
    tellObject("objectUnAppended", object);
}
void EventLog::objectReAppended(const OdDbDatabase*, const OdDbObject* object) {
    tellObject("objectReAppended", object);
}
void EventLog::modifyUndone(const OdDbDatabase*, const OdDbObject* object) {
    tellObject("modifyUndone", object);
}
void EventLog::transactionEnded(OdDbDatabase*) {
    m_sink("transactionEnded");
}

void EventLog::tellCommand(std::string_view what, const OdEdCommand* command) {
    m_sink(std::string(what) + (command != nullptr ? " " + lm::drawing::utf8(command->globalName()) : ""));
}

void EventLog::commandWillStart(OdEdCommand* command, OdEdCommandContext*) {
    tellCommand("commandWillStart", command);
}
void EventLog::commandEnded(OdEdCommand* command, OdEdCommandContext*) {
    tellCommand("commandEnded", command);
}
void EventLog::commandCancelled(OdEdCommand* command, OdEdCommandContext*) {
    tellCommand("commandCancelled", command);
}
void EventLog::commandFailed(OdEdCommand* command, OdEdCommandContext*) {
    tellCommand("commandFailed", command);
}

} // namespace lm::host
