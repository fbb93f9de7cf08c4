#!/usr/bin/env python3
"""Walks every component of the real ROMs, and has objdump judge each instruction that is listed.

    real_rom_walk_test.py --program PATH [--verbose]

1. Each walk ends, and so does each one-pass listing.
2. Every byte of a component is listed once; only its last instruction may run over its end.
3. ROMTAGs found here, in the image, are named in the listing with what they point at.
4. The listing file holds what the console shows, and the relocs.
5. Every instruction has the length, mnemonic and operands that objdump gives it at its place. One that a 68000 does
   not have is judged as the first later processor that knows it has it, by length and mnemonic.
6. objdump, begun where a run of code begins, sees instructions at the same addresses.
7. With the hints of the hash library more than half of a ROM's components is code.

Ends with status 77 without the real ROMs (VANTOREL_REAL_DIR) or objdump.
"""

import argparse
import collections
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import spelling

ROMS = ("aros-20130502.rom", "aros-20130502-ext.rom")
LIBRARY = pathlib.Path(__file__).resolve().parents[2] / "Vantorel Hashes"
OBJDUMP = "m68k-linux-gnu-objdump"
PROCESSORS = ("68000", "68010", "68020", "68040", "68060")
RECORD = 32
NOP = b"\x4e\x71"
OUT_OF_RANGE = "ERROR, ROM or component out of range"
PLACE = re.compile(r"^ ?(\d+) .* (?:\d+\??:)?(\d+):(\d+)\??\s")
NARRATION = re.compile(r"^(MissHint:| HINT |Checking |JUMPTABLE Entrypoint=|No misassembler hints)")
OPINION = re.compile(r"^ *([0-9a-f]*[02468ace]0|0):\t([^\n]*)\n *(?:([0-9a-f]+):)?", re.MULTILINE)


class Failures:
    def __init__(self, verbose: bool):
        self.shown = 1000000 if verbose else 20
        self.count = 0

    def expect(self, good: bool, text: str) -> None:
        self.count += not good
        if not good and self.count <= self.shown:
            print(f"failed: {text}")


class Rom:
    """A real ROM, and sessions with it."""

    def __init__(self, program: str, path: pathlib.Path, folder: pathlib.Path):
        self.program, self.path, self.folder = program, path, folder
        self.image = path.read_bytes()
        lines = self.session("roms", "rom")
        self.base = int(re.search(r"ROMBase:([0-9a-f]{8})", lines)[1], 16)
        found = (PLACE.match(line) for line in lines.split("\n"))
        self.components = [(int(place[2]), int(place[3])) for place in found if place]

    def session(self, *commands: str) -> str:
        script = "\n".join((f"loadrom {self.path.name}", "analyserom", *commands, "exit", ""))
        run = subprocess.run(
            [self.program], input=script.encode(), capture_output=True, cwd=self.folder, timeout=60, check=True
        )
        return run.stdout.decode("latin-1")

    def long(self, offset: int) -> int:
        return int.from_bytes(self.image[offset : offset + 4], "big")

    def tags(self, start: int, size: int) -> "list[int]":
        """Image offsets of the ROMTAGs of a component, which keep whole within it."""
        found = (offset for offset in range(start, start + size - 25, 2))
        return [
            offset
            for offset in found
            if self.image[offset : offset + 2] == b"\x4a\xfc" and self.long(offset + 2) == self.base + offset
        ]


class Line:
    """A line of a listing that begins with an address; `label` is what stood before it."""

    def __init__(self, text: str, label: str):
        self.text, self.label = text, label
        self.address = int(text.split(" ", 1)[0], 16)

    def isdump(self) -> bool:
        return re.match(r"^[0-9A-F]{6} [0-9A-F]{2}( |$)", self.text) is not None and len(self.text) > 58

    def iscode(self) -> bool:
        return re.match(r"^[0-9A-F]{6} [A-Z(]", self.text) is not None and not self.isdump()


def listing_of(console: str) -> "tuple[list[Line], str]":
    """The lines of the walk in a session, and its totals."""
    begin = console.index("Found ")
    lines, label = [], ""
    for text in console[begin:].split("\n")[1:]:
        if text.startswith("Scanned "):
            return lines, text
        if re.match(r"^[0-9A-F]{6} ", text):
            lines.append(Line(text, label))
            label = ""
        else:
            label = text
    raise ValueError("no totals")


# ------------------------------------------------------------------------------------------------ the listing


def check_totals(name: str, lines: list, totals: str, start: int, size: int, failures: Failures) -> None:
    scanned, code, data = map(int, re.findall(r"\d+", totals))
    failures.expect(scanned == code + data, f"{name}: {totals}")
    over = scanned - size
    last = lines[-1]
    allowed = 8 if last.iscode() else 0
    failures.expect(0 <= over <= allowed, f"{name}: {totals} for {size} bytes, last {last.text}")
    failures.expect(lines[0].address == start, f"{name}: begins with {lines[0].text}")


