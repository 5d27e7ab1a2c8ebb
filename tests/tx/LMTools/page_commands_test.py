# SPDX-License-Identifier: MIT
"""The commands of LMTools on pages and on what a project keeps of itself; ezdxf judges what is saved."""
import json
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "tests", "apps", "lmhost"))
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import commands_test  # noqa: E402
import support  # noqa: E402
from commands_test import texts  # noqa: E402

CIRCLE = '(entmake \'((0 . "CIRCLE") (8 . "%s") (10 5.0 5.0 0.0) (40 . 1.0)))\n'
CURRENT = '(princ (strcat (getvar "CLAYER") "\\n"))\n'


class Base(commands_test.Base):
    def listing(self, path):
        return json.loads(support.Run("pages", path, "--json").output.decode("utf-8"))

    def pages(self, text, drawing="--new"):
        """What `pages` lists of the drawing that a script leaves."""
        self.document = self.result(text, drawing=drawing)
        return self.listing(self.path("out.dxf"))

    def frozen(self):
        return {layer.dxf.name for layer in self.document.layers if layer.is_frozen()}

    def refused(self, before, command, *expected, drawing="--new"):
        super().refused(before, command, *expected, drawing=drawing)
        listings = []
        for script, code in ((before, 0), (before + command + "\n", 5)):
            self.run_script(script, "--save", self.path("refused.dxf"), drawing=drawing, code=code)
            listings.append(self.listing(self.path("refused.dxf")))
        self.assertEqual(listings[0], listings[1])

    def one_step(self, before, command, drawing="--new"):
        """The command, taken back in one step, leaves what was there."""
        listings = []
        for script in (before, before + command + "\n_U\n"):
            out = self.path("step.dxf")
            self.run_script(script, "--save", out, drawing=drawing)
            listings.append([support.Run(what, out, "--json").output for what in ("info", "blocks", "pages")])
        self.assertEqual(listings[0], listings[1], command)


class MakingAndMarking(Base):
    def test_a_page_with_and_without_the_layers_that_belong_to_it(self):
        document = self.result("_LMPAGE P01 \n_LMPAGE A$B Yes\n_LMPAGE A$C Y\n_LMPAGE P02 No\n")
        self.assertEqual([layer.dxf.name for layer in document.layers if layer.dxf.name not in ("0", "Defpoints")],
                         ["P01", "A$B", "A$DE", "A$FORMATO", "A$SELO", "A$C", "P02"])
        self.assertEqual(self.last.text, 'made page "P01"\nmade page "A$B" with A$DE, A$FORMATO, A$SELO\n'
                                         'made page "A$C"\nmade page "P02"\n')

    def test_marks_are_those_of_the_library(self):
        pages = self.pages("_LMPAGE P01 \n_LMPAGE P02 \n_LMPAGE P03 \n_LMCOVER p01\n_LMINDEX P02\n_LMCOVER P02\n")
        self.assertEqual([(page["name"], page["cover"], page["index"]) for page in pages["pages"]],
                         [("P01", True, False), ("P02", True, True)])
        layers = self.document.layers
        self.assertEqual([tuple(tag) for tag in layers.get("P01").get_xdata("TVO_RZ_CAPA")],
                         [(1000, "CAPA")])
        self.assertEqual([tuple(tag) for tag in layers.get("P02").get_xdata("TVO_RZ_INDICE")],
                         [(1000, "INDICE")])

    def test_bad_names_are_one_line_and_change_nothing(self):
        before = "_LMPAGE P01 Yes\n"
        for command, expected in (
                ("_LMPAGE P01 ", ('layer "P01" already',)), ("_LMPAGE p01 ", ('layer "P01" already',)),
                ("_LMPAGE 0 ", ('layer "0" already',)), ("_LMPAGE RZ_FREEZE ", ("RZ_FREEZE", "belongs to")),
                ("_LMPAGE P02$SELO ", ("P02$SELO", "belongs to")), ('_LMPAGE "A|B" ', ("A|B", "can't name a page")),
                ('_LMPAGE " " ', ('" "', "can't name a page")),
                ('_LMPAGE ""', ("Page",)), ("_LMPAGE", ("Page",)), ("_LMPAGE P02 Perhaps", ("Yes or No", "Perhaps")),
                ("_LMCOVER P09", ('no page "P09"',)), ("_LMINDEX P01$DE", ("P01$DE", "is no page")),
                ("_LMCOVER 0", ('"0" is no page',)), ("_LMINDEX", ("Page",))):
            with self.subTest(command):
                self.refused(before, command, *expected)


