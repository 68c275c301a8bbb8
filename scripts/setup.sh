# Sourced by ./run, ./test and the scripts: installs the Debian packages that are missing, and builds a preset.
#
# A fresh Debian machine has nothing but a shell, so nothing is taken for granted here.

say() { printf '%s\n' "$*" >&2; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        command -v sudo >/dev/null || { say "This needs root, or sudo: $*"; return 1; }
        sudo "$@"
    fi
}

# wait_for_unit PID FILE: until the simulated main unit, which writes to the file, says that it answers.
wait_for_unit() {
    until grep -qs '^ready' "$2"; do
        kill -0 "$1" 2>/dev/null || { say "The simulated main unit did not start"; return 1; }
        sleep 0.1
    done
}

# Package servers hiccup: three tries, with a pause in between.
retry() {
    for pause in 5 20 0; do
        "$@" && return 0
        [ "$pause" -eq 0 ] || { say "Trying again in $pause s: $*"; sleep "$pause"; }
    done
    return 1
}

# need PACKAGE...: installs those that are not there yet.
need() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing Debian packages: ${missing[*]}"
    [ "$(id -u)" -eq 0 ] || say "(sudo may ask for your password)"
    retry install_packages "${missing[@]}" || { say "Could not install: ${missing[*]}"; return 1; }
}

# Lists that came only in part count as a failure, or the installation would look for packages that are gone. A machine that
# has just started may be updating itself, so the lock is waited for.
install_packages() {
    as_root apt-get -q -o APT::Update::Error-Mode=any -o DPkg::Lock::Timeout=300 update >&2 &&
        as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 install \
            --no-install-recommends "$@" >&2
}

need_build_tools() {
    need g++ cmake ninja-build libgtest-dev libbenchmark-dev nlohmann-json3-dev libboost-context-dev binutils-mingw-w64-x86-64 \
        qt6-base-dev qt6-translations-l10n fonts-dejavu-core fonts-ipafont-gothic xvfb openbox xdotool x11-utils
}

# For the presets windows-x64 and windows-x86; what runs their programs is scripts/wine.sh's affair.
need_windows_tools() {
    need g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix cmake ninja-build googletest nlohmann-json3-dev fp-utils
}

# configure PRESET [cmake options]: below build/PRESET.
configure() {
    local preset=$1
    shift
    cmake --preset "$preset" "$@" >"$root/build/$preset.log" 2>&1 ||
        { cat "$root/build/$preset.log" >&2; say "Configuring the preset $preset failed"; return 1; }
}

# What ./run shows, in build/release. Who only wants to see the program need not wait for its tests.
build_programs() {
    need_build_tools && configure release &&
        cmake --build --preset release --target tesselia titlectl mainunit_program tour >&2
}

# build PRESET [cmake options]: everything.
build() {
    configure "$@" && cmake --build --preset "$1" >&2
}

# pack PRESET GENERATORS FOLDER: what CPack makes of a build, in the folder.
pack() {
    cpack --config "$root/build/$1/CPackConfig.cmake" -G "$2" -B "$3" >"$root/build/$1.log" 2>&1 ||
        { cat "$root/build/$1.log" "$3"/_CPack_Packages/*/NSIS/*.log >&2 || true; say "Packing the preset $1 failed"; return 1; }
}

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
mkdir -p build
