// SPDX-License-Identifier: MIT
// From text to expressions and back: tokens, texts, comments, lists, places of errors, and printing.
#include "lisp_support.h"

namespace {

using namespace lm::test;

class LispReader : public LispTest {};
class LispPrinter : public LispTest {};

TEST_F(LispReader, ReadsTokens) {
    check({
        {"'abc", "ABC"},
        {"'c:Go", "C:GO"},
        {"'ção", "ÇÃO"},
        {"'1+", "1+"},
        {"'3d-pt", "3D-PT"},
        {"'-", "-"},
        {"'a.b", "A.B"},
        {"'1e", "1E"},
        {"'a#b:c", "A#B:C"},
        {"nil", "nil"},
        {"NiL", "nil"},
        {"()", "nil"},
        {"( )", "nil"},
        {"t", "T"},
        {"12", "12"},
        {"+12", "12"},
        {"-12", "-12"},
        {"2147483647", "2147483647"},
        {"2147483648", "2.14748e+09"},
        {"-2147483648", "-2147483648"},
        {"1.5", "1.5"},
        {"1.", "1.0"},
        {".5", "0.5"},
        {"-.5", "-0.5"},
        {"1e3", "1000.0"},
        {"1.5E-3", "0.0015"},
        {"1e+02", "100.0"},
        {"1e999", "inf"},
        {"1e-999", "0.0"},
    });
}

TEST_F(LispReader, ReadsTextsWithEscapes) {
    check({
        {"(strlen \"a\\n\\t\\r\\e\\\"\\\\\")", "7"},
        {"(vl-string->list \"\\n\\t\\r\\e\\\"\\\\\")", "(10 9 13 27 34 92)"},
        {"(vl-string->list \"\\101\\7\\0601\")", "(65 7 48 49)"},
        {"(vl-string->list \"\\U+00E7\")", "(231)"},
        {"\"\\U+00\"", "\"U+00\""},
        {"\"\\q\"", "\"q\""},
        {"(strlen \"a\\000b\")", "2"}, // a text has no 0 unit
        {"\"two\nlines\"", "\"two\\nlines\""},
        {"\"ação\"", "\"ação\""},
        {"(strlen \"\")", "0"},
    });
}

TEST_F(LispReader, PassesOverComments) {
    check({
        {"; nothing here", "nil"},
        {"(+ 1 ; one\n 2)", "3"},
        {"(+ 1 ;| in\nside |; 2)", "3"},
        {";|| two bars |; 5", "5"},
        {"(strlen \"; no comment\")", "12"},
        {"7;end", "7"},
        {"; one line\r8", "8"},
    });
}

TEST_F(LispReader, ReadsListsAndPairs) {
    check({
        {"'(1 . 2)", "(1 . 2)"},
        {"'(1 2 . 3)", "(1 2 . 3)"},
        {"'(1 . (2 3))", "(1 2 3)"},
        {"'(1 . nil)", "(1)"},
        {"'((a)(b . c))", "((A) (B . C))"},
        {"''a", "(QUOTE A)"},
        {"' a", "A"},
        {"'(1.5 .5)", "(1.5 0.5)"},
        {"(quote(a\"b\"c))", "(A \"b\" C)"},
    });
}

TEST_F(LispReader, TellsWhereTheTextIsWrong) {
    check({
        {"(+ 1 2", "error: malformed list on input (line 1, column 1)"},
        {"5\n  (a (b)", "error: malformed list on input (line 2, column 3)"},
        {"(a\n (b", "error: malformed list on input (line 2, column 2)"},
        {"(+ 1 2))", "error: extra right paren on input (line 1, column 8)"},
        {"\n \"abc", "error: malformed string on input (line 2, column 2)"},
        {"\"abc\\", "error: malformed string on input (line 1, column 1)"},
        {"(1 . )", "error: misplaced dot on input (line 1, column 4)"},
        {"( . 1)", "error: misplaced dot on input (line 1, column 3)"},
        {"(1 . 2 3)", "error: misplaced dot on input (line 1, column 4)"},
        {".", "error: misplaced dot on input (line 1, column 1)"},
        {"(')", "error: nothing to quote on input (line 1, column 2)"},
        {"'", "error: nothing to quote on input (line 1, column 1)"},
        {"1 ;| open", "error: comment without an end (line 1, column 3)"},
    });
}

TEST_F(LispReader, EvaluatesWhatComesBeforeABrokenExpression) {
    EXPECT_EQ("error: malformed list on input (line 2, column 1)", run("(setq kept 5)\n(oops"));
    EXPECT_EQ("5", run("kept"));
}

TEST_F(LispReader, EndsNestingThatIsTooDeepWithAnError) {
    const std::string deep(3'000'000, '(');
    EXPECT_EQ("error: recursion too deep", run(deep).substr(0, 25));
    EXPECT_EQ("error: recursion too deep", run(std::string(3'000'000, '\'') + "a").substr(0, 25));
    EXPECT_EQ("3", run("(+ 1 2)"));
}

TEST_F(LispReader, FunctionReadTakesTheFirstExpression) {
    check({
        {"(read \"(a b) c\")", "(A B)"},
        {"(read \"\")", "nil"},
        {"(read)", "nil"},
        {"(read \"1.5\")", "1.5"},
        {"(read \"(a\")", "error: malformed list on input"},
        {"(read 5)", "error: bad argument type: stringp: 5"},
    });
}

TEST_F(LispReader, GivesNothingForAnEmptyText) {
    check({{"", "nil"}, {" \n\t ", "nil"}, {"\xEF\xBB\xBF(+ 1 2)", "3"}});
}

TEST_F(LispPrinter, PrintsRealsWithSixDigits) {
    check({
        {"3.0", "3.0"},
        {"3.14159265", "3.14159"},
        {"123456.0", "123456.0"},
        {"1234567.0", "1.23457e+06"},
        {"1000000.0", "1.0e+06"},
        {"0.0001", "0.0001"},
        {"0.00001", "1.0e-05"},
        {"-2.5", "-2.5"},
        {"0.1", "0.1"},
        {"100.0", "100.0"},
    });
}

TEST_F(LispPrinter, EscapesTextsForPrin1Alone) {
    run("(prin1 \"a\\\"b\\\\c\\n\\t\\r\\e\\001\") (princ \"a\\\"b\\n\")");
    EXPECT_EQ("\"a\\\"b\\\\c\\n\\t\\r\\e\\001\"a\"b\n", takePrinted());
    run("(print '(1 \"a\"))");
    EXPECT_EQ("\n(1 \"a\") ", takePrinted());
    run("(princ '(\"a\" \"b c\"))");
    EXPECT_EQ("(a b c)", takePrinted());
}

TEST_F(LispPrinter, ShowsWhatIsNoListOrNumber) {
    check({
        {"car", "#<SUBR CAR>"},
        {"(defun named (x) x) named", "#<USUBR NAMED>"},
        {"(lambda (x) x)", "#<USUBR>"},
        {"(vl-catch-all-apply 'quit)", "#<%catch-all-apply-error%>"},
    });
    EXPECT_EQ("<Selection set: ", run("(ssadd)").substr(0, 16));
}

TEST_F(LispPrinter, PrintsNothingForThePrincWithoutArguments) {
    EXPECT_EQ("", run("(progn (setq x 1) (princ))"));
    EXPECT_EQ("", run("(prin1)"));
    EXPECT_EQ("", run("(print)"));
    EXPECT_EQ("", takePrinted());
}

TEST_F(LispPrinter, KeepsNamesThatCppMadeAsTheyStand) {
    const lm::WideString name = wide("lower Case");
    EXPECT_EQ(RTNORM, lisp.store(name, nullptr));
    EXPECT_EQ("T",
              run("(vl-symbolp (car (vl-remove-if-not '(lambda (s) (= (vl-symbol-name s) \"lower Case\"))"
                  " (atoms-family 0))))"));
}

TEST_F(LispPrinter, EndsValuesThatAreTooDeepOrTooLongWithAnError) {
    run("(setq deep nil) (repeat 200000 (setq deep (list deep))) nil");
    EXPECT_EQ("error: recursion too deep", run("deep").substr(0, 25));
    run("(setq deep nil wide '(1)) (repeat 60 (setq wide (list wide wide))) nil");
    lisp.setTimeLimit(0.2);
    EXPECT_EQ("error: time limit reached", run("wide").substr(0, 25));
    lisp.setTimeLimit(0);
    lisp.setMemoryCeiling(4 << 20);
    EXPECT_EQ("error: memory ceiling reached", run("(vl-prin1-to-string wide)").substr(0, 29));
    // The message about such a value is cut.
    EXPECT_EQ("error: bad argument type: numberp: (((((", run("(+ wide 1)").substr(0, 40));
    EXPECT_GT(300u, run("(+ wide 1)").size());
}

} // namespace
