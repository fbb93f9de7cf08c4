#!/usr/bin/env python3
"""A second opinion on the decoder: the mnemonic table's template codes, expanded without the program.

    missmodel.py TABLE HEX...        the length and the text of the instruction whose bytes are given

It is written from what the codes mean (missassemble.md, beside the table), not from the program's source.
"""

import functools
import pathlib
import re
import sys

MAX_TEXT = 255
MAX_PASSES = 32
LEADING_ZEROS = re.compile(r"(?<=[ #$,])0+(?=[0-9A-F])")
CONTROL_REGISTERS = {
    0x000: "SFC (68010+)",
    0x001: "DFC (68010+)",
    0x002: "CACR (68020+)",
    0x800: "USP (68010+)",
    0x801: "VBR (68010+)",
    0x802: "CAAR (68020+)",
    0x803: "MSP (68020+)",
    0x804: "ISP (68020+)",
}


class Entry:
    """A line of [mnemonics]."""

    def __init__(self, line: str):
        self.line = line
        pattern = line[:16]
        self.value = sum(0x8000 >> n for n, c in enumerate(pattern) if c == "1")
        self.mask = 0xFFFF & ~sum(0x8000 >> n for n, c in enumerate(pattern) if c == "?")
        self.text = line[17:]


class Table:
    """The file: the entries in their order, the operand sections, and for each opcode word its entry."""

    def __init__(self, path: pathlib.Path):
        self.sections = {}
        self.entries = []
        read_sections(path.read_bytes().decode("latin-1"), self.sections)
        for line in self.sections.get("mnemonics", []):
            if not line:
                break
            self.entries.append(Entry(line))
        self.lookups = {name: read_items(lines) for name, lines in self.sections.items()}
        self.by_word = by_word(self.entries)


def read_sections(text: str, sections: dict) -> None:
    lines = None
    for line in text.split("\n"):
        line = line.split("\r")[0]
        if line.startswith("["):
            lines = []
            sections.setdefault(line[1:].split("]")[0].lower(), lines)
        elif lines is not None:
            lines.append(line)


def read_items(lines: list) -> dict:
    items = {}
    for line in lines:
        key, equals, value = line.partition("=")
        if equals:
            items.setdefault(key, value)
    return items


def by_word(entries: list) -> list:
    """The entry that wins each of the 65536 words: the later lines first, so that earlier ones overwrite them."""
    winners = [None] * 65536
    for entry in reversed(entries):
        free = 0xFFFF & ~entry.mask
        bits = free
        while True:
            winners[entry.value | bits] = entry
            if not bits:
                break
            bits = (bits - 1) & free
    return winners


@functools.lru_cache(maxsize=None)
def digit(c: str) -> int:
    """A hex digit's value; what is no digit counts on from '0', as ')' = -7 does."""
    if "a" <= c.lower() <= "f":
        return ord(c.lower()) - ord("a") + 10
    return ord(c) - ord("0")


def field(word: int, start: str, width: str) -> int:
    a, b = digit(start), digit(width)
    return ((word << a) & 0xFFFF) >> (16 - b) if a >= 0 and 0 <= b <= 16 else 0


def register_list(mask: int) -> str:
    parts = []
    for letter, bits in (("D", mask & 0xFF), ("A", mask >> 8)):
        n = 0
        while n < 8:
            last = n
            while last < 8 and bits >> last & 1:
                last += 1
            if last - n >= 3:
                parts.append(f"{letter}{n}-{letter}{last - 1}")
                n = last
            else:
                parts += [f"{letter}{n}"] * (bits >> n & 1)
                n += 1
    return "/".join(parts)


