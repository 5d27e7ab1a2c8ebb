// SPDX-License-Identifier: MIT
// CHostDocument: a drawing that is open in the host, with its database, its interface for calls, its commands
// and the user's undo.
//
//     if (CHostDocument* document = ACTIVE_DOCUMENT()) document->getAPI()->...
#pragma once

#include "host/command.h"
#include "host/database.h"
#include "host/hostapi.h"
#include "host/selection.h"

#include <memory>

class CHostDocumentManager;

namespace lm::host {
class CommandScope;
class UndoStepScope;
struct DocumentState;
} // namespace lm::host

/// An open drawing. The document manager makes and ends documents. Belongs to the host's main thread.
class LM_HOST_API CHostDocument {
public:
    CHostDocument(const CHostDocument&) = delete;
    CHostDocument& operator=(const CHostDocument&) = delete;
    ~CHostDocument();

    /// The document's interface for calls by name and output; never null.
    CHostAPI* getAPI() const { return m_api.get(); }
    /// The document's database, which the document owns, or null for a document without one. Its changes are
    /// recorded for undo.
    CHostDatabase* database() const { return m_database.get(); }
    /// The document's number in the log: 1 for the first document of the process, never used again.
    int number() const { return m_number; }
    /// Path of the drawing file; empty for a drawing that was never saved.
    OdString fileName() const;

    /// Runs a command; see lm::host::executeCommand.
    int executeCommand(const OdString& name, lm::host::AnswerSource& answers);
    int executeCommand(const OdString& name, std::initializer_list<lm::host::Answer> answers = {});
    /// Commands that run now, each in the other.
    std::size_t commandDepth() const;
    /// Global name of the innermost of them; empty when none runs.
    OdString activeCommand() const;
    /// Who answers questions now: the source of the innermost command, else the one that was set; may be
    /// null.
    lm::host::AnswerSource* answers() const;
    /// Sets who answers questions that come outside of commands. Not owned; gives the source before.
    lm::host::AnswerSource* setAnswers(lm::host::AnswerSource* source);
    /// Whether a command, an undo step of the user, an evaluation, a call by name or a transaction is in
    /// progress, or reactors of the database are being told something: the document can't be closed then.
    bool isBusy() const;
    /// Has the document closed when the outermost command ends; at once when it isn't busy.
    void closeAfterCommand();
    /// Closes the document when that was asked for and it isn't busy any more. True when it did: the
    /// document has gone then. Whoever ends an evaluation or a call from outside may ask for it.
    bool closeIfWanted();

    /// Seconds that a command may take, checked where it asks for the time (OdEdCommandContext::checkTime)
    /// and at each question; 0 for no limit, which is the default. A command inside another ends with the
    /// outer one at the latest.
    void setTimeLimit(double seconds);
    double timeLimit() const;
    /// Raises CommandFailed when the running command has used its time.
    void checkTime() const;

    /// Takes back what the user did last: a command with everything that its code and its reactors did, and
    /// outside of commands everything since the last mark of the undo log. False when there is nothing, and
    /// during a transaction. Exceptions of reactors pass after the whole step.
    bool undo();
    /// Repeats the step that was taken back last. False when there is none, or something was changed
    /// meanwhile.
    bool redo();
    /// Whether a step of the user is open now: in a command, or in an UndoStepScope.
    bool isInUndoStep() const;
    /// Whether the drawing was changed since it was opened or marked as saved. Taking changes back is a
    /// change.
    bool isModified() const;
    void markSaved();

    /// A new, empty selection set, which the caller owns.
    CHostSelectionSet* newSelectionSet() const;
    /// What was selected last in the document, for the answer "Previous".
    const std::vector<OdDbObjectId>& previousSelection() const;
    void setPreviousSelection(std::vector<OdDbObjectId> ids);
    /// The mappings of the last "_COPY", from what it copied to the copies; null before the first. The first
    /// (index 0) has the entities that were selected and what they own; with several places it names the last
    /// copies. The second (1) is for what a copy brings along besides; this host's copies bring nothing.
    OdSmartPtr<OdDbIdMapping> copyMapping(int index) const;
    void setCopyMappings(OdSmartPtr<OdDbIdMapping> first, OdSmartPtr<OdDbIdMapping> second);
    /// The last point that was given, which relative points start from.
    OdGePoint3d lastPoint() const;
    void setLastPoint(const OdGePoint3d& point);

    /// The active view of the document; never null.
    CHostView* view() const;
    /// Redraws a view of the document; another view, or null, is passed over.
    void regen(CHostView* view);

private:
    friend class CHostDocumentManager;
    friend class lm::host::CommandScope;
    friend class lm::host::UndoStepScope;
    CHostDocument(int number, std::unique_ptr<CHostDatabase> database);

    int m_number;
    std::unique_ptr<CHostDatabase> m_database;
    std::unique_ptr<CHostAPI> m_api;
    std::unique_ptr<lm::host::DocumentState> m_state;
};

/// The active document at this moment, or null. Ask anew at each use: any call can change it.
LM_HOST_API CHostDocument* ACTIVE_DOCUMENT();

namespace lm::host {

/// Makes what happens while it lives one undo step for the user, as a command does. Inside another step it
/// does nothing. Null, and a document without a database, are passed over.
class LM_HOST_API UndoStepScope {
public:
    explicit UndoStepScope(CHostDocument* document);
    ~UndoStepScope();
    UndoStepScope(const UndoStepScope&) = delete;
    UndoStepScope& operator=(const UndoStepScope&) = delete;

private:
    CHostDocument* m_document;
};

} // namespace lm::host
