// SPDX-License-Identifier: MIT
#include "tx/LMCommonMFC/callsupport.h"
#include "tx/LMCommonMFC/office/workbooksupport.h"

#include "office/ciexcel.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <xlsxdocument.h>

using lm::test::rz;
using lm::test::told;

namespace {

/// What a sheet is filled with: a place such as "B7" and its value.
using Cells = std::vector<std::pair<const char*, QVariant>>;

class Workbooks : public testing::Test {
protected:
    /// A workbook with one sheet for each list, "S1" and so on.
    RZString workbook(const std::vector<Cells>& sheets, const char* name = "in.xlsx") const {
        QXlsx::Document document;
        for (std::size_t i = 0; i < sheets.size(); ++i) {
            document.addSheet(QStringLiteral("S%1").arg(i + 1));
            for (const auto& [place, value] : sheets[i]) document.write(QString::fromLatin1(place), value);
        }
        EXPECT_TRUE(document.saveAs(QString::fromStdString(m_folder.path(name))));
        return m_folder.text(name);
    }
    RZString rows(const std::string& xml, const std::string& rest = {}, const std::string& head = {}) const {
        return m_folder.write("rows.xlsx", tests::packed(tests::smallWorkbook(xml, rest, head)));
    }
    std::string cell(const char* file, const char* sheet, int row, int column) const {
        return told(CIExcel(m_folder.text(file)).GetValue(rz(sheet), row, column));
    }
    std::string names(CIExcel& excel) const {
        std::string result;
        RZStringList list = excel.getWorkSheets();
        for (int i = 0; i < list.count(); ++i) result += told(list.getIndex(i)) + ";";
        return result;
    }

    const tests::WorkbookFolder m_folder;
};

/// A row of cells with content in the first column, or one that is there and empty.
std::string row(int number, bool isFilled) {
    const std::string place = "A" + std::to_string(number);
    return "<row r='" + std::to_string(number) + "'><c r='" + place + "'" +
           (isFilled ? " t='str'><v>x</v></c>" : "></c>") + "<c r='B" + std::to_string(number) + "'/></row>";
}

std::string rowsOf(int count, const std::vector<int>& filled) {
    std::string result;
    for (int number = 1; number <= count; ++number)
        result += row(number, std::find(filled.begin(), filled.end(), number) != filled.end());
    return "<dimension ref='A1:B" + std::to_string(count) + "'/><sheetData>" + result + "</sheetData>";
}

} // namespace

TEST_F(Workbooks, CountCellsFromZero) {
    CIExcel excel(workbook({{{"A1", "corner"}, {"C2", "inside"}}}));
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "corner");
    EXPECT_EQ(told(excel.GetValue("S1", 1, 2)), "inside");
    EXPECT_EQ(told(excel.GetValue("S1", 1, 1)), "");
    for (const int beyond : {-1, -7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(told(excel.GetValue("S1", beyond, 0)), "");
        EXPECT_EQ(told(excel.GetValue("S1", 0, beyond)), "");
    }
}

TEST_F(Workbooks, HaveTheirHeaderInTheEleventhRow) {
    Cells cells;
    for (const char* const place : {"A1", "A2", "A9", "A10", "A12"}) cells.emplace_back(place, "other");
    cells.emplace_back("A11", "TAG");
    cells.emplace_back("C11", "Valor");
    CIExcel excel(workbook({cells}));
    EXPECT_EQ(told(excel.GetColumnName("S1", 0)), "TAG");
    EXPECT_EQ(told(excel.GetColumnName("S1", 1)), "");
    EXPECT_EQ(excel.GetColumnIndex("S1", "valor", 11), 2) << "the row counts from 1 here, and case doesn't";
    EXPECT_EQ(told(excel.GetColumnName("S1", excel.GetColumnIndex("S1", "VALOR", 11))), "Valor");
    EXPECT_EQ(excel.GetColumnIndex("S1", "TAG", 10), -1);
    EXPECT_EQ(excel.GetColumnIndex("S1", "other", 10), 0);
    EXPECT_EQ(excel.GetColumnIndex("S1", "none", 11), -1);
    EXPECT_EQ(excel.GetColumnIndex("S1", "", 11), 1) << "the first empty cell of the range";
}

