// SPDX-License-Identifier: MIT
#include "windowblock.h"

#include "eventroad.h"
#include "messagecall.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QHash>
#include <QSet>

namespace lm::windows {

namespace {

/// The living windows by their widgets, and all of them. They outlive every widget of the process.
QHash<const QWidget*, WindowBlock*>& table() {
    static auto& windows = *new QHash<const QWidget*, WindowBlock*>;
    return windows;
}

QSet<const WindowBlock*>& living() {
    static auto& blocks = *new QSet<const WindowBlock*>;
    return blocks;
}

} // namespace

QWidget* windowWidgetOf(QWidget* widget) {
    if (widget == nullptr) return nullptr;
    auto* const area = qobject_cast<QAbstractScrollArea*>(widget->parentWidget());
    return area != nullptr && area->viewport() == widget ? area : widget;
}

WindowBlock* parentOf(const WindowBlock& block) {
    QWidget* const widget = block.widget();
    if (widget == nullptr || widget->isWindow()) return nullptr;
    return WindowBlock::of(widget->parentWidget());
}

WindowBlock::WindowBlock(QWidget& widget) : QObject(&widget), m_widget(&widget) {
    setObjectName(QStringLiteral("lmWindow"));
    id = widget.property("fwId").toInt();
    table().insert(&widget, this);
    living().insert(this);
}

WindowBlock::~WindowBlock() {
    // The widget ended without DestroyWindow: the object hears of it all the same.
    if (isAlive(this)) destroy(End::afterWidget);
    leave();
}

WindowBlock* WindowBlock::of(QWidget* widget) {
    QWidget* const window = windowWidgetOf(widget);
    if (window == nullptr) return nullptr;
    if (WindowBlock* const block = find(window)) return block;
    return new WindowBlock(*window);
}

WindowBlock* WindowBlock::find(const QWidget* widget) {
    return table().value(windowWidgetOf(const_cast<QWidget*>(widget)));
}

bool WindowBlock::isAlive(const WindowBlock* block) {
    // The pointer may be stale: it is only compared.
    return block != nullptr && living().contains(block);
}

CWnd* WindowBlock::object() {
    if (m_owner != nullptr) return m_owner;
    if (!m_temporary) {
        m_temporary = std::make_unique<CWnd>();
        m_temporary->m_hWnd = this;
    }
    return m_temporary.get();
}

void WindowBlock::attach(CWnd& owner) {
    m_owner = &owner;
    owner.m_hWnd = this;
    EventRoad::listenTo(*this);
}

void WindowBlock::detach() {
    if (m_owner != nullptr) m_owner->m_hWnd = nullptr;
    m_owner = nullptr;
    if (m_widget) EventRoad::leave(*this);
}

void WindowBlock::leave() {
    if (!living().remove(this)) return;
    // By the block, since the widget may be gone.
    table().removeIf([this](const auto& entry) { return entry.value() == this; });
    if (m_temporary) m_temporary->m_hWnd = nullptr;
}

/// An editor that has the focus ends its edit while it is whole.
void WindowBlock::giveFocusToParent() {
    QWidget* const focused = QApplication::focusWidget();
    if (focused == nullptr || (focused != m_widget && !m_widget->isAncestorOf(focused))) return;
    WindowBlock* const parent = parentOf(*this);
    if (parent != nullptr && parent->widget() != nullptr)
        parent->widget()->setFocus(Qt::OtherFocusReason);
    else
        focused->clearFocus();
}

void WindowBlock::destroyChildren() {
    // One may end another, so they are held by guards.
    const QList<QWidget*> all = m_widget->findChildren<QWidget*>();
    const QList<QPointer<QWidget>> children(all.begin(), all.end());
    for (const QPointer<QWidget>& child : children) {
        WindowBlock* const block = child ? find(child) : nullptr;
        if (block != nullptr && block != this && block->m_owner != nullptr && !block->destroying)
            block->destroy();
    }
}

void WindowBlock::destroy(End how) {
    const QPointer<WindowBlock> self(this);
    if (how == End::byProgram) giveFocusToParent();
    if (!self || destroying) return;
    destroying = true;
    MessageCall::send(this, WM_DESTROY, 0, 0);
    if (!self) return;
    if (m_widget && how != End::afterWidget) destroyChildren();
    MessageCall::send(this, WM_NCDESTROY, 0, 0);
    if (!self) return;
    // Whoever took WM_NCDESTROY without handing it on is detached all the same.
    detach();
    leave();
    if (how != End::byProgram || !m_widget) return;
    m_widget->setFocusPolicy(Qt::NoFocus);
    m_widget->hide();
    m_widget->deleteLater();
}

void notifyParent(HWND control, UINT code) {
    if (WindowBlock* const parent = parentOf(*control))
        MessageCall::send(parent, WM_COMMAND, MAKEWPARAM(static_cast<unsigned>(control->id), code),
                          reinterpret_cast<LPARAM>(control));
}

void endWindowOf(QWidget& widget) {
    WindowBlock* const block = WindowBlock::find(&widget);
    if (block != nullptr && !block->destroying) block->destroy(WindowBlock::End::withWidget);
}

} // namespace lm::windows
