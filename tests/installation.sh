#!/usr/bin/env bash
# Installs a build (the argument, its folder) in another place, and fails unless all that belongs to the tool works there.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix="$work/some where"
# Names the component, which is the only one, so that the list of an earlier installation by root is left alone.
cmake --install "$1" --prefix "$prefix" --component Unspecified >/dev/null
cd "$prefix"

diff <(find . -type f -printf '%f\n' | sort) <(printf '%s\n' _vig libvig_platform.so vig vig vig.1 | LC_ALL=C sort)
[[ $(bin/vig --version) == vig\ * ]]
# The library is the one beside it, not that of the build.
[[ $(ldd bin/vig) == *"=> $prefix/bin/../lib"* ]]
[[ $(groff -man -Tascii share/man/man1/vig.1) == *"vig run"* ]]
bash -c '. share/bash-completion/completions/vig && complete -p vig >/dev/null'
[[ $(head -n 1 share/zsh/site-functions/_vig) == "#compdef vig" ]]