def check_tag(name: str, rom: Rom, tag: int, place: "tuple[int, int]", lines: list, failures: Failures) -> None:
    """What a ROMTAG points at in its component is named."""
    by_address = {line.address: line for line in lines}
    start, size = place

    def expect_at(address: int, pattern: str) -> None:
        if not rom.base + start <= address < rom.base + start + size:
            return
        line = by_address.get(address)
        text = f"{line.label}\n{line.text}" if line else "no line"
        failures.expect(re.search(pattern, text) is not None, f"{name}: {pattern!r} not at {address:06X}: {text}")

    expect_at(rom.base + tag, ";RT_MATCHWORD$")
    for field, text in ((14, "RT_NAME"), (18, "RT_IDSTRING"), (22, "RT_INIT")):
        expect_at(rom.base + tag + field, f" 0x{rom.long(tag + field):06X} ;{text}$")
    expect_at(rom.long(tag + 14), r'".*\\0" RT_NAME$')
    expect_at(rom.long(tag + 18), r'".*\\0" RT_IDSTRING$')
    init = rom.long(tag + 22)
    if not rom.image[tag + 10] & 0x80:
        expect_at(init, "^(RT_INIT|Library .*)\n")
        return
    expect_at(init + 4, ";Vector table address$")
    expect_at(init + 8, ";Init Struct {} address$")
    expect_at(init + 12, ";Library init\\(\\) address$")
    if rom.base <= init < rom.base + len(rom.image):
        expect_at(rom.long(init - rom.base + 12), "^Library init\\(\\)\n")


def check_file(name: str, rom: Rom, console: str, failures: Failures) -> None:
    """The file less what only it has is the console's listing."""
    text = (rom.folder / "missassembler.tmp").read_text("latin-1")
    shown = console[console.index("Found ") : console.index("Scanned ")].split("\n")[1:-1]
    begin = next(n for n, line in enumerate(shown) if not NARRATION.match(line))
    written = [line for line in text.split("\n")[2:-2] if not line.startswith("RELOC=")]
    written = [line[1:] if line.startswith(" ") else line for line in written]
    failures.expect(written == shown[begin:], f"{name}: file and console differ")


# ------------------------------------------------------------------------------------------------ the judge


