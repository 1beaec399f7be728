#!/usr/bin/env python3
"""told.py PAGE REPORT: fails, and says where, unless the first recording of a replay page tells what the lines of
`vig run --explain=all --why-not --format jsonl` tell: step by step, value by value, with the trigger and log lines between
them, and what became of each transition. It reads the page by itself, without its program."""

import base64
import collections
import gzip
import json
import re
import struct
import sys

NONE = 0xFFFFFFFF


class Recording:
    def __init__(self, page):
        packed = re.search(r'class="recording">([^<]*)<', page)[1]
        content = gzip.decompress(base64.b64decode(packed))
        (size,) = struct.unpack_from("<I", content)
        self.json = json.loads(content[8 : 8 + size])
        self.columns = content[8 + (size + 7) // 8 * 8 :]
        events = self.json["events"]
        self.numbers, self.types = self.column(events["number"]), self.column(events["type"])
        self.rows = [self.types[:position].count(type) for position, type in enumerate(self.types)]

    def column(self, reference):
        code = {"u8": "B", "u16": "H", "u32": "I", "i64": "q", "u64": "Q", "f64": "d"}[reference["type"]]
        return struct.unpack_from(f"<{reference['count']}{code}", self.columns, reference["at"])

    def value(self, position, name, kind):
        """Returns what the event has, or None."""
        for attribute in self.json["tables"][self.types[position]]:
            if attribute["name"] == name and attribute["kind"] == kind:
                row = self.rows[position]
                if attribute["present"] and not self.column(attribute["present"])[row]:
                    return None
                value = self.column(attribute["values"])[row]
                return (self.json["texts"][value] or None) if kind == "string" else value
        return None

    def steps(self, machine):
        """Gives (event number, step) in order; a step is as a line of the tool has it."""
        turns, drawn = self.column(machine["turns"]), machine["drawn"]
        results = iter(zip(self.column(drawn["number"]), self.column(drawn["text"])))
        for position, turn in enumerate(turns):
            shape = iter(machine["shapes"][turn])
            for state in shape:
                raised, type, attempts = next(shape), next(shape), next(shape)
                tried = [self.attempt(machine, position, shape, raised, results) for _ in range(attempts)]
                yield self.numbers[position], (self.json["types"][type], machine["states"][state], tried)

    def attempt(self, machine, position, shape, raised, results):
        transition = machine["transitions"][next(shape)]
        count, fired = next(shape), next(shape)
        filters = []
        for index, filter in enumerate(transition["filters"][:count]):
            sides = [self.operand(filter[side], filter["kind"], position, raised, results) for side in ("left", "right")]
            filters.append((filter["condition"], *sides, bool(fired) or index + 1 < count))
        return (transition["path"], machine["states"][transition["to"]], bool(fired), filters,
                transition["actions"] if fired else [])

    def operand(self, operand, kind, position, raised, results):
        if "function" in operand:
            number, text = next(results)
            return number if text == NONE else self.json["texts"][text]
        if "attribute" in operand:
            value = None if raised else self.value(position, operand["attribute"], kind)
            if value is not None:
                return value
        shown = operand.get("constant", operand.get("absent"))
        return None if shown.endswith("missing") or shown.endswith("(missing)") else json.loads(shown)


    def lines(self):
        """Gives (event number, machine or None, steps before it, kind, texts)."""
        places = self.json["lines"]
        for at, machine, step, kind, text in zip(*(self.column(places[each]) for each in
                                                   ("at", "machine", "step", "kind", "text"))):
            number = None if machine == NONE else self.json["machines"][machine]["number"]
            yield (self.numbers[at], number, step, "log" if kind else "trigger", self.json["lineTexts"][text].split("\n"))


def check(what, got, want):
    if got != want:
        sys.exit(f"{what}: the page tells {got}, the tool {want}")


def check_lines(recording, report):
    """Logs of a report do not say whose they are."""
    told = iter(recording.lines())
    steps = collections.Counter()
    for line in report:
        if line["type"] == "explain":
            steps[line["event"], line["machine"]] += 1
        elif line["type"] in ("trigger", "log"):
            event, machine, step, kind, texts = next(told, (None, None, 0, "no line", []))
            want = ([line["trigger_name"], *line["metadata"]] if line["type"] == "trigger" else
                    f"{line['priority']} {line['tag']}: {line['message']}".rstrip("\n").split("\n"))
            check("line", (event, kind), (line["event"], line["type"]))
            check(f"line of event {event}", step, steps[event, machine] if machine is not None else 0)
            check(f"machine of event {event}", machine, line.get("machine", machine))
            check(f"texts of event {event}", *([each for each in texts if shown.isprintable()]
                                               for texts in (texts, want) for shown in ["".join(want)]))
    check("lines", next(told, None), None)


def check_accounts(machine, explanations, answers):
    tries = collections.defaultdict(list)
    for line in explanations:
        for each in line["transitions"]:
            tries[each["path"]].append(each)
    for each in machine["transitions"]:
        tried = tries[each["path"]]
        stops = collections.Counter(len(one["filters"]) for one in tried if not one["fired"])
        stopped = [stops[count] for count in range(1, len(each["filters"]) + 1)]
        check(each["path"], (each["tried"], each["fired"], [one["stopped"] for one in each["filters"]]),
              (len(tried), sum(one["fired"] for one in tried), stopped))
        if each["path"] in answers:
            nearest = [one["nearest"] and one["nearest"]["event"] for one in answers[each["path"]]["filters"]]
            check(f"nearest of {each['path']}", [one["nearest"] for one in each["filters"]], nearest)


def expected(line):
    attempts = [(each["path"], each["to"], each["fired"],
                 [(f["condition"], f["left"], f["right"], f["verdict"]) for f in each["filters"]], each["actions"])
                for each in line["transitions"]]
    return line["event_type"], line["state"], attempts


def main():
    recording = Recording(open(sys.argv[1], encoding="utf-8").read())
    report = [json.loads(line) for line in open(sys.argv[2], encoding="utf-8")]
    answers = {line["path"]: line for line in report if line["type"] == "why_not"}
    count = 0
    for machine in recording.json["machines"]:
        explanations = [line for line in report if line["type"] == "explain" and line["machine"] == machine["number"]]
        told = list(recording.steps(machine))
        for got, line in zip(told, explanations):
            check(f"machine {machine['label']}", got, (line["event"], expected(line)))
        check(f"steps of machine {machine['label']}", len(told), len(explanations))
        check_accounts(machine, explanations, answers)
        count += len(told)
    check_lines(recording, report)
    print(f"{count} steps told alike")


main()
