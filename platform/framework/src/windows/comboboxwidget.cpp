// SPDX-License-Identifier: MIT
#include "comboboxwidget.h"

#include "eventroad.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QProxyStyle>

#include <algorithm>
#include <utility>

namespace lm::windows {

namespace {

/// The list opens below the box and not over it; a box without a list has no arrow, and its field all the
/// room.
class BoxStyle : public QProxyStyle {
public:
    explicit BoxStyle(bool isSimple) : m_isSimple(isSimple) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override {
        if (m_isSimple && control == CC_ComboBox) {
            if (part == SC_ComboBoxArrow) return QRect();
            if (part == SC_ComboBoxEditField) return option->rect.adjusted(2, 2, -2, -2);
        }
        return QProxyStyle::subControlRect(control, option, part, widget);
    }

private:
    bool m_isSimple;
};

} // namespace

ComboBoxWidget::ComboBoxWidget(DWORD style) : m_isSimple((style & 3) == CBS_SIMPLE) {
    auto* const look = new BoxStyle(m_isSimple);
    look->setParent(this); // setStyle doesn't take it over
    setStyle(look);
    setEditable((style & 3) != CBS_DROPDOWNLIST);
    setInsertPolicy(NoInsert);
    connect(this, &QComboBox::activated, this, [this] {
        m_wasTyped = false;
        tell(CBN_SELCHANGE);
    });
    if (isEditable()) {
        setCompleter(nullptr); // it would change what is typed
        connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) { typed(text); });
        connect(lineEdit(), &QLineEdit::selectionChanged, this, [this] { m_before = currentText(); });
        connect(lineEdit(), &QLineEdit::cursorPositionChanged, this, [this] { m_before = currentText(); });
    }
    view()->installEventFilter(this);
}

ComboBoxWidget::~ComboBoxWidget() {
    view()->removeEventFilter(this);
    endWindowOf(*this);
}

void ComboBoxWidget::select(int index) {
    m_wasTyped = false;
    setCurrentIndex(index);
    if (index < 0 && isEditable()) clearEditText();
    m_before = currentText();
}

/// The toolkit's own limit would cut texts that are set.
void ComboBoxWidget::typed(const QString& text) {
    const qsizetype most = std::max<qsizetype>(m_limit, m_before.size());
    if (m_limit > 0 && text.size() > most) {
        const int cursor = lineEdit()->cursorPosition();
        const int excess = static_cast<int>(text.size() - most);
        // What came in last stands before the cursor.
        QString cut = text;
        cut.remove(std::max(0, cursor - excess), excess);
        lineEdit()->setText(cut);
        lineEdit()->setCursorPosition(std::max(0, cursor - excess));
    }
    m_before = currentText();
    m_wasTyped = true;
    tell(CBN_EDITCHANGE);
}

void ComboBoxWidget::tell(UINT code) {
    WindowBlock* const block = WindowBlock::find(this);
    if (IsWindow(block)) notifyParent(block, code);
}

void ComboBoxWidget::showPopup() {
    if (m_isSimple) return;
    m_isOpen = true;
    const QPointer<ComboBoxWidget> self(this);
    tell(CBN_DROPDOWN);
    if (self) QComboBox::showPopup();
}

void ComboBoxWidget::hidePopup() {
    const QPointer<ComboBoxWidget> self(this);
    QComboBox::hidePopup();
    if (!self || !std::exchange(m_isOpen, false)) return;
    tell(CBN_CLOSEUP);
}

/// Keys that are typed into the open list take the road of the box, so that its rules hold for them too.
bool ComboBoxWidget::eventFilter(QObject* watched, QEvent* event) {
    WindowBlock* const block = WindowBlock::find(this);
    const bool isKey = event->type() == QEvent::KeyPress && watched == view();
    if (!isKey || !IsWindow(block) || block->owner() == nullptr)
        return QComboBox::eventFilter(watched, event);
    return keys::pressInList(*block, static_cast<QKeyEvent&>(*event));
}

} // namespace lm::windows
