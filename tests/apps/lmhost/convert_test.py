# SPDX-License-Identifier: MIT
"""`convert` over every drawing, version and form: what is written has the same `info` and `blocks`, and ezdxf, an
independent reader, finds no more faults in it than in the input."""
import collections
import json
import os
import re
import tempfile
import unittest

import ezdxf
from ezdxf import recover

import support

VERSIONS = ("R2000", "R2004", "R2007", "R2010", "R2013", "R2018")
TEXTS = {"R2000": "AC1015", "R2004": "AC1018", "R2007": "AC1021", "R2010": "AC1024", "R2013": "AC1027",
         "R2018": "AC1032"}
OLDEST = "AC1015"



def audit(path):
    """What ezdxf finds: whether it opens the file at all, and how often each kind of fault. None when it can't."""
    document = None
    for reader in (ezdxf.readfile, lambda name: recover.readfile(name)[0]):
        try:
            document = reader(path)
            break
        except Exception:  # pylint: disable=broad-except  # it raises whatever a damaged file led it to
            continue
    if document is None:
        return None
    auditor = document.audit()
    return collections.Counter(int(fault.code) for fault in list(auditor.errors) + list(auditor.fixes))


def listing(path, command):
    run = support.Run(command, path, "--json", timeout=120)
    if run.code not in (0, 1):
        raise AssertionError("%s %s: exit code %d\n%s" % (command, path, run.code, run.errors))
    return json.loads(run.output.decode("utf-8"))


def content(path):
    """What must stay: all of `info` but what tells the file's own form, and all of `blocks`."""
    info = listing(path, "info")
    info.pop("version")
    info.pop("codepage")
    info.pop("repairs")
    return {"info": info, "blocks": listing(path, "blocks")}


def complete(before, after):
    """An old drawing is completed: what it gets besides is taken away before the comparison."""
    got = json.loads(json.dumps(after))
    for part in ("layers", "dictionaries"):
        got["info"][part] = [item for item in got["info"][part] if item in before["info"][part]]
    got["info"]["kept"] = {kind: count for kind, count in got["info"]["kept"].items()
                           if kind in before["info"]["kept"]}
    for kind, count in before["info"]["kept"].items():
        if got["info"]["kept"].get(kind, 0) > count:
            got["info"]["kept"][kind] = count
    return got


class Convert(unittest.TestCase):
    """One test for each drawing; they are added below."""

    maxDiff = None

    def judge(self, path):
        refused = support.Run("info", path, "--json", timeout=120).code == 3
        with tempfile.TemporaryDirectory() as folder:
            out = os.path.join(folder, "out.dxf")
            if refused:
                run = support.Run("convert", path, out)
                support.check_refusal(self, run, path)
                self.assertFalse(os.path.exists(out))
                return
            before, faults = content(path), audit(path)
            version = listing(path, "info")["version"]
            for name in VERSIONS:
                for form in ([], ["--binary"]):
                    with self.subTest(version=name, form=form):
                        self.convert(path, out, name, form, before, faults, version < OLDEST)

    def convert(self, path, out, version, form, before, faults, old):
        run = support.Run("convert", path, out, "--version", version, *form, timeout=120)
        self.assertEqual((run.code, run.errors), (0, ""))
        after = content(out)
        self.assertEqual(listing(out, "info")["version"], TEXTS[version])
        with open(out, "rb") as file:
            self.assertEqual(file.read(18) == b"AutoCAD Binary DXF", bool(form))
        self.assertEqual(complete(before, after) if old else after, before)
        now = audit(out)
        if faults is None:
            return
        if now is None and form:
            return  # its tolerant reader knows no binary files
        self.assertIsNotNone(now, "ezdxf reads the input and not what was written")
        self.assertEqual(now - faults, collections.Counter(), "faults that the input doesn't have")


class CommandLine(unittest.TestCase):
    """Arguments and exit codes."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.out = os.path.join(folder.name, "out.dxf")

    def test_writes_text_of_r2018_and_lists_what_was_kept(self):
        run = support.Run("convert", support.SAMPLE, self.out)
        self.assertEqual(run.code, 0, run.errors)
        lines = run.output.decode("utf-8").split("\n")
        self.assertEqual(lines[0], "kept unread:")
        kept = listing(support.SAMPLE, "info")["kept"]
        self.assertEqual({line.strip().lower() for line in lines[1:] if line},
                         {("%s %d" % item).lower() for item in kept.items()})
        self.assertEqual(listing(self.out, "info")["version"], "AC1032")

    def test_takes_options_in_front_as_well(self):
        run = support.Run("convert", "--binary", "--version", "r2004", support.SAMPLE, self.out)
        self.assertEqual(run.code, 0, run.errors)
        self.assertEqual(listing(self.out, "info")["version"], "AC1018")

    def test_writes_over_its_input(self):
        self.assertEqual(support.Run("convert", support.SAMPLE, self.out).code, 0)
        with open(self.out, "rb") as file:
            first = file.read()
        self.assertEqual(support.Run("convert", self.out, self.out).code, 0)
        with open(self.out, "rb") as file:
            self.assertEqual(file.read(), first)

    def test_refuses_wrong_usage(self):
        for arguments in (["convert"], ["convert", support.SAMPLE], ["convert", support.SAMPLE, self.out, "more"],
                          ["convert", support.SAMPLE, self.out, "--version"],
                          ["convert", support.SAMPLE, self.out, "--version", "R12"],
                          ["convert", support.SAMPLE, self.out, "--json"]):
            run = support.Run(*arguments)
            self.assertEqual((run.code, run.output), (2, b""), arguments)
            self.assertEqual(len(run.error_lines), 1, run.errors)
        self.assertFalse(os.path.exists(self.out))

    def test_refuses_input_that_cant_be_read(self):
        run = support.Run("convert", os.path.join(self.folder, "missing.dxf"), self.out)
        support.check_refusal(self, run, "missing.dxf")
        self.assertFalse(os.path.exists(self.out))

    def test_tells_where_it_cant_write(self):
        run = support.Run("convert", support.SAMPLE, os.path.join(self.folder, "no", "out.dxf"))
        self.assertEqual((run.code, run.output), (4, b""))
        self.assertEqual(len(run.error_lines), 1, run.errors)
        run = support.Run("convert", support.SAMPLE, self.folder)
        self.assertEqual(run.code, 4)


def add_tests():
    for path in [support.SAMPLE] + support.shared_drawings():
        name = re.sub(r"\W", "_", os.path.basename(path)[:-4])
        setattr(Convert, "test_" + name, lambda self, path=path: self.judge(path))


add_tests()

if __name__ == "__main__":
    unittest.main()
