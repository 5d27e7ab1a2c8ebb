# SPDX-License-Identifier: MIT
"""Compares `info` and `blocks` with what ezdxf finds, for the sample project and every shared drawing.

Each difference must stand in KNOWN below, with its reason and who is right; a line of KNOWN that no difference
meets any more fails as well, so the table can't grow stale.
"""
import fnmatch
import json
import os
import re
import unittest

import judge_ezdxf
import support

US, THEM, BOTH = "the program is right", "ezdxf is right", "either answer will do"

# Drawing, pattern of the place, who is right, why.
KNOWN = (
    ("orcad-r12.dxf", "layer *", US, "the entities stand on layers that no table lists, and get them"),
)

# Layers that ezdxf puts into a drawing that has none of that name; they aren't in the file.
INVENTED_LAYERS = ("0", "Defpoints")

# Blocks that ezdxf puts into a drawing of an older version, one for each arrow head of its dimension styles.
INVENTED_BLOCKS = tuple("_" + name for name in (
    "ARCHTICK", "BOXBLANK", "BOXFILLED", "CLOSED", "CLOSEDBLANK", "CLOSEDFILLED", "DATUMBLANK", "DATUMFILLED", "DOT",
    "DOTBLANK", "DOTSMALL", "INTEGRAL", "NONE", "OBLIQUE", "OPEN", "OPEN30", "OPEN90", "ORIGIN", "ORIGIN2", "SMALL"))


def invented(path, difference):
    """Is it a layer or a block that only ezdxf has, of a name that the file doesn't mention?"""
    place, theirs, ours = difference
    if (theirs, ours) != ("there", "missing"):
        return False
    if place in ["block " + name for name in INVENTED_BLOCKS]:
        with open(path, "rb") as file:
            return place[6:].encode() not in file.read()
    if place not in ["layer " + name for name in INVENTED_LAYERS]:
        return False
    with open(path, "rb") as file:
        return not re.search(rb"(?m)^\s*(LAYER)\s*$(?s:.){0,200}?^" + place[6:].encode() + rb"\s*$",
                             file.read())


class Drawings(unittest.TestCase):
    """One test for each drawing; they are added below."""

    maxDiff = None

    def answer(self, path, command):
        run = support.Run(command, path, "--json", timeout=120)
        if run.code == 3:
            support.check_refusal(self, run, path)
            return None
        self.assertIn(run.code, (0, 1), run.errors)
        self.assertEqual(run.errors, "", "nothing but the JSON may be printed")
        return json.loads(run.output.decode("utf-8"))

    def judge(self, path):
        document = judge_ezdxf.read(path)
        info, blocks = self.answer(path, "info"), self.answer(path, "blocks")
        self.assertEqual(info is None, blocks is None, "one command reads it and the other one doesn't")
        if document is None:
            return
        self.assertIsNotNone(info, "ezdxf reads it and the program doesn't")
        found = judge_ezdxf.differences_of_info(judge_ezdxf.expected_info(document), info)
        found += judge_ezdxf.differences_of_blocks(judge_ezdxf.expected_blocks(document), blocks,
                                                   prompts=path == support.SAMPLE)
        name = os.path.basename(path)
        rows = [row for row in KNOWN if row[0] == name]
        left, met = [], set()
        for difference in found:
            row = next((row for row in rows if fnmatch.fnmatchcase(difference[0], row[1])), None)
            if row is not None:
                met.add(row)
            elif not invented(path, difference):
                left.append(difference)
        for row in sorted(met):
            print("%s: %s: %s, %s" % row, flush=True)
        self.assertEqual(left[:20], [], "%d differences: place, ezdxf, the program" % len(left))
        self.assertEqual([row for row in rows if row not in met], [],
                         "known differences that are none any more")


def add_tests():
    for path in [support.SAMPLE] + support.shared_drawings():
        name = re.sub(r"\W", "_", os.path.basename(path)[:-4])
        setattr(Drawings, "test_" + name, lambda self, path=path: self.judge(path))


add_tests()

if __name__ == "__main__":
    unittest.main()
