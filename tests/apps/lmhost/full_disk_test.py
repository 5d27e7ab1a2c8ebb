# SPDX-License-Identifier: MIT
"""Saves that find no room: the exit code is 4, one line says why, and the drawing that stood there still stands.

A disk of its own needs rights that not every machine gives. A limit for the size of files makes the same writes
fail everywhere.
"""
import os
import shutil
import subprocess
import tempfile
import unittest

import support

# The limit is 32 KiB.
LIMITED = 'ulimit -f 64; exec "$@"'

# A disk of 256 KiB over a folder, the drawing on it, and what stands there after the program's end.
ON_DISK = """
disk="$1" drawing="$2"
shift 2
mount -t tmpfs -o size=256k none "$disk" && cp "$drawing" "$disk/a.dxf" || exit 99
"$@"
code=$?
cmp -s "$drawing" "$disk/a.dxf" && [ "$(ls -A "$disk")" = a.dxf ] && exit $code
exit 98
"""
NO_DISK = 99


class Saves(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lm página ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.disk = os.path.join(self.folder, "disk")
        os.mkdir(self.disk)
        self.out = os.path.join(self.disk, "a.dxf")
        self.assertGreater(os.path.getsize(support.SAMPLE), 128 << 10, "two of them are too much for the disk")

    def script(self, text):
        path = os.path.join(self.folder, "s.scr")
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def ways(self):
        """The arguments of each way to write a drawing, and what the error line begins with."""
        lisp = '(command "_SAVEAS" "%s")\n' % self.out
        yield ("convert", support.SAMPLE, self.out), self.out
        yield ("check", support.SAMPLE, "--fix", self.out), self.out
        yield ("eval", support.SAMPLE, "(princ)", "--save", self.out), self.out
        for text, options in (("(princ)\n", ("--save", self.out)), ('_SAVEAS "%s"\n' % self.out, ()), (lisp, ())):
            script = self.script(text)
            lead = self.out if options else script + ":1: " + self.out
            yield ("run", support.SAMPLE, script, *options), lead
        # Over the drawing that is open; what fails behind it changes nothing of the code.
        script = self.script("_LAYER _N P1 \n_QSAVE\n(car 5)\n")
        yield ("run", self.out, script), script + ":2: " + self.out

    def run_in(self, shell, *arguments):
        return subprocess.run([*shell, *support.program(), *arguments], stdin=subprocess.DEVNULL, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)

    def check(self, run, lead, reason):
        lines = run.stderr.decode().split("\n")
        self.assertEqual(run.returncode, 4, lines)
        self.assertEqual(lines[0], "lmhost: %s: can't be saved, writing: %s" % (lead, reason))
        self.assertEqual([line for line in lines[1:] if line and "bad argument type" not in line], [])

    def test_that_meet_a_limit_keep_the_old_file(self):
        for arguments, lead in self.ways():
            with self.subTest(arguments):
                shutil.copyfile(support.SAMPLE, self.out)
                self.check(self.run_in(["sh", "-c", LIMITED, "sh"], *arguments), lead, "File too large")
                with open(self.out, "rb") as now, open(support.SAMPLE, "rb") as before:
                    self.assertEqual(now.read(), before.read())
                self.assertEqual(os.listdir(self.disk), ["a.dxf"])

    def test_on_a_full_disk_keep_the_old_file(self):
        alone = ["unshare", "--mount"] if os.geteuid() == 0 else ["unshare", "--mount", "--map-root-user"]
        for arguments, lead in self.ways():
            with self.subTest(arguments):
                run = self.run_in([*alone, "sh", "-c", ON_DISK, "sh", self.disk, support.SAMPLE], *arguments)
                if run.returncode == NO_DISK or b"unshare" in run.stderr:
                    print("no rights for a disk of its own: only the limit was tried", flush=True)
                    return
                self.check(run, lead, "No space left on device")


if __name__ == "__main__":
    unittest.main()
