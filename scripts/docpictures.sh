#!/usr/bin/env bash
# Takes the manual's pictures of the start page and of a dark desktop at a scale of 1.5 from the built program:
# `scripts/docpictures.sh`, after either has changed. Needs Xvfb, openbox, xdotool and ImageMagick.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
program=$PWD/build/release/bin/cindermill
pictures=$PWD/docs/pictures
# Its place is seen in the picture.
work=/tmp/effects
mkdir "$work"
cp -r samples/campfire.effect samples/textures "$work"
started=()
finish() {
    for ((i = ${#started[@]} - 1; i >= 0; --i)); do kill "${started[i]}" 2>/dev/null || true; done
    wait
    rm -rf "$work"
}
trap finish EXIT

meet() { # title of a window, which gets the keys once it is there
    until xdotool search --onlyvisible --name "$1" windowfocus >/dev/null 2>&1; do sleep 0.2; done
}
begin() { # size of the screen, variables of the program
    exec 3>"$work/display"
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp >/dev/null 2>&1 &
    started+=($!)
    until [ -s "$work/display" ]; do sleep 0.1; done
    DISPLAY=:$(cat "$work/display")
    export DISPLAY
    openbox >/dev/null 2>&1 &
    started+=($!)
    until xdotool getactivewindow >/dev/null 2>&1 || xdotool get_desktop >/dev/null 2>&1; do sleep 0.1; done
    local home=$work/home
    rm -rf "$home"
    mkdir -p "$home"
    env -u DBUS_SESSION_BUS_ADDRESS HOME="$home" XDG_CONFIG_HOME="$home" XDG_STATE_HOME="$home" XDG_CACHE_HOME="$home" \
        "${@:2}" "$program" >/dev/null 2>&1 &
    started+=($!)
    meet '^Cindermill$'
    xdotool mousemove 0 0
}
# Only what does not change any more is taken.
still() {
    local before=x now
    while now=$(import -window root rgb:- | sha1sum) && [ "$now" != "$before" ]; do
        before=$now
        sleep 0.5
    done
}
take() { # width of the picture, its name
    import -window root -trim +repage -resize "$1x" +dither -colors 256 "PNG8:$pictures/$2.png"
}

begin 1366x768 GTK_THEME=Adwaita
still
take 900 startpage
begin 2200x1080 GTK_THEME=Adwaita:dark QT_SCALE_FACTOR=1.5
xdotool key ctrl+o
meet '^Select load path$'
xdotool type --delay 20 "$work/campfire.effect"
xdotool key Return
meet '^Effect Display'
sleep 8 # the smoke rises
xdotool key space
meet '^Cindermill$'
xdotool key ctrl+shift+f
still
take 1100 dark
