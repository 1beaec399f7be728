"""Changes a random rule document a little, as its author could, by mistake or so that nothing should change."""
import copy
import json

import semantics
from documents import EVENT_TYPES, is_accepted, make_document

OPPOSITES = {"==": "!=", "!=": "==", "<": ">=", ">=": "<", ">": "<=", "<=": ">"}


def pick(rng, values):
    """Returns one of the values; without any, nothing can be changed."""
    if not values:
        raise LookupError
    return rng.choice(values)


def constant_of(rng, rules):
    return pick(rng, [(each, each[side]) for rule in rules for each in rule["filters"]
                      for side in ("operand1", "operand2") if each[side]["type"] == "constant"])


def change_constant(rng, words, rules):
    rule, constant = constant_of(rng, rules)
    steps = sorted(semantics.around(rule["value_type"], constant["value"]), key=repr)
    constant["value"] = str(rng.choice(steps + words.constants[rule["value_type"]]))


def spell_constant(rng, _words, rules):
    rule, constant = constant_of(rng, rules)
    if rule["value_type"] != "string":
        constant["value"] = rng.choice([" ", "+", " 0", "000"]) + constant["value"] + rng.choice(["", "kB", ".0", "e0"])


def change_operator(rng, _words, rules):
    rule = pick(rng, [each for rule in rules for each in rule["filters"]])
    rule["operator"] = rng.choice(list(semantics.COMPARE))


def turn_filter(rng, _words, rules):
    """Puts the right side on the left, which changes nothing but the order of two draws."""
    rule = pick(rng, [each for rule in rules for each in rule["filters"]])
    rule["operator"] = semantics.MIRRORED[rule["operator"]]
    rule["operand1"], rule["operand2"] = rule["operand2"], rule["operand1"]


def lose_filter(rng, _words, rules):
    filters = pick(rng, [rule["filters"] for rule in rules if rule["filters"]])
    filters.pop(rng.randrange(len(filters)))


def add_filter(rng, words, rules):
    filters = pick(rng, rules)["filters"]
    filters.insert(rng.randint(0, len(filters)), copy.deepcopy(rng.choice(words.filters + filters)))


def move_filter(rng, _words, rules):
    filters = pick(rng, [rule["filters"] for rule in rules if len(rule["filters"]) > 1])
    filters.insert(rng.randrange(len(filters)), filters.pop(rng.randrange(len(filters))))


def split_filter(rng, _words, rules):
    filters, at = pick(rng, [(rule["filters"], at) for rule in rules for at, each in enumerate(rule["filters"])
                             if each["operator"] == "=="])
    filters[at:at + 1] = [copy.deepcopy(filters[at]) | {"operator": operator} for operator in (">=", "<=")]


def lose_action(rng, _words, rules):
    actions = pick(rng, [rule["actions"] for rule in rules if rule["actions"]])
    actions.pop(rng.randrange(len(actions)))


def add_action(rng, _words, rules):
    actions = pick(rng, rules)["actions"]
    name = rng.choice(["Test", "LogZramHeartBeat", "TriggerVelora", "TriggerVeloraCpu"])
    actions.insert(rng.randint(0, len(actions)), {"name": name})


def turn_actions(rng, _words, rules):
    pick(rng, [rule["actions"] for rule in rules if len(rule["actions"]) > 1]).reverse()


def lose_transition(rng, _words, rules):
    rules.remove(pick(rng, rules))


def double_transition(rng, _words, rules):
    at = rules.index(pick(rng, rules))
    rules.insert(rng.randint(at, len(rules)), copy.deepcopy(rules[at]))


def add_transition(rng, words, rules):
    rule = pick(rng, rules)
    states = [each[end] for each in rules for end in ("from_state", "to_state")] + ["nowhere"]
    filters = [each for each in words.some_filters([0, 1, 2], rule["event"]) if is_accepted(each)]
    rules.insert(rng.randint(0, len(rules)), copy.deepcopy(rule | {
        "from_state": rng.choice(states), "to_state": rng.choice(states), "filters": filters}))


def swap_transitions(rng, _words, rules):
    one, other = (rules.index(pick(rng, rules)) for _ in range(2))
    rules[one], rules[other] = rules[other], rules[one]


def split_transition(rng, words, rules):
    """Makes a transition two, one for a filter and one for its opposite, which a number that is missing fails, too."""
    at = rules.index(pick(rng, rules))
    condition = copy.deepcopy(rng.choice(words.filters))
    opposite = condition | {"operator": OPPOSITES[condition["operator"]]}
    rules[at:at + 1] = [copy.deepcopy(rules[at] | {"filters": rules[at]["filters"] + [each]})
                        for each in (condition, opposite)]


def rename_state(rng, _words, rules):
    state = pick(rng, [rule["from_state"] for rule in rules if rule["from_state"] != "start"])
    for rule in rules:
        for end in ("from_state", "to_state"):
            if rule[end] == state:
                rule[end] = "renamed"


def change_target(rng, _words, rules):
    pick(rng, rules)["to_state"] = rng.choice([rule["from_state"] for rule in rules] + ["end"])


def unroll_state(rng, _words, rules):
    """Sends some of the ways into a state to a copy of it."""
    state = pick(rng, [rule["to_state"] for rule in rules])
    rules += [copy.deepcopy(rule) | {"from_state": "copy"} for rule in rules if rule["from_state"] == state]
    for rule in rules:
        if rule["to_state"] == state and rng.random() < 0.5:
            rule["to_state"] = "copy"


def change_event(rng, _words, rules):
    pick(rng, rules)["event"] = rng.choice(EVENT_TYPES)


CHANGES = [change_constant, change_constant, spell_constant, spell_constant, change_operator, turn_filter, lose_filter,
           add_filter, move_filter, move_filter, split_filter, lose_action, add_action, turn_actions, lose_transition,
           double_transition, double_transition, add_transition, add_transition, swap_transitions, swap_transitions,
           split_transition, rename_state, rename_state, change_target, unroll_state, unroll_state, change_event]


def changed(rng, words, document):
    """Returns a copy of the document with one to three changes."""
    new = json.loads(json.dumps(document))
    if rng.random() < 0.05:  # a configuration comes or goes, maybe one that can do nothing
        ids = {config["id"] for config in new["configs"]}
        new["configs"].pop(rng.randrange(len(ids)))
        new["configs"] += [config for config in make_document(rng, words)["configs"] if config["id"] not in ids]
    if rng.random() < 0.1:
        rng.shuffle(new["configs"])
    new = json.loads(json.dumps(new))  # in which no filter is in two places at once, nor in the other document
    wanted = rng.choice([1, 1, 2, 3])
    for change in rng.choices(CHANGES, k=40):
        if wanted and new["configs"]:
            rules = rng.choice(new["configs"])["payload"]["data"]["transitions"]
            kept = copy.deepcopy(rules)
            try:
                change(rng, words, rules)
            except LookupError:
                continue
            if all(is_accepted(each) for rule in rules for each in rule["filters"]):
                wanted -= 1
            else:
                rules[:] = kept
    return new
