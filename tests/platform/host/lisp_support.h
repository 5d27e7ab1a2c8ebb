// SPDX-License-Identifier: MIT
// What the tests of LISP share: a session of a new drawing, and tables of programs with what they give.
#pragma once

#include "hostsupport.h"

#include "host/lisp.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace lm::test {

/// A program and its value as it is printed, or "error: " and the beginning of the message.
struct LispRow {
    const char* program;
    const char* result;
};

/// Runs programs in the session of a new drawing and collects what they print.
class LispTest : public testing::Test {
protected:
    LispTest() : document(documents.manager.newDocument()), api(*document->getAPI()), lisp(api.lisp()) {
        lisp.setOutput([this](lm::WideView text) { lm::system::appendUtf8(text, printed); });
    }
    /// The value, or the whole error line.
    std::string run(std::string_view program) {
        const lm::host::LispOutcome outcome = lisp.evaluate(wide(program));
        EXPECT_EQ(outcome.ok, outcome.error.empty()) << program;
        EXPECT_EQ(outcome.ok, outcome.line == 0) << program;
        return lm::system::toUtf8(outcome.ok ? outcome.value : outcome.error);
    }
    /// Runs each row and compares: all of the value, or how the error line begins.
    void check(std::initializer_list<LispRow> rows) {
        for (const LispRow& row : rows) {
            const std::string expected = row.result;
            std::string result = run(row.program);
            if (expected.compare(0, 7, "error: ") == 0) result = result.substr(0, expected.size());
            EXPECT_EQ(expected, result) << row.program;
        }
    }
    std::string takePrinted() { return std::exchange(printed, std::string()); }

    Documents documents;
    CHostDocument* document;
    CHostAPI& api;
    lm::host::LispSession& lisp;
    std::string printed;
};

} // namespace lm::test
