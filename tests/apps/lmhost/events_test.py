# SPDX-License-Identifier: MIT
"""`run --events`: the recorded stream of typed events, and `_LMREPLAY`, which tells a stream again."""
import json
import os
import shutil
import tempfile
import unittest

import support

MODULE = os.environ.get("LM_SCRIPTED_MODULE") or "the environment variable LM_SCRIPTED_MODULE names it"
KEYS = ["phase", "family", "document", "handle", "block", "layer", "command"]
PLINE = '(entmake \'((0 . "LWPOLYLINE") (8 . "0") (90 . 2) (10 0.0 0.0) (10 1.0 1.0)))\n'
BLOCK = ('(entmake \'((0 . "BLOCK") (2 . "%s") (10 0.0 0.0 0.0) (70 . 0)))\n'
         '(entmake \'((0 . "LINE") (8 . "0") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))\n(entmake \'((0 . "ENDBLK")))\n')
INSERT = '(entmake \'((0 . "INSERT") (8 . "%s") (2 . "%s") (10 0.0 0.0 0.0)))\n'


def told(event):
    """An event as "name block on layer in command @document"; document 1 is left out."""
    line = event["family"] + event["phase"][0].upper() + event["phase"][1:]
    line += " " + event["block"] if event["block"] else ""
    line += " on " + event["layer"] if event["layer"] else ""
    if event["command"]:
        line += (" " if event["family"] == "command" else " in ") + event["command"]
    return line + (" @%d" % event["document"] if (event["document"] or 1) != 1 else "")