TEST_F(Workbooks, AnswerTheFirstOfSeveralColumnsWithinTheRangeOnly) {
    CIExcel excel(workbook({{{"C11", "a"}, {"E11", "A"}}}));
    EXPECT_EQ(excel.GetColumnIndex("S1", "A", 11), 2);
    EXPECT_EQ(excel.GetColumnIndex("S1", "", 11), 3) << "columns in front of the range aren't searched";
}

TEST_F(Workbooks, GiveNeutralResultsForUnknownSheets) {
    CIExcel excel(workbook({{{"A1", "x"}}}));
    for (const char* const name : {"s1", "S1 ", "", "S2"}) {
        EXPECT_EQ(told(excel.GetValue(name, 0, 0)), "") << name;
        EXPECT_EQ(told(excel.GetColumnName(name, 0)), "") << name;
        EXPECT_EQ(excel.GetColumnIndex(name, "x", 1), -1) << name;
        EXPECT_EQ(excel.GetRowCount(name), 0) << name;
        EXPECT_EQ(excel.GetColCount(name), 0) << name;
        EXPECT_EQ(excel.VerifyRowCount(name), 0) << name;
        EXPECT_FALSE(excel.WorkSheetExists(name)) << name;
    }
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "x");
    EXPECT_TRUE(excel.WorkSheetExists("S1"));
}

TEST_F(Workbooks, AreReadSheetBySheet) {
    CIExcel excel(workbook({{{"A1", "one"}}, {{"A1", "two"}, {"D9", 1}}, {}}));
    EXPECT_EQ(names(excel), "S1;S2;S3;");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(told(excel.GetValue("S2", 0, 0)), "two");
        EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "one");
        EXPECT_EQ(told(excel.GetValue("none", 0, 0)), "");
        EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "one");
    }
    EXPECT_EQ(excel.GetRowCount("S2"), 9);
    EXPECT_EQ(excel.GetColCount("S2"), 4);
    EXPECT_EQ(excel.GetRowCount("S1"), 1);
}

TEST_F(Workbooks, PassOnTheRangeOfASheetWithoutCells) {
    CIExcel excel(rows({}));
    EXPECT_EQ(excel.GetRowCount("Um"), -2);
    EXPECT_EQ(excel.GetColCount("Um"), -2);
    EXPECT_EQ(excel.VerifyRowCount("Um"), -2);
    EXPECT_EQ(excel.GetColumnIndex("Um", "", 1), -1);
    CIExcel claimed(rows({}, {}, "<dimension ref='B2:D7'/>"));
    EXPECT_EQ(claimed.GetRowCount("Um"), 7);
    EXPECT_EQ(claimed.GetColCount("Um"), 4);
}

TEST_F(Workbooks, GiveValuesAsTheLibraryTellsThem) {
    CIExcel excel(
        rows("<row r='1'><c r='A1'><v>1.50</v></c><c r='B1' t='n'><v>1.50</v></c><c r='C1' t='b'><v>1</v></c>"
             "<c r='D1' t='e'><v>#DIV/0!</v></c><c r='E1'><f>A1+1</f><v>2.5</v></c>"
             "<c r='F1' t='s'><v>0</v></c><c r='G1' t='inlineStr'><is><t>inline</t></is></c>"
             "<c r='H1' t='s'><v>9</v></c></row>"));
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "1.50") << "without a type the text stays";
    EXPECT_EQ(told(excel.GetValue("Um", 0, 1)), "1.5");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 2)), "true");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 3)), "#DIV/0!");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 4)), "=A1+1");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 5)), "shared");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 6)), "inline");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 7)), "");
}

// ----------------------------------------------------------------------------------------------------

