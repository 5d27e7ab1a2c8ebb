# SPDX-License-Identifier: MIT
"""Where the program writes: never over something else that the command line names, never over what somebody
else changed, and always something that can be read again. File names may be any bytes."""
import os
import shutil
import tempfile
import unittest

import ezdxf

import support

CIRCLE = "(entmake '((0 . \"CIRCLE\") (10 0.0 0.0 0.0) (40 . 1.0)))\n"


class Outputs(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm saída ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.drawing = self.path("a.dxf")
        shutil.copyfile(support.SAMPLE, self.drawing)
        self.script = self.put("s.scr", CIRCLE.encode())

    def path(self, name):
        return os.path.join(self.folder, name)

    def put(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def content(self, path):
        with open(path, "rb") as file:
            return file.read()

    def test_outputs_over_inputs_are_wrong_usage(self):
        os.symlink("s.scr", self.path("link.scr"))
        os.link(self.drawing, self.path("hard.dxf"))
        os.symlink("new.dxf", self.path("to new"))
        before = self.all_files_but_dangling()
        rows = (("--events", self.drawing), ("--events", self.script), ("--save", self.script),
                ("--events", self.path("link.scr")), ("--events", self.path("hard.dxf")),
                ("--save", self.path("./link.scr")), ("--save", self.path("x"), "--events", self.path("x")),
                ("--save", self.path("x"), "--events", self.path("./x")),
                ("--save", self.path("new.dxf"), "--events", self.path("to new")),
                ("--save", self.drawing, "--events", self.path("hard.dxf")))
        for options in rows:
            with self.subTest(options):
                run = support.Run("run", self.drawing, self.script, *options)
                self.assertEqual((run.code, run.output), (2, b""), run.errors)
                self.assertEqual(len(run.error_lines), 1, run.errors)
                self.assertIn("would write over", run.error_lines[0])
                self.assertEqual(self.all_files_but_dangling(), before)

    def all_files_but_dangling(self):
        return {name: self.content(self.path(name)) for name in sorted(os.listdir(self.folder))
                if os.path.exists(self.path(name))}

    def test_a_drawing_may_be_saved_under_its_own_name(self):
        run = support.Run("run", self.drawing, self.script, "--save", self.drawing, "--events", self.path("e"))
        self.assertEqual((run.code, run.errors), (0, ""))
        self.assertNotEqual(self.content(self.drawing), self.content(support.SAMPLE))
        self.assertEqual(support.Run("convert", self.drawing, self.drawing, "--version", "R2000").code, 0)

    def test_a_broken_end_is_mended_into_something_readable(self):
        whole = self.content(support.SAMPLE)
        body = whole[:whole.rindex(b"ENDSEC") + len(b"ENDSEC")]
        for end in (b"", b"\r", b"\n", b"\r\n  ", b"\n\n", b"\n  0", b"\n  0\n", b"\n999", b"\n999\n", b"\n\x1a",
                    b"\n9\n", b"\n \n"):
            for command in ("convert", "check", "run"):
                with self.subTest((end, command)):
                    broken = self.put("broken.dxf", body + end)
                    out = self.path("out.dxf")
                    run = {"convert": lambda: support.Run("convert", broken, out),
                           "check": lambda: support.Run("check", broken, "--fix", out),
                           "run": lambda: support.Run("run", broken, self.script, "--save", out)}[command]()
                    self.assertIn(run.code, (0, 1), run.errors)
                    again = support.Run("check", out)
                    self.assertEqual((again.code, again.errors), (0, ""), again.output)
                    self.assertGreater(len(ezdxf.readfile(out).modelspace()), 0)

    def test_a_file_that_changed_meanwhile_is_not_written_over(self):
        theirs = self.content(support.SAMPLE) + b"\n"
        for save in ("_QSAVE\n", "_SAVE\n", "_SAVEAS %s\n" % os.path.basename(self.drawing)):
            with self.subTest(save):
                shutil.copyfile(support.SAMPLE, self.drawing)
                script = self.put("change.scr", (
                    CIRCLE + '(setq f (open "%s" "a"))\n(write-line "" f)\n(close f)\n' % self.drawing).encode()
                    + (save if "SAVEAS" not in save else "_SAVEAS \"%s\"\n" % self.drawing).encode())
                run = support.Run("run", self.drawing, script)
                self.assertEqual(run.code, 4, run.errors)
                self.assertEqual(len(run.error_lines), 1, run.errors)
                self.assertIn("changed by somebody else", run.error_lines[0])
                self.assertEqual(self.content(self.drawing), theirs)
                run = support.Run("run", self.drawing, script, "--save", self.drawing)
                self.assertEqual(run.code, 4, run.errors)
                other = support.Run("run", self.drawing, script, "--save", self.path("other.dxf"))
                self.assertEqual(support.Run("info", self.path("other.dxf")).code, 0, other.errors)

    def test_names_that_are_no_utf8(self):
        drawing, out = self.path("b\udce9.dxf"), self.path("c\udcff.dxf")
        shutil.copyfile(support.SAMPLE, drawing)
        script = self.path("s\udce9.scr")
        shutil.copyfile(self.script, script)
        self.assertEqual(support.Run("info", drawing).code, 0)
        for arguments in (("convert", drawing, out), ("check", drawing, "--fix", out),
                          ("eval", drawing, "1", "--save", out), ("run", drawing, script, "--save", out),
                          ("run", drawing, script, "--save", out, "--events", self.path("e\udce9"))):
            with self.subTest(arguments):
                run = support.Run(*arguments)
                self.assertIn(run.code, (0, 1), run.errors)
                self.assertEqual(support.Run("info", out).code, 0)
                os.remove(out)
        missing = support.Run("info", self.path("d\udce9.dxf"))
        self.assertEqual(missing.code, 3)
        self.assertIn("d\\xE9.dxf: the file doesn't exist", missing.errors)
        json = support.Run("check", drawing, "--json")
        self.assertIn('b\\\\xE9.dxf"', json.output.decode("utf-8"))

    def test_a_number_that_no_file_holds_is_not_saved(self):
        before = self.content(self.drawing)
        run = support.Run("run", self.drawing, self.put("m.scr", b"_MOVE ALL  0,0 1e308,0\n_MOVE ALL  0,0 1e308,0\n"),
                          "--save", self.path("m.dxf"))
        self.assertEqual(run.code, 5, run.errors)
        self.assertEqual(len(run.error_lines), 1, run.errors)
        self.assertIn("2: ", run.error_lines[0])
        self.assertIn("would be infinite", run.error_lines[0])
        self.assertEqual(support.Run("check", self.path("m.dxf")).code, 0)
        self.assertEqual(self.content(self.drawing), before)

    def test_what_is_no_ordinary_file_is_called_so(self):
        os.mkfifo(self.path("pipe"))
        for path in ("/dev/null", "/dev/full", self.path("pipe")):
            run = support.Run("convert", self.drawing, path)
            self.assertEqual(run.code, 4)
            self.assertIn("it is no ordinary file", run.errors)

    def test_help_and_unknown_commands(self):
        for arguments in (("info", "--help"), ("-h",), ("convert", "-h"), ("run", self.drawing, "--help")):
            run = support.Run(*arguments)
            self.assertEqual((run.code, run.errors), (0, ""), arguments)
            self.assertTrue(run.output.startswith(b"usage: lmhost"), arguments)
        run = support.Run("foo")
        self.assertEqual((run.code, run.output), (2, b""))
        self.assertIn('unknown command "foo"', run.errors)
        run = support.Run("info")
        self.assertEqual(run.code, 2)
        self.assertIn("info needs a file", run.errors)
        run = support.Run("convert", "", "x")
        self.assertEqual(run.code, 2)
        self.assertIn("the name of the file is empty", run.errors)


if __name__ == "__main__":
    unittest.main()
