#!/usr/bin/env python3
"""Runs one transcript: feeds its script to the program and compares everything that comes out.

README.md beside this file says what a transcript's folder holds. Exit status: 0 passed (or accepted), 1 failed,
2 wrong arguments, 77 skipped.
"""

import argparse
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TIME_LIMIT = 30  # seconds, for each of setup, the program and check
SKIPPED = 77

# What an expectation may leave open. Everything else is literal.
WILDCARDS = {
    b"<ptr>": rb"(?:0x[0-9a-f]+|\(nil\))",
    b"<n>": rb"-?[0-9]+",
}
WILDCARD = re.compile(b"(" + b"|".join(re.escape(mark) for mark in WILDCARDS) + b")")
# What --accept takes for a pointer: an address where Linux keeps programs, heaps and mappings. Long hexadecimal
# texts that the program prints are none.
POINTER = re.compile(rb"\b0x[5-7][0-9a-f]{11}\b")


class Failure(Exception):
    """The transcript failed; the text says how."""


class Skip(Exception):
    """The transcript cannot run here; the text says why."""


def pattern(expected: bytes) -> "re.Pattern[bytes]":
    """Matches exactly what the expectation allows."""
    pieces = WILDCARD.split(expected)
    return re.compile(b"".join(WILDCARDS.get(piece) or re.escape(piece) for piece in pieces))


def matches(expected: bytes, actual: bytes) -> bool:
    return expected == actual or pattern(expected).fullmatch(actual) is not None


def visible(data: bytes) -> "list[str]":
    """Lines for a diff, in which every byte that is not plain text can be seen."""
    lines = []
    for line in data.split(b"\n"):
        lines.append("".join(chr(c) if 32 <= c < 127 else "\\t" if c == 9 else f"\\x{c:02x}" for c in line))
    # Text that ends with a line feed leaves an empty piece behind it; text that does not is shown as unfinished.
    if lines[-1] == "":
        lines.pop()
    else:
        lines[-1] += "\\ no line feed"
    return lines


def difference(title: str, expected: bytes, actual: bytes) -> str:
    """A unified diff in which lines that match by a wildcard count as equal."""
    wanted, got = visible(expected), visible(actual)
    # Line by line, since difflib knows equality only: an actual line takes the text of the expectation it matches.
    open_lines = {line: pattern(line.encode()) for line in wanted if WILDCARD.search(line.encode())}
    for i, line in enumerate(got):
        for text, allowed in open_lines.items():
            if allowed.fullmatch(line.encode()):
                got[i] = text
                break
    diff = difflib.unified_diff(wanted, got, f"{title} (expected)", f"{title} (actual)", lineterm="")
    return "\n".join(diff)


def binary_difference(name: str, expected: bytes, actual: bytes) -> str:
    """Where two files first differ."""
    place = next((i for i, (a, b) in enumerate(zip(expected, actual)) if a != b), min(len(expected), len(actual)))
    start = max(place - place % 16, 0)
    count = sum(a != b for a, b in zip(expected, actual))
    return (f"{name}: expected {len(expected)} bytes, got {len(actual)}; {count} differ, the first at {place}:\n"
            f"  expected {expected[start:start + 16].hex(' ')}\n"
            f"  actual   {actual[start:start + 16].hex(' ')}")


def istext(data: bytes) -> bool:
    return len(data) < 1 << 20 and all(c >= 32 or c in b"\t\n\r" for c in data)


