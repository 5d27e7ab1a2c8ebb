// SPDX-License-Identifier: MIT
#include "office/rzfiledialog.h"

#include "dialogsupport.h"

#include "host/services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QWidget>

#include <stdexcept>

namespace {

using namespace lm::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::string filterOf(const char* bars) {
    const AnsweredDialogs dialogs;
    RZString path;
    RZFileDialog(path, true, bars, "", "");
    return dialogs.lastFilter();
}

TEST(FileDialogFilter, AddsThePatternToATextWithoutParentheses) {
    EXPECT_EQ(filterOf("Text|*.txt||"), "Text( *.txt );;");
}

TEST(FileDialogFilter, LeavesATextWithBothParenthesesAsItStands) {
    EXPECT_EQ(filterOf("Text (*.txt)|*.txt||"), "Text (*.txt);;");
    EXPECT_EQ(filterOf(")Text(|*.txt||"), ")Text(;;");
}

TEST(FileDialogFilter, AddsThePatternWhenOneParenthesisIsMissing) {
    EXPECT_EQ(filterOf("Text (|*.txt||"), "Text (( *.txt );;");
    EXPECT_EQ(filterOf("Text )|*.txt||"), "Text )( *.txt );;");
}

TEST(FileDialogFilter, TakesTheTextsInPairs) {
    EXPECT_EQ(filterOf("Drawing (*.dwg)|*.dwg|Text|*.txt||"), "Drawing (*.dwg);;Text( *.txt );;");
}

TEST(FileDialogFilter, DropsALastTextWithoutAPattern) {
    EXPECT_EQ(filterOf("Text|*.txt|Other"), "Text( *.txt );;");
    EXPECT_EQ(filterOf("Other"), "");
    EXPECT_EQ(filterOf(""), "");
}

TEST(FileDialogFilter, DropsEmptyTextsBeforeItPairs) {
    EXPECT_EQ(filterOf("|Text||*.txt|"), "Text( *.txt );;");
    EXPECT_EQ(filterOf("||||"), "");
}

TEST(FileDialog, AsksTheDialogOfItsKind) {
    const AnsweredDialogs dialogs("/a/b.txt");
    RZString path;
    EXPECT_EQ(RZFileDialog(path, true, "", "", ""), 5100);
    EXPECT_EQ(RZFileDialog(path, false, "", "", ""), 5100);
    ASSERT_THAT(dialogs.asked(), SizeIs(2));
    EXPECT_TRUE(dialogs.asked()[0].open);
    EXPECT_FALSE(dialogs.asked()[1].open);
}

TEST(FileDialog, HandsPathAndCaptionOverAsTheyStand) {
    const AnsweredDialogs dialogs;
    RZString path;
    RZFileDialog(path, true, "", "C:\\Projetos/a.dwg", "Abrir");
    EXPECT_EQ(dialogs.asked()[0].question.directory.toStdString(), "C:\\Projetos/a.dwg");
    EXPECT_EQ(dialogs.asked()[0].question.caption.toStdString(), "Abrir");
}

TEST(FileDialog, OpensOverTheMainWindowOfTheHost) {
    const AnsweredDialogs dialogs;
    QWidget window;
    RZString path;
    lm::host::setMainWindow(&window);
    RZFileDialog(path, true, "", "", "");
    lm::host::setServicesPresent(false);
    RZFileDialog(path, true, "", "", "");
    lm::host::setServicesPresent(true);
    lm::host::setMainWindow(nullptr);
    RZFileDialog(path, true, "", "", "");
    ASSERT_THAT(dialogs.asked(), SizeIs(3));
    EXPECT_EQ(dialogs.asked()[0].question.parent, &window);
    EXPECT_EQ(dialogs.asked()[1].question.parent, nullptr);
    EXPECT_EQ(dialogs.asked()[2].question.parent, nullptr);
}

TEST(FileDialog, GivesThePathWithBackslashesOnly) {
    const AnsweredDialogs dialogs("/home/a\\b/c.dwg");
    RZString path = "before";
    EXPECT_EQ(RZFileDialog(path, true, "", "", ""), RZ_FILE_DIALOG_CHOSEN);
    EXPECT_EQ(told(path), "\\home\\a\\b\\c.dwg");
}

TEST(FileDialog, ClearsThePathOfACancelledDialog) {
    const AnsweredDialogs dialogs;
    RZString path = "before";
    EXPECT_EQ(RZFileDialog(path, false, "", "", ""), -5002);
    EXPECT_EQ(told(path), "");
}

// Text comes from the toolkit by the narrow route, here as everywhere.
TEST(FileDialog, GivesAQuestionMarkForAUnitOutsideTheCodePage) {
    const AnsweredDialogs dialogs(QString::fromUtf8("/a/ção Ω.dwg"));
    RZString path;
    RZFileDialog(path, true, "", "", "");
    EXPECT_EQ(told(path), "\\a\\ção ?.dwg");
}

TEST(FileDialogLog, TellsWhatWasAskedAndWhatWasAnswered) {
    const AnsweredDialogs dialogs("/a/b.txt");
    const LogCapture log;
    RZString path;
    RZFileDialog(path, true, "Text|*.txt||", "C:\\x", "caption");
    RZFileDialog(path, false, "", "", "");
    // The answer is logged before its separators are turned.
    EXPECT_THAT(log.lines(), ElementsAre("OPEN file dialog, filter=Text|*.txt||, path=C:\\x",
                                         "File dialog result: /a/b.txt",
                                         "SAVE file dialog, filter=, path=", "File dialog result: /a/b.txt"));
}

TEST(FileDialogLog, EndsBehindTheColonWhenTheDialogWasCancelled) {
    const AnsweredDialogs dialogs;
    const LogCapture log;
    RZString path = "before";
    RZFileDialog(path, false, "", "", "");
    ASSERT_THAT(log.lines(), SizeIs(2));
    EXPECT_EQ(log.lines()[1], "File dialog result: ");
}

TEST(FileDialogLog, NamesTheActiveDocument) {
    const AnsweredDialogs dialogs;
    const LogCapture log;
    const ActiveDocument active;
    RZString path;
    RZFileDialog(path, true, "", "", "");
    const std::string mark = "[" + std::to_string(active.document->number()) + "] {now} ";
    EXPECT_THAT(log.lines(),
                ElementsAre(mark + "OPEN file dialog, filter=, path=", mark + "File dialog result: "));
}

TEST(FileDialogLog, HasTheQuestionBeforeTheDialogShows) {
    const LogCapture log;
    std::vector<std::string> seen;
    const lm::host::FileAnswer before = lm::host::setOpenFileAnswer([&](const lm::host::FileQuestion&) {
        seen = log.lines();
        return QString();
    });
    RZString path;
    RZFileDialog(path, true, "", "", "");
    lm::host::setOpenFileAnswer(before);
    EXPECT_THAT(seen, ElementsAre("OPEN file dialog, filter=, path="));
}

TEST(FileDialog, PassesOnWhatTheDialogRaises) {
    const LogCapture log;
    const lm::host::FileAnswer before = lm::host::setOpenFileAnswer(
        [](const lm::host::FileQuestion&) -> QString { throw std::runtime_error("no display"); });
    RZString path = "before";
    EXPECT_THROW(RZFileDialog(path, true, "", "", ""), std::runtime_error);
    lm::host::setOpenFileAnswer(before);
    EXPECT_EQ(told(path), "before");
    EXPECT_THAT(log.lines(), SizeIs(1));
}

} // namespace
