#!/usr/bin/env bash
# Makes the pictures of the window base tests with ImageMagick (the files beside this script are its output,
# kept in the repository):
#   badge_16.png  16x16 RGBA: an opaque yellow 8x8 square in the middle, fully transparent around it, so that
#                 the mask lets the background show at the corners.
set -euo pipefail
cd "$(dirname "$0")"
im=/usr/bin/convert   # ImageMagick itself, not a stand-in earlier on PATH
$im -size 16x16 xc:none -fill '#FFD700' -draw 'rectangle 4,4 11,11' PNG32:badge_16.png
