#!/usr/bin/env bash
# Puts the Windows programs, of 64 and of 32 bits, into a zip each, with the guide, the licences and a readme.
#
#   scripts/package-windows.sh [FOLDER]     build/packages if none is told
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$OLDPWD"

need_windows_tools
need zip unzip
folder=${1:-$root/build/packages}
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
cd "$root"
version=$(sed -n 's/^project(Tesselia VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for preset in windows-x64 windows-x86; do
    configure "$preset"
    cmake --build --preset "$preset" --target tesselia titlectl guide >&2
done
scripts/check-windows.sh

# Windows' own editor wants its line ends.
windows_text() { sed 's/$/\r/' "$1" >"$2"; }

# What mingw-w64 and the compiler link in, and the library for JSON, want their licences to travel along.
compiled_in='nlohmann-json3-dev mingw-w64-common gcc-mingw-w64-base'

for bits in 64:x64 32:x86; do
    bin=build/windows-${bits#*:}/bin
    name=tesselia-$version-windows-${bits%:*}
    content=$work/$name
    mkdir -p "$content/ja" "$content/Licences"
    for file in tesselia.exe titlectl.exe Tesselia.chm ja/Tesselia.chm; do
        [ -e "$bin/$file" ] || { say "$bin/$file was not built"; exit 1; }
        cp "$bin/$file" "$content/$file"
    done
    windows_text LICENSE "$content/Licence.txt"
    windows_text packaging/windows-readme.txt "$content/Readme.txt"
    for package in $compiled_in; do
        windows_text "/usr/share/doc/$package/copyright" "$content/Licences/$package.txt"
    done
    rm -f "$folder/$name.zip"
    (cd "$work" && zip -q -r -X "$folder/$name.zip" "$name")
    unzip -tq "$folder/$name.zip" >&2
    printf '%s\n' "$folder/$name.zip"
done
