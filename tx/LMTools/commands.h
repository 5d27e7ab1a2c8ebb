// SPDX-License-Identifier: MIT
// The commands of this module, which docs/commands.md describes, and what they share. Each command is one
// undo step of the host; one that fails says so in one line and leaves the drawing as it was.
#pragma once

#include "cad/icad.h"

#include "host/command.h"
#include "host/document.h"

#include <string>
#include <string_view>
#include <vector>

namespace lmtools {

using Commands = std::vector<lm::host::CommandRegistration>;

// Each adds the commands of one source.
void addInsertCommand(Commands& commands);     ///< _LMINSERT
void addAttributeCommands(Commands& commands); ///< _LMATTRIBUTES _LMVISIBILITY
void addVirtualCommand(Commands& commands);    ///< _LMVIRTUAL
void addBlockCommands(Commands& commands);     ///< _LMREDEFINE _LMPURGE
void addShapeCommands(Commands& commands);     ///< _LMFLATTEN _LMLAYERZERO
void addLinkCommands(Commands& commands);      ///< _LMLINKS _LMCOPY
void addCircuitCommand(Commands& commands);    ///< _LMCIRCUIT
/// _LMPAGE _LMCOVER _LMINDEX _LMSHOWPAGE _LMGOTO _LMDELETEPAGE
void addPageCommands(Commands& commands);
void addProjectCommands(Commands& commands);  ///< _LMORDER _LMNUMBERING _LMCONFIG _LMVERSION
void addReplayCommand(Commands& commands);    ///< _LMREPLAY
void addWorkbookCommands(Commands& commands); ///< _LMEXPORT _LMIMPORT

/// The drawing of a command. Raises CommandFailed while none is open.
CHostDatabase& drawingOf(const OdEdCommandContext& context);

/// Ends a command with one line of UTF-8.
[[noreturn]] void fail(const std::string& why);
/// A line of UTF-8 on the host's command line.
void say(const std::string& line);

RZString wide(std::string_view text);
std::string narrow(const RZString& text);
/// Text between double quotes.
std::string inQuotes(std::string_view text);
/// "1 reference", "2 references".
std::string counted(std::size_t number, const std::string& noun);
std::string handleOf(OdDbObjectId id);
/// An object in words: handle, block or type, and for an entity its layer.
std::string described(CICad& cad, OdDbObjectId id);

/// A tag and what is to be done with it.
struct TagValue {
    std::string tag;
    std::string value;
    bool invisible = false;
};
/// Asks for tags and values until an empty tag.
std::vector<TagValue> askValues(lm::host::CommandInput& input);
/// Writes values into the attributes of these tags, ignoring their case; the first attribute of a tag counts.
/// Raises CommandFailed for a tag that the reference lacks.
void setValues(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference,
               const std::vector<TagValue>& values);
/// Asks for block references; at least one, and nothing else may be chosen.
std::vector<OdSmartPtr<OdDbBlockReference>> askReferences(OdEdCommandContext& context);
/// The entry of the virtual schematic under a key; null without one.
OdDbObjectId virtualEntry(CHostDatabase& drawing, const std::string& key);
/// Asks for one live object: an entity name, a handle, or the key of a component of the virtual schematic.
OdDbObjectId askObject(OdEdCommandContext& context, std::string_view prompt);

/// Whether a path names a file, or a folder.
bool isFile(const std::string& path);
bool isFolder(const std::string& path);
/// The name that a symbol file's block gets: the file's without folders and ending.
std::string blockNameOf(const std::string& path);
/// The name that a record of a table really has, for one that may differ in its case; empty without one.
RZString knownName(OdDbObjectId table, const RZString& name);
/// The block that a name means: one of the drawing, which may not be a layout, or a new one. Raises
/// CommandFailed for a layout and for what can't name a block.
RZString blockToUse(CHostDatabase& drawing, const std::string& name);
/// The layer that an answer means, empty for the current one. Raises CommandFailed for what can't name a
/// layer.
RZString layerToUse(CICad& cad, CHostDatabase& drawing, const std::string& name);
/// Live references to a block, in any owner.
std::size_t referencesOf(OdDbObjectId block);

} // namespace lmtools