TEST_F(Workbooks, EndWhereMoreThanFiftyRowsAreBlank) {
    struct Case {
        int rows;
        std::vector<int> filled;
        int end;
        const char* what;
    };
    for (const Case& at :
         {Case{110, {10}, 16, "six behind the last row with content"},
          Case{60, {10}, 60, "fifty blank rows, as the last one isn't looked at"},
          Case{61, {10}, 61, "fifty blank rows"}, Case{62, {10}, 16, "the fifty-first"},
          Case{62, {10, 61}, 62, "content in the fifty-first"}, Case{120, {10, 60}, 66, "counted anew"},
          Case{52, {}, 6, "blank from the start"}, Case{51, {}, 51, "no longer run"},
          Case{110, {10, 110}, 16, "content behind the end is lost"}, Case{1, {1}, 1, "one row"}}) {
        tests::Parts parts = tests::smallWorkbook({});
        parts["xl/worksheets/sheet1.xml"] = "<worksheet>" + rowsOf(at.rows, at.filled) + "</worksheet>";
        CIExcel excel(m_folder.write("ends.xlsx", tests::packed(parts)));
        EXPECT_EQ(excel.VerifyRowCount("Um"), at.end) << at.what;
        EXPECT_EQ(excel.GetRowCount("Um"), at.rows);
    }
}

TEST_F(Workbooks, CountBlankRowsWithinTheRangeOfTheSheetOnly) {
    const auto endOf = [&](const char* range, const std::string& cells) {
        tests::Parts parts = tests::smallWorkbook({});
        parts["xl/worksheets/sheet1.xml"] = std::string("<worksheet><dimension ref='") + range +
                                            "'/><sheetData>" + cells + "</sheetData></worksheet>";
        return CIExcel(m_folder.write("range.xlsx", tests::packed(parts))).VerifyRowCount("Um");
    };
    EXPECT_EQ(endOf("A30:B82", {}), 35) << "rows in front of the range aren't blank ones";
    EXPECT_EQ(endOf("A30:B80", {}), 80) << "fifty of them";
    EXPECT_EQ(endOf("B1:C62", row(10, true)), 6) << "what stands in front of the range is no content";
    EXPECT_EQ(endOf("A1:C62", row(10, true)), 16);
    std::string filled;
    for (int number = 1; number <= 60; ++number) filled += row(number, true);
    EXPECT_EQ(endOf("A1:A60", filled), 6) << "of one column, which is the last, nothing is looked at";
}

TEST_F(Workbooks, CountOnlyWhatIsAValueAsContent) {
    // A value in row 40 that keeps the run below 51 if it counts.
    const auto endWith = [&](const std::string& cell) {
        tests::Parts parts = tests::smallWorkbook({});
        parts["xl/worksheets/sheet1.xml"] = "<worksheet><dimension ref='A1:B80'/><sheetData>" + row(1, true) +
                                            "<row r='40'>" + cell + "</row>" + row(80, true) +
                                            "</sheetData></worksheet>";
        return CIExcel(m_folder.write("content.xlsx", tests::packed(parts))).VerifyRowCount("Um");
    };
    constexpr int kCounts = 80, kBlank = 7;
    EXPECT_EQ(endWith("<c r='A40' t='str'><v>x</v></c>"), kCounts);
    EXPECT_EQ(endWith("<c r='A40'><v>0</v></c>"), kCounts);
    EXPECT_EQ(endWith("<c r='A40'><f>B1</f><v>5</v></c>"), kCounts) << "the kept value of a formula";
    EXPECT_EQ(endWith("<c r='A40'><f>B1</f></c>"), kBlank) << "which has none";
    EXPECT_EQ(endWith("<c r='A40' t='e'><v>#N/A</v></c>"), kBlank);
    EXPECT_EQ(endWith("<c r='A40' t='str'><v></v></c>"), kBlank);
    EXPECT_EQ(endWith("<c r='A40' s='0'/>"), kBlank);
    EXPECT_EQ(endWith("<c r='B40' t='str'><v>x</v></c>"), kBlank) << "the last column isn't looked at";
}

