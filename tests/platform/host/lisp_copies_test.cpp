// SPDX-License-Identifier: MIT
// Programs copy objects by (entmakex (entget e)) and change them by entmod: no group may be lost on the way
// without a word, in the drawing or in its file.
#include "lisp_support.h"

#include "drawing/drawing.h"
#include "drawing/reader.h"
#include "drawing/writer.h"

namespace {

using namespace lm::test;

constexpr const char* kPrelude =
    "(defun dxf (c l) (cdr (assoc c l)))"
    "(defun plain (l) (vl-remove-if '(lambda (p) (member (car p) '(-1 5 330))) l))"
    "(defun shown (e) (plain (entget e '(\"*\"))))"
    "(defun copy (e) (entmakex (plain (entget e '(\"*\")))))"
    "(defun some (e codes) (vl-remove-if-not '(lambda (p) (member (car p) codes)) (entget e)))";

class LispCopies : public LispTest {
protected:
    LispCopies() { run(kPrelude); }
    /// Opens what the drawing is in a file and gives its session.
    lm::host::LispSession& saved() {
        const std::string path = folder.file("saved.dxf", "");
        std::string bytes;
        lm::drawing::writeDrawing(*document->database(),
                                  [&bytes](const char* part, std::size_t size) { bytes.append(part, size); });
        folder.file("saved.dxf", bytes);
        auto& session = documents.manager.openDocument(odPath(path))->getAPI()->lisp();
        session.evaluate(wide(kPrelude));
        return session;
    }
    static std::string value(lm::host::LispSession& session, const std::string& program) {
        const lm::host::LispOutcome outcome = session.evaluate(wide(program));
        return lm::system::toUtf8(outcome.ok ? outcome.value : outcome.error);
    }

