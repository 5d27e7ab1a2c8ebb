// SPDX-License-Identifier: MIT
// The pure functions of the dialect, subject by subject, with the cases in which they could go wrong.
#include "lisp_support.h"

namespace {

using namespace lm::test;

class LispFunctions : public LispTest {};

TEST_F(LispFunctions, DecideAndLoop) {
    check({
        {"(if nil 1)", "nil"},
        {"(if 0 'yes 'no)", "YES"},
        {"(if \"\" 'yes 'no)", "YES"},
        {"(cond)", "nil"},
        {"(cond ((= 1 2) 'a) (5))", "5"},
        {"(cond (nil 1) (t 2 3))", "3"},
        {"(and)", "T"},
        {"(and 1 nil (car 5))", "nil"},
        {"(or)", "nil"},
        {"(or nil 5 (car 5))", "T"},
        {"(progn)", "nil"},
        {"(progn 1 2)", "2"},
        {"(setq i 0) (while (< i 3) (setq i (1+ i)) 'last)", "LAST"},
        {"(while nil 1)", "nil"},
        {"(repeat 0 1)", "nil"},
        {"(repeat -5 1)", "nil"},
        {"(repeat 3 (setq i (1+ i)))", "6"},
        {"(foreach x nil 1)", "nil"},
        {"(foreach x '(1 2 . 3) (setq i x))", "2"},
        {"(foreach x '(1 2))", "nil"},
        {"(setq)", "nil"},
        {"(setq a 1 b (1+ a))", "2"},
        {"(quote (a b))", "(A B)"},
        {"(function car)", "CAR"},
        {"((function (lambda (x) (* x x))) 5)", "25"},
        {"(mapcar (function (lambda (x) (* x x))) '(1 2 3))", "(1 4 9)"},
        {"(eval (list 'quote 'x))", "X"},
        {"(eval 5)", "5"},
        {"(eval ''a)", "A"},
        {"(defun noargs () 5) (noargs)", "5"},
        {"(defun nobody ()) (nobody)", "nil"},
        {"(apply 'strcat '(\"a\" \"b\"))", "\"ab\""},
        {"(apply '(lambda (a b) (- a b)) '(5 3))", "2"},
        {"(apply '+ nil)", "0"},
        {"(apply 'or '(nil 2))", "T"},
        {"(mapcar '+ '(1 2 3) '(10 20))", "(11 22)"},
        {"(mapcar 'list '(a b) '(1 2))", "((A 1) (B 2))"},
        {"(mapcar 'car nil)", "nil"},
        {"(mapcar '(lambda (x / y) (setq y x)) '(1 2))", "(1 2)"},
        {"((lambda (x) (* x 3)) 5)", "15"},
        {"(set 'dyn 5) dyn", "5"},
        {"(boundp 'dyn)", "T"},
        {"(setq dyn nil) (boundp 'dyn)", "nil"},
        {"(boundp 'car)", "T"},
    });
}

TEST_F(LispFunctions, TellTypes) {
    check({
        {"(mapcar 'type (list 1 1.5 \"s\" '(1) 'a t nil car (lambda () 1)))",
         "(INT REAL STR LIST SYM SYM nil SUBR USUBR)"},
        {"(mapcar 'atom (list 1 nil '(1) 'a))", "(T T nil T)"},
        {"(mapcar 'listp (list 1 nil '(1) '(1 . 2)))", "(nil T T T)"},
        {"(mapcar 'vl-consp (list 1 nil '(1)))", "(nil nil T)"},
        {"(mapcar 'numberp (list 1 1.5 \"1\"))", "(T T nil)"},
        {"(mapcar 'null (list nil 0))", "(T nil)"},
        {"(mapcar 'not (list nil 0))", "(T nil)"},
        {"(mapcar 'zerop (list 0 0.0 1))", "(T T nil)"},
        {"(mapcar 'minusp (list 0 -1 -0.5))", "(nil T T)"},
        {"(mapcar 'vl-symbolp (list 'a t nil 1))", "(T T nil nil)"},
        {"(vl-symbol-name 'abc)", "\"ABC\""},
        {"(setq v 5) (vl-symbol-value 'v)", "5"},
        {"(vl-symbol-value 'never)", "nil"},
        {"(setq v 5) (atoms-family 1 '(\"car\" \"v\" \"nosuch\"))", "(\"CAR\" \"V\" nil)"},
        {"(not (member 'CAR (atoms-family 0)))", "nil"},
    });
}

TEST_F(LispFunctions, Compare) {
    check({
        {"(= 1 1.0)", "T"},
        {"(= 1 1 2)", "nil"},
        {"(= \"a\" \"A\")", "nil"},
        {"(= nil nil)", "T"},
        {"(= 'a 'a)", "T"},
        {"(= 1 \"1\")", "nil"},
        {"(= '(1) '(1))", "nil"},
        {"(/= 1 2 3)", "T"},
        {"(/= 1 1)", "nil"},
        {"(< 1 2 3)", "T"},
        {"(< 1 3 2)", "nil"},
        {"(<= 1 1.0 2)", "T"},
        {"(> \"b\" \"a\")", "T"},
        {"(>= 2 2 1)", "T"},
        {"(< \"a\" \"ab\")", "T"},
        {"(< 1 \"a\")", "error: bad argument type: comparable: \"a\""},
        {"(< 1 nil)", "error: bad argument type: numberp: nil"},
        {"(< nil)", "error: bad argument type: numberp: nil"},
        {"(eq 'a 'a)", "T"},
        {"(setq l '(1)) (eq l l)", "T"},
        {"(eq '(1) '(1))", "nil"},
        {"(equal '(1 (2 \"a\")) '(1 (2 \"a\")))", "T"},
        {"(equal 1 1.0)", "T"},
        {"(equal '(1.0 2.0) '(1.001 2.0))", "nil"},
        {"(equal '(1.0 2.0) '(1.001 2.0) 0.01)", "T"},
        {"(equal '(1 2) '(1 2 3))", "nil"},
        {"(equal '(1 . 2) '(1 . 2))", "T"},
    });
}

TEST_F(LispFunctions, TakeListsApart) {
    check({
        {"(car nil)", "nil"},
        {"(cdr nil)", "nil"},
        {"(cdr '(1 . 2))", "2"},
        {"(cadr '(1))", "nil"},
        {"(cddddr '(1 2 3 4 5))", "(5)"},
        {"(caddr '(1 2 3))", "3"},
        {"(caadr '(1 (2 3)))", "2"},
        {"(cdar '((1 2) 3))", "(2)"},
        {"(caaaar '((((1)))))", "1"},
        {"(car '(1 . 2))", "1"},
        {"(cadr '(1 . 2))", "error: bad argument type: consp: 2"},
        {"(last '(1 2 3))", "3"},
        {"(last nil)", "nil"},
        {"(last '(1 2 . 3))", "2"},
        {"(nth 0 '(a b))", "A"},
        {"(nth 5 '(a b))", "nil"},
        {"(nth -1 '(a b))", "error: bad argument type: non-negative fixnump: -1"},
        {"(length nil)", "0"},
        {"(length \"abc\")", "error: bad argument type: listp: \"abc\""},
        {"(vl-list-length '(1 2))", "2"},
        {"(vl-list-length '(1 . 2))", "nil"},
        {"(reverse '(1 (2 3) 4))", "(4 (2 3) 1)"},
        {"(reverse '(1 . 2))", "error: bad argument type: listp: (1 . 2)"},
    });
}

TEST_F(LispFunctions, MakeLists) {
    check({
        {"(list)", "nil"},
        {"(cons 1 2)", "(1 . 2)"},
        {"(cons 1 nil)", "(1)"},
        {"(vl-list* 1 2 '(3))", "(1 2 3)"},
        {"(vl-list* 1 2)", "(1 . 2)"},
        {"(append)", "nil"},
        {"(append '(1) nil '(2 (3)))", "(1 2 (3))"},
        {"(append '(1) 2)", "error: bad argument type: listp: 2"},
        {"(append '(1 . 2) '(3))", "error: bad argument type: listp: (1 . 2)"},
        {"(setq shared '(3)) (setq both (append '(1 2) shared)) (list both shared)", "((1 2 3) (3))"},
        {"(subst 'x 'a '(a b (a) a))", "(X B (A) X)"},
        {"(subst '(1 . 2) '(0 . 1) '((0 . 1) (5 . 6)))", "((1 . 2) (5 . 6))"},
        {"(vl-remove 2 '(1 2 3 2))", "(1 3)"},
        {"(vl-remove '(1) '((1) (2)))", "((2))"},
        {"(vl-remove-if 'minusp '(1 -2 3))", "(1 3)"},
        {"(vl-remove-if-not 'minusp '(1 -2 3))", "(-2)"},
        {"(vl-remove-if '(lambda (x) t) '(1))", "nil"},
    });
}

TEST_F(LispFunctions, SearchLists) {
    check({
        {"(member '(2) '((1) (2) (3)))", "((2) (3))"},
        {"(member 9 '(1))", "nil"},
        {"(member 1 nil)", "nil"},
        {"(assoc 8 '((0 . \"L\") (8 . \"0\")))", "(8 . \"0\")"},
        {"(assoc \"b\" '((\"a\" 1) (\"b\" 2)))", "(\"b\" 2)"},
        {"(assoc 1 '(5 (1 2)))", "(1 2)"},
        {"(assoc 1 nil)", "nil"},
        {"(vl-position 'b '(a b c))", "1"},
        {"(vl-position 'z '(a))", "nil"},
        {"(vl-member-if 'minusp '(1 -2 3))", "(-2 3)"},
        {"(vl-member-if-not 'minusp '(-1 2 -3))", "(2 -3)"},
        {"(vl-some 'minusp '(1 -2))", "T"},
        {"(vl-some '(lambda (x) (if (> x 1) (* x 10))) '(1 2 3))", "20"},
        {"(vl-some '= '(1 2) '(2 2))", "T"},
        {"(vl-some 'minusp nil)", "nil"},
        {"(vl-every 'numberp '(1 2))", "T"},
        {"(vl-every 'numberp '(1 \"a\"))", "nil"},
        {"(vl-every 'numberp nil)", "T"},
        {"(vl-every '< '(1 2) '(2 3 0))", "T"},
    });
}

TEST_F(LispFunctions, SortWhateverTheComparisonSays) {
    check({
        {"(vl-sort '(3 1 2) '<)", "(1 2 3)"},
        {"(vl-sort '(3 1 2) '(lambda (a b) (> a b)))", "(3 2 1)"},
        {"(vl-sort nil '<)", "nil"},
        {"(vl-sort '(1) '<)", "(1)"},
        {"(vl-sort '(2 1 2 1) '<)", "(1 1 2 2)"}, // nothing is dropped
        {"(vl-sort '((1 b) (0 c) (1 a)) '(lambda (x y) (< (car x) (car y))))", "((0 C) (1 B) (1 A))"},
        {"(vl-sort-i '(\"c\" \"a\" \"b\") '<)", "(1 2 0)"},
        {"(length (vl-sort '(5 3 8 1 9 2 7) '(lambda (a b) t)))", "7"},
        {"(vl-sort '(5 3 8) '(lambda (a b) nil))", "(5 3 8)"},
        {"(vl-sort '(1 \"a\") '<)", "error: bad argument type: comparable"},
    });
}

TEST_F(LispFunctions, Calculate) {
    check({
        {"(+)", "0"},
        {"(*)", "0"},
        {"(- 5)", "-5"},
        {"(- 5 2 1)", "2"},
        {"(/ 7 2)", "3"},
        {"(/ -7 2)", "-3"},
        {"(/ 7 2.0)", "3.5"},
        {"(/ 100 5 2)", "10"},
        {"(+ 2147483647 1)", "-2147483648"},
        {"(* 65536 65536)", "0"},
        {"(- -2147483648.0 1)", "-2.14748e+09"},
        {"(/ (- -2147483647 1) -1)", "-2147483648"},
        {"(rem -7 3)", "-1"},
        {"(rem 7.5 2)", "1.5"},
        {"(1+ 2147483647)", "-2147483648"},
        {"(1- 5.5)", "4.5"},
        {"(max 1 2.0 -3)", "2.0"},
        {"(max 3 1)", "3"},
        {"(min 1 2.0 -3)", "-3.0"},
        {"(min 4 2)", "2"},
        {"(abs -5)", "5"},
        {"(abs -5.5)", "5.5"},
        {"(fix -2.9)", "-2"},
        {"(fix 1e10)", "1.0e+10"},
        {"(float 2)", "2.0"},
        {"(gcd 12 18)", "6"},
        {"(gcd -12 18)", "6"},
        {"(sqrt 16)", "4.0"},
        {"(sqrt -1)", "error: function undefined for argument: -1"},
        {"(log 0)", "error: function undefined for argument: 0"},
        {"(exp 0)", "1.0"},
        {"(log 1)", "0.0"},
        {"(expt 2 10)", "1024"},
        {"(expt 2 -1)", "0.5"},
        {"(expt 2 40)", "1.09951e+12"},
        {"(expt 2.0 3)", "8.0"},
        {"(expt 0 -1)", "error: divide by zero"},
        {"(expt -8 0.5)", "error: function undefined for argument: -8"},
        {"(sin 0)", "0.0"},
        {"(cos 0)", "1.0"},
        {"(rtos (atan 1 1) 2 6)", "\"0.785398\""},
        {"(rtos (atan 1) 2 6)", "\"0.785398\""},
        {"(logand 12 10)", "8"},
        {"(logior 12 10)", "14"},
        {"(logand)", "0"},
        {"(~ 5)", "-6"},
        {"(lsh 1 4)", "16"},
        {"(lsh 16 -4)", "1"},
        {"(lsh 1 31)", "-2147483648"},
        {"(lsh -1 -31)", "1"},
        {"(lsh 1 32)", "0"},
        {"(boole 1 12 10)", "8"},
        {"(boole 6 12 10)", "6"},
        {"(boole 7 12 10)", "14"},
        {"(boole 8 12 10)", "-15"},
        {"(logand 1.5)", "error: bad argument type: fixnump: 1.5"},
    });
}

TEST_F(LispFunctions, HandleTexts) {
    check({
        {"(strcat)", "\"\""},
        {"(strcat \"a\" \"\" \"b\")", "\"ab\""},
        {"(strcat \"a\" 5)", "error: bad argument type: stringp: 5"},
        {"(strlen \"abc\" \"de\")", "5"},
        {"(substr \"abcdef\" 3)", "\"cdef\""},
        {"(substr \"abc\" 4)", "\"\""},
        {"(substr \"abc\" 2 0)", "\"\""},
        {"(substr \"abc\" 2 99)", "\"bc\""},
        {"(substr \"abc\" 0)", "error: bad argument type: positive fixnump: 0"},
        {"(substr \"abc\" 1 -1)", "error: bad argument type: non-negative fixnump: -1"},
        {"(strcase \"aBç\")", "\"ABÇ\""},
        {"(strcase \"ABÇ\" t)", "\"abç\""},
        {"(strcase \"ab\" nil)", "\"AB\""},
        {"(ascii \"\")", "0"},
        {"(ascii \"ç\")", "231"},
        {"(chr 231)", "\"ç\""},
        {"(chr 0)", "\"\""},
        {"(chr 70000)", "error: bad argument type: character code: 70000"},
        {"(atoi \"12.9\")", "12"},
        {"(atoi \"  -5x\")", "-5"},
        {"(atoi \"x\")", "0"},
        {"(atoi \"+7\")", "7"},
        {"(atoi \"\")", "0"},
        {"(atoi \"99999999999\")", "2147483647"},
        {"(atof \"1e3\")", "1000.0"},
        {"(atof \"2.5mm\")", "2.5"},
        {"(atof \"abc\")", "0.0"},
        {"(itoa -5)", "\"-5\""},
        {"(itoa 5.0)", "error: bad argument type: fixnump: 5.0"},
        {"(wcmatch \"MOTOR_2\" \"MOTOR*\")", "T"},
        {"(wcmatch \"NA-01\" \"@@-##\")", "T"},
        {"(wcmatch \"x\" \"a,b,x\")", "T"},
        {"(wcmatch \"x\" \"~x\")", "nil"},
        {"(wcmatch \"abc\" \"ABC\")", "nil"},
        {"(wcmatch \"a*b\" \"a`*b\")", "T"},
    });
}

TEST_F(LispFunctions, SearchTexts) {
    check({
        {"(vl-string-search \"b\" \"abcb\")", "1"},
        {"(vl-string-search \"b\" \"abcb\" 2)", "3"},
        {"(vl-string-search \"z\" \"abc\")", "nil"},
        {"(vl-string-search \"\" \"abc\")", "0"},
        {"(vl-string-search \"abcd\" \"abc\")", "nil"},
        {"(vl-string-search \"b\" \"abc\" 4)", "error: bad argument type: position: 4"},
        {"(vl-string-position (ascii \"b\") \"abcb\")", "1"},
        {"(vl-string-position (ascii \"b\") \"abcb\" 2)", "3"},
        {"(vl-string-position (ascii \"b\") \"abcb\" 0 t)", "3"},
        {"(vl-string-position (ascii \"z\") \"abcb\")", "nil"},
        {"(vl-string-subst \"X\" \"b\" \"abcb\")", "\"aXcb\""},
        {"(vl-string-subst \"X\" \"b\" \"abcb\" 2)", "\"abcX\""},
        {"(vl-string-subst \"X\" \"z\" \"abc\")", "\"abc\""},
        {"(vl-string-translate \"abc\" \"xyz\" \"aabbcd\")", "\"xxyyzd\""},
        {"(vl-string-translate \"abc\" \"x\" \"abc\")", "\"xbc\""},
        {"(vl-string-trim \" \\t\" \"  a b \\t\")", "\"a b\""},
        {"(vl-string-left-trim \"ab\" \"abcab\")", "\"cab\""},
        {"(vl-string-right-trim \"ab\" \"abcab\")", "\"abc\""},
        {"(vl-string-trim \"a\" \"aaa\")", "\"\""},
        {"(vl-string-elt \"abc\" 1)", "98"},
        {"(vl-string-elt \"abc\" 3)", "error: bad argument type: position: 3"},
        {"(vl-string-mismatch \"abcd\" \"abX\")", "2"},
        {"(vl-string-mismatch \"ABc\" \"abC\" 0 0 t)", "3"},
        {"(vl-string-mismatch \"xxab\" \"ab\" 2)", "2"},
        {"(vl-list->string '(65 0 66))", "\"AB\""},
        {"(vl-list->string '(65 -1))", "error: bad argument type: character code: -1"},
        {"(vl-string->list \"\")", "nil"},
        {"(snvalid \"PAG1\")", "T"},
        {"(snvalid \"a*b\")", "nil"},
        {"(snvalid \"\")", "nil"},
        {"(snvalid \"a|b\")", "nil"},
        {"(snvalid \"a|b\" 1)", "T"},
        {"(xstrcase \"aç\")", "\"AÇ\""},
    });
}

TEST_F(LispFunctions, WriteLengths) {
    check({
        {"(rtos 2.5 2 2)", "\"2.50\""},
        {"(rtos 2.5)", "\"2.5000\""},
        {"(rtos 2.345678 2 0)", "\"2\""},
        {"(rtos -0.00001 2 2)", "\"0.00\""},
        {"(rtos 1234.5 1 2)", "\"1.23E+03\""},
        {"(rtos 17.5 3 2)", "\"1'-5.50\\\"\""},
        {"(rtos 17.5 4 4)", "\"1'-5 1/2\\\"\""},
        {"(rtos -17.5 4 4)", "\"-1'-5 1/2\\\"\""},
        {"(rtos 12 4 4)", "\"1'\""},
        {"(rtos 0 4 4)", "\"0\\\"\""},
        {"(rtos 0.5 4 4)", "\"1/2\\\"\""},
        {"(rtos 12.5 4 4)", "\"1'-0 1/2\\\"\""},
        {"(rtos 11.9999 4 4)", "\"1'\""},
        {"(rtos 11.9999 3 2)", "\"1'\""},
        {"(rtos 15.75 5 4)", "\"15 3/4\""},
        {"(rtos 0.25 5 4)", "\"1/4\""},
        {"(rtos 2 5 4)", "\"2\""},
        {"(rtos 1.96875 5 3)", "\"2\""},
        {"(rtos 5 9)", "error: bad argument type: length mode: 9"},
        {"(rtos 5 2 -1)", "error: bad argument type: non-negative fixnump: -1"},
        {"(setvar \"DIMZIN\" 8) (rtos 2.5 2 4)", "\"2.5\""},
        {"(rtos 3 2 4)", "\"3\""},
        {"(setvar \"DIMZIN\" 4) (rtos 0.5 2 2)", "\".50\""},
        {"(rtos -0.5 2 2)", "\"-.50\""},
        {"(setvar \"DIMZIN\" 1) (list (rtos 12 4 4) (rtos 0.5 4 4))", "(\"1'-0\\\"\" \"0'-1/2\\\"\")"},
        {"(setvar \"DIMZIN\" 2) (list (rtos 12 4 4) (rtos 5 4 4))", "(\"1'\" \"0'-5\\\"\")"},
        {"(setvar \"DIMZIN\" 3) (list (rtos 12 4 4) (rtos 5 4 4))", "(\"1'-0\\\"\" \"5\\\"\")"},
        {"(setvar \"DIMZIN\" 0) (setvar \"UNITMODE\" 1) (rtos 17.5 4 4)", "\"1'5-1/2\\\"\""},
        {"(setvar \"UNITMODE\" 0) (setvar \"LUNITS\" 5) (setvar \"LUPREC\" 1) (rtos 1.5)", "\"1 1/2\""},
        {"(strlen (rtos 1e300 2 1))", "303"},
    });
}

TEST_F(LispFunctions, ReadLengths) {
    check({
        {"(distof \"2.5\")", "2.5"},
        {"(distof \"-2.5\" 2)", "-2.5"},
        {"(distof \"1.5E+01\" 1)", "15.0"},
        {"(distof \"1'-5 1/2\\\"\" 4)", "17.5"},
        {"(distof \"1'5-1/2\\\"\" 4)", "17.5"},
        {"(distof \"5 1/2\" 4)", "5.5"},
        {"(distof \"1'\" 3)", "12.0"},
        {"(distof \"1'-5.5\\\"\" 3)", "17.5"},
        {"(distof \"3/4\" 5)", "0.75"},
        {"(distof \"abc\")", "nil"},
        {"(distof \"1'\" 2)", "nil"},
        {"(distof \"2.5x\")", "nil"},
        {"(distof \"1/0\" 5)", "nil"},
        {"(distof \"\")", "nil"},
    });
}

TEST_F(LispFunctions, WriteAndReadAngles) {
    check({
        {"(angtos (/ pi 4) 0 2)", "\"45.00\""},
        {"(angtos pi)", "\"180\""},
        {"(angtos (- (/ pi 2)) 0 0)", "\"270\""},
        {"(angtos (* 2 pi) 0 4)", "\"0.0000\""},
        {"(angtos 6.2831853 0 2)", "\"0.00\""},
        {"(angtos (/ pi 4) 1 0)", "\"45d\""},
        {"(angtos 0.7941 1 2)", "\"45d30'\""},
        {"(angtos 0.79412 1 4)", "\"45d29'59\\\"\""},
        {"(angtos 0.79412 1 6)", "\"45d29'59.01\\\"\""},
        {"(angtos pi 2 1)", "\"200.0g\""},
        {"(angtos pi 3 4)", "\"3.1416r\""},
        {"(angtos (/ pi 4) 4 4)", "\"N 45d0'0\\\" E\""},
        {"(angtos (* 0.75 pi) 4 1)", "\"N 45d0' W\""},
        {"(angtos (* 1.25 pi) 4 0)", "\"S 45d W\""},
        {"(angtos (* 1.75 pi) 4 0)", "\"S 45d E\""},
        {"(mapcar '(lambda (a) (angtos a 4)) (list 0 (/ pi 2) pi (* 1.5 pi)))", "(\"E\" \"N\" \"W\" \"S\")"},
        {"(angtos 1 7)", "error: bad argument type: angle mode: 7"},
        {"(rtos (angtof \"45\") 2 4)", "\"0.7854\""},
        {"(rtos (angtof \"45d30'\" 1) 2 4)", "\"0.7941\""},
        {"(rtos (angtof \"200g\" 2) 2 4)", "\"3.1416\""},
        {"(rtos (angtof \"50\" 2) 2 4)", "\"0.7854\""},
        {"(angtof \"1.5r\" 3)", "1.5"},
        {"(angtof \"1.5\" 3)", "1.5"},
        {"(rtos (angtof \"N 45d0' E\" 4) 2 4)", "\"0.7854\""},
        {"(rtos (angtof \"S 30d W\" 4) 2 4)", "\"4.1888\""},
        {"(rtos (angtof \"W\" 4) 2 4)", "\"3.1416\""},
        {"(rtos (angtof \"-90\") 2 4)", "\"-1.5708\""},
        {"(angtof \"x\")", "nil"},
        {"(angtof \"45 x\")", "nil"},
    });
}

TEST_F(LispFunctions, ConvertUnitsAndPoints) {
    check({
        {"(cvunit 1 \"inch\" \"cm\")", "2.54"},
        {"(cvunit 180 \"degrees\" \"radian\")", "3.14159"},
        {"(cvunit '(1 2) \"m\" \"mm\")", "(1000.0 2000.0)"},
        {"(cvunit 1 \"inch\" \"degree\")", "nil"},
        {"(cvunit 1 \"nothing\" \"cm\")", "nil"},
        {"(distance '(0 0) '(3 4))", "5.0"},
        {"(distance '(0 0 0) '(2 3 6))", "7.0"},
        {"(distance '(0 0) '(2 3 6))", "3.60555"},
        {"(distance '(0) '(1 1))", "error: bad argument type: 2D/3D point: (0)"},
        {"(angle '(0 0) '(0 5))", "1.5708"},
        {"(angle '(0 0) '(0 -5))", "4.71239"},
        {"(angle '(0 0) '(5 0))", "0.0"},
        {"(polar '(1 2 3) 0 5)", "(6.0 2.0 3.0)"},
        {"(inters '(0 0) '(2 2) '(0 2) '(2 0))", "(1.0 1.0)"},
        {"(inters '(0 0) '(1 1) '(0 4) '(4 0))", "nil"},
        {"(inters '(0 0) '(1 1) '(0 4) '(4 0) nil)", "(2.0 2.0)"},
        {"(inters '(0 0) '(1 1) '(0 1) '(1 2))", "nil"},
        {"(inters '(0 0 0) '(2 2 0) '(0 2 0) '(2 0 0))", "(1.0 1.0 0.0)"},
        {"(inters '(0 0 0) '(2 2 0) '(0 2 5) '(2 0 5))", "nil"},
        {"(trans '(1 2 3) 0 1)", "(1.0 2.0 3.0)"},
        {"(trans '(1 2 3) '(0 0 -1) 0)", "(-1.0 2.0 -3.0)"},
        {"(trans '(-1 2 -3) 0 '(0 0 -1))", "(1.0 2.0 3.0)"},
        {"(trans '(1 2 3) 9 0)", "error: bad argument type: coordinate system: 9"},
    });
}

TEST_F(LispFunctions, RememberSettings) {
    check({
        {"(getvar \"cmdecho\")", "1"},
        {"(setvar \"CMDECHO\" 0)", "0"},
        {"(getvar \"CMDECHO\")", "0"},
        {"(setvar \"CMDECHO\" \"x\")", "error: variable can't take the value: \"x\""},
        {"(setvar \"USERR1\" 5)", "5.0"},
        {"(setvar \"USERS1\" \"text\") (getvar \"USERS1\")", "\"text\""},
        {"(getvar \"NOSUCHVARIABLE\")", "nil"},
        {"(setvar \"NOSUCHVARIABLE\" 1)", "error: variable can't be set: \"NOSUCHVARIABLE\""},
        {"(type (getvar \"CDATE\"))", "REAL"},
        {"(< 2460000 (getvar \"DATE\") 2500000)", "T"},
        {"(type (getvar \"MILLISECS\"))", "INT"},
        {"(setenv \"LmNoSuchVariable\" \"v\")", "\"v\""},
        {"(getenv \"LMNOSUCHVARIABLE\")", "\"v\""},
        {"(getenv \"LmOtherVariable\")", "nil"},
        {"(type (getenv \"PATH\"))", "STR"},
        {"(getcfg \"AppData/X\")", "nil"},
        {"(setcfg \"AppData/X\" \"1\") (getcfg \"appdata/x\")", "\"1\""},
    });
}

TEST_F(LispFunctions, WriteToTheConsole) {
    EXPECT_EQ("\"a\"", run("(princ \"a\")"));
    EXPECT_EQ("a", takePrinted());
    EXPECT_EQ("nil", run("(prompt \"line\\n\")"));
    EXPECT_EQ("line\n", takePrinted());
    EXPECT_EQ("nil", run("(alert \"look\")"));
    EXPECT_EQ("look\n", takePrinted());
    EXPECT_EQ("nil", run("(terpri)"));
    EXPECT_EQ("\n", takePrinted());
    EXPECT_EQ("\"x\"", run("(write-line \"x\")"));
    EXPECT_EQ("x\n", takePrinted());
    EXPECT_EQ("65", run("(write-char 65)"));
    EXPECT_EQ("A", takePrinted());
    EXPECT_EQ("(\"(a 1)\" \"(\\\"a\\\" 1)\")",
              run("(list (vl-princ-to-string '(\"a\" 1)) (vl-prin1-to-string '(\"a\" 1)))"));
    lisp.setOutput({});
    ConsoleCapture console;
    run("(princ \"to the console\")");
    EXPECT_EQ("to the console", console.text());
}

} // namespace
