#!/usr/bin/env python3
"""Reads an Amiga load file and shows what is in it: an opinion that owes nothing to the program under test.

    hunkjudge.py [--bss-unnumbered] FILE        type, hunks, size, relocs and the bytes, relocated to address 0
    hunkjudge.py --same FILE SAVED              whether SAVED, a file of one hunk, is what FILE comes to

It is strict: whatever a load file may not hold ends it with a message and status 1. Only what a BSS hunk does to the
numbers is open. A BSS hunk has its place in the header's table, so that what is aimed at it lies behind or between
the bytes of the file. By the Amiga's rules it has a number like every other hunk. With --bss-unnumbered (and always
in --same) it has none, as the workbench counts: the relocs behind it are those of one hunk before, and what then
lies outside the bytes is left out.
"""

import argparse
import pathlib
import sys

HEADER, CODE, DATA, BSS, RELOC32, SYMBOL, DEBUG, END, DREL32 = 1011, 1001, 1002, 1003, 1004, 1008, 1009, 1010, 1015
NAMES = {CODE: "code", DATA: "data", BSS: "bss"}
MEMORY_FLAGS = 0xC0000000


class Unsound(Exception):
    """The file is no sound load file; the text says where and why."""


class Reader:
    """Big-endian numbers one after the other."""

    def __init__(self, data: bytes):
        self.data = data
        self.at = 0

    def take(self, size: int) -> bytes:
        if size > len(self.data) - self.at:
            raise Unsound(f"{size} bytes at {self.at} run beyond the end, {len(self.data)}")
        self.at += size
        return self.data[self.at - size : self.at]

    def number(self, size: int) -> int:
        return int.from_bytes(self.take(size), "big")

    def long(self) -> int:
        return self.number(4)

    def require(self, holds: bool, what: str) -> None:
        if not holds:
            raise Unsound(f"before {self.at}: {what}")


class Hunk:
    def __init__(self, kind: int, data: bytes, size: int):
        self.kind = kind
        self.data = data
        self.size = size
        self.relocs: "list[tuple[int, int]]" = []  # offset, number of the hunk aimed at


def read_header(reader: Reader) -> "list[int]":
    """The sizes of all hunks in bytes, without the memory flags."""
    reader.require(reader.long() == HEADER, "no hunk header")
    reader.require(reader.long() == 0, "resident libraries")
    count = reader.long()
    reader.require(count > 0, "an empty hunk table")
    reader.require(reader.long() == 0 and reader.long() == count - 1, "not all hunks are in this file")
    return [(reader.long() & ~MEMORY_FLAGS) * 4 for _ in range(count)]


def read_groups(reader: Reader, width: int) -> "list[tuple[int, int]]":
    """Groups of a count, a hunk number and so many offsets, numbers of `width` bytes, up to a count of 0."""
    relocs = []
    while True:
        count = reader.number(width)
        if count == 0:
            break
        target = reader.number(width)
        relocs += [(reader.number(width), target) for _ in range(count)]
    reader.take(-reader.at % 4)
    return relocs


def skip_symbols(reader: Reader) -> None:
    while True:
        length = reader.long()
        if length == 0:
            break
        reader.take((length & 0xFFFFFF) * 4 + 4)


def read_hunk(reader: Reader, size: int) -> Hunk:
    kind = reader.long() & ~MEMORY_FLAGS
    reader.require(kind in NAMES, f"{kind} begins no hunk")
    own = (reader.long() & ~MEMORY_FLAGS) * 4
    reader.require(own <= size if kind == BSS else own == size, f"{own} bytes where the header tells {size}")
    hunk = Hunk(kind, b"" if kind == BSS else reader.take(size), size)
    while True:
        block = reader.long()
        if block == END:
            return hunk
        if block in (RELOC32, DREL32):
            hunk.relocs += read_groups(reader, 4 if block == RELOC32 else 2)
        elif block == SYMBOL:
            skip_symbols(reader)
        elif block == DEBUG:
            reader.take(reader.long() * 4)
        else:
            raise Unsound(f"before {reader.at}: {block} inside a hunk")


