# SPDX-License-Identifier: MIT
"""Writes a drawing as text DXF of the version R2018, with nothing but the standard library.

Only what the sample project needs: layers, text styles, blocks with attribute definitions, lines, circles,
arcs, texts, polylines, points, block references with attributes, extended data, dictionaries and records.
Handles are given in the order of creation, so the same calls give the same bytes.
"""
import math

FORM_FEED = "\f"


def number(value):
    """A real number with at least one and at most six decimals, whatever the locale."""
    text = "%.6f" % value
    text = text.rstrip("0")
    if text.endswith("."):
        text += "0"
    return "0.0" if text == "-0.0" else text


def caret(text):
    """Control characters as a caret and a letter, and the caret itself as a caret and a blank."""
    out = []
    for letter in text:
        if letter == "^":
            out.append("^ ")
        elif ord(letter) < 32:
            out.append("^" + chr(ord(letter) + 64))
        else:
            out.append(letter)
    return "".join(out)


class Attribute:
    """An attribute definition of a block: where it stands in the block and what it asks for."""

    def __init__(self, tag, prompt, x, y, height=2.5, default="", invisible=False, centered=False,
                 rotation=0.0):
        self.tag, self.prompt, self.default = tag, prompt, default
        self.x, self.y, self.height, self.rotation = x, y, height, rotation
        self.invisible, self.centered = invisible, centered


class Block:
    """A block definition. Its geometry stands on layer 0: a reference gives it its own layer's colour."""

    def __init__(self, drawing, name):
        self.drawing, self.name = drawing, name
        self.record = drawing.handle()
        self.begin = drawing.handle()
        self.end = drawing.handle()
        self.groups = []
        self.attributes = []

    def line(self, x1, y1, x2, y2, linetype=None):
        self.groups += self.drawing.line_groups(self.record, "0", x1, y1, x2, y2, None, linetype)
        return self

    def path(self, *points):
        for (x1, y1), (x2, y2) in zip(points, points[1:]):
            self.line(x1, y1, x2, y2)
        return self

    def box(self, x1, y1, x2, y2):
        return self.path((x1, y1), (x2, y1), (x2, y2), (x1, y2), (x1, y1))

    def circle(self, x, y, radius):
        self.groups += self.drawing.circle_groups(self.record, "0", x, y, radius)
        return self

    def arc(self, x, y, radius, start, end):
        self.groups += self.drawing.head("ARC", self.record, "0", None, None) + [
            (100, "AcDbCircle"), (10, number(x)), (20, number(y)), (30, "0.0"), (40, number(radius)),
            (100, "AcDbArc"), (50, number(start)), (51, number(end))]
        return self

    def text(self, x, y, height, value, centered=False):
        self.groups += self.drawing.text_groups(self.record, "0", x, y, height, value, centered, 0.0, None)
        return self

    def attribute(self, *args, **kwargs):
        item = Attribute(*args, **kwargs)
        self.attributes.append(item)
        self.groups += self.drawing.head("ATTDEF", self.record, "0", None, None)
        self.groups += self.drawing.text_body(item.x, item.y, item.height, item.default, item.centered,
                                              item.rotation)
        self.groups += [(100, "AcDbAttributeDefinition"), (280, 0), (3, caret(item.prompt)), (2, item.tag),
                        (70, 1 if item.invisible else 0), (280, 1)]
        return self


