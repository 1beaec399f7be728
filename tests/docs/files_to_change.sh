#!/usr/bin/env bash
# Fails unless the table of docs/how-it-works.md in the folder (the argument) names files that are there, and for another
# event type, action and function all that name one which is there, but for where it is made or only an example.
set -euo pipefail
cd "$1"

table=$(sed '1,/^## Where to change what/d' docs/how-it-works.md)
paths() { grep -oE "\`[^\`]*/[^\`]*\`" | tr -d "\`" | sort; }
failed=0
for path in $(paths <<<"$table"); do
    [ -e "$path" ] || { echo "no such file: $path"; failed=1; }
done
while read -r kind text examples; do
    there=$(grep -rlE "$text" os rulesengine vig tools fuzz docs | grep -vE "^(vig/actions/|vig/functions/Pseudo|fuzz/corpus/)${examples:+|^($examples)$}" | sort)
    diff <(grep "^| $kind" <<<"$table" | paths | grep -F . | grep -v ^tests/) - <<<"$there" || { echo "$kind: named (<), there (>)"; failed=1; }
done <<'END'
an.event.type TelemetryEventEnd
an.action ["`]TriggerVeloraCpu["`] docs/warnings.md
a.function ["`]PseudoRandomDouble["`] docs/(warnings|performance).md|fuzz/json.dict
END
exit "$failed"
