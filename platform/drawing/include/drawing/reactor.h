// SPDX-License-Identifier: MIT
// Reactors of a database: who is told what happens to its objects and when a transaction ends.
//
//     struct Watcher : OdDbDatabaseReactor { void objectAppended(const OdDbDatabase* db, const OdDbObject*
//     object) override; }; Watcher watcher; database->addReactor(&watcher);      // not owned; removeReactor
//     before it ends
//
// When they come:
//   objectOpenedForModify   before the first change of an object since it was opened
//   objectModified          when a changed object is closed, once
//   objectAppended          when a new object is closed for the first time, and nothing else for it until
//   then objectErased            inside erase, after the mark changed, and nothing else for that deed
// Appending to an owner, or erasing from it, is no change of the owner. What waits for a close is delivered
// at the latest when the outermost transaction ends. Marks are cleared before the reactors are called, so a
// callback may open, read and change the object. An exception passes to whoever closed or erased the object;
// out of a smart pointer's end it can't pass and is reported to the handler of dropped exceptions instead.
#pragma once

#include "drawing/object.h"

/// Is told what happens to the objects of a database. Not owned, never deleted by the database. The pointers
/// are not counted; they hold during the call.
class LM_DRAWING_API OdDbDatabaseReactor : public OdRxObject {
    LM_RX_CLASS(OdDbDatabaseReactor)
public:
    OdDbDatabaseReactor();
    ~OdDbDatabaseReactor() override;
    virtual void objectAppended(const OdDbDatabase* database, const OdDbObject* object);
    virtual void objectOpenedForModify(const OdDbDatabase* database, const OdDbObject* object);
    virtual void objectModified(const OdDbDatabase* database, const OdDbObject* object);
    /// `erased` is false when the mark was taken back, by undo too.
    virtual void objectErased(const OdDbDatabase* database, const OdDbObject* object, bool erased = true);
    /// Undo took back the appending of an object, or redo repeated it.
    virtual void objectUnAppended(const OdDbDatabase* database, const OdDbObject* object);
    virtual void objectReAppended(const OdDbDatabase* database, const OdDbObject* object);
    /// Undo or redo gave an object other contents.
    virtual void modifyUndone(const OdDbDatabase* database, const OdDbObject* object);

    void addRef() override;
    void release() override;
};

/// Is told when a transaction ends. Not owned.
class LM_DRAWING_API OdDbTransactionReactor : public OdRxObject {
    LM_RX_CLASS(OdDbTransactionReactor)
public:
    OdDbTransactionReactor();
    ~OdDbTransactionReactor() override;
    /// After the outermost transaction was committed; never after an abort.
    virtual void transactionEnded(OdDbDatabase* database);

    void addRef() override;
    void release() override;
};

namespace lm::drawing {

/// What is told of an exception that a reactor raised where nobody can take it. `what` is its text.
using DroppedExceptionHandler = void (*)(const OdString& what);
/// Sets the handler; gives the one before. Null for none.
LM_DRAWING_API DroppedExceptionHandler setDroppedExceptionHandler(DroppedExceptionHandler handler) noexcept;

} // namespace lm::drawing
