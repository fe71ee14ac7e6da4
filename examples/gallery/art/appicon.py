"""The gallery's application icon, shown by the drawn frame at the left of its caption: a phone in front of a
window, light on the suite's accent, 20 pixels square so that it sits in the 30-pixel caption with room to
spare. Its id is kAppIconId in Gallery.cpp."""
import sys
import pathlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "themes" / "art"))

from draw import Artwork, darker, face_gradient, rounded_rect, svg  # noqa: E402

SIZE = 20


def _icon(p):
    body = face_gradient("icon", p.accent, darker(p.accent, 0.25))
    body += rounded_rect(0, 0, SIZE, SIZE, "url(#icon)", darker(p.accent, 0.35), radius=4)
    # The window behind: a frame with its caption bar.
    body += '<rect x="4.5" y="4.5" width="10" height="8" fill="none" stroke="#ffffff" stroke-opacity="0.65"/>'
    body += '<rect x="5" y="5" width="9" height="2" fill="#ffffff" fill-opacity="0.65"/>'
    # The phone in front, with its screen and a key.
    body += rounded_rect(10, 7, 6, 10, "#ffffff", darker(p.accent, 0.35), radius=1)
    body += '<rect x="12" y="9" width="3" height="4" fill="%s"/>' % p.accent
    body += '<rect x="13" y="14" width="1" height="1" fill="%s"/>' % p.accent
    return svg(SIZE, SIZE, body)


ART = [Artwork(7600, "gallery_appicon", _icon)]
