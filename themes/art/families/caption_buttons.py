"""Caption buttons of the drawn window frame: close (alone, or at the end of a row), maximise, restore and
minimise, each normal, hover and pressed. They sit on the frame's dark caption bar (#373737 in every theme),
so the glyphs are light; a button at rest is only its glyph, hover lays a lighter face under it and pressed a
darker one, and close turns red as it does on every desktop. The Graphite faces lean towards its accent."""
from draw import Artwork, RADIUS, darker, lighter, mix, rounded_rect, svg

CAPTION = "#373737"  # the frame's caption fill, which shows through a button at rest
HEIGHT = 22
WIDE = 40            # close at the end of a row of buttons
NARROW = 30          # every other button, close alone too
CLOSE_RED = "#c8382c"


def _glyph_colour(p, state):
    base = "#f2f2f2" if p.name == "Default" else p.glyph
    if state == "pressed":
        return mix(base, CAPTION, 0.25)
    if state == "hover":
        return "#ffffff"
    return base


def _face(p, state, close):
    """The face under the glyph, or None for a button at rest."""
    if state == "normal":
        return None
    if close:
        return lighter(CLOSE_RED, 0.12) if state == "hover" else darker(CLOSE_RED, 0.22)
    rest = lighter(CAPTION, 0.16) if p.name == "Default" else mix(CAPTION, p.accent, 0.28)
    return rest if state == "hover" else darker(CAPTION, 0.35)


def _button(width, glyph, close=False):
    def draw_state(state):
        def draw(p):
            face = _face(p, state, close)
            # One transparent pixel each side keeps neighbouring faces apart.
            body = rounded_rect(1, 0, width - 2, HEIGHT, face, radius=RADIUS) if face else ""
            cx, cy = width // 2, HEIGHT // 2
            return svg(width, HEIGHT, body + glyph(cx, cy, _glyph_colour(p, state)))
        return draw
    return draw_state


def _close(cx, cy, colour):
    # A 9 by 9 cross through the pixel centres.
    a, b = cx - 4, cx + 5
    return ('<path d="M%d %d L%d %d M%d %d L%d %d" stroke="%s" stroke-width="1.4" stroke-linecap="square" '
            'fill="none"/>' % (a, cy - 4, b, cy + 5, b, cy - 4, a, cy + 5, colour))


def _maximise(cx, cy, colour):
    return ('<rect x="%.1f" y="%.1f" width="9" height="9" fill="none" stroke="%s" stroke-width="1"/>'
            '<rect x="%d" y="%d" width="9" height="1" fill="%s"/>'
            % (cx - 4.5, cy - 3.5, colour, cx - 4, cy - 3, colour))


def _restore(cx, cy, colour):
    # The window in front, and the edge of the one behind it up and to the right.
    return ('<rect x="%.1f" y="%.1f" width="7" height="7" fill="none" stroke="%s" stroke-width="1"/>'
            '<path d="M%.1f %.1f V%.1f H%.1f V%.1f H%.1f" fill="none" stroke="%s" stroke-width="1"/>'
            % (cx - 4.5, cy - 1.5, colour, cx - 2.5, cy - 1.5, cy - 3.5, cx + 4.5, cy + 3.5, cx + 2.5, colour))


def _minimise(cx, cy, colour):
    return '<rect x="%d" y="%d" width="9" height="1" fill="%s"/>' % (cx - 4, cy + 3, colour)


def _set(ids_by_state, name, width, glyph, close=False):
    draw_state = _button(width, glyph, close)
    return [Artwork(ids_by_state[state], "caption_%s_%s" % (name, state), draw_state(state))
            for state in ("normal", "hover", "pressed")]


ART = (
    _set({"normal": 32534, "hover": 32535, "pressed": 32536}, "close_alone", NARROW, _close, close=True)
    + _set({"normal": 32502, "hover": 32503, "pressed": 32504}, "close", WIDE, _close, close=True)
    + _set({"normal": 32532, "hover": 32531, "pressed": 32533}, "maximise", NARROW, _maximise)
    + _set({"normal": 32505, "hover": 32506, "pressed": 32507}, "minimise", NARROW, _minimise)
    + _set({"normal": 32538, "hover": 32537, "pressed": 32539}, "restore", NARROW, _restore)
)
