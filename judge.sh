#!/usr/bin/env bash
# judge.sh [DOCUMENTS [SEED]]: installs what is missing, builds the tool, and holds what it decides about so many random
# documents (10000) against a second way to decide it, tests/judge/semantics.py, with the solver z3. Fails, and
# leaves the documents in build/judge-found, if they differ. The same seed makes the same documents again.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

readonly DOCUMENTS=${1:-10000} SEED=${2:-0}

install_packages "${BUILD_PACKAGES[@]}" "${JUDGE_PACKAGES[@]}"
build_preset release vig_cli
rm -rf build/judge-found
tests/judge/judge.py build/release/tools/vig/vig "$DOCUMENTS" --seed "$SEED" --keep build/judge-found
