// SPDX-License-Identifier: MIT
// Workbooks for tests, made part by part.
//
//     tests::Parts parts = tests::smallWorkbook("<row r='1'><c r='A1'><v>7</v></c></row>");
//     parts["xl/styles.xml"] = ...;
//     tests::packed(parts)
#pragma once

#include "text/rzstring.h"

#include <QByteArray>

#include <filesystem>
#include <map>
#include <string>

namespace tests {

using Parts = std::map<std::string, std::string>;

/// A workbook with the sheet "Um" and these rows. `sheetRest` stands behind them, `sheetHead` in front.
Parts smallWorkbook(const std::string& rows, const std::string& sheetRest = {},
                    const std::string& sheetHead = {});

/// A zip archive of the parts.
QByteArray packed(const Parts& parts);

/// A folder of the test's own that goes with it.
class WorkbookFolder {
public:
    WorkbookFolder();
    WorkbookFolder(const WorkbookFolder&) = delete;
    WorkbookFolder& operator=(const WorkbookFolder&) = delete;
    ~WorkbookFolder();

    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    RZString text(const std::string& name) const;
    /// Writes a file and gives its path.
    RZString write(const std::string& name, const QByteArray& content) const;
    bool has(const std::string& name) const { return std::filesystem::exists(m_folder / name); }

private:
    std::filesystem::path m_folder;
};

} // namespace tests
