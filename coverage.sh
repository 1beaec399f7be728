#!/usr/bin/env bash
# Installs what is missing, builds with counters, runs the tests, and prints which lines and branches of the library and
# of the tool they reach, and those that they do not. Fails below the aims at the end of this file.
#
# A line counts once, and a branch once for each way that it can go, however many instances of a template have it. Of
# the branches that the compiler adds, those that an exception takes out of a call are not counted, since no call of
# the library throws, nor those of lines without code of ours, such as the end of a scope. Assertions are left out of
# the build. What is in tests/, in platform/ and in the system's headers does not count.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${PICTURE_PACKAGES[@]}" "${COVERAGE_PACKAGES[@]}"
build_preset coverage
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage --output-on-failure --parallel 2 >build/coverage/tests.log ||
    { cat build/coverage/tests.log >&2; exit 1; }

# missing: of a table of gcovr, the rows in which something is missing; a long name stands in a line of its own.
missing() {
    awk '/^---/ { ++rules; next }
        rules == 3 && NF == 1 { name = $1; next }
        rules == 3 && /^ / { $0 = name $0 }
        rules == 3 && NF > 4'
}

# report NAME LINES BRANCHES FILTER...: fails if fewer percent than LINES and BRANCHES are reached.
report() {
    local name=$1 lines=$2 branches=$3 status=0
    shift 3
    local gcovr=(gcovr --root . --object-directory build/coverage "${@/#/--filter=}"
        --exclude-throw-branches --exclude-unreachable-branches)
    printf '\n== %s: what is not reached\n' "$name"
    "${gcovr[@]}" --json build/coverage.json || return 1
    gcovr --root . --add-tracefile build/coverage.json | missing
    gcovr --root . --add-tracefile build/coverage.json --branches | missing
    printf '\n== %s: at least %s %% of the lines and %s %% of the branches\n' "$name" "$lines" "$branches"
    gcovr --root . --add-tracefile build/coverage.json --print-summary --output build/coverage.txt \
        --fail-under-line "$lines" --fail-under-branch "$branches" || status=1
    return "$status"
}

status=0
report "the library" 100 95 os/ rulesengine/ vig/ || status=1
cat <<'REASONS'
Of the library's branches are left: the way out of a call by an exception, where the compiler has not marked it as one;
the default of a switch over all values of an enumeration; a second thread that meets a static variable as it is made,
and temporaries that were not made as others are destroyed, both added by the compiler; and a gate that is closed while
the watcher is at it, which the destructor waits for.
REASONS
report "the tool" 90 0 tools/vig/ || status=1
cat <<'REASONS'
Of the tool's lines are left, for the most part: what it answers when the system refuses a read, a thread or memory, when
a file changes as it is read, and when it is interrupted; the progress shown on a terminal, which the tests have none of;
"and so many more" at the end of long lists; and what another process runs that ends at once, before it has counted.
REASONS
exit "$status"
