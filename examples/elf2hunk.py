#!/usr/bin/env python3
"""Turns an object file of the 68000 assembler into an Amiga load file of one hunk.

    elf2hunk.py code|data INPUT.o OUTPUT

The object may hold one section with contents, .text, and in it no addresses but longs that point back into
it, at even offsets. These become relocs, and the longs hold offsets within the hunk. Anything else is an
error: what cannot be moved to any place has no business in a ROM.
"""

import struct
import sys

HUNK_CODE = 1001
HUNK_DATA = 1002
HUNK_RELOC32 = 1004
HUNK_END = 1010
HUNK_HEADER = 1011

EM_68K = 4
ET_REL = 1
SHT_PROGBITS, SHT_SYMTAB, SHT_RELA, SHT_NOBITS, SHT_REL = 1, 2, 4, 8, 9
SHF_ALLOC = 2
R_68K_32 = 1


class Unfit(Exception):
    """The object cannot be made into a load file."""


def sections(elf):
    """The sections as (name, type, flags, offset, size, link, info), in their order."""
    if elf[:6] != b"\x7fELF\x01\x02":
        raise Unfit("not a big-endian 32-bit ELF file")
    kind, machine = struct.unpack_from(">HH", elf, 16)
    if (kind, machine) != (ET_REL, EM_68K):
        raise Unfit("not an object file for the 68000")
    (table,) = struct.unpack_from(">I", elf, 32)
    size, count, names = struct.unpack_from(">HHH", elf, 46)
    raw = [struct.unpack_from(">10I", elf, table + i * size) for i in range(count)]
    start = raw[names][4]

    def name(offset):
        return elf[start + offset : elf.index(b"\0", start + offset)].decode("ascii")

    return [(name(s[0]), s[1], s[2], s[4], s[5], s[6], s[7]) for s in raw]


def one(found, what):
    if len(found) != 1:
        raise Unfit(f"{len(found)} sections {what} instead of one")
    return found[0]


def module(elf):
    """The bytes of the module and its relocs, ascending."""
    table = sections(elf)
    for name, kind, flags, _, size, _, _ in table:
        if name != ".text" and flags & SHF_ALLOC and size and kind in (SHT_PROGBITS, SHT_NOBITS):
            raise Unfit(f"section {name} has contents, all of it belongs into .text")
        if kind == SHT_REL:
            raise Unfit(f"section {name} has relocs without addends")
    text = one([i for i, s in enumerate(table) if s[0] == ".text"], "of the name .text")
    symbols = one([s for s in table if s[1] == SHT_SYMTAB], "of symbols")[3]
    _, _, _, offset, size, _, _ = table[text]
    body = bytearray(elf[offset : offset + size])
    if size == 0 or size % 4 != 0:
        raise Unfit(f"{size} bytes are not a whole number of longs")

    relocs = []
    for _, kind, _, start, length, _, target in table:
        if kind != SHT_RELA or target != text:
            continue
        for entry in range(start, start + length, 12):
            place, info, addend = struct.unpack_from(">IIi", elf, entry)
            if info & 0xFF != R_68K_32:
                raise Unfit(f"the reloc at {place} is of kind {info & 0xFF}, not an absolute long")
            if place % 2 != 0:
                raise Unfit(f"the reloc at {place} is not at an even offset")
            value, _, _, _, section = struct.unpack_from(">IIBBH", elf, symbols + 16 * (info >> 8) + 4)
            if section != text:
                raise Unfit(f"the reloc at {place} does not point into the module")
            # The module's end is a good target, for a tag's end-skip.
            if not 0 <= value + addend <= size:
                raise Unfit(f"the reloc at {place} points beside the module")
            struct.pack_into(">I", body, place, value + addend)
            relocs.append(place)
    return bytes(body), sorted(relocs)


def loadfile(kind, body, relocs):
    longs = len(body) // 4
    head = [HUNK_HEADER, 0, 1, 0, 0, longs, kind, longs]
    tail = [HUNK_RELOC32, len(relocs), 0, *relocs, 0] if relocs else []
    tail.append(HUNK_END)
    return struct.pack(f">{len(head)}I", *head) + body + struct.pack(f">{len(tail)}I", *tail)


def main(arguments):
    kinds = {"code": HUNK_CODE, "data": HUNK_DATA}
    if len(arguments) != 3 or arguments[0] not in kinds:
        sys.exit("usage: elf2hunk.py code|data INPUT.o OUTPUT")
    kind, source, target = arguments
    try:
        with open(source, "rb") as file:
            body, relocs = module(file.read())
        with open(target, "wb") as file:
            file.write(loadfile(kinds[kind], body, relocs))
    except (OSError, Unfit, struct.error) as error:
        sys.exit(f"elf2hunk.py: {source}: {error}")


if __name__ == "__main__":
    main(sys.argv[1:])
