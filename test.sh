#!/usr/bin/env bash
# Installs what is missing, builds, and runs all the tests but the slow ones and those that need
# Graphviz. Arguments go to ctest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
build_preset release -DVIG_TESTS=ON
ctest --test-dir build/release --no-tests=error --output-on-failure --parallel 2 --label-exclude 'slow|pictures' "$@"
