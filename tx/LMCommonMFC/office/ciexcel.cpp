// SPDX-License-Identifier: MIT
#include "office/ciexcel.h"

#include "office/workbook.h"
#include "text/rzstringlist.h"

#include <xlsxcell.h>
#include <xlsxcellrange.h>
#include <xlsxworksheet.h>

#include <utility>

namespace {

/// Counted from 0: the eleventh row of a sheet.
constexpr int kHeaderRow = 10;
/// So many blank rows may lie between rows with data, and so far behind the last one the end is set.
constexpr int kMostBlankRows = 50, kEndBehindBlanks = 45;

/// Where the next destruction of an instance saves to. Empty when nothing is pending.
RZString g_pendingPath;

lm::office::Workbook& workbook(QXlsx::Document* document) {
    return static_cast<lm::office::Workbook&>(*document);
}

/// From a number that counts from 0. The largest one becomes negative, where no cell is.
int fromOne(int number) {
    return static_cast<int>(static_cast<unsigned>(number) + 1U);
}

/// The range that a sheet claims to use; nothing for an unknown sheet and for one that holds no cells.
bool rangeOf(QXlsx::Document* document, const RZString& sheet, QXlsx::CellRange& range) {
    if (!workbook(document).select(sheet)) return false;
    const QXlsx::Worksheet* const cells = document->currentWorksheet();
    if (cells == nullptr) return false;
    range = cells->dimension();
    return true;
}

/// What Document::read gives for a cell. Reading makes three more searches for the cell and looks at the
/// value of a text as if it could be a date, so it is left to the cells that need it.
RZString textOf(const QXlsx::Document& document, int row, int column) {
    const QXlsx::Cell* const cell = document.cellAt(row, column);
    if (cell == nullptr) return {};
    const QXlsx::Cell::CellType type = cell->cellType();
    const bool isText = type == QXlsx::Cell::SharedStringType || type == QXlsx::Cell::StringType ||
                        type == QXlsx::Cell::InlineStringType;
    if (cell->hasFormula() || (!isText && cell->isDateTime()))
        return RZString(document.read(row, column).toString());
    return RZString(cell->value().toString());
}

bool hasContent(const QXlsx::Cell* cell) {
    return cell != nullptr && cell->cellType() != QXlsx::Cell::ErrorType &&
           !cell->value().toString().isEmpty();
}

/// The last column isn't looked at.
bool hasContent(const QXlsx::Document& document, int row, const QXlsx::CellRange& range) {
    for (int column = range.firstColumn(); column < range.lastColumn(); ++column)
        if (hasContent(document.cellAt(row, column))) return true;
    return false;
}

} // namespace

CIExcel::CIExcel(RZString path) : m_document(lm::office::Workbook::open(path).release()) {}

CIExcel::~CIExcel() {
    if (m_document == nullptr) return;
    if (!g_pendingPath.isEmpty()) {
        workbook(m_document).save(g_pendingPath);
        g_pendingPath = RZString();
    }
    delete m_document;
    m_document = nullptr;
}

RZString CIExcel::GetCellValue(RZString sheet, int row, int column) {
    if (!workbook(m_document).select(sheet)) return {};
    return textOf(*m_document, fromOne(row), fromOne(column));
}

RZString CIExcel::GetValue(RZString sheet, int row, int column) {
    return GetCellValue(std::move(sheet), row, column);
}

RZString CIExcel::GetColumnName(RZString sheet, int column) {
    return GetCellValue(std::move(sheet), kHeaderRow, column);
}

int CIExcel::GetColumnIndex(RZString sheet, RZString columnName, int row) {
    QXlsx::CellRange range;
    if (!rangeOf(m_document, sheet, range)) return -1;
    for (int column = range.firstColumn(); column <= range.lastColumn(); ++column)
        if (textOf(*m_document, row, column).equalsNoCase(columnName)) return column - 1;
    return -1;
}

int CIExcel::GetRowCount(RZString sheet) {
    QXlsx::CellRange range;
    return rangeOf(m_document, sheet, range) ? range.lastRow() : 0;
}

int CIExcel::GetColCount(RZString sheet) {
    QXlsx::CellRange range;
    return rangeOf(m_document, sheet, range) ? range.lastColumn() : 0;
}

int CIExcel::VerifyRowCount(RZString sheet) {
    QXlsx::CellRange range;
    if (!rangeOf(m_document, sheet, range)) return 0;
    int blank = 0;
    for (int row = range.firstRow(); row < range.lastRow(); ++row) {
        blank = hasContent(*m_document, row, range) ? 0 : blank + 1;
        if (blank > kMostBlankRows) return row - kEndBehindBlanks;
    }
    return range.lastRow();
}

void CIExcel::SetCell(int sheet, int row, int column, RZString value) {
    lm::office::Workbook& document = workbook(m_document);
    const bool isEmpty = document.sheetNames().isEmpty();
    // Writing makes the first sheet of an empty workbook.
    if (isEmpty ? sheet == 0 : document.select(sheet))
        document.writeText(fromOne(row), fromOne(column), value);
}

void CIExcel::SetCell(RZString sheet, int row, int column, RZString value, RZString savePath) {
    g_pendingPath = savePath;
    lm::office::Workbook& document = workbook(m_document);
    if (document.select(sheet)) document.writeText(fromOne(row), fromOne(column), value);
}

void CIExcel::SaveAs(RZString path) {
    workbook(m_document).save(path);
}

bool CIExcel::WorkSheetExists(RZString name) {
    return workbook(m_document).numberOf(name) >= 0;
}

RZStringList CIExcel::getWorkSheets() {
    QStringList names = m_document->sheetNames();
    return RZStringList(&names);
}

RZString CIExcel::formatarDouble(RZString number) {
    const RZStringList pieces = number.split(RZString("."));
    if (pieces.count() > 1 && pieces.getIndex(1) == "000000") return pieces.getIndex(0);
    int length = static_cast<int>(number.length());
    while (length > 0 && number.getAt(length - 1) == '0') --length;
    RZString result = number.left(length);
    result.replace(".", ",");
    return result;
}
