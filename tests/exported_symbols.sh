#!/usr/bin/env bash
# Fails unless the library shows its clients the exported classes and nothing else, each symbol with its version.
# Arguments: the library, and the symbols file of its Debian package, which is made of the list of those classes.
set -euo pipefail

symbols=$(nm --dynamic --defined-only --with-symbol-versions "$1" | cut -d ' ' -f 3 | sed 's/@@/@/' | grep -vxE 'VIG_[0-9]+')
mapfile -t patterns < <(sed -n 's/^ (regex)"\(.*\)" .*/\1/p' "$2")
[ "${#patterns[@]}" -gt 0 ]
foreign=$(grep -vE "$(IFS='|'; echo "${patterns[*]}")" <<<"$symbols" || true)
if [ -n "$foreign" ]; then
    echo "visible, but not meant to be:"
    c++filt <<<"$foreign"
    exit 1
fi
for pattern in "${patterns[@]}"; do
    # Without run-time type information there is nothing to see of an interface.
    if ! grep -qE "$pattern" <<<"$symbols" && grep -q '^_ZTI' <<<"$symbols"; then
        echo "missing: $pattern"
        exit 1
    fi
done
echo "$(wc -l <<<"$symbols") symbols, all of them of exported classes"
