// SPDX-License-Identifier: MIT
// CComboBox: a field with a list of entries.
//
//     box.Create(WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST, rect, parent, 1020);
//     box.AddString(text);
//     box.SetCurSel(0);                             // tells nobody; a choice of the user is CBN_SELCHANGE
#pragma once

#include "framework/windows/cwnd.h"

/// Indices are from 0; -1 stands for none. Its parent hears CBN_SELCHANGE for a choice of the user,
/// CBN_EDITCHANGE for typing, CBN_DROPDOWN and CBN_CLOSEUP for the list, CBN_SETFOCUS and CBN_KILLFOCUS; an
/// open list is no loss of focus. Without a window every operation does nothing and gives -1, 0 or empty.
class LM_WINDOWS_API CComboBox : public CWnd {
    LM_RUNTIME_CLASS(CComboBox)
public:
    /// CBS_DROPDOWNLIST: a choice out of the list; CBS_DROPDOWN: typing too; CBS_SIMPLE: typing, and no list
    /// that opens. False when a handler of WM_CREATE refuses.
    bool Create(DWORD style, const CRect& rect, CWnd* parent, int id);

    /// Adds an entry at the end, or at `index`; gives where it stands, -1 for an index past the end. The
    /// selection stays with its entry, and no entry is selected by its coming.
    int AddString(const CString& text);
    int InsertString(int index, const CString& text);
    /// Gives how many remain; -1 for an index outside.
    int DeleteString(int index);
    void ResetContent();
    int GetCount() const;

    /// The selected entry. After typing none is selected until one is chosen again.
    int GetCurSel() const;
    /// Selects an entry, or none for -1 and for an index outside, which also gives -1.
    int SetCurSel(int index);
    /// The first entry behind `after` with that text, ignoring case; then from the start on.
    int FindStringExact(int after, const CString& text) const;
    /// The text of an entry; empty for an index outside.
    CString GetLBText(int index) const;
    void GetLBText(int index, CString& text) const { text = GetLBText(index); }

    /// A number that goes with an entry, 0 unless set. -1 for an index outside.
    int SetItemData(int index, std::uintptr_t data);
    std::uintptr_t GetItemData(int index) const;

    /// How many units may be typed; texts that are set may be longer, and typing never cuts one that was. 0
    /// for no limit.
    void LimitText(int units);
    /// Selects a part of the text in the field; (0, -1) selects all.
    void SetEditSel(int start, int end);
};
