// SPDX-License-Identifier: MIT
// The message in hand and the event in hand: two stacks. A message knows the event that it was made from by
// standing above it.
#pragma once

#include "windowblock.h"

#include <QEvent>

namespace lm::windows {

/// One message on its way through a window's object. The calls nest, and the innermost is what Default
/// answers.
struct MessageCall {
    MessageCall(HWND window, UINT message, WPARAM wParam, LPARAM lParam, bool isPreview = false);
    ~MessageCall();
    MessageCall(const MessageCall&) = delete;
    MessageCall& operator=(const MessageCall&) = delete;

    static MessageCall* inHand();

    /// Sends a message: 0 for a dead window. An exception ends here; see setFailureSink.
    static LRESULT send(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    /// Offers a key to PreTranslateMessage of one object. False when it raised.
    static bool preview(CWnd& object, MSG& message);
    /// The default procedure for the message in hand; 0 without one.
    static LRESULT runDefault();

    HWND window;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    /// PreTranslateMessage has it: the window itself hasn't yet.
    bool isPreview;

private:
    MessageCall* m_outer;
};

/// One event of the toolkit on its way to a widget. Its message's default procedure delivers it, once.
class EventInHand {
public:
    /// With `passesOn` the event isn't handed over at once but goes on by itself afterwards, as whoever
    /// filters it sees by isDelivered.
    EventInHand(HWND window, QEvent& event, UINT message, bool passesOn = false);
    ~EventInHand();
    EventInHand(const EventInHand&) = delete;
    EventInHand& operator=(const EventInHand&) = delete;

    static EventInHand* innermost();
    /// Hands the innermost event to the widget if it is one of this window and message and wasn't delivered
    /// yet. Gives what the widget answered; false if there was nothing to deliver.
    static bool deliver(HWND window, UINT message);

    HWND window() const { return m_window; }
    QEvent& event() const { return m_event; }
    bool isDelivered() const { return m_isDelivered; }
    /// Hands it to the widget now, whatever the message.
    bool deliverNow();
    /// The message that delivers it.
    UINT message;

private:
    HWND m_window;
    QEvent& m_event;
    bool m_isDelivered = false;
    bool m_passesOn;
    EventInHand* m_outer;
};

/// What a failure at a message is told as.
void tellFailure(const QString& text);

} // namespace lm::windows
