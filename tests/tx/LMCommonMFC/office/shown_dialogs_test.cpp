// SPDX-License-Identifier: MIT
// The dialogs of the toolkit themselves, with keys typed into them.
#include "office/cifiledialog.h"

#include "tx/LMCommonMFC/callsupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>

namespace {

using namespace lm::test;

/// Does `act` with the next dialog that is shown, as soon as it takes keys; gives up after ten seconds.
class WithTheDialog {
public:
    explicit WithTheDialog(std::function<void(QFileDialog&)> act) : m_act(std::move(act)) {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_timer.start(20);
    }
    bool wasShown() const { return m_shown; }

private:
    void look() {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr && ++m_looks < 500) return;
        m_timer.stop();
        if (dialog == nullptr) return;
        m_shown = QTest::qWaitForWindowExposed(dialog) && dialog->isVisible();
        m_act(*dialog);
    }

    std::function<void(QFileDialog&)> m_act;
    QTimer m_timer;
    int m_looks = 0;
    bool m_shown = false;
};

void type(QFileDialog& dialog, const QString& text) {
    for (const QChar unit : text) QTest::keyClick(dialog.windowHandle(), unit.toLatin1());
}

struct ShownDialogs : testing::Test {
    QTemporaryDir folder;
    RZString startAt() const { return RZString(folder.path()); }
    std::string expected(const QString& name) const {
        QString path = folder.filePath(name);
        return path.replace(QLatin1Char('/'), QLatin1Char('\\')).toStdString();
    }
    void write(const QString& name) const {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
    }
};

TEST_F(ShownDialogs, GiveTheTypedNameOfAFileToOpen) {
    write("motor.dwg");
    WithTheDialog typing([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        // The filter ends with separators, which the toolkit takes for an empty row behind them.
        EXPECT_EQ(dialog.nameFilters().join('|').toStdString(), "Drawing (*.dwg)|");
        type(dialog, "motor.dwg");
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
    });
    RZString path;
    EXPECT_TRUE(CIFileDialog::showOpenScreenDwgFiles(startAt(), path));
    EXPECT_TRUE(typing.wasShown());
    EXPECT_EQ(told(path), expected("motor.dwg"));
}

// No extension is added: the name is what the user typed.
TEST_F(ShownDialogs, GiveTheTypedNameOfAFileToSave) {
    WithTheDialog typing([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        type(dialog, "pages");
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
    });
    RZString path;
    EXPECT_TRUE(CIFileDialog::showSaveScreenPDFFiles(startAt(), path));
    EXPECT_TRUE(typing.wasShown());
    EXPECT_EQ(told(path), expected("pages"));
    EXPECT_FALSE(QFile::exists(folder.filePath("pages")));
}

TEST_F(ShownDialogs, GiveNothingAfterEscape) {
    const LogCapture log;
    WithTheDialog typing([](QFileDialog& dialog) { QTest::keyClick(dialog.windowHandle(), Qt::Key_Escape); });
    RZString path = "before";
    EXPECT_FALSE(CIFileDialog::showSaveScreenSVGFiles(startAt(), path));
    EXPECT_TRUE(typing.wasShown());
    EXPECT_EQ(told(path), "");
    EXPECT_EQ(log.lines().back(), "File dialog result: ");
}

} // namespace
