// SPDX-License-Identifier: MIT
// What the framework keeps for one widget: whose window it is, its number, its style, and how it acts by
// itself.
#pragma once

#include "framework/windows/cwnd.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace lm::windows {

/// What the windows of one kind do by themselves with a message. `plainProcedure` hands the event on to the
/// widget; the kinds of the toolkit's controls add what their parents are told.
using DefaultProcedure = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

LRESULT plainProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT editProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT comboProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Tells the parent of a control something, as a WM_COMMAND.
void notifyParent(HWND control, UINT code);
/// For the destructors of the framework's own widgets: ends the window while the widget is whole.
void endWindowOf(QWidget& widget);

/// The block dies with its widget, whose child it is. A window that is destroyed leaves the table of living
/// windows at once, and its widget goes with the next turn of the event loop.
class WindowBlock : public QObject {
public:
    /// The block of a widget, made at need; null for null. Main thread.
    static WindowBlock* of(QWidget* widget);
    /// The block that a widget has, or null.
    static WindowBlock* find(const QWidget* widget);
    static bool isAlive(const WindowBlock* block);
    ~WindowBlock() override;

    /// Null once the widget is being destroyed.
    QWidget* widget() const { return m_widget; }
    /// The attached object, or null.
    CWnd* owner() const { return m_owner; }
    /// The attached object, else one that the block keeps.
    CWnd* object();
    /// Attaches and starts to hear of the widget's events.
    void attach(CWnd& owner);
    void detach();

    /// How a window comes to its end.
    enum class End {
        byProgram,   ///< the widget goes with the next turn of the event loop
        withWidget,  ///< the widget's own destructor runs; it and its children are still whole
        afterWidget, ///< the widget is gone
    };
    /// Ends the window; see CWnd::DestroyWindow.
    void destroy(End how = End::byProgram);

    DefaultProcedure procedure = &plainProcedure;
    int id = 0;
    DWORD style = 0;          ///< bits that the widget has no place for
    bool destroying = false;  ///< no event becomes a message any more
    bool hasFocus = false;    ///< WM_SETFOCUS was sent, and no WM_KILLFOCUS since
    bool tracksLeave = false; ///< the next Leave becomes WM_MOUSELEAVE
    bool ownsKeys = false;    ///< shortcuts of the host don't take keys from this window
    bool blocked = false;     ///< a disabled top level

private:
    explicit WindowBlock(QWidget& widget);
    void giveFocusToParent();
    void destroyChildren();
    void leave();

    QPointer<QWidget> m_widget;
    CWnd* m_owner = nullptr;
    std::unique_ptr<CWnd> m_temporary;
};

/// The window whose inside a child lies in: that of a widget that only scrolls another is the other's.
QWidget* windowWidgetOf(QWidget* widget);
/// The window above, null for a top level.
WindowBlock* parentOf(const WindowBlock& block);

} // namespace lm::windows
