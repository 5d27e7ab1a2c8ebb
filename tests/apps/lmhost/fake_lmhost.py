# SPDX-License-Identifier: MIT
"""Stands in for the program where the comparison is tested: answers from ezdxf, with one fault on request.

The environment variable FAKE_FAULT names the fault; the names are the functions below.
"""
import json
import os
import sys

import judge_ezdxf


def layer_order(info, _blocks):
    info["layers"][1], info["layers"][2] = info["layers"][2], info["layers"][1]


def layer_missing(info, _blocks):
    del info["layers"][3]


def layer_invented(info, _blocks):
    info["layers"].append({"name": "NEW", "frozen": False, "locked": False, "off": False})


def layer_thawed(info, _blocks):
    for layer in info["layers"]:
        layer["frozen"] = False


def layer_locked(info, _blocks):
    info["layers"][-1]["locked"] = True


def layer_off(info, _blocks):
    info["layers"][-1]["off"] = True


def block_missing(info, _blocks):
    info["blocks"].remove("LAMP")


def block_twice(info, _blocks):
    info["blocks"].append("LAMP")


def count_wrong(info, _blocks):
    info["modelspace"]["TEXT"] += 1


def references_swapped(_info, blocks):
    blocks[0], blocks[1] = blocks[1], blocks[0]


def reference_missing(_info, blocks):
    del blocks[-1]


def name_wrong(_info, blocks):
    blocks[5]["name"] = blocks[5]["name"].lower()


def layer_wrong(_info, blocks):
    blocks[5]["layer"] = "0"


def position_off(_info, blocks):
    blocks[7]["position"][1] += 1e-5


def scale_wrong(_info, blocks):
    blocks[7]["scale"][0] = -blocks[7]["scale"][0]


def rotation_in_degrees(_info, blocks):
    for block in blocks:
        block["rotation"] *= 57.29577951308232


def attributes_swapped(_info, blocks):
    attributes = next(block["attributes"] for block in blocks if len(block["attributes"]) > 1)
    attributes.reverse()


def attribute_missing(_info, blocks):
    next(block["attributes"] for block in blocks if block["attributes"]).pop()


def value_wrong(_info, blocks):
    blocks[0]["attributes"][0]["value"] += "x"


def accents_lost(_info, blocks):
    for block in blocks:
        for attribute in block["attributes"]:
            attribute["value"] = attribute["value"].encode("ascii", "replace").decode()


def all_visible(_info, blocks):
    for block in blocks:
        for attribute in block["attributes"]:
            attribute["invisible"] = False


FAULTS = [layer_order, layer_missing, layer_invented, layer_thawed, layer_locked, layer_off, block_missing,
          block_twice, count_wrong, references_swapped, reference_missing, name_wrong, layer_wrong, position_off,
          scale_wrong, rotation_in_degrees, attributes_swapped, attribute_missing, value_wrong, accents_lost,
          all_visible]


def main():
    command, path = sys.argv[1], sys.argv[2]
    document = judge_ezdxf.read(path) if os.path.isfile(path) else None
    if document is None:
        print("lmhost: %s: can't be read" % path, file=sys.stderr)
        return 3
    info, blocks = judge_ezdxf.expected_info(document), judge_ezdxf.expected_blocks(document)
    for fault in FAULTS:
        if fault.__name__ == os.environ.get("FAKE_FAULT"):
            fault(info, blocks)
    print(json.dumps(info if command == "info" else blocks))
    return 0


if __name__ == "__main__":
    sys.exit(main())
