#!/usr/bin/env python3
"""Checks the example modules as they are committed: that each is a sound load file of one hunk, that it holds
what its kind of module must hold, and, where the assembler for the 68000 is installed, that its code
disassembles, that its relocs are complete, and that making it again gives the same bytes.

    check_hunks.py [unittest's arguments]

Without the assembler all else is checked, and the exit code is 77.
"""

import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent.parent / "examples"
HUNKS = EXAMPLES / "hunks"

PREFIX = "m68k-linux-gnu-"
BINUTILS = all(shutil.which(PREFIX + tool) for tool in ("as", "ld", "objdump"))
MISSING = "binutils-m68k-linux-gnu is not installed"

CODE, DATA = 1001, 1002
LIBRARY, DEVICE, RESOURCE = 9, 3, 8
AUTOINIT = 0x80

# File: hunk, source, node type.
FILES = {
    "romheader": (DATA, "romheader.s", None),
    "romheader256": (DATA, "romheader256.s", None),
    "kernel.library": (CODE, "kernel.s", LIBRARY),
    "tables.library": (CODE, "tables.s", LIBRARY),
    "pulse.device": (CODE, "pulse.s", DEVICE),
    "clock.resource": (CODE, "clock.s", RESOURCE),
    "font.data": (DATA, "font.s", None),
    "message.data": (DATA, "message.s", None),
}
HEADERS = {"romheader": 0x1114, "romheader256": 0x1111}
MODULES = [name for name, (_, _, kind) in FILES.items() if kind is not None]


class LoadFile:
    """A load file, read long by long; a long that is not what it must be is an AssertionError."""

    def __init__(self, name):
        self.name = name
        self.file = (HUNKS / name).read_bytes()
        self.place = 0
        self.expect(1011, "HUNK_HEADER")
        self.expect(0, "no library names")
        self.expect(1, "one hunk")
        self.expect(0, "the first")
        self.expect(0, "the last")
        longs = self.take()
        self.kind = self.take()
        self.expect(longs, "the size of the header again")
        self.bytes = self.file[self.place : self.place + 4 * longs]
        assert len(self.bytes) == 4 * longs, f"{name}: ends within the hunk"
        self.place += 4 * longs
        self.relocs = []
        following = self.take()
        if following == 1004:
            count = self.take()
            assert count > 0, f"{name}: an empty list of relocs"
            self.expect(0, "the target hunk")
            self.relocs = [self.take() for _ in range(count)]
            self.expect(0, "the end of the relocs")
            following = self.take()
        assert following == 1010, f"{name}: {following} instead of HUNK_END"
        assert self.place == len(self.file), f"{name}: bytes behind HUNK_END"

    def take(self):
        assert self.place + 4 <= len(self.file), f"{self.name}: ends at {self.place}"
        value = int.from_bytes(self.file[self.place : self.place + 4], "big")
        self.place += 4
        return value

    def expect(self, value, what):
        found = self.take()
        assert found == value, f"{self.name}: {found} at {self.place - 4} where {value} stands for {what}"

    def byte(self, offset):
        return self.bytes[offset]

    def word(self, offset):
        assert 0 <= offset <= len(self.bytes) - 2, f"{self.name}: no word at {offset}"
        return struct.unpack_from(">H", self.bytes, offset)[0]

    def long(self, offset):
        assert 0 <= offset <= len(self.bytes) - 4, f"{self.name}: no long at {offset}"
        return struct.unpack_from(">I", self.bytes, offset)[0]

    def pointer(self, offset):
        """The long at `offset`, which must be a reloc and lead inside."""
        assert offset in self.relocs, f"{self.name}: the pointer at {offset} has no reloc"
        value = self.long(offset)
        assert value < len(self.bytes), f"{self.name}: the pointer at {offset} leads outside"
        return value

    def code(self, offset):
        """Likewise, and what it leads to may be code."""
        value = self.pointer(offset)
        assert value % 2 == 0, f"{self.name}: the pointer at {offset} leads to an odd place"
        return value

    def text(self, offset):
        return self.bytes[offset : self.bytes.index(0, offset)].decode("ascii")

    def at(self, base):
        """The bytes as they stand when the module is placed at `base`."""
        moved = bytearray(self.bytes)
        for reloc in self.relocs:
            struct.pack_into(">I", moved, reloc, self.long(reloc) + base)
        return bytes(moved)


def tags(module):
    """The places of the match word, odd ones too."""
    return [found.start() for found in re.finditer(rb"\x4a\xfc", module.bytes)]


