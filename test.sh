#!/usr/bin/env bash
# Installs what is missing, builds, and runs all the tests but the slow ones. Arguments go to ctest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

install_packages "${BUILD_PACKAGES[@]}"
build_preset release
ctest --test-dir build/release --output-on-failure --parallel 2 --label-exclude slow "$@"
