// SPDX-License-Identifier: MIT
#include "framework/windows/cedit.h"

#include "messagecall.h"

#include <QLineEdit>

LM_RUNTIME_CLASS_BODY(CEdit, CWnd)

namespace {

class EditWidget : public QLineEdit {
public:
    ~EditWidget() override { lm::windows::endWindowOf(*this); }
};

} // namespace

bool CEdit::Create(DWORD style, const CRect& rect, CWnd* parent, int id) {
    auto* const edit = new EditWidget;
    edit->setFrame((style & WS_BORDER) != 0);
    edit->setTextMargins(0, 0, 0, 0);
    const HWND handle = FwHandleOf(edit);
    handle->procedure = &lm::windows::editProcedure;
    QObject::connect(edit, &QLineEdit::textChanged, handle, [handle] {
        if (IsWindow(handle)) lm::windows::notifyParent(handle, EN_CHANGE);
    });
    return createWindow(edit, style, rect, parent, id);
}

void CEdit::SetSel(int start, int end) {
    auto* const edit = qobject_cast<QLineEdit*>(widget());
    if (edit == nullptr) return;
    const int length = static_cast<int>(edit->text().size());
    const int last = end < 0 ? length : end;
    edit->setSelection(start, last - start);
}

void CEdit::GetSel(int& start, int& end) const {
    const auto* const edit = qobject_cast<const QLineEdit*>(widget());
    start = end = edit != nullptr ? edit->cursorPosition() : 0;
    if (edit == nullptr || !edit->hasSelectedText()) return;
    start = edit->selectionStart();
    end = edit->selectionEnd();
}

namespace lm::windows {

LRESULT editProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = [&] {
        // The toolkit gives the focus before the press; whoever had it shall hear of the loss inside this.
        if (message == WM_LBUTTONDOWN) window->object()->SetFocus();
        return WindowBlock::isAlive(window) ? plainProcedure(window, message, wParam, lParam) : 0;
    }();
    if (!IsWindow(window)) return result;
    if (message == WM_SETFOCUS) notifyParent(window, EN_SETFOCUS);
    if (message == WM_KILLFOCUS) notifyParent(window, EN_KILLFOCUS);
    return result;
}

} // namespace lm::windows
