// SPDX-License-Identifier: MIT
// Commands: what they are, who is told when they run, and the stack that knows them all.
//
//     lm::host::CommandRegistration erase("_RZERASE", [](OdEdCommandContext& context) {
//         for (OdDbObjectId id : context.input().selection("Select objects")) ...
//     });
//     odedRegCmds()->addReactor(&watcher);
//     document->executeCommand("_RZERASE", answers);
//
// The life of a command on a document, in this order: a mark of the undo log, commandWillStart, a
// transaction, the body, the end of the transaction (transactionEnded), exactly one of commandEnded,
// commandCancelled and commandFailed, and the end of the undo step. For the user a command is one step,
// whatever marks and blocks of the undo log its code sets.
//
// A body cancels with lm::host::CommandCancelled and fails with any other exception. The transaction is then
// aborted, which takes the body back, before the callback comes; what the callback changes stands. A command
// with kManyTransactions gets no transaction around its body, since it makes many of its own; its body is
// taken back through the undo log.
#pragma once

#include "host/commandinput.h"
#include "host/reactorbase.h"

#include <functional>

class CHostDocument;
class OdDbDatabase;

/// Where a command runs.
class LM_HOST_API OdEdCommandContext {
public:
    /// Each may be null; `source` answers the command's questions.
    explicit OdEdCommandContext(OdDbDatabase* database, CHostDocument* document = nullptr,
                                lm::host::AnswerSource* source = nullptr);

    OdDbDatabase* database() const { return m_database; }
    /// Null for a command that runs while no drawing is open.
    CHostDocument* document() const { return m_document; }
    lm::host::CommandInput& input() { return m_input; }
    /// Raises CommandFailed once the time limit of the command has passed. For loops of commands.
    void checkTime() const;

private:
    OdDbDatabase* m_database;
    CHostDocument* m_document;
    lm::host::CommandInput m_input;
};

/// A command. Counted, so that one that leaves the stack while it runs lives until it has ended.
class LM_HOST_API OdEdCommand : public OdRxObject {
    LM_RX_CLASS(OdEdCommand)
public:
    using Body = std::function<void(OdEdCommandContext& context)>;
    /// How a command stands to transactions and undo.
    enum Kind {
        kOrdinary,         ///< one transaction, one undo step
        kManyTransactions, ///< makes its own transactions; one undo step
        kOutsideUndo       ///< neither: the command works on documents, or on the undo log itself
    };

    /// The name is kept as it stands; those of the host have an underscore and capitals.
    explicit OdEdCommand(const OdString& globalName, Body body = {}, Kind kind = kOrdinary);
    ~OdEdCommand() override;

    const OdString& globalName() const { return m_globalName; }
    Kind kind() const { return m_kind; }
    /// Runs the body alone; an empty body does nothing.
    void run(OdEdCommandContext& context) const;

    void addRef() override { ++m_refs; }
    void release() override {
        if (--m_refs == 0) delete this;
    }
    long numRefs() const override { return m_refs; }

private:
    OdString m_globalName;
    Body m_body;
    Kind m_kind;
    long m_refs = 1;
};

/// Is told of commands. Not owned; must be removed before it ends.
class LM_HOST_API OdEdCommandStackReactor : public lm::host::EditorReactorBase {
public:
    OdEdCommandStackReactor();
    ~OdEdCommandStackReactor() override;
    virtual void commandWillStart(OdEdCommand* command, OdEdCommandContext* context);
    virtual void commandEnded(OdEdCommand* command, OdEdCommandContext* context);
    virtual void commandCancelled(OdEdCommand* command, OdEdCommandContext* context);
    virtual void commandFailed(OdEdCommand* command, OdEdCommandContext* context);
};

/// The commands of the process and their reactors. Belongs to the host's main thread.
class LM_HOST_API OdEdCommandStack {
public:
    OdEdCommandStack(const OdEdCommandStack&) = delete;
    OdEdCommandStack& operator=(const OdEdCommandStack&) = delete;

    /// Adding a reactor twice counts once; null is ignored.
    void addReactor(OdEdCommandStackReactor* reactor);
    /// Removing what isn't there is silent.
    void removeReactor(OdEdCommandStackReactor* reactor);
    std::size_t reactorCount() const { return m_reactors.size(); }

    /// Adds a command; null, one without a name, and one that is there already are ignored. Of several
    /// commands of one name the latest runs.
    void addCmd(OdSmartPtr<OdEdCommand> command);
    /// Takes a command out; silent for what isn't there.
    void removeCmd(const OdEdCommand* command);
    /// The command of a name, ignoring case, or null. The name is first taken as it stands, then as a user
    /// types it: with or without the underscore, with "'", "." or "-" before it.
    OdSmartPtr<OdEdCommand> lookupCmd(const OdString& name) const;
    /// All commands in the order of adding.
    const std::vector<OdSmartPtr<OdEdCommand>>& commands() const { return m_commands; }

    /// One of the four callbacks.
    using Callback = void (OdEdCommandStackReactor::*)(OdEdCommand*, OdEdCommandContext*);
    /// Calls `callback` of each reactor, in the order of adding, on a copy of the list without those who left
    /// meanwhile. All are called; the first exception passes after that.
    void tell(Callback callback, OdEdCommand* command, OdEdCommandContext* context);

private:
    friend struct CommandStackInstance;
    OdEdCommandStack() = default;
    ~OdEdCommandStack() = default;
    OdSmartPtr<OdEdCommand> exact(lm::WideView name) const;

    std::vector<OdEdCommandStackReactor*> m_reactors;
    std::vector<OdSmartPtr<OdEdCommand>> m_commands;
};

/// The command stack of the process, with the host's own commands; never null.
LM_HOST_API OdEdCommandStack* odedRegCmds();

namespace lm::host {

/// Holds one command on the stack for as long as it lives, so that a command goes when its module goes.
class LM_HOST_API CommandRegistration {
public:
    CommandRegistration() = default;
    CommandRegistration(const OdString& globalName, OdEdCommand::Body body,
                        OdEdCommand::Kind kind = OdEdCommand::kOrdinary);
    CommandRegistration(CommandRegistration&& other) noexcept;
    CommandRegistration& operator=(CommandRegistration&& other) noexcept;
    ~CommandRegistration() { reset(); }
    /// Takes the command from the stack. One that runs now runs to its end.
    void reset() noexcept;
    OdEdCommand* command() const { return m_command; }

private:
    OdSmartPtr<OdEdCommand> m_command;
};

/// Runs a command on a document, or while no drawing is open on null. Commands nest. Gives RTNORM, or RTCAN
/// for one that cancelled. The exception that made a command fail passes after everything was taken back and
/// told; so does the first exception of a reactor, after all were told. What a reactor raises out of
/// commandWillStart makes the command fail before its body; out of the end of a transaction, which is
/// committed then, and out of an end callback it changes nothing of how the command ended.
LM_HOST_API int executeCommand(CHostDocument* document, OdEdCommand& command, AnswerSource& answers);
/// As above for a name; an unknown one raises CommandFailed, and nobody is told.
LM_HOST_API int executeCommand(CHostDocument* document, const OdString& name, AnswerSource& answers);
/// Runs given code as a command of a given name: the life of a command without a place on the stack.
LM_HOST_API int runAsCommand(CHostDocument* document, const OdString& globalName, OdEdCommand::Body body,
                             OdEdCommand::Kind kind = OdEdCommand::kOrdinary);

} // namespace lm::host
