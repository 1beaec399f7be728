"""Answers what a state machine of a rule document can do, with z3 and plain graph search.

This is written from docs/rule-documents.md and knows nothing of how the tool answers the same questions.

Every value is its place on a line of integers, so that z3 compares nothing but integers, and exactly:
  integer  The place is the number itself.
  double   The place is the bit pattern without its sign, negated below 0. Neighbours have neighbouring places, -0 and 0
           the same one, an infinity the one behind the last finite number. A NaN is a flag beside it.
  string   The place is counted along TEXTS, the sorted texts that occur in documents. Strictly between two of them,
           a < b, there are exactly n - 1 texts if b is a with n NULs behind it. Otherwise a with any number of NULs
           behind it is below b, and GAP of these are enough, for no document has so many attributes.
"""
import bisect
import collections
import ctypes
import errno
import fractions
import functools
import itertools
import math
import operator
import struct

import z3

MOST_MOVES = 1000
GAP = 16
TEXTS = sorted(["", "\0", "\0\0", "a", "a\0", "a\0\0\0", "ab", "b", "camera", "camera\0x", "camerb", "~", "é",
                "\U0010ffff"], key=str.encode)
KINDS = {"integer": "int64", "double": "double", "string": "string"}  # a value type and the attributes that it reads
COMPARE = {"==": operator.eq, "!=": operator.ne, "<": operator.lt, ">": operator.gt, "<=": operator.le,
           ">=": operator.ge}
MIRRORED = {"==": "==", "!=": "!=", "<": ">", ">": "<", "<=": ">=", ">=": "<="}

Filter = collections.namedtuple("Filter", "operator kind left right")  # operands are pairs of type and value
Value = collections.namedtuple("Value", "present place nan")
Transition = collections.namedtuple("Transition", "source target event filters actions before")
Chain = collections.namedtuple("Chain", "rests visited fired")
Reached = collections.namedtuple("Reached", "states transitions rests")  # each with the fewest events


def filter_of(rule):
    return Filter(rule["operator"], rule["value_type"],
                  *((rule[side]["type"], rule[side]["value"]) for side in ("operand1", "operand2")))


def context_of(record):
    return frozenset((kind, name, value) for kind in KINDS.values() for name, value in record.get(kind, {}).items())


# Values and their places.

def place_of_double(value):
    bits = struct.unpack("<q", struct.pack("<d", value))[0]
    return bits if bits >= 0 else -(bits + 2**63)


def place_of_text(text):
    """Returns a place between those of TEXTS for another text, a fraction if it is not one of them with NULs behind."""
    digits = text.encode()
    lower = TEXTS[bisect.bisect(TEXTS, digits, key=str.encode) - 1]
    rest = text.removeprefix(lower)
    if set(rest) <= {"\0"}:
        return PLACES[lower] + len(rest)
    return PLACES[lower] + GAP - 1 + sum(fractions.Fraction(digit + 1, 257**at) for at, digit in enumerate(digits, 1))


def value_of(kind, value):
    if kind == "string":
        return Value(value != "", place_of_text(value), False)
    if kind == "double":
        return Value(True, 0 if math.isnan(value) else place_of_double(value), math.isnan(value))
    return Value(True, value, False)


def places_of_texts():
    places = {"": 0}
    for lower, upper in itertools.pairwise(TEXTS):
        rest = upper.removeprefix(lower)
        places[upper] = places[lower] + (len(rest) if set(rest) == {"\0"} else GAP)
    return places


PLACES = places_of_texts()
INFINITY = place_of_double(math.inf)
LAST_DRAW = place_of_double(1.0) - 1
LIBC = ctypes.CDLL(None, use_errno=True)
LIBC.strtod.restype = ctypes.c_double
LIBC.strtoll.restype = ctypes.c_longlong


