#!/bin/sh
# Draws the program's icon in the sizes of the hicolor theme; to be called when the drawing has changed. Needs rsvg-convert
# (Debian: librsvg2-bin).
set -eu
cd "$(dirname "$0")/.."
name=com.quessartolvinger.Corvane
for size in 16 22 24 32 48 64 128 256 512; do
    folder=packaging/icons/${size}x${size}/apps
    mkdir -p "$folder"
    rsvg-convert --width "$size" --height "$size" "src/desktop/icons/$name.svg" -o "$folder/$name.png"
done
