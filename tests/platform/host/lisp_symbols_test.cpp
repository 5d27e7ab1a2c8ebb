// SPDX-License-Identifier: MIT
// Symbols that C++ and LISP share, functions of C++ that LISP calls, and scope.
#include "lisp_support.h"

#include "drawing/alloc.h"
#include "host/functions.h"

#include <chrono>

namespace {

using namespace lm::test;
using lm::host::FunctionRegistration;
using lm::host::newRecord;

hst_resbufW* record(short type, hst_resbufW* next = nullptr) {
    hst_resbufW* made = newRecord(type);
    made->rbnext = next;
    return made;
}

/// A chain as one line, every type with its value.
std::string line(const hst_resbufW* chain) {
    std::string text;
    for (; chain != nullptr; chain = chain->rbnext) {
        if (!text.empty()) text += ' ';
        text += std::to_string(chain->restype);
        switch (chain->restype) {
        case RTSTR:
            text += ":" + utf8(CHostString(chain->value.text));
            break;
        case RTSHORT:
            text += ":" + std::to_string(chain->value.int16);
            break;
        case RTLONG:
            text += ":" + std::to_string(chain->value.int32);
            break;
        case RTREAL:
            text += ":" + std::to_string(chain->value.real);
            break;
        case RTENAME:
            text += ":" + std::to_string(chain->value.name[0]);
            break;
        default:
            break;
        }
    }
    return text;
}

class LispSymbols : public LispTest {
protected:
    /// What getSym gives for a name, or its code.
    std::string read(std::string_view name) {
        hst_resbufW* chain = reinterpret_cast<hst_resbufW*>(1);
        const int code = api.getSym(wide(name).c_str(), chain);
        if (code != RTNORM) {
            EXPECT_EQ(RTERROR, code);
            EXPECT_EQ(nullptr, chain);
            return "absent";
        }
        EXPECT_NE(nullptr, chain);
        const std::string text = line(chain);
        api.relRb(chain);
        return text;
    }
    /// Stores a chain, releases it, and gives the code.
    int store(std::string_view name, hst_resbufW* chain) {
        const int code = api.putSym(wide(name).c_str(), chain);
        api.relRb(chain);
        return code;
    }
    void TearDown() override { EXPECT_EQ(blocks, lm::drawing::liveBlocks()); }
    std::size_t blocks = lm::drawing::liveBlocks();
};

TEST_F(LispSymbols, ReadAsRecordsOfTheirTypes) {
    run("(setq I 5 NEG -32768 BIG 32768 SMALL -32769 R 2.5 S \"a ç\" N nil TT t L '(1 \"a\" (2.5 nil t)) D "
        "'(8 . \"L\")"
        " DD '(1 2 . 3) SY 'abc E \"\" EL '())");
    EXPECT_EQ("5003:5", read("I"));
    EXPECT_EQ("5003:-32768", read("NEG"));
    EXPECT_EQ("5010:32768", read("BIG"));
    EXPECT_EQ("5010:-32769", read("SMALL"));
    EXPECT_EQ("5001:2.500000", read("R"));
    EXPECT_EQ("5005:a ç", read("S"));
    EXPECT_EQ("5019", read("N"));
    EXPECT_EQ("5021", read("TT"));
    EXPECT_EQ("5016 5003:1 5005:a 5016 5001:2.500000 5019 5021 5017 5017", read("L"));
    EXPECT_EQ("5016 5003:8 5018 5005:L 5017", read("D"));
    EXPECT_EQ("5016 5003:1 5003:2 5018 5003:3 5017", read("DD"));
    EXPECT_EQ("5005:ABC", read("SY"));
    EXPECT_EQ("5005:", read("E"));
    EXPECT_EQ("5019", read("EL"));
    EXPECT_EQ("5021", read("T"));
}

TEST_F(LispSymbols, WithoutAValueAreAbsent) {
    EXPECT_EQ("absent", read("NEVER"));
    run("(list mentioned 'quoted (boundp 'tested)) (defun f (parameter / local) parameter) (f 1)");
    EXPECT_EQ("absent", read("MENTIONED"));
    EXPECT_EQ("absent", read("QUOTED"));
    EXPECT_EQ("absent", read("TESTED"));
    EXPECT_EQ("absent", read("PARAMETER"));
    EXPECT_EQ("absent", read("LOCAL"));
    EXPECT_EQ("absent", read("F"));   // a function has no record
    EXPECT_EQ("absent", read("CAR")); // nor has one of the host
    run("(setq f nil)");
    EXPECT_EQ("5019", read("F"));
    hst_resbufW* chain = nullptr;
    EXPECT_EQ(RTERROR, api.getSym(nullptr, &chain));
    EXPECT_EQ(RTERROR, api.putSym(nullptr, nullptr));
    EXPECT_EQ("absent", read(""));
}

TEST_F(LispSymbols, KeepTheSpellingOfTheirNames) {
    run("(setq abc 1)");
    EXPECT_EQ("5003:1", read("ABC"));
    EXPECT_EQ("absent", read("abc"));
    EXPECT_EQ(RTNORM, store("abc", shortRecord(2)));
    EXPECT_EQ("5003:2", read("abc"));
    EXPECT_EQ("1", run("abc"));
    EXPECT_EQ(RTNORM, store("*IS_NOT_RZ_PROJECT*", record(RTT)));
    EXPECT_EQ("T", run("*is_not_rz_project*"));
}

TEST_F(LispSymbols, AreWrittenAsCopies) {
    hst_resbufW* chain = record(RTLB, textRecord("one", shortRecord(-7, record(RTLE))));
    EXPECT_EQ(RTNORM, api.putSym(wide("LIST").c_str(), chain));
    chain->rbnext->value.text[0] = 'X';
    api.relRb(chain);
    EXPECT_EQ("(\"one\" -7)", run("list"));
    EXPECT_EQ("5016 5005:one 5003:-7 5017", read("LIST"));
    EXPECT_EQ("5016 5005:one 5003:-7 5017", read("LIST")); // each reading is a chain of its own
}

TEST_F(LispSymbols, TakeEveryFormOfChain) {
    hst_resbufW* real = record(RTREAL);
    real->value.real = 1.5;
    EXPECT_EQ(RTNORM, store("X", real));
    EXPECT_EQ("1.5", run("x"));
    hst_resbufW* number = record(RTLONG);
    number->value.int32 = 70000;
    EXPECT_EQ(RTNORM, store("X", number));
    EXPECT_EQ("70000", run("x"));
    hst_resbufW* point = record(RTPOINT);
    point->value.point[1] = 2;
    EXPECT_EQ(RTNORM, store("X", point));
    EXPECT_EQ("(0.0 2.0 0.0)", run("x"));
    EXPECT_EQ(RTNORM, store("X", record(RTNIL)));
    EXPECT_EQ("5019", read("X"));
    EXPECT_EQ(RTNORM, store("X", nullptr));
    EXPECT_EQ("5019", read("X"));
    EXPECT_EQ(RTNORM, store("X", record(RTLB, record(RTLE))));
    EXPECT_EQ("5019", read("X")); // the empty list is nil
    EXPECT_EQ(RTNORM, store("X", record(RTLB, shortRecord(1, record(RTDOTE, shortRecord(2, record(RTLE)))))));
    EXPECT_EQ("(1 . 2)", run("x"));
    EXPECT_EQ(RTNORM, store("X", shortRecord(1, shortRecord(2))));
    EXPECT_EQ("(1 2)", run("x")); // several records make a list
    hst_resbufW* layer = textRecord("PAG1");
    layer->restype = 8; // a group code makes a pair
    EXPECT_EQ(RTNORM, store("X", layer));
    EXPECT_EQ("(8 . \"PAG1\")", run("x"));
}

TEST_F(LispSymbols, RefuseChainsThatDontClose) {
    run("(setq x 7)");
    EXPECT_EQ(RTERROR, store("X", record(RTLB, shortRecord(1))));
    EXPECT_EQ(RTERROR, store("X", record(RTLE)));
    EXPECT_EQ(RTERROR, store("X", shortRecord(1, record(RTLE))));
    EXPECT_EQ(RTERROR, store("X", shortRecord(1, record(RTDOTE, shortRecord(2)))));
    EXPECT_EQ(RTERROR, store("X", record(RTLB, record(RTDOTE, shortRecord(2, record(RTLE))))));
    EXPECT_EQ(RTERROR, store("X", record(RTLB, shortRecord(1, record(RTDOTE, record(RTLE))))));
    EXPECT_EQ("7", run("x"));
    EXPECT_EQ(RTERROR, store("", shortRecord(1)));
    EXPECT_EQ(RTERROR, store("T", shortRecord(1)));
    EXPECT_EQ(RTERROR, store("NIL", shortRecord(1)));
    EXPECT_EQ("(T nil)", run("(list t nil)"));
}

TEST_F(LispSymbols, CarryLongAndDeepChains) {
    hst_resbufW* chain = record(RTLE);
    for (int i = 0; i < 100000; ++i) chain = shortRecord(1, chain);
    EXPECT_EQ(RTNORM, store("LONG", record(RTLB, chain)));
    EXPECT_EQ("100000", run("(length long)"));
    hst_resbufW* back = nullptr;
    EXPECT_EQ(RTNORM, api.getSym(wide("LONG").c_str(), &back));
    api.relRb(back);
    chain = nullptr;
    for (int i = 0; i < 300000; ++i) chain = record(RTLE, chain);
    for (int i = 0; i < 300000; ++i) chain = record(RTLB, chain);
    EXPECT_EQ(RTNORM, store("DEEP", chain));
    EXPECT_EQ("absent", read("DEEP")); // deeper than a chain can be made again
    EXPECT_EQ("nil", run("(setq deep nil)"));
}

TEST_F(LispSymbols, BelongToTheirDocument) {
    CHostDocument* second = documents.manager.newDocument();
    CHostAPI& other = *second->getAPI();
    run("(setq mine 1)");
    EXPECT_EQ(RTNORM, other.evalLisp(wide("(setq theirs 2)").c_str()));
    hst_resbufW* chain = nullptr;
    EXPECT_EQ(RTERROR, other.getSym(wide("MINE").c_str(), &chain));
    EXPECT_EQ("absent", read("THEIRS"));
    documents.manager.closeDocument(second);
}

TEST_F(LispSymbols, AreReadInWellUnderAMicrosecond) {
    run("(setq VALUE 5)");
    const lm::WideString name = wide("VALUE");
    constexpr int kTimes = 20000;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kTimes; ++i) {
        hst_resbufW* chain = nullptr;
        api.getSym(name.c_str(), &chain);
        api.relRb(chain);
    }
    const double each =
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() / kTimes;
    // Room for builds with sanitizers; the benchmark holds the real bar.
    EXPECT_GT(20.0, each);
}

