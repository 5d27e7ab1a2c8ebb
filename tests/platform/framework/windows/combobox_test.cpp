// SPDX-License-Identifier: MIT
#include "windowsupport.h"

#include "framework/windows/ccombobox.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>

namespace {

using namespace lm::test;
using testing::ElementsAre;
using testing::IsEmpty;

/// A combo box that notes its losses of focus and the keys that it is offered.
class Box : public CComboBox {
public:
    Box(CWnd& parent, DWORD kind, std::vector<std::string>& notes) : m_notes(notes) {
        EXPECT_TRUE(Create(WS_CHILD | WS_VISIBLE | WS_TABSTOP | kind, CRect(10, 100, 150, 124), &parent, 7));
    }
    void fill() {
        for (const char* text : {"one", "two", "three"}) AddString(wide(text));
    }
    QComboBox* toolkit() const { return static_cast<QComboBox*>(widget()); }
    std::string text() const { return told(GetWindowText()); }
    bool keepsKeys = false;

protected:
    const lm::windows::MessageMap* GetMessageMap() const override {
        static const lm::windows::MessageMap rows(
            CComboBox::map(),
            {
                lm::windows::onMessage<Box>(WM_KILLFOCUS,
                                            [](Box& box, WPARAM, LPARAM) -> LRESULT {
                                                box.m_notes.push_back("loss");
                                                return Default();
                                            }),
                lm::windows::onMessage<Box>(WM_KEYDOWN,
                                            [](Box& box, WPARAM key, LPARAM) -> LRESULT {
                                                box.m_notes.push_back("key " + std::to_string(key));
                                                return box.keepsKeys ? 0 : Default();
                                            }),
            });
        return &rows;
    }

private:
    std::vector<std::string>& m_notes;
};

struct Combos : testing::Test {
    std::vector<std::string> notes;
    TopLevel top;

    ~Combos() override {
        if (top.widget() != nullptr) top.DestroyWindow();
        flushDeletions();
    }
    std::vector<std::string> taken() { return std::exchange(notes, {}); }
};

TEST_F(Combos, KeepTheirEntriesInOrderAndSelectNoneByThemselves) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    EXPECT_EQ(box.GetCurSel(), -1);
    EXPECT_EQ(box.AddString(wide("b")), 0);
    EXPECT_EQ(box.GetCurSel(), -1);
    EXPECT_EQ(box.InsertString(0, wide("a")), 0);
    EXPECT_EQ(box.InsertString(3, wide("x")), -1);
    EXPECT_EQ(box.InsertString(-1, wide("x")), -1);
    EXPECT_EQ(box.GetCount(), 2);
    EXPECT_EQ(told(box.GetLBText(0)), "a");
    EXPECT_EQ(told(box.GetLBText(1)), "b");
    EXPECT_EQ(told(box.GetLBText(2)), "");
    EXPECT_EQ(told(box.GetLBText(-1)), "");
}

TEST_F(Combos, KeepTheSelectionWithItsEntry) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    box.fill();
    EXPECT_EQ(box.SetCurSel(1), 1);
    box.InsertString(0, wide("zero"));
    EXPECT_EQ(box.GetCurSel(), 2);
    EXPECT_EQ(box.text(), "two");
    EXPECT_EQ(box.DeleteString(2), 3);
    EXPECT_EQ(box.GetCurSel(), -1);
    EXPECT_EQ(box.DeleteString(3), -1);
    EXPECT_EQ(box.SetCurSel(9), -1);
    EXPECT_EQ(box.GetCurSel(), -1);
    box.ResetContent();
    EXPECT_EQ(box.GetCount(), 0);
}

TEST_F(Combos, FindTextsBehindAnEntryAndThenFromTheStart) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    for (const char* text : {"a", "B", "b", "ab"}) box.AddString(wide(text));
    EXPECT_EQ(box.FindStringExact(-1, wide("b")), 1);
    EXPECT_EQ(box.FindStringExact(1, wide("b")), 2);
    EXPECT_EQ(box.FindStringExact(2, wide("b")), 1);
    EXPECT_EQ(box.FindStringExact(-1, wide("c")), -1);
    EXPECT_EQ(box.FindStringExact(0, wide("a")), 0);
}