class Base(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm eventos é ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return '"%s"' % self.path(name)

    def run_script(self, text, *options, drawing="--new", code=0, environment=None):
        self.write("script.scr", text.encode("utf-8"))
        run = support.Run("run", drawing, self.path("script.scr"), *options, environment=environment)
        self.assertEqual(run.code, code, run.errors)
        return run

    def events(self, text, *options, name="events", **more):
        """The recorded events; the program itself must be able to tell them again."""
        self.last = self.run_script(text, "--events", self.path(name), *options, **more)
        content = self.content(name)
        self.assertTrue(content == b"" or content.endswith(b"\n"))
        events = [json.loads(line) for line in content.decode("utf-8").split("\n")[:-1]]
        for event in events:
            self.assertEqual(list(event), KEYS)
        again = self.run_script('_LMREPLAY "%s"\n' % self.path(name)).output.decode("utf-8")
        self.assertEqual(again.count("\n"), len(events) + 1)
        self.assertTrue(again.endswith("%d event%s\n" % (len(events), "" if len(events) == 1 else "s")))
        return events

    def told(self, text, *options, **more):
        lines = [told(event) for event in self.events(text, *options, **more)]
        self.assertEqual(lines[0], "cargaInicial")
        return lines[1:]


class Recording(Base):
    def test_of_a_script_without_deeds_shows_the_drawing_alone(self):
        self.assertEqual(self.events("(princ)\n"),
                         [{"phase": "inicial", "family": "carga", "document": 1, "handle": None, "block": None,
                           "layer": None, "command": None}])

    def test_is_one_object_a_line_with_all_there_is_to_say(self):
        events = self.events(BLOCK % "NAF-01" + INSERT % ("P01", "NAF-01") + "_ERASE L \n")
        erased = [event for event in events if event["phase"] == "erased"]
        handle = erased[0]["handle"]
        self.assertRegex(handle, "^[0-9A-F]+$")
        self.assertEqual(erased, [{"phase": "erased", "family": family, "document": 1, "handle": handle,
                                   "block": "NAF-01", "layer": "P01", "command": "_ERASE"}
                                  for family in ("block", "cto")])

    def test_families_and_their_order(self):
        for name, family in (("NAF-01", "cto"), ("INS-A", "ins"), ("RELE_X", "conta"), ("CONTATOR", "conta"),
                             ("BLK_CTR_GRADE_1", "grade"), ("MOTOR", None)):
            with self.subTest(name):
                lines = self.told(BLOCK % name + INSERT % ("0", name))
                expected = ["blockAppended"] + ([family + "Appended"] if family else []) + ["entityAppended"]
                self.assertEqual(lines[-len(expected):], ["%s %s on 0" % (event, name) for event in expected])

    def test_a_copy_an_erasing_and_their_undo(self):
        self.assertEqual(self.told(PLINE + "_COPY L  0,0 5,0 \n_ERASE L \n_U\n_U\n"), [
            "plineAppended on 0", "entityAppended on 0",
            "commandWillStart _COPY", "plineAppended on 0 in _COPY", "entityAppended on 0 in _COPY",
            "transactionEndedBegin in _COPY", "transactionEndedEnd in _COPY", "commandEnded _COPY",
            "transactionEndedBegin", "transactionEndedEnd",
            "commandWillStart _ERASE", "plineErased on 0 in _ERASE", "transactionEndedBegin in _ERASE",
            "transactionEndedEnd in _ERASE", "commandEnded _ERASE",
            "commandWillStart _U", "plineAppended on 0 in _U", "entityAppended on 0 in _U", "commandEnded _U",
            "commandWillStart _U", "commandEnded _U"])

    def test_nested_commands_name_the_innermost(self):
        lines = self.told('(defun c:outer () (command "_ERASE" (entlast) "") (command "_LMPAGE" "P1" ""))\n' + PLINE +
                          "outer\n")
        start = lines.index("commandWillStart _ERASE")
        self.assertIn("plineErased on 0 in _ERASE", lines[start:])
        page = lines.index("commandWillStart _LMPAGE")
        self.assertEqual(lines[page + 1:page + 3],
                         ["layerAppended on P1 in _LMPAGE", "entityAppended on P1 in _LMPAGE"])
        self.assertEqual([line for line in lines if line.startswith("commandEnded")],
                         [line.replace("WillStart", "Ended") for line in lines if "WillStart" in line][-2:])

    def test_cancelled_and_failed_commands(self):
        lines = self.told(PLINE + "_LMCANCEL\n_ERASE L NOTHING\n_LMSHOWPAGE P9\n", "--module", MODULE, code=5)
        self.assertEqual(lines[2:], ["commandWillStart _LMCANCEL", "commandCancelled _LMCANCEL",
                                     "commandWillStart _ERASE", "commandFailed _ERASE",
                                     "commandWillStart _LMSHOWPAGE", "commandFailed _LMSHOWPAGE"])

    def test_what_a_failed_command_did_is_told_with_its_return(self):
        lines = self.told("_LMPAGE P1 \n_LMSHOWPAGE P1 \n_LMDELETEPAGE P1\n_LMPAGE \"A|B\"\n", code=5)
        self.assertEqual(lines[-2:], ["commandWillStart _LMPAGE", "commandFailed _LMPAGE"])
        self.assertIn("layerErased on P1 in _LMDELETEPAGE", lines)

    def test_several_drawings_by_their_numbers(self):
        lines = self.told("_NEW\n" + PLINE + "_CLOSE\n" + PLINE + '_OPEN "%s"\n' % support.SAMPLE + PLINE)
        self.assertIn("cargaInicial in _NEW @2", lines)
        drawn = [line for line in lines if line.startswith("plineAppended")]
        self.assertEqual(drawn, ["plineAppended on 0 @2", "plineAppended on 0", "plineAppended on 0 @3"])
        self.assertIn("cargaInicial @3", [line.replace(" in _OPEN", "") for line in lines])
        ended = [line for line in lines if line.startswith("command")]
        self.assertNotIn("commandWillStart _OPEN", [line.split(" @")[0] for line in ended], "it is never tracked")

    def test_a_script_that_closes_everything_is_recorded_to_its_end(self):
        lines = self.told(PLINE + "_QUIT\n" + PLINE)
        self.assertEqual(lines[:2], ["plineAppended on 0", "entityAppended on 0"])
        self.assertEqual(len([line for line in lines if line.startswith("pline")]), 1)

    def test_a_drawing_that_is_no_project_tells_of_objects_alone(self):
        lines = self.told('(setq *IS_NOT_RZ_PROJECT* T)\n' + PLINE + "_ERASE L \n")
        self.assertEqual(lines, ["plineAppended on 0", "entityAppended on 0", "plineErased on 0"])

    def test_is_the_same_on_every_machine(self):
        contents = set()
        for locale, zone in (("C", "UTC"), ("pt_BR.UTF-8", "Asia/Tokyo"), ("de_DE.UTF-8", "Etc/GMT+9")):
            self.events(BLOCK % "NAÇÃO" + INSERT % ("P01", "NAÇÃO") + "_LMNUMBERING 1\n_COPY L  0,0 5,5 \n_UNDO 2\n",
                        environment={"LC_ALL": locale, "TZ": zone})
            contents.add(self.content("events"))
        self.assertEqual(len(contents), 1)
        self.assertIn("NAÇÃO".encode(), contents.pop())


class Drawings(Base):
    def test_the_sample_is_redefined_and_taken_back(self):
        folder = os.path.join(support.ROOT, "examples", "motor-starter", "symbols")
        events = self.events('_LMREDEFINE "%s" LAMP\n_U\n_LMDELETEPAGE P04\n_U\n' % os.path.join(folder, "LAMP.dxf"),
                             drawing=support.SAMPLE)
        lines = [told(event) for event in events]
        lamps = sum(block["name"] == "LAMP"
                    for block in json.loads(support.Run("blocks", support.SAMPLE, "--json").output))
        self.assertGreater(lamps, 0)
        modified = [event for event in events if (event["family"], event["phase"]) == ("block", "modified")]
        self.assertEqual([(event["block"], event["command"]) for event in modified], [("LAMP", "_LMREDEFINE")] * lamps)
        erased = [event["handle"] for event in events
                  if event["family"] == "block" and event["phase"] == "erased" and event["layer"] == "P04"]
        back = [event["handle"] for event in events if event["family"] == "block" and event["phase"] == "appended" and
                event["layer"] == "P04" and event["command"] == "_U"]
        self.assertGreater(len(erased), 5)
        self.assertEqual(sorted(back), sorted(erased), "undo brings each of them back")
        self.assertIn("layerErased on P04 in _LMDELETEPAGE", lines)

    def test_everything_in_shared_drawings_is_erased_and_comes_back(self):
        for path in support.shared_drawings():
            info = support.Run("info", path, "--json")
            if info.code != 0:
                continue
            with self.subTest(os.path.basename(path)):
                events = self.events("_LAYER U * \n_ERASE ALL \n_U\n", drawing=path)
                pick = lambda family, phase, command: [  # noqa: E731
                    event["handle"] for event in events
                    if (event["family"], event["phase"], event["command"]) == (family, phase, command)]
                for family in ("block", "pline"):
                    erased = pick(family, "erased", "_ERASE")
                    self.assertEqual(sorted(pick(family, "appended", "_U")), sorted(erased), family)
                references = json.loads(info.output.decode("utf-8"))["modelspace"].get("INSERT", 0)
                self.assertEqual(len(pick("block", "erased", "_ERASE")), references)


class Outputs(Base):
    def test_what_cannot_be_written_ends_with_4(self):
        for out in ("/dev/full", os.path.join(self.path("no folder"), "events"), self.folder):
            with self.subTest(out):
                run = self.run_script(PLINE, "--events", out, code=4)
                self.assertEqual(len(run.error_lines), 1, run.errors)
                self.assertIn(out, run.error_lines[0])

    def test_a_disk_that_fills_up_in_between_ends_with_4(self):
        run = self.run_script("(repeat 9000 (entmake '((0 . \"POINT\") (10 0.0 0.0 0.0))))\n", "--events", "/dev/full",
                              code=4)
        self.assertEqual(len(run.error_lines), 1)

    def test_events_are_written_for_failed_scripts_too(self):
        self.assertEqual(self.told(PLINE + "(car 5)\n", code=5), ["plineAppended on 0", "entityAppended on 0"])


class Replay(Base):
    def test_tells_each_event_in_words(self):
        self.events(BLOCK % "NAF-01" + INSERT % ("P01", "NAF-01") + "_ERASE L \n")
        lines = self.run_script('_LMREPLAY "%s"\n' % self.path("events")).output.decode().split("\n")
        self.assertEqual(lines[0], "cargaInicial  document 1")
        self.assertRegex(lines[-8], r"^commandWillStart _ERASE  document 1$")
        self.assertRegex(lines[-7], r"^blockErased [0-9A-F]+ NAF-01 on P01  in _ERASE  document 1$")
        self.assertEqual(lines[-5:], ["transactionEndedBegin  in _ERASE", "transactionEndedEnd  in _ERASE",
                                      "commandEnded _ERASE  document 1", "%d events" % (len(lines) - 2), ""])

    def test_a_bad_line_is_one_error_with_its_number(self):
        self.events(PLINE)
        lines = self.content("events").split(b"\n")[:-1]
        for bad, why in ((b"", "expected an object"), (b"{}", '"phase" is missing'), (lines[1][:-9], "line 2: "),
                         (lines[1].replace(b"pline", b"plane"), 'unknown family "plane"'), (b"\xff", "expected UTF-8")):
            with self.subTest(bad):
                name = self.write("bad", b"\n".join([lines[0], bad, lines[1]]) + b"\n")
                run = self.run_script("_LMREPLAY %s\n" % name, code=5)
                self.assertEqual(len(run.error_lines), 1)
                self.assertIn("line 2: ", run.error_lines[0])
                self.assertIn(why, run.error_lines[0])
                self.assertEqual(run.output.count(b"\n"), 1, "the line before it was told")

    def test_files_that_cannot_be_read_are_one_error(self):
        for name in ("none", "."):
            run = self.run_script('_LMREPLAY "%s"\n' % self.path(name), code=5)
            self.assertEqual(len(run.error_lines), 1)
            self.assertIn(self.path(name), run.error_lines[0])

    def test_changes_no_drawing(self):
        self.events(PLINE)
        replayed = self.told('_LMREPLAY "%s"\n' % self.path("events"), name="second")
        self.assertEqual(replayed, ["commandWillStart _LMREPLAY", "transactionEndedBegin in _LMREPLAY",
                                    "transactionEndedEnd in _LMREPLAY", "commandEnded _LMREPLAY"])


if __name__ == "__main__":
    unittest.main()
