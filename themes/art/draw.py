"""Small drawing vocabulary shared by the artwork families: an SVG document, the suite's rounded shapes, and
the one rule of how a control's state changes its colours (hover lighter, pressed darker, disabled greyed),
so that every family looks like the same product."""
from collections import namedtuple

Artwork = namedtuple("Artwork", "id name draw")
# A clip for the animation control: `frames(palette)` returns the SVG text of each frame, shown for
# `microseconds` each; a mirrored clip is the same film flipped left to right (for right-to-left languages).
Clip = namedtuple("Clip", "id name frames microseconds mirrored")

# The suite's shapes: one corner radius for every control face, one stroke width, pixel-aligned at 96 dpi
# (a 1-pixel stroke sits on half-pixel coordinates).
RADIUS = 3
STROKE = 1


def svg(width, height, body):
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d" '
            'shape-rendering="geometricPrecision">\n%s\n</svg>\n' % (width, height, width, height, body))


def _rgb(colour):
    colour = colour.lstrip("#")
    return [int(colour[i:i + 2], 16) for i in (0, 2, 4)]


def _hex(rgb):
    return "#%02x%02x%02x" % tuple(max(0, min(255, int(round(c)))) for c in rgb)


def mix(a, b, t):
    """Colour a moved by the fraction t towards colour b."""
    ca, cb = _rgb(a), _rgb(b)
    return _hex([x + (y - x) * t for x, y in zip(ca, cb)])


def lighter(colour, t=0.25):
    return mix(colour, "#ffffff", t)


def darker(colour, t=0.18):
    return mix(colour, "#000000", t)


# The states every family draws, and how each one changes a colour of the palette.
STATES = ("normal", "hover", "pressed", "disabled")


def state_colour(p, colour, state):
    """One colour of the palette as it looks in a state."""
    if state == "hover":
        return lighter(colour, 0.35) if p.name == "Default" else lighter(colour, 0.12)
    if state == "pressed":
        return darker(colour, 0.12) if p.name == "Default" else darker(colour, 0.18)
    if state == "disabled":
        return mix(colour, p.face_disabled, 0.7)
    return colour


def face_gradient(gid, top, bottom):
    return ('<defs><linearGradient id="%s" x1="0" y1="0" x2="0" y2="1">'
            '<stop offset="0" stop-color="%s"/><stop offset="1" stop-color="%s"/></linearGradient></defs>'
            % (gid, top, bottom))


def rounded_rect(x, y, w, h, fill, stroke=None, radius=RADIUS, extra=""):
    """A rectangle with the suite's rounded corners whose 1-pixel outline falls on whole pixels."""
    s = ' stroke="%s" stroke-width="%d"' % (stroke, STROKE) if stroke else ""
    return ('<rect x="%.1f" y="%.1f" width="%d" height="%d" rx="%d" ry="%d" fill="%s"%s%s/>'
            % (x + 0.5, y + 0.5, w - 1, h - 1, radius, radius, fill, s, extra))
