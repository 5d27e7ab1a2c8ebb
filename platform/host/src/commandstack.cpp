// SPDX-License-Identifier: MIT
#include "host/command.h"

#include "commands/hostcommands.h"
#include "host/document.h"
#include "stillthere.h"

#include <algorithm>
#include <utility>

OdEdCommandContext::OdEdCommandContext(OdDbDatabase* database, CHostDocument* document,
                                       lm::host::AnswerSource* source)
    : m_database(database), m_document(document), m_input(source, document) {}

void OdEdCommandContext::checkTime() const {
    if (m_document != nullptr) m_document->checkTime();
}

OdRxClass* OdEdCommand::desc() {
    static OdRxClass description("OdEdCommand", OdRxObject::desc(), nullptr);
    return &description;
}

OdRxClass* OdEdCommand::isA() const {
    return desc();
}

OdEdCommand::OdEdCommand(const OdString& globalName, Body body, Kind kind)
    : m_globalName(globalName), m_body(std::move(body)), m_kind(kind) {
    m_globalName.syncUnicode();
}

OdEdCommand::~OdEdCommand() = default;

void OdEdCommand::run(OdEdCommandContext& context) const {
    if (m_body) m_body(context);
}

OdEdCommandStackReactor::OdEdCommandStackReactor() = default;
OdEdCommandStackReactor::~OdEdCommandStackReactor() = default;
void OdEdCommandStackReactor::commandWillStart(OdEdCommand*, OdEdCommandContext*) {}
void OdEdCommandStackReactor::commandEnded(OdEdCommand*, OdEdCommandContext*) {}
void OdEdCommandStackReactor::commandCancelled(OdEdCommand*, OdEdCommandContext*) {}
void OdEdCommandStackReactor::commandFailed(OdEdCommand*, OdEdCommandContext*) {}

void OdEdCommandStack::addReactor(OdEdCommandStackReactor* reactor) {
    lm::host::addOnce(m_reactors, reactor);
}

void OdEdCommandStack::removeReactor(OdEdCommandStackReactor* reactor) {
    std::erase(m_reactors, reactor);
}

void OdEdCommandStack::addCmd(OdSmartPtr<OdEdCommand> command) {
    if (command.isNull() || command->globalName().isEmpty()) return;
    for (const OdSmartPtr<OdEdCommand>& known : m_commands)
        if (known.get() == command.get()) return;
    m_commands.push_back(std::move(command));
}

void OdEdCommandStack::removeCmd(const OdEdCommand* command) {
    const auto at = std::find_if(m_commands.begin(), m_commands.end(),
                                 [command](const auto& known) { return known.get() == command; });
    if (at == m_commands.end()) return;
    // Let go last: the end of its body may come back here.
    const OdSmartPtr<OdEdCommand> last = *at;
    m_commands.erase(at);
}

OdSmartPtr<OdEdCommand> OdEdCommandStack::exact(lm::WideView name) const {
    for (auto at = m_commands.rbegin(); at != m_commands.rend(); ++at)
        if (lm::system::equalsNoCase((*at)->globalName().view(), name)) return *at;
    return {};
}

OdSmartPtr<OdEdCommand> OdEdCommandStack::lookupCmd(const OdString& name) const {
    if (OdSmartPtr<OdEdCommand> found = exact(name.view()); !found.isNull()) return found;
    lm::WideView bare = name.view();
    while (!bare.empty() && (bare[0] == '\'' || bare[0] == '.' || bare[0] == '-' || bare[0] == '_'))
        bare.remove_prefix(1);
    if (bare.empty()) return {};
    if (OdSmartPtr<OdEdCommand> found = exact(lm::system::widen("_").append(bare)); !found.isNull())
        return found;
    return exact(bare);
}

void OdEdCommandStack::tell(Callback callback, OdEdCommand* command, OdEdCommandContext* context) {
    lm::host::visitThoseStillThere(
        m_reactors, [&](OdEdCommandStackReactor& reactor) { (reactor.*callback)(command, context); });
}

/// Makes the one stack, which is never destroyed: modules may leave it while the process ends.
struct CommandStackInstance {
    static OdEdCommandStack& get() {
        static OdEdCommandStack& stack = *make();
        return stack;
    }
    static OdEdCommandStack* make() {
        auto* const stack = new OdEdCommandStack;
        lm::host::addHostCommands(*stack);
        return stack;
    }
};

OdEdCommandStack* odedRegCmds() {
    return &CommandStackInstance::get();
}

namespace lm::host {

CommandRegistration::CommandRegistration(const OdString& globalName, OdEdCommand::Body body,
                                         OdEdCommand::Kind kind)
    : m_command(new OdEdCommand(globalName, std::move(body), kind), lm::drawing::kAttach) {
    odedRegCmds()->addCmd(m_command);
}

CommandRegistration::CommandRegistration(CommandRegistration&& other) noexcept
    : m_command(std::move(other.m_command)) {}

CommandRegistration& CommandRegistration::operator=(CommandRegistration&& other) noexcept {
    if (this != &other) {
        reset();
        m_command = std::move(other.m_command);
    }
    return *this;
}

void CommandRegistration::reset() noexcept {
    if (m_command.isNull()) return;
    odedRegCmds()->removeCmd(m_command);
    m_command.release();
}

} // namespace lm::host
