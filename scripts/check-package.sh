#!/usr/bin/env bash
# Installs the Debian package in a new root of the running release, uses it there as a new user would, and takes it away again.
#
#   scripts/check-package.sh        makes the package first
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need mmdebstrap desktop-file-utils appstream binutils man-db
package=$(scripts/package.sh)
work=$(mktemp -d)
clean=$work/root
finish() {
    as_root umount -q -R "$clean/proc" "$clean/dev" 2>/dev/null || true
    as_root rm -rf --one-file-system "$work"
}
trap finish EXIT

failures=0
check() {
    "$@" >"$work/said" 2>&1 || { cat "$work/said" >&2; say "FAILED: $*"; failures=$((failures + 1)); }
}
inside() {
    as_root chroot "$clean" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive HOME=/root \
        XDG_RUNTIME_DIR=/tmp/run "$@"
}

# --- What lies in the package
dpkg-deb -x "$package" "$work/content"
usr=$work/content/usr
check desktop-file-validate "$usr/share/applications/tesselia.desktop"
check appstreamcli validate --no-net "$usr"/share/metainfo/*.xml
for page in "$usr"/share/man/man1/*.gz; do
    warnings=$(zcat "$page" | groff -t -man -ww -Tutf8 2>&1 >/dev/null)
    check test -z "$warnings"
done
for program in tesselia titlectl mainunit; do
    check grep -q 'DYN' <(readelf -h "$usr/bin/$program")
    check grep -q 'GNU_RELRO' <(readelf -lW "$usr/bin/$program")
    check grep -q 'BIND_NOW\|FLAGS.*NOW' <(readelf -dW "$usr/bin/$program")
    check grep -q '__stack_chk_fail' <(readelf -sW --dyn-syms "$usr/bin/$program")
    check grep -q '_chk@' <(readelf -sW --dyn-syms "$usr/bin/$program")
done

# --- In a new root
# With what the package says it depends on and nothing else, so that a library that it fails to name is missed.
say "Making a new root"
depends=$(dpkg-deb -f "$package" Depends | sed 's/ *([^)]*)//g; s/, */,/g')
retry as_root mmdebstrap --quiet --variant=apt --include="$depends" "$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")" "$clean" >&2
as_root mount --rbind --make-rslave /dev "$clean/dev"
as_root mount -t proc proc "$clean/proc"
as_root cp "$package" "$clean/tmp/tesselia.deb"
check inside dpkg -i /tmp/tesselia.deb
check inside mkdir -m 700 /tmp/run
inside mainunit --link COM1 --sample --pace 0 --quiet >"$work/ready" &
unit=$!
wait_for_unit "$unit" "$work/ready"
check inside titlectl --port COM1 get D1 0
# As the desktop starts it: by the line of its entry, and it goes on until it is ended.
start=$(sed -n 's/^Exec=//p' "$usr/share/applications/tesselia.desktop")
check inside sh -c "QT_QPA_PLATFORM=offscreen timeout 8 $start; test \$? = 124"
check inside test -s /usr/share/tesselia/help/en/index.html
check inside test -s /usr/share/tesselia/help/ja/index.html
as_root pkill -f "mainunit --link COM1 --sample" || true
wait "$unit" || true
check inside dpkg --purge tesselia
left=$(as_root find "$clean/usr" "$clean/etc" -xdev -ipath '*tesselia*')
check test -z "$left"
[ "$failures" -eq 0 ] || exit 1
say "The package installs, runs and goes: $package"
