#!/usr/bin/env bash
# Formatting everywhere, and clang-tidy over the program.
#
#   scripts/lint.sh         what stands above the seam, and the messages below it
#   scripts/lint.sh --all   the rest of the layer, titlectl and the simulated unit as well: minutes, since each file of
#                           platform/desktop takes ten seconds for the sake of Qt's headers
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need git clang-format-19 clang-tidy-19
need_build_tools
build release

git ls-files '*.h' '*.cpp' | xargs clang-format-19 --dry-run --Werror

# Standard error holds little but the number of warnings in system headers; it is shown if something went wrong.
log=$root/build/clang-tidy.log
files=(store link files lists pane shell platform/messages)
[ "${1:-}" != --all ] || files+=(titlectl library mainunit platform/kernel platform/sim platform/desktop)
git ls-files "${files[@]}" | grep '\.cpp$' |
    xargs -P "$(nproc)" -n 4 clang-tidy-19 -p build/release --quiet 2>"$log" || { cat "$log" >&2; say "clang-tidy failed"; exit 1; }
