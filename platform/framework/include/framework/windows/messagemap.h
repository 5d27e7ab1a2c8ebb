// SPDX-License-Identifier: MIT
// Message maps: which handler of a window class takes which message.
//
//     const MessageMap* Editor::GetMessageMap() const { return map(); }
//     const MessageMap* Editor::map() {
//         static const MessageMap table(CEdit::map(), {
//             lm::windows::onMessage<Editor>(WM_CHAR, [](Editor& editor, WPARAM unit, LPARAM) -> LRESULT {
//                 editor.OnChar(unsigned(unit), 1, 0);
//                 return 0;
//             }),
//             lm::windows::onReflected<Editor>(EN_CHANGE, [](Editor& editor) { editor.OnChange(); }),
//         });
//         return &table;
//     }
//
// The table is local to the function, so that it is made at its first use: registered messages have their
// numbers by then. The handlers may be protected, since the table stands inside the class.
#pragma once

#include "framework/windows/messages.h"

#include <functional>
#include <initializer_list>
#include <vector>

class CWnd;

namespace lm::windows {

/// What takes a message in hand: true when it is taken, with the answer in `result`.
using MessageThunk = std::function<bool(CWnd& window, WPARAM wParam, LPARAM lParam, LRESULT& result)>;

/// One row of a message map.
struct MessageEntry {
    enum Kind {
        kMessage,          ///< a message of that number
        kControl,          ///< code of a control with that id, in its parent
        kReflectedControl, ///< code of a control, in the control itself
        kReflectedNotify,  ///< code of a WM_NOTIFY, in the control itself
        kCommand,          ///< command of a menu
    };
    Kind kind = kMessage;
    UINT number = 0; ///< message, or code
    UINT id = 0;     ///< control or command
    MessageThunk thunk;
};

/// The rows of one class, and those of the class above it.
class LM_WINDOWS_API MessageMap {
public:
    MessageMap(const MessageMap* base, std::initializer_list<MessageEntry> entries)
        : m_base(base), m_entries(entries) {}

    /// The first row that fits, from this class up to the root; null for none. Rows that don't care for an id
    /// are found under every id.
    const MessageEntry* find(MessageEntry::Kind kind, UINT number, UINT id = 0) const;

private:
    const MessageMap* m_base;
    std::vector<MessageEntry> m_entries;
};

/// A message: `handler(window, wParam, lParam)` gives the answer.
template<class Window, class Handler>
MessageEntry onMessage(UINT message, Handler handler) {
    return {MessageEntry::kMessage, message, 0,
            [handler](CWnd& window, WPARAM wParam, LPARAM lParam, LRESULT& result) {
                result = handler(static_cast<Window&>(window), wParam, lParam);
                return true;
            }};
}

/// A notification of the control `id`, in its parent: `handler(window)`.
template<class Window, class Handler>
MessageEntry onControl(UINT code, UINT id, Handler handler) {
    return {MessageEntry::kControl, code, id, [handler](CWnd& window, WPARAM, LPARAM, LRESULT&) {
                handler(static_cast<Window&>(window));
                return true;
            }};
}

/// A notification that the control handles itself: `handler(window)`; its parent doesn't see it.
template<class Window, class Handler>
MessageEntry onReflected(UINT code, Handler handler) {
    return {MessageEntry::kReflectedControl, code, 0, [handler](CWnd& window, WPARAM, LPARAM, LRESULT&) {
                handler(static_cast<Window&>(window));
                return true;
            }};
}

/// The same; the parent sees it too when the handler gives false.
template<class Window, class Handler>
MessageEntry onReflectedEx(UINT code, Handler handler) {
    return {MessageEntry::kReflectedControl, code, 0, [handler](CWnd& window, WPARAM, LPARAM, LRESULT&) {
                return handler(static_cast<Window&>(window));
            }};
}

/// A WM_NOTIFY that the control handles itself: `handler(window, header, result)`.
template<class Window, class Handler>
MessageEntry onReflectedNotify(int code, Handler handler) {
    return {MessageEntry::kReflectedNotify, static_cast<UINT>(code), 0,
            [handler](CWnd& window, WPARAM, LPARAM header, LRESULT& result) {
                handler(static_cast<Window&>(window), reinterpret_cast<NMHDR*>(header), result);
                return true;
            }};
}

/// A command of a menu: `handler(window)`.
template<class Window, class Handler>
MessageEntry onCommand(UINT id, Handler handler) {
    return {MessageEntry::kCommand, 0, id, [handler](CWnd& window, WPARAM, LPARAM, LRESULT&) {
                handler(static_cast<Window&>(window));
                return true;
            }};
}

} // namespace lm::windows
