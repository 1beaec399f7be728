#!/usr/bin/env bash
# rooms.sh: prints from which folders each folder of the library and of the tool includes; fails, and says where, if one
# includes from a folder that is not to its left, or if two headers give a class the same name: all have one namespace, and
# the linker takes one for the other without a word.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# A line for each folder, from left to right: its name, and the folders that it builds on.
folders() {
    printf '%s\n' os 'rulesengine os' 'vig/base rulesengine' 'vig/functions vig/base' 'vig/actions vig/functions' 'vig/parsers vig/actions' 'vig vig/parsers'
    sed -nE 's/^vig_add_room\((.*)\)$/\1/p' tools/vig/CMakeLists.txt | sed -E 's|[^ ]+|tools/vig/&|g; s|$| vig|'
    echo "tools/vig $(sed -nE 's|^vig_add_room\(([^ )]*).*|tools/vig/\1|p' tools/vig/CMakeLists.txt | xargs)"
}

grep -rHoE --include='*.h' --include='*.cpp' '^#include "(os|rulesengine|vig|tools)/[^"]+"' os rulesengine vig tools/vig |
    sed -E 's/:#include "/ /; s/"$//' |
    awk '
        function folder(path) { sub(/\/[^\/]*$/, "", path); return path }
        NR == FNR {
            order[++count] = $1
            seen[$1] = 1
            for (i = 2; i <= NF; ++i) {
                if (!($i in seen)) { print "error: " $1 " is said to build on " $i ", which is not to its left" >"/dev/stderr"; wrong = 1 }
                known[$1, $i] = 1
                for (j = 1; j < count; ++j) if (($i, order[j]) in known) known[$1, order[j]] = 1
            }
            next
        }
        {
            from = folder($1); to = folder($2)
            if (from == to) next
            ++arrows[from, to]
            if (!((from, to) in known)) { print $1 ": error: " to " is not to the left of " from ": " $2 >"/dev/stderr"; wrong = 1 }
        }
        END {
            for (i = 1; i <= count; ++i) {
                line = ""
                for (j = 1; j <= count; ++j)
                    if ((order[i], order[j]) in arrows) line = line "  " order[j] " (" arrows[order[i], order[j]] ")"
                if (line != "") print order[i] " ->" line
            }
            exit wrong
        }' <(folders) -

grep -rHoE --include='*.h' '^(class|struct|enum class)( VIG_EXPORT)? [A-Za-z]+[^;]*$' os rulesengine vig tools/vig |
    sed -E 's/:(class|struct|enum class)( VIG_EXPORT)? ([A-Za-z]+).*/ \3/' |
    awk '
        $2 in first { print $1 ": error: " $2 " is a name that " first[$2] " gives, too" >"/dev/stderr"; wrong = 1 }
        { first[$2] = $1 }
        END { exit wrong }'
