#!/usr/bin/env python3
"""Judges the files that `saveprofile` left in the working directory. Each line of the standard input is a burning:

    TYPE NAME F8 E0 B0 A0 [byteswap] [512]

TYPE is a word that `romprofile` knows, NAME what the files' names begin with, the others are ROM files, or "-" where
the profile has none. Works out the files by slices of the images and compares them; any other file that begins with
NAME and a dot is one too many.
"""

import pathlib
import sys

K = 1024
FLOPPY = 880 * K


def spread(target: bytearray, start: int, words: bytes) -> None:
    target[start:start + len(words)] = words


def every_second_word(image: bytes, first: int) -> bytes:
    return b"".join(image[i:i + 2] for i in range(first, len(image), 4))


def cd32(images, buffer: bytes) -> bytes:
    size = 1024 * K if len(buffer) <= 1024 * K else 2048 * K
    out = bytearray(buffer[:size].ljust(size, b"\0"))
    main, extended, _, fourth = images
    if len(main or b"") == 512 * K and len(extended or b"") == 512 * K:
        spread(out, 0, b"".join(every_second_word(image, first) for first in (0, 2) for image in (extended, main)))
    if size > 1024 * K:
        spread(out, 512 * K, bytes(out[1024 * K:1536 * K]))
        spread(out, 512 * K, every_second_word(fourth or b"", 0)[:512 * K])
        spread(out, 1536 * K, every_second_word(fourth or b"", 2)[:512 * K])
    return bytes(out)


def disk(mark: bytes, pieces) -> bytes:
    out = bytearray(FLOPPY)
    spread(out, 0, mark)
    for image, offset, admitted, size_field in pieces:
        if image is not None and admitted(len(image)):
            spread(out, offset, image)
            if size_field:
                spread(out, size_field, len(image).to_bytes(4, "big"))
    return bytes(out)


def superkick(images) -> bytes:
    one, bonus_one, two, bonus_two = images
    return disk(b"KICKSUP0", [(one, 1 * K, lambda n: n == 256 * K, 0),
                              (two, 257 * K, lambda n: n == 512 * K, 0),
                              (bonus_two, 769 * K, lambda n: n < 4 * K, 12),
                              (bonus_one, 773 * K, lambda n: n < 107 * K, 8)])


def swapped(image: bytes) -> bytes:
    even = len(image) & ~1
    out = bytearray(image)
    out[0:even:2], out[1:even:2] = image[1:even:2], image[0:even:2]
    return bytes(out)


def chunks(buffer: bytes, chip: int) -> "list[tuple[str, bytes]]":
    """Number in the names, and contents, of what goes to each chip or pair of chips."""
    if not chip:
        return [("", buffer)]
    numbered = len(buffer) >= 2 * chip
    while len(buffer) < chip:
        buffer += buffer
    pieces = [buffer[i:i + chip] for i in range(0, len(buffer), chip)]
    if numbered:
        return [("." + chr(ord("0") + n), piece) for n, piece in enumerate(pieces)]
    return [("", pieces[-1])]  # all went to the same file


def expected(kind: str, name: str, images, byteswap: bool, chip: int) -> "dict[str, bytes]":
    buffer = b"".join(image for image in reversed(images) if image is not None)
    if not buffer:
        return {}
    if kind == "superkick.adf":
        return {name + ".adf": superkick(images)}
    if kind == "a1000":
        return {name + ".adf": disk(b"KICK", [(images[0], 512, lambda n: n == 256 * K, 0)])}
    if kind == "superkick.file":
        return {name + ".bin": buffer}
    if kind == "cd32":
        buffer = cd32(images, buffer)
    if byteswap:
        buffer = swapped(buffer)
    if kind == "dual":
        return {f"{name}.{which}{number}.bin": every_second_word(piece, first)
                for number, piece in chunks(buffer, 2 * chip) for which, first in (("hi", 0), ("lo", 2))}
    return {f"{name}{number}.bin": piece for number, piece in chunks(buffer, chip)}


def is_right(line: str) -> bool:
    kind, name, *rest = line.split()
    images = [None if path == "-" else pathlib.Path(path).read_bytes() for path in rest[:4]]
    options = rest[4:]
    wanted = expected(kind.lower(), name, images, "byteswap" in options, 512 * K if "512" in options else 0)
    found = {path.name: path.read_bytes() for path in pathlib.Path(".").glob(name + ".*")}
    for file in sorted(wanted.keys() | found.keys()):
        if file not in found:
            print(f"{file} was not written")
        elif file not in wanted:
            print(f"{file} is one too many")
        elif wanted[file] != found[file]:
            print(f"{file}: {len(wanted[file])} bytes expected, {len(found[file])} there, or other ones")
    return wanted == found


def main() -> int:
    lines = sys.stdin.read().splitlines()
    if not lines:
        print("nothing to judge")
    return 0 if lines and all([is_right(line) for line in lines]) else 1


if __name__ == "__main__":
    sys.exit(main())
