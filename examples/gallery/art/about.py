"""The gallery's product picture for the about box: the gallery's mark (a phone in front of a window) at 40
pixels, white on the banner. The box draws the bitmap whose id is the product name's string id, so the same
picture is listed under the English and the Hebrew id (AboutPageIds.h)."""
import sys
import pathlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "themes" / "art"))

from draw import Artwork, darker, face_gradient, rounded_rect, svg  # noqa: E402

SIZE = 40


def _product(p):
    body = face_gradient("mark", "#ffffff", "#dfe9f5")
    body += rounded_rect(0, 0, SIZE, SIZE, "url(#mark)", darker(p.accent, 0.3), radius=7)
    # The window behind, with its caption bar.
    body += '<rect x="6.5" y="8.5" width="20" height="16" rx="2" fill="none" stroke="%s" stroke-width="2"/>' % p.accent
    body += '<rect x="7" y="9" width="19" height="4" fill="%s"/>' % p.accent
    # The phone in front, with its screen and a key.
    body += rounded_rect(20, 14, 13, 21, darker(p.accent, 0.2), darker(p.accent, 0.45), radius=3)
    body += '<rect x="23" y="17" width="7" height="11" fill="#ffffff"/>'
    body += '<circle cx="26.5" cy="31" r="1.3" fill="#ffffff"/>'
    return svg(SIZE, SIZE, body)


ART = [Artwork(7951, "gallery_about_product", _product),
       Artwork(7961, "gallery_about_product_heb", _product)]
