// SPDX-License-Identifier: MIT
// The life of a command: who is told when, what is taken back, what becomes one step for the user.
#include "documentstate.h"
#include "host/documentmanager.h"

#include "drawing/telling.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace lm::host {

namespace {

enum class Outcome { kEnded, kCancelled, kFailed };

/// Keeps the first of several exceptions.
class FirstException {
public:
    /// Gives false when `act` raised.
    template<class Act>
    bool run(Act act) {
        try {
            act();
            return true;
        } catch (...) {
            if (!m_first) m_first = std::current_exception();
            return false;
        }
    }
    void pass() const {
        if (m_first) std::rethrow_exception(m_first);
    }

private:
    std::exception_ptr m_first;
};

/// The body's changes in the database: a transaction, or for a command that makes its own ones a mark.
class BodyChanges {
public:
    BodyChanges(OdDbDatabase* database, OdEdCommand::Kind kind)
        : m_database(kind == OdEdCommand::kOutsideUndo ? nullptr : database) {
        if (m_database == nullptr) return;
        m_transactions = m_database->numActiveTransactions();
        // Small transactions are only seen as such when no other one and no undo block is around them, and
        // only the undo log can take them back.
        m_isWrapped = kind != OdEdCommand::kManyTransactions || m_transactions != 0 ||
                      m_database->isUndoBlockStarted() || !m_database->isUndoRecording();
        if (m_isWrapped) {
            m_database->startTransaction();
        } else {
            m_marks = m_database->undoMarks();
            m_database->startUndoRecord();
        }
    }

    /// Ends what is still open. What reactors raise passes after all of it.
    void commit(FirstException& first) {
        if (m_database == nullptr) return;
        while (m_database->numActiveTransactions() > m_transactions)
            first.run([&] { m_database->endTransaction(); });
    }
    /// Tells of objects that the body, or whoever it gave them to, still holds: nothing of a command comes
    /// behind its end. A transaction around the command tells of them at its own end.
    static void tellWaiting(OdDbDatabase* database, FirstException& first) {
        if (database != nullptr && database->numActiveTransactions() == 0)
            first.run([&] { lm::drawing::tellWaiting(*database); });
    }
    void takeBack(FirstException& first) {
        if (m_database == nullptr) return;
        while (m_database->numActiveTransactions() > m_transactions)
            first.run([&] { m_database->abortTransaction(); });
        if (m_isWrapped) return;
        bool more = true;
        while (more && m_database->undoMarks() > m_marks)
            first.run([&] {
                more = false;
                const unsigned int marks = m_database->undoMarks();
                m_database->undo();
                more = m_database->undoMarks() < marks;
            });
        m_database->startUndoRecord(); // what the callback changes is no part of what was there before
    }

private:
    OdDbDatabase* m_database;
    unsigned int m_transactions = 0;
    unsigned int m_marks = 0;
    bool m_isWrapped = true;
};

Outcome runBody(OdEdCommand& command, OdEdCommandContext& context, FirstException& first) {
    Outcome outcome = Outcome::kFailed;
    first.run([&] {
        try {
            command.run(context);
            outcome = Outcome::kEnded;
        } catch (const CommandCancelled&) {
            outcome = Outcome::kCancelled; // asked for: nothing passes
        }
    });
    return outcome;
}

OdEdCommandStack::Callback callbackOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::kEnded:
        return &OdEdCommandStackReactor::commandEnded;
    case Outcome::kCancelled:
        return &OdEdCommandStackReactor::commandCancelled;
    case Outcome::kFailed:
        break;
    }
    return &OdEdCommandStackReactor::commandFailed;
}

Outcome live(OdEdCommand& command, OdEdCommandContext& context, FirstException& first) {
    OdEdCommandStack& stack = *odedRegCmds();
    Outcome outcome = Outcome::kFailed;
    if (first.run([&] { stack.tell(&OdEdCommandStackReactor::commandWillStart, &command, &context); })) {
        BodyChanges changes(context.database(), command.kind());
        outcome = runBody(command, context, first);
        if (outcome == Outcome::kEnded) {
            changes.commit(first);
            BodyChanges::tellWaiting(context.database(), first);
        } else {
            changes.takeBack(first);
        }
    }
    first.run([&] { stack.tell(callbackOf(outcome), &command, &context); });
    return outcome;
}

} // namespace

/// Enters a command into its document for as long as it runs.
class CommandScope {
public:
    CommandScope(CHostDocument* document, OdEdCommand& command, AnswerSource& answers)
        : m_document(document) {
        if (document == nullptr) return;
        DocumentState& state = *document->m_state;
        Clock::time_point deadline = Clock::time_point::max();
        if (state.timeLimit > 0)
            deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                          std::chrono::duration<double>(std::min(state.timeLimit, 1e9)));
        if (!state.commands.empty()) deadline = std::min(deadline, state.commands.back().deadline);
        state.commands.push_back({&command, &answers, deadline});
    }
    ~CommandScope() {
        if (m_document != nullptr) m_document->m_state->commands.pop_back();
    }
    CommandScope(const CommandScope&) = delete;
    CommandScope& operator=(const CommandScope&) = delete;

private:
    CHostDocument* m_document;
};

int executeCommand(CHostDocument* document, OdEdCommand& command, AnswerSource& answers) {
    const OdSmartPtr<OdEdCommand> held(&command);
    FirstException first;
    Outcome outcome;
    {
        const CommandScope scope(document, command, answers);
        const UndoStepScope step(command.kind() == OdEdCommand::kOutsideUndo ? nullptr : document);
        OdEdCommandContext context(document != nullptr ? document->database() : nullptr, document, &answers);
        outcome = live(command, context, first);
    }
    if (document != nullptr) first.run([&] { document->closeIfWanted(); });
    first.pass();
    return outcome == Outcome::kEnded ? RTNORM : RTCAN;
}

int executeCommand(CHostDocument* document, const OdString& name, AnswerSource& answers) {
    const OdSmartPtr<OdEdCommand> command = odedRegCmds()->lookupCmd(name);
    if (command.isNull()) throw CommandFailed("unknown command \"" + lm::drawing::utf8(name) + "\"");
    return executeCommand(document, *command, answers);
}

int runAsCommand(CHostDocument* document, const OdString& globalName, OdEdCommand::Body body,
                 OdEdCommand::Kind kind) {
    const OdSmartPtr<OdEdCommand> command(new OdEdCommand(globalName, std::move(body), kind),
                                          lm::drawing::kAttach);
    AnswerList nothing;
    return executeCommand(document, *command, nothing);
}

} // namespace lm::host
