# SPDX-License-Identifier: MIT
"""The header checker on a small tree: a header that leans on its includer's includes is refused."""
import json
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CHECKER = os.path.join(ROOT, "tools", "check_headers.py")
TABLE = "system | platform/system/ |\nlonely | platform/lonely/ |\n"


class CheckHeaders(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory(prefix="cabeçalho só ") as root:
            files = {**files, "cmake/layers.txt": TABLE, "platform/system/src/a.cpp": ""}
            for path, text in files.items():
                full = os.path.join(root, path)
                os.makedirs(os.path.dirname(full), exist_ok=True)
                with open(full, "w", encoding="utf-8") as file:
                    file.write(text)
            words = ["ccache", "c++", "-std=c++20", "-DNAME=1", "-I",
                     os.path.join(root, "platform/system/include"),
                     "-o", "a.o", "-c", os.path.join(root, "platform/system/src/a.cpp")]
            commands = os.path.join(root, "compile_commands.json")
            with open(commands, "w", encoding="utf-8") as file:
                json.dump([{"directory": root, "arguments": words, "file": words[-1]}], file)
            result = subprocess.run([sys.executable, CHECKER, root, commands], capture_output=True, text=True,
                                    check=False)
            return result.returncode, result.stdout + result.stderr

    def test_accepts_headers_that_stand_alone(self):
        code, output = self.check({
            "platform/system/include/system/a.h":
            "#pragma once\n#include <string>\nstruct A { std::string s; };\n",
            "platform/system/include/system/b.h":
            '#pragma once\n#include "system/a.h"\nA make(int n = NAME);\n'})
        self.assertEqual(code, 0, output)
        self.assertIn("2 headers, 0 failures", output)

    def test_refuses_a_header_that_needs_another_before_it(self):
        code, output = self.check({
            "platform/system/include/system/a.h": "#pragma once\nstd::string name();\n"})
        self.assertEqual(code, 1)
        self.assertIn("platform/system/include/system/a.h doesn't compile alone", output)

    def test_refuses_a_header_without_a_guard(self):
        code, output = self.check({"platform/system/include/system/a.h": "struct A {};\n"})
        self.assertEqual(code, 1)
        self.assertIn("redefinition", output)

    def test_private_headers_are_not_asked(self):
        code, output = self.check({"platform/system/src/inner.h": "struct A { std::string s; };\n"})
        self.assertEqual(code, 0, output)

    def test_says_when_flags_are_unknown(self):
        code, output = self.check({"platform/lonely/include/lonely/a.h": "#pragma once\n"})
        self.assertEqual(code, 1)
        self.assertIn("flags aren't known", output)


if __name__ == "__main__":
    unittest.main()
