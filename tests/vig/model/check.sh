#!/usr/bin/env bash
# Tries every order of the steps of manager.pml, in scenarios that are small enough for that, and prints how many states
# there are. Fails if one of them breaks a promise. An argument names another model.
set -euo pipefail
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/packages.sh
. "$folder/../../../scripts/packages.sh"

model=$(realpath "${1:-$folder/manager.pml}")
install_packages "${MODEL_PACKAGES[@]}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# explored NAME DEFINITION...
explored() {
    local name=$1
    shift
    mkdir "$work/$name"
    cd "$work/$name"
    spin -a "${@/#/-D}" "$model" >spin.log || { cat spin.log; return 1; }
    gcc -O1 -DSAFETY -DVECTORSZ=1024 -DMEMLIM=2048 -o pan pan.c
    ./pan -m100000 -n >pan.log
    if ! grep -q 'errors: 0$' pan.log || grep -qE '^error|Search not completed' pan.log; then
        cat pan.log
        ./pan -r "$(basename "$model").trail" || true
        echo "$name: a promise is broken" >&2
        return 1
    fi
    awk -v name="$name" '/states, stored/ { printf "%-58s %9d states, every promise kept\n", name ":", $1 }' pan.log
    touch kept
}

# explore NAME DEFINITION...: two at a time.
count=0
explore() {
    while [ "$(jobs -rp | wc -l)" -ge 2 ]; do
        wait -n || true
    done
    explored "$@" &
    count=$((count + 1))
}

explore "register against poll" CALLS_WITHIN=0 NOTIFIERS=0
explore "deregister against first delivery" NOTIFIERS=0
explore "destroy against notification" CALLS_A=1 CALLS_B=0 NOTIFIERS=2 CHECKS=1
explore "destroy against registration of the listener" CALLS_B=0 NOTIFICATIONS=2 CHECKS=1
explore "threads that cannot be created" CALLS_B=1 CALLS_WITHIN=0 NOTIFIERS=0 CHECKS=1 THREADS_FAIL
# Here a client waits for the service as long as it takes, and until nobody works before it destroys the manager, so that
# neither brings an end to a wait that has none.
explore "removal that waits for notifications" CALLS_A=1 NOTIFICATIONS=2 CHECKS=1 REMOVAL_WAITS PATIENT
explore "deregistration against another notification" CALLS_A=1 CALLS_B=0 NOTIFIERS=2 CHECKS=1 REMOVAL_WAITS PATIENT
explore "a library that holds a lock while it notifies" CALLS_A=1 NOTIFICATIONS=2 CHECKS=1 LIBRARY_LOCKS PATIENT
wait
[ "$(find "$work" -name kept | wc -l)" -eq "$count" ]