class Showing(Base):
    def test_a_page_with_what_belongs_to_it(self):
        self.pages("_LMSHOWPAGE p04 \n" + CURRENT, drawing=support.SAMPLE)
        self.assertEqual(self.last.text, 'showing page "P04"\nP04\n')
        shown = {"0", "P04", "P04$DE", "P04$FORMATO", "P04$SELO"}
        every = {layer.dxf.name for layer in self.document.layers if layer.dxf.name != "Defpoints"}
        self.assertEqual(every - self.frozen(), shown)

    def test_a_cover_hides_its_stamp(self):
        self.pages("_LMPAGE P1 Yes\n_LMCOVER P1\n_LMSHOWPAGE P1 No\n")
        self.assertEqual(self.frozen(), {"P1$SELO"})

    def test_an_object_with_its_page(self):
        lamp = next(block for block in json.loads(support.Run("blocks", support.SAMPLE, "--json").output)
                    if block["name"] == "LAMP")
        heights = []
        for factor in (1, 2):
            script = "_LMSHOWPAGE CAPA \n_LMGOTO %s %d\n" % (lamp["handle"], factor) + CURRENT
            self.pages(script, drawing=support.SAMPLE)
            self.assertEqual(self.last.text, 'showing page "CAPA"\nwent to %s LAMP on %s\n%s\n'
                             % (lamp["handle"], lamp["layer"], lamp["layer"]))
            view, = self.document.viewports.get("*Active")
            for found, wanted in zip(view.dxf.center, lamp["position"]):
                self.assertLess(abs(found - wanted), 30)
            heights.append(view.dxf.height)
        self.assertAlmostEqual(heights[1], 2 * heights[0], 6)

    def test_what_no_page_shows_is_refused(self):
        self.refused("_LMPAGE P1 \n", "_LMSHOWPAGE P2 ", 'no page "P2"')
        self.refused("_LMPAGE P1 Yes\n", "_LMSHOWPAGE P1$DE ", "is no page")
        for command, expected in (("_LMGOTO FFFF ", ("expected an entity", "FFFF")),
                                  ("_LMGOTO S9 ", ("expected an entity", "S9")),
                                  ("_LMGOTO 1 ", ("doesn't stand in model space",)),
                                  ("(command \"_LMGOTO\" (entlast) 0)", ("Factor",)),
                                  ("(command \"_LMGOTO\" (entlast) -1.5)", ("Factor",)),
                                  ("(command \"_LMGOTO\" (entlast) \"near\")", ("Factor", "near"))):
            with self.subTest(command):
                self.refused(CIRCLE % "P1", command, *expected)


class Deleting(Base):
    def test_takes_the_entities_and_the_layer_and_nothing_else(self):
        listing = self.pages("_LMDELETEPAGE P04\n", drawing=support.SAMPLE)
        self.assertEqual(self.last.text, 'deleted page "P04"; it leaves P04$DE, P04$FORMATO, P04$SELO\n')
        before = self.listing(support.SAMPLE)
        self.assertEqual([page["name"] for page in listing["pages"]],
                         [page["name"] for page in before["pages"] if page["name"] != "P04"])
        self.assertNotIn("P04", [layer.dxf.name for layer in self.document.layers])
        self.assertIn("P04$SELO", [layer.dxf.name for layer in self.document.layers])

    def test_a_page_that_something_else_uses_stays_whole(self):
        block = ('(entmake \'((0 . "BLOCK") (2 . "B") (10 0.0 0.0 0.0) (70 . 0)))\n' + CIRCLE % "P1" +
                 '(entmake \'((0 . "ENDBLK")))\n')
        self.refused(block + CIRCLE % "P1", "_LMDELETEPAGE P1", "P1", "outside model space")

    def test_other_layers_are_refused(self):
        for name, expected in (("0", "is no page"), ("P04$DE", "is no page"), ("RZ_FREEZE", "is no page"),
                               ("P99", "no page")):
            self.refused("", "_LMDELETEPAGE " + name, expected, drawing=support.SAMPLE)