class Decoding:
    """One instruction on its way from opcode word to text."""

    def __init__(self, table: Table, data: bytes):
        self.table = table
        self.data = data
        self.length = 0
        self.opcode = self.fetch(2)
        self.long_immediate = True
        self.predecrement = False
        self.extension = None
        self.mask = 0
        entry = table.by_word[self.opcode]
        self.text = entry.text if entry else "(unknown %0)"

    def fetch(self, size: int) -> int:
        """The next bytes; those past the end are 0."""
        data = self.data[self.length : self.length + size]
        self.length += size
        return int.from_bytes(data.ljust(size, b"\0"), "big")

    def expand(self) -> None:
        for _ in range(MAX_PASSES):
            if "%" not in self.text:
                break
            self.text = self.one_pass(self.text)[:MAX_TEXT]

    def one_pass(self, text: str) -> str:
        parts = []
        at = 0
        while True:
            code = text.find("%", at)
            if code < 0:
                return "".join(parts) + text[at:]
            parts.append(text[at:code])
            kind, which = (text[code + 1 : code + 3] + "\0\0")[:2]
            at = code + 3
            if kind == "(":
                parts.append(self.lookup(text[code + 2 : code + 5]))
                at = code + 6
            elif kind == "%":
                parts.append(self.fetching(which))
            elif kind == "X":
                parts.append(self.indexed(which))
            else:
                parts.append(self.bits(kind, which))

    def bits(self, start: str, width: str) -> str:
        value = field(self.opcode, start, width)
        return f"{value:02X}" if width == "8" else f"{value}"

    def lookup(self, name: str) -> str:
        key = str(field(self.opcode, name[1:2] or "\0", name[2:3] or "\0"))
        text = self.table.lookups.get(name.lower(), {}).get(key, "???")
        if name[:1].lower() == "s":
            if text[:1] in ("B", "b", "W", "w"):
                self.long_immediate = False
            elif text[:1] in ("L", "l"):
                self.long_immediate = True
        if text.startswith("-"):
            self.predecrement = True
        return text

    def indexed(self, which: str) -> str:
        if self.extension is None:
            self.extension = self.fetch(2)
        word = self.extension
        if which == "R":
            return f"[X:{word:04X}]" + register(word)
        if which == "D":
            return f"[X:{word:04X}]" + self.displacement(word)
        return f"[X:{word:04X}]"

    def displacement(self, word: int) -> str:
        if not word & 0x100:
            return f"{word & 0xFF:04X}"
        size = word >> 4 & 3
        if size < 2:
            return "?"
        return f"{self.fetch(2):04X}" if size == 2 else f"{self.fetch(4):08X}"

    def fetching(self, which: str) -> str:
        if which == "%":
            which = "4" if self.long_immediate else "2"
        if which in "124":
            size = int(which)
            return f"{self.fetch(size):0{2 * size}X}"
        if which == "0":
            return f"{self.opcode:x}"
        if which in "Cc":
            return control(self.fetch(2), which == "C")
        if which == "R":
            self.mask = self.fetch(2)
            return "%%r"
        if which == "r":
            return self.registers()
        return "???"

    def registers(self) -> str:
        mask = self.mask
        if self.predecrement:
            mask = int(f"{mask:016b}"[::-1], 2)
        return register_list(mask)


def register(word: int) -> str:
    return ("A" if word & 0x8000 else "D") + str(word >> 12 & 7)


def control(word: int, towards: bool) -> str:
    name = CONTROL_REGISTERS.get(word & 0xFFF, "(unknown)")
    return f"{register(word)},{name}" if towards else f"{name},{register(word)}"


def resolve_pc(text: str, base: int) -> str:
    """Puts the address in place of the displacement before "(PC)" or "(pc)"."""
    marker = "(PC)" if "(PC)" in text else "(pc)"
    at = text.find(marker)
    if at < 0:
        return text
    start = at
    while start > 0 and text[start - 1] not in " ,$":
        start -= 1
    start = max(start, 1)
    target = base + 2 + signed_hex(text[start:at])
    rest = text[at:] if marker == "(PC)" else text[at + len(marker) :]
    return text[:start] + f"{target & 0xFFFFFFFF:06X}" + rest


def signed_hex(digits: str) -> int:
    digits = digits[:8]
    if not digits:
        return 0
    value = int(digits, 16)
    return value - (1 << 4 * len(digits)) if digits[0] > "7" else value


def strip_zeros(text: str) -> str:
    return LEADING_ZEROS.sub("", text)


def decode(table: Table, data: bytes, base: int) -> "tuple[int, str]":
    """Length and text of the instruction that the bytes begin with, when they stand at address `base`."""
    state = Decoding(table, data)
    state.expand()
    return state.length, strip_zeros(resolve_pc(state.text, base))


def main() -> int:
    if len(sys.argv) < 3:
        print(__doc__.strip())
        return 2
    table = Table(pathlib.Path(sys.argv[1]))
    length, text = decode(table, bytes.fromhex("".join(sys.argv[2:])), 0)
    print(length, text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
