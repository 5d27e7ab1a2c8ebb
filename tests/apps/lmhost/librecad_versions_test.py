# SPDX-License-Identifier: MIT
"""LibreCAD opens every shared drawing in every version and form that the program writes, and draws the same of it.

LibreCAD's own printing of the drawing as it came is the measure: as many lines and curves must be drawn from each
written file. It prints many files in one process. A file that it can't open makes it show a message and wait for
somebody to press the button: such a file is taken out, and the rest goes to a new process.
"""
import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest
import zlib

import ezdxf

import support

VERSIONS = ("R2000", "R2004", "R2007", "R2010", "R2013", "R2018")

# What LibreCAD 2.2.0 refuses whoever wrote it. The first table names the drawing that is the measure instead.
REFUSED_AS_GIVEN = {
    "sample-r12-bin": ("sample-r12", "group codes of one byte, as binary files of R12 have them, aren't read"),
}
EMBEDDED = "group 101 (the mark of an embedded object) of a binary file is read as a number, though it is a text"
REFUSED_AS_BINARY = {
    "broken-tables": EMBEDDED,
    "details-r2013": EMBEDDED,
    "dynblock-visibility": EMBEDDED,
    "multiline-r2018": EMBEDDED,
    "plan-zh-r2018": EMBEDDED,
}

# What Qt says without a screen as soon as a window appears; printing shows none but the message of a refusal.
WINDOW = b"This plugin does not support propagateSizeHints()"
SECONDS = 60  # for one drawing; it takes less than one


def printed(path):
    return path[:-4] + ".pdf"


def strokes(path):
    """How many lines and curves the print of a drawing has; None without a print."""
    if not os.path.isfile(printed(path)):
        return None
    with open(printed(path), "rb") as file:
        data = file.read()
    counts = [0, 0]
    for match in re.finditer(rb"stream\r?\n(.*?)endstream", data, re.S):
        try:
            content = zlib.decompress(match.group(1))
        except zlib.error:
            continue
        counts[0] += len(re.findall(rb" l\s", content))
        counts[1] += len(re.findall(rb" c\s", content))
    return tuple(counts)


def print_some(folder, paths):
    """Prints drawings beside themselves until all are done, one is refused, or one takes too long."""
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "HOME": folder, "XDG_RUNTIME_DIR": folder}
    command = [shutil.which("librecad") or "librecad", "dxf2pdf", "-a"]
    log = os.path.join(folder, "librecad.log")
    with open(log, "wb") as output:
        process = subprocess.Popen(command + paths, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=output, stderr=output)
    end = time.monotonic() + SECONDS * len(paths)
    while process.poll() is None and time.monotonic() < end:
        with open(log, "rb") as output:
            if WINDOW in output.read():
                break
        time.sleep(0.05)
    process.kill()
    process.wait()


def draw(paths):
    """What LibreCAD draws of each path: strokes, or None for one that it refuses."""
    left = list(paths)
    with tempfile.TemporaryDirectory() as folder:
        while left:
            print_some(folder, left)
            # Drawings are printed in their order, so the first one without a print is the one that was refused.
            missing = [path for path in left if not os.path.isfile(printed(path))]
            left = missing[1:]
    return {path: strokes(path) for path in paths}


