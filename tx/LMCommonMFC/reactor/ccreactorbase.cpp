// SPDX-License-Identifier: MIT
// The life of the reactor, the stack of commands and the queue of objects to erase.
#include "reactor/ccreactorbase.h"

#include "arguments.h"
#include "cad/icad.h"
#include "reactor/documents.h"
#include "text/rzstringlist.h"

#include "lmcommon/ceatributo.h"
#include "lmcommon/cicommandstack.h"
#include "system/wide.h"

#include <memory>
#include <utility>

namespace {

using lm::reactor::documentManager;
using lm::reactor::documentOf;

const OdString kCopy("_COPY");

/// Asked of the active document, whichever document an event is about.
bool isNoProject() {
    return CICad().GetVarBool("*IS_NOT_RZ_PROJECT*", false, ACTIVE_DOCUMENT());
}

/// Commands that are no deeds of the user: starting one is no event, and none of them ever counts as active.
bool isUntracked(const OdString& name) {
    static const RZStringList kUntracked{"_OPEN", "_DOCINIT", "_MAINSELECT", "_PAN_INTERNAL"};
    return kUntracked.containsNoCase(name);
}

QString qt(const OdString& text) {
    return CHostString(text);
}

lm::WideView view(const QString& text) {
    return {text.utf16(), static_cast<std::size_t>(text.size())};
}

/// Whether a document is still open; true in a host that can't tell.
bool isOpen(CHostDocument* doc, const OdDbDatabase* database) {
    return documentManager() == nullptr || documentOf(database) == doc;
}

} // namespace

CCReactorBase::CCReactorBase() = default;
CCReactorBase::~CCReactorBase() = default;
void CCReactorBase::addRef() {}
void CCReactorBase::release() {}
void CCReactorBase::deleteModule() {}
OdString CCReactorBase::moduleName() const {
    return OdString();
}
void* CCReactorBase::sysData() {
    return nullptr;
}

// --- Documents ---

void CCReactorBase::inicializar() {
    CHostDocumentManager* const manager = documentManager();
    if (manager != nullptr) manager->addReactor(this);
    odedRegCmds()->addReactor(this);
    if (manager == nullptr) return;
    // The count is asked for anew: documents may come and go while they are attached.
    for (unsigned short i = 0; i < manager->documentCount(); ++i) DatabaseAttached(manager->documentAt(i));
}

void CCReactorBase::finalizar() {
    CHostDocumentManager* const manager = documentManager();
    if (manager != nullptr) manager->removeReactor(this);
    odedRegCmds()->removeReactor(this);
    if (manager == nullptr) return;
    for (unsigned short i = 0; i < manager->documentCount(); ++i) DatabaseDetached(manager->documentAt(i));
}

void CCReactorBase::DatabaseAttached(CHostDocument* doc) {
    if (!CICommandStack::instance()->verifyProjectOnLoad(doc)) return;
    if (doc == nullptr || doc->database() == nullptr) return;
    CHostDatabase* const database = doc->database();
    cargaInicial(doc);
    if (!isOpen(doc, database)) return;
    database->addReactor(this);
    database->addTransactionReactor(this);
}

void CCReactorBase::DatabaseDetached(CHostDocument* doc) {
    if (doc == nullptr || doc->database() == nullptr) return;
    doc->database()->removeReactor(this);
    doc->database()->removeTransactionReactor(this);
}

// --- Commands ---

void CCReactorBase::commandWillStart(OdEdCommand* command, OdEdCommandContext* context) {
    if (command == nullptr || isNoProject()) return;
    const OdString name = command->globalName();
    if (isUntracked(name)) return;
    comandosAtivos.append(qt(name));
    if (context != nullptr) commandWillStart(documentOf(context->database()), RZString(name));
}

void CCReactorBase::commandEnded(OdEdCommand* command, OdEdCommandContext* context) {
    if (command == nullptr || getDatabase() == nullptr) return;
    endCommand(*command, context, &CCReactorBase::commandEnded);
}

void CCReactorBase::commandCancelled(OdEdCommand* command, OdEdCommandContext* context) {
    if (command != nullptr) endCommand(*command, context, &CCReactorBase::commandCancelled);
}

void CCReactorBase::commandFailed(OdEdCommand* command, OdEdCommandContext* context) {
    if (command != nullptr) endCommand(*command, context, &CCReactorBase::commandFailed);
}

/// The end of a command that isn't on top leaves the stack as it is: nothing is looked for further down. Ends
/// of untracked commands come here too, and do all but that.
void CCReactorBase::endCommand(OdEdCommand& command, OdEdCommandContext* context, CommandEvent event) {
    if (isNoProject()) return;
    const OdString name = command.globalName();
    if (!comandosAtivos.isEmpty() && comandosAtivos.last() == qt(name)) comandosAtivos.removeLast();
    handlesApagados.clear();
    handlesApagadosReator.clear();
    if (context != nullptr) (this->*event)(documentOf(context->database()), RZString(name));
    // What was queued while the command held it back.
    if (name == kCopy) transactionEnded(nullptr);
}

RZString CCReactorBase::getComandoAtivo() const {
    return comandosAtivos.isEmpty() ? RZString() : RZString(comandosAtivos.last());
}

int CCReactorBase::getActiveCommandsCount() const {
    return static_cast<int>(comandosAtivos.size());
}

// --- The queue ---

void CCReactorBase::addObjectsToErase(RZID id) {
    if (!isNoProject()) objetosApagar.push_back(id);
}

bool CCReactorBase::wasUserErased(RZString handle) const {
    const QString text = handle;
    return handlesApagados.contains(text) && !handlesApagadosReator.contains(text);
}

bool CCReactorBase::isCopying() const {
    for (const QString& each : comandosAtivos)
        if (lm::system::equalsNoCase(view(each), kCopy.view())) return true;
    return false;
}

void CCReactorBase::transactionEnded(OdDbDatabase*) {
    if (isNoProject()) return;
    transactionEndedBegin();
    if (!isCopying()) eraseQueue();
    transactionEndedEnd();
}

/// Erasing raises events that may queue more, which waits for the next transaction. All handles are noted
/// before the first object is erased, so that no event takes one of these for erased by the user.
void CCReactorBase::eraseQueue() {
    const std::vector<OdDbObjectId> ids = std::exchange(objetosApagar, {});
    for (const OdDbObjectId id : ids) handlesApagadosReator.append(qt(id.getHandle().ascii()));
    for (const OdDbObjectId id : ids) {
        const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite);
        if (!object.isNull() && !object->isErased()) object->erase(true);
    }
}

// --- Attributes ---

CHostString CCReactorBase::getAtt(RZString tag, OdSmartPtr<OdDbBlockReference> ref) {
    CEAtributo* found = nullptr;
    CICad().SearchAttribute(tag, ref, found, false);
    const std::unique_ptr<CEAtributo> owner(found);
    return owner == nullptr ? CHostString() : owner->GetValor();
}

CHostString CCReactorBase::getAttRelacao(OdSmartPtr<OdDbBlockReference> ref) {
    CEAtributo* found = nullptr;
    CICad().SearchAttributeTag(ref, found, false);
    const std::unique_ptr<CEAtributo> owner(found);
    return owner == nullptr ? CHostString() : owner->GetValor();
}