class Reference:
    """A block reference in model space. Its extended data can be added until the drawing is written."""

    def __init__(self, drawing, block, layer, x, y, values, rotation, scale, color, hidden):
        self.drawing, self.block, self.layer = drawing, block, layer
        self.x, self.y, self.rotation, self.scale, self.color = x, y, rotation, scale, color
        self.handle = drawing.handle()
        known = {item.tag for item in block.attributes}
        unknown = sorted(set(values) - known)
        if unknown:
            raise ValueError("block %s has no attribute %s" % (block.name, ", ".join(unknown)))
        self.attributes = [(drawing.handle(), item, values.get(item.tag, item.default))
                           for item in block.attributes]
        self.end = drawing.handle() if self.attributes else None
        self.hidden = hidden
        self.xdata = []

    def mark(self, application, *values):
        """Adds a chain of texts; a whole number is written as a 32-bit integer."""
        self.xdata.append((application, values))
        return self

    def place(self, x, y):
        angle = math.radians(self.rotation)
        x, y = x * self.scale, y * self.scale
        return (self.x + x * math.cos(angle) - y * math.sin(angle),
                self.y + x * math.sin(angle) + y * math.cos(angle))

    def groups(self):
        drawing = self.drawing
        out = drawing.head("INSERT", drawing.model_space, self.layer, self.color, None, self.handle)
        out.append((100, "AcDbBlockReference"))
        if self.attributes:
            out.append((66, 1))
        out += [(2, self.block.name), (10, number(self.x)), (20, number(self.y)), (30, "0.0")]
        if self.scale != 1.0:
            out += [(41, number(self.scale)), (42, number(self.scale)), (43, number(self.scale))]
        if self.rotation:
            out.append((50, number(self.rotation)))
        out += drawing.xdata_groups(self.xdata)
        for handle, item, value in self.attributes:
            x, y = self.place(item.x, item.y)
            out += drawing.head("ATTRIB", self.handle, self.layer, None, None, handle)
            out += drawing.text_body(x, y, item.height * self.scale, value, item.centered,
                                     item.rotation + self.rotation)
            invisible = item.invisible or item.tag in self.hidden
            out += [(100, "AcDbAttribute"), (280, 0), (2, item.tag), (70, 1 if invisible else 0), (280, 1)]
        if self.attributes:
            out += drawing.head("SEQEND", self.handle, self.layer, None, None, self.end)
        return out


