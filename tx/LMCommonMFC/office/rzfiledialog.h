// SPDX-License-Identifier: MIT
// RZFileDialog: the host's dialog for the name of a file.
//
//     RZString path;
//     if (RZFileDialog(path, true, "Text|*.txt||", "", "Open") == RZ_FILE_DIALOG_CHOSEN) read(path);
#pragma once

#include "export.h"
#include "text/rzstring.h"

/// What RZFileDialog answers.
constexpr int RZ_FILE_DIALOG_CHOSEN = 5100;
constexpr int RZ_FILE_DIALOG_CANCELLED = -5002;

/// Shows the dialog over the host's main window and waits for it: the one for opening when `abrir` is true,
/// else the one for saving, which asks before a file that exists is overwritten and adds no extension of its
/// own.
///
/// `filtro` holds pairs of a text and a pattern, each behind a bar: "Text|*.txt|All (*.*)|*.*||". A text
/// with both "(" and ")" is shown as it stands, to any other the pattern is added; a last text without a
/// pattern is left out. `caminhoInicial` is the folder to start in, or a path that is proposed; `titulo` the
/// caption, "" for the toolkit's own.
///
/// Gives RZ_FILE_DIALOG_CHOSEN with the path in `caminho`, its separators all "\", or
/// RZ_FILE_DIALOG_CANCELLED with "" there. A unit of the path that code page 1252 lacks arrives as "?": such
/// a file can't be opened by the path.
///
/// Two lines go to the log of the active document: what is asked, and what was answered. Main thread.
LM_COMMONMFC_API int RZFileDialog(RZString& caminho, bool abrir, RZString filtro, RZString caminhoInicial,
                                  RZString titulo);
