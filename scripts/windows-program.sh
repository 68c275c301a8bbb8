#!/usr/bin/env bash
# Runs a Windows program under wine as if it were a program of this machine: on the screen and below the window manager that
# DISPLAY names, and at the lines that the user's own names for COM1 to COM8 lead to.
#
#   scripts/windows-program.sh PROGRAM.exe [ARGUMENT...]     gives its exit code
#
# Its registry and its port names lie in the folder `wine` beside the user's port names, and stay there from run to run. The folders
# of Windows itself are those of scripts/wine.sh, which sets them up.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$OLDPWD"

windows=$root/build/wine
[ -e "$windows/complete" ] || LANG=en_US.UTF-8 "$root/scripts/wine.sh" --session true
settings=${XDG_CONFIG_HOME:-$HOME/.config}
export WINEPREFIX=$settings/wine WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
export WINELOADER=/usr/lib/wine/wine64 WINESERVER=/usr/lib/wine/wineserver64
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="

# Its windows are to be the window manager's, and not all in the one of a Windows desktop.
make_folders() {
    mkdir -p "$WINEPREFIX/drive_c" "$WINEPREFIX/dosdevices"
    ln -s "$windows"/drive_c/* "$WINEPREFIX/drive_c"
    ln -s ../drive_c "$WINEPREFIX/dosdevices/c:"
    ln -s / "$WINEPREFIX/dosdevices/z:"
    cp "$windows/system.reg" "$windows/userdef.reg" "$windows/.update-timestamp" "$WINEPREFIX"
    grep -v '^"Desktop"="Default"' "$windows/user.reg" >"$WINEPREFIX/user.reg"
}
[ -d "$WINEPREFIX" ] || make_folders

# Windows reads its port names when it starts.
ports=$(for number in $(seq 8); do
    device=$(readlink "$settings/tesselia/ports/com$number") || device=/dev/null/none
    printf '"COM%s"="%s"\n' "$number" "$device"
done)
if [ "$ports" != "$(cat "$WINEPREFIX/ports" 2>/dev/null)" ]; then
    "$WINESERVER" -k || true
    sed -i '/^\[Software\\\\Wine\\\\Ports\]/,/^$/d' "$WINEPREFIX/system.reg"
    printf '\n[Software\\\\Wine\\\\Ports]\n%s\n\n' "$ports" >>"$WINEPREFIX/system.reg"
    printf '%s' "$ports" >"$WINEPREFIX/ports"
fi

# Started here, it holds no stream of the program open. It may run already.
"$WINESERVER" </dev/null >"$WINEPREFIX/log" 2>&1 || true

code=0
"$WINELOADER" "$@" || code=$?
# The settings go to the file with the end of Windows.
case ${1##*/} in
    tesselia.exe) "$WINESERVER" -k || true ;;
esac
exit "$code"
