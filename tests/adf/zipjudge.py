#!/usr/bin/env python3
"""Saves disks as archives, and has unzip, Python's zipfile and unadf judge them.

    zipjudge.py --program PATH --fixture PATH

1. unzip and zipfile open each archive and find every CRC right.
2. The entries are those of `adflist`, in its order.
3. unzip gives every file the contents that unadf takes from the disk, and every file and directory the time that
   unadf lists, whatever the local time zone; from 1980 on, where the times of archives begin.

The disks are built ones and, where VANTOREL_REAL_DIR names their folder, real ones. Ends with status 77 without unzip or
unadf.
"""

import argparse
import calendar
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

REAL = ("aros-20130502-boot.adf", "boot-dd-ofs.adf", "boot-dd-ffs.adf")
# With and without summer time, on both sides of Greenwich.
ZONES = ("UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0", "<+1245>-12:45")
FIRST = calendar.timegm((1980, 1, 1, 12, 0, 0))
LISTED = re.compile(r"^ *\d* +(\d+)/(\d+)/(\d+) +(\d+):(\d+):(\d+)  (.+)$")
# Days since 1978-01-01, minutes, fiftieths of a second: winter and summer, even and odd seconds, leap days, 2099.
TIMES = ((12784, 30, 50), (12965, 720, 0), (730, 754, 2800), (12477, 1439, 2999), (44559, 1, 2), (8460, 0, 0))


class Judge:
    def __init__(self, program: pathlib.Path, fixture: pathlib.Path):
        self.program, self.fixture = program.resolve(), fixture.resolve()
        self.failures = 0
        self.entries = 0

    def require(self, holds: bool, what: str) -> None:
        if not holds:
            self.failures += 1
            print(f"FAILED: {what}")

    def build(self, folder: pathlib.Path, system: str) -> pathlib.Path:
        """A disk with files of many sizes, nested directories, and times."""
        disk, items = folder / "built.adf", ["Empty/"]
        for number, size in enumerate((1, 487, 488, 489, 512, 513, 35136, 36865, 100000)):
            path = f"Dir{number % 3}/Sub/File{size}"
            (folder / f"{size}").write_bytes(bytes(i * 7 + i // 251 & 255 for i in range(size)))
            items.append(f"{path}={folder}/{size}")
            items += [f"{path}:{420 + 4 * n}={long}" for n, long in enumerate(TIMES[number % len(TIMES)])]
        for number in range(300):
            items.append(f"Many/{number}={folder}/1")
        # Directories have no times of their own until they are given one.
        for path in ("Empty", "Dir0", "Dir1", "Dir2", "Dir0/Sub", "Dir1/Sub", "Dir2/Sub", "Many"):
            items += [f"{path}:{420 + 4 * n}={long}" for n, long in enumerate(TIMES[len(path) % len(TIMES)])]
        subprocess.run([self.fixture, "adf", disk, system, "Built", *items], check=True)
        return disk

    def archive(self, folder: pathlib.Path, disk: pathlib.Path, zone: str) -> "list[str]":
        """Saves disk.zip in the folder, and gives the names that it must hold."""
        script = f"loadadf {disk}\nadflist\nadfsavezip disk.zip\nexit\n"
        done = subprocess.run([self.program], cwd=folder, input=script.encode(), stdout=subprocess.PIPE, check=True,
                              env=dict(os.environ, TZ=zone))
        console = done.stdout.decode("latin-1")
        self.require("ERROR" not in console, f"an error on {disk.name}:\n{console}")
        return re.findall(r"^(?:VanCLI> )*\[ *\d+\] /(.+)$", console, re.MULTILINE)

    def open(self, folder: pathlib.Path, names: "list[str]", what: str) -> None:
        test = subprocess.run(["unzip", "-tqq", "disk.zip"], cwd=folder, capture_output=True, check=False)
        self.require(test.returncode == 0, f"{what}: unzip -t says {test.stdout + test.stderr}")
        with zipfile.ZipFile(folder / "disk.zip") as archive:
            self.require(archive.testzip() is None, f"{what}: zipfile finds {archive.testzip()}")
            # Names are as the disk has them; without a mark to the contrary they are read as of code page 437.
            found = [name.encode("cp437").decode("latin-1") for name in archive.namelist()]
        self.require(found == names, f"{what}: the entries are {found}")
        self.entries += len(found)

    def compare(self, folder: pathlib.Path, listed: "dict[str, int]", zone: str, what: str) -> None:
        """What unzip extracts, with what unadf lists and extracted."""
        ours, theirs = folder / "unzipped", folder.parent / "disk"
        subprocess.run(["unzip", "-qq", folder / "disk.zip", "-d", ours], check=True, env=dict(os.environ, TZ=zone))
        for name, seconds in listed.items():
            mine = ours / name
            self.require(mine.exists(), f"{what}: {name} is missing")
            if not mine.exists():
                continue
            self.require(seconds < FIRST or int(mine.stat().st_mtime) == seconds - seconds % 2,
                         f"{what}: {name} has the time {mine.stat().st_mtime}, not {seconds}")
            if mine.is_file():
                self.require(mine.read_bytes() == (theirs / name).read_bytes(), f"{what}: {name} differs")

    def judge(self, disk: pathlib.Path) -> None:
        with tempfile.TemporaryDirectory(prefix="vantorel-zip-") as name:
            work = pathlib.Path(name)
            # unadf gets a copy, and extracts below its working directory.
            copy = pathlib.Path(shutil.copy(disk, work))
            (work / "disk").mkdir()
            subprocess.run(["unadf", copy], cwd=work / "disk", capture_output=True, check=True)
            listing = subprocess.run(["unadf", "-lr", copy], cwd=work, capture_output=True, check=True).stdout
            listed = {}
            for match in map(LISTED.match, listing.decode("latin-1").splitlines()):
                if match:
                    listed[match[7]] = calendar.timegm(tuple(int(match[n]) for n in range(1, 7)))
            for number, zone in enumerate(ZONES):
                folder = work / str(number)
                folder.mkdir()
                names = self.archive(folder, copy, zone)
                self.require(sorted(names) == sorted(listed), f"{disk.name}: unadf lists {sorted(listed)}")
                self.open(folder, names, disk.name)
                self.compare(folder, listed, zone, f"{disk.name} in {zone}")


def disks(judge: Judge, folder: pathlib.Path) -> "list[pathlib.Path]":
    found = []
    for system in ("ofs", "ffs"):
        (folder / system).mkdir()
        found.append(judge.build(folder / system, system))
    real = os.environ.get("VANTOREL_REAL_DIR")
    if real:
        found += [pathlib.Path(real) / name for name in REAL if (pathlib.Path(real) / name).exists()]
    else:
        print("VANTOREL_REAL_DIR is unset: built disks only")
    return found


def main() -> int:
    parser = argparse.ArgumentParser(description="Judges archives of disks.")
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--fixture", required=True, type=pathlib.Path)
    options = parser.parse_args()
    for tool in ("unzip", "unadf"):
        if not shutil.which(tool):
            print(f"SKIPPED: {tool} is not installed")
            return 77
    judge = Judge(options.program, options.fixture)
    with tempfile.TemporaryDirectory(prefix="vantorel-zip-") as name:
        found = disks(judge, pathlib.Path(name))
        for disk in found:
            judge.judge(disk)
    print(f"{len(found)} disks in {len(ZONES)} time zones, {judge.entries} entries, {judge.failures} failures")
    return 1 if judge.failures or not judge.entries else 0


if __name__ == "__main__":
    sys.exit(main())
