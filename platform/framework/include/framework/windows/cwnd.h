// SPDX-License-Identifier: MIT
// CWnd: an object that answers the messages of one window of the toolkit.
//
//     class Editor : public CEdit { ... };          // a message map takes what the class is interested in
//     Editor* editor = new Editor;                  // deletes itself in PostNcDestroy
//     editor->Create(WS_CHILD | WS_VISIBLE, rect, list, 1021);
//
// A window is a widget with a block of the framework, its HWND. An object that is attached to it hears of
// every event as a message before the widget does; the default procedure, Default, hands the event on to the
// widget, so that a handler decides when, or whether, the widget acts on it. After a message was sent, a
// handler may have destroyed the window and deleted the object: keep the HWND over such a call and ask
// IsWindow.
//
// An exception out of a handler ends at the message: it goes to the failure sink, and the message answers 0,
// -1 for WM_CREATE. All of it belongs to the thread of the windows.
#pragma once

#include "framework/values/cstring.h"
#include "framework/values/object.h"
#include "framework/windows/messagemap.h"
#include "framework/windows/messages.h"

#include <QString>

#include <functional>

class QWidget;

/// Whether the window exists and isn't being destroyed.
LM_WINDOWS_API bool IsWindow(HWND window);

/// An object for a window.
class LM_WINDOWS_API CWnd : public CObject {
    LM_RUNTIME_CLASS(CWnd)
public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    /// Destroys the window of an object that still has one.
    ~CWnd() override;

    /// The object of a window: the one that is attached, else one that the framework keeps for as long as the
    /// window lives. Null for a window that doesn't exist.
    static CWnd* FromHandle(HWND window);
    /// The object that is attached, or null.
    static CWnd* FromHandlePermanent(HWND window);
    HWND GetSafeHwnd() const { return m_hWnd; }
    /// The widget of the window, null without one.
    QWidget* widget() const;

    /// Makes this the object of the window. False for a dead window, and for one that has another object.
    bool Attach(HWND window);
    /// Lets go of the window, which lives on; gives it.
    HWND Detach();
    /// Attaches to the child of `parent` with that id. True as well when this is the child's object already.
    bool SubclassDlgItem(int id, CWnd* parent);

    /// Sends WM_DESTROY, destroys the children, sends WM_NCDESTROY. A window that has the focus gives it to
    /// its parent first. False without a window. The object may be deleted when this returns.
    virtual bool DestroyWindow();
    /// Called last, when the window is gone and this object is detached. A class whose objects end with their
    /// windows deletes `this` here.
    virtual void PostNcDestroy();

    /// The text of the window: an edit's text, a combo box's current text, the text of a button or label, a
    /// top level's title; empty for others.
    CString GetWindowText() const;
    void GetWindowText(CString& text) const { text = GetWindowText(); }
    void SetWindowText(const CString& text);
    /// The text of the child with that id, empty for none.
    CString GetDlgItemText(int id) const;

    /// The window above, null for a top level. A widget that only scrolls another is left out.
    CWnd* GetParent() const;
    /// The child with that id, those right below first; null for none.
    CWnd* GetDlgItem(int id) const;
    int GetDlgCtrlID() const;
    void SetDlgCtrlID(int id);
    /// A sibling by one of the GW_ numbers, in the order in which they were made; null past the ends.
    CWnd* GetWindow(UINT which) const;
    /// The style bits; WS_TABSTOP, WS_VISIBLE and WS_DISABLED follow the widget.
    DWORD GetStyle() const;
    /// Takes bits out and puts bits in, with effect at once. True when that changed something.
    virtual bool ModifyStyle(DWORD remove, DWORD add);

    /// Gives this window the keyboard, and its top level the activation. Gives the window that had it, or
    /// null.
    CWnd* SetFocus();
    static CWnd* GetFocus();
    /// A top level that is disabled takes no input, nor do its children, which stay enabled themselves. Gives
    /// whether it was disabled before.
    bool EnableWindow(bool enable = true);
    /// The window's own state; that of the windows above doesn't count.
    bool IsWindowEnabled() const;
    bool IsWindowVisible() const;
    void ShowWindow(bool show);

