"""Makes random rule documents, whose filters are so near to each other that much depends on each of them."""
import collections

import semantics
from semantics import read_constant

EVENT_TYPES = ["Test", "Timeout", "ProcessMemoryHeartBeat", "ProcessCpuHeartBeat", "ZramHeartBeat",
               "TelemetryEventEnd"]
ATTRIBUTES = {"integer": ["x", "y", "z", "vmRssKB", "vmSwapKB"], "double": ["x", "y", "z", "cpuAvgUtilization"],
              "string": ["x", "y", "z", "processName"]}
# The constants of a group are neighbours, or the same number by another text.
CONSTANTS = {
    "integer": [["5", "6", "7"], ["0", "-0", "1", "1.5", "-1"], ["12kB", " 12", "+11", "13", "0x10", "1e400"],
                ["9223372036854775807", "9223372036854775806"], ["-9223372036854775808", "-9223372036854775807"]],
    "double": [["5", "6", "7e0"], ["0.1", "0.10000000000000002", "0.10000000000000001"], ["12kB", "0x10", ".5", "12"],
               ["-0", "0", "5e-324", "-5e-324", "1e-310"], ["0.5", "1", "0.9999999999999999", "0.9999999999999998"],
               ["inf", "-inf", "nan", "1.7976931348623157e308", "-1.7976931348623157e308"]],
    "string": [["a", "a\0", "a\0\0\0", "ab"], ["", "\0", "\0\0", "a"], ["camera", "camera\0x", "camerb", "b"],
               ["~", "é", "\U0010ffff"]],
}
# Most of these texts are accepted only beside another constant.
ODD_NUMBERS = ["", "abc", "1e400", "-1e400", "1e-400", "9223372036854775808", ".5", "nan"]


class Vocabulary:
    """The few attributes, constants and filters of one document, so that its transitions have much in common."""

    def __init__(self, rng):
        self.rng = rng
        self.kinds = rng.sample(list(ATTRIBUTES), rng.choice([1, 1, 2, 2, 3]))
        self.attributes = {kind: rng.sample(names, rng.choice([1, 1, 2, 3])) for kind, names in ATTRIBUTES.items()}
        self.draws = rng.choice([0, 0, 0.1, 0.3])
        self.constants = {}
        for kind, groups in CONSTANTS.items():
            group = rng.choice(groups)
            others = rng.choices(sum(groups, []), k=rng.choice([0, 0, 1]))
            self.constants[kind] = rng.sample(group, rng.randint(1, len(group))) + others
        self.filters = [self.filter() for _ in range(rng.randint(2, 8))]

    def operand(self, what, kind):
        if what == "attribute":
            return {"type": "envvar", "value": self.rng.choice(self.attributes[kind])}
        if what == "draw":
            return {"type": "function", "value": "PseudoRandomDouble"}
        if what == "unknown":
            names = ["Unknown"] if kind == "double" else ["Unknown", "PseudoRandomDouble"]
            return {"type": "function", "value": self.rng.choice(names)}
        odd = ODD_NUMBERS if what == "any constant" and kind != "string" else []
        return {"type": "constant", "value": self.rng.choice(self.constants[kind] + odd)}

    def filter(self, with_functions=True):
        kind = self.rng.choice(self.kinds)
        shapes = {("attribute", "constant"): 60, ("attribute", "attribute"): 12, ("any constant", "any constant"): 3}
        if with_functions and self.rng.random() < self.draws:
            return self.draw_filter()
        if with_functions:
            shapes |= {("attribute", "unknown"): 3, ("unknown", "unknown"): 1}
        return self.filter_of(kind, shapes)

    def draw_filter(self):
        return self.filter_of("double", {("draw", "constant"): 6, ("attribute", "draw"): 3, ("draw", "draw"): 2,
                                         ("draw", "unknown"): 1})

    def filter_of(self, kind, shapes):
        (shape,) = self.rng.choices(list(shapes), shapes.values())
        left, right = (self.operand(what, kind) for what in self.rng.choice([shape, shape, shape[::-1]]))
        return {"operator": self.rng.choice(list(semantics.COMPARE)), "value_type": kind, "operand1": left,
                "operand2": right}

    def some_filters(self, counts, event):
        if event == "EnteringState" and self.rng.random() < self.draws * 2:
            return [self.draw_filter()]
        filters = [self.filter() if self.rng.random() < 0.2 else self.rng.choice(self.filters)
                   for _ in range(self.rng.choice(counts))]
        return filters

    def context(self):
        """Returns attributes with values that are the constants, or beside them, grouped as in an event record."""
        groups = collections.defaultdict(dict)
        for kind, name in ((kind, name) for kind in self.kinds for name in self.attributes[kind]):
            value = self.rng.choice(self.constants[kind])
            if kind == "integer":
                value = read_constant(kind, value)[0].place + self.rng.choice([0, 0, 1, -1])
                value = min(max(value, -2**63), 2**63 - 1)
            elif kind == "double":
                value = self.rng.choice([5.0, 0.1, -0.0, 1.0, 0.5, 1e308])
            groups[semantics.KINDS[kind]][name] = value
        return dict(groups)


def is_accepted(rule):
    """A constant that is no number is refused but in the company of another constant."""
    constants = [rule[side]["value"] for side in ("operand1", "operand2") if rule[side]["type"] == "constant"]
    return len(constants) != 1 or read_constant(rule["value_type"], constants[0])[1]


def make_machine(rng, words):
    states = ["start"] + rng.sample(["end", "a", "b", "c", "", "d\0", "é"], rng.randint(0, 5))
    events = rng.sample(EVENT_TYPES, rng.choice([1, 1, 2, 3])) + ["EnteringState"] * rng.choice([0, 0, 1])
    triggering = rng.choice([0.1, 0.3, 0.6])
    counts = rng.choice([[0, 1], [1, 2], [0, 1, 1, 2, 3], [2, 3, 4]])

    forward = rng.random() < 0.35
    rules = []

    def add(source, target, event, counts):
        names = rng.choices(["Test", "LogZramHeartBeat"], k=rng.choice([0, 0, 0, 1]))
        if rng.random() < triggering:
            names += rng.choices(["TriggerVelora", "TriggerVeloraCpu"], k=rng.choice([1, 1, 1, 1, 2, 3]))
        rules.insert(rng.randint(0, len(rules)), {
            "from_state": states[source], "to_state": states[target], "event": event,
            "filters": [each for each in words.some_filters(counts, event) if is_accepted(each)],
            "actions": [{"name": name} for name in names]})

    for _ in range(rng.choice([rng.randint(0, 6), rng.randint(3, 12), rng.randint(8, 24)])):
        source, target = rng.choices(range(len(states)), k=2)
        if not forward or source < target:  # machines that only go forward have a bound of triggers
            add(source, target, rng.choice(events), counts)
    for target in range(1, len(states)):  # most states have a way from the first
        if rng.random() < 0.7:
            add(rng.randrange(target), target, rng.choice(events), [0, 1])
    if rng.random() < 0.15:  # a circle without end, which a filter may leave
        circle = rng.sample(range(len(states)), rng.randint(1, min(3, len(states))))
        for source, target in zip(circle, circle[1:] + circle[:1]):
            add(source, target, "EnteringState", [0, 0, 1])
    return {"transitions": rules}


def make_document(rng, words):
    return {"configs": [{"id": number, "payload": {"id": 1, "data": make_machine(rng, words)}}
                        for number in rng.sample([7, 8, 0, -1, 2**63 - 1], rng.choice([1, 1, 1, 2, 2, 3]))]}