// ----------------------------------------------------------------------------------------------------

TEST_F(Workbooks, AreSavedToAPath) {
    const RZString path = workbook({{{"A1", "old"}}});
    {
        CIExcel excel(path);
        excel.SetCell(0, 0, 0, "007");
        excel.SetCell(0, 2, 1, "3.14");
        excel.Save();
        EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "007");
        EXPECT_EQ(cell("in.xlsx", "S1", 0, 0), "old") << "Save leaves the file as it was";
        std::string windows = m_folder.path("") + "\\out.xlsx";
        excel.SaveAs(rz(windows));
        excel.SaveAs(m_folder.text("no/such/folder.xlsx"));
    }
    EXPECT_EQ(cell("in.xlsx", "S1", 0, 0), "old") << "and so does the end without a pending path";
    EXPECT_EQ(cell("out.xlsx", "S1", 0, 0), "007");
    QXlsx::Document document(QString::fromStdString(m_folder.path("out.xlsx")));
    EXPECT_EQ(document.read(3, 2).userType(), QMetaType::QString) << "numbers are written as text";
}

TEST_F(Workbooks, AreWrittenByTheNumberOfTheSheet) {
    CIExcel excel(workbook({{{"A1", "one"}}, {{"A1", "two"}}}));
    excel.SetCell(1, 0, 0, "second");
    for (const int number : {2, -1, 100}) excel.SetCell(number, 0, 0, "lost");
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "one");
    EXPECT_EQ(told(excel.GetValue("S2", 0, 0)), "second");
    excel.SetCell(0, -1, 0, "lost");
    excel.SetCell(0, 0, 16384, "lost");
    excel.SetCell(0, std::numeric_limits<int>::max(), 0, "lost");
    EXPECT_EQ(excel.GetRowCount("S1"), 1);
    // A sheet by name after another by number.
    EXPECT_EQ(told(excel.GetValue("S2", 0, 0)), "second");
    excel.SetCell(0, 0, 0, "first");
    EXPECT_EQ(told(excel.GetValue("S2", 0, 0)), "second");
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "first");
}

TEST_F(Workbooks, WithoutSheetsGetOneByWriting) {
    for (const char* const name : {"none.xlsx", "text.xlsx", ""}) {
        m_folder.write("text.xlsx", "no workbook");
        CIExcel excel(m_folder.text(name));
        EXPECT_EQ(names(excel), "");
        EXPECT_EQ(told(excel.GetValue("Sheet1", 0, 0)), "");
        EXPECT_EQ(names(excel), "") << "reading makes none";
        excel.SetCell(1, 0, 0, "lost");
        excel.SetCell(-1, 0, 0, "lost");
        EXPECT_EQ(names(excel), "");
        excel.SetCell(0, 1, 1, "kept");
        EXPECT_EQ(names(excel), "Sheet1;");
        EXPECT_EQ(told(excel.GetValue("Sheet1", 1, 1)), "kept");
    }
}

TEST_F(Workbooks, AreSavedAtTheEndToThePendingPath) {
    const RZString path = workbook({{{"A1", "old"}}});
    {
        CIExcel excel(path);
        excel.SetCell("S1", 0, 0, "new", m_folder.text("first.xlsx"));
        EXPECT_FALSE(m_folder.has("first.xlsx")) << "not before the end";
        excel.SetCell("S1", 0, 1, "too", m_folder.text("second.xlsx"));
    }
    EXPECT_FALSE(m_folder.has("first.xlsx")) << "the last path wins";
    EXPECT_EQ(cell("second.xlsx", "S1", 0, 0), "new");
    EXPECT_EQ(cell("second.xlsx", "S1", 0, 1), "too");
    EXPECT_EQ(cell("in.xlsx", "S1", 0, 0), "old");
}

