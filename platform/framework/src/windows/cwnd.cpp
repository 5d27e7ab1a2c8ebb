// SPDX-License-Identifier: MIT
#include "framework/windows/cwnd.h"

#include "eventroad.h"
#include "messagecall.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

LM_RUNTIME_CLASS_BODY(CWnd, CObject)

using lm::windows::EventInHand;
using lm::windows::MessageCall;
using lm::windows::MessageEntry;
using lm::windows::MessageMap;
using lm::windows::WindowBlock;

namespace {

QPointer<WindowBlock> captured;
thread_local CWnd* mainWindowOfThread = nullptr;

/// The window of a control, out of the second parameter of a WM_COMMAND.
HWND controlOf(LPARAM parameter) {
    const HWND control = reinterpret_cast<HWND>(parameter);
    return IsWindow(control) ? control : nullptr;
}

/// The inside of a window, where its coordinates start.
QWidget* insideOf(QWidget* widget) {
    auto* const area = qobject_cast<QAbstractScrollArea*>(widget);
    return area != nullptr ? area->viewport() : widget;
}

/// The windows that share a parent, in the order in which they were made.
QList<QWidget*> siblingsOf(const QWidget& widget) {
    QList<QWidget*> siblings;
    if (widget.parentWidget() == nullptr) return siblings;
    for (QObject* const child : widget.parentWidget()->children()) {
        auto* const sibling = qobject_cast<QWidget*>(child);
        if (sibling == nullptr || sibling->isWindow() || sibling->property("fwOverlay").toBool()) continue;
        const WindowBlock* const block = WindowBlock::find(sibling);
        if (block == nullptr || !block->destroying) siblings.push_back(sibling);
    }
    return siblings;
}

/// The living window with that id among the widgets below: those right below first.
WindowBlock* childWithId(QWidget* area, int id) {
    QList<QWidget*> deeper;
    for (QObject* const child : area->children()) {
        auto* const widget = qobject_cast<QWidget*>(child);
        if (widget == nullptr || widget->isWindow()) continue;
        WindowBlock* const block = WindowBlock::find(widget);
        if (block != nullptr ? WindowBlock::isAlive(block) && !block->destroying && block->id == id
                             : widget->property("fwId").isValid() && widget->property("fwId").toInt() == id)
            return WindowBlock::of(widget);
        deeper.push_back(widget);
    }
    for (QWidget* const widget : std::as_const(deeper))
        if (WindowBlock* const found = childWithId(widget, id)) return found;
    return nullptr;
}

} // namespace

bool IsWindow(HWND window) {
    return WindowBlock::isAlive(window) && !window->destroying;
}

HWND FwHandleOf(QWidget* widget) {
    return WindowBlock::of(widget);
}

CWnd::~CWnd() {
    if (m_hWnd == nullptr) return;
    // An object that the framework keeps for a window doesn't own it. The derived parts of this one are gone,
    // so nothing may be sent through it.
    WindowBlock* const block = m_hWnd;
    if (!WindowBlock::isAlive(block) || block->owner() != this) return;
    block->detach();
    block->destroy();
}

CWnd* CWnd::FromHandle(HWND window) {
    return WindowBlock::isAlive(window) ? window->object() : nullptr;
}

CWnd* CWnd::FromHandlePermanent(HWND window) {
    return WindowBlock::isAlive(window) ? window->owner() : nullptr;
}

QWidget* CWnd::widget() const {
    return WindowBlock::isAlive(m_hWnd) ? m_hWnd->widget() : nullptr;
}

bool CWnd::Attach(HWND window) {
    if (!IsWindow(window) || m_hWnd != nullptr || (window->owner() != nullptr && window->owner() != this))
        return false;
    window->attach(*this);
    return true;
}

HWND CWnd::Detach() {
    WindowBlock* const block = m_hWnd;
    if (WindowBlock::isAlive(block) && block->owner() == this) block->detach();
    m_hWnd = nullptr;
    return block;
}

bool CWnd::SubclassDlgItem(int id, CWnd* parent) {
    CWnd* const item = parent != nullptr ? parent->GetDlgItem(id) : nullptr;
    if (item == nullptr) return false;
    return item == this || Attach(item->m_hWnd);
}

bool CWnd::DestroyWindow() {
    if (!IsWindow(m_hWnd)) return false;
    m_hWnd->destroy();
    return true;
}

void CWnd::PostNcDestroy() {}

