"""The common (icon) button's backgrounds in three sizes, and the marks of the check box and the radio button.

Common button: seven states per size (disabled, normal, hover, pressed, focused, focused hover, focused
pressed). The face is the suite's rounded rectangle; hover is lighter and pressed darker by the shared state
rule, disabled greyed; focus is the accent: a 1-pixel accent outline with a faint accent ring inside it.

Check box and radio button: six states each (unchecked disabled, unchecked, unchecked hover, checked
disabled, checked, checked hover). Checked marks are filled with the accent and carry a tick or a dot in the
face colour of a light control."""
import draw
from draw import Artwork

# Square faces: small, medium and large, for icons of 16, 16 to 24 and 24 pixels.
SIZES = (("small", 5030, 24), ("medium", 5037, 32), ("large", 5044, 40))
COMMON_STATES = ("disabled", "normal", "hover", "pressed", "focused", "focused_hover", "focused_pressed")
MARK = 16  # check box and radio button marks are 16 x 16


def _face(p, state):
    """Top and bottom of the face's gradient and its outline in one of the four base states."""
    if state == "disabled":
        return p.face_disabled, p.face_disabled, p.border_disabled
    top = draw.state_colour(p, p.face, state)
    bottom = draw.state_colour(p, p.face_edge, state)
    border = p.border_strong if state == "pressed" else draw.state_colour(p, p.border, state)
    if state == "pressed":  # a pressed face is lit from below
        top, bottom = bottom, top
    return top, bottom, border


def common_button(size, state):
    def art(p):
        focused = state.startswith("focused")
        base = state[len("focused_"):] if state.startswith("focused_") else ("normal" if focused else state)
        top, bottom, border = _face(p, base)
        gid = "face"
        body = [draw.face_gradient(gid, top, bottom),
                draw.rounded_rect(0, 0, size, size, "url(#%s)" % gid, border if not focused else p.accent)]
        if focused:
            # A second, faint accent ring inside the outline, so focus reads at a glance in both themes.
            body.append(draw.rounded_rect(1, 1, size - 2, size - 2, "none", p.accent,
                                          radius=max(draw.RADIUS - 1, 1), extra=' stroke-opacity="0.35"'))
        elif base != "disabled":
            # A highlight along the top edge, under the outline.
            body.append('<line x1="%d" y1="1.5" x2="%d" y2="1.5" stroke="#ffffff" stroke-opacity="%s"/>'
                        % (draw.RADIUS, size - draw.RADIUS, "0.55" if p.name == "Default" else "0.10"))
        return draw.svg(size, size, "\n".join(body))
    return art


def _mark_colours(p, checked, state):
    if state == "disabled":
        if checked:
            return draw.mix(p.accent, p.face_disabled, 0.65), p.border_disabled, p.face_disabled
        return p.face_disabled, p.border_disabled, p.text_disabled
    if checked:
        fill = draw.state_colour(p, p.accent, state)
        return fill, draw.darker(fill, 0.15) if p.name == "Default" else draw.lighter(fill, 0.1), "#ffffff"
    fill = draw.state_colour(p, p.face, state)
    border = p.accent if state == "hover" else p.border_strong
    return fill, border, p.text


def check_box(checked, state):
    def art(p):
        fill, border, tick = _mark_colours(p, checked, state)
        body = [draw.rounded_rect(1, 1, MARK - 2, MARK - 2, fill, border)]
        if checked:
            body.append('<path d="M4.5 8.5 L7 11 L11.5 5.5" fill="none" stroke="%s" stroke-width="2" '
                        'stroke-linecap="round" stroke-linejoin="round"/>' % tick)
        return draw.svg(MARK, MARK, "\n".join(body))
    return art


def radio_button(checked, state):
    def art(p):
        fill, border, dot = _mark_colours(p, checked, state)
        c = MARK / 2.0
        body = ['<circle cx="%.1f" cy="%.1f" r="6.5" fill="%s" stroke="%s" stroke-width="%d"/>'
                % (c, c, fill, border, draw.STROKE)]
        if checked:
            body.append('<circle cx="%.1f" cy="%.1f" r="2.5" fill="%s"/>' % (c, c, dot))
        return draw.svg(MARK, MARK, "\n".join(body))
    return art


MARK_STATES = ((False, "disabled"), (False, "normal"), (False, "hover"),
               (True, "disabled"), (True, "normal"), (True, "hover"))

ART = []
for name, first, size in SIZES:
    for i, state in enumerate(COMMON_STATES):
        ART.append(Artwork(first + i, "common_button_%s_%s" % (name, state), common_button(size, state)))
for i, (checked, state) in enumerate(MARK_STATES):
    label = "%s_%s" % ("checked" if checked else "unchecked", state)
    ART.append(Artwork(5100 + i, "check_box_" + label, check_box(checked, state)))
    ART.append(Artwork(5106 + i, "radio_button_" + label, radio_button(checked, state)))
