// SPDX-License-Identifier: MIT
// The workbook document behind CIExcel: the library's own, with sheets found by the texts of this system and
// without the library's messages.
#pragma once

#include "text/rzstring.h"

#include <xlsxdocument.h>

#include <memory>

namespace lm::office {

class Workbook : public QXlsx::Document {
public:
    /// Reads the file at a path, whose separators may be "\". A file that isn't there, or that
    /// isFitWorkbookFile refuses, gives a workbook without sheets.
    static std::unique_ptr<Workbook> open(const RZString& path);

    /// Makes the first sheet with that name the current one; false if there is none. The sheet that was asked
    /// for last is known again without a search.
    bool select(const RZString& name);
    /// The same by number; false outside of the sheets.
    bool select(int number);
    /// The number of the sheet with that name, else -1.
    int numberOf(const RZString& name) const;

    bool save(const RZString& path) const;
    void writeText(int row, int column, const RZString& text);

private:
    explicit Workbook(const QString& path) : QXlsx::Document(path) {}

    RZString m_selected;
    bool m_isSelected = false;
};

} // namespace lm::office