TEST_F(Workbooks, KeepThePendingPathWhenSavedElsewhere) {
    {
        CIExcel excel(workbook({{{"A1", "old"}}}));
        excel.SetCell("S1", 0, 0, "new", m_folder.text("pending.xlsx"));
        excel.SaveAs(m_folder.text("saved.xlsx"));
        EXPECT_FALSE(m_folder.has("pending.xlsx"));
        EXPECT_EQ(cell("saved.xlsx", "S1", 0, 0), "new"); // ends, and takes the path with it
        EXPECT_TRUE(m_folder.has("pending.xlsx"));
        excel.SetCell("S1", 0, 0, "newer", m_folder.text("pending2.xlsx"));
        excel.SaveAs(m_folder.text("saved2.xlsx"));
    }
    EXPECT_EQ(cell("pending2.xlsx", "S1", 0, 0), "newer");
    EXPECT_EQ(cell("saved2.xlsx", "S1", 0, 0), "newer");
}

TEST_F(Workbooks, SaveWhatIsTheirsToThePathOfAnother) {
    const RZString path = workbook({{{"A1", "old"}}});
    CIExcel second(path);
    {
        CIExcel first(path);
        first.SetCell(0, 0, 0, "changed");
        second.SetCell("S1", 0, 1, "lost", m_folder.text("out.xlsx"));
    }
    EXPECT_EQ(cell("out.xlsx", "S1", 0, 0), "changed");
    EXPECT_EQ(cell("out.xlsx", "S1", 0, 1), "");
}

TEST_F(Workbooks, ForgetThePendingPathOnceSaved) {
    { CIExcel(workbook({{{"A1", "old"}}})).SetCell("S1", 0, 0, "new", m_folder.text("out.xlsx")); }
    ASSERT_TRUE(m_folder.has("out.xlsx"));
    std::filesystem::remove(m_folder.path("out.xlsx"));
    { CIExcel again(m_folder.text("in.xlsx")); }
    EXPECT_FALSE(m_folder.has("out.xlsx"));
}

TEST_F(Workbooks, SetThePendingPathForAnUnknownSheetToo) {
    { CIExcel(workbook({{{"A1", "old"}}})).SetCell("none", 0, 0, "lost", m_folder.text("out.xlsx")); }
    EXPECT_EQ(cell("out.xlsx", "S1", 0, 0), "old");
}

TEST_F(Workbooks, GiveThePendingPathToWhicheverEndsFirst) {
    const RZString first = workbook({{{"A1", "first"}}}, "a.xlsx");
    const RZString second = workbook({{{"A1", "second"}}}, "b.xlsx");
    {
        CIExcel set(first);
        set.SetCell("S1", 0, 1, "x", m_folder.text("out.xlsx"));
        { CIExcel ends(second); }
        EXPECT_EQ(told(CIExcel(m_folder.text("out.xlsx")).GetValue("S1", 0, 0)), "second");
        std::filesystem::remove(m_folder.path("out.xlsx"));
    }
    EXPECT_FALSE(m_folder.has("out.xlsx")) << "and the one that set it saves nothing any more";
}

TEST_F(Workbooks, ForgetThePendingPathThoughItCannotBeWritten) {
    { CIExcel(workbook({{{"A1", "x"}}})).SetCell("S1", 0, 0, "y", m_folder.text("late/out.xlsx")); }
    std::filesystem::create_directory(m_folder.path("late"));
    { CIExcel again(m_folder.text("in.xlsx")); }
    EXPECT_FALSE(m_folder.has("late/out.xlsx"));
}

