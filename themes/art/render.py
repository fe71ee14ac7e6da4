#!/usr/bin/python3
"""Renders the artwork of one theme: every picture that a module under families/ declares is written as an
SVG file, turned into a 32-bit PNG (alpha becomes the picture's mask) by rsvg-convert, and listed in a
resource script fragment `art.rc` that the theme's script includes. A module's list CLIPS of Clip entries
(draw.py) becomes AVI clips for the animation control (avi.py), listed as resources of type AVI.

    render.py THEME OUTPUT_DIR [FAMILIES_DIR]

Each module of families/ (or of FAMILIES_DIR: an application such as the gallery draws its own pictures with
the same vocabulary and palettes) holds a list ART of Artwork entries: a resource id, a file name and a function that
takes the theme's Palette and returns the SVG text. The functions are plain drawing code, so one change to a
shape or a colour rule changes every state and both themes together."""
import hashlib
import importlib.util
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

from palettes import PALETTES  # noqa: E402


def load_families(folder):
    """Every module of `folder`, in the order of their file names, so the output is the same each run."""
    families = []
    for path in sorted(folder.glob("*.py")):
        found = importlib.util.spec_from_file_location("family_" + path.stem, path)
        module = importlib.util.module_from_spec(found)
        found.loader.exec_module(module)
        families.append((path.stem, getattr(module, "ART", []), getattr(module, "CLIPS", [])))
    return families


def render_clip(clip, palette, out):
    """Writes clip.name + ".avi" from its frames; only when a frame, the encoder or the clip's settings changed
    (a stamp beside the clip keeps the hash of all three)."""
    texts = clip.frames(palette)
    encoder = (HERE / "avi.py").read_bytes()
    digest = hashlib.sha256(encoder + repr((clip.microseconds, clip.mirrored, texts)).encode("utf-8")).hexdigest()
    avi_path, stamp = out / (clip.name + ".avi"), out / "svg" / (clip.name + ".avi.sha256")
    if avi_path.exists() and stamp.exists() and stamp.read_text() == digest:
        return False
    import avi
    frames, size = [], None
    for k, text in enumerate(texts):
        svg_path = out / "svg" / ("%s_%02d.svg" % (clip.name, k))
        png_path = svg_path.with_suffix(".png")
        svg_path.write_text(text, encoding="utf-8")
        subprocess.run(["rsvg-convert", "-f", "png", "-o", str(png_path), str(svg_path)], check=True)
        width, height, rows = avi.read_png(png_path.read_bytes())
        if size not in (None, (width, height)):
            sys.exit("render.py: the frames of %s differ in size" % clip.name)
        size = (width, height)
        frames.append([row[::-1] for row in rows] if clip.mirrored else rows)
    avi.write_clip(str(avi_path), frames, size[0], size[1], clip.microseconds)
    stamp.write_text(digest)
    return True


# The theme's colour strings that name a colour of the palette: controls fill and write with the strings,
# pictures are drawn with the palette, and the two meet at every edge.
SHARED_COLOURS = {"ZGR_COLOR_WINDOW": "window", "ZGR_COLOR_DIALOG_BACKGROUND": "window", "ZGR_COLOR_TEXT": "text",
                  "ZGR_COLOR_DIALOG_TEXT": "text", "ZGR_COLOR_TEXT_DISABLED": "text_disabled",
                  "ZGR_COLOR_ACCENT": "accent", "ZGR_COLOR_BORDER": "border"}


def check_theme_colours(theme, palette):
    """Stops the build when the theme's script gives one of the shared colours otherwise than the palette."""
    script = HERE.parent / theme / ("ZCMOD_%s.rc" % theme)
    if not script.exists():
        return
    given = dict(re.findall(r'^\s*(ZGR_COLOR_\w+)\s+"([^"]*)"', script.read_text(encoding="utf-8"), re.M))
    for name, key in SHARED_COLOURS.items():
        colour = palette[key].lstrip("#")
        wanted = ",".join(str(int(colour[i:i + 2], 16)) for i in (0, 2, 4))
        if name in given and given[name].replace(" ", "") != wanted:
            sys.exit("render.py: %s gives %s \"%s\", the %s palette's %s is \"%s\""
                     % (script.name, name, given[name], theme, key, wanted))


def main():
    if len(sys.argv) not in (3, 4) or sys.argv[1] not in PALETTES:
        sys.exit("usage: render.py {%s} OUTPUT_DIR [FAMILIES_DIR]" % "|".join(sorted(PALETTES)))
    theme, out = sys.argv[1], pathlib.Path(sys.argv[2])
    folder = pathlib.Path(sys.argv[3]) if len(sys.argv) == 4 else HERE / "families"
    palette = PALETTES[theme]
    if len(sys.argv) == 3:
        check_theme_colours(theme, palette)
    (out / "svg").mkdir(parents=True, exist_ok=True)
    seen_ids, seen_names = {}, {}
    redrawn = False
    lines = ["/* Made by themes/art/render.py for the theme %s; do not edit. */" % theme]
    for family, art, clips in load_families(folder):
        lines.append("/* %s */" % family)
        for clip in clips:
            for seen, key in ((seen_ids, clip.id), (seen_names, clip.name)):
                if key in seen:
                    sys.exit("render.py: %r of %s is also in %s" % (key, family, seen[key]))
                seen[key] = family
            redrawn = render_clip(clip, palette, out) or redrawn
            lines.append('%d AVI "%s.avi"' % (clip.id, clip.name))
        for item in art:
            for seen, key in ((seen_ids, item.id), (seen_names, item.name)):
                if key in seen:
                    sys.exit("render.py: %r of %s is also in %s" % (key, family, seen[key]))
                seen[key] = family
            svg_path = out / "svg" / (item.name + ".svg")
            png_path = out / (item.name + ".png")
            text = item.draw(palette)
            # Rewrite only what changed, so a build after an unrelated edit stays quick.
            if not svg_path.exists() or svg_path.read_text(encoding="utf-8") != text or not png_path.exists():
                svg_path.write_text(text, encoding="utf-8")
                subprocess.run(["rsvg-convert", "-f", "png", "-o", str(png_path), str(svg_path)], check=True)
                redrawn = True
            lines.append('%d PNG "%s.png"' % (item.id, item.name))
    rc = "\n".join(lines) + "\n"
    rc_path = out / "art.rc"
    # A picture drawn anew rewrites the script too: the resource scripts that include it depend on it alone.
    if redrawn or not rc_path.exists() or rc_path.read_text(encoding="utf-8") != rc:
        rc_path.write_text(rc, encoding="utf-8")


if __name__ == "__main__":
    main()
