#!/usr/bin/python3
"""Holds what `vig prove`, `vig check` and `vig test` decide against semantics.py, on random documents.

Document i of the N is made of the seed S + i alone. What the tool answers must be what semantics.py answers, and
`vig run` must do on every witness what is said of it. "not decided" is counted and is no disagreement. The exit status
is 1 if there is a disagreement; its documents are written to DIR, with what was answered.
"""
import argparse
import collections
import functools
import itertools
import json
import math
import multiprocessing
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

import semantics
from documents import EVENT_TYPES, Vocabulary, is_accepted, make_document
from semantics import Machine, context_of, filter_of

PROPERTIES = ["trigger_only_if", "between_triggers", "at_most", "can_reach", "cannot_reach"]
# Where one of these stands at a filter, never-true and always-true do not: they would only tell what comes of them.
FINDS_NOTHING = {"unknown-attribute", "context-ignored", "function-fallback"}


read_line = functools.lru_cache(json.loads)  # an endless circle writes the same lines again and again


def make_property(rng, words, document, machines):
    """Returns a property, and the machines of which it is said."""
    kind = rng.choice(PROPERTIES + ["at_most in"])
    chosen = rng.randrange(len(machines)) if rng.random() < 0.5 or "reach" in kind else None
    own = {} if chosen is None or "reach" in kind else {"config": document["configs"][chosen]["id"]}
    asked = machines if chosen is None else [machines[chosen]]
    if "reach" in kind:
        return {kind: {str(document["configs"][chosen]["id"]): rng.choice(asked[0].states)}}, asked
    if kind == "at_most":
        most = (rng.choice(asked).most_ever() or 0) + rng.choice([0, 0, 1, -1])
        return own | {kind: {"triggers": max(0, most)}}, asked
    if kind == "at_most in":
        events = rng.randint(1, 7)
        most = max(rng.choice(asked).most_within(events).values()) + rng.choice([0, 0, 1, -1])
        return own | {"at_most": {"triggers": max(0, most), "events": events}}, asked
    filters = [words.filter(with_functions=False) for _ in range(rng.choice([0, 0, 1, 2]))]
    used = [each for config in document["configs"] for rule in config["payload"]["data"]["transitions"]
            for each in rule["filters"] if '"function"' not in json.dumps(each)]
    filters += rng.choices(used, k=1) if used else []
    filters = [each for each in filters if is_accepted(each)]
    if kind == "trigger_only_if" and not filters:  # the tool refuses what says nothing
        return {"cannot_reach": {str(document["configs"][0]["id"]): "end"}}, machines[:1]
    return own | {kind: [each | ({"event": rng.choice(EVENT_TYPES)} if rng.random() < 0.2 else {})
                         for each in filters]}, asked


class Replay:
    """What `vig run --explain` says of one machine: what happened first in which event, and where it was afterwards."""

    def __init__(self, events):
        self.visited, self.fired, self.triggers, self.chances = {"start": 0}, {}, [], collections.defaultdict(list)
        self.after = ["start"] * (events + 1)

    def add(self, line, filters):
        """Adds a line; `filters` are those of the machine's transitions."""
        event = line["event"]
        if line["type"] == "trigger":
            self.triggers.append(event)
        for tried in line.get("transitions", []):
            number = int(re.search(r"(\d+)\]$", tried["path"])[1])
            for rule, seen in zip(filters[number], tried["filters"]):
                values = seen["left"] or 0, seen["right"] or 0  # what is missing reads 0
                self.chances[event].append(semantics.chance(rule, values, seen["verdict"]))
            if tried["fired"]:
                self.visited.setdefault(tried["to"], event)
                self.fired.setdefault(tried["path"], event)
                self.after[event:] = [tried["to"]] * (len(self.after) - event)

    def least_distance(self):
        return min((after - before for before, after in itertools.pairwise(self.triggers)), default=None)

    def has_cycle(self, rate, odds):
        """Tells whether some events lead from a state back to it with that rate of triggers and odds of draws."""
        return any(self.after[begin] == self.after[end]
                   and rate * (end - begin) == sum(begin < event <= end for event in self.triggers)
                   and same_odds(odds, self.odds(range(begin + 1, end + 1)))
                   for begin, end in itertools.combinations(range(len(self.after)), 2))

    def odds(self, events):
        drawn = [chance for event in events for chance in self.chances[event] if chance is not None]
        return math.prod(drawn) if drawn else None

    def breaks(self, prop, events, context):
        """Tells whether what happened to these events breaks a property."""
        if "cannot_reach" in prop:
            return not self.visited.keys().isdisjoint(prop["cannot_reach"].values())
        fulfils = [semantics.fulfils(semantics.filters_of(prop), event, context_of(context)) for event in events]
        if "trigger_only_if" in prop:
            return not all(fulfils[event - 1] for event in self.triggers)
        if "between_triggers" in prop:
            return not all(any(fulfils[first:second - 1]) for first, second in itertools.pairwise(self.triggers))
        most = prop["at_most"]
        return any(last - first < most.get("events", math.inf)
                   for first, last in zip(self.triggers, self.triggers[most["triggers"]:]))


