"""Documents and recordings that the page is tried with."""
import json
import math
import random
import struct

HIT = "window.hit = 1"
HOSTILE = [
    f"</script><script>{HIT}</script>", f"<img src=x onerror='{HIT}'>", f"javascript:{HIT}", f"\"><svg onload='{HIT}'>",
    f"]]><script>{HIT}</script>", f"<!--<script>{HIT}", "&lt;b&gt; &amp; &#x3c;", "\u202ethgir ot tfel\u202c",
    "\u2028line\u2029", "nul\0nul", "'quoted' \"twice\" `thrice` ${hit}", "back\\slash\\u003c", "tab\tand\nline\r\n",
    "é漢字🎈 \u0301", "  two  blanks  ", "x" * 100,
]
INTEGERS = [0, 1, -1, 7, 204800, 2**31, 2**53 + 1, -(2**53) - 1, 2**63 - 1, 2**63 - 2, -(2**63), 1 - 2**63]
DOUBLES = [0.0, -0.0, 0.1, 0.1 + 0.2, 1.0, -2.5, 1e15, 1e16, 123456789012345680.0, 1e21, 1e22, 1e-4, 1e-5, 1.5e-7, 1e100,
           1.7976931348623157e308, -1.7976931348623157e308, 5e-324, 2.2250738585072014e-308, 9007199254740993.0]
EVENT_TYPES = ["Test", "ProcessMemoryHeartBeat", "SystemMemoryHeartBeat", "ZramHeartBeat", "ProcessCpuHeartBeat"]
OPERATORS = ["==", "!=", "<", "<=", ">", ">="]
ACTIONS = ["TriggerVelora", "TriggerVeloraCpu", "LogZramHeartBeat", "Test"]
NAMES = ["x", "y", "vmRssKB", "processName", "of context", HOSTILE[1], HOSTILE[7], HOSTILE[15]]
VALUE_TYPES = ["integer", "double", "string"]


def any_double(rng):
    """Returns a finite number of any size."""
    number = math.nan
    while not math.isfinite(number):
        number = struct.unpack("<d", rng.randbytes(8))[0]
    return number


def operand(text):
    """A constant is written "=7", a function "PseudoRandomDouble()", and an attribute as its name."""
    if text.startswith("="):
        return {"type": "constant", "value": text[1:]}
    if text.endswith("()"):
        return {"type": "function", "value": text[:-2]}
    return {"type": "envvar", "value": text}


def condition(kind, left, operator, right):
    return {"operator": operator, "value_type": kind, "operand1": operand(left), "operand2": operand(right)}


def transition(source, target, event, filters=(), actions=()):
    return {"from_state": source, "to_state": target, "event": event,
            "filters": [condition(*each) for each in filters], "actions": [{"name": each} for each in actions]}


def document(machines):
    return {"configs": [{"id": 100 + 7 * index, "payload": {"id": 1, "data": {"transitions": transitions}}}
                        for index, transitions in enumerate(machines)]}


def write(folder, rules, events, context=None):
    """Writes rules.json, events.jsonl and, if there is a context, context.jsonl."""
    (folder / "rules.json").write_text(json.dumps(rules))
    (folder / "events.jsonl").write_text("".join(json.dumps(each) + "\n" for each in events))
    if context is not None:
        (folder / "context.jsonl").write_text(json.dumps(context) + "\n")


def random_operand(rng, kind):
    if rng.random() < 0.45:
        return rng.choice(NAMES)
    if kind == "double" and rng.random() < 0.3:
        return rng.choice(["PseudoRandomDouble()", "PseudoRandomDouble()", "NoSuchFunction()"])
    return "=" + {"integer": lambda: str(rng.choice(INTEGERS)),
                  "double": lambda: rng.choice([repr(rng.choice(DOUBLES[:14])), repr(any_double(rng)), "inf", "-inf", "nan"]),
                  "string": lambda: rng.choice(["camera", "", *HOSTILE])}[kind]()


def is_refused(filter_):
    """A document is refused for a number that is too small for normal digits, and a function that is not there."""
    _, left, _, right = filter_
    sides = [left, right]
    return ("NoSuchFunction()" in sides and any(each.startswith("=") for each in sides)) or any(
        each.startswith("=") and filter_[0] == "double" and 0 < abs(float(each[1:])) < 2.3e-308 for each in sides)


