#!/usr/bin/env bash
# Takes pictures of the program on Linux and of the Windows build under wine64, in English and in Japanese, each state side by side:
# the box that no main unit was found, the main window, each menu, the ranges, the About box and the closing question. Everything is
# done by real keys on a screen of its own, so the pictures also show that input arrives.
#
#   scripts/pictures.sh FOLDER       needs the builds release and windows-x64
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$OLDPWD"

[ $# -eq 1 ] || { sed -n '2,7p' "$root/scripts/pictures.sh" >&2; exit 2; }
need xvfb openbox xdotool x11-utils x11-xserver-utils imagemagick
mkdir -p "$1"
folder=$(cd "$1" && pwd)
title="ORVANE HDD/CD recorder - Tesselia"

work=$(mktemp -d)
started=()
finish() {
    for process in "${started[@]}"; do
        kill "$process" 2>/dev/null || true
    done
    rm -rf "$work"
}
trap finish EXIT

# wait_for SECONDS COMMAND...
wait_for() {
    local limit=$(($1 * 10))
    shift
    for _ in $(seq "$limit"); do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    say "Not within the limit: $*"
    return 1
}

# The picture is taken when the screen has stood still for a moment.
picture() {
    local name=$1 before=
    for _ in $(seq 30); do
        import -window root "$work/now.png"
        local now
        now=$(convert "$work/now.png" rgba:- | sha256sum)
        [ "$now" != "$before" ] || break
        before=$now
        sleep 0.3
    done
    # What is around the program has one colour.
    convert "$work/now.png" -trim +repage "$folder/$name.png"
}

keys() {
    xdotool key --delay 60 "$@"
}

# tour PREFIX: the first box is there and has the keys.
tour() {
    local prefix=$1 menu
    picture "$prefix-no-unit"
    keys Return
    sleep 1
    picture "$prefix-main"
    for menu in f e v t h; do
        keys "alt+$menu"
        picture "$prefix-menu-$menu"
        keys Escape Escape
    done
    keys alt+t o
    picture "$prefix-ranges"
    keys Escape
    keys alt+h Down Return
    picture "$prefix-about"
    keys Return
    keys alt+F4
    picture "$prefix-closing"
    keys y
}

screen() {
    : >"$work/display"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
    started+=($!)
    wait_for 10 test -s "$work/display"
    export DISPLAY=:$(cat "$work/display")
}

on_linux() {
    export XDG_CONFIG_HOME=$work/config-$1 TESSELIA_RUNTIME_DIR=$work/run-$1
    # Nobody knows what is connected to the machine's own ports.
    mkdir -p "$XDG_CONFIG_HOME/tesselia/ports"
    for number in $(seq 8); do
        ln -s /dev/pts/none "$XDG_CONFIG_HOME/tesselia/ports/com$number"
    done
    LANG=$2 "$root/build/release/bin/tesselia" >"$work/tesselia.log" 2>&1 &
    local program=$!
    started+=($program)
    wait_for 20 xdotool search --onlyvisible --name "^Tesselia Error$"
    tour "linux-$1"
    wait_for 10 eval "! kill -0 $program"
}

on_windows() {
    LANG=$2 WINE_DISPLAY=keep "$root/scripts/wine.sh" "$root/build/windows-x64/bin/tesselia.exe" >"$work/wine.log" 2>&1 &
    local program=$!
    started+=($program)
    wait_for 120 xdotool search --onlyvisible --name "$title|Default - Wine Desktop"
    # The program's window is painted by Windows inside its own desktop, which is empty before.
    wait_for 60 eval 'import -window root png:- | convert png:- -unique-colors -format "%w\n" info:- | grep -qvxE "[1-3]"'
    tour "windows-$1"
    wait_for 30 eval "! kill -0 $program"
}

"$root/scripts/locale.sh" en_US.UTF-8 ja_JP.UTF-8
unset LC_ALL LC_CTYPE LC_MESSAGES
screen
xsetroot -solid '#246e96'
openbox >/dev/null 2>&1 &
started+=($!)
wait_for 10 eval "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'"
on_linux en en_US.UTF-8
on_linux ja ja_JP.UTF-8
screen
on_windows en en_US.UTF-8
on_windows ja ja_JP.UTF-8

for state in no-unit main menu-f menu-e menu-v menu-t menu-h ranges about closing; do
    for language in en ja; do
        montage "$folder/linux-$language-$state.png" "$folder/windows-$language-$state.png" -tile 2x1 -gravity north \
            -background '#246e96' -geometry +12+12 \
            "$folder/$state-$language.png"
    done
done
say "The pictures are in $folder."
