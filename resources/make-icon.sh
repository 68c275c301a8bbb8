#!/usr/bin/env bash
# Makes tesselia.ico from tesselia.svg: 32 by 32 and 16 by 16 in 16 colours, then both in 256. Needs rsvg-convert, ImageMagick
# and icotool. The icon is kept in the tree, so this runs only when the drawing changes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One palette entry stays free for what is transparent; the edge is cut hard, since these depths have a mask and no alpha.
images=()
for colours in 16 256; do
    for size in 32 16; do
        image=$work/$colours-$size.png
        rsvg-convert -w "$size" -h "$size" tesselia.svg |
            convert - -channel A -threshold 50% +channel -background black -alpha background -dither None -quantize Lab \
                -colors "$colours" -define png:color-type=6 "$image"
        images+=("$image")
    done
done

# icotool takes the depth of an image from the number of its colours.
icotool --create --output=tesselia.ico "${images[@]}"
icotool --list tesselia.ico
