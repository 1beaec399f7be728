#!/usr/bin/env bash
# Fails unless the files (the arguments), libraries or programs, are built so that a fault in memory is hard to use.
# Of a static library it looks only at whether each object can do with the processor's protection of branches.
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

# at_least_100 FILE WHAT INSTRUCTION: the system's own pieces have it in any case, but they are few.
at_least_100() {
    [ "$(objdump --disassemble --section=.text "$1" | grep -cE "[[:space:]]$3")" -ge 100 ] ||
        { echo "$1: $2"; failures=1; }
}

for file in "$@"; do
    if [[ $file == *.a ]]; then
        # The linker marks nothing that has one object without the mark.
        notes=$(readelf --notes --wide "$file")
        objects=$(grep -c '^File: ' <<<"$notes")
        marked=$(grep -cE 'x86 feature: IBT, SHSTK|AArch64 feature: BTI, PAC' <<<"$notes" || true)
        ((objects == marked)) || { echo "$file: of $objects objects $marked are marked"; failures=1; }
        continue
    fi
    segments=$(readelf --segments --wide "$file")
    dynamic=$(readelf --dynamic --wide "$file")
    symbols=$(readelf --dyn-syms --wide "$file")
    expect "$file" "relocated data stays writable" "$segments" GNU_RELRO
    expect "$file" "functions are looked up when first called" "$dynamic" '\(FLAGS\) .*BIND_NOW'
    expect "$file" "the stack may be executable" "$segments" 'GNU_STACK .* RW +0x'
    expect "$file" "its place in memory is fixed" "$(readelf --file-header "$file")" 'Type: +DYN'
    expect "$file" "no stack protector" "$symbols" __stack_chk_fail
    # The library copies nothing whose length only the run tells, and is built with the same options as the tool.
    if $fortified && [[ $file != *.so* ]]; then
        expect "$file" "no checked copies" "$symbols" '__[a-z]+_chk@'
    fi
    case $(readelf --file-header "$file") in
        *X86-64*)
            expect "$file" "no mark of the shadow stack" "$(readelf --notes "$file")" 'x86 feature:.*SHSTK'
            at_least_100 "$file" "indirect calls may lead anywhere" endbr64
            ;;
        *AArch64*)
            at_least_100 "$file" "returns may lead anywhere" paciasp
            at_least_100 "$file" "indirect calls may lead anywhere" 'bti[[:space:]]+c'
            ;;
    esac
done
exit "$failures"
