#!/usr/bin/env bash
# Puts the Windows programs, of 64 and of 32 bits, into a zip each, with the help, the licence and a readme.
#
#   scripts/package-windows.sh [FOLDER]     build/packages if none is told
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need_windows_tools
need zip unzip
folder=${1:-$root/build/packages}
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
version=$(sed -n 's/^project(Tesselia VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")

for bits in 64:x64 32:x86; do
    preset=windows-${bits#*:}
    cmake --preset "$preset" >"$root/build/$preset.log" 2>&1 || { cat "$root/build/$preset.log" >&2; exit 1; }
    cmake --build --preset "$preset" --target tesselia titlectl guide >&2
    name=tesselia-$version-windows-${bits%:*}
    content=$folder/$name
    rm -rf "$content" "$content.zip"
    mkdir -p "$content/ja"
    cp "$root/build/$preset/bin/ja/Tesselia.chm" "$content/ja"
    cp "$root/build/$preset/bin/tesselia.exe" "$root/build/$preset/bin/titlectl.exe" "$root/build/$preset/bin/Tesselia.chm" "$content"
    # Windows' own editor wants its line ends.
    for text in LICENSE:Licence.txt packaging/windows-readme.txt:Readme.txt; do
        sed 's/$/\r/' "$root/${text%:*}" >"$content/${text#*:}"
    done
    (cd "$folder" && zip -q -r "$name.zip" "$name")
    rm -rf "$content"
    unzip -tq "$folder/$name.zip" >&2
    printf '%s\n' "$folder/$name.zip"
done
