"""Tells whether two machines do the same by all events, by a walk through both at once, with z3.

What a machine does with an event is made a diagram: of questions, each with two ways on, of what it asks the trigger
service for and logs on the way, and of the states that it comes to. A walk has a place in the diagram of either machine
and the answers that led there, as long as something is still to be asked that has to do with them. While one event is
offered, the k-th draw is the same for both machines, so that the one goes on that has drawn less.
"""
import collections
import functools
import itertools

from semantics import KINDS, MOST_MOVES, filter_of, is_draw, missing, outcomes

ENTERING = "EnteringState"
NEEDS = {"TriggerVelora": [("string", "processName"), ("int64", "vmRssKB"), ("int64", "vmSwapKB")],
         "TriggerVeloraCpu": [("string", "processName"), ("double", "cpuAvgUtilization")]}
REQUESTS, LINES = 0, 1
MOST_PLACES = 200_000


class TooMuch(Exception):
    """There are too many places to go to."""


class Question:
    """A condition, how many draws it needs, and how it goes on if it holds and if it does not.

    A condition on draws ends with the number of the first, counted from those that the machine has made.
    """

    def __init__(self, condition, draws, yes, no):
        self.condition, self.draws, self.ways = condition, draws, ((True, yes), (False, no))


Done = collections.namedtuple("Done", "sequence what then")  # something for the trigger service, or for the log
Move = collections.namedtuple("Move", "target")              # the machine enters that state
Place = collections.namedtuple("Place", "question moves drawn")  # it waits in the state that stands for a question


class Diagrams:
    """The diagrams of one machine in one context."""

    def __init__(self, rules, context):
        self.rules, self.context = rules, context
        self.begin, self.go = functools.cache(self.begin), functools.cache(self.go)

    def listens_for(self, state):
        return {rule["event"] for rule in self.rules if rule["from_state"] == state} - {ENTERING}

    def begin(self, state, event):
        """Returns the diagram of an event in a state, whose name stands for waiting there."""
        diagram = state
        for rule in reversed(self.rules):
            if (rule["from_state"], rule["event"]) == (state, event):
                fires = Move(rule["to_state"])
                for action in reversed(rule["actions"]):
                    fires = self.act(action["name"], event == ENTERING, fires)
                diagram = self.ask(list(map(filter_of, rule["filters"])), event == ENTERING, fires, diagram)
        return diagram

    def ask(self, filters, on_entering, yes, no):
        def draws(rule):
            return is_draw(rule, rule.left) + is_draw(rule, rule.right)

        for drawn, group in itertools.groupby(reversed(filters), draws):
            group = list(group)
            if drawn:
                for rule in group:
                    yes = Question(("drawn", rule, on_entering, 0), drawn, yes, no)
            elif not on_entering:
                yes = Question(("may hold", frozenset(group)), 0, yes, no)
            elif not all(outcomes(rule, missing, self.context)[0] for rule in group):
                yes = no
        return yes

    def act(self, name, on_entering, then):
        if name not in NEEDS:
            figures = "0 and 0" if on_entering else "those of the event"
            return Done(LINES, figures, then) if name == "LogZramHeartBeat" else then
        way = Done(REQUESTS, name, then)
        for kind, attribute in reversed(NEEDS[name]):
            way_without = Done(LINES, f"lacks {attribute}", then)
            way = way_without if on_entering else Question(("is there", kind, attribute), 0, way, way_without)
        return way

    def go(self, way, moves):
        """Follows a way to the next question, and returns that, the moves until then, and what was done."""
        done = ([], [])
        while not isinstance(way, (Question, str)):
            if isinstance(way, Done):
                done[way.sequence].append(way.what)
                way = way.then
            else:
                moves += 1
                way = self.begin(way.target, ENTERING) if moves < MOST_MOVES else way.target
        return way, moves, tuple(map(tuple, done))


def moved_by(condition, draws):
    if condition[0] == "not":
        return "not", moved_by(condition[1], draws)
    return (*condition[:-1], condition[-1] + draws) if condition[0] == "drawn" else condition


@functools.cache
def parts_of(condition):
    """Returns what a condition is about: attributes of the event, and draws by their numbers."""
    kind, *rest = condition
    if kind == "not":
        return parts_of(rest[0])
    if kind == "is there":
        return {tuple(rest)}
    rules = rest[0] if kind == "may hold" else rest[:1]
    attributes = {(KINDS[rule.kind], side[1])
                  for rule in rules for side in (rule.left, rule.right) if side[0] == "envvar"}
    if kind == "may hold":
        return attributes
    rule, on_entering, number = rest
    drawn = is_draw(rule, rule.left) + is_draw(rule, rule.right)
    return set(range(number, number + drawn)) | (set() if on_entering else attributes)


