#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the include lines of the tree with the table of who may use whom.

    check_layers.py [ROOT]

Reads ROOT/cmake/layers.txt. Prints one line for each include that the table doesn't allow, and ends with 1 if
there is one. Tests, benchmarks and fuzzers may include anything.
"""
import os
import re
import sys

EXEMPT = ("tests/", "bench/", "fuzz/", "examples/", "build/")
ENDINGS = (".h", ".h.in", ".c", ".cpp")
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>|(\S+))')

# What may be included along with a component, and the outside headers that belong to one.
IMPLIED = {"Qt6::Widgets": ("Qt6::Gui", "Qt6::Core"), "Qt6::Gui": ("Qt6::Core",), "Qt6::Xml": ("Qt6::Core",)}
OUTSIDE = (("openssl/", "OpenSSL::Crypto"), ("xlsx", "QXlsx::QXlsx"), ("zip.h", "libzip::zip"),
           ("gtest/", "GTest"), ("gmock/", "GTest"), ("benchmark/", "benchmark"))
QT_FOLDERS = ("/usr/include/x86_64-linux-gnu/qt6", "/usr/include/aarch64-linux-gnu/qt6", "/usr/include/qt6")
QT_PARTS = ("Core", "Gui", "Widgets", "Xml", "Network", "Test", "Concurrent", "PrintSupport")
INSTALLED_COMPONENTS = ("Qt6::Core", "Qt6::Xml")  # public headers show its types, so who uses them may too


class TableError(Exception):
    pass


class Layers:
    """The table: layers with their path prefixes and what each may use."""

    def __init__(self, path):
        self.prefixes = []
        self.allowed = {}
        with open(path, encoding="utf-8") as file:
            for number, line in enumerate(file, 1):
                line = line.strip()
                if not line or line.startswith("#"):
                    continue
                cells = [cell.split() for cell in line.split("|")]
                if len(cells) != 3 or len(cells[0]) != 1 or not cells[1]:
                    raise TableError("%s:%d: expected: layer | path prefixes | what it may use"
                                     % (path, number))
                name = cells[0][0]
                if name in self.allowed:
                    raise TableError("%s:%d: layer '%s' stands twice" % (path, number, name))
                self.allowed[name] = cells[2]
                self.prefixes += [(prefix, name) for prefix in cells[1]]
        self.prefixes.sort(key=lambda entry: -len(entry[0]))
        self.check(path)

    def check(self, path):
        """Every name must have a row, and no layer may reach itself."""
        for name, used in self.allowed.items():
            for other in used:
                if "::" not in other and other != "installed" and other not in self.allowed:
                    raise TableError("%s: layer '%s' uses '%s', which has no row" % (path, name, other))
        finished, open_ones = set(), []

        def visit(name):
            if name in open_ones:
                ring = open_ones[open_ones.index(name):] + [name]
                raise TableError("%s: cycle: %s" % (path, " -> ".join(ring)))
            if name in finished or name not in self.allowed:
                return
            open_ones.append(name)
            for other in self.allowed[name]:
                visit(other)
            open_ones.pop()
            finished.add(name)

        for name in self.allowed:
            visit(name)

    def layer_of(self, path):
        """The layer of a file by the longest prefix that fits; None when none does."""
        for prefix, name in self.prefixes:
            if path.startswith(prefix):
                return name
        return None


def source_files(root):
    """All sources and headers below the root, as paths with slashes, but for exempt and hidden folders."""
    found = []
    for folder, folders, files in os.walk(root):
        relative = os.path.relpath(folder, root).replace(os.sep, "/")
        relative = "" if relative == "." else relative + "/"
        folders[:] = sorted(name for name in folders
                            if not name.startswith(".") and not (relative + name + "/").startswith(EXEMPT))
        found += [relative + name for name in sorted(files) if name.endswith(ENDINGS)]
    return found


def is_public(path):
    """Is the header one of those that an installation carries?"""
    if not path.endswith(".h"):
        return False
    return bool(re.match(r"platform/[^/]+/include/", path)) or (
        path.startswith("tx/LMCommonMFC/") and "/src/" not in path)


class Resolver:
    """Turns the text of an include line into a file of the tree, or the name of an outside component."""

    def __init__(self, files):
        self.files = set(files)
        matches = [re.match(r"platform/[^/]+/include/", path) for path in files]
        roots = {match.group(0) for match in matches if match}
        self.roots = sorted(roots) + ["tx/LMCommonMFC/", "tx/", ""]
        self.qt_folders = [folder for folder in QT_FOLDERS if os.path.isdir(folder)]

    def in_tree(self, including, name):
        beside = os.path.normpath(os.path.join(os.path.dirname(including), name)).replace(os.sep, "/")
        own_root = re.match(r"(platform/[^/]+/(?:include|src)/|apps/[^/]+/|tx/[^/]+/)", including)
        candidates = [beside] + ([own_root.group(1) + name] if own_root else [])
        candidates += [root + name for root in self.roots]
        for candidate in candidates:
            # A header may be made from a pattern when configuring.
            for path in (candidate, candidate + ".in"):
                if path in self.files:
                    return path
        return None

    def component(self, name):
        """The outside component that a header belongs to; None for the standard library and the system."""
        for start, component in OUTSIDE:
            if name.startswith(start):
                return component
        match = re.match(r"Qt([A-Z][A-Za-z]*)/", name)
        if match:
            return "Qt6::" + match.group(1)
        if re.match(r"(Q[A-Z]|Qt[A-Z]|q[a-z]+\.h$)", name):
            for folder in self.qt_folders:
                for part in QT_PARTS:
                    if os.path.exists(os.path.join(folder, "Qt" + part, name)):
                        return "Qt6::" + part
            return "Qt6::Core" if name.startswith(("Q", "qt")) else None
        return None


def check_file(root, path, layers, resolver):
    """The complaints about one file, each as one line."""
    layer = layers.layer_of(path)
    if layer is None:
        return ["%s: belongs to no layer of cmake/layers.txt" % path]
    allowed = set(layers.allowed[layer])
    components = {name for name in allowed if "::" in name}
    if "installed" in allowed:
        components.update(INSTALLED_COMPONENTS)
    for name in tuple(components):
        components.update(IMPLIED.get(name, ()))
    complaints = []
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        for number, line in enumerate(file, 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            complaint = check_include(path, layer, allowed, components, layers, resolver, *match.groups())
            if complaint:
                complaints.append("%s:%d: %s" % (path, number, complaint))
    return complaints


def check_include(path, layer, allowed, components, layers, resolver, quoted, angled, other):
    """What is wrong with one include line, or None."""
    if other:
        return "includes '%s', which isn't a plain name" % other
    name = quoted or angled
    target = resolver.in_tree(path, name)
    if target is not None:
        used = layers.layer_of(target)
        if used == layer or used in allowed or ("installed" in allowed and is_public(target)):
            return None
        return "layer '%s' includes \"%s\" of layer '%s'; it may use: %s" % (
            layer, name, used, " ".join(layers.allowed[layer]) or "nothing")
    component = resolver.component(name)
    if component is None:
        return "includes \"%s\", which isn't in the tree" % name if quoted else None
    if component in components:
        return None
    return "layer '%s' includes <%s> of %s; it may use: %s" % (
        layer, name, component, " ".join(layers.allowed[layer]) or "nothing")


def main(arguments):
    root = arguments[0] if arguments else os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    try:
        layers = Layers(os.path.join(root, "cmake", "layers.txt"))
    except (OSError, TableError) as error:
        print(error, file=sys.stderr)
        return 1
    files = source_files(root)
    resolver = Resolver(files)
    complaints = []
    for path in files:
        complaints += check_file(root, path, layers, resolver)
    for complaint in complaints:
        print(complaint)
    print("%d files, %d complaints" % (len(files), len(complaints)))
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
