#!/usr/bin/env bash
# How much of what stands above the seam the tests reach, by lines, and which lines they do not.
#
#   scripts/coverage.sh         a table of folders and files; build/coverage/report/index.html shows the lines
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need_build_tools
need gcovr
scripts/locale.sh en_US.UTF-8 ja_JP.UTF-8
unset LC_ALL LC_CTYPE LC_MESSAGES

folder=$root/build/coverage
mkdir -p "$folder/report"
cmake -S "$root" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="--coverage -fprofile-update=atomic" \
    >"$folder/configure.log" 2>&1 || { cat "$folder/configure.log" >&2; say "Configuring failed"; exit 1; }
tests=(store_tests link_tests files_tests link_thread_tests sim_tests e2e_tests lists_tests pane_tests shell_tests real_input_tests resources_tests)
cmake --build "$folder" --target "${tests[@]}" tesselia titlectl mainunit_program >&2
find "$folder" -name '*.gcda' -delete
# Where a file may have no byte the figures cannot be written either.
ctest --test-dir "$folder" -j "$((2 * $(nproc)))" --no-tests=error --output-on-failure \
    -E '^window\.(ja\.)?(Access|Storm|Painting|MessageOrder|Menu|Dialogs|Edit|Registry|Template|Input|ListBox)|tour|NOT_BUILT|FullDisk|^(desktop|drawing|kernel|messages|sim_platform)' \
    >"$folder/ctest.log" 2>&1 || { tail -n 30 "$folder/ctest.log" >&2; say "Some tests failed"; exit 1; }
rm -rf "$folder"/CMakeFiles/[0-9]*/CompilerId*
gcovr --root "$root" --object-directory "$folder" --gcov-ignore-parse-errors \
    --filter "$root/(store|link|files|lists|pane|shell)/" --exclude-throw-branches --print-summary \
    --html-details "$folder/report/index.html"
