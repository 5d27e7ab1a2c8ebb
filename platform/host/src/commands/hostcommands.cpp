// SPDX-License-Identifier: MIT
#include "hostcommands.h"

#include "drawing/finite.h"
#include "drawing/recordsearch.h"
#include "host/session.h"

namespace lm::host {

void addHostCommands(OdEdCommandStack& stack) {
    addSessionCommands(stack);
    addEditCommands(stack);
    addInsertCommand(stack);
    addLayerCommand(stack);
    addPurgeCommand(stack);
    addUndoCommands(stack);
    addViewCommands(stack);
}

void addCommand(OdEdCommandStack& stack, const char* name, void (*body)(OdEdCommandContext& context),
                OdEdCommand::Kind kind) {
    stack.addCmd(OdSmartPtr<OdEdCommand>(new OdEdCommand(OdString(name), body, kind), lm::drawing::kAttach));
}

CHostDocument& documentOf(const OdEdCommandContext& context) {
    if (context.document() == nullptr || context.document()->database() == nullptr)
        throw CommandFailed("no drawing is open");
    return *context.document();
}

OdString wideText(std::string_view utf8) {
    return OdString(lm::WideView(lm::system::fromUtf8(utf8)));
}

void requireName(const std::string& name) {
    if (!lm::drawing::isValidName(lm::system::fromUtf8(name)))
        throw CommandFailed("no valid name \"" + name + "\"");
}

void requireFinite(const OdDbEntity& entity) {
    if (lm::drawing::isFinite(entity)) return;
    throw CommandFailed("a number of " + lm::drawing::utf8(entity.dxfName()) + " " +
                        lm::drawing::utf8(entity.objectId().getHandle().ascii()) + " would be infinite");
}

void tellUser(std::string_view utf8) {
    writeConsole(lm::system::fromUtf8(std::string(utf8) + "\n"));
}

} // namespace lm::host
