"""The step bar of a wizard (ids 5205-5209): the empty bar, whose width the steps divide, and the filling that
runs from its start to the current step, cut from one rounded accent bar; a separator between steps is a
gap in the window's colour. All 12 pixels high."""
from draw import Artwork, darker, face_gradient, lighter, mix, rounded_rect, svg

WIDTH = 400
HEIGHT = 12
END_WIDTH = 6
MIDDLE_WIDTH = 1
SEPARATOR_WIDTH = 2


def background(p):
    track = mix(p.window, p.border, 0.35)
    return svg(WIDTH, HEIGHT, face_gradient("sb", darker(track, 0.06), track) +
               rounded_rect(0, 0, WIDTH, HEIGHT, "url(#sb)", p.border))


def _filling(p, offset, width):
    return svg(width, HEIGHT, face_gradient("sf", lighter(p.accent, 0.3), p.accent) +
               rounded_rect(offset, 0, WIDTH, HEIGHT, "url(#sf)", p.accent_dark))


def separator(p):
    return svg(SEPARATOR_WIDTH, HEIGHT, '<rect x="0" y="0" width="%d" height="%d" fill="%s"/>'
               % (SEPARATOR_WIDTH, HEIGHT, p.window))


ART = [
    Artwork(5205, "stepbar_middle", lambda p: _filling(p, -WIDTH // 2, MIDDLE_WIDTH)),
    Artwork(5206, "stepbar_left", lambda p: _filling(p, 0, END_WIDTH)),
    Artwork(5207, "stepbar_right", lambda p: _filling(p, END_WIDTH - WIDTH, END_WIDTH)),
    Artwork(5208, "stepbar_separator", separator),
    Artwork(5209, "stepbar_background", background),
]
