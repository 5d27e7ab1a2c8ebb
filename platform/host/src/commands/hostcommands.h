// SPDX-License-Identifier: MIT
// The host's own commands and what they share.
#pragma once

#include "host/command.h"
#include "host/document.h"

#include "drawing/entity.h"

namespace lm::host {

/// Puts the host's commands on a new stack.
void addHostCommands(OdEdCommandStack& stack);

// Each adds the commands of one source.
void addSessionCommands(OdEdCommandStack& stack); ///< _OPEN _NEW _SAVE _SAVEAS _CLOSE _QUIT
void addEditCommands(OdEdCommandStack& stack);    ///< _ERASE _MOVE _COPY _EXPLODE
void addInsertCommand(OdEdCommandStack& stack);   ///< _INSERT
void addLayerCommand(OdEdCommandStack& stack);    ///< _LAYER
void addPurgeCommand(OdEdCommandStack& stack);    ///< _PURGE
void addUndoCommands(OdEdCommandStack& stack);    ///< _U _UNDO _REDO
void addViewCommands(OdEdCommandStack& stack);    ///< _REGEN _ZOOM

void addCommand(OdEdCommandStack& stack, const char* name, void (*body)(OdEdCommandContext& context),
                OdEdCommand::Kind kind = OdEdCommand::kOrdinary);

/// The document of a command, with a database. Raises CommandFailed without one.
CHostDocument& documentOf(const OdEdCommandContext& context);

OdString wideText(std::string_view utf8);
/// Raises CommandFailed for a name that no record may be given.
void requireName(const std::string& name);
/// Raises CommandFailed when an entity holds a number that no drawing can hold; the command is taken back
/// then.
void requireFinite(const OdDbEntity& entity);
/// A line on the console.
void tellUser(std::string_view utf8);

/// Whether the script is to end, since _QUIT was called; forgets it.
bool takeQuitRequest() noexcept;

} // namespace lm::host
