#!/usr/bin/env bash
# Runs the commands of the console blocks in a page, in a folder, and holds what they print against what the page says:
# console_blocks.sh FOLDER_OF_VIG FOLDER PAGE. With --update as a fourth argument, writes it into the page instead.
set -euo pipefail

vig_folder=$(realpath "$1") folder=$2 page=$(realpath "$3")
export PATH=$vig_folder:$PATH
replayed=$(mktemp)
trap 'rm -f "$replayed"' EXIT

commands=0 inside=false
while IFS= read -r line || [ -n "$line" ]; do
    if [ "$line" = '```console' ]; then
        inside=true
    elif [ "$line" = '```' ]; then
        inside=false
    elif $inside && [[ $line == '$ '* ]]; then
        commands=$((commands + 1))
        printf '%s\n' "$line"
        (cd "$folder" && bash -c "${line#'$ '}" 2>&1) || true # a command that finds mistakes fails
        continue
    fi
    if ! $inside || [ "$line" = '```console' ]; then
        printf '%s\n' "$line"
    fi
done <"$page" >"$replayed"

[ "$commands" -gt 0 ] || { echo "no command in $page" >&2; exit 1; }
if [ "${4:-}" = --update ]; then
    cp "$replayed" "$page"
else
    diff "$page" "$replayed"
fi
