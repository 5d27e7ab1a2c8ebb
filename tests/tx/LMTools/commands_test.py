# SPDX-License-Identifier: MIT
"""The commands of LMTools, run by scripts in the real program; ezdxf, an independent reader, judges what is saved."""
import os
import re
import shutil
import sys
import tempfile
import unittest

import ezdxf

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "tests", "apps", "lmhost"))

import support  # noqa: E402

LINE = '(entmake \'((0 . "LINE") (8 . "0") (10 0.0 0.0 0.0) (11 %s 0.0 0.0)))\n'
DEFINITION = '(entmake \'((0 . "ATTDEF") (8 . "0") (10 1.0 2.0 0.0) (40 . 2.5) (1 . "%s") (3 . "%s") (2 . "%s")))\n'


def texts(chain):
    return [value for code, value in chain if code in (1000, 1071)]


class Base(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm símbolo ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def quoted(self, name):
        return '"%s"' % self.path(name)

    def symbol(self, name, tags=(), length="5.0", more="", folder=""):
        """A symbol file with one line and attributes of these tags; the default of each is "def TAG"."""
        path = self.path(os.path.join(folder, name + ".dxf"))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        body = LINE % length + "".join(DEFINITION % ("def " + tag, "Prompt of " + tag, tag) for tag in tags)
        self.run_script(body + more, "--save", path)
        return '"%s"' % path

    ENVIRONMENT = {}

    def run_script(self, text, *options, drawing="--new", code=0):
        with open(self.path("script.scr"), "w", encoding="utf-8", newline="") as file:
            file.write(text)
        run = support.Run("run", drawing, self.path("script.scr"), *options, environment=self.ENVIRONMENT)
        self.assertEqual(run.code, code, run.errors + run.output.decode())
        run.text = run.output.decode()
        return run

    def result(self, text, drawing="--new"):
        """The saved drawing, read by ezdxf, which must find nothing wrong with it."""
        out = self.path("out.dxf")
        self.last = self.run_script(text, "--save", out, drawing=drawing)
        document = ezdxf.readfile(out)
        auditor = document.audit()
        self.assertEqual([str(entry.message) for entry in auditor.errors + auditor.fixes], [])
        return document

    def refused(self, before, command, *expected, drawing="--new"):
        """A command that fails: one line with all of `expected`, and the drawing is as it was before it."""
        listings = []
        for script, code in ((before, 0), (before + command + "\n", 5)):
            out = self.path("refused.dxf")
            run = self.run_script(script, "--save", out, drawing=drawing, code=code)
            listings.append([support.Run(what, out, "--json").output for what in ("info", "blocks", "components")])
        self.assertEqual(listings[0], listings[1])
        self.assertEqual(len(run.error_lines), 1, run.errors)
        for part in expected:
            self.assertIn(part, run.error_lines[0])


class Insertion(Base):
    def test_places_a_symbol_and_sets_its_attributes(self):
        file = self.symbol("MOTOR", ("TAG", "POWER"))
        document = self.result('_LMINSERT %s P01 450.1,20.3 90 tag M1 power "5,5 kW" \n' % file)
        insert, = document.modelspace()
        self.assertEqual((insert.dxf.name, insert.dxf.layer), ("MOTOR", "P01"))
        self.assertEqual(tuple(insert.dxf.insert), (450.1, 20.3, 0.0))
        self.assertEqual(insert.dxf.rotation, 90.0)
        self.assertEqual([(a.dxf.tag, a.dxf.text) for a in insert.attribs], [("TAG", "M1"), ("POWER", "5,5 kW")])
        for attribute in insert.attribs:
            self.assertTrue(attribute.dxf.insert.isclose((448.1, 21.3, 0), abs_tol=1e-9), attribute.dxf.insert)
            self.assertAlmostEqual(attribute.dxf.rotation, 90.0, 12)
        self.assertRegex(self.last.text, r"^inserted [0-9A-F]+ MOTOR on P01\n$")

    def test_a_block_that_is_there_needs_no_file(self):
        file = self.symbol("MOTOR", ("TAG",))
        document = self.result('_LMINSERT %s P01 0,0 0 \n_LMINSERT MOTOR "" 10,0 0 \n_LMINSERT "PUMP=%s" P01 20,0 0 \n'
                               % (file, self.path("MOTOR.dxf")))
        self.assertEqual([(i.dxf.name, i.dxf.layer) for i in document.modelspace()],
                         [("MOTOR", "P01"), ("MOTOR", "0"), ("PUMP", "P01")])
        self.assertEqual([a.dxf.text for i in document.modelspace() for a in i.attribs], ["def TAG"] * 3)

    def test_names_that_differ_in_case_mean_what_is_there(self):
        file = self.symbol("MOTOR", ("TAG",))
        document = self.result("_LMINSERT %s P01 0,0 0 \n_LMINSERT motor p01 9,0 0 \n" % file)
        self.assertEqual([(i.dxf.name, i.dxf.layer) for i in document.modelspace()], [("MOTOR", "P01")] * 2)

    def test_one_step_back_takes_all_of_it(self):
        file = self.symbol("MOTOR", ("TAG",))
        document = self.result('_LMINSERT %s P01 0.1,0 30 TAG M1 \n_U\n' % file)
        self.assertEqual(len(document.modelspace()), 0)
        self.assertNotIn("MOTOR", document.blocks)
        self.assertNotIn("P01", document.layers)

    def test_bad_input_is_one_line_and_changes_nothing(self):
        file = self.symbol("MOTOR", ("TAG", "POWER"))
        two = self.symbol("TWO", more='(entmake \'((0 . "LAYER") (2 . "EXTRA") (70 . 0)))\n')
        for command, expected in (
                ("_LMINSERT NONE.dxf P01 0,0 0 ", ("no symbol file", "NONE.dxf")),
                ("_LMINSERT %s P01 0,0 0 " % two, ("TWO.dxf", "layer 0 alone")),
                ("_LMINSERT %s P01 0,0 0 TAG M1 CURRENT 5 " % file, ('no attribute "CURRENT"', "TAG, POWER")),
                ("_LMINSERT %s P01 here " % file, ("Insertion point", "here")),
                ('_LMINSERT "A|B=%s" P01 0,0 0 ' % self.path("MOTOR.dxf"), ("A|B", "can't name a block")),
                ("_LMINSERT %s P*1 0,0 0 " % file, ("P*1", "can't name a layer")),
                ("_LMINSERT *Model_Space P01 0,0 0 ", ("layout",)),
                ('_LMINSERT "" ', ("Symbol",))):
            with self.subTest(command):
                self.refused("", command, *expected)


class Attributes(Base):
    def two(self):
        file = self.symbol("MOTOR", ("TAG", "POWER"))
        return '_LMINSERT %s P01 0,0 0 TAG M1 \n_LMINSERT %s P01 9,0 0 TAG m2 \n' % (file, file)

    def values(self, document):
        return [[a.dxf.text for a in insert.attribs] for insert in document.modelspace().query("INSERT")]

    def test_sets_values_on_all_that_were_chosen(self):
        document = self.result(self.two() + '_LMATTRIBUTES ALL  power "7 kW" Tag M2 \n')
        self.assertEqual(self.values(document), [["M2", "7 kW"], ["M2", "7 kW"]])
        self.assertTrue(self.last.text.endswith("set 2 attributes on 2 block references\n"), self.last.text)

    def test_one_entity_from_lisp(self):
        document = self.result(self.two() + '(command "_LMATTRIBUTES" (entlast) "" "TAG" "K" "")\n')
        self.assertEqual(self.values(document), [["M1", "def POWER"], ["K", "def POWER"]])

    def test_hides_and_shows(self):
        document = self.result(self.two() + "_LMVISIBILITY ALL  Hide tag POWER \n_LMVISIBILITY L  S power \n")
        self.assertEqual([[bool(a.is_invisible) for a in insert.attribs] for insert in document.modelspace()],
                         [[True, True], [True, False]])
        self.assertEqual(self.values(document), [["M1", "def POWER"], ["m2", "def POWER"]])
        self.assertIn("hid 2 attributes on 2 block references\nshowed 1 attribute on 1 block reference\n",
                      self.last.text)

    def test_bad_input_is_one_line_and_changes_nothing(self):
        before = self.two()
        other = self.symbol("OTHER", ("TAG",))
        mixed = before + "_LMINSERT %s P01 0,9 0 \n" % other
        for text, command, expected in (
                (mixed, "_LMATTRIBUTES ALL  TAG K POWER 5 ", ('no attribute "POWER"', "OTHER on P01")),
                (before + LINE % 3.0, "_LMATTRIBUTES ALL  TAG K ", ("LINE on 0", "block references alone")),
                (before, "_LMATTRIBUTES  TAG", ("nothing was chosen",)),
                (before, "_LMATTRIBUTES ALL  ", ("no tag",)),
                (mixed, "_LMVISIBILITY ALL  H TAG POWER ", ('no attribute "POWER"',)),
                (before, "_LMVISIBILITY ALL  Paint", ("Show, Hide", "Paint"))):
            with self.subTest(command):
                self.refused(text, command, *expected)


class Virtual(Base):
    NEW = '_LMVIRTUAL New V1 SENSOR RELACAO B1 N NUMERO1 7 N NUMERO "" "" CODIGO S-4 Yes \n'

    def lines(self, document, key="V1"):
        return texts(document.rootdict["ESQ_VIRTUAL_RZ"][key].get_xdata("TVO_RZ_ATT_VIRTUAL"))

    def test_a_new_component_is_listed(self):
        document = self.result(self.NEW + "_LMVIRTUAL List \n")
        record = document.rootdict["ESQ_VIRTUAL_RZ"]["V1"]
        self.assertEqual([tuple(tag) for tag in record.tags], [(1, "ESQ_VIRTUAL_RZ"), (2, "SENSOR")])
        self.assertEqual(self.lines(document), ["RELACAO^LB1^LN", "NUMERO1^L7^LN", "NUMERO^L^LN", "CODIGO^LS-4^LS"])
        self.assertEqual(re.sub(r"handle \w+", "handle", self.last.text),
                         'made virtual component "V1" of block "SENSOR" with 4 attributes\n'
                         "V1  block SENSOR  handle\n    RELACAO = B1\n    NUMERO1 = 7\n    NUMERO =  \n"
                         "    CODIGO = S-4  [invisible]\n1 component in the virtual schematic\n")
        components = support.Run("components", self.path("out.dxf")).output.decode()
        self.assertIn("tag B1", components)

    def test_sets_one_attribute(self):
        document = self.result(self.NEW + '_LMVIRTUAL Set V1 codigo "S 5" \n_LMVIRTUAL Set V1 RELACAO B2 Yes\n')
        self.assertEqual(self.lines(document), ["RELACAO^LB2^LS", "NUMERO1^L7^LN", "NUMERO^L^LN", "CODIGO^LS 5^LS"])

    def test_replaces_all_and_keeps_the_tag(self):
        document = self.result(self.NEW + "_LMVIRTUAL Replace V1 Yes TAG B9 N LOCAL +X N \n"
                               + self.NEW.replace("V1", "V2") + "_LMVIRTUAL R V2 No TAG B9 N \n")
        self.assertEqual(self.lines(document), ["RELACAO^LB1^LN", "LOCAL^L+X^LN"])
        self.assertEqual(self.lines(document, "V2"), ["TAG^LB9^LN"])

    def test_an_entity_may_have_them_too(self):
        document = self.result(LINE % 3.0 + '(command "_LMVIRTUAL" "Replace" (entlast) "No" "TAG" "W1" "No" "")\n'
                               '(command "_LMVIRTUAL" "List" (entlast))\n')
        self.assertEqual(texts(document.modelspace()[0].get_xdata("TVO_RZ_ATT_VIRTUAL")), ["TAG^LW1^LN"])
        self.assertIn("LINE on 0  handle", self.last.text)

    def test_bad_input_is_one_line_and_changes_nothing(self):
        for command, expected in (
                ("_LMVIRTUAL New V1 OTHER ", ('component "V1" already',)),
                ("_LMVIRTUAL Set V9 RELACAO B2 ", ("expected an entity, a handle or a key", "V9")),
                ("_LMVIRTUAL Set V1 COLOUR red ", ('no virtual attribute "COLOUR"',)),
                ("_LMVIRTUAL Set V1 NUMERO 8 ", ('"NUMERO"', "NUMERO1", "Replace")),
                ('(command "_LMVIRTUAL" "Set" "V1" "CODIGO" (strcat "a" (chr 12)) "")', ("form feed",)),
                ("_LMVIRTUAL Paint", ("List, New, Set, Replace",))):
            with self.subTest(command):
                self.refused(self.NEW, command, *expected)


class Blocks(Base):
    def placed(self):
        file = self.symbol("MOTOR", ("TAG", "POWER"))
        return '_LMINSERT %s P01 10,20 30 TAG M1 POWER 5 \n_LMVISIBILITY L  Hide TAG \n' % file

    def shape(self, document, name="MOTOR"):
        return [(e.dxftype(), e.dxf.end.x if e.dxftype() == "LINE" else e.dxf.tag) for e in document.blocks[name]]

    def test_a_file_gives_a_new_shape_and_values_stay(self):
        new = self.symbol("NEW", ("TAG", "CURRENT"), "8.0")
        document = self.result(self.placed() + "_LMREDEFINE %s MOTOR\n" % new)
        insert, = document.modelspace()
        self.assertEqual(self.shape(document), [("LINE", 8.0), ("ATTDEF", "TAG"), ("ATTDEF", "CURRENT")])
        self.assertEqual([(a.dxf.tag, a.dxf.text, bool(a.is_invisible)) for a in insert.attribs],
                         [("TAG", "M1", True), ("CURRENT", "def CURRENT", False)])
        self.assertEqual(tuple(insert.dxf.insert), (10.0, 20.0, 0.0))
        self.assertEqual([block.name for block in document.blocks if block.name.startswith("RZ_TMP_")], [])
        self.assertTrue(self.last.text.endswith('redefined block "MOTOR" with 1 reference\n'), self.last.text)

    def test_a_file_of_a_new_name_defines_a_block(self):
        document = self.result("_LMREDEFINE %s \n" % self.symbol("NEW", ("TAG",)))
        self.assertEqual(len(self.shape(document, "NEW")), 2)
        self.assertEqual(self.last.text, 'defined block "NEW" with 0 references\n')

    def test_a_folder_redefines_what_the_drawing_has(self):
        self.symbol("MOTOR", ("TAG", "CURRENT"), "8.0", folder="library")
        self.symbol("OTHER", (), "8.0", folder="library")
        document = self.result(self.placed() + "_LMREDEFINE %s\n" % self.quoted("library"))
        self.assertEqual(self.shape(document)[0], ("LINE", 8.0))
        self.assertNotIn("OTHER", document.blocks)
        self.assertTrue(self.last.text.endswith("redefined 1 block with 1 reference; 1 file of other names\n"))

    def test_a_refused_file_in_a_folder_leaves_all_blocks(self):
        before = self.placed() + "_LMINSERT %s P01 0,0 0 \n" % self.symbol("PUMP", ("TAG",))
        self.symbol("MOTOR", ("TAG", "CURRENT"), "8.0", folder="library")
        self.symbol("PUMP", (), "8.0", '(entmake \'((0 . "LAYER") (2 . "EXTRA") (70 . 0)))\n', folder="library")
        self.refused(before, "_LMREDEFINE %s" % self.quoted("library"), "library", "nothing was redefined")
        out = self.path("kept.dxf")
        self.run_script(before + "_LMREDEFINE %s\n" % self.quoted("library"), "--save", out, code=5)
        self.assertEqual(self.shape(ezdxf.readfile(out))[0], ("LINE", 5.0))

    def test_one_step_back_takes_a_redefinition(self):
        new = self.symbol("NEW", ("TAG", "CURRENT"), "8.0")
        document = self.result(self.placed() + "_LMREDEFINE %s MOTOR\n_U\n" % new)
        self.assertEqual(self.shape(document), [("LINE", 5.0), ("ATTDEF", "TAG"), ("ATTDEF", "POWER")])
        self.assertEqual([a.dxf.text for a in document.modelspace()[0].attribs], ["M1", "5"])

    def test_bad_input_is_one_line_and_changes_nothing(self):
        before = self.placed()
        os.makedirs(self.path("empty"))
        two = self.symbol("TWO", more='(entmake \'((0 . "LAYER") (2 . "EXTRA") (70 . 0)))\n')
        with open(self.path("text.dxf"), "w", encoding="utf-8") as file:
            file.write("no drawing")
        for command, expected in (("_LMREDEFINE none.dxf ", ("no symbol file and no folder", "none.dxf")),
                                  ("_LMREDEFINE %s MOTOR" % two, ("TWO.dxf", "MOTOR", "layer 0 alone")),
                                  ("_LMREDEFINE %s MOTOR" % self.quoted("text.dxf"), ("text.dxf",)),
                                  ("_LMREDEFINE %s *Model_Space" % two, ("layout",)),
                                  ("_LMREDEFINE %s A*B" % two, ("A*B", "can't name a block")),
                                  ("_LMREDEFINE %s" % self.quoted("empty"), ("empty", "no symbol file"))):
            with self.subTest(command):
                self.refused(before, command, *expected)

    def test_purges_what_only_purged_blocks_used(self):
        nested = ('(entmake \'((0 . "BLOCK") (2 . "INNER") (70 . 0) (10 0.0 0.0 0.0)))\n' + LINE % 1.0 +
                  '(entmake \'((0 . "ENDBLK")))\n'
                  '(entmake \'((0 . "BLOCK") (2 . "OUTER") (70 . 0) (10 0.0 0.0 0.0)))\n'
                  '(entmake \'((0 . "INSERT") (2 . "INNER") (10 0.0 0.0 0.0)))\n(entmake \'((0 . "ENDBLK")))\n')
        document = self.result(self.placed() + nested + "_LMPURGE\n_LMPURGE\n")
        names = [block.name for block in document.blocks]
        self.assertIn("MOTOR", names)
        self.assertFalse({"INNER", "OUTER"} & set(names))
        self.assertTrue(self.last.text.endswith("purged 2 blocks\npurged 0 blocks\n"), self.last.text)


class Shapes(Base):
    LAYERED = ('(entmake \'((0 . "LAYER") (2 . "A") (70 . 0)))\n'
               '(entmake \'((0 . "LINE") (8 . "A") (10 0.0 0.0 0.0) (11 4.0 0.0 0.0)))\n')

    def test_a_drawing_becomes_a_symbol_file(self):
        plain, ready = self.quoted("plain.dxf"), self.quoted("ready.dxf")
        self.run_script(self.LAYERED, "--save", self.path("plain.dxf"))
        run = self.run_script(self.LAYERED + "_LMLAYERZERO\n", "--save", self.path("ready.dxf"))
        self.assertEqual(run.text, "brought everything to layer 0; 1 layer erased, 1 left\n")
        self.refused("", "_LMINSERT %s P01 0,0 0 " % plain, "layer 0 alone")
        self.assertEqual(len(self.result("_LMINSERT %s P01 0,0 0 \n" % ready).blocks["ready"]), 1)

    def test_blocks_fall_into_plain_geometry(self):
        file = self.symbol("MOTOR", ("TAG",))
        document = self.result("_LMINSERT %s P01 10,0 0 \n_LMFLATTEN ALL  0\n" % file)
        entity, = document.modelspace()
        self.assertEqual((entity.dxftype(), entity.dxf.layer), ("LINE", "0"))
        self.assertEqual((entity.dxf.start.x, entity.dxf.end.x), (10.0, 15.0))
        self.assertTrue(self.last.text.endswith("flattened 1 object to layer 0\n"))

    def test_bad_input_is_one_line_and_changes_nothing(self):
        self.refused(self.LAYERED, "_LMFLATTEN ALL  NONE", 'no layer "NONE"')
        self.refused(self.LAYERED, "_LMFLATTEN  0", "nothing was chosen")


class Links(Base):
    def sample(self):
        return ezdxf.readfile(support.SAMPLE)

    def handle(self, document, name, layer):
        return [e.dxf.handle for e in document.modelspace().query("INSERT")
                if e.dxf.name == name and e.dxf.layer == layer]

    def test_lists_the_appearances_of_a_component_from_any_of_them(self):
        document = self.sample()
        coil, = self.handle(document, "CONTACTOR_COIL", "P04")
        footprint, = self.handle(document, "LAY_CONTACTOR", "P07")
        outputs = [self.run_script("_LMLINKS %s\n" % handle, drawing=support.SAMPLE).text
                   for handle in (coil, footprint)]
        self.assertEqual(outputs[0], outputs[1])
        lines = outputs[0].split("\n")[:-1]
        self.assertEqual(lines[0], "schematic object %s CONTACTOR_COIL on P04, 7 other appearances" % coil)
        self.assertEqual(sorted(re.sub(r"^    \w+ ", "", line) for line in lines[1:]), sorted(
            ["NA-POTENCIA on P03  by TVO_RZ_REPRESENTACAO"] * 3 + ["NA-AUX on P04  by TVO_RZ_REPRESENTACAO"] * 2 +
            ["UNI_CONTATOR on P06  by TVO_RZ_UNIFILAR", "LAY_CONTACTOR on P07  by TVO_LAYOUT_PAINEL"]))

    def test_an_object_without_links_stands_alone(self):
        run = self.run_script(LINE % 3.0 + '(command "_LMLINKS" (entlast))\n')
        self.assertRegex(run.text, r"^object without a schematic object \w+ LINE on 0, 0 other appearances\n$")

    def test_an_id_without_its_record_is_no_link(self):
        document = ezdxf.new()
        schematic = document.modelspace().add_point((0, 0))
        for application, chain in (("TVO_RZ_REPRESENTACAO", ("only one",)), ("TVO_LAYOUT_PAINEL", ()),
                                   ("TVO_RZ_ANILHACABO", (schematic.dxf.handle,))):
            label = document.modelspace().add_line((0, 0), (1, 1))
            for name, values in ((application, chain), ("TVO_RZ_ANILHAFIO", (schematic.dxf.handle,))):
                if name not in document.appids:
                    document.appids.add(name)
                label.set_xdata(name, [(1000, value) for value in values])
        drawing = self.path("labels.dxf")
        document.saveas(drawing)
        run = self.run_script("_LMLINKS %s\n" % schematic.dxf.handle, drawing=drawing)
        self.assertEqual([line.split("  by ")[1] for line in run.text.splitlines()[1:]], ["TVO_RZ_ANILHAFIO"] * 3)

    def test_links_of_copies_lead_to_copies(self):
        document = self.sample()
        coil, = self.handle(document, "CONTACTOR_COIL", "P04")
        parts = self.handle(document, "NA-AUX", "P04") + self.handle(document, "UNI_CONTATOR", "P06")
        chosen = "\n".join('(handent "%s")' % handle for handle in [coil] + parts)
        copy = self.result("_LMCOPY %s\n\n0,0 0,1000\n" % chosen, drawing=support.SAMPLE)
        self.assertEqual(self.last.text, "copied 4 objects; their links lead to the copies\n")
        new = {e.dxf.name: e for e in copy.modelspace().query("INSERT") if e.dxf.insert.y >= 1000}
        contacts = [e for e in copy.modelspace().query("INSERT") if e.dxf.insert.y >= 1000 and e.dxf.name == "NA-AUX"]
        schematic = new["CONTACTOR_COIL"]
        for contact in contacts:
            self.assertEqual(texts(contact.get_xdata("TVO_RZ_REPRESENTACAO"))[1], schematic.dxf.handle)
        self.assertEqual(texts(new["UNI_CONTATOR"].get_xdata("TVO_RZ_UNIFILAR"))[0], schematic.dxf.handle)
        self.assertEqual(texts(schematic.get_xdata("TVO_RZ_ESQUEMATICO_UNIFILAR")), [new["UNI_CONTATOR"].dxf.handle])
        old = copy.entitydb[coil]
        self.assertEqual(texts(old.get_xdata("TVO_RZ_REPRESENTACAO_ESQ")),
                         texts(document.entitydb[coil].get_xdata("TVO_RZ_REPRESENTACAO_ESQ")))
        attribute = schematic.attribs[0].dxf.insert - schematic.dxf.insert
        before = document.entitydb[coil]
        self.assertTrue(attribute.isclose(before.attribs[0].dxf.insert - before.dxf.insert, abs_tol=1e-9))

    def test_objects_without_links_are_copied_too(self):
        document = self.result(LINE % 3.0 + "_LMCOPY ALL  1,2  \n")
        self.assertEqual([tuple(e.dxf.start) for e in document.modelspace()], [(0, 0, 0), (1, 2, 0)])
        self.assertEqual(self.last.text, "copied 1 object; none has links\n")

    def test_bad_input_is_one_line_and_changes_nothing(self):
        self.refused(LINE % 3.0, "_LMCOPY  0,0 5,5", "nothing was chosen")
        self.refused(LINE % 3.0, "_LMCOPY ALL  here 5,5", "Base point", "here")
        self.refused(LINE % 3.0, "_LMLINKS FFFFFF", "expected an entity, a handle or a key", "FFFFFF")


class Circuits(Base):
    # Calls by name keep copies of their texts on purpose. When a sanitizer counts what was kept, the modules are gone,
    # and no suppression knows the places in them.
    ENVIRONMENT = {"ASAN_OPTIONS": "detect_leaks=0"}

    DEFINED = "_LMDEFCIRCLOCAL 2 Motor Drive Hall P01 0,0 10,10\n" + LINE % 3.0

    def test_numbers_and_texts(self):
        document = self.result(
            self.DEFINED + '(command "_LMCIRCUIT" "Component" (entlast))\n(command "_LMCIRCUIT" "Set" (entlast) 2)\n'
            '(command "_LMCIRCUIT" "Component" (entlast))\n(command "_LMCIRCUIT" "Set" (entlast) 3)\n_LMCIRCUIT List\n'
            "_LMCIRCUIT Update P01 5,5 Pump\n_LMCIRCUIT Find P01 5,5\n_LMCIRCUIT F P01 50,5\n_LMCIRCUIT List\n")
        self.assertEqual(texts(document.modelspace()[0].get_xdata("TVO_RZ_CIRCLOC")), [3])
        self.assertEqual(re.sub(r"\w+ LINE", "* LINE", self.last.text).split("\n")[:-1], [
            "* LINE on 0 is in circuit 1 (no texts)", "* LINE on 0 is in circuit 2 now",
            "* LINE on 0 is in circuit 2: Motor | Drive | Hall", "* LINE on 0 is in circuit 3 now",
            "circuit 2: Motor | Drive | Hall", "circuit 3: (no texts)", "    * LINE on 0", "2 local circuits",
            'updated the local circuit on page "P01"', "circuit 2 lies there", "no local circuit lies there",
            "circuit 2: Pump | Drive | Hall", "circuit 3: (no texts)", "    * LINE on 0", "2 local circuits"])

    def test_circuits_go_with_their_region_or_all_at_once(self):
        more = "_LMDEFCIRCLOCAL 5 a b c P02 0,0 10,10\n"
        for command, left in (("_LMCIRCUIT Region P01", 1), ("_LMCIRCUIT CLear", 0)):
            run = self.run_script(self.DEFINED + more + command + "\n_LMCIRCUIT List\n")
            self.assertTrue(run.text.endswith("%d local circuit%s\n" % (left, "" if left == 1 else "s")), run.text)

    def test_bad_input_is_one_line_and_changes_nothing(self):
        for command, expected in (("_LMCIRCUIT Region P09", ('page "P09"',)),
                                  ("_LMCIRCUIT Update P01 50,50 x", ('page "P01"',)),
                                  ('(command "_LMCIRCUIT" "Set" (entlast) 0)', ("expected 1 to 32767", "found 0")),
                                  ("_LMCIRCUIT Component NONE", ("NONE",))):
            with self.subTest(command):
                self.refused(self.DEFINED, command, *expected)

    def test_a_component_whose_schematic_object_was_erased_is_refused(self):
        inserts = ezdxf.readfile(support.SAMPLE).modelspace().query("INSERT")
        coil, footprint = [[e.dxf.handle for e in inserts if (e.dxf.name, e.dxf.layer) == where][0]
                           for where in (("CONTACTOR_COIL", "P04"), ("LAY_CONTACTOR", "P07"))]
        for command in ("_LMCIRCUIT Set %s 2", "_LMCIRCUIT Component %s"):
            with self.subTest(command):
                self.refused('_ERASE (handent "%s")\n\n' % coil, command % footprint,
                             "%s LAY_CONTACTOR on P07 has no schematic object" % footprint, drawing=support.SAMPLE)


class Documentation(Base):
    def test_the_examples_of_the_page(self):
        with open(os.path.join(ROOT, "docs", "commands.md"), encoding="utf-8") as file:
            page = file.read()
        examples = re.findall(r"```script\n(.*?)```\n```output\n(.*?)```\n", page, re.S)
        self.assertGreater(len(examples), 5)
        self.addCleanup(os.chdir, os.getcwd())
        # Examples may leave files behind.
        copy = shutil.copytree(os.path.join(ROOT, "examples", "motor-starter"), self.path("motor-starter"))
        os.chdir(copy)
        for text, output in examples:
            with self.subTest(text):
                self.assertEqual(self.run_script(text).text, output)

    def test_every_command_stands_on_the_page(self):
        with open(os.path.join(ROOT, "docs", "commands.md"), encoding="utf-8") as file:
            page = file.read()
        for name in ("INSERT", "ATTRIBUTES", "VISIBILITY", "VIRTUAL", "REDEFINE", "PURGE", "FLATTEN", "LAYERZERO",
                     "LINKS", "COPY", "CIRCUIT", "PAGE", "COVER", "INDEX", "SHOWPAGE", "GOTO", "DELETEPAGE", "ORDER",
                     "NUMBERING", "CONFIG", "VERSION", "REPLAY", "EXPORT", "IMPORT"):
            self.assertIn("| `_LM%s` |" % name, page)


if __name__ == "__main__":
    unittest.main()
