#!/usr/bin/env python3
"""Judges the mnemonic table, and the decoder that reads it, against objdump from the m68k binutils.

    judge.py [--decoder PATH] [--table PATH] [--verbose]

Every one of the 65536 opcode words is decoded with each of several sets of extension words.

    decoder and model   with --decoder: the program's length and text are those of missmodel.py for every record
    68000               what objdump takes for a 68000 instruction has the same length, mnemonic and operands
    later               of all other words: what objdump decodes for a later processor has the same length and
                        mnemonic, and the same operands as far as the table shows them
    confirmed           every such word that the table decodes was taken for an instruction by objdump with at least
                        one set, so that the table invents nothing

What is left out is in the lists below, each line with its reason. Without objdump it ends with status 77.
"""

import argparse
import collections
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import missmodel
import spelling

HERE = pathlib.Path(__file__).resolve().parent
LIBRARY = HERE.parents[1] / "Vantorel Hashes"
OBJDUMP = "m68k-linux-gnu-objdump"
BASE = 0x00F80000
RECORD = 32  # what the decoder gets for each word
LISTED = 16  # what of it objdump gets: fewer lines to read, and enough to be in step again at the next word
NOP = b"\x4e\x71"
LATER = ("68040", "68030", "68020", "68010", "68060")  # the first that knows an instruction speaks for it
CHECKS = ("decoder and model", "68000", "later", "confirmed")

# Five extension words each. In all but the last two bit 8 is clear everywhere, so that an index has the brief format.
SETS = {
    "zero": (0x0000, 0x0000, 0x0000, 0x0000, 0x0000),
    "small": (0x0004, 0x0006, 0x0008, 0x000A, 0x000C),
    "mixed": (0x1234, 0x5678, 0x9ABC, 0xDEF0, 0x2A4C),
    "negative": (0xF8FE, 0x9AC8, 0xFEFC, 0xC680, 0x8002),
    "full": (0x9930, 0x4321, 0x8FAB, 0x0B20, 0x2170),
    "indirect": (0x8765, 0x4321, 0x8FED, 0x4BA9, 0x0170),
}
# Second words that make an instruction of what the opcode word alone leaves open, for lines 0, 4 and F.
SECOND_WORDS = {
    0x0122: "an outer displacement",
    0x01C0: "LPSTOP",
    0x0800: "CHK2, MULS.L, DIVS.L, MOVES to memory",
    0x1001: "MULU.L, DIVU.L, MOVEC, CAS",
    0x2400: "PFLUSHA",
    0x4000: "PMOVE of TC, FMOVE.L",
    0x4400: "PMOVE of SRP, FMOVE.S",
    0x6200: "PMOVE of PSR, FMOVE to memory",
    0x7800: "PMOVE of BAC",
    0x8200: "PTEST, FMOVEM of FPIAR",
    0x9000: "MOVE16, FMOVEM of FPCR",
    0xA400: "FMOVEM to FPSR",
    0xC080: "CAS2",
    0xD0FF: "FMOVEM of registers",
    0xF0FF: "FMOVEM of registers to memory",
}
BEHIND_SECOND_WORD = (0x1234, 0x5678, 0x0246, 0x0044)


class Record:
    """An opcode word with its extension words, and what the decoder makes of it."""

    __slots__ = ("word", "data", "length", "text")

    def __init__(self, word: int, tail: bytes):
        self.word = word
        self.data = word.to_bytes(2, "big") + tail
        self.length, self.text = 0, ""

    def known(self) -> bool:
        return not self.text.startswith("(unknown ")

    def second(self) -> int:
        return int.from_bytes(self.data[2:4], "big")

    def indexes(self) -> "list[int]":
        """The index words that the text shows."""
        return [int(word, 16) for word in re.findall(r"\[X:([0-9A-F]{4})\]", self.text)]

    def __str__(self) -> str:
        return f"{self.data[:12].hex(' ', 2)}: {self.length} {self.text}"


