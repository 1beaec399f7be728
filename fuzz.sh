#!/usr/bin/env bash
# fuzz.sh [SECONDS [SEED]]: installs what is missing, builds the fuzz targets and runs each for so many seconds (60), two
# at a time. Fails, and names the input, if one of them finds something. The same seed tries much the same inputs again,
# another one by default. See fuzz/README.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

readonly SECONDS_EACH=${1:-60} SEED=${2:-0}
readonly FOUND=build/fuzz-found

# Leaks are looked for at the end, which is much faster than after each text.
readonly OPTIONS=(
    -max_total_time="$SECONDS_EACH" -seed="$SEED" -mutate_depth=1 -entropic=0 -dict=fuzz/json.dict
    -timeout=30 -rss_limit_mb=1024 -malloc_limit_mb=256 -detect_leaks=0 -print_final_stats=1 -print_funcs=0
)

# fuzz TARGET: what it finds interesting goes to FOUND, where the next run begins with it; what it finds wrong too.
fuzz() {
    local target=$1 longest=4096
    if [ "$target" = documents ]; then
        longest=32768 # room for a piece that is repeated as often as documents may be nested
    fi
    mkdir -p "$FOUND/$target"
    rm -f "$FOUND/$target"-*
    build/fuzz/fuzz/fuzz_"$target" "${OPTIONS[@]}" -max_len="$longest" -artifact_prefix="$FOUND/$target-" "$FOUND/$target" \
        "fuzz/corpus/$target" >"$FOUND/$target.log" 2>&1 </dev/null || touch "$FOUND/$target-failed"
}

# report TARGET: a row of the table; fails if the target has found something.
report() {
    local target=$1 log=$FOUND/$1.log
    awk -v target="$target" '
        /^stat::number_of_executed_units/ { runs = $2 }
        /^stat::average_exec_per_sec/ { speed = $2 }
        /^stat::peak_rss_mb/ { memory = $2 }
        / cov: / { edges = $4; features = $6 }
        END { printf "%-10s %11d %8d %7d MB %7d %9d\n", target, runs, speed, memory, edges, features }' "$log"
    if [ -e "$FOUND/$target-failed" ]; then
        tail -n 40 "$log" >&2
        echo "fuzz_$target has failed:" "$FOUND/$target"-* >&2
        return 1
    fi
}

install_packages "${BUILD_PACKAGES[@]}" "${FUZZ_PACKAGES[@]}"
build_preset fuzz vig_fuzz

readonly TARGETS=(decide documents engine events layouts)
mkdir -p "$FOUND"
for target in "${TARGETS[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge 2 ]; do
        wait -n
    done
    fuzz "$target" &
done
wait

status=0
printf '%-10s %11s %8s %10s %7s %9s\n' target executions a-second memory edges features
for target in "${TARGETS[@]}"; do
    report "$target" || status=1
done
exit "$status"
