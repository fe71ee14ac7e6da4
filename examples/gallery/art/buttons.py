"""The gallery's own pictures for the button pages, drawn with the suite's vocabulary: an application's
artwork, built into the gallery's resources. Each picture comes in a light and a dark variant (the Default and
Graphite palettes), so the pages fit either theme; ids are in examples/gallery/art/ButtonArt.h.

- A three-piece face for the plain skinned button in four states: left end, tiled middle, right end.
- A glyph and a four-frame spinner for the plain button's image and animation.
- Icons for the common button: an arrow (twice: one follows the layout, one is kept as drawn), plus, close."""
import draw
from draw import Artwork
from palettes import PALETTES

HEIGHT = 28
END = 6     # width of an end piece
MIDDLE = 8  # width of a middle tile
FACE = 2 * END + MIDDLE
STATES = ("normal", "pressed", "hover", "disabled")  # the order of EButtonState


def _face_part(p, state, x0, width):
    """The part of a whole rounded face that starts at column x0, `width` wide."""
    if state == "disabled":
        top = bottom = p.face_disabled
        border = p.border_disabled
    else:
        top = draw.state_colour(p, p.face, state)
        bottom = draw.state_colour(p, p.face_edge, state)
        border = p.accent if state == "pressed" else draw.state_colour(p, p.border_strong, state)
    body = draw.face_gradient("g", top, bottom) + draw.rounded_rect(-x0, 0, FACE, HEIGHT, "url(#g)", border)
    return draw.svg(width, HEIGHT, body)


def piece(state, part, palette):
    x0, width = {"left": (0, END), "middle": (END, MIDDLE), "right": (END + MIDDLE, END)}[part]
    return lambda _p: _face_part(PALETTES[palette], state, x0, width)


def _glyph(body_fn, palette, fixed=None):
    def art(_p):
        p = PALETTES[palette]
        return draw.svg(16, 16, body_fn(p))
    return art


def arrow(p):
    return ('<path d="M3 8 H12 M8.5 4 L12.5 8 L8.5 12" fill="none" stroke="%s" stroke-width="2" '
            'stroke-linecap="round" stroke-linejoin="round"/>' % p.glyph)


def plus(p):
    return ('<path d="M8 3 V13 M3 8 H13" fill="none" stroke="%s" stroke-width="2" stroke-linecap="round"/>'
            % p.glyph)


def close(p):
    return ('<path d="M4 4 L12 12 M12 4 L4 12" fill="none" stroke="%s" stroke-width="2" stroke-linecap="round"/>'
            % p.glyph)


def spinner(frame):
    def body(p):
        dots = []
        for i in range(4):
            cx, cy = ((8, 3), (13, 8), (8, 13), (3, 8))[i]
            colour = p.accent if i == frame else p.border
            dots.append('<circle cx="%d" cy="%d" r="2" fill="%s"/>' % (cx, cy, colour))
        return "".join(dots)
    return body


ART = []
for variant, palette, base in (("light", "Default", 7400), ("dark", "Graphite", 7500)):
    for s, state in enumerate(STATES):
        for k, part in enumerate(("left", "middle", "right")):
            ART.append(Artwork(base + s * 3 + k, "button_%s_%s_%s" % (part, state, variant),
                               piece(state, part, palette)))
    ART.append(Artwork(base + 20, "glyph_arrow_%s" % variant, _glyph(arrow, palette)))
    for f in range(4):
        ART.append(Artwork(base + 21 + f, "spinner_%d_%s" % (f, variant), _glyph(spinner(f), palette)))
    ART.append(Artwork(base + 30, "icon_arrow_%s" % variant, _glyph(arrow, palette)))
    ART.append(Artwork(base + 31, "icon_arrow_fixed_%s" % variant, _glyph(arrow, palette)))
    ART.append(Artwork(base + 32, "icon_plus_%s" % variant, _glyph(plus, palette)))
    ART.append(Artwork(base + 33, "icon_close_%s" % variant, _glyph(close, palette)))