def check_relocs(hunks: "list[Hunk]") -> None:
    for number, hunk in enumerate(hunks):
        for offset, target in hunk.relocs:
            if offset > hunk.size - 4 or hunk.kind == BSS:
                raise Unsound(f"hunk {number}: reloc {offset} is outside it")
            if target >= len(hunks):
                raise Unsound(f"hunk {number}: reloc {offset} is aimed at hunk {target}, which is none")


def read_file(data: bytes) -> "list[Hunk]":
    reader = Reader(data)
    hunks = [read_hunk(reader, size) for size in read_header(reader)]
    if reader.at != len(data):
        raise Unsound(f"{len(data) - reader.at} bytes behind the last hunk")
    check_relocs(hunks)
    return hunks


class Verdict:
    """All code and data in one piece, relocated to address 0."""

    def __init__(self, hunks: "list[Hunk]", bss_unnumbered: bool):
        self.hunks = hunks
        self.type = "Library" if any(hunk.kind == CODE for hunk in hunks) else "Data"
        self.bytes = bytearray(b"".join(hunk.data for hunk in hunks))
        self.relocs: "list[int]" = []
        places = [sum(hunk.size for hunk in hunks[:number]) for number in range(len(hunks))]
        number = -1
        for hunk in hunks:
            number += 0 if bss_unnumbered and hunk.kind == BSS else 1
            for offset, target in hunk.relocs:
                self.relocate(places[number] + offset, places[target])
        self.relocs.sort()

    def relocate(self, place: int, target: int) -> None:
        if place + 4 > len(self.bytes):
            return
        value = int.from_bytes(self.bytes[place : place + 4], "big") + target
        self.bytes[place : place + 4] = (value & 0xFFFFFFFF).to_bytes(4, "big")
        self.relocs.append(place)

    def text(self) -> str:
        lines = [f"type {self.type}",
                 "hunks " + " ".join(f"{NAMES[hunk.kind]}:{hunk.size}" for hunk in self.hunks),
                 f"size {len(self.bytes)}",
                 f"relocs {len(self.relocs)}:" + "".join(f" {reloc}" for reloc in self.relocs)]
        lines += [self.bytes[at : at + 32].hex() for at in range(0, len(self.bytes), 32)]
        return "\n".join(lines)


def judge(path: pathlib.Path, bss_unnumbered: bool) -> Verdict:
    try:
        return Verdict(read_file(path.read_bytes()), bss_unnumbered)
    except (OSError, Unsound) as problem:
        sys.exit(f"{path}: {problem}")


def compare(path: pathlib.Path, saved: pathlib.Path) -> None:
    wanted, got = judge(path, True), judge(saved, False)
    if len(got.hunks) != 1:
        sys.exit(f"{saved}: {len(got.hunks)} hunks")
    for what in ("type", "bytes", "relocs"):
        if getattr(wanted, what) != getattr(got, what):
            sys.exit(f"{path}: {saved} has another {what}")
    print(f"{path.name}: {len(wanted.hunks)} hunks, {len(got.bytes)} bytes, {len(got.relocs)} relocs")


def main() -> None:
    parser = argparse.ArgumentParser(description="Judges Amiga load files.")
    parser.add_argument("--bss-unnumbered", action="store_true", help="BSS hunks take no number")
    parser.add_argument("--same", action="store_true", help="compare FILE with SAVED")
    parser.add_argument("files", nargs="+", type=pathlib.Path, metavar="FILE")
    options = parser.parse_args()
    if len(options.files) != (2 if options.same else 1):
        parser.error("one FILE, or with --same a FILE and a SAVED")
    if options.same:
        compare(*options.files)
    else:
        print(judge(options.files[0], options.bss_unnumbered).text())


if __name__ == "__main__":
    main()