TEST_F(LispSymbols, EvaluationAnswersWithACode) {
    ConsoleCapture console;
    EXPECT_EQ(RTNORM, api.evalLisp(wide("(progn (setq FOO 1) (princ))").c_str()));
    EXPECT_EQ("5003:1", read("FOO"));
    EXPECT_EQ(RTERROR, api.evalLisp(wide("(progn (setq FOO 2 (princ))").c_str()));
    EXPECT_EQ("5003:1", read("FOO"));
    EXPECT_EQ("error: malformed list on input (line 1, column 1)\n", console.text());
    EXPECT_EQ(RTERROR, api.evalLisp(nullptr));
    EXPECT_EQ(RTNORM, api.evalLisp(wide("").c_str()));
}

TEST_F(LispSymbols, FunctionsOfCppAreCalledByName) {
    FunctionRegistration echo("lmEchoes", [](CHostAPI& a) { a.retList(a.getArgs()); });
    FunctionRegistration nothing("lmNothing", [](CHostAPI&) {});
    FunctionRegistration no("lmNo", [](CHostAPI& a) { a.retNil(); });
    check({
        {"(lmEchoes \"a\" 1 70000 2.5 '(1 (2)) nil t '(8 . \"L\"))",
         "(\"a\" 1 70000 2.5 (1 (2)) nil T (8 . \"L\"))"},
        {"(LMECHOES 5)", "5"},
        {"(lmEchoes)", "nil"},
        {"(lmNothing 1)", "nil"},
        {"(lmNo)", "nil"},
        {"(mapcar 'lmEchoes '(1 2))", "(1 2)"},
        {"(apply 'lmEchoes '(1 2))", "(1 2)"},
        {"(defun lmEchoes (x) 'mine) (lmEchoes 1)", "MINE"}, // a program's own function comes first
        {"(setq lmEchoes nil) (lmEchoes 1)", "1"},
        {"(lmEchoes car)", "nil"},
    });
    echo.reset();
    EXPECT_EQ("error: no function definition: LMECHOES (line 1, column 1)", run("(lmEchoes 1)"));
}

