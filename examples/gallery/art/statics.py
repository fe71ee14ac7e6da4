"""The pictures of the gallery's static page, in both themes at once (the gallery is one program that runs
under either theme): a card frame cut into nine pieces, a bar across and a bar downwards cut into three, and
the eight frames of a busy spinner. Each set is one drawing; a piece is a window (viewBox) onto it, so the
pieces always meet without a seam. Ids: 7700 + 100 * theme index + the offsets below (art/StaticArt.h)."""
import math

from draw import Artwork, RADIUS, lighter, mix, svg
from palettes import PALETTES

THEMES = ("Default", "Graphite")
BASE = 7700

# Card: 8-pixel corners round a 1-pixel middle, so 17 x 17 in all.
CARD_CORNER = 8
CARD = 2 * CARD_CORNER + 1
# Bars: 28 pixels thick, 10-pixel ends, a 12-pixel middle.
BAR = 28
BAR_END = 10
BAR_MIDDLE = 12
SPINNER = 32
FRAMES = 8


def window(drawing, x, y, w, h):
    """One piece: the part (x, y, w, h) of a drawing."""
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="%d %d %d %d" '
            'shape-rendering="geometricPrecision">\n%s\n</svg>\n' % (w, h, x, y, w, h, drawing))


def card(p):
    radius = RADIUS + 3
    return ('<defs><clipPath id="c"><rect x="0.5" y="0.5" width="%d" height="%d" rx="%d"/></clipPath>'
            '<linearGradient id="f" x1="0" y1="0" x2="0" y2="1"><stop offset="0" stop-color="%s"/>'
            '<stop offset="1" stop-color="%s"/></linearGradient></defs>'
            '<rect x="0.5" y="0.5" width="%d" height="%d" rx="%d" fill="url(#f)" stroke="%s"/>'
            '<rect x="0" y="0" width="%d" height="3" fill="%s" clip-path="url(#c)"/>'
            % (CARD - 1, CARD - 1, radius, p.face, p.face_edge, CARD - 1, CARD - 1, radius, p.border, CARD, p.accent))


def bar_across(p):
    length = 2 * BAR_END + BAR_MIDDLE
    dot_x = BAR_END + BAR_MIDDLE / 2
    return ('<defs><linearGradient id="b" x1="0" y1="0" x2="0" y2="1"><stop offset="0" stop-color="%s"/>'
            '<stop offset="1" stop-color="%s"/></linearGradient></defs>'
            '<rect x="0.5" y="0.5" width="%d" height="%d" rx="%d" fill="url(#b)" stroke="%s"/>'
            '<circle cx="%.1f" cy="%d" r="1.5" fill="%s"/>'
            % (lighter(p.face, 0.2), p.face_edge, length - 1, BAR - 1, RADIUS + 2, p.border,
               dot_x, BAR // 2, p.border_strong))


def bar_down(p):
    length = 2 * BAR_END + BAR_MIDDLE
    return ('<defs><linearGradient id="v" x1="0" y1="0" x2="1" y2="0"><stop offset="0" stop-color="%s"/>'
            '<stop offset="1" stop-color="%s"/></linearGradient></defs>'
            '<rect x="0.5" y="0.5" width="%d" height="%d" rx="%d" fill="url(#v)" stroke="%s"/>'
            '<rect x="%d" y="3" width="2" height="%d" rx="1" fill="%s"/>'
            % (lighter(p.face, 0.2), p.face_edge, BAR - 1, length - 1, RADIUS + 2, p.border,
               BAR // 2 - 1, length - 6, p.accent))


def spinner(p, frame):
    dots = []
    for i in range(FRAMES):
        angle = 2 * math.pi * i / FRAMES - math.pi / 2
        x = SPINNER / 2 + 11 * math.cos(angle)
        y = SPINNER / 2 + 11 * math.sin(angle)
        age = (frame - i) % FRAMES  # 0: the head of the run
        colour = mix(p.accent, p.border, min(1.0, age / 3.0))
        dots.append('<circle cx="%.2f" cy="%.2f" r="%.1f" fill="%s"/>' % (x, y, 3.2 if age == 0 else 2.6, colour))
    return svg(SPINNER, SPINNER, "\n".join(dots))


# Offsets of each picture within a theme's block.
CARD_PIECES = [  # offset, name, x, y, w, h in the order of the frame's ids
    (0, "top_left", 0, 0, CARD_CORNER, CARD_CORNER),
    (1, "top", CARD_CORNER, 0, 1, CARD_CORNER),
    (2, "top_right", CARD_CORNER + 1, 0, CARD_CORNER, CARD_CORNER),
    (3, "bottom_left", 0, CARD_CORNER + 1, CARD_CORNER, CARD_CORNER),
    (4, "bottom", CARD_CORNER, CARD_CORNER + 1, 1, CARD_CORNER),
    (5, "bottom_right", CARD_CORNER + 1, CARD_CORNER + 1, CARD_CORNER, CARD_CORNER),
    (6, "left", 0, CARD_CORNER, CARD_CORNER, 1),
    (7, "center", CARD_CORNER, CARD_CORNER, 1, 1),
    (8, "right", CARD_CORNER + 1, CARD_CORNER, CARD_CORNER, 1),
]
ACROSS_PIECES = [(10, "start", 0, BAR_END), (11, "middle", BAR_END, BAR_MIDDLE),
                 (12, "end", BAR_END + BAR_MIDDLE, BAR_END)]
DOWN_PIECES = [(20, "start", 0, BAR_END), (21, "middle", BAR_END, BAR_MIDDLE), (22, "end", BAR_END + BAR_MIDDLE, BAR_END)]
FRAME_OFFSET = 30


def _art():
    art = []
    for index, theme in enumerate(THEMES):
        p = PALETTES[theme]
        base = BASE + 100 * index
        tag = theme.lower()
        for offset, name, x, y, w, h in CARD_PIECES:
            art.append(Artwork(base + offset, "static_card_%s_%s" % (name, tag),
                               lambda _, p=p, x=x, y=y, w=w, h=h: window(card(p), x, y, w, h)))
        for offset, name, start, length in ACROSS_PIECES:
            art.append(Artwork(base + offset, "static_bar_across_%s_%s" % (name, tag),
                               lambda _, p=p, s=start, n=length: window(bar_across(p), s, 0, n, BAR)))
        for offset, name, start, length in DOWN_PIECES:
            art.append(Artwork(base + offset, "static_bar_down_%s_%s" % (name, tag),
                               lambda _, p=p, s=start, n=length: window(bar_down(p), 0, s, BAR, n)))
        for frame in range(FRAMES):
            art.append(Artwork(base + FRAME_OFFSET + frame, "static_spinner_%d_%s" % (frame, tag),
                               lambda _, p=p, f=frame: spinner(p, f)))
    return art


ART = _art()
