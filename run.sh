#!/usr/bin/env bash
# Installs what is missing, builds, and runs: vig with the arguments given, or else the main job, which is ten
# seconds of watching this machine with an example document and then the replay of a recorded trace.
set -euo pipefail

# The arguments name files from where the caller stands, so that it stays there.
project=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/packages.sh
. "$project/scripts/packages.sh"
# shellcheck source=scripts/build.sh
. "$project/scripts/build.sh"

install_packages "${BUILD_PACKAGES[@]}"
# All that can be installed.
build_preset release vig vig_cli vig_help_pages
vig=$project/build/release/tools/vig/vig

if [ $# -gt 0 ]; then
    exec "$vig" "$@"
fi

echo "== vig watch examples/first-look.json --duration 10s: live processes of this machine"
"$vig" watch "$project/examples/first-look.json" --duration 10s
echo
echo "== vig run examples/memory-budget.json examples/trace.jsonl: a recorded trace"
"$vig" run "$project/examples/memory-budget.json" "$project/examples/trace.jsonl"
