// SPDX-License-Identifier: MIT
// The road from the toolkit's events to messages: one filter on every attached widget.
#pragma once

#include "messagecall.h"

#include <QObject>

class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;

namespace lm::windows {

class EventRoad : public QObject {
public:
    /// Starts and ends turning the events of a window into messages.
    static void listenTo(WindowBlock& block);
    static void leave(WindowBlock& block);

    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Swallows the input of windows below a disabled top level. Made at the first one.
void watchDisabledTopLevels();

/// The keyboard's part of the road.
namespace keys {

/// Each gives true when the event is dealt with.
bool press(WindowBlock& block, QKeyEvent& event);
/// A key in the open list of a combo box, which goes the box's way first. False when the list shall have it.
bool pressInList(WindowBlock& block, QKeyEvent& event);
bool commit(WindowBlock& block, QInputMethodEvent& event);
/// The default procedures of WM_KEYDOWN and WM_CHAR.
LRESULT defaultKeyDown(HWND window, WPARAM key);
LRESULT defaultChar(HWND window, WPARAM unit);

} // namespace keys

} // namespace lm::windows
