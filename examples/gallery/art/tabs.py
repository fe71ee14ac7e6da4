"""The gallery's tab control pieces: the 18 pictures a CVuikTabSkinDef names, for both themes at once, in two
id ranges (TabArt.h): the application, not the library, brings a tab control's look.

Geometry, for tabs 24 pixels high whose rectangles start 2 pixels below the control's top:
- the selected tab is drawn from the top of its rectangle, SELECTED_HEIGHT rows: it reaches through the
  panel's top line (row PANEL_LINE of its pieces) into the panel, whose colour its face has, so the two are
  one; a 2-pixel accent bar runs along its top;
- unselected tabs start 4 rows lower, UNSELECTED_HEIGHT rows, ending just above the panel's top line, in the
  resting face gradient, a step darker than the panel;
- neighbours share one border line; the outer ends and the selected tab have the suite's corner radius.
Middles are 1 pixel wide and stretched; the control reads the panel's colour from the selected middle's
bottom pixel."""
import sys
import pathlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "themes" / "art"))

from draw import Artwork, RADIUS, darker, face_gradient, rounded_rect, svg  # noqa: E402
from palettes import PALETTES  # noqa: E402

# First id of each theme's set (examples/gallery/TabArt.h); piece i has the id FIRST_ID + i.
FIRST_ID = {"Default": 7300, "Graphite": 7340}

SELECTED_HEIGHT = 28
UNSELECTED_HEIGHT = 19
UNSELECTED_DROP = 4
PANEL_LINE = 23        # the panel's top line, in rows of a selected piece
ACCENT_ROWS = 2
LONG = 400             # a tab's conceptual width: its shape runs past every piece it is cut from


def _clip(cid, x, y, w, h):
    return '<clipPath id="%s"><rect x="%d" y="%d" width="%d" height="%d"/></clipPath>' % (cid, x, y, w, h)


def unselected(p, left, top, width=LONG, gid="u", cid=None, clip_rows=None):
    """A resting tab whose outline's left edge is the pixel column `left`, its top line the row `top`."""
    body = face_gradient(gid, p.face_edge, darker(p.face_edge, 0.07))
    shape = rounded_rect(left, top, width, UNSELECTED_HEIGHT + 3 * RADIUS, "url(#%s)" % gid, p.border)
    if clip_rows is not None:
        body += "<defs>%s</defs>" % _clip(cid, -LONG, 0, 3 * LONG, clip_rows)
        shape = '<g clip-path="url(#%s)">%s</g>' % (cid, shape)
    return body + shape


def selected(p, left, width=LONG, cid="s"):
    """The selected tab, outline from column `left`, rows 0 to PANEL_LINE, with its accent bar."""
    shape = rounded_rect(left, 0, width, PANEL_LINE + 1 + 2 * RADIUS, p.face, p.border)
    accent = rounded_rect(left, 0, width, PANEL_LINE, p.accent, p.accent)
    return ('<defs>%s%s</defs><g clip-path="url(#%s)">%s</g><g clip-path="url(#%sa)">%s</g>'
            % (_clip(cid, -LONG, 0, 3 * LONG, PANEL_LINE + 1), _clip(cid + "a", -LONG, 0, 3 * LONG, ACCENT_ROWS),
               cid, shape, cid, accent))


def panel_under(p, width, line=True):
    """The panel below the tabs: its top line (where no selected tab covers it) and its face."""
    body = '<rect x="0" y="%d" width="%d" height="%d" fill="%s"/>' % (
        PANEL_LINE + 1, width, SELECTED_HEIGHT - PANEL_LINE - 1, p.face)
    if line:
        body = '<rect x="0" y="%d" width="%d" height="1" fill="%s"/>' % (PANEL_LINE, width, p.border) + body
    return body


def solid(w, h, colour):
    return lambda p: svg(w, h, '<rect x="0" y="0" width="%d" height="%d" fill="%s"/>' % (w, h, colour(p)))


# ---- the 18 pieces, by index ----------------------------------------------------------------------------------

