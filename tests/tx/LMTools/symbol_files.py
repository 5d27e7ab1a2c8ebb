# SPDX-License-Identifier: MIT
"""What a test of symbols finds out about drawings by itself, with ezdxf and from the groups as they stand: whether
a drawing may be a symbol, how it looks, what its attributes become. And symbol files out of blocks."""
import collections
import functools
import os
import sys
from unittest import mock

import ezdxf
from ezdxf.addons.importer import Importer
from ezdxf.document import Drawing
from ezdxf.lldxf.tagger import ascii_tags_loader, binary_tags_loader

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "tests", "apps", "lmhost"))

import judge_ezdxf  # noqa: E402

MANY_LAYERS = "Invalid block error - Block with multiple layers: "
NAMED_BLOCKS = "Invalid block error - Block containing blocks: "

Attribute = collections.namedtuple("Attribute", "tag value invisible")


def patched():
    """Keeps ezdxf from adding layers, and plot styles of layers, which it can't add to a drawing whose plot styles
    have no "Normal"."""
    return mock.patch.multiple(Drawing, _create_required_layers=lambda self: None,
                               _set_required_layer_attributes=lambda self: None)


def read_to_change(path):
    """The drawing as ezdxf has it, without what it would add."""
    with patched():
        return judge_ezdxf.read(path)


@functools.lru_cache(maxsize=4)
def read(path):
    """The same, to be looked at and not to be changed."""
    return read_to_change(path)


# The groups as they stand ------------------------------------------------------------------------------------

def groups(path):
    """Pairs of code and value; texts are bytes in disguise, which is enough to compare names with each other."""
    with open(path, "rb") as file:
        data = file.read()
    if data.startswith(b"AutoCAD Binary DXF"):
        yield from ((tag.code, tag.value) for tag in binary_tags_loader(data))
        return
    with open(path, encoding="latin-1") as file:
        yield from ((tag.code, tag.value) for tag in ascii_tags_loader(file))


def has_many_layers(path):
    """Whether the table lists or entities name another layer than "0", which every drawing has."""
    section = table = kind = None
    last = (0, "")
    for code, value in groups(path):
        if code == 0:
            kind = value
        elif code == 2 and last == (0, "SECTION"):
            section = value
        elif code == 2 and last == (0, "TABLE"):
            table = value
        elif (section, table, kind, code) == ("TABLES", "LAYER", "LAYER", 2) or \
                (section in ("BLOCKS", "ENTITIES") and code == 8):
            if value.strip() != "0":
                return True
        last = (code, value)
    return False


def block_names(path):
    """The names of all blocks but the anonymous ones and the layouts."""
    kind, names = None, set()
    for code, value in groups(path):
        if code == 0:
            kind = value
        elif (kind, code) == ("BLOCK", 2) and not value.startswith(("*", "$MODEL", "$PAPER")):
            names.add(value.strip())
    return names


@functools.lru_cache(maxsize=None)
def refusal(path):
    """The line with which a drawing is refused as a symbol; None where it is one."""
    if has_many_layers(path):
        return MANY_LAYERS
    if not any(code == 0 and value == "INSERT" for code, value in groups(path)):
        return None  # which is quickly told
    document = read(path)
    for insert in document.modelspace().query("INSERT"):
        if not insert.dxf.name.startswith("*") or insert.dxf.name not in document.blocks:
            return NAMED_BLOCKS
    return None


def entries(path):
    """Everything between two groups 0, in order, as lists of (code, value). For text form in UTF-8."""
    with open(path, encoding="utf-8", newline="") as file:
        lines = file.read().replace("\r\n", "\n").split("\n")
    found = []
    for code, value in zip(lines[0:-1:2], lines[1::2]):
        if int(code) == 0:
            found.append([])
        if found:
            found[-1].append((int(code), value))
    return found


def handle_of(entry):
    wanted = 105 if entry[0][1] == "DIMSTYLE" else 5
    return next((value for code, value in entry if code == wanted), None)


