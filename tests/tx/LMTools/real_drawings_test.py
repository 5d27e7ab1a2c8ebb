# SPDX-License-Identifier: MIT
"""Symbols out of real drawings, through LMTools: which of them become blocks, how they look when they are placed,
redefined and taken apart, and what a redefinition leaves as it was. ezdxf and the files' own groups judge.

Without the shared drawings there is nothing to test, and a line says so.
"""
import collections
import os
import shutil
import tempfile
import unittest

import symbol_files as files

import support

PROJECT = "projeto-eletrico"
FOLDER = None
BASE = {}  # drawing -> it, saved as R2018 by the program
SYMBOLS = []

PLACED = collections.defaultdict(dict)  # drawing -> handle of a reference to one of the symbols -> its attributes

Symbol = collections.namedtuple("Symbol", "drawing block tags path resaved")


def path(*parts):
    made = os.path.join(FOLDER, *parts)
    os.makedirs(os.path.dirname(made), exist_ok=True)
    return made


def quoted(text):
    return '"%s"' % text


def run_script(text):
    script = path("script.scr")
    with open(script, "w", encoding="utf-8", newline="") as file:
        file.write(text)
    run = support.Run("run", "--new", script, timeout=120)
    run.text = run.output.decode("utf-8")
    return run


def done(text):
    """Runs a script in which nothing may fail."""
    run = run_script(text)
    assert run.code == 0, run.errors


def resave(pairs):
    done("".join('_OPEN "%s"\n_SAVEAS R2018 "%s"\n_CLOSE\n' % pair for pair in pairs))


def wanted_blocks(document):
    """All blocks with attributes, and three others of a drawing."""
    references = [insert for block in document.blocks for insert in block.query("INSERT")]
    with_values = {insert.dxf.name.lower() for insert in references if insert.attribs}
    named = [block for block in document.blocks if not block.name.startswith("*")]
    wanted = [block for block in named if block.query("ATTDEF") or block.name.lower() in with_values]
    return wanted + [block for block in named if block not in wanted and len(block)][:3]


def write_symbols(drawing, document):
    wanted = wanted_blocks(document)
    for block in wanted:
        name = "s%d.dxf" % len(SYMBOLS)
        tags = [definition.dxf.tag for definition in files.definitions(block)]
        SYMBOLS.append(Symbol(drawing, block.name, tags, path("symbols", name), path("resaved", name)))
        files.write_symbol(block, SYMBOLS[-1].path)
    names = {block.name.lower() for block in wanted}
    for block in document.blocks:
        for insert in block.query("INSERT"):
            if insert.dxf.name.lower() in names:
                PLACED[drawing][insert.dxf.handle] = files.attributes_of(insert)


def setUpModule():
    global FOLDER
    FOLDER = tempfile.mkdtemp(prefix="lm símbolo ")
    unittest.addModuleCleanup(shutil.rmtree, FOLDER, ignore_errors=True)
    pairs = []
    for drawing in support.shared_drawings():
        name = os.path.splitext(os.path.basename(drawing))[0]
        BASE[name] = path("base", name + ".dxf")
        pairs.append((drawing, BASE[name]))
    resave(pairs)
    for drawing, base in BASE.items():
        if files.block_names(base):
            write_symbols(drawing, files.read(base))
    resave((symbol.path, symbol.resaved) for symbol in SYMBOLS)


def roughen(base, out):
    """Gives attributes blanks around their values, and each fourth one the tag of the one before it."""
    files.write_entries(out, files.retagged(files.entries(base), "ATTRIB", "  %s \t"))


def rough_symbol(symbol):
    """The file of a symbol with tags doubled in the same way, and without the last definition."""
    out = path("rough", os.path.basename(symbol.path))
    entries = files.retagged(files.entries(symbol.path), "ATTDEF", "%s")
    last = [number for number, entry in enumerate(entries) if entry[0][1] == "ATTDEF"][-1:]
    files.write_entries(out, [entry for number, entry in enumerate(entries) if number not in last])
    return out


def without(entry, *codes):
    return [group for group in entry if group[0] not in codes]


