// SPDX-License-Identifier: MIT
// What doesn't end by itself, what grows without end, and that every value goes with its last user.
#include "lisp_support.h"

#include "host/functions.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace lm::test;
using Clock = std::chrono::steady_clock;

class LispLimits : public LispTest {
protected:
    double seconds(std::string_view program) {
        const auto start = Clock::now();
        last = run(program);
        return std::chrono::duration<double>(Clock::now() - start).count();
    }
    std::string last;
};

TEST_F(LispLimits, EndlessLoopsEndWithTheTime) {
    lisp.setTimeLimit(0.05);
    for (const char* program : {
             "(while t)",
             "(while t (setq x 1))",
             "(repeat 2147483647 (repeat 2147483647))",
             "(while t (vl-catch-all-apply '(lambda () (while t))))",
             "(defun *error* (m) (while t)) (while t)",
             "(setq *error* nil) (foreach x (progn (repeat 100000 (setq l (cons 1 l))) l) (foreach y l "
             "(length l)))",
         }) {
        EXPECT_GT(5.0, seconds(program)) << program;
        EXPECT_EQ("error: time limit reached", last.substr(0, 25)) << program;
        EXPECT_EQ("3", run("(+ 1 2)"));
    }
}

// The clock is looked at every so many steps, and a loop can go round in step with that: its time may be up
// in the middle of the message about an error that it catches.
TEST_F(LispLimits, LoopsThatOnlyCatchErrorsEndWithTheTime) {
    lisp.setTimeLimit(0.01);
    std::string list;
    for (int i = 0; i < 32; ++i) {
        list += " G";
        const std::string program = "(while t (vl-catch-all-apply '(" + list + " () (h t))))";
        EXPECT_GT(5.0, seconds(program)) << program;
        EXPECT_EQ("error: time limit reached", last.substr(0, 25)) << program;
    }
}

TEST_F(LispLimits, TimeBeginsAnewWithEachEvaluation) {
    lisp.setTimeLimit(0.5);
    for (int i = 0; i < 4; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        EXPECT_EQ("2000", run("(setq n 0) (repeat 2000 (setq n (1+ n)))"));
    }
}

TEST_F(LispLimits, TheErrorFunctionGetsTimeOfItsOwn) {
    lisp.setTimeLimit(0.05);
    run("(defun *error* (m / i) (setq i 0) (repeat 3000 (setq i (1+ i))) (setq done (list m i)))");
    EXPECT_EQ("error: time limit reached", run("(while t)").substr(0, 25));
    EXPECT_EQ("(\"time limit reached\" 3000)", run("done"));
}

TEST_F(LispLimits, RecursionWithoutEndEnds) {
    check({
        {"(defun deeper (n) (+ 1 (deeper n))) (deeper 1)", "error: recursion too deep"},
        {"(defun mapped (n) (mapcar 'mapped (list n))) (mapped 1)", "error: recursion too deep"},
        {"(defun evaluated () (eval '(evaluated))) (evaluated)", "error: recursion too deep"},
        {"(defun applied () (apply 'applied nil)) (applied)", "error: recursion too deep"},
        {"(defun caught () (vl-catch-all-apply 'caught)) (type (caught))", "VL-CATCH-ALL-APPLY-ERROR"},
        {"(setq l nil) (repeat 500000 (setq l (list l))) (equal l (progn (setq m nil) (repeat 500000 (setq m "
         "(list "
         "m)))))",
         "error: recursion too deep"},
        {"(+ 1 2)", "3"},
    });
    // With `*error*` the function is told where the stack has room again.
    run("(defun *error* (m) (setq told m))");
    run("(deeper 1)");
    EXPECT_EQ("\"recursion too deep\"", run("told"));
}

TEST_F(LispLimits, RecursionEndsOnTheSmallStackOfAThreadToo) {
    std::string result;
    std::thread([&] { result = run("(defun deeper (n) (+ 1 (deeper n))) (deeper 1)"); }).join();
    EXPECT_EQ("error: recursion too deep", result.substr(0, 25));
    EXPECT_EQ("3", run("(+ 1 2)"));
}

TEST_F(LispLimits, AThousandLevelsOfRecursionAreOrdinary) {
    EXPECT_EQ("1000", run("(defun count (n) (if (= n 0) 0 (1+ (count (1- n))))) (count 1000)"));
}