@functools.cache
def read_constant(kind, text):
    """Returns the value of a constant, and whether it may be compared with an attribute or a function."""
    if kind == "string":
        return value_of(kind, text), True
    data, end = ctypes.create_string_buffer(text.encode()), ctypes.c_void_p()
    ctypes.set_errno(0)
    number = LIBC.strtod(data, ctypes.byref(end)) if kind == "double" else LIBC.strtoll(data, ctypes.byref(end), 10)
    in_range = ctypes.get_errno() != errno.ERANGE or (kind == "double" and number != 0 and not math.isinf(number))
    return value_of(kind, number), in_range and end.value != ctypes.addressof(data)


def around(kind, text):
    """Returns the constant of that text and the values on either side, as a record has them."""
    if kind == "string":
        return {"", text, text + "\0"}
    value = read_constant(kind, text)[0]
    places = {value.place + step for step in (-1, 0, 1)}
    if kind == "integer":
        return {place for place in places if -2**63 <= place < 2**63}
    bits = [place if place >= 0 else -place - 2**63 for place in places if abs(place) < INFINITY]
    return {struct.unpack("<d", struct.pack("<q", each))[0] for each in bits}


# Formulas are those of z3, or True and False where that is known without it.

def conjunction(parts):
    parts = [part for part in parts if part is not True]
    return False if any(part is False for part in parts) else z3.And(parts) if parts else True


def negation(part):
    return not part if isinstance(part, bool) else z3.Not(part)


def disjunction(parts):
    return negation(conjunction([negation(part) for part in parts]))


def choice(condition, yes, no):
    return (yes if condition else no) if isinstance(condition, bool) else z3.If(condition, yes, no)


def compare(comparison, left, right):
    """Tells when the comparison of two values holds; with a NaN only != does."""
    ordered = conjunction([negation(left.nan), negation(right.nan)])
    holds = COMPARE[comparison](left.place, right.place)
    return disjunction([negation(ordered), holds]) if comparison == "!=" else conjunction([ordered, holds])


def draw_outcomes(comparison, value):
    """Tells when a draw may compare so and when it may not: if one does so, so does the least or the greatest."""
    if comparison in ("==", "!="):
        equal = conjunction([negation(value.nan), value.place >= 0, value.place <= LAST_DRAW])
        return (equal, True) if comparison == "==" else (True, equal)
    holds = [compare(comparison, Value(True, place, False), value) for place in (0, LAST_DRAW)]
    return disjunction(holds), disjunction([negation(each) for each in holds])


def is_draw(rule, side):
    return rule.kind == "double" and side == ("function", "PseudoRandomDouble")


def outcomes(rule, attribute, context, draw=lambda: None):
    """Returns when a filter may hold and when it may not, both of which draws can make true at once.

    `attribute` gives the value of an attribute of the event by its kind and name, and `draw` that of the next draw, if
    it is known.
    """
    comparison, kind, left, right = rule
    if left[0] == "constant" and right[0] != "constant":
        comparison, left, right = MIRRORED[comparison], right, left
    def operand(side):
        if side[0] == "constant":
            return read_constant(kind, side[1])[0]
        if is_draw(rule, side):
            return draw()
        if side[0] == "function":
            return Value(True, 0, False)
        value = attribute(KINDS[kind], side[1])
        return Value(True, choice(value.present, value.place, 0), conjunction([value.present, value.nan]))

    if left[0] == "envvar" and right[0] == "constant":
        value = attribute(KINDS[kind], left[1])
        for _, _, found in (item for item in context if item[:2] == (KINDS[kind], left[1])):
            other = value_of(kind, found)
            value = Value(disjunction([value.present, other.present]), choice(value.present, value.place, other.place),
                          conjunction([value.present, value.nan]))
        # A string that is missing has the place of the empty one.
        holds = conjunction([kind == "string" or value.present, compare(comparison, value, operand(right))])
        return holds, negation(holds)
    values = operand(left), operand(right)
    if values == (None, None):  # two draws
        return True, True
    if values[0] is None:
        return draw_outcomes(comparison, values[1])
    if values[1] is None:
        return draw_outcomes(MIRRORED[comparison], values[0])
    holds = compare(comparison, *values)
    return holds, negation(holds)


