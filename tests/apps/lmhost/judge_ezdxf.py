# SPDX-License-Identifier: MIT
"""What ezdxf, an independent reader, finds in a drawing, in the form of the program's JSON; and the comparison.

`expected_info` and `expected_blocks` read with ezdxf, `differences_of_info` and `differences_of_blocks` give a
list of (place, what ezdxf has, what the program has). Texts are compared trimmed on both sides, and caret forms
(^I for a tabulator, "^ " for a caret) are decoded on ezdxf's side, which leaves them as they stand in the file.
"""
import collections
import math
import re

import ezdxf
from ezdxf import recover

TOLERANCE = 1e-9
BLANKS = " \t\r\n\v\f\0"


def read(path):
    """The drawing as ezdxf has it; its tolerant reader where the strict one gives up. None when both do."""
    for reader in (ezdxf.readfile, lambda name: recover.readfile(name)[0]):
        try:
            return reader(path)
        except Exception:  # pylint: disable=broad-except  # it raises whatever a damaged file led it to
            continue
    return None


def decode(text):
    """Control characters from their caret form."""
    return re.sub(r"\^(.)", lambda match: "^" if match.group(1) == " " else
                  chr(ord(match.group(1)) - 64) if "@" <= match.group(1) <= "_" else match.group(0), text)


def plain(text):
    return decode(text).strip(BLANKS)


def layout_name(name):
    """The spaces have other names in old drawings; both readers may give them the new ones."""
    folded = name.lower().replace("$", "*", 1)
    return folded if folded.startswith(("*model_space", "*paper_space")) else name


def expected_info(document):
    layers = [{"name": layer.dxf.name, "frozen": layer.is_frozen(), "locked": layer.is_locked(),
               "off": layer.is_off()} for layer in document.layers]
    counts = collections.Counter(entity.dxftype() for entity in document.modelspace())
    return {"layers": layers, "blocks": [block.name for block in document.blocks], "modelspace": dict(counts)}


def expected_blocks(document):
    return [reference(insert) for insert in document.modelspace() if insert.dxftype() == "INSERT"]


def text_of(attribute):
    """The text of an attribute or a definition: what its lines show where the file has it in them alone."""
    if attribute.dxf.text == "" and attribute.has_embedded_mtext_entity:
        return attribute.plain_mtext()
    return attribute.dxf.text


def reference(insert):
    attributes = [{"tag": attribute.dxf.tag, "value": text_of(attribute),
                   "invisible": bool(attribute.is_invisible),
                   "handle": attribute.dxf.handle, "prompt": prompt(insert, attribute.dxf.tag)}
                  for attribute in insert.attribs]
    dxf = insert.dxf
    return {"handle": dxf.handle, "name": dxf.name, "layer": dxf.layer, "position": list(dxf.insert),
            "rotation": math.radians(dxf.rotation), "normal": list(dxf.extrusion),
            "scale": [dxf.xscale, dxf.yscale, dxf.zscale], "attributes": attributes}


def prompt(insert, tag):
    block = insert.block()
    for definition in (block.query("ATTDEF") if block is not None else ()):
        if definition.dxf.tag.upper() == tag.upper():
            return definition.dxf.prompt
    return ""


def differences_of_info(expected, got):
    found = []
    compare_layers(expected["layers"], got["layers"], found)
    ours, theirs = ([layout_name(name) for name in side["blocks"]] for side in (got, expected))
    for name in sorted(set(theirs) - set(ours)):
        found.append(("block " + name, "there", "missing"))
    for name in sorted(set(ours) - set(theirs)):
        found.append(("block " + name, "missing", "there"))
    if len(ours) != len(set(ours)):
        found.append(("blocks", "each name once", "a name twice"))
    for kind in sorted(set(expected["modelspace"]) | set(got["modelspace"])):
        numbers = expected["modelspace"].get(kind, 0), got["modelspace"].get(kind, 0)
        if numbers[0] != numbers[1]:
            found.append(("model space " + kind, *numbers))
    return found


def compare_layers(expected, got, found):
    ours, theirs = ({layer["name"]: layer for layer in side} for side in (got, expected))
    for name in theirs:
        if name not in ours:
            found.append(("layer " + name, "there", "missing"))
            continue
        for flag in ("frozen", "locked", "off"):
            if theirs[name][flag] != ours[name][flag]:
                found.append(("layer %s %s" % (name, flag), theirs[name][flag], ours[name][flag]))
    for name in ours:
        if name not in theirs:
            found.append(("layer " + name, "missing", "there"))
    orders = [[layer["name"] for layer in one if layer["name"] in other] for one, other in (
        (expected, ours), (got, theirs))]
    if orders[0] != orders[1]:
        found.append(("layer order", *orders))


def differences_of_blocks(expected, got, prompts=False):
    found = []
    if len(expected) != len(got):
        found.append(("references", len(expected), len(got)))
    for number, (theirs, ours) in enumerate(zip(expected, got)):
        place = "reference %d (%s)" % (number, theirs["handle"])
        for key in ("handle", "name", "layer"):
            if plain(theirs[key]) != ours[key].strip(BLANKS):
                found.append(("%s %s" % (place, key), plain(theirs[key]), ours[key]))
        for key in ("position", "scale", "normal"):
            if not all(map(close, theirs[key], ours[key])):
                found.append(("%s %s" % (place, key), theirs[key], ours[key]))
        if not close_angle(theirs["rotation"], ours["rotation"]):
            found.append((place + " rotation", theirs["rotation"], ours["rotation"]))
        compare_attributes(place, theirs["attributes"], ours["attributes"], prompts, found)
    return found


def compare_attributes(place, expected, got, prompts, found):
    if len(expected) != len(got):
        found.append((place + " attributes", [item["tag"] for item in expected],
                      [item["tag"] for item in got]))
    for number, (theirs, ours) in enumerate(zip(expected, got)):
        here = "%s attribute %d" % (place, number)
        for key in ("tag", "value", "handle") + (("prompt",) if prompts else ()):
            if plain(theirs[key]) != ours[key].strip(BLANKS):
                found.append(("%s %s" % (here, key), plain(theirs[key]), ours[key]))
        if theirs["invisible"] != ours["invisible"]:
            found.append((here + " invisible", theirs["invisible"], ours["invisible"]))


def close(one, other):
    return abs(one - other) <= TOLERANCE * max(1.0, abs(one), abs(other))


def close_angle(one, other):
    """Equal but for whole turns: a file may say 450 degrees."""
    turn = (one - other) / (2 * math.pi)
    return abs(turn - round(turn)) <= TOLERANCE
