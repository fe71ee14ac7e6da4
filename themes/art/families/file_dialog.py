"""The skinned file dialog's four bars (ids 35300-35311), three pieces each: a top band in the accent colour,
the strip below it that carries the folder combo and the toolbar, the strip's title (a rounded track the
combo sits on), and the side bar down the left. Across, the middle pieces repeat; down, the side bar's
middle piece is stretched, so it is drawn as one flat column."""
from draw import Artwork, darker, face_gradient, lighter, mix, rounded_rect, svg

TOP_HEIGHT = 28
STRIP_HEIGHT = 36
TITLE_HEIGHT = 28
SIDE_WIDTH = 40
END = 8
MIDDLE = 4
WIDE = 200  # the whole of a bar the pieces are cut from


def _cut(width, height, offset_x, offset_y, body):
    """A piece of `width` x `height` cut from a larger drawing moved by the offsets."""
    return svg(width, height, '<g transform="translate(%d,%d)">%s</g>' % (offset_x, offset_y, body))


def _top(p):
    top = lighter(p.accent, 0.18) if p.name == "Default" else mix(p.accent_dark, p.window, 0.35)
    bottom = p.accent_dark if p.name == "Default" else mix(p.accent_dark, p.window, 0.6)
    return (face_gradient("fdt", top, bottom) +
            '<rect x="0" y="0" width="%d" height="%d" fill="url(#fdt)"/>' % (WIDE, TOP_HEIGHT) +
            '<rect x="0" y="%d" width="%d" height="1" fill="%s"/>' % (TOP_HEIGHT - 1, WIDE, darker(bottom, 0.25)))


def _strip(p):
    return (face_gradient("fds", p.face, p.face_edge) +
            '<rect x="0" y="0" width="%d" height="%d" fill="url(#fds)"/>' % (WIDE, STRIP_HEIGHT) +
            '<rect x="0" y="%d" width="%d" height="1" fill="%s"/>' % (STRIP_HEIGHT - 1, WIDE, p.border))


def _title(p):
    track = mix(p.window, p.border, 0.18)
    return (face_gradient("fdn", darker(track, 0.04), track) +
            rounded_rect(0, 0, WIDE, TITLE_HEIGHT, "url(#fdn)", mix(p.border, p.window, 0.3)))


def _side(p):
    panel = mix(p.window, p.accent, 0.10 if p.name == "Default" else 0.14)
    return ('<rect x="0" y="0" width="%d" height="%d" fill="%s"/>' % (SIDE_WIDTH, WIDE, panel) +
            '<rect x="%d" y="0" width="1" height="%d" fill="%s"/>' % (SIDE_WIDTH - 1, WIDE, p.border))


def _across(base, name, draw, height):
    return [
        Artwork(base, name + "_left", lambda p: _cut(END, height, 0, 0, draw(p))),
        Artwork(base + 1, name + "_middle", lambda p: _cut(MIDDLE, height, -WIDE // 2, 0, draw(p))),
        Artwork(base + 2, name + "_right", lambda p: _cut(END, height, END - WIDE, 0, draw(p))),
    ]


ART = (_across(35300, "filedlg_top", _top, TOP_HEIGHT) +
       _across(35303, "filedlg_strip", _strip, STRIP_HEIGHT) +
       _across(35306, "filedlg_title", _title, TITLE_HEIGHT) + [
           Artwork(35309, "filedlg_side_top", lambda p: _cut(SIDE_WIDTH, END, 0, 0, _side(p))),
           Artwork(35310, "filedlg_side_middle", lambda p: _cut(SIDE_WIDTH, MIDDLE, 0, -WIDE // 2, _side(p))),
           Artwork(35311, "filedlg_side_bottom", lambda p: _cut(SIDE_WIDTH, END, 0, END - WIDE, _side(p))),
       ])
