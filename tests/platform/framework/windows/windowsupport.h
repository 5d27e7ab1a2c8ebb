// SPDX-License-Identifier: MIT
// What the tests of the window framework share: a top level on the screen, fields that note what they hear,
// keys and clicks at the level of the window, which take the toolkit's own road.
#pragma once

#include "framework/windows/cedit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QWindow>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lm::test {

inline std::string told(const CString& text) {
    return text.toQString().toStdString();
}
inline CString wide(const char* text) {
    return CString(QString::fromUtf8(text));
}

/// A dialog that shows, with an object of the framework.
class TopLevel : public CWnd {
public:
    explicit TopLevel(QWidget* made = new QDialog) {
        made->resize(400, 300);
        Attach(FwHandleOf(made));
        made->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(made));
    }
    QWindow* handle() const { return widget()->windowHandle(); }
    void key(Qt::Key key, Qt::KeyboardModifiers held = Qt::NoModifier) const {
        QTest::keyClick(handle(), key, held);
    }
    void type(const char* text) const {
        for (; *text != 0; ++text) QTest::keyClick(handle(), *text);
    }
    void click(const CWnd& target) const {
        const QPoint place = target.widget()->mapTo(widget(), target.widget()->rect().center());
        QTest::mouseClick(handle(), Qt::LeftButton, Qt::NoModifier, place);
    }

    std::vector<std::string> heard;
    std::function<bool(MSG&)> preview;

protected:
    bool PreTranslateMessage(MSG* message) override { return preview && preview(*message); }
    bool OnCommand(WPARAM wParam, LPARAM lParam) override {
        if (CWnd::OnCommand(wParam, lParam)) return true;
        heard.push_back(std::to_string(LOWORD(wParam)) + ":" + std::to_string(HIWORD(wParam)));
        return true;
    }
};

/// A field that notes its messages by name, and does what a test puts in their place.
class Field : public CEdit {
public:
    Field(CWnd& parent, int id, std::vector<std::string>& notes, DWORD more = WS_TABSTOP)
        : m_notes(notes), m_name(std::to_string(id)) {
        const int top = 10 + 30 * (id % 10);
        EXPECT_TRUE(
            Create(WS_CHILD | WS_VISIBLE | WS_BORDER | more, CRect(10, top, 110, top + 24), &parent, id));
    }
    ~Field() override { ++deleted; }

    std::function<void(Field&, UINT)> onChar = [](Field& field, UINT) { field.toDefault(); };
    std::function<void(Field&, CWnd*)> onLoss = [](Field& field, CWnd*) { field.toDefault(); };
    bool deletesItself = false;
    static inline int deleted = 0;

    void toDefault() { Default(); }
    std::string text() const { return told(GetWindowText()); }

protected:
    const windows::MessageMap* GetMessageMap() const override { return table(); }
    void PostNcDestroy() override {
        note("gone");
        if (deletesItself) delete this;
    }

private:
    static const windows::MessageMap* table() {
        static const windows::MessageMap rows(
            CEdit::map(),
            {windows::onMessage<Field>(WM_SETFOCUS,
                                       [](Field& field, WPARAM, LPARAM) -> LRESULT {
                                           field.note("focus");
                                           field.toDefault();
                                           return 0;
                                       }),
             windows::onMessage<Field>(
                 WM_KILLFOCUS,
                 [](Field& field, WPARAM winner, LPARAM) -> LRESULT {
                     CWnd* const other = FromHandle(reinterpret_cast<HWND>(winner));
                     field.note("loss to " + (other ? std::to_string(other->GetDlgCtrlID()) : "none"));
                     field.onLoss(field, other);
                     return 0;
                 }),
             windows::onMessage<Field>(WM_CHAR,
                                       [](Field& field, WPARAM unit, LPARAM) -> LRESULT {
                                           field.note("char " + std::to_string(unit));
                                           field.onChar(field, static_cast<UINT>(unit));
                                           return 0;
                                       }),
             windows::onMessage<Field>(WM_KEYDOWN,
                                       [](Field& field, WPARAM key, LPARAM) -> LRESULT {
                                           field.note("key " + std::to_string(key));
                                           field.toDefault();
                                           return 0;
                                       }),
             windows::onMessage<Field>(WM_DESTROY, [](Field& field, WPARAM, LPARAM) -> LRESULT {
                 field.note("destroy " + field.text());
                 return 0;
             })});
        return &rows;
    }
    void note(const std::string& text) { m_notes.push_back(m_name + " " + text); }

    std::vector<std::string>& m_notes;
    std::string m_name;
};

/// Deletes what waits for the next turn of the event loop.
inline void flushDeletions() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace lm::test
