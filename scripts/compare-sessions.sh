#!/usr/bin/env bash
# Runs the tests of whole programs on the Linux build and, under wine, on the Windows builds that are there, and prints one table: how
# each ended, and whether each Windows program said the same to the main unit, frame by frame, and wrote the same files.
#
#   scripts/compare-sessions.sh               all of it; fails if one case fails or differs
#   scripts/compare-sessions.sh --keep-linux  takes the records of Linux from build/sessions/linux as they are
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

records=$root/build/sessions
cases='^real[.]SessionTest|^Titlectl'

# Where a transfer is cut off by the clock, by typing or by a signal, no two dialogues need be alike, on one system either. Those of
# the others hold no matter how long anything takes.
by_the_clock='SessionTest[.](TransfersByMenu|TypingGoesOnDuringAFetch|ClosesInEveryState)|
    TitlectlFilesTest[.](MakesNoBackupOfHalfAUnit)|TitlectlTest[.](NoticesThatTheUnitFallsSilent|EndsInGoodOrderOnCtrlC)'
by_the_clock=${by_the_clock//[[:space:]]/}

# run SYSTEM: its records. A case that did not come to its end has none.
run() {
    rm -rf "${records:?}/$1"
    mkdir -p "$records/$1"
    TESSELIA_RECORDS=$records/$1 LANG=en_US.UTF-8 \
        ctest --preset release -R "$cases" -j "$((2 * $(nproc)))" >"$records/$1.log" 2>&1 || tail -n 300 "$records/$1.log" >&2
}

systems=(linux)
[ "${1:-}" = --keep-linux ] || run linux
if [ -e build/windows-x64/bin/titlectl.exe ]; then
    TESSELIA_WINDOWS_BUILD=$root/build/windows-x64/bin run windows-64
    systems+=(windows-64)
fi
if [ -e build/windows-x86/bin/titlectl.exe ]; then
    code=0
    WINE_BITS=32 scripts/wine.sh --session true || code=$?
    if [ "$code" -eq 0 ]; then
        TESSELIA_WINDOWS_BUILD=$root/build/windows-x86/bin WINE_BITS=32 run windows-32
        systems+=(windows-32)
    elif [ "$code" -ne 77 ]; then
        exit "$code"
    fi
fi

# flatten FOLDER: what must be alike, without times and what the programs print, and with BY_THE_CLOCK without the dialogue.
flatten() {
    local file
    for file in "$1"/*; do
        [ -e "$file" ] || continue
        case ${file##*/} in
            result | tesselia-* | titlectl-* | wine-end.* | mainunit-*.out | QtProject.conf | lock) continue ;;
        esac
        [[ $file = *.err ]] || printf '== %s\n' "${file##*/}"
        case $file in
            */mainunit-*.err) [ -n "$cut" ] || sed -E 's/^ *[0-9]+[.][0-9]{3} //' "$file" ;;
            *) od -An -c -v "$file" ;;
        esac
    done
    return 0
}

[ ${#systems[@]} -gt 1 ] || { say "There is no Windows build to compare with"; exit 1; }
names=$(ctest --preset release -N -R "$cases" | sed -n 's/^ *Test *#[0-9]*: \(real[.]\)\?//p')
[ -n "$names" ] || { say "There are no tests of whole programs"; exit 1; }
printf '%-58s' ''
printf '%-12s' "${systems[@]}"
printf '%s\n' dialogue
bad=0
for name in $names; do
    printf '%-58s' "$name"
    cut='' same=same
    [[ ! $name =~ ^($by_the_clock)$ ]] || cut=1 same='same files'
    for system in "${systems[@]}"; do
        result=$(cat "$records/$system/$name/result" 2>/dev/null || echo 'no end')
        printf '%-12s' "$result"
        [ "$result" = passed ] || [ "$result" = skipped ] || bad=1
        flatten "$records/$system/$name" >"$records/$system/$name.flat"
        [ -s "$records/$system/$name.flat" ] && cmp -s "$records/linux/$name.flat" "$records/$system/$name.flat" || same=DIFFERS
    done
    [ "$same" != DIFFERS ] || bad=1
    printf '%s\n' "$same"
done
[ "$bad" = 0 ] || say "diff the .flat files below $records to see what differs"
exit "$bad"
