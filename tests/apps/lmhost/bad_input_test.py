# SPDX-License-Identifier: MIT
"""Input that can't be read, or hardly: each ends in time, without a signal, with one line that names it."""
import os
import shutil
import socket
import tempfile
import threading
import time
import unittest
import zipfile
import zlib

import support

COMMANDS = ("info", "blocks")
BINARY_MARK = bytes.fromhex("4175746f4341442042696e617279204458460d0a1a00")  # opens a binary drawing


def png():
    """A picture of one pixel."""
    def chunk(kind, data):
        return (len(data).to_bytes(4, "big") + kind + data + zlib.crc32(kind + data).to_bytes(4, "big"))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", b"\0\0\0\1\0\0\0\1\x08\0\0\0\0")
            + chunk(b"IDAT", zlib.compress(b"\0\0")) + chunk(b"IEND", b""))


def groups(*pairs):
    return "".join("%3d\n%s\n" % pair for pair in pairs)


def drawing_of_blocks(blocks, references):
    """A drawing whose blocks hold nothing but references: (name, names of the blocks in it)."""
    out = [groups((0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, "AC1032"), (0, "ENDSEC"),
                  (0, "SECTION"), (2, "BLOCKS"))]
    for name, parts in blocks:
        out.append(groups((0, "BLOCK"), (8, "0"), (2, name), (70, 0), (10, 0), (20, 0), (30, 0), (3, name)))
        out += [groups((0, "INSERT"), (8, "0"), (2, part), (10, 1), (20, 2), (30, 0)) for part in parts]
        out.append(groups((0, "ENDBLK"), (8, "0")))
    out.append(groups((0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES")))
    out += [groups((0, "INSERT"), (8, "0"), (2, name), (10, 1), (20, 2), (30, 0)) for name in references]
    out.append(groups((0, "ENDSEC"), (0, "EOF")))
    return "".join(out).encode()


class BadInput(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with open(support.SAMPLE, "rb") as file:
            cls.sample = file.read().replace(b"\r\n", b"\n")

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lixo não lido ")
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def refused(self, path, timeout=30, commands=COMMANDS):
        for command in commands:
            with self.subTest(command=command, file=os.path.basename(path)):
                support.check_refusal(self, support.Run(command, path, "--json", timeout=timeout), path)

    def ends(self, path, timeout=30, commands=COMMANDS):
        codes = []
        for command in commands:
            run = support.Run(command, path, "--json", timeout=timeout)
            support.check_end(self, run, path)
            codes.append(run.code)
        return codes

    def test_missing(self):
        self.refused(os.path.join(self.folder, "nothing here.dxf"))
        self.refused(os.path.join(self.folder, "no folder", "nothing.dxf"))

    def test_not_a_file(self):
        os.mkdir(os.path.join(self.folder, "folder.dxf"))
        self.refused(os.path.join(self.folder, "folder.dxf"))
        os.mkfifo(os.path.join(self.folder, "pipe.dxf"))
        self.refused(os.path.join(self.folder, "pipe.dxf"))
        with socket.socket(socket.AF_UNIX) as end:
            end.bind(os.path.join(self.folder, "socket.dxf"))
            self.refused(os.path.join(self.folder, "socket.dxf"))
        self.refused("/dev/zero")

    def test_unreadable(self):
        path = self.write("closed.dxf", self.sample)
        os.chmod(path, 0)
        if os.access(path, os.R_OK):  # root reads everything, so a file that fails on reading stands in
            path = "/proc/self/mem"
        self.refused(path)

    def test_a_link_that_leads_to_itself(self):
        path = os.path.join(self.folder, "ring.dxf")
        os.symlink(path, path)
        self.refused(path)

    def test_empty_and_blank(self):
        for name, data in (("empty.dxf", b""), ("blank.dxf", b" \n\n\r\n"),
                           ("mark only.dxf", b"\xef\xbb\xbf"), ("zeros.dxf", bytes(4096))):
            self.refused(self.write(name, data))

    def test_foreign(self):
        self.refused(self.write("picture.dxf", png()))
        path = os.path.join(self.folder, "archive.dxf")
        with zipfile.ZipFile(path, "w") as archive:
            archive.writestr("inside.dxf", self.sample)
        self.refused(path)
        self.refused(self.write("text.dxf", "Isto não é um desenho.\n".encode() * 50))
        self.refused(self.write("program.dxf", b"\x7fELF" + bytes(range(256)) * 20))
        self.refused(self.write("markup.dxf", b"<?xml version='1.0'?>\n<drawing/>\n"))

    def test_the_name_doesnt_tell_the_kind(self):
        path = self.write("motor.png", self.sample)
        self.assertEqual(self.ends(path), [0, 0])

    def test_truncated_text(self):
        places = sorted({len(self.sample) * part // 37 + part % 5 for part in range(1, 37)})
        for place in places:
            with self.subTest(place):
                self.ends(self.write("cut.dxf", self.sample[:place]), commands=("info",))

    def test_binary_with_nothing_or_nonsense_behind_the_mark(self):
        for name, data in (("mark.dxf", b""), ("short.dxf", b"\0"), ("noise.dxf", bytes(range(256)) * 8),
                           ("no end.dxf", b"\0\0SECTION"), ("ones.dxf", b"\xff" * 1000)):
            self.refused(self.write(name, BINARY_MARK + data))

    def test_truncated_binary(self):
        path = support.shared("drawings", "r13-bin.dxf")
        if not os.path.isfile(path):
            print("shared drawings not found: %s" % path, flush=True)
            return
        with open(path, "rb") as file:
            whole = file.read()
        for part in range(1, 24):
            with self.subTest(part):
                self.ends(self.write("cut.dxf", whole[:len(whole) * part // 24 + part]), commands=("info",))

    def test_wrong_group_codes(self):
        lines = self.sample.split(b"\n")
        for place in (0, 40, 400, 4000, 12000, 20000, 30000, len(lines) - 3):
            place -= place % 2
            for code in (b"abc", b"", b"99999999999", b"-77", b"1e3", b"10.5", b"0x10", b"\xff\xfe"):
                with self.subTest(place=place, code=code):
                    changed = lines[:place] + [code] + lines[place + 1:]
                    self.ends(self.write("codes.dxf", b"\n".join(changed)), commands=("info",))

    def test_a_line_lost_or_doubled(self):
        lines = self.sample.split(b"\n")
        for place in (1, 100, 1001, 9000, 25001):
            self.ends(self.write("lost.dxf", b"\n".join(lines[:place] + lines[place + 1:])))
            self.ends(self.write("doubled.dxf", b"\n".join(lines[:place] + lines[place - 1:])))

    def test_wrong_numbers(self):
        for old, new in ((b" 10\n0.0\n", b" 10\nnan\n"), (b" 10\n0.0\n", b" 10\n1e999\n"),
                         (b" 20\n0.0\n", b" 20\n\n"), (b" 40\n2.5\n", b" 40\n2,5\n"),
                         (b" 70\n1\n", b" 70\n99999999999999999999\n"), (b" 62\n7\n", b" 62\nred\n"),
                         (b" 66\n1\n", b" 66\n-1\n"), (b" 90\n2\n", b" 90\n2000000000\n"),
                         (b" 90\n2\n", b" 90\n-2\n")):
            with self.subTest(new):
                self.assertIn(old, self.sample)
                self.ends(self.write("numbers.dxf", self.sample.replace(old, new)))

    def test_a_line_of_four_gigabytes(self):
        head = groups((0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, "AC1032"), (9, "$MENU")) + "  1\n"
        for name, start in (("long line.dxf", head.encode()), ("only zeros.dxf", b"")):
            path = self.write(name, start)
            os.truncate(path, 4 << 30)  # sparse: takes no room on the disk
            run = support.Run("info", path, "--json", timeout=60)
            support.check_refusal(self, run, path)
            self.assertLess(run.seconds, 15)
            os.remove(path)

    def test_a_block_that_contains_itself(self):
        for name, blocks in (("self.dxf", [("A", ["A"])]), ("pair.dxf", [("A", ["B"]), ("B", ["A"])]),
                             ("ring.dxf", [("A", ["B"]), ("B", ["C"]), ("C", ["A", "A"])])):
            codes = self.ends(self.write(name, drawing_of_blocks(blocks, ["A", "A"])))
            self.assertLessEqual(set(codes), {0, 1})

    def test_a_hundred_thousand_nested_blocks(self):
        count = 100000
        names = ["B%d" % index for index in range(count)]
        blocks = list(zip(names, [[name] for name in names[1:]] + [[]]))
        self.ends(self.write("deep.dxf", drawing_of_blocks(blocks, ["B0"])), timeout=60)

    def test_blocks_that_grow_like_powers_of_two(self):
        blocks = [("B%d" % index, ["B%d" % (index + 1)] * 2 if index < 63 else []) for index in range(64)]
        self.ends(self.write("wide.dxf", drawing_of_blocks(blocks, ["B0"])))

    def test_a_file_that_shrinks_or_changes_while_it_is_read(self):
        lines = b"  0\nLINE\n  8\n0\n 10\n0.0\n 20\n0.0\n 11\n1.0\n 21\n1.0\n" * 400000
        start = groups((0, "SECTION"), (2, "ENTITIES")).encode()
        data = start + lines + groups((0, "ENDSEC"), (0, "EOF")).encode()
        for delay in (0.0, 0.01, 0.03, 0.06, 0.1, 0.2):
            path = self.write("moving.dxf", data)

            def change(path=path, delay=delay):
                def act():
                    time.sleep(delay)
                    os.truncate(path, 5000)
                threading.Thread(target=act).start()

            with self.subTest(delay):
                support.check_end(self, support.Run("info", path, "--json", timeout=60, during=change), path)


if __name__ == "__main__":
    unittest.main()
