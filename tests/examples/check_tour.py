#!/usr/bin/env python3
"""Runs the tour and checks every file it makes against images put together here, from the hunk files alone."""

import argparse
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zipfile
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"

# What stands where in the ROM of the tour: places are multiples of 4, one behind the other.
LOWER = ["romheader", "kernel.library", "tables.library", "pulse.device", "message.data"]
UPPER = ["clock.resource", "font.data"]
THIRD = ["romheader256", "kernel.library", "pulse.device"]
SPLIT = bytes.fromhex("11114EF900F80002")
VECTORS = bytes.fromhex("00180019001a001b001c001d001e001f")


def longs(data):
    return list(struct.unpack(f">{len(data) // 4}I", data[: len(data) // 4 * 4]))


class Module:
    """A load file of one hunk, with its relocs as longs or as words."""

    def __init__(self, data):
        head = longs(data[:32])
        assert head[:5] == [1011, 0, 1, 0, 0] and head[5] == head[7], "no load file of one hunk"
        self.iscode = {1001: True, 1002: False}[head[6]]
        size = head[7] * 4
        self.bytes = data[32 : 32 + size]
        rest = data[32 + size :]
        kind = longs(rest[:4])[0]
        self.relocs = []
        if kind == 1004:
            count, target = longs(rest[4:12])
            assert target == 0
            self.relocs = longs(rest[12 : 12 + 4 * count])
            rest = rest[12 + 4 * count :]
            assert longs(rest[:4]) == [0]
            rest = rest[4:]
        elif kind == 1015:
            count, target = struct.unpack(">HH", rest[4:8])
            assert target == 0
            self.relocs = list(struct.unpack(f">{count}H", rest[8 : 8 + 2 * count]))
            end = 8 + 2 * count
            assert rest[end : end + 2] == b"\0\0"
            end += 2
            if (32 + size + end) % 4:
                assert rest[end : end + 2] == b"\0\0"
                end += 2
            rest = rest[end:]
        assert longs(rest) == [1010], "no end"

    def placed(self, address):
        image = bytearray(self.bytes)
        for reloc in self.relocs:
            (value,) = struct.unpack_from(">I", image, reloc)
            struct.pack_into(">I", image, reloc, (value + address) & 0xFFFFFFFF)
        return bytes(image)


def module(name):
    return Module((EXAMPLES / "hunks" / name).read_bytes())


def checksummed(image):
    """The image with its checksum, size and vectors."""
    size = len(image)
    image = bytearray(image)
    struct.pack_into(">I", image, size - 20, size)
    image[size - 16 :] = VECTORS
    image[size - 24 : size - 20] = bytes(4)
    total = 0
    for value in longs(bytes(image)):
        total += value
        if total > 0xFFFFFFFF:
            total -= 0xFFFFFFFF
    struct.pack_into(">I", image, size - 24, total ^ 0xFFFFFFFF)
    return bytes(image)


def image(size, base, lower, upper=()):
    """An image, and where each module begins in it."""
    data = bytearray(b"\xff" * size)
    places = {}
    at = 0
    for name in [*lower, None, *upper]:
        if name is None:
            if upper:
                at = 0x40000
                data[at : at + 8] = SPLIT
                at += 8
            continue
        places[name] = at
        placed = module(name).placed(base + at)
        data[at : at + len(placed)] = placed
        at += len(placed)
    return checksummed(data), places


class Rtb:
    """A table of the places of addresses, as differences of offsets behind the sum of the image."""

    def __init__(self, data):
        self.sum = data[:4]
        assert data[4:7] == bytes(3)
        self.places = []
        at, place = 7, 0
        while True:
            step, at = data[at], at + 1
            if step == 0:
                at += at % 2
                (step,) = struct.unpack_from(">H", data, at)
                at += 2
                if step == 0:
                    break
            place += step
            self.places.append(place)
        assert at % 2 == 0 and data[at:] == bytes.fromhex("ffffffff 00000000"), "more than 32 bit addresses"

    def applied(self, image, distance):
        image = bytearray(image)
        for place in self.places:
            (value,) = struct.unpack_from(">I", image, place)
            struct.pack_into(">I", image, place, (value + distance) & 0xFFFFFFFF)
        return bytes(image)


class Floppy:
    """A disk of the old file system with files in directories, without the checksums that only an Amiga asks for."""

    ROOT = 880
    TIME = (17857, 12 * 60 + 34, 56 * 50)  # 2026-11-22 12:34:56, as days since 1978, minutes and fiftieths

    def __init__(self, volume):
        self.bytes = bytearray(901120)
        self.bytes[:4] = b"DOS\0"
        self.free = 2
        self.directories = {}
        self.header(self.ROOT, volume, 1)

    def put(self, block, offset, *values):
        struct.pack_into(f">{len(values)}i", self.bytes, 512 * block + offset, *values)

    def get(self, block, offset):
        return struct.unpack_from(">i", self.bytes, 512 * block + offset)[0]

    def header(self, block, name, kind):
        self.put(block, 0, 2)
        self.put(block, 420, *self.TIME)
        raw = name.encode()
        self.bytes[512 * block + 432 : 512 * block + 433 + len(raw)] = bytes([len(raw)]) + raw
        self.put(block, 508, kind)

    def entry(self, parent, name, kind):
        """A new header, in front of the chain of its name in the parent's table."""
        block = self.free
        self.free += 1
        self.header(block, name, kind)
        slot = len(name)
        for letter in name.upper().encode():
            slot = (slot * 13 + letter) & 0x7FF
        slot = 24 + 4 * (slot % 72)
        self.put(block, 496, self.get(parent, slot), parent)
        self.put(parent, slot, block)
        return block

    def add(self, path, data):
        directory, name = path.split("/")
        if directory not in self.directories:
            self.directories[directory] = self.entry(self.ROOT, directory, 2)
        block = self.entry(self.directories[directory], name, -3)
        pieces = [data[at : at + 488] for at in range(0, len(data), 488)]
        self.put(block, 8, len(pieces))
        self.put(block, 324, len(data))
        for number, piece in enumerate(pieces):
            self.put(block, 308 - 4 * number, self.free)
            self.put(self.free, 0, 8, block, number + 1, len(piece))
            self.bytes[512 * self.free + 24 : 512 * self.free + 24 + len(piece)] = piece
            self.free += 1


def instructions(source, first, last):
    """The mnemonics of an assembly source between two labels, spelt as a listing spells them."""
    text = source.split(f"\n{first}:")[1].split(f"\n{last}:")[0]
    found = []
    for line in text.splitlines():
        line = re.sub(r"^\w+:", "", line.split("|")[0]).split()
        if line and not line[0].startswith("."):
            name = line[0].upper()
            found.append(re.sub(r"^(B\w\w)\.[SW]$", r"\1", name))
    return found


def words(data, odd):
    return b"".join(data[i + 2 * odd : i + 2 * odd + 2] for i in range(0, len(data), 4))


class Tour(unittest.TestCase):
    program = None

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.scratch.name)
        shutil.copytree(EXAMPLES / "hunks", cls.folder / "hunks")
        shutil.copytree(EXAMPLES / "hashes", cls.folder / "Vantorel Hashes")
        for name in ("missassemble.ini", "misshints.ini"):
            shutil.copy(ROOT / "Vantorel Hashes" / name, cls.folder / "Vantorel Hashes")
        (cls.folder / "parts").mkdir()
        cls.floppy = {"Libs/" + name: (EXAMPLES / "hunks" / name).read_bytes() for name in LOWER[1:3]}
        cls.floppy.update({"Docs/" + name: (EXAMPLES / "hunks" / name).read_bytes() for name in LOWER[3:5]})
        disk = Floppy("Modules")
        for name, data in cls.floppy.items():
            disk.add(name, data)
        (cls.folder / "modules.adf").write_bytes(disk.bytes)
        cls.sessions = re.findall(r".*?^exit\n", (EXAMPLES / "tour.txt").read_text(), re.M | re.S)
        done = [cls.session(text) for text in cls.sessions]
        cls.status = [each.returncode for each in done]
        cls.printed, cls.second = (each.stdout.decode("latin-1") for each in done)
        cls.main, cls.places = image(0x80000, 0xF80000, LOWER, UPPER)
        cls.extended, _ = image(0x80000, 0xE00000, ["romheader", "tables.library", "font.data"])
        cls.small, _ = image(0x40000, 0xFC0000, ["romheader256", "kernel.library", "message.data"])

    @classmethod
    def session(cls, text):
        return subprocess.run(
            [cls.program],
            input=text.encode(),
            cwd=cls.folder,
            env={**os.environ, "TZ": "UTC"},
            capture_output=True,
            timeout=100,
            check=False,
        )

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def made(self, name):
        return (self.folder / name).read_bytes()

    def test_it_ends_well_and_without_an_error(self):
        self.assertEqual(self.status, [0, 0])
        lines = [line.replace("VanCLI> ", "") for line in (self.printed + self.second).splitlines()]
        self.assertEqual([line for line in lines if line.upper().startswith("ERROR")], [])

    def test_the_readme_shows_what_is_printed(self):
        excerpt = re.search(r"```text\n(.*?)```", (ROOT / "README.md").read_text(), re.DOTALL)[1]
        lines = [re.sub("^(VanCLI> )+", "", line) for line in (self.printed + self.second).splitlines()]
        printed = "\n" + "\n".join(lines) + "\n"
        place = 0
        for piece in excerpt.split("...\n"):
            place = printed.find("\n" + piece, place)
            self.assertGreaterEqual(place, 0, piece)

    def test_the_rom_is_what_its_modules_make(self):
        self.assertEqual(self.made("tour.rom"), self.main)

    def test_the_moved_rom_is_built_for_its_base(self):
        moved, _ = image(0x80000, 0xE00000, LOWER, UPPER)
        self.assertEqual(self.made("moved.rom"), moved)
        self.assertEqual(self.made("again.rom"), self.main)

    def test_the_pair_holds_the_high_and_the_low_words(self):
        self.assertEqual(self.made("tour.hi.bin"), words(self.main, 0))
        self.assertEqual(self.made("tour.lo.bin"), words(self.main, 1))

    def test_the_cd32_file_is_interleaved(self):
        self.assertEqual(
            self.made("tour-cd32.bin"),
            words(self.extended, 0) + words(self.main, 0) + words(self.extended, 1) + words(self.main, 1),
        )

    def test_the_a1000_disk_holds_the_small_rom(self):
        disk = self.made("tour-a1000.adf")
        self.assertEqual(len(disk), 901120)
        self.assertEqual(disk[:4], b"KICK")
        self.assertEqual(disk[512 : 512 + 0x40000], self.small)
        self.assertEqual(disk[4:512].strip(b"\0") + disk[512 + 0x40000 :].strip(b"\0"), b"")

    def test_every_layout_loads_back_to_the_same_crc(self):
        for name, data, count in (("main", self.main, 3), ("extended", self.extended, 1), ("small", self.small, 1)):
            with self.subTest(name):
                listing = self.printed.split("ROMS:")[1].split("VanCLI>")[0]
                self.assertEqual(listing.count("CRC32:0x%08x" % zlib.crc32(data)), count)

    def test_the_hash_file_maps_the_rom(self):
        text = self.made("Vantorel Hashes/0x%08x.Tour" % zlib.crc32(self.main)).decode()
        self.assertIn("RomBase=0x00f80000\nFileType=Kickstart\n", text)
        lines = text.split("[Components]\n")[1].splitlines()
        for name, start in self.places.items():
            size = len(module(name).bytes)
            kind = "Library" if module(name).iscode else "Data"
            self.assertTrue(any(line.startswith(f"{name}={start},{size},{kind}:") for line in lines), name)
        self.assertEqual(len(lines), 12)

    def test_the_hash_files_of_the_modules_list_their_relocs(self):
        for line in self.made("Vantorel Hashes/0x%08x.Tour" % zlib.crc32(self.main)).decode().splitlines():
            name = line.split("=")[0]
            if name not in self.places or not module(name).relocs:
                continue
            file = line.split(",")[2].split(":")[1]
            crc = zlib.crc32(self.made("parts/" + file))
            self.assertTrue(file.startswith("0x%08x." % crc), file)
            text = self.made("Vantorel Hashes/" + file).decode()
            relocs = [int(item) for item in text.replace("RELOC=", "\0").split("\0")[1:]]
            self.assertEqual(relocs, module(name).relocs, name)

    def test_the_parts_are_the_modules(self):
        parts = [Module(path.read_bytes()) for path in (self.folder / "parts").iterdir() if path.stat().st_size > 16]
        for name in self.places:
            wanted = module(name)
            same = [p for p in parts if p.bytes == wanted.bytes and p.relocs == wanted.relocs]
            self.assertEqual(len(same), 1, name)
            self.assertEqual(same[0].iscode, wanted.iscode, name)

    def test_the_table_of_addresses_moves_the_rom(self):
        table = Rtb(self.made("third.RTB"))
        third, places = image(0x40000, 0x200000, THIRD)
        self.assertEqual(table.sum, third[-24:-20])
        self.assertEqual(table.places, sorted(places[name] + reloc for name in THIRD for reloc in module(name).relocs))
        elsewhere, _ = image(0x40000, 0x7F0000, THIRD)
        self.assertEqual(checksummed(table.applied(third, 0x7F0000 - 0x200000)), elsewhere)

    def listed(self):
        """The lines of the missassembled module as offsets in the ROM and texts."""
        lines = self.made("missassembler.tmp").decode("latin-1").splitlines()
        found = [re.fullmatch(r"([0-9A-F]{6}) (.*)", line) for line in lines]
        return [(int(line[1], 16) - 0xF80000, line[2]) for line in found if line]

    def test_the_listing_goes_through_the_module(self):
        lines = self.listed()
        start = self.places["pulse.device"]
        self.assertEqual(lines[0][0], start)
        offsets = [at for at, _ in lines]
        self.assertEqual(offsets, sorted(set(offsets)))
        for (at, text), end in zip(lines, [*offsets[1:], start + len(module("pulse.device").bytes)]):
            data = re.match(r"(?:[0-9A-F]{2} )+", text)
            value = re.match(r" 0x([0-9A-F]+) ", text)
            if data:
                self.assertEqual(bytes.fromhex(data[0]), self.main[at:end], text)
            elif value:
                self.assertEqual(int(value[1], 16), int.from_bytes(self.main[at:end], "big"), text)
            elif text == "RTS":
                self.assertEqual(self.main[at:end], b"\x4e\x75")

    def test_the_listing_has_the_instructions_of_the_source(self):
        source = (EXAMPLES / "modules" / "pulse.s").read_text()
        code = [text for _, text in self.listed() if not re.match(r" 0x|\"|(?:[0-9A-F]{2} )+ ", text)]
        self.assertEqual([text.split()[0] for text in code], instructions(source, "init", "commands"))

    def test_the_instruction_is_found(self):
        start = self.places["pulse.device"]
        place = self.main.index(bytes.fromhex("08f90001") + bytes.fromhex("00bfe201"), start)
        self.assertIn("Value:0x%08x\n" % place, self.printed)

    def test_the_relocs_are_unknown_until_they_are_found(self):
        before, after = self.second.split("== 15.")
        rows = re.findall(r"pulse\.device +\d+\??:\d+:\d+\?? +(\d+) ", before)
        self.assertEqual(set(rows), {"0"})
        relocs = module("pulse.device").relocs
        self.assertEqual([int(text) for text in re.findall(r"Verified RELOC=(\d+)", after)], relocs)
        self.assertIn("(currently %d)" % len(relocs), after)

    def test_the_bounds_typed_are_those_proposed(self):
        start = self.places["pulse.device"]
        end = start + len(module("pulse.device").bytes)
        proposed = re.findall(r"^   editcomponent .*", self.second.split("== 15.")[0], re.M)
        self.assertEqual(proposed, [f"   editcomponent 2 START={start}", f"   editcomponent 2 END={end}"])
        for line in proposed:
            self.assertIn("\n" + line.strip() + "\n", self.sessions[1])

    def test_the_module_found_is_the_module(self):
        found, wanted = Module(self.made("pulse.device")), module("pulse.device")
        self.assertEqual((found.bytes, found.relocs, found.iscode), (wanted.bytes, wanted.relocs, True))

    def test_the_module_found_stands_right_at_a_third_base(self):
        third, places = image(0x40000, 0x200000, THIRD)
        self.assertNotEqual(places["pulse.device"], self.places["pulse.device"])
        self.assertEqual(self.made("third.rom"), third)

    def test_the_archive_holds_the_files_of_the_floppy(self):
        with zipfile.ZipFile(self.folder / "modules.zip") as archive:
            self.assertIsNone(archive.testzip())
            files = {name: archive.read(name) for name in archive.namelist() if not name.endswith("/")}
            self.assertEqual(files, self.floppy)
            self.assertEqual(len(archive.namelist()), len(files) + 2)
            self.assertIn("Libs/", archive.namelist())
            self.assertIn("Docs/", archive.namelist())
            for entry in archive.infolist():
                self.assertEqual(entry.date_time, (2026, 11, 22, 12, 34, 56))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    options, rest = parser.parse_known_args()
    Tour.program = str(pathlib.Path(options.program).resolve())
    unittest.main(argv=[sys.argv[0], *rest])
