"""The suite's splash picture: a card with the product name "Desk Hub" and the computer-and-phone mark,
floating on a soft shadow. Everything outside the card is partly or wholly transparent, so the splash screen
blends the shadow over the desktop and cuts away what is fully clear."""
from draw import Artwork, darker, lighter, mix, svg

SPLASH_ID = 34100
WIDTH, HEIGHT = 440, 260
CARD = (20, 16, 400, 220)   # x, y, width, height of the card inside the shadow margin
CARD_RADIUS = 12            # the suite's corner, scaled to a picture of this size


def mark(p, x, y, colour, lit):
    """The computer and the phone joined by dots, as in the progress animation, at (x, y)."""
    body = ('<g transform="translate(%d %d)" fill="none" stroke="%s" stroke-width="3" stroke-linejoin="round">'
            '<rect x="1.5" y="6.5" width="58" height="38" rx="5"/>'
            '<path d="M22 56h17M30 45v11"/>'
            '<rect x="126.5" y="1.5" width="32" height="56" rx="6"/>'
            '<circle cx="142.5" cy="49" r="2" fill="%s"/>'
            '</g>' % (x, y, colour, colour))
    for i in range(5):
        opacity = 0.35 + 0.13 * i
        body += ('<circle cx="%.1f" cy="%d" r="%.1f" fill="%s" fill-opacity="%.2f"/>'
                 % (x + 74 + i * 10.5, y + 27, 3.2 if i == 4 else 2.4, lit if i == 4 else colour, opacity))
    return body


def draw_splash(p):
    x, y, w, h = CARD
    dark = p.name != "Default"
    top = mix(p.accent, "#ffffff", 0.08) if not dark else mix(p.face, p.accent, 0.18)
    bottom = darker(p.accent, 0.35) if not dark else p.window
    ink = "#ffffff" if not dark else p.text
    band = lighter(p.accent, 0.75) if not dark else p.accent
    defs = ('<defs>'
            '<filter id="shadow" x="-20%%" y="-20%%" width="140%%" height="140%%">'
            '<feGaussianBlur stdDeviation="7"/></filter>'
            '<linearGradient id="face" x1="0" y1="0" x2="0.35" y2="1">'
            '<stop offset="0" stop-color="%s"/><stop offset="1" stop-color="%s"/></linearGradient>'
            '<linearGradient id="gloss" x1="0" y1="0" x2="0" y2="1">'
            '<stop offset="0" stop-color="#ffffff" stop-opacity="0.22"/>'
            '<stop offset="1" stop-color="#ffffff" stop-opacity="0"/></linearGradient>'
            '</defs>' % (top, bottom))
    shadow = ('<rect x="%d" y="%d" width="%d" height="%d" rx="%d" fill="#000000" fill-opacity="%s" '
              'filter="url(#shadow)"/>' % (x + 2, y + 8, w - 4, h - 4, CARD_RADIUS,
                                          "0.45" if dark else "0.35"))
    card = ('<rect x="%.1f" y="%.1f" width="%d" height="%d" rx="%d" fill="url(#face)" stroke="%s" '
            'stroke-width="1"/>' % (x + 0.5, y + 0.5, w - 1, h - 1, CARD_RADIUS,
                                    darker(p.accent, 0.45) if not dark else p.border))
    # A sheen over the top of the card, clipped to its rounded shape.
    gloss = ('<clipPath id="card"><rect x="%d" y="%d" width="%d" height="%d" rx="%d"/></clipPath>'
             '<path d="M%d %d h%d v%d Q%d %d %d %d z" fill="url(#gloss)" clip-path="url(#card)"/>'
             % (x, y, w, h, CARD_RADIUS, x, y, w, 78, x + w * 0.55, y + 96, x, y + 64))
    title = ('<text x="%d" y="%d" font-family="DejaVu Sans" font-weight="bold" font-size="46" fill="%s" '
             'letter-spacing="1">Desk Hub</text>' % (x + 36, y + 150, ink))
    rule = '<rect x="%d" y="%d" width="%d" height="3" rx="1.5" fill="%s"/>' % (x + 38, y + 168, 120, band)
    subtitle = ('<text x="%d" y="%d" font-family="DejaVu Sans" font-size="15" fill="%s" fill-opacity="0.85">'
                'Zelvo</text>' % (x + 38, y + 196, ink))
    return svg(WIDTH, HEIGHT, defs + shadow + card + gloss + mark(p, x + 36, y + 26, ink, band) + title + rule
               + subtitle)


ART = [Artwork(SPLASH_ID, "splash", draw_splash)]