CString CWnd::GetWindowText() const {
    const QWidget* const window = widget();
    if (window == nullptr) return CString();
    if (const auto* const edit = qobject_cast<const QLineEdit*>(window)) return CString(edit->text());
    if (const auto* const box = qobject_cast<const QComboBox*>(window)) return CString(box->currentText());
    if (const auto* const button = qobject_cast<const QAbstractButton*>(window))
        return CString(button->text());
    if (const auto* const label = qobject_cast<const QLabel*>(window)) return CString(label->text());
    return window->isWindow() ? CString(window->windowTitle()) : CString();
}

void CWnd::SetWindowText(const CString& text) {
    QWidget* const window = widget();
    if (window == nullptr) return;
    if (auto* const edit = qobject_cast<QLineEdit*>(window))
        edit->setText(text.toQString());
    else if (auto* const box = qobject_cast<QComboBox*>(window))
        box->isEditable() ? box->setEditText(text.toQString()) : box->setCurrentText(text.toQString());
    else if (auto* const button = qobject_cast<QAbstractButton*>(window))
        button->setText(text.toQString());
    else if (auto* const label = qobject_cast<QLabel*>(window))
        label->setText(text.toQString());
    else if (window->isWindow())
        window->setWindowTitle(text.toQString());
}

CString CWnd::GetDlgItemText(int id) const {
    const CWnd* const item = GetDlgItem(id);
    return item != nullptr ? item->GetWindowText() : CString();
}

CWnd* CWnd::GetParent() const {
    if (!WindowBlock::isAlive(m_hWnd)) return nullptr;
    return FromHandle(parentOf(*m_hWnd));
}

CWnd* CWnd::GetDlgItem(int id) const {
    QWidget* const window = widget();
    return window != nullptr ? FromHandle(childWithId(insideOf(window), id)) : nullptr;
}

int CWnd::GetDlgCtrlID() const {
    return WindowBlock::isAlive(m_hWnd) ? m_hWnd->id : 0;
}

void CWnd::SetDlgCtrlID(int id) {
    if (WindowBlock::isAlive(m_hWnd)) m_hWnd->id = id;
}

CWnd* CWnd::GetWindow(UINT which) const {
    QWidget* const window = widget();
    if (window == nullptr) return nullptr;
    const QList<QWidget*> siblings = siblingsOf(*window);
    const qsizetype own = siblings.indexOf(window);
    qsizetype wanted = -1;
    switch (which) {
    case GW_HWNDFIRST:
        wanted = 0;
        break;
    case GW_HWNDLAST:
        wanted = siblings.size() - 1;
        break;
    case GW_HWNDNEXT:
        wanted = own + 1;
        break;
    case GW_HWNDPREV:
        wanted = own - 1;
        break;
    default:
        break;
    }
    if (wanted < 0 || wanted >= siblings.size()) return nullptr;
    return FromHandle(FwHandleOf(siblings[wanted]));
}

DWORD CWnd::GetStyle() const {
    const QWidget* const window = widget();
    if (window == nullptr) return 0;
    DWORD style = m_hWnd->style & ~(WS_TABSTOP | WS_VISIBLE | WS_DISABLED);
    if (window->focusPolicy() & Qt::TabFocus) style |= WS_TABSTOP;
    if (!window->isHidden()) style |= WS_VISIBLE;
    if (!IsWindowEnabled()) style |= WS_DISABLED;
    return style;
}

bool CWnd::ModifyStyle(DWORD remove, DWORD add) {
    QWidget* const window = widget();
    if (window == nullptr) return false;
    const DWORD before = GetStyle();
    const DWORD after = (before & ~remove) | add;
    m_hWnd->style = after;
    if ((before ^ after) & WS_TABSTOP)
        window->setFocusPolicy(after & WS_TABSTOP ? Qt::TabFocus : Qt::NoFocus);
    if ((before ^ after) & WS_VISIBLE) ShowWindow((after & WS_VISIBLE) != 0);
    if ((before ^ after) & WS_DISABLED) EnableWindow((after & WS_DISABLED) == 0);
    return before != after;
}

CWnd* CWnd::SetFocus() {
    CWnd* const before = GetFocus();
    QWidget* const window = widget();
    if (window == nullptr) return before;
    // While a drop-down is open the keyboard belongs to it, and its box would not hear of the loss.
    if (QWidget* const popup = QApplication::activePopupWidget()) {
        for (QWidget* above = popup->parentWidget(); above != nullptr; above = above->parentWidget())
            if (auto* const box = qobject_cast<QComboBox*>(above)) {
                box->hidePopup();
                break;
            }
    }
    const HWND handle = m_hWnd;
    if (!window->isActiveWindow()) window->window()->activateWindow();
    if (IsWindow(handle)) window->setFocus(Qt::OtherFocusReason);
    return before;
}

