// SPDX-License-Identifier: MIT
// One key press becomes a WM_KEYDOWN and the WM_CHARs of its characters. Each message is offered to the
// objects from the window that has the keyboard up to its top level before it goes to the window, and the
// widget acts on the key once, whichever of the messages brings it there.
#include "eventroad.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>

#include <deque>

namespace lm::windows {

namespace {

/// The characters that wait, and the key event that is on its way; both nest with the events.
struct KeyRoad {
    KeyRoad(HWND to, const QKeyEvent* event) : window(to), press(event), m_outer(innermost) {
        innermost = this;
    }
    ~KeyRoad() { innermost = m_outer; }

    HWND window;
    const QKeyEvent* press; ///< null for the text of an input method
    std::deque<WPARAM> characters;
    static inline KeyRoad* innermost = nullptr;

private:
    KeyRoad* m_outer;
};

/// A key that has no number here. It must not be that of one that has, as a typed "&" would have it.
constexpr UINT kOtherKey = 0xE7;

UINT numberOf(int key) {
    switch (key) {
    case Qt::Key_Backspace:
        return VK_BACK;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return VK_TAB;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return VK_RETURN;
    case Qt::Key_Shift:
        return VK_SHIFT;
    case Qt::Key_Control:
        return VK_CONTROL;
    case Qt::Key_Escape:
        return VK_ESCAPE;
    case Qt::Key_Space:
        return 32;
    case Qt::Key_PageUp:
        return 33;
    case Qt::Key_PageDown:
        return 34;
    case Qt::Key_End:
        return 35;
    case Qt::Key_Home:
        return 36;
    case Qt::Key_Left:
        return VK_LEFT;
    case Qt::Key_Up:
        return VK_UP;
    case Qt::Key_Right:
        return VK_RIGHT;
    case Qt::Key_Down:
        return VK_DOWN;
    case Qt::Key_Insert:
        return 45;
    case Qt::Key_Delete:
        return VK_DELETE;
    default:
        break;
    }
    const bool isLetterOrDigit =
        (key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9);
    if (isLetterOrDigit) return static_cast<UINT>(key);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return static_cast<UINT>(key - Qt::Key_F1 + 112);
    return kOtherKey;
}

int toolkitKeyOf(WPARAM number) {
    switch (number) {
    case VK_BACK:
        return Qt::Key_Backspace;
    case VK_SHIFT:
        return Qt::Key_Shift;
    case VK_CONTROL:
        return Qt::Key_Control;
    case 33:
        return Qt::Key_PageUp;
    case 34:
        return Qt::Key_PageDown;
    case 35:
        return Qt::Key_End;
    case 36:
        return Qt::Key_Home;
    case VK_LEFT:
        return Qt::Key_Left;
    case VK_UP:
        return Qt::Key_Up;
    case VK_RIGHT:
        return Qt::Key_Right;
    case VK_DOWN:
        return Qt::Key_Down;
    case 45:
        return Qt::Key_Insert;
    case VK_DELETE:
        return Qt::Key_Delete;
    default:
        return number >= 112 && number < 136 ? Qt::Key_F1 + static_cast<int>(number) - 112
                                             : static_cast<int>(number);
    }
}

/// The characters that a key makes. Those with Ctrl are told by the key, since the text that comes with them
/// differs from platform to platform; Delete makes none, though some platforms say U+007F.
std::deque<WPARAM> charactersOf(const QKeyEvent& event) {
    if (event.modifiers() & Qt::AltModifier) return {};
    switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return {9};
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return {13};
    case Qt::Key_Escape:
        return {27};
    case Qt::Key_Backspace:
        return {8};
    case Qt::Key_Delete:
        return {};
    default:
        break;
    }
    if (event.modifiers() & Qt::ControlModifier && event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z)
        return {static_cast<WPARAM>(event.key() - Qt::Key_A + 1)};
    std::deque<WPARAM> units;
    for (const QChar unit : event.text())
        if (unit.unicode() >= 32 && unit.unicode() != 127) units.push_back(unit.unicode());
    return units;
}

/// Offers the message to the objects upward, and sends it when nobody takes it.
void route(MSG message) {
    for (WindowBlock* block = message.hwnd; block != nullptr;) {
        const QPointer<WindowBlock> guard(block);
        if (block->owner() != nullptr && MessageCall::preview(*block->owner(), message)) return;
        if (!WindowBlock::isAlive(message.hwnd) || !guard) return;
        block = parentOf(*block);
    }
    if (message.message == WM_KEYDOWN) TranslateMessage(&message);
    DispatchMessage(&message);
}

/// The characters that wait go the same way, for as long as the window lives.
void routeCharacters(KeyRoad& keyRoad) {
    while (!keyRoad.characters.empty() && WindowBlock::isAlive(keyRoad.window)) {
        const WPARAM unit = keyRoad.characters.front();
        keyRoad.characters.pop_front();
        route({keyRoad.window, WM_CHAR, unit, 1});
    }
}

/// The message of `window` that brings the event in hand to its widget.
bool isKeyInHand(HWND window) {
    const EventInHand* const event = EventInHand::innermost();
    return event != nullptr && event->window() == window && event->event().type() == QEvent::KeyPress;
}

LRESULT sendToWidget(HWND window, QKeyEvent event) {
    QWidget* const widget = window->widget();
    return widget != nullptr && static_cast<QObject*>(widget)->event(&event);
}

} // namespace

