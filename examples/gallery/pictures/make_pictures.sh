#!/usr/bin/env bash
# Makes the gallery's pictures with ImageMagick, one of each format the library reads:
#   photo.jpg picture.bmp still.gif spinner.gif logo.png phone.wbmp phone.ota
# Usage: make_pictures.sh OUTPUT_DIR
set -euo pipefail
out=${1:?output folder}
mkdir -p "$out"
cd "$out"
im=/usr/bin/convert   # ImageMagick itself, not a stand-in earlier on PATH

$im -size 240x160 gradient:'#1c4e8c'-'#ffd699' \
    -fill '#ffffffc0' -draw 'circle 70,70 70,25' -fill '#00000060' -draw 'rectangle 130,90 220,140' \
    -quality 88 photo.jpg
$im -seed 7 -size 120x80 plasma:'#0078d4'-'#ffa600' -blur 0x1 BMP3:picture.bmp
$im -size 96x64 xc:'#f2f5f9' -fill '#1c4e8c' -draw 'roundrectangle 8,8 88,56 10,10' \
    -fill white -font DejaVu-Sans-Bold -pointsize 18 -annotate +18+40 'GIF' still.gif

# A spinner of twelve frames, 80 ms each, looping for ever; each frame is drawn whole, over a transparent
# background, and disposes to the background.
frames=()
for i in $(seq 0 11); do
  draw=""
  for j in $(seq 0 7); do
    read -r x y < <(awk -v i="$i" -v j="$j" 'BEGIN { a = (i * 30 + j * 45) * 3.14159265 / 180;
      printf "%d %d\n", 32 + 22 * cos(a), 32 + 22 * sin(a) }')
    shade=$(( 40 + j * 26 ))
    draw+="fill rgb($shade,$((shade / 2 + 60)),200) circle $x,$y $((x + 3 + j / 2)),$y "
  done
  $im -size 64x64 xc:none -draw "$draw" "frame$i.png"
  frames+=("frame$i.png")
done
$im -delay 8 -loop 0 -dispose Background "${frames[@]}" spinner.gif
rm -f frame*.png

$im -size 160x160 xc:none -fill '#0078d4' -draw 'circle 80,80 80,14' -blur 0x8 \
    -fill white -font DejaVu-Sans-Bold -pointsize 34 -gravity center -annotate +0+0 'PNG' PNG32:logo.png
$im -size 96x48 xc:white -fill black -font DejaVu-Sans-Bold -pointsize 20 -annotate +4+32 'WBMP' \
    -monochrome WBMP:phone.wbmp
$im -size 72x14 xc:white -fill black -font DejaVu-Sans-Bold -pointsize 12 -annotate +8+12 'Zelvo' \
    -monochrome OTB:phone.ota
