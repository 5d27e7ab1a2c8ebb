# SPDX-License-Identifier: MIT
"""LibreCAD opens the sample project and draws it: the sheets, and the symbols as well."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DRAWING = os.path.join(ROOT, "examples", "motor-starter", "motor-starter.dxf")
INSERT = re.compile(r"  0\nINSERT\n(?s:.*?)(?=  0\n(?!ATTRIB|SEQEND))")


def strokes(path):
    """How many line segments a PDF draws."""
    with open(path, "rb") as file:
        data = file.read()
    count = 0
    for match in re.finditer(rb"stream\r?\n(.*?)endstream", data, re.S):
        try:
            count += len(re.findall(rb" l\s", zlib.decompress(match.group(1))))
        except zlib.error:
            continue
    return count


class LibreCad(unittest.TestCase):
    def draw(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "drawing.dxf")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
            environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "HOME": folder,
                           "XDG_RUNTIME_DIR": folder}
            subprocess.run([shutil.which("librecad") or "librecad", "dxf2pdf", "-a", path], check=True,
                           cwd=folder, env=environment, capture_output=True, timeout=120)
            return strokes(os.path.join(folder, "drawing.pdf"))

    def test_draws_the_sheets_and_their_symbols(self):
        with open(DRAWING, encoding="utf-8") as file:
            text = file.read()
        bare, removed = INSERT.subn("", text)
        self.assertEqual(removed, text.count("  0\nINSERT\n"))
        with_symbols, without = self.draw(text), self.draw(bare)
        self.assertGreater(without, 80, "wires and tables")
        self.assertGreater(with_symbols, without + 1000, "symbols, frames and stamps")


if __name__ == "__main__":
    unittest.main()
