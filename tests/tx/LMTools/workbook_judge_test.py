# SPDX-License-Identifier: MIT
"""LibreOffice judges the workbooks of _LMEXPORT, and saves one that _LMIMPORT reads."""
import csv
import os
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import commands_test  # noqa: E402

VALUES = [("007", "3.14"), ("1E5", " x "), ("2026-01-02", "ação é ü"), ("+5", "TRUE"), ("1/2", "a;b \"c\"")]


class Judged(commands_test.Base):
    def setUp(self):
        super().setUp()
        symbol = self.symbol("SYM", ["A", "B"])
        self.drawing = self.path("drawing.dxf")
        lisp = "".join('(command "_LMINSERT" %s "P01" \'(%d.0 0.0) 0 "A" "%s" "B" "%s" "")\n' % (
            symbol, 10 * i, *(value.replace('"', '\\"') for value in values)) for i, values in enumerate(VALUES))
        self.run_script(lisp + "_LMEXPORT %s\n" % self.quoted("list.xlsx"), "--save", self.drawing)

    def converted(self, form, name):
        os.makedirs(self.path("out"), exist_ok=True)
        subprocess.run(["soffice", "-env:UserInstallation=file://" + self.path("profile").replace(" ", "%20"),
                        "--headless", "--convert-to", form, "--outdir", self.path("out"), self.path("list.xlsx")],
                       check=True, timeout=240, capture_output=True)
        return self.path(os.path.join("out", name))

    def test_shows_the_same_texts(self):
        with open(self.converted("csv:Text - txt - csv (StarCalc):44,34,76", "list.csv"), encoding="utf-8") as file:
            rows = [row[3:] for row in csv.reader(file)][10:]
        self.assertEqual(rows, [["A", "B"]] + [list(values) for values in VALUES])

    def test_gives_the_same_values_back(self):
        path = self.converted("xlsx", "list.xlsx")
        run = self.run_script('_LMIMPORT "%s"\n' % path, drawing=self.drawing)
        self.assertIn("imported 0 values into 0 components", run.text)
        self.assertNotIn("not written", run.text)


if __name__ == "__main__":
    unittest.main()