def wordtables(module):
    """What can be a table of word vectors, as (start, functions): -1, four or more even distances, -1."""
    found = []
    for start in range(0, len(module.bytes) - 2, 2):
        if module.word(start) != 0xFFFF:
            continue
        functions = []
        for place in range(start + 2, len(module.bytes), 2):
            (distance,) = struct.unpack_from(">h", module.bytes, place)
            if distance == -1:
                if len(functions) >= 4:
                    found.append((start, functions))
                break
            target = start + distance
            if distance % 2 != 0 or not 0 <= target < len(module.bytes):
                break
            functions.append(target)
    return found


def vectors(module, table):
    """The functions of a vector table of either kind."""
    if module.word(table) == 0xFFFF:
        found = [functions for start, functions in wordtables(module) if start == table]
        assert len(found) == 1, f"{module.name}: the words at {table} are no vector table"
        return found[0]
    functions = []
    while module.long(table) != 0xFFFFFFFF:
        functions.append(module.code(table))
        table += 4
    assert table not in module.relocs, f"{module.name}: the end of the vectors has a reloc"
    return functions


def initialised(module, table):
    """What an init table writes, as {offset: (size, value, place of the value)}."""
    written = {}
    while module.byte(table) != 0:
        command = module.byte(table)
        assert table % 2 == 0 and command & 0xC0 == 0xC0, f"{module.name}: command {command:#x} at {table}"
        size = {0: 4, 1: 2, 2: 1}[command >> 4 & 3]
        offset = module.long(table) & 0xFFFFFF
        table += 4
        for _ in range((command & 15) + 1):
            written[offset] = (size, int.from_bytes(module.bytes[table : table + size], "big"), table)
            offset += size
            table += size
        table += table % 2
    return written


def commands(module):
    """The functions of a device's commands: the longest run of pointers side by side."""
    runs = [[]]
    for reloc in module.relocs:
        if runs[-1] and reloc != runs[-1][-1] + 4:
            runs.append([])
        runs[-1].append(reloc)
    longest = max(runs, key=len)
    assert len(longest) >= 8, f"{module.name}: no table of commands"
    return [module.code(reloc) for reloc in longest]


def entries(module):
    """Places known to be code, from what the module says of itself."""
    if module.name in HEADERS:
        return [module.code(4)]
    tag = tags(module)[0]
    init = module.code(tag + 22)
    if not module.byte(tag + 10) & AUTOINIT:
        return [init] + wordtables(module)[0][1]
    found = vectors(module, module.code(init + 4))
    if module.long(init + 12):
        found.append(module.code(init + 12))
    if module.byte(tag + 12) == DEVICE:
        found += commands(module)
    return found