TEST_F(LispSymbols, InvokeGoesToTheTableAndNotToThePrograms) {
    run("(defun onlyLisp () 1)");
    hst_resbufW* call = textRecord("onlyLisp");
    hst_resbufW* result = nullptr;
    EXPECT_EQ(RTERROR, api.invoke(call, result));
    api.relRb(call);
}

TEST_F(LispSymbols, ScopeIsDynamic) {
    check({
        {"(defun shows () k) (defun binds (k) (shows)) (binds 42)", "42"},
        {"k", "nil"},
        {"(setq k 1) (binds 2) k", "1"},
        {"(defun changes (/ k) (setq k 5) (shows)) (list (changes) k)", "(5 1)"},
        {"(defun leaks () (setq leaked 9)) (leaks) leaked", "9"},
        {"(defun twice (a a) a) (list (twice 1 2) a)", "(2 nil)"},
        {"(setq e 7) (foreach e '(1 2) e) e", "7"},
        {"(defun hides (car) (car 5)) (hides (lambda (x) (* 2 x)))", "10"},
        {"(car '(1 2))", "1"},
        {"(defun local (/ helper) (defun helper () 3) (helper)) (list (local) helper)", "(3 nil)"},
        {"(setq f (lambda (x) (setq f nil) (* x 2))) (f 4)", "8"}, // a function lives while it runs
        {"(defun-q q (x) (* x 2)) (list (q 4) (car q))", "(8 (X))"},
        {"(setq pi 3) pi", "3"},
    });
}

TEST_F(LispSymbols, CommandsOfProgramsAreKnownByName) {
    run("(defun c:hello () (princ \"hi\") (princ)) (setq c:none 5)");
    EXPECT_TRUE(lisp.hasCommand(wide("HELLO")));
    EXPECT_TRUE(lisp.hasCommand(wide("hello")));
    EXPECT_FALSE(lisp.hasCommand(wide("none")));
    EXPECT_FALSE(lisp.hasCommand(wide("other")));
    EXPECT_TRUE(lisp.runCommand(wide("Hello")).ok);
    EXPECT_EQ("hi", takePrinted());
    EXPECT_FALSE(lisp.runCommand(wide("other")).ok);
}

} // namespace
