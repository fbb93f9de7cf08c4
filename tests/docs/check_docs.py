#!/usr/bin/env python3
"""Runs every session that the documents show, and compares what is printed with what they show.

    check_docs.py --program PATH --fixture PATH [DOCUMENT...]

Without documents: docs/guide.md, and whatever other document of the project holds commands. README.md beside this
file tells how they are written. Exit status: 0 when all is as shown, 1 when it is not, 2 for wrong arguments.
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

import documents
from documents import NUMBERED, ROOT
from session import Session, SessionError

GUIDE = ROOT / "docs" / "guide.md"
TIME_LIMIT = 60  # seconds, for each shell block
UNKNOWN = re.compile(r"^ERROR, I.ve no idea what you mean", re.MULTILINE)


def matches(expected, actual):
    """Whether the lines are the same, where "..." stands for any number of lines."""
    # reachable: the counts of actual lines that the expected lines so far can cover.
    reachable = {0}
    for line in expected:
        if line == documents.LEFT_OUT:
            reachable = set(range(min(reachable), len(actual) + 1)) if reachable else set()
        else:
            reachable = {n + 1 for n in reachable if n < len(actual) and actual[n] == line}
    return len(actual) in reachable


def filled(expected, actual):
    """The expected lines with those that "..." left out put in, as far as the line behind it can be found."""
    lines, at = [], 0
    for number, line in enumerate(expected):
        if line != documents.LEFT_OUT:
            lines.append(line)
            at += 1
            continue
        following = next((other for other in expected[number + 1 :] if other != documents.LEFT_OUT), None)
        end = len(actual) if following is None else actual.index(following, at) if following in actual[at:] else None
        lines += [line] if end is None else actual[at:end]
        at = end or at
    return lines


def difference(expected, actual):
    return "\n".join(difflib.unified_diff(filled(expected, actual), actual, "shown", "printed", lineterm="", n=6))


def visible(data):
    """The lines printed, without the blanks at their ends, which no document can show."""
    text = data.decode("latin-1").replace("\r\n", "\n")
    return [line.rstrip() for line in text.split("\n")] if text else []


def printed(data):
    lines = visible(data)
    return lines[:-1] if lines and lines[-1] == "" else lines


class Place:
    """A temporary copy of what a clone holds when the demo has run, and the folder that the shell is in."""

    def __init__(self, folder, program, fixture):
        self.root = pathlib.Path(folder).resolve()
        self.program = self.root / "out" / "demo" / "vantorel"
        tests = self.program.parent / "tests"
        tests.mkdir(parents=True)
        for name in ("examples", "Vantorel Hashes"):
            shutil.copytree(ROOT / name, self.root / name)
        self.program.symlink_to(program)
        self.environment = dict(os.environ, LC_ALL="C", TZ="UTC", PATH=f"{tests}:{os.environ['PATH']}")
        (tests / "vantorel-fixture").symlink_to(fixture)
        # Stands for a ROM that a user has.
        subprocess.run([tests / "vantorel-fixture", "standard", self.root / "kick.rom"], check=True)
        self.cwd = self.root

    def shell(self, commands):
        """Runs commands of the shell, and stays in the folder where they end. Returns status and output."""
        note = self.root / "cwd.note"
        script = f"{commands}\npwd >'{note}'\n"
        done = subprocess.run(["sh", "-eu", "-c", script], cwd=self.cwd, stdin=subprocess.DEVNULL, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT,
                              env=self.environment)
        if note.exists():
            self.cwd = pathlib.Path(note.read_text().rstrip("\n"))
            note.unlink()
        return done.returncode, done.stdout


class Runner:
    """Runs the steps of one document, and gathers what is not as shown."""

    def __init__(self, name, place):
        self.name, self.place = name, place
        self.session = None
        self.problems = []
        self.commands = 0

    def complain(self, step, text):
        self.problems.append(f"{self.name}:{step.line}: {step.command.splitlines()[0] if step.command else ''}\n{text}")

    def close(self):
        if self.session:
            try:
                self.session.end()
            except SessionError as error:
                self.problems.append(f"{self.name}: {error}")
            self.session = None

    def prompt(self, step):
        if not self.session:
            self.session = Session(self.place.program, self.place.cwd)
        output = printed(self.session.type(step.command))
        if UNKNOWN.search("\n".join(output)):
            self.complain(step, "there is no such command")
        elif not matches(step.expected, output):
            self.complain(step, difference(step.expected, output))

    def shell(self, step):
        status, data = self.place.shell(step.command)
        output = printed(data)
        if status != 0:
            self.complain(step, f"ended with status {status}\n" + "\n".join(output))
        elif not matches(step.expected, output):
            self.complain(step, difference(step.expected, output))

    def block(self, block):
        if block.isnew:
            self.close()
        for step in block.steps:
            self.commands += 1
            self.prompt(step) if step.kind == "prompt" else self.shell(step)

    def section(self, section):
        """One section. What it began is ended with it; one with a number has to show a session."""
        if NUMBERED.match(section.title) and not section.holds_session():
            self.problems.append(f"{self.name}:{section.line}: section \"{section.title}\" shows no session")
        try:
            for block in section.blocks:
                self.block(block)
        except (SessionError, subprocess.TimeoutExpired) as error:
            self.problems.append(f"{self.name}: in section \"{section.title}\": {error}")
        self.close()


def orders(found):
    """As they stand and, since numbered sections are promised to need no other, with these the other way round."""
    numbered = [section for section in found if NUMBERED.match(section.title)]
    yield "", found
    if len(numbered) > 1:
        others = [section for section in found if section not in numbered]
        yield ", last section first", others + numbered[::-1]


def check(path, program, fixture):
    """Runs one document. Returns the number of its commands, and what is wrong."""
    name = os.path.relpath(path, ROOT) if ROOT in path.parents else path.name
    try:
        found = documents.sections(path.read_text(encoding="utf-8"))
    except (documents.MarkupError, OSError) as error:
        return 0, [f"{name}: {error}"]
    if not holds_commands(found):
        return 0, [f"{name}: there is no command in it"]
    commands = 0
    for order, ordered in orders(found):
        with tempfile.TemporaryDirectory(prefix="vantorel-docs-", ignore_cleanup_errors=True) as folder:
            runner = Runner(name + order, Place(folder, program, fixture))
            for section in ordered:
                runner.section(section)
        commands += runner.commands
        if runner.problems:
            return commands, runner.problems
    return commands, []


def holds_commands(sections):
    return any(section.blocks for section in sections)


def isrun(path):
    """Whether a document is one to run. One that cannot be read is, so that it fails there; so is the guide."""
    try:
        return path == GUIDE or holds_commands(documents.sections(path.read_text(encoding="utf-8")))
    except documents.MarkupError:
        return True


def arguments():
    parser = argparse.ArgumentParser(description="Runs the sessions that the documents show.")
    parser.add_argument("--program", required=True, type=pathlib.Path, help="the program under test")
    parser.add_argument("--fixture", required=True, type=pathlib.Path, help="the tool that makes input files")
    parser.add_argument("documents", nargs="*", type=pathlib.Path, metavar="DOCUMENT")
    return parser.parse_args()


def main():
    options = arguments()
    isbad = False
    for path in options.documents or filter(isrun, documents.documents()):
        commands, problems = check(path.resolve(), options.program.resolve(), options.fixture.resolve())
        print(f"{'FAILED' if problems else 'passed'}: {path} ({commands} commands)")
        if problems:
            print("\n\n".join(problems))
            isbad = True
    return 1 if isbad else 0


if __name__ == "__main__":
    sys.exit(main())