def opinions(codes: "list[bytes]", processor: str) -> "list[tuple[int, str]]":
    """Length and text that objdump gives each instruction, which stand `RECORD` bytes apart."""
    image = b"".join((code + NOP * RECORD)[:RECORD] for code in codes)
    with tempfile.NamedTemporaryFile(suffix=".bin") as file:
        file.write(image)
        file.flush()
        command = [OBJDUMP, "-D", "-z", "-b", "binary", "-m", f"m68k:{processor}", "--no-show-raw-insn", file.name]
        run = subprocess.run(command, capture_output=True, text=True, check=True)
    answers = [(0, "")] * len(codes)
    for found in OPINION.finditer(run.stdout):
        at = int(found[1], 16)
        if at % RECORD == 0:
            answers[at // RECORD] = (int(found[3] or "0", 16) - at, found[2].rstrip())
    return answers


class Instruction:
    def __init__(self, line: Line, following: int, rom: Rom):
        self.address, self.length = line.address, following - line.address
        self.text = re.sub(r"\s+;.*$", "", line.text.split(" ", 1)[1]).rstrip()
        offset = self.address - rom.base
        self.code = rom.image[offset : offset + 20]

    def islongbranch(self) -> bool:
        """Bcc.L of the 68020; a 68000 would take it for a branch to an odd address."""
        return self.code[0] >> 4 == 6 and self.code[1] == 0xFF


def same_as(instruction: Instruction, length: int, text: str, at: int, isfull: bool) -> bool:
    mnemonic, operands = spelling.theirs(text, length, at)
    try:
        ours, our_operands = spelling.ours(instruction.text, instruction.address)
    except spelling.Misspelt:
        ours, our_operands = instruction.text.split(" ")[0].replace(".", "").lower(), None
    same = length == instruction.length and mnemonic == ours
    return same and (not isfull or (our_operands is not None and spelling.same_operands(ours, our_operands, operands)))


def judge(instructions: "list[Instruction]", failures: Failures) -> collections.Counter:
    """Counts the instructions by the first processor that has them."""
    counts = collections.Counter()
    rest = instructions
    for processor in PROCESSORS:
        if not rest:
            break
        unknown = []
        answers = opinions([instruction.code for instruction in rest], processor)
        for number, (instruction, (length, text)) in enumerate(zip(rest, answers)):
            if text.startswith(".short") or (processor < "68020" and instruction.islongbranch()):
                unknown.append(instruction)
                continue
            counts[processor] += 1
            good = same_as(instruction, length, text, number * RECORD, processor == "68000")
            failures.expect(good, f"{instruction.address:06X} {instruction.text}: {length} {text} ({processor})")
        rest = unknown
    for instruction in rest:
        counts["unknown"] += 1
        failures.expect(False, f"{instruction.address:06X} {instruction.text}: no processor has it")
    return counts


def runs_of(instructions: "list[Instruction]") -> "list[list[Instruction]]":
    """Instructions that stand one behind the other."""
    runs, end = [], None
    for instruction in sorted(instructions, key=lambda instruction: instruction.address):
        if instruction.address != end:
            runs.append([])
        runs[-1].append(instruction)
        end = instruction.address + instruction.length
    return runs


def check_runs(rom: Rom, instructions: "list[Instruction]", failures: Failures) -> None:
    """objdump, begun where a run begins, sees instructions at the same addresses up to its end."""
    command = [OBJDUMP, "-D", "-z", "-b", "binary", "-m", "m68k:68020", "--no-show-raw-insn"]
    command += [f"--adjust-vma={rom.base:#x}", str(rom.path)]
    for run in runs_of(instructions):
        ours = [instruction.address for instruction in run]
        bounds = [f"--start-address={ours[0]:#x}", f"--stop-address={ours[-1] + run[-1].length:#x}"]
        text = subprocess.run([*command, *bounds], capture_output=True, text=True, check=True).stdout
        theirs = [int(address, 16) for address in re.findall(r"^ *([0-9a-f]+):\t", text, re.MULTILINE)]
        failures.expect(ours == theirs, f"{rom.path.name}: other instructions in the run from {ours[0]:06X}")


# ------------------------------------------------------------------------------------------------------- main


def walk(rom: Rom, number: int, failures: Failures) -> "list[Instruction]":
    start, size = rom.components[number]
    name = f"{rom.path.name} {number}"
    console = rom.session(f"missassemble {number}")
    lines, totals = listing_of(console)
    check_totals(name, lines, totals, rom.base + start, size, failures)
    check_file(name, rom, console, failures)
    for tag in rom.tags(start, size):
        check_tag(name, rom, tag, (start, size), lines, failures)
    scanned = int(totals.split()[1])
    ends = [line.address for line in lines[1:]] + [rom.base + start + scanned]
    return [Instruction(line, end, rom) for line, end in zip(lines, ends) if line.iscode()]


def check_rom(rom: Rom, failures: Failures) -> None:
    failures.expect(len(rom.components) > 10, f"{rom.path.name}: {len(rom.components)} components")
    beyond = rom.session(f"missassemble {len(rom.components)}", f"missassemble {len(rom.components)} onepass")
    failures.expect(beyond.count(OUT_OF_RANGE) == 2, f"{rom.path.name}: more components than are listed")
    instructions = []
    for number in range(len(rom.components)):
        instructions += walk(rom, number, failures)
    rom.session(*(f"missassemble {number} onepass" for number in range(len(rom.components))))
    counts = judge(instructions, failures)
    check_runs(rom, instructions, failures)
    code = sum(instruction.length for instruction in instructions)
    size = sum(size for _, size in rom.components)
    told = ", ".join(f"{count} of the {processor}" for processor, count in sorted(counts.items()))
    print(f"{rom.path.name}: {len(rom.components)} components, {code} of {size} bytes are code; instructions: {told}")
    failures.expect(2 * code > size, f"{rom.path.name}: most of the code was not reached")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, help="the program")
    parser.add_argument("--verbose", action="store_true", help="show all failures")
    arguments = parser.parse_args()
    real = pathlib.Path(os.environ.get("VANTOREL_REAL_DIR") or "/nonexistent")
    for missing in [OBJDUMP] * (not shutil.which(OBJDUMP)) + [str(real / n) for n in ROMS if not (real / n).exists()]:
        print(f"skipped: {missing} is not there (VANTOREL_REAL_DIR names the folder of the real ROMs)")
        return 77
    failures = Failures(arguments.verbose)
    for name in ROMS:
        with tempfile.TemporaryDirectory() as folder:
            where = pathlib.Path(folder)
            (where / LIBRARY.name).symlink_to(LIBRARY)
            (where / name).symlink_to((real / name).resolve())
            check_rom(Rom(str(pathlib.Path(arguments.program).resolve()), where / name, where), failures)
    print(f"{failures.count} failures")
    return 1 if failures.count else 0


if __name__ == "__main__":
    sys.exit(main())
