# SPDX-License-Identifier: MIT
"""_MOVE, _COPY and _EXPLODE over whole drawings, judged by ezdxf: an independent program moves the same entities,
and its values are compared with ours, kind by kind."""
import collections
import math
import os
import shutil
import tempfile
import unittest

import ezdxf
from ezdxf.math import Matrix44, Vec3

import support

STAYS = {"3DSOLID", "REGION", "BODY", "SURFACE", "OLE2FRAME", "ACAD_PROXY_ENTITY"}
# ezdxf leaves these to others: it has no transform for them, or loses what they need.
NOT_JUDGED = {"ACAD_TABLE", "SHAPE", "PDFUNDERLAY", "VIEWPORT"}
# The picture is named anew where it is copied; the horizontal of a dimension is turned the other way by ezdxf; its
# leaders lose what their style gives to the scale, its patterns and lines of several strokes keep the old size; it
# writes values out that are the usual ones.
NOT_COMPARED = {"owner", "geometry", "horizontal_direction", "extrusion", "arrow_head_size", "dogleg_length",
                "block_rotation", "pattern_angle", "pattern_scale", "scale_factor", "color", "align_point", "width",
                "normal_vector"}
DIRECTIONS = {"text_direction", "x_axis_vector"}


def drawing(name):
    path = support.shared("drawings", name + ".dxf")
    return path if os.path.isfile(path) else None


def flat(value):
    """Numbers of an attribute, or the value itself."""
    if isinstance(value, Vec3):
        return tuple(value.xyz)
    return value


def differ(a, b):
    if isinstance(a, tuple) and isinstance(b, tuple):
        return len(a) != len(b) or any(differ(x, y) for x, y in zip(a, b))
    if isinstance(a, (int, float)) and isinstance(b, (int, float)):
        return not math.isclose(a, b, rel_tol=1e-7, abs_tol=1e-6)
    return a != b


def angle_differs(a, b):
    return abs((a - b + 180) % 360 - 180) > 1e-6


def geometry(entity):
    """What a transform changes, by name: attributes, and the lists that ezdxf keeps beside them."""
    values = {name: flat(value) for name, value in entity.dxfattribs().items()
              if name not in NOT_COMPARED and not name.endswith("handle")}
    kind = entity.dxftype()
    if kind == "MULTILEADER":
        context = entity.context
        values["base"] = flat(context.base_point)
        values["text height"] = context.char_height
        for i, leader in enumerate(context.leaders):
            values["leader %d" % i] = flat(leader.last_leader_point)
            for k, line in enumerate(leader.lines):
                values["line %d %d" % (i, k)] = tuple(flat(Vec3(point)) for point in line.vertices)
        if context.mtext:
            values["text"] = flat(context.mtext.insert)
    elif kind == "POLYLINE":
        values["vertices"] = tuple(flat(vertex.dxf.location) for vertex in entity.vertices)
    elif kind == "LWPOLYLINE":
        values["vertices"] = tuple(tuple(point) for point in entity.get_points())
    elif kind == "SPLINE":
        values["points"] = tuple(flat(Vec3(point)) for point in entity.control_points)
    elif kind == "MESH":
        values["points"] = tuple(flat(Vec3(point)) for point in entity.vertices)
    elif kind == "LEADER":
        values["points"] = tuple(flat(Vec3(point)) for point in entity.vertices)
    elif kind == "MLINE":
        values["points"] = tuple(flat(vertex.location) for vertex in entity.vertices)
    elif kind == "HATCH":
        for i, path in enumerate(entity.paths):
            if hasattr(path, "vertices"):
                values["path %d" % i] = tuple(tuple(vertex) for vertex in path.vertices)
    elif kind == "INSERT":
        values["attributes"] = tuple(flat(attribute.dxf.insert) for attribute in entity.attribs)
    return values


def picture_of(entity):
    """Where the lines of a dimension's picture run."""
    block = entity.get_geometry_block()
    return [] if block is None else [(flat(line.dxf.start), flat(line.dxf.end)) for line in block.query("LINE")]


def moved_lines(lines, by):
    return [tuple(flat(Vec3(point) + by) for point in line) for line in lines]


