// SPDX-License-Identifier: MIT
// Workbooks: all cells of a sheet through CIExcel, which selects the sheet by its name at each call, against
// a bare loop over the library's document.
#include "office/ciexcel.h"

#include "system/wide.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <xlsxdocument.h>

namespace {

constexpr int kRows = 50000, kColumns = 10;

/// A workbook whose last sheet is the large one: texts, numbers and places that are empty.
class File {
public:
    explicit File(int sheets)
        : m_path(std::filesystem::temp_directory_path() /
                 ("lm-bench-" + std::to_string(::getpid()) + "-" + std::to_string(sheets) + ".xlsx")) {
        QXlsx::Document document;
        for (int i = 1; i <= sheets; ++i) {
            document.addSheet(QStringLiteral("Lista%1").arg(i));
            document.write(1, 1, QStringLiteral("x"));
        }
        for (int row = 1; row <= kRows; ++row)
            for (int column = 1; column <= kColumns; ++column) {
                if (column % 5 == 4)
                    document.write(row, column, row * 0.5);
                else if (column % 5 != 0)
                    document.write(row, column, QStringLiteral("-K%1:%2").arg(row).arg(column));
            }
        if (!document.saveAs(QString::fromStdString(m_path))) std::abort();
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { std::filesystem::remove(m_path); }
    std::string path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

const File& file(int sheets) {
    static const File one(1), forty(40);
    return sheets == 1 ? one : forty;
}

/// Letters of all cells: the texts are real, and both ways find the same.
std::size_t g_letters[41] = {};

void check(std::size_t letters, int sheets) {
    if (letters == 0 || (g_letters[sheets] != 0 && g_letters[sheets] != letters)) std::abort();
    g_letters[sheets] = letters;
}

void bareLoop(benchmark::State& state) {
    const int sheets = static_cast<int>(state.range(0));
    QXlsx::Document document(QString::fromStdString(file(sheets).path()));
    if (!document.selectSheet(QStringLiteral("Lista%1").arg(sheets))) std::abort();
    for (auto round : state) {
        std::size_t letters = 0;
        for (int row = 1; row <= kRows; ++row)
            for (int column = 1; column <= kColumns; ++column)
                letters += static_cast<std::size_t>(document.read(row, column).toString().size());
        check(letters, sheets);
    }
}
BENCHMARK(bareLoop)->Arg(1)->Arg(40)->Unit(benchmark::kMillisecond);

void getValue(benchmark::State& state) {
    const int sheets = static_cast<int>(state.range(0));
    CIExcel excel(RZString(lm::WideView(lm::system::widen(file(sheets).path()))));
    const RZString sheet(("Lista" + std::to_string(sheets)).c_str());
    for (auto round : state) {
        std::size_t letters = 0;
        for (int row = 0; row < kRows; ++row)
            for (int column = 0; column < kColumns; ++column)
                letters += excel.GetValue(sheet, row, column).length();
        check(letters, sheets);
    }
}
BENCHMARK(getValue)->Arg(1)->Arg(40)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