@functools.lru_cache(maxsize=4)
def by_handle(path):
    found = {}
    for entry in entries(path):
        if entry[0][1] != "SECTION" and handle_of(entry):
            found[handle_of(entry)] = entry
    return found


MODEL_SPACE = "*model_space"


@functools.lru_cache(maxsize=4)
def blocks(path):
    """The entities of each block by its name in lower case, with attributes and vertices behind theirs. By where
    they stand in the file, as old files leave out who owns them."""
    section, block, found = None, None, collections.defaultdict(list)
    for entry in entries(path):
        kind, named = entry[0][1], entry[1][1] if len(entry) > 1 else None
        if kind == "SECTION":
            section = named
        elif kind in ("ENDSEC", "ENDBLK"):
            continue
        elif section == "BLOCKS" and kind == "BLOCK":
            block = next(value for code, value in entry if code == 2).lower()
        elif section == "BLOCKS":
            found[block].append(entry)
        elif section == "ENTITIES":
            found["*paper_space" if (67, "1") in without_blanks(entry) else MODEL_SPACE].append(entry)
    return found


def without_blanks(entry):
    return [(code, value.strip()) for code, value in entry]


def comparable(code, value):
    """A number or name as it can be compared: names ignore case, a turn is a turn however it is counted."""
    if code in (50, 51):
        return round(float(value) % 360, 6) % 360
    if 10 <= code <= 59 or 140 <= code <= 149 or 210 <= code <= 239 or 460 <= code <= 469:
        return float("%.12g" % float(value)) + 0.0
    return value.strip().lower() if code in (6, 7) else value.strip()


def bare(entry):
    """An entity without what it must have for itself in each place: handles, owner, layout, links, extended data."""
    kept, depth = [], 0
    for code, value in entry:
        if code == 102:
            depth += 1 if value.startswith("{") else -1
        elif code >= 1000:
            break
        elif depth == 0 and code not in (5, 8, 67, 410) and not 320 <= code <= 369:
            kept.append((code, "*" if value.startswith("*U") else comparable(code, value)))
    return kept


def shape(path, block=MODEL_SPACE):
    """All groups that say what a block looks like, entity by entity."""
    return [bare(entry) for entry in blocks(path)[block.lower()] if entry[0][1] != "SEQEND"]


def retagged(all_entries, kind, form):
    """Of the attributes or definitions that stand together each fourth one has the tag of the one before it; their
    values are put into `form`."""
    made, place, tag = [], 0, None
    for entry in all_entries:
        place = place + 1 if entry[0][1] == kind else 0
        if place:
            own = next(value for code, value in entry if code == 2)
            tag = tag if place % 4 == 0 else own
            changes = {1: lambda value: form % value, 2: lambda value, tag=tag: tag}
            entry = [(code, changes[code](value) if code in changes else value) for code, value in entry]
        made.append(entry)
    return made


def write_entries(path, all_entries):
    with open(path, "w", encoding="utf-8", newline="") as file:
        for entry in all_entries:
            file.writelines("%d\n%s\n" % group for group in entry)


# Blocks and what they look like ------------------------------------------------------------------------------

def put_on_one_layer(document):
    for entity in document.entitydb.values():
        if entity.dxf.is_supported("layer") and entity.dxf.hasattr("layer"):
            entity.dxf.layer = "0"
    for name in [layer.dxf.name for layer in document.layers if layer.dxf.name != "0"]:
        document.layers.remove(name)


def write_symbol(block, path):
    """Writes a block out as a drawing of its own, all of it on layer "0"."""
    has_lines = any(definition.has_embedded_mtext_entity for definition in block.query("ATTDEF"))
    document = ezdxf.new("R2018" if has_lines else "R2013")  # no older version has texts of several lines
    importer = Importer(block.doc, document)
    importer.import_entities(list(block), document.modelspace())
    importer.finalize()
    put_on_one_layer(document)
    for definition in document.modelspace().query("ATTDEF"):
        definition.dxf.lock_position = 1  # what tells of several lines stands behind it
    document.header["$INSBASE"] = tuple(block.base_point)
    document.saveas(path)


