#!/usr/bin/env bash
# A whole session of the program with a simulated main unit on COM1, all by itself on a screen of its own, a picture of each stage:
#
#   tests/tour/session.sh BIN FOLDER      BIN holds the programs; the language is taken from LANG
#
# The pictures go to FOLDER, and what the unit holds before and after to before.json and after.json there; titles.csv is imported
# from it and saved.csv exported to it. Settings, ports and titles of the user's stay untouched.
set -euo pipefail
[ $# -eq 2 ] || { sed -n '2,7p' "$0" >&2; exit 2; }
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/setup.sh"
cd "$OLDPWD"
bin=$(cd "$1" && pwd)
mkdir -p "$2"
folder=$(cd "$2" && pwd)

work=$(mktemp -d)
unit=
finish() {
    [ -z "$unit" ] || { kill "$unit" 2>/dev/null && wait "$unit" 2>/dev/null; } || true
    rm -rf "$work"
}
trap finish EXIT
export QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME=$work/config TESSELIA_RUNTIME_DIR=$work/run

cp "$bin/sample-library.json" "$work/library.json"
cp "$work/library.json" "$folder/before.json"
"$bin/mainunit" --library "$work/library.json" --pace 0 --link COM1 --log "$work/dialogue.log" >"$work/ready" &
unit=$!
wait_for_unit "$unit" "$work/ready"
printf ' 2,"Read from a file"\r\n 3,"And ""quoted"", too"\r\n' >"$folder/titles.csv"
rm -f "$folder/saved.csv" "$folder"/[0-9][0-9]-*.png
(cd "$folder" && "$bin/tour" "$folder") 2>"$work/errors" || { cat "$work/errors" >&2; exit 1; }
cp "$work/library.json" "$folder/after.json"
[ -s "$folder/saved.csv" ] || { say "Nothing was exported"; exit 1; }
! cmp -s "$folder/before.json" "$folder/after.json" || { say "The main unit has got none of the titles"; exit 1; }
