// SPDX-License-Identifier: MIT
// Files of programs: reading, writing, loading, code pages, names.
#include "lisp_support.h"

#include <sstream>

namespace {

using namespace lm::test;

class LispFiles : public LispTest {
protected:
    /// A program in which "@" stands for the test's folder.
    std::string at(std::string program) {
        for (std::size_t i = 0; (i = program.find('@', i)) != std::string::npos;)
            program.replace(i, 1, folder.path().string());
        return run(program);
    }
    std::string content(const std::string& name) const {
        std::ifstream file(folder.path() / name, std::ios::binary);
        std::ostringstream out;
        out << file.rdbuf();
        return out.str();
    }
    TemporaryFolder folder;
};

TEST_F(LispFiles, AreWrittenLineByLine) {
    EXPECT_EQ("nil",
              at("(setq f (open \"@/out.txt\" \"w\")) (write-line \"ação\" f) (princ 1.5 f) (prin1 \"q\" f)"
                 "(print 'x f) (write-char 10 f) (close f)"));
    EXPECT_EQ("ação\n1.5\"q\"\nX \n", content("out.txt"));
    EXPECT_EQ("nil", at("(setq f (open \"@/out.txt\" \"a\")) (write-line \"more\" f) (close f)"));
    EXPECT_EQ("ação\n1.5\"q\"\nX \nmore\n", content("out.txt"));
    EXPECT_EQ("", takePrinted()); // nothing of it on the console
}

TEST_F(LispFiles, AreWrittenInTheEncodingThatWasAskedFor) {
    at("(setq f (open \"@/ansi.txt\" \"w\" \"ansi\")) (write-line \"çΩ\" f) (close f)");
    EXPECT_EQ("\xE7?\n", content("ansi.txt"));
    at("(setq f (open \"@/mark.txt\" \"w\" \"utf8-bom\")) (write-line \"ç\" f) (close f)");
    EXPECT_EQ("\xEF\xBB\xBFç\n", content("mark.txt"));
    EXPECT_EQ("error: bad argument type: file encoding: \"x\" (line 1, column 1)",
              at("(open \"@/a\" \"w\" \"x\")"));
}

TEST_F(LispFiles, AreReadInEitherEncoding) {
    folder.file("utf8.txt", "\xEF\xBB\xBF"
                            "ação\r\n\nlast");
    EXPECT_EQ("(\"ação\" \"\" \"last\" nil nil)", at("(setq f (open \"@/utf8.txt\" \"r\")) (list (read-line "
                                                     "f) (read-line f) (read-line f) (read-line f) "
                                                     "(read-line f))"));
    folder.file("ansi.txt", "a\xE7\xE3"
                            "o\n");
    EXPECT_EQ("\"ação\"", at("(read-line (open \"@/ansi.txt\" \"r\"))"));
}

TEST_F(LispFiles, AreReadUnitByUnit) {
    folder.file("mixed.txt", "a\xC3\xA7\r\n\xE7z\xF0\x9F\x98\x80");
    EXPECT_EQ("(97 231 10 231 122 55357 56832 nil)", at("(setq f (open \"@/mixed.txt\" \"r\") l nil) (repeat "
                                                        "8 (setq l (cons (read-char f) l))) (reverse l)"));
}

TEST_F(LispFiles, ThatCantBeOpenedAreNil) {
    EXPECT_EQ("nil", at("(open \"@/missing.txt\" \"r\")"));
    EXPECT_EQ("nil", at("(open \"@/no/such/folder.txt\" \"w\")"));
    EXPECT_EQ("nil", at("(open \"@\" \"r\")"));
    EXPECT_EQ("nil", run("(open \"/dev/zero\" \"r\")")); // it has no end
    EXPECT_EQ("error: bad argument type: file mode: \"x\" (line 1, column 1)", at("(open \"@/a\" \"x\")"));
}

TEST_F(LispFiles, RefuseWhatTheyWereNotOpenedFor) {
    folder.file("in.txt", "x");
    EXPECT_EQ("error: file isn't open for writing",
              at("(setq f (open \"@/in.txt\" \"r\")) (write-line \"a\" f)").substr(0, 34));
    EXPECT_EQ("error: file isn't open for reading",
              at("(setq g (open \"@/out.txt\" \"w\")) (read-line g)").substr(0, 34));
    EXPECT_EQ("error: file is closed", run("(close f) (read-line f)").substr(0, 21));
    EXPECT_EQ("error: file is closed", run("(close f)").substr(0, 21));
    EXPECT_EQ("error: bad argument type: streamp: 5 (line 1, column 1)", run("(close 5)"));
    EXPECT_EQ("FILE", run("(type f)"));
}

TEST_F(LispFiles, TellADeviceThatTakesNoMore) {
    EXPECT_EQ("nil", run("(open \"/dev/full\" \"w\")")); // only ordinary files are opened
}

TEST_F(LispFiles, CloseWithTheirLastValue) {
    at("(setq f (open \"@/out.txt\" \"w\")) (write-line \"kept\" f) (setq f nil)");
    EXPECT_EQ("kept\n", content("out.txt"));
}

TEST_F(LispFiles, AreLoaded) {
    folder.file("one.lsp", "(defun fromfile () 'one)\n(setq loaded 5)\n\"last\"");
    EXPECT_EQ("\"last\"", at("(load \"@/one.lsp\")"));
    EXPECT_EQ("\"last\"", at("(load \"@/one\")"));
    EXPECT_EQ("\"last\"", at("(load \"@\\\\one\")")); // either separator
    EXPECT_EQ("(ONE 5)", run("(list (fromfile) loaded)"));
    EXPECT_EQ("error: load failed: ", at("(load \"@/none\")").substr(0, 20));
    EXPECT_EQ("NONE", at("(load \"@/none\" 'none)"));
    EXPECT_EQ("nil", at("(load \"@/none\" nil)"));
    folder.file("empty.lsp", "");
    EXPECT_EQ("nil", at("(load \"@/empty\")"));
}

TEST_F(LispFiles, OfProgramsMayComeInSeveralCodePages) {
    folder.file("ansi.lsp", "(setq t\xE1"
                            "g \"a\xE7\xE3"
                            "o\")");
    EXPECT_EQ("\"ação\"", at("(load \"@/ansi\") tág"));
    folder.file("utf8.lsp", "\xEF\xBB\xBF(setq x \"ação\")");
    EXPECT_EQ("\"ação\"", at("(load \"@/utf8\")"));
    folder.file("plain8.lsp", "(setq x \"ação\")");
    EXPECT_EQ("\"ação\"", at("(load \"@/plain8\")"));
    folder.file("wide.lsp", std::string("\xFF\xFE\"\0\xE7\0\"\0", 8));
    EXPECT_EQ("\"ç\"", at("(load \"@/wide\")"));
    folder.file("wide2.lsp", std::string("\xFE\xFF\0\"\0\xE7\0\"", 8));
    EXPECT_EQ("\"ç\"", at("(load \"@/wide2\")"));
}

TEST_F(LispFiles, ThatLoadThemselvesEndWithAnError) {
    folder.file("self.lsp", "(load \"" + (folder.path() / "self.lsp").string() + "\")");
    EXPECT_EQ("error: recursion too deep (self.lsp, line 1, column 1)", at("(load \"@/self.lsp\")"));
}

TEST_F(LispFiles, AreFoundBesideTheDrawing) {
    folder.file("drawing.dxf", kEmptyDrawing);
    folder.file("beside.lsp", "'beside");
    CHostDocument* opened = documents.manager.openDocument(odPath((folder.path() / "drawing.dxf").string()));
    auto& session = opened->getAPI()->lisp();
    EXPECT_EQ("BESIDE", lm::system::toUtf8(session.evaluate(wide("(load \"beside\")")).value));
    EXPECT_EQ("\"" + (folder.path() / "beside.lsp").string() + "\"",
              lm::system::toUtf8(session.evaluate(wide("(findfile \"beside.lsp\")")).value));
    EXPECT_EQ("nil", run("(findfile \"beside.lsp\")"));
}

TEST_F(LispFiles, HaveNamesThatComeApart) {
    check({
        {"(vl-filename-base \"c:\\\\a\\\\b.c.dwg\")", "\"b.c\""},
        {"(vl-filename-base \"/x.y/name\")", "\"name\""},
        {"(vl-filename-directory \"c:\\\\a\\\\b.dwg\")", "\"c:\\\\a\""},
        {"(vl-filename-directory \"/a/b\")", "\"/a\""},
        {"(vl-filename-directory \"b.dwg\")", "\"\""},
        {"(vl-filename-extension \"/a.b/c.dwg\")", "\".dwg\""},
        {"(vl-filename-extension \"/a.b/c\")", "nil"},
    });
    const std::string name = at("(vl-filename-mktemp \"part.txt\" \"@\")");
    EXPECT_EQ("\"" + folder.path().string() + "/part-", name.substr(0, folder.path().string().size() + 7));
    EXPECT_EQ(".txt\"", name.substr(name.size() - 5));
}

TEST_F(LispFiles, AreLookedAtAndMovedAsAWhole) {
    folder.file("a.txt", "12345");
    EXPECT_EQ("5", at("(vl-file-size \"@/a.txt\")"));
    EXPECT_EQ("(0 nil)", at("(list (vl-file-size \"@\") (vl-file-size \"@/none\"))"));
    EXPECT_EQ("8", at("(length (vl-file-systime \"@/a.txt\"))"));
    EXPECT_EQ("nil", at("(vl-file-systime \"@/none\")"));
    EXPECT_EQ("(T nil)", at("(list (vl-file-directory-p \"@\") (vl-file-directory-p \"@/a.txt\"))"));
    EXPECT_EQ("5", at("(vl-file-copy \"@/a.txt\" \"@/b.txt\")"));
    EXPECT_EQ("nil", at("(vl-file-copy \"@/a.txt\" \"@/b.txt\")"));
    EXPECT_EQ("5", at("(vl-file-copy \"@/a.txt\" \"@/b.txt\" t)"));
    EXPECT_EQ("nil", at("(vl-file-copy \"@/a.txt\" \"@/a.txt\" t)"));
    EXPECT_EQ("1234512345", content("b.txt"));
    EXPECT_EQ("nil", at("(vl-file-rename \"@/a.txt\" \"@/b.txt\")"));
    EXPECT_EQ("T", at("(vl-file-rename \"@/a.txt\" \"@/c.txt\")"));
    EXPECT_EQ("(T nil)", at("(list (vl-mkdir \"@/sub\") (vl-mkdir \"@/sub\"))"));
    EXPECT_EQ("(\"b.txt\" \"c.txt\" \"sub\")", at("(vl-directory-files \"@\")"));
    EXPECT_EQ("(\"b.txt\" \"c.txt\")", at("(vl-directory-files \"@\" \"*.txt\" 1)"));
    EXPECT_EQ("(\"sub\")", at("(vl-directory-files \"@\" nil -1)"));
    EXPECT_EQ("nil", at("(vl-directory-files \"@/none\")"));
    EXPECT_EQ(
        "(T nil nil)",
        at("(list (vl-file-delete \"@/b.txt\") (vl-file-delete \"@/b.txt\") (vl-file-delete \"@/sub\"))"));
}

TEST_F(LispFiles, AreOutOfReachWhereTheSessionMayNotUseThem) {
    lisp.setFilesAllowed(false);
    for (const char* program :
         {"(open \"x\" \"w\")", "(load \"x\")", "(findfile \"x\")", "(vl-file-delete \"x\")",
          "(vl-file-copy \"x\" \"y\")", "(vl-directory-files)", "(vl-mkdir \"x\")",
          "(vl-file-rename \"x\" \"y\")", "(vl-file-size \"x\")", "(vl-filename-mktemp)"})
        EXPECT_EQ("error: files can't be used in this session (line 1, column 1)", run(program)) << program;
}

TEST_F(LispFiles, WithoutAFileTheConsoleIsAsked) {
    lisp.pushAnswer(wide("typed"));
    lisp.pushAnswer(wide("x"));
    EXPECT_EQ("(\"typed\" 120)", run("(list (read-line) (read-char))"));
    EXPECT_EQ("error: unanswered question: read-line (line 1, column 1)", run("(read-line)"));
}

} // namespace