class Base(unittest.TestCase):
    maxDiff = None

    def insert_all(self, drawings, out):
        """Places every file (a pair of name and path) on P01 in the project; what was said for each name."""
        script = '_OPEN "%s"\n' % BASE[PROJECT]
        for place, (name, file) in enumerate(drawings):
            script += '(princ "@%s\n")\n_LMINSERT "%s=%s" P01 %d,-50 0 \n' % (name, name, file, 10 * place)
        run = run_script(script + '_SAVEAS R2018 "%s"\n' % out)
        said = {}
        for part in run.text.split("@")[1:]:
            name, rest = part.split("\n", 1)
            said[name] = rest
        self.errors = run.error_lines
        self.assertEqual(sorted(said), sorted(name for name, _ in drawings))
        return said

    def judge_insertions(self, drawings, out):
        """Each file is taken or refused as ezdxf finds it; gives the names by the reason (None: taken)."""
        said = self.insert_all([(name, file.replace("/", "//")) for name, file in drawings], out)
        found = collections.defaultdict(list)
        for place, (name, file) in enumerate(drawings):
            reason = files.refusal(file)
            found[reason].append(name)
            with self.subTest(name):
                if reason is None:
                    self.assertRegex(said[name], "^inserted [0-9A-F]+ %s on P01\n$" % name)
                else:
                    self.assertEqual(said[name], "\n%s%s = %s\n" % (reason, name, file))
                    self.assertEqual(len([line for line in self.errors if line.endswith(
                        "can't become block %s, expected a drawing with layer 0 alone and without blocks"
                        % quoted(name))]), 1, self.errors)
        self.assertEqual(len(self.errors), len(drawings) - len(found[None]))
        self.judge_placed(found[None], drawings, out)
        return found

    def judge_placed(self, taken, drawings, out):
        """The taken ones and nothing else came to the project, which is as it was."""
        before, after = files.read(BASE[PROJECT]), files.read(out)
        came = {block.name for block in after.blocks if not block.name.startswith("*")} - \
            {block.name for block in before.blocks}
        inside = {block for name, file in drawings if name in taken for block in files.block_names(file)}
        self.assertLessEqual(set(taken), came)
        self.assertLessEqual(came, set(taken) | inside)
        names = [name for name, _ in drawings]
        placed = list(after.modelspace())[len(before.modelspace()):]
        self.assertEqual([(i.dxf.name, i.dxf.layer, *i.dxf.insert) for i in placed],
                         [(name, "P01", 10.0 * names.index(name), -50.0, 0.0) for name in taken])
        old, new = files.by_handle(BASE[PROJECT]), files.by_handle(out)
        for handle, entry in old.items():
            kept = new.get(handle)
            if entry[0][1] == "DICTIONARY" and kept is not None:
                kept = kept[:len(entry)]  # what came may need entries of its own
            if entry[0][1] != "TABLE":
                self.assertEqual(kept, entry)


class Refusals(Base):
    def test_every_drawing_is_taken_or_refused_for_its_reason(self):
        if not BASE:
            return
        drawings = [(name, support.shared("drawings", name + ".dxf")) for name in BASE]
        out = path("taken.dxf")
        found = self.judge_insertions(drawings, out)
        self.assertGreaterEqual(len(found[None]), 4)
        self.assertGreaterEqual(len(found[files.MANY_LAYERS]), 20)
        for name in found[None]:
            with self.subTest(name):
                self.assertEqual(files.shape(out, name), files.shape(BASE[name]))

    def test_drawings_brought_to_layer_zero(self):
        if not BASE:
            return
        zero = [(name + "-zero", path("zero", name + ".dxf")) for name in BASE]
        done("".join('_OPEN "%s"\n_LMLAYERZERO\n_SAVEAS R2018 "%s"\n_CLOSE\n' % (BASE[name], file)
                     for name, (_, file) in zip(BASE, zero)))
        for name, (_, file) in zip(BASE, zero):
            with self.subTest(name):
                self.judge_layer_zero(BASE[name], file)
        found = self.judge_insertions(zero, path("zero.dxf"))
        self.assertGreaterEqual(len(found[None]), 10, found)

    def judge_layer_zero(self, base, file):
        """All of model space is on the layer, layers went, and nothing else changed."""
        old, new = files.by_handle(base), files.by_handle(file)
        moved = {files.handle_of(entry) for entry in files.blocks(file)[files.MODEL_SPACE]
                 if entry[0][1] not in ("VERTEX", "SEQEND")}
        for handle, entry in old.items():
            if handle not in new:
                top = entry
                while top[0][1] != "LAYER":
                    self.assertIn(top[0][1], ("DICTIONARY", "XRECORD"))
                    top = old[dict(reversed(top))[330]]
            elif handle in moved:
                self.assertEqual([value for code, value in new[handle] if code == 8], ["0"])
                self.assertEqual(without(new[handle], 8, 330), without(entry, 8, 330))
            elif entry[0][1] != "TABLE":
                self.assertEqual(new[handle], entry)

    def test_drawings_on_one_layer_are_refused_for_their_blocks(self):
        if not BASE:
            return
        one = []
        for name in ("attribs-576", "attribs-minsert", "layer-frozen", "simbolo-borne"):
            document = files.read_to_change(BASE[name])
            files.put_on_one_layer(document)
            one.append((name + "-one", path("one", name + ".dxf")))
            with files.patched():  # it adds layers to what it writes as well
                document.saveas(one[-1][1])
        found = self.judge_insertions(one, path("one.dxf"))
        self.assertEqual(len(found[files.NAMED_BLOCKS]), 3, found)

    def test_drawings_flattened_and_brought_to_layer_zero(self):
        if not BASE:
            return
        flat = [(name + "-flat", path("flat", name + ".dxf")) for name in BASE]
        run_script("".join('_OPEN "%s"\n_LMFLATTEN ALL  0\n_LMPURGE\n_LMLAYERZERO\n_SAVEAS R2018 "%s"\n_CLOSE\n'
                           % (BASE[name], file) for name, (_, file) in zip(BASE, flat)))
        found = self.judge_insertions(flat, path("flat.dxf"))
        self.assertGreaterEqual(len(found[None]), 10, found)



