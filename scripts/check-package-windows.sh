#!/usr/bin/env bash
# Installs the Windows program under wine as a new user would, uses it there at a line, and takes it away again.
#
#   scripts/check-package-windows.sh [FOLDER]     with the packages in the folder; makes them first where none is told
#
# The installer is of 32 bits. Not every machine can run those: there its content is looked at, and only the installer that the same
# script makes of the 64-bit build, which nobody gets, is run.
set -euo pipefail
[ $# -ne 1 ] || set -- "$(realpath "$1")"
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

work=$(mktemp -d)
version=$(sed -n 's/^project(Tesselia VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
failures=0
fail() {
    say "FAILED: $*"
    failures=$((failures + 1))
}

# --- In a session of wine: use BITS INSTALLER CONTENT, the content as the zip has it
wine() { "$root/scripts/wine.sh" "$@"; }

registered=Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tesselia
settings='Software\ORVANE\HDD/CD recorder\Tesselia'
# value KEY NAME: of what is registered for the machine; nothing if it is not there.
value() {
    wine reg query "HKLM\\$1" /v "$2" "/reg:$bits" 2>/dev/null | tr -d '\r' | sed -n "s/^ *$2 *REG_[A-Z]* *//p"
}

# expect_code CODE WHAT COMMAND...
expect_code() {
    local wanted=$1 what=$2 code=0
    shift 2
    "$@" >"$work/said" 2>&1 || code=$?
    [ "$code" = "$wanted" ] || { cat "$work/said" >&2; fail "$what ended with $code, not with $wanted"; }
}

wait_for() {
    local what=$1
    shift
    for _ in $(seq 1500); do
        ! "$@" || return 0
        sleep 0.2
    done
    fail "$what"
    return 1
}

is_unregistered() { [ -z "$(value "$registered" DisplayName)" ]; }
start_menu() { find "$WINEPREFIX/drive_c" -path '*/Start Menu/*/Tesselia/*.lnk'; }

# expect_installed GUIDE NAME: these files and no others, with this guide, which has this name in the Start menu.
expect_installed() {
    local name
    rm -rf "$work/expected"
    cp -r "$content" "$work/expected"
    cp "$content/$1" "$work/expected/Tesselia.chm"
    rm -r "$work/expected/ja"
    diff -r -x Uninstall.exe -x notes.txt "$work/expected" "$place" >&2 || fail "other files than expected are installed"
    name=$(start_menu | sed 's,.*/,,' | LC_ALL=C sort | tr '\n' ' ')
    [ "$name" = "$2" ] || fail "the Start menu has $name"
    [ "$(value "$registered" DisplayVersion)" = "$version" ] || fail "another version than $version is registered"
}

sums() { (cd "$place" && find . -type f -exec md5sum {} + | sort); }

unit='' program=''
end_all() {
    [ -z "$program" ] || kill "$program" 2>/dev/null || true
    [ -z "$unit" ] || kill "$unit" 2>/dev/null || true
    wait
    program='' unit=''
    rm -rf "$work"
}

use() {
    bits=$1 installer=$2 content=$3
    trap end_all EXIT
    trap 'exit 130' INT TERM HUP
    # Time enough for a machine that is emulated.
    export WINE_LIMIT=900

    # What a run that failed has left.
    wine reg delete "HKLM\\$registered" /f "/reg:$bits" >/dev/null 2>&1 || true
    find "$WINEPREFIX/drive_c" -type d -name Tesselia -prune -exec rm -r {} +

    LANG=ja_JP.UTF-8 expect_code 0 "the installer" wine "$installer" /S
    folder=$(value "$registered" InstallLocation || true)
    place=$WINEPREFIX/drive_c/$(tr '\\' / <<<"${folder#C:\\}")
    [[ $folder == C:\\*Tesselia ]] && [ -d "$place" ] || { fail "installed to '$folder'"; return; }
    expect_installed ja/Tesselia.chm 'Tesselia の使い方.lnk Tesselia.lnk '

    # At a line: the editor reads the titles, the command line changes one.
    export XDG_CONFIG_HOME=$work/config
    build/release/bin/mainunit --link COM1 --sample --pace 0 --log "$work/dialogue" >"$work/ready" &
    unit=$!
    wait_for_unit $unit "$work/ready"
    export WINE_PORTS
    WINE_PORTS=COM1=$(sed -n 's/^ready: //p' "$work/ready")
    "$root/scripts/wine.sh" "$place/tesselia.exe" >"$work/program" 2>&1 &
    program=$!
    wait_for "the program did not read the titles of the unit" grep -q TitleRead "$work/dialogue" || cat "$work/program" >&2

    # While it runs neither installer nor uninstaller changes anything. The latter tells its end only when it is not to start a copy of
    # itself, by a last argument without quotes, which only a batch file can write.
    echo 'kept' >"$place/notes.txt"
    sums >"$work/before"
    expect_code 2 "the installer, with the program running," wine "$installer" /S
    printf '"%s\\Uninstall.exe" /S _?=%s\r\n' "$folder" "$folder" >"$WINEPREFIX/drive_c/uninstall.bat"
    expect_code 2 "the uninstaller, with the program running," wine cmd /c 'C:\uninstall.bat'
    rm "$WINEPREFIX/drive_c/uninstall.bat"
    sums | diff "$work/before" - >&2 || fail "files were changed below the running program"
    kill "$program"
    wait "$program" || true
    program=

    expect_code 0 titlectl wine "$place/titlectl.exe" --port COM1 set D1 1 'Typed on a real keyboard'
    grep -q 'Typed on a real keyboard' "$work/said" || fail "titlectl did not give the title back"

    # Over an older version, in the other language.
    wine reg add "HKLM\\$registered" /v DisplayVersion /d 0.9 /f "/reg:$bits" >/dev/null
    wine reg add "HKLM\\$settings" /v Kept /d yes /f "/reg:$bits" >/dev/null
    for file in tesselia.exe titlectl.exe Readme.txt; do
        echo older >>"$place/$file"
    done
    LANG=ja_JP.UTF-8 expect_code 0 "the installer, over an older version," wine "$installer" /S /LANG=1033
    expect_installed Tesselia.chm "Tesselia.lnk User's guide.lnk "

    # Gone again, but for what is the user's.
    expect_code 0 "the uninstaller" wine "$place/Uninstall.exe" /S
    wait_for "the uninstaller does not end" test ! -e "$place/Uninstall.exe" || return 0
    wait_for "the program is still registered" is_unregistered || true
    [ "$(find "$place" -mindepth 1)" = "$place/notes.txt" ] || fail "left, but for notes.txt: $(find "$place")"
    [ -z "$(start_menu)" ] || fail "left: $(start_menu)"
    [ "$(value "$settings" Kept)" = yes ] || fail "the settings are gone"
    rm -r "$place"
    wine reg delete "HKLM\\$settings" /v Kept /f "/reg:$bits" >/dev/null
}

if [ "${1:-}" = --use ]; then
    shift
    use "$@"
    exit "$((failures > 0))"
fi

# --- Outside of it
trap 'rm -rf "$work"' EXIT
need unzip 7zip
scripts/locale.sh en_US.UTF-8 ja_JP.UTF-8
export LANG=en_US.UTF-8
unpacked() { printf '%s' "$work/tesselia-$version-windows-$1"; }
use_in_wine() {
    WINE_BITS=$1 scripts/wine.sh --session scripts/check-package-windows.sh --use "$1" "$2" "$(unpacked "$1")" ||
        fail "the installer of $1 bits"
}

need_build_tools
configure release
cmake --build --preset release --target mainunit_program >&2
folder=${1:-$root/build/packages}
if [ $# -eq 0 ]; then
    scripts/package-windows.sh >&2
    pack windows-x64 NSIS "$work"
    unzip -q "$folder/tesselia-$version-windows-64.zip" -d "$work"
    use_in_wine 64 "$work/tesselia-$version-windows-64.exe"
fi

installer=$folder/tesselia-$version-windows-32.exe
unzip -q "$folder/tesselia-$version-windows-32.zip" -d "$work"
7zz x -o"$work/installer" "$installer" >/dev/null
diff -r -x '$PLUGINSDIR' -x Uninstall.exe "$(unpacked 32)" "$work/installer" >&2 || fail "the installer holds other files than the zip"
code=0
WINE_BITS=32 scripts/wine.sh --session true || code=$?
if [ "$code" = 77 ]; then
    said='holds what the zip does. It cannot be run on this machine, which does not run 32-bit programs'
else
    use_in_wine 32 "$installer"
    said='installs, runs and goes'
fi
[ "$failures" -eq 0 ] || exit 1
[ $# -gt 0 ] || say "The installer made of the 64-bit build installs, runs and goes"
say "The installer $said: $installer"
