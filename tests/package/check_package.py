#!/usr/bin/env python3
"""Makes the Debian package of a build, unpacks it, and works with what is in it as its manual page says."""

import argparse
import gzip
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
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

    def test_the_manual_and_the_documents_are_there(self):
        manual = self.usr / "share" / "man" / "man1" / "vantorel.1"
        text = manual.read_text() if manual.exists() else gzip.open(f"{manual}.gz", "rt").read()
        self.assertIn(".TH VANTOREL 1", text)
        self.assertNotIn("@", text.replace("@localhost", ""))
        documents = {path.name for path in (self.usr / "share" / "doc" / "vantorel").iterdir()}
        self.assertLessEqual({"README.md", "guide.md", "commands.md", "formats.md", "architecture.md"}, documents)

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
    for tool in ("cpack", "dpkg-deb", "dpkg-shlibdeps"):
        if shutil.which(tool) is None:
            print(f"skipped: {tool} is missing")
            sys.exit(77)
    Package.build = parser.parse_args().build.resolve()
    unittest.main(argv=sys.argv[:1])
