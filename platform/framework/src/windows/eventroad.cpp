// SPDX-License-Identifier: MIT
#include "eventroad.h"

#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace lm::windows {

namespace {

EventRoad& road() {
    static auto& filter = *new EventRoad;
    return filter;
}

/// Sends the message of an event. What the default procedure didn't hand to the widget ends here.
bool sendFor(WindowBlock& block, QEvent& event, UINT message, WPARAM wParam, LPARAM lParam) {
    const EventInHand inHand(&block, event, message);
    MessageCall::send(&block, message, wParam, lParam);
    if (!inHand.isDelivered()) event.accept();
    return true;
}

LPARAM pointOf(QPointF position) {
    const QPoint point = position.toPoint();
    return MAKELPARAM(point.x(), point.y());
}

/// The keys and buttons that are held, as a mouse message has them.
WPARAM heldOf(const QMouseEvent& event) {
    WPARAM held = 0;
    if (event.buttons() & Qt::LeftButton) held |= 1;
    if (event.buttons() & Qt::RightButton) held |= 2;
    if (event.modifiers() & Qt::ShiftModifier) held |= 4;
    if (event.modifiers() & Qt::ControlModifier) held |= 8;
    if (event.buttons() & Qt::MiddleButton) held |= 16;
    return held;
}

bool mouse(WindowBlock& block, QMouseEvent& event, UINT message) {
    if (event.button() != Qt::LeftButton) return false;
    return sendFor(block, event, message, heldOf(event), pointOf(event.position()));
}

bool mouseMove(WindowBlock& block, QMouseEvent& event) {
    const EventInHand inHand(&block, event, WM_MOUSEMOVE);
    MessageCall::send(&block, WM_SETCURSOR, reinterpret_cast<WPARAM>(&block), MAKELPARAM(1, WM_MOUSEMOVE));
    MessageCall::send(&block, WM_MOUSEMOVE, heldOf(event), pointOf(event.position()));
    if (!inHand.isDelivered()) event.accept();
    return true;
}

/// Whether the widget lies in the popup of `box`. The chain goes past the border of the popup, where
/// QWidget::isAncestorOf stops.
bool isInPopupOf(const QWidget& box, const QWidget* widget) {
    for (; widget != nullptr; widget = widget->parentWidget())
        if (widget == &box) return true;
    return false;
}

bool focusIn(WindowBlock& block, QFocusEvent& event) {
    if (event.reason() == Qt::PopupFocusReason) return false;
    // A dialog that shows tells its focus child of the focus while another window still has it.
    if (windowWidgetOf(QApplication::focusWidget()) != block.widget()) return false;
    block.hasFocus = true;
    return sendFor(block, event, WM_SETFOCUS, 0, 0);
}

bool focusOut(WindowBlock& block, QFocusEvent& event) {
    if (event.reason() == Qt::PopupFocusReason) return false;
    QWidget* const winner = QApplication::focusWidget();
    // The list of the box's own popup: for whoever wrote the controls that is the box itself. The widget
    // mustn't hear of it either, since it would drop its selection.
    if (winner != nullptr && winner != block.widget() &&
        qobject_cast<QComboBox*>(block.widget()) != nullptr && isInPopupOf(*block.widget(), winner))
        return true;
    // The toolkit tells a window that was passed over of a loss; it never had the focus.
    if (!block.hasFocus) return false;
    block.hasFocus = false;
    return sendFor(block, event, WM_KILLFOCUS, reinterpret_cast<WPARAM>(WindowBlock::of(winner)), 0);
}

bool leaveOf(WindowBlock& block, QEvent& event) {
    if (!block.tracksLeave) return false;
    block.tracksLeave = false;
    return sendFor(block, event, WM_MOUSELEAVE, 0, 0);
}

bool wheel(WindowBlock& block, QWheelEvent& event) {
    const WPARAM turned = MAKEWPARAM(0, static_cast<unsigned>(event.angleDelta().y()));
    return sendFor(block, event, WM_MOUSEWHEEL, turned, pointOf(event.globalPosition()));
}

bool dispatch(WindowBlock& block, QEvent& event) {
    switch (event.type()) {
    case QEvent::FocusIn:
        return focusIn(block, static_cast<QFocusEvent&>(event));
    case QEvent::FocusOut:
        return focusOut(block, static_cast<QFocusEvent&>(event));
    case QEvent::KeyPress:
        return keys::press(block, static_cast<QKeyEvent&>(event));
    case QEvent::InputMethod:
        return keys::commit(block, static_cast<QInputMethodEvent&>(event));
    case QEvent::MouseButtonPress:
        return mouse(block, static_cast<QMouseEvent&>(event), WM_LBUTTONDOWN);
    case QEvent::MouseButtonRelease:
        return mouse(block, static_cast<QMouseEvent&>(event), WM_LBUTTONUP);
    case QEvent::MouseButtonDblClick:
        return mouse(block, static_cast<QMouseEvent&>(event), WM_LBUTTONDBLCLK);
    case QEvent::MouseMove:
        return mouseMove(block, static_cast<QMouseEvent&>(event));
    case QEvent::Leave:
        return leaveOf(block, event);
    case QEvent::Wheel:
        return wheel(block, static_cast<QWheelEvent&>(event));
    case QEvent::Paint:
        return sendFor(block, event, WM_PAINT, 0, 0);
    case QEvent::ShortcutOverride:
        // An accepted override comes back as a key press instead of starting a shortcut of the host.
        if (block.ownsKeys) event.accept();
        return block.ownsKeys;
    default:
        return false;
    }
}

/// An application-wide filter: what a disabled top level's windows don't get.
class InputBlocker : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::Wheel:
            break;
        case QEvent::Close:
            if (event->spontaneous()) break;
            return false;
        default:
            return false;
        }
        const auto* const widget = qobject_cast<QWidget*>(watched);
        if (widget == nullptr) return false;
        const WindowBlock* const top = WindowBlock::find(widget->window());
        if (top == nullptr || !top->blocked) return false;
        event->setAccepted(event->type() != QEvent::Close);
        return true;
    }
};

} // namespace

void watchDisabledTopLevels() {
    static QPointer<InputBlocker> blocker;
    if (blocker != nullptr) return;
    blocker = new InputBlocker;
    blocker->setParent(qApp);
    qApp->installEventFilter(blocker);
}

void EventRoad::listenTo(WindowBlock& block) {
    block.widget()->setMouseTracking(true);
    block.widget()->installEventFilter(&road());
}

void EventRoad::leave(WindowBlock& block) {
    block.widget()->removeEventFilter(&road());
}

bool EventRoad::eventFilter(QObject* watched, QEvent* event) {
    auto* const widget = qobject_cast<QWidget*>(watched);
    WindowBlock* const block = widget != nullptr ? WindowBlock::find(widget) : nullptr;
    if (block == nullptr || block->owner() == nullptr || block->destroying) return false;
    return dispatch(*block, *event);
}

} // namespace lm::windows
