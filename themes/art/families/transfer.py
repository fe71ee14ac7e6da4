"""The clip of the phone file transfer's progress window (ids 0x17DA and 0x17DB): a document leaves the
computer, flies along a dotted arc and lands in the phone, whose screen lights up. Same computer and phone,
outline and accent as the progress animation, larger. The right-to-left clip is the same film mirrored, so the
document travels from right to left.

The clip is played by the platform's animation control: frames on the theme's flat window colour, which is
also the top-left pixel that the control keys out when asked to draw transparently."""
import math

from draw import Clip, mix, svg, RADIUS

WIDTH, HEIGHT = 272, 60
FRAMES = 18
MICROSECONDS = 80000  # 12.5 frames a second
START_X, END_X, BASE_Y, RISE = 70, 202, 30, 20  # the document's centre at both ends, and the arc's height


def colours(p, lit):
    """The outline and the screen of a device: the accent's when it is the one being written to."""
    if lit:
        return p.accent, mix(p.accent, p.face, 0.35)
    return p.border_strong, mix(p.window, p.face, 0.5)


def computer(p, lit):
    edge, screen = colours(p, lit)
    return ('<rect x="8.5" y="9.5" width="49" height="33" rx="%d" fill="%s" stroke="%s" stroke-width="1"/>'
            '<rect x="12" y="13" width="42" height="26" rx="1" fill="%s"/>'
            '<path d="M28 43 L27 49 L39 49 L38 43 Z" fill="%s"/>'
            '<rect x="20.5" y="49.5" width="25" height="3" rx="1.5" fill="%s" stroke="%s" stroke-width="1"/>'
            % (RADIUS, p.face, edge, screen, edge, p.face, edge))


def phone(p, lit):
    edge, screen = colours(p, lit)
    return ('<rect x="223.5" y="5.5" width="29" height="49" rx="%d" fill="%s" stroke="%s" stroke-width="1"/>'
            '<rect x="234" y="8" width="8" height="1.5" rx="0.75" fill="%s"/>'
            '<rect x="226" y="12" width="24" height="33" rx="1" fill="%s"/>'
            '<circle cx="238" cy="49.5" r="2" fill="none" stroke="%s" stroke-width="1"/>'
            % (RADIUS + 2, p.face, edge, edge, screen, edge))


def place(t):
    """The document's centre at the fraction t of its flight."""
    return START_X + (END_X - START_X) * t, BASE_Y - RISE * math.sin(math.pi * t)


def trail(p):
    dots = []
    for i in range(1, 12):
        x, y = place(i / 12.0)
        dots.append('<circle cx="%.1f" cy="%.1f" r="1.3" fill="%s" fill-opacity="0.8"/>' % (x, y, p.border))
    return "".join(dots)


def document(p, t, opacity):
    """A sheet with a folded corner and three lines of text, 16 x 20, tilted along the arc."""
    x, y = place(t)
    x, y = round(x), round(y)
    tilt = -18 * math.cos(math.pi * t)
    lines = "".join('<rect x="-4" y="%d" width="%d" height="1.5" fill="%s"/>' % (dy, w, p.accent)
                    for dy, w in ((-3, 8), (1, 8), (5, 5)))
    return ('<g transform="translate(%d,%d) rotate(%.1f)" opacity="%.2f">'
            '<path d="M-7.5 -9.5 L3.5 -9.5 L7.5 -5.5 L7.5 9.5 L-7.5 9.5 Z" fill="%s" stroke="%s" stroke-width="1"/>'
            '<path d="M3.5 -9.5 L3.5 -5.5 L7.5 -5.5" fill="%s" stroke="%s" stroke-width="1"/>%s</g>'
            % (x, y, tilt, opacity, p.face, p.border_strong, mix(p.face, p.border, 0.4), p.border_strong, lines))


def frames(p):
    out = []
    for k in range(FRAMES):
        t = k / (FRAMES - 1.0)
        opacity = min(1.0, (k + 1) / 3.0, (FRAMES - k) / 3.0)
        body = ('<rect x="0" y="0" width="%d" height="%d" fill="%s"/>' % (WIDTH, HEIGHT, p.window) +
                trail(p) + computer(p, t < 0.2) + phone(p, t > 0.8) + document(p, t, opacity))
        out.append(svg(WIDTH, HEIGHT, body))
    return out


CLIPS = [
    Clip(0x17DA, "transfer", frames, MICROSECONDS, False),
    Clip(0x17DB, "transfer_rtl", frames, MICROSECONDS, True),
]
