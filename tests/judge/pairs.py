#!/usr/bin/python3
"""Holds what `vig diff` decides against difference.py, on pairs of a random document and a change of it.

Pair i of the N is made of the seed S + i alone. Both must say the same of each configuration, and after how many events
a difference shows at least; `vig run` must show the difference after the recording, and not before. The program
`agreement` plays many random events to both documents: it must find no shorter difference, and none between machines
that are the same. "not decided" is counted and is no disagreement.
"""
import argparse
import collections
import functools
import itertools
import json
import pathlib
import random
import re
import subprocess
import sys

import semantics
from changes import changed
from difference import Difference
from documents import Vocabulary, make_document
from judge import Case, add_options, judge_all, read_line
from semantics import context_of

DRAW = {"type": "function", "value": "PseudoRandomDouble"}


def with_more_actions(rng, document):
    """Lets more of what the machines do be seen, in some documents."""
    share = rng.choice([0, 0.3, 0.8])
    for config in document["configs"]:
        for rule in config["payload"]["data"]["transitions"]:
            if rng.random() < share:
                rule["actions"].append({"name": rng.choice(["LogZramHeartBeat", "TriggerVelora", "TriggerVeloraCpu"])})
    return document


class Behaviour:
    """What `vig run --explain` says that one machine of a document did at each event, which numbers it drew for it, and
    where it waited then."""

    def __init__(self, events):
        self.seen = [([], []) for _ in range(events + 1)]
        self.draws = [[] for _ in range(events + 1)]
        self.states = ["start"] * (events + 1)

    def add(self, line, rules):
        event = line["event"]
        if line["type"] == "trigger":
            self.seen[event][0].append((line["trigger_name"], line["metadata"]))
        elif line["type"] == "log":
            self.seen[event][1].append(line["message"])
        for tried in line.get("transitions", []):
            filters = rules[int(re.search(r"transitions\[(\d+)\]$", tried["path"])[1])]["filters"]
            for asked, rule in zip(tried["filters"], filters):
                # A filter of another type gets nothing from it, and takes no draw.
                self.draws[event] += [asked[side] for side, operand in (("left", "operand1"), ("right", "operand2"))
                                      if rule["value_type"] == "double" and rule[operand] == DRAW]
            if tried["fired"]:
                self.states[event:] = [tried["to"]] * (len(self.states) - event)