    TemporaryFolder folder;
};

/// What is made, and the groups that its list and that of its copy have to show.
struct Made {
    const char* list;
    const char* codes;
    const char* shown;
};

const Made kMade[] = {
    {"((0 . \"MTEXT\") (100 . \"AcDbEntity\") (8 . \"0\") (62 . 3) (100 . \"AcDbMText\") (10 1 2 0) (40 . "
     "2.5) (41 . 50.0) "
     "(71 . 5) (72 . 1) (1 . \"hello\") (7 . \"Standard\") (210 0 0 1) (11 0 1 0))",
     "(71 72 1 7 11)", "((71 . 5) (1 . \"hello\") (7 . \"Standard\") (11 0.0 1.0 0.0) (72 . 1))"},
    {"((0 . \"MTEXT\") (10 1 2 0) (3 . \"one ^ ção \") (3 . \"two \") (1 . \"three\") (50 . 0.5) (73 . 2) "
     "(44 . 1.5) "
     "(90 . 1) (63 . 2) (45 . 1.25))",
     "(1 50 73 44 90 63 45)",
     "((1 . \"one ^ ção two three\") (50 . 0.5) (73 . 2) (44 . 1.5) (90 . 1) (63 . 2) (45 . 1.25))"},
    {"((0 . \"INSERT\") (2 . \"LAMP\") (10 0 0 0) (70 . 3) (71 . 2) (44 . 10.0) (45 . -20.0))",
     "(70 71 44 45)", "((70 . 3) (71 . 2) (44 . 10.0) (45 . -20.0))"},
    {"((0 . \"LWPOLYLINE\") (90 . 2) (70 . 129) (43 . 0.5) (38 . 1.0) (39 . 3.0) (10 0 0) (42 . 0.5) (10 1 "
     "1))",
     "(90 70 43 38 39 10 40 41 42)",
     "((90 . 2) (70 . 129) (43 . 0.5) (38 . 1.0) (39 . 3.0) (10 0.0 0.0) (42 . 0.5) (10 1.0 1.0) (42 . "
     "0.0))"},
    {"((0 . \"LWPOLYLINE\") (90 . 3) (10 0 0) (40 . 0.1) (41 . 0.2) (42 . 0.5) (91 . 0) (10 1 1) (10 2 2) "
     "(41 . 7))",
     "(10 40 41 42)",
     "((10 0.0 0.0) (40 . 0.1) (41 . 0.2) (42 . 0.5) (10 1.0 1.0) (40 . 0.0) (41 . 0.0) (42 . 0.0) (10 2.0 "
     "2.0) "
     "(40 . 0.0) (41 . 7.0) (42 . 0.0))"},
    {"((0 . \"LINE\") (10 0 0 0) (11 1 1 1) (39 . 2.0) (210 0 0 -1))", "(10 39 210)",
     "((10 0.0 0.0 0.0) (39 . 2.0) (210 0.0 0.0 -1.0))"},
    {"((0 . \"CIRCLE\") (10 0 0 0) (40 . 1.0) (39 . 2.0))", "(39)", "((39 . 2.0))"},
    {"((0 . \"ARC\") (10 0 0 0) (40 . 1.0) (50 . 0.0) (51 . 1.0) (39 . -2.0))", "(39 50 51)",
     "((50 . 0.0) (51 . 1.0) (39 . -2.0))"},
    {"((0 . \"POINT\") (10 0 0 0) (39 . 2.0) (50 . 1.0) (210 1 0 0))", "(10 39 50 210)",
     "((10 0.0 0.0 0.0) (39 . 2.0) (50 . 1.0) (210 1.0 0.0 0.0))"},
    {"((0 . \"TEXT\") (10 0 0 0) (40 . 1.0) (1 . \"t\") (39 . 1.0) (51 . 0.25) (71 . 2))", "(39 51 71)",
     "((39 . 1.0) (51 . 0.25) (71 . 2))"},
    {"((0 . \"ATTDEF\") (10 0 0 0) (1 . \"v\") (2 . \"T\") (3 . \"p\") (70 . 10) (280 . 0))", "(70)",
     "((70 . 10))"},
    {"((0 . \"POINT\") (10 5 5 0) (67 . 1) (410 . \"Layout1\"))", "(67 410)",
     "((67 . 1) (410 . \"Layout1\"))"},
    {"((0 . \"POINT\") (10 5 5 0) (410 . \"layout1\"))", "(67 410)", "((67 . 1) (410 . \"Layout1\"))"},
    {"((0 . \"POINT\") (10 5 5 0) (410 . \"Model\") (67 . 0))", "(67 410)", "nil"},
};

TEST_F(LispCopies, KeepWhatAnEntityIsMadeOf) {
    run("(entmake '((0 . \"BLOCK\") (2 . \"LAMP\") (70 . 0) (10 0 0)))(entmake '((0 . \"POINT\") (10 0 0)))"
        "(entmake '((0 . \"ENDBLK\")))(regapp \"RZ\") (setq handles nil)");
    for (const Made& row : kMade) {
        SCOPED_TRACE(row.list);
        run("(setq e (entmakex (append '" + std::string(row.list) +
            " '((-3 (\"RZ\" (1000 . \"x\")))))) c (copy e))");
        EXPECT_EQ("(ENAME ENAME)", run("(list (type e) (type c))"));
        EXPECT_EQ(row.shown, run("(some e '" + std::string(row.codes) + ")"));
        EXPECT_EQ("T", run("(equal (shown e) (shown c))"));
        EXPECT_EQ("T", run("(setq l (entget e '(\"*\"))) (equal l (entmod l))"));
        run("(setq handles (append handles (list (dxf 5 (entget e)) (dxf 5 (entget c)))))");
    }
    // In the file as well, and copies of what was read are whole.
    const std::string handles = run("(vl-prin1-to-string handles)");
    const std::string before = run("(mapcar '(lambda (h) (shown (handent h))) handles)");
    auto& session = saved();
    value(session, "(setq handles (read " + handles + "))");
    EXPECT_EQ(before, value(session, "(mapcar '(lambda (h) (shown (handent h))) handles)"));
    EXPECT_EQ(before, value(session, "(mapcar '(lambda (h) (shown (copy (handent h)))) handles)"));
}

TEST_F(LispCopies, RefuseGroupsThatCannotBeKept) {
    run("(entmake '((0 . \"BLOCK\") (2 . \"LAMP\") (10 0 0)))(entmake '((0 . \"ENDBLK\")))");
    for (const char* list : {
             "((0 . \"LINE\") (10 0 0) (11 1 1) (40 . 5.0))",
             "((0 . \"LINE\") (10 0 0) (11 1 1) (39 . \"x\"))",
             "((0 . \"LINE\") (10 0 0) (11 1 1) (210 . 5))",
             "((0 . \"LINE\") (10 0 0) (11 1 1) (347 . \"A\"))",
             "((0 . \"LINE\") (10 0 0) (11 1 1) (410 . \"Nowhere\"))",
             "((0 . \"LINE\") (10 0 0) (11 1 1) (67 . 1) (410 . \"Model\"))",
             "((0 . \"LINE\") (10 0 0) (11 1 1) (67 . 7))",
             "((0 . \"MTEXT\") (10 0 0) (1 . \"x\") (71 . 10))",
             "((0 . \"MTEXT\") (10 0 0) (1 . \"x\") (7 . \"None\"))",
             "((0 . \"MTEXT\") (10 0 0) (3 . 5) (1 . \"x\"))",
             "((0 . \"MTEXT\") (10 0 0) (1 . \"x\") (75 . 1))",
             "((0 . \"INSERT\") (2 . \"LAMP\") (10 0 0) (70 . -1))",
             "((0 . \"INSERT\") (2 . \"LAMP\") (10 0 0) (71 . 40000))",
             "((0 . \"LWPOLYLINE\") (90 . 3) (10 0 0) (10 1 1))",
             "((0 . \"LWPOLYLINE\") (10 0 0) (40 . -1.0))",
             "((0 . \"LWPOLYLINE\") (10 0 0) (43 . -1.0))",
             "((0 . \"LWPOLYLINE\") (10 0 0) (70 . 2))",
             "((0 . \"CIRCLE\") (10 0 0))",
             "((0 . \"LAYER\") (2 . \"L\") (49 . 1.0))",
             "((0 . \"LTYPE\") (2 . \"D\") (73 . 2) (40 . 1.0) (49 . 1.0))",
             "((0 . \"LTYPE\") (2 . \"D\") (49 . 1.0))",
             "((0 . \"BLOCK\") (2 . \"B\") (70 . 4) (10 0 0) (1 . \"other.dxf\"))",
             "((0 . \"BLOCK\") (2 . \"B\") (10 0 0) (4 . \"what it is for\"))",
         })
        EXPECT_EQ("nil", run("(entmakex '" + std::string(list) + ")")) << list;
    EXPECT_EQ("nil", run("(entnext)"));
    // A block that is there isn't emptied by a head that doesn't do.
    run("(entmake '((0 . \"BLOCK\") (2 . \"FULL\") (10 0 0)))(entmake '((0 . \"POINT\") (10 0 0)))(entmake "
        "'((0 . "
        "\"ENDBLK\")))");
    EXPECT_EQ("nil", run("(entmake '((0 . \"BLOCK\") (2 . \"FULL\") (10 . 5)))"));
    EXPECT_EQ("ENAME", run("(type (dxf -2 (tblsearch \"BLOCK\" \"FULL\")))"));
}

TEST_F(LispCopies, ChangeWhatCanBeChanged) {
    run("(entmake '((0 . \"BLOCK\") (2 . \"LAMP\") (10 0 0)))(entmake '((0 . \"ENDBLK\")))"
        "(defun mod (e pairs) (not (null (entmod (cons (cons -1 e) pairs)))))");
    check({
        {"(setq e (entmakex '((0 . \"MTEXT\") (10 0 0) (1 . \"x\")))) (mod e '((71 . 9) (7 . \"Standard\") "
         "(50 . 1.0)))",
         "T"},
        {"(some e '(71 7 50))", "((71 . 9) (7 . \"Standard\") (50 . 1.0))"},
        {"(mod e '((11 0 1 0)))", "T"},
        {"(list (dxf 11 (entget e)) (angtos (dxf 50 (entget e)) 0 4))", "((0.0 1.0 0.0) \"90.0000\")"},
        // Of a whole list the one that was changed counts.
        {"(setq l (entget e)) (null (entmod (subst '(50 . 0.25) (assoc 50 l) l)))", "nil"},
        {"(dxf 50 (entget e))", "0.25"},
        {"(setq l (entget e)) (null (entmod (subst '(11 -1.0 0.0 0.0) (assoc 11 l) l)))", "nil"},
        {"(dxf 11 (entget e))", "(-1.0 0.0 0.0)"},
        {"(mod e '((3 . \"a\") (3 . \"b\") (1 . \"c\")))", "T"},
        {"(dxf 1 (entget e))", "\"abc\""},
        {"(setq e (entmakex '((0 . \"TEXT\") (10 0 0) (1 . \"x\")))) (mod e '((39 . 2.0)))", "T"},
        {"(dxf 39 (entget e))", "2.0"},
        {"(setq e (entmakex '((0 . \"LWPOLYLINE\") (10 0 0) (40 . 1.0) (41 . 2.0) (10 1 1)))) (mod e '((43 . "
         "0.5)))",
         "T"},
        {"(some e '(43 40 41))", "((43 . 0.5))"},
        {"(setq l (entget e)) (null (entmod (append l '((10 5 5) (40 . 1.0)))))", "nil"},
        {"(some e '(90 40 41))",
         "((90 . 3) (40 . 0.0) (41 . 0.0) (40 . 0.0) (41 . 0.0) (40 . 1.0) (41 . 0.0))"},
        {"(mod e '((90 . 2) (10 7 7) (42 . 0.5) (10 8 8)))", "T"},
        {"(some e '(90 10 42))", "((90 . 2) (10 7.0 7.0) (42 . 0.5) (10 8.0 8.0) (42 . 0.0))"},
        {"(mod e '((10 7 7)))", "nil"}, // a vertex goes only when the number says so
        {"(setq e (entmakex '((0 . \"INSERT\") (2 . \"LAMP\") (10 0 0)))) (mod e '((70 . 4) (44 . 2.5)))",
         "T"},
        {"(some e '(70 71 44 45))", "((70 . 4) (71 . 1) (44 . 2.5) (45 . 0.0))"},
        {"(mod e '((43 . 2.0)))", "T"},
        {"(dxf 43 (entget e))", "2.0"},
    });
}

TEST_F(LispCopies, AnswerNilToWhatCannotBeChanged) {
    run("(setq e (entmakex '((0 . \"LINE\") (10 0 0) (11 1 1) (210 0 0 -1))) before (entget e))"
        "(setq d (entmakex '((0 . \"LTYPE\") (2 . \"D\") (72 . 65) (73 . 2) (40 . 1.5) (49 . 1.0) (49 . "
        "-0.5))))");
    for (const char* pair :
         {"(0 . \"CIRCLE\")", "(5 . \"FFFF\")", "(67 . 1)", "(410 . \"Layout1\")", "(43 . 1.0)",
          "(210 0.0 0.0 1.0)", "(999 . \"x\")", "(39 . \"x\")", "(330 . 5)", "(360 . 5)"})
        EXPECT_EQ("nil", run("(entmod (list (cons -1 e) '" + std::string(pair) + " '(62 . 1)))")) << pair;
    EXPECT_EQ("T", run("(equal before (entget e))"));
    check({
        {"(null (entmod (list (cons -1 e) '(0 . \"line\") (assoc 5 before) (assoc 330 before) '(67 . 0) "
         "'(410 . "
         "\"Model\") '(100 . \"AcDbLine\") '(102 . \"{ACAD_REACTORS\") '(330 . 5) '(102 . \"}\") '(210 0.0 "
         "0.0 -1.0) "
         "'(62 . 1))))",
         "nil"},
        {"(dxf 62 (entget e))", "1"},
        {"(null (entmod (list (cons -1 d) '(49 . 1.0) '(49 . -0.5) '(3 . \"dash\"))))", "nil"},
        {"(dxf 3 (entget d))", "\"dash\""},
        {"(entmod (list (cons -1 d) '(49 . 1.0) '(49 . -0.25)))", "nil"},
        {"(entmod (list (cons -1 d) '(49 . 1.0)))", "nil"},
    });
}

TEST_F(LispCopies, KeepRecordsOfTables) {
    constexpr const char* kRecords[] = {
        "((0 . \"LTYPE\") (100 . \"AcDbLinetypeTableRecord\") (2 . \"DASHED\") (70 . 0) (3 . \"__ __ ção\") "
        "(72 . 65) (73 . "
        "2) (40 . 1.5) (49 . 1.0) (74 . 0) (49 . -0.5) (74 . 0))",
        "((0 . \"STYLE\") (2 . \"ROMAN\") (70 . 0) (40 . 2.5) (41 . 0.75) (50 . 0.25) (71 . 2) (42 . 3.5) (3 "
        ". \"romans\") "
        "(4 . \"big\"))",
        "((0 . \"LAYER\") (2 . \"PAG1\") (70 . 4) (62 . -3) (420 . 255) (6 . \"DASHED\") (290 . 0) (370 . "
        "25))",
        "((0 . \"LAYER\") (2 . \"PAG2\") (70 . 0) (290 . 0))",
    };
    for (const char* list : kRecords) {
        EXPECT_EQ("ENAME", run("(type (entmakex '" + std::string(list) + "))")) << list;
        run("(setq l '" + std::string(list) + " r (tblsearch (dxf 0 l) (dxf 2 l)))");
        EXPECT_EQ("nil", run("(vl-remove-if '(lambda (p) (or (= 100 (car p)) (member p r))) l)")) << list;
        EXPECT_EQ("T", run("(setq g (entget (tblobjname (dxf 0 l) (dxf 2 l)))) (equal g (entmod g))"));
    }
    EXPECT_EQ(
        "ENAME",
        run("(type (entmakex (subst '(2 . \"AGAIN\") '(2 . \"DASHED\") (tblsearch \"LTYPE\" \"DASHED\"))))"));
    const char* const all =
        "(mapcar '(lambda (p) (plain (cdr (tblsearch (car p) (cdr p))))) '((\"LTYPE\" . \"DASHED\") "
        "(\"LTYPE\" . \"AGAIN\") (\"STYLE\" . \"ROMAN\")))";
    const std::string before = run(all);
    EXPECT_NE(std::string::npos,
              before.find("(2 . \"AGAIN\") (70 . 0) (3 . \"__ __ ção\") (72 . 65) (73 . 2) (40 . 1.5) "
                          "(49 . 1.0) (74 . 0) (49 . -0.5) (74 . 0)"))
        << before;
    auto& session = saved();
    EXPECT_EQ(before, value(session, all));
    EXPECT_EQ("\"DASHED\"", value(session, "(dxf 6 (tblsearch \"LAYER\" \"PAG1\"))"));
    EXPECT_EQ(
        "(4 -3 255 0 25)",
        value(session, "(mapcar '(lambda (c) (dxf c (tblsearch \"LAYER\" \"PAG1\"))) '(70 62 420 290 370))"));
    // A layer with a true colour goes on and off without losing it; another index takes its place.
    value(session, "(defun color () (mapcar '(lambda (c) (dxf c (tblsearch \"LAYER\" \"PAG1\"))) '(62 420)))"
                   "(setq l (entget (tblobjname \"LAYER\" \"PAG1\")))");
    EXPECT_EQ("(3 255)", value(session, "(entmod (subst '(62 . 3) '(62 . -3) l)) (color)"));
    EXPECT_EQ("(5 nil)", value(session, "(entmod (subst '(62 . 5) '(62 . -3) l)) (color)"));
    EXPECT_EQ("\"Continuous\"", value(session, "(dxf 6 (tblsearch \"LAYER\" \"PAG2\"))"));
}

TEST_F(LispCopies, LeaveTheDataOfRecordsToListsThatHaveSome) {
    run("(setq x (dictadd (namedobjdict) \"MINE\" (entmakex '((0 . \"XRECORD\") (1 . \"a\") (70 . "
        "5)))))(regapp \"RZ\")");
    EXPECT_EQ("nil", run("(null (entmod (list (cons -1 x) '(-3 (\"RZ\" (1000 . \"mark\"))))))"));
    EXPECT_EQ("((0 . \"XRECORD\") (1 . \"a\") (70 . 5) (-3 (\"RZ\" (1000 . \"mark\"))))", run("(shown x)"));
    EXPECT_EQ("nil", run("(null (entmod (list (cons -1 x) '(1 . \"b\"))))"));
    EXPECT_EQ("((0 . \"XRECORD\") (1 . \"b\"))", run("(plain (entget x))"));
    EXPECT_EQ("nil", run("(entmod (list (cons -1 x) '(0 . \"LINE\") '(1 . \"c\")))"));
    // Entries of a dictionary go in and out by functions of their own.
    run("(setq d (entget (namedobjdict)))");
    EXPECT_EQ("T", run("(equal d (entmod d))"));
    EXPECT_EQ("nil", run("(entmod (append d '((3 . \"OTHER\"))))"));
}

TEST_F(LispCopies, TakeBackWhatEntgetGave) {
    // Extended data with parts of points that stand alone, as some programs write them.
    const std::string path =
        folder.file("loose.dxf", "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nAPPID\n70\n1\n0\nAPPID\n2\nRZ\n70\n0\n0"
                                 "\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\n"
                                 "ENTITIES\n0\nPOINT\n5\nA1\n8\n0\n10\n1.0\n20\n2.0\n30\n0."
                                 "0\n1001\nRZ\n1021\n5.5\n1031\n6.5\n0\nENDSEC\n0\nEOF\n");
    auto& session = documents.manager.openDocument(odPath(path))->getAPI()->lisp();
    session.evaluate(wide(kPrelude));
    EXPECT_EQ("T", value(session, "(setq e (entnext) l (entget e '(\"*\"))) (equal l (entmod l))"));
    EXPECT_EQ("(-3 (\"RZ\" (1021 . 5.5) (1031 . 6.5)))",
              value(session, "(assoc -3 (entget (copy e) '(\"*\")))"));
    // The end of attributes.
    run("(entmake '((0 . \"BLOCK\") (2 . \"LAMP\") (10 0 0)))(entmake '((0 . \"ENDBLK\")))"
        "(entmake '((0 . \"INSERT\") (2 . \"LAMP\") (10 0 0) (66 . 1)))(entmake '((0 . \"ATTRIB\") (10 0 0) "
        "(1 . \"v\") (2 . \"T\")))"
        "(entmake '((0 . \"SEQEND\")))(setq e (entnext (entnext (entnext))) l (entget e))");
    EXPECT_EQ("\"SEQEND\"", run("(dxf 0 l)"));
    EXPECT_EQ("T", run("(equal l (entmod l))"));
    EXPECT_EQ("nil", run("(entmod (subst '(8 . \"OTHER\") (assoc 8 l) l))"));
    EXPECT_EQ("T",
              run("(setq l (entget (setq e (entnext (entnext))))) (equal l (entmod l))")); // the attribute
}

TEST_F(LispCopies, AreFoundByTheirLayout) {
    run("(entmake '((0 . \"POINT\") (10 0 0)))(entmake '((0 . \"POINT\") (10 0 0) (410 . \"Layout1\")))");
    check({
        {"(sslength (ssget \"X\" '((410 . \"Model\"))))", "1"},
        {"(sslength (ssget \"X\" '((410 . \"Layout1\"))))", "1"},
        {"(sslength (ssget \"X\" '((67 . 1))))", "1"},
    });
}

} // namespace
