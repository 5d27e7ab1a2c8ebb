// SPDX-License-Identifier: MIT
// Workbooks that other programs wrote, where a collection of them lies beside the tree.
#include "tx/LMCommonMFC/callsupport.h"
#include "tx/LMCommonMFC/office/workbooksupport.h"

#include "office/ciexcel.h"
#include "office/workbookguard.h"

#include <gtest/gtest.h>

#include <cstdio>

using lm::test::rz;
using lm::test::told;

namespace {

constexpr char kFolder[] = LM_SOURCE_DIR "/../shared/workbooks/";

struct Expected {
    const char* file;
    const char* sheets;
    const char* sheet; ///< the one that the figures are of
    int rows, columns, end;
    const char* value;
    int row, column;
};

constexpr Expected kWorkbooks[] = {
    {"componentes.xlsx", "Componentes;", "Componentes", 125, 8, 125, "ID Unico", 0, 0},
    {"merges-50000.xlsx", "Sheet1;", "Sheet1", 50000, 3, 6, "", 0, 0},
    {"formulas-errors.xlsx", "EverythingTests;FinanceLibTests;StatsLibTests;misc;", "misc", 18, 6, 18,
     "string", 0, 0},
    {"dates-1904-cyrillic.xlsx", "First Sheet;Another Sheet;ThirdSheet;????? ???;Sheet1;", "First Sheet", 40,
     7, 40, "", 0, 0},
    {"libreoffice-dates.xlsx", "Sheet1;", "Sheet1", 33, 1, 33, "42737", 0, 0},
    {"phonetic.xlsx", "Sheet1;Sheet2;Sheet3;", "Sheet1", 18, 4, 18, "RecordSpec", 0, 0},
    {"errors-cyrillic.xlsx", "????1;", "????1", 11, 10, 11, "16", 10, 0},
    // What the library can't read: other name spaces, and paths in the archive that begin with a slash.
    {"strict-types.xlsx", "", "Sheet1", 0, 0, 0, "", 0, 0},
    {"inline-merges.xlsx", "", "WGT-D01 By Production Day", 0, 0, 0, "", 0, 0},
    {"broken-not-zip.xlsx", "", "Sheet1", 0, 0, 0, "", 0, 0},
    {"broken-zip.xlsx", "", "Sheet1", 0, 0, 0, "", 0, 0},
};

} // namespace

TEST(RealWorkbooks, GiveWhatStandsInThem) {
    if (!std::filesystem::exists(kFolder)) {
        std::printf("no collection beside the tree\n");
        return;
    }
    for (const Expected& at : kWorkbooks) {
        CIExcel excel(rz(std::string(kFolder) + at.file));
        std::string names;
        RZStringList list = excel.getWorkSheets();
        for (int i = 0; i < list.count(); ++i) {
            names += told(list.getIndex(i)) + ";";
            EXPECT_TRUE(excel.WorkSheetExists(list.getIndex(i))) << at.file;
        }
        EXPECT_EQ(names, at.sheets) << at.file;
        EXPECT_EQ(excel.GetRowCount(at.sheet), at.rows) << at.file;
        EXPECT_EQ(excel.GetColCount(at.sheet), at.columns) << at.file;
        EXPECT_EQ(excel.VerifyRowCount(at.sheet), at.end) << at.file;
        EXPECT_EQ(told(excel.GetValue(at.sheet, at.row, at.column)), at.value) << at.file;
    }
}

TEST(RealWorkbooks, KeepTheirTextsWhenWritten) {
    if (!std::filesystem::exists(kFolder)) {
        std::printf("no collection beside the tree\n");
        return;
    }
    const tests::WorkbookFolder folder;
    for (const char* const file : {"componentes.xlsx", "phonetic.xlsx", "errors-cyrillic.xlsx"}) {
        CIExcel excel(rz(std::string(kFolder) + file));
        excel.SaveAs(folder.text(file));
        CIExcel again(folder.text(file));
        RZStringList list = excel.getWorkSheets();
        ASSERT_EQ(again.getWorkSheets().count(), list.count());
        int texts = 0;
        for (int i = 0; i < list.count(); ++i) {
            const RZString sheet = list.getIndex(i);
            for (int row = 0; row < excel.GetRowCount(sheet); ++row)
                for (int column = 0; column < excel.GetColCount(sheet); ++column) {
                    const RZString text = excel.GetValue(sheet, row, column);
                    // A formula whose value is an error is written as that error.
                    if (text.startsWith("=")) continue;
                    texts += !text.isEmpty();
                    ASSERT_EQ(told(again.GetValue(sheet, row, column)), told(text))
                        << file << " " << told(sheet) << " " << row << " " << column;
                }
        }
        EXPECT_GT(texts, 40) << file;
    }
}
