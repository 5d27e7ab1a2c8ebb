# SPDX-License-Identifier: MIT
"""LibreCAD opens every shared drawing in every version that the program writes, and draws the same of it.

LibreCAD's own printing of the drawing as it came is the measure: as many lines and curves must be drawn from each
written file. It opens many files in one process; one that it can't open makes it wait for somebody to press a
button, so a batch that doesn't end in time is tried again file by file.
"""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import zlib

import support

VERSIONS = ("R2000", "R2004", "R2007", "R2010", "R2013", "R2018")

# Drawings that LibreCAD opens in another form only, and that form.
MEASURES = {"sample-r12-bin": "sample-r12"}


def strokes(path):
    """How many lines and curves a PDF draws; None without the file."""
    if not os.path.isfile(path):
        return None
    with open(path, "rb") as file:
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


def draw(folder, paths, timeout=20):
    """Prints drawings beside themselves."""
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "HOME": folder, "XDG_RUNTIME_DIR": folder}
    command = [shutil.which("librecad") or "librecad", "dxf2pdf", "-a"]
    try:
        subprocess.run(command + paths, cwd=folder, env=environment, capture_output=True, check=False,
                       timeout=timeout + 10 * len(paths))
    except subprocess.TimeoutExpired:
        if len(paths) > 1:
            for path in paths:
                if not os.path.isfile(path[:-4] + ".pdf"):
                    draw(folder, [path])


class LibreCad(unittest.TestCase):
    """One test for each drawing; they are added below."""

    def check(self, path):
        name = os.path.basename(path)[:-4]
        measure = os.path.join(os.path.dirname(path), MEASURES.get(name, name) + ".dxf")
        with tempfile.TemporaryDirectory() as folder:
            given = os.path.join(folder, "given.dxf")
            shutil.copyfile(measure, given)
            made = {version: os.path.join(folder, version + ".dxf") for version in VERSIONS}
            for version, out in made.items():
                run = support.Run("convert", path, out, "--version", version)
                self.assertEqual((run.code, run.errors), (0, ""))
            draw(folder, [given, *made.values()])
            expected = strokes(given[:-4] + ".pdf")
            self.assertIsNotNone(expected, "LibreCAD can't open the drawing as it came")
            self.assertEqual({version: strokes(out[:-4] + ".pdf") for version, out in made.items()},
                             {version: expected for version in made})


def add_tests():
    for path in [support.SAMPLE] + support.shared_drawings():
        name = re.sub(r"\W", "_", os.path.basename(path)[:-4])
        setattr(LibreCad, "test_" + name, lambda self, path=path: self.check(path))


add_tests()

if __name__ == "__main__":
    unittest.main()
