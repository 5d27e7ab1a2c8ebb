// SPDX-License-Identifier: MIT
#include "mainwindow.h"
#include "text/rzstringprovider.h"

#include "platform/framework/windows/windowsupport.h"
#include "tx/LMCommonMFC/callsupport.h"

#include "framework/windows/ccombobox.h"
#include "host/services.h"

#include <QLineEdit>
#include <QTemporaryDir>

#include <filesystem>
#include <thread>
#include <type_traits>

namespace {

using lm::test::TopLevel;
using lm::test::wide;

std::string shown(const RZString& text) {
    return lm::test::told(text);
}

/// Puts a variable of the environment back at the end.
struct Variable {
    Variable(const char* which, const QByteArray& value) : name(which), before(qgetenv(which)) {
        qputenv(name, value);
    }
    ~Variable() { before.isNull() ? qunsetenv(name) : qputenv(name, before); }
    const char* name;
    QByteArray before;
};

TEST(StringProvider, IsNeverAnObject) {
    EXPECT_FALSE(std::is_default_constructible_v<RZStringProvider>);
}

TEST(StringProvider, GivesTheCurrentDirectoryAndNothingWhenItHasGone) {
    const std::filesystem::path before = std::filesystem::current_path();
    QTemporaryDir made;
    const std::string folder = made.path().toStdString() + "/ção Ω";
    std::filesystem::create_directory(folder);
    std::filesystem::current_path(folder);
    EXPECT_EQ(shown(RZStringProvider::getCurrentDirectory()), folder);
    std::filesystem::remove(folder);
    EXPECT_EQ(shown(RZStringProvider::getCurrentDirectory()), "");
    std::filesystem::current_path(before);
}

TEST(StringProvider, GivesTheFoldersOfTheUserWithoutMakingThem) {
    QTemporaryDir home;
    const Variable user("HOME", home.path().toUtf8());
    const Variable config("XDG_CONFIG_HOME", home.path().toUtf8() + "/config");
    EXPECT_EQ(shown(RZStringProvider::getDesktopFolder()), home.path().toStdString() + "/Desktop");
    EXPECT_EQ(shown(RZStringProvider::getMyDocumentsFolder()), home.path().toStdString() + "/Documents");
    EXPECT_FALSE(std::filesystem::exists(home.path().toStdString() + "/Desktop"));
}

TEST(StringProvider, GivesTextsOfWindowsAndOfTheirItems) {
    auto* const dialog = new QDialog;
    dialog->setWindowTitle(QString::fromUtf8("Título Ω"));
    TopLevel top(dialog);
    auto* const field = new QLineEdit("text", dialog);
    field->setProperty("fwId", 12);
    EXPECT_EQ(shown(RZStringProvider::getWindowText(top.m_hWnd)), "Título Ω");
    EXPECT_EQ(shown(RZStringProvider::getDlgItemText(top.m_hWnd, 12)), "text");
    EXPECT_EQ(shown(RZStringProvider::getDlgItemText(top.m_hWnd, 13)), "");
    const HWND gone = top.m_hWnd;
    top.DestroyWindow();
    EXPECT_EQ(shown(RZStringProvider::getWindowText(gone)), "");
    EXPECT_EQ(shown(RZStringProvider::getDlgItemText(gone, 12)), "");
    EXPECT_EQ(shown(RZStringProvider::getWindowText(nullptr)), "");
    lm::test::flushDeletions();
}

TEST(StringProvider, GivesTheRowsOfAComboBox) {
    TopLevel top;
    CComboBox box;
    ASSERT_TRUE(box.Create(WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST, CRect(0, 0, 90, 20), &top, 5));
    box.AddString(wide("um"));
    box.AddString(wide("ção"));
    EXPECT_EQ(shown(RZStringProvider::getLBText(&box, 1)), "ção");
    EXPECT_EQ(shown(RZStringProvider::getLBText(&box, 2)), "");
    EXPECT_EQ(shown(RZStringProvider::getLBText(&box, -1)), "");
    top.DestroyWindow();
    lm::test::flushDeletions();
}

TEST(MainWindow, IsThatOfTheHost) {
    EXPECT_EQ(GetMainWindow(), nullptr);
    QWidget window;
    lm::host::setMainWindow(&window);
    ASSERT_NE(GetMainWindow(), nullptr);
    EXPECT_EQ(GetMainWindow()->widget(), &window);
    lm::host::setServicesPresent(false);
    EXPECT_EQ(GetMainWindow(), nullptr);
    lm::host::setServicesPresent(true);
    lm::host::setMainWindow(nullptr);
}

TEST(MainWindow, IsTheThreadsOwnWhereItHasOne) {
    QWidget window;
    lm::host::setMainWindow(&window);
    CWnd own;
    lm::windows::setThreadMainWindow(&own);
    EXPECT_EQ(GetMainWindow(), &own);
    CWnd* elsewhere = &own;
    std::thread([&] { elsewhere = lm::windows::threadMainWindow(); }).join();
    EXPECT_EQ(elsewhere, nullptr);
    lm::windows::setThreadMainWindow(nullptr);
    EXPECT_EQ(GetMainWindow()->widget(), &window);
    lm::host::setMainWindow(nullptr);
}

} // namespace
