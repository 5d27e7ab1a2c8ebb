// SPDX-License-Identifier: MIT
// Workbooks that other programs wrote, where a collection of them lies beside the tree.
#include "tx/LMCommonMFC/callsupport.h"
#include "tx/LMCommonMFC/office/workbooksupport.h"

#include "office/ciexcel.h"
#include "office/workbookguard.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <xlsxdocument.h>

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

TEST(RealWorkbooks, GiveTheirCellsByTheRules) {
    if (!std::filesystem::exists(kFolder)) {
        std::printf("no collection beside the tree\n");
        return;
    }
    struct Cell {
        const char *file, *sheet;
        int row, column;
        const char *value, *what;
    };
    for (const Cell& at : {
             Cell{"libreoffice-dates.xlsx", "Sheet1", 32, 0, "42769", "MM/DD/YY in capitals: no date"},
             Cell{"dates-1904-cyrillic.xlsx", "First Sheet", 2, 6, "This is a cell", "text"},
             Cell{"dates-1904-cyrillic.xlsx", "First Sheet", 37, 4, "external path", "link"},
             Cell{"dates-1904-cyrillic.xlsx", "Another Sheet", 9, 2, "ABCDEFG", "text"},
             Cell{"componentes.xlsx", "Componentes", 1, 0, "639CC4CA009C3D6F", "first of a merged range"},
             Cell{"componentes.xlsx", "Componentes", 2, 0, "", "the rest of it"},
             Cell{"componentes.xlsx", "Componentes", 2, 6, "2", "number without a type"},
             Cell{"phonetic.xlsx", "Sheet1", 1, 1, "?????", "two letters and a reading of three"},
             Cell{"phonetic.xlsx", "Sheet1", 1, 2, "???????????????", "five letters, three readings of ten"},
             Cell{"errors-cyrillic.xlsx", "????1", 0, 5, "=title", "formula whose value is an error"},
             Cell{"errors-cyrillic.xlsx", "????1", 3, 6, "=SUM(_Hours)", "likewise"},
             Cell{"errors-cyrillic.xlsx", "????1", 0, 6, "", "the rest of a merged range"},
             Cell{"formulas-errors.xlsx", "EverythingTests", 6, 26, "#NULL!", "error"},
             Cell{"formulas-errors.xlsx", "EverythingTests", 7, 26, "#DIV/0!", "error"},
             Cell{"formulas-errors.xlsx", "EverythingTests", 15, 1, "true", "truth value"},
             Cell{"formulas-errors.xlsx", "EverythingTests", 16, 1, "false", "truth value"},
             Cell{"formulas-errors.xlsx", "FinanceLibTests", 3, 7, "=FV(B4,C4,D4,E4,F4)", "shared"},
             Cell{"formulas-errors.xlsx", "FinanceLibTests", 7, 7, "=FV(B8,C8,D8,E8,F8)", "moved"},
             Cell{"formulas-errors.xlsx", "StatsLibTests", 6, 6, "=-1*B7", "moved"},
             Cell{"formulas-errors.xlsx", "misc", 5, 4, "=CONCATENATE(E2,\"1\")", "formula"},
             Cell{"formulas-errors.xlsx", "misc", 1, 2, "123.23", "number"},
         })
        EXPECT_EQ(told(CIExcel(rz(std::string(kFolder) + at.file)).GetValue(at.sheet, at.row, at.column)),
                  at.value)
            << at.file << " " << at.sheet << ": " << at.what;
}

TEST(RealWorkbooks, GiveWhatTheLibraryReads) {
    if (!std::filesystem::exists(kFolder)) {
        std::printf("no collection beside the tree\n");
        return;
    }
    int cells = 0;
    for (const Expected& at : kWorkbooks) {
        const std::string path = std::string(kFolder) + at.file;
        if (!lm::office::isFitWorkbookFile(path)) continue;
        CIExcel excel(rz(path));
        const QtMessageHandler outer =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        QXlsx::Document document(QString::fromStdString(path));
        for (const QString& sheet : document.sheetNames()) {
            document.selectSheet(sheet);
            const RZString name{sheet};
            for (int row = 1; row <= excel.GetRowCount(name); ++row)
                for (int column = 1; column <= excel.GetColCount(name); ++column) {
                    if (document.cellAt(row, column) == nullptr) continue;
                    ++cells;
                    ASSERT_EQ(told(excel.GetValue(name, row - 1, column - 1)),
                              told(RZString(document.read(row, column).toString())))
                        << at.file << " " << qPrintable(sheet) << " " << row << " " << column;
                }
        }
        qInstallMessageHandler(outer);
    }
    EXPECT_GT(cells, 140000);
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
