#!/usr/bin/env bash
# mutation.sh [library|tool] [FAULTS]: installs what is missing and tests the tests of the library, of what the tool reads
# its input with, or of both in turn: puts one small fault at a time into a copy, about 400 of them each or as many as the
# argument says, spread evenly over all files, and runs the tests until one fails.
#
# A fault with which it does not compile does not count. Prints the faults that no test has noticed, and fails if these
# are more than 5 %. What mutation/equivalent.txt explains counts apart: a fault that changes nothing. What noticed each
# of the others is in build/mutation/library.verdicts or tool.verdicts. Takes about half an hour each on two cores.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

case ${1:-} in
    library | tool) PARTS=("$1"); shift ;;
    *) PARTS=(library tool) ;;
esac
readonly MOST=${1:-400} AIM=95 WORKERS=2 PARTS
readonly WORK=$PWD/build/mutation
[[ $MOST =~ ^[1-9][0-9]*$ && $# -le 1 ]] || { echo "usage: mutation.sh [library|tool] [FAULTS]" >&2; exit 2; }
# A fault can take all memory, or fill the disk: many times what the tests take without one.
readonly LIMIT_KB=4000000

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${MUTATION_PACKAGES[@]}"
# The workers share what they build. It may say where another worker has the examples, which are the same.
export CCACHE_DIR=${CCACHE_DIR:-$WORK/ccache} CCACHE_NOHASHDIR=1 CCACHE_IGNOREOPTIONS="-DVIG_SOURCE_DIR=*"

# use PART: what is built first, the tests, and the files with the faults.
use() {
    if [ "$1" = library ]; then
        TARGET=vig_internal
        TESTS=(rulesengine_test actions_test lookup_test parsers_test manager_test robustness_test
            realtime_test)
        FILES=('os/*.h' 'rulesengine/*.h' 'rulesengine/*.cpp' 'vig/*.h' 'vig/*.cpp')
    else
        TARGET=vig_tool
        # The tool itself stands for the transcripts of what it prints.
        TESTS=(tools_test fleet_test vig_cli)
        FILES=('tools/vig/events/RecordParser.*' 'tools/vig/events/LineReader.*' 'tools/vig/events/ByteSource.*' 'tools/vig/test/Expectation.*'
            'tools/vig/fleet/FleetSummary.*' 'tools/vig/fleet/FleetSummaryReader.*')
    fi
}

# The tests in the order in which they are tried for a file: those of its own folder first, the slowest last.
tests_of() {
    local own
    case $1 in
        vig/WatcherSleep.cpp) own=realtime_test ;; # the others have another in its place
        vig/base/* | vig/functions/* | vig/actions/*) own=actions_test ;;
        vig/parsers/*) own=parsers_test ;;
        vig/*) own=manager_test ;;
        tools/vig/fleet/*) own=fleet_test ;;
        tools/*) own=tools_test ;;
        *) own=rulesengine_test ;;
    esac
    printf '%s\n' "$own" "${TESTS[@]}" | awk '!seen[$0]++ && ($0 != "realtime_test" || NR == 1)'
}

# build WORKER JOBS TARGET...
build() {
    CCACHE_BASEDIR=$WORK/$1/source nice ninja -j "$2" -C "$WORK/$1/build" "${@:3}" >"$WORK/$1/log" 2>&1
}

# run WORKER TEST LIMIT: with that many seconds at most. Left out are the random mutations of documents, of which most
# of the time would go into those faults that nothing notices. What a test leaves behind that has ended too early goes
# with the next run.
run() {
    local command=("$WORK/$1/build/tests/$2" --gtest_fail_fast
        --gtest_filter=-HostileText.AHundredThousandMutationsAreSurvived)
    if [ "$2" = vig_cli ]; then
        command=(env "PATH=$WORK/$1/build/tools/vig:$PATH" "VIG_SOURCE=$WORK/$1/source"
            cram3 --shell=bash "$WORK/$1/source/tests/tools")
    fi
    rm -rf "$WORK/$1/tmp"
    mkdir "$WORK/$1/tmp"
    (
        ulimit -c 0 -v "$LIMIT_KB" -f "$LIMIT_KB"
        TMPDIR=$WORK/$1/tmp nice timeout "$3" "${command[@]}"
    ) >"$WORK/$1/log" 2>&1 </dev/null
}

# A worker has a copy of the sources, and a build of it without optimisation, warnings or information for debuggers, in
# which a fault that reads what is not there ends the test.
prepare() {
    local source=$WORK/$1/source build=$WORK/$1/build
    rm -rf "$source"
    mkdir -p "$source"
    git ls-files -z | xargs -0 cp --parents --target-directory "$source"
    CCACHE_BASEDIR=$source cmake -S "$source" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
        -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -w -D_GLIBCXX_ASSERTIONS" -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld >/dev/null
    build "$1" "$WORKERS" "${TESTS[@]}" || { tail -n 40 "$WORK/$1/log" >&2; return 1; }
}

# A fault can be a loop without end, so that each test gets a limit: many times the seconds that it takes without one.
measure() {
    local test
    for test in "${TESTS[@]}"; do
        SECONDS=0
        run "$1" "$test" 600 || { tail -n 40 "$WORK/$1/log" >&2; echo "without any fault, $test fails" >&2; return 1; }
        echo $((5 * SECONDS + 15)) >"$WORK/$1/$test.limit"
    done
}

# verdict WORKER FILE: prints what notices the fault that is in the worker's sources: nothing, if nothing does.
verdict() {
    local test status
    build "$1" 1 "$TARGET" || { echo compiler; return; }
    for test in $(tests_of "$2"); do
        build "$1" 1 "$test" || {
            # A test that is evaluated by the compiler has noticed the fault; any other error is the fault's own.
            grep -q 'static assertion' "$WORK/$1/log" && echo "$test, as it is compiled" || echo compiler
            return
        }
        status=0
        run "$1" "$test" "$(cat "$WORK/$1/$test.limit")" || status=$?
        case $status in
            0) ;;
            124) echo "$test, which does not end"; return ;;
            *) echo "$test"; return ;;
        esac
    done
}

# Takes every line of the list of faults that is this worker's.
work() {
    local worker=$1 file number line change text
    while IFS=$'\t' read -r file number line change text; do
        "$WORK/mutants" "$file" "$number" >"$WORK/$worker/source/$file"
        printf '%s\t%s\t%s\t%s\t%s\n' "$(verdict "$worker" "$file")" "$file" "$line" "$change" "$text"
        cp "$file" "$WORK/$worker/source/$file"
    done < <(awk -v worker="$worker" -v workers="$WORKERS" 'NR % workers == worker' "$WORK/faults")
}

# in_parallel COMMAND: with each worker; fails if one fails, once all have ended.
in_parallel() {
    local worker workers=() status=0
    for ((worker = 0; worker < WORKERS; ++worker)); do
        "$1" "$worker" >"$WORK/$worker.$1" &
        workers+=($!)
    done
    for worker in "${workers[@]}"; do
        wait "$worker" || status=1
    done
    return "$status"
}

# report PART: fails below the aim. The faults explained stand in lines "file: change: text", followed by indented reasons.
report() {
    awk -v part="$1" -v aim="$AIM" -F '\t' '
        function report(name, kind) {
            counted = count[kind, "noticed"] + count[kind, "survived"]
            share = counted == 0 ? 0 : 100 * count[kind, "noticed"] / counted
            printf "%s: %d noticed, %d survived, %d explained as equivalent, %d not compiled: %.1f %% noticed\n", name,
                   count[kind, "noticed"], count[kind, "survived"], count[kind, "equivalent"], count[kind, "refused"], share
        }
        FNR == NR { if ($0 !~ /^( |#|$)/) explained[$0] = 1; next }
        {
            what = ($2 ": " $4 ": " $5) in explained ? "equivalent" : "survived"
            if ($1 != "") what = $1 == "compiler" ? "refused" : "noticed"
            ++count["all", what]
            ++count[$2 ~ /\.h$/ ? "headers" : "sources", what]
        }
        what == "survived" { print "survived  " $2 ":" $3 ": " $4 ": " $5 }
        END {
            report("in headers of the " part, "headers")
            report("in sources of the " part, "sources")
            report("in all of the " part, "all")
            exit share < aim
        }' mutation/equivalent.txt "$WORK/$1.verdicts"
}

# faults: all that could be made in the files of the part in use, each in a line.
faults() {
    local file
    git ls-files "${FILES[@]}" |
        while read -r file; do
            "$WORK/mutants" "$file" | sed "s|^|$file\t|"
        done
}

mkdir -p "$WORK"
g++ -std=c++20 -O1 mutation/Mutants.cpp -o "$WORK/mutants"
# What is explained must be there to be explained: its line may have been changed, or its file moved.
for part in library tool; do
    use "$part"
    faults
done | awk -F '\t' '
    FNR == NR { possible[$1 ": " $4 ": " $5] = 1; next }
    !/^( |#|$)/ && !($0 in possible) { print "mutation/equivalent.txt explains a fault that cannot be made: " $0; stale = 1 }
    END { exit stale }' - mutation/equivalent.txt >&2
status=0
for part in "${PARTS[@]}"; do
    use "$part"
    faults >"$WORK/all"
    awk -v most="$MOST" -v all="$(wc -l <"$WORK/all")" 'int(NR * most / all) > int((NR - 1) * most / all)' \
        "$WORK/all" >"$WORK/faults"
    for ((worker = 0; worker < WORKERS; ++worker)); do
        prepare "$worker"
    done
    in_parallel measure
    in_parallel work
    sort "$WORK"/*.work >"$WORK/$part.verdicts"
    report "$part" || status=1
done
((status == 0))
