#!/usr/bin/env bash
# Runs a Windows program under wine as if it were a program of this machine: on the screen and below the window manager that
# DISPLAY names, and at the lines that the user's own names for COM1 to COM8 lead to.
#
#   scripts/windows-program.sh PROGRAM.exe [ARGUMENT...]     returns its exit code
#   scripts/windows-program.sh --end                         ends the Windows that may still be running
#
# Its registry lies in the folder `wine` beside the user's port names, and stays there from run to run. The folders of Windows itself
# are those of scripts/wine.sh, which sets them up; WINE_BITS=32 takes those for 32-bit programs.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
source "$root/scripts/wine-setup.sh"
cd "$OLDPWD"

settings=${XDG_CONFIG_HOME:-$HOME/.config}
export WINEPREFIX=$settings/wine

if [ "$1" = --end ]; then
    [ ! -d "$WINEPREFIX" ] || "${server[@]}" -k || true
    exit 0
fi

[ -e "$wine_folder/fresh" ] || LANG=en_US.UTF-8 "$root/scripts/wine.sh" --session true

# Its windows are to be the window manager's, and not all in the one of a Windows desktop.
make_folders() {
    mkdir -p "$WINEPREFIX/drive_c" "$WINEPREFIX/dosdevices"
    ln -s "$wine_folder"/drive_c/* "$WINEPREFIX/drive_c"
    ln -s ../drive_c "$WINEPREFIX/dosdevices/c:"
    ln -s / "$WINEPREFIX/dosdevices/z:"
    cp -r "$wine_folder/fresh/." "$WINEPREFIX"
    sed -i '/^"Desktop"="Default"/d' "$WINEPREFIX/user.reg"
    # The user's own names are followed each time a port is opened, since a unit may come later than the program.
    {
        printf '\n[Software\\\\Wine\\\\Ports]\n'
        for number in $(seq 8); do
            printf '"COM%s"="%s"\n' "$number" "$settings/tesselia/ports/com$number"
        done
    } >>"$WINEPREFIX/system.reg"
}
[ -d "$WINEPREFIX" ] || make_folders

# Started here, it holds no stream of the program open. It may run already.
"${server[@]}" </dev/null >"$WINEPREFIX/log" 2>&1 || true

case ${1##*/} in
    tesselia.exe) ;;
    *) exec "${loader[@]}" "$@" ;;
esac
# The settings go to the file with the end of Windows.
code=0
"${loader[@]}" "$@" || code=$?
"${server[@]}" -k || true
exit "$code"