TEST_F(LispLimits, GrowthEndsAtTheCeiling) {
    lisp.setMemoryCeiling(8 << 20);
    for (const char* program : {
             "(while t (setq grown (cons 1 grown)))",
             "(setq grown \"ab\") (while t (setq grown (strcat grown grown)))",
             "(setq grown '(1)) (while t (setq grown (append grown grown)))",
             "(while t (setq grown (list grown grown (rtos 1.5))))",
             "(setq i 0) (while t (set (read (strcat \"name\" (itoa (setq i (1+ i))))) i))",
         }) {
        EXPECT_EQ("error: memory ceiling reached", run(program).substr(0, 29)) << program;
        EXPECT_GT((10u << 20), lisp.memoryInUse());
        // A full session can still be emptied, and works again.
        EXPECT_EQ("nil", run("(setq grown nil)"));
    }
}

TEST_F(LispLimits, EachEvaluationOfAFullSessionMayTakeOneMoreMegabyte) {
    lisp.setMemoryCeiling(1 << 20);
    run("(while t (setq grown (cons 1 grown)))");
    const std::size_t full = lisp.memoryInUse();
    run("(while t (setq grown (cons 1 grown)))");
    const std::size_t fuller = lisp.memoryInUse();
    EXPECT_LT(full, fuller);
    EXPECT_GE(full + (1 << 20), fuller);
}

TEST_F(LispLimits, AnotherThreadInterrupts) {
    std::atomic<bool> running{false};
    lm::host::FunctionRegistration signal("lmRunning", [&](CHostAPI& a) {
        running = true;
        a.retT();
    });
    run("(defun *error* (m) (setq told m))");
    std::thread other([&] {
        while (!running) std::this_thread::yield();
        lisp.interrupt();
    });
    EXPECT_EQ("error: Function cancelled (line 1, column 13)",
              run("(lmRunning) (while t (vl-catch-all-apply '(lambda () 1)))"));
    other.join();
    EXPECT_EQ("\"Function cancelled\"", run("told"));
}

TEST_F(LispLimits, AnInterruptWithoutAnEvaluationIsForgotten) {
    lisp.interrupt();
    EXPECT_EQ("5000", run("(setq n 0) (repeat 5000 (setq n (1+ n)))"));
}

TEST_F(LispLimits, ListsOfAMillionElementsAndLevelsAreReleased) {
    const std::size_t before = lisp.memoryInUse();
    run("(setq flat nil deep nil tail nil)");
    run("(repeat 1000000 (setq flat (cons 1 flat))) nil");
    EXPECT_EQ("1000000", run("(length flat)"));
    run("(repeat 1000000 (setq deep (list deep))) nil");
    EXPECT_LT(before + 2'000'000 * 40, lisp.memoryInUse());
    run("(setq flat nil deep nil tail nil)");
    EXPECT_GT(before + 100'000, lisp.memoryInUse());
    // The other way out: with the session.
    run("(repeat 1000000 (setq deep (list deep))) nil");
}

TEST_F(LispLimits, CountsAreExactAndFormNoCycle) {
    run("(setq a nil f nil i 0 e nil)");
    run("(defun work (n / local) (setq local (list n (list n) \"text\" 1.5 'sym)) (mapcar '(lambda (x) (cons "
        "x local)) "
        "local))");
    run("(work 1)");
    const std::size_t before = lisp.memoryInUse();
    for (int i = 0; i < 3; ++i) {
        run("(repeat 50 (setq a (work 5)))");
        run("(setq a nil)");
        run("(setq e (vl-catch-all-apply 'work '()))");
        run("(setq e nil)");
        run("(defun self (x) (self x)) (setq a (list self 'self)) (setq self (cons self a)) (setq self nil a "
            "nil)");
        run("(setq a (ssadd)) (setq a nil)");
        run("(work 1 2 3)");
        EXPECT_EQ("2", run("(vl-sort '(3 1 2) '<) (cadr (vl-sort '(3 1 2) '<))"));
    }
    run("(foreach x '(a e self) (set x nil))");
    // A few names came with the programs.
    EXPECT_GT(before + 2000, lisp.memoryInUse());
    const std::size_t again = lisp.memoryInUse();
    run("(repeat 50 (setq a (work 5))) (setq a nil)");
    EXPECT_EQ(again, lisp.memoryInUse());
}

} // namespace