    /// The inside of the window, from (0, 0).
    CRect GetClientRect() const;
    void GetClientRect(CRect* rect) const { *rect = GetClientRect(); }
    /// The window on the screen, a top level with its frame.
    CRect GetWindowRect() const;
    void GetWindowRect(CRect* rect) const { *rect = GetWindowRect(); }
    void ScreenToClient(CPoint* point) const;
    void ScreenToClient(CRect* rect) const;
    void ClientToScreen(CPoint* point) const;
    void ClientToScreen(CRect* rect) const;
    /// Places the window in its parent's inside, a top level on the screen.
    void MoveWindow(const CRect& rect);
    /// The same by parts; the order of windows never changes.
    void SetWindowPos(int x, int y, int width, int height, UINT flags);

    /// Notes this window as the one that gets the mouse; while a button is held that is so anyway.
    CWnd* SetCapture();
    static CWnd* GetCapture();
    void Invalidate();
    void RedrawWindow();
    /// Asks for one WM_MOUSELEAVE when the pointer leaves.
    void TrackMouseLeave();

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    /// Sends the message later, if the window still lives then. False without a window.
    bool PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

    /// Sees each key before the window does that has the focus, this one or one below. True ends it.
    virtual bool PreTranslateMessage(MSG* message);

    /// The rows of the class; see messagemap.h.
    virtual const lm::windows::MessageMap* GetMessageMap() const;
    static const lm::windows::MessageMap* map();

    HWND m_hWnd = nullptr;

protected:
    /// Answers a message: commands and notifications by OnCommand and OnNotify, others by the message map,
    /// the rest by the default procedure.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    /// What the window does with a message by itself.
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    /// The same for the message in hand, whichever window it went to; its event reaches the widget once.
    static LRESULT Default();

    /// A WM_COMMAND or WM_NOTIFY to this window. The control hears of it first; true when somebody took it.
    virtual bool OnCommand(WPARAM wParam, LPARAM lParam);
    virtual bool OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result);
    /// A message of this control to its parent, before the parent answers it. True takes it.
    virtual bool OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);

    /// The handlers that classes override or call; each runs the default procedure of the message in hand.
    void OnSetFocus(CWnd*) { Default(); }
    void OnKillFocus(CWnd*) { Default(); }
    void OnKeyDown(UINT, UINT, UINT) { Default(); }
    void OnChar(UINT, UINT, UINT) { Default(); }
    void OnPaint() { Default(); }
    void OnLButtonDown(UINT, CPoint) { Default(); }
    void OnLButtonUp(UINT, CPoint) { Default(); }
    void OnMouseMove(UINT, CPoint) { Default(); }
    void OnHScroll(UINT, UINT, CWnd*) { Default(); }
    void OnVScroll(UINT, UINT, CWnd*) { Default(); }
    bool OnMouseWheel(UINT, short, CPoint) { return Default() != 0; }
    bool OnSetCursor(CWnd*, UINT, UINT) { return Default() != 0; }
    void OnDestroy() { Default(); }
    void OnNcDestroy() { Default(); }

    /// Makes `widget` the window of this object, as a child of `parent` or a top level, and sends WM_CREATE.
    /// The widget is deleted and false given when the handler of that answers -1.
    bool createWindow(QWidget* widget, DWORD style, const CRect& rect, CWnd* parent, int id);
    /// The widget that children of this window are made in.
    virtual QWidget* childArea() const;

private:
    friend class lm::windows::WindowBlock;
    friend struct lm::windows::MessageCall;
};

/// The window of a widget; made at the first call, and null for null. A widget that only scrolls another
/// stands for that one.
LM_WINDOWS_API HWND FwHandleOf(QWidget* widget);
/// The window that a mouse capture was noted for loses it.
LM_WINDOWS_API void ReleaseCapture();
/// Whether a key is down, in the high bit, as the key event in hand has it; VK_SHIFT and VK_CONTROL alone.
LM_WINDOWS_API short GetKeyState(UINT key);
/// Queues the characters of a WM_KEYDOWN in hand; they follow as WM_CHAR.
LM_WINDOWS_API void TranslateMessage(const MSG* message);
/// Sends the message to its window.
LM_WINDOWS_API LRESULT DispatchMessage(const MSG* message);
LM_WINDOWS_API LRESULT SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

namespace lm::windows {

/// Where the text of an exception goes that ends at a message. The toolkit's warnings unless set.
using FailureSink = std::function<void(const QString& text)>;
LM_WINDOWS_API FailureSink setFailureSink(FailureSink sink);

/// The main window of the calling thread, as it was set there; null unless set.
LM_WINDOWS_API CWnd* threadMainWindow();
LM_WINDOWS_API void setThreadMainWindow(CWnd* window);

} // namespace lm::windows
