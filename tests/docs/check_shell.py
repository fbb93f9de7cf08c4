#!/usr/bin/env python3
"""Types into a shell what the documents tell to type in a clone of the project, and demands that it succeeds.

    check_shell.py [--running COMMAND] [DOCUMENT...]

The builds go to out/ as always, so after those of test.sh there is little to do. COMMAND is left out: it is what has
started this. Packages are only asked for, not installed; benchmarks do the least that they can.
README.md beside this file tells which blocks of a document these are. Exit status: 0 when all went well, or 1.
"""

import argparse
import os
import pathlib
import signal
import subprocess
import sys

import documents
from documents import ROOT

TIME_LIMIT = 600  # seconds, for each block
# What stands before each block: these would change the machine.
PRELUDE = """set -eu
apt() { ! command -v apt-get >/dev/null || apt-get --simulate -qq "$@" >/dev/null; }
"""


def commands(block, running):
    """The lines of a block without the one that is running."""
    return [line for line in block.steps[0].command.splitlines() if line.split("#")[0].strip() != running]


def problem(script):
    """Runs a script in the clone. Returns the end of what it printed when it fails."""
    environment = dict(os.environ, LC_ALL="C", BENCHMARK_MIN_TIME="0.001", VANTOREL_ROUNDS="1")
    with subprocess.Popen(["sh", "-c", PRELUDE + script], cwd=ROOT, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True) as process:
        try:
            printed, _ = process.communicate(timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return f"it took more than {TIME_LIMIT} seconds"
    tail = printed.decode("utf-8", "replace").splitlines()[-40:]
    return "\n".join([f"ended with status {process.returncode}", *tail]) if process.returncode else None


def arguments():
    parser = argparse.ArgumentParser(description="Runs the shell commands of the documents in this clone.")
    parser.add_argument("--running", default="", metavar="COMMAND", help="a command to leave out")
    parser.add_argument("documents", nargs="*", type=pathlib.Path, metavar="DOCUMENT")
    return parser.parse_args()


def main():
    options = arguments()
    isbad = False
    for path in options.documents or documents.documents():
        for section in documents.sections(path.read_text(encoding="utf-8")):
            for block in section.inclone:
                script = "\n".join(commands(block, options.running))
                print(f"{path}:{block.line}", flush=True)
                wrong = problem(script)
                print(f"FAILED: {wrong}\n{script}" if wrong else "passed", flush=True)
                isbad = isbad or wrong is not None
    return 1 if isbad else 0


if __name__ == "__main__":
    sys.exit(main())
