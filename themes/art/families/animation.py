"""The progress animation: a computer and a phone with a row of dots between them, over which a pulse
travels from the computer to the phone. Eleven frames on a transparent ground (the player blends them over
whatever the window shows), with anti-aliased edges. Frame 0 lights the computer, frames 1 to 9 carry the
pulse along the nine dots with a fading tail, frame 10 lights the phone."""
from draw import Artwork, mix, svg, RADIUS

WIDTH, HEIGHT = 136, 28
FRAMES = 11
FIRST_ID = 34030
DOTS = 9
DOT_X0, DOT_STEP = 34, 8.5   # centres of the dots, between the two devices
MID = HEIGHT / 2


def computer(p, lit):
    edge = p.accent if lit else p.border_strong
    screen = mix(p.accent, p.face, 0.35) if lit else p.face
    return ('<rect x="2.5" y="4.5" width="23" height="15" rx="%d" fill="%s" stroke="%s" stroke-width="1"/>'
            '<rect x="5" y="7" width="18" height="10" rx="1" fill="%s"/>'
            '<rect x="11" y="20" width="6" height="3" fill="%s"/>'
            '<rect x="7.5" y="23.5" width="13" height="1" rx="0.5" fill="%s" stroke="%s" stroke-width="1"/>'
            % (RADIUS, p.face, edge, screen, edge, edge, edge))


def phone(p, lit):
    edge = p.accent if lit else p.border_strong
    screen = mix(p.accent, p.face, 0.35) if lit else p.face
    return ('<rect x="118.5" y="2.5" width="14" height="23" rx="%d" fill="%s" stroke="%s" stroke-width="1"/>'
            '<rect x="121" y="6" width="9" height="14" rx="1" fill="%s"/>'
            '<circle cx="125.5" cy="22.5" r="1.2" fill="%s"/>'
            % (RADIUS, p.face, edge, screen, edge))


def dots(p, pulse):
    """The row of dots; `pulse` is the lit dot (or None), the two before it fade behind."""
    out = []
    for i in range(DOTS):
        cx = DOT_X0 + i * DOT_STEP
        behind = pulse - i if pulse is not None else -1
        if behind == 0:
            out.append('<circle cx="%.1f" cy="%.1f" r="4" fill="%s" fill-opacity="0.25"/>' % (cx, MID, p.accent))
            out.append('<circle cx="%.1f" cy="%.1f" r="3" fill="%s"/>' % (cx, MID, p.accent))
        elif behind in (1, 2):
            out.append('<circle cx="%.1f" cy="%.1f" r="%.1f" fill="%s" fill-opacity="%.2f"/>'
                       % (cx, MID, 2.6 - 0.3 * behind, p.accent, 0.75 - 0.25 * behind))
        else:
            out.append('<circle cx="%.1f" cy="%.1f" r="1.6" fill="%s" fill-opacity="0.7"/>'
                       % (cx, MID, p.border))
    return "".join(out)


def frame(k):
    def draw(p):
        pulse = k - 1 if 1 <= k <= DOTS else None
        return svg(WIDTH, HEIGHT, computer(p, k == 0) + dots(p, pulse) + phone(p, k == FRAMES - 1))
    return draw


ART = [Artwork(FIRST_ID + k, "animation_%02d" % k, frame(k)) for k in range(FRAMES)]
