# SPDX-License-Identifier: MIT
"""Drawings older than R2000, and new ones, written for every version from R2000 to R2018.

Each file is looked at group by group, opened and audited by ezdxf, and read back by the program. One of the shared
drawings stands there twice, saved as R12 and as R2000 by the same foreign program: what the program makes of the
R12 file must have the marks, the owners and the order of the R2000 one.
"""
import collections
import json
import os
import re
import shutil
import tempfile
import unittest

import ezdxf
from ezdxf.lldxf import tagger

import judge_ezdxf
import support

VERSIONS = ("R2000", "R2004", "R2007", "R2010", "R2013", "R2018")
OLD = ("orcad-r12", "sample-r12", "sample-r12-bin", "r13-bin", "dup-handles-r13", "attribs-lights-r14")

FIRST_XDATA = 1000
ENDS = ("SECTION", "ENDSEC", "ENDTAB", "EOF", "CLASS")


def entries_of(path):
    """The entries of a file, text or binary: a list of (code, value) each, texts stripped."""
    with open(path, "rb") as file:
        data = file.read()
    if data.startswith(b"AutoCAD Binary DXF"):
        groups = ((tag.code, tag.value) for tag in tagger.binary_tags_loader(data))
    else:
        lines = data.decode("utf-8", "surrogateescape").split("\n")
        groups = ((int(code), value) for code, value in zip(lines[::2], lines[1::2]))
    entries = []
    for code, value in groups:
        value = value.strip() if isinstance(value, str) else value
        if code == 0:
            entries.append([])
        if entries:
            entries[-1].append((code, value))
    return entries


def type_of(entry):
    return entry[0][1]


def head_of(entry):
    """The groups in front of the first mark, without the lists in braces."""
    head, listed = [], False
    for code, value in entry[1:]:
        if code == 100 or code >= FIRST_XDATA:
            break
        if code == 102:
            listed = value.startswith("{")
        elif not listed:
            head.append((code, value))
    return head


def first(groups, wanted):
    return next((value for code, value in groups if code == wanted), None)


def handle_of(entry):
    return first(head_of(entry), 105 if type_of(entry) == "DIMSTYLE" else 5)


def structure_of(entry):
    """Codes and marks, without the lists in braces and extended data."""
    structure, listed = [], False
    for code, value in entry[1:]:
        if code >= FIRST_XDATA:
            break
        if code == 102:
            listed = value.startswith("{")
        elif not listed:
            structure.append(value if code == 100 else code)
    return structure


def is_part(part, whole):
    """Whether a sequence is another one with things left out."""
    rest = iter(whole)
    return all(item in rest for item in part)


def findings(path):
    """Codes of what ezdxf's audit finds and mends; None where ezdxf can't open the file."""
    try:
        auditor = ezdxf.readfile(path).audit()
    except Exception:  # pylint: disable=broad-except  # it raises whatever a damaged file led it to
        return None
    return collections.Counter(entry.code for entry in auditor.errors + auditor.fixes)


