// SPDX-License-Identifier: MIT
// What goes wrong in programs: the one line, `*error*`, caught errors, and exceptions of C++ that pass.
#include "lisp_support.h"

#include "host/functions.h"

#include <stdexcept>

namespace {

using namespace lm::test;
using lm::host::FunctionRegistration;

class LispErrors : public LispTest {};

TEST_F(LispErrors, BecomeOneLineWithThePlaceOfTheExpression) {
    EXPECT_EQ("error: no function definition: NOSUCH (line 1, column 1)", run("(nosuch 1)"));
    EXPECT_EQ("error: bad argument type: consp: 5 (line 3, column 3)",
              run("(setq a 1)\n\n  (car 5) (setq b 2)"));
    EXPECT_EQ("nil", run("b")); // nothing is evaluated behind the error
    EXPECT_EQ("1", run("a"));   // and what came before stays
    const lm::host::LispOutcome outcome = lisp.evaluate(wide("\n (car 5)"));
    EXPECT_FALSE(outcome.ok);
    EXPECT_EQ(2, outcome.line);
    EXPECT_EQ(2, outcome.column);
    EXPECT_TRUE(outcome.value.empty());
}

TEST_F(LispErrors, KeepToOneLineWhateverTheMessageHolds) {
    EXPECT_EQ("error: bad argument type: numberp: \"a\\nb\" (line 1, column 1)", run("(+ 1 \"a\\nb\")"));
    ASSERT_EQ(RTNORM, lisp.store(wide("a\nb"), nullptr));
    const std::string line =
        run("(foreach s (atoms-family 0) (if (= \"a\\nb\" (vl-symbol-name s)) (+ 1 s)))");
    EXPECT_EQ("error: bad argument type: numberp: a b (line 1, column 1)", line);
}

TEST_F(LispErrors, NameWhatWasWantedAndWhatCame) {
    check({
        {"(+ 1 \"a\")", "error: bad argument type: numberp: \"a\""},
        {"(strlen 5)", "error: bad argument type: stringp: 5"},
        {"(length '(1 . 2))", "error: bad argument type: listp: (1 . 2)"},
        {"(nth \"a\" '(1))", "error: bad argument type: fixnump: \"a\""},
        {"(set 5 1)", "error: bad argument type: symbolp: 5"},
        {"(setq 5 1)", "error: bad argument type: symbolp: 5"},
        {"(setq t 1)", "error: symbol can't be changed: T"},
        {"(setq a)", "error: too few arguments: SETQ"},
        {"(car)", "error: too few arguments: CAR"},
        {"(car 1 2)", "error: too many arguments: CAR"},
        {"(if)", "error: too few arguments: IF"},
        {"(if 1 2 3 4)", "error: too many arguments: IF"},
        {"(defun f (a b) a) (f 1)", "error: too few arguments: #<USUBR F>"},
        {"(f 1 2 3)", "error: too many arguments: #<USUBR F>"},
        {"(defun f (a 5) a)", "error: bad argument list: (A 5)"},
        {"(defun f (a t) a)", "error: bad argument list: (A T)"},
        {"(defun f (a / b / c) a)", "error: bad argument list: (A / B / C)"},
        {"(/ 1 0)", "error: divide by zero"},
        {"(/ 1.0 0.0)", "error: divide by zero"},
        {"(rem 1 0)", "error: divide by zero"},
        {"(1 2 3)", "error: bad function: 1"},
        {"(\"a\")", "error: bad function: \"a\""},
        {"(setq notfun 5) (notfun)", "error: bad function: 5"},
        {"(mapcar 'nosuch '(1))", "error: no function definition: NOSUCH"},
        {"(+ 1 . 2)", "error: malformed list: (1 . 2)"},
        {"(cond 5)", "error: bad cond clause: 5"},
        {"(quit)", "error: quit / exit abort"},
        {"(exit)", "error: quit / exit abort"},
        {"(repeat 2.5 1)", "error: bad argument type: fixnump: 2.5"},
        {"(foreach x 5 x)", "error: bad argument type: listp: 5"},
        {"(while)", "error: too few arguments: WHILE"},
    });
}

TEST_F(LispErrors, AreToldToTheGlobalErrorFunction) {
    run("(defun *error* (m) (setq told m) (princ))");
    EXPECT_EQ("error: divide by zero (line 1, column 1)", run("(/ 1 0)"));
    EXPECT_EQ("\"divide by zero\"", run("told"));
    EXPECT_EQ("error: malformed list on input (line 1, column 1)", run("(oops"));
    EXPECT_EQ("\"malformed list on input\"", run("told"));
    run("(setq *error* nil told nil) (/ 1 0)");
    EXPECT_EQ("nil", run("told"));
}

TEST_F(LispErrors, AreToldToALocalErrorFunctionWhileLocalsHold) {
    run("(defun *error* (m) (setq told 'global))"
        "(defun inner (x) (car x))"
        "(defun outer (/ *error* mine)"
        "  (setq mine 42)"
        "  (defun *error* (m) (setq told (list m mine)))"
        "  (inner 7))");
    run("(outer)");
    EXPECT_EQ("(\"bad argument type: consp: 7\" 42)", run("told"));
    EXPECT_EQ("nil", run("mine")); // the binding was undone all the same
    run("(car 5)");
    EXPECT_EQ("GLOBAL", run("told"));
}

TEST_F(LispErrors, OfTheErrorFunctionItselfAreNotReported) {
    run("(defun *error* (m) (setq calls (1+ calls)) (car 5)) (setq calls 0)");
    EXPECT_EQ("error: divide by zero (line 1, column 1)", run("(/ 1 0)"));
    EXPECT_EQ("1", run("calls"));
    run("(setq *error* 5)");
    EXPECT_EQ("error: divide by zero (line 1, column 1)", run("(/ 1 0)"));
}

TEST_F(LispErrors, AreCaughtByTheProgram) {
    run("(defun *error* (m) (setq told m)) (setq told nil)");
    check({
        {"(setq e (vl-catch-all-apply 'car '(5)))", "#<%catch-all-apply-error%>"},
        {"(vl-catch-all-error-p e)", "T"},
        {"(vl-catch-all-error-message e)", "\"bad argument type: consp: 5\""},
        {"(type e)", "VL-CATCH-ALL-APPLY-ERROR"},
        {"(vl-catch-all-apply 'car '((1 2)))", "1"},
        {"(vl-catch-all-apply '(lambda () (quit)))", "#<%catch-all-apply-error%>"},
        {"(vl-catch-all-error-p 5)", "nil"},
        {"(vl-catch-all-error-message 5)", "error: bad argument type: vl-catch-all-error-p: 5"},
        {"(vl-catch-all-apply 'and '(1 nil))", "nil"},
    });
    EXPECT_EQ("\"bad argument type: vl-catch-all-error-p: 5\"", run("told")); // only what wasn't caught
}

TEST_F(LispErrors, UndoTheBindingsOnTheirWay) {
    run("(setq a 1 b 2)"
        "(defun f (a / b) (setq b 3) (g a))"
        "(defun g (b) (foreach a '(7 8) (car a)))");
    run("(f 9)");
    EXPECT_EQ("(1 2)", run("(list a b)"));
    run("(vl-catch-all-apply 'f '(9))");
    EXPECT_EQ("(1 2)", run("(list a b)"));
}

TEST_F(LispErrors, LetExceptionsOfCalledFunctionsPassUnchanged) {
    FunctionRegistration throws("lmThrows", [](CHostAPI&) { throw std::runtime_error("from C++"); });
    FunctionRegistration raises("lmRaises", [](CHostAPI&) { throw OdError(eWasErased); });
    run("(setq a 1) (defun *error* (m) (setq told m)) (defun f (a / b) (lmThrows a))");
    try {
        lisp.evaluate(wide("(f 5)"));
        FAIL() << "the exception must pass";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("from C++", error.what());
    }
    EXPECT_EQ(0, lisp.depth());
    EXPECT_EQ(0u, api.callDepth());
    EXPECT_EQ("(1 nil nil)", run("(list a b told)")); // bindings undone; it is no error of LISP
    EXPECT_THROW(lisp.evaluate(wide("(vl-catch-all-apply 'lmRaises '())")), OdError);
    EXPECT_THROW(api.evalLisp(wide("(mapcar 'lmThrows '(1 2))").c_str()), std::runtime_error);
    EXPECT_EQ("3", run("(+ 1 2)"));
}

TEST_F(LispErrors, OfAnEvaluationInsideAnotherEndThere) {
    int code = 0;
    FunctionRegistration nested("lmNested", [&](CHostAPI& a) {
        EXPECT_TRUE(a.isEvaluating());
        code = a.evalLisp(wide("(car 5)").c_str());
        a.retT();
    });
    ConsoleCapture console;
    EXPECT_EQ("(T 2)", run("(list (lmNested) (+ 1 1))"));
    EXPECT_EQ(RTERROR, code);
    EXPECT_EQ("error: bad argument type: consp: 5 (line 1, column 1)\n", console.text());
    EXPECT_FALSE(api.isEvaluating());
    // A caught error outside doesn't keep the inner one from being told.
    run("(defun *error* (m) (setq told m))");
    run("(vl-catch-all-apply 'lmNested '())");
    EXPECT_EQ("\"bad argument type: consp: 5\"", run("told"));
}

TEST_F(LispErrors, NameTheFileThatWasBeingLoaded) {
    const TemporaryFolder folder;
    const std::string path = folder.file("broken.lsp", "(setq one 1)\n\n  (car 5)\n");
    EXPECT_EQ("error: bad argument type: consp: 5 (broken.lsp, line 3, column 3)",
              run("(load \"" + path + "\")"));
    EXPECT_EQ("1", run("one"));
    folder.file("outer.lsp", "\n(load \"" + path + "\")");
    EXPECT_EQ("error: bad argument type: consp: 5 (broken.lsp, line 3, column 3)",
              run("(load \"" + (folder.path() / "outer").string() + "\")"));
}

} // namespace
