"""The about box's pictures: the banner under the caption, on which the product's picture, name and version
line are written in white; and the maker's mark in the footer band. The OK button's tick is the message
boxes' (message_box.py), which the two share by id.

The banner is 535 x 150 and starts one pixel in from the frame's left edge, right under the 30-pixel caption.
Its left part stays calm for the white text; the computer-and-phone mark of the suite sits at the right. It
carries no lettering: in a right-to-left layout the dialog's mirrored context turns it round, and the mark
reads as well either way. The frame itself keeps the same colours in both themes, so the maker's mark is drawn
for its light footer band; the banner follows the theme."""
from draw import Artwork, darker, lighter, mix, svg

BANNER_ID, MAKER_ID = 35000, 35001
BANNER_W, BANNER_H = 535, 150
MAKER_W, MAKER_H = 74, 18


def _banner_colours(p):
    if p.name == "Default":
        return mix(p.accent, "#0b2a4a", 0.35), darker(p.accent_dark, 0.45), lighter(p.accent, 0.55)
    return mix(p.window, p.accent, 0.22), darker(p.window, 0.35), p.accent


def _mark(x, y, colour, lit):
    """The suite's computer and phone joined by dots, 160 x 58, at (x, y)."""
    body = ('<g transform="translate(%d %d)" fill="none" stroke="%s" stroke-width="3" stroke-linejoin="round" '
            'stroke-opacity="0.9">'
            '<rect x="1.5" y="6.5" width="58" height="38" rx="5"/>'
            '<path d="M22 56h17M30 45v11"/>'
            '<rect x="126.5" y="1.5" width="32" height="56" rx="6"/>'
            '<circle cx="142.5" cy="49" r="2" fill="%s"/>'
            '</g>' % (x, y, colour, colour))
    for i in range(5):
        body += ('<circle cx="%.1f" cy="%d" r="%.1f" fill="%s" fill-opacity="%.2f"/>'
                 % (x + 74 + i * 10.5, y + 27, 3.2 if i == 4 else 2.4, lit if i == 4 else colour,
                    0.35 + 0.13 * i))
    return body


def draw_banner(p):
    top, bottom, lit = _banner_colours(p)
    defs = ('<defs><linearGradient id="band" x1="0" y1="0" x2="1" y2="1">'
            '<stop offset="0" stop-color="%s"/><stop offset="1" stop-color="%s"/></linearGradient>'
            '<radialGradient id="glow" cx="0.8" cy="0.35" r="0.5">'
            '<stop offset="0" stop-color="%s" stop-opacity="0.35"/>'
            '<stop offset="1" stop-color="%s" stop-opacity="0"/></radialGradient></defs>'
            % (top, bottom, lit, lit))
    band = '<rect width="%d" height="%d" fill="url(#band)"/>' % (BANNER_W, BANNER_H)
    glow = '<rect width="%d" height="%d" fill="url(#glow)"/>' % (BANNER_W, BANNER_H)
    # Two soft sweeps across the band, and a thin accent rule along its foot.
    sweeps = ('<path d="M0 118 C140 92 300 150 535 96 V150 H0 z" fill="#ffffff" fill-opacity="0.06"/>'
              '<path d="M0 134 C180 112 330 150 535 124 V150 H0 z" fill="#ffffff" fill-opacity="0.07"/>')
    rule = '<rect y="%d" width="%d" height="2" fill="%s"/>' % (BANNER_H - 2, BANNER_W, lit)
    return svg(BANNER_W, BANNER_H, defs + band + glow + sweeps + _mark(352, 80, "#ffffff", lit) + rule)


def draw_maker(p):
    # The frame's footer band is light in both themes: the mark is the Default theme's accent on it.
    ink = "#1c4e8c"
    badge = ('<rect x="0.5" y="1.5" width="15" height="15" rx="3" fill="%s"/>'
             '<path d="M4.5 5.5h7l-7 7h7" fill="none" stroke="#ffffff" stroke-width="1.6" '
             'stroke-linecap="round" stroke-linejoin="round"/>' % ink)
    word = ('<text x="21" y="14" font-family="DejaVu Sans" font-weight="bold" font-size="13" fill="%s" '
            'letter-spacing="0.5">Zelvo</text>' % ink)
    return svg(MAKER_W, MAKER_H, badge + word)


ART = [
    Artwork(BANNER_ID, "about_banner", draw_banner),
    Artwork(MAKER_ID, "about_maker", draw_maker),
]
