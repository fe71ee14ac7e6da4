#!/usr/bin/env bash
# Makes the artwork of the gallery's skin page with ImageMagick: one picture per button state (a rounded
# face with an accent stripe on its left, so that a mirrored button shows it on the right) and an arrow glyph
# pointing right. All PNG with alpha, so that the masks come along.
# Usage: make_skin.sh OUTPUT_DIR
set -euo pipefail
out=${1:?output folder}
mkdir -p "$out"
cd "$out"
im=/usr/bin/convert   # ImageMagick itself, not a stand-in earlier on PATH

face() {  # name fill accent [outline]
  $im -size 120x34 xc:none -fill "$2" -stroke "${4:-#40506a}" -draw 'roundrectangle 1,1 118,32 9,9' \
      -stroke none -fill "$3" -draw 'rectangle 6,6 11,27' PNG32:"$1"
}
face skin_normal.png   '#e9eef6' '#7f93b2'
face skin_hover.png    '#d7e6fb' '#2f7de1'
face skin_pushed.png   '#9fb9df' '#1c4e8c'
face skin_checked.png  '#c9e8c4' '#2e8b3a'
face skin_disabled.png '#f2f2f2' '#c8c8c8'
$im -size 16x16 xc:none -fill '#1c4e8c' -draw 'polygon 3,2 13,8 3,14' PNG32:skin_arrow.png
# The same family for a dark theme: faces a step above the dark window, the same state logic (hover lighter,
# pushed darker, checked green, disabled flat and grey), a light arrow.
face skin_dark_normal.png   '#2f3540' '#6f7f96' '#5a626e'
face skin_dark_hover.png    '#3a4350' '#3aa0ff' '#6f7a88'
face skin_dark_pushed.png   '#1f3550' '#2f7de1' '#5a626e'
face skin_dark_checked.png  '#23402c' '#3fbf5a' '#5a626e'
face skin_dark_disabled.png '#2a2e35' '#4a5059' '#41474f'
$im -size 16x16 xc:none -fill '#8cc4ff' -draw 'polygon 3,2 13,8 3,14' PNG32:skin_dark_arrow.png
