#!/usr/bin/env bash
# Regenerates the picture fixtures of the image toolkit's tests with tools that are not ours: netpbm
# (pbmtowbmp) and ImageMagick 6 (/usr/bin/convert; /usr/local/bin/convert may be something else).
# Run from anywhere; writes into the folder of this script. Needs: apt-get install netpbm imagemagick
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
IM=/usr/bin/convert
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# --- WBMP --------------------------------------------------------------------------------------------------------
# The source picture is a plain PBM (1 is black), committed beside the files made from it, so a test can
# compare pixel by pixel. 13 x 5: a width that is no multiple of 8 shows the row alignment.
cat > glyph_13x5.pbm <<'PBM'
P1
13 5
1 0 0 0 0 0 0 0 0 0 0 1 1
0 1 0 0 0 1 1 1 0 0 1 0 1
0 0 1 0 1 0 0 0 1 1 0 0 1
0 1 0 0 0 1 1 1 0 0 1 0 1
1 0 1 0 1 0 1 0 1 0 1 0 0
PBM
pbmtowbmp glyph_13x5.pbm > glyph_13x5_netpbm.wbmp
"$IM" glyph_13x5.pbm wbmp:glyph_13x5_magick.wbmp
# A picture wider than 127 pixels has a two-byte width.
"$IM" -size 200x3 pattern:checkerboard -threshold 50% -compress none pbm:glyph_200x3.pbm
"$IM" glyph_200x3.pbm wbmp:wide_200x3_magick.wbmp

# --- Animated GIFs -------------------------------------------------------------------------------------------------
# Three frames on a 16 x 12 screen: a full red frame disposed to the background (2), a green 6 x 4 frame at
# (4, 2) restored to previous (3), and a blue 5 x 3 frame at (9, 7). Loops 5 times; delays 10, 20, 30.
"$IM" -size 16x12 xc:red "$work/red.gif"
"$IM" -size 6x4 xc:lime "$work/green.gif"
"$IM" -size 5x3 xc:blue "$work/blue.gif"
"$IM" -loop 5 \
  -dispose Background -delay 10 -page 16x12+0+0 "$work/red.gif" \
  -dispose Previous -delay 20 -page 16x12+4+2 "$work/green.gif" \
  -dispose None -delay 30 -page 16x12+9+7 "$work/blue.gif" \
  -set comment "made by make_fixtures.sh" \
  anim_disposal.gif

# Two frames, loop for ever (0), the second one with a transparent colour (white made transparent).
"$IM" -size 8x8 xc:yellow "$work/yellow.gif"
"$IM" -size 8x8 xc:white -fill black -draw "rectangle 2,2 5,5" "$work/ring.gif"
"$IM" -loop 0 -delay 7 -dispose None "$work/yellow.gif" \
  -delay 9 \( "$work/ring.gif" -transparent white \) \
  anim_transparent.gif

# One image only: the animated route declines it.
"$IM" -size 4x4 xc:navy still.gif
