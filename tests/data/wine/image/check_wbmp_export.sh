#!/bin/sh
# Reads the WBMP files that the Wine test ImageWbmpExport wrote with ImageMagick (/usr/bin/convert, the real
# one) and compares each one's pixels with the PBM picture written beside it. Fails on any difference.
set -eu
dir=$1
IM=/usr/bin/convert
[ -x "$IM" ] || { echo "no ImageMagick at $IM"; exit 1; }
count=0
for wbmp in "$dir"/*.wbmp; do
    [ -e "$wbmp" ] || { echo "no WBMP files in $dir"; exit 1; }
    expected=${wbmp%.wbmp}.pbm
    got=$("$IM" "$wbmp" -compress none pbm:- | tr -s ' \n' '  ' | sed 's/^ *//; s/ *$//')
    want=$(tr -s ' \n' '  ' < "$expected" | sed 's/^ *//; s/ *$//')
    if [ "$got" != "$want" ]; then
        echo "MISMATCH: $wbmp"
        echo "ImageMagick read: $(echo "$got" | cut -c1-200)"
        echo "written:          $(echo "$want" | cut -c1-200)"
        exit 1
    fi
    count=$((count + 1))
done
echo "$count WBMP files read by ImageMagick as written"
