#!/usr/bin/env bash
# Runs a command in another root, with the folders of this machine that are not the system's own: scripts/in-wine-root.sh ROOT COMMAND...
# It takes a mount namespace of its own to do so (scripts/wine-setup.sh), and the command takes its place, so that signals reach it.
set -euo pipefail
new=$1
shift
# The letters and the languages, too, are this machine's.
for place in /dev /home /media /mnt /opt /proc /root /run /srv /sys /tmp /var/tmp /usr/share/fonts /usr/lib/locale \
    "$(cd "$(dirname "$0")/.." && pwd)" "${TMPDIR:-/tmp}"; do
    [ -d "$place" ] || continue
    [ -d "$new$place" ] || mkdir -p "$new$place"
    mount --rbind "$place" "$new$place"
done
exec chroot "$new" /usr/bin/env -C "$PWD" "$@"
