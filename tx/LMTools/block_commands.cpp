// SPDX-License-Identifier: MIT
// _LMREDEFINE and _LMPURGE: blocks that get a new shape, and blocks that nothing uses.
#include "commands.h"

#include "host/services.h"
#include "system/path.h"

#include <algorithm>
#include <filesystem>

namespace lmtools {

namespace {

/// The symbol files of a folder, sorted by path, so that every machine takes them in one order.
std::vector<std::string> symbolFilesIn(const std::string& folder) {
    const std::string native = lm::system::nativePath(lm::system::fromUtf8(folder));
    std::vector<std::string> files;
    std::error_code problem;
    for (const auto& entry : std::filesystem::directory_iterator(native, problem)) {
        std::string ending = entry.path().extension().string();
        for (char& letter : ending)
            letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        std::error_code ignored;
        if (ending == ".dxf" && entry.is_regular_file(ignored)) files.push_back(entry.path().string());
    }
    if (problem) fail("folder " + inQuotes(folder) + " can't be read: " + problem.message());
    std::sort(files.begin(), files.end());
    return files;
}

OdDbObjectId blockId(CICad& cad, CHostDatabase& drawing, const RZString& name) {
    RZID id;
    cad.ExisteBloco(name, id, OdSmartPtr<OdDbDatabase>(&drawing));
    return id;
}

void redefineFile(CHostDatabase& drawing, const std::string& path, const std::string& given) {
    CICad cad;
    const RZString name = blockToUse(drawing, given);
    const bool isNew = blockId(cad, drawing, name).isNull();
    if (!cad.RedefinirBloco(wide(path), name))
        fail(inQuotes(path) + " can't become block " + inQuotes(narrow(name)) +
             ", expected a drawing with layer 0 alone and without blocks");
    say((isNew ? "defined block " : "redefined block ") + inQuotes(narrow(name)) + " with " +
        counted(referencesOf(blockId(cad, drawing, name)), "reference"));
}

/// Redefines the blocks of the drawing that the folder has a file for; a library holds more than one drawing
/// uses.
void redefineFolder(CHostDatabase& drawing, const std::string& folder) {
    CICad cad;
    CEMap<RZString> blocks;
    std::size_t references = 0, others = 0;
    for (const std::string& file : symbolFilesIn(folder)) {
        const RZString name = knownName(drawing.getBlockTableId(), wide(blockNameOf(file)));
        const OdDbObjectId id = blockId(cad, drawing, name);
        const bool isNone = id.isNull() || name.view().front() == lm::WideChar{'*'};
        if (isNone) {
            ++others;
            continue;
        }
        blocks.emplace(lm::system::fromUtf8(file), name);
        references += referencesOf(id);
    }
    if (blocks.empty())
        fail("folder " + inQuotes(folder) +
             " has no symbol file (*.dxf) with the name of a block of the drawing");
    if (!cad.RedefinirBlocos(blocks))
        fail("folder " + inQuotes(folder) +
             ": the symbol files told above can't become blocks, expected drawings "
             "with layer 0 alone and without blocks; nothing was redefined");
    say("redefined " + counted(blocks.size(), "block") + " with " + counted(references, "reference") + "; " +
        counted(others, "file") + " of other names");
}

/// Asks for a symbol file and the block that it becomes (empty: the one of its name), or for a folder.
void redefine(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    const std::string path = context.input().name("Symbol file or folder");
    if (isFolder(path)) return redefineFolder(drawing, path);
    if (!isFile(path)) fail("no symbol file and no folder " + inQuotes(path));
    const std::string name = context.input().text("Block");
    redefineFile(drawing, path, name.empty() ? blockNameOf(path) : name);
}

std::size_t blockCount(CHostDatabase& drawing) {
    const OdSmartPtr<OdDbObject> object = drawing.getBlockTableId().openObject();
    const auto* table = OdDbSymbolTable::cast(object.get());
    if (table == nullptr) return 0;
    std::size_t count = 0;
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) ++count;
    return count;
}

/// Blocks that only a purged block used go as well: the passes end when one erases nothing.
void purge(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CICad cad;
    const std::size_t before = blockCount(drawing);
    for (std::size_t left = before, last = before + 1; left < last; left = blockCount(drawing)) {
        context.checkTime();
        last = left;
        cad.PurgeBlocks(OdSmartPtr<OdDbDatabase>(&drawing));
    }
    say("purged " + counted(before - blockCount(drawing), "block"));
}

} // namespace

void addBlockCommands(Commands& commands) {
    commands.emplace_back("_LMREDEFINE", &redefine);
    commands.emplace_back("_LMPURGE", &purge);
}

} // namespace lmtools
