#!/usr/bin/env bash
# Tries examples/fleet with three workers of this machine, on a small fleet of which a part cannot be read: what comes out
# when a worker is killed, when the document is refused, when a partition kills its workers, and of Ctrl-C.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

install_packages "${BUILD_PACKAGES[@]}" "${FLEET_PACKAGES[@]}"
build_preset release vig_cli
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/bin" "$work/devices/sub folder"
# A plotter may take this state for a formula.
# shellcheck disable=SC2016
sed 's/"end"/"$x^$"/' examples/memory-budget.json >"$work/rules.json"

# What the workers run as vig. As MODE says, it kills the worker that has device 12, or keeps it waiting.
cat >"$work/bin/vig" <<END
#!/bin/sh
echo "\$*" >>"$work/calls"
case "\$MODE: \$*" in
    "kill once: run "*device-12*) ! mkdir "$work/killed" 2>/dev/null || kill -KILL "\$PPID" ;;
    "kill: run "*device-12*) kill -KILL "\$PPID" ;;
    "wait: run "*device-12*) echo \$\$ >"$work/works"; exec sleep 600 ;;
esac
exec "$PWD/build/release/tools/vig/vig" "\$@"
END
chmod +x "$work/bin/vig"
backtest=$PWD/examples/fleet/backtest.py
export PATH=$work/bin:$PATH HOME=$work MODE=
cd "$work"

for ((i = 0; i < 24; ++i)); do
    for ((j = 0; j <= i % 4; ++j)); do
        echo '{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":300000,"vmSwapKB":1},"string":{"processName":"camera"}}'
    done >"devices/device-$i"
done
gzip devices/device-7
mv devices/device-3 $'devices/sub folder/\xff device'
mv devices/device-4 ./-a
echo no record | tee devices/broken >devices/.hidden
printf '%s\0' -a a\ missing\ one >list
echo devices/device-12 >one
{ find devices -type f ! -name '.*' -print0; cat list; } | LC_ALL=C sort -z >names

fail() {
    echo "$1" >&2
    tail -n 99 out said >&2
    exit 1
}

# try STATUS MODE ARGUMENT...: runs the example, and leaves what it says in `out` and `said`, and the calls of vig.
try() {
    local status=0
    rm -f calls
    MODE=$2 timeout 100 "$backtest" "${@:3}" >out 2>said </dev/null || status=$?
    [ "$status" -eq "$1" ] || fail "the exit status is $status, expected $1: ${*:2}"
}

echo "== a worker is killed, one of three or the only one: the result is that of one run, byte for byte"
xargs -0 vig run rules.json --format json --seed 7 -- <names >expected 2>problems || true
grep -q '"devices":25,"failed":2,' expected || fail "another fleet than that of this test"
for workers in 3 1; do
    rm -rf killed
    try 2 'kill once' rules.json devices @list --seed 7 --workers "$workers" --partition 2 --plot fired.png
    [ -d killed ] || fail "no worker was killed"
    [ "$(grep -c '^run .*device-12' calls)" -eq 2 ] || fail "what the killed worker had did not run twice"
    cmp expected out || fail "another result than that of one run"
    # Dask may say something in between.
    [[ $(<said) == *"$(<problems)"*"$(vig summary expected)"* ]] || fail "not said: what one run says, and the table"
done
/usr/bin/python3 - fired.png <<'END' || fail "no picture, or an empty one"
import sys
import matplotlib.image
picture = (matplotlib.image.imread(sys.argv[1])[:, :, :3] * 255).round().astype(int)
for colour in [(31, 119, 180), (255, 127, 14)]:  # the bars of the two halves
    assert (picture == colour).all(axis=2).mean() > 0.05, colour
END

echo "== a document that is refused is refused once"
echo '{"configs": 7}' >refused.json
try 1 '' refused.json devices
[ "$(grep -c error: said) $(wc -l <calls) $(wc -c <out)" = '1 1 0' ] || fail "not once"

echo "== a partition that kills its workers is named"
DASK_DISTRIBUTED__SCHEDULER__ALLOWED_FAILURES=1 try 1 kill rules.json @one --workers 3
[ ! -s out ] || fail "a summary of less than the fleet"
grep -qx "'devices/device-12'" said || fail "its recording is not named"

echo "== Ctrl-C: nobody else could have reached the workers, and none is left"
mkfifo works
MODE='wait' /usr/bin/python3 - "$backtest" <<'END' || fail "at Ctrl-C"
import contextlib
import os
import signal
import subprocess
import sys
import time
import psutil


def runs(process):
    with contextlib.suppress(psutil.NoSuchProcess):  # it may end meanwhile
        return process.status() != psutil.STATUS_ZOMBIE
    return False


# A background job of a shell ignores it, and so would what it starts.
signal.signal(signal.SIGINT, signal.SIG_DFL)
with open("out", "wb") as out, open("said", "wb") as said:
    example = subprocess.Popen([sys.argv[1], "rules.json", "devices", "--workers", "3"], start_new_session=True,
                               stdin=subprocess.DEVNULL, stdout=out, stderr=said)
signal.signal(signal.SIGALRM, signal.default_int_handler)
signal.alarm(100)
try:
    works = int(open("works").read())
    own = psutil.Process(example.pid)
    started = own.children(recursive=True)
    # Not of what the workers start: each vig may end before it is asked.
    listeners = [each.laddr.ip for process in [own, *own.children()] for each in process.connections()
                 if each.status == "LISTEN"]
    assert listeners and set(listeners) == {"127.0.0.1"}, listeners
    assert works in [each.pid for each in started], started
    os.killpg(example.pid, signal.SIGINT)
    assert example.wait() == 130, example.returncode
    while any(map(runs, started)):
        time.sleep(0.1)
finally:
    with contextlib.suppress(ProcessLookupError):
        os.killpg(example.pid, signal.SIGKILL)
END
[ ! -s out ] || fail "a summary of less than the fleet"
! grep -q Traceback said || fail "more said than it should"
