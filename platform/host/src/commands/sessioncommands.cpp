// SPDX-License-Identifier: MIT
// Commands that work on documents: they run outside of any transaction and are no undo step.
#include "hostcommands.h"

#include "drawing/writer.h"
#include "host/documentmanager.h"

#include <utility>

namespace lm::host {

namespace {

bool quitRequested = false;

void open(OdEdCommandContext& context) {
    documentManager().openDocument(wideText(context.input().name("File to open")));
}

void makeNew(OdEdCommandContext&) {
    documentManager().newDocument();
}

void saveUnder(CHostDocument& document, const OdString& path, const lm::drawing::WriteOptions& options) {
    lm::drawing::saveDrawing(*document.database(), path, options);
    document.markSaved();
}

void save(OdEdCommandContext& context) {
    CHostDocument& document = documentOf(context);
    OdString path = document.fileName();
    const bool isNew = path.isEmpty();
    if (isNew) path = wideText(context.input().name("File to save to"));
    saveUnder(document, path, {});
    if (isNew) document.database()->setFilename(path);
}

/// Whether a word is made as the names of versions are: an R and digits. A file of such a name has a folder
/// or an ending in its name.
bool looksLikeVersion(const std::string& word) {
    return word.size() > 1 && (word[0] == 'R' || word[0] == 'r') &&
           word.find_first_not_of("0123456789", 1) == std::string::npos;
}

/// Asks for a version, BINARY or the file's name, until it has the name.
void saveAs(OdEdCommandContext& context) {
    CHostDocument& document = documentOf(context);
    lm::drawing::WriteOptions options;
    std::string given;
    for (bool more = true; more;) {
        given = context.input().name("Version or file to save to");
        more = lm::drawing::versionByName(given, options.version);
        if (more) continue;
        more = lm::system::equalsNoCase(lm::system::fromUtf8(given), lm::system::widen("BINARY"));
        if (more) options.binary = true;
        if (!more && looksLikeVersion(given))
            throw CommandFailed("unknown version \"" + given +
                                "\": one of R2000, R2004, R2007, R2010, R2013, R2018");
    }
    saveUnder(document, wideText(given), options);
    document.database()->setFilename(wideText(given));
}

void close(OdEdCommandContext& context) {
    documentOf(context).closeAfterCommand();
}

void quit(OdEdCommandContext& context) {
    CHostDocumentManager& manager = documentManager();
    for (int i = manager.documentCount(); i-- > 0;) {
        CHostDocument* const document = manager.documentAt(i);
        if (document != nullptr && document != context.document()) manager.closeDocument(document);
    }
    if (context.document() != nullptr) context.document()->closeAfterCommand();
    quitRequested = true;
}

} // namespace

bool takeQuitRequest() noexcept {
    return std::exchange(quitRequested, false);
}

void addSessionCommands(OdEdCommandStack& stack) {
    constexpr auto kind = OdEdCommand::kOutsideUndo;
    addCommand(stack, "_OPEN", &open, kind);
    addCommand(stack, "_NEW", &makeNew, kind);
    addCommand(stack, "_SAVE", &save, kind);
    addCommand(stack, "_QSAVE", &save, kind);
    addCommand(stack, "_SAVEAS", &saveAs, kind);
    addCommand(stack, "_CLOSE", &close, kind);
    addCommand(stack, "_QUIT", &quit, kind);
}

} // namespace lm::host
