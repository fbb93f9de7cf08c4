#!/usr/bin/env python3
"""Judges the mnemonic table, and the decoder that reads it, against objdump from the m68k binutils.

    judge.py [--decoder PATH] [--table PATH] [--verbose]

Every one of the 65536 opcode words is decoded with each of several sets of extension words.

1. With --decoder the program's length and text are those of missmodel.py for every record.
2. What objdump takes for a 68000 instruction has the same length, mnemonic and operands.
3. Everything else that the table decodes is an instruction of a later processor: whenever objdump decodes it for one
   of those, length and mnemonic agree, and at least one set of extension words has confirmed it. What objdump decodes
   for a later processor and the table does not is counted as well; 99 % must agree.

What is left out of 2 and 3 is in the lists below, each line with its reason. Without objdump it ends with status 77.
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
RECORD = 32
BASE = 0x00F80000
NOP = b"\x4e\x71"
LATER = ("68040", "68030", "68020", "68010", "68060")  # the first that knows an instruction speaks for it

# Five extension words each. In all but "full" bit 8 is clear everywhere, so that an index has the brief format.
SETS = {
    "zero": (0x0000, 0x0000, 0x0000, 0x0000, 0x0000),
    "small": (0x0004, 0x0006, 0x0008, 0x000A, 0x000C),
    "mixed": (0x1234, 0x5678, 0x9ABC, 0xDEF0, 0x2A4C),
    "negative": (0xF8FE, 0x9AC8, 0xFEFC, 0xC680, 0x8002),
    "full": (0x8765, 0x4321, 0x8FED, 0x4BA9, 0x0170),
}
# Second words that make an instruction of what the opcode word alone leaves open.
SECOND_WORDS = {
    0x0800: "MOVES to memory, CHK2, MULS.L, DIVS.L",
    0x1001: "MULU.L, DIVU.L, MOVEC, CAS",
    0x2400: "PFLUSHA, PMOVE",
    0x01C0: "LPSTOP",
    0x4000: "PMOVE of TC, FMOVE.L",
    0x6200: "PMOVE of PSR, FMOVE to memory",
    0x7800: "PMOVE of BAC",
    0x8200: "PTEST, FMOVEM of FPIAR",
    0x9000: "MOVE16, FMOVEM of FPCR",
    0x4400: "PMOVE of SRP, FMOVE.S",
    0xA400: "FMOVEM to FPSR",
    0xC080: "CAS2",
    0xD0FF: "FMOVEM of registers",
    0xF0FF: "FMOVEM of registers to memory",
}


class Skip:
    """A reason not to judge some records: `matches` gets the Record and objdump's text."""

    def __init__(self, reason: str, matches):
        self.reason = reason
        self.matches = matches


def indexes(record) -> "list[int]":
    """The extension words that the text shows."""
    return [int(word, 16) for word in re.findall(r"\[X:([0-9A-F]{4})\]", record.text)]


def words(low: int, high: int, mask: int = 0xFFFF):
    return lambda record, _: low <= record.word & mask <= high


# What objdump takes for a 68000 instruction, but is none here.
NOT_68000 = [
    Skip("line F has no 68000 instruction: judged as coprocessor instructions", words(0xF000, 0xFFFF)),
    Skip("4AFD is an instruction of a ColdFire relative, unassigned on the 68000", words(0x4AFD, 0x4AFD)),
    Skip(
        "6xFF is Bcc.L from the 68020 on; on a 68000 it would branch to an odd address: judged as Bcc.L",
        lambda record, _: record.word & 0xF0FF == 0x60FF,
    ),
]
# What the codes cannot express. The full format of an extension word begins with the 68020.
INEXPRESSIBLE = [
    Skip(
        "full format with an outer displacement, which no code fetches",
        lambda record, _: any(word & 0x100 and word & 2 for word in indexes(record)[:1]),
    ),
    Skip(
        "second index of a MOVE in full format: its base displacement has no code",
        lambda record, _: ",Xn)" in record.text and indexes(record)[-1] & 0x100,
    ),
]


