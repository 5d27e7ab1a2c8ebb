#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compiles every public header alone, and twice in one source, with the flags of the library it belongs to.

    check_headers.py ROOT COMPILE_COMMANDS [HEADER...]

The flags come from compile_commands.json of a configured build. Prints the compiler's words for each header
that fails, and ends with 1 if one does. Headers can be named; all public ones are tried otherwise.
"""
import concurrent.futures
import json
import os
import shlex
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from check_layers import Layers, is_public, source_files  # noqa: E402

COMPILER_CACHES = ("ccache", "sccache")


def flags_of(command):
    """Compiler and flags of one entry, without source, output and dependency files."""
    words = command.get("arguments") or shlex.split(command["command"])
    if os.path.basename(words[0]) in COMPILER_CACHES:
        words = words[1:]
    kept, skip = [], False
    for word in words:
        if skip:
            skip = False
        elif word in ("-o", "-MF", "-MT", "-MQ"):
            skip = True
        elif word in ("-c", "-MD", "-MMD") or word == command["file"] or word.endswith(".cpp"):
            continue
        else:
            kept.append(word)
    return kept


def flags_by_layer(root, commands, layers):
    """Layer to (folder, flags), taken from the first source of each layer."""
    found = {}
    for command in commands:
        path = os.path.relpath(os.path.join(command["directory"], command["file"]), root).replace(os.sep, "/")
        layer = None if path.startswith("..") else layers.layer_of(path)
        if layer and layer not in found:
            found[layer] = (command["directory"], flags_of(command))
    return found


def choose(layer, known, layers):
    """The flags for a layer; one without sources borrows those of a layer that uses it."""
    if layer in known:
        return known[layer]
    for other, used in layers.allowed.items():
        if layer in used and other in known:
            return known[other]
    return None


def compile_alone(root, header, folder, flags):
    """The compiler's words when the header doesn't stand on its own, else an empty text."""
    source = '#include "%s"\n' % os.path.join(root, header) * 2
    command = flags + ["-fsyntax-only", "-x", "c++", "-"]
    result = subprocess.run(command, cwd=folder, input=source, capture_output=True, text=True, check=False)
    if result.returncode == 0:
        return ""
    return "%s doesn't compile alone:\n%s" % (header, result.stderr)


def main(arguments):
    if len(arguments) < 2:
        print("usage: check_headers.py ROOT COMPILE_COMMANDS [HEADER...]", file=sys.stderr)
        return 2
    root = os.path.abspath(arguments[0])
    layers = Layers(os.path.join(root, "cmake", "layers.txt"))
    with open(arguments[1], encoding="utf-8") as file:
        known = flags_by_layer(root, json.load(file), layers)
    headers = arguments[2:] or [path for path in source_files(root) if is_public(path)]
    jobs, failures = [], []
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 2) as pool:
        for header in headers:
            chosen = choose(layers.layer_of(header), known, layers)
            if chosen is None:
                failures.append("%s: no source of its layer is compiled, so its flags aren't known" % header)
            else:
                jobs.append(pool.submit(compile_alone, root, header, *chosen))
        failures += [job.result() for job in jobs if job.result()]
    for failure in failures:
        print(failure)
    print("%d headers, %d failures" % (len(headers), len(failures)))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