class Moves(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm moves ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def run_script(self, path, text, name="out.dxf"):
        script, out = os.path.join(self.folder, "s.scr"), os.path.join(self.folder, name)
        with open(script, "w", encoding="utf-8") as file:
            file.write(text)
        run = support.Run("run", path, script, "--save", out, timeout=300)
        self.assertEqual(run.code, 0, run.errors)
        return run, out

    def compare(self, expected, found, where):
        theirs, ours = geometry(expected), geometry(found)
        for name, value in theirs.items():
            if name in DIRECTIONS:  # ezdxf lets their length grow with the scale
                direction = ours.get(name, (1.0, 0.0, 0.0))
                self.assertFalse(differ(flat(Vec3(value).normalize()), direction), (where, name))
                continue
            if name not in ours:  # ezdxf writes usual values out where it computed them
                self.assertFalse(differ(value, 1 if "scale" in name else 0), (where, name, value))
                continue
            if "angle" in name or "rotation" in name:
                self.assertFalse(angle_differs(value, ours[name]), (where, name, value, ours[name]))
            else:
                self.assertFalse(differ(value, ours[name]), (where, name, value, ours[name]))

    def test_everything_moves_or_is_named(self):
        for name in ("details-r2013", "multiline-r2018"):
            path = drawing(name)
            if path is None:
                continue
            run, out = self.run_script(path, "_MOVE _All  0,0 1000,500 \n")
            before, after = ezdxf.readfile(path), ezdxf.readfile(out)
            matrix = Matrix44.translate(1000, 500, 0)
            left = collections.Counter()
            compared = collections.Counter()
            pictures = 0
            for entity in before.modelspace():
                kind = entity.dxftype()
                found = after.entitydb[entity.dxf.handle]
                if kind in STAYS:
                    left[kind] += 1
                    continue
                if kind in NOT_JUDGED or before.layers.get(entity.dxf.layer).is_locked():
                    continue
                if kind == "DIMENSION":
                    shifted = moved_lines(picture_of(entity), Vec3(1000, 500, 0))
                    self.assertFalse(differ(tuple(shifted), tuple(picture_of(found))), (name, entity))
                    pictures += len(shifted)
                entity.transform(matrix)
                self.compare(entity, found, "%s %s" % (name, entity))
                compared[kind] += 1
            self.assertGreater(compared["DIMENSION"], 10)
            self.assertGreater(compared["MULTILEADER"], 10)
            self.assertGreater(pictures, 10)
            line = "can't be moved: " + ", ".join("%d %s" % (left[kind], kind) for kind in sorted(left))
            self.assertEqual(run.output.decode().splitlines(), [line] if left else [], name)

    def test_a_move_is_taken_back_byte_for_byte(self):
        path = drawing("multiline-r2018")
        if path is None:
            return
        _, plain = self.run_script(path, "(princ)\n", "plain.dxf")
        _, back = self.run_script(path, "_MOVE _All  0,0 1000,500 \n_U\n", "back.dxf")
        with open(plain, "rb") as one, open(back, "rb") as other:
            self.assertEqual(one.read(), other.read())

    def test_copies_lie_beside_and_nothing_on_top(self):
        path = drawing("multiline-r2018")
        if path is None:
            return
        run, out = self.run_script(path, "_COPY _All  0,0 100000,0 \n")
        before, after = ezdxf.readfile(path), ezdxf.readfile(out)
        kinds = collections.Counter(entity.dxftype() for entity in before.modelspace())
        now = collections.Counter(entity.dxftype() for entity in after.modelspace())
        for kind, count in kinds.items():
            self.assertEqual(now[kind], count if kind in STAYS else 2 * count, kind)
        self.assertEqual(run.output.decode().count("can't be copied: "), 1)
        handles = {entity.dxf.handle for entity in before.modelspace()}
        old = [entity for entity in after.modelspace().query("DIMENSION") if entity.dxf.handle in handles]
        new = [entity for entity in after.modelspace().query("DIMENSION") if entity.dxf.handle not in handles]
        self.assertEqual(len({entity.dxf.geometry for entity in old + new}), len(old) + len(new))
        for first, second in zip(old, new):
            self.assertAlmostEqual(second.dxf.defpoint.x - first.dxf.defpoint.x, 100000, places=5)
            shifted = moved_lines(picture_of(first), Vec3(100000, 0, 0))
            self.assertFalse(differ(tuple(shifted), tuple(picture_of(second))))
        self.assertFalse(after.audit().errors)

    def test_turned_and_scaled_pieces(self):
        path = drawing("multiline-r2018")
        if path is None:
            return
        source = ezdxf.readfile(path)
        space = source.modelspace()
        for entity in list(space):
            if entity.dxftype() in STAYS | NOT_JUDGED | {"DIMENSION", "INSERT"}:
                space.delete_entity(entity)
        small = os.path.join(self.folder, "small.dxf")
        source.saveas(small)
        block = ezdxf.readfile(small)
        _, out = self.run_script("--new", '(command "_INSERT" "SMALL=%s" \'(100.0 50.0 0.0) 2.0 2.0 30.0)\n'
                                          '(command "_EXPLODE" "L" "")\n' % small)
        pieces = [entity for entity in ezdxf.readfile(out).modelspace() if entity.dxftype() not in STAYS]
        base = block.header.get("$INSBASE", (0, 0, 0))
        matrix = (Matrix44.translate(-base[0], -base[1], -base[2]) @ Matrix44.scale(2, 2, 2) @
                  Matrix44.z_rotate(math.radians(30)) @ Matrix44.translate(100, 50, 0))
        expected = list(block.modelspace())
        self.assertEqual([entity.dxftype() for entity in pieces], [entity.dxftype() for entity in expected])
        for entity, found in zip(expected, pieces):
            entity.transform(matrix)
            self.compare(entity, found, str(entity))


if __name__ == "__main__":
    unittest.main()