class PairCase(Case):
    """A document and a change of it, and what is expected of their machines."""

    def __init__(self, program, agreement, events, seed, folder):
        super().__init__(program, folder)
        self.agreement, self.events, self.seed = agreement, events, seed
        rng, questions = random.Random(seed), semantics.Events()
        words = Vocabulary(rng)
        self.documents = {"old": with_more_actions(rng, make_document(rng, words))}
        self.documents["new"] = changed(rng, words, self.documents["old"])
        self.context = words.context() if rng.random() < 0.2 else {}
        self.with_states = rng.random() < 0.15
        self.rules = {which: {config["id"]: config["payload"]["data"]["transitions"] for config in each["configs"]}
                      for which, each in self.documents.items()}
        self.verdicts = {}
        for number in {**self.rules["old"], **self.rules["new"]}:
            both = [each.get(number, []) for each in self.rules.values()]
            self.verdicts[number] = Difference(both, context_of(self.context), questions,
                                               self.has_states(number)).verdict()
        for name, content in {**self.documents, "context": {"event": "Test"} | self.context}.items():
            (folder / f"{name}.json").write_text(json.dumps(content))
        self.counts.update(["pairs"] + [f"machines {verdict}" for verdict, _ in self.verdicts.values()])

    def has_states(self, number):
        """Tells whether the names of states count, which those of a machine that is new or gone do not."""
        return self.with_states and all(number in each for each in self.rules.values())

    def comparisons(self):
        return self.compare_diff, self.compare_play

    def compare_diff(self):
        done = self.vig("diff", "old.json", "new.json", "--format", "json", *["--states"] * self.with_states,
                        context=self.context, statuses=(0, 1, 3))
        (self.folder / "answer.json").write_text(done.stdout)
        machines = {machine["id"]: machine for machine in json.loads(done.stdout)["machines"]}
        self.expect("configurations", set(self.verdicts), set(machines))
        verdicts = {machine["verdict"] for machine in machines.values()}
        status = 1 if verdicts & {"different", "unrecordable"} else 3 if "not decided" in verdicts else 0
        self.expect("exit status of diff", status, done.returncode)
        for number, (verdict, events) in self.verdicts.items():
            machine = machines[number]
            self.counts[f"vig says {machine['verdict']}"] += 1
            if "not decided" in (verdict, machine["verdict"]):
                continue
            self.expect(f"id {number}", verdict, machine["verdict"])
            if verdict == machine["verdict"] == "different":
                self.expect(f"id {number}: events of its recording", machine["events"],
                            len(machine["recording"]["events"]))
                self.counts["recordings that may not be the shortest"] += not machine["shortest"]
                if machine["shortest"]:
                    self.expect(f"id {number}, events", events, machine["events"])
                self.compare_recording(number, machine["recording"])

    def compare_recording(self, number, recording):
        """The machines do the same until the last event, with the same draws, and then they do not."""
        old, new = (self.run(which, number, recording) for which in ("old", "new"))
        last = len(recording["events"])
        differs = [event for event in range(last + 1) if old.seen[event] != new.seen[event] or (
            self.has_states(number) and old.states[event] != new.states[event])]
        self.expect(f"id {number}: the first event at which its recording shows a difference", last,
                    min(differs, default=None))
        for event in range(last + 1):
            both = old.draws[event], new.draws[event]
            common = min(map(len, both))
            self.expect(f"id {number}: draws at event {event}", both[0][:common], both[1][:common])
        self.counts["recordings"] += 1

    def run(self, which, number, recording):
        behaviours = collections.defaultdict(lambda: Behaviour(len(recording["events"])))
        machine = None
        done = self.vig("run", f"{which}.json", "--explain", "--format", "jsonl",
                        *(f"--draw={draw!r}" for draw in recording["draws"][which]), context=self.context,
                        text="".join(json.dumps(event) + "\n" for event in recording["events"]))
        for line in done.stdout.splitlines():
            line = read_line(line)
            if line["type"] == "explain":
                machine = line["config_id"]
            if line["type"] in ("explain", "trigger", "log"):
                behaviours[machine].add(line, self.rules[which].get(machine))
        return behaviours[number]

    def compare_play(self):
        """Random events show no difference but those that are expected, of machines that have been changed."""
        played = {number for number in self.verdicts if len({json.dumps(each.get(number)) for each in
                                                             self.rules.values()}) == 2}
        for which, document in self.documents.items():
            configs = [config for config in document["configs"] if config["id"] in played]
            (self.folder / f"{which}.played.json").write_text(json.dumps({"configs": configs}))
        rules = [rule for machines in self.rules.values() for number in played for rule in machines.get(number, [])]
        (self.folder / "values.jsonl").write_text(
            "".join(json.dumps(record) + "\n" for record in records_for(random.Random(self.seed), rules)))
        done = subprocess.run([self.agreement, "old.played.json", "new.played.json", "values.jsonl", str(self.events),
                               "context.json"],
                              cwd=self.folder, capture_output=True, encoding="utf-8", timeout=300, check=True)
        found = {number: rest for number, *rest in (map(int, line.split()) for line in done.stdout.splitlines())}
        self.expect("machines that were played", played, set(found))
        for number, (events, recordable, any_kind) in found.items():
            verdict, least = self.verdicts[number]
            self.counts["random events"] += events
            self.counts["machines that are the same, played with fewer events"] += (
                verdict == "same" and events < self.events)
            self.counts["differences that random events show"] += recordable >= 0
            if verdict == "different" and 0 <= recordable < least:
                self.disagreements.append(f"id {number}: expected {least} events, random ones show it by {recordable}")
            if 0 <= recordable and verdict in ("same", "unrecordable") or 0 <= any_kind and verdict == "same":
                self.disagreements.append(f"id {number}: {verdict}, but random events show a difference")


def records_for(rng, rules):
    """Returns records of which all that rules tell apart can be made: what they compare with, and what is beside it."""
    values = {"integer": {0}, "double": {0.5}, "string": {"camera"}}
    names = {"integer": {"vmRssKB", "vmSwapKB"}, "double": {"cpuAvgUtilization"}, "string": {"processName"}}
    for each, side in itertools.product([each for rule in rules for each in rule["filters"]], ("operand1", "operand2")):
        if each[side]["type"] == "constant":
            values[each["value_type"]] |= semantics.around(each["value_type"], each[side]["value"])
        elif each[side]["type"] == "envvar":
            names[each["value_type"]].add(each[side]["value"])
    types = sorted({rule["event"] for rule in rules} - {"EnteringState"}) or ["Test"]
    for _ in range(200):
        record = {"event": rng.choice(types), "uint64": {
            name: rng.randrange(2**64) for name in ("memUsedMaxBytes", "numCompressedDataBytes")}}
        for kind, each in names.items():
            record[semantics.KINDS[kind]] = {name: rng.choice(sorted(values[kind])) for name in sorted(each)}
        yield record | ({"timeout_id": 1} if record["event"] == "Timeout" else {})


def main():
    parser = argparse.ArgumentParser(description="Holds what vig diff decides against another way to decide it.")
    parser.add_argument("vig", type=pathlib.Path)
    parser.add_argument("agreement", type=pathlib.Path)
    parser.add_argument("--events", metavar="E", type=int, default=100000)
    add_options(parser)
    options = parser.parse_args()
    make_case = functools.partial(PairCase, options.vig.resolve(), options.agreement.resolve(), options.events)
    return judge_all(make_case, options)


if __name__ == "__main__":
    sys.exit(main())