CWnd* CWnd::GetFocus() {
    return FromHandle(FwHandleOf(QApplication::focusWidget()));
}

bool CWnd::EnableWindow(bool enable) {
    QWidget* const window = widget();
    if (window == nullptr) return false;
    const bool wasDisabled = !IsWindowEnabled();
    if (window->isWindow()) {
        // The toolkit would disable all children with it, and give the keyboard away.
        m_hWnd->blocked = !enable;
        if (!enable) lm::windows::watchDisabledTopLevels();
        return wasDisabled;
    }
    // Else the toolkit gives the keyboard to the next window, which may be an editor that would end then.
    if (!enable && window->hasFocus()) window->clearFocus();
    if (IsWindow(m_hWnd)) window->setEnabled(enable);
    return wasDisabled;
}

bool CWnd::IsWindowEnabled() const {
    const QWidget* const window = widget();
    if (window == nullptr) return false;
    if (window->isWindow()) return !m_hWnd->blocked;
    return !window->testAttribute(Qt::WA_ForceDisabled);
}

bool CWnd::IsWindowVisible() const {
    const QWidget* const window = widget();
    return window != nullptr && window->isVisible();
}

void CWnd::ShowWindow(bool show) {
    QWidget* const window = widget();
    if (window == nullptr) return;
    const HWND handle = m_hWnd;
    // Hiding would give the keyboard to the next window.
    if (!show && window->hasFocus()) {
        if (CWnd* const parent = GetParent())
            parent->SetFocus();
        else
            window->clearFocus();
    }
    if (IsWindow(handle)) window->setVisible(show);
}

CRect CWnd::GetClientRect() const {
    QWidget* const window = widget();
    if (window == nullptr) return CRect();
    const QWidget* const inside = insideOf(window);
    return CRect(0, 0, inside->width(), inside->height());
}

CRect CWnd::GetWindowRect() const {
    const QWidget* const window = widget();
    if (window == nullptr) return CRect();
    if (window->isWindow()) return CRect(window->frameGeometry());
    return CRect(QRect(window->mapToGlobal(QPoint(0, 0)), window->size()));
}

void CWnd::ScreenToClient(CPoint* point) const {
    if (QWidget* const window = widget()) *point = CPoint(insideOf(window)->mapFromGlobal(point->toQPoint()));
}

void CWnd::ScreenToClient(CRect* rect) const {
    QWidget* const window = widget();
    if (window == nullptr) return;
    const QPoint origin = insideOf(window)->mapToGlobal(QPoint(0, 0));
    rect->OffsetRect(-origin.x(), -origin.y());
}

void CWnd::ClientToScreen(CPoint* point) const {
    if (QWidget* const window = widget()) *point = CPoint(insideOf(window)->mapToGlobal(point->toQPoint()));
}

void CWnd::ClientToScreen(CRect* rect) const {
    QWidget* const window = widget();
    if (window == nullptr) return;
    const QPoint origin = insideOf(window)->mapToGlobal(QPoint(0, 0));
    rect->OffsetRect(origin.x(), origin.y());
}

void CWnd::MoveWindow(const CRect& rect) {
    SetWindowPos(rect.left, rect.top, rect.Width(), rect.Height(), SWP_NOZORDER | SWP_NOACTIVATE);
}

void CWnd::SetWindowPos(int x, int y, int width, int height, UINT flags) {
    QWidget* const window = widget();
    if (window == nullptr) return;
    if (!(flags & SWP_NOSIZE)) {
        // A top level's size is told with its frame.
        const QSize frame =
            window->isWindow() ? window->frameGeometry().size() - window->size() : QSize(0, 0);
        window->resize(QSize(width, height) - frame);
    }
    if (!(flags & SWP_NOMOVE)) window->move(x, y);
}

CWnd* CWnd::SetCapture() {
    CWnd* const before = GetCapture();
    captured = m_hWnd;
    return before;
}

CWnd* CWnd::GetCapture() {
    return FromHandle(captured);
}

void ReleaseCapture() {
    captured = nullptr;
}

void CWnd::Invalidate() {
    if (QWidget* const window = widget()) insideOf(window)->update();
}

void CWnd::RedrawWindow() {
    Invalidate();
}

