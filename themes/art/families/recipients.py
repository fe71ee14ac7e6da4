"""The recipient box's picker button icon: a person beside the lines of an address list, drawn in the text
colour with the accent on the person (greyed when disabled), for the large common button's 40 x 40 face."""
import draw
from draw import Artwork

SIZE = 24


def picker_icon(disabled):
    def art(p):
        ink = p.text_disabled if disabled else p.text
        person = p.text_disabled if disabled else p.accent
        body = [
            # The list: three lines of entries on the right.
            '<path d="M13.5 7.5 H21.5 M13.5 12.5 H21.5 M13.5 17.5 H19.5" stroke="%s" stroke-width="%d" '
            'stroke-linecap="round" fill="none"/>' % (ink, draw.STROKE),
            # The person: a head and shoulders on the left.
            '<circle cx="7" cy="8" r="3.5" fill="%s"/>' % person,
            '<path d="M1.5 19.5 C1.5 14.5 4 13 7 13 C10 13 12.5 14.5 12.5 19.5 Z" fill="%s"/>' % person,
        ]
        return draw.svg(SIZE, SIZE, "\n".join(body))
    return art


ART = [
    Artwork(0x84E6, "recipient_picker", picker_icon(False)),
    Artwork(0x84E7, "recipient_picker_disabled", picker_icon(True)),
]