def definitions(block):
    """The definitions that give attributes, in drawing order."""
    return [entity for entity in block.query("ATTDEF") if not entity.is_const]


def lines_place(text):
    """Where the multi-line form of an attribute or a definition is held; None without one."""
    return text.virtual_mtext_entity().dxf.insert if text.has_embedded_mtext_entity else None


def attribute_of(item):
    """Of an attribute or a definition; what has several lines shows those."""
    lines = item.virtual_mtext_entity().plain_text() if item.has_embedded_mtext_entity else None
    value = judge_ezdxf.decode(judge_ezdxf.text_of(item)) if lines is None else lines
    return Attribute(item.dxf.tag, value, bool(item.is_invisible))


def attributes_of(insert):
    return [attribute_of(item) for item in insert.attribs]


def fresh_attributes(block):
    return [attribute_of(item) for item in definitions(block)]


def kept_attributes(block, before):
    """The attributes of a reference whose block got this shape, when it had those of `before`."""
    kept = []
    for tag, value, invisible in fresh_attributes(block):
        for old in before:
            old_value = old.value.strip(judge_ezdxf.BLANKS)
            if old.tag.strip().lower() != tag.lower():
                continue
            if (value.lower(), invisible) != (old_value.lower(), old.invisible):
                value, invisible = old_value, old.invisible
        kept.append(Attribute(tag, value, invisible))
    return kept


def text_place(text):
    """Where a text is held, in the world's coordinates."""
    is_left = text.dxf.get("halign", 0) == 0 and text.dxf.get("valign", 0) == 0
    point = text.dxf.insert if is_left else text.dxf.get("align_point", text.dxf.insert)
    return text.ocs().to_wcs(point)


def misplaced(insert):
    """The attributes of a reference that don't stand where their definitions are shown."""
    found = []
    for attribute, definition in zip(insert.attribs, definitions(insert.block())):
        for place, origin in ((text_place(attribute), text_place(definition)),
                              (lines_place(attribute), lines_place(definition))):
            wanted = insert.matrix44().transform(origin) if origin is not None else None
            if wanted is not None and not wanted.isclose(place, abs_tol=1e-6 * (1 + wanted.magnitude)):
                found.append((attribute.dxf.tag, place, wanted))
    return found


def rounded(*values):
    """Numbers and points as they can be compared: -0 is 0, and the last digits don't count."""
    flat = []
    for value in values:
        flat += list(value) if hasattr(value, "__iter__") else [value]
    return tuple(float("%.7g" % value) + 0.0 if abs(value) > 1e-5 else 0.0 for value in flat)


def angle(degrees):
    return round(degrees % 360, 4) % 360.0


def figure(entity):
    """What an entity looks like, as a tuple that equals that of an entity which looks the same."""
    kind, dxf = entity.dxftype(), entity.dxf
    if kind == "LINE":
        return (kind, *rounded(dxf.start, dxf.end))
    if kind == "CIRCLE":
        return (kind, *rounded(entity.ocs().to_wcs(dxf.center), dxf.radius))
    if kind == "ARC":
        return (kind, *rounded(entity.ocs().to_wcs(dxf.center), dxf.radius), angle(dxf.start_angle),
                angle(dxf.end_angle))
    if kind in ("TEXT", "ATTDEF"):
        return (kind, *rounded(text_place(entity), dxf.height), angle(dxf.rotation), dxf.text)
    if kind == "LWPOLYLINE":
        return (kind, *rounded(*entity.vertices_in_wcs()))
    if kind == "POLYLINE":
        return (kind, *rounded(*entity.points()))
    if kind == "SOLID":
        return (kind, *rounded(*entity.wcs_vertices()))
    return (kind,)


def figures(entities):
    return sorted(map(repr, map(figure, entities)))


def moved_pieces(insert):
    """Copies of a block's entities where a reference shows them."""
    pieces = []
    for entity in insert.block():
        kept, entity.extension_dict = entity.extension_dict, None  # ezdxf can't copy what may stand in it
        piece = entity.copy()
        entity.extension_dict = kept
        piece.transform(insert.matrix44())
        pieces.append(piece)
    return pieces
