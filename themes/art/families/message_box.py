"""The message box: the icons of its buttons and its message icon.

Button icons are 16 by 16 glyphs laid on the common button's medium face, normal and disabled: OK (Yes wears
it too) a tick in the accent, Cancel a cross in the glyph colour, No a barred circle in the suite's red.
Disabled glyphs take the disabled text colour. The message icon is 32 by 32 (the desktop's icon size): the
accent disc with a light "i", the same for every kind of message."""
from draw import Artwork, svg

ICON = 16
MESSAGE = 32
NO_RED = {"Default": "#c8382c", "Graphite": "#ff6b5e"}


def _tick(colour):
    return ('<path d="M3.5 8.5 L6.5 11.5 L12.5 4.5" fill="none" stroke="%s" stroke-width="2" '
            'stroke-linecap="round" stroke-linejoin="round"/>' % colour)


def _cross(colour):
    return ('<path d="M4.5 4.5 L11.5 11.5 M11.5 4.5 L4.5 11.5" fill="none" stroke="%s" stroke-width="2" '
            'stroke-linecap="round"/>' % colour)


def _barred(colour):
    return ('<circle cx="8" cy="8" r="5.5" fill="none" stroke="%s" stroke-width="1.6"/>'
            '<path d="M4.2 11.8 L11.8 4.2" stroke="%s" stroke-width="1.6" stroke-linecap="round"/>'
            % (colour, colour))


def _icon(glyph, colour_of):
    def draw(p):
        return svg(ICON, ICON, glyph(colour_of(p)))
    return draw


def _disabled(p):
    return p.text_disabled


def _message_icon(p):
    body = ('<circle cx="16" cy="16" r="14.5" fill="%s" stroke="%s" stroke-width="1"/>'
            '<rect x="14.5" y="13" width="3" height="11" rx="1" fill="#ffffff"/>'
            '<circle cx="16" cy="9" r="2" fill="#ffffff"/>' % (p.accent, p.accent_dark))
    return svg(MESSAGE, MESSAGE, body)


ART = [
    Artwork(34005, "msgbox_cancel", _icon(_cross, lambda p: p.glyph)),
    Artwork(34006, "msgbox_cancel_disabled", _icon(_cross, _disabled)),
    Artwork(34007, "msgbox_ok", _icon(_tick, lambda p: p.accent)),
    Artwork(34008, "msgbox_ok_disabled", _icon(_tick, _disabled)),
    Artwork(34009, "msgbox_no", _icon(_barred, lambda p: NO_RED[p.name])),
    Artwork(34010, "msgbox_no_disabled", _icon(_barred, _disabled)),
    Artwork(35010, "msgbox_message_icon", _message_icon),
]
