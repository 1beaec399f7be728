#!/usr/bin/python3
"""Replays the recordings of a fleet with vig, spread over many processes or machines by Dask.

Writes the summary to standard output, byte for byte that of one `vig run --format json` over all recordings, and the
same as a table to standard error. The exit status is that of `vig run`: 2 if a recording cannot be read to its end.
"""
import argparse
import contextlib
import importlib.util
import json
import multiprocessing.resource_tracker
import os
import signal
import subprocess
import sys
import tempfile
import time

from distributed import Client, KilledWorker, LocalCluster, as_completed

MOST_NAMES = 100_000  # bytes of them on one command line, for which Linux has room everywhere
MERGED_AT_ONCE = 16  # summaries
MOST_PLOTTED = 50  # transitions


def recordings_of(arguments):
    """Returns the names, as bytes, since nothing says that they are UTF-8."""

    def fail(error):
        raise error

    names = []
    for given in map(os.fsencode, arguments):
        if given == b"-" or given.startswith(b"@"):
            with sys.stdin.buffer if given == b"-" else open(given[1:], "rb") as file:
                text = file.read()
            names += filter(None, text.split(b"\0" if b"\0" in text else b"\n"))
        elif os.path.isdir(given):
            for folder, folders, files in os.walk(given, onerror=fail):
                folders[:] = [each for each in folders if not each.startswith(b".")]
                names += [os.path.join(folder, each) for each in files if not each.startswith(b".")]
        else:
            names.append(given)
    return sorted(names)


def partitions_of(names, size):
    """Returns lists of names, in their order: a device is never torn."""
    partitions, room = [], 0
    for name in names:
        if room < len(name) or len(partitions[-1]) == size:
            partitions.append([])
            room = MOST_NAMES
        partitions[-1].append(name)
        room -= len(name) + 1
    return partitions


def vig(arguments, folder, text=b""):
    """Returns what vig writes, and what it says on standard error."""
    # A vig whose worker is killed ends, too.
    ended = subprocess.run(["setpriv", "--pdeathsig", "KILL", "vig", *arguments],
                           input=text, cwd=folder, capture_output=True)
    # With 2 and a summary there are recordings that could not be read: the summary counts them.
    if ended.returncode not in (0, 2) or not ended.stdout:
        said = ended.stderr.decode(errors="backslashreplace")
        machine = os.uname().nodename
        raise RuntimeError(f"vig {arguments[0]} has ended with {ended.returncode} on {machine}. {said}".strip())
    return ended.stdout, ended.stderr


def run(names, rules, seed, folder):
    """The mapper."""
    return vig(["run", "--format", "json", "-j", "1", *seed, "--", rules, *names], folder)


def merge(results, folder):
    """The reducer."""
    summaries, said = zip(*results)
    return vig(["summary", "--format", "json"], folder, b"".join(summaries))[0], b"".join(said)


def backtest(client, partitions, rules, seed):
    """Returns the summary of all partitions and what vig said of them, in their order."""
    folder = os.getcwd()
    runs = [client.submit(run, each, rules, seed, folder, pure=False) for each in partitions]
    level = runs
    while len(level) > 1:
        level = [client.submit(merge, level[i:i + MERGED_AT_ONCE], folder, pure=False)
                 for i in range(0, len(level), MERGED_AT_ONCE)]
    watch(dict(zip(runs, partitions)))
    return level[0].result()


def watch(partitions):
    """Shows how far they are, on a terminal, and ends with the first one that fails for good."""
    began = time.monotonic()
    done, total = 0, sum(map(len, partitions.values()))
    for future in as_completed(partitions):
        names = partitions[future]
        if future.cancelled():
            raise RuntimeError("the scheduler is lost, and with it what its workers have done")
        if future.status == "error":
            # Dask itself reruns what a lost worker had, until too many workers are lost with the same partition.
            named = "\n".join(repr(os.fsdecode(each)) for each in names)
            raise RuntimeError(f"{future.exception()}\nThe recordings of this partition:\n{named}")
        done += len(names)
        if sys.stderr.isatty():
            left = (time.monotonic() - began) / done * (total - done)
            end = "" if done < total else "\n"
            print(f"\r{done} of {total} recordings, {left:.0f} s left \033[K", end=end, file=sys.stderr, flush=True)


