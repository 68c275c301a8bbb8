#!/usr/bin/env bash
# Whether the headers of the seam say what Microsoft's say: each constant, signature, structure and macro of platform/include/ is
# held against the <windows.h> of mingw-w64, for 64 and for 32 bits.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need g++ python3
need_windows_tools

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mapfile -t headers < <(find platform/include -name '*.h' | sort)

python3 scripts/seam-asserts.py values "${headers[@]}" >"$work/values.cpp"
g++ -std=c++20 -w -Iplatform/include "$work/values.cpp" -o "$work/values"
"$work/values" >"$work/values.txt"
python3 scripts/seam-asserts.py asserts "$work/values.txt" "${headers[@]}" >"$work/asserts.cpp"
for triple in x86_64-w64-mingw32 i686-w64-mingw32; do
    "$triple-g++-posix" -std=c++20 -w -DWINVER=0x0600 -D_WIN32_WINNT=0x0600 -O1 -S -o /dev/null "$work/asserts.cpp" ||
        { say "The seam differs from Windows ($triple)"; exit 1; }
done
