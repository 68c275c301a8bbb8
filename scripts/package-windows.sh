#!/usr/bin/env bash
# Puts the Windows programs, of 64 and of 32 bits, into a zip each, with the guide, the licences and a readme, and makes an installer
# of the 32-bit one, which keeps the settings of every user.
#
#   scripts/package-windows.sh [FOLDER]     build/packages if none is told
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$OLDPWD"

need_windows_tools
need nsis unzip
folder=${1:-$root/build/packages}
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
cd "$root"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for preset in windows-x64 windows-x86; do
    configure "$preset"
    cmake --build --preset "$preset" --target tesselia titlectl guide >&2
done
scripts/check-windows.sh

pack windows-x64 ZIP "$work"
pack windows-x86 'ZIP;NSIS' "$work"
for package in "$work"/*.zip "$work"/*.exe; do
    [[ $package == *.exe ]] || unzip -tq "$package" >&2
    mv "$package" "$folder"
    printf '%s\n' "$folder/${package##*/}"
done
