# SPDX-License-Identifier: MIT
"""The sample project made anew by the program: the same bytes each time, and those that are kept."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest

import ezdxf

import support

FOLDER = os.path.join(support.ROOT, "examples", "motor-starter")


class Example(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="partida às ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.copy = os.path.join(self.folder, "cópia")
        shutil.copytree(FOLDER, self.copy)

    def run_in_copy(self, *arguments):
        done = subprocess.run([*support.program(), "run", "--new", *arguments], cwd=self.copy, capture_output=True,
                              env={**os.environ, "LC_ALL": "C", "TZ": "Asia/Tokyo"}, timeout=300, check=False)
        self.assertEqual((done.returncode, done.stderr.decode()), (0, ""))
        return done.stdout.decode()

    def content(self, *parts):
        with open(os.path.join(*parts), "rb") as file:
            return file.read()

    def test_the_script_gives_the_kept_drawing_byte_for_byte(self):
        output = self.run_in_copy("make.lsp", "--save", "again.dxf")
        self.assertEqual(output.count("inserted "), 93)
        self.assertTrue(self.content(self.copy, "again.dxf") == self.content(FOLDER, "motor-starter.dxf"),
                        "in examples/motor-starter: lmhost run --new make.lsp --save motor-starter.dxf")

    def test_the_script_of_the_symbols_gives_the_kept_files_byte_for_byte(self):
        kept = sorted(os.listdir(os.path.join(FOLDER, "symbols")))
        shutil.rmtree(os.path.join(self.copy, "symbols"))
        os.mkdir(os.path.join(self.copy, "symbols"))
        self.run_in_copy("symbols.scr")
        self.assertEqual(sorted(os.listdir(os.path.join(self.copy, "symbols"))), kept)
        for name in kept:
            self.assertTrue(self.content(self.copy, "symbols", name) == self.content(FOLDER, "symbols", name), name)

    def test_every_symbol_file_is_one(self):
        names = sorted(os.listdir(os.path.join(FOLDER, "symbols")))
        self.assertEqual(len(names), 32)
        for name in names:
            path = os.path.join(FOLDER, "symbols", name)
            document = ezdxf.readfile(path)
            # The other reader makes layers of its own, so the file itself is asked.
            self.assertEqual(self.content(path).count(b"AcDbLayerTableRecord"), 1, name)
            self.assertEqual({entity.dxf.layer for entity in document.modelspace()}, {"0"}, name)
            self.assertEqual(len(document.modelspace().query("INSERT")), 0, name)
            auditor = document.audit()
            self.assertEqual([entry.message for entry in auditor.errors + auditor.fixes], [], name)

    def test_the_script_uses_every_symbol(self):
        names = {name[:-4] for name in os.listdir(os.path.join(FOLDER, "symbols"))}
        document = ezdxf.readfile(support.SAMPLE)
        self.assertEqual(names, {insert.dxf.name for insert in document.modelspace().query("INSERT")})
        script = self.content(FOLDER, "symbols.scr").decode()
        self.assertEqual(names, set(re.findall(r'^\(symbol "(.*)"\)$', script, re.M)))

    def test_redefining_all_symbols_by_their_files_changes_nothing_that_is_seen(self):
        with open(os.path.join(self.copy, "again.scr"), "w", encoding="utf-8") as file:
            file.write("_OPEN motor-starter.dxf\n_LMREDEFINE symbols\n")
        output = self.run_in_copy("again.scr", "--save", "again.dxf")
        self.assertIn("redefined 32 blocks with 93 references; 0 files of other names\n", output)
        listings = [re.sub(r'"handle":"\w+"', "", support.Run("blocks", path, "--json").output.decode())
                    for path in (support.SAMPLE, os.path.join(self.copy, "again.dxf"))]
        self.assertEqual(listings[0], listings[1])


if __name__ == "__main__":
    unittest.main()
