#!/usr/bin/env bash
# Fails if the library (the argument) asks the system for what a document must never bring about: another program or
# thread of control, the network, a file changed, a timer, the end of the process, or a number read as in its language.
set -euo pipefail

never='abort|_?exit|_Exit|quick_exit|raise|t?g?kill|pthread_kill|v?fork|clone|system|popen|exec.*|posix_spawn.*|dlopen|ptrace'
never+='|socket|connect|bind|listen|accept4?|send.*|recv.*|f?writev?|pwrite.*|sendfile.*|v?d?f?printf|fputs|fputc|fopen.*|creat|truncate|ftruncate|unlink.*'
never+='|rename.*|remove|mk(dir|fifo|nod|temp|stemp).*|rmdir|(sym)?link(at)?|f?ch(mod|own).*|f?setxattr|mount|umount.*'
never+='|alarm|timer_create|timerfd_create|setitimer|signal|sigaction|setenv|putenv|ioctl|syscall'
never+='|strto(d|f|ld|l|ll|ul|ull|imax|umax)|ato(f|i|l|ll)|v?f?s?scanf|__isoc[0-9]+_.*'
never+='|_ZNSt(14basic_ofstream|13basic_fstream|13basic_filebuf).*|_ZNSi10_M_extract.*|_ZNSirsER.*'

asked=$(nm --dynamic --undefined-only "$1" | awk '{ sub(/@.*/, "", $NF); print $NF }')
[ -n "$asked" ] || { echo "asks for nothing at all"; exit 1; }
found=$(grep -xE "$never" <<<"$asked" || true)
if [ -n "$found" ]; then
    echo "asked of the system, but never needed:"
    echo "$found"
    exit 1
fi
