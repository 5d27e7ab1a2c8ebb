// SPDX-License-Identifier: MIT
// Short programs as designers write them, one a line with what it gives, all in one session.
#include "lisp_support.h"

#include "host/functions.h"

#include <fstream>

namespace {

using namespace lm::test;

class LispIdioms : public LispTest {
protected:
    /// Runs each line of "program ==> value"; ERR stands for any error.
    int runFile(const std::string& path) {
        std::ifstream file(path);
        int programs = 0;
        for (std::string line; std::getline(file, line);) {
            const std::size_t arrow = line.rfind(" ==>");
            if (line.empty() || line[0] == '#' || arrow == std::string::npos) continue;
            ++programs;
            const std::string expected = arrow + 5 < line.size() ? line.substr(arrow + 5) : "";
            const lm::host::LispOutcome outcome = lisp.evaluate(wide(line.substr(0, arrow)));
            EXPECT_EQ(expected, outcome.ok ? lm::system::toUtf8(outcome.value) : "ERR")
                << line << "\n"
                << lm::system::toUtf8(outcome.error);
        }
        return programs;
    }
    lm::host::FunctionRegistration add{"hostadd", [](CHostAPI& a) {
                                           hst_resbufW* arguments = a.getArgs();
                                           hst_resbufW* sum = lm::host::newRecord(RTSHORT);
                                           sum->value.int16 = static_cast<short>(
                                               arguments->value.int16 + arguments->rbnext->value.int16);
                                           a.relRb(arguments);
                                           a.retList(sum);
                                       }};
    lm::host::FunctionRegistration echo{"hostechoes", [](CHostAPI& a) { a.retList(a.getArgs()); }};
};

TEST_F(LispIdioms, OfTheTreeWork) {
    EXPECT_LT(60, runFile(LM_SOURCE_DIR "/tests/platform/host/lisp/idioms.txt"));
}

TEST_F(LispIdioms, FromBesideTheTreeWork) {
    const std::string path = LM_SOURCE_DIR "/../shared/lisp/idioms.txt";
    if (!std::ifstream(path)) {
        std::printf("no collection beside the tree: only the tree's own idioms were run\n");
        return;
    }
    EXPECT_LT(0, runFile(path));
}

} // namespace
