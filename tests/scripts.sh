#!/usr/bin/env bash
# Tries what the scripts share on a made-up machine: its programs are those that are written or named here, and no others.
# shellcheck disable=SC2016,SC2053
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
project="$work/a project"
mkdir "$work/fakes" "$work/bin" "$project"
cp -r "$(dirname "${BASH_SOURCE[0]}")/../scripts" "$project"
for name in awk bash cat df dirname env find grep mkdir rm sh sort tail; do
    ln -s "$(type -P "$name")" "$work/bin"
done

# fake NAME COMMANDS: a program of the machine. Not in the folder of links, which lead to the real ones.
fake() {
    printf '#!/bin/sh\n%s\n' "$2" >"$work/fakes/$1"
    chmod +x "$work/fakes/$1"
}

# expect WHAT PATTERN COMMAND: that what the command says ends like this, with the scripts sourced.
expect() {
    local said
    said=$(PATH=$work/fakes:$work/bin bash -c "set -euo pipefail
        . '$project/scripts/packages.sh'
        . '$project/scripts/build.sh'
        $3" me 2>&1 </dev/null || true)
    [[ $said == $2 ]] || { printf '%s:\n%s\n' "$1" "$said"; failed=1; }
}

failed=0
fake dpkg 'echo amd64'
fake dpkg-query 'printf "%s\n" "here amd64 installed" "both amd64 installed" "both arm64 installed" \
    "foreign arm64 installed" "every all installed" "removed amd64 config-files"; exit 1'
fake apt-get 'echo "apt-get is called"; exit 100'
fake id 'echo 0'
fake nproc 'echo 2'

expect 'what is missing' $'foreign\nremoved\nunknown' 'missing_packages here both foreign every removed unknown'
expect 'nothing is missing' '' 'install_packages here both every'
expect 'any failure' $'Installing foreign, *apt-get is called\nme: Packages could not be installed: mend what *a project/build/packages.log*' \
    'install_packages here foreign'
fake apt-get 'echo "  Temporary failure resolving somewhere"; exit 100'
expect 'no network' $'Installing*\nme: No packages: see that there is a network*' 'install_packages foreign'
fake apt-get 'echo "W: Failed to fetch it"; echo "E: You do not have enough free space in somewhere"; exit 100'
expect 'no room' $'Installing*\nme: A disk is full, most likely that of *' 'install_packages foreign'
fake apt-get '[ "$1" = update ] || { umask; cat; }'
expect 'for all users, and without what is for the tool' $'Installing*packages.log\n0022\n.' \
    "umask 077; echo events | install_packages foreign; cat \"\$PROJECT/build/packages.log\"; printf ."
fake apt-get 'for option; do case $option in Dir::Cache=*) : >"${option#*=}/archives/a.deb" ;; esac; done'
fake dpkg-deb 'echo "dpkg-deb $*"'
expect 'packages of another architecture' $'Unpacking packages of arm64 in build/arm64-root;*\ndpkg-deb -x *a project/build/arm64-root/apt/archives/a.deb *a project/build/arm64-root\n.' \
    'unpack_packages arm64 here; cat "$PROJECT/build/packages.log"; printf .'
expect 'they are there' '' 'unpack_packages arm64 here'
fake apt-get 'echo "E: Unable to locate package"; exit 100'
expect 'others are not' $'Unpacking*\nme: No packages: see that there is a network*' 'unpack_packages arm64 here there'
fake id 'echo 1000'
expect 'no sudo' $'me: There is no sudo: as root, run \'apt-get update && apt-get install --no-install-recommends foreign\', and then *' \
    'install_packages foreign'
fake sudo 'echo "sudo: a password is required"; exit 1'
expect 'a sudo that refuses' $'Installing*\nme: There is no sudo for 1000: as root, run \'apt-get update && *' \
    'install_packages foreign'

fake cmake 'echo "a.cpp: error"; exit 1'
expect 'a configuration that fails' $'a.cpp: error\nme: The build has failed: mend what *a project/build/release.log ends*' \
    'build_preset release all'
fake cmake 'echo "No space left on device"; exit 1'
expect 'a full disk' $'*\nme: A disk is full, *' 'build_preset release all'
fake cmake 'case "$*" in *" -n") echo "[1/2] a" ;; *--build*) echo "a.cpp: error"; exit 1 ;; esac'
expect 'a build that fails' $'Building in 1 steps (* on 2 cores); log in build/release.log\na.cpp: error\nme: The build has failed*' \
    'build_preset release all'
fake df 'printf "avail file\n9 elsewhere\n1 there\n5 here\n"'
expect 'a full disk that has no room for its message' $'*\nme: A disk is full, most likely that of there: *' \
    'build_preset release all'
fake cmake 'case "$*" in *--preset*) echo "configures" >>calls; echo "changed variables that require your cache to be deleted" ;; esac'
expect 'another compiler' $'configures\nconfigures' 'cd "$PROJECT"; build_preset release all; cat calls'
fake cmake ':'
expect 'nothing to build' '' 'build_preset release all'
fake find 'echo "$1/release"'
fake stat 'echo somebody'
expect 'a build of another user' 'me: */a project/build/release belongs to somebody; remove the folder build *' \
    'build_preset release all'
exit "$failed"