class Drawing:
    """Everything that stands in the file. `save` gives its text."""

    TABLES = ("VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD")

    def __init__(self):
        self.last = 0
        self.table_handles = {name: self.handle() for name in self.TABLES}
        self.root, self.model_space, self.paper_space = self.handle(), self.handle(), self.handle()
        self.model_layout, self.paper_layout = self.handle(), self.handle()
        self.plot_style, self.standard_style = self.handle(), self.handle()
        self.layers, self.blocks, self.items, self.applications = [], [], [], ["ACAD"]
        self.records = []
        self.dictionaries = []
        self.layer("0", 7)

    def handle(self):
        self.last += 1
        return "%X" % self.last

    # What stands in the drawing

    def layer(self, name, color, frozen=False, xdata=()):
        self.layers.append((self.handle(), name, color, frozen, list(xdata)))
        return name

    def block(self, name):
        self.blocks.append(Block(self, name))
        return self.blocks[-1]

    def insert(self, block, layer, x, y, values=None, rotation=0.0, scale=1.0, color=None, hidden=()):
        """Puts a reference into model space; `hidden` names attributes that don't show on this one."""
        self.items.append(Reference(self, block, layer, x, y, values or {}, rotation, scale, color, hidden))
        return self.items[-1]

    def line(self, layer, x1, y1, x2, y2, color=None, linetype=None):
        self.items.append(self.line_groups(self.model_space, layer, x1, y1, x2, y2, color, linetype))

    def circle(self, layer, x, y, radius):
        self.items.append(self.circle_groups(self.model_space, layer, x, y, radius))

    def text(self, layer, x, y, height, value, centered=False, rotation=0.0, color=None):
        self.items.append(self.text_groups(self.model_space, layer, x, y, height, value, centered, rotation,
                                           color))

    def polyline(self, layer, points, closed=False, color=None):
        groups = self.head("LWPOLYLINE", self.model_space, layer, color, None)
        handle = groups[1][1]
        groups += [(100, "AcDbPolyline"), (90, len(points)), (70, 1 if closed else 0), (43, "0.0")]
        for x, y in points:
            groups += [(10, number(x)), (20, number(y))]
        self.items.append(groups)
        return handle

    def point(self, layer, x, y, xdata):
        self.items.append(self.head("POINT", self.model_space, layer, None, None) + [
            (100, "AcDbPoint"), (10, number(x)), (20, number(y)), (30, "0.0")] + self.xdata_groups(xdata))

    def dictionary(self, name, xdata=()):
        """A dictionary among the named objects; `record` puts entries into it."""
        handle, entries = self.handle(), []
        self.dictionaries.append((name, handle, entries, list(xdata)))
        return handle, entries

    def record(self, dictionary, key, groups, xdata):
        owner, entries = dictionary
        handle = self.handle()
        entries.append((key, handle))
        self.records.append([(0, "XRECORD"), (5, handle), (102, "{ACAD_REACTORS"), (330, owner), (102, "}"),
                             (330, owner), (100, "AcDbXrecord"), (280, 1)]
                            + groups + self.xdata_groups(xdata))

    # Group codes of the single kinds

    def head(self, kind, owner, layer, color, linetype, handle=None):
        out = [(0, kind), (5, handle or self.handle()), (330, owner), (100, "AcDbEntity"), (8, layer)]
        if linetype:
            out.append((6, linetype))
        if color is not None:
            out.append((62, color))
        if kind in ("TEXT", "ATTDEF", "ATTRIB"):
            out.append((100, "AcDbText"))
        return out

    def line_groups(self, owner, layer, x1, y1, x2, y2, color, linetype):
        return self.head("LINE", owner, layer, color, linetype) + [
            (100, "AcDbLine"), (10, number(x1)), (20, number(y1)), (30, "0.0"),
            (11, number(x2)), (21, number(y2)), (31, "0.0")]

    def circle_groups(self, owner, layer, x, y, radius):
        return self.head("CIRCLE", owner, layer, None, None) + [
            (100, "AcDbCircle"), (10, number(x)), (20, number(y)), (30, "0.0"), (40, number(radius))]

    def text_groups(self, owner, layer, x, y, height, value, centered, rotation, color):
        return self.head("TEXT", owner, layer, color, None) + self.text_body(
            x, y, height, value, centered, rotation) + [(100, "AcDbText")]

    def text_body(self, x, y, height, value, centered, rotation):
        out = [(10, number(x)), (20, number(y)), (30, "0.0"), (40, number(height)), (1, caret(value))]
        if rotation:
            out.append((50, number(rotation)))
        out.append((7, "Standard"))
        if centered:
            out += [(72, 1), (11, number(x)), (21, number(y)), (31, "0.0")]
        return out

    def xdata_groups(self, chains):
        out = []
        for application, values in chains:
            if application not in self.applications:
                self.applications.append(application)
            out.append((1001, application))
            for value in values:
                out.append((1071, value) if isinstance(value, int) else (1000, caret(value)))
        return out

    # The file

    def save(self):
        entities = []
        for item in self.items:
            entities += item.groups() if isinstance(item, Reference) else item
        for chains in [layer[4] for layer in self.layers] + [entry[3] for entry in self.dictionaries]:
            self.xdata_groups(chains)  # registers the applications
        blocks, objects, tables = self.block_groups(), self.object_groups(), self.table_groups()
        sections = [self.header_groups(), [(2, "CLASSES")], tables, blocks, [(2, "ENTITIES")] + entities,
                    objects]
        lines = []
        for section in sections:
            for code, value in [(0, "SECTION")] + section + [(0, "ENDSEC")]:
                lines.append("%3d\n%s\n" % (code, value))
        lines.append("  0\nEOF\n")
        return "".join(lines)

    def header_groups(self):
        return [(2, "HEADER"), (9, "$ACADVER"), (1, "AC1032"), (9, "$DWGCODEPAGE"), (3, "ANSI_1252"),
                (9, "$INSBASE"), (10, "0.0"), (20, "0.0"), (30, "0.0"),
                (9, "$EXTMIN"), (10, "0.0"), (20, "0.0"), (30, "0.0"),
                (9, "$EXTMAX"), (10, number(self.extent[0])), (20, number(self.extent[1])), (30, "0.0"),
                (9, "$LTSCALE"), (40, "1.0"), (9, "$TEXTSTYLE"), (7, "Standard"), (9, "$CLAYER"), (8, "0"),
                (9, "$PDMODE"), (70, 0), (9, "$MEASUREMENT"), (70, 1), (9, "$INSUNITS"), (70, 4),
                (9, "$HANDSEED"), (5, "%X" % (self.last + 1))]

    extent = (420.0, 297.0)

    def table(self, name, entries, extra=()):
        out = [(0, "TABLE"), (2, name), (5, self.table_handles[name]), (330, "0"), (100, "AcDbSymbolTable"),
               (70, len(entries))] + list(extra)
        for entry in entries:
            out += entry
        return out + [(0, "ENDTAB")]

    def entry(self, kind, subclass, name, handle=None, flags=0):
        return [(0, kind), (105 if kind == "DIMSTYLE" else 5, handle or self.handle()),
                (330, self.table_handles[kind]), (100, "AcDbSymbolTableRecord"), (100, subclass), (2, name),
                (70, flags)]

    def table_groups(self):
        out = [(2, "TABLES")] + self.table("VPORT", [self.viewport_entry()])
        out += self.table("LTYPE", [self.linetype("ByBlock", "", ()), self.linetype("ByLayer", "", ()),
                                    self.linetype("Continuous", "Solid line", ()),
                                    self.linetype("DASHED", "__ __ __", (2.0, -1.0))])
        layers = []
        for handle, name, color, frozen, xdata in self.layers:
            layers.append(self.entry("LAYER", "AcDbLayerTableRecord", name, handle, 1 if frozen else 0) + [
                (62, color), (6, "Continuous"), (370, -3), (390, self.plot_style)] + self.xdata_groups(xdata))
        out += self.table("LAYER", layers)
        out += self.table("STYLE", [self.entry("STYLE", "AcDbTextStyleTableRecord", "Standard") + [
            (40, "0.0"), (41, "1.0"), (50, "0.0"), (71, 0), (42, "2.5"), (3, "txt"), (4, "")]])
        out += self.table("VIEW", []) + self.table("UCS", [])
        out += self.table("APPID", [self.entry("APPID", "AcDbRegAppTableRecord",
                                               name) for name in self.applications])
        out += self.table("DIMSTYLE", [self.entry("DIMSTYLE", "AcDbDimStyleTableRecord", "Standard")],
                          [(100, "AcDbDimStyleTable"), (71, 0)])
        records = [("*Model_Space", self.model_space, self.model_layout),
                   ("*Paper_Space", self.paper_space, self.paper_layout)]
        records += [(block.name, block.record, "0") for block in self.blocks]
        entries = []
        for name, handle, layout in records:
            entry = self.entry("BLOCK_RECORD", "AcDbBlockTableRecord", name, handle)
            entries.append(entry[:-1] + [(340, layout), (70, 4), (280, 1), (281, 0)])
        return out + self.table("BLOCK_RECORD", entries)

    def viewport_entry(self):
        width, height = self.extent
        pairs = [(10, 0), (20, 0), (11, 1), (21, 1), (12, width / 2), (22, height / 2), (13, 0), (23, 0),
                 (14, 10),
                 (24, 10), (15, 10), (25, 10), (16, 0), (26, 0), (36, 1), (17, 0), (27, 0), (37, 0),
                 (40, width * 0.6), (41, 1.8), (42, 50), (43, 0), (44, 0), (50, 0), (51, 0)]
        out = self.entry("VPORT", "AcDbViewportTableRecord", "*Active")
        out += [(code, number(value)) for code, value in pairs]
        return out + [(71, 0), (72, 1000), (73, 1), (74, 3), (75, 0), (76, 0), (77, 0), (78, 0)]

    def linetype(self, name, description, pattern):
        out = self.entry("LTYPE", "AcDbLinetypeTableRecord", name) + [
            (3, description), (72, 65), (73, len(pattern)), (40, number(sum(abs(part) for part in pattern)))]
        for part in pattern:
            out += [(49, number(part)), (74, 0)]
        return out

    def block_groups(self):
        out = [(2, "BLOCKS")]
        spaces = [("*Model_Space", self.model_space, 0), ("*Paper_Space", self.paper_space, 1)]
        for name, record, paper in spaces:
            out += self.block_frame(name, record, self.handle(), self.handle(), [], paper, 0)
        for block in self.blocks:
            out += self.block_frame(block.name, block.record, block.begin, block.end, block.groups, 0,
                                    2 if block.attributes else 0)
        return out

    def block_frame(self, name, record, begin, end, groups, paper, flags):
        where = ([(67, 1)] if paper else []) + [(8, "0")]
        head = [(0, "BLOCK"), (5, begin), (330, record), (100, "AcDbEntity")] + where
        head += [(100, "AcDbBlockBegin"), (2, name), (70, flags), (10, "0.0"), (20, "0.0"), (30, "0.0"),
                 (3, name), (1, "")]
        tail = [(0, "ENDBLK"), (5, end), (330, record), (100, "AcDbEntity")] + where + [(100, "AcDbBlockEnd")]
        return head + groups + tail

    def object_groups(self):
        group, layouts, styles = self.handle(), self.handle(), self.handle()
        entries = [("ACAD_GROUP", group), ("ACAD_LAYOUT", layouts), ("ACAD_PLOTSTYLENAME", styles)]
        entries += [(name, handle) for name, handle, _, _ in self.dictionaries]
        out = [(2, "OBJECTS")] + self.dictionary_groups(self.root, "0", entries)
        out += self.dictionary_groups(group, self.root, [])
        out += self.dictionary_groups(layouts, self.root,
                                      [("Model", self.model_layout), ("Layout1", self.paper_layout)])
        styled = self.dictionary_groups(styles, self.root, [("Normal", self.plot_style)])
        out += [(0, "ACDBDICTIONARYWDFLT")] + styled[1:] + [
            (100, "AcDbDictionaryWithDefault"), (340, self.plot_style)]
        out += [(0, "ACDBPLACEHOLDER"), (5, self.plot_style), (102, "{ACAD_REACTORS"), (330, styles),
                (102, "}"), (330, styles)]
        out += self.layout_groups(self.model_layout, layouts, "Model", 0, self.model_space)
        out += self.layout_groups(self.paper_layout, layouts, "Layout1", 1, self.paper_space)
        for _, handle, entries, xdata in self.dictionaries:
            out += self.dictionary_groups(handle, self.root, entries) + self.xdata_groups(xdata)
        for record in self.records:
            out += record
        return out

    def dictionary_groups(self, handle, owner, entries):
        out = [(0, "DICTIONARY"), (5, handle)]
        if owner != "0":
            out += [(102, "{ACAD_REACTORS"), (330, owner), (102, "}")]
        out += [(330, owner), (100, "AcDbDictionary"), (281, 1)]
        for key, target in entries:
            out += [(3, key), (350, target)]
        return out

    def layout_groups(self, handle, owner, name, order, space):
        flags = 1024 if name == "Model" else 0
        zeros = [(code, "0.0") for code in (40, 41, 42, 43)]
        plot = [(100, "AcDbPlotSettings"), (1, ""), (2, "none_device"), (4, "A3"), (6, "")] + zeros
        plot += [(44, "420.0"), (45, "297.0"), (46, "0.0"), (47, "0.0"), (48, "0.0"), (49, "0.0"),
                 (140, "0.0"), (141, "0.0"), (142, "1.0"), (143, "1.0"), (70, flags), (72, 1), (73, 0),
                 (74, 5), (7, ""), (75, 16), (147, "1.0"), (148, "0.0"), (149, "0.0")]
        vectors = [(10, 0), (20, 0), (11, 420), (21, 297), (12, 0), (22, 0), (32, 0), (14, 0), (24, 0),
                   (34, 0), (15, 420), (25, 297), (35, 0), (146, 0), (13, 0), (23, 0), (33, 0), (16, 1),
                   (26, 0), (36, 0), (17, 0), (27, 1), (37, 0)]
        out = [(0, "LAYOUT"), (5, handle), (102, "{ACAD_REACTORS"), (330, owner), (102, "}"), (330, owner)] + plot
        out += [(100, "AcDbLayout"), (1, name), (70, 1), (71, order)]
        return out + [(code, number(value)) for code, value in vectors] + [(76, 0), (330, space)]