class Case:
    """What the tool is asked in a folder of its own, and where its answers are not those that are expected."""

    def __init__(self, program, folder):
        self.program, self.folder, self.context = program, folder, {}
        self.counts, self.disagreements = collections.Counter(), []

    def vig(self, verb, *arguments, context=None, text="", statuses=(0, 1)):
        if context:
            name = "context.json" if context == self.context else "other.context.json"
            (self.folder / name).write_text(json.dumps({"event": "Test"} | context) + "\n")
            arguments += "--context", name
        done = subprocess.run([self.program, verb, *arguments], cwd=self.folder, input=text, capture_output=True,
                              encoding="utf-8", timeout=120, check=False)
        if done.returncode not in statuses:  # what it has not answered is neither right nor wrong
            raise ChildProcessError(f"vig {verb} ends with {done.returncode} and says {done.stderr}{done.stdout}")
        return done

    def expect(self, what, expected, got):
        if expected != got:
            self.disagreements.append(f"{what}: expected {expected}, got {got}")


class DocumentCase(Case):
    """One document, and what is expected of it."""

    def __init__(self, program, seed, folder):
        super().__init__(program, folder)
        self.counts["documents"], self.replays = 1, {}
        rng, events = random.Random(seed), semantics.Events()
        words = Vocabulary(rng)
        document = make_document(rng, words)
        self.context = words.context() if rng.random() < 0.35 else {}

        @functools.cache
        def machines_in(context):
            return [Machine(config["payload"]["data"]["transitions"], context, events)
                    for config in document["configs"]]

        self.rules = [config["payload"]["data"]["transitions"] for config in document["configs"]]
        self.filters = [[list(map(filter_of, rule["filters"])) for rule in rules] for rules in self.rules]
        self.machines = machines_in(context_of(self.context))
        self.without_context = machines_in(context_of({}))
        self.properties, self.verdicts, self.in_contexts = [], [], []
        for number in range(rng.randint(3, 8)):
            own = {"context": words.context()} if rng.random() < 0.2 else {}
            machines = machines_in(context_of(own.get("context", {})))
            self.in_contexts.append(machines)
            prop, asked = make_property(rng, words, document, machines)
            self.properties.append({"name": f"property {number}"} | own | prop)
            self.verdicts.append(all(machine.holds(prop) for machine in asked))
        tests = {"rules": "rules.json", "properties": self.properties}
        text = json.dumps(document, indent=1)
        lines = iter(number for number, line in enumerate(text.splitlines(), 1) if '"from_state": ' in line)
        self.lines = [list(itertools.islice(lines, len(rules))) for rules in self.rules]
        (folder / "rules.json").write_text(text)
        (folder / "rules.test.json").write_text(json.dumps(tests, indent=1))
        names = {semantics.KINDS[kind]: names for kind, names in words.attributes.items()}
        for name, context in (("nothing", {}), ("contexts", names)):
            (folder / f"{name}.catalogue.json").write_text(json.dumps({"events": {}, "context": context}))

    def comparisons(self):
        return self.compare_prove, self.compare_check, self.compare_properties, self.compare_generated

    def replay(self, witness, machine, context):
        key = json.dumps([witness, context])
        if key not in self.replays:
            self.counts["witnesses"] += 1
            found = self.replays[key] = collections.defaultdict(lambda: Replay(len(witness["events"])))
            done = self.vig("run", "rules.json", "--explain", "--format", "jsonl",
                            *(f"--draw={draw!r}" for draw in witness["draws"]), context=context,
                            text="".join(json.dumps(event) + "\n" for event in witness["events"]))
            self.expect(f"exit status of run, which says {done.stderr}", 0, done.returncode)
            for line in done.stdout.splitlines():
                if line.startswith(('{"type":"trigger"', '{"type":"explain"')):
                    line = read_line(line)
                    found[line["machine"]].add(line, self.filters[line["machine"]])
        return self.replays[key][machine]

    def compare_answer(self, what, answer, verdict, by_recordable, by_any, first):
        """Compares whether something can be, and after how many events, with the last of which the witness shows it."""
        self.counts[f"{what.split()[0]} {verdict}"] += 1
        if verdict == "not decided":
            return
        expected = "no" if by_any is None else "unrecordable" if by_recordable is None else "yes"
        self.expect(what, expected, verdict)
        if verdict == expected == "yes":
            found = answer["events"], len(answer["witness"]["events"]), first(answer["witness"])
            self.expect(f"{what}, after events, events of its witness, and seen first", (by_recordable,) * 3, found)

    def compare_load(self, what, index, load):
        if not load["decided"]:
            self.counts["load not decided"] += 1
            return
        machine = self.machines[index]
        most, rate, distance = machine.most_ever(), None, machine.distance()
        if most is None:
            rate = machine.rate()
        self.counts["load " + ("unbounded" if rate else "bounded" if most else "none")] += 1
        self.expect(f"{what}: triggers", most, load.get("triggers"))
        self.expect(f"{what}: rate", rate and as_rate(rate), load.get("rate"))
        self.expect(f"{what}: distance", distance, load["distance"])
        if most != 0:
            replay = self.replay(load["witness"], index, self.context)
            shown = replay.has_cycle(rate, load.get("odds")) if rate else len(replay.triggers) == most
            self.expect(f"{what}: what the witness shows", True, shown)
        if distance is not None:
            replay = self.replay(load["distance_witness"], index, self.context)
            self.expect(f"{what}: distance of its witness", distance, replay.least_distance())

    def compare_prove(self):
        done = self.vig("prove", "rules.json", "--format", "json", context=self.context)
        (self.folder / "answer.json").write_text(done.stdout)
        answer = json.loads(done.stdout)
        self.expect("number of machines", len(self.machines), len(answer["machines"]))
        for index, (machine, got) in enumerate(zip(self.machines, answer["machines"])):
            self.expect("states", machine.states, [state["name"] for state in got["states"]])
            for state in got["states"]:
                name = state["name"]
                self.compare_answer(f"state {name!r} of machine {index}", state, state["reached"],
                                    machine.reached.states.get(name), machine.reached_by_any.states.get(name),
                                    lambda witness: self.replay(witness, index, self.context).visited.get(name))
            paths = [f"configs[{index}].payload.data.transitions[{number}]"
                     for number in range(len(machine.transitions))]
            self.expect("transitions", paths, [rule["path"] for rule in got["transitions"]])
            for number, (path, rule) in enumerate(zip(paths, got["transitions"])):
                self.compare_answer(f"transition {path}", rule, rule["fires"],
                                    machine.reached.transitions.get(number),
                                    machine.reached_by_any.transitions.get(number),
                                    lambda witness: self.replay(witness, index, self.context).fired.get(path))
            self.compare_load(f"load of machine {index}", index, got["load"])
            self.expect(f"stays of machine {index}", machine.stays(), set(map(frozenset, got["stays"])))
            self.counts["context not decided"] += not got["context_decided"]
            self.compare_context_names(index, machine, got)
        undecided = any(count for what, count in self.counts.items() if what.endswith("not decided"))
        self.expect("exit status of prove", int(undecided), done.returncode)
        if all(got["load"]["decided"] for got in answer["machines"]):
            most = [machine.most_ever() for machine in self.machines]
            rate = sum(machine.rate() for machine in self.machines)
            expected = {"rate": as_rate(rate)} if None in most else {"triggers": sum(most)}
            self.expect("load of all", expected, answer["load"])

    def compare_context_names(self, index, machine, got):
        """An attribute is named where two contexts that differ in it alone give two answers, and nowhere else.

        All values between the constants are tried, where they are few, and that an attribute is missing.
        """
        values = {}
        for rule in (rule for filters in self.filters[index] for rule in filters):
            for read, constant in ((rule.left, rule.right), (rule.right, rule.left)):
                if read[0] == "envvar" and constant[0] == "constant":
                    kind = semantics.KINDS[rule.kind]
                    given = self.context.get(kind, {}).get(read[1])
                    values.setdefault((kind, read[1]), {None, given}).update(semantics.around(rule.kind, constant[1]))
        if not got["context_decided"] or not 1 < math.prod(map(len, values.values())) <= 60:
            return
        stays, answers = list(map(frozenset, got["stays"])), {}
        for found in itertools.product(*values.values()):
            context = frozenset((*key, value) for key, value in zip(values, found) if value is not None)
            answers[found] = answers_of(Machine(self.rules[index], context, machine.events), stays)
        named = [each["context"] for each in got["states"] + got["transitions"]] + got["stays_context"] + [
            got["load"].get("context", [])]
        for at, (kind, name) in enumerate(values):
            alike = {}
            for found, those in answers.items():
                alike.setdefault(found[:at] + found[at + 1:], []).append(those)
            for number, names in enumerate(named):
                changes = any(those[number] != each[0][number] for each in alike.values() for those in each)
                self.counts["context attributes named"] += changes
                self.expect(f"machine {index}, answer {number}: {name} is named", changes, f"{kind} {name}" in names)

    def findings(self, contexts):
        """Returns what check says under a catalogue, for each transition of each machine, by place and name."""
        done = self.vig("check", "rules.json", "--format", "json", "--catalogue", f"{contexts}.catalogue.json")
        (self.folder / f"{contexts}.check.json").write_text(done.stdout)
        answer = json.loads(done.stdout)
        self.counts["check machines not decided"] += len(answer["undecided"])
        found = [[{} for _ in rules] for rules in self.rules]
        for each in answer["findings"]:
            place = re.fullmatch(r"configs\[(\d+)\]\.payload\.data\.transitions\[(\d+)\]\.?(.*)", each["path"])
            if place and not answer["undecided"]:
                config, number = int(place[1]), int(place[2])
                found[config][number][place[3], each["name"]] = each
                rule = self.rules[config][number]
                told = {"from": rule["from_state"], "to": rule["to_state"], "line": self.lines[config][number]}
                self.expect(f"{each['path']}: the transition of a finding", told, each["transition"])
        return None if answer["undecided"] else found

    def compare_check(self):
        for index, (machine, found) in enumerate(zip(self.without_context, self.findings("nothing") or [])):
            for number in range(len(found)):
                self.compare_transition_warnings(index, number, found[number])
            self.compare_state_warnings(f"machine {index}", machine, self.rules[index], found)
            self.compare_storms(index, machine, found)
            self.compare_circles(index, machine, found)
        # A context that may have any attribute makes nothing impossible that is possible in one of these.
        for index, found in enumerate(self.findings("contexts") or []):
            dead = {number for number, each in enumerate(found)
                    if not names_in(each).isdisjoint({"never-true", "shadowed-transition"})}
            unreachable, stuck = (set(states_with(name, self.rules[index], found))
                                  for name in ("unreachable-state", "no-way-out"))
            for machine in {machines[index] for machines in [self.machines, *self.in_contexts]}:
                self.expect(f"machine {index} in {set(machine.context)}: what check calls impossible in any context",
                            (set(),) * 3, (dead & machine.reached.transitions.keys(),
                                           unreachable & machine.reached_by_any.states.keys(),
                                           stuck & machine.reached.states.keys() - machine.stuck()))

    def compare_transition_warnings(self, index, number, found):
        machine, what = self.without_context[index], f"configs[{index}] transitions[{number}]"
        rule, filters = machine.transitions[number], self.filters[index][number]
        passes = functools.partial(machine.passes, rule.event)
        contradictory = next((last for last in range(len(filters)) if not passes(filters[:last + 1], [], True)), None)
        alone = [] if contradictory is None else filters[contradictory:contradictory + 1]
        silent = not passes(alone, [], True) and is_explained(found, contradictory)
        named = sorted(int(re.search(r"\d+", place)[0]) for place, name in found if name == "never-true")
        self.expect(f"{what}: first never-true", contradictory,
                    min(named + [contradictory] * silent, default=None))
        if contradictory in named:
            subject = filters[:contradictory + 1] if passes(alone, [], True) else alone
            self.expect(f"{what}: only an infinity or NaN fulfils", passes(subject, [], False),
                        found[f"filters[{contradictory}]", "never-true"]["message"].startswith("only"))
        always = [number for number, each in enumerate(filters) if not passes([], [frozenset([each])], False)]
        self.expect(f"{what}: always true", [each for each in always if not is_explained(found, each)],
                    sorted(int(re.search(r"\d+", place)[0]) for place, name in found if name == "always-true"))
        self.counts["check always-true"] += len(always)
        recordable = contradictory is None
        shadowed = passes(filters, [], recordable) and not passes(filters, rule.before, recordable)
        self.expect(f"{what}: shadowed", shadowed, ("", "shadowed-transition") in found)
        self.counts["check never-true"] += not recordable
        self.counts["check shadowed"] += shadowed
        if shadowed and ("", "shadowed-transition") in found:
            message, only = found["", "shadowed-transition"]["message"], passes(filters, rule.before, False)
            self.expect(f"{what}: only an infinity or NaN fires", only, message.startswith("only"))
            before = [machine.transitions[self.lines[index].index(int(line))].filters
                      for line in re.findall(r"\(line (\d+)\)", message)]
            always = len(before) == 1 and not passes([], before, False)
            self.expect(f"{what}: the one before always fires", always, message.endswith(", which always fires"))
            if " more on " not in message:
                self.expect(f"{what}: passes those named, and all but one of them", [False] + [True] * len(before), [
                    passes(filters, each, only)
                    for each in (before, *itertools.combinations(before, len(before) - 1))])

    def compare_state_warnings(self, what, machine, rules, found):
        unreachable, stuck = (states_with(name, rules, found) for name in ("unreachable-state", "no-way-out"))
        never = set(machine.states) - machine.reached_by_any.states.keys()
        messages = (finding["message"] for each in found for (_, name), finding in each.items()
                    if name == "unreachable-state")
        others = sum(int(number) for text in messages for number in re.findall(r"; likewise (\d+) more", text))
        self.expect(f"{what}: unreachable", [], [state for state in unreachable if state not in never])
        self.expect(f"{what}: all unreachable states", True,
                    len(unreachable) + others in (len(never), len(never - {"end"})))
        self.counts["check unreachable states"] += len(unreachable)
        self.counts["check states without way out"] += len(stuck)
        self.expect(f"{what}: has a way out", [], [state for state in stuck if state not in machine.stuck() - {"end"}])
        led_to = {machine.transitions[number].target for number in machine.reached_by_any.transitions}
        self.expect(f"{what}: has no way out", set(), machine.stuck() & led_to - {"end"} - set(stuck))

    def compare_storms(self, index, machine, found):
        certain = machine.storms({state: list(chain.rests)[0] for state, chain in machine.chains.items()
                                  if len(chain.rests) == 1})
        cycles = set()
        for number, each in enumerate(found):
            for finding in (finding for (_, name), finding in each.items() if name == "trigger-storm"):
                event = machine.transitions[number].event
                cycle = [json.loads(name) for name in re.findall(r'"(?:[^"\\]|\\.)*"', finding["message"])[1:]]
                cycles |= {(state, event) for state in cycle}
                self.expect(f"machine {index}: a storm by {number}", True, number in certain)
                self.counts["check storms"] += 1
                events, length = finding["witness"]["events"], max(1, len(cycle) - 1)
                replay = self.replay(finding["witness"], index, {})
                shown = (events[-length:] == events[-1:] * length and replay.after[-1] == replay.after[-1 - length]
                         and any(event > len(events) - length for event in replay.triggers))
                self.expect(f"machine {index}: a storm by {number} is shown", True, shown)
        # A cycle is named once; a Timeout has nothing that a trigger needs, as another warning says.
        missed = {number for number in machine.storms(machine.sure_rests()) for rule in [machine.transitions[number]]
                  if rule.event != "Timeout" and (rule.source, rule.event) not in cycles}
        self.expect(f"machine {index}: storms that are named nowhere", set(), missed)

    def compare_circles(self, index, machine, found):
        """Each circle of EnteringState transitions that nothing can stop is an error, which is told at one of them."""
        told = sorted(number for number, each in enumerate(found) for (_, name), finding in each.items()
                      if name == "endless-entering" and finding["severity"] == "error")
        # What is not known to be there is not known to let everything through either.
        sure = {state: moves[0] for state, moves in machine.next.items() if len(moves) == 1 and moves != [None]
                and FINDS_NOTHING.isdisjoint(names_in(found[moves[0]]))}
        circles = set()
        for state in machine.reached_by_any.states:
            way = []
            while state in sure and sure[state] not in way:
                way.append(sure[state])
                state = machine.transitions[way[-1]].target
            if state in sure:
                circles.add(frozenset(way[way.index(sure[state]):]))
        self.expect(f"machine {index}: errors for each endless circle", [1] * len(circles),
                    [len(circle.intersection(told)) for circle in circles])
        self.expect(f"machine {index}: errors for endless circles", len(circles), len(told))
        self.counts["check endless circles"] += len(circles)

    def compare_properties(self):
        done = self.vig("test", "rules.test.json")
        (self.folder / "properties.txt").write_text(done.stdout + done.stderr)
        failed = re.findall(r"^FAIL .*: property (\d+)\n((?: .*\n)*)", done.stdout, re.MULTILINE)
        failed = {int(number): why for number, why in failed}
        for number, (prop, verdict) in enumerate(zip(self.properties, self.verdicts)):
            (kind,) = prop.keys() & set(PROPERTIES)
            answer = "fails" if number in failed else "holds"
            if "not decided" in failed.get(number, ""):
                answer = "not decided"
            self.counts[f"property {kind} {answer}"] += 1
            if answer != "not decided":
                self.expect(f"property {number}", "holds" if verdict else "fails", answer)
            if answer == "fails" and not verdict and kind != "can_reach":
                self.compare_refutation(number, prop, failed[number])
        self.expect("exit status of test", int(bool(failed)), done.returncode)

    def compare_refutation(self, number, prop, text):
        """What is shown of a property that fails breaks it, and nothing shorter does."""
        index = int(re.search(r"configs\[(\d+)\]", text)[1])
        draws = re.search(r"^      draws (.*)$", text, re.MULTILINE)
        witness = {"events": [json.loads(event) for event in re.findall(r"^        (\{.*)$", text, re.MULTILINE)],
                   "draws": [float(draw) for draw in draws[1].split(", ")] if draws else []}
        context = prop.get("context", {})
        self.expect(f"property {number}: broken by its witness", True,
                    self.replay(witness, index, context).breaks(prop, witness["events"], context))
        least = self.in_contexts[number][index].shortest_break(prop)
        self.expect(f"property {number}: events of its witness", least, least and len(witness["events"]))

    def compare_generated(self):
        """The generated tests pass, reach all that can be reached, and what is said to be out of reach is the rest."""
        made = self.vig("test", "--generate", "rules.json")
        (self.folder / "generated.test.json").write_text(made.stdout)
        done = self.vig("test", "--coverage", "generated.test.json")
        self.expect(f"exit status of generated tests, which say {done.stderr}", (0, 0),
                    (made.returncode, done.returncode))
        gaps, told = (re.findall(r"never (\w+):.* \[(configs\S*)\](?:: .*)?$", text, re.MULTILINE)
                      for text in (done.stdout, made.stderr))
        self.expect("what generated tests do not reach", sorted(told), sorted(gaps))
        dead = {f"configs[{index}].payload.data.transitions[{number}]"
                for index, machine in enumerate(self.without_context) for number in range(len(machine.transitions))
                if machine.reached.transitions.get(number) is None}
        self.expect("transitions that generated tests do not fire", dead,
                    {path for what, path in gaps if what == "fired"})
        self.counts["generated test files"] += 1


