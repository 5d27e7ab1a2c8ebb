// SPDX-License-Identifier: MIT
// CCReactorBase: the one class through which a command module watches what happens in open drawings. It turns
// what the host reports into typed events that a derived class overrides.
//
//     class Watcher : public CCReactorBase {
//         void ctoAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override { ... }
//     };
//     Watcher watcher;
//     watcher.inicializar();   ...   watcher.finalizar();
//
// Everything comes on the host's thread, and nothing here takes a lock. What a derived class raises passes to
// whoever closed or erased the object, or ran the command.
#pragma once

#include "export.h"
#include "text/rzid.h"
#include "text/rzstring.h"

#include "drawing/blockreference.h"
#include "drawing/curves.h"
#include "drawing/reactor.h"
#include "drawing/symboltable.h"
#include "host/documentmanager.h"
#include "host/editorreactor.h"

#include <QStringList>

#include <vector>

/// Watches the documents, their databases and transactions, and the command stack. Every event does nothing
/// unless a derived class overrides it; only block... events do something of their own.
///
/// The owner deletes the object, after finalizar: nothing counts it. A drawing is a project unless the
/// variable "*IS_NOT_RZ_PROJECT*" of the active document is set. While it is set, commands, transactions and
/// addObjectsToErase are passed over; what happens to objects is told all the same.
class LM_COMMONMFC_API CCReactorBase : public CHostDocumentManagerReactor,
                                       public OdDbDatabaseReactor,
                                       public OdDbTransactionReactor,
                                       public CHostEditorReactor {
public:
    /// Joins nothing yet.
    CCReactorBase();
    ~CCReactorBase() override;
    CCReactorBase(const CCReactorBase&) = delete;
    CCReactorBase& operator=(const CCReactorBase&) = delete;

    // --- Events for derived classes; the order of the virtual operations is part of the interface ---

    /// A command ended in one of three ways. Both lists of erased handles are empty by then, and the command
    /// is no longer active if it was the innermost one. `doc` is the document of the command's database, null
    /// when that has none; `nome` is the global name.
    virtual void commandCancelled(CHostDocument* doc, RZString nome);
    virtual void commandFailed(CHostDocument* doc, RZString nome);
    virtual void commandEnded(CHostDocument* doc, RZString nome);
    /// A command starts, and is the active one already. "_OPEN", "_DOCINIT", "_MAINSELECT" and
    /// "_PAN_INTERNAL" are not told here, yet their ends are.
    virtual void commandWillStart(CHostDocument* doc, RZString nome);
    /// A drawing is there, and no event of it has come yet. The document may be closed in here.
    virtual void cargaInicial(CHostDocument* doc);

    // Events of objects. `doc` is the document of the object's database. ...Appended also comes when the
    // erasing of an object is taken back. ...ForModify comes before the first change after an opening,
    // ...Modified when a changed object is closed, ...Erased after the mark was set.

    /// A block came, or changed: this event repeats. Never model space itself.
    virtual void blockDefined(CHostDocument* doc, OdSmartPtr<OdDbBlockTableRecord> bloco);
    /// Any object came; the last event of its coming, for objects of every class.
    virtual void entityAppended(CHostDocument* doc, OdSmartPtr<OdDbObject> objeto);
    /// A reference that stands directly in model space. The defaults look at the name of its block and call
    /// the event of its family for the same phase, by the beginning of the name, case counting:
    /// "BLK_CTR_GRADE" grade..., "INS-" ins..., "CONTA" and "RELE" conta..., "NA-", "NF-", "NAF-" and "BT-"
    /// cto...; so who overrides one of these and wants the families too calls the default.
    virtual void blockAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void blockForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void blockModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void blockErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    /// An attribute of any reference.
    virtual void attAppended(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo);
    virtual void attForModify(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo);
    virtual void attModified(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo);
    virtual void attErased(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo);
    /// A polyline in any block.
    virtual void plineAppended(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline);
    virtual void plineForModify(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline);
    virtual void plineModified(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline);
    virtual void plineErased(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline);
    virtual void layerAppended(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer);
    virtual void layerForModify(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer);
    virtual void layerModified(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer);
    virtual void layerErased(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer);
    /// A contact (contato), or a push button.
    virtual void ctoAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void ctoForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void ctoModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void ctoErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    /// A block whose name begins with "INS-".
    virtual void insAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void insForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void insModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void insErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    /// A block whose name begins with "CONTA", or a relay (relé).
    virtual void contaAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void contaForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void contaModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void contaErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    /// A grid (grade).
    virtual void gradeAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void gradeForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void gradeModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    virtual void gradeErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref);
    /// A transaction of a project ended: before and after the queue is erased, in a copy too, where the
    /// erasing waits.
    virtual void transactionEndedBegin();
    virtual void transactionEndedEnd();

    // --- Life ---

    /// Joins the document manager and the command stack, then attaches each open document through
    /// DatabaseAttached. A document that is opened meanwhile is attached twice, which counts once, but has
    /// its cargaInicial twice. Without services of the host only the command stack is joined.
    void inicializar();
    /// Leaves the document manager and the command stack, then detaches each open document through
    /// DatabaseDetached.
    void finalizar();
    /// Attaches a document that is to be watched (CICommandStack::verifyProjectOnLoad, which is asked for
    /// null too) and has a database, after its cargaInicial.
    void DatabaseAttached(CHostDocument* doc) override;
    /// Lets a document go, watched or not. Null and a document without a database are passed over.
    void DatabaseDetached(CHostDocument* doc) override;

    // --- Commands and erasing ---

    /// Global name of the innermost command; empty when none is active.
    RZString getComandoAtivo() const;
    /// How many commands are active, one in the other.
    int getActiveCommandsCount() const;
    /// Queues an object: it is erased at the end of the transaction, and during "_COPY" at the end of that
    /// command. Objects may be queued out of every event. Null ids and ids that are queued already are taken
    /// too.
    void addObjectsToErase(RZID id);
    /// Whether the object of this handle, spelled exactly as OdDbHandle::ascii does, was erased since the
    /// last end of a command by somebody else than this object's queue.
    bool wasUserErased(RZString handle) const;

    // --- What the host calls ---

    void objectAppended(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectOpenedForModify(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectModified(const OdDbDatabase* database, const OdDbObject* object) override;
    void objectErased(const OdDbDatabase* database, const OdDbObject* object, bool erased = true) override;
    /// Erases the queue, unless "_COPY" is active; the database isn't looked at.
    void transactionEnded(OdDbDatabase* database) override;
    // A null command is passed over. Without a context only the typed event is left out.
    void commandWillStart(OdEdCommand* command, OdEdCommandContext* context) override;
    /// Passed over as well without a getDatabase(), which the two other ends don't look at.
    void commandEnded(OdEdCommand* command, OdEdCommandContext* context) override;
    void commandCancelled(OdEdCommand* command, OdEdCommandContext* context) override;
    void commandFailed(OdEdCommand* command, OdEdCommandContext* context) override;
    void addRef() override;
    void release() override;
    void deleteModule() override;
    OdString moduleName() const override;
    void* sysData() override;

protected:
    /// Value of the reference's attribute of a tag, as CICad::SearchAttribute finds it; empty without one.
    CHostString getAtt(RZString tag, OdSmartPtr<OdDbBlockReference> ref);
    /// Value of the attribute with the component's tag, as CICad::SearchAttributeTag finds it; empty without
    /// one.
    CHostString getAttRelacao(OdSmartPtr<OdDbBlockReference> ref);

private:
    using CommandEvent = void (CCReactorBase::*)(CHostDocument*, RZString);
    void endCommand(OdEdCommand& command, OdEdCommandContext* context, CommandEvent event);
    bool isCopying() const;
    void eraseQueue();

    using BlockEvent = void (CCReactorBase::*)(CHostDocument*, OdSmartPtr<OdDbBlockReference>);
    struct FamilyEvents;
    void tellFamily(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref, const FamilyEvents& events);

    QStringList comandosAtivos;              // global names, the innermost last
    QStringList handlesApagados;             // what was erased since the last end of a command
    QStringList handlesApagadosReator;       // what of it came out of the queue
    std::vector<OdDbObjectId> objetosApagar; // the queue
};
