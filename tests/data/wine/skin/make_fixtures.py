#!/usr/bin/python3
"""Writes the pictures of the skin primitives' Wine tests into the folder of this script (stdlib only).

columns_10x10.png  RGBA 10 x 10: red 20 * x + 5, green 20 * y + 5, blue 100; alpha 255 - 25 * x, so the
                   transparency plane (255 - alpha) is 25 * x: column 0 opaque, every column another value.
opaque_3x2.png     RGB 3 x 2, no alpha: (3, 2, 1), green, blue in the first row; white, black, grey in the second.
"""
import os
import struct
import zlib


def png(path, width, height, channels, pixel):
    colour_type = {3: 2, 4: 6}[channels]
    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, colour_type, 0, 0, 0)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) +
                chunk(b"IEND", b""))


here = os.path.dirname(os.path.abspath(__file__))
png(os.path.join(here, "columns_10x10.png"), 10, 10, 4, lambda x, y: (20 * x + 5, 20 * y + 5, 100, 255 - 25 * x))
opaque = [[(3, 2, 1), (0, 255, 0), (0, 0, 255)], [(255, 255, 255), (0, 0, 0), (128, 128, 128)]]
png(os.path.join(here, "opaque_3x2.png"), 3, 2, 3, lambda x, y: opaque[y][x])
