"""Reads what Markdown documents hold in their fenced blocks; README.md beside this file has the markup."""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
PATTERNS = ["*.md", "docs/*.md", "bench/*.md", "examples/*.md", "tests/*/*.md", "Vantorel Hashes/*.md"]

PROMPT = "VanCLI> "
SHELL = "$ "
LEFT_OUT = "..."
# Sections whose titles begin with a number are the jobs; each needs the ones without, and no other.
NUMBERED = re.compile(r"\d+\. ")
FENCE = re.compile(r"^(`{3,})\s*(.*?)\s*$")
# What a line begins with that tells somebody to type it into a shell.
TYPED = re.compile(r"(\./|out/|tools/|tests/|examples/|\$ )|(apt|apt-get|cmake|cpack|ctest|git|sh|cd|vantorel\S*|rlwrap)\b")


class MarkupError(Exception):
    """The document cannot be read; the text says where and why."""


class Step:
    """One command and the lines that it is shown to print. `kind` is "prompt" or "shell"."""

    def __init__(self, kind, command, line):
        self.kind, self.command, self.line = kind, command, line
        self.expected = []


class Block:
    """The steps of one fenced block; `isnew` asks for a new session of the program."""

    def __init__(self, line, isnew=False):
        self.line, self.isnew = line, isnew
        self.steps = []


class Section:
    """What stands below one heading of the second level."""

    def __init__(self, title, line):
        self.title, self.line = title, line
        self.blocks = []  # to be run in a folder of their own
        self.inclone = []  # to be run in the clone itself

    def holds_session(self):
        return any(step.kind == "prompt" for block in self.blocks for step in block.steps)


def console_block(lines, first, words):
    """The block of `lines`, whose first one is line `first` of the document."""
    if words not in ([], ["new"]):
        raise MarkupError(f"line {first - 1}: unknown words behind the fence: {' '.join(words)}")
    block = Block(first, isnew=bool(words))
    for number, line in enumerate((line.rstrip() for line in lines), first):
        kind = {PROMPT: "prompt", SHELL: "shell"}.get(next((p for p in (PROMPT, SHELL) if line.startswith(p)), None))
        if kind:
            block.steps.append(Step(kind, line.split(" ", 1)[1], number))
        elif line in (PROMPT.strip(), SHELL.strip()):
            raise MarkupError(f"line {number}: a prompt without a command")
        elif block.steps:
            block.steps[-1].expected.append(line)
        else:
            raise MarkupError(f"line {number}: output before the first command: {line}")
    if not block.steps:
        raise MarkupError(f"line {first - 1}: a console block without a command")
    return block


def shell_block(lines, first):
    """A block of shell commands; what they print is not looked at."""
    block = Block(first)
    step = Step("shell", "\n".join(lines), first)
    step.expected = [LEFT_OUT]
    block.steps.append(step)
    return block


def fenced(lines):
    """Yields (line number, heading, fence words, contents) for each heading and each fenced block."""
    index = 0
    while index < len(lines):
        fence = FENCE.match(lines[index])
        if fence:
            end = next((i for i in range(index + 1, len(lines)) if lines[i].rstrip() == fence[1]), None)
            if end is None:
                raise MarkupError(f"line {index + 1}: this fence is never closed")
            yield index + 1, None, fence[2].split(), lines[index + 1 : end]
            index = end
        elif lines[index].startswith("## "):
            yield index + 1, lines[index][3:].strip(), [], []
        elif lines[index].startswith("    ") and TYPED.match(lines[index][4:]):
            raise MarkupError(f"line {index + 1}: a command outside a fenced block: {lines[index].strip()}")
        index += 1


def sections(text):
    """The sections of a document; blocks above the first heading are a section without a title."""
    found = [Section("", 1)]
    for number, heading, words, contents in fenced(text.splitlines()):
        if heading is not None:
            found.append(Section(heading, number))
        elif words[:1] == ["console"]:
            found[-1].blocks.append(console_block(contents, number + 1, words[1:]))
        elif words in (["sh"], ["sh", "clone"]):
            blocks = found[-1].inclone if words[1:] else found[-1].blocks
            blocks.append(shell_block(contents, number + 1))
    return found


def documents():
    """Every document of the project."""
    return sorted(path for pattern in PATTERNS for path in ROOT.glob(pattern))