void CWnd::TrackMouseLeave() {
    if (WindowBlock::isAlive(m_hWnd)) m_hWnd->tracksLeave = true;
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return MessageCall::send(m_hWnd, message, wParam, lParam);
}

LRESULT SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return MessageCall::send(window, message, wParam, lParam);
}

bool CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (!IsWindow(m_hWnd)) return false;
    WindowBlock* const window = m_hWnd;
    QTimer::singleShot(0, window, [=] { MessageCall::send(window, message, wParam, lParam); });
    return true;
}

bool CWnd::PreTranslateMessage(MSG*) {
    return false;
}

const MessageMap* CWnd::map() {
    static const MessageMap root(nullptr, {});
    return &root;
}

const MessageMap* CWnd::GetMessageMap() const {
    return map();
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (message == WM_COMMAND && OnCommand(wParam, lParam)) return 1;
    if (message == WM_NOTIFY && OnNotify(wParam, lParam, &result)) return result;
    // No member may be touched after a handler: it may have deleted this object.
    if (const MessageEntry* const entry = GetMessageMap()->find(MessageEntry::kMessage, message)) {
        entry->thunk(*this, wParam, lParam, result);
        return result;
    }
    return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return WindowBlock::isAlive(m_hWnd) ? m_hWnd->procedure(m_hWnd, message, wParam, lParam) : 0;
}

LRESULT CWnd::Default() {
    return MessageCall::runDefault();
}

bool CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (const HWND control = controlOf(lParam)) {
        // The control may take its own notification; afterwards this window may be gone.
        const HWND self = m_hWnd;
        if (control->object()->OnChildNotify(WM_COMMAND, wParam, lParam, &result)) return true;
        if (!IsWindow(self)) return true;
        const MessageEntry* const entry =
            GetMessageMap()->find(MessageEntry::kControl, HIWORD(wParam), LOWORD(wParam));
        return entry != nullptr && entry->thunk(*this, wParam, lParam, result);
    }
    const MessageEntry* const entry = GetMessageMap()->find(MessageEntry::kCommand, 0, LOWORD(wParam));
    return entry != nullptr && entry->thunk(*this, wParam, lParam, result);
}

bool CWnd::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) {
    const auto* const header = reinterpret_cast<const NMHDR*>(lParam);
    if (header == nullptr || !IsWindow(header->hwndFrom)) return false;
    return header->hwndFrom->object()->OnChildNotify(WM_NOTIFY, wParam, lParam, result);
}

bool CWnd::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    const MessageEntry* entry = nullptr;
    if (message == WM_COMMAND) entry = GetMessageMap()->find(MessageEntry::kReflectedControl, HIWORD(wParam));
    if (message == WM_NOTIFY) {
        const int code = reinterpret_cast<const NMHDR*>(lParam)->code;
        entry = GetMessageMap()->find(MessageEntry::kReflectedNotify, static_cast<UINT>(code));
    }
    return entry != nullptr && entry->thunk(*this, wParam, lParam, *result);
}

QWidget* CWnd::childArea() const {
    QWidget* const window = widget();
    return window != nullptr ? insideOf(window) : nullptr;
}

bool CWnd::createWindow(QWidget* made, DWORD style, const CRect& rect, CWnd* parent, int id) {
    if (parent != nullptr && style & WS_CHILD) made->setParent(parent->childArea());
    WindowBlock* const block = WindowBlock::of(made);
    block->style = style;
    block->id = id;
    block->attach(*this);
    made->setFocusPolicy(style & WS_TABSTOP ? Qt::TabFocus : Qt::NoFocus);
    made->setGeometry(rect.toQRect());
    if (style & WS_DISABLED) EnableWindow(false);
    if (MessageCall::send(block, WM_CREATE, 0, 0) == -1) {
        if (IsWindow(block)) block->destroy();
        return false;
    }
    if (IsWindow(block) && style & WS_VISIBLE) made->show();
    return IsWindow(block);
}

namespace lm::windows {

CWnd* threadMainWindow() {
    return mainWindowOfThread;
}

void setThreadMainWindow(CWnd* window) {
    mainWindowOfThread = window;
}

LRESULT plainProcedure(HWND window, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_NCDESTROY: {
        CWnd* const owner = window->owner();
        window->detach();
        if (owner != nullptr) owner->PostNcDestroy();
        return 0;
    }
    case WM_KEYDOWN:
        return keys::defaultKeyDown(window, wParam);
    case WM_CHAR:
        return keys::defaultChar(window, wParam);
    default:
        return EventInHand::deliver(window, message);
    }
}

} // namespace lm::windows