class CommittedFiles(unittest.TestCase):
    def test_folder_holds_them_and_no_others(self):
        self.assertEqual(sorted(path.name for path in HUNKS.iterdir()), sorted(FILES))

    def test_structure(self):
        for module in map(LoadFile, FILES):
            with self.subTest(module.name):
                self.assertEqual(module.kind, FILES[module.name][0])
                self.assertTrue(256 <= len(module.bytes) <= 3072, len(module.bytes))

    def test_one_is_larger_than_2k(self):
        self.assertTrue(any(len(LoadFile(name).bytes) > 2048 for name in FILES))

    def test_relocs_are_even_ascending_and_apart(self):
        for module in map(LoadFile, FILES):
            with self.subTest(module.name):
                for reloc, following in zip(module.relocs, module.relocs[1:] + [len(module.bytes)]):
                    self.assertEqual(reloc % 2, 0)
                    self.assertGreaterEqual(following, reloc + 4)

    def test_relocs_point_inside(self):
        for module in map(LoadFile, FILES):
            with self.subTest(module.name):
                # Only a tag's end-skip may name the first byte behind the module.
                skips = [tag + 6 for tag in tags(module)] if module.name in MODULES else []
                for reloc in module.relocs:
                    if reloc in skips:
                        continue
                    self.assertLess(module.long(reloc), len(module.bytes), f"at {reloc}")

    def test_headers(self):
        for module in map(LoadFile, HEADERS):
            with self.subTest(module.name):
                self.assertEqual(module.word(0), HEADERS[module.name])
                self.assertEqual(module.word(2), 0x4EF9)
                self.assertGreaterEqual(module.code(4), 24)
                self.assertEqual(module.long(8), 0x0000FFFF)
                self.assertEqual(module.long(20), 0xFFFFFFFF)
                self.assertIn(b"Copyright (c) 2026 the Vantorel developers", module.bytes)
                self.assertEqual(tags(module), [])

    def test_headers_are_sisters(self):
        large, small = (LoadFile(name) for name in HEADERS)
        self.assertEqual(len(large.bytes), len(small.bytes))
        self.assertEqual(large.relocs, small.relocs)

    def test_data_has_no_tag(self):
        for module in map(LoadFile, ["font.data", "message.data"]):
            with self.subTest(module.name):
                self.assertEqual(tags(module), [])

    def test_message_is_text(self):
        message = LoadFile("message.data")
        self.assertEqual(message.relocs, [])
        self.assertRegex(message.bytes.rstrip(b"\0"), rb"\A[\x20-\x7e\r\n]+\Z")

    def test_font(self):
        font = LoadFile("font.data")
        self.assertEqual(font.bytes[:4], b"FONT")
        self.assertEqual((font.word(4), font.word(6)), (8, 8))
        first, last = font.byte(8), font.byte(9)
        self.assertEqual(font.text(font.pointer(12)), "font 1.0 (21.11.2026)\r\n")
        box, glyphs, size = font.pointer(16), font.pointer(20), font.long(24)
        pictures = len(font.bytes) - size
        characters = {chr(c): font.pointer(glyphs + 4 * (c - first)) for c in range(first, last + 1)}
        self.assertEqual(len(font.relocs), 3 + len(characters))
        for picture in characters.values():
            self.assertGreaterEqual(picture, pictures)
            self.assertEqual((picture - pictures) % 8, 0)
        for character in "VANTOREL 0123456789":
            self.assertNotEqual(characters[character], box, character)
        shapes = {font.bytes[place : place + 8] for place in range(pictures, len(font.bytes), 8)}
        self.assertEqual(8 * len(shapes), size, "two pictures are alike")

    def test_one_tag(self):
        for module in map(LoadFile, MODULES):
            with self.subTest(module.name):
                self.assertEqual(len(tags(module)), 1)
                tag = tags(module)[0]
                self.assertEqual(tag % 2, 0)
                self.assertEqual(module.pointer(tag + 2), tag)
                self.assertIn(tag + 6, module.relocs)
                self.assertEqual(module.long(tag + 6), len(module.bytes))
                self.assertEqual(module.byte(tag + 12), FILES[module.name][2])
                self.assertEqual(module.text(module.pointer(tag + 14)), module.name)
                self.assertEqual(module.code(tag + 22) % 2, 0)

    def test_idstrings(self):
        for module in map(LoadFile, MODULES):
            with self.subTest(module.name):
                tag = tags(module)[0]
                stem = module.name.split(".")[0]
                text = module.text(module.pointer(tag + 18))
                match = re.fullmatch(stem + r" (\d+)\.(\d+) \((\d\d?)\.(\d\d?)\.(\d{4})\)\r\n", text)
                self.assertIsNotNone(match, text)
                self.assertEqual(int(match[1]), module.byte(tag + 11))

    def test_vectors(self):
        # Bytes of a vector and number of functions. The kernel starts without an auto-init table.
        expected = {
            "kernel.library": (2, 35),
            "tables.library": (4, 22),
            "pulse.device": (4, 6),
            "clock.resource": (2, 8),
        }
        for module in map(LoadFile, MODULES):
            with self.subTest(module.name):
                width, count = expected[module.name]
                tag = tags(module)[0]
                automatic = bool(module.byte(tag + 10) & AUTOINIT)
                self.assertEqual(automatic, module.name != "kernel.library")
                if automatic:
                    table = module.code(module.code(tag + 22) + 4)
                else:
                    self.assertEqual(len(wordtables(module)), 1)
                    table = wordtables(module)[0][0]
                    self.assertIn(table, [module.long(reloc) for reloc in module.relocs])
                self.assertEqual(2 if module.word(table) == 0xFFFF else 4, width)
                self.assertEqual(len(vectors(module, table)), count)

    def test_autoinit(self):
        for module in map(LoadFile, MODULES):
            with self.subTest(module.name):
                tag = tags(module)[0]
                if not module.byte(tag + 10) & AUTOINIT:
                    continue
                table = module.code(tag + 22)
                self.assertNotIn(table, module.relocs)
                size = module.long(table)
                self.assertEqual(size % 4, 0)
                self.assertTrue(34 <= size < 256)
                module.code(table + 12)
                written = initialised(module, module.code(table + 8))
                for offset, (width, _, _) in written.items():
                    self.assertLessEqual(offset + width, size)
                self.assertEqual(written[8][:2], (1, FILES[module.name][2]))
                self.assertEqual(module.text(module.pointer(written[10][2])), module.name)
                self.assertEqual(written[20][:2], (2, module.byte(tag + 11)))
                idstring = module.text(module.pointer(written[24][2]))
                self.assertEqual(idstring, module.text(module.pointer(tag + 18)))
                self.assertIn(f" {written[20][1]}.{written[22][1]} ", idstring)


