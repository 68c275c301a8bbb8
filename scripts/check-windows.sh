#!/usr/bin/env bash
# Looks at the built Windows programs, of both presets: each imports nothing but the system's own libraries, is of the right kind,
# and carries no manifest. With an execution level in a manifest Windows would no longer redirect what a 32-bit program of a user
# without rights writes below HKEY_LOCAL_MACHINE, and settings would not survive.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need_windows_tools

allowed='^(advapi32|comctl32|comdlg32|gdi32|imm32|kernel32|msvcrt|user32|winmm)\.dll$'
failures=0
fail() {
    say "$1: $2"
    failures=$((failures + 1))
}

# check PROGRAM FORMAT SUBSYSTEM: of the subsystems 2 has windows and 3 a console.
check() {
    local program=$1 format=$2 subsystem=$3 headers
    [ -e "$program" ] || { fail "$program" "is not built"; return; }
    headers=$(x86_64-w64-mingw32-objdump -p "$program")
    grep -q "file format $format\$" <<<"$headers" || fail "$program" "is not $format"
    grep -qE "^Subsystem[[:space:]]+0*$subsystem[[:space:]]" <<<"$headers" || fail "$program" "is not of subsystem $subsystem"

    local library libraries
    libraries=$(sed -n 's/^[[:space:]]*DLL Name: //p' <<<"$headers" | tr '[:upper:]' '[:lower:]')
    grep -qx kernel32.dll <<<"$libraries" || fail "$program" "has no list of imports that could be read"
    for library in $libraries; do
        [[ $library =~ $allowed ]] || fail "$program" "imports $library"
    done

    # Code and data change their places from start to start, and data is not run.
    local characteristics wanted=0x0140
    [ "$format" != pei-x86-64 ] || wanted=0x0160
    characteristics=$(sed -n 's/^DllCharacteristics[[:space:]]*\([0-9a-f]*\)$/0x\1/p' <<<"$headers")
    ((${characteristics:-0} == (characteristics | wanted))) || fail "$program" "is not hardened: $characteristics"
    # The flag alone moves nothing: Windows needs the list of the addresses to change.
    grep -qE '^Entry 5 0*[1-9a-f][0-9a-f]* 0*[1-9a-f][0-9a-f]* Base Relocation' <<<"$headers" ||
        fail "$program" "has no relocations"
    # What a function says that finds its stack overwritten.
    grep -q 'stack smashing detected' "$program" || fail "$program" "was compiled without stack protection"

    # The first level of the resource directory names the types; 0x18 is a manifest, and 0x10 the version that the editor has.
    local types
    types=$(sed -n '/^The .rsrc Resource Directory section:/,$ s/^[0-9a-f]*   Entry: ID: \(0x[0-9a-f]*\),.*/\1/p' <<<"$headers")
    ! grep -qx 0x000018 <<<"$types" || fail "$program" "carries a manifest"
    [ "$subsystem" = 3 ] || grep -qx 0x000010 <<<"$types" || fail "$program" "carries no version"
}

for preset in windows-x64:pei-x86-64 windows-x86:pei-i386; do
    bin=$root/build/${preset%:*}/bin
    check "$bin/titlectl.exe" "${preset#*:}" 3
    check "$bin/tesselia.exe" "${preset#*:}" 2
done
[ "$failures" -eq 0 ] || exit 1
say "The Windows programs import the system's libraries alone and carry no manifest"
