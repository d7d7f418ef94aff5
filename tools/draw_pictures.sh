#!/bin/bash
# Draws the program's two pictures from their drawings, when the design has changed: draw_pictures.sh FOLDER. The files
# that it writes there, banner.bmp and trk_setup.ico, are kept beside the resource scripts. Both have a palette, which
# keeps the programs small.
set -euo pipefail
cd "$(dirname "$0")"
folder=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

rsvg-convert banner.svg -o "$scratch/banner.png"
convert "$scratch/banner.png" -alpha off +dither -colors 24 -type Palette -compress none "BMP3:$folder/banner.bmp"

# What isn't opaque enough to be a pixel is left to the mask, which has one bit for each.
sizes=()
for size in 16 32 48; do
    rsvg-convert --width "$size" --height "$size" icon.svg -o "$scratch/$size.png"
    sizes+=("$scratch/$size.png")
done
convert "${sizes[@]}" -channel A -threshold 50% +channel +dither -type PaletteMatte "ICO:$folder/trk_setup.ico"