def base(p):
    return svg(1, 1, '<rect width="1" height="1" fill="%s"/>' % p.face)


def top_edge(p):
    return svg(1, 2, '<rect width="1" height="1" fill="%s"/><rect y="1" width="1" height="1" fill="%s"/>'
               % (p.border, p.face))


def corner(p, w, h, x, y, size):
    return svg(w, h, rounded_rect(x, y, size, size, p.face, p.border))


def top_right(p):
    # The panel's top right corner, and the end of a selected last tab of several rows, which reaches the
    # panel's right side: the same outline serves both. It is drawn 2 pixels right of a tab's end, so it is as
    # wide as the selected right end and 2 more.
    w = 6
    return svg(w, SELECTED_HEIGHT, rounded_rect(w - LONG, 0, LONG, SELECTED_HEIGHT + 2 * RADIUS, p.face, p.border))


def selected_left(p):
    w = 12
    return svg(w, SELECTED_HEIGHT, panel_under(p, w, line=False) + selected(p, 0) +
               '<rect x="0" y="%d" width="1" height="%d" fill="%s"/>' % (PANEL_LINE, SELECTED_HEIGHT, p.border))


def selected_middle(p):
    return svg(1, SELECTED_HEIGHT, panel_under(p, 1, line=False) + selected(p, -LONG // 2))


def selected_right(p):
    w = 4
    return svg(w, SELECTED_HEIGHT, panel_under(p, w, line=False) + selected(p, w - LONG))


def left_end(p):
    return svg(6, UNSELECTED_HEIGHT, unselected(p, 0, 0))


def middle(p):
    return svg(1, UNSELECTED_HEIGHT, unselected(p, -LONG // 2, 0))


def right_end(p):
    w = 6
    return svg(w, UNSELECTED_HEIGHT, unselected(p, w - LONG, 0))


def into_selected(p):
    # An unselected tab on the left, sharing column 2 with the selected one on the right.
    w = 6
    return svg(w, SELECTED_HEIGHT,
               unselected(p, 3 - LONG, UNSELECTED_DROP, cid="uc", clip_rows=PANEL_LINE) + panel_under(p, w) +
               selected(p, 2))


def out_of_selected(p):
    # The selected tab on the left, its right side at column 2, shared with the unselected one on the right.
    w = 6
    return svg(w, SELECTED_HEIGHT,
               unselected(p, 2, UNSELECTED_DROP, cid="uc", clip_rows=PANEL_LINE) + panel_under(p, w) +
               selected(p, 3 - LONG))


def separator(p):
    # Two resting tabs sharing column 1.
    return svg(4, UNSELECTED_HEIGHT, unselected(p, 1, 0, gid="u2") + unselected(p, 2 - LONG, 0))


PIECES = [
    ("base", base),
    ("left", solid(1, 1, lambda p: p.border)),
    ("bottom_left", lambda p: corner(p, 4, 4, 0, 4 - 2 * 4, 2 * 4)),
    ("top_right", top_right),
    ("right", solid(1, 1, lambda p: p.border)),
    ("bottom_right", lambda p: corner(p, 4, 4, 4 - 2 * 4, 4 - 2 * 4, 2 * 4)),
    ("bottom", solid(1, 1, lambda p: p.border)),
    None,  # the spare piece: none
    ("top", top_edge),
    ("selected_left", selected_left),
    ("selected_middle", selected_middle),
    ("selected_right", selected_right),
    ("left_end", left_end),
    ("middle", middle),
    ("right_end", right_end),
    ("into_selected", into_selected),
    ("out_of_selected", out_of_selected),
    ("separator", separator),
]

ART = [
    Artwork(FIRST_ID[theme] + index, "tab_%s_%s" % (theme.lower(), piece[0]),
            (lambda draw, palette: (lambda _: draw(palette)))(piece[1], PALETTES[theme]))
    for theme in ("Default", "Graphite")
    for index, piece in enumerate(PIECES) if piece
]
