#!/usr/bin/env bash
# Fails unless the section "Where to change what" of CONTRIBUTING.md in the folder (the argument) names files that are
# there, and for another event type, action and function all that name one which is there, but for where it is made or
# only an example.
set -euo pipefail
cd "$1"

section() { awk -v marks="$1" -v title="$2" 'index($0, "#") == 1 { if ($1 <= marks) on = $0 == marks " " title } on' CONTRIBUTING.md; }
paths() { grep -oE "\`[^\` ]*/[^\` ]*\`" | tr -d "\`" | sort; }
failed=0
for path in $(section '##' 'Where to change what' | paths); do
    [ -e "$path" ] || { echo "no such file: $path"; failed=1; }
done
while IFS=: read -r kind text examples; do
    there=$(grep -rlE "$text" os rulesengine vig tools fuzz docs | grep -vE "^(vig/actions/|vig/functions/Pseudo|fuzz/corpus/)${examples:+|^($examples)$}" | sort)
    diff <(section '###' "$kind" | paths | grep -F . | grep -v ^tests/) - <<<"$there" || { echo "$kind: named (<), there (>)"; failed=1; }
done <<'END'
An event type:TelemetryEventEnd
An action:["`]TriggerVeloraCpu["`]:docs/warnings.md
A function:["`]PseudoRandomDouble["`]:docs/(warnings|performance).md|fuzz/json.dict|tools/vig/check/Mends.cpp
END
exit "$failed"