@unittest.skipUnless(BINUTILS, MISSING)
class WithBinutils(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def tool(self, name, *arguments):
        command = [PREFIX + name, *map(str, arguments)]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def test_made_again_they_are_the_same(self):
        command = [EXAMPLES / "make.sh", self.folder]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), sorted(FILES))
        for name in FILES:
            with self.subTest(name):
                self.assertEqual((self.folder / name).read_bytes(), (HUNKS / name).read_bytes())

    def test_relocs_are_complete(self):
        """The linker, which knows nothing of hunks, places each module where its relocs would."""
        modules = EXAMPLES / "modules"
        for name, (_, source, _) in FILES.items():
            module = LoadFile(name)
            linked, placed = self.folder / "object", self.folder / "image"
            self.tool("as", "-m68000", "-I", modules, "-o", linked, modules / source)
            for base in (0xF80000, 0xFC1234):
                with self.subTest(f"{name} at {base:#x}"):
                    options = ["-e", base, "-Ttext", hex(base), "--oformat", "binary"]
                    self.tool("ld", *options, "-o", placed, linked)
                    self.assertEqual(placed.read_bytes(), module.at(base))

    def instructions(self, image, offset):
        """What is disassembled from `offset` on, as (place, bytes, text)."""
        options = ["-D", "-z", "-b", "binary", "-m", "m68k:68000", "--insn-width=10"]
        listing = self.tool("objdump", *options, f"--start-address={offset}", image)
        for line in listing.splitlines():
            match = re.match(r" *([0-9a-f]+):\t((?:[0-9a-f]{4} )+) *\t(.*)$", line)
            if match:
                yield int(match[1], 16), 2 * len(match[2].split()), match[3].strip()

    def walk(self, module, image, starts):
        """Follows the code from `starts` wherever it goes; the places of its instructions and their sizes."""
        seen = {}
        pending = list(starts)
        while pending:
            start = pending.pop()
            if start in seen:
                continue
            self.assertTrue(0 <= start < len(module.bytes) and start % 2 == 0, f"code leads to {start:#x}")
            ended = False
            for place, size, text in self.instructions(image, start):
                if place in seen:
                    ended = True
                    break
                seen[place] = size
                mnemonic = text.split()[0]
                where = f"{place:#x}: {text}"
                self.assertNotIn(mnemonic, (".short", ".word", "illegal"), where)
                branch = re.fullmatch(r"(?:b[a-z]{2}[sw] |db[a-z]+ %d[0-7],)(0x[0-9a-f]+)", text)
                if branch:
                    pending.append(int(branch[1], 16))
                absolute = re.fullmatch(r"(?:jsr|jmp) (0x[0-9a-f]+)", text)
                if absolute:
                    self.assertIn(place + 2, module.relocs, where)
                    pending.append(int(absolute[1], 16))
                if mnemonic in ("rts", "rte", "jmp", "bras", "braw"):
                    ended = True
                    break
            self.assertTrue(ended, f"the code from {start:#x} runs out of the module")
        return seen

    def test_code_disassembles(self):
        image = self.folder / "image"
        for name, (_, _, kind) in FILES.items():
            module = LoadFile(name)
            if kind is None and name not in HEADERS:
                continue
            with self.subTest(name):
                image.write_bytes(module.bytes)
                seen = self.walk(module, image, entries(module))
                self.assertGreater(len(seen), 40)
                end = 0
                for place, size in sorted(seen.items()):
                    self.assertGreaterEqual(place, end, f"two instructions share the bytes at {place:#x}")
                    end = place + size
                # A reloc that stands in the code is a whole operand of one instruction.
                for reloc in module.relocs:
                    for place, size in seen.items():
                        if place - 4 < reloc < place + size:
                            self.assertTrue(place + 2 <= reloc <= place + size - 4, f"reloc at {reloc:#x}")


if __name__ == "__main__":
    passed = unittest.main(exit=False).result.wasSuccessful()
    if passed and not BINUTILS:
        print(f"skipped: {MISSING}")
        sys.exit(77)
    sys.exit(0 if passed else 1)
