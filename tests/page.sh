#!/usr/bin/env bash
# page.sh [SCREENSHOTS]: checks the types of the replay page's program, and tries pages that the release build makes in a
# browser. An argument names a folder for pictures of them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

install_packages "${BUILD_PACKAGES[@]}" "${PICTURE_PACKAGES[@]}" "${PAGE_PACKAGES[@]}"
tsc --project tools/vig/page
build_preset release vig_cli
# Debian's Python, which has the packages of Debian; texts are UTF-8, whatever the locale says.
PYTHONUTF8=1 /usr/bin/python3 -B tests/tools/page/browser_test.py build/release/tools/vig/vig . "$@"
