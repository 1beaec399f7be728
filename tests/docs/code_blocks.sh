#!/usr/bin/env bash
# Fails unless each block "cpp" or "json" of a page stands, but for its indentation, in one of the files that are used:
# code_blocks.sh PAGE SOURCE...
set -euo pipefail

awk '
    { sub(/^ +/, "") }
    FNR == 1 { ++file }
    file > 1 { sources[file] = sources[file] "\n" $0; next }
    /^```/ { inside = $0 ~ /^```(cpp|json)$/; if (inside) { ++blocks; first[blocks] = FNR; text[blocks] = "\n" }; next }
    inside { text[blocks] = text[blocks] $0 "\n" }
    END {
        for (block = 1; block <= blocks; ++block) {
            found = 0
            for (each in sources) found = found || index(sources[each] "\n", text[block])
            if (!found) { print ARGV[1] ":" first[block] ": this block is in none of the sources"; wrong = 1 }
        }
        if (!blocks) { print "no block in " ARGV[1]; wrong = 1 }
        exit wrong
    }' "$@"
