#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares what the module shows to other modules with the list in exports.txt.

    exports_test.py MODULE exports.txt           compare; exit code 1 with the differences
    exports_test.py MODULE exports.txt --write   write the list anew

A line is the qualified name of a class member or function and the number of its overloads; a virtual table or the
type information of a class has a line of its own. Nothing of the inside may be visible: no name of the namespace std,
none of lm but the name constants and the base of RZString, no module class, and no C name but the loader's two.
"""
import collections
import re
import subprocess
import sys

LOADER_EXPORTS = {"odrxCreateModuleObject", "odrxGetAPIVersion"}
INTERNAL = re.compile(r"\b(lm::(?!names::\w+$|text::TextStore::)|std::|__gnu_cxx::)"
                      r"|CLMCommonMFCModule|OdRxWin32Module|OdStaticRxObject")


def symbols(module):
    """(linker's name, readable name) of each symbol that the module defines for others."""
    def listed(*options):
        done = subprocess.run(["nm", "-D", "--defined-only", "--format=posix", *options, module],
                              check=True, capture_output=True, text=True)
        return done.stdout.splitlines()
    # A sanitizer adds marks of its own to each variable.
    raw = [name for name in (line.split(" ")[0] for line in listed()) if not name.startswith("__odr_asan")]
    readable = subprocess.run(["c++filt"], input="\n".join(raw), check=True, capture_output=True, text=True)
    return list(zip(raw, readable.stdout.splitlines()))


def without_parameters(name):
    """Cuts "(...) const" from the end; "operator()" keeps its own parentheses."""
    name = name.replace("[abi:cxx11]", "")
    if not name.endswith((")", ") const")):
        return name
    depth = 0
    for at in range(name.rindex(")"), -1, -1):
        depth += {")": 1, "(": -1}.get(name[at], 0)
        if depth == 0:
            return name[:at]
    return name


def families(found):
    overloads = collections.defaultdict(set)
    for _, readable in found:
        overloads[without_parameters(readable)].add(readable)
    return [f"{name} {len(names)}" for name, names in sorted(overloads.items())]


def internal(found):
    bad = []
    for raw, readable in found:
        # A global variable has its plain name too, but the library's are all in capitals.
        c_name = raw == readable and not re.fullmatch(r"[A-Z0-9_]+", raw) and raw not in LOADER_EXPORTS
        if c_name or INTERNAL.search(without_parameters(readable)):
            bad.append(readable)
    return bad


def main():
    module, list_file = sys.argv[1:3]
    found = symbols(module)
    lines = families(found)
    if "--write" in sys.argv[3:]:
        with open(list_file, "w", encoding="utf-8") as out:
            out.write("\n".join(lines) + "\n")
        return 0
    with open(list_file, encoding="utf-8") as source:
        wanted = source.read().splitlines()
    failed = False
    for line in sorted(set(wanted) - set(lines)):
        print("listed, but not exported:", line)
        failed = True
    for line in sorted(set(lines) - set(wanted)):
        print("exported, but not listed:", line)
        failed = True
    for name in internal(found):
        print("must not be exported:", name)
        failed = True
    missing = LOADER_EXPORTS - {raw for raw, _ in found}
    for name in sorted(missing):
        print("missing:", name)
        failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
