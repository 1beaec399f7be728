#!/usr/bin/env python3
"""told.py PAGE EXPLANATIONS: fails, and says where, unless the first recording of a replay page tells what the lines of
`vig run --explain=all --format jsonl` tell, step by step, value by value. It reads the page by itself, without its program."""

import base64
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


def expected(line):
    attempts = [(each["path"], each["to"], each["fired"],
                 [(f["condition"], f["left"], f["right"], f["verdict"]) for f in each["filters"]], each["actions"])
                for each in line["transitions"]]
    return line["event_type"], line["state"], attempts


def main():
    recording = Recording(open(sys.argv[1], encoding="utf-8").read())
    lines = [json.loads(line) for line in open(sys.argv[2], encoding="utf-8")]
    lines = [line for line in lines if line["type"] == "explain"]
    count = 0
    for machine in recording.json["machines"]:
        wanted = [(line["event"], expected(line)) for line in lines if line["machine"] == machine["number"]]
        told = list(recording.steps(machine))
        for got, want in zip(told, wanted):
            if got != want:
                sys.exit(f"machine {machine['label']}: the page tells {got}, the tool {want}")
        if len(told) != len(wanted):
            sys.exit(f"machine {machine['label']}: the page tells {len(told)} steps, the tool {len(wanted)}")
        count += len(told)
    print(f"{count} steps told alike")


main()
