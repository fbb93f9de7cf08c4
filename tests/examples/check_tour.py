#!/usr/bin/env python3
"""Runs the tour and checks every file it makes against images put together here, from the hunk files alone."""

import argparse
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"

# What stands where in the ROM of the tour: places are multiples of 4, one behind the other.
LOWER = ["romheader", "kernel.library", "tables.library", "pulse.device", "message.data"]
UPPER = ["clock.resource", "font.data"]
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
        (cls.folder / "parts").mkdir()
        with open(EXAMPLES / "tour.txt", "rb") as script:
            done = subprocess.run(
                [cls.program], stdin=script, cwd=cls.folder, capture_output=True, timeout=100, check=False
            )
        cls.status = done.returncode
        cls.printed = done.stdout.decode("latin-1")
        cls.main, cls.places = image(0x80000, 0xF80000, LOWER, UPPER)
        cls.extended, _ = image(0x80000, 0xE00000, ["romheader", "tables.library", "font.data"])
        cls.small, _ = image(0x40000, 0xFC0000, ["romheader256", "kernel.library", "message.data"])

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def made(self, name):
        return (self.folder / name).read_bytes()

    def test_it_ends_well_and_without_an_error(self):
        self.assertEqual(self.status, 0)
        told = [line for line in self.printed.splitlines() if line.replace("VanCLI> ", "").upper().startswith("ERROR")]
        self.assertEqual(told, [])

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


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    options, rest = parser.parse_known_args()
    Tour.program = str(pathlib.Path(options.program).resolve())
    unittest.main(argv=[sys.argv[0], *rest])