def answers_of(machine, stays):
    """Returns what prove says of a machine and could say otherwise in another context, in the order of its answer."""
    kinds = [(machine.states, machine.reached.states, machine.reached_by_any.states),
             (range(len(machine.transitions)), machine.reached.transitions, machine.reached_by_any.transitions)]
    most, rests = machine.most_ever(), machine.stays()
    return [(each in reached, each in by_any) for every, reached, by_any in kinds for each in every] + [
        stay in rests for stay in stays] + [(most, machine.rate() if most is None else None, machine.distance())]


def names_in(found):
    return {name for _, name in found}


def is_explained(found, number):
    """Tells whether what is found inside of that filter says already what it comes to."""
    return any(place.startswith(f"filters[{number}]") and (
        name in FINDS_NOTHING or (name == "number-text" and finding["message"].endswith(" is ignored")))
        for (place, name), finding in found.items())


def states_with(warning, rules, found):
    return [rule[place] for rule, each in zip(rules, found) for place, name in each if name == warning]


def same_odds(odds, others):
    return odds is others if None in (odds, others) else math.isclose(odds, others, rel_tol=1e-6, abs_tol=1e-9)


def as_rate(rate):
    return {"triggers": rate.numerator, "events": rate.denominator}


def judge(make_case, keep, seed):
    """Returns the counts of one case and its disagreements."""
    with tempfile.TemporaryDirectory(prefix="judge-") as folder:
        case = make_case(seed, pathlib.Path(folder))
        for compare in case.comparisons():
            try:
                compare()
            except (LookupError, TypeError, ValueError, ChildProcessError, subprocess.SubprocessError) as error:
                case.disagreements.append(f"{compare.__name__} cannot read the answer: {error!r}")
        if case.disagreements and keep:
            (case.folder / "disagreements.txt").write_text("\n".join(case.disagreements) + "\n")
            shutil.copytree(folder, keep / str(seed), dirs_exist_ok=True)
        return seed, case.counts, case.disagreements


