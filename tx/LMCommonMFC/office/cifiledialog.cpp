// SPDX-License-Identifier: MIT
#include "office/cifiledialog.h"

#include "office/rzfiledialog.h"

#include <utility>

const int CIFileDialog::FILE_DIALOG_STYLE_OPEN = 528416;
const int CIFileDialog::FILE_DIALOG_STYLE_SAVE = 525346;

/// Gives each function its row. Both forms of a function stand in one line, so that the rows read as a table:
/// function, dialog, default pattern, filters.
#define LM_DIALOG(function, type, pattern, ...)                                                              \
    bool CIFileDialog::function(RZString& resultado) {                                                       \
        return function(RZString(""), resultado);                                                            \
    }                                                                                                        \
    bool CIFileDialog::function(RZString caminhoInicial, RZString& resultado) {                              \
        return showScreen(type, pattern, caminhoInicial, {__VA_ARGS__}, resultado);                          \
    }

// clang-format off
LM_DIALOG(showOpenScreenAllFiles,   OpenDialog, "*.*",     {"All Files", "*"})
LM_DIALOG(showOpenScreenCfgFiles,   OpenDialog, "*.cfg",   {"Settings", "cfg"})
LM_DIALOG(showOpenScreenDtpFiles,   OpenDialog, "*.dtp",   {"Diagram Template", "dtp"})
LM_DIALOG(showOpenScreenDwgFiles,   OpenDialog, "*.dwg",   {"Drawing", "dwg"})
LM_DIALOG(showOpenScreenGrcFiles,   OpenDialog, "*.grc",   {"Cable Table Template", "grc"})
LM_DIALOG(showOpenScreenGrfFiles,   OpenDialog, "*.grf",   {"Material Table Template", "grf"})
LM_DIALOG(showOpenScreenGrtFiles,   OpenDialog, "*.grt",   {"Terminal Table Template", "grt"})
LM_DIALOG(showOpenScreenGrwFiles,   OpenDialog, "*.grw",   {"Wire Table Template", "grw"})
LM_DIALOG(showOpenScreenGrxFiles,   OpenDialog, "*.grx",   {"Terminal Drawing Template", "grx"})
LM_DIALOG(showOpenScreenRZFiles,    OpenDialog, "*.dwg",   {"Drawing", "dwg"}, {"Solution", "rzsln"})
LM_DIALOG(showOpenScreenRzslnFiles, OpenDialog, "*.rzsln", {"Solution", "rzsln"})
LM_DIALOG(showSaveScreenAllFiles,   SaveDialog, "*.*",     {"All Files", "*"})
LM_DIALOG(showSaveScreenJPGFiles,   SaveDialog, "*.jpg",   {"JPG file", "jpg"})
LM_DIALOG(showSaveScreenPDFFiles,   SaveDialog, "*.pdf",   {"PDF file", "pdf"})
LM_DIALOG(showSaveScreenPNGFiles,   SaveDialog, "*.png",   {"PNG file", "png"})
LM_DIALOG(showSaveScreenRzslnFiles, SaveDialog, "*.rzsln", {"Solution", "rzsln"})
LM_DIALOG(showSaveScreenSVGFiles,   SaveDialog, "*.svg",   {"SVG file", "svg"})
// clang-format on

#undef LM_DIALOG

/// The default pattern goes no further: the dialogs of the toolkit have no place for it.
bool CIFileDialog::showScreen(enDialogType tipo, const RZString&, const RZString& caminhoInicial,
                              std::vector<CEFilter> filtros, RZString& resultado) {
    resultado = "";
    RZString filtro;
    for (const CEFilter& row : filtros)
        filtro += row.name + " (*." + row.extension + ")|*." + row.extension + "|";
    filtro += "|";
    RZString escolhido;
    if (RZFileDialog(escolhido, tipo == OpenDialog, filtro, caminhoInicial, "") != RZ_FILE_DIALOG_CHOSEN)
        return false;
    resultado = escolhido;
    return true;
}
