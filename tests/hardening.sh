#!/usr/bin/env bash
# Fails unless the files (the arguments), a library or a program, are built so that a fault in memory is hard to use.
# --fortified: the build is one in which the C library checks the lengths of what is copied, and by a compiler that leaves
# some of it to the run (clang sees for itself that ours are right).
set -euo pipefail

fortified=false
if [ "$1" = --fortified ]; then
    fortified=true
    shift
fi
failures=0

# expect FILE WHAT TEXT PATTERN
expect() {
    grep -qE "$4" <<<"$3" || { echo "$1: $2"; failures=1; }
}

for file in "$@"; do
    segments=$(readelf --segments --wide "$file")
    dynamic=$(readelf --dynamic --wide "$file")
    symbols=$(readelf --dyn-syms --wide "$file")
    expect "$file" "relocated data stays writable" "$segments" GNU_RELRO
    expect "$file" "functions are looked up when first called" "$dynamic" '\(FLAGS\) .*BIND_NOW'
    expect "$file" "the stack may be executable" "$segments" 'GNU_STACK .* RW +0x'
    expect "$file" "its place in memory is fixed" "$(readelf --file-header "$file")" 'Type: +DYN'
    expect "$file" "no stack protector" "$symbols" __stack_chk_fail
    if $fortified; then
        expect "$file" "no checked copies" "$symbols" '__[a-z]+_chk@'
    fi
    if readelf --file-header "$file" | grep -q X86-64; then
        expect "$file" "no mark of the shadow stack" "$(readelf --notes "$file")" 'x86 feature:.*SHSTK'
        # The system's own pieces begin so in any case, but they are few.
        [ "$(objdump --disassemble --section=.text "$file" | grep -c endbr64)" -ge 100 ] ||
            { echo "$file: indirect calls may lead anywhere"; failures=1; }
    fi
done
exit "$failures"