namespace keys {

bool press(WindowBlock& block, QKeyEvent& event) {
    const QPointer<WindowBlock> guard(&block);
    const EventInHand inHand(&block, event, charactersOf(event).empty() ? WM_KEYDOWN : WM_CHAR);
    KeyRoad keyRoad(&block, &event);
    route({&block, WM_KEYDOWN, numberOf(event.key()), 1});
    routeCharacters(keyRoad);
    if (!inHand.isDelivered()) event.accept();
    return true;
}

bool pressInList(WindowBlock& block, QKeyEvent& event) {
    const EventInHand inHand(&block, event, charactersOf(event).empty() ? WM_KEYDOWN : WM_CHAR, true);
    KeyRoad keyRoad(&block, &event);
    route({&block, WM_KEYDOWN, numberOf(event.key()), 1});
    routeCharacters(keyRoad);
    return !inHand.isDelivered();
}

bool commit(WindowBlock& block, QInputMethodEvent& event) {
    const QString text = event.commitString();
    if (text.isEmpty()) return false;
    // The widget ends what is being composed and takes out what the text replaces; the text itself comes as
    // characters, so that the window's rules for them hold.
    QInputMethodEvent rest(event.preeditString(), event.attributes());
    rest.setCommitString(QString(), event.replacementStart(), event.replacementLength());
    if (block.widget() != nullptr) static_cast<QObject*>(block.widget())->event(&rest);
    KeyRoad keyRoad(&block, nullptr);
    for (const QChar unit : text) keyRoad.characters.push_back(unit.unicode());
    routeCharacters(keyRoad);
    event.accept();
    return true;
}

LRESULT defaultKeyDown(HWND window, WPARAM key) {
    // With characters the event waits for them.
    if (isKeyInHand(window)) return EventInHand::deliver(window, WM_KEYDOWN);
    // A dialog would close at a made Escape, press its button at a made Enter, and a made Tab would move on.
    if (key == VK_TAB || key == VK_RETURN || key == VK_ESCAPE) return 0;
    return sendToWidget(window,
                        QKeyEvent(QEvent::KeyPress, toolkitKeyOf(key), QApplication::keyboardModifiers()));
}

LRESULT defaultChar(HWND window, WPARAM unit) {
    if (isKeyInHand(window)) return EventInHand::deliver(window, WM_CHAR);
    const QString text(QChar(static_cast<char16_t>(unit)));
    return sendToWidget(window, QKeyEvent(QEvent::KeyPress, 0, Qt::NoModifier, text));
}

} // namespace keys

} // namespace lm::windows

using lm::windows::KeyRoad;

void TranslateMessage(const MSG* message) {
    KeyRoad* const keyRoad = KeyRoad::innermost;
    if (keyRoad == nullptr || keyRoad->press == nullptr || keyRoad->window != message->hwnd) return;
    if (message->message == WM_KEYDOWN) keyRoad->characters = lm::windows::charactersOf(*keyRoad->press);
}

LRESULT DispatchMessage(const MSG* message) {
    return SendMessage(message->hwnd, message->message, message->wParam, message->lParam);
}

short GetKeyState(UINT key) {
    const KeyRoad* const keyRoad = KeyRoad::innermost;
    const Qt::KeyboardModifiers held = keyRoad != nullptr && keyRoad->press != nullptr
                                           ? keyRoad->press->modifiers()
                                           : QGuiApplication::keyboardModifiers();
    const bool isDown =
        (key == VK_SHIFT && held & Qt::ShiftModifier) || (key == VK_CONTROL && held & Qt::ControlModifier);
    return isDown ? static_cast<short>(-0x8000) : short(0);
}
