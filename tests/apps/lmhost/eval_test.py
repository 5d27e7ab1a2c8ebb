# SPDX-License-Identifier: MIT
"""The command `eval`: values, printing, saving, failures, limits."""
import os
import shutil
import tempfile
import unittest

import support

MODULE = os.environ.get("LM_SCRIPTED_MODULE") or "the environment variable LM_SCRIPTED_MODULE names it"


def evaluate(expression, *options):
    return support.Run("eval", support.SAMPLE, expression, *options)


class Evaluation(unittest.TestCase):
    def test_the_value_stands_on_a_line_of_its_own_behind_what_was_printed(self):
        for expression, output in (("(+ 1 2)", "3\n"), ("(/ 7 2)", "3\n"), ("(list 1 2.5 \"a\\\"b\")", '(1 2.5 "a\\"b")\n'),
                                   ('(progn (princ "abc") 5)', "abc\n5\n"), ('(progn (princ "abc\\n") 5)', "abc\n5\n"),
                                   ("(princ)", ""), ('(progn (princ "x") (princ))', "x\n"), ("nil", "nil\n"),
                                   ("(setq a 1) (+ a 1)", "2\n"), ('"Página"', '"Página"\n'), ("", "nil\n")):
            with self.subTest(expression):
                run = evaluate(expression)
                self.assertEqual((run.code, run.errors), (0, ""))
                self.assertEqual(run.output.decode("utf-8"), output)

    def test_the_drawing_can_be_read(self):
        run = evaluate('(cdr (assoc 2 (tblsearch "LAYER" "0")))')
        self.assertEqual((run.code, run.output, run.errors), (0, b'"0"\n', ""))

    def test_failures_are_one_line_with_code_5(self):
        for expression in ("(", ")", "(car 5)", "(", "(defun f (x) (1+ (f x))) (f 1)", '(command "_NOSUCH")',
                           '(command "_ERASE")', "(getpoint)", '"open'):
            with self.subTest(expression):
                run = evaluate(expression)
                self.assertEqual(run.code, 5)
                self.assertEqual(len(run.error_lines), 1, run.errors)
                self.assertIn(os.path.basename(support.SAMPLE), run.error_lines[0])
                self.assertEqual(run.output, b"")

    def test_the_time_limit_bounds_the_evaluation(self):
        run = evaluate("(while t)", "--time-limit", "0.3")
        self.assertEqual((run.code, len(run.error_lines), run.output), (5, 1, b""))
        self.assertLess(run.seconds, 20)
        self.assertEqual(evaluate("(repeat 100000 1)", "--time-limit", "0").code, 0)

    def test_exceptions_of_functions_are_one_line(self):
        run = evaluate('(progn (princ "before") (lmThrow) (princ "behind"))', "--module", MODULE)
        self.assertEqual((run.code, run.output), (5, b"before\n"))
        self.assertEqual(len(run.error_lines), 1)
        self.assertIn("thrown by a module", run.error_lines[0])

    def test_copies_by_lists_are_whole_in_the_file(self):
        folder = tempfile.mkdtemp(prefix="lm cópias ")
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        out = os.path.join(folder, "out.dxf")
        made = evaluate("""(progn
            (entmakex '((0 . "LTYPE") (2 . "DASH") (70 . 0) (3 . "- -") (72 . 65) (73 . 2) (40 . 1.5) (49 . 1.0) (49 . -0.5)))
            (setq n 0 e (entnext))
            (foreach l (list
                '((0 . "MTEXT") (10 1 2 0) (71 . 5) (3 . "one ") (1 . "two") (50 . 0.5) (73 . 2))
                '((0 . "LWPOLYLINE") (6 . "DASH") (10 0 0) (40 . 0.1) (41 . 0.2) (10 1 1) (39 . 2.0))
                '((0 . "LINE") (10 0 0) (11 1 1) (39 . 2.0) (210 0 0 -1))
                (list '(0 . "INSERT") (cons 2 (cdr (assoc 2 (tblnext "BLOCK" t)))) '(10 0 0) '(70 . 3) '(44 . 10.0)))
              (setq a (entmakex l) b (entmakex (entget a)))
              (if (and a b) (setq n (1+ n))))
            n)""", "--save", out)
        self.assertEqual((made.code, made.output, made.errors), (0, b"4\n", ""))
        self.assertEqual(support.Run("check", out).code, 0)
        read = support.Run("eval", out, """(progn
            (setq e (entlast) all nil)
            (mapcar '(lambda (f) (setq s (ssget "X" (list f)) e (ssname s (1- (sslength s))))
                       (vl-remove-if-not '(lambda (p) (member (car p) '(1 71 50 73 6 39 40 41 210 70 44))) (entget e)))
                    '((1 . "one two") (6 . "DASH") (39 . 2.0) (44 . 10.0))))""")
        self.assertEqual((read.code, read.errors), (0, ""))
        for part in ('(71 . 5)', '(1 . "one two")', "(50 . 0.5)", "(73 . 2)", '(6 . "DASH")', "(40 . 0.1) (41 . 0.2)",
                     "(210 0.0 0.0 -1.0)", "(70 . 3)", "(44 . 10.0)"):
            self.assertIn(part, read.output.decode("utf-8"))

    def test_saving(self):
        folder = tempfile.mkdtemp(prefix="lm avaliação ")
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        out = os.path.join(folder, "out.dxf")
        run = evaluate("(command \"_ERASE\" \"ALL\" \"\")", "--save", out)
        self.assertEqual((run.code, run.output, run.errors), (0, b"nil\n", ""))
        self.assertEqual(support.Run("blocks", out, "--json").output.strip(), b"[]")
        os.remove(out)
        self.assertEqual(evaluate("(car 5)", "--save", out).code, 5)
        self.assertFalse(os.path.exists(out), "after a failure nothing is saved")
        run = evaluate("1", "--save", os.path.join(folder, "none", "out.dxf"))
        self.assertEqual((run.code, len(run.error_lines)), (4, 1))
        self.assertIn("none", run.error_lines[0])

    def test_wrong_usage_ends_with_2(self):
        for arguments in ((), (support.SAMPLE,), (support.SAMPLE, "1", "2"), (support.SAMPLE, "1", "--save"),
                          (support.SAMPLE, "1", "--events", "x"), (support.SAMPLE, "1", "--time-limit", "x")):
            with self.subTest(arguments[1:]):
                run = support.Run("eval", *arguments)
                self.assertEqual((run.code, run.output, len(run.error_lines)), (2, b"", 1), run.errors)

    def test_a_missing_drawing_ends_with_3(self):
        missing = support.SAMPLE + ".none"
        support.check_refusal(self, support.Run("eval", missing, "1"), missing)


if __name__ == "__main__":
    unittest.main()