class Judge(unittest.TestCase):
    """The judge tells what it opened from what it refused, and sees one missing wire."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        with open(support.SAMPLE, "rb") as file:
            self.good = file.read().replace(b"\r\n", b"\n")  # the system writes CRLF; tags are looked for below

    def file(self, name, content):
        path = os.path.join(self.folder, name + ".dxf")
        with open(path, "wb") as file:
            file.write(content)
        return path

    def test_tells_refused_from_opened(self):
        cut = self.good.index(b"ENTITIES") + 3000
        binary = os.path.join(self.folder, "binary.dxf")
        self.assertEqual(support.Run("convert", support.SAMPLE, binary, "--binary").code, 0)
        with open(binary, "rb") as file:
            whole = file.read()
        good = [self.file("a", self.good), self.file("b", self.good), binary]
        bad = [self.file("empty", b""), self.file("text", b"no drawing\n"), self.file("cut", self.good[:cut]),
               self.file("cut binary", whole[:len(whole) // 2])]
        # Broken ones between the good ones: what follows them is drawn all the same.
        found = draw([bad[0], good[0], bad[1], bad[2], good[1], bad[3], good[2]])
        self.assertEqual({path: found[path] for path in bad}, {path: None for path in bad})
        self.assertGreater(found[good[0]][0], 1000)
        self.assertEqual({found[path] for path in good}, {found[good[0]]})

    def test_sees_that_one_wire_is_missing(self):
        start = self.good.index(b"  0\nLWPOLYLINE\n", self.good.index(b"ENTITIES"))
        end = self.good.index(b"\n  0\n", start) + 1
        paths = [self.file("all", self.good), self.file("less", self.good[:start] + self.good[end:])]
        found = draw(paths)
        self.assertIn(found[paths[0]][0] - found[paths[1]][0], range(1, 10))


class LibreCad(unittest.TestCase):
    """One test for each drawing; they are added below."""

    def check(self, path):
        name = os.path.basename(path)[:-4]
        measure, _ = REFUSED_AS_GIVEN.get(name, (name, ""))
        with tempfile.TemporaryDirectory() as folder:
            given = os.path.join(folder, "given.dxf")
            shutil.copyfile(os.path.join(os.path.dirname(path), measure + ".dxf"), given)
            texts = self.converted(path, folder, "text")
            binaries = self.converted(path, folder, "binary", "--binary")
            found = draw([given, *texts, *binaries])
            expected = found[given]
            self.assertIsNotNone(expected, "LibreCAD can't open the drawing as it came")
            self.assertGreater(sum(expected), 0)
            self.assertEqual([found[out] for out in texts], [expected for _ in VERSIONS])
            as_binary = None if name in REFUSED_AS_BINARY else expected
            self.assertEqual([found[out] for out in binaries], [as_binary for _ in VERSIONS])
            if as_binary is None:
                self.check_without_embedded(path, folder)

    def converted(self, path, folder, name, *options):
        """The drawing in all versions, in the order of VERSIONS."""
        paths = [os.path.join(folder, name + version + ".dxf") for version in VERSIONS]
        for version, out in zip(VERSIONS, paths):
            run = support.Run("convert", path, out, "--version", version, *options)
            self.assertEqual((run.code, run.errors), (0, ""))
        return paths

    def check_without_embedded(self, path, folder):
        """Nothing but the marks of embedded objects is why LibreCAD refuses a binary file."""
        with open(path, "rb") as file:
            text = file.read()
        bare = os.path.join(folder, "bare.dxf")
        with open(bare, "wb") as file:
            file.write(re.sub(rb"(?m)^101\r?\n.*\n", b"", text))
        self.assertNotEqual(os.path.getsize(bare), len(text))
        binaries = self.converted(bare, folder, "bare", "--binary")
        found = draw([bare, *binaries])
        self.assertIsNotNone(found[bare])
        self.assertEqual([found[out] for out in binaries], [found[bare] for _ in VERSIONS])


class Refusals(unittest.TestCase):
    """What LibreCAD refuses isn't the program's doing."""

    def test_are_those_of_files_by_ezdxf_too(self):
        opened, refused = "attribs-minsert", "dynblock-visibility"
        self.assertIn(refused, REFUSED_AS_BINARY)
        with tempfile.TemporaryDirectory() as folder:
            paths = {}
            for name in (opened, refused):
                drawing = ezdxf.readfile(support.shared("drawings", name + ".dxf"))
                for form in ("asc", "bin"):
                    paths[name, form] = os.path.join(folder, "%s %s.dxf" % (name, form))
                    drawing.saveas(paths[name, form], fmt=form)
            found = draw(list(paths.values()))
            self.assertEqual({key for key, path in paths.items() if found[path] is None}, {(refused, "bin")})

    def test_are_those_of_the_drawing_as_it_came(self):
        for name in REFUSED_AS_GIVEN:
            with tempfile.TemporaryDirectory() as folder:
                given = os.path.join(folder, "given.dxf")
                shutil.copyfile(support.shared("drawings", name + ".dxf"), given)
                self.assertEqual(draw([given]), {given: None}, name)


def add_tests():
    drawings = support.shared_drawings()
    for path in [support.SAMPLE] + drawings:
        name = re.sub(r"\W", "_", os.path.basename(path)[:-4])
        setattr(LibreCad, "test_" + name, lambda self, path=path: self.check(path))
    if not drawings:
        del Refusals.test_are_those_of_the_drawing_as_it_came
        del Refusals.test_are_those_of_files_by_ezdxf_too


add_tests()

if __name__ == "__main__":
    unittest.main()
