#!/usr/bin/env bash
# Makes the package for the Debian release that runs here, and says where it is.
#
#   scripts/package.sh
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need_build_tools
# The icons are drawn from the svg; dpkg-shlibdeps finds the libraries that the programs need.
need librsvg2-bin dpkg-dev file
configure release
cmake --build --preset release --target package_content >&2
rm -f "$root"/build/release/*.deb
(cd "$root/build/release" && cpack -G DEB >package.log 2>&1) || { cat "$root/build/release/package.log" >&2; exit 1; }
ls "$root"/build/release/*.deb
