"""What `vig run --explain=all` says, in the two ways in which it can be asked, ready to be held against the page."""
import collections
import json
import re
import subprocess

FULL_PATH = re.compile(r"configs\[\d+\]\.payload\.data\.(transitions\[\d+\])")
ROW = re.compile(r" *(\d+)  (explain|trigger|log|move) *  (?:(\d+) \(id -?\d+\)|(\w+)) *(.*)", re.DOTALL)
HAS_A_ROW = 8  # the last column of an event's number, in which no other line has anything


def collapsed(text):
    """The report writes a transition's path out the first time only, and breaks lines at blanks."""
    return " ".join(FULL_PATH.sub(r"\1", text).split())


def rows_of(report):
    """Returns the rows of a report, each with its lines put together: (event, what, machine or None, text)."""
    rows = []
    for line in report.split("\n")[1:]:
        if line == "summary":
            break
        if line[HAS_A_ROW:HAS_A_ROW + 1].isdigit():
            event, what, machine, priority, text = ROW.fullmatch(line).groups()
            rows.append([int(event), what, machine and int(machine), f"{priority} {text}" if priority else text])
        else:
            rows[-1][3] += "\n" + line
    return [(event, what, machine, collapsed(text)) for event, what, machine, text in rows]


def turns_of(report):
    """Returns what each machine did with each event: {(event, machine): [(what, text)]}; the machine None logs, too."""
    turns = collections.defaultdict(list)
    last = (None, None)  # a log line does not say whose it is: that of the machine whose step came before
    for event, what, machine, text in rows_of(report):
        if what != "log":
            last = (event, machine)
        owner = machine if what != "log" else last[1] if last[0] == event else None
        turns[event, owner].append((what, text))
    return turns


class Run:
    """A run of the tool, as the page is to show it."""

    def __init__(self, tool, folder, rules, events, *options):
        self.command = [tool, "run", rules, events, *options]
        self.folder = folder
        self.rules = json.loads((folder / rules).read_bytes())
        self.events = [json.loads(line) for line in (folder / events).read_bytes().split(b"\n") if line]
        self.turns = turns_of(self.said("--explain=all"))
        lines = self.said("--explain=all", "--why-not", "--format", "jsonl").split("\n")
        lines = [json.loads(line) for line in lines if line]
        self.steps = collections.defaultdict(list)
        for each in lines:
            if each["type"] == "explain":
                self.steps[each["event"], each["machine"]].append(each)
        self.moves = self.events_of(lines, "move")
        self.triggers = self.events_of(lines, "trigger")
        self.why_not = {(each["machine"], each["path"]): each for each in lines if each["type"] == "why_not"}
        self.numbers = sorted({event for event, _ in self.turns})
        self.machines = sorted({machine for _, machine in self.steps})

    def said(self, *options):
        return subprocess.run([*self.command, *options], cwd=self.folder, check=True, capture_output=True,
                              encoding="utf-8").stdout

    def write_page(self, path):
        path.write_text(self.said("--format", "html"), encoding="utf-8")

    @staticmethod
    def events_of(lines, what):
        found = collections.defaultdict(list)
        for each in lines:
            if each["type"] == what and each["event"] not in found[each["machine"]]:
                found[each["machine"]].append(each["event"])
        return found

    def logs(self, machine):
        """The events in which the machine, or none of them, logged."""
        return sorted({event for (event, owner), rows in self.turns.items()
                       if owner in (machine, None) and any(what == "log" for what, _ in rows)})

    def tried(self, machine, transition, filters=0):
        """The events in which so many filters of the transition were asked."""
        path = f"configs[{machine}].payload.data.transitions[{transition}]"
        return sorted({event for (event, owner), steps in self.steps.items() if owner == machine for step in steps
                       for each in step["transitions"] if each["path"] == path and len(each["filters"]) >= filters})

    def state_after(self, event, machine):
        """The state in which the machine is then."""
        step = self.steps[event, machine][-1]
        fired = [each["to"] for each in step["transitions"] if each["fired"]]
        return (fired or [step["state"]])[0]