class Transcript:
    def __init__(self, folder: pathlib.Path, program: pathlib.Path, fixture: "pathlib.Path | None"):
        self.folder = folder
        self.program = program
        self.fixture = fixture

    def lines(self, name: str) -> "list[str]":
        path = self.folder / name
        return [line.strip() for line in path.read_text().splitlines() if line.strip()] if path.exists() else []

    def environment(self, work: pathlib.Path) -> "dict[str, str]":
        environment = dict(os.environ, LC_ALL="C", TZ="UTC", TRANSCRIPT=str(self.folder), WORK=str(work))
        if self.fixture:
            environment["PATH"] = f"{self.fixture.parent}{os.pathsep}{environment.get('PATH', os.defpath)}"
        return environment

    def require(self) -> None:
        """Skips when something that the transcript needs is missing."""
        for need in self.lines("needs"):
            if need == "real":
                folder = os.environ.get("VANTOREL_REAL_DIR")
                if not folder or not os.path.isdir(folder):
                    raise Skip("VANTOREL_REAL_DIR names no folder with real ROMs and disks")
            elif not shutil.which(need):
                raise Skip(f"the command {need} is not installed")

    def shell(self, name: str, work: pathlib.Path) -> None:
        path = self.folder / name
        if not path.exists():
            return
        done = self.run(["sh", "-eu", str(path)], name, work, subprocess.STDOUT)
        if done.returncode != 0:
            raise Failure(f"{name} ended with status {done.returncode}:\n{done.stdout.decode(errors='replace')}")

    def run(self, command, what: str, work: pathlib.Path, stderr, stdin: bytes = b"") -> subprocess.CompletedProcess:
        try:
            return subprocess.run(command, cwd=work, env=self.environment(work), input=stdin, timeout=TIME_LIMIT,
                                  stdout=subprocess.PIPE, stderr=stderr, check=False)
        except subprocess.TimeoutExpired as expired:
            tail = (expired.stdout or b"")[-2000:].decode(errors="replace")
            raise Failure(f"{what} did not end within {TIME_LIMIT} seconds; the last of its output:\n{tail}") from None

    def play(self, work: pathlib.Path) -> subprocess.CompletedProcess:
        self.shell("setup", work)
        script = (self.folder / "script").read_bytes()
        return self.run([str(self.program)], "the program", work, subprocess.PIPE, script)

    def compare(self, done: subprocess.CompletedProcess, work: pathlib.Path) -> "list[str]":
        problems = []
        if done.returncode != 0:
            problems.append(f"the program ended with status {done.returncode}")
        for name, actual, required in (("expected", done.stdout, True), ("expected-stderr", done.stderr, False)):
            path = self.folder / name
            if required and not path.exists():
                problems.append(f"there is no file {path}; the output was:\n" + "\n".join(visible(actual)))
                continue
            expected = path.read_bytes() if path.exists() else b""
            if not matches(expected, actual):
                problems.append(difference(name, expected, actual))
        return problems + self.compare_files(work)

    def expected_files(self) -> "list[pathlib.PurePath]":
        root = self.folder / "files"
        return sorted(path.relative_to(root) for path in root.rglob("*") if path.is_file())

    def compare_files(self, work: pathlib.Path) -> "list[str]":
        problems = []
        for name in self.expected_files():
            expected = (self.folder / "files" / name).read_bytes()
            if not (work / name).is_file():
                problems.append(f"{name} was not written")
                continue
            actual = (work / name).read_bytes()
            if expected != actual:
                show = difference if istext(expected) and istext(actual) else binary_difference
                problems.append(show(str(name), expected, actual))
        for name in self.lines("absent"):
            if os.path.lexists(work / name):
                problems.append(f"{name} is there, and should not be")
        return problems

    def accept(self, done: subprocess.CompletedProcess, work: pathlib.Path) -> None:
        """Makes what happened the expectation. Lines that the old one already allows keep their wildcards."""
        path = self.folder / "expected"
        if not (path.exists() and matches(path.read_bytes(), done.stdout)):
            path.write_bytes(self.with_wildcards(path.read_bytes() if path.exists() else b"", done.stdout))
        if done.stderr:
            (self.folder / "expected-stderr").write_bytes(done.stderr)
        else:
            (self.folder / "expected-stderr").unlink(missing_ok=True)
        for name in self.expected_files():
            if not (work / name).is_file():
                raise Failure(f"{name} was not written; delete it from files/ by hand if that is right")
            shutil.copyfile(work / name, self.folder / "files" / name)

    @staticmethod
    def with_wildcards(old: bytes, actual: bytes) -> bytes:
        allowed = [(line, pattern(line)) for line in dict.fromkeys(old.split(b"\n")) if WILDCARD.search(line)]
        lines = []
        for line in actual.split(b"\n"):
            kept = next((text for text, shape in allowed if shape.fullmatch(line)), None)
            lines.append(POINTER.sub(b"<ptr>", line) if kept is None else kept)
        return b"\n".join(lines)


def perform(transcript: Transcript, accept: bool) -> None:
    if not (transcript.folder / "script").is_file():
        raise Failure("there is no file script")
    transcript.require()
    with tempfile.TemporaryDirectory(prefix="vantorel-transcript-", ignore_cleanup_errors=True) as name:
        work = pathlib.Path(name).resolve()
        done = transcript.play(work)
        if accept:
            if done.returncode != 0:
                raise Failure(f"not accepted: the program ended with status {done.returncode}\n"
                              f"{done.stderr.decode(errors='replace')}")
            transcript.accept(done, work)
            return
        problems = transcript.compare(done, work)
        if problems:
            raise Failure("\n\n".join(problems))
        transcript.shell("check", work)


def arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description="Runs transcripts.")
    parser.add_argument("--program", required=True, type=pathlib.Path, help="the program under test")
    parser.add_argument("--fixture", type=pathlib.Path, help="the tool that makes input files")
    parser.add_argument("--accept", action="store_true", help="make what happens the expectation")
    parser.add_argument("folders", nargs="+", type=pathlib.Path, metavar="FOLDER")
    return parser.parse_args()


def main() -> int:
    options = arguments()
    fixture = options.fixture.resolve() if options.fixture else None
    status = 0
    for folder in options.folders:
        try:
            perform(Transcript(folder.resolve(), options.program.resolve(), fixture), options.accept)
            print(f"{'accepted' if options.accept else 'passed'}: {folder}")
        except Skip as skip:
            print(f"SKIPPED: {folder}: {skip}")
            status = status or SKIPPED
        except Failure as failure:
            print(f"FAILED: {folder}\n{failure}")
            print("To make this the expectation, run again with --accept.")
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