TEST_F(Workbooks, MakeFormulasAndLinksOfTextsThatLookLikeThem) {
    {
        CIExcel excel(m_folder.text("new.xlsx"));
        excel.SetCell(0, 0, 0, "=A2+1");
        excel.SetCell(0, 1, 0, "http://example.com/a");
        excel.SetCell(0, 2, 0, "007");
        excel.SetCell(0, 3, 0, "");
        excel.SaveAs(m_folder.text("new.xlsx"));
    }
    CIExcel excel(m_folder.text("new.xlsx"));
    EXPECT_EQ(told(excel.GetValue("Sheet1", 0, 0)), "=A2+1");
    EXPECT_EQ(told(excel.GetValue("Sheet1", 1, 0)), "http://example.com/a");
    EXPECT_EQ(told(excel.GetValue("Sheet1", 2, 0)), "007");
    EXPECT_EQ(told(excel.GetValue("Sheet1", 3, 0)), "");
    EXPECT_EQ(excel.GetRowCount("Sheet1"), 4) << "the empty text has a cell";
    QXlsx::Document document(QString::fromStdString(m_folder.path("new.xlsx")));
    EXPECT_TRUE(document.cellAt(1, 1)->hasFormula());
    EXPECT_FALSE(document.cellAt(3, 1)->hasFormula());
}

// ----------------------------------------------------------------------------------------------------

TEST_F(Workbooks, NameSheetsOutsideTheCodePageByTheirNarrowForm) {
    tests::Parts parts =
        tests::smallWorkbook("<row r='1'><c r='A1' t='str'><v>\xd0\x96 \xc3\xa9</v></c></row>");
    std::string& names = parts["xl/workbook.xml"];
    names.replace(names.find("Um"), 2, "\xd0\x9b\xd0\xb8\xd1\x81\xd1\x82");
    CIExcel excel(m_folder.write("cyrillic.xlsx", tests::packed(parts)));
    EXPECT_EQ(this->names(excel), "????;");
    EXPECT_TRUE(excel.WorkSheetExists("????"));
    EXPECT_TRUE(excel.WorkSheetExists(
        RZString(lm::WideView(lm::system::fromUtf8("\xd0\x9b\xd0\xb8\xd1\x81\xd1\x82")))));
    EXPECT_FALSE(excel.WorkSheetExists("???"));
    EXPECT_EQ(told(excel.GetValue("????", 0, 0)), "? \xc3\xa9");
}

TEST_F(Workbooks, PreferTheSheetWhoseNameIsExact) {
    constexpr char kSheet[] = "\xd0\x9b\xd0\xb8\xd1\x81\xd1\x82",
                   kField[] = "\xd0\x9f\xd0\xbe\xd0\xbb\xd0\xb5";
    const auto valueOf = [&](const std::string& first, const std::string& second, const RZString& asked) {
        tests::Parts parts = tests::smallWorkbook("<row r='1'><c r='A1' t='str'><v>first</v></c></row>");
        const auto replace = [](std::string& text, const std::string& from, const std::string& to) {
            text.replace(text.find(from), from.size(), to);
        };
        replace(parts["xl/workbook.xml"], "'Um'", "'" + first + "'");
        replace(parts["xl/workbook.xml"], "</sheets>",
                "<sheet name='" + second + "' sheetId='2' r:id='rId9'/></sheets>");
        replace(parts["xl/_rels/workbook.xml.rels"], "</Relationships>",
                "<Relationship Id='rId9' Type='http://schemas.openxmlformats.org/officeDocument/2006/"
                "relationships/worksheet' Target='worksheets/sheet2.xml'/></Relationships>");
        std::string& sheet = parts["xl/worksheets/sheet2.xml"] = parts["xl/worksheets/sheet1.xml"];
        replace(sheet, "first", "second");
        return told(CIExcel(m_folder.write("two.xlsx", tests::packed(parts))).GetValue(asked, 0, 0));
    };
    const RZString exactField{lm::WideView(lm::system::fromUtf8(kField))};
    EXPECT_EQ(valueOf(kSheet, "????", "????"), "second") << "though the first looks like it";
    EXPECT_EQ(valueOf(kSheet, kField, "????"), "first");
    EXPECT_EQ(valueOf(kSheet, kField, exactField), "second");
}

TEST_F(Workbooks, FindAHeaderByWhatTheyGiveOfIt) {
    CIExcel excel(rows("<row r='1'><c r='B1' t='str'><v>\xd0\x9b\xd0\xb8</v></c></row>"));
    EXPECT_EQ(excel.GetColumnIndex("Um", "??", 1), 1);
    EXPECT_EQ(excel.GetColumnIndex("Um", RZString(lm::WideView(lm::system::fromUtf8("\xd0\x9b\xd0\xb8"))), 1),
              -1);
}

