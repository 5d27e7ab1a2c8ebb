// SPDX-License-Identifier: MIT
// Scripts: how they are cut into commands, expressions and answers, and how failures are met.
#include "commandsupport.h"

#include "host/script.h"

namespace {

using namespace lm::test;

/// A script that was run on a new drawing.
class Ran {
public:
    explicit Ran(const std::string& text, double timeLimit = 0) {
        lm::host::ScriptOptions options;
        options.timeLimit = timeLimit;
        options.error = [this](int line, const std::string& what) {
            errors.push_back(std::to_string(line) + ": " + what);
        };
        const ConsoleCapture console;
        lm::host::ScriptRunner runner(text, options);
        failures = runner.run();
        hasFailedSave = runner.hasFailedSave();
        output = console.text();
    }
    std::size_t failures = 0;
    bool hasFailedSave = false;
    Lines errors;
    std::string output;
};

constexpr const char* kCircle = "(entmake '((0 . \"CIRCLE\") (10 0.0 0.0 0.0) (40 . 1.0)))\n";

TEST(Script, RunsCommandsWithTheirAnswers) {
    const Drawing drawing;
    const Ran ran("_LAYER _M P01\n\n_LAYER\nN\nP02\n\n");
    EXPECT_EQ(Lines(), ran.errors);
    EXPECT_EQ(drawing.layerCalled("P01")->objectId(), drawing.database().getCLAYER());
    EXPECT_FALSE(drawing.layerCalled("P02").isNull());
}

TEST(Script, TakesEachBlankAndEachLineEndAsTheEndOfAnAnswer) {
    const Drawing drawing;
    drawing.circle(0, 0, 1);
    EXPECT_EQ(Lines(), Ran("_ERASE ALL \n_REGEN\n").errors)
        << "the blank ends ALL, the line end chooses no more";
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_EQ(1u, drawing.document().view()->regenerations());
    drawing.circle(0, 0, 1);
    const Ran ran("_ERASE ALL\n_REGEN\n");
    ASSERT_EQ(1u, ran.errors.size()) << "_REGEN is taken for an answer";
    EXPECT_EQ(0u, ran.errors[0].find("1: \"Select objects\": expected"));
    EXPECT_EQ(1u, drawing.entities().size());
}

TEST(Script, TakesQuotedAnswersWithBlanks) {
    const Drawing drawing;
    EXPECT_EQ(Lines(), Ran("_LAYER N \"a b\" \n").errors);
    EXPECT_FALSE(drawing.layerCalled("a b").isNull());
    // A backslash arrives as it is; it is no part of a name.
    EXPECT_EQ((Lines{"1: no valid name \"a b\\c\""}), Ran("_LAYER N \"a b\\c\" \n").errors);
    EXPECT_EQ((Lines{"1: the quoted answer isn't closed"}), Ran("_LAYER N \"a b\n").errors);
}

TEST(Script, PassesOverCommentsEmptyLinesAndIndentation) {
    const Drawing drawing;
    const Ran ran("\xEF\xBB\xBF; a comment\r\n\r\n  \t_REGEN\r\n; another\r\n_LAYER N\r\n; between the "
                  "answers\r\nP\r\n\r\n");
    EXPECT_NE(Lines(), ran.errors) << "the mark belongs to the bytes, not to the text";
    const Ran again(
        lm::host::scriptText("\xEF\xBB\xBF; a comment\r\n\r\n  \t_REGEN\r\n; another\r\n_LAYER N\r\n"
                             "; between the answers\r\nP\r\n\r\n"));
    EXPECT_EQ(Lines(), again.errors);
    EXPECT_FALSE(drawing.layerCalled("P").isNull());
}

TEST(Script, ReadsUtf8AndElseTheNarrowCodePage) {
    EXPECT_EQ("Página", lm::host::scriptText("P\xC3\xA1gina"));
    EXPECT_EQ("Página", lm::host::scriptText("P\xE1gina"));
    EXPECT_EQ("", lm::host::scriptText(""));
}

TEST(Script, EvaluatesExpressionsOverSeveralLines) {
    const Drawing drawing;
    const Ran ran("(progn ; (\n  (princ \"a)\\\"(\")\n ;| ( |; (princ 1)\n) (princ 2)(princ 3)\n(princ)\n");
    EXPECT_EQ(Lines(), ran.errors);
    EXPECT_EQ("a)\"(123", ran.output);
}

TEST(Script, TakesValuesOfExpressionsAsAnswers) {
    const Drawing drawing;
    const std::string made = kCircle;
    const Ran ran(made + "_MOVE (entlast) \n(list 0 0)\n(list 3.0 (+ 1 1))\n");
    EXPECT_EQ(Lines(), ran.errors);
    EXPECT_EQ(OdGePoint3d(3, 2, 0), OdSmartPtr<OdDbCircle>(drawing.entities().at(0).openObject())->center());
    EXPECT_EQ(Lines(), Ran("_LAYER (strcat \"_\" \"N\") (progn (setq n \"P9\") nil) (eval 'n) \n").errors);
    EXPECT_FALSE(drawing.layerCalled("P9").isNull()) << "nil answers nothing";
    EXPECT_EQ(1u, Ran("_LAYER (car 5)\n").failures);
    EXPECT_EQ(1u, Ran("_LAYER (ssget \"_X\" 5)\n").failures);
}

TEST(Script, MakesEachCommandAndEachExpressionOneUndoStep) {
    const Drawing drawing;
    const std::string two = "(progn " + std::string(kCircle) + kCircle + ")\n";
    EXPECT_EQ(Lines(), Ran(two + kCircle + "(princ)\n_U\n").errors);
    EXPECT_EQ(2u, drawing.entities().size());
    EXPECT_EQ(Lines(), Ran("_U\n").errors);
    EXPECT_TRUE(drawing.entities().empty());
    EXPECT_EQ(Lines(), Ran("_REDO\n").errors);
    EXPECT_EQ(2u, drawing.entities().size());
}

TEST(Script, RunsCommandsOfPrograms) {
    const Drawing drawing;
    const Ran ran("(defun c:hello ( / p) (setq p (getpoint)) (princ (car p)))\nhello 4,5\n_hello\n");
    EXPECT_EQ("4.0", ran.output);
    EXPECT_EQ((Lines{"3: unknown command \"_hello\""}), ran.errors);
}

TEST(Script, RunsFunctionsOfModulesWithTheRestOfTheLine) {
    const Drawing drawing;
    Lines calls;
    const lm::host::FunctionRegistration function("rzTest", [&](CHostAPI& api) {
        hst_resbufW* arguments = api.getArgs();
        calls.push_back(told(arguments));
        api.relRb(arguments);
        api.retT();
    });
    EXPECT_EQ(Lines(), Ran("rztest a \"b c\" (d e) \nRZTEST\n").errors);
    EXPECT_EQ((Lines{"5005:a 5005:b c 5005:(d e)", ""}), calls);
}

TEST(Script, AnswersQuestionsOfExpressions) {
    const Drawing drawing;
    const Ran ran("(setq p (getpoint)) 1,2\n(princ (cadr p))\n(getstring)\n");
    EXPECT_EQ("2.0", ran.output);
    ASSERT_EQ(1u, ran.errors.size());
    EXPECT_EQ(0u, ran.errors[0].find("3: ")) << "nothing answers the last question";
}

TEST(Script, ReportsEachFailureInOneLineAndGoesOn) {
    const Drawing drawing;
    const Ran ran("_NOSUCH 1 2 3\n"
                  "(car 5) _REGEN\n"
                  "(princ \"alive\")\n"
                  "_ERASE BOGUS rest of the line\n"
                  "(princ (\n"
                  "(princ \"still\")\n"
                  ")\n"
                  "_REGEN\n");
    EXPECT_EQ(5u, ran.failures);
    ASSERT_EQ(5u, ran.errors.size());
    EXPECT_EQ("1: unknown command \"_NOSUCH\"", ran.errors[0]);
    EXPECT_EQ(0u, ran.errors[1].find("2: "));
    EXPECT_EQ(0u, ran.errors[2].find("4: "));
    EXPECT_EQ("5: the expression isn't closed", ran.errors[3]);
    EXPECT_EQ("7: unknown command \")\"", ran.errors[4]);
    EXPECT_EQ("alivestill", ran.output);
    EXPECT_EQ(1u, drawing.document().view()->regenerations());
}

TEST(Script, EndsAfterAHundredExpressionsThatAreNeverClosed) {
    const Drawing drawing;
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "(a\n";
    const Ran ran(text);
    EXPECT_EQ(100u, ran.failures);
    EXPECT_EQ("100: the expression isn't closed", ran.errors.back());
}

TEST(Script, OutlivesLoopsRecursionAndThrowingFunctions) {
    const Drawing drawing;
    const lm::host::FunctionRegistration standard("lmStandard",
                                                  [](CHostAPI&) { throw std::runtime_error("two\nlines"); });
    const lm::host::FunctionRegistration drawn("lmDrawn",
                                               [](CHostAPI&) { throw OdError(OdString("drawn")); });
    const lm::host::FunctionRegistration other("lmOther", [](CHostAPI&) { throw 7; });
    const Ran ran(
        "(while t)\n(defun f (x) (+ 1 (f x)))\n(f 1)\n(lmStandard)\n(lmDrawn)\nlmOther\n(princ \"alive\")\n",
        0.2);
    ASSERT_EQ(5u, ran.errors.size());
    EXPECT_EQ(0u, ran.errors[0].find("1: "));
    EXPECT_EQ(0u, ran.errors[1].find("3: "));
    EXPECT_EQ("4: two lines", ran.errors[2]);
    EXPECT_EQ("5: drawn", ran.errors[3]);
    EXPECT_EQ("6: an exception without a text", ran.errors[4]);
    EXPECT_EQ("alive", ran.output);
}

TEST(Script, NamesTheLineOfTheScriptInWhichAnExpressionFails) {
    const Drawing drawing;
    const Ran ran("(princ)\n(progn\n  (princ 1)\n  (car 5))\n_LAYER (car 6)\n");
    ASSERT_EQ(2u, ran.errors.size());
    EXPECT_EQ(std::string::npos, ran.errors[0].find("column"));
    EXPECT_TRUE(ran.errors[0].starts_with("4: ") || ran.errors[0].starts_with("2: ")) << ran.errors[0];
    EXPECT_EQ("5: error: bad argument type: consp: 6", ran.errors[1]);
}

TEST(Script, PutsLimitsAndAnswersBack) {
    const Drawing drawing;
    drawing.document().setTimeLimit(7);
    Ran("_REGEN\n", 3);
    EXPECT_EQ(7, drawing.document().timeLimit());
    EXPECT_EQ(nullptr, drawing.document().answers());
}

TEST(Script, ClosesDrawingsBehindTheExpressionThatAskedForIt) {
    const Drawing drawing;
    drawing.manager().newDocument();
    EXPECT_EQ(Lines(), Ran("(progn (command \"_CLOSE\") (setq a 1) (princ a))\n").errors);
    EXPECT_EQ(1, drawing.manager().documentCount());
    const Ran ran("_CLOSE\n_REGEN\n(princ 1)\n_NEW\n(princ 2)\n");
    EXPECT_EQ((Lines{"2: no drawing is open", "3: no drawing is open"}), ran.errors);
    EXPECT_EQ("2", ran.output);
}

TEST(Script, EndsWithQuit) {
    const Drawing drawing;
    drawing.manager().newDocument();
    const Ran ran("(princ 1)\n_QUIT\n(princ 2)\n");
    EXPECT_EQ(Lines(), ran.errors);
    EXPECT_EQ("1", ran.output);
    EXPECT_EQ(0, drawing.manager().documentCount());
    EXPECT_EQ(Lines(), Ran("_NEW\n").errors) << "the next script isn't ended by it";
}

TEST(Script, RunsNestedCommandsOfExpressionsAndTakesTheirPartBackWhenTheyFail) {
    const Drawing drawing;
    const Ran ran(
        std::string(kCircle) +
        "(progn (command \"_COPY\" \"ALL\" \"\" '(0 0) '(5 0) \"\") (command \"_ERASE\" \"ALL\"))\n");
    ASSERT_EQ(1u, ran.errors.size());
    EXPECT_EQ(2u, drawing.entities().size());
}

TEST(Script, TellsWhetherADrawingCouldNotBeWritten) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string bad = (folder.path() / "none" / "x.dxf").string();
    EXPECT_TRUE(Ran("_SAVEAS \"" + bad + "\"\n(car 5)\n").hasFailedSave);
    EXPECT_TRUE(Ran("(command \"_SAVEAS\" \"" + bad + "\")\n").hasFailedSave);
    const Ran other("(car 5)\n_NOSUCH\n_OPEN \"" + bad + "\"\n");
    EXPECT_EQ(3u, other.failures);
    EXPECT_FALSE(other.hasFailedSave) << "nothing of these was a write";
}

} // namespace
