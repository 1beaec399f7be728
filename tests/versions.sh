#!/usr/bin/env bash
# Fails unless what is written twice is the same: the version, in CMakeLists.txt and as the latest release in CHANGELOG.md;
# and what the packages are built with, in scripts/packages.sh and in debian/control.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

diff <(sed -nE 's/^project\(vig VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt) <(sed -nE 's/^## \[([0-9.]+)\] - .*/\1/p' CHANGELOG.md | head -n 1)
# A compiler is there wherever Debian's packages are built.
diff <(printf '%s\n' "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]/%/ <!nocheck>}" | grep -vxF g++ | LC_ALL=C sort) \
    <(sed -nE '/^Build-Depends:/,/^[^ ]/ s/^ (.*),$/\1/p' debian/control | grep -v debhelper | sed 's/ (.*)//' | LC_ALL=C sort)