TEST_F(Workbooks, OfAFileThatTheGuardRefusesHaveNoSheets) {
    CIExcel excel(
        rows("<row r='1'><c r='A1'><v>1</v></c></row>", {}, "<cols><col min='1' max='2147483647'/></cols>"));
    EXPECT_EQ(names(excel), "");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "");
    EXPECT_EQ(excel.GetRowCount("Um"), 0);
}

TEST_F(Workbooks, HaveNoCellsInAChartSheet) {
    QXlsx::Document document;
    document.addSheet(QStringLiteral("S1"));
    document.write(1, 1, QStringLiteral("x"));
    document.addSheet(QStringLiteral("Chart"), QXlsx::AbstractSheet::ST_ChartSheet);
    ASSERT_TRUE(document.saveAs(QString::fromStdString(m_folder.path("chart.xlsx"))));
    CIExcel excel(m_folder.text("chart.xlsx"));
    EXPECT_EQ(names(excel), "S1;Chart;");
    excel.SetCell(1, 0, 0, "lost");
    EXPECT_EQ(told(excel.GetValue("Chart", 0, 0)), "");
    EXPECT_EQ(excel.GetRowCount("Chart"), 0);
    EXPECT_EQ(excel.GetColCount("Chart"), 0);
    EXPECT_EQ(excel.VerifyRowCount("Chart"), 0);
    EXPECT_EQ(excel.GetColumnIndex("Chart", "", 11), -1);
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "x");
}

TEST_F(Workbooks, GiveDatesInIsoForm) {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    tests::Parts parts =
        tests::smallWorkbook("<row r='1'><c r='A1' s='1'><v>42737</v></c><c r='B1' s='1'>"
                             "<v>42737.5</v></c><c r='C1' s='1'><v>0.5</v></c><c r='D1' s='0'>"
                             "<v>42737</v></c></row>");
    parts["xl/styles.xml"] = "<styleSheet><cellXfs count='2'><xf numFmtId='0'/>"
                             "<xf numFmtId='14' applyNumberFormat='1'/></cellXfs></styleSheet>";
    CIExcel excel(m_folder.write("dates.xlsx", tests::packed(parts)));
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "2017-01-02");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 1)), "2017-01-02T12:00:00.000");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 2)), "12:00:00.000");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 3)), "42737");
    std::string& head = parts["xl/workbook.xml"];
    head.insert(head.find("<sheets>"), "<workbookPr date1904='1'/>");
    CIExcel later(m_folder.write("dates1904.xlsx", tests::packed(parts)));
    EXPECT_EQ(told(later.GetValue("Um", 0, 0)), "2021-01-03") << "four years and a day later";
}

TEST_F(Workbooks, GiveReadingsBehindTheText) {
    tests::Parts parts = tests::smallWorkbook("<row r='1'><c r='A1' t='s'><v>0</v></c></row>");
    parts["xl/sharedStrings.xml"] =
        "<sst><si><t>text</t><rPh sb='0' eb='4'><t>reading</t></rPh><phoneticPr fontId='1'/></si></sst>";
    CIExcel excel(m_folder.write("reading.xlsx", tests::packed(parts)));
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "textreading");
}

