# SPDX-License-Identifier: MIT
"""What the scripts that judge the program share: where it stands, how it is run, where drawings are."""
import os
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
SAMPLE = os.path.join(ROOT, "examples", "motor-starter", "motor-starter.dxf")
HERE = os.path.dirname(os.path.abspath(__file__))


def program():
    """The command that runs the program: the environment variable LMHOST, else the release build."""
    path = os.environ.get("LMHOST") or os.path.join(ROOT, "build", "release", "bin", "lmhost")
    return [sys.executable, "-B", path] if path.endswith(".py") else [path]


def shared(*parts):
    """A path in the shared folder beside the tree; the environment variable LM_SHARED names another one."""
    return os.path.join(os.environ.get("LM_SHARED") or os.path.join(os.path.dirname(ROOT), "shared"), *parts)


def shared_drawings():
    """The shared drawings, sorted. Where they are missing a line says so, and there is nothing to compare."""
    folder = shared("drawings")
    if not os.path.isdir(folder):
        print("shared drawings not found: %s" % folder, flush=True)
        return []
    return sorted(os.path.join(folder, name) for name in os.listdir(folder) if name.endswith(".dxf"))


class Run:
    """One run of the program: exit code, both outputs, seconds."""

    def __init__(self, *arguments, timeout=60, during=None, environment=None):
        started = time.monotonic()
        process = subprocess.Popen([*program(), *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, env={**os.environ, **(environment or {})})
        if during:
            during()
        try:
            self.output, errors = process.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            raise AssertionError("no end after %d seconds: %s" % (timeout, " ".join(arguments))) from None
        self.code = process.returncode
        self.errors = errors.decode("utf-8", "replace")
        self.seconds = time.monotonic() - started

    @property
    def error_lines(self):
        return [line for line in self.errors.split("\n") if line.strip()]


def check_refusal(test, run, path, codes=(3,)):
    """The rules for input that can't be read: the code, no standard output, one line with the name."""
    test.assertIn(run.code, codes, run.errors)
    test.assertEqual(run.output, b"")
    test.assertEqual(len(run.error_lines), 1, run.errors)
    test.assertIn(os.path.basename(path.rstrip("/")), run.error_lines[0])


def check_end(test, run, path):
    """A clean end of whatever kind: read (perhaps with defects), or refused by the rules."""
    test.assertIn(run.code, (0, 1, 3), "exit code %d\n%s" % (run.code, run.errors))
    if run.code == 3:
        check_refusal(test, run, path)
