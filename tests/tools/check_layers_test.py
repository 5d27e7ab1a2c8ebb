# SPDX-License-Identifier: MIT
"""The layer checker on small trees: what it lets through and what it refuses."""
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CHECKER = os.path.join(ROOT, "tools", "check_layers.py")

TABLE = """# layer | files | what it may use
system  | platform/system/                 | Qt6::Core
drawing | platform/drawing/                | system
windows | platform/framework/              | Qt6::Widgets
text    | tx/LMCommonMFC/text/             | drawing system
rzid    | tx/LMCommonMFC/text/rzid         | text drawing
cad     | tx/LMCommonMFC/cad/              | text rzid OpenSSL::Crypto
lmhost  | apps/lmhost/                     | installed
"""

TREE = {
    "platform/system/include/system/path.h": "#include <QString>\n#include <vector>\n",
    "platform/system/src/path.cpp": '#include "system/path.h"\n#include "inner.h"\n#include <sys/stat.h>\n',
    "platform/system/src/inner.h": "",
    "platform/drawing/include/drawing/color.h": '#include "system/path.h"\n',
    "platform/framework/src/window.cpp": "#include <QWidget>\n#include <QtCore/QString>\n",
    "tx/LMCommonMFC/text/text.h": '#include "drawing/color.h"\n',
    "tx/LMCommonMFC/text/rzid.h": '#include "text/text.h"\n',
    "tx/LMCommonMFC/cad/cad.h": '#include "text/rzid.h"\n#include <openssl/evp.h>\n',
    "apps/lmhost/main.cpp": (
        '#include "system/path.h"\n#include <LMCommonMFC/cad/cad.h>\n#include <QString>\n'),
    "tests/anything_test.cpp": '#include "cad/cad.h"\n#include "nowhere.h"\n',
}


class CheckLayers(unittest.TestCase):
    def check(self, changes=None, table=TABLE):
        """Exit code and complaints for the small tree with some files changed."""
        with tempfile.TemporaryDirectory(prefix="camadas não ") as root:
            for path, text in {**TREE, **(changes or {}), "cmake/layers.txt": table}.items():
                full = os.path.join(root, path)
                os.makedirs(os.path.dirname(full), exist_ok=True)
                with open(full, "w", encoding="utf-8") as file:
                    file.write(text)
            result = subprocess.run([sys.executable, CHECKER, root], capture_output=True, text=True,
                                    check=False)
            return result.returncode, result.stdout + result.stderr

    def refused(self, path, text, expected):
        code, output = self.check({path: text})
        self.assertEqual(code, 1, output)
        self.assertIn(expected, output)
        self.assertIn("1 complaints", output)

    def test_accepts_what_the_table_lists(self):
        code, output = self.check()
        self.assertEqual(code, 0, output)

    def test_refuses_a_lower_layer_that_includes_a_higher_one(self):
        self.refused("platform/system/src/bad.cpp", '\n#include "drawing/color.h"\n',
                     "bad.cpp:2: layer 'system' includes \"drawing/color.h\" of layer 'drawing'")

    def test_what_a_used_layer_uses_is_not_passed_on(self):
        self.refused("tx/LMCommonMFC/cad/bad.cpp", '#include "drawing/color.h"\n', "of layer 'drawing'")

    def test_the_longest_prefix_decides(self):
        self.refused("tx/LMCommonMFC/text/text.cpp", '#include "text/rzid.h"\n', "of layer 'rzid'")

    def test_a_relative_path_leads_to_the_same_answer(self):
        self.refused("platform/system/src/bad.cpp", '#include "../../drawing/include/drawing/color.h"\n',
                     "of layer 'drawing'")

    def test_angle_brackets_are_no_way_around(self):
        self.refused("platform/system/src/bad.cpp", "# include <drawing/color.h>\n", "of layer 'drawing'")

    def test_refuses_qt_without_its_component(self):
        self.refused("platform/drawing/src/bad.cpp", "#include <QString>\n", "of Qt6::Core")
        self.refused("platform/system/src/bad.cpp", "#include <QtWidgets/QLabel>\n", "of Qt6::Widgets")

    def test_refuses_the_cipher_library_elsewhere(self):
        self.refused("tx/LMCommonMFC/text/bad.cpp", "#include <openssl/evp.h>\n", "of OpenSSL::Crypto")

    def test_refuses_a_test_library_in_the_product(self):
        self.refused("platform/system/src/bad.cpp", "#include <gtest/gtest_prod.h>\n", "of GTest")

    def test_a_program_sees_public_headers_only(self):
        self.refused("apps/lmhost/bad.cpp", '#include "../../platform/system/src/inner.h"\n',
                     "of layer 'system'")

    def test_refuses_a_file_without_a_layer(self):
        self.refused("platform/stray.cpp", "", "platform/stray.cpp: belongs to no layer")

    def test_refuses_an_include_of_nothing(self):
        self.refused("platform/system/src/bad.cpp", '#include "nowhere.h"\n', "isn't in the tree")

    def test_refuses_a_macro_as_a_name(self):
        self.refused("platform/system/src/bad.cpp", "#include NAME\n", "isn't a plain name")

    def test_a_table_with_a_cycle_is_refused(self):
        code, output = self.check(table=TABLE.replace("| Qt6::Core", "| rzid"))
        self.assertEqual(code, 1)
        self.assertIn("cycle: system -> rzid -> text -> drawing -> system", output)

    def test_a_table_that_names_an_unknown_layer_is_refused(self):
        code, output = self.check(table=TABLE.replace("| text drawing", "| text nobody"))
        self.assertEqual(code, 1)
        self.assertIn("'nobody', which has no row", output)

    def test_the_tree_itself_keeps_the_table(self):
        result = subprocess.run([sys.executable, CHECKER, ROOT], capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)


if __name__ == "__main__":
    unittest.main()
