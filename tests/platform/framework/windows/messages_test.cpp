// SPDX-License-Identifier: MIT
// Messages, keys, focus and the end of windows, with input at the level of the window.
#include "windowsupport.h"

#include "framework/values/exceptions.h"

#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPointer>

#include <stdexcept>

namespace {

using namespace lm::test;
using testing::ElementsAre;
using testing::IsEmpty;

struct Windows : testing::Test {
    std::vector<std::string> notes;
    TopLevel top;

    ~Windows() override {
        if (top.widget() != nullptr) top.DestroyWindow();
        flushDeletions();
    }
    std::vector<std::string> taken() { return std::exchange(notes, {}); }
};

TEST(RegisteredMessages, HaveOneNumberForANameInAnyCase) {
    const UINT first = RegisterWindowMessage("LM_TEST_FIRST");
    EXPECT_GE(first, 0xC000u);
    EXPECT_LE(first, 0xFFFFu);
    EXPECT_EQ(RegisterWindowMessage("lm_test_first"), first);
    EXPECT_NE(RegisterWindowMessage("LM_TEST_SECOND"), first);
}

TEST_F(Windows, AKeyIsAKeyDownAndACharacterAndActsOnce) {
    Field field(top, 1, notes);
    field.SetFocus();
    taken();
    top.type("a");
    EXPECT_THAT(taken(), ElementsAre("1 key 65", "1 char 97"));
    EXPECT_EQ(field.text(), "a");
}

TEST_F(Windows, ACharacterThatTheHandlerKeepsNeverArrives) {
    Field field(top, 1, notes);
    field.onChar = [](Field& self, UINT unit) {
        if (unit != 'b') self.toDefault();
    };
    field.SetFocus();
    top.type("abc");
    EXPECT_EQ(field.text(), "ac");
}

TEST_F(Windows, TheHandlerSeesTheTextBeforeAndAfterTheDefault) {
    Field field(top, 1, notes);
    std::vector<std::string> seen;
    field.onChar = [&](Field& self, UINT) {
        seen.push_back(self.text());
        self.toDefault();
        seen.push_back(self.text());
        self.toDefault(); // once is all
        seen.push_back(self.text());
    };
    field.SetFocus();
    top.type("x");
    EXPECT_THAT(seen, ElementsAre("", "x", "x"));
}

TEST_F(Windows, KeysWithoutCharactersActByTheirKeyDown) {
    Field field(top, 1, notes);
    field.SetFocus();
    top.type("ab");
    taken();
    top.key(Qt::Key_Left);
    top.key(Qt::Key_Delete);
    EXPECT_THAT(taken(), ElementsAre("1 key 37", "1 key 46"));
    EXPECT_EQ(field.text(), "a");
}

TEST_F(Windows, BackspaceAndControlLettersAreCharacters) {
    Field field(top, 1, notes);
    field.SetFocus();
    top.type("ab");
    taken();
    top.key(Qt::Key_Backspace);
    top.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_THAT(taken(), ElementsAre("1 key 8", "1 char 8", "1 key 17", "1 key 86", "1 char 22"));
    EXPECT_EQ(field.text(), "a");
}

// A typed "&" has no number that another key has.
TEST_F(Windows, AnAmpersandIsNoArrowKey) {
    Field field(top, 1, notes);
    field.SetFocus();
    taken();
    top.type("&");
    EXPECT_THAT(taken(), ElementsAre("1 key 231", "1 char 38"));
}

TEST_F(Windows, AnEscapeThatTheHandlerKeepsLeavesTheDialogOpen) {
    Field field(top, 1, notes);
    field.onChar = [](Field&, UINT) {};
    field.SetFocus();
    top.key(Qt::Key_Escape);
    EXPECT_TRUE(top.IsWindowVisible());
    field.onChar = [](Field& self, UINT) { self.toDefault(); };
    top.key(Qt::Key_Escape);
    EXPECT_FALSE(top.IsWindowVisible());
}

TEST_F(Windows, ASentEscapeTabOrEnterHasNoEffect) {
    Field first(top, 1, notes);
    Field second(top, 2, notes);
    first.SetFocus();
    for (const UINT key : {VK_ESCAPE, VK_TAB, VK_RETURN}) first.SendMessage(WM_KEYDOWN, key);
    EXPECT_TRUE(top.IsWindowVisible());
    EXPECT_EQ(CWnd::GetFocus(), &first);
    first.SetWindowText(wide("ab"));
    first.SendMessage(WM_KEYDOWN, VK_LEFT);
    int start = 0, end = 0;
    first.GetSel(start, end);
    EXPECT_EQ(start, 1);
}

TEST_F(Windows, ASentCharacterIsTyped) {
    Field field(top, 1, notes);
    field.SetFocus();
    field.SendMessage(WM_CHAR, 'q');
    EXPECT_EQ(field.text(), "q");
}

TEST_F(Windows, TheTextOfAnInputMethodComesAsCharacters) {
    Field field(top, 1, notes);
    field.onChar = [](Field& self, UINT unit) {
        if (unit != 'b') self.toDefault();
    };
    field.SetFocus();
    taken();
    QInputMethodEvent event;
    event.setCommitString(QString::fromUtf8("\u00E3b\u00E7"));
    QCoreApplication::sendEvent(field.widget(), &event);
    EXPECT_THAT(taken(), ElementsAre("1 char 227", "1 char 98", "1 char 231"));
    EXPECT_EQ(field.text(), "\u00E3\u00E7");
}

TEST_F(Windows, KeysAreOfferedUpwardBeforeTheWindowHasThem) {
    Field field(top, 1, notes);
    field.SetFocus();
    taken();
    std::vector<UINT> offered;
    top.preview = [&](MSG& message) {
        offered.push_back(message.message);
        return message.message == WM_KEYDOWN && message.wParam == 'Z';
    };
    top.type("z");
    EXPECT_THAT(offered, ElementsAre(WM_KEYDOWN));
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_EQ(field.text(), "");
    top.type("y");
    EXPECT_THAT(offered, ElementsAre(WM_KEYDOWN, WM_KEYDOWN, WM_CHAR));
    EXPECT_EQ(field.text(), "y");
}

// A handler that passes the key on by itself has it act once all the same.
TEST_F(Windows, APreviewMayTranslateAndDispatchItself) {
    Field field(top, 1, notes);
    field.SetFocus();
    taken();
    top.preview = [](MSG& message) {
        if (message.message != WM_KEYDOWN) return false;
        TranslateMessage(&message);
        DispatchMessage(&message);
        return true;
    };
    top.type("k");
    EXPECT_THAT(taken(), ElementsAre("1 key 75", "1 char 107"));
    EXPECT_EQ(field.text(), "k");
}

TEST_F(Windows, TheLoserHearsFirstAndOfTheWinner) {
    Field first(top, 1, notes);
    Field second(top, 2, notes);
    first.SetFocus();
    taken();
    top.heard.clear();
    second.SetFocus();
    EXPECT_THAT(taken(), ElementsAre("1 loss to 2", "2 focus"));
    EXPECT_THAT(top.heard, ElementsAre("1:512", "2:256"));
}

TEST_F(Windows, AClickMovesTheFocusInsideThePress) {
    Field first(top, 1, notes);
    Field second(top, 2, notes);
    first.SetFocus();
    taken();
    top.click(second);
    EXPECT_THAT(taken(), ElementsAre("1 loss to 2", "2 focus"));
}

TEST_F(Windows, AFocusMovedInsideTheLossWins) {
    Field first(top, 1, notes);
    Field second(top, 2, notes);
    Field third(top, 3, notes);
    first.onLoss = [&](Field& self, CWnd*) {
        self.toDefault();
        third.SetFocus();
    };
    first.SetFocus();
    taken();
    second.SetFocus();
    EXPECT_EQ(CWnd::GetFocus(), &third);
    // The second never had it, so it loses nothing.
    EXPECT_THAT(taken(), ElementsAre("1 loss to 2", "3 focus"));
}

TEST_F(Windows, AFieldMayEndAndDeleteItselfWhenItLosesTheFocus) {
    Field* const editor = new Field(top, 1, notes);
    editor->deletesItself = true;
    const QPointer<QWidget> widget = editor->widget();
    const int before = Field::deleted;
    editor->onLoss = [](Field& self, CWnd*) {
        self.toDefault();
        self.DestroyWindow();
    };
    Field other(top, 2, notes);
    editor->SetFocus();
    editor->SetWindowText(wide("kept"));
    taken();
    top.click(other);
    EXPECT_THAT(taken(), ElementsAre("1 loss to 2", "1 destroy kept", "1 gone", "2 focus"));
    EXPECT_EQ(Field::deleted, before + 1);
    EXPECT_EQ(top.GetDlgItem(1), nullptr);
    flushDeletions();
    EXPECT_EQ(widget, nullptr);
}

TEST_F(Windows, AWindowThatEndsGivesItsFocusToItsParentFirst) {
    Field field(top, 1, notes);
    field.SetFocus();
    taken();
    EXPECT_TRUE(field.DestroyWindow());
    EXPECT_THAT(taken(), ElementsAre("1 loss to 0", "1 destroy ", "1 gone"));
    EXPECT_EQ(field.m_hWnd, nullptr);
    EXPECT_FALSE(field.DestroyWindow());
}

TEST_F(Windows, ADialogThatIsDeletedEndsItsFieldsWhileTheyAreWhole) {
    auto* const dialog = new QDialog;
    TopLevel other(dialog);
    Field field(other, 1, notes);
    field.SetWindowText(wide("whole"));
    taken();
    delete dialog;
    EXPECT_THAT(taken(), ElementsAre("1 destroy whole", "1 gone"));
    EXPECT_EQ(field.m_hWnd, nullptr);
    EXPECT_EQ(other.m_hWnd, nullptr);
}

TEST_F(Windows, AnObjectThatIsDeletedTakesItsWindowAlong) {
    auto field = std::make_unique<Field>(top, 1, notes);
    const QPointer<QWidget> widget = field->widget();
    field.reset();
    EXPECT_EQ(top.GetDlgItem(1), nullptr);
    flushDeletions();
    EXPECT_EQ(widget, nullptr);
}

TEST_F(Windows, AnExceptionEndsAtTheMessage) {
    std::vector<std::string> failures;
    const lm::windows::FailureSink before =
        lm::windows::setFailureSink([&](const QString& text) { failures.push_back(text.toStdString()); });
    Field field(top, 1, notes);
    field.SetFocus();
    field.onChar = [](Field&, UINT unit) {
        if (unit == 'a') throw std::runtime_error("no letters");
        if (unit == 'b') throw CInvalidArgException();
        throw 7;
    };
    top.type("abc");
    field.onChar = [](Field& self, UINT) { self.toDefault(); };
    top.type("d");
    lm::windows::setFailureSink(before);
    EXPECT_EQ(failures.size(), 3u);
    EXPECT_EQ(failures.front(), "message 0x102: no letters");
    EXPECT_EQ(field.text(), "d");
}

TEST_F(Windows, ADisabledTopLevelTakesNoInputAndKeepsItsChildrenEnabled) {
    Field field(top, 1, notes);
    field.SetFocus();
    EXPECT_FALSE(top.EnableWindow(false));
    top.type("a");
    EXPECT_EQ(field.text(), "");
    EXPECT_FALSE(top.IsWindowEnabled());
    EXPECT_TRUE(field.IsWindowEnabled());
    EXPECT_EQ(CWnd::GetFocus(), &field);
    EXPECT_TRUE(top.EnableWindow(true));
    top.type("b");
    EXPECT_EQ(field.text(), "b");
}

TEST_F(Windows, DisablingTheFieldWithTheFocusGivesItToNobody) {
    Field first(top, 1, notes);
    Field second(top, 2, notes);
    first.SetFocus();
    taken();
    EXPECT_FALSE(first.EnableWindow(false));
    EXPECT_THAT(taken(), ElementsAre("1 loss to none"));
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_EQ(first.GetStyle() & WS_DISABLED, WS_DISABLED);
}

TEST_F(Windows, SiblingsStandInTheOrderInWhichTheyWereMade) {
    Field first(top, 1, notes);
    Field second(top, 2, notes, 0);
    Field third(top, 3, notes);
    EXPECT_EQ(first.GetWindow(GW_HWNDNEXT), &second);
    EXPECT_EQ(second.GetWindow(GW_HWNDPREV), &first);
    EXPECT_EQ(second.GetWindow(GW_HWNDLAST), &third);
    EXPECT_EQ(second.GetWindow(GW_HWNDFIRST), &first);
    EXPECT_EQ(third.GetWindow(GW_HWNDNEXT), nullptr);
    EXPECT_EQ(first.GetStyle() & WS_TABSTOP, WS_TABSTOP);
    EXPECT_EQ(second.GetStyle() & WS_TABSTOP, 0u);
}

TEST_F(Windows, ChildrenAreFoundByTheirNumbers) {
    Field field(top, 41, notes);
    field.SetWindowText(wide("text"));
    EXPECT_EQ(top.GetDlgItem(41), &field);
    EXPECT_EQ(told(top.GetDlgItemText(41)), "text");
    EXPECT_EQ(top.GetDlgItem(42), nullptr);
    EXPECT_EQ(told(top.GetDlgItemText(42)), "");
    EXPECT_EQ(field.GetParent(), &top);
    EXPECT_EQ(top.GetParent(), nullptr);
    // One that the host made carries its number as a property.
    auto* const made = new QLineEdit(top.widget());
    made->setProperty("fwId", 43);
    ASSERT_NE(top.GetDlgItem(43), nullptr);
    EXPECT_EQ(top.GetDlgItem(43)->widget(), made);
    EXPECT_EQ(CWnd::FromHandlePermanent(FwHandleOf(made)), nullptr);
}

TEST_F(Windows, APostedMessageComesLaterAndNotToADeadWindow) {
    Field field(top, 1, notes);
    auto other = std::make_unique<Field>(top, 2, notes);
    field.SetFocus();
    taken();
    EXPECT_TRUE(field.PostMessage(WM_CHAR, 'p'));
    EXPECT_TRUE(other->PostMessage(WM_CHAR, 'q'));
    other.reset();
    taken();
    QCoreApplication::processEvents();
    EXPECT_THAT(taken(), ElementsAre("1 char 112"));
    EXPECT_EQ(SendMessage(nullptr, WM_CHAR, 'a', 0), 0);
}

} // namespace
