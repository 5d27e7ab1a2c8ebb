// SPDX-License-Identifier: MIT
// The toolkit's combo box, held to the manners of CComboBox.
#pragma once

#include "windowblock.h"

#include <QComboBox>
#include <QLineEdit>

namespace lm::windows {

class ComboBoxWidget : public QComboBox {
public:
    explicit ComboBoxWidget(DWORD style);
    ~ComboBoxWidget() override;

    /// Whether the text was typed since an entry was selected last.
    bool wasTyped() const { return m_wasTyped; }
    void select(int index);
    void limitTyping(int units) { m_limit = units; }

    void showPopup() override;
    void hidePopup() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void typed(const QString& text);
    void tell(UINT code);

    bool m_isSimple;
    bool m_wasTyped = false;
    bool m_isOpen = false;
    int m_limit = 0;
    QString m_before; ///< the text before what is typed now
};

} // namespace lm::windows
