# shellcheck shell=bash
# Sourced by the scripts: configures and builds a preset.

# build_preset PRESET [TARGET...]: quiet unless something is wrong.
build_preset() {
    local preset=$1 log
    shift
    log=$(mktemp)
    if ! { cmake --preset "$preset" && cmake --build "build/$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}
