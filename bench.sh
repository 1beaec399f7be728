#!/usr/bin/env bash
# Installs what is missing, builds the benchmark, runs it, and writes its table to docs/performance.md. With --smoke:
# does everything that is measured once, measures nothing and writes nothing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

install_packages "${BUILD_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
# The same objects as the release build's.
build_preset release -DVIG_BENCH=ON vig_bench

if [ "${1:-}" = --smoke ]; then
    exec build/release/bench/vig_bench --smoke
fi

table=build/bench.md
build/release/bench/vig_bench | tee "$table"
# The table stands between two marks; what is said about it is written by hand.
sed -i -e "/^<!-- measured -->$/,/^<!-- end -->$/{/^<!-- measured -->$/r $table" -e '/^<!-- /!d}' docs/performance.md
