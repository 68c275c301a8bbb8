#!/usr/bin/env bash
# Takes the pictures of the user's guide anew, help/en/*.png and help/ja/*.png, from a session of the program in each language:
#
#   scripts/help-pictures.sh [BIN]      BIN holds the built programs; without it they are built
#
# What has not changed on the screen gives the same bytes again, so that git shows which pictures have.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$OLDPWD"

[ $# -le 1 ] || { sed -n '2,6p' "$root/scripts/help-pictures.sh" >&2; exit 2; }
[ $# -eq 1 ] || (cd "$root" && build_programs)
bin=$(cd "${1:-$root/build/release/bin}" && pwd)
need imagemagick qt6-translations-l10n fonts-dejavu-core fonts-ipafont-gothic

# The page shows more than the picture, so none has to be large.
limit=$((60 * 1024))

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# picture LANGUAGE STAGE NAME [PART]: the stage of the session as NAME.png, or its part, WIDTHxHEIGHT+X+Y within the window.
picture() {
    local stages=("$work/$1"/[0-9][0-9]-"$2".png) target=$root/help/$1/$3.png part=()
    [ ${#stages[@]} -eq 1 ] && [ -e "${stages[0]}" ] || { say "The session has no stage $2"; return 1; }
    [ $# -lt 4 ] || part=(-crop "$4" +repage)
    # What is around the window has one colour. The dates of making would differ each time.
    convert "${stages[0]}" -trim +repage "${part[@]}" -bordercolor '#808080' -border 1 -strip +dither -colors 128 \
        -define png:exclude-chunks=date,time -define png:compression-level=9 "$target"
    [ "$(stat -c %s "$target")" -lt "$limit" ] || { say "$target is too large for a page"; return 1; }
}

"$root/scripts/locale.sh" en_US.UTF-8 ja_JP.UTF-8
unset LC_ALL LC_CTYPE LC_MESSAGES
# The dialog of the ranges is as high as the language's font makes it.
while read -r folder locale height; do
    LANG=$locale "$root/tests/tour/session.sh" "$bin" "$work/$folder" >"$work/log" </dev/null || { cat "$work/log" >&2; exit 1; }
    picture "$folder" titles main
    picture "$folder" editor editor 596x235+0+0
    picture "$folder" edited edited 596x235+0+0
    picture "$folder" menu-file menu-file 400x178+0+0
    picture "$folder" menu-edit menu-edit 400x178+0+0
    picture "$folder" menu-view menu-view 400x178+0+0
    picture "$folder" menu-tool menu-tool 400x178+0+0
    picture "$folder" imported imported 596x235+0+0
    picture "$folder" ranges ranges "254x$height+2+21"
    picture "$folder" refused refused 440x300+0+0
    picture "$folder" narrowed narrowed
done <<'END'
en en_US.UTF-8 278
ja ja_JP.UTF-8 257
END