def make_records(words, extensions: "tuple[int, ...]") -> "list[Record]":
    tail = b"".join(extension.to_bytes(2, "big") for extension in extensions)
    tail += NOP * ((RECORD - 2 - len(tail)) // 2)
    return [Record(word, tail) for word in words]


# ---------------------------------------------------------------------------------------------- left out


class LeftOut:
    """Records that are judged otherwise or not at all, and why."""

    def __init__(self, reason: str, matches):
        self.reason = reason
        self.matches = matches


def like(value: int, mask: int = 0xFFFF):
    return lambda record: record.word & mask == value


# Judged as an instruction of a later processor although objdump decodes it for the 68000.
NOT_68000 = [
    LeftOut("line F has no 68000 instruction: objdump decodes coprocessors in any mode", like(0xF000, 0xF000)),
    LeftOut(
        "6xFF is Bcc.L from the 68020 on; a 68000 would branch to an odd address and fail", like(0x60FF, 0xF0FF)
    ),
]
# Judged as unassigned although objdump decodes it.
NO_INSTRUCTION = [
    LeftOut("SUBQ.B #,An: no byte operation on an address register; objdump refuses ADDQ.B", like(0x5108, 0xF1F8)),
    LeftOut("4AFD: SWBEG belongs to the ColdFire relatives", like(0x4AFD)),
]
# Not judged: objdump's length is wrong. It misreads in the same way what the assembler beside it has just written.
WRONG_LENGTH = [
    LeftOut("FTRAPcc.W and .L: objdump leaves the operand behind the second word out", like(0xF27A, 0xFFFE)),
    LeftOut("PTRAPcc.L: objdump takes the second word for half of the operand", like(0xF07B)),
]
# Not judged: the codes cannot express it.
INEXPRESSIBLE = [
    LeftOut(
        "full format with an outer displacement, which no code fetches",
        lambda record: any(word & 0x102 == 0x102 for word in record.indexes()[:1]),
    ),
    LeftOut(
        "second index of a MOVE in full format: its base displacement has no code",
        lambda record: ",Xn)" in record.text and record.indexes()[-1] & 0x100,
    ),
    LeftOut(
        "FPU immediate: its size (2, 4, 8, 12 bytes) is in the second word",
        lambda record: record.word == 0xF23C,
    ),
    LeftOut(
        "FPU operation between registers: the address field must be 0, which objdump does not check",
        lambda record: 0xF228 <= record.word < 0xF240 and not record.second() & 0xE000,
    ),
    LeftOut("PMMU immediate: its size (1 to 8 bytes) is in the second word", like(0xF03C)),
]


class Report:
    """Counts of each check, and the first failures of each in words."""

    def __init__(self, verbose: bool):
        self.shown = sys.maxsize if verbose else 10
        self.agreed = collections.Counter()
        self.failed = collections.Counter()
        self.left_out = collections.Counter()

    def judge(self, check: str, good: bool, record: Record, opinion: str) -> None:
        if good:
            self.agreed[check] += 1
            return
        self.failed[check] += 1
        if self.failed[check] <= self.shown:
            print(f"{check}: {record}\n    against: {opinion}")

    def leave_out(self, lines: list, record: Record) -> bool:
        """Whether a line of the list speaks for the record, which is then counted."""
        for line in lines:
            if line.matches(record):
                self.left_out[line.reason] += 1
                return True
        return False

    def passed(self, check: str) -> bool:
        return self.agreed[check] > 0 and not self.failed[check]

    def close(self, checks: "list[str]") -> int:
        for reason, count in self.left_out.items():
            print(f"left out: {count} {reason}")
        for check in checks:
            verdict = "ok" if self.passed(check) else "FAILED"
            print(f"{check}: {self.agreed[check]} agree, {self.failed[check]} differ, {verdict}")
        return 0 if all(map(self.passed, checks)) else 1


# ---------------------------------------------------------------------------------------------- opinions


def objdump(records: "list[Record]", machine: str) -> "list[tuple[int, str]]":
    """Length and text of the first instruction of each record; the records stand one behind the other."""
    with tempfile.NamedTemporaryFile(suffix=".bin") as image:
        image.write(b"".join(record.data[:LISTED] for record in records))
        image.flush()
        command = [OBJDUMP, "-D", "-z", "-b", "binary", "-m", f"m68k:{machine}", "--no-show-raw-insn", image.name]
        run = subprocess.run(command, stdout=subprocess.PIPE, encoding="ascii", check=True)
    lines = run.stdout.split("\n")
    opinions = []
    for number, line in enumerate(lines):
        # An address takes eight columns, and that of a record ends with 0.
        if line[7:10] == "0:\t":
            at = int(line[:8], 16)
            if at != LISTED * len(opinions):
                break
            end = lines[number + 1][:8].strip()
            opinions.append((int(end, 16) - at if end else LISTED, line[10:].rstrip()))
    if len(opinions) != len(records):
        sys.exit(f"objdump fell out of step behind {records[len(opinions) - 1]}")
    return opinions


def decode_by_model(records: "list[Record]", table: missmodel.Table) -> None:
    for record in records:
        record.length, record.text = missmodel.decode(table, record.data, BASE)


def decode_by_program(records: "list[Record]", program: str, library: pathlib.Path, report: Report) -> None:
    """Takes the program's results in place of the model's, having compared the two."""
    image = b"".join(record.data for record in records)
    run = subprocess.run([program, str(library), f"{BASE:x}"], input=image, stdout=subprocess.PIPE, check=True)
    lines = run.stdout.decode("latin-1").split("\n")
    if len(lines) != len(records) + 1 or lines[-1]:
        sys.exit(f"{program} printed {len(lines) - 1} lines for {len(records)} records")
    for record, line in zip(records, lines):
        length, _, text = line.partition(" ")
        report.judge("decoder and model", (int(length), text) == (record.length, record.text), record, line)
        record.length, record.text = int(length), text


# --------------------------------------------------------------------------------------------- the 68000


def read_ours(record: Record) -> "tuple[str, list]":
    try:
        return spelling.ours(record.text, BASE)
    except spelling.Misspelt as wrong:
        return f"misspelt {wrong}", []


def same_instruction(record: Record, length: int, text: str, at: int) -> bool:
    if length != record.length or not record.known():
        return False
    their_mnemonic, their_operands = spelling.theirs(text, length, at)
    mnemonic, operands = read_ours(record)
    return mnemonic == their_mnemonic and spelling.same_operands(mnemonic, operands, their_operands)


def judge_68000(records: "list[Record]", report: Report) -> "list[Record]":
    """Judges what objdump takes for a 68000 instruction; gives the records that are left."""
    rest = []
    for number, (record, (length, text)) in enumerate(zip(records, objdump(records, "68000"))):
        if text.startswith(".short") or any(line.matches(record) for line in NO_INSTRUCTION):
            rest.append(record)
        elif report.leave_out(NOT_68000, record):
            rest.append(record)
        elif not report.leave_out(INEXPRESSIBLE, record):
            good = same_instruction(record, length, text, number * LISTED)
            report.judge("68000", good, record, f"{length} {text}")
    return rest


# -------------------------------------------------------------------------------------- later processors

FPU = (
    "(?:f|eq|ogt|oge|olt|ole|ogl|or|un|ueq|ugt|uge|ult|ule|ne|t|sf|seq|gt|ge|lt|le|gl|gle|ngle|ngl|nle|nlt|nge|ngt"
    "|sne|st)"
)
MMU = "[blsawigc][cs]"
# Where the second word decides, the table's mnemonic covers all that it can be.
COVERS = {
    "mull": "mul[us]l",
    "divl": "div[us]l?l",
    "chk2/cmp2b": "(chk|cmp)2b",
    "chk2/cmp2w": "(chk|cmp)2w",
    "chk2/cmp2l": "(chk|cmp)2l",
    "fgen": f"f(?!b{FPU}l?$|s{FPU}$|db|trap|nop$|save|restore)[a-z0-9]+",
    "fscc": f"fs{FPU}",
    "fdbcc": f"fdb{FPU}",
    "ftrapcc": f"ftrap{FPU}",
    "fnop": "fnop|fbf",
    "pgen": "p(move|flush|load|test|valid)[a-z0-9]*",
    "pscc": f"ps{MMU}",
    "pdbcc": f"pdb{MMU}",
    "ptrapcc": f"ptrap{MMU}",
    "ptrapccw": f"ptrap{MMU}w",
}
GENERAL = ("fgen", "pgen")  # whether they have an operand in memory at all is told by the second word


def covers(mnemonic: str, their_mnemonic: str) -> bool:
    return re.fullmatch(COVERS.get(mnemonic, re.escape(mnemonic)), their_mnemonic) is not None


def same_later(record: Record, length: int, text: str, at: int) -> bool:
    """Length and mnemonic, and all operands that the table does not leave to a word in brackets."""
    if not record.known() or length != record.length:
        return False
    their_mnemonic, their_operands = spelling.theirs(text, length, at)
    mnemonic, operands = read_ours(record)
    if not covers(mnemonic, their_mnemonic):
        return False
    told = [operand for operand in operands if operand[0] != "word"]
    if len(told) == len(operands):
        return spelling.same_operands(mnemonic, operands, their_operands)
    their = iter(their_operands)
    return mnemonic in GENERAL or all(any(spelling.same_operand(mnemonic, a, b) for b in their) for a in told)


def later_opinions(records: "list[Record]") -> list:
    """What the first of the later processors that knows an instruction makes of it, with its place; else None."""
    opinions = [None] * len(records)
    pending = [number for number, record in enumerate(records) if not any(x.matches(record) for x in NO_INSTRUCTION)]
    for machine in LATER:
        answers = objdump([records[number] for number in pending], machine)
        for place, (number, (length, text)) in enumerate(zip(pending, answers)):
            if not text.startswith(".short"):
                opinions[number] = (length, text, place * LISTED, machine)
        pending = [number for number in pending if not opinions[number]]
    return opinions


def judge_later(records: "list[Record]", report: Report) -> None:
    confirmed = set()
    for record, opinion in zip(records, later_opinions(records)):
        if not opinion:
            continue
        confirmed.add(record.word)
        if not report.leave_out(WRONG_LENGTH + INEXPRESSIBLE, record):
            length, text, at, machine = opinion
            report.judge("later", same_later(record, length, text, at), record, f"{length} {text} ({machine})")
    known = {record.word: record for record in records if record.known()}
    for word, record in sorted(known.items()):
        report.judge("confirmed", word in confirmed, record, "no instruction of any processor, says objdump")


# -------------------------------------------------------------------------------------------------- main


def judge_all(decode, report: Report) -> None:
    later = []
    for extensions in SETS.values():
        records = make_records(range(0x10000), extensions)
        decode(records)
        later += judge_68000(records, report)
    undecided = sorted({record.word for record in later if record.word >> 12 in (0x0, 0x4, 0xF)})
    for second in SECOND_WORDS:
        records = make_records(undecided, (second, *BEHIND_SECOND_WORD))
        decode(records)
        later += records
    judge_later(later, report)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--decoder", help="the program's decoder as a test program")
    parser.add_argument("--table", type=pathlib.Path, default=LIBRARY / "missassemble.ini")
    parser.add_argument("--verbose", action="store_true", help="show all failures")
    arguments = parser.parse_args()
    if not shutil.which(OBJDUMP):
        print(f"skipped: {OBJDUMP} (binutils-m68k-linux-gnu) is not installed")
        return 77
    report = Report(arguments.verbose)
    table = missmodel.Table(arguments.table)

    def decode(records: "list[Record]") -> None:
        decode_by_model(records, table)
        if arguments.decoder:
            decode_by_program(records, arguments.decoder, arguments.table.parent, report)

    judge_all(decode, report)
    return report.close([check for check in CHECKS if arguments.decoder or check != CHECKS[0]])


if __name__ == "__main__":
    sys.exit(main())
