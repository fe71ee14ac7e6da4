#!/usr/bin/python3
"""Writes a copy of a TrueType font whose family is renamed.

    rename_font.py SOURCE DESTINATION "New Family"

The suite's fonts are free fonts renamed to the suite's family name; the licence of the DejaVu fonts asks
for a new name on any modified copy. The style (Book, Bold, Oblique, Bold Oblique) is kept.
"""
import sys

from fontTools.ttLib import TTFont


def main() -> int:
    source, destination, family = sys.argv[1:4]
    font = TTFont(source)
    names = font["name"]
    old_family = names.getDebugName(1)
    style = names.getDebugName(2) or "Regular"
    ps_family = family.replace(" ", "")
    ps_style = style.replace(" ", "")
    for record in list(names.names):
        if record.nameID in (1, 16):
            names.setName(family, record.nameID, record.platformID, record.platEncID, record.langID)
        elif record.nameID in (3, 4):
            text = record.toUnicode().replace(old_family, family)
            names.setName(text, record.nameID, record.platformID, record.platEncID, record.langID)
        elif record.nameID == 6:
            value = ps_family if style in ("Book", "Regular") else f"{ps_family}-{ps_style}"
            names.setName(value, record.nameID, record.platformID, record.platEncID, record.langID)
    font.save(destination)
    return 0


if __name__ == "__main__":
    sys.exit(main())
