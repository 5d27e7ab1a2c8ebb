// SPDX-License-Identifier: MIT
#include "office/cifiledialog.h"

#include "dialogsupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace {

using namespace lm::test;
using testing::ElementsAre;
using testing::SizeIs;

/// One pair of functions with what its dialog must show.
struct Row {
    const char* name;
    bool (*plain)(RZString&);
    bool (*from)(RZString, RZString&);
    bool open;
    const char* filter;
    const char* logged;
};

#define LM_ROW(kind, open, filter, logged)                                                                   \
    { #kind, &CIFileDialog::kind, &CIFileDialog::kind, open, filter, logged }

const Row kRows[] = {
    LM_ROW(showOpenScreenAllFiles, true, "All Files (*.*);;", "All Files (*.*)|*.*||"),
    LM_ROW(showOpenScreenCfgFiles, true, "Settings (*.cfg);;", "Settings (*.cfg)|*.cfg||"),
    LM_ROW(showOpenScreenDtpFiles, true, "Diagram Template (*.dtp);;", "Diagram Template (*.dtp)|*.dtp||"),
    LM_ROW(showOpenScreenDwgFiles, true, "Drawing (*.dwg);;", "Drawing (*.dwg)|*.dwg||"),
    LM_ROW(showOpenScreenGrcFiles, true, "Cable Table Template (*.grc);;",
           "Cable Table Template (*.grc)|*.grc||"),
    LM_ROW(showOpenScreenGrfFiles, true, "Material Table Template (*.grf);;",
           "Material Table Template (*.grf)|*.grf||"),
    LM_ROW(showOpenScreenGrtFiles, true, "Terminal Table Template (*.grt);;",
           "Terminal Table Template (*.grt)|*.grt||"),
    LM_ROW(showOpenScreenGrwFiles, true, "Wire Table Template (*.grw);;",
           "Wire Table Template (*.grw)|*.grw||"),
    LM_ROW(showOpenScreenGrxFiles, true, "Terminal Drawing Template (*.grx);;",
           "Terminal Drawing Template (*.grx)|*.grx||"),
    LM_ROW(showOpenScreenRZFiles, true, "Drawing (*.dwg);;Solution (*.rzsln);;",
           "Drawing (*.dwg)|*.dwg|Solution (*.rzsln)|*.rzsln||"),
    LM_ROW(showOpenScreenRzslnFiles, true, "Solution (*.rzsln);;", "Solution (*.rzsln)|*.rzsln||"),
    LM_ROW(showSaveScreenAllFiles, false, "All Files (*.*);;", "All Files (*.*)|*.*||"),
    LM_ROW(showSaveScreenJPGFiles, false, "JPG file (*.jpg);;", "JPG file (*.jpg)|*.jpg||"),
    LM_ROW(showSaveScreenPDFFiles, false, "PDF file (*.pdf);;", "PDF file (*.pdf)|*.pdf||"),
    LM_ROW(showSaveScreenPNGFiles, false, "PNG file (*.png);;", "PNG file (*.png)|*.png||"),
    LM_ROW(showSaveScreenRzslnFiles, false, "Solution (*.rzsln);;", "Solution (*.rzsln)|*.rzsln||"),
    LM_ROW(showSaveScreenSVGFiles, false, "SVG file (*.svg);;", "SVG file (*.svg)|*.svg||"),
};

class FileDialogs : public testing::TestWithParam<Row> {};

TEST_P(FileDialogs, ShowTheirFilters) {
    const Row& row = GetParam();
    const AnsweredDialogs dialogs("/p/file");
    const LogCapture log;
    RZString path;
    EXPECT_TRUE(row.plain(path));
    EXPECT_EQ(told(path), "\\p\\file");
    ASSERT_THAT(dialogs.asked(), SizeIs(1));
    const AnsweredDialogs::Asked& asked = dialogs.asked()[0];
    EXPECT_EQ(asked.open, row.open);
    EXPECT_EQ(asked.question.filter.toStdString(), row.filter);
    EXPECT_TRUE(asked.question.caption.isEmpty());
    EXPECT_TRUE(asked.question.directory.isEmpty());
    const std::string kind = row.open ? "OPEN" : "SAVE";
    EXPECT_EQ(log.lines()[0], kind + " file dialog, filter=" + row.logged + ", path=");
}

TEST_P(FileDialogs, StartAtTheGivenPath) {
    const AnsweredDialogs dialogs("/p/file");
    RZString path;
    EXPECT_TRUE(GetParam().from("C:\\a\\b.ext", path));
    EXPECT_EQ(dialogs.asked()[0].question.directory.toStdString(), "C:\\a\\b.ext");
    EXPECT_EQ(dialogs.lastFilter(), GetParam().filter);
    EXPECT_EQ(dialogs.asked()[0].open, GetParam().open);
}

TEST_P(FileDialogs, GiveFalseAndNoPathWhenCancelled) {
    const AnsweredDialogs dialogs;
    RZString path = "before";
    EXPECT_FALSE(GetParam().plain(path));
    EXPECT_EQ(told(path), "");
    path = "before";
    EXPECT_FALSE(GetParam().from("/x", path));
    EXPECT_EQ(told(path), "");
}

INSTANTIATE_TEST_SUITE_P(All, FileDialogs, testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

// An initial path that stands in the variable for the result reaches the dialog before that is cleared.
TEST(FileDialog, TakesTheResultAsInitialPath) {
    const AnsweredDialogs dialogs("/new");
    RZString path = "/old";
    EXPECT_TRUE(CIFileDialog::showOpenScreenDwgFiles(path, path));
    EXPECT_EQ(dialogs.asked()[0].question.directory.toStdString(), "/old");
    EXPECT_EQ(told(path), "\\new");
}

TEST(FileDialog, CantBeMadeByOthers) {
    EXPECT_FALSE(std::is_default_constructible_v<CIFileDialog>);
    EXPECT_FALSE(std::is_destructible_v<CIFileDialog>);
}

TEST(FileDialog, HasTheStylesAndTypesOfItsCallers) {
    EXPECT_EQ(CIFileDialog::FILE_DIALOG_STYLE_OPEN, 528416);
    EXPECT_EQ(CIFileDialog::FILE_DIALOG_STYLE_SAVE, 525346);
    EXPECT_EQ(CIFileDialog::SaveDialog, 0);
    EXPECT_EQ(CIFileDialog::OpenDialog, 1);
}

} // namespace
