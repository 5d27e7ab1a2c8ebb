// SPDX-License-Identifier: MIT
// CIFileDialog: the dialogs for opening and saving, one pair of functions for each kind of file.
//
//     RZString path;
//     if (CIFileDialog::showOpenScreenDwgFiles(initialFolder, path)) open(path);
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include <vector>

/// Each function shows a dialog over the host's main window, waits for it and gives true when the user chose
/// a file; `resultado` is then its path with separators "\", else "". `caminhoInicial` is the folder to start
/// in, or a path that is proposed; the forms without it start where the toolkit does. No dialog for saving
/// adds an extension to the name. RZFileDialog tells the rest. Main thread.
class LM_COMMONMFC_API CIFileDialog {
public:
    /// One row of the list of filters in a dialog.
    struct CEFilter {
        RZString name;      ///< as the user sees it, "Drawing"
        RZString extension; ///< without a point, "dwg"; "*" for all files
    };

    enum enDialogType { SaveDialog = 0, OpenDialog = 1 };

    /// Styles of dialogs for callers that show their own; nothing here reads them.
    static const int FILE_DIALOG_STYLE_OPEN;
    static const int FILE_DIALOG_STYLE_SAVE;

    static bool showOpenScreenAllFiles(RZString& resultado);
    static bool showOpenScreenAllFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenCfgFiles(RZString& resultado);
    static bool showOpenScreenCfgFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenDtpFiles(RZString& resultado);
    static bool showOpenScreenDtpFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenDwgFiles(RZString& resultado);
    static bool showOpenScreenDwgFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenGrcFiles(RZString& resultado);
    static bool showOpenScreenGrcFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenGrfFiles(RZString& resultado);
    static bool showOpenScreenGrfFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenGrtFiles(RZString& resultado);
    static bool showOpenScreenGrtFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenGrwFiles(RZString& resultado);
    static bool showOpenScreenGrwFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenGrxFiles(RZString& resultado);
    static bool showOpenScreenGrxFiles(RZString caminhoInicial, RZString& resultado);
    /// Drawings and solutions.
    static bool showOpenScreenRZFiles(RZString& resultado);
    static bool showOpenScreenRZFiles(RZString caminhoInicial, RZString& resultado);
    static bool showOpenScreenRzslnFiles(RZString& resultado);
    static bool showOpenScreenRzslnFiles(RZString caminhoInicial, RZString& resultado);

    static bool showSaveScreenAllFiles(RZString& resultado);
    static bool showSaveScreenAllFiles(RZString caminhoInicial, RZString& resultado);
    static bool showSaveScreenJPGFiles(RZString& resultado);
    static bool showSaveScreenJPGFiles(RZString caminhoInicial, RZString& resultado);
    static bool showSaveScreenPDFFiles(RZString& resultado);
    static bool showSaveScreenPDFFiles(RZString caminhoInicial, RZString& resultado);
    static bool showSaveScreenPNGFiles(RZString& resultado);
    static bool showSaveScreenPNGFiles(RZString caminhoInicial, RZString& resultado);
    static bool showSaveScreenRzslnFiles(RZString& resultado);
    static bool showSaveScreenRzslnFiles(RZString caminhoInicial, RZString& resultado);
    static bool showSaveScreenSVGFiles(RZString& resultado);
    static bool showSaveScreenSVGFiles(RZString caminhoInicial, RZString& resultado);

private:
    CIFileDialog() = default;
    ~CIFileDialog() = default;

    static bool showScreen(enDialogType tipo, const RZString& padrao, const RZString& caminhoInicial,
                           std::vector<CEFilter> filtros, RZString& resultado);
};
