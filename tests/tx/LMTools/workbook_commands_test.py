# SPDX-License-Identifier: MIT
"""_LMEXPORT and _LMIMPORT, run by scripts in the real program. openpyxl, an independent reader, judges the workbooks that
are written; it can't write ones that are read, so their parts are changed by hand."""
import os
import re
import resource
import stat
import unittest
import zipfile

import openpyxl

import commands_test

HEADER = 11
LEAD = ["(handle of component)", "(name of block)", "(layer of page)"]


class Workbooks(commands_test.Base):
    def placed(self, *values):
        """A script that places a symbol with the tags A and B once for each pair of values."""
        symbol = self.symbol("SYM", ["A", "B"])
        return "".join("_LMINSERT %s P01 %d,0 0 A \"%s\" B \"%s\" \n" % (symbol, 10 * i, a, b)
                       for i, (a, b) in enumerate(values))

    def exported(self, script, name="list.xlsx"):
        """The rows that openpyxl reads from row 11 on."""
        self.drawing = self.path("drawing.dxf")
        self.last = self.run_script(script + "_LMEXPORT %s\n" % self.quoted(name), "--save", self.drawing)
        self.book = openpyxl.load_workbook(self.path(name))
        rows = [list(row) for row in self.book.worksheets[0].iter_rows(min_row=HEADER)]
        self.cells = rows
        return [[cell.value for cell in row] for row in rows]

    def change(self, old, new, name="list.xlsx", part="xl/sharedStrings.xml"):
        """Replaces a piece of one part."""
        with zipfile.ZipFile(self.path(name)) as archive:
            parts = {info.filename: archive.read(info) for info in archive.infolist()}
        self.assertIn(old.encode(), parts[part])
        parts[part] = parts[part].replace(old.encode(), new.encode())
        with zipfile.ZipFile(self.path(name), "w", zipfile.ZIP_DEFLATED) as archive:
            for part, content in parts.items():
                archive.writestr(part, content)

    def imported(self, name="list.xlsx"):
        """The values by handle and tag after an import into the exported drawing."""
        document = self.result("_LMIMPORT %s\n" % self.quoted(name), drawing=self.drawing)
        return {(insert.dxf.handle, attribute.dxf.tag): attribute.dxf.text
                for insert in document.modelspace().query("INSERT") for attribute in insert.attribs}

    def test_writes_one_row_for_each_component_below_the_eleventh(self):
        rows = self.exported(self.placed(("007", "3.14"), ("K1", "")))
        handles = [row[0] for row in rows[1:]]
        self.assertEqual(rows, [LEAD + ["A", "B"], [handles[0], "SYM", "P01", "007", "3.14"],
                                [handles[1], "SYM", "P01", "K1", ""]])
        self.assertEqual({cell.data_type for row in self.cells for cell in row if cell.value is not None}, {"s"})
        self.assertIn("exported 2 components", self.last.text)
        self.assertNotIn("keep", self.last.text)

    def test_an_import_without_a_change_changes_nothing(self):
        self.exported(self.placed(("007", " x "), ("=1+1", "http://a/b")))
        before = self.imported()
        self.assertIn("imported 0 values into 0 components", self.last.text)
        self.assertEqual(sorted(before.values()), sorted(["007", " x ", "=1+1", "http://a/b"]))

    def test_carries_edited_values_back_by_handle(self):
        rows = self.exported(self.placed(("007", "one"), ("K1", "two")))
        first, second = rows[1][0], rows[2][0]
        self.change(">one<", ">008<")
        self.change(">K1<", "><")
        self.assertEqual(self.imported(), {(first, "A"): "007", (first, "B"): "008", (second, "A"): "",
                                           (second, "B"): "two"})
        self.assertIn("imported 2 values into 2 components", self.last.text)

    def test_an_import_is_one_step(self):
        self.exported(self.placed(("007", "one")))
        self.change(">one<", ">two<")
        document = self.result("_LMIMPORT %s\n_U\n" % self.quoted("list.xlsx"), drawing=self.drawing)
        self.assertEqual([a.dxf.text for a in document.modelspace().query("INSERT")[0].attribs], ["007", "one"])

    def test_names_what_a_workbook_does_not_keep_and_never_writes_it_back(self):
        values = ["=A1", "http://example.com", "see mailto:x", "file://x", "ftp://x", "_x0041_", "Ж", "keep = it"]
        rows = self.exported(self.placed(*[(value, "b") for value in values]))
        shown = [row[3] for row in rows[1:]]
        self.assertEqual(shown, ["(only in the drawing)"] * 6 + ["Ж", "keep = it"])
        for row, value in zip(rows[1:], values[:-1]):
            self.assertRegex(self.last.text, r'doesn\'t keep as text "A" of %s: "%s"' % (row[0], re.escape(value)))
        self.assertNotIn("keep = it", self.last.text)
        self.change(">(only in the drawing)<", ">changed<")
        self.change(">Ж<", ">changed too<")
        values_now = self.imported()
        self.assertEqual([values_now[row[0], "A"] for row in rows[1:]], values)
        self.assertEqual(self.last.text.count("kept as it is"), 7)

    def test_a_formula_and_a_link_are_never_written_into_the_drawing(self):
        rows = self.exported(self.placed(("a1", "b1")))
        self.change(">a1<", ">=1+1<")
        self.change(">b1<", ">https://example.com<")
        self.assertEqual(set(self.imported().values()), {"a1", "b1"})
        for what, tag in (("formula", "A"), ("link", "B")):
            self.assertIn('a %s, so not written: "%s" of %s' % (what, tag, rows[1][0]), self.last.text)

    def test_a_letter_that_cannot_be_read_is_never_written_into_the_drawing(self):
        rows = self.exported(self.placed(("a1", "b1"), ("why?", "é")))
        self.change(">a1<", ">\U0001F600 é 日本<")
        self.change(">é<", ">is it?<")
        first, second = rows[1][0], rows[2][0]
        self.assertEqual(self.imported(), {(first, "A"): "a1", (first, "B"): "b1", (second, "A"): "why?",
                                           (second, "B"): "é"})
        line = 'a "?" may be a letter that can\'t be read, so not written: '
        self.assertIn(line + '"A" of %s, "?? é ??"' % first, self.last.text)
        self.assertIn(line + '"B" of %s, "is it?"' % second, self.last.text)
        self.assertEqual(self.last.text.count(line), 2)
        self.assertIn("imported 0 values", self.last.text)

    def test_a_cell_with_a_line_break_is_one_line_with_its_reason(self):
        rows = self.exported(self.placed(("a1", "b1")))
        self.change(">a1<", ">line1\nline2<")
        self.change(">b1<", ">#N/A<")
        self.assertEqual(set(self.imported().values()), {"a1", "b1"})
        self.assertEqual(self.last.text.split("\n")[:2], [
            'a text with a line break, so not written: "A" of %s, "line1\\nline2"' % rows[1][0],
            'an error, so not written: "B" of %s, "#N/A"' % rows[1][0]])

    def test_tells_what_may_be_no_text_in_the_workbook(self):
        taken = ["7.5", "true", "-3", "2026-01-02", "12:00:00.000", "1E5", "0.5"]
        silent = ["007", "1-2", "TRUE", "+5", "x7", "inf", "1,5", "-", "12:00"]
        rows = self.exported(self.placed(*[("a%d." % i, "b") for i in range(len(taken + silent))]))
        for i, value in enumerate(taken + silent):
            self.change(">a%d.<" % i, ">%s<" % value)
        values = self.imported()
        self.assertEqual([values[row[0], "A"] for row in rows[1:]], taken + silent)
        told = re.findall(r'may show a number.* otherwise: "A" of \w+ is now "(.*)"', self.last.text)
        self.assertEqual(told, taken)

    def test_tells_of_changes_that_are_not_taken(self):
        rows = self.exported(self.placed(("a1", "b1"), ("a2", "b2"), ("a3", "b3")))
        self.change(">SYM<", ">OTHER<")
        self.change(">%s<" % rows[3][0], "><")
        self.change(">a2<", ">changed<")
        self.imported()
        for row in rows[1:3]:
            self.assertIn('not taken from the workbook: "(name of block)" of %s, "OTHER", where the drawing has '
                          '"SYM"' % row[0], self.last.text)
        self.assertNotIn("layer of page", self.last.text)
        self.assertIn("row 14 has no handle, so it is passed over", self.last.text)
        self.assertIn("imported 1 value into 1 component", self.last.text)

    def test_refuses_what_does_not_belong_to_the_drawing(self):
        script = self.placed(("a1", "b1"), ("a2", "b2"))
        rows = self.exported(script)
        command = "_LMIMPORT %s" % self.quoted("list.xlsx")

        def refused(*expected):
            self.refused("", command, *expected, drawing=self.drawing)
        self.change(">%s<" % rows[2][0], ">7FFF<")
        refused("row 13", '"7FFF"')
        self.exported(script)
        self.change(">(handle of component)<", ">handle<")
        refused("(handle of component)", "row 11")
        self.exported(script)
        self.change(">B<", ">C<")
        refused("row 12", 'has no attribute "C"')
        self.exported(script)
        self.change(">B<", ">a<")
        refused("two columns")

    def test_refuses_files_that_are_no_workbook(self):
        script = self.placed(("a1", "b1"))
        for name, content, *expected in (("none.xlsx", None, "no file"), ("text.xlsx", b"text", "no workbook"),
                                         ("folder.xlsx", "folder", "no file"), ("list.txt", b"", ".xlsx")):
            if content == "folder":
                os.mkdir(self.path(name))
            elif content is not None:
                with open(self.path(name), "wb") as file:
                    file.write(content)
            self.refused(script, "_LMIMPORT %s" % self.quoted(name), *expected)
        self.refused(script, "_LMEXPORT %s" % self.quoted("list.dxf"), ".xlsx")
        self.refused(script, "_LMEXPORT %s" % self.quoted("none/list.xlsx"), "list.xlsx: can't be saved")
        self.refused(script, "_LMEXPORT %s" % self.quoted("folder.xlsx"), "folder.xlsx: can't be saved")

    def test_names_what_is_wrong_with_a_workbook_of_absolute_paths(self):
        self.exported(self.placed(("a1", "b1")))
        self.book.save(self.path("list.xlsx"))
        self.refused("", "_LMIMPORT %s" % self.quoted("list.xlsx"), "no cells can be read", "absolute paths",
                     drawing=self.drawing)

    def test_a_failed_export_leaves_the_older_workbook_and_nothing_else(self):
        script = self.placed(*[("a%d" % i, "b%d" % i) for i in range(50)])
        self.exported(script)
        with open(self.path("list.xlsx"), "rb") as file:
            before = file.read()
        names = set(os.listdir(self.folder))
        limits = resource.getrlimit(resource.RLIMIT_FSIZE)
        for size in (0, 1, 4096, len(before) - 100):
            for name in ("list.xlsx", "new.xlsx"):
                with open(self.path("script.scr"), "w", encoding="utf-8") as file:
                    file.write("_LMEXPORT %s\n" % self.quoted(name))
                resource.setrlimit(resource.RLIMIT_FSIZE, (size, limits[1]))
                try:
                    run = commands_test.support.Run("run", self.drawing, self.path("script.scr"))
                finally:
                    resource.setrlimit(resource.RLIMIT_FSIZE, limits)
                self.assertEqual(run.code, 5, run.errors)
                self.assertEqual(len(run.error_lines), 1, run.errors)
                self.assertIn(name, run.error_lines[0])
                self.assertEqual(set(os.listdir(self.folder)), names)
                with open(self.path("list.xlsx"), "rb") as file:
                    self.assertEqual(file.read(), before)

    def test_an_export_keeps_the_mode_and_the_link_of_its_target(self):
        script = self.placed(("a1", "b1"))
        self.exported(script, "real.xlsx")
        os.chmod(self.path("real.xlsx"), 0o640)
        os.symlink("real.xlsx", self.path("list.xlsx"))
        rows = self.exported(self.placed(("a2", "b2")))
        self.assertEqual(rows[1][3], "a2")
        self.assertTrue(os.path.islink(self.path("list.xlsx")))
        self.assertEqual(stat.S_IMODE(os.stat(self.path("real.xlsx")).st_mode), 0o640)

    def test_a_new_export_replaces_an_older_one(self):
        self.exported(self.placed(("a1", "b1"), ("a2", "b2")))
        rows = self.exported(self.placed(("a3", "b3")))
        self.assertEqual([row[3] for row in rows], ["A", "a3"])


if __name__ == "__main__":
    unittest.main()
