#!/usr/bin/env python3
"""Makes the Debian package of a build, unpacks it, and works with what is in it as its manual page says."""

import argparse
import gzip
import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import termios
import unittest


class Package(unittest.TestCase):
    build = None

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.scratch.name)
        subprocess.run(
            ["cpack", "--config", cls.build / "CPackConfig.cmake", "-B", cls.folder / "made"],
            check=True,
            capture_output=True,
        )
        (package,) = (cls.folder / "made").glob("vantorel_*.deb")
        cls.control = subprocess.run(
            ["dpkg-deb", "--field", package], check=True, capture_output=True, text=True
        ).stdout
        subprocess.run(["dpkg-deb", "--extract", package, cls.folder / "root"], check=True)
        cls.usr = cls.folder / "root" / "usr"

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def session(self, text, folder):
        return subprocess.run(
            [self.usr / "bin" / "vantorel"], input=text, cwd=folder, capture_output=True, text=True, timeout=60, check=True
        ).stdout

    def test_it_needs_nothing_but_the_c_library(self):
        needs = re.search("^Depends: (.*)$", self.control, re.M)[1]
        self.assertEqual([name.split()[0] for name in needs.split(",")], ["libc6"])

    def manual(self):
        path = self.usr / "share" / "man" / "man1" / "vantorel.1"
        return path.read_text() if path.exists() else gzip.open(f"{path}.gz", "rt").read()

    def shell(self, command):
        path = f"{self.usr / 'bin'}:{os.environ['PATH']}"
        done = subprocess.run(["sh", "-euc", command], cwd=self.folder, env=dict(os.environ, PATH=path), timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    def test_the_manual_and_the_documents_are_there(self):
        text = self.manual()
        self.assertIn(".TH VANTOREL 1", text)
        self.assertNotIn("@", text.replace("@localhost", ""))
        documents = {path.name for path in (self.usr / "share" / "doc" / "vantorel").iterdir()}
        self.assertLessEqual({"README.md", "guide.md", "commands.md", "formats.md", "architecture.md"}, documents)

    def test_the_commands_of_the_manual_work(self):
        fixture = self.build / "tests" / "vantorel-fixture"
        subprocess.run([fixture, "standard", self.folder / "dump.bin"], check=True)
        shown = re.findall(r"^\.nf\n(.*?)^\.fi$", self.manual(), re.M | re.S)
        printed = [self.shell(command.replace("\\\\", "\\").replace("\\-", "-")) for command in shown]
        self.assertEqual(len(shown), 2)
        self.assertTrue((self.folder / "Vantorel Hashes").is_symlink())
        self.assertIn("exec 40.10 (15.7.93)", printed[1])
        (self.folder / "script").write_text("echo from a script\n")
        self.assertIn("from a script", self.shell("vantorel <script"))
        self.assertIn("from a pipe", self.shell('echo "echo from a pipe" | vantorel'))

    @unittest.skipIf(shutil.which("rlwrap") is None, "rlwrap is missing")
    def test_with_rlwrap_a_line_comes_back(self):
        try:
            terminal, program = pty.openpty()
        except OSError as error:  # a bare chroot may have none
            self.skipTest(str(error))
        termios.tcsetwinsize(program, (24, 80))
        process = subprocess.Popen(
            ["rlwrap", self.usr / "bin" / "vantorel"],
            stdin=program, stdout=program, stderr=program, start_new_session=True, cwd=self.folder,
            env=dict(os.environ, TERM="xterm", HOME=str(self.folder)),
        )
        self.addCleanup(process.kill)
        os.close(program)
        for typed in (b"echo once\n", b"\x1b[A\n"):  # the arrow upwards
            os.write(terminal, typed)
            self.assertIn(b"once \r", self.read_until(terminal, b"once \r"))  # what is typed has no blank behind it
        os.write(terminal, b"exit\n")
        self.read_until(terminal, None)
        self.assertEqual(process.wait(30), 0)
        os.close(terminal)

    def read_until(self, terminal, text):
        """What the terminal shows until this text has come, or until its other end is closed."""
        printed = b""
        while text is None or text not in printed:
            self.assertTrue(select.select([terminal], [], [], 30)[0], printed)
            try:
                printed += os.read(terminal, 4096)
            except OSError:
                break
        return printed

    def test_the_program_finds_the_library_in_its_folder(self):
        data = self.usr / "share" / "vantorel"
        printed = self.session("newrom 1k\nloglevel 2\nfindopcode 0 1024 NOP\n", data)
        self.assertIn(" mnemonics loaded\n", printed)
        self.assertIn("findopcode, not found\n", printed)

    def test_the_library_can_be_named_from_anywhere(self):
        library = self.usr / "share" / "vantorel" / "Vantorel Hashes"
        module = self.usr / "share" / "vantorel" / "examples" / "hunks" / "clock.resource"
        printed = self.session(f'loadhashes "{library}"\nnewrom 1k\nadd "{module}"\nmissassemble 0\n', self.folder)
        self.assertIn("Populating component 14 relocs\n", printed)
        self.assertIn(" RTS\n", printed)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True, help="the folder of the build")
    for tool in ("cpack", "dpkg-deb", "dpkg-shlibdeps", "file"):
        if shutil.which(tool) is None:
            print(f"skipped: {tool} is missing")
            sys.exit(77)
    Package.build = parser.parse_args().build.resolve()
    unittest.main(argv=sys.argv[:1])
