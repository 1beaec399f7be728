#!/usr/bin/env bash
# Fails if the library that package.sh has built differs in its binary interface from the one that was written down,
# and says in what. --update: writes it down anew; docs/linking.md says what that means for the version.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

written=vig/libvig.abi
if [ "$(dpkg --print-architecture)" != amd64 ]; then
    echo "The binary interface is written down for amd64 alone: it is not compared here." >&2
    exit 0
fi
install_packages "${PACKAGE_CHECK_PACKAGES[@]}"
# This one still has what the packages keep apart: the names and the layout of the types.
library=$(compgen -G 'build/packages/source/obj-*/vig/libvig.so.?.*') || give_up "Nothing is built: run ./package.sh first."
headers=build/packages/source/debian/libvig-dev/usr/include/vig

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The insides of the standard library's classes, twenty times as much, are the business of that library.
cat >"$work/insides" <<'END'
[suppress_type]
  name_regexp = ^(__gnu_cxx|fmt|Json|com|android)::|^std::(_[A-Z]|__[^c]|__c[^x]|.*>::|weak_ptr|shared_ptr<.*Comparator|initializer_list|allocator|pair<|char_traits|type_info|.*_ordering|.*_tag)
  drop = yes
END
abidw --suppressions "$work/insides" --headers-dir "$headers" --drop-private-types --exported-interfaces-only \
    --type-id-style hash --no-show-locs --no-corpus-path --no-comp-dir-path --no-parameter-names --no-elf-needed \
    --no-write-default-sizes --out-file "$work/libvig.abi" "$library"

if [ "${1:-}" = --update ]; then
    cp "$work/libvig.abi" "$written"
elif ! abidiff --no-default-suppression --harmless --leaf-changes-only "$written" "$work/libvig.abi"; then
    give_up "The binary interface is another: read docs/linking.md on what that means, and run $0 --update."
fi
