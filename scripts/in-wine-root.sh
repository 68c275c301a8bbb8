#!/usr/bin/env bash
# Runs a command in another root, with the folders of this machine that are not the system's own: scripts/in-wine-root.sh ROOT COMMAND...
# It takes a mount namespace of its own to do so (scripts/wine-setup.sh), and the command takes its place, so that signals reach it.
set -euo pipefail
new=$1
shift
bind() {
    [ -d "$1" ] && { [ -d "$new$1" ] || mkdir -p "$new$1" 2>/dev/null; } || return 0
    mount --rbind "$1" "$new$1"
}
for place in /*/; do
    case $place in
        /bin/ | /boot/ | /etc/ | /lib*/ | /lost+found/ | /sbin/ | /usr/ | /var/) ;;
        *) bind "${place%/}" ;;
    esac
done
# The letters and the languages, too, are this machine's. The checkout may lie in one of the system's folders.
for place in /usr/share/fonts /usr/lib/locale /var/tmp "$(cd "$(dirname "$0")/.." && pwd)" "${TMPDIR:-/tmp}"; do
    bind "$place"
done
exec chroot "$new" /usr/bin/env -C "$PWD" "$@"
