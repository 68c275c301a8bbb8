#!/usr/bin/env bash
# Makes sure that the locales named exist, for programs that are to run in another language:  scripts/locale.sh ja_JP.UTF-8
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

for locale in "$@"; do
    # The system tells the names with the code set in small letters and without its dash.
    plain=$(printf '%s' "$locale" | sed 's/UTF-8$/utf8/')
    grep -qix -e "$plain" -e "$locale" <<<"$(locale -a)" && continue
    need locales
    say "Generating the locale $locale"
    as_root localedef -i "${locale%.*}" -f "${locale#*.}" "$locale"
done
