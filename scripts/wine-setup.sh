# Sourced after setup.sh by what runs Windows programs: wine of 64 bits or, with WINE_BITS=32, of 32.
#
# Debian keeps wine's own programs out of the path, and has the 32-bit ones in packages of another architecture. Those lie in a root
# of their own, build/wine32.root.

wine_bits=${WINE_BITS:-64}
wine_root=$root/build/wine32.root
in_root=()
case $wine_bits in
    64) wine_folder=$root/build/wine WINELOADER=/usr/lib/wine/wine64 WINESERVER=/usr/lib/wine/wineserver64 ;;
    32)
        wine_folder=$root/build/wine32 WINELOADER=/usr/lib/wine/wine WINESERVER=/usr/lib/wine/wineserver32
        in_root=(unshare --mount)
        [ "$(id -u)" -eq 0 ] || in_root+=(--map-root-user)
        in_root+=("$root/scripts/in-wine-root.sh" "$wine_root")
        ;;
    *) say "WINE_BITS is 64 or 32"; exit 2 ;;
esac
loader=("${in_root[@]}" "$WINELOADER")
server=("${in_root[@]}" "$WINESERVER")
export WINELOADER WINESERVER WINEARCH=win$wine_bits WINEDEBUG=${WINEDEBUG:--all}
# Neither Mono nor Gecko is wanted, and no entries in the desktop's menus.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="

# Where the kernel refuses them, an emulator of single programs may take their place; wine does not come up under it.
runs_32_bits() {
    local program code=0
    need gcc
    program=$(mktemp)
    echo 'void _start(void) { __asm__("movl $1, %eax; movl $32, %ebx; int $0x80"); }' |
        gcc -m32 -nostdlib -static -x c -o "$program" - && { "$program" || code=$?; } 2>/dev/null
    rm -f "$program"
    [ "$code" -eq 32 ] && ! [ -e /proc/sys/fs/binfmt_misc/qemu-i386 ]
}

# From the release's main archive alone: the lists of the others do not always have this architecture.
fetch_wine_root() {
    local release archive
    release=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
    archive=$(apt-get indextargets --format '$(REPO_URI)' "Created-By: Packages" "Codename: $release" "Component: main" | sort -u | head -1)
    as_root rm -rf "$wine_root" &&
        as_root mmdebstrap --quiet --architectures=i386 --variant=minbase --include=wine32 "$release" "$wine_root" "$archive" >&2 &&
        as_root mkdir -p "$wine_root$root" "$wine_root${TMPDIR:-/tmp}" "$wine_root/usr/share/fonts" "$wine_root/usr/lib/locale"
}

# Installs what is missing. Without 32-bit programs on this machine it ends with 77, as a test ends that cannot run here.
need_wine() {
    if [ "$wine_bits" = 64 ]; then
        need wine64 xvfb fonts-dejavu-core fonts-ipafont-gothic
        return
    fi
    need mmdebstrap xvfb fonts-dejavu-core fonts-ipafont-gothic
    runs_32_bits || { say "This machine runs no 32-bit programs"; exit 77; }
    [ -e "$wine_root.complete" ] && return
    say "Fetching 32-bit wine into $wine_root"
    retry fetch_wine_root || { say "Could not fetch 32-bit wine"; exit 77; }
    touch "$wine_root.complete"
}
