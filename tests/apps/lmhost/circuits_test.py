# SPDX-License-Identifier: MIT
"""Local circuits through the program: one module owns them, another asks for them, and a script drives both."""
import os
import shutil
import tempfile
import unittest
import unittest.mock

import support

DEFINE = '_LMDEFCIRCLOCAL 2 Motor Drive "Hall 2" P1 0,0 10,10\n'


class Circuits(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm circuíto ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def run_script(self, text, *options, drawing="--new"):
        with open(self.path("script.scr"), "w", encoding="utf-8", newline="") as file:
            file.write(text)
        return support.Run("run", drawing, self.path("script.scr"), *options)

    def test_circuits_are_kept_in_the_drawing(self):
        out = self.path("saída.dxf")
        run = self.run_script(DEFINE + "(princ (rzGetCircuitoLocalInfo 2))\n", "--save", out)
        self.assertEqual((run.code, run.errors), (0, ""))
        self.assertEqual(run.output.decode(), "(Motor Drive Hall 2)\n")
        again = support.Run("eval", out, "(rzGetAllCircuitosLocaisInfo)")
        self.assertEqual((again.code, again.output.decode()), (0, '((2 "Motor" "Drive" "Hall 2"))\n'))
        erased = support.Run("eval", out, '(list (rzProcessarRegiaoApagada "P2") (rzProcessarRegiaoApagada "P1") '
                             "(rzGetAllCircuitosLocaisInfo))")
        self.assertEqual(erased.output.decode(), "(nil T nil)\n")

    def test_the_same_script_gives_the_same_bytes(self):
        outputs = []
        for name in ("a.dxf", "b.dxf"):
            self.assertEqual(self.run_script(DEFINE, "--save", self.path(name)).code, 0)
            with open(self.path(name), "rb") as file:
                outputs.append(file.read())
        self.assertEqual(outputs[0], outputs[1])

    def test_a_wrong_number_is_one_line(self):
        run = self.run_script(DEFINE.replace(" 2 ", " 0 ", 1))
        self.assertEqual(run.code, 5)
        self.assertEqual(len(run.error_lines), 1, run.errors)
        self.assertIn("expected 1 to 32767, found 0", run.errors)

    def test_the_program_does_without_the_module(self):
        program = os.environ.get("LMHOST") or ""
        build = os.path.dirname(os.path.dirname(program))
        if not os.path.isdir(os.path.join(build, "tx")):
            self.fail("no modules beside %s" % program)
        for name in ("bin", "tx"):
            os.mkdir(self.path(name))
        shutil.copy2(program, self.path("bin"))
        os.symlink(os.path.join(build, "lib"), self.path("lib"))
        for name in os.listdir(os.path.join(build, "tx")):
            if name.endswith(".tx") and "LMCircuits" not in name:
                os.symlink(os.path.join(build, "tx", name), self.path(os.path.join("tx", name)))
        for rest, expected in (("LMCommonMFC_26.8_17.tx", 0), ("", 5)):
            with unittest.mock.patch.dict(os.environ, {"LMHOST": self.path(os.path.join("bin", "lmhost"))}):
                run = support.Run("version")
            self.assertEqual(run.code, expected, run.errors)
            if rest:
                os.remove(self.path(os.path.join("tx", rest)))
        self.assertIn("LMCommonMFC_26.8_17.tx", run.errors)


if __name__ == "__main__":
    unittest.main()
