"""The skinned combo box's pieces (ids 5060-5071): a left end, a middle stretched to the control's width and
a right end holding the drop-down arrow, cut from one rounded face in each of the four states. All 24 pixels
high: the control takes its height from them, and the platform's item height is 6 less."""
from draw import RADIUS, Artwork, face_gradient, rounded_rect, state_colour, svg

HEIGHT = 24
LEFT_WIDTH = 6
MIDDLE_WIDTH = 4
RIGHT_WIDTH = 22
LONG = 200  # the face's conceptual width: every piece is a window onto it

# The def's order of states, and the first id of each: left, middle and right follow.
STATE_IDS = (("normal", 5060), ("disabled", 5063), ("hover", 5066), ("pressed", 5069))


def _colours(p, state):
    """Top and bottom of the face's gradient, its outline and the arrow's colour, as the buttons have them:
    hover (or focus) lighter with the accent outline, pressed darker and lit from below, disabled greyed."""
    if state == "disabled":
        return p.face_disabled, p.face_disabled, p.border_disabled, p.text_disabled
    top = state_colour(p, p.face, state)
    bottom = state_colour(p, p.face_edge, state)
    if state == "pressed":
        return bottom, top, p.border_strong, p.glyph
    return top, bottom, p.accent if state == "hover" else p.border, p.glyph


def _face(p, state, offset, gid):
    top, bottom, border, _ = _colours(p, state)
    body = face_gradient(gid, top, bottom) + rounded_rect(offset, 0, LONG, HEIGHT, "url(#%s)" % gid, border)
    if state in ("normal", "hover"):
        # A highlight along the top edge, under the outline, as on the buttons.
        body += ('<line x1="%d" y1="1.5" x2="%d" y2="1.5" stroke="#ffffff" stroke-opacity="%s"/>'
                 % (offset + RADIUS, offset + LONG - RADIUS, "0.55" if p.name == "Default" else "0.10"))
    return body


def left(state):
    return lambda p: svg(LEFT_WIDTH, HEIGHT, _face(p, state, 0, "cl"))


def middle(state):
    return lambda p: svg(MIDDLE_WIDTH, HEIGHT, _face(p, state, -LONG // 2, "cm"))


def right(state):
    def draw(p):
        _, _, border, glyph = _colours(p, state)
        body = _face(p, state, RIGHT_WIDTH - LONG, "cr")
        # A thin divider before the arrow, and the arrow: a triangle on whole pixels, centred.
        body += '<rect x="0" y="5" width="1" height="%d" fill="%s" fill-opacity="0.6"/>' % (HEIGHT - 10, border)
        cx = (RIGHT_WIDTH + 1) // 2
        body += ('<path d="M %d 10 L %d 10 L %d 15 Z" fill="%s"/>' % (cx - 5, cx + 5, cx, glyph))
        return svg(RIGHT_WIDTH, HEIGHT, body)
    return draw


ART = []
for _state, _first in STATE_IDS:
    ART += [
        Artwork(_first, "combo_%s_left" % _state, left(_state)),
        Artwork(_first + 1, "combo_%s_middle" % _state, middle(_state)),
        Artwork(_first + 2, "combo_%s_right" % _state, right(_state)),
    ]
