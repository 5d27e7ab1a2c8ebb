# SPDX-License-Identifier: MIT
"""The command `pages`: the settings of a project and its pages; ezdxf, an independent reader, judges the counts."""
import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest

import judge_ezdxf
import support

ENDINGS = ("$DE", "$FORMATO", "$SELO")
KEYS = ["numbering", "order", "version", "configuration", "panels", "carrier", "groups", "pages"]
PAGE_KEYS = ["name", "head", "companions", "cover", "index", "number", "description", "references", "polylines"]


def layer_of(entity):
    """The layer of an entity; of kinds that the reader keeps unread it is among their tags."""
    if entity.dxf.hasattr("layer") or not hasattr(entity, "xtags"):
        return entity.dxf.get("layer", "0")
    return entity.xtags.get_subclass("AcDbEntity").get_first_value(8, "0")


def expected_pages(document):
    """Pages by name, as an independent reader finds them: references, polylines, cover, index."""
    entities = {}
    for entity in document.modelspace():
        counts = entities.setdefault(layer_of(entity), [0, 0])
        counts[0] += entity.dxftype() == "INSERT"
        counts[1] += entity.dxftype() == "LWPOLYLINE"
    pages = {}
    layers = {layer.dxf.name: layer for layer in document.layers}
    for name in dict.fromkeys([*layers, *entities]):  # a layer may be in no table
        cover, index = (name in layers and layers[name].has_xdata(app) for app in ("TVO_RZ_CAPA", "TVO_RZ_INDICE"))
        if name in ("0", "RZ_FREEZE") or name.endswith(ENDINGS) or not (name in entities or cover or index):
            continue
        pages[name] = (*entities.get(name, (0, 0)), cover, index)
    return pages


