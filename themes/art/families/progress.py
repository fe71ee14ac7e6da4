"""The progress dialog's two side pictures, 56 by 56 on a transparent ground: on the left the computer, on the
right the phone, each showing the same small picture on its screen, between which the animation carries its
pulse. Same outline, face and accent as the animation's own small devices, larger."""
from draw import Artwork, mix, svg, RADIUS

SIZE = 56


def scene(p, x, y, w, h):
    """A tiny landscape (sky, sun, two hills) filling the screen rectangle."""
    sky = mix(p.accent, p.face, 0.55)
    hill = mix(p.accent, p.glyph, 0.35)
    far = mix(p.accent, p.face, 0.25)
    return ('<rect x="%g" y="%g" width="%g" height="%g" rx="1" fill="%s"/>'
            '<circle cx="%g" cy="%g" r="%g" fill="%s"/>'
            '<path d="M%g %g L%g %g L%g %g Z" fill="%s"/>'
            '<path d="M%g %g L%g %g L%g %g Z" fill="%s"/>'
            % (x, y, w, h, sky,
               x + w * 0.72, y + h * 0.3, min(w, h) * 0.12, p.face,
               x, y + h, x + w * 0.38, y + h * 0.42, x + w * 0.76, y + h, far,
               x + w * 0.34, y + h, x + w * 0.66, y + h * 0.55, x + w, y + h, hill))


def computer(p):
    edge = p.border_strong
    body = ('<rect x="2.5" y="6.5" width="51" height="35" rx="%d" fill="%s" stroke="%s" stroke-width="1"/>'
            % (RADIUS, p.face, edge))
    body += scene(p, 6, 10, 44, 28)
    body += ('<path d="M23 42 L22 48 L34 48 L33 42 Z" fill="%s"/>'
             '<rect x="15.5" y="48.5" width="25" height="3" rx="1.5" fill="%s" stroke="%s" stroke-width="1"/>'
             % (edge, p.face, edge))
    return svg(SIZE, SIZE, body)


def phone(p):
    edge = p.border_strong
    body = ('<rect x="13.5" y="2.5" width="29" height="51" rx="%d" fill="%s" stroke="%s" stroke-width="1"/>'
            % (RADIUS + 2, p.face, edge))
    body += '<rect x="24" y="5" width="8" height="1.5" rx="0.75" fill="%s"/>' % edge
    body += scene(p, 16, 9, 24, 36)
    body += '<circle cx="28" cy="49" r="2" fill="none" stroke="%s" stroke-width="1"/>' % edge
    return svg(SIZE, SIZE, body)


ART = [Artwork(34028, "progress_computer", computer), Artwork(34029, "progress_phone", phone)]
