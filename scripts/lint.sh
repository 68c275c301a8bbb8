#!/usr/bin/env bash
# Formatting, and clang-tidy over everything but the tests. Needs a configured release build.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need git clang-format clang-tidy
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
git ls-files 'store/*.cpp' 'link/*.cpp' 'tools/*.cpp' 'mainunit/*.cpp' 'platform/*.cpp' |
    xargs -P "$(nproc)" -n 4 clang-tidy -p build/release --quiet 2>/dev/null