def plot(summary, file):
    """Draws on how many devices the transitions fired, and how often; of very many those that fired on most devices."""
    from matplotlib.figure import Figure  # late: the workers need not have it

    rows = [(f"{config['path']} (id {config['id']})  {each['from']} -> {each['to']} on {each['event']}", each)
            for config in summary["configs"] for each in config["transitions"]]
    rows = sorted(rows, key=lambda row: -row[1]["devices"])[:MOST_PLOTTED]
    figure = Figure(figsize=(14, 1.5 + 0.3 * len(rows)), layout="constrained")
    for axes, key, colour in zip(figure.subplots(1, 2, sharey=True), ["devices", "fired"], ["tab:blue", "tab:orange"]):
        bars = axes.barh(range(len(rows)), [each[key] for _, each in rows], color=colour)
        axes.bar_label(bars, padding=3)
        axes.margins(x=0.15)
        axes.set_title(f"{key}, of {summary['devices']}" if key == "devices" else key)
    axes.set_yticks(range(len(rows)), [name.replace("$", r"\$") for name, _ in rows])  # no formulas
    axes.invert_yaxis()
    figure.savefig(file)


@contextlib.contextmanager
def client_of(arguments):
    if arguments.scheduler:
        with Client(arguments.scheduler) as client:
            yield client
        return
    # Ctrl-C is for this process, which ends what it has started: that never sees it.
    multiprocessing.resource_tracker.ensure_running()  # which would let it through again
    signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGINT})
    # Only this machine reaches these workers, and of its users only this one has their key.
    closed = {"host": "127.0.0.1", "security": True, "dashboard_address": "127.0.0.1:0",
              "worker_dashboard_address": "127.0.0.1:0"}
    with tempfile.TemporaryDirectory() as scratch, \
            LocalCluster(n_workers=arguments.workers, threads_per_worker=1, local_directory=scratch,
                         **closed) as cluster, \
            Client(cluster) as client:
        signal.pthread_sigmask(signal.SIG_UNBLOCK, {signal.SIGINT})
        yield client


def positive(text):
    number = int(text)
    if number < 1:
        raise ValueError
    return number


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("rules", help="the rule document")
    parser.add_argument("recordings", nargs="+",
                        help="files, a device each; folders of them; @FILE or - for a list of names")
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--workers", type=positive, default=len(os.sched_getaffinity(0)), metavar="N",
                       help="processes of this machine (default: its cores)")
    where.add_argument("--scheduler", metavar="ADDRESS", help="of a Dask cluster, such as tls://host:8786")
    parser.add_argument("--seed", metavar="N", help="as for vig run")
    parser.add_argument("--partition", type=positive, default=20, metavar="N", help="recordings a task (default: 20)")
    parser.add_argument("--plot", metavar="FILE", help="draws the transitions: .png, .svg or .pdf")
    arguments = parser.parse_args()

    names = recordings_of(arguments.recordings)
    if not names or b"-" in names:
        parser.error("a recording is called -: write ./-" if names else "there is no recording")
    if arguments.rules == "-":
        parser.error("the workers read the document by its name, so that it cannot be standard input")
    if arguments.plot:
        if not arguments.plot.endswith((".png", ".svg", ".pdf")):
            parser.error(f"--plot: {arguments.plot}: expected a name that ends with .png, .svg or .pdf")
        if not importlib.util.find_spec("matplotlib"):
            parser.error("--plot: needs python3-matplotlib")
    # A document that is refused is refused once, here. One that is changed afterwards would be noticed by the reducer.
    seed = ["--seed", arguments.seed] if arguments.seed else []
    refused = subprocess.run(["vig", "run", "--format", "json", *seed, "--", arguments.rules, os.devnull],
                             stdout=subprocess.DEVNULL).returncode
    if refused:
        return refused

    with client_of(arguments) as client:
        summary, said = backtest(client, partitions_of(names, arguments.partition), arguments.rules, seed)
    sys.stderr.buffer.write(said)
    sys.stderr.flush()
    sys.stdout.buffer.write(summary)
    sys.stdout.flush()
    subprocess.run(["vig", "summary"], input=summary, stdout=sys.stderr, check=True)
    if arguments.plot:
        plot(json.loads(summary), arguments.plot)
    return 2 if json.loads(summary)["failed"] else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
    except (KilledWorker, OSError, RuntimeError) as error:
        sys.exit(f"backtest.py: {error}")
