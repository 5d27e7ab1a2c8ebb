# SPDX-License-Identifier: MIT
"""The command `check` from outside: what it prints, its exit codes, and the drawing that --fix leaves."""
import json
import os
import shutil
import tempfile
import unittest

import support


def groups(*pairs):
    return "".join("%3d\n%s\n" % pair for pair in pairs)


def damaged():
    """The sample project with an application that nobody registered, a handle in extended data that leads
    nowhere, a reference to a block that isn't there, and handles beyond $HANDSEED."""
    with open(support.SAMPLE, encoding="utf-8") as file:
        text = file.read()
    place = text.index("  0\nENDSEC\n", text.index("  2\nENTITIES\n"))
    line = groups((0, "LINE"), (5, "FFF0"), (100, "AcDbEntity"), (8, "0"), (100, "AcDbLine"), (10, "0.0"),
                  (20, "0.0"), (30, "0.0"), (11, "1.0"), (21, "0.0"), (31, "0.0"),
                  (1001, "NOT_REGISTERED"), (1000, "text"), (1005, "FFFFF"))
    insert = groups((0, "INSERT"), (5, "FFF1"), (100, "AcDbEntity"), (8, "0"), (100, "AcDbBlockReference"),
                    (2, "NOT THERE"), (10, "0.0"), (20, "0.0"), (30, "0.0"))
    return text[:place] + line + insert + text[place:]


class Check(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="verificação um ")
        self.addCleanup(shutil.rmtree, self.folder)
        self.bad = os.path.join(self.folder, "bad.dxf")
        with open(self.bad, "w", encoding="utf-8", newline="\n") as file:
            file.write(damaged())

    def listed(self, path, *arguments, code=1):
        run = support.Run("check", path, "--json", *arguments)
        self.assertEqual(run.code, code, run.errors)
        self.assertEqual(run.errors, "")
        document = json.loads(run.output.decode("utf-8"))
        self.assertEqual(set(document), {"file", "defects", "counts"})
        self.assertEqual(document["file"], path)
        for defect in document["defects"]:
            self.assertEqual(set(defect), {"number", "handle", "kind", "text", "mended"})
        for number, count in document["counts"].items():
            same = [d for d in document["defects"] if str(d["number"]) == number]
            self.assertEqual(len(same), min(count["found"], 100))
        return document

    def test_a_good_drawing(self):
        run = support.Run("check", support.SAMPLE)
        self.assertEqual((run.code, run.output, run.errors), (0, b"no defects\n", ""))
        document = self.listed(support.SAMPLE, code=0)
        self.assertEqual((document["defects"], document["counts"]), ([], {}))

    def test_a_damaged_drawing(self):
        document = self.listed(self.bad)
        found = [(d["number"], d["handle"], d["kind"], d["mended"]) for d in document["defects"]]
        self.assertEqual(found, [(109, "FFF1", "INSERT", False), (207, "FFF0", "LINE", False),
                                 (211, "FFF0", "LINE", False), (218, "0", "", True)])
        self.assertIn("NOT THERE", document["defects"][0]["text"])
        self.assertEqual(document["counts"]["207"], {"found": 1, "mended": 0})
        run = support.Run("check", self.bad)
        self.assertEqual(run.code, 1)
        lines = run.output.decode("utf-8").split("\n")
        self.assertEqual(lines[-2:], ["4 defects, 1 mended", ""])
        self.assertTrue(lines[1].startswith("207: ") and "LINE FFF0" in lines[1], lines)

    def test_a_mended_drawing(self):
        out = os.path.join(self.folder, "mended ação.dxf")
        with open(self.bad, "rb") as file:
            before = file.read()
        document = self.listed(self.bad, "--fix", out)
        self.assertEqual([d["number"] for d in document["defects"] if d["mended"]], [211, 218])
        with open(self.bad, "rb") as file:
            self.assertEqual(file.read(), before)
        again = self.listed(out)
        self.assertEqual([d["number"] for d in again["defects"]], [109, 207])
        self.assertEqual([name for name in os.listdir(self.folder) if name.endswith(".lmsave")], [])

    def test_a_drawing_mended_in_place(self):
        self.listed(self.bad, "--fix", self.bad)
        self.assertEqual(sorted(self.listed(self.bad)["counts"]), ["109", "207"])

    def test_a_good_drawing_is_saved_too(self):
        out = os.path.join(self.folder, "out.dxf")
        self.listed(support.SAMPLE, "--fix", out, code=0)
        self.listed(out, code=0)

    def test_what_it_says_of_a_save_is_true(self):
        for path in support.shared_drawings():
            out = os.path.join(self.folder, "out.dxf")
            with self.subTest(os.path.basename(path)):
                run = support.Run("check", path, "--json", "--fix", out)
                self.assertIn(run.code, (0, 1), run.errors)
                first = json.loads(run.output)["counts"]
                again = json.loads(support.Run("check", out, "--json").output)["counts"]
                left = {n: c["found"] - c["mended"] for n, c in first.items() if c["found"] > c["mended"]}
                self.assertEqual({n: c["found"] for n, c in again.items()}, left)

    def test_wrong_usage(self):
        for arguments in (["--fix"], ["--fix", ""], ["--what"], ["other.dxf"]):
            run = support.Run("check", self.bad, *arguments)
            self.assertEqual(run.code, 2, arguments)
            self.assertEqual(run.output, b"")
            self.assertEqual(len(run.error_lines), 1, run.errors)
        run = support.Run("check")
        self.assertEqual((run.code, run.output), (2, b""))

    def test_options_in_front(self):
        out = os.path.join(self.folder, "front.dxf")
        run = support.Run("check", "--fix", out, "--json", self.bad)
        self.assertEqual(run.code, 1, run.errors)
        self.assertTrue(os.path.exists(out))

    def test_input_that_cant_be_read(self):
        path = os.path.join(self.folder, "nothing.dxf")
        support.check_refusal(self, support.Run("check", path), path)

    def test_output_that_cant_be_written(self):
        os.mkdir(os.path.join(self.folder, "folder"))
        for out in (os.path.join(self.folder, "folder"), os.path.join(self.folder, "none", "out.dxf"),
                    "/dev/full"):
            run = support.Run("check", self.bad, "--fix", out)
            self.assertEqual(run.code, 4, out)
            self.assertEqual(len(run.error_lines), 1, run.errors)
            self.assertIn(out, run.error_lines[0])

    def test_the_help_names_it(self):
        self.assertIn(b"check FILE [--json] [--fix OUT]", support.Run("help").output)


if __name__ == "__main__":
    unittest.main()
