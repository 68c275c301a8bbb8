#!/usr/bin/env bash
# Installs the Debian package in a new root of the running release, uses it there as a new user would, and takes it away again.
#
#   scripts/check-package.sh [PACKAGE]     makes the package first where none is told
#
# The root is fetched by mmdebstrap into a temporary folder, which needs the rights of root (sudo asks for them) and the network.
set -euo pipefail
[ $# -eq 0 ] || set -- "$(realpath "$1")"
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need mmdebstrap desktop-file-utils appstream binutils groff-base lintian dpkg-dev
package=${1:-$(scripts/package.sh)}
work=$(mktemp -d)
clean=$work/root
home=$clean/home/user

# The simulated unit tells its own number, since what is started here is sudo or chroot.
end_unit() {
    ! as_root test -s "$home/unit.pid" || as_root kill "$(as_root cat "$home/unit.pid")" 2>/dev/null || true
    wait
    as_root rm -f "$home/unit.pid"
}

# What is still mounted must not be reached by the removal.
finish() {
    end_unit
    for place in dev/pts proc; do
        ! mountpoint -q "$clean/$place" || as_root umount "$clean/$place" || { say "$clean/$place stays mounted"; return; }
    done
    as_root rm -rf --one-file-system "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM HUP

failures=0
fail() {
    say "FAILED: $*"
    failures=$((failures + 1))
}
check() {
    "$@" >"$work/said" 2>&1 || { cat "$work/said" >&2; fail "$*"; }
}

# --- What lies in the package
dpkg-deb -x "$package" "$work/content"
usr=$work/content/usr
check lintian --allow-root --fail-on error,warning "$package"
check desktop-file-validate "$usr/share/applications/tesselia.desktop"
check appstreamcli validate --no-net "$usr"/share/metainfo/*.xml
for page in "$usr"/share/man/man1/*.gz; do
    warnings=$(zcat "$page" | groff -t -man -ww -Tutf8 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "$page: $warnings"
done

# The manual pages know every option and command of the programs' own texts.
# names_all PROGRAM NAME...
names_all() {
    local program=$1 name
    shift
    [ $# -gt 0 ] || fail "$program does not tell its options"
    zcat "$usr/share/man/man1/$program.1.gz" | groff -t -man -Tascii -P-cbou >"$work/manual"
    for name in "$@"; do
        grep -qE -- "^ +(titlectl .*)?$name\\b" "$work/manual" || fail "$program(1) does not name $name"
    done
}
# shellcheck disable=SC2046
names_all mainunit $("$usr/bin/mainunit" --help | grep -oE '^  --[a-z-]+')
# shellcheck disable=SC2046
names_all titlectl $({ "$usr/bin/titlectl" 2>&1 || true; } | sed -nE 's/^titlectl \[--port COMn\] ([a-z]+).*/\1/p')
for language in en ja; do
    check diff -r -x '*.hh?' "$root/help/$language" "$usr/share/tesselia/help/$language"
done

# One version everywhere that a user can read it.
version=$(dpkg-deb -f "$package" Version)
check test "$(dpkg-parsechangelog -l packaging/changelog -S Version)" = "$version"
check grep -q "<release version=\"$version\"" "$usr"/share/metainfo/*.xml
[ "$(grep -c "IDS_VERSION *\"$version\\.0\"" resources/tesselia.rc)" = 2 ] || fail "resources/tesselia.rc is of another version"
for page in packaging/man/*.1; do
    check grep -q "^\\.TH .* \"Tesselia $version\"" "$page"
done

for program in tesselia titlectl mainunit; do
    readelf -hldW --dyn-syms "$usr/bin/$program" >"$work/elf"
    for sign in 'Type: *DYN' GNU_RELRO 'FLAGS.*NOW' ' __stack_chk_fail@' '_chk@'; do
        grep -q "$sign" "$work/elf" || fail "$program is not hardened: no $sign"
    done
    ! grep -q 'GNU_STACK.*E' "$work/elf" || fail "the stack of $program can be run"
done

# --- In a new root
inside() {
    as_root chroot "$clean" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}
as_user() {
    as_root chroot --userspec=1000:1000 "$clean" /usr/bin/env -i PATH=/usr/bin:/bin LANG=C.UTF-8 HOME=/home/user \
        XDG_RUNTIME_DIR=/home/user/run "$@"
}
release=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
make_root() {
    as_root rm -rf --one-file-system "$clean"
    as_root mmdebstrap --quiet --variant=apt --skip=cleanup/apt/lists "$release" "$clean" >&2
}
say "Making a new root"
retry make_root || { say "No root could be fetched"; exit 1; }
as_root mount -t proc proc "$clean/proc"
as_root mount -t devpts -o newinstance,ptmxmode=0666 devpts "$clean/dev/pts"
as_root cp /etc/resolv.conf "$clean/etc/resolv.conf"
as_root cp "$package" "$clean/var/tesselia.deb"
as_root install -d -o 1000 -g 1000 -m 700 "$home" "$home/run"

# Without what the package recommends, so that a library which it fails to name is missed.
retry inside apt-get -q -y --no-install-recommends install /var/tesselia.deb >"$work/said" 2>&1 ||
    { cat "$work/said" >&2; say "The package could not be installed"; exit 1; }

: >"$work/ready"
as_user sh -c 'cd; echo $$ >unit.pid; exec mainunit --link COM1 --sample --pace 0 --log dialogue.log' >"$work/ready" &
wait_for_unit $! "$work/ready"
check as_user titlectl set D1 1 "Typed on a real keyboard"
grep -q 'Typed on a real keyboard' "$work/said" || fail "titlectl did not give the title back"

# As the desktop starts it: by the line of its entry. It has to find the unit, read its titles, and stay.
start=$(sed -n 's/^Exec=//p' "$clean/usr/share/applications/tesselia.desktop")
before=$(as_root cat "$home/dialogue.log" | wc -l)
as_user sh -c "QT_QPA_PLATFORM=offscreen timeout 20 $start" >"$work/program" 2>&1 && ended=0 || ended=$?
[ "$ended" = 124 ] || { cat "$work/program" >&2; fail "tesselia ended by itself, with $ended"; }
as_root cat "$home/dialogue.log" | sed "1,${before}d" >"$work/dialogue"
grep -q 'TitleRead' "$work/dialogue" || { cat "$work/program" >&2; fail "tesselia did not read the titles of the unit"; }

# --- Gone again, but for what is the user's
end_unit
as_user sh -c 'mkdir -p ~/.config/tesselia/ports && ln -s /dev/ttyUSB7 ~/.config/tesselia/ports/com2'
check inside dpkg --purge tesselia
dpkg-deb --fsys-tarfile "$package" | tar -t | grep -v '/$' >"$work/files"
while IFS= read -r file; do
    [ ! -e "$clean/$file" ] || fail "$file is left"
done <"$work/files"
left=$(as_root find "$clean" -xdev -ipath '*tesselia*' -not -path "$home/*" -not -path "$clean/var/tesselia.deb")
[ -z "$left" ] || fail "left: $left"
check as_root test -L "$home/.config/tesselia/ports/com2"

[ "$failures" -eq 0 ] || exit 1
say "The package installs, runs and goes: $package"
