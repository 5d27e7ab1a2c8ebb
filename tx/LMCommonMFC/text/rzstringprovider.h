// SPDX-License-Identifier: MIT
// RZStringProvider: texts of the system and of windows as RZString.
//
//     const RZString name = RZStringProvider::getDlgItemText(dialog, IDC_NAME);
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include "framework/windows/types.h"

class CComboBox;

/// Never an object. Nothing here raises; what isn't there is the empty text. The window functions belong to
/// the thread of the windows.
class LM_COMMONMFC_API RZStringProvider {
public:
    /// The folder that relative paths start in; empty when it has gone.
    static RZString getCurrentDirectory();
    /// The folders of the user's desktop and documents, as the system names them, whether they exist or not.
    static RZString getDesktopFolder();
    static RZString getMyDocumentsFolder();
    /// The text of a window, and of the item `id` of a dialog; see CWnd::GetWindowText.
    static RZString getWindowText(HWND window);
    static RZString getDlgItemText(HWND window, int id);
    /// The text of the row `index` of a combo box. `combo` must not be null.
    static RZString getLBText(CComboBox* combo, int index);

private:
    RZStringProvider() = default;
};