class Symbols(Base):
    """The blocks of the drawings, each as a file of its own, and those drawings that are symbols as they stand."""

    @classmethod
    def setUpClass(cls):
        cls.out = {name: path("life", name + ".dxf") for name in ("placed", "redefined", "exploded", "flat")}
        whole = [Symbol(name, "", [], support.shared("drawings", name + ".dxf"), base) for name, base in BASE.items()]
        cls.good = [symbol for symbol in SYMBOLS + whole if files.refusal(symbol.path) is None]
        if not cls.good:
            return
        script = '_OPEN "%s"\n' % BASE[PROJECT]
        for number, symbol in enumerate(cls.good):
            script += '_LMINSERT "S%d=%s" SYM %s %d' % (number, symbol.path, cls.place(number), cls.turn(number))
            script += "".join(" %s %s" % (quoted(tag), quoted(value)) for tag, value in cls.values(symbol)) + " \n"
        script += '_SAVEAS R2018 "%s"\n' % cls.out["placed"]
        for number in range(len(cls.good)):
            script += '_LMREDEFINE "%s" S%d\n' % (cls.good[number - 1].path, number)
        script += '_SAVEAS R2018 "%s"\n_CLOSE\n' % cls.out["redefined"]
        for command, layer, name in (("_EXPLODE", "", "exploded"), ("_LMFLATTEN", ' "0"', "flat")):
            script += '_OPEN "%s"\n(command "%s" (ssget "_X" \'((8 . "SYM"))) ""%s)\n_SAVEAS R2018 "%s"\n_CLOSE\n' \
                % (cls.out["placed"], command, layer, cls.out[name])
        done(script)
        cls.placed = files.read(cls.out["placed"])

    @staticmethod
    def place(number):
        return "%d.5,%d.25" % (100 * (number % 10), 1000 + 100 * (number // 10))

    @staticmethod
    def turn(number):
        return (0, 90, 30, 315)[number % 4]

    @staticmethod
    def values(symbol):
        """A value for the first attribute, an empty one for the last where there are others between."""
        tags = symbol.tags
        return list(zip(tags[:1], [" Válvula 5,5 kW "])) + [(tag, "") for tag in tags[2:][-1:] if tag not in tags[:-1]]

    def references(self, document):
        found = {insert.dxf.name: insert for insert in document.modelspace().query('INSERT[layer=="SYM"]')}
        return [(symbol, found["S%d" % number]) for number, symbol in enumerate(self.good)]

    def judge_attributes(self, insert, expected):
        self.assertEqual(files.attributes_of(insert), expected)
        self.assertEqual(files.misplaced(insert), [])

    def test_are_enough_to_tell(self):
        self.assertGreater(len(self.good), 80 if BASE else -1)
        self.assertGreater(len([symbol for symbol in self.good if symbol.tags]), 45 if BASE else -1)

    def test_are_placed_with_their_attributes(self):
        for number, (symbol, insert) in enumerate(self.references(self.placed) if BASE else ()):
            with self.subTest(symbol):
                self.assertEqual("%s,%s" % tuple(insert.dxf.insert)[:2], self.place(number))
                self.assertAlmostEqual(insert.dxf.rotation % 360, self.turn(number), 9)
                self.assertEqual((insert.dxf.xscale, insert.dxf.yscale, insert.dxf.zscale), (1, 1, 1))
                expected = files.fresh_attributes(insert.block())
                for tag, value in self.values(symbol):
                    first = next(i for i, item in enumerate(expected) if item.tag.lower() == tag.lower())
                    expected[first] = expected[first]._replace(value=value)
                self.judge_attributes(insert, expected)

    def test_are_blocks_that_look_like_their_files(self):
        for number, symbol in enumerate(self.good):
            with self.subTest(symbol):
                self.assertEqual(files.shape(self.out["placed"], "S%d" % number), files.shape(symbol.resaved))

    def test_keep_their_values_in_another_shape(self):
        after = files.read(self.out["redefined"]) if BASE else None
        before = self.references(self.placed) if BASE else ()
        for number, (symbol, old) in enumerate(before):
            with self.subTest(symbol):
                new = after.entitydb[old.dxf.handle]
                self.assertEqual(files.shape(self.out["redefined"], "S%d" % number),
                                 files.shape(self.good[number - 1].resaved))
                self.assertEqual(self.own(new), self.own(old))
                self.judge_attributes(new, files.kept_attributes(new.block(), files.attributes_of(old)))

    @staticmethod
    def own(insert):
        return {key: value for key, value in insert.dxfattribs().items() if key != "attribs_follow"}

    def test_fall_into_their_pieces(self):
        if not BASE:
            return
        kept = {entity.dxf.handle for entity in files.read(BASE[PROJECT]).modelspace()}
        pieces = [entity for entity in files.read(self.out["exploded"]).modelspace()
                  if entity.dxf.handle not in kept]
        expected = [piece for _, insert in self.references(self.placed) for piece in files.moved_pieces(insert)]
        self.assertEqual(files.figures(pieces), files.figures(expected))

    def test_become_plain_geometry_on_one_layer(self):
        if not BASE:
            return
        kept = {entity.dxf.handle for entity in files.read(BASE[PROJECT]).modelspace()}
        pieces = [entity for entity in files.read(self.out["flat"]).modelspace() if entity.dxf.handle not in kept]
        self.assertEqual({piece.dxf.layer for piece in pieces}, {"0"})
        self.assertEqual([piece for piece in pieces if piece.xdata], [])
        expected = []
        for _, insert in self.references(self.placed):
            for piece in files.moved_pieces(insert):
                if piece.dxftype() != "ATTDEF":
                    expected.append(files.figure(piece))
                elif self.becomes_text(piece.dxf.tag, insert):
                    expected.append(("TEXT", *files.figure(piece)[1:-1], ""))
        self.assertEqual(files.figures(pieces), sorted(map(repr, expected)))

    @staticmethod
    def becomes_text(tag, insert):
        """Of an attribute nothing stays but an empty text, where it is visible and has no value."""
        found = [item for item in files.attributes_of(insert) if item.tag.lower() == tag.lower()]
        return bool(found) and not found[0].invisible and found[0].value.strip() == ""

    def test_read_back_as_they_were_saved(self):
        again = {name: path("again", name + ".dxf") for name in self.out}
        resave((self.out[name], again[name]) for name in self.out if BASE)
        for name in self.out if BASE else ():
            self.assertEqual(files.by_handle(again[name]), files.by_handle(self.out[name]))


class Redefinition(Base):
    """All blocks with attributes of a drawing, each redefined by the file that was made of it."""

    def test_by_themselves_leaves_all_else(self):
        after = {drawing: path("after", drawing + ".dxf") for drawing in BASE}
        script = ""
        for drawing in BASE:
            script += '_OPEN "%s"\n' % BASE[drawing]
            for symbol in self.symbols(drawing):
                script += '_LMREDEFINE "%s" "%s"\n' % (symbol.path, symbol.block)
            script += '_SAVEAS R2018 "%s"\n_CLOSE\n' % after[drawing]
        done(script)
        judged = 0
        for drawing in BASE:
            with self.subTest(drawing):
                if self.symbols(drawing):
                    judged += self.judge_attributes(drawing, after[drawing])
                self.judge_rest(self.symbols(drawing), BASE[drawing], after[drawing])
        self.assertGreater(judged, 1000 if BASE else -1)

    def test_trims_values_and_makes_doubled_tags_equal(self):
        """No shared drawing has such values; three of them get some."""
        for drawing in ("projeto-eletrico", "circuito-spice", "attribs-lights-r14") if BASE else ():
            with self.subTest(drawing):
                rough, after = path("rough", drawing + ".dxf"), path("smooth", drawing + ".dxf")
                roughen(BASE[drawing], rough)
                done('_OPEN "%s"\n' % rough + "".join(
                    '_LMREDEFINE "%s" "%s"\n' % (rough_symbol(symbol), symbol.block) for symbol in
                    self.symbols(drawing)) + '_SAVEAS R2018 "%s"\n' % after)
                self.judge_rough(files.read(rough), files.read(after))

    def judge_rough(self, old, new):
        trimmed = doubled = dropped = 0
        for insert in old.modelspace().query("INSERT"):
            before = files.attributes_of(insert)
            made = new.entitydb[insert.dxf.handle]
            now = files.attributes_of(made)
            self.assertEqual(now, files.kept_attributes(made.block(), before))
            self.assertEqual([item for item in now if item.value != item.value.strip()], [])
            trimmed += any(item.value != item.value.strip() for item in before)
            by_tag = collections.defaultdict(set)
            for item in now:
                by_tag[item.tag].add(item.value)
            self.assertEqual([tag for tag, values in by_tag.items() if len(values) > 1], [])
            doubled += len(by_tag) < len(now)
            dropped += len(now) < len(before)
        self.assertTrue(trimmed and doubled and dropped, (trimmed, doubled, dropped))

    def judge_attributes(self, drawing, after):
        """Values are trimmed, doubled tags get one value, what has no definition goes; how many were looked at."""
        document = files.read(after)
        redefined = {symbol.block.lower() for symbol in self.symbols(drawing)}
        count = 0
        for handle, before in PLACED[drawing].items():
            insert = document.entitydb[handle]
            if insert.dxf.name.lower() in redefined:
                self.assertEqual(files.attributes_of(insert), files.kept_attributes(insert.block(), before), insert)
                self.assertEqual(files.misplaced(insert), [])
                count += len(insert.attribs)
        return count

    def judge_rest(self, symbols, base, after):
        """Contents of the blocks and attributes are new; nothing else changed but the marks that tell of them."""
        redefined = {symbol.block.lower() for symbol in symbols}
        renewed = self.renewed(base, redefined)
        old, new = files.by_handle(base), files.by_handle(after)
        for handle, entry in old.items():
            if handle in renewed or (handle not in new and self.hangs_on(entry, old, renewed)):
                self.assertNotIn(handle, new)
            elif entry[0][1] == "TABLE":
                self.assertEqual(without(new[handle], 70), without(entry, 70))
            elif entry[0][1] == "BLOCK" and dict(entry)[2].lower() in redefined:
                self.assertEqual(without(new[handle], 70, 10, 20, 30), without(entry, 70, 10, 20, 30))
                self.assertEqual({float(v) for code, v in new[handle] if code in (10, 20, 30)}, {0.0})
            elif entry[0][1] == "INSERT" and dict(entry)[2].lower() in redefined:
                self.assertEqual(without(new[handle], 66), without(entry, 66))
            elif entry[0][1] != "SEQEND":
                self.assertEqual(new.get(handle), entry)
        came = self.renewed(after, redefined)
        for handle, entry in new.items():
            if handle not in old and handle not in came:
                self.assertIn(entry[0][1], ("SEQEND", "LTYPE", "STYLE", "APPID"))
        for symbol in symbols:
            self.assertEqual(files.shape(after, symbol.block), files.shape(symbol.resaved), symbol)

    @staticmethod
    def renewed(drawing, redefined):
        """Handles of what stands in the redefined blocks, and of the attributes of their references."""
        found = set()
        for name, inside in files.blocks(drawing).items():
            insert = None
            for entry in inside:
                if entry[0][1] == "INSERT":
                    insert = dict(entry)[2].lower()
                if name in redefined or (entry[0][1] == "ATTRIB" and insert in redefined):
                    found.add(files.handle_of(entry))
        return found

    @staticmethod
    def hangs_on(entry, entries, gone):
        """Whether it belongs to something that goes: the end of a series, the dictionary of an attribute."""
        while entry[0][1] in ("DICTIONARY", "XRECORD", "SEQEND"):
            if entry[0][1] == "SEQEND":
                return True
            owner = dict(reversed(entry))[330]
            if owner in gone:
                return True
            entry = entries[owner]
        return False

    @staticmethod
    def symbols(drawing):
        return [s for s in SYMBOLS if s.drawing == drawing and files.refusal(s.path) is None]


if __name__ == "__main__":
    unittest.main()