TEST_F(Combos, KeepANumberWithEachEntry) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    box.fill();
    EXPECT_EQ(box.GetItemData(0), 0u);
    EXPECT_EQ(box.SetItemData(1, 0xFFFFFFFF12345678u), 1);
    EXPECT_EQ(box.GetItemData(1), 0xFFFFFFFF12345678u);
    box.InsertString(0, wide("zero"));
    EXPECT_EQ(box.GetItemData(2), 0xFFFFFFFF12345678u);
    EXPECT_EQ(box.SetItemData(4, 1), -1);
}

TEST_F(Combos, TellOfAChoiceOfTheUserAndNotOfAProgram) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    box.fill();
    top.heard.clear();
    box.SetCurSel(0);
    EXPECT_THAT(top.heard, IsEmpty());
    box.SetFocus();
    top.heard.clear();
    top.key(Qt::Key_Down);
    EXPECT_EQ(box.GetCurSel(), 1);
    EXPECT_THAT(top.heard, ElementsAre("7:1"));
}

TEST_F(Combos, HaveNoSelectionAfterTyping) {
    Box box(top, CBS_DROPDOWN, notes);
    box.fill();
    box.SetCurSel(1);
    box.SetFocus();
    top.heard.clear();
    box.SetEditSel(0, -1);
    top.type("x");
    EXPECT_EQ(box.text(), "x");
    EXPECT_EQ(box.GetCurSel(), -1);
    EXPECT_THAT(top.heard, ElementsAre("7:5"));
    box.SetCurSel(0);
    EXPECT_EQ(box.GetCurSel(), 0);
    EXPECT_EQ(box.text(), "one");
}

TEST_F(Combos, LimitTypingAndNotTheTextsThatAreSet) {
    Box box(top, CBS_DROPDOWN, notes);
    box.LimitText(4);
    box.AddString(wide("longer than four"));
    box.SetCurSel(0);
    EXPECT_EQ(box.text(), "longer than four");
    box.SetFocus();
    top.key(Qt::Key_End);
    top.type("x");
    EXPECT_EQ(box.text(), "longer than four");
    top.key(Qt::Key_Backspace);
    EXPECT_EQ(box.text(), "longer than fou");
    box.SetEditSel(0, -1);
    top.type("abcdef");
    EXPECT_EQ(box.text(), "abcd");
}

TEST_F(Combos, OpenTheirListWithoutALossOfFocus) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    box.fill();
    box.SetCurSel(0);
    box.SetFocus();
    taken();
    top.heard.clear();
    box.toolkit()->showPopup();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(box.toolkit()->view()->window()));
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_THAT(top.heard, ElementsAre("7:7"));
    // Keys that are typed into the list come the box's way.
    QWindow* const popup = box.toolkit()->view()->window()->windowHandle();
    QTest::keyClick(popup, Qt::Key_Down);
    EXPECT_THAT(taken(), ElementsAre("key 40"));
    QTest::keyClick(popup, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(box.GetCurSel(), 1);
    EXPECT_THAT(top.heard, testing::IsSupersetOf({std::string("7:1"), std::string("7:8")}));
    EXPECT_EQ(CWnd::GetFocus(), &box);
}

TEST_F(Combos, AFocusGivenElsewhereClosesTheListAndIsALoss) {
    Box box(top, CBS_DROPDOWNLIST, notes);
    Field field(top, 1, notes);
    box.fill();
    box.SetFocus();
    box.toolkit()->showPopup();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(box.toolkit()->view()->window()));
    taken();
    field.SetFocus();
    EXPECT_THAT(taken(), ElementsAre("loss", "1 focus"));
    EXPECT_FALSE(box.toolkit()->view()->isVisible());
}

TEST_F(Combos, WithoutAListOpenNone) {
    Box box(top, CBS_SIMPLE, notes);
    box.fill();
    box.toolkit()->showPopup();
    EXPECT_FALSE(box.toolkit()->view()->isVisible());
    box.SetFocus();
    top.type("free");
    EXPECT_EQ(box.text(), "free");
}

} // namespace
