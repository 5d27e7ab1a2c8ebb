// SPDX-License-Identifier: MIT
// What programs do with the drawing: entities, records, dictionaries, selection, questions, commands.
#include "lisp_support.h"

#include "drawing/drawing.h"

#include "host/command.h"

#include <stdexcept>

namespace {

using namespace lm::test;

class LispDrawing : public LispTest {
protected:
    LispDrawing() {
        run("(defun dxf (c l) (cdr (assoc c l)))"
            "(defun line (x layer) (entmakex (list '(0 . \"LINE\") (cons 8 layer) (list 10 x 0.0 0.0) (list "
            "11 x 5.0 0.0))))"
            "(defun types (/ e l) (setq e (entnext)) (while e (setq l (cons (dxf 0 (entget e)) l) e (entnext "
            "e))) "
            "(reverse l))");
    }
    OdDbDatabase& database() { return *document->database(); }
};

TEST_F(LispDrawing, MakesEntitiesOfEachType) {
    check({
        {"(cdddr (cdr (entget (entmakex '((0 . \"LINE\") (8 . \"P1\") (10 1 2 3) (11 4.0 5.0 6.0) (62 . "
         "1))))))",
         "((8 . \"P1\") (62 . 1) (10 1.0 2.0 3.0) (11 4.0 5.0 6.0))"},
        {"(dxf 10 (entget (entmakex '((0 . \"POINT\") (10 1 2)))))", "(1.0 2.0 0.0)"},
        {"(dxf 40 (entget (entmakex '((0 . \"CIRCLE\") (10 1 2) (40 . 3)))))", "3.0"},
        {"(setq e (entget (entmakex '((0 . \"ARC\") (10 1 2) (40 . 3) (50 . 0.5) (51 . 1.5))))) (list (dxf "
         "50 e) (dxf 51 e))",
         "(0.5 1.5)"},
        {"(dxf 11 (entget (entmakex '((0 . \"ELLIPSE\") (10 1 2) (11 3 0 0) (40 . 0.5)))))", "(3.0 0.0 0.0)"},
        {"(setq e (entget (entmakex '((0 . \"TEXT\") (10 1 2) (40 . 2.5) (1 . \"ação\") (7 . "
         "\"Standard\"))))) (list (dxf 1 e) "
         "(dxf 7 e) (dxf 40 e))",
         "(\"ação\" \"Standard\" 2.5)"},
        {"(dxf 1 (entget (entmakex '((0 . \"MTEXT\") (10 1 2) (1 . \"two\\\\Plines\")))))",
         "\"two\\\\Plines\""},
        {"(dxf 3 (entget (entmakex '((0 . \"ATTDEF\") (10 1 2) (1 . \"v\") (2 . \"TAG\") (3 . "
         "\"prompt\")))))",
         "\"prompt\""},
        {"(setq e (entget (entmakex '((0 . \"LWPOLYLINE\") (90 . 2) (70 . 1) (10 0 0) (42 . 0.5) (10 1 "
         "1))))) (member '(10 0.0 "
         "0.0) e)",
         "((10 0.0 0.0) (42 . 0.5) (10 1.0 1.0) (42 . 0.0))"},
        {"(dxf 70 e)", "1"},
        {"(entmake '((0 . \"POINT\") (10 7 8)))", "((0 . \"POINT\") (10 7 8))"},
    });
    EXPECT_EQ("(\"LINE\" \"POINT\" \"CIRCLE\" \"ARC\" \"ELLIPSE\" \"TEXT\" \"MTEXT\" \"ATTDEF\" "
              "\"LWPOLYLINE\" \"POINT\")",
              run("(types)"));
    EXPECT_TRUE(OdDbLayerTableRecord::cast(database().getCLAYER().openObject().get()) != nullptr);
    EXPECT_EQ("\"P1\"", run("(dxf 2 (tblsearch \"LAYER\" \"P1\"))")); // the layer came along
}

TEST_F(LispDrawing, RefusesListsThatMakeNoEntity) {
    for (const char* program : {
             "(entmake '((8 . \"0\")))",
             "(entmake '((0 . \"NOSUCH\")))",
             "(entmake '((0 . \"CIRCLE\") (10 1 2) (40 . \"x\")))",
             "(entmake '((0 . \"LINE\") (10 . 5)))",
             "(entmake '((0 . \"LINE\") 5))",
             "(entmake '((0 . \"INSERT\") (10 0 0)))",
             "(entmake '((0 . \"INSERT\") (2 . \"NOSUCH\") (10 0 0)))",
             "(entmake '((0 . \"TEXT\") (7 . \"NOSUCH\")))",
             "(entmake '((0 . \"LINE\") (8 . 5)))",
             "(entmake '((0 . \"LINE\") (62 . 999)))",
             "(entmake '((0 . \"LWPOLYLINE\") (42 . 1.0)))",
             "(entmake '((0 . \"ATTRIB\") (2 . \"T\")))",
             "(entmake '((0 . \"SEQEND\")))",
             "(entmake '((0 . \"ENDBLK\")))",
             "(entmake '((0 . \"LAYER\")))",
             "(entmake '((0 . \"LAYER\") (2 . \"0\")))",
             "(entmake nil)",
             "(entmake '((0 . \"CIRCLE\") (10 1 2) (40 . 0)))",
             "(entmake '((0 . \"CIRCLE\") (10 1 2) (40 . 1e999)))",
             "(entmake '((0 . \"LINE\") (10 1e999 2)))",
             "(entmake '((0 . \"TEXT\") (40 . -1) (1 . \"x\")))",
             "(entmake '((0 . \"TEXT\") (72 . 9)))",
             "(entmake '((0 . \"LINE\") (370 . 900)))",
             "(entmake '((0 . \"INSERT\") (2 . \"*Model_Space\") (10 0 0)))",
             "(entmakex '((0 . \"XRECORD\") (40 . \"x\")))",
             "(entmakex '((0 . \"XRECORD\") (70 . 70000)))",
             "(entmakex '((0 . \"XRECORD\") (310 . \"0G\")))",
             "(entmakex '((0 . \"XRECORD\") (330 . 5)))",
             "(entmakex '((0 . \"XRECORD\") (1 . 5)))",
             "(entmakex '((0 . \"XRECORD\") (5000 . 5)))",
         })
        EXPECT_EQ("nil", run(program)) << program;
    EXPECT_EQ("nil", run("(types)"));
    EXPECT_EQ("error: bad argument type: listp: 5 (line 1, column 1)", run("(entmake 5)"));
}

TEST_F(LispDrawing, PutsNewEntitiesOnTheCurrentLayerUnlessToldOtherwise) {
    run("(entmake '((0 . \"LAYER\") (2 . \"NOW\") (70 . 0) (62 . 3)))");
    EXPECT_EQ("\"NOW\"", run("(setvar \"CLAYER\" \"NOW\")"));
    EXPECT_EQ("\"NOW\"", run("(getvar \"CLAYER\")"));
    EXPECT_EQ("\"NOW\"", run("(dxf 8 (entget (entmakex '((0 . \"POINT\") (10 1 2)))))"));
    EXPECT_EQ("error: no such layer: \"NONE\" (line 1, column 1)", run("(setvar \"CLAYER\" \"NONE\")"));
    EXPECT_EQ("error: variable can't take the value: 5 (line 1, column 1)", run("(setvar \"CLAYER\" 5)"));
    EXPECT_EQ("error: variable can't be set: \"LTSCALE\" (line 1, column 1)",
              run("(setvar \"LTSCALE\" 2.0)"));
    EXPECT_EQ("\"now\"", run("(setvar \"CLAYER\" \"now\")"));
    EXPECT_EQ("\"NOW\"", run("(getvar \"CLAYER\")"));
}

TEST_F(LispDrawing, ChangesEntities) {
    run("(setq e (line 1.0 \"A\"))");
    check({
        {"(setq l (entget e)) (dxf 8 (entmod (subst '(8 . \"B\") (assoc 8 l) l)))", "\"B\""},
        {"(dxf 8 (entget e))", "\"B\""},
        {"(null (entmod (list (cons -1 e) '(62 . 5) '(6 . \"Continuous\") '(48 . 2.0) '(370 . 25) '(60 . "
         "1))))",
         "nil"},
        {"(setq l (entget e)) (mapcar '(lambda (c) (dxf c l)) '(62 6 48 370 60))",
         "(5 \"Continuous\" 2.0 25 1)"},
        {"(entmod (list (cons -1 e) '(420 . 16711680))) (list (assoc 420 (entget e)) (assoc 62 (entget e)))",
         "((420 . 16711680) nil)"},
        {"(entmod (list (cons -1 e) '(62 . 256))) (list (assoc 420 (entget e)) (assoc 62 (entget e)))",
         "(nil nil)"},
        {"(entmod '((8 . \"0\")))", "nil"},
        {"(entmod (list (cons -1 5)))", "nil"},
        {"(entdel e) (entmod l)", "nil"},
    });
}

TEST_F(LispDrawing, ChangesNothingWhenOnePairDoesntFit) {
    run("(setq e (line 1.0 \"A\") before (entget e))");
    EXPECT_EQ("nil", run("(entmod (list (cons -1 e) '(8 . \"C\") '(10 9 9 9) '(11 . \"x\")))"));
    EXPECT_EQ("T", run("(equal before (entget e))"));
    EXPECT_EQ("nil", run("(tblsearch \"LAYER\" \"C\")"));
}

TEST_F(LispDrawing, LeavesWhatIsTheSameAlone) {
    run("(setq e (line 1.0 \"A\"))");
    const unsigned long long before = database().changeCount();
    EXPECT_EQ("T", run("(equal (entget e) (entmod (entget e)))"));
    EXPECT_EQ(before, database().changeCount());
}

TEST_F(LispDrawing, MovesAndAddsVertices) {
    run("(setq e (entmakex '((0 . \"LWPOLYLINE\") (10 0 0) (10 1 1))) l (entget e))");
    run("(setq n (entmod (subst '(10 5.0 6.0) '(10 1.0 1.0) l)))");
    EXPECT_EQ("((10 5.0 6.0) (42 . 0.0))", run("(member '(10 5.0 6.0) (entget e))"));
    run("(entmod (append (entget e) '((10 7 8) (42 . 0.25))))");
    EXPECT_EQ("((10 7.0 8.0) (42 . 0.25))", run("(member '(10 7.0 8.0) (entget e))"));
    EXPECT_EQ("3", run("(dxf 90 (entget e))"));
    EXPECT_EQ("nil", run("(entmod (list (cons -1 e) '(10 0 0)))")); // a vertex can't be taken away
    EXPECT_EQ("3", run("(dxf 90 (entget e))"));
}

TEST_F(LispDrawing, FillsBlocksAndReferences) {
    check({
        {"(null (entmake '((0 . \"BLOCK\") (2 . \"SYM\") (70 . 2) (10 1 1 0))))", "nil"},
        {"(null (entmake '((0 . \"LINE\") (10 0 0) (11 1 1))))", "nil"},
        {"(null (entmake '((0 . \"ATTDEF\") (10 0 0) (1 . \"\") (2 . \"TAG\") (3 . \"name\"))))", "nil"},
        {"(entmake '((0 . \"ENDBLK\")))", "\"SYM\""},
        {"(types)", "nil"}, // all of it went into the block
        {"(setq b (tblsearch \"BLOCK\" \"SYM\")) (list (dxf 2 b) (dxf 10 b))", "(\"SYM\" (1.0 1.0 0.0))"},
        {"(setq e (dxf -2 b) l nil) (while e (setq l (cons (dxf 0 (entget e)) l) e (entnext e))) l",
         "(\"ATTDEF\" \"LINE\")"},
        {"(setq r (entmakex '((0 . \"INSERT\") (2 . \"SYM\") (66 . 1) (10 5 5) (41 . 2.0) (50 . 1.5)))) "
         "(type r)",
         "ENAME"},
        {"(null (entmake '((0 . \"ATTRIB\") (10 5 5) (1 . \"K1\") (2 . \"TAG\") (70 . 1))))", "nil"},
        {"(null (entmake '((0 . \"SEQEND\"))))", "nil"},
        {"(line 9.0 \"0\") (types)", "(\"INSERT\" \"ATTRIB\" \"SEQEND\" \"LINE\")"},
        {"(setq a (entnext r)) (mapcar '(lambda (c) (dxf c (entget a))) '(0 1 2 70))",
         "(\"ATTRIB\" \"K1\" \"TAG\" 1)"},
        {"(setq s (entnext a)) (list (dxf 0 (entget s)) (equal r (dxf -2 (entget s))) (equal s (entnext a)))",
         "(\"SEQEND\" T T)"},
        {"(setq i (entget r)) (mapcar '(lambda (c) (dxf c i)) '(66 2 10 41 42 50))",
         "(1 \"SYM\" (5.0 5.0 0.0) 2.0 1.0 1.5)"},
        // A block doesn't stand in itself.
        {"(entmake '((0 . \"BLOCK\") (2 . \"SELF\"))) (list (entmake '((0 . \"INSERT\") (2 . \"SELF\") (10 0 "
         "0))) (entmake '((0 . "
         "\"ENDBLK\"))))",
         "(nil \"SELF\")"},
        {"(entmod (subst '(1 . \"K2\") '(1 . \"K1\") (entget a))) (dxf 1 (entget a))", "\"K2\""},
        // A block that is there is filled anew.
        {"(entmake '((0 . \"BLOCK\") (2 . \"SYM\"))) (entmake '((0 . \"POINT\") (10 0 0))) (entmake '((0 . "
         "\"ENDBLK\")))",
         "\"SYM\""},
        {"(dxf 0 (entget (dxf -2 (tblsearch \"BLOCK\" \"SYM\"))))", "\"POINT\""},
        {"(entmake '((0 . \"BLOCK\") (2 . \"*U\"))) (entmake '((0 . \"ENDBLK\")))", "\"*U1\""},
    });
}

TEST_F(LispDrawing, WalksErasesAndFindsEntities) {
    run("(setq a (line 1.0 \"A\") b (line 2.0 \"B\") c (line 3.0 \"C\"))");
    check({
        {"(list (equal a (entnext)) (equal b (entnext a)) (equal c (entnext b)) (entnext c) (equal c "
         "(entlast)))",
         "(T T T nil T)"},
        {"(equal b (entdel b))", "T"},
        {"(list (entget b) (equal c (entnext a)))", "(nil T)"},
        {"(length (types))", "2"},
        {"(entdel b) (length (types))", "3"}, // back again, in its place
        {"(equal b (handent (dxf 5 (entget b))))", "T"},
        {"(list (handent \"FFFFF\") (handent \"x\") (handent \"\"))", "(nil nil nil)"},
        {"(entdel c) (equal b (entlast))", "T"},
        {"(setq d (line 4.0 \"D\")) (equal d (entlast))", "T"},
        {"(equal a (entupd a))", "T"},
        {"(entget 5)", "error: bad argument type: lentityp: 5"},
        {"(entdel (tblobjname \"LAYER\" \"A\"))", "nil"}, // an entity stands on it
        {"(list (type a) (eq a (entnext)))", "(ENAME T)"},
    });
}

TEST_F(LispDrawing, KeepsNamesOfOtherDrawingsApart) {
    run("(setq a (line 1.0 \"A\"))");
    hst_resbufW* name = nullptr;
    ASSERT_EQ(RTNORM, api.getSym(wide("A").c_str(), name));
    EXPECT_EQ(RTENAME, name->restype);
    CHostDocument* other = documents.manager.newDocument();
    EXPECT_EQ(RTNORM, other->getAPI()->putSym(wide("A").c_str(), name));
    EXPECT_EQ(RTNORM, api.putSym(wide("COPY").c_str(), name));
    api.relRb(name);
    EXPECT_EQ("T", run("(equal a copy)"));
    EXPECT_EQ("nil", lm::system::toUtf8(other->getAPI()->lisp().evaluate(wide("(entget a)")).value));
    EXPECT_EQ("nil", lm::system::toUtf8(other->getAPI()->lisp().evaluate(wide("(entdel a)")).value));
}

TEST_F(LispDrawing, ReadsAndWritesExtendedData) {
    check({
        {"(regapp \"RZ_A\")", "\"RZ_A\""},
        {"(regapp \"RZ_A\")", "nil"},
        {"(regapp \"RZ_B\")", "\"RZ_B\""},
        {"(setq e (line 1.0 \"A\"))"
         "(entmod (list (cons -1 e) '(-3 (\"RZ_A\" (1000 . \"ç\") (1070 . 5) (1071 . 70000) (1040 . 2) (1002 "
         ". \"{\") (1010 1 2 "
         "3) (1002 . \"}\")) (\"RZ_B\" (1000 . \"b\")))))"
         "(assoc -3 (entget e '(\"RZ_A\")))",
         "(-3 (\"RZ_A\" (1000 . \"ç\") (1070 . 5) (1071 . 70000) (1040 . 2.0) (1002 . \"{\") (1010 1.0 2.0 "
         "3.0) (1002 . "
         "\"}\")))"},
        {"(mapcar 'car (dxf -3 (entget e '(\"*\"))))", "(\"RZ_A\" \"RZ_B\")"},
        {"(assoc -3 (entget e))", "nil"},
        {"(assoc -3 (entget e '(\"NONE\")))", "nil"},
        {"(entmod (list (cons -1 e) '(-3 (\"RZ_A\")))) (mapcar 'car (dxf -3 (entget e '(\"*\"))))",
         "(\"RZ_B\")"},
        {"(entmod (list (cons -1 e) '(-3 (5))))", "nil"},
        {"(entmod (list (cons -1 e) '(-3 (\"RZ_A\" (8 . \"x\")))))", "nil"},
        {"(xdsize '(\"RZ_A\" (1000 . \"abc\") (1070 . 5)))", "16"},
        {"(< (xdroom e) 16383)", "T"},
        {"(regapp \"\")", "error: bad argument type: application name: \"\""},
    });
}

TEST_F(LispDrawing, ReadsTables) {
    run("(entmake '((0 . \"LAYER\") (2 . \"P1\") (70 . 5) (62 . -3) (6 . \"Continuous\")))"
        "(entmake '((0 . \"LAYER\") (2 . \"P2\")))");
    check({
        {"(tblsearch \"layer\" \"P1\")",
         "((0 . \"LAYER\") (2 . \"P1\") (70 . 5) (62 . -3) (6 . \"Continuous\"))"},
        {"(tblsearch \"LAYER\" \"p1\")", "nil"}, // names count with their case
        {"(tblsearch \"LAYER\" \"none\")", "nil"},
        {"(list (dxf 2 (tblnext \"LAYER\" t)) (dxf 2 (tblnext \"LAYER\")) (dxf 2 (tblnext \"LAYER\")) "
         "(tblnext \"LAYER\"))",
         "(\"0\" \"P1\" \"P2\" nil)"},
        {"(tblsearch \"LAYER\" \"P1\" t) (dxf 2 (tblnext \"LAYER\"))", "\"P2\""},
        {"(tblnext \"BLOCK\" t)", "nil"}, // spaces aren't blocks
        {"(dxf 2 (tblnext \"STYLE\" t))", "\"Standard\""},
        {"(null (tblsearch \"LTYPE\" \"Continuous\"))", "nil"},
        {"(tblsearch \"UCS\" \"x\")", "nil"},
        {"(tblnext \"DIMSTYLE\" t)", "nil"},
        {"(tblsearch \"NOSUCH\" \"x\")", "error: bad argument type: table name: \"NOSUCH\""},
        {"(setq l (entget (tblobjname \"LAYER\" \"P1\"))) (list (dxf 0 l) (dxf 2 l) (dxf 70 l))",
         "(\"LAYER\" \"P1\" 5)"},
        {"(entmod (subst '(70 . 0) '(70 . 5) (subst '(62 . 3) '(62 . -3) l))) (setq l (tblsearch \"LAYER\" "
         "\"P1\")) (list (dxf 70 "
         "l) (dxf 62 l))",
         "(0 3)"},
        {"(setq l (entget (tblobjname \"LAYER\" \"P1\"))) (entmod (subst '(2 . \"P9\") '(2 . \"P1\") l)) "
         "(list (null (tblsearch "
         "\"LAYER\" \"P9\")) (tblsearch \"LAYER\" \"P1\"))",
         "(nil nil)"},
        {"(setq l (entget (tblobjname \"LAYER\" \"P9\"))) (entmod (subst '(2 . \"P2\") '(2 . \"P9\") l))",
         "nil"}, // taken
        {"(setq l (entget (tblobjname \"LAYER\" \"0\"))) (entmod (subst '(2 . \"X\") '(2 . \"0\") l))",
         "nil"},
    });
}

TEST_F(LispDrawing, KeepsDictionariesAndRecords) {
    check({
        {"(setq d (namedobjdict)) (type d)", "ENAME"},
        {"(setq x (entmakex '((0 . \"XRECORD\") (1 . \"a\") (70 . 5) (40 . 2.5) (10 1 2 3)))) (dxf 0 (entget "
         "x))",
         "\"XRECORD\""},
        {"(equal x (dictadd d \"MINE\" x))", "T"},
        {"(cdr (cdddr (dictsearch d \"MINE\")))", "((1 . \"a\") (70 . 5) (40 . 2.5) (10 1.0 2.0 3.0))"},
        {"(dictadd d \"MINE\" x)", "nil"},
        {"(dictsearch d \"mine\")", "nil"},
        {"(entmod (subst '(1 . \"b\") '(1 . \"a\") (entget x))) (dxf 1 (dictsearch d \"MINE\"))", "\"b\""},
        {"(setq s (entmakex '((0 . \"DICTIONARY\")))) (null (dictadd d \"SUB\" s))", "nil"},
        {"(null (dictadd s \"IN\" (entmakex '((0 . \"XRECORD\") (1 . \"deep\")))))", "nil"},
        {"(dxf 1 (dictsearch s \"IN\"))", "\"deep\""},
        {"(list (dxf 0 (dictnext d t)) (dxf 0 (dictnext d)) (dictnext d))",
         "(\"XRECORD\" \"DICTIONARY\" nil)"},
        {"(dictsearch d \"MINE\" t) (dxf 0 (dictnext d))", "\"DICTIONARY\""},
        {"(mapcar 'cdr (vl-remove-if-not '(lambda (p) (= 3 (car p))) (entget d)))", "(\"MINE\" \"SUB\")"},
        {"(type (dictremove d \"MINE\"))", "ENAME"},
        {"(list (dictsearch d \"MINE\") (dictremove d \"MINE\") (entget x))", "(nil nil nil)"},
        {"(dictadd d \"LINE\" (line 1.0 \"A\"))", "nil"},
        {"(dictsearch (entlast) \"X\")", "error: bad argument type: dictionary"},
        {"(dictadd s \"AGAIN\" (dxf -1 (dictsearch s \"IN\")))", "nil"}, // it has its place
        {"(dictadd d \"RAW\" (entmakex (list '(0 . \"XRECORD\") '(310 . \"00ff7F\") '(290 . 1) (cons 330 "
         "d)))) (assoc 310 "
         "(dictsearch d \"RAW\"))",
         "(310 . \"00FF7F\")"},
        // A pointer to the owner among the data stays, the owner itself is none of them.
        {"(setq l (dictsearch d \"RAW\") n (length l)) (entmod l) (list (= n (length (dictsearch d "
         "\"RAW\"))) (equal (last l) "
         "(cons 330 d)))",
         "(T T)"},
        {"(setq x (entmakex '((0 . \"XRECORD\") (100 . \"Class\") (280 . 1) (280 . 0) (1 . \"t\")))) (cddr "
         "(entget x))",
         "((280 . 0) (1 . \"t\"))"},
        {"(entdel d)", "nil"},
        {"(equal s (entdel s))", "T"},
    });
}

TEST_F(LispDrawing, SelectsWithFilters) {
    run("(regapp \"RZ\")"
        "(line 1.0 \"A\") (line 2.0 \"B\") (line 3.0 \"AB\")"
        "(entmake '((0 . \"CIRCLE\") (8 . \"A\") (62 . 1) (10 10 10) (40 . 2.0) (-3 (\"RZ\" (1000 . "
        "\"x\")))))"
        "(entmake '((0 . \"CIRCLE\") (8 . \"B\") (10 20 20) (40 . 5.0)))"
        "(defun n (f / s) (if (setq s (ssget \"X\" f)) (sslength s) 0))");
    check({
        {"(n nil)", "5"},
        {"(n '((0 . \"LINE\")))", "3"},
        {"(n '((0 . \"line,circle\")))", "5"},
        {"(n '((8 . \"A*\")))", "3"},
        {"(n '((8 . \"a\")))", "0"},
        {"(n '((0 . \"CIRCLE\") (8 . \"A\")))", "1"},
        {"(n '((62 . 1)))", "1"},
        {"(n '((62 . 256)))", "4"},
        {"(n '((6 . \"BYLAYER\")))", "5"},
        {"(n '((40 . 2.0)))", "1"},
        {"(n '((-4 . \">=\") (40 . 2.0)))", "2"},
        {"(n '((-4 . \"<\") (40 . 5.0)))", "1"},
        {"(n '((-4 . \"/=\") (40 . 5.0)))", "1"},
        {"(n '((-4 . \">,>,*\") (10 5 5 0)))", "2"},
        {"(n '((-4 . \"<,*,*\") (10 2 0 0)))", "1"},
        {"(n '((-4 . \"<OR\") (8 . \"B\") (40 . 2.0) (-4 . \"OR>\")))", "3"},
        {"(n '((-4 . \"<NOT\") (0 . \"LINE\") (-4 . \"NOT>\")))", "2"},
        {"(n '((-4 . \"<XOR\") (0 . \"CIRCLE\") (8 . \"A\") (-4 . \"XOR>\")))", "2"},
        {"(n '((-4 . \"<or\") (-4 . \"<and\") (0 . \"LINE\") (8 . \"A\") (-4 . \"and>\") (62 . 1) (-4 . "
         "\"or>\")))",
         "2"},
        {"(n '((-3 (\"RZ\"))))", "1"},
        {"(n '((-3 (\"Z*\"))))", "0"},
        {"(n '((-4 . \"&\") (62 . 1)))", "1"},
        {"(n '((-4 . \"<OR\") (8 . \"B\")))", "error: bad selection filter"},
        {"(n '((-4 . \"nonsense\") (40 . 1.0)))", "error: bad selection filter"},
        {"(n '((-4 . \">\")))", "error: bad selection filter"},
        {"(n '(5))", "error: bad selection filter"},
    });
}

TEST_F(LispDrawing, SelectsInEachWay) {
    run("(setq a (line 1.0 \"A\") b (line 2.0 \"B\") c (line 30.0 \"F\"))");
    check({
        {"(sslength (ssget \"_X\"))", "3"},
        {"(equal c (ssname (ssget \"L\") 0))", "T"},
        {"(equal c (ssname (ssget \"P\") 0))", "T"},
        {"(sslength (ssget \"C\" '(0.5 1) '(2 2)))", "2"},
        {"(ssget \"W\" '(0.5 1) '(2 2))", "nil"},
        {"(sslength (ssget \"W\" '(0 -1) '(1.5 6)))", "1"},
        {"(equal b (ssname (ssget '(2 3)) 0))", "T"},
        {"(sslength (ssget \"C\" '(0 0) '(9 9) '((8 . \"B\"))))", "1"},
        {"(ssget \"I\")", "nil"},
        {"(ssget \"X:S\" '((8 . \"none\")))", "nil"},
        {"(ssget \"C\" '(0 0))", "error: ssget needs two points for a box"},
        {"(ssget \"NOWAY\")", "error: unknown way of selecting: NOWAY"},
        {"(ssget)", "error: unanswered question: SSGET"},
        {"(entmod (subst '(70 . 1) '(70 . 0) (entget (tblobjname \"LAYER\" \"F\")))) (list (sslength (ssget "
         "\"A\")) (sslength "
         "(ssget \"X\")))",
         "(2 3)"},
    });
    lisp.pushAnswer(wide("last"));
    lisp.pushAnswer(wide("12"));
    lisp.pushAnswer(wide(""));
    EXPECT_EQ("2", run("(sslength (ssget))").substr(0, 1));
    lisp.pushAnswer(wide("nonsense"));
    EXPECT_EQ("error: answer doesn't fit the question: SSGET: nonsense (line 1, column 1)", run("(ssget)"));
}

TEST_F(LispDrawing, KeepsSelectionSets) {
    run("(setq a (line 1.0 \"A\") b (line 2.0 \"B\"))");
    check({
        {"(sslength (ssadd))", "0"},
        {"(sslength (setq s (ssadd a)))", "1"},
        {"(eq s (ssadd b s))", "T"},
        {"(sslength s)", "2"},
        {"(sslength (ssadd b s))", "2"},
        {"(list (equal a (ssname s 0)) (equal b (ssname s 1)) (ssname s 2) (ssname s -1))", "(T T nil nil)"},
        {"(equal a (ssmemb a s))", "T"},
        {"(eq s (ssdel a s))", "T"},
        {"(list (ssmemb a s) (ssdel a s) (sslength s))", "(nil nil 1)"},
        {"(type s)", "PICKSET"},
        {"(ssadd (namedobjdict) s)", "nil"},
        {"(sslength 5)", "error: bad argument type: lselsetp: 5"},
    });
}

TEST_F(LispDrawing, AnswersQuestionsFromTheScript) {
    const auto ask = [&](const char* answer, const char* program) {
        lisp.pushAnswer(wide(answer));
        return run(program);
    };
    EXPECT_EQ("(1.0 2.0 0.0)", ask("1,2", "(getpoint \"Point: \")"));
    EXPECT_EQ("Point: 1,2\n", takePrinted());
    EXPECT_EQ("(1.0 2.0 3.0)", ask(" 1, 2 ,3", "(getpoint)"));
    EXPECT_EQ("(1.0 2.0 0.0)", ask("(1 2)", "(getpoint)"));
    EXPECT_EQ("(11.0 12.0 0.0)", ask("@1,2", "(getpoint '(10 10))"));
    EXPECT_EQ("(15.0 10.0 0.0)", ask("@5<0", "(getpoint '(10 10) \"to\")"));
    EXPECT_EQ("(3.0 4.0 0.0)", ask("3,4", "(getcorner '(0 0))"));
    EXPECT_EQ("nil", ask("", "(getpoint)"));
    EXPECT_EQ("error: answer doesn't fit", ask("what", "(getpoint)").substr(0, 25));
    EXPECT_EQ("2.5", ask("2.5", "(getdist)"));
    EXPECT_EQ("5.0", ask("3,4", "(getdist '(0 0) \"length\")"));
    EXPECT_EQ("1.5708", ask("90", "(getangle)"));
    EXPECT_EQ("1.5708", ask("0,5", "(getangle '(0 0))"));
    EXPECT_EQ("1.5708", ask("90", "(getorient)"));
    EXPECT_EQ("5", ask("5", "(getint)"));
    EXPECT_EQ("error: answer doesn't fit", ask("5.5", "(getint)").substr(0, 25));
    EXPECT_EQ("5.0", ask("5", "(getreal)"));
    EXPECT_EQ("\"any text\"", ask("any text", "(getstring t \"Name: \")"));
    EXPECT_EQ("\"\"", ask("", "(getstring)"));
    EXPECT_EQ("\"Yes\"", ask("y", "(initget \"Yes No\") (getkword)"));
    EXPECT_EQ("\"LAyer\"", ask("la", "(initget \"LAyer LType\") (getkword)"));
    EXPECT_EQ("error: answer doesn't fit", ask("l", "(initget \"LAyer LType\") (getkword)").substr(0, 25));
    EXPECT_EQ("nil", ask("", "(initget \"Yes No\") (getkword)"));
    EXPECT_EQ("error: answer doesn't fit", ask("", "(initget 1 \"Yes No\") (getkword)").substr(0, 25));
    EXPECT_EQ("error: answer doesn't fit", ask("0", "(initget 2) (getint)").substr(0, 25));
    EXPECT_EQ("error: answer doesn't fit", ask("-1", "(initget 4) (getint)").substr(0, 25));
    EXPECT_EQ("0", ask("0", "(getint)")); // initget counts for one question
    EXPECT_EQ("\"Exit\"", ask("exit", "(initget \"Exit\") (getpoint)"));
    EXPECT_EQ("\"free\"", ask("free", "(initget 128) (getint)"));
    EXPECT_EQ("\"x.dxf\"", ask("x.dxf", "(getfiled \"Open\" \"\" \"dxf\" 0)"));
    run("(setq a (line 1.0 \"A\"))");
    const std::string handle = run("(setq h (dxf 5 (entget a)))");
    EXPECT_EQ("T", ask(handle.substr(1, handle.size() - 2).c_str(), "(equal (entsel) (list a '(0 0 0)))"));
    EXPECT_EQ("(7.0 8.0 0.0)",
              ask((handle.substr(1, handle.size() - 2) + " 7,8").c_str(), "(cadr (nentsel))"));
    EXPECT_EQ("error: unanswered question: GETINT (line 1, column 1)", run("(getint)"));
    lisp.pushAnswer(wide("left over"));
    EXPECT_EQ(1u, lisp.answersLeft());
    lisp.clearAnswers();
    EXPECT_EQ(0u, lisp.answersLeft());
}

TEST_F(LispDrawing, RunsCommandsThroughTheHook) {
    std::string told;
    int code = RTNORM;
    lisp.setCommandHook([&](const hst_resbufW* arguments) {
        told = lm::test::told(arguments);
        return code;
    });
    EXPECT_EQ("nil", run("(command \"_.LINE\" '(1 2) 5 (line 1.0 \"A\") nil \"\")"));
    EXPECT_EQ("5005:_.LINE 5002 5003:5 5006 5019 5005:", told);
    EXPECT_EQ("T", run("(vl-cmdf \"x\")"));
    code = RTCAN;
    EXPECT_EQ("nil", run("(vl-cmdf \"x\")"));
    EXPECT_EQ("nil", run("(command)"));
    EXPECT_EQ("", told);
    lisp.setCommandHook([](const hst_resbufW*) -> int { throw std::runtime_error("from a command"); });
    EXPECT_THROW(lisp.evaluate(wide("(command \"x\")")), std::runtime_error);
}

TEST_F(LispDrawing, RunsCommandsOfTheHost) {
    std::string answers;
    lm::host::CommandRegistration asks("_LMLISPASKS", [&](OdEdCommandContext& context) {
        const std::string text = context.input().text("name");
        const double number = context.input().number("number", 0);
        const OdGePoint3d point = context.input().point("point");
        answers = text + " " + std::to_string(static_cast<int>(number)) + " " +
                  std::to_string(static_cast<int>(point.y));
    });
    lm::host::CommandRegistration fails(
        "_LMLISPFAILS", [](OdEdCommandContext&) { throw lm::host::CommandFailed("no reason at all"); });
    lm::host::CommandRegistration cancels("_LMLISPCANCELS",
                                          [](OdEdCommandContext&) { throw lm::host::CommandCancelled(); });
    EXPECT_EQ("T", run("(vl-cmdf \"LMLISPASKS\" \"word\" 5 '(1 2))"));
    EXPECT_EQ("word 5 2", answers);
    lisp.pushAnswer(wide("paused"));
    EXPECT_EQ("T", run("(vl-cmdf \"LMLISPASKS\" pause 6 '(1 3))"));
    EXPECT_EQ("paused 6 3", answers);
    EXPECT_EQ("nil", run("(vl-cmdf \"_LMLISPCANCELS\")"));
    EXPECT_EQ("error: no reason at all (line 1, column 1)", run("(command \"_LMLISPFAILS\")"));
    EXPECT_EQ("\"no reason at all\"",
              run("(vl-catch-all-error-message (vl-catch-all-apply 'command '(\"_LMLISPFAILS\")))"));
    EXPECT_EQ("error: ", run("(command \"_NOSUCHCOMMAND\")").substr(0, 7));
    EXPECT_EQ("nil", run("(command)"));
    EXPECT_EQ("error: bad argument type: command argument: #<SUBR CAR> (line 1, column 1)",
              run("(command \"_LMLISPASKS\" car)"));
}

TEST_F(LispDrawing, NeedsADrawingOnlyWhereThereIsOne) {
    CHostAPI alone;
    auto& session = alone.lisp();
    const auto result = [&](const char* program) {
        const lm::host::LispOutcome outcome = session.evaluate(wide(program));
        return lm::system::toUtf8(outcome.ok ? outcome.value : outcome.error);
    };
    EXPECT_EQ("3", result("(+ 1 2)"));
    EXPECT_EQ("nil", result("(getvar \"CLAYER\")"));
    for (const char* program :
         {"(entlast)", "(entnext)", "(ssget \"X\")", "(tblnext \"LAYER\" t)", "(namedobjdict)",
          "(regapp \"x\")", "(handent \"1\")", "(entmake '((0 . \"LINE\")))", "(command \"x\")"})
        EXPECT_EQ("error: no drawing (line 1, column 1)", result(program)) << program;
    CHostDocument* empty = documents.manager.newDocumentWithoutDatabase();
    EXPECT_FALSE(empty->getAPI()->lisp().evaluate(wide("(entlast)")).ok);
}

TEST_F(LispDrawing, ClosingWaitsForTheEndOfTheEvaluation) {
    bool closed = true;
    lm::host::FunctionRegistration close("lmClose", [&](CHostAPI& a) {
        closed = documents.manager.closeDocument(document);
        a.retT();
    });
    EXPECT_EQ("T", run("(lmClose)"));
    EXPECT_FALSE(closed);
}

} // namespace
