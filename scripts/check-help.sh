#!/usr/bin/env bash
# Whether the user's guide is whole and true to the program: every link and picture leads somewhere, both languages have the same
# pages, the page about messages has the very text of each message of resources/tesselia.rc, each menu command is named, and text
# stands out from its background on a light and on a dark desktop. Then copies of the guide are broken in every way that the check
# is there for, and each has to be found.
#
#   scripts/check-help.sh              the pages
#   scripts/check-help.sh BIN...       and the compiled guides in these folders of Windows programs: every file, byte for byte
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$OLDPWD"

need python3
python3 "$root/scripts/help-pages.py" check "$root" || { say "The guide has faults"; exit 1; }
python3 "$root/scripts/help-pages.py" try "$root"
[ $# -eq 0 ] || need fp-utils
for bin in "$@"; do
    python3 "$root/scripts/help-pages.py" compiled "$root" "$bin"
    say "The compiled guides in $bin have every page"
done