class Record:
    """An opcode word with its extension words, and what the decoder makes of it."""

    __slots__ = ("word", "data", "length", "text")

    def __init__(self, word: int, extensions: "tuple[int, ...]"):
        tail = b"".join(extension.to_bytes(2, "big") for extension in extensions)
        self.word = word
        self.data = word.to_bytes(2, "big") + tail + NOP * ((RECORD - 2 - len(tail)) // 2)
        self.length, self.text = 0, ""

    def known(self) -> bool:
        return not self.text.startswith("(unknown ")

    def __str__(self) -> str:
        return f"{self.data[:12].hex(' ', 2)} {self.length} {self.text}"


class Report:
    """Counts of each check, and the first failures of each in words."""

    def __init__(self, verbose: bool):
        self.shown = 1000000 if verbose else 10
        self.agreed = collections.Counter()
        self.failed = collections.Counter()
        self.left_out = collections.Counter()

    def judge(self, check: str, good: bool, record, opinion: str) -> None:
        if good:
            self.agreed[check] += 1
            return
        self.failed[check] += 1
        if self.failed[check] <= self.shown:
            print(f"{check}: {record}\n    against: {opinion}")

    def line(self, check: str) -> str:
        agreed, failed = self.agreed[check], self.failed[check]
        share = 100 * agreed / (agreed + failed) if agreed + failed else 0
        return f"{check}: {agreed} agree, {failed} differ ({share:.2f} %)"


# -------------------------------------------------------------------------------------------- the opinions

OPINION = re.compile(r"^ *([0-9a-f]*[02468ace]0|0):\t([^\n]*)\n *(?:([0-9a-f]+):)?", re.MULTILINE)


def objdump(records: list, machine: str) -> "list[tuple[int, str]]":
    """Length and text of the first instruction of each record; the records stand one behind the other."""
    with tempfile.NamedTemporaryFile(suffix=".bin") as image:
        image.write(b"".join(record.data for record in records))
        image.flush()
        command = [OBJDUMP, "-D", "-z", "-b", "binary", "-m", f"m68k:{machine}", "--no-show-raw-insn", image.name]
        run = subprocess.run(command, capture_output=True, text=True, check=True)
    opinions = [None] * len(records)
    for found in OPINION.finditer(run.stdout):
        at = int(found[1], 16)
        opinions[at // RECORD] = (int(found[3] or "0", 16) - at, found[2].rstrip())
    if None in opinions:
        sys.exit(f"objdump fell out of step at record {opinions.index(None)}")
    return opinions


def decode_by_model(records: list, table: missmodel.Table) -> None:
    for record in records:
        record.length, record.text = missmodel.decode(table, record.data, BASE)


def decode_by_program(records: list, program: str, report: Report) -> None:
    """Takes the program's results in place of the model's, having compared the two."""
    image = b"".join(record.data for record in records)
    run = subprocess.run([program, str(LIBRARY), f"{BASE:x}"], input=image, capture_output=True, check=True)
    lines = run.stdout.decode("latin-1").split("\n")
    if len(lines) != len(records) + 1 or lines[-1]:
        sys.exit(f"{program} printed {len(lines) - 1} lines for {len(records)} records")
    for record, line in zip(records, lines):
        length, _, text = line.partition(" ")
        report.judge("decoder and model", (int(length), text) == (record.length, record.text), record, line)
        record.length, record.text = int(length), text


# ---------------------------------------------------------------------------------------------- the 68000


def left_out(skips: list, record: Record, opinion: str, report: Report) -> bool:
    for skip in skips:
        if skip.matches(record, opinion):
            report.left_out[skip.reason] += 1
            return True
    return False


def same_instruction(record: Record, length: int, text: str, at: int) -> bool:
    if length != record.length:
        return False
    their_mnemonic, their_operands = spelling.theirs(text, length, at)
    try:
        mnemonic, operands = spelling.ours(record.text, BASE)
    except spelling.Misspelt:
        return False
    return mnemonic == their_mnemonic and spelling.same_operands(mnemonic, operands, their_operands)


def judge_68000(records: list, report: Report) -> list:
    """Judges what objdump takes for a 68000 instruction; gives the records that are left."""
    rest = []
    for number, (record, (length, text)) in enumerate(zip(records, objdump(records, "68000"))):
        if text.startswith(".short"):
            rest.append(record)
        elif left_out(NOT_68000, record, text, report):
            rest.append(record)
        elif not left_out(INEXPRESSIBLE, record, text, report):
            good = same_instruction(record, length, text, number * RECORD)
            report.judge("68000", good, record, f"{length} {text}")
    return rest


# ---------------------------------------------------------------------------------------- later processors

CONDITIONS = "(?:t|f|hi|ls|cc|cs|ne|eq|vc|vs|pl|mi|ge|lt|gt|le)"
FPU = (
    "(?:f|eq|ogt|oge|olt|ole|ogl|or|un|ueq|ugt|uge|ult|ule|ne|t|sf|seq|gt|ge|lt|le|gl|gle|ngle|ngl|nle|nlt|nge|ngt"
    "|sne|st)"
)
MMU = "[bls awigc][cs]".replace(" ", "")
# Where the second word decides, the table's mnemonic covers all that it can be.
COVERS = {
    "mull": "mul[us]l",
    "divl": "div[us]l?l",
    "chk2b": "(chk|cmp)2b",
    "chk2w": "(chk|cmp)2w",
    "chk2l": "(chk|cmp)2l",
    "fgen": f"f(?!b{FPU}l?$|s{FPU}$|db|trap|nop$|save|restore)[a-z0-9]+",
    "fscc": f"fs{FPU}",
    "fdbcc": f"fdb{FPU}",
    "ftrapcc": f"ftrap{FPU}",
    "ftrapccw": f"ftrap{FPU}w",
    "ftrapccl": f"ftrap{FPU}l",
    "fnop": "fnop|fbf",
    "pgen": "p(move|flush|load|test|valid)[a-z0-9]*",
    "pscc": f"ps{MMU}",
    "pdbcc": f"pdb{MMU}",
    "ptrapcc": f"ptrap{MMU}",
    "ptrapccw": f"ptrap{MMU}w",
    "ptrapccl": f"ptrap{MMU}l",
}


def covers(mnemonic: str, their_mnemonic: str) -> bool:
    return re.fullmatch(COVERS.get(mnemonic, re.escape(mnemonic)), their_mnemonic) is not None


def same_later(record: Record, length: int, text: str, at: int) -> bool:
    """Length and mnemonic; and all that the table does not leave to a word in brackets."""
    if not record.known() or length != record.length:
        return False
    their_mnemonic, their_operands = spelling.theirs(text, length, at)
    try:
        mnemonic, operands = spelling.ours(record.text, BASE)
    except spelling.Misspelt:
        mnemonic, operands = record.text.split(" ")[0].replace(".", "").lower(), []
    return covers(mnemonic, their_mnemonic)


def later_opinions(records: list) -> list:
    """What the first of the later processors that knows an instruction makes of it, with its place; else None."""
    opinions = [None] * len(records)
    open_ones = list(range(len(records)))
    for machine in LATER:
        answers = objdump([records[number] for number in open_ones], machine)
        for place, (number, (length, text)) in enumerate(zip(open_ones, answers)):
            if not text.startswith(".short"):
                opinions[number] = (length, text, place * RECORD, machine)
        open_ones = [number for number in open_ones if not opinions[number]]
    return opinions


def judge_later(records: list, report: Report, confirmed: set) -> None:
    for record, opinion in zip(records, later_opinions(records)):
        if not opinion:
            continue
        length, text, at, machine = opinion
        confirmed.add(record.word)
        if not left_out(INEXPRESSIBLE, record, text, report):
            good = same_later(record, length, text, at)
            report.judge("later", good, record, f"{length} {text} ({machine})")


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
    confirmed=set()
    known=set()
    rest_words=set()
    allr=[]
    for name, extensions in SETS.items():
        records = [Record(word, extensions) for word in range(65536)]
        decode_by_model(records, table)
        rest = judge_68000(records, report)
        allr+=rest
        known|={r.word for r in rest if r.known()}
        rest_words|={r.word for r in rest}
    for first in SECOND_WORDS:
        records=[Record(w,(first,0x1234,0x5678,0x0246,0x0044)) for w in sorted(rest_words)]
        decode_by_model(records, table)
        allr+=records
    judge_later(allr,report,confirmed)
    for c in ("68000","later"): print(report.line(c))
    print(report.left_out)
    print(" ".join("%04x"%w for w in sorted(known-confirmed)))
    return 1


if __name__ == "__main__":
    sys.exit(main())
