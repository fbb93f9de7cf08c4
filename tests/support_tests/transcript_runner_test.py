#!/usr/bin/env python3
"""Proves that the transcript runner fails what it must fail, with a shell script in place of the program."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

RUNNER = pathlib.Path(__file__).resolve().parent.parent / "transcripts" / "run.py"

# Reads commands like the program: each line is run by the shell.
PROGRAM = "#!/bin/sh\n. /dev/stdin\n"


class RunnerTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = pathlib.Path(temporary.name)
        self.folder = self.root / "room" / "case"
        self.folder.mkdir(parents=True)
        self.program = self.root / "program"
        self.program.write_text(PROGRAM)
        self.program.chmod(0o755)

    def give(self, **files):
        for name, text in files.items():
            (self.folder / name.replace("_", "-")).write_text(text)

    def run_it(self, *more, **environment):
        clean = {key: value for key, value in os.environ.items() if key != "VANTOREL_REAL_DIR"}
        command = [sys.executable, RUNNER, "--program", self.program, *more, self.folder]
        done = subprocess.run(command, env=dict(clean, **environment), capture_output=True, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def assert_run(self, status, text="", *more, **environment):
        actual, output = self.run_it(*more, **environment)
        self.assertEqual(actual, status, output)
        self.assertIn(text, output)

    def test_passes_equal_output(self):
        self.give(script="echo one\necho two\n", expected="one\ntwo\n")
        self.assert_run(0, "passed")

    def test_shows_a_diff(self):
        self.give(script="echo one\necho 2\n", expected="one\ntwo\n")
        self.assert_run(1, "-two\n+2")

    def test_missing_line_feed_at_the_end_fails(self):
        self.give(script="printf one\n", expected="one\n")
        self.assert_run(1, "no line feed")

    def test_absent_expectation_fails(self):
        self.give(script="echo one\n")
        self.assert_run(1, "expected")

    def test_pointer_wildcard(self):
        self.give(script="echo 'at 0x7ffe12 (nil)'\n", expected="at <ptr> <ptr>\n")
        self.assert_run(0)
        self.give(script="echo at 0X12 nil\n")
        self.assert_run(1)

    def test_number_wildcard_and_nothing_else(self):
        self.give(script="echo 12 a.b\n", expected="<n> a.b\n")
        self.assert_run(0)
        self.give(script="echo 12 aXb\n")
        self.assert_run(1)

    def test_status_of_the_program_fails(self):
        self.give(script="echo one\nexit 3\n", expected="one\n")
        self.assert_run(1, "status 3")

    def test_standard_error_fails_unless_expected(self):
        self.give(script="echo one\necho oops >&2\n", expected="one\n")
        self.assert_run(1, "oops")
        self.give(expected_stderr="oops\n")
        self.assert_run(0)

    def test_setup_makes_input_in_a_fresh_directory(self):
        self.give(setup="test -z \"$(ls)\"\necho made >in\n", script="cat in\n", expected="made\n")
        self.assert_run(0)

    def test_failing_setup_fails(self):
        self.give(setup="false\ntrue\n", script="", expected="")
        self.assert_run(1, "setup")

    def test_files_are_compared(self):
        self.give(script="mkdir sub\nprintf abc >sub/out\n", expected="")
        (self.folder / "files" / "sub").mkdir(parents=True)
        wanted = self.folder / "files" / "sub" / "out"
        wanted.write_text("abc")
        self.assert_run(0)
        wanted.write_bytes(b"ab\0")
        self.assert_run(1, "the first at 2")
        self.give(script="")
        self.assert_run(1, "sub/out was not written")

    def test_absent_files(self):
        self.give(script="", expected="", absent="out\n")
        self.assert_run(0)
        self.give(script="echo >out\n")
        self.assert_run(1, "out is there")

    def test_check_decides(self):
        self.give(script="echo >out\n", expected="", check="test -e out\n")
        self.assert_run(0)
        self.give(script="")
        self.assert_run(1, "check ended with status 1")

    def test_skips_without_real_files(self):
        self.give(script="", expected="", needs="real\n")
        self.assert_run(77, "VANTOREL_REAL_DIR")
        self.assert_run(0, VANTOREL_REAL_DIR=str(self.root))

    def test_skips_without_a_command(self):
        self.give(script="", expected="", needs="sh\nno-such-command\n")
        self.assert_run(77, "no-such-command")

    def test_accepts_and_keeps_wildcards(self):
        self.give(script="echo at 0x7fffdeadbeef\necho n=1\necho id 0x11114ef900f80002\n", expected="n=<n>\n")
        (self.folder / "files").mkdir()
        (self.folder / "files" / "out").write_text("")
        self.assert_run(1, "out was not written", "--accept")
        with open(self.folder / "script", "a", encoding="ascii") as script:
            script.write("printf x >out\n")
        self.assert_run(0, "accepted", "--accept")
        self.assertEqual((self.folder / "expected").read_text(), "at <ptr>\nn=<n>\nid 0x11114ef900f80002\n")
        self.assertEqual((self.folder / "files" / "out").read_text(), "x")
        self.assert_run(0)

    def test_does_not_accept_a_failing_program(self):
        self.give(script="exit 1\n")
        self.assert_run(1, "not accepted", "--accept")
        self.assertFalse((self.folder / "expected").exists())

    def test_the_fixture_tool_is_on_the_path(self):
        tool = self.root / "tools" / "make-it"
        tool.parent.mkdir()
        tool.write_text("#!/bin/sh\necho made >out\n")
        tool.chmod(0o755)
        self.give(setup="make-it\n", script="cat out\n", expected="made\n")
        self.assert_run(0, "passed", "--fixture", tool)


if __name__ == "__main__":
    unittest.main()
