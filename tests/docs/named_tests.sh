#!/usr/bin/env bash
# Fails unless every test that a page (the second argument) names as `Suite.Name` is in the tests (the first argument).
set -euo pipefail

named=$(grep -oE "\`[A-Z][A-Za-z]+\.[A-Z][A-Za-z0-9]+\`" "$2" | tr -d "\`" | sort -u)
missing=0
while IFS=. read -r suite name; do
    grep -rqE "TEST(_F)?\($suite, $name\)" "$1" || { echo "no such test: $suite.$name"; missing=1; }
done <<<"$named"
echo "$(wc -l <<<"$named") tests named"
exit "$missing"
