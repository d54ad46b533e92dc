#!/bin/sh
# Takes pictures of every window in every state, in English and German, at 100, 150 and 200 %, light and dark, to be looked
# at; and from them anew those of the README and of the AppStream metadata. Needs no display.
#   take-pictures.sh [FOLDER]   build/dev/pictures otherwise
set -eu
cd "$(dirname "$0")/.."
build=build/dev
folder=${1:-$build/pictures}

[ -f "$build/build.ninja" ] || cmake --preset dev
cmake --build "$build" --target corvane_pictures

runtime=$(mktemp -d)
trap 'rm -rf "$runtime"' EXIT

# take NAME LANGUAGE SCALE SCREEN [--dark]
take() {
    name=$1 language=$2 scale=$3 screen=$4
    shift 4
    env -u WAYLAND_DISPLAY -u DBUS_SESSION_BUS_ADDRESS -u QT_QPA_PLATFORMTHEME \
        XDG_RUNTIME_DIR="$runtime" LC_ALL=C.UTF-8 LANGUAGE="$language" QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR="$scale" \
        xvfb-run -a -s "-screen 0 ${screen}x24 -nolisten tcp" \
        "$build/tests/pictures/corvane_pictures" "$@" "$build/locale" "$folder/$name"
}
take english en 1 1280x1000
take english-150-dark en 1.5 1920x1500 --dark
take english-200 en 2 2560x2000
take german de 1 1280x1000
take german-200 de 2 2560x2000

mkdir -p docs/pictures
# for_documents PICTURE NAME
for_documents() {
    convert "$folder/$1.png" -strip "docs/pictures/$2.png"
}
for_documents english/three-accounts settings-window
for_documents english/import-37.5-percent import-window