class Project(Base):
    def test_values_stand_on_a_carrier_that_is_made_once(self):
        listing = self.pages('_LMNUMBERING 1\n_LMORDER Groups 3\n_LMORDER P "=A1+B 2" 4\n_LMORDER P "" 5\n'
                             "_LMCONFIG a.cfg\n_LMORDER G \"\"\n_LMNUMBERING \"\"\n")
        self.assertEqual((listing["numbering"], listing["order"], listing["configuration"], listing["carrier"]),
                         (1, 3, "a.cfg", True))
        self.assertEqual(listing["groups"], [{"name": "=A1+B 2", "order": 4}, {"name": "", "order": 5}])
        self.assertEqual(self.last.text.count("made the settings carrier"), 1)
        point, = self.document.modelspace()
        self.assertEqual((point.dxftype(), point.dxf.layer), ("POINT", "RZ_FREEZE"))

    def test_a_carrier_that_is_there_is_used(self):
        listing = self.pages("_LMNUMBERING 0\n_LMORDER Pages BORNES 9\n_LMCONFIG other.cfg\n", drawing=support.SAMPLE)
        self.assertEqual((listing["numbering"], listing["configuration"]), (0, "other.cfg"))
        self.assertEqual({group["name"]: group["order"] for group in listing["groups"]},
                         {"MOTOR": 1, "BORNES": 9, "PAINEL": 1})
        self.assertNotIn("made", self.last.text)

    def test_an_empty_answer_changes_nothing(self):
        groups = {group["name"]: group["order"] for group in self.pages("", drawing=support.SAMPLE)["groups"]}
        listing = self.pages('_LMORDER Pages NOPE ""\n_LMORDER Pages MOTOR ""\n_LMORDER Groups ""\n_LMNUMBERING ""\n',
                             drawing=support.SAMPLE)
        self.assertEqual(self.last.text, 'order of the pages in group "NOPE" is 1\norder of the pages in group "MOTOR" '
                         "is 1\norder of groups is 1\nnumbering mode is 1\n")
        self.assertEqual({group["name"]: group["order"] for group in listing["groups"]}, groups)
        self.assertNotIn("RZ_ORDEM_PAG_NOPE", self.document.appids)
        empty = self.pages('_LMORDER Groups ""\n_LMNUMBERING ""\n')
        self.assertFalse(empty["carrier"])

    def test_a_group_that_differs_in_its_case_only_is_the_one_that_is_there(self):
        listing = self.pages("_LMORDER Pages motor 8\n", drawing=support.SAMPLE)
        self.assertEqual({group["name"]: group["order"] for group in listing["groups"]},
                         {"MOTOR": 8, "BORNES": 2, "PAINEL": 1})

    def test_another_carrier_that_counts_is_told(self):
        carrier = '(entmake \'((0 . "POINT") (8 . "RZ_FREEZE") (10 0.0 0.0 0.0)%s))\n'
        self.pages('(regapp "RZ_ORDEM_GRU")\n' + carrier % "" + carrier % ' (-3 ("RZ_ORDEM_GRU" (1000 . "7")))' +
                   "_LMORDER Groups 3\n")
        self.assertEqual(self.last.text, "order of groups is 3, but another settings carrier has 7, which counts\n")

    def test_the_version_is_stored_with_that_of_the_product(self):
        # The product's version is a setting of the machine.
        version = self.pages("_LMVERSION 1.2\n_LMVERSION 1.3\n")["version"]
        stored = texts(self.document.rootdict["RZ_VERSAO"].get_xdata("RZ_VERSAO"))
        self.assertEqual(stored, ["1.3", version])
        self.assertRegex(self.last.text, r'^stored version "1.2".*\nstored version "1.3".*\n$')

    def test_bad_input_is_one_line_and_changes_nothing(self):
        for command, expected in (("_LMNUMBERING one", ("Numbering mode", "one")),
                                  ("_LMNUMBERING", ("Numbering mode",)),
                                  ("_LMORDER Sheets", ("Groups or Pages", "Sheets")),
                                  ('_LMORDER ""', ("Groups or Pages",)), ("_LMORDER Groups 1.5", ("Order", "1.5")),
                                  ("_LMORDER Pages A x", ("Order", "x")), ('_LMCONFIG ""', ("Configuration file",)),
                                  ("_LMORDER Pages %s 1" % ("A" * 243), ("can't name a group",)),
                                  ('(command "_LMORDER" "P" "A\\tB" 1)', ("can't name a group",)),
                                  ('_LMVERSION ""', ("Version",))):
            with self.subTest(command):
                self.refused("_LMPAGE P1 \n", command, *expected)


class Undo(Base):
    def test_each_command_is_one_step(self):
        for command in ("_LMPAGE P09 Yes", "_LMCOVER P03", "_LMINDEX P03", "_LMSHOWPAGE P04 No", "_LMDELETEPAGE P04",
                        "_LMORDER Groups 2", "_LMORDER Pages NEW 2", "_LMNUMBERING 0", "_LMCONFIG x.cfg",
                        "_LMVERSION 9"):
            with self.subTest(command):
                self.one_step("_LMSHOWPAGE P03 No\n", command, drawing=support.SAMPLE)

    def test_a_carrier_goes_with_the_step_that_made_it(self):
        document = self.result("_LMNUMBERING 1\n_U\n")
        self.assertEqual(len(document.modelspace()), 0)
        self.assertNotIn("RZ_FREEZE", document.layers)


if __name__ == "__main__":
    unittest.main()
