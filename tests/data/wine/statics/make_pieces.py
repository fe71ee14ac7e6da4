#!/usr/bin/python3
"""Makes the pictures of the static family's tests: plain 24-bit BMP pieces in flat colours, so that a test
can tell from one pixel which piece lies there, and writes beside them the resource script that lists them
and the header that names their ids, sizes and colours for the tests.

    make_pieces.py OUTPUT_DIR

Pieces of a nine-piece frame (each size different), the pieces of a bar across and downwards (the middle
piece in two colours, so that tiling and stretching look different) and the three frames of an animation
with consecutive ids."""
import pathlib
import struct
import sys

# id, name, width, height, colour of each pixel as 0xRRGGBB from (x, y)
FLAT = lambda colour: (lambda x, y: colour)

PIECES = [
    # Nine-piece frame, in the order of the def's ids.
    (9101, "CHROME_TL", 6, 5, FLAT(0xC00000)),
    (9102, "CHROME_T", 3, 4, FLAT(0x00C000)),
    (9103, "CHROME_TR", 7, 6, FLAT(0x0000C0)),
    (9104, "CHROME_BL", 5, 7, FLAT(0xC0C000)),
    (9105, "CHROME_B", 2, 3, FLAT(0x00C0C0)),
    (9106, "CHROME_BR", 8, 4, FLAT(0xC000C0)),
    (9107, "CHROME_L", 4, 2, FLAT(0x804000)),
    (9108, "CHROME_C", 2, 2, FLAT(0x408000)),
    (9109, "CHROME_R", 3, 3, FLAT(0x004080)),
    # A bar across: the middle's first column marks where each tile begins.
    (9111, "HBAR_START", 5, 6, FLAT(0xE04040)),
    (9112, "HBAR_MIDDLE", 4, 6, lambda x, y: 0x202020 if x == 0 else 0x40E040),
    (9113, "HBAR_END", 3, 6, FLAT(0x4040E0)),
    # A bar downwards: the middle's two halves stay two halves when stretched, and would alternate if tiled.
    (9121, "VBAR_START", 6, 5, FLAT(0xE0E040)),
    (9122, "VBAR_MIDDLE", 6, 8, lambda x, y: 0xF08000 if y < 4 else 0x0080F0),
    (9123, "VBAR_END", 6, 3, FLAT(0x40E0E0)),
    # Animation frames.
    (9131, "FRAME_1", 8, 8, FLAT(0xFF0000)),
    (9132, "FRAME_2", 8, 8, FLAT(0x00FF00)),
    (9133, "FRAME_3", 8, 8, FLAT(0x0000FF)),
]


def bmp(width, height, colour):
    stride = (width * 3 + 3) & ~3
    rows = []
    for y in reversed(range(height)):  # bottom-up
        row = bytearray()
        for x in range(width):
            c = colour(x, y)
            row += bytes((c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF))
        rows.append(bytes(row) + b"\0" * (stride - len(row)))
    pixels = b"".join(rows)
    header = struct.pack("<2sIHHI", b"BM", 14 + 40 + len(pixels), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return header + info + pixels


def main():
    out = pathlib.Path(sys.argv[1])
    out.mkdir(parents=True, exist_ok=True)
    rc = ["/* Made by tests/data/wine/statics/make_pieces.py; do not edit. */", '#include "static_pieces.h"']
    h = ["/* Made by tests/data/wine/statics/make_pieces.py; do not edit. Colours are 0xRRGGBB. */",
         "#pragma once"]
    for id_, name, width, height, colour in PIECES:
        (out / (name.lower() + ".bmp")).write_bytes(bmp(width, height, colour))
        rc.append('IDB_%s BITMAP "%s.bmp"' % (name, name.lower()))
        h.append("#define IDB_%s %d" % (name, id_))
        h.append("#define %s_W %d" % (name, width))
        h.append("#define %s_H %d" % (name, height))
        h.append("#define %s_RGB 0x%06X" % (name, colour(0, 0)))
        h.append("#define %s_RGB2 0x%06X" % (name, colour(width - 1, height - 1)))
    (out / "static_pieces.rc").write_text("\n".join(rc) + "\n")
    (out / "static_pieces.h").write_text("\n".join(h) + "\n")


if __name__ == "__main__":
    main()
