#!/usr/bin/env bash
# Makes the pictures of the button family's tests with ImageMagick (the files beside this script are its
# output, kept in the repository). Plain colours, so that a test can say which piece shows at a pixel:
#   left_4x20.png    the left end: red, with its top-left pixel white (outside the window's region)
#   middle_10x20.png the tiled middle: green in columns 0-4, blue in columns 5-9
#   right_6x20.png   the right end: magenta, with its top-right pixel white
#   glyph_8x6.png    the glyph: yellow
#   frame_N_6x6.png  three animation frames: cyan, orange, grey
set -euo pipefail
cd "$(dirname "$0")"
im=/usr/bin/convert   # ImageMagick itself, not a stand-in earlier on PATH
$im -size 4x20 xc:'#FF0000' -fill white -draw 'point 0,0' PNG24:left_4x20.png
$im -size 10x20 xc:'#0000FF' -fill '#00FF00' -draw 'rectangle 0,0 4,19' PNG24:middle_10x20.png
$im -size 6x20 xc:'#FF00FF' -fill white -draw 'point 5,0' PNG24:right_6x20.png
$im -size 8x6 xc:'#FFFF00' PNG24:glyph_8x6.png
$im -size 6x6 xc:'#00FFFF' PNG24:frame_1_6x6.png
$im -size 6x6 xc:'#FF8000' PNG24:frame_2_6x6.png
$im -size 6x6 xc:'#808080' PNG24:frame_3_6x6.png