class Base(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm páginas ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def made(self, script, drawing="--new"):
        """The drawing that a script makes."""
        with open(self.path("script.scr"), "w", encoding="utf-8") as file:
            file.write(script)
        run = support.Run("run", drawing, self.path("script.scr"), "--save", self.path("made.dxf"))
        self.assertEqual((run.code, run.errors), (0, ""), run.output.decode())
        return self.path("made.dxf")

    def listing(self, drawing, *options):
        run = support.Run("pages", drawing, "--json", *options)
        self.assertEqual((run.code, run.errors), (0, ""))
        self.assertEqual(run.output.count(b"\n"), 1)
        return json.loads(run.output.decode("utf-8"))

    def names(self, drawing):
        return [page["name"] for page in self.listing(drawing)["pages"]]


class Sample(Base):
    def test_tells_what_the_project_keeps_of_itself(self):
        listing = self.listing(support.SAMPLE)
        self.assertEqual(list(listing), KEYS)
        self.assertEqual({key: listing[key] for key in KEYS[:6]},
                         {"numbering": 1, "order": 1, "version": "26.8.17", "configuration": "motor-starter.cfg",
                          "panels": [{"code": 1000, "value": text} for text in
                                     ("QCM", "Quadro de comando do motor", "CAMPO", "Instalação em campo")],
                          "carrier": True})
        self.assertEqual(listing["groups"], [{"name": "MOTOR", "order": 1}, {"name": "BORNES", "order": 2},
                                             {"name": "PAINEL", "order": 1}])

    def test_lists_the_pages_in_table_order_with_what_belongs_to_them(self):
        pages = self.listing(support.SAMPLE)["pages"]
        self.assertEqual([page["name"] for page in pages], ["CAPA", "INDICE", "P03", "P04", "P05", "P06", "P07"])
        self.assertEqual([page["number"] for page in pages], list("1234567"))
        self.assertEqual([page["cover"] for page in pages], [True] + [False] * 6)
        self.assertEqual([page["index"] for page in pages], [False, True] + [False] * 5)
        for page in pages:
            self.assertEqual(list(page), PAGE_KEYS)
            self.assertEqual(page["head"], page["name"])
            self.assertIsNone(page["description"])
            endings = ENDINGS if page["name"].startswith("P") else ENDINGS[:2]
            self.assertEqual(page["companions"], [page["name"] + ending for ending in endings])

    def test_counts_what_an_independent_reader_counts(self):
        pages = {page["name"]: tuple(page[key] for key in ("references", "polylines", "cover", "index"))
                 for page in self.listing(support.SAMPLE)["pages"]}
        self.assertEqual(pages, expected_pages(judge_ezdxf.read(support.SAMPLE)))
        self.assertGreater(sum(page[0] for page in pages.values()), 50)
        self.assertGreater(sum(page[1] for page in pages.values()), 50)

    def test_descriptions_come_from_the_stamp(self):
        pages = self.listing(support.SAMPLE, "--stamp", "SELO_A3", "--tag", "DESCRICAO", "--on-stamp-layer")["pages"]
        self.assertEqual([page["description"] for page in pages][:3], ["", "", "Circuito de força"])
        self.assertEqual(pages[6]["description"], "Panel layout")
        pages = self.listing(support.SAMPLE, "--stamp", "SELO_A3", "--tag", "NO TAG")["pages"]
        self.assertEqual({page["description"] for page in pages}, {""})

    def test_plain_output_names_what_it_lists(self):
        run = support.Run("pages", support.SAMPLE, "--stamp", "SELO_A3", "--tag", "DESCRICAO", "--on-stamp-layer")
        self.assertEqual((run.code, run.errors), (0, ""))
        lines = run.output.decode("utf-8").split("\n")
        self.assertEqual(lines[:9], [
            "numbering: 1", "order of groups: 1", 'order of pages: 1 in group "MOTOR"',
            'order of pages: 2 in group "BORNES"', 'order of pages: 1 in group "PAINEL"', "version: 26.8.17",
            "configuration file: motor-starter.cfg",
            "panels: QCM, Quadro de comando do motor, CAMPO, Instalação em campo", "settings carrier: yes"])
        self.assertEqual(lines[9], "pages: 7")
        self.assertRegex(lines[10], r"^    1  CAPA  \[cover\]  \d+ references?, \d+ polylines?"
                                    r"  with CAPA\$DE CAPA\$FORMATO$")
        self.assertRegex(lines[12], r'^    3  P03  "Circuito de força"  \d+ references, \d+ polylines  with P03\$DE '
                                    r"P03\$FORMATO P03\$SELO$")

    def test_nothing_depends_on_the_machine(self):
        listings = {support.Run("pages", support.SAMPLE, "--json", environment={"LC_ALL": locale, "TZ": zone}).output
                    for locale, zone in (("C", "UTC"), ("pt_BR.UTF-8", "Asia/Tokyo"), ("de_DE.UTF-8", "Etc/GMT+9"))}
        self.assertEqual(len(listings), 1)


class SharedDrawings(Base):
    def test_have_the_pages_that_an_independent_reader_finds(self):
        compared = 0
        for path in support.shared_drawings():
            document = judge_ezdxf.read(path)
            run = support.Run("pages", path, "--json")
            if run.code == 3 or document is None:
                continue
            with self.subTest(os.path.basename(path)):
                self.assertEqual((run.code, run.errors), (0, ""))
                pages = {page["name"]: tuple(page[key] for key in ("references", "polylines", "cover", "index"))
                         for page in json.loads(run.output.decode("utf-8"))["pages"]}
                self.assertEqual(pages, expected_pages(document))
                compared += 1
        if compared:
            print("%d shared drawings compared" % compared, flush=True)


class Rule(Base):
    def test_an_empty_drawing_has_none(self):
        self.assertEqual(self.listing(self.made("(princ)\n")),
                         {"numbering": 0, "order": 2, "version": "", "configuration": "", "panels": None,
                          "carrier": False, "groups": [], "pages": []})

    def test_a_page_carries_an_entity_or_a_mark(self):
        drawing = self.made('_LAYER N "EMPTY,A,B,C,D,RZ_FREEZE" \n_LMINDEX B\n_LMCOVER D\n'
                            '(entmake \'((0 . "CIRCLE") (8 . "C") (10 0.0 0.0 0.0) (40 . 1.0)))\n'
                            '(entmake \'((0 . "CIRCLE") (8 . "RZ_FREEZE") (10 0.0 0.0 0.0) (40 . 1.0)))\n'
                            '(entmake \'((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))\n')
        listing = self.listing(drawing)
        self.assertEqual([page["name"] for page in listing["pages"]], ["B", "C", "D"])
        self.assertFalse(listing["carrier"], "a circle carries nothing")

    def test_an_erased_entity_does_not_count(self):
        drawing = self.made('(entmake \'((0 . "CIRCLE") (8 . "C") (10 0.0 0.0 0.0) (40 . 1.0)))\n_ERASE L \n')
        self.assertEqual(self.names(drawing), [])

    def test_names_decide_with_regard_to_case(self):
        names = ("A$DE", "A$FORMATO", "A$SELO", "C$de", "A$B", "PEDESTAL", "SELO", "$DE", "rz_freeze", "$")
        drawing = self.made("".join('(entmake \'((0 . "LWPOLYLINE") (8 . "%s") (90 . 2) (10 0 0) (10 1 1)))\n' % name
                                    for name in names))
        pages = self.listing(drawing)["pages"]
        self.assertEqual([page["name"] for page in pages], ["C$de", "A$B", "PEDESTAL", "SELO", "rz_freeze", "$"])
        self.assertEqual([page["head"] for page in pages], ["C", "A", "PEDESTAL", "SELO", "rz_freeze", ""])
        self.assertEqual([page["companions"] for page in pages],
                         [[], ["A$DE", "A$FORMATO", "A$SELO"], [], [], [], ["$DE"]])
        self.assertEqual({page["polylines"] for page in pages}, {1})

    def test_numbers_go_by_the_place_in_the_list(self):
        drawing = self.made("".join("_LMPAGE P%d \n_LMCOVER P%d\n" % (number, number) for number in range(1, 13)))
        self.assertEqual([page["number"] for page in self.listing(drawing)["pages"]],
                         [str(number) for number in range(1, 13)])

    def test_groups_need_a_value_and_panels_none(self):
        carrier = ('(entmake \'((0 . "POINT") (8 . "RZ_FREEZE") (10 0.0 0.0 0.0) (-3 ("RZ_ORDEM_PAG_B" (1000 . "7"))'
                   ' ("RZ_ORDEM_PAG_" (1000 . "x")) ("OTHER" (1000 . "1")) ("RZ_ORDEM_PAG_=A1" (1070 . 3)))))\n')
        later = carrier.replace('"7"', '"9"').replace('"OTHER"', '"RZ_ORDEM_PAG_C"')
        drawing = self.made('(regapp "RZ_ORDEM_PAG_B") (regapp "RZ_ORDEM_PAG_") (regapp "OTHER") '
                            '(regapp "RZ_ORDEM_PAG_=A1") (regapp "RZ_ORDEM_PAG_C")\n' + carrier + later)
        listing = self.listing(drawing)
        self.assertEqual(listing["groups"], [{"name": "B", "order": 7}, {"name": "", "order": 0},
                                             {"name": "=A1", "order": 3}, {"name": "C", "order": 1}])
        self.assertEqual((listing["carrier"], listing["panels"], listing["pages"]), (True, None, []))

    def test_a_point_on_another_layer_carries_nothing(self):
        drawing = self.made('(regapp "RZ_ORDEM_PAG_B")\n' + "".join(
            '(entmake \'((0 . "POINT") (8 . "%s") (10 0.0 0.0 0.0) (-3 ("RZ_ORDEM_PAG_B" (1000 . "7")))))\n' % layer
            for layer in ("0", "rz_freeze", "P1")))
        listing = self.listing(drawing)
        self.assertEqual((listing["carrier"], listing["groups"]), (False, []))

    def test_an_id_without_a_value_is_no_group(self):
        drawing = self.made('(regapp "RZ_ORDEM_PAG_B") (regapp "RZ_ORDEM_PAG_LONE") (regapp "RZ_ORDEM_PAG_LAST")\n'
                            '(entmake \'((0 . "POINT") (8 . "RZ_FREEZE") (10 0.0 0.0 0.0) '
                            '(-3 ("RZ_ORDEM_PAG_B" (1000 . "7")))))\n')
        with open(drawing, encoding="utf-8", newline="") as file:
            text = file.read()
        chain = re.search(r"1001\r?\nRZ_ORDEM_PAG_B(\r?\n)1000\r?\n7\r?\n", text)
        lone = [chain.group(1).join(("1001", "RZ_ORDEM_PAG_" + name, "")) for name in ("LONE", "LAST")]
        with open(drawing, "w", encoding="utf-8", newline="") as file:
            file.write(text.replace(chain.group(0), lone[0] + chain.group(0) + lone[1]))
        self.assertEqual(self.listing(drawing)["groups"], [{"name": "B", "order": 7}])

    def test_panels_keep_their_kinds(self):
        drawing = self.made('(regapp "TVO_RZ_PAINEL")\n(entmake \'((0 . "POINT") (8 . "RZ_FREEZE") (10 0.0 0.0 0.0) '
                            '(-3 ("TVO_RZ_PAINEL" (1000 . "Q1") (1070 . 2) (1040 . 0.5) (1010 1.0 2.0 3.0)))))\n')
        self.assertEqual(self.listing(drawing)["panels"],
                         [{"code": 1000, "value": "Q1"}, {"code": 1070, "value": 2}, {"code": 1040, "value": 0.5},
                          {"code": 1010, "value": [1, 2, 3]}])

    def test_the_stamp_stands_on_the_page_or_on_its_layer_for_it(self):
        def stamp(layer, text, name="SELO"):
            return ('(entmake \'((0 . "INSERT") (8 . "%s") (2 . "%s") (66 . 1) (10 0.0 0.0 0.0)))\n'
                    '(entmake \'((0 . "ATTRIB") (8 . "%s") (10 0.0 0.0 0.0) (40 . 1.0) (1 . "%s") (2 . "DESC")))\n'
                    '(entmake \'((0 . "SEQEND")))\n' % (layer, name, layer, text))

        def block(name):
            return ('(entmake \'((0 . "BLOCK") (2 . "%s") (10 0.0 0.0 0.0) (70 . 2)))\n'
                    '(entmake \'((0 . "LINE") (8 . "0") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))\n'
                    '(entmake \'((0 . "ENDBLK")))\n' % name)
        drawing = self.made("".join(map(block, ("SELO", "SELO_C", "SELO_I"))) + stamp("P1$SELO", "second") +
                            stamp("P1", "first") + stamp("P2", "cover", "SELO_C") + stamp("P3", "index", "SELO_I") +
                            stamp("P4$SELO", "of the layer") + stamp("P4", "", "SELO_C"))
        pages = self.listing(drawing, "--stamp", "SELO", "--tag", "desc")["pages"]
        self.assertEqual([(page["name"], page["description"]) for page in pages],
                         [("P1", "first"), ("P2", "cover"), ("P3", "index"), ("P4", "")])
        pages = self.listing(drawing, "--stamp", "SELO", "--tag", "desc", "--on-stamp-layer")["pages"]
        self.assertEqual([page["description"] for page in pages], ["second", "", "", "of the layer"])


class Size(Base):
    def test_many_pages_and_references_take_one_walk(self):
        pages, references = 1000, 100000
        lines = ["0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1027\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n2\n"
                 "B\n70\n0\n10\n0\n20\n0\n30\n0\n0\nENDBLK\n8\n0\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n"]
        lines += ["0\nINSERT\n8\nP%d\n2\nB\n10\n%d\n20\n0\n30\n0\n" % (number % pages, number)
                  for number in range(references)]
        with open(self.path("large.dxf"), "w", encoding="ascii") as file:
            file.write("".join(lines) + "0\nENDSEC\n0\nEOF\n")
        opening = support.Run("eval", self.path("large.dxf"), "1")
        run = support.Run("pages", self.path("large.dxf"), "--json", "--stamp", "NONE", "--tag", "NONE")
        listed = json.loads(run.output)["pages"]
        self.assertEqual({page["references"] for page in listed}, {references // pages})
        self.assertEqual(len(listed), pages)
        # A walk for each page would take minutes.
        self.assertLess(run.seconds, opening.seconds + 15)


class Usage(Base):
    def test_wrong_usage_ends_with_2(self):
        for options in (("--stamp",), ("--tag",), ("--stamp", "A"), ("--tag", "A"), ("--json", "--name", "A"),
                        ("--nonsense",), ("more",), ("--on-stamp-layer",)):
            with self.subTest(options):
                run = support.Run("pages", support.SAMPLE, *options)
                self.assertEqual((run.code, run.output, len(run.error_lines)), (2, b"", 1))
        self.assertEqual(support.Run("pages").code, 2)

    def test_options_may_stand_before_the_file(self):
        behind = support.Run("pages", support.SAMPLE, "--json", "--stamp", "SELO_A3", "--tag", "GRUPO")
        before = support.Run("pages", "--stamp", "SELO_A3", "--json", "--tag", "GRUPO", support.SAMPLE)
        self.assertEqual((before.code, before.output), (0, behind.output))

    def test_bad_input_and_a_full_disk_end_as_for_all_commands(self):
        missing = self.path("none.dxf")
        support.check_refusal(self, support.Run("pages", missing), missing)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([*support.program(), "pages", support.SAMPLE], stdout=full, stderr=subprocess.PIPE,
                                  timeout=60, check=False)
        self.assertEqual(done.returncode, 4)
        self.assertEqual(done.stderr.count(b"\n"), 1)

    def test_the_help_tells_what_a_page_is(self):
        text = support.Run("help").output.decode()
        for part in ("pages FILE", "--stamp BLOCK --tag TAG", "--on-stamp-layer", '"RZ_FREEZE"', '"$FORMATO"', "an entity or a mark"):
            self.assertIn(part, text)
        self.assertLessEqual(max(map(len, text.split("\n"))), 110)

    def test_the_file_stays_as_it_is(self):
        copy = self.path("cópia.dxf")
        shutil.copy(support.SAMPLE, copy)
        self.listing(copy)
        with open(copy, "rb") as one, open(support.SAMPLE, "rb") as other:
            self.assertEqual(one.read(), other.read())


if __name__ == "__main__":
    unittest.main()