def judge_all(make_case, options):
    """Judges the cases of all seeds, prints what comes of it, and returns the exit status."""
    total, disagreements = collections.Counter(), 0
    with multiprocessing.Pool(options.jobs) as pool:
        one = functools.partial(judge, make_case, options.keep)
        for seed, counts, found in pool.imap(one, range(options.seed, options.seed + options.cases), chunksize=8):
            total += counts
            disagreements += len(found)
            for each in found:
                print(f"seed {seed}: {each}", flush=True)
    for what, count in sorted(total.items()):
        print(f"{count:9d}  {what}")
    print(f"{disagreements:9d}  disagreements")
    return int(disagreements > 0)


def add_options(parser):
    parser.add_argument("cases", metavar="N", type=int)
    parser.add_argument("--seed", metavar="S", type=int, default=0)
    parser.add_argument("--keep", metavar="DIR", type=pathlib.Path)
    parser.add_argument("--jobs", metavar="J", type=int, default=2)


def main():
    parser = argparse.ArgumentParser(description="Holds what vig decides against another way to decide it.")
    parser.add_argument("vig", type=pathlib.Path)
    add_options(parser)
    options = parser.parse_args()
    return judge_all(functools.partial(DocumentCase, options.vig.resolve()), options)


if __name__ == "__main__":
    sys.exit(main())
