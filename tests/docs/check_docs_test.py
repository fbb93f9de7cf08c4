#!/usr/bin/env python3
"""Proves that check_docs.py and check_shell.py fail what they must fail, with a small program in place of Vantorel."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECKER = pathlib.Path(__file__).resolve().parent / "check_docs.py"
SHELL_CHECKER = CHECKER.with_name("check_shell.py")

# Answers like the program: "say" prints its words, "count" how many commands the session has had, "hide" nothing.
PROGRAM = r"""#!/usr/bin/env python3
import sys
def ask():
    sys.stdout.write("VanCLI> ")
    sys.stdout.flush()
    return sys.stdin.readline()
count = 0
for line in iter(ask, ""):
    count += 1
    word, _, rest = line.rstrip("\n").partition(" ")
    if word == "say": print(rest.replace("|", "\n"))
    elif word == "count": print(count)
    elif word == "fail": sys.exit(3)
    elif word == "exit": sys.exit(0)
    elif word != "hide": print("ERROR, I've no idea what you mean, type help for help")
"""


def console(*lines, words="console"):
    return "\n".join([f"```{words}", *lines, "```", ""])


class CheckerTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = pathlib.Path(temporary.name)
        self.program = self.root / "program"
        self.program.write_text(PROGRAM)
        self.program.chmod(0o755)

    def assert_run(self, status, text, document):
        self.assert_checker(status, text, document, CHECKER, "--program", self.program, "--fixture", self.program)

    def assert_checker(self, status, text, document, *checker):
        path = self.root / "document.md"
        path.write_text(document)
        command = [sys.executable, "-B", *checker, path]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        self.assertIn(text, done.stdout)

    def assert_fails(self, text, document):
        self.assert_run(1, text, document)

    def assert_passes(self, document):
        self.assert_run(0, "passed", document)

    def test_passes_what_is_as_shown(self):
        self.assert_passes(console("VanCLI> say one|two", "one", "two", "VanCLI> hide", "VanCLI> say x", "x"))

    def test_changed_output_fails_with_a_diff(self):
        self.assert_fails("-one\n+two", console("VanCLI> say two", "one"))

    def test_output_that_is_not_shown_fails(self):
        self.assert_fails("+two", console("VanCLI> say one|two", "one"))
        self.assert_fails("+one", console("VanCLI> say one"))

    def test_output_that_does_not_come_fails(self):
        self.assert_fails("-one", console("VanCLI> hide", "one"))

    def test_dots_stand_for_any_number_of_lines(self):
        for shown in (["...", "c"], ["a", "...", "c"], ["...", "b", "..."], ["a", "b", "c", "..."], ["..."]):
            self.assert_passes(console("VanCLI> say a|b|c", *shown))

    def test_dots_do_not_hide_lines_in_the_wrong_order(self):
        self.assert_fails("-b", console("VanCLI> say a|b|c", "...", "c", "b", "..."))
        self.assert_fails("-d", console("VanCLI> say a|b|c", "...", "d", "..."))
        self.assert_fails("+c", console("VanCLI> say a|b|c", "...", "b"))

    def test_diff_shows_no_lines_that_were_left_out(self):
        self.assert_fails(" b\n c\n-d\n+e", console("VanCLI> say a|b|c|e", "a", "...", "c", "d"))

    def test_unknown_command_fails_whatever_is_shown(self):
        self.assert_fails("no such command", console("VanCLI> sya one", "..."))

    def test_blocks_of_a_section_share_a_session(self):
        block = console("VanCLI> hide")
        self.assert_passes(block + console("VanCLI> count", "2"))
        self.assert_passes(block + console("VanCLI> count", "1", words="console new"))
        self.assert_passes(block + "## Next\n" + console("VanCLI> count", "1"))
        self.assert_passes(block + "### Still the same\n" + console("VanCLI> count", "2"))

    def test_shell_commands_are_run(self):
        talk = console("VanCLI> hide")
        self.assert_passes(talk + "```sh\nmkdir a\ncd a\n```\n" + console("$ basename $PWD", "a"))
        self.assert_fails("status 1", talk + "```sh\nfalse\ntrue\n```\n")
        self.assert_fails("-b", talk + console("$ echo a", "b"))
        self.assert_fails("status 1", talk + console("$ false"))

    def test_numbered_section_without_a_session_fails(self):
        self.assert_fails("shows no session", "## 1. One\n" + console("VanCLI> hide") + "## 2. Two\n")

    def test_numbered_section_must_not_need_another(self):
        first = "## 1. One\n" + console("$ touch made", "VanCLI> hide")
        second = "## 2. Two\n" + console("$ test -e made", "VanCLI> hide")
        self.assert_fails("last section first", first + second)
        self.assert_passes("## Ground\n" + console("$ touch made") + second + second.replace("2", "3"))

    def test_document_without_a_command_fails(self):
        self.assert_fails("no command", "Text\n\n    indented\n")

    def test_commands_outside_blocks_fail(self):
        for command in ("$ true", "./test.sh", "cmake --preset release", "vantorel < script", "apt install g++"):
            self.assert_fails("outside a fenced block", console("VanCLI> hide") + f"Text\n\n    {command}\n")

    def test_commands_in_the_clone_are_run_there(self):
        def shell(*lines):
            return "\n".join(["```sh clone", *lines, "```", ""])

        def assert_shell(status, text, document, *options):
            self.assert_checker(status, text, document, SHELL_CHECKER, *options)

        assert_shell(0, "passed", "## Title\n" + shell("test -e tests/docs/check_docs_test.py # a comment"))
        assert_shell(1, "status 1", shell("true") + shell("false", "true"))
        assert_shell(1, "unheard-of", shell("apt install unheard-of"))
        assert_shell(0, "passed", shell("false # as it was started", "true"), "--running", "false")
        assert_shell(1, "status 1", shell("false more"), "--running", "false")
        self.assert_passes(console("VanCLI> hide") + shell("false"))

    def test_markup_that_cannot_be_read_fails(self):
        self.assert_fails("never closed", "```console\nVanCLI> hide\n")
        self.assert_fails("before the first command", console("one", "VanCLI> hide"))
        self.assert_fails("without a command", console("VanCLI> hide", "VanCLI>"))
        self.assert_fails("without a command", console())
        self.assert_fails("unknown words", console("VanCLI> hide", words="console old"))

    def test_program_that_ends_badly_fails(self):
        self.assert_fails("status 3", console("VanCLI> fail"))
        self.assert_fails("has ended", console("VanCLI> exit", "VanCLI> hide"))


if __name__ == "__main__":
    unittest.main()