def random_condition(rng):
    while True:
        kind = rng.choice(VALUE_TYPES)
        made = (kind, random_operand(rng, kind), rng.choice(OPERATORS), random_operand(rng, kind))
        if not is_refused(made):
            return made


def random_machine(rng):
    states = ["start", "end", *rng.sample(HOSTILE, 2), "y" * 64 + "1", "y" * 64 + "2", ""]
    half = ("double", "PseudoRandomDouble()", "<", "=0.5")  # so that no circle goes on for long
    transitions = []
    for _ in range(rng.randint(8, 16)):
        source, target = rng.choice(states), rng.choice(states)
        entering = rng.random() < 0.2
        filters = [random_condition(rng) for _ in range(rng.choice([0, 1, 1, 2, 3]))] + [half] * entering
        transitions.append(transition(source, target, "EnteringState" if entering else rng.choice(EVENT_TYPES), filters,
                                      rng.choices(ACTIONS, k=rng.choice([0, 0, 1, 2]))))
    for source in states[:4]:
        transitions.append(transition(source, rng.choice(states), "Test"))
    return transitions


def special_machines():
    """Machines for what random ones meet too seldom."""
    drawn = "PseudoRandomDouble()"
    return [
        # Each kind of a function's operand, on either side.
        [transition("start", "drawn", "EnteringState", [("double", drawn, "<", "=0.9")]),
         transition("drawn", "start", "ProcessMemoryHeartBeat",
                    [("double", "=0.5", "<", drawn), ("double", drawn, "!=", drawn), ("double", drawn, ">", "x"),
                     ("double", "y", "<=", drawn)]),
         transition("drawn", "end", "Test", [("string", "processName", "==", "NoSuchText()")]),
         transition("drawn", "end", "Test", [("integer", "NoSuchNumber()", "!=", "vmRssKB")])],
        # A circle, of a thousand moves, that one event begins.
        [transition("start", "round", "Test", [("integer", "x", "==", "=7")]),
         transition("round", "and round", "EnteringState"), transition("and round", "round", "EnteringState"),
         transition("round", "start", "ZramHeartBeat", [], ["LogZramHeartBeat"])],
        # What stands in the context.
        [transition("start", "found", "EnteringState",
                    [("integer", "of context", "==", "=5"), ("double", "=2.5", "==", "of context")]),
         transition("found", "start", "ProcessMemoryHeartBeat",
                    [("string", "of context", "==", "=" + HOSTILE[0]), ("integer", "x", "!=", "of context")])],
        # A constant on the left is compared as if it stood on the right; what is missing is 0, or makes it false.
        [transition("start", "end", "ProcessMemoryHeartBeat", [("integer", "=7", "<", "x"), ("integer", "x", "<=", "y")]),
         transition("end", "start", "Test",
                    [("integer", "missing", "==", "missing too"), ("string", "missing", "!=", "=camera"),
                     ("double", "=1", ">", "missing")]),
         transition("end", "start", "Test",
                    [("integer", "=12kB", "==", "=12"), ("double", "=1e400", ">", "=abc"), ("string", "=a", "<", "=b")])],
        # All of the actions, and a transition from a state to itself.
        [transition("start", "start", "ProcessMemoryHeartBeat", [], ACTIONS),
         transition("start", "start", "ZramHeartBeat", [], ["LogZramHeartBeat", "LogZramHeartBeat"])],
        [],
    ]


def random_event(rng, index):
    event = {"event": rng.choice(EVENT_TYPES + ["EnteringState"] * (rng.random() < 0.1)), "time_ms": index * 250 - 1000}
    if rng.random() < 0.15:
        del event["time_ms"]
    if rng.random() < 0.1:
        event = {"event": "Timeout", "timeout_id": rng.choice([0, 3, 2**31 - 1])}
    values = {
        "int64": lambda: rng.choice(INTEGERS + [rng.randint(-2**63, 2**63 - 1)]),
        "uint64": lambda: rng.choice([0, 7, 2**63, 2**64 - 1]),
        "double": lambda: rng.choice([rng.choice(DOUBLES), any_double(rng)]),
        "bool": lambda: rng.random() < 0.5,
        "string": lambda: rng.choice(["camera", "gallery", "", *HOSTILE]),
    }
    for kind, value in values.items():
        chosen = {name: value() for name in NAMES if rng.random() < 0.5}
        if chosen:
            event[kind] = chosen
    if rng.random() < 0.5:
        event.setdefault("int64", {}).update(vmRssKB=rng.randint(0, 400000), vmSwapKB=1)
        event.setdefault("string", {}).update(processName=rng.choice(["camera", HOSTILE[0]]))
    return event