class Difference:
    """Two machines, each the rules of one, in one context."""

    def __init__(self, rules, context, events, with_states):
        self.context, self.events, self.with_states = context, events, with_states
        self.machines = [Diagrams(each, context) for each in rules]

    def verdict(self):
        """Returns what is true of the two machines, and after how many events at least a recording shows it."""
        try:
            least = self.shortest(recordable=True)
            if least is not None:
                return "different", least
            return ("same" if self.shortest(recordable=False) is None else "unrecordable"), None
        except TooMuch:
            return "not decided", None

    def shortest(self, recordable):
        seen, waited, events = set(), set(), 0
        first = [machine.begin("start", ENTERING) for machine in self.machines]
        waits = self.play([self.walk(first, [0, 0])], seen, recordable)
        while waits is not None:
            new, walks = waits - waited, []
            waited |= new
            if not new:
                return None
            for states in new:
                types = set().union(*(machine.listens_for(state) for machine, state in zip(self.machines, states)))
                for event in types:
                    walks.append(self.walk([machine.begin(state, event) for machine, state in zip(
                        self.machines, states)], [-1, -1]))
            waits, events = self.play(walks, seen, recordable), events + 1
        return events

    def walk(self, ways, moves):
        walk = (None, None), frozenset(), ((), ()), ((), ())
        for which, way in enumerate(ways):
            walk = self.go_on(walk, which, way, moves[which], 0)
        return walk

    def go_on(self, walk, which, way, moves, drawn):
        """Lets one machine go on to its next question. Returns nothing if the sequences differ then."""
        if walk is None:
            return None
        places, answers, *ahead = walk
        question, moves, done = self.machines[which].go(way, moves)
        places = tuple(Place(question, moves, drawn) if each == which else places[each] for each in (0, 1))
        for sequence in (REQUESTS, LINES):
            both = [list(each) for each in ahead[sequence]]
            both[which] += done[sequence]
            common = min(map(len, both))
            if both[0][:common] != both[1][:common]:
                return None
            ahead[sequence] = tuple(tuple(each[common:]) for each in both)
        return places, answers, *ahead

    def play(self, walks, seen, recordable):
        """Follows the walks. Returns in which two states the machines may wait then, nothing if something differs."""
        waits, walks = set(), list(walks)
        while walks:
            walk = walks.pop()
            if walk is None:
                return None
            if walk in seen:
                continue
            seen.add(walk)
            if len(seen) > MOST_PLACES:
                raise TooMuch
            places, answers, *ahead = walk
            asking = [which for which in (0, 1) if isinstance(places[which].question, Question)]
            if not asking:
                states = tuple(place.question for place in places)
                if ahead != [((), ())] * 2 or (self.with_states and states[0] != states[1]):
                    return None
                waits.add(states)
                continue
            which = min(asking, key=lambda each: (places[each].drawn, places[each].moves))
            question, moves, drawn = places[which]
            asked = moved_by(question.condition, drawn)
            for holds, way in question.ways:
                told = answers | {asked if holds else ("not", asked)}
                if self.events.possible(told, self.context, recordable):
                    walks.append(self.forget(self.go_on(
                        (places, told, *ahead), which, way, moves, drawn + question.draws)))
        return waits

    @staticmethod
    def forget(walk):
        """Leaves out the answers that have nothing to do with what may still be asked, and counts draws from there."""
        if walk is None:
            return None
        places, answers, *ahead = walk
        asking = [place for place in places if isinstance(place.question, Question)]
        base = min((place.drawn for place in asking), default=0)
        in_event = any(place.moves < 0 for place in asking)
        known, parts = set(), set()
        while True:
            more = {each for each in answers - known if not parts.isdisjoint(parts_of(each)) or any(
                (part >= base if isinstance(part, int) else in_event) for part in parts_of(each))}
            if not more or not asking:
                break
            known |= more
            parts = parts.union(*map(parts_of, more))
        places = tuple(Place(question, moves, max(0, drawn - base)) if isinstance(question, Question) else
                       Place(question, 0, 0) for question, moves, drawn in places)
        return places, frozenset(moved_by(each, -base) for each in known), *ahead