def fulfils(filters, record, context):
    """Tells whether an event record fulfils filters without draws, each with its event type."""
    def attribute(kind, name):
        value = record.get(kind, {}).get(name)
        return Value(False, 0, False) if value is None else value_of(kind, value)
    return all(event in (None, record["event"]) and outcomes(each, attribute, context)[0] for each, event in filters)


def chance(rule, values, verdict):
    """Returns how likely a filter comes out so with these values on its sides, and None if it does not draw."""
    drawn = [is_draw(rule, side) for side in (rule.left, rule.right)]
    if not any(drawn):
        return None
    comparison, other = (rule.operator, values[1]) if drawn[0] else (MIRRORED[rule.operator], values[0])
    below = 0.5 if all(drawn) else min(max(float(other), 0), 1)
    likely = {"==": 0, "!=": 1}.get(comparison, below if "<" in comparison else 1 - below)
    if not all(drawn) and math.isnan(float(other)):
        likely = int(comparison == "!=")
    return likely if verdict else 1 - likely


def missing(_kind, _name):
    """The attributes of an EnteringState event."""
    return Value(False, 0, False)


class Events:
    """Tells whether there is an event of which some things are true, and remembers what it has told."""

    def __init__(self):
        self.solver = z3.SolverFor("QF_LIA")
        self.recordable = z3.Bool("recordable")
        self.attributes = {}
        self.draws = {}
        self.filters = {}
        self.formulas = {}
        self.answers = {}

    def attribute(self, kind, name):
        if (kind, name) not in self.attributes:
            place, present, nan = z3.Int(f"{kind} {name}"), z3.Bool(f"{kind} {name} is there"), False
            if kind == "int64":
                self.solver.add(place >= -2**63, place < 2**63)
            elif kind == "string":
                present = place != 0
                self.solver.add(place >= 0)
            else:
                nan = z3.Bool(f"{kind} {name} is NaN")
                finite = z3.And(place > -INFINITY, place < INFINITY, z3.Not(nan))
                self.solver.add(place >= -INFINITY, place <= INFINITY, z3.Implies(self.recordable, finite))
            self.attributes[kind, name] = Value(present, place, nan)
        return self.attributes[kind, name]

    def draw(self, number):
        """Returns the value of the draw of that number, whatever the numbers are counted from."""
        if number not in self.draws:
            place = z3.Int(f"draw {number}")
            self.solver.add(place >= 0, place <= LAST_DRAW)
            self.draws[number] = Value(True, place, False)
        return self.draws[number]

    def outcomes(self, rule, context):
        if (rule, context) not in self.filters:
            self.filters[rule, context] = outcomes(rule, self.attribute, context)
        return self.filters[rule, context]

    def formula(self, condition, context):
        if (condition, context) not in self.formulas:
            self.formulas[condition, context] = self.make_formula(condition, context)
        return self.formulas[condition, context]

    def make_formula(self, condition, context):
        """Makes a formula of a condition, a tuple that says in its first item what it is."""
        kind, *rest = condition
        if kind == "not":
            return negation(self.formula(rest[0], context))
        if kind == "may hold":
            return conjunction([self.outcomes(rule, context)[0] for rule in rest[0]])
        if kind == "may not hold":
            return disjunction([self.outcomes(rule, context)[1] for rule in rest[0]])
        if kind == "is there":
            return self.attribute(*rest).present
        if kind == "drawn":  # the filter holds, in an event or on entering, with the draws from that number on
            rule, on_entering, number = rest
            draw = functools.partial(next, map(self.draw, itertools.count(number)))
            return outcomes(rule, missing if on_entering else self.attribute, context, draw)[0]
        least, memory, cpu = rest
        name, resident, swapped, used = (self.attribute(*key).present for key in (
            ("string", "processName"), ("int64", "vmRssKB"), ("int64", "vmSwapKB"), ("double", "cpuAvgUtilization")))
        enough = {"memory": memory >= least, "cpu": cpu >= least, "both": memory + cpu >= least}
        return conjunction([name, disjunction([
            conjunction([enough["memory"], resident, swapped]), conjunction([enough["cpu"], used]),
            conjunction([enough["both"], resident, swapped, used])])])

    def possible(self, conditions, context, recordable):
        key = conditions, context, recordable
        if key not in self.answers:
            formula = conjunction([self.formula(condition, context) for condition in conditions])
            if not isinstance(formula, bool):
                self.solver.push()
                self.solver.add(formula)
                answer = self.solver.check(*[self.recordable] * recordable)
                assert answer != z3.unknown
                self.solver.pop()
                formula = answer == z3.sat
            self.answers[key] = formula
        return self.answers[key]