def all_kinds(folder):
    """Writes a recording of all that an event, a filter and a machine can be."""
    rng = random.Random(19)
    machines = special_machines() + [random_machine(rng) for _ in range(6)]
    context = {"event": "Test", "int64": {"of context": 5}, "double": {"of context": 2.5},
               "string": {"of context": HOSTILE[0]}}
    write(folder, document(machines), [random_event(rng, index) for index in range(150)], context)


def hostile(folder):
    """Writes a recording in which every text is one that somebody could make trouble with. It has one machine."""
    rules = [transition("start", HOSTILE[0], "ProcessMemoryHeartBeat")]
    for index, text in enumerate(HOSTILE):
        filters = [("string", text, "==", "=" + text), ("string", "processName", "!=", "=" + "z" * 100000),
                   ("string", "processName", "!=", text + "()")]  # a function that there is not, which is logged
        rules.append(transition(text, HOSTILE[(index + 1) % len(HOSTILE)], "ProcessMemoryHeartBeat", filters,
                                ["TriggerVelora"]))
    events = [{"event": "ProcessMemoryHeartBeat", "int64": {"vmRssKB": 1, "vmSwapKB": 1, text: 3},
               "string": {text: text, "processName": text, "long": "<b>" * 33333}} for text in HOSTILE]
    write(folder, document([rules]), events + events)


def crowded(folder, rules):
    """Events that are many more than pixels, and lie close to each other in a plot: here and there."""
    rng = random.Random(20261127)
    events = [{"event": "ProcessMemoryHeartBeat", "string": {"processName": rng.choice(["camera"] + 9 * ["gallery"])},
               "int64": {"vmRssKB": rng.randrange(0, 1200000)} if rng.random() < 0.9 else {}} for _ in range(4000)]
    write(folder, json.loads(rules), events)


def large(folder, events=100_000, machines=50):
    """Writes a recording as of a long day: the memory of twenty processes goes up and down."""
    rng = random.Random(50)
    sizes = [rng.randint(50_000, 300_000) for _ in range(20)]
    recorded = []
    for index in range(events):
        record = {"event": rng.choices(EVENT_TYPES[1:4], [85, 10, 5])[0], "time_ms": index * 60}
        if record["event"] == "ProcessMemoryHeartBeat":
            process = rng.randrange(20)
            sizes[process] = max(4_000, sizes[process] + round(rng.gauss(0, 9_000)))
            record["int64"] = {"pid": 1000 + process, "vmRssKB": sizes[process], "vmSwapKB": 0}
            record["string"] = {"processName": f"process{process}"}
        elif record["event"] == "SystemMemoryHeartBeat":
            record["int64"] = {"memFreeKB": rng.randrange(8_000_000)}
            record["double"] = {"psiSomeAvg10": rng.random() * 100}
        else:
            record["uint64"] = {"memUsedMaxBytes": rng.randrange(2**30), "numCompressedDataBytes": rng.randrange(2**30)}
        recorded.append(record)
    beat = "ProcessMemoryHeartBeat"
    made = []
    for index in range(machines):
        mine = ("string", "processName", "==", f"=process{index % 20}")
        least, most = f"={120_000 + 4_000 * index}", f"={150_000 + 4_000 * index}"
        made.append([
            transition("start", "over budget", beat, [mine, ("integer", "vmRssKB", ">", most)]),
            transition("over budget", "start", beat, [mine, ("integer", "vmRssKB", "<=", least)]),
            transition("over budget", "sampling", beat, [mine, ("double", "PseudoRandomDouble()", "<", "=0.1")]),
            transition("sampling", "start", beat, [mine, ("integer", "vmRssKB", "<=", least)]),
            transition("sampling", "cooling down", beat, [mine, ("integer", "vmRssKB", ">", most)], ["TriggerVelora"]),
            transition("cooling down", "start", beat, [mine, ("integer", "vmRssKB", "<=", least)]),
            transition("cooling down", "cooling down", "ZramHeartBeat", [("integer", "vmRssKB", "==", "=1")]),
        ])
    write(folder, document(made), recorded)
