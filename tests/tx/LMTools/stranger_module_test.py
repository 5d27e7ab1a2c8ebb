#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs the build into a temporary folder, moves the tree, builds a stranger's module against it with
find_package, and loads that module with the host's loader. All folders have a space and accented letters.

    stranger_module_test.py CMAKE BUILD_FOLDER COMPILER
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

LIBRARIES = ["libLMSystem.so", "libLMDrawing.so", "libLMFramework.so", "libLMHost.so"]
MODULES = ["LMCommon_26.8_17.tx", "LMCommonMFC_26.8_17.tx"]
HEADERS = ["system/wide.h", "drawing/database.h", "framework/values/cstring.h", "host/hostapi.h",
           "lmcommon/entrypoint.h", "LMCommonMFC/export.h", "LMCommonMFC/arguments.h", "LMCommonMFC/calls.h",
           "LMCommonMFC/text/rzstring.h", "LMCommonMFC/vocabulary/cmensagem.h"]
NOT_INSTALLED = ["LMCommonMFC/log.h", "LMCommonMFC/module_entry.h"]
EXPECTED = """loaded
joined: first+second
pair refused
unloaded
gone
"""


def run(*command, **options):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, **options)
    if done.returncode != 0:
        print(" ".join(str(part) for part in command), "gave", done.returncode)
        print(done.stdout, done.stderr, sep="\n")
        sys.exit(1)
    return done.stdout


def check_tree(prefix, build):
    for path in [f"lib/{name}" for name in LIBRARIES] + [f"lib/tx/{name}" for name in MODULES]:
        assert (prefix / path).is_file(), f"{path} isn't installed"
        dynamic = run("readelf", "-d", prefix / path)
        assert str(build) not in dynamic, f"{path} looks for its libraries in the build folder"
    for path in HEADERS:
        assert (prefix / "include" / path).is_file(), f"header {path} isn't installed"
    for path in NOT_INSTALLED:
        assert not (prefix / "include" / path).exists(), f"header {path} is for the inside"
    for file in (prefix / "lib/cmake/LMCommonMFC").iterdir():
        assert str(build) not in file.read_text(encoding="utf-8"), f"{file.name} names the build folder"


def main():
    cmake, build, compiler = sys.argv[1:4]
    build = pathlib.Path(build).resolve()
    source = pathlib.Path(__file__).parent / "stranger"
    with tempfile.TemporaryDirectory(prefix="instalação do LM ") as installed, \
            tempfile.TemporaryDirectory(prefix="módulo alheio ") as abroad:
        first = pathlib.Path(installed) / "aqui"
        run(cmake, "--install", build, "--prefix", first)
        prefix = first.rename(first.with_name("mudou de lugar"))
        check_tree(prefix, build)
        project = pathlib.Path(abroad) / "fonte"
        shutil.copytree(source, project)
        own_build = pathlib.Path(abroad) / "obra"
        run(cmake, "-S", project, "-B", own_build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
            f"-DCMAKE_CXX_COMPILER={compiler}")
        run(cmake, "--build", own_build)
        output = run(own_build / "loadstranger", own_build, prefix / "lib/tx", cwd=abroad)
        assert output == EXPECTED, f"found:\n{output}\nexpected:\n{EXPECTED}"


if __name__ == "__main__":
    main()
