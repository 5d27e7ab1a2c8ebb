// SPDX-License-Identifier: MIT
// CEdit: a field for one line of text.
//
//     CEdit* edit = new CEdit;
//     edit->Create(WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, rect, parent, 1021);
#pragma once

#include "framework/windows/cwnd.h"

/// Its parent hears EN_SETFOCUS, EN_KILLFOCUS and EN_CHANGE.
class LM_WINDOWS_API CEdit : public CWnd {
    LM_RUNTIME_CLASS(CEdit)
public:
    /// Makes the field in `parent`. False when a handler of WM_CREATE refuses.
    bool Create(DWORD style, const CRect& rect, CWnd* parent, int id);
    /// Selects from one place to another; (0, -1) selects all.
    void SetSel(int start, int end);
    /// Both places; the same when nothing is selected.
    void GetSel(int& start, int& end) const;
};
