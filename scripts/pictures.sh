#!/usr/bin/env bash
# Draws the pictures that are compiled into the program, and the desktop's icons, from their sources:
# `scripts/pictures.sh`, after one of the .svg files has changed. Needs rsvg-convert (librsvg2-bin).
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../resources/pictures"

draw() { # picture, size, suffix of the file's name
    rsvg-convert -w "$2" -h "$2" "$1.svg" -o "$1$3.png"
}

for icon in 101 117; do
    draw $icon 32 ""
    for size in 16 48 64 128 256; do
        draw $icon $size "-$size"
    done
done
for type in ../desktop/icons/*.svg; do
    for size in 16 32 48 64 128 256; do
        draw "${type%.svg}" $size "-$size"
    done
done
# Entries of the start page show theirs with 32 pixels, buttons with 16: as many dots on a screen of twice the scale.
for entry in 102 103; do
    draw $entry 32 ""
    for size in 48 64; do
        draw $entry $size "-$size"
    done
done
for glyph in 104 105; do draw $glyph 12 ""; done
for box in 107 108; do draw $box 10 ""; done
for button in 130 131 132; do
    draw $button 16 ""
    for size in 24 32; do
        draw $button $size "-$size"
    done
done
# As many dots as at each scale that screens have.
for pointer in 140 141; do
    draw $pointer 32 ""
    for size in 40 48 56 64 96; do
        draw $pointer $size "-$size"
    done
done
