#!/usr/bin/env bash
# Regenerates the fixtures of the CNBitmapUtil Wine tests with ImageMagick 6 (/usr/bin/convert, not the
# stand-in in /usr/local/bin). Writes into the folder of this script. Needs: apt-get install imagemagick
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
IM=/usr/bin/convert
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A 5 x 3 24-bit BMP with a distinct colour per pixel (the tests know them from this table).
cat > "$work/still.txt" <<'TXT'
# ImageMagick pixel enumeration: 5,3,255,srgb
0,0: (255,0,0)
1,0: (0,255,0)
2,0: (0,0,255)
3,0: (255,255,255)
4,0: (0,0,0)
0,1: (10,20,30)
1,1: (40,50,60)
2,1: (70,80,90)
3,1: (100,110,120)
4,1: (130,140,150)
0,2: (1,2,3)
1,2: (250,128,7)
2,2: (33,66,99)
3,2: (200,100,50)
4,2: (255,255,0)
TXT
"$IM" "$work/still.txt" -type TrueColor bmp3:still.bmp

# A flat 16 x 8 JPEG of rgb(200, 100, 50).
"$IM" -size 16x8 xc:"rgb(200,100,50)" -quality 95 still.jpg

# A 3 x 2 RGBA PNG: alpha 255, 0, 128 in the first row, 64, 255, 1 in the second.
cat > "$work/rgba.txt" <<'TXT'
# ImageMagick pixel enumeration: 3,2,255,srgba
0,0: (255,0,0,255)
1,0: (0,255,0,0)
2,0: (0,0,255,128)
0,1: (10,20,30,64)
1,1: (200,150,100,255)
2,1: (1,2,3,1)
TXT
"$IM" "$work/rgba.txt" PNG32:rgba.png

# Disposal and the second background fill, on a 12 x 8 screen: a red frame that stays (none), a lime 4 x 4
# frame at (2, 2) disposed as given, and a blue 4 x 4 frame at (6, 2) whose left half is transparent.
"$IM" -size 12x8 xc:red "$work/red.gif"
"$IM" -size 4x4 xc:lime "$work/lime.gif"
"$IM" -size 4x4 xc:blue -fill white -draw "rectangle 0,0 1,3" -transparent white "$work/half.gif"
for mode in Background Previous; do
  "$IM" -delay 4 -dispose None -page 12x8+0+0 "$work/red.gif" \
    -dispose "$mode" -page 12x8+2+2 "$work/lime.gif" \
    -dispose None -page 12x8+6+2 "$work/half.gif" \
    "dispose_${mode,,}.gif"
done

# Two frames and no looping block at all.
"$IM" -size 4x4 xc:red "$work/r4.gif"
"$IM" -size 4x4 xc:blue "$work/b4.gif"
"$IM" -delay 0 "$work/r4.gif" "$work/b4.gif" "$work/noloop.gif"
# ImageMagick writes a looping block unless told otherwise; cut it out by hand (19 bytes: 21 FF 0B ...).
python3 - "$work/noloop.gif" noloop.gif <<'PY'
import sys
data = open(sys.argv[1], 'rb').read()
at = data.find(b'\x21\xff\x0bNETSCAPE2.0')
if at >= 0:
    data = data[:at] + data[at + 19:]
open(sys.argv[2], 'wb').write(data)
PY

# An OTA picture of 10 x 3 (our own writing: no common tool makes OTA files). Bits run on across rows;
# a set bit is black. Row 0: black, white alternating; row 1: all black; row 2: all white.
printf '\x00\x0a\x03\x01\xaa\xbf\xf0\x00' > glyph_10x3.ota
