#!/usr/bin/env bash
# Runs the commands of the console blocks in a page, in a folder, and holds what they print against what the page says:
# console_blocks.sh FOLDERS_OF_PROGRAMS FOLDER PAGE. With --update as a fourth argument, writes it into the page instead.
# A block "json NAME" is a file that the commands find there, and a block "cpp NAME" is that file of the folder.
set -euo pipefail

folder=$(realpath "$2") page=$(realpath "$3")
PATH=$(tr : '\n' <<<"$1" | xargs -d '\n' realpath | paste -sd :):$PATH
export PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
replayed=$work/replayed
# The commands may write files, and the folder may not be theirs to write to.
mkdir -p "$work/docs/tutorial"
find "$folder" -mindepth 1 -maxdepth 1 -type d -exec ln -s {} "$work/docs/tutorial" \;
find "$folder" -mindepth 1 -maxdepth 1 -type f -exec cp {} "$work/docs/tutorial" \;
ln -s "$folder"/../../examples "$work"
folder=$work/docs/tutorial
awk -v folder="$folder" '/^```/ { file = $1 == "```json" && NF == 2 ? folder "/" $2 : ""; next } file { print >file }' "$page"

commands=0 inside=false
while IFS= read -r line || [ -n "$line" ]; do
    if [ "$line" = '```console' ]; then
        inside=true
    elif [[ $line == '```cpp '* ]]; then
        printf '%s\n' "$line"
        cat "$folder/${line#* }"
        while IFS= read -r line && [ "$line" != '```' ]; do :; done
    elif [ "$line" = '```' ]; then
        inside=false
    elif $inside && [[ $line == '$ '* ]]; then
        commands=$((commands + 1))
        printf '%s\n' "$line"
        status=0
        (cd "$folder" && bash -c "${line#'$ '}" 2>&1) || status=$? # a command that finds mistakes fails
        [ "$status" -ne 127 ] || { echo "there is no such program: ${line#'$ '}" >&2; exit 1; }
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
