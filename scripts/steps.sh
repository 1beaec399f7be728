# shellcheck shell=bash
# Sourced by the scripts: says what is done, and does what takes long with one line on the terminal and the rest in a log in
# build/.

PROJECT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# step NAME: says what follows, and how long it took so far.
step() {
    printf '\n== %s (%s s)\n' "$1" "$SECONDS"
}

# give_up SENTENCE: ends the script with what a person has to do.
give_up() {
    printf '%s: %s\n' "${0##*/}" "$1" >&2
    exit 1
}

# require_build_folder: ends the script unless this user can write all of build/.
require_build_folder() {
    local problem foreign
    problem=$(mkdir -p "$PROJECT/build" 2>&1) ||
        give_up "${problem#mkdir: }; make room, or run this in a copy of the project that is yours."
    # An installation leaves the list of its files, which is no part of the build.
    foreign=$(find "$PROJECT/build" ! -name install_manifest.txt ! -uid "$(id -u)" ! -writable -print -quit)
    [ -z "$foreign" ] ||
        give_up "$foreign belongs to $(stat -c %U "$foreign"); remove the folder build as that user or as root."
}

# logged LOG COMMAND...: its output goes to that file of build/, of which the end is shown if it fails. It gets nothing
# of the standard input, which is the tool's.
logged() {
    local log=$PROJECT/build/$1 status=0
    shift
    "$@" >"$log" 2>&1 </dev/null || status=$?
    [ "$status" -eq 0 ] || tail -n 30 "$log" >&2
    return "$status"
}

# disk_advice LOG: what to do if a step has failed because a disk is full, which may have kept its message from the log
# as well; fails if none is.
disk_advice() {
    local space folder
    read -r space folder < <(
        df --output=avail,file "$PROJECT/build" "${TMPDIR:-/tmp}" /var/cache/apt /var/lib/dpkg /usr 2>/dev/null |
            tail -n +2 | sort -n)
    if [ "$space" -lt 2000 ] || grep -qE 'No space left on device|enough free space' "$1"; then
        echo "A disk is full, most likely that of $folder: make room there, and run this again."
    else
        return 1
    fi
}
