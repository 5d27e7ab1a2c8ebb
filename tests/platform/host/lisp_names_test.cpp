// SPDX-License-Identifier: MIT
// What programs may call records and entries, which numbers objects take, and what every drawing needs.
#include "lisp_support.h"

namespace {

using namespace lm::test;

class LispNames : public LispTest {};

TEST_F(LispNames, InvalidOnesAreRefused) {
    check({
        {"(entmake '((0 . \"LAYER\") (2 . \"a*b\")))", "nil"},
        {"(entmake '((0 . \"LAYER\") (2 . \"x|y\")))", "nil"},
        {"(entmake '((0 . \"POINT\") (8 . \"a\\nb\") (10 0 0)))", "nil"},
        {"(entmake '((0 . \"BLOCK\") (2 . \"a=b\") (10 0 0)))", "nil"},
        {"(entmake '((0 . \"STYLE\") (2 . \"a<b\")))", "nil"},
        {"(progn (entmake '((0 . \"LAYER\") (2 . \"L1\"))) (setq l (tblobjname \"LAYER\" \"L1\")) "
         "(entmod (list (cons -1 l) '(2 . \"L*\"))))",
         "nil"},
        {"(dictadd (namedobjdict) \"a/b\" (entmakex '((0 . \"XRECORD\") (1 . \"x\"))))", "nil"},
        {"(tblsearch \"LAYER\" \"a\\nb\")", "nil"},
        {"(entlast)", "nil"},
    });
}

TEST_F(LispNames, CaseMakesNoSecondRecord) {
    check({
        {"(progn (entmake '((0 . \"LAYER\") (2 . \"Page\"))) (entmake '((0 . \"LAYER\") (2 . \"PAGE\"))))",
         "nil"},
        {"(cdr (assoc 8 (entget (entmakex '((0 . \"POINT\") (8 . \"pAGE\") (10 0 0))))))", "\"Page\""},
        {"(progn (entmake '((0 . \"LAYER\") (2 . \"Other\"))) (entmod (list (cons -1 (tblobjname \"LAYER\" "
         "\"Other\")) '(2 . \"page\"))))",
         "nil"},
        // A record may change the case of its own name.
        {"(progn (entmod (list (cons -1 (tblobjname \"LAYER\" \"Other\")) '(2 . \"OTHER\"))) (cdr (assoc 2 "
         "(tblsearch \"LAYER\" \"OTHER\"))))",
         "\"OTHER\""},
        {"(progn (dictadd (namedobjdict) \"K\" (entmakex '((0 . \"XRECORD\") (1 . \"x\")))) (dictadd "
         "(namedobjdict) "
         "\"k\" (entmakex '((0 . \"XRECORD\") (1 . \"y\")))))",
         "nil"},
    });
}

TEST_F(LispNames, WhatEveryDrawingNeedsStays) {
    check({
        {"(entmod (list (cons -1 (tblobjname \"STYLE\" \"Standard\")) '(2 . \"Std\")))", "nil"},
        {"(cdr (assoc 2 (tblsearch \"STYLE\" \"Standard\")))", "\"Standard\""},
        {"(progn (dictadd (namedobjdict) \"ACAD_LAYOUT\" (entmakex '((0 . \"DICTIONARY\")))) (dictremove "
         "(namedobjdict) \"ACAD_LAYOUT\"))",
         "nil"},
        {"(entdel (cdr (assoc -1 (dictsearch (namedobjdict) \"ACAD_LAYOUT\"))))", "nil"},
        {"(entdel (namedobjdict))", "nil"},
        {"(progn (setq x (dictadd (namedobjdict) \"MINE\" (entmakex '((0 . \"XRECORD\") (1 . \"x\"))))) "
         "(equal x "
         "(dictremove (namedobjdict) \"MINE\")))",
         "T"},
    });
}

TEST_F(LispNames, NumbersMustBeFinite) {
    check({
        {"(progn (setq inf (exp 1000.0)) (setq c (entmakex '((0 . \"CIRCLE\") (10 1 2 3) (40 . 2.0)))) nil)",
         "nil"},
        {"(entmod (list (cons -1 c) (cons 40 inf)))", "nil"},
        {"(entmod (list (cons -1 c) (list 10 inf 0.0 0.0)))", "nil"},
        {"(entmod (list (cons -1 c) (cons 48 inf)))", "nil"},
        {"(entmod (list (cons -1 c) (list 210 0.0 0.0 inf)))", "nil"},
        {"(progn (entmake '((0 . \"BLOCK\") (2 . \"B\") (10 0 0))) (entmake '((0 . \"ENDBLK\"))) (setq i "
         "(entmakex "
         "'((0 . \"INSERT\") (2 . \"B\") (10 0 0)))) (entmod (list (cons -1 i) (cons 41 inf))))",
         "nil"},
        {"(cdr (assoc 41 (entget i)))", "1.0"},
        {"(entmake (list '(0 . \"INSERT\") '(2 . \"B\") '(10 0 0) (cons 50 inf)))", "nil"},
        {"(entmake (list '(0 . \"LWPOLYLINE\") '(90 . 1) '(10 0 0) (cons 42 inf)))", "nil"},
        {"(cdr (assoc 40 (entget c)))", "2.0"},
    });
}

} // namespace
