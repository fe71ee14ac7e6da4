"""The two shipped themes as palettes: every colour the artwork uses has a name here, so a drawing asks for
"the face of a control" and not for a number. Default is light with a blue accent; Graphite is dark with a
cyan-blue accent. Colours are "#rrggbb" strings as SVG takes them."""


class Palette(dict):
    """A theme's colours by name; `p.face` reads like `p["face"]`."""

    def __getattr__(self, name):
        try:
            return self[name]
        except KeyError:
            raise AttributeError(name)


PALETTES = {
    "Default": Palette(
        name="Default",
        window="#f2f5f9",      # dialog and window background
        face="#fdfdfe",        # face of a control at rest
        face_edge="#e6ebf2",   # lower end of the face's gradient
        border="#abb6c4",      # outline of a control at rest
        border_strong="#6f7f94",
        accent="#0078d4",      # focus, checked marks, selection
        accent_dark="#005a9e",
        text="#20262e",
        text_disabled="#8c929a",
        face_disabled="#eef0f3",
        border_disabled="#cdd3da",
        glyph="#2c3a4c",       # icons drawn on controls
        shadow="#000000",
        shadow_alpha="0.10",
    ),
    "Graphite": Palette(
        name="Graphite",
        window="#23272e",
        face="#3a404a",
        face_edge="#30353d",
        border="#5a626e",
        border_strong="#8a94a2",
        accent="#3aa0ff",
        accent_dark="#1f7fd6",
        text="#e8ecf1",
        text_disabled="#7a828c",
        face_disabled="#2c3037",
        border_disabled="#40464f",
        glyph="#dfe6ee",
        shadow="#000000",
        shadow_alpha="0.30",
    ),
}
