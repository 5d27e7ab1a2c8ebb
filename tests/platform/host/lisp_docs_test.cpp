// SPDX-License-Identifier: MIT
// docs/lisp.md names every function, no other, and each example gives what stands there.
#include "lisp_support.h"

#include <algorithm>
#include <set>

namespace {

using namespace lm::test;

/// A row of a table: | `NAME` | words | `example` answered `answer` | `value` |
struct DocRow {
    std::string name, example, answer, value;
    bool answered = false;
};

/// The texts between back quotes of a cell.
std::vector<std::string> textsOf(const std::string& cell) {
    std::vector<std::string> texts;
    for (std::size_t at = 0;;) {
        const std::size_t open = cell.find('`', at);
        const std::size_t close = open == std::string::npos ? open : cell.find('`', open + 1);
        if (close == std::string::npos) return texts;
        texts.push_back(cell.substr(open + 1, close - open - 1));
        at = close + 1;
    }
}

std::vector<DocRow> readRows() {
    std::ifstream page(LM_SOURCE_DIR "/docs/lisp.md");
    std::vector<DocRow> rows;
    for (std::string line; std::getline(page, line);) {
        if (line.compare(0, 3, "| `") != 0) continue;
        std::vector<std::string> cells;
        for (std::size_t at = 2; at < line.size();) {
            const std::size_t bar = line.find(" |", at);
            cells.push_back(line.substr(at, bar - at));
            at = bar == std::string::npos ? line.size() : bar + 3;
        }
        const std::vector<std::string> name = textsOf(cells[0]), example = textsOf(cells.at(2)),
                                       value = textsOf(cells.at(3));
        if (name.empty() || example.empty()) continue;
        DocRow row{name[0], example[0], example.size() > 1 ? example[1] : "", value.empty() ? "" : value[0]};
        row.answered = example.size() > 1;
        rows.push_back(row);
    }
    return rows;
}

TEST(LispDocs, NameEveryFunctionOnceAndNoOther) {
    CHostAPI api;
    const std::vector<std::string> functions = api.lisp().functionNames();
    std::vector<std::string> named;
    for (const DocRow& row : readRows()) named.push_back(row.name);
    std::sort(named.begin(), named.end());
    EXPECT_EQ(functions, named);
    EXPECT_LT(230u, functions.size());
    EXPECT_EQ(functions.size(), std::set<std::string>(functions.begin(), functions.end()).size());
}

TEST(LispDocs, ExamplesGiveWhatStandsThere) {
    const std::filesystem::path before = std::filesystem::current_path();
    for (const DocRow& row : readRows()) {
        const TemporaryFolder folder;
        std::filesystem::current_path(folder.path());
        const Documents documents;
        auto& lisp = documents.manager.newDocument()->getAPI()->lisp();
        lisp.setOutput([](lm::WideView) {});
        if (row.answered) lisp.pushAnswer(wide(row.answer));
        const lm::host::LispOutcome outcome = lisp.evaluate(wide(row.example));
        EXPECT_EQ(row.value, outcome.ok ? lm::system::toUtf8(outcome.value) : "ERR")
            << row.name << ": " << row.example << "\n"
            << lm::system::toUtf8(outcome.error);
        // An example is about its function.
        std::string lower = row.name;
        for (char& letter : lower)
            letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        EXPECT_NE(std::string::npos, row.example.find(lower)) << row.name;
        std::filesystem::current_path(before);
    }
}

} // namespace