TEST_F(Workbooks, GiveFormulasOfRangesAndTextsWithTheFormatOfADateAsTheLibraryDoes) {
    tests::Parts parts = tests::smallWorkbook(
        "<row r='1'><c r='A1'><f t='array' ref='A1'>SUM(F1:F2*G1:G2)</f><v>7</v></c>"
        "<c r='B1' s='1' t='str'><v>42737</v></c><c r='C1' s='1' t='s'><v>0</v></c>"
        "<c r='D1' s='1' t='inlineStr'><is><t>42737</t></is></c><c r='E1' s='1' t='b'><v>1</v></c>"
        "<c r='F1' s='1'><f>F2</f><v>42737</v></c></row>");
    parts["xl/styles.xml"] = "<styleSheet><cellXfs count='2'><xf numFmtId='0'/>"
                             "<xf numFmtId='14' applyNumberFormat='1'/></cellXfs></styleSheet>";
    CIExcel excel(m_folder.write("odd.xlsx", tests::packed(parts)));
    const QXlsx::Document document(QString::fromStdString(m_folder.path("odd.xlsx")));
    for (int column = 0; column < 6; ++column)
        EXPECT_EQ(told(excel.GetValue("Um", 0, column)),
                  told(RZString(document.read(1, column + 1).toString())))
            << column;
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "7") << "of a formula of a range the kept value";
    EXPECT_EQ(told(excel.GetValue("Um", 0, 1)), "42737");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 2)), "shared");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 5)), "=F2");
}

TEST_F(Workbooks, MoveSharedFormulasToTheirPlace) {
    CIExcel excel(rows("<row r='1'><c r='A1'><f t='shared' ref='A1:A2' si='0'>B1+$C$1</f><v>1</v></c></row>"
                       "<row r='2'><c r='A2'><f t='shared' si='0'/><v>2</v></c></row>"));
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "=B1+$C$1");
    EXPECT_EQ(told(excel.GetValue("Um", 1, 0)), "=B2+$C$1");
}

TEST_F(Workbooks, GiveAMergedRangeByItsFirstCell) {
    CIExcel excel(rows("<row r='1'><c r='A1' t='str'><v>x</v></c><c r='B1'/></row>",
                       "<mergeCells count='1'><mergeCell ref='A1:B2'/></mergeCells>"));
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "x");
    EXPECT_EQ(told(excel.GetValue("Um", 0, 1)), "");
}

TEST_F(Workbooks, TellNothingOfWhatTheLibraryFindsOdd) {
    // The counts are wrong, which the library tells as warnings; this program's handler would fail the test.
    CIExcel excel(rows("<row r='1'><c r='A1'><v>1</v></c></row>",
                       "<mergeCells count='9'><mergeCell ref='A1:B2'/></mergeCells>"));
    EXPECT_EQ(told(excel.GetValue("Um", 0, 0)), "1");
    CIExcel folder(m_folder.text(""));
    EXPECT_EQ(names(folder), "");
}

TEST_F(Workbooks, AreSharedByCopies) {
    alignas(CIExcel) unsigned char room[sizeof(CIExcel)];
    CIExcel excel(workbook({{{"A1", "x"}}}));
    auto* const copy = new (room) CIExcel(excel); // never destroyed: the document has one owner only
    copy->SetCell(0, 0, 0, "y");
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "y");
    static_assert(sizeof(CIExcel) == sizeof(void*));
    CIExcel other(workbook({{{"A1", "other"}}}, "other.xlsx"));
    *copy = other;
    EXPECT_EQ(told(copy->GetValue("S1", 0, 0)), "other");
    EXPECT_EQ(told(excel.GetValue("S1", 0, 0)), "y");
}

TEST(NumbersOfSheets, AreShownWithACommaAndWithoutZeros) {
    CIExcel excel("");
    const std::pair<const char*, const char*> cases[] = {{"12.000000", "12"},
                                                         {"12.500000", "12,5"},
                                                         {"12.50", "12,5"},
                                                         {"12.00", "12,"},
                                                         {"1200", "12"},
                                                         {"12", "12"},
                                                         {"", ""},
                                                         {"0", ""},
                                                         {"0.000000", "0"},
                                                         {"12.0000000", "12,"},
                                                         {"1.2.30", "1,2,3"},
                                                         {"7.000000.5", "7"},
                                                         {"-3.250", "-3,25"},
                                                         {"100.0", "100,"},
                                                         {".", ","},
                                                         {".000000", ","},
                                                         {"12..000000", "12"}};
    for (const auto& [given, shown] : cases) EXPECT_EQ(told(excel.formatarDouble(given)), shown) << given;
}
