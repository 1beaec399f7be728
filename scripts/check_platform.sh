#!/usr/bin/env bash
# check_platform.sh FOLDER: goes through the checklist of docs/porting.md with the platform in the folder, in
# build/checked_platform, and says what is missing.
set -euo pipefail
# shellcheck source=scripts/packages.sh
. "$(dirname "${BASH_SOURCE[0]}")/packages.sh"

[ "$#" -eq 1 ] || give_up "Name the folder of the platform, and nothing else: these are $# arguments."
folder=$(realpath -- "$1") build=$PROJECT/build/checked_platform
for file in CMakeLists.txt SeamDriver.cpp; do
    [ -e "$folder/$file" ] || give_up "There is no $file in $folder; docs/porting.md says what it is for."
done
install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
require_build_folder

# mistakes LOG: what went wrong in a step, and what docs/porting.md says of the calls that are named there.
mistakes() {
    local found word
    found=$(grep -E -A 1 'error:|undefined reference|No target' "$1" | grep -vE '^ *[0-9]* \||^--|^make' | awk '!seen[$0]++ && ++lines <= 8') ||
        found=$(grep -A 4 'Failure$' "$1" | head -n 15) || found=$(tail -n 15 "$1")
    printf '%s\n' "$found"
    if [[ $found == *"undefined reference"* ]]; then
        echo "If the platform defines these, it hides them: see CXX_VISIBILITY_PRESET in docs/porting.md."
    fi
    grep -oE '\w{4,}' <<<"$found" | sort -u | while read -r word; do
        grep -E "^\| \`[^\`]*\b$word\(|^In the namespace .*\b$word\b" "$PROJECT/docs/porting.md" || true
    done
}

# item WHAT COMMAND...: one line of the checklist.
item() {
    local what=$1 log=$PROJECT/build/checked_platform.log
    shift
    if "$@" >"$log" 2>&1 </dev/null; then
        echo "ok    $what"
    else
        echo "FAIL  $what"
        mistakes "$log"
        give_up "Mend that, and run this again; all that was said is in build/checked_platform.log."
    fi
}

tests() { ctest --test-dir "$build" --no-tests=error --timeout 100 --output-on-failure --tests-regex "$1"; }

echo "This builds in ${build#"$PROJECT/"}, which can take minutes."
item "configures" cmake -G Ninja -S "$PROJECT" -B "$build" -DVIG_PLATFORM_DIR="$folder" -DVIG_HOST=OFF -DVIG_TESTS=ON
item "builds, and has each type and call" cmake --build "$build" --parallel "$(nproc)"
item "symbols: the library shows no more than its own" tests '_symbols$|^hardening$'
item "a delivery, and another after a change" tests '^Seam.DocumentsAreDelivered$'
item "a trigger" tests '^Seam.ATriggerReachesTheService$'
echo "The library for this platform is ${build#"$PROJECT/"}/vig/libvig.so."
