# SPDX-License-Identifier: MIT
"""Attributes of several lines, attributes of references that turn their block over, and bodies of the modeller, in
real drawings: what a redefinition, an insertion and a flattening leave of them, as ezdxf sees it.

Without the shared drawings there is nothing to test, and a line says so.
"""
import collections
import json
import os
import shutil
import tempfile
import unittest

import ezdxf
from ezdxf.math import Vec3

import symbol_files as files

import support

TEXT = "my multi line text for the attrrib"
HEAD = ((0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, "AC1032"), (0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES"))


def definition(handle, tag, text="", lines=None):
    """A definition at 7, 8 with a height of 2."""
    groups = [(0, "ATTDEF"), (5, handle), (100, "AcDbEntity"), (8, "0"), (100, "AcDbText"), (10, 7), (20, 8), (30, 0),
              (40, 2), (1, text), (100, "AcDbAttributeDefinition"), (280, 0), (3, "p"), (2, tag), (70, 0), (73, 0),
              (74, 0), (280, 0)]
    if lines is not None:
        groups += [(71, 4), (72, 0), (11, 7), (21, 8), (31, 0), (101, "Embedded Object"), (10, 7), (20, 8), (30, 0),
                   (40, 2), (41, 30), (46, 0), (71, 1), (72, 5), (1, lines), (73, 1), (44, 1)]
    return groups


def drawing(name):
    return next((path for path in support.shared_drawings() if os.path.basename(path) == name + ".dxf"), None)


class Base(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm textos ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def drawing(self, name):
        found = drawing(name)
        if found is None:
            self.skipTest("no shared drawing " + name)
        return found

    def symbol(self, *definitions):
        path = self.path("symbol.dxf")
        groups = [*HEAD, *(group for each in definitions for group in each), (0, "ENDSEC"), (0, "EOF")]
        with open(path, "w", encoding="utf-8") as file:
            file.write("".join("%s\n%s\n" % group for group in groups))
        return path

    def run_on(self, source, script):
        """What a script makes of a drawing, saved in the drawing's own version."""
        out = self.path("out.dxf")
        with open(self.path("script.scr"), "w", encoding="utf-8") as file:
            file.write(script)
        run = support.Run("run", source, self.path("script.scr"), "--save", out, timeout=120)
        self.assertEqual(run.code, 0, run.errors)
        return out

    def lines_of(self, path, block):
        """The attributes of several lines of all references to a block."""
        document = ezdxf.readfile(path)
        return [(insert, attribute) for insert in document.modelspace().query("INSERT")
                if insert.dxf.name == block for attribute in insert.attribs if attribute.dxf.tag == "MULTI_LINE_ATT"]


class Lines(Base):
    BLOCK, REFERENCE = "my_block_v2", "79C"

    def test_blocks_show_their_text(self):
        run = support.Run("blocks", self.drawing("multiline-r2018"), "--json")
        self.assertIn(TEXT, json.dumps(json.loads(run.output)))

    def test_a_redefinition_keeps_their_text(self):
        source = self.drawing("multiline-r2018")
        for name, definitions in (("single", definition("A2", "MULTI_LINE_ATT")),
                                  ("multi", definition("A2", "MULTI_LINE_ATT", lines="def\\Pault")),
                                  ("full", definition("A2", "MULTI_LINE_ATT", "def^Jault", "def\\Pault"))):
            with self.subTest(name):
                out = self.run_on(source, '_LMREDEFINE "%s" %s\n' % (self.symbol(definitions), self.BLOCK))
                (insert, attribute), = [found for found in self.lines_of(out, self.BLOCK)
                                        if found[0].dxf.handle == self.REFERENCE]
                self.assertEqual(files.judge_ezdxf.text_of(attribute), TEXT)
                if name != "single":
                    self.assertEqual(attribute.plain_mtext(), TEXT)
                    self.judge_place(insert, attribute)

    def judge_place(self, insert, attribute):
        lines = attribute.virtual_mtext_entity()
        wanted = insert.matrix44().transform(Vec3(7, 8))
        self.assertTrue(lines.dxf.insert.isclose(wanted, abs_tol=1e-6), (lines.dxf.insert, wanted))
        self.assertAlmostEqual(lines.dxf.char_height, 2 * abs(insert.dxf.yscale), 6)

    def test_an_insertion_places_them(self):
        symbol = self.symbol(definition("A2", "MULTI_LINE_ATT", lines="def\\Pault"))
        for script in ('_LMINSERT "multi=%s" P1 100,200 90 \n', '_INSERT "multi=%s" 100,200 2 3 30 \n\n'):
            with self.subTest(script):
                found = self.lines_of(self.run_on("--new", script % symbol), "multi")
                self.assertEqual(len(found), 1)
                self.judge_place(*found[0])
                self.assertEqual(found[0][1].plain_mtext(), "def\nault")


class TurnedOver(Base):
    def test_a_redefinition_leaves_texts_legible(self):
        source = self.drawing("plan-zh-r2018")
        document = ezdxf.readfile(source)
        inserts = [insert for block in document.blocks for insert in block.query("INSERT")
                   if insert.attribs and insert.dxf.zscale < 0 and insert.dxf.extrusion.z > 0]
        self.assertTrue(inserts)
        name = collections.Counter(insert.dxf.name for insert in inserts).most_common(1)[0][0]
        handles = {insert.dxf.handle for insert in inserts if insert.dxf.name == name}
        tags = sorted({a.dxf.tag for insert in inserts if insert.dxf.name == name for a in insert.attribs})
        symbol = self.symbol(*(definition("A%d" % i, tag, "x") for i, tag in enumerate(tags, 1)))
        result = ezdxf.readfile(self.run_on(source, '_LMREDEFINE "%s" "%s"\n' % (symbol, name)))
        for handle in handles:
            insert = result.entitydb[handle]
            self.assertEqual(len(insert.attribs), len(tags))
            for attribute in insert.attribs:
                self.judge(insert, attribute)

    def judge(self, insert, attribute):
        matrix = insert.matrix44()
        self.assertGreater(attribute.dxf.extrusion.z, 0.99)
        self.assertTrue(attribute.dxf.insert.isclose(matrix.transform(Vec3(7, 8)), rel_tol=1e-9, abs_tol=1e-4))
        along = matrix.transform_direction(Vec3(1, 0)).normalize()
        self.assertTrue(Vec3.from_deg_angle(attribute.dxf.rotation).isclose(along, abs_tol=1e-9), along)


def stored(path):
    """The entities whose bodies a file holds apart, as handle: bytes."""
    bodies, handle = {}, None
    for code, value in files.groups(path):
        if code == 0:
            handle = None
        if code == 320:
            handle = value.strip().upper()
        elif code == 310 and handle is not None:
            bodies.setdefault(handle, []).append(value.strip())
    return bodies


class Bodies(Base):
    def test_a_flattening_keeps_them(self):
        source = self.drawing("multiline-r2018")
        out = self.run_on(source, "_LMFLATTEN ALL  0\n")
        before, after = stored(source), stored(out)
        kinds = ("3DSOLID", "REGION")
        old = [e for e in ezdxf.readfile(source).modelspace() if e.dxftype() in kinds]
        new = [e for e in ezdxf.readfile(out).modelspace() if e.dxftype() in kinds]
        self.assertEqual([e.dxftype() for e in new], [e.dxftype() for e in old])
        self.assertTrue(new)
        self.assertFalse({e.dxf.handle for e in new} & {e.dxf.handle for e in old})
        self.assertEqual([after.get(e.dxf.handle) for e in new], [before[e.dxf.handle] for e in old])


if __name__ == "__main__":
    if support.shared_drawings():
        unittest.main()
