#!/usr/bin/env bash
# judge.sh [DOCUMENTS [PAIRS [SEED]]]: installs what is missing, builds the tool, and holds what it decides about so many
# random documents (10000), and about so many pairs of one and a change of it (3000), against a second way to decide it,
# in tests/judge, with the solver z3. Fails, and leaves the documents in build/judge-found, if they differ. The same seed
# makes the same documents again.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

readonly DOCUMENTS=${1:-10000} PAIRS=${2:-3000} SEED=${3:-0}

install_packages "${BUILD_PACKAGES[@]}" "${JUDGE_PACKAGES[@]}"
build_preset release vig_cli agreement
rm -rf build/judge-found
failed=0
tests/judge/judge.py build/release/tools/vig/vig "$DOCUMENTS" --seed "$SEED" --keep build/judge-found/documents || failed=1
tests/judge/pairs.py build/release/tools/vig/vig build/release/tests/agreement "$PAIRS" --seed "$SEED" \
    --keep build/judge-found/pairs || failed=1
exit "$failed"
