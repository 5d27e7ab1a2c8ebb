// SPDX-License-Identifier: MIT
#include "framework/windows/ccombobox.h"

#include "comboboxwidget.h"
#include "messagecall.h"

#include <algorithm>

LM_RUNTIME_CLASS_BODY(CComboBox, CWnd)

using lm::windows::ComboBoxWidget;

namespace {

ComboBoxWidget* boxOf(const CComboBox& box) {
    return dynamic_cast<ComboBoxWidget*>(box.widget());
}

} // namespace

bool CComboBox::Create(DWORD style, const CRect& rect, CWnd* parent, int id) {
    auto* const box = new ComboBoxWidget(style);
    FwHandleOf(box)->procedure = &lm::windows::comboProcedure;
    return createWindow(box, style, rect, parent, id);
}

int CComboBox::AddString(const CString& text) {
    return InsertString(GetCount(), text);
}

int CComboBox::InsertString(int index, const CString& text) {
    ComboBoxWidget* const box = boxOf(*this);
    if (box == nullptr || index < 0 || index > box->count()) return -1;
    // The toolkit selects the first entry that comes into an empty box, and clears what was typed.
    const bool hadNone = box->currentIndex() < 0;
    const QString typed = box->isEditable() ? box->currentText() : QString();
    box->insertItem(index, text.toQString(), QVariant::fromValue<qulonglong>(0));
    if (hadNone) {
        box->setCurrentIndex(-1);
        if (box->isEditable()) box->setEditText(typed);
    }
    return index;
}

int CComboBox::DeleteString(int index) {
    ComboBoxWidget* const box = boxOf(*this);
    if (box == nullptr || index < 0 || index >= box->count()) return -1;
    // The toolkit would select the entry beside one that goes.
    const bool wasSelected = box->currentIndex() == index;
    box->removeItem(index);
    if (wasSelected) box->setCurrentIndex(-1);
    return box->count();
}

void CComboBox::ResetContent() {
    if (ComboBoxWidget* const box = boxOf(*this)) box->clear();
}

int CComboBox::GetCount() const {
    const ComboBoxWidget* const box = boxOf(*this);
    return box != nullptr ? box->count() : 0;
}

int CComboBox::GetCurSel() const {
    const ComboBoxWidget* const box = boxOf(*this);
    return box != nullptr && !box->wasTyped() ? box->currentIndex() : -1;
}

int CComboBox::SetCurSel(int index) {
    ComboBoxWidget* const box = boxOf(*this);
    if (box == nullptr) return -1;
    const bool isEntry = index >= 0 && index < box->count();
    box->select(isEntry ? index : -1);
    return isEntry ? index : -1;
}

int CComboBox::FindStringExact(int after, const CString& text) const {
    const int count = GetCount();
    for (int step = 1; step <= count; ++step) {
        const int index = (std::clamp(after, -1, count - 1) + step) % count;
        if (GetLBText(index).CompareNoCase(text) == 0) return index;
    }
    return -1;
}

CString CComboBox::GetLBText(int index) const {
    const ComboBoxWidget* const box = boxOf(*this);
    return box != nullptr ? CString(box->itemText(index)) : CString();
}

int CComboBox::SetItemData(int index, std::uintptr_t data) {
    ComboBoxWidget* const box = boxOf(*this);
    if (box == nullptr || index < 0 || index >= box->count()) return -1;
    box->setItemData(index, QVariant::fromValue<qulonglong>(data));
    return index;
}

std::uintptr_t CComboBox::GetItemData(int index) const {
    const ComboBoxWidget* const box = boxOf(*this);
    if (box == nullptr || index < 0 || index >= box->count()) return static_cast<std::uintptr_t>(-1);
    return box->itemData(index).toULongLong();
}

void CComboBox::LimitText(int units) {
    if (ComboBoxWidget* const box = boxOf(*this)) box->limitTyping(units);
}

void CComboBox::SetEditSel(int start, int end) {
    ComboBoxWidget* const box = boxOf(*this);
    if (box == nullptr || box->lineEdit() == nullptr) return;
    const int last = end < 0 ? static_cast<int>(box->currentText().size()) : end;
    box->lineEdit()->setSelection(start, last - start);
}

namespace lm::windows {

LRESULT comboProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_LBUTTONDOWN) window->object()->SetFocus();
    const LRESULT result = WindowBlock::isAlive(window) ? plainProcedure(window, message, wParam, lParam) : 0;
    if (!IsWindow(window)) return result;
    if (message == WM_SETFOCUS) notifyParent(window, CBN_SETFOCUS);
    if (message == WM_KILLFOCUS) notifyParent(window, CBN_KILLFOCUS);
    return result;
}

} // namespace lm::windows
