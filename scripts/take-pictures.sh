#!/bin/sh
# Takes the pictures of the README and of the AppStream metadata anew, from the program as run.sh shows it without a display.
set -eu
cd "$(dirname "$0")/.."
env -u DISPLAY -u WAYLAND_DISPLAY ./run.sh
mkdir -p docs/pictures
for picture in settings-window import-window; do
    # What is around the window is the empty screen.
    convert "build/demo/pictures/$picture.png" -trim +repage -strip "docs/pictures/$picture.png"
done
