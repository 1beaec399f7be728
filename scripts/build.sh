# shellcheck shell=bash
# Sourced by the scripts: configures and builds a preset.

# shellcheck source=scripts/steps.sh
. "$(dirname "${BASH_SOURCE[0]}")/steps.sh"

# build_preset PRESET [-DNAME=VALUE...] [TARGET...]: quiet when there is nothing to build.
build_preset() {
    local preset=$1 options=() targets=() each configure build log steps seconds
    for each in "${@:2}"; do
        if [[ $each == -D* ]]; then options+=("$each"); else targets+=("$each"); fi
    done
    configure=(cmake -S "$PROJECT" --preset "$preset" "${options[@]}")
    build=(cmake --build "$PROJECT/build/$preset" ${targets[0]:+--target "${targets[@]}"})
    log=$PROJECT/build/$preset.log
    require_build_folder
    logged "$preset.log" "${configure[@]}" || give_up "$(build_advice "$log")"
    # Where another compiler has built before, CMake begins anew, and forgets what else it was told.
    if grep -q 'require your cache to be deleted' "$log"; then
        logged "$preset.log" "${configure[@]}" || give_up "$(build_advice "$log")"
    fi
    steps=$("${build[@]}" -- -n | grep -c '^\[' || true)
    [ "$steps" -gt 0 ] || return 0
    seconds=$((steps * 4 / $(nproc)))
    echo "Building in $steps steps (about $((seconds / 60 + 1)) min on $(nproc) cores); log in build/$preset.log" >&2
    logged "$preset.log" "${build[@]}" || give_up "$(build_advice "$log")"
}

# build_advice LOG: what to do about a build that has failed.
build_advice() {
    disk_advice "$1" || echo "The build has failed: mend what $1 ends with, and run this again."
}