class Versions(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="lm versões ")
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)

    def convert(self, path, version, *options):
        name = os.path.basename(path).rsplit(".", 1)[0]
        out = os.path.join(self.folder, "%s %s%s.dxf" % (name, version, "".join(options)))
        run = support.Run("convert", path, out, "--version", version, *options)
        self.assertEqual((run.code, run.errors), (0, ""))
        return out

    def answer(self, command, path):
        run = support.Run(command, path, "--json")
        self.assertIn(run.code, (0, 1), run.errors)
        return json.loads(run.output.decode("utf-8"))

    def check_structure(self, path):
        """Handles are there and single, owners exist, marks stand where they belong."""
        entries = [entry for entry in entries_of(path) if type_of(entry) not in ENDS]
        handles = collections.Counter(handle_of(entry) for entry in entries)
        self.assertNotIn(None, handles)
        self.assertEqual([handle for handle, count in handles.items() if count > 1], [])
        section = None
        for entry in entries_of(path):
            if type_of(entry) in ENDS:
                section = first(entry, 2) if type_of(entry) == "SECTION" else section
                continue
            owner = first(head_of(entry), 330)
            if owner is not None and owner != "0":
                self.assertIn(owner, handles, entry[:6])
            marks = [value for code, value in entry if code == 100]
            if type_of(entry) == "TABLE":
                self.assertEqual((owner, marks[0]), ("0", "AcDbSymbolTable"))
            elif section == "TABLES":
                self.assertEqual(marks[0], "AcDbSymbolTableRecord", entry[:6])
                self.assertIsNotNone(owner)
            elif section in ("BLOCKS", "ENTITIES"):
                self.assertEqual(marks[0], "AcDbEntity", entry[:6])
                self.assertIsNotNone(owner)

    def check_answers(self, before, after):
        """`info` and `blocks` say the same; what every written file gets isn't listed."""
        old, new = self.answer("info", before), self.answer("info", after)
        for key in old:
            if key not in ("version", "codepage", "repairs"):
                self.assertEqual(old[key], new[key], key)
        self.assertFalse(new["repairs"], "nothing is left to repair")
        self.assertEqual(self.answer("blocks", before), self.answer("blocks", after))

    def check_old(self, path):
        before = findings(path)
        self.assertIsNotNone(before)
        for version in VERSIONS:
            with self.subTest(version=version):
                out = self.convert(path, version)
                self.check_structure(out)
                self.check_answers(path, out)
                after = findings(out)
                self.assertIsNotNone(after, "ezdxf can't open it")
                self.assertEqual(after - before, collections.Counter())
                again = self.convert(out, version)
                with open(out, "rb") as one, open(again, "rb") as other:
                    self.assertEqual(one.read() == other.read(), True, "the second file is another one")
        for version in (VERSIONS[0], VERSIONS[-1]):
            with self.subTest(version=version, form="binary"):
                out = self.convert(path, version, "--binary")
                self.check_structure(out)
                self.assertEqual(findings(out) - before, collections.Counter())

    def test_an_r12_file_gets_the_structure_of_the_same_drawing_saved_as_r2000(self):
        ours, theirs = (support.shared("drawings", name + ".dxf") for name in ("sample-r12", "sample-r2000-bin"))
        if not (os.path.isfile(ours) and os.path.isfile(theirs)):
            self.skipTest("shared drawings not found")
        made, given = ({(type_of(entry), handle_of(entry)): entry for entry in entries_of(path)
                        if type_of(entry) not in ENDS} for path in (self.convert(ours, "R2000"), theirs))
        common = set(made) & set(given)
        self.assertGreater(len(common), 200)
        self.assertGreater(len({key[0] for key in common}), 14, "kinds that both files have under one handle")
        for key in sorted(common):
            one, other = structure_of(made[key]), structure_of(given[key])
            self.assertEqual([mark for mark in one if isinstance(mark, str)],
                             [mark for mark in other if isinstance(mark, str)], key)
            self.assertTrue(is_part(one, other), "%s\nours   %s\ntheirs %s" % (key, one, other))

    def test_a_new_drawing(self):
        script = os.path.join(self.folder, "nothing.scr")
        with open(script, "w", encoding="utf-8"):
            pass
        new = os.path.join(self.folder, "new.dxf")
        run = support.Run("run", "--new", script, "--save", new)
        self.assertEqual((run.code, run.errors), (0, ""))
        info = self.answer("info", new)
        self.assertEqual(info["layers"], [{"name": "0", "frozen": False, "locked": False, "off": False}])
        self.assertEqual(info["blocks"], ["*Model_Space", "*Paper_Space"])
        for key in ("modelspace", "xdata", "dictionaries", "kept", "repairs"):
            self.assertFalse(info[key], key)
        for version in VERSIONS:
            for options in ((), ("--binary",)):
                with self.subTest(version=version, options=options):
                    out = self.convert(new, version, *options)
                    self.check_structure(out)
                    self.assertEqual(findings(out), collections.Counter())
                    again = self.convert(out, version, *options)
                    with open(out, "rb") as one, open(again, "rb") as other:
                        self.assertEqual(one.read(), other.read())
        self.assertEqual([layout.name for layout in ezdxf.readfile(new).layouts], ["Model", "Layout1"])

    def test_old_drawings_have_layouts(self):
        path = support.shared("drawings", "orcad-r12.dxf")
        if not os.path.isfile(path):
            self.skipTest("shared drawings not found")
        document = ezdxf.readfile(self.convert(path, "R2010"))
        for layout, record in (("Model", "*Model_Space"), ("Layout1", "*Paper_Space")):
            entry = document.layouts.get(layout)
            self.assertEqual(entry.dxf_layout.dxf.block_record_handle,
                             document.block_records.get(record).dxf.handle)
        self.assertEqual(len(document.modelspace()), len(judge_ezdxf.read(path).modelspace()))


def add_tests():
    for path in support.shared_drawings():
        name = os.path.basename(path)[:-4]
        if name in OLD:
            setattr(Versions, "test_" + re.sub(r"\W", "_", name), lambda self, path=path: self.check_old(path))


add_tests()

if __name__ == "__main__":
    unittest.main()
