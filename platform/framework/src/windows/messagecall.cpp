// SPDX-License-Identifier: MIT
#include "messagecall.h"

#include "framework/values/exceptions.h"

#include <QtDebug>

#include <exception>
#include <utility>

namespace lm::windows {

namespace {

MessageCall* innermostCall = nullptr;
EventInHand* innermostEvent = nullptr;
FailureSink failureSink;

/// Runs `body` and tells what it raises. Gives whether it came to its end.
template<class Body>
bool contained(UINT message, Body body) {
    const QString place = QStringLiteral("message 0x%1: ").arg(message, 0, 16);
    try {
        body();
        return true;
    } catch (const CException& error) {
        tellFailure(place + error.description().toQString());
    } catch (const std::exception& error) {
        tellFailure(place + QString::fromUtf8(error.what()));
    } catch (...) {
        tellFailure(place + QStringLiteral("an exception of an unknown kind"));
    }
    return false;
}

} // namespace

void tellFailure(const QString& text) {
    if (const FailureSink sink = failureSink)
        sink(text);
    else
        qWarning("%s", qUtf8Printable(text));
}

FailureSink setFailureSink(FailureSink sink) {
    return std::exchange(failureSink, std::move(sink));
}

MessageCall::MessageCall(HWND to, UINT number, WPARAM first, LPARAM second, bool preview)
    : window(to), message(number), wParam(first), lParam(second), isPreview(preview),
      m_outer(std::exchange(innermostCall, this)) {}

MessageCall::~MessageCall() {
    innermostCall = m_outer;
}

MessageCall* MessageCall::inHand() {
    return innermostCall;
}

LRESULT MessageCall::send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!WindowBlock::isAlive(window)) return 0;
    const MessageCall call(window, message, wParam, lParam);
    LRESULT result = 0;
    const bool isDone =
        contained(message, [&] { result = window->object()->WindowProc(message, wParam, lParam); });
    if (isDone) return result;
    return message == WM_CREATE ? -1 : 0;
}

bool MessageCall::preview(CWnd& object, MSG& message) {
    const MessageCall call(message.hwnd, message.message, message.wParam, message.lParam, true);
    bool isTaken = false;
    contained(message.message, [&] { isTaken = object.PreTranslateMessage(&message); });
    return isTaken;
}

LRESULT MessageCall::runDefault() {
    const MessageCall* const call = innermostCall;
    if (call == nullptr || !WindowBlock::isAlive(call->window)) return 0;
    if (call->isPreview) {
        // The handler takes the key's place in the window before the window was asked: the event goes to it
        // as it is.
        EventInHand* const event = innermostEvent;
        return event != nullptr && event->window() == call->window && !event->isDelivered() &&
               event->deliverNow();
    }
    return call->window->procedure(call->window, call->message, call->wParam, call->lParam);
}

EventInHand::EventInHand(HWND window, QEvent& event, UINT belongsTo, bool passesOn)
    : message(belongsTo), m_window(window), m_event(event), m_passesOn(passesOn),
      m_outer(std::exchange(innermostEvent, this)) {}

EventInHand::~EventInHand() {
    innermostEvent = m_outer;
}

EventInHand* EventInHand::innermost() {
    return innermostEvent;
}

bool EventInHand::deliver(HWND window, UINT message) {
    EventInHand* const event = innermostEvent;
    if (event == nullptr || event->m_window != window || event->message != message || event->m_isDelivered)
        return false;
    return event->deliverNow();
}

bool EventInHand::deliverNow() {
    m_isDelivered = true;
    if (m_passesOn) return true;
    QWidget* const widget = m_window->widget();
    // Not by the application, which would ask the filter again.
    return widget != nullptr && static_cast<QObject*>(widget)->event(&m_event);
}

} // namespace lm::windows
