// SPDX-License-Identifier: MIT
#include "office/rzfiledialog.h"

#include "log.h"
#include "text/rzstringlist.h"

#include "host/document.h"
#include "host/services.h"
#include "host/windows/filedialogs.h"

namespace {

/// One line for the log, with the active document when there is one.
void report(const RZString& line) {
    lm::log::writeLog(line, ACTIVE_DOCUMENT());
}

/// The filter as the toolkit reads it. It keeps the ";;" behind its last entry.
RZString toolkitFilter(const RZString& filter) {
    RZString result;
    const RZStringList pieces = filter.split(RZString("|"));
    for (int i = 0; i + 1 < pieces.count(); i += 2) {
        const RZString text = pieces.getIndex(i);
        const bool showsItsPattern = text.contains("(") && text.contains(")");
        result += showsItsPattern ? text + ";;" : text + "( " + pieces.getIndex(i + 1) + " );;";
    }
    return result;
}

QWidget* mainWindow() {
    const CHostSystemServices* const services = GetHostSystemServices();
    return services != nullptr ? services->mainWindow() : nullptr;
}

} // namespace

int RZFileDialog(RZString& caminho, bool abrir, RZString filtro, RZString caminhoInicial, RZString titulo) {
    report(RZString(abrir ? "OPEN file dialog" : "SAVE file dialog") + ", filter=" + filtro +
           ", path=" + caminhoInicial);
    const lm::host::FileQuestion question{mainWindow(), titulo, caminhoInicial, toolkitFilter(filtro)};
    caminho = abrir ? lm::host::askOpenFileName(question) : lm::host::askSaveFileName(question);
    report(RZString("File dialog result: ") + caminho);
    if (caminho.isEmpty()) return RZ_FILE_DIALOG_CANCELLED;
    caminho.replace("/", "\\");
    return RZ_FILE_DIALOG_CHOSEN;
}
