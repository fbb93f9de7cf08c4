#!/usr/bin/env python3
"""Loads an image at another base with the help of its RTB file, and compares it with one that is there already.

    rtbloader.py RTB IMAGE DISTANCE MOVED [BEHIND...]

The longs of IMAGE that RTB names are raised by DISTANCE; the result must be MOVED. The longs at BEHIND (image offsets)
were not moved there and are raised first. Shows how many places there are, and the BCPL places.
"""

import struct
import sys


def places(rtb: bytes) -> "tuple[list[int], int]":
    """The places of the stream, and where it ends."""
    found, place, position = [], 0, 7
    while True:
        distance = rtb[position]
        position += 1
        if distance == 0:
            position += position % 2
            distance = struct.unpack_from(">H", rtb, position)[0]
            position += 2
        if distance == 0:
            # The end mark of no places at all begins at an odd position.
            return found, position + (not found)
        place += distance
        found.append(place)


def bcpl(rest: bytes) -> "list[int]":
    longs = [long for (long,) in struct.iter_unpack(">I", rest)]
    assert longs[0] == 0xFFFFFFFF and longs[-1] == 0, longs
    listed = longs[1:-1]
    assert 0 not in listed[:-1] and (not listed or listed[-1] == 0), longs
    return listed[:-1]


def raise_longs(image: bytearray, where: "list[int]", distance: int) -> None:
    for place in where:
        value = struct.unpack_from(">I", image, place)[0]
        struct.pack_into(">I", image, place, (value + distance) & 0xFFFFFFFF)


def main() -> int:
    rtb, image, moved = (open(sys.argv[n], "rb").read() for n in (1, 2, 4))
    distance = int(sys.argv[3], 0)
    assert rtb[:7] == image[-24:-20] + bytes(3), rtb[:7]
    stream, end = places(rtb)
    listed = bcpl(rtb[end:])
    ours, theirs = bytearray(image), bytearray(moved)
    raise_longs(ours, stream, distance)
    raise_longs(theirs, [int(place) for place in sys.argv[5:]], distance)
    assert ours == theirs, "the images differ"
    print(len(stream), *listed)
    return 0


if __name__ == "__main__":
    sys.exit(main())
