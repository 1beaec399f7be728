#!/usr/bin/env bash
# Installs what is missing and tests the tests of the library: puts one small fault at a time into a copy of it, about
# 400 of them or as many as the argument says, spread evenly over all files, and runs the tests until one fails.
#
# A fault with which the library does not compile does not count. Prints the faults that no test has noticed, and fails
# if these are more than 5 %. What mutation/equivalent.txt explains counts apart: a fault that changes nothing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

readonly MOST=${1:-400} AIM=95 WORKERS=2
readonly WORK=$PWD/build/mutation
# A fault can be a loop without end, or take all memory: many times what the tests take without one.
readonly LIMIT=90s LIMIT_KB=4000000

install_packages "${BUILD_PACKAGES[@]}" "${MUTATION_PACKAGES[@]}"
export CCACHE_NOHASHDIR=1

# The tests in the order in which they are tried for a file: those of its own folder first, the slowest last.
tests_of() {
    local own
    case $1 in
        vig/WatcherSleep.cpp) own=realtime_test ;; # the others have another in its place
        vig/actions/*) own=actions_test ;;
        vig/parsers/*) own=parsers_test ;;
        vig/*) own=manager_test ;;
        *) own=rulesengine_test ;;
    esac
    printf '%s\n' $own rulesengine_test actions_test parsers_test manager_test robustness_test | awk '!seen[$0]++'
}

# A worker has a copy of the sources, and a build of it without optimisation, warnings or information for debuggers.
prepare() {
    local source=$WORK/$1/source build=$WORK/$1/build
    mkdir -p "$source"
    git ls-files -z | xargs -0 cp --parents --target-directory "$source"
    CCACHE_BASEDIR=$source cmake -S "$source" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
        -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -w" -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld >/dev/null
    build "$1" vig_test_locale >/dev/null
}

build() {
    CCACHE_BASEDIR=$WORK/$1/source nice ninja -C "$WORK/$1/build" "${@:2}"
}

# verdict WORKER FILE: prints what notices the fault that is in the worker's sources: nothing, if nothing does.
verdict() {
    local test
    build "$1" vig_internal >/dev/null 2>&1 || { echo compiler; return; }
    for test in $(tests_of "$2"); do
        build "$1" "$test" >/dev/null 2>&1 || { echo "$test"; return; }
        (
            ulimit -v "$LIMIT_KB"
            LOCPATH=$WORK/$1/build/locale nice timeout "$LIMIT" "$WORK/$1/build/tests/$test" --gtest_fail_fast
        ) >/dev/null 2>&1 </dev/null || { echo "$test"; return; }
    done
}

# Takes every line of the list of faults that is this worker's.
work() {
    local worker=$1 file number line change text found
    prepare "$worker"
    found=$(verdict "$worker" os/)
    [ -z "$found" ] || { echo "without any fault, $found fails" >&2; return 1; }
    while IFS=$'\t' read -r file number line change text; do
        "$WORK/mutants" "$file" "$number" >"$WORK/$worker/source/$file"
        printf '%s\t%s\t%s\t%s\t%s\n' "$(verdict "$worker" "$file")" "$file" "$line" "$change" "$text"
        cp "$file" "$WORK/$worker/source/$file"
    done < <(awk -v worker="$worker" -v workers="$WORKERS" 'NR % workers == worker' "$WORK/faults")
}

mkdir -p "$WORK"
g++ -std=c++20 -O1 mutation/Mutants.cpp -o "$WORK/mutants"
git ls-files 'os/*.h' 'rulesengine/*.h' 'rulesengine/*.cpp' 'vig/*.h' 'vig/*.cpp' |
    while read -r file; do
        "$WORK/mutants" "$file" | sed "s|^|$file\t|"
    done >"$WORK/all"
awk -v most="$MOST" -v all="$(wc -l <"$WORK/all")" 'int(NR * most / all) > int((NR - 1) * most / all)' \
    "$WORK/all" >"$WORK/faults"

workers=()
for worker in $(seq 0 $((WORKERS - 1))); do
    work "$worker" >"$WORK/$worker.verdicts" &
    workers+=($!)
done
for worker in "${workers[@]}"; do
    wait "$worker"
done
sort "$WORK"/*.verdicts >"$WORK/verdicts"

# The faults explained stand in lines "file: change: text", followed by indented reasons.
awk -F '\t' -v aim="$AIM" '
    FNR == NR { if ($0 !~ /^( |#|$)/) explained[$0] = 1; next }
    $1 == "compiler" { ++refused; next }
    $1 != "" { ++noticed; next }
    ($2 ": " $4 ": " $5) in explained { ++equivalent; next }
    { ++survived; print "survived  " $2 ":" $3 ": " $4 ": " $5 }
    END {
        counted = noticed + survived
        share = counted == 0 ? 0 : 100 * noticed / counted
        printf "%d noticed, %d survived, %d explained as equivalent, %d not compiled: %.1f %% noticed\n",
               noticed, survived, equivalent, refused, share
        exit share < aim
    }' mutation/equivalent.txt "$WORK/verdicts"
