# SPDX-License-Identifier: MIT
"""The command `run`: scripts, their outputs, saving, failures, limits."""
import os
import re
import shutil
import tempfile
import unittest

import support

MODULE = os.environ.get("LM_SCRIPTED_MODULE") or "the environment variable LM_SCRIPTED_MODULE names it"
CIRCLE = "(entmake '((0 . \"CIRCLE\") (10 0.0 0.0 0.0) (40 . 1.0)))\n"


class Scripts(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm scrípt ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def script(self, text, name="ação 1.scr"):
        with open(self.path(name), "w", encoding="utf-8", newline="") as file:
            file.write(text)
        return self.path(name)

    def run_script(self, text, *options, drawing="--new", **more):
        return support.Run("run", drawing, self.script(text), *options, **more)

    def errors_of(self, run):
        """The error lines without the program and the script."""
        lead = "lmhost: " + self.path("ação 1.scr") + ":"
        for line in run.error_lines:
            self.assertTrue(line.startswith(lead), line)
        return [line[len(lead):] for line in run.error_lines]

    def test_an_empty_script_does_nothing(self):
        for text in ("", "\n\n", "; nothing", " "):
            run = self.run_script(text)
            self.assertEqual((run.code, run.output, run.errors), (0, b"", ""))

    def test_what_is_printed_goes_to_standard_output(self):
        run = self.run_script('(princ "Página ")\n(princ 1)\n')
        self.assertEqual((run.code, run.output.decode(), run.errors), (0, "Página 1\n", ""))

    def test_each_failure_is_one_line_and_the_script_goes_on(self):
        run = self.run_script('(car 5)\n(princ "one")\n(defun f (x) (1+ (f x)))\n(f 1)\n(princ "two"\n'
                              '(princ "three")\n_NOSUCH\n_ERASE\n')
        self.assertEqual((run.code, run.output), (5, b"one\nthree\n"))
        self.assertEqual([line.split(":")[0] for line in self.errors_of(run)], ["1", "4", "5", "7", "8"])

    def test_an_endless_loop_ends_with_the_time_limit(self):
        run = self.run_script('(while t)\n(repeat 1000000000)\n(princ "alive")\n', "--time-limit", "0.3")
        self.assertEqual((run.code, run.output), (5, b"alive\n"))
        self.assertEqual(len(run.error_lines), 2)
        self.assertLess(run.seconds, 20)

    def test_a_saved_drawing_reads_back(self):
        out = self.path("saída.dxf")
        run = self.run_script(CIRCLE + "_LAYER _M Página \n", "--save", out)
        self.assertEqual((run.code, run.errors), (0, ""))
        info = support.Run("info", out)
        self.assertEqual(info.code, 0)
        self.assertIn("CIRCLE 1", info.output.decode())
        self.assertIn("Página", info.output.decode())

    def test_a_drawing_is_saved_after_failures_too(self):
        out = self.path("out.dxf")
        run = self.run_script(CIRCLE + "(car 5)\n", "--save", out)
        self.assertEqual(run.code, 5)
        self.assertIn("CIRCLE 1", support.Run("info", out).output.decode())

    def test_outputs_that_cannot_be_written_end_with_4(self):
        bad = os.path.join(self.path("no folder"), "out")
        for option in ("--save", "--events"):
            run = self.run_script("(princ)\n", option, bad)
            self.assertEqual(run.code, 4, option)
            self.assertEqual(len(run.error_lines), 1, run.errors)
            self.assertIn("no folder", run.error_lines[0])
        run = self.run_script("_CLOSE\n", "--save", self.path("out.dxf"))
        self.assertEqual((run.code, len(run.error_lines)), (4, 1))
        self.assertFalse(os.path.exists(self.path("out.dxf")))

    def test_a_full_disk_under_the_events_ends_with_4(self):
        run = self.run_script(CIRCLE, "--events", "/dev/full")
        self.assertEqual((run.code, len(run.error_lines)), (4, 1))

    def test_input_that_cannot_be_read_ends_with_3(self):
        missing = support.Run("run", "--new", self.path("none.scr"))
        support.check_refusal(self, missing, self.path("none.scr"))
        support.check_refusal(self, support.Run("run", "--new", self.folder), self.folder)
        drawing = support.Run("run", self.path("none.dxf"), self.script(""))
        support.check_refusal(self, drawing, self.path("none.dxf"))

    def test_wrong_usage_ends_with_2(self):
        script = self.script("")
        for arguments in (("run",), ("run", "--new"), ("run", support.SAMPLE), ("run", "--new", script, "more"),
                          ("run", "--new", script, "--save"), ("run", "--new", script, "--events"),
                          ("run", "--new", script, "--time-limit", "soon"),
                          ("run", "--new", script, "--time-limit", "-1"), ("run", "--new", script, "--json")):
            with self.subTest(arguments[1:]):
                run = support.Run(*arguments)
                self.assertEqual((run.code, run.output, len(run.error_lines)), (2, b"", 1), run.errors)

    def test_a_script_works_on_a_drawing_and_leaves_its_file_alone(self):
        copy = self.path("cópia.dxf")
        shutil.copy(support.SAMPLE, copy)
        out = self.path("out.dxf")
        run = self.run_script("_ERASE ALL \n", "--save", out, drawing=copy)
        self.assertEqual((run.code, run.errors), (0, ""))
        with open(copy, "rb") as one, open(support.SAMPLE, "rb") as other:
            self.assertEqual(one.read(), other.read())
        self.assertEqual(support.Run("blocks", out, "--json").output.strip(), b"[]")

    def test_undo_takes_every_step_of_a_script_back(self):
        out, plain = self.path("out.dxf"), self.path("plain.dxf")
        steps = "_ERASE ALL \n_LAYER M NEW N \"a b\" F P0* \n_ZOOM E\n" + CIRCLE + "_COPY ALL  0,0 9,9 \n"
        run = self.run_script(steps + "_UNDO 99\n", "--save", out, drawing=support.SAMPLE)
        self.assertEqual((run.code, run.errors), (0, ""))
        self.assertEqual(self.run_script("", "--save", plain, drawing=support.SAMPLE).code, 0)
        listings = [support.Run(command, path, "--json").output for path in (out, plain)
                    for command in ("info", "blocks")]
        self.assertEqual(listings[:2], listings[2:])

    def test_saved_versions_and_files_of_commands(self):
        out = self.path("novo arquivo.dxf")
        run = self.run_script('%s_SAVEAS R2000 "%s"\n_NEW\n_OPEN "%s"\n(princ (getvar "DWGNAME"))\n'
                              % (CIRCLE, out, out))
        self.assertEqual((run.code, run.output.decode(), run.errors), (0, "novo arquivo.dxf\n", ""))
        self.assertIn("version AC1015", support.Run("info", out).output.decode())
        run = self.run_script('_SAVE "%s"\n(princ "alive")\n' % os.path.join(self.path("none"), "x.dxf"))
        self.assertEqual((run.code, run.output, len(run.error_lines)), (4, b"alive\n", 1))

    def test_commands_and_functions_of_modules(self):
        run = self.run_script('lmgreet "big world"\n_LMGREET\n\n(princ (lmEcho 1 2))\nlmecho a b\n_LMCANCEL\n'
                              '(lmThrow)\nlmthrow\n(princ "alive")\n', "--module", MODULE)
        self.assertEqual(run.code, 5)
        self.assertEqual(run.output.decode(), "hello big world\n(1 2)\nalive\n")
        self.assertEqual(self.errors_of(run), ['2: "Name" needs an answer that isn\'t empty',
                                               "7: thrown by a module", "8: thrown by a module"])

    def test_a_function_that_never_comes_back_ends_the_program(self):
        run = self.run_script("lmHang\n", "--module", MODULE, "--time-limit", "0.1")
        self.assertEqual((run.code, len(run.error_lines)), (5, 1))

    def test_the_examples_of_the_documentation(self):
        with open(os.path.join(support.ROOT, "docs", "scripts.md"), encoding="utf-8") as file:
            page = file.read()
        examples = re.findall(r"```script\n(.*?)```\n```output\n(.*?)```\n(?:```errors\n(.*?)```\n)?", page, re.S)
        self.assertEqual(len(examples), page.count("```script"))
        for text, output, errors in examples:
            with self.subTest(text):
                run = self.run_script(text)
                self.assertEqual(run.output.decode(), output)
                self.assertEqual(self.errors_of(run), errors.split("\n")[:-1])
                self.assertEqual(run.code, 5 if errors else 0)

    def test_every_command_of_the_table_is_there(self):
        with open(os.path.join(support.ROOT, "docs", "scripts.md"), encoding="utf-8") as file:
            rows = re.findall(r"^\| (`_.*?) \|", file.read(), re.M)
        names = [name for row in rows for name in re.findall(r"`(_[A-Z]+)`", row)]
        self.assertGreater(len(names), 15)
        for name in names:
            with self.subTest(name):
                self.assertNotIn("unknown command", self.run_script(name + "\n").errors)


if __name__ == "__main__":
    unittest.main()
