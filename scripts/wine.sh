#!/usr/bin/env bash
# Runs Windows programs under wine64, or with WINE_BITS=32 under 32-bit wine, on a screen of their own (Xvfb) and with a private set
# of Windows folders in build/wine or build/wine32. Nothing of the user's is touched. A Windows desktop fills the screen, so that
# frames, activation and focus are Windows' own and no window manager has a say in them. Exit code 77: this machine runs no 32-bit
# programs.
#
#   scripts/wine.sh PROGRAM.exe [ARGUMENT...]      runs one program and gives its exit code
#   scripts/wine.sh --session COMMAND [ARGUMENT...] runs a command of this machine; every wine.sh that it calls shares the screen
#                                                   and the running Windows, which saves their start each time
#
# DISPLAY stays as it is where WINE_DISPLAY=keep asks for it. The language is taken from LANG (en_US.UTF-8 or ja_JP.UTF-8, say),
# inside a session too. WINE_PORTS='COM1=/dev/pts/3 COM2=...' puts devices at port names. A program may take WINE_LIMIT seconds (120
# if not told); one that takes longer is ended with exit code 124.
set -euo pipefail

source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
source "$root/scripts/wine-setup.sh"
cd "$OLDPWD"

run_program() {
    local port name
    for port in ${WINE_PORTS:-}; do
        name=${port%%=*}
        ln -sfn "${port#*=}" "$WINEPREFIX/dosdevices/${name,,}"
    done
    exec timeout --kill-after=5 "${WINE_LIMIT:-120}" "${loader[@]}" "$@"
}

# Inside a session everything is there already.
if [ -n "${TESSELIA_WINE_SESSION:-}" ]; then
    [ "${1:-}" != --session ] || { shift; exec "$@"; }
    run_program "$@"
fi

[ $# -gt 0 ] || { sed -n '2,15p' "$root/scripts/wine.sh" >&2; exit 2; }
language=${LANG:-en_US.UTF-8}
unset LC_ALL LC_CTYPE LC_MESSAGES
LANG=C "$root/scripts/locale.sh" "$language"
export LANG=$language

export WINEPREFIX=$wine_folder
export TESSELIA_WINE_SESSION=1
mkdir -p "$WINEPREFIX"

# One session at a time in a prefix: the end of one would take the Windows of the other away.
exec 9>"$WINEPREFIX.lock"
flock -w 1200 9 || { say "Another session in $WINEPREFIX does not end"; exit 1; }
need_wine

screen=
screenSize=1280x1024
finish() {
    timeout 20 "${server[@]}" -k 2>/dev/null || true
    [ -z "$screen" ] || { kill "$screen" 2>/dev/null && wait "$screen" 2>/dev/null; } || true
}
trap finish EXIT
trap 'exit 130' INT TERM HUP

# The X server writes the number of the display that it found free once it can be connected to.
start_screen() {
    local number=$WINEPREFIX.display
    : >"$number"
    Xvfb -displayfd 3 -screen 0 "${screenSize}x24" -nolisten tcp 3>"$number" 9>&- >"$WINEPREFIX.xvfb.log" 2>&1 &
    screen=$!
    for _ in $(seq 200); do
        [ -s "$number" ] && break
        kill -0 "$screen" 2>/dev/null || { cat "$WINEPREFIX.xvfb.log" >&2; say "Xvfb did not start"; return 1; }
        sleep 0.05
    done
    export DISPLAY=:$(cat "$number")
    [ "$DISPLAY" != : ] || { say "Xvfb did not tell its display"; return 1; }
}

[ "${WINE_DISPLAY:-}" = keep ] && [ -n "${DISPLAY:-}" ] || start_screen

# The fonts of captions, menus and messages have none of their own.
add_japanese_letters() {
    local font
    for font in Tahoma 'Tahoma Bold' 'MS Sans Serif' 'Microsoft Sans Serif'; do
        "${loader[@]}" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' /v "$font" \
            /t REG_MULTI_SZ /d 'ipagp.ttf,IPAPGothic' /f || return
    done
    for font in 'MS PGothic' 'ＭＳ Ｐゴシック' 'MS UI Gothic'; do
        LANG=ja_JP.UTF-8 "${loader[@]}" reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d IPAPGothic /f || return
    done
}

# The first start fills the folders. The registry as it is then is kept, for Windows that are to begin anew.
if [ ! -e "$WINEPREFIX/fresh" ]; then
    say "Setting up $WINEPREFIX"
    {
        timeout 300 "${loader[@]}" wineboot --init &&
            "${loader[@]}" reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Default /f &&
            "${loader[@]}" reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Default /d "$screenSize" /f &&
            add_japanese_letters
    } >"$WINEPREFIX.log" 2>&1 9>&- || { cat "$WINEPREFIX.log" >&2; say "Could not set up $WINEPREFIX"; exit 1; }
    timeout 60 "${server[@]}" -w || true
    mkdir -p "$WINEPREFIX/fresh.new"
    cp "$WINEPREFIX"/*.reg "$WINEPREFIX/.update-timestamp" "$WINEPREFIX/fresh.new"
    mv "$WINEPREFIX/fresh.new" "$WINEPREFIX/fresh"
fi

# Windows and its desktop are started here, to stay until the end: each program would start them anew, and what it starts would
# hold the pipe open that ctest reads the program's output from.
"${server[@]}" -p 9>&- >"$WINEPREFIX.log" 2>&1 || true
timeout 60 "${loader[@]}" wineboot >>"$WINEPREFIX.log" 2>&1 9>&- || { cat "$WINEPREFIX.log" >&2; say "Windows did not start"; exit 1; }
"${loader[@]}" explorer "/desktop=Default,$screenSize" >>"$WINEPREFIX.log" 2>&1 9>&- &
# Any program with a window waits for the desktop, and this one ends at once.
timeout 60 "${loader[@]}" rundll32 kernel32.dll,GetTickCount >>"$WINEPREFIX.log" 2>&1 9>&- || true

if [ "$1" = --session ]; then
    shift
    "$@" 9>&-
else
    (run_program "$@") 9>&-
fi
