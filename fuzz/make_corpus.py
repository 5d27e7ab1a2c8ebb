#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes the seeds of the DXF fuzzer: small drawings of our own, each in text form and in a binary form.

  make_corpus.py FOLDER

Files whose names begin with "crash-" in that folder are inputs that once broke the reader; they are kept by hand.
"""
import pathlib
import struct
import sys

MARK = b"AutoCAD Binary DXF\r\n\x1a\0"  # the fixed first bytes of the binary form


def groups(notation):
    for part in notation.split("|"):
        code, _, value = part.partition(" ")
        yield int(code), value


def text(notation, end="\n"):
    return "".join(f"{code:3d}{end}{value}{end}" for code, value in groups(notation)).encode("utf-8")


def value_bytes(code, value):
    def within(*ranges):
        return any(low <= code <= high for low, high in ranges)
    if within((10, 59), (110, 149), (210, 239), (460, 469), (1010, 1059)):
        return struct.pack("<d", float(value))
    if within((60, 79), (170, 179), (270, 289), (370, 389), (400, 409), (1060, 1070)):
        return struct.pack("<h", int(value))
    if within((90, 99), (420, 429), (440, 459), (1071, 1071)):
        return struct.pack("<i", int(value))
    if within((160, 169)):
        return struct.pack("<q", int(value))
    if within((290, 299)):
        return struct.pack("<B", int(value))
    if within((310, 319), (1004, 1004)):
        data = bytes.fromhex(value)
        return struct.pack("<B", len(data)) + data
    return value.encode("utf-8") + b"\0"


def binary(notation, short=False):
    out = bytearray(MARK)
    for code, value in groups(notation):
        if not short:
            out += struct.pack("<h", code)
        elif code < 255:
            out += bytes([code])
        else:
            out += b"\xff" + struct.pack("<h", code)
        out += value_bytes(code, value)
    return bytes(out)


def section(name, content):
    return f"0 SECTION|2 {name}|" + (content + "|" if content else "") + "0 ENDSEC"


def header(version, page="ANSI_1252", more=""):
    return section("HEADER", f"9 $ACADVER|1 {version}|9 $DWGCODEPAGE|3 {page}|9 $INSBASE|10 1.0|20 2.0|30 0.0|"
                             "9 $CLAYER|8 0|9 $HANDSEED|5 FFF" + more)


def table(name, handle, records):
    return f"0 TABLE|2 {name}|5 {handle}|330 0|100 AcDbSymbolTable|70 1|" + (records + "|" if records else "") + "0 ENDTAB"


def record(kind, handle, name, more=""):
    return f"0 {kind}|5 {handle}|330 0|100 AcDbSymbolTableRecord|2 {name}|70 0" + ("|" + more if more else "")


TABLES = section("TABLES", "|".join([
    table("VPORT", "8", record("VPORT", "29", "*Active", "12 5.0|22 6.0|40 100.0|41 1.5")),
    table("LTYPE", "5", "|".join([record("LTYPE", "14", "ByBlock"), record("LTYPE", "15", "ByLayer"),
                                  record("LTYPE", "16", "Continuous", "3 Solid line")])),
    table("LAYER", "2", record("LAYER", "10", "0", "62 7|6 Continuous") + "|" +
          record("LAYER", "30", "PAG1", "62 -3|420 255|6 ByLayer|1001 APP|1000 page|1070 3")),
    table("STYLE", "3", record("STYLE", "11", "Standard")),
    table("APPID", "9", record("APPID", "12", "APP")),
    table("DIMSTYLE", "A", "0 DIMSTYLE|105 27|100 AcDbSymbolTableRecord|2 Standard|70 0|5 text"),
    table("BLOCK_RECORD", "1", "|".join([record("BLOCK_RECORD", "1F", "*Model_Space"),
                                         record("BLOCK_RECORD", "1B", "*Paper_Space"),
                                         record("BLOCK_RECORD", "31", "MOTOR")]))]))


def block(name, handle, owner, content=""):
    return (f"0 BLOCK|5 {handle}|330 {owner}|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 {name}|70 0|10 1.0|20 2.0|30 0.0|"
            + (content + "|" if content else "") + f"0 ENDBLK|5 {handle}E|8 0")


ATTDEF = ("0 ATTDEF|5 40|330 31|8 0|10 0.0|20 0.0|40 2.5|1 default|3 Which?|2 TAG|70 0|73 12|74 2|"
          "101 Embedded Object|70 1|10 1.0|40 2.5|1 several")
BLOCKS = section("BLOCKS", "|".join([block("*Model_Space", "20", "1F"), block("*Paper_Space", "1C", "1B"),
                                     block("MOTOR", "41", "31", ATTDEF + "|0 INSERT|5 42|330 31|8 0|2 MOTOR")]))
ENTITIES = section("ENTITIES", "|".join([
    "0 INSERT|5 50|102 {ACAD_REACTORS|330 C|102 }|330 1F|100 AcDbEntity|8 PAG1|62 256|66 1|2 MOTOR|10 1.0|20 2.0|"
    "41 -1.0|50 90.0|1001 APP|1000 a^Lb\\U+03A9|1002 {|1010 1.0|1020 2.0|1030 3.0|1002 }|1071 70000|1004 00FF",
    "0 ATTRIB|5 51|330 50|8 PAG1|10 1.0|20 2.0|1 value|2 TAG|70 1|72 1|11 3.0|21 4.0|100 AcDbXrecord|280 1|70 0|340 0",
    "0 ATTRIB|5 52|330 50|8 PAG1|1 x|2 TAG2|70 0|101 Embedded Object|70 1|1 several|3 lines|10 9.0|1001 APP|1000 b",
    "0 SEQEND|5 53|330 50|8 PAG1",
    "0 LWPOLYLINE|5 54|330 1F|8 WIRES|90 2|70 1|38 1.0|10 0.0|20 0.0|42 0.5|10 5.0|20 0.0",
    "0 LINE|5 55|67 1|8 0|10 0.0|20 0.0|11 1.0|21 1.0", "0 CIRCLE|5 56|8 0|10 1.0|40 2.0|210 0.0|220 0.0|230 -1.0",
    "0 ARC|5 57|8 0|40 2.0|50 10.0|51 20.0", "0 ELLIPSE|5 58|8 0|11 4.0|40 0.5|41 0.0|42 6.28",
    "0 POINT|5 59|8 0|10 1.0", "0 TEXT|5 5A|8 0|1 %%c^ |7 Standard|40 2.5|72 1|73 2|11 1.0",
    "0 MTEXT|5 5B|8 0|3 first|1 last|40 2.5|41 10.0", "0 POLYLINE|5 5C|8 0|66 1|70 0", "0 VERTEX|5 5D|8 0|10 1.0",
    "0 SEQEND|5 5E|8 0", "0 HATCH|5 5F|8 0|90 3"]))
OBJECTS = section("OBJECTS", "|".join([
    "0 DICTIONARY|5 C|330 0|100 AcDbDictionary|3 APP|350 60|3 GROUP|360 61|1001 APP|1000 on a dictionary",
    "0 DICTIONARY|5 61|330 C", "0 XRECORD|5 60|330 C|100 AcDbXrecord|280 1|1 text|2 MOTOR|10 1.0|20 2.0|30 3.0|90 5|290 1|"
    "310 0102|330 50|160 9", "0 SORTENTSTABLE|5 62|330 C|100 AcDbSortentsTable|330 1F|331 50|5 50|331 54|5 55"]))
WHOLE = "|".join([header("AC1032"), section("CLASSES", "0 CLASS|1 A|2 B|3 C"), TABLES, BLOCKS, ENTITIES, OBJECTS,
                  section("ACDSDATA", "70 2"), "0 EOF"])
R12 = "|".join(["999 made by hand", section("HEADER", "9 $ACADVER|1 AC1009"),
                section("TABLES", "0 TABLE|2 LAYER|70 1|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 ENDTAB"),
                section("BLOCKS", "0 BLOCK|8 0|2 $MODEL_SPACE|70 0|10 0.0|0 ENDBLK|0 BLOCK|8 0|2 SYM|70 2|10 1.0|0 ATTDEF|8 0|"
                                  "2 T|1 d|3 p|70 8|0 ENDBLK"),
                section("ENTITIES", "0 INSERT|8 L|66 1|2 SYM|10 1.0|0 ATTRIB|8 L|2 T|1 v|70 1|0 LINE|8 L|67 1|10 1.0"),
                "0 EOF"])
BARE = section("ENTITIES", "0 LINE|8 0|10 1,5|20 x|0 INSERT|2 NONE|0 TEXT|8 A|1 \\M+18140") + "|0 EOF"
BROKEN = "|".join([header("AC1015", "ansi_932"),
                   section("TABLES", "0 LAYER|2 lost|0 TABLE|2 LAYER|0 LTYPE|2 L|0 LAYER|70 0|0 TABLE|2 LAYER|5 XYZ|0 LAYER|2 0|"
                                     "5 1|0 TABLE|2 BLOCK_RECORD|0 LAYER|2 B|0 BLOCK_RECORD|2 B|5 1|0 ENDTAB"),
                   section("BLOCKS", "0 BLOCK|2 B|5 1|0 INSERT|2 B|0 BLOCK|5 0|0 ENDBLK|0 LINE"),
                   section("ENTITIES", "0 SEQEND|0 ATTRIB|2 T|0 LINE|330 FFFF|8 U|102 {OPEN|330 1"),
                   section("OBJECTS", "0 XRECORD|5 A1|330 A2|0 XRECORD|5 A2|330 A1|100 AcDbXrecord|102 {|1 a")])


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    files = {"whole.dxf": text(WHOLE), "whole-crlf.dxf": text(WHOLE, "\r\n"), "whole-bin.dxf": binary(WHOLE),
             "r12.dxf": text(R12), "r12-bin.dxf": binary(R12, short=True), "r12-cr.dxf": text(R12, "\r"),
             "bare.dxf": text(BARE), "broken.dxf": text(BROKEN), "broken-bin.dxf": binary(BROKEN),
             "mark.dxf": b"\xef\xbb\xbf" + text(BARE), "truncated.dxf": text(WHOLE)[:700],
             "truncated-bin.dxf": binary(WHOLE)[:900], "empty.dxf": b"", "entry.dxf": text("0 EOF")}
    for page in ("ANSI_936", "ANSI_1255", "ANSI_1258", "dos850", "UNDEFINED"):
        entity = section("ENTITIES", "0 TEXT|8 0|1 ")
        raw = text(header("AC1015", page) + "|" + entity + "|0 EOF")
        files[f"page-{page.lower()}.dxf"] = raw.replace(b"  1\n\n", b"  1\n\xc3\xb5\x81\x5c\xe0U+00E7\n")
    for name, data in files.items():
        (folder / name).write_bytes(data)


if __name__ == "__main__":
    main()
