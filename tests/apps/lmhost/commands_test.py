# SPDX-License-Identifier: MIT
"""The commands of the program on the sample project: options, exit codes, what goes to which output."""
import fnmatch
import json
import unittest

import judge_ezdxf
import support

POWER_TERMINALS, CONTROL_TERMINALS = "BOR-PASSAGEM", "BOR-CONTROL"


class Commands(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.expected = judge_ezdxf.expected_blocks(judge_ezdxf.read(support.SAMPLE))

    def blocks(self, *options):
        run = support.Run("blocks", support.SAMPLE, *options, "--json")
        self.assertEqual((run.code, run.errors), (0, ""))
        return json.loads(run.output.decode("utf-8"))

    def handles(self, *patterns):
        return [block["handle"] for block in self.expected
                if any(fnmatch.fnmatchcase(block["name"], pattern) for pattern in patterns)]

    def test_version_names_itself(self):
        run = support.Run("version")
        self.assertEqual((run.code, run.errors), (0, ""))
        self.assertIn("26.8", run.output.decode())

    def test_info_tells_version_dictionaries_and_extended_data(self):
        run = support.Run("info", support.SAMPLE, "--json")
        info = json.loads(run.output.decode("utf-8"))
        self.assertLessEqual({"RZ_VERSAO", "ESQ_VIRTUAL_RZ"}, set(info["dictionaries"]))
        kinds = {entry["type"]: set() for entry in info["xdata"]}
        for entry in info["xdata"]:
            kinds[entry["type"]].update(entry["apps"])
        self.assertEqual(kinds["LAYER"], {"TVO_RZ_CAPA", "TVO_RZ_INDICE"})
        self.assertEqual(kinds["XRECORD"], {"TVO_RZ_ATT_VIRTUAL"})
        self.assertEqual(kinds["DICTIONARY"], {"RZ_VERSAO"})
        self.assertIn("TVO_RZ_CFG", kinds["POINT"])
        self.assertIn("TVO_RZ_UNIFILAR", kinds["INSERT"])

    def test_blocks_by_name(self):
        for name, patterns in (("BOR-*", ("BOR-*",)), ("LAMP", ("LAMP",)), ("lamp", ()), ("NOTHING*", ()),
                               ("NA?POTENCIA", ("NA?POTENCIA",))):
            with self.subTest(name):
                self.assertEqual([block["handle"] for block in self.blocks("--name", name)],
                                 self.handles(*patterns))

    def test_a_reference_that_two_patterns_fit_is_listed_once(self):
        listed = [block["handle"] for block in self.blocks("--name", "BOR-*;BOR-P*;LAMP")]
        self.assertEqual(listed, self.handles("BOR-*", "LAMP"))

    def test_prompts_come_from_the_definition_unless_left_out(self):
        lamp = self.blocks("--name", "LAMP")[0]
        prompts = {attribute["tag"]: attribute["prompt"] for attribute in lamp["attributes"]}
        self.assertEqual(prompts["TAG"], "Component tag")
        self.assertEqual(prompts["COLOUR"], "Colour")
        bare = self.blocks("--name", "LAMP", "--no-prompts")[0]
        self.assertEqual([attribute.get("prompt", "") for attribute in bare["attributes"]],
                         [""] * len(bare["attributes"]))
        self.assertEqual([attribute["value"] for attribute in bare["attributes"]],
                         [attribute["value"] for attribute in lamp["attributes"]])

    def test_plain_output_names_what_it_lists(self):
        for command, words in (
                ("info", ("P03$SELO", "ESQ_VIRTUAL_RZ")), ("blocks", ("DISJUNTOR_MOTOR", "ETIQUETA")),
                ("components", ("Q1", "K1", "M1", "S0", "H2", "P03", "P04", "Disjuntor-motor 9–14 A"))):
            run = support.Run(command, support.SAMPLE)
            self.assertEqual((run.code, run.errors), (0, ""), command)
            for word in words:
                self.assertIn(word, run.output.decode("utf-8"), command)

    def test_wrong_usage_ends_with_2_and_prints_nothing_else(self):
        for arguments in ((), ("nonsense",), ("info",), ("info", support.SAMPLE, support.SAMPLE),
                          ("blocks", support.SAMPLE, "--nonsense"), ("blocks", support.SAMPLE, "--name")):
            with self.subTest(arguments):
                run = support.Run(*arguments)
                self.assertEqual(run.code, 2)
                self.assertEqual(run.output, b"")
                self.assertNotEqual(run.errors, "")

    def test_the_locale_changes_nothing(self):
        names = ("C", "C.UTF-8", "pt_BR.UTF-8", "de_DE.UTF-8")
        outputs = {support.Run("blocks", support.SAMPLE, "--json", environment={"LC_ALL": name}).output
                   for name in names}
        self.assertEqual(len(outputs), 1)


if __name__ == "__main__":
    unittest.main()