def triggers(rule, least):
    """The condition that an event makes at least so many triggers when it fires the transition."""
    return "triggers", least, rule.actions["TriggerVelora"], rule.actions["TriggerVeloraCpu"]


def surely_fires(rule):
    """The conditions that an event fires the transition in its state, whatever is drawn."""
    return frozenset([("not", ("may not hold", rule.filters)), *(("not", ("may hold", each)) for each in rule.before)])


def breaks(rule, filters):
    """The condition that an event that fires the transition fails one of the filters, each with its event type."""
    if any(event not in (None, rule.event) for _, event in filters):
        return "may hold", frozenset()
    return "may not hold", frozenset(each for each, _ in filters)


def filters_of(prop):
    return [(filter_of(each), each.get("event"))
            for each in prop.get("trigger_only_if", []) + prop.get("between_triggers", [])]


class Machine:
    """One machine of a document in one context."""

    def __init__(self, rules, context, events):
        self.context, self.events = context, events
        self.transitions, before = [], collections.defaultdict(frozenset)
        for rule in rules:
            source, event, filters = rule["from_state"], rule["event"], frozenset(map(filter_of, rule["filters"]))
            actions = collections.Counter(action["name"] for action in rule["actions"])
            self.transitions.append(
                Transition(source, rule["to_state"], event, filters, actions, before[source, event]))
            before[source, event] |= {filters}
        self.states = list(dict.fromkeys(["start", "end"] + [
            state for rule in self.transitions for state in (rule.source, rule.target)]))
        self.next = {state: self.moves_on_entering(state) for state in self.states}
        self.chains = {state: self.chain(state) for state in self.states}
        self.reached = self.search(recordable=True)
        self.reached_by_any = self.search(recordable=False)

    def moves_on_entering(self, state):
        """Returns the transitions that may fire when the state is entered, and None if it may be that none does."""
        moves, may_be_tried = [], True
        for index, rule in enumerate(self.transitions):
            if rule.source == state and rule.event == "EnteringState" and may_be_tried:
                found = [outcomes(each, missing, self.context) for each in rule.filters]
                if all(may for may, _ in found):
                    moves.append(index)
                may_be_tried = any(may_not for _, may_not in found)
        return moves + [None] * may_be_tried

    def chain(self, entered):
        """Makes the moves that follow when a state is entered, all that are possible at once."""
        rests, visited, fired, now = set(), {entered}, set(), frozenset([entered])
        steps = {}
        for _ in range(MOST_MOVES):
            if now not in steps:
                rests |= {state for state in now if None in self.next[state]}
                moves = {index for state in now for index in self.next[state] if index is not None}
                steps[now] = frozenset(self.transitions[index].target for index in moves)
                fired |= moves
                visited |= steps[now]
            now = steps[now]
        return Chain(rests | now, visited, fired)

    def passes(self, event, filters, before, recordable):
        """Tells whether an event may fulfil the filters, and not all filters of any of those before, in any state."""
        if event != "EnteringState":
            return self.events.possible(frozenset([("may hold", frozenset(filters))] + [
                ("may not hold", each) for each in before]), self.context, recordable)
        may, may_not = ([[outcomes(rule, missing, self.context)[which] for rule in each] for each in (filters, *before)]
                        for which in (0, 1))
        return all(may[0]) and all(map(any, may_not[1:]))

    def can(self, rule, *conditions, recordable=True):
        """Tells whether there is an event with which a transition fires and the conditions hold."""
        return self.events.possible(frozenset([("may hold", rule.filters), *conditions] + [
            ("may not hold", filters) for filters in rule.before]), self.context, recordable)

    def leaving(self, states):
        return [(index, rule) for index, rule in enumerate(self.transitions)
                if rule.source in states and rule.event != "EnteringState"]

    def rests_after(self, states, filters=None):
        """Returns where the machine may rest after any events, or after those of which none satisfies all filters."""
        found = set(states)
        while True:
            more = {rest for _, rule in self.leaving(found)
                    if (self.can(rule) if filters is None else self.can(rule, breaks(rule, filters)))
                    for rest in self.chains[rule.target].rests}
            if more <= found:
                return found
            found |= more

    def search(self, recordable):
        """Returns what can be reached, each with the number of events that it takes at least."""
        result, entered, events = Reached({}, {}, {}), {"start"}, 0
        while entered:
            new = set()
            for chain in map(self.chains.get, entered):
                for state in chain.visited:
                    result.states.setdefault(state, events)
                for index in chain.fired:
                    result.transitions.setdefault(index, events)
                new |= chain.rests - result.rests.keys()
            result.rests.update(dict.fromkeys(new, events))
            events, entered = events + 1, set()
            for index, rule in self.leaving(new):
                if self.can(rule, recordable=recordable):
                    result.transitions.setdefault(index, events)
                    entered.add(rule.target)
        return result

    def stays(self):
        """Returns the sets of states that are not left any more once the machine rests in one of them."""
        after = {state: frozenset(self.rests_after([state])) for state in self.reached.rests}
        return {states for states in after.values() if all(after[state] == states for state in states)}

    def most_triggers(self, rule):
        memory, cpu = rule.actions["TriggerVelora"], rule.actions["TriggerVeloraCpu"]
        return max((count for count in (memory, cpu, memory + cpu) if count and self.can(rule, triggers(rule, count))),
                   default=0)

    @functools.cached_property
    def steps(self):
        """The most triggers of an event that leads from one state of rest to another, for those where one does."""
        most = {}
        for _, rule in self.leaving(self.reached.rests):
            if self.can(rule):
                count = self.most_triggers(rule)
                for rest in self.chains[rule.target].rests:
                    most[rule.source, rest] = max(count, most.get((rule.source, rest), 0))
        return most

    def most_within(self, events, begin=None):
        """Returns for each state of rest the most triggers on the ways there, from any other, of so many events."""
        total = dict.fromkeys(begin or self.reached.rests, 0)
        for _ in range(events):
            longer = dict(total)
            for (source, target), count in self.steps.items():
                if source in total:
                    longer[target] = max(longer.get(target, 0), total[source] + count)
            total = longer
        return total

    def most_ever(self):
        """Returns how many triggers there can be, None if that has no bound: ways longer than all states still gain."""
        begin, states = self.chains["start"].rests, len(self.states)
        total = self.most_within(states, begin)
        return max(total.values()) if total == self.most_within(states + 1, begin) else None

    def rate(self):
        """Returns the most triggers an event in the long run: a cycle that visits no state twice has the most."""
        rates = [fractions.Fraction(0)]
        for length in range(1, len(self.states) + 1):
            for cycle in itertools.permutations(self.reached.rests, length):
                counts = [self.steps.get(step) for step in zip(cycle, cycle[1:] + cycle[:1])]
                if None not in counts:
                    rates.append(fractions.Fraction(sum(counts), length))
        return max(rates)

    def distance(self):
        """Returns the least difference of the numbers of the events of two triggers, None if there are never two."""
        least = None
        for _, rule in self.leaving(self.reached.rests):
            if self.can(rule, triggers(rule, 2)):
                return 0
            if self.can(rule, triggers(rule, 1)):
                now = self.chains[rule.target].rests
                for events in range(1, len(self.states) + 1):
                    if any(self.can(after, triggers(after, 1)) for _, after in self.leaving(now)):
                        least = min(events, least or events)
                        break
                    now = now | {target for source, target in self.steps if source in now}
        return least

    def sure_rests(self):
        """Returns where the machine rests once it enters a state, for the states after which no draw decides a move."""
        found = {}
        for state in self.states:
            now = state
            for _ in range(MOST_MOVES):
                move, *others = self.next[now]
                if move is None or others:
                    break
                now = self.transitions[move].target
            if self.next[now] == [None]:
                found[state] = now
        return found

    def storms(self, rests):
        """Returns the transitions whose triggers equal events repeat for certain, going round a cycle of states.

        `rests` tells where the machine rests for certain once it enters a state.
        """
        def closes(path, conditions):
            now = rests.get(path[-1].target)
            return now == path[0].source or (now not in {rule.source for rule in path} and any(
                goes_on(path + [rule], conditions)
                for _, rule in self.leaving([now]) if rule.event == path[0].event))

        def goes_on(path, conditions):
            conditions |= surely_fires(path[-1])
            return self.events.possible(conditions, self.context, True) and closes(path, conditions)

        return {index for index, rule in self.leaving(self.reached.rests)
                if goes_on([rule], frozenset([triggers(rule, 1)]))}

    def stuck(self):
        """Returns the states in which the machine does nothing any more once it is there, whatever the event."""
        return {state for state in self.reached_by_any.states if not any(
            rule.source == state and (rule.target != state or rule.actions) and (
                index in self.next[state] if rule.event == "EnteringState" else self.can(rule, recordable=False))
            for index, rule in enumerate(self.transitions))}

    def shortest_break(self, prop):
        """Returns how many events it takes to break a property that does not hold, None if that is not known."""
        if "cannot_reach" in prop:
            return self.reached.states[next(iter(prop["cannot_reach"].values()))]
        if "trigger_only_if" in prop:
            return 1 + min(self.reached.rests[rule.source] for _, rule in self.leaving(self.reached.rests)
                           if self.can(rule, triggers(rule, 1), breaks(rule, filters_of(prop))))
        if "at_most" in prop:
            most = prop["at_most"]
            return min((before + events for rest, before in self.reached.rests.items()
                        for events in range(1, 1 + most.get("events", len(self.states) * (most["triggers"] + 1)))
                        if max(self.most_within(events, [rest]).values(), default=0) > most["triggers"]))
        return None

    def holds(self, prop):
        """Tells whether a property, as it stands in a test file, holds."""
        filters = filters_of(prop)
        triggering = [rule for _, rule in self.leaving(self.reached.rests) if self.can(rule, triggers(rule, 1))]
        if "trigger_only_if" in prop:
            return not any(self.can(rule, triggers(rule, 1), breaks(rule, filters)) for rule in triggering)
        if "between_triggers" in prop:
            after = set().union(*(self.rests_after(self.chains[rule.target].rests, filters) for rule in triggering))
            return self.distance() != 0 and not any(rule.source in after for rule in triggering)
        if "at_most" in prop:
            if "events" in prop["at_most"]:
                return max(self.most_within(prop["at_most"]["events"]).values()) <= prop["at_most"]["triggers"]
            most = self.most_ever()
            return most is not None and most <= prop["at_most"]["triggers"]
        (state,) = prop.get("can_reach", prop.get("cannot_reach")).values()
        return (state in self.reached.states) == ("can_reach" in prop)
