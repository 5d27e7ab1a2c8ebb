// SPDX-License-Identifier: MIT
#include "model/events.h"

#include "base/rxclass.h"
#include "model/databasedata.h"

#include "drawing/telling.h"

#include <atomic>
#include <new>

LM_RX_DEFINE_ABSTRACT(OdDbDatabaseReactor, OdRxObject)
LM_RX_DEFINE_ABSTRACT(OdDbTransactionReactor, OdRxObject)

OdDbDatabaseReactor::OdDbDatabaseReactor() = default;
OdDbDatabaseReactor::~OdDbDatabaseReactor() = default;
void OdDbDatabaseReactor::objectAppended(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectOpenedForModify(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectModified(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectErased(const OdDbDatabase*, const OdDbObject*, bool) {}
void OdDbDatabaseReactor::objectUnAppended(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectReAppended(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::modifyUndone(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::addRef() {}
void OdDbDatabaseReactor::release() {}

OdDbTransactionReactor::OdDbTransactionReactor() = default;
OdDbTransactionReactor::~OdDbTransactionReactor() = default;
void OdDbTransactionReactor::transactionEnded(OdDbDatabase*) {}
void OdDbTransactionReactor::addRef() {}
void OdDbTransactionReactor::release() {}

namespace lm::drawing {

bool isTelling(const OdDbDatabase& database) noexcept {
    return database.data().events.isTelling();
}

void tellWaiting(OdDbDatabase& database) {
    database.data().pending.tellAll();
}

namespace {

std::atomic<DroppedExceptionHandler> g_dropped{nullptr};

OdString textOfCurrent() {
    try {
        throw;
    } catch (const OdError& error) {
        return error.description();
    } catch (const std::exception& error) {
        return odText(error.what());
    } catch (...) {
        return odText("an exception without a text");
    }
}

} // namespace

DroppedExceptionHandler setDroppedExceptionHandler(DroppedExceptionHandler handler) noexcept {
    return g_dropped.exchange(handler);
}

void dropException() noexcept {
    try {
        if (const DroppedExceptionHandler handler = g_dropped.load()) handler(textOfCurrent());
    } catch (...) {
        return; // nobody is left to be told
    }
}

} // namespace lm::drawing
