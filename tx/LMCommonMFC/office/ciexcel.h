// SPDX-License-Identifier: MIT
// CIExcel: sheets of a workbook file (XLSX) as texts.
//
//     CIExcel workbook(path);
//     const int column = workbook.GetColumnIndex(sheet, "TAG", 11);        // the header row
//     for (int row = 11; row < workbook.VerifyRowCount(sheet); ++row)
//         use(workbook.GetValue(sheet, row, column));
//
// Rows and columns of cells count from 0, the results of the counting members from 1, and GetColumnIndex
// takes its row from 1 too. Nothing is reported: an unknown sheet, a workbook that isn't there or can't be
// read and a file that can't be written give the neutral results that each member names.
#pragma once

#include "export.h"
#include "text/rzstring.h"

namespace QXlsx {
class Document;
}

/// A workbook in memory. A copy shares the document without a count: only one of the two may be destroyed.
///
/// A sheet is named as the workbook names it, with case; a name with letters outside code page 1252 also as
/// getWorkSheets shows it; the first of several that look alike. The members that take a name make that sheet
/// the current one.
///
/// All instances together belong to one thread at a time: the path of a pending save is common to all.
class LM_COMMONMFC_API CIExcel {
public:
    /// Reads the file. One that isn't there, or is no workbook, gives a workbook without sheets.
    explicit CIExcel(RZString path);
    CIExcel(const CIExcel&) = default;
    CIExcel& operator=(const CIExcel&) = default;
    /// Saves this workbook to the pending path if there is one, be it from another instance, and forgets the
    /// path. What can't be written is lost without a word.
    ~CIExcel();

    /// The text of a cell: a number as short as it reads back, a date in ISO form, "true" or "false", "=" and
    /// the formula of a formula, the kept value of an array formula. Empty for an empty cell, an unknown
    /// sheet and one that holds no cells.
    RZString GetValue(RZString sheet, int row, int column);
    /// The text in the header row, which is the eleventh of the sheet.
    RZString GetColumnName(RZString sheet, int column);
    /// The column from 0 whose cell in `row`, from 1, holds the name without regard to case, by the text that
    /// GetValue gives; the first of several. -1 if there is none and for an unknown sheet.
    int GetColumnIndex(RZString sheet, RZString columnName, int row);

    /// The last row or column of the range that the sheet claims to use, from 1; 0 for an unknown sheet. For
    /// a sheet that has no range it is -2.
    int GetRowCount(RZString sheet);
    int GetColCount(RZString sheet);
    /// The row from 1 where the data of a sheet really ends: the last row of the range, or, where more than
    /// 50 rows on end are blank, the number of the 51st less 45. Cells with an error count as blank, and the
    /// last row and the last column aren't looked at. 0 for an unknown sheet.
    int VerifyRowCount(RZString sheet);

    /// Writes a text into a cell of the sheet with that number, from 0. Without sheets, number 0 makes one.
    /// Other numbers do nothing. A text that begins with "=" becomes a formula, one that looks like a link a
    /// link; all else stays text, a number too.
    void SetCell(int sheet, int row, int column, RZString value);
    /// The same by the sheet's name. Makes `savePath` the pending path even for a sheet that there isn't.
    void SetCell(RZString sheet, int row, int column, RZString value, RZString savePath);

    /// Does nothing. A workbook is saved by SaveAs and at the destruction.
    void Save() {}
    /// Writes the workbook. A failure isn't told.
    void SaveAs(RZString path);

    /// Whether there is a sheet of that name. Leaves the current sheet as it is.
    bool WorkSheetExists(RZString name);
    /// The names of all sheets, in their order.
    RZStringList getWorkSheets();

    /// The text of a number with a point, as sheets show it: without "0" at its end and with "," for ".";
    /// with exactly six "0" behind the point only what stands in front. So "12.00" gives "12," and "1200"
    /// gives "12".
    RZString formatarDouble(RZString number);

private:
    RZString GetCellValue(RZString sheet, int row, int column);

    QXlsx::Document* m_document;
};
