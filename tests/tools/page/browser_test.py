#!/usr/bin/python3
"""browser_test.py TOOL SOURCES [SCREENSHOTS]: tries the pages that the tool makes in Chromium, by keys and clicks.

TOOL is the tool's executable, SOURCES the folder of the project, and SCREENSHOTS a folder for pictures of pages.
"""
import base64
import collections
import json
import math
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import unittest

from selenium.common.exceptions import NoAlertPresentException
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.select import Select

import recordings
from browser import Browser
from report import Run, collapsed

TOOL, SOURCES = (str(pathlib.Path(each).resolve()) for each in sys.argv[1:3])
SCREENSHOTS = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else None
EXAMPLES = pathlib.Path(SOURCES) / "examples"

# What a page is to take at most. A machine that runs other tests at the same time may need twice that.
MOST_SECONDS_TO_OPEN = 2
MOST_SECONDS_OF_A_STEP = 0.05
MARGIN = 2

RECORDING = '<script type="application/gzip" class="recording">'


def setUpModule():
    global folder, browser, escalation, everything
    temporary = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(temporary.cleanup)
    folder = pathlib.Path(temporary.name)
    browser = Browser()
    unittest.addModuleCleanup(browser.close)
    escalation = Run(TOOL, EXAMPLES, "escalation.json", "trace.jsonl", "--verbose")
    recordings.all_kinds(made_folder("all kinds"))
    everything = Run(TOOL, folder / "all kinds", "rules.json", "events.jsonl", "--verbose", "--context", "context.jsonl")


def made_folder(name):
    (folder / name).mkdir()
    return folder / name


def page_of(run, name):
    path = folder / f"{name}.html"
    if not path.exists():
        run.write_page(path)
    return path


def vig(where, *arguments):
    """Returns what the tool writes, whatever it thinks of the input."""
    return subprocess.run([TOOL, *arguments], cwd=where, capture_output=True, encoding="utf-8").stdout


def figure(name, value):
    print(f"    {name}: {value}", flush=True)


def screenshot(name):
    if SCREENSHOTS:
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        browser.picture(SCREENSHOTS / f"{name}.png")


def events_in(seen):
    return [int(each["event"]) for each in seen]


def walk_of(start, places, count, direction):
    """Returns where somebody comes who goes to the next of the places, again and again."""
    way = [start]
    for _ in range(count):
        ahead = [each for each in places if (each - way[-1]) * direction > 0]
        way.append(way[-1] if not ahead else min(ahead) if direction > 0 else max(ahead))
    return way[1:]


def shown_number(value):
    """A number of an event as the tool shows it."""
    if isinstance(value, bool):
        return str(value).lower()
    return re.sub(r"\.0$", "", repr(value))


def numbers_of(event):
    """Returns the numbers and truths that an event has, with their names."""
    return [(name, shown_number(value)) for kind in ("int64", "uint64", "double", "bool")
            for name, value in event.get(kind, {}).items()]


def rows_in(turn):
    """Returns what the page says that a machine did, as the report would say it."""
    rows = []
    for row in turn["rows"]:
        text = collapsed(" ".join(text for _, text in row["parts"]))
        rows.append(("explain" if row["what"] == "step" else row["what"], text))
    return rows


class EachStepIsThatOfExplain(unittest.TestCase):
    def test_the_example(self):
        self.walk(escalation, "escalation")

    def test_all_that_events_filters_and_machines_can_be(self):
        self.walk(everything, "everything")

    def test_a_part_of_a_recording_with_one_machine(self):
        options = ["--context", "context.jsonl", "--machine", "7", "--from", "20", "--to", "60", "--where",
                   "event=ProcessMemoryHeartBeat"]
        self.walk(Run(TOOL, everything.folder, "rules.json", "events.jsonl", *options), "part")

    def walk(self, run, name):
        browser.open(page_of(run, name))
        count = 0
        for index, machine in enumerate(run.machines):
            browser.press(Keys.HOME, *[Keys.ARROW_DOWN] * (index > 0))
            seen = [browser.snapshot(), *browser.walk(Keys.ARROW_RIGHT * (len(run.numbers) - 1))]
            self.assertEqual(events_in(seen), run.numbers)
            for event, each in zip(run.numbers, seen):
                self.compare(run, event, machine, each)
                count += len(each["turns"][0]["rows"])
            self.compare_pictures(run, machine, seen)
        figure(name, f"{len(run.numbers)} events, {len(run.machines)} machines, {count} steps and lines compared")
        self.assertEqual(browser.complaints(), [])

    def compare(self, run, event, machine, seen):
        where = f"event {event}, machine {machine}"
        identifier = run.rules["configs"][machine]["id"]
        self.assertEqual(seen["machine"], f"{machine} (id {identifier})", where)
        self.assertEqual(len(seen["turns"]), 1, where)
        turn = seen["turns"][0]
        for got, wanted in zip(rows_in(turn), run.turns[event, machine]):
            self.assertEqual(got, wanted, f"{where}: the page\n  {got}\nvig run\n  {wanted}")
        self.assertEqual(len(turn["rows"]), len(run.turns[event, machine]), where)
        self.assertEqual([("log", collapsed(each)) for each in seen["own"]], run.turns[event, None], where)
        self.compare_structure(run.steps[event, machine], turn, where)
        if event > 0:
            self.compare_attributes(run.events[event - 1], seen["attributes"], where)

    def compare_attributes(self, event, seen, where):
        """Texts are shown as in the steps; of the numbers many are not compared, and so not told there."""
        numbers = numbers_of(event)
        self.assertEqual(len(seen), len(event.get("string", {})) + len(numbers), where)
        missing = collections.Counter(value for _, value in numbers) - collections.Counter(value for _, value in seen)
        self.assertEqual(missing, collections.Counter(), where)
        for name, value in numbers:
            if name.isalpha() and len(name) < 64:  # other names are shown otherwise
                self.assertIn([name, value], seen, where)

    def compare_pictures(self, run, machine, seen):
        """One state of the machine is lit, the same one whenever it is in that state, and another one in another."""
        lit = {}
        for event, each in zip(run.numbers, seen):
            self.assertRegex(" ".join(each["lit"]), rf"^c{machine}s\d+$", f"event {event}, machine {machine}")
            if run.steps[event, machine]:
                lit.setdefault(run.state_after(event, machine), set()).add(each["lit"][0])
        states = [state for each in lit.values() for state in each]
        self.assertEqual(len(set(states)), len(lit), f"machine {machine}: {lit}")
        self.assertEqual(len(states), len(lit), f"machine {machine}: {lit}")

    def compare_structure(self, steps, turn, where):
        """Each comparison and each action has a line of its own."""
        seen = [row for row in turn["rows"] if row["what"] == "step"]
        self.assertEqual(len(seen), len(steps), where)
        for step, row in zip(steps, seen):
            kinds = ["root"]
            for each in step["transitions"]:
                kinds += ["attempt"] + ["comparison"] * len(each["filters"]) + ["action"] * len(each["actions"])
            self.assertEqual([kind for kind, _ in row["parts"]], kinds, where)
            verdicts = [each["verdict"] for attempt in step["transitions"] for each in attempt["filters"]]
            self.assertEqual(row["verdicts"], ["yes" if each else "no" for each in verdicts], where)


class KeysAndButtons(unittest.TestCase):
    """Where they lead is worked out from what `vig run` writes."""

    def setUp(self):
        browser.open(page_of(everything, "everything"))
        self.last = everything.numbers[-1]

    def select_machine(self, machine):
        browser.press(Keys.HOME, Keys.ARROW_UP * len(everything.machines), Keys.ARROW_DOWN * machine)
        self.assertEqual(browser.place()[1].split()[0], str(machine))

    def test_next_previous_first_and_last_event(self):
        self.assertEqual(events_in(browser.walk(Keys.ARROW_RIGHT * 3)), [1, 2, 3])
        self.assertEqual(events_in(browser.walk(Keys.ARROW_LEFT * 4)), [2, 1, 0, 0])
        self.assertEqual(events_in(browser.walk(Keys.END) + browser.walk(Keys.ARROW_RIGHT)), [self.last] * 2)
        self.assertEqual(events_in(browser.walk(Keys.HOME)), [0])
        for button, event in [("next", 1), ("next", 2), ("previous", 1), ("last", self.last), ("first", 0)]:
            browser.click(button)
            self.assertEqual(browser.place()[0], str(event), button)

    def test_next_and_previous_machine(self):
        labels = [f"{index} (id {each['id']})" for index, each in enumerate(everything.rules["configs"])]
        self.assertEqual([each["machine"] for each in browser.walk(Keys.ARROW_DOWN * len(labels))], labels[1:] + labels[-1:])
        self.assertEqual([each["machine"] for each in browser.walk(Keys.ARROW_UP * len(labels))], labels[-2::-1] + labels[:1])
        for button, label in [("next-machine", labels[1]), ("previous-machine", labels[0])]:
            browser.click(button)
            self.assertEqual(browser.place(), ("0", label))

    def test_moves_triggers_and_log_lines(self):
        busiest = {"move": max(everything.moves, key=lambda each: len(everything.moves[each])),
                   "trigger": max(everything.triggers, key=lambda each: len(everything.triggers[each])), "log": 4}
        for what, key in [("move", "m"), ("trigger", "t"), ("log", "l")]:
            machine = busiest[what]
            places = {"move": everything.moves[machine], "trigger": everything.triggers[machine],
                      "log": everything.logs(machine)}[what]
            self.assertGreater(len(places), 3, what)
            self.select_machine(machine)
            self.walk_there_and_back(key, key.upper(), places)
            self.assertIn(f"no earlier {what}", browser.snapshot()["live"])
            self.click_there_and_back(f"next-{what}", f"previous-{what}", places)

    def walk_there_and_back(self, forwards, backwards, places):
        count = len(places) + 1
        browser.press(Keys.HOME)
        self.assertEqual(events_in(browser.walk(forwards * count)), walk_of(0, places, count, 1), forwards)
        browser.press(Keys.END)
        self.assertEqual(events_in(browser.walk(backwards * count)), walk_of(self.last, places, count, -1), backwards)

    def click_there_and_back(self, forwards, backwards, places):
        for button, start, direction in [(forwards, "first", 1), (backwards, "last", -1)]:
            browser.click(start)
            for event in walk_of(0 if direction > 0 else self.last, places, 3, direction):
                browser.click(button)
                self.assertEqual(browser.place()[0], str(event), button)

    def test_the_times_that_a_transition_or_a_filter_was_tried(self):
        choices = 0
        for machine in [3, 7]:
            self.select_machine(machine)
            for index, each in enumerate(everything.rules["configs"][machine]["payload"]["data"]["transitions"]):
                for filters in range(len(each["filters"]) + 1):
                    choices += self.walk_the_times(machine, index, filters)
        self.assertGreater(choices, 5)

    def walk_the_times(self, machine, transition, filters):
        places = everything.tried(machine, transition, filters)
        if len(places) < 2:
            return False
        self.choose(transition, filters)
        self.walk_there_and_back("f", "F", places)
        self.click_there_and_back("next-tried", "previous-tried", places)
        return True

    def choose(self, transition, filters):
        """Chooses a transition, or the last of so many filters of it."""
        browser.choose("chooser", f"{transition}.{filters - 1}" if filters else str(transition))

    def test_the_nearest_miss_of_a_filter_and_of_a_transition(self):
        found = 0
        selected = None
        for (machine, path), answer in everything.why_not.items():
            misses = [each["nearest"] and each["nearest"]["event"] for each in answer["filters"]]
            if not any(misses):
                continue
            if machine != selected:
                self.select_machine(machine)
                selected = machine
            index = int(path.rsplit("[")[-1][:-1])
            for filters, event in enumerate(misses, 1):
                found += self.nearest(index, filters, event)
            self.nearest(index, 0, [miss for miss in misses if miss][-1])
        self.assertGreater(found, 3)

    def nearest(self, transition, filters, event):
        self.choose(transition, filters)
        by_key = browser.walk(Keys.HOME + "n")[1]
        self.assertEqual(by_key["event"], str(event or 0), f"transitions[{transition}], {filters} filters")
        if event:
            browser.press(Keys.HOME)
            browser.click("nearest")
            self.assertEqual(browser.place()[0], str(event))
        return event is not None

    def test_a_transition_and_a_filter_are_chosen_where_they_are_told_of(self):
        self.select_machine(3)
        browser.press("f")
        for selector, value in [(".comparison button", "0.0"), (".attempt button", "0")]:
            browser.find(f"#turns {selector}").click()
            self.assertEqual(browser.find("#chooser").get_attribute("value"), value)
        Select(browser.find("#chooser")).select_by_value("1.0")
        self.assertIn("transitions[1]", browser.find("#why").text)

    def test_what_is_said_of_why_a_transition_did_not_fire(self):
        for path, label in [("transitions[0]", "0"), ("transitions[1]", "1")]:
            wanted = vig(everything.folder, "run", "rules.json", "events.jsonl", "--context", "context.jsonl", "--machine", "3",
                         "--why-not", f"configs[3].payload.data.{path}")
            self.select_machine(3)
            self.choose(int(label), 0)
            why = collapsed(browser.find("#why").text)
            self.assertIn(why, collapsed(wanted))
            self.assertGreater(len(why), 100)

    def test_search(self):
        def having(*conditions):
            """An event may have an Int64, a Uint64 and a Double of one name: one of them is to be what is wanted."""
            return [number for number, event in enumerate(everything.events, 1)
                    if all(any(name in event.get(kind, {}) and holds(event[kind][name]) for kind in kinds.split())
                           for kinds, name, holds in conditions)]

        numbers = "int64 uint64 double"
        camera = ("string", "processName", lambda value: value == "camera")
        cases = {
            "processName == camera": having(camera),
            "x>=9223372036854775806": having((numbers, "x", lambda value: value >= 2**63 - 2)),
            "processName=camera vmRssKB!=7": having(camera, (numbers, "vmRssKB", lambda value: value != 7)),
            "y > -1, y <= 0.1": having((numbers, "y", lambda value: value > -1), (numbers, "y", lambda value: value <= 0.1)),
            "GALLERY": [number for number, event in enumerate(everything.events, 1)
                        if "gallery" in event.get("string", {}).values()],
        }
        browser.press("/", "nobody>1")
        self.assertEqual(browser.find("#found").text, "no attribute nobody")
        browser.press(Keys.ESCAPE)
        for word in ["synthesizeMetadata", "memory_heartbeat"]:
            cases[word] = sorted({event for (event, _), rows in everything.turns.items() for what, text in rows
                                  if what in ("log", "trigger") and word in text})
        for query, places in cases.items():
            self.assertGreaterEqual(len(places), 3, query)
            browser.press(Keys.HOME, "/")
            self.assertEqual(browser.run("return document.activeElement.id"), "search")
            browser.press(query)  # the text from before is selected
            for number, event in enumerate(places[:3], 1):
                browser.press(Keys.ENTER)
                self.assertEqual(browser.place()[0], str(event), query)
                self.assertEqual(browser.find("#found").text, f"{number} of {len(places)}", query)
            browser.press_with_shift(Keys.ENTER)
            self.assertEqual(browser.place()[0], str(places[1]), query)
            browser.press(Keys.ESCAPE)
            self.assertNotEqual(browser.run("return document.activeElement.id"), "search")
            self.assertEqual(browser.find("#search").get_attribute("value"), query)

    def test_what_the_keys_are(self):
        browser.press("?")
        self.assertTrue(browser.run("return document.getElementById('keys').open"))
        browser.press("m")
        self.assertEqual(browser.place()[0], "0", "keys of the page behind it do nothing")
        browser.press(Keys.ESCAPE)
        self.assertFalse(browser.run("return document.getElementById('keys').open"))
        browser.click("help")
        self.assertTrue(browser.run("return document.getElementById('keys').open"))

    def test_a_click_into_a_lane(self):
        for machine, share in [(3, 0.25), (7, 0.8), (0, 0.999)]:
            event, place = self.click_lane(machine, share)
            self.assertEqual(place, (str(event), f"{machine} (id {100 + 7 * machine})"))

    def test_the_lane_of_the_machine_is_in_sight(self):
        for key in [Keys.ARROW_DOWN] * 11 + [Keys.ARROW_UP] * 11:
            browser.press(key)
            hidden = browser.run("""const top = document.querySelector('#axis').getBoundingClientRect().bottom;
                const lane = document.querySelector('.lane.selected').getBoundingClientRect();
                return [top - lane.top, lane.bottom - document.querySelector('#tracks').getBoundingClientRect().bottom];""")
            self.assertLess(max(hidden), 1, browser.place())

    def click_lane(self, machine, share, start=0, span=None):
        """Returns the event that is there, where so many from `start` are in sight, and what the click leads to."""
        lane = browser.find(f'.lane[data-machine="{machine}"] .track')
        browser.run("arguments[0].scrollIntoView({block: 'center'})", lane)
        x = round(lane.rect["width"] * share)
        browser.click_at(lane, x, 20)
        return int(start + x / lane.rect["width"] * (span or self.last + 1)), browser.place()

    def test_the_time_line_becomes_larger_and_smaller(self):
        whole, half, quarter = (0.98, 1), (0.45, 0.55), (0.2, 0.3)
        for key, (least, most) in [("0", whole), ("+", half), ("+", quarter), ("-", half), ("0", whole)]:
            browser.press(Keys.HOME, key)
            self.assertTrue(least <= self.right_edge() <= most, f"{self.right_edge()} after {key}")
        for button, (least, most) in [("zoom-in", half), ("zoom-out", whole), ("zoom-in", half), ("zoom-all", whole)]:
            browser.press(Keys.HOME)
            browser.click(button)
            self.assertTrue(least <= self.right_edge() <= most, f"{self.right_edge()} after {button}")

    def right_edge(self):
        """Returns which part of the recording lies before the last event in sight."""
        return int(self.click_lane(0, 0.998)[1][0]) / self.last

    def test_the_place_stays_in_sight(self):
        browser.press("+" * 3, Keys.HOME)
        mouse = {"x": 700, "y": 0, "deltaX": 0, "deltaY": -77}
        mouse["y"] = browser.run("return document.querySelector('.lane .track').getBoundingClientRect().y + 5")
        browser.command("Input.dispatchMouseEvent", type="mouseWheel", **mouse)
        for key in (Keys.ARROW_RIGHT, Keys.ARROW_LEFT):
            for _ in range(self.last):
                browser.press(key)
                left = browser.run("return parseFloat(document.getElementById('cursor').style.left)")
                self.assertTrue(0 <= left <= 100, f"{left} at event {browser.place()}")

    def test_the_wheel_the_mouse_and_two_fingers_move_the_time_line(self):
        count = self.last + 1
        track = browser.find('.lane[data-machine="0"] .track')
        browser.run("arguments[0].scrollIntoView({block: 'center'})", track)
        left, top, width = browser.run("const box = arguments[0].getBoundingClientRect(); return [box.x, box.y, box.width]", track)
        at = {share: round(left + share * width) for share in (0.2, 0.3, 0.5, 0.7, 0.9)}
        place = {share: (x - left) / width for share, x in at.items()}
        y = round(top + 20)

        def mouse(kind, x, **others):
            browser.command("Input.dispatchMouseEvent", type=f"mouse{kind}", x=x, y=y, **others)

        def touch(kind, *xs):
            browser.command("Input.dispatchTouchEvent", type=f"touch{kind}",
                            touchPoints=[{"x": x, "y": y, "id": index} for index, x in enumerate(xs)])

        def check_view(what, start, span):
            for share in (0.3, 0.7):
                event, seen = self.click_lane(0, share, start, span)
                self.assertEqual(seen[0], str(event), f"{what}: {share}")
            return start, span

        mouse("Wheel", at[0.3], deltaX=0, deltaY=-500)
        span = count / math.exp(500 * 0.002)
        view = check_view("wheel", place[0.3] * (count - span), span)
        mouse("Wheel", at[0.3], deltaX=100, deltaY=0)
        view = check_view("wheel to the side", view[0] + 100 / width * span, span)
        mouse("Pressed", at[0.7], button="left", clickCount=1)
        mouse("Moved", at[0.5], button="left", buttons=1)
        mouse("Released", at[0.5], button="left", clickCount=1)
        view = check_view("mouse", view[0] + (place[0.7] - place[0.5]) * span, span)
        touch("Start", at[0.2])
        touch("Start", at[0.2], at[0.5])
        touch("Move", at[0.2], at[0.7])
        touch("Move", at[0.2], at[0.9])
        touch("End")
        closer = (at[0.5] - at[0.2]) / (at[0.9] - at[0.2])
        here = browser.place()
        touch("Start", at[0.2])
        touch("Start", at[0.2], at[0.9])
        touch("End")
        self.assertEqual(browser.place(), here, "two fingers that only touch choose nothing")
        check_view("two fingers", view[0] + place[0.2] * span * (1 - closer), span * closer)

    def test_the_picture_becomes_larger_and_smaller(self):
        browser.open(page_of(escalation, "escalation"))
        width = "return document.querySelector('#picture svg').getBoundingClientRect().width"
        sizes = [browser.run(width)]
        for button in ["larger", "smaller", "smaller", "fit"]:
            browser.click(button)
            sizes.append(browser.run(width))
        self.assertGreater(sizes[1], sizes[0])
        self.assertLess(sizes[3], sizes[2])
        hidden = browser.run("""const box = document.getElementById('picture');
            return [box.scrollWidth - box.clientWidth, box.scrollHeight - box.clientHeight];""")
        self.assertEqual(hidden, [0, 0])

    def test_the_state_that_is_lit_is_the_one_after_the_event(self):
        browser.open(page_of(escalation, "escalation"))
        for event in escalation.numbers[1:]:
            browser.press(Keys.ARROW_RIGHT)
            lit, fired = browser.run("""return ['.lit', '.fired'].map((name) =>
                [...document.querySelectorAll('#picture ' + name)].map((each) => each.textContent))""")
            self.assertEqual(len(lit), 1, event)
            self.assertIn(escalation.state_after(event, 0), lit[0], event)
            has_fired = any(each["fired"] for step in escalation.steps[event, 0] for each in step["transitions"])
            self.assertEqual(len(fired), int(has_fired), event)

    def test_the_focus_stays_where_it_was_at_the_side(self):
        browser.press(Keys.ARROW_RIGHT)
        at = "return document.activeElement.closest('#turns, #side')?.id"
        for event in range(1, 20):
            buttons = browser.run("const all = [...document.querySelectorAll('#turns button')]; all.at(-1)?.focus();"
                                  "return all.length")
            browser.press(Keys.ARROW_RIGHT)
            self.assertIn(browser.run(at), ["turns", "side"] if buttons else [None, "side", "turns"], event)

    def test_what_is_told_to_somebody_who_does_not_see_it(self):
        browser.open(page_of(escalation, "escalation"))
        for keys, told in [(Keys.ARROW_LEFT, "no earlier event"), ("t", "sampling -> cooling down, 1 trigger"),
                           ("l", "1 log line"), (Keys.END + Keys.ARROW_RIGHT, "no later event"),
                           ("/nothing of the kind" + Keys.ENTER, "no event is found")]:
            browser.press(*keys)
            self.assertIn(told, browser.snapshot()["live"])
        said = [each["name"]["value"] for each in browser.command("Accessibility.getFullAXTree")["nodes"] if "name" in each]
        self.assertIn("machine 0 (id 104) in state cooling down", said)
        self.assertEqual([each for each in said if re.search(r"c\d+s\d|cluster", each)], [], "names of Graphviz")

    def test_tab_reaches_everything_and_the_focus_is_seen(self):
        controls = set(browser.run("""return [...document.querySelectorAll('button, input, select, a[href]')]
            .filter((each) => each.checkVisibility() && !each.disabled)
            .map((each, index) => each.dataset.number = String(index))"""))
        # A browser shows the focus once it has seen that keys are used.
        browser.press(Keys.TAB)
        browser.run("""window.reached = []; addEventListener('focusin', (event) => {
            const style = getComputedStyle(event.target);
            const isSeen = style.outlineStyle !== 'none' && parseFloat(style.outlineWidth) >= 1;
            reached.push([event.target.dataset.number ?? '', isSeen, event.target.outerHTML.slice(0, 100)]); });""")
        browser.press(Keys.TAB * (len(controls) + 20))
        reached = browser.run("return reached")
        self.assertEqual(controls - {number for number, _, _ in reached}, set(), "not reached by Tab")
        self.assertEqual([html for _, is_seen, html in reached if not is_seen], [], "has the focus, unseen")
        figure("controls that Tab reaches", len(controls))


class Links(unittest.TestCase):
    def test_to_an_event_and_a_machine(self):
        browser.open(page_of(everything, "everything"), "#event=64&machine=3")
        self.assertEqual(browser.place(), ("64", "3 (id 121)"))
        for link, place in [("#event=9&machine=7", ("9", "7 (id 149)")), ("#machine=2&event=30", ("30", "2 (id 114)"))]:
            browser.run("location.hash = arguments[0]", link)
            browser.wait("return document.getElementById('event').textContent === arguments[0]", place[0])
            self.assertEqual(browser.place(), place)

    def test_is_kept_current(self):
        browser.open(page_of(everything, "everything"), "#event=64&machine=3")
        browser.press(Keys.ARROW_RIGHT * 3, Keys.ARROW_DOWN)
        browser.wait("return location.hash === '#event=67&machine=4'")
        self.assertEqual(browser.place(), ("67", "4 (id 128)"))

    def test_what_is_wrong_in_one_is_ignored(self):
        last = str(everything.numbers[-1])
        nowhere = ["#event=-1", "#event=1e1", "#event=%00", "#machine=99", "#event=<b>&machine=javascript:1", "#%", "#=&="]
        for link, event in [*((link, "0") for link in nowhere), ("#event=999999", last), ("#event=" + "9" * 400, last),
                            ("#recording=7&event=5", "5")]:
            browser.open(page_of(everything, "everything"), link)
            self.assertEqual(browser.place(), (event, "0 (id 100)"), link)
        self.assertEqual(browser.complaints(), [])

    def test_to_an_event_that_is_not_there_leads_to_the_nearest(self):
        chosen = Run(TOOL, EXAMPLES, "escalation.json", "trace.jsonl", "--where", "event=ZramHeartBeat")
        page = page_of(chosen, "chosen")
        before, after = chosen.numbers[2:4]
        self.assertGreater(after - before, 4)
        for event, nearest in [(before + 1, before), (after - 1, after), (before, before), (1, chosen.numbers[0])]:
            browser.open(page, f"#event={event}")
            self.assertEqual(browser.place()[0], str(nearest), event)

    def test_to_a_test_that_failed(self):
        where = made_folder("tests")
        rules = json.loads((EXAMPLES / "escalation.json").read_text())
        (where / "rules.json").write_text(json.dumps(rules).replace('"204800"', '"999999"'))
        tests = json.loads((EXAMPLES / "escalation.test.json").read_text()) | {"rules": "rules.json"}
        (where / "tests.json").write_text(json.dumps(tests))
        report = vig(where, "test", "tests.json")
        failed = re.findall(r"^ +FAIL +(.*)$|^FAIL +.*?: (.*)$", report, re.MULTILINE)
        (folder / "tests.html").write_text(vig(where, "test", "tests.json", "--format", "html"))
        browser.open(folder / "tests.html")
        names = browser.run("return [...document.querySelectorAll('#recording option')].map((each) => each.textContent)")
        self.assertGreater(len(names), 1, report)
        self.assertRegex(browser.find("#note summary").text, r"^\d+ tests: \d+ passed, \d+ failed$")
        self.assertEqual(len(names), int(re.search(r"(\d+) failed", report)[1]), failed)
        for index, name in enumerate(names):
            self.assertIn(collapsed(name)[:60], collapsed(report))  # which shortens it
            browser.open(folder / "tests.html", f"#recording={index}&event=2&machine=0")
            self.assertEqual(browser.place(), ("2", "0 (id 104)"))
            self.assertEqual(browser.find("#recording").get_attribute("value"), str(index))
            facts = collapsed(browser.find("#facts").text)
            self.assertTrue(facts and facts in collapsed(report), f"{name}: {facts}")
        browser.choose("recording", "0")
        browser.ready()
        browser.press(Keys.HOME, Keys.ARROW_RIGHT)
        browser.wait("return new URLSearchParams(location.hash.slice(1)).get('recording') === '0'")

    def test_to_what_tells_two_documents_apart(self):
        where = made_folder("changes")
        rules = json.loads((EXAMPLES / "escalation.json").read_text())
        rules["configs"].append(rules["configs"][0] | {"id": 105})
        old = json.dumps(rules)
        (where / "old.json").write_text(old)
        (where / "new.json").write_text(old.replace('"204800"', '"300000"'))
        report = vig(where, "diff", "old.json", "new.json")
        (folder / "changes.html").write_text(vig(where, "diff", "old.json", "new.json", "--format", "html"))
        for index, identifier in enumerate([104, 105]):
            event, sides = self.told_apart(report, identifier)
            browser.open(folder / "changes.html", f"#recording={index}")
            seen = browser.snapshot()
            self.assertEqual((seen["event"], seen["machine"]), (event, f"old {identifier}"))
            self.assertEqual(browser.find("#note summary").text, "old.json -> new.json: 2 changed")
            drawn = browser.find("#picture").text
            self.assertTrue(all(f"{side} configuration {identifier}" in collapsed(drawn) for side in ("old", "new")), drawn)
            for turn, lines in zip(seen["turns"], sides, strict=True):
                texts = [text for what, text in rows_in(turn) if what == "explain"]
                self.assertEqual(" ".join(texts), collapsed("\n".join(lines)))
        screenshot("compared")

    def told_apart(self, report, identifier):
        """Returns the event by which two machines differ, and what each of them did then, from the report's two columns."""
        part = re.search(rf"^{identifier}: they differ by event (\d+)\n(.*?)(\n\n|\Z)", report, re.MULTILINE | re.DOTALL)
        lines = part[2].split("\n")
        head = next(index for index, line in enumerate(lines) if re.fullmatch(" +old +\\| new", line))
        bar = lines[head].index("|")
        told = [line.ljust(bar + 1) for line in lines[head + 1:] if line]
        columns = [[line[:bar - 1] for line in told], [line[bar + 1:] for line in told]]
        deeds = re.compile(" *(triggers|logs|neither) ")
        return part[1], [[line for line in column if not deeds.match(line)] for column in columns]


class TextsDoNothing(unittest.TestCase):
    def setUp(self):
        self.listening = Browser(listens=True)
        self.addCleanup(self.listening.close)
        self.listening.driver.get("about:blank")
        self.listening.requests()  # of the page with which it begins

    def test_hostile_texts_are_only_shown(self):
        where = made_folder("hostile")
        recordings.hostile(where)
        name = recordings.HOSTILE[1].replace("/", "-")
        (where / "rules.json").rename(where / f"{name}.json")
        (where / "events.jsonl").rename(where / f"{name}.jsonl")
        run = Run(TOOL, where, f"{name}.json", f"{name}.jsonl", "--verbose")
        page = where / f"{name}.html"
        run.write_page(page)
        self.listening.open(page)
        self.assertEqual(self.listening.driver.title, self.listening.find("h1").text)
        seen = self.listening.walk(Keys.ARROW_RIGHT * (len(run.numbers) - 1))
        for event, each in zip(run.numbers[1:], seen):
            self.assertEqual(rows_in(each["turns"][0]), run.turns[event, 0])
        self.try_everything()
        self.assert_harmless()

    def try_everything(self):
        self.listening.run("""const all = document.querySelectorAll('#turns button, .lane button, #side a, #picture a');
            all.forEach((each) => each.dispatchEvent(new MouseEvent('click', { bubbles: true, cancelable: true })));""")
        self.listening.choose("chooser", "1")
        for query in recordings.HOSTILE:
            field = self.listening.find("#search")
            field.clear()
            field.send_keys("".join(each for each in query if each.isprintable() and ord(each) < 2**16), Keys.ENTER)

    def assert_harmless(self):
        self.assertEqual(self.listening.run("return window.hit ?? null"), None, "a text was run")
        with self.assertRaises(NoAlertPresentException):
            self.listening.driver.switch_to.alert.dismiss()
        found = self.listening.run("""
            const all = [...document.querySelectorAll('*')];
            const attributes = all.flatMap((element) => [...element.attributes].map((each) =>
                [element.localName, each.name, each.value]));
            return {
                elements: [...new Set(all.map((each) => each.localName))],
                handlers: attributes.filter(([, name]) => name.startsWith('on')),
                links: attributes.filter(([, name, value]) => /^(xlink:)?(href|src)$|^(action|srcdoc|data)$/.test(name)
                    && !value.startsWith('#event=')),
                scripts: document.querySelectorAll('script').length, own: document.querySelectorAll('body > script').length,
                resources: performance.getEntriesByType('resource').map((each) => each.name),
            };""")
        allowed = set("""html head meta title style body header h1 h2 h3 p noscript label select option pre main nav span button bdi
            input section div canvas table tr th td tbody dialog dl dt dd kbd code form footer script details summary a svg g
            polygon path ellipse polyline rect text""".split())
        self.assertEqual(set(found["elements"]) - allowed, set())
        self.assertEqual((found["handlers"], found["links"], found["resources"]), ([], [], []))
        self.assertEqual(found["scripts"], found["own"])
        self.assertEqual(self.listening.requests(), [])
        self.assertEqual(self.listening.complaints(), [])

    def test_the_policy_of_the_page_refuses_what_is_put_into_it(self):
        page = page_of(escalation, "escalation").read_text()
        put = ["<script>window.hit = 1</script>", "<script src='other.js'></script>", "<style>h1 { color: red }</style>",
               "<img src='x.png' onerror='window.hit = 1'>", "<iframe srcdoc='<script>parent.hit = 1</script>'></iframe>",
               "<p style='color: red' onclick='window.hit = 1' id='put'>put</p>",
               "<a id='link' href='javascript:window.hit = 1'>put</a>"]
        (folder / "other.js").write_text("window.hit = 1")
        (folder / "put.html").write_text(page.replace("</body>", "".join(put) + "</body>"))
        self.listening.open(folder / "put.html")
        for identifier in ["put", "link"]:
            self.listening.run("document.getElementById(arguments[0]).click()", identifier)
        self.listening.run("""const made = document.createElement('script');
            made.textContent = 'window.hit = 1';
            document.body.append(made);""")
        self.assertEqual(self.listening.run("return window.hit ?? null"), None)
        self.assertNotEqual(self.listening.run("return getComputedStyle(document.querySelector('h1')).color"), "rgb(255, 0, 0)")
        refused = [each for each in self.listening.complaints() if "Content Security Policy" in each]
        self.assertGreaterEqual(len(refused), 7)
        self.assertEqual(self.listening.place()[0], "0", "the page itself goes on")
        figure("attempts that the policy refused", len(refused))


# Reads a canvas by a copy: the browser complains of one that is read again and again.
READ = """
const read = (canvas, x, y, width, height) => {
    const copy = new OffscreenCanvas(canvas.width, canvas.height).getContext('2d', { willReadFrequently: true });
    copy.drawImage(canvas, 0, 0);
    return copy.getImageData(x, y, width, height).data;
};
"""

# Returns how wide the mark is on each row of a lane's canvas, in which one column of pixels is in the middle of it.
WIDTHS = READ + """
const canvas = arguments[0];
const pixels = read(canvas, 0, 0, canvas.width, canvas.height);
const [left, right] = [Math.max(arguments[1] - 8, 0), Math.min(arguments[1] + 8, canvas.width)];
return Array.from({ length: canvas.height }, (_, y) => {
    let width = 0;
    for (let x = left; x < right; ++x) {
        width += pixels[(y * canvas.width + x) * 4 + 3] > 127 ? 1 : 0;
    }
    return width;
});
"""


# Returns the places of a canvas that have a colour of the page. Mixed with itself, a colour becomes one that is next to it.
PIXELS = READ + """
const [canvas, name] = arguments;
const paper = document.createElement('canvas').getContext('2d');
paper.fillStyle = getComputedStyle(canvas).getPropertyValue(name).trim();
paper.fillRect(0, 0, 1, 1);
const wanted = paper.getImageData(0, 0, 1, 1).data;
const seen = read(canvas, 0, 0, canvas.width, canvas.height);
return [...Array(canvas.width * canvas.height).keys()]
    .filter((index) => wanted.every((part, at) => Math.abs(part - seen[index * 4 + at]) < 3))
    .map((index) => [index % canvas.width, Math.floor(index / canvas.width)]);
"""

# Returns the colour that a lane has there, above the letters.
COLOUR = READ + "return read(arguments[0], arguments[1], 14, 1, 1).join()"


class DamagedPages(unittest.TestCase):
    def test_what_cannot_be_unpacked_is_said_in_a_sentence(self):
        whole = page_of(escalation, "escalation").read_text(encoding="utf-8")
        begin = whole.index(RECORDING) + len(RECORDING)
        end = whole.index("<", begin)
        data = whole[begin:end]
        rest = whole[end:]
        for name, damaged in [("cut", data[:4000] + rest), ("no base64", data[:-7] + "%" + rest), ("nothing", rest),
                              ("other bytes", data[:4000] + data[4000:4400][::-1] + data[4400:] + rest),
                              ("file cut", data[:4000]), ("file cut before", "")]:
            path = folder / f"{name}.html"
            path.write_text(whole[:begin] + damaged, encoding="utf-8")
            browser.open(path, "#event=5")
            self.assertIn("is damaged and cannot be shown", browser.find("#problem").text, name)
            self.assertFalse(browser.find("#replay").is_displayed(), name)
        browser.complaints()

    def test_a_browser_that_cannot_unpack_says_so(self):
        script = browser.command("Page.addScriptToEvaluateOnNewDocument", source="delete globalThis.DecompressionStream")
        self.addCleanup(browser.command, "Page.removeScriptToEvaluateOnNewDocument", **script)
        browser.open(page_of(escalation, "escalation"))
        self.assertIn("This browser is too old", browser.find("#problem").text)
        self.assertEqual(browser.complaints(), [])


class Looks(unittest.TestCase):
    def tearDown(self):
        browser.size(1440, 900)
        browser.colours("light")

    def test_nothing_overflows_sideways(self):
        pages = {"escalation": page_of(escalation, "escalation"), "everything": page_of(everything, "everything"),
                 "hostile": self.hostile_page(), "failed": self.failed_page()}
        for width, height in [(320, 256), (360, 740), (800, 600), (1440, 900), (3840, 2160)]:
            for name, page in pages.items():
                browser.size(width, height)
                browser.open(page, "#event=5&machine=0")
                browser.run("document.getElementById('note').open = true")
                wide, seen = browser.run("const root = document.documentElement; return [root.scrollWidth, root.clientWidth]")
                self.assertLessEqual(wide, seen, f"{name}, {width} pixels wide")
                screenshot(f"{name}-{width}")
        browser.size(360, 740)
        browser.open(pages["everything"], "#event=5&machine=3")
        browser.click("help")
        self.assertLessEqual(browser.run("return document.getElementById('keys').scrollWidth"), 360)

    def hostile_page(self):
        where = made_folder("wide")
        recordings.hostile(where)
        run = Run(TOOL, where, "rules.json", "events.jsonl")
        return page_of(run, "wide")

    def failed_page(self):
        """Tests with long names and a long report, as one makes who tries many things at once."""
        where, path = folder / "failed", folder / "failed.html"
        if not path.exists():
            where.mkdir()
            tests = [{"name": f"{index}" + "name" * 250, "events": [{"event": "Test"}] * 5,
                      "expect": {"triggers": [{"name": "none" * 100, "event": 1}]}} for index in range(20)]
            rules = str(EXAMPLES / "escalation.json")
            (where / "tests.json").write_text(json.dumps({"rules": rules, "tests": tests}))
            path.write_text(vig(where, "test", "tests.json", "--format", "html"))
        return path

    def test_letters_are_as_large_as_the_browser_is_told(self):
        self.addCleanup(browser.command, "Page.setFontSizes", fontSizes={"standard": 16, "fixed": 13})
        for size, letters in [(16, 14), (24, 21)]:
            browser.command("Page.setFontSizes", fontSizes={"standard": size, "fixed": 13})
            browser.open(page_of(everything, "everything"))
            self.assertEqual(browser.run("return getComputedStyle(document.body).fontSize"), f"{letters}px")
            self.assertEqual(browser.run("const root = document.documentElement; return root.scrollWidth - root.clientWidth"), 0)

    def test_the_place_is_seen_in_colours_that_the_user_forces(self):
        self.addCleanup(browser.command, "Emulation.setEmulatedMedia", features=[])
        for scheme in ("light", "dark"):
            browser.command("Emulation.setEmulatedMedia", features=[
                {"name": "forced-colors", "value": "active"}, {"name": "prefers-color-scheme", "value": scheme}])
            browser.open(page_of(escalation, "escalation"), "#event=70")
            cursor, ground = browser.run("""return [document.getElementById('cursor'), document.body.parentElement]
                .map((each) => getComputedStyle(each).backgroundColor)""")
            self.assertNotEqual(cursor, ground, scheme)

    def test_contrast_in_the_dark_and_in_the_light(self):
        for scheme in ["light", "dark"]:
            browser.colours(scheme)
            least = []
            for page, run, event in [("escalation", escalation, 56), ("everything", everything, 12)]:
                browser.open(page_of(run, page), f"#event={event}&machine=0")
                found = browser.run((pathlib.Path(__file__).parent / "contrasts.js").read_text())
                self.assertGreater(len(found), 50)
                self.assertGreater(sum(text.startswith("a line of ") for text, _ in found), 20)
                self.assertEqual([f"{text}: {ratio:.2f}" for text, ratio in found if ratio < 4.5], [], f"{page}, {scheme}")
                least.append(min(ratio for _, ratio in found))
                screenshot(f"{page}-{scheme}")
            figure(f"least contrast, {scheme}", f"{min(least):.2f}")

    def test_letters_on_the_colours_of_states(self):
        browser.open(page_of(escalation, "escalation"))
        light = {}
        for colour in [*browser.run("return kStateColours"), browser.run("return kOnStateColour")]:
            parts = [int(colour[index:index + 2], 16) / 255 for index in (1, 3, 5)]
            parts = [each / 12.92 if each <= 0.04045 else ((each + 0.055) / 1.055) ** 2.4 for each in parts]
            light[colour] = 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2]
        dark = light.pop(browser.run("return kOnStateColour"))
        self.assertGreaterEqual(len(light), 8)
        self.assertEqual([colour for colour, each in light.items() if (each + 0.05) / (dark + 0.05) < 4.5], [])

    def test_marks_differ_in_form(self):
        browser.open(page_of(escalation, "escalation"))
        canvas = browser.wait("return document.querySelector('.lane[data-machine=\"0\"] canvas')")
        width = canvas.rect["width"] / len(escalation.numbers)
        lines = [each for each in escalation.logs(0) if each > 0]
        trigger = self.rows(canvas, (escalation.triggers[0][0] + 0.5) * width)[:9]
        line = self.rows(canvas, (lines[0] + 0.5) * width)[28:]
        move = self.rows(canvas, escalation.moves[0][0] * width)[9:12]
        self.assertEqual(trigger, sorted(trigger), "a triangle becomes wider downwards")
        self.assertGreater(trigger[-1], trigger[0] + 3)
        middle = line.index(max(line))
        self.assertEqual(line, sorted(line[:middle]) + sorted(line[middle:], reverse=True), "a dot is round")
        self.assertEqual(set(move), {2}, "a bar is as wide everywhere")

    def test_a_plot_has_a_dot_for_each_value(self):
        where = made_folder("crowded")
        recordings.crowded(where, (EXAMPLES / "escalation.json").read_text())
        for name, run in [("escalation", escalation), ("crowded", Run(TOOL, where, "rules.json", "events.jsonl"))]:
            with self.subTest(name):
                browser.open(page_of(run, name))
                self.check_plot(run, browser.wait("return document.querySelector('#plots canvas')"))

    def check_plot(self, run, canvas):
        self.assertEqual(browser.find("#plots .label").text, "vmRssKB")
        width = canvas.rect["width"]
        values = {index: event["int64"]["vmRssKB"] for index, event in enumerate(run.events, 1)
                  if "vmRssKB" in event.get("int64", {})}
        compared = {index for index in values if any("vmRssKB" in each["condition"] for step in run.steps[index, 0]
                                                     for tried in step["transitions"] for each in tried["filters"])}
        self.assertTrue(len(values) > len(compared) + 10 > 20)
        constants = [1048576, 204800, 102400]
        least, greatest = min(constants + [*values.values()]), max(constants + [*values.values()])

        def row(value):
            return math.floor(8 + (greatest - value) / (greatest - least) * 56 + 0.5)

        wanted = {"--compared": set(), "--plot": set()}
        for index, value in values.items():
            x, y = math.floor((index + 0.5) / (len(run.events) + 1) * width + 0.5), row(value)
            colour, reach = ("--compared", 2) if index in compared else ("--plot", 1)
            wanted[colour] |= {(x + i, y + j) for i in range(-reach, reach) for j in range(-reach, reach)}
        lines = {row(value) for value in constants}
        for colour, dots in wanted.items():
            # Dots are as wide as an odd number of pixels: where two lie half on one, it may have their colour.
            near = {(x + i, y + j) for x, y in dots for i in (-1, 0, 1) for j in (-1, 0, 1)}
            seen = {tuple(each) for each in browser.run(PIXELS, canvas, colour)}
            self.assertEqual(seen - near, set(), f"{colour}: what is no value")
            # The lines of the constants lie above the dots, and their names, which stand at the left.
            hidden = {(x, y) for x, y in dots - seen if y not in lines and width / 4 < x < width}
            if colour == "--plot":
                hidden -= {(x + i, y + j) for x, y in wanted["--compared"] for i in (-1, 0, 1) for j in (-1, 0, 1)}
            self.assertEqual(hidden, set(), f"{colour}: what is not drawn")
            self.assertGreater(len(seen), 60, colour)

    def test_a_plot_has_its_dots_however_large_the_values_are(self):
        cases = {"one": [2.0**60], "far": [1.7e308, -1.7e308], "integer": [2**53 + 1]}
        for name, values in cases.items():
            kind = "integer" if name == "integer" else "double"
            where = made_folder(name)
            recordings.write(where, recordings.document([[recordings.transition("start", "a", "Test", [
                (kind, "x", ">", f"={values[0]!r}")])]]), [{"event": "Test", "int64" if kind == "integer" else "double": {"x": each}} for each in values])
            browser.open(page_of(Run(TOOL, where, "rules.json", "events.jsonl"), name))
            canvas = browser.wait("return document.querySelector('#plots canvas')")
            rows = {y for _, y in browser.run(PIXELS, canvas, "--compared")}
            middles = [36] if len(values) == 1 else [8, 64]
            self.assertTrue(rows and all(any(abs(row - each) < 4 for row in rows) for each in middles), f"{name}: {rows}")

    def test_the_arrow_that_is_lit_is_that_of_the_transition(self):
        where = made_folder("arrows")
        recordings.write(where, recordings.document([[recordings.transition("start", to, "Test", [
            ("integer", "x", "==", f"={index}")]) for index, to in enumerate(["start", "a", "start", "start"])]]),
            [{"event": "Test", "int64": {"x": each}} for each in (0, 2, 3, 2, 0, 1)])
        browser.open(page_of(Run(TOOL, where, "rules.json", "events.jsonl"), "arrows"))
        said = "return [...document.querySelectorAll('#picture .fired a')].map((each) => each.getAttribute('xlink:title'))"
        for place in (1, 3, 4, 3, 1, 2):
            browser.press(Keys.ARROW_RIGHT)
            self.assertEqual([each.split()[0] for each in browser.run(said)], [str(place)])

    def test_a_state_that_no_chosen_event_tells_is_unknown(self):
        where = made_folder("unknown")
        recordings.write(where, recordings.document([[recordings.transition("start", "moved", "EnteringState")]]),
                         [{"event": "Test"}] * 5)
        browser.open(page_of(Run(TOOL, where, "rules.json", "events.jsonl", "--verbose", "--from", "4"), "unknown"))
        seen = browser.snapshot()
        self.assertEqual((seen["event"], seen["lit"], len(seen["own"])), ("0", [], 1))
        self.assertIn("unknown", seen["live"])
        browser.press(Keys.ARROW_RIGHT)
        self.assertIn(": moved", browser.snapshot()["live"])

    def test_a_lane_has_the_state_of_each_event_that_was_chosen(self):
        for name, options in [("escalation", []), ("chosen", ["--where", "event=ZramHeartBeat"])]:
            run = escalation if not options else Run(TOOL, EXAMPLES, "escalation.json", "trace.jsonl", *options)
            browser.open(page_of(run, name))
            canvas = browser.wait("return document.querySelector('.lane[data-machine=\"0\"] canvas')")
            seen = collections.defaultdict(set)
            for index, event in enumerate(run.numbers):
                if run.steps[event, 0]:
                    x = int((index + 0.5) * canvas.rect["width"] / len(run.numbers))
                    seen[run.state_after(event, 0)].add(browser.run(COLOUR, canvas, x))
            colours = [colour for each in seen.values() for colour in each]
            self.assertGreater(len(seen), 2, name)
            self.assertEqual(len(colours), len(seen), f"{name}: {dict(seen)}")
            self.assertEqual(len(set(colours)), len(seen), f"{name}: {dict(seen)}")

    def rows(self, canvas, x):
        return browser.run(WIDTHS, canvas, round(x))

    def test_a_page_is_printed(self):
        browser.colours("dark")
        browser.open(page_of(escalation, "escalation"), "#event=56&machine=0")
        printed = base64.b64decode(browser.command("Page.printToPDF", printBackground=True)["data"])
        self.assertTrue(printed.startswith(b"%PDF-"))
        pages = len(re.findall(rb"/Type\s*/Page\b", printed))
        self.assertTrue(1 <= pages <= 3, pages)
        figure("printed", f"{pages} pages, {len(printed)} bytes")
        if SCREENSHOTS:
            (SCREENSHOTS / "printed.pdf").write_bytes(printed)
        browser.command("Emulation.setEmulatedMedia", media="print")
        self.addCleanup(browser.command, "Emulation.setEmulatedMedia", media="")
        seen = browser.run("""return ['controls', 'picture', 'side', 'tracks'].filter((id) =>
            document.getElementById(id).checkVisibility())""")
        self.assertEqual(seen, ["picture", "side", "tracks"])

    def test_all_that_there_is_to_read_is_on_paper(self):
        browser.open(self.failed_page())
        self.addCleanup(browser.command, "Emulation.setEmulatedMedia", media="")
        browser.run("document.getElementById('note').open = true")
        browser.press("?")
        browser.command("Emulation.setEmulatedMedia", media="print")
        cut = browser.run("""return [...document.querySelectorAll('pre')].filter((each) => each.checkVisibility()
            && (each.scrollHeight > each.clientHeight || each.scrollWidth > each.clientWidth)).map((each) => each.outerHTML)""")
        self.assertEqual(cut, [])
        seen = browser.run("return ['keys', 'recordings', 'facts'].filter((id) => document.getElementById(id).checkVisibility())")
        self.assertEqual(seen, ["recordings", "facts"])

    def test_one_of_many_machines_is_drawn_alone_whatever_was_before(self):
        browser.open(page_of(everything, "everything"), "#event=0&machine=6")
        self.addCleanup(browser.command, "Emulation.setEmulatedMedia", media="")
        seen = "return document.querySelector('#picture > svg').getAttribute('viewBox')"
        opened = browser.run(seen)
        browser.press(Keys.ARROW_DOWN, Keys.ARROW_UP)
        self.assertEqual(opened, browser.run(seen))
        sizes = collections.defaultdict(list)
        for button in ("larger", "larger", "fit"):
            for media in ("screen", "print"):
                browser.command("Emulation.setEmulatedMedia", media=media)
                form = browser.run("return document.querySelector('#picture > svg').getBoundingClientRect().toJSON()")
                sizes[media].append((form["width"], form["height"]))
            browser.command("Emulation.setEmulatedMedia", media="screen")
            browser.click(button)
        self.assertEqual(len(set(sizes["print"])), 1, "paper has it in one size")
        self.assertEqual(len(set(sizes["screen"])), 3)
        ratios = [width / height for width, height in sizes["screen"] + sizes["print"]]
        self.assertLess(max(ratios) / min(ratios), 1.05, "and in its form")

    def test_the_time_line_is_drawn_for_paper_whatever_the_screen(self):
        browser.open(page_of(everything, "everything"))
        self.addCleanup(browser.size, 1440, 900)
        self.addCleanup(browser.command, "Emulation.setEmulatedMedia", media="")
        for width in (360, 1440, 2560):
            browser.size(width, 300)
            bar = browser.run("const { offsetWidth, clientWidth } = document.getElementById('tracks');"
                              " return offsetWidth - clientWidth")
            self.assertGreater(bar, 0)
            browser.run("dispatchEvent(new Event('beforeprint'))")
            drawn = browser.run("return document.querySelector('#lanes canvas').width / devicePixelRatio")
            browser.command("Emulation.setEmulatedMedia", media="print")
            browser.size(740, 1000)  # a page of paper
            shown = browser.run("return document.querySelector('#lanes .track').clientWidth")
            self.assertAlmostEqual(drawn, shown, delta=1)
            browser.command("Emulation.setEmulatedMedia", media="")
            browser.run("dispatchEvent(new Event('afterprint'))")

    def test_what_is_drawn_for_paper_alone_is_not_kept(self):
        browser.open(page_of(everything, "everything"))
        browser.size(800, 300)
        browser.run("scrollTo(0, 0)")
        count = "return document.querySelectorAll('#lanes canvas').length"
        lanes = browser.run("return document.querySelectorAll('#lanes .track').length")
        browser.wait(f"{count} < arguments[0]", lanes)
        before = browser.run(count)
        browser.run("dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(browser.run(count), lanes)
        browser.run("dispatchEvent(new Event('afterprint'))")
        self.assertEqual(browser.run(count), before)
        browser.size(1440, 900)


# Notes of each key how long it takes until the frame that shows what came of it is done.
TIMES = """
window.times = [];
addEventListener('keydown', (event) => requestAnimationFrame(() => {
    const channel = new MessageChannel();
    channel.port1.onmessage = () => times.push(performance.now() - event.timeStamp);
    channel.port2.postMessage(null);
}), { capture: true });
"""


class Figures(unittest.TestCase):
    def test_many_events_and_machines(self):
        where = made_folder("large")
        recordings.large(where)
        page = folder / "large.html"
        page.write_text(vig(where, "run", "rules.json", "events.jsonl", "--format", "html"))
        print("  100,000 events and 50 machines:")
        figure("size of the page", f"{page.stat().st_size / 1e6:.2f} MB")
        opened = []
        for _ in range(3):
            browser.open(page)
            opened.append(browser.run("return performance.getEntriesByName('ready')[0].startTime") / 1000)
        figure("opens in", f"{min(opened):.2f} to {max(opened):.2f} s, of {MOST_SECONDS_TO_OPEN}")
        report = vig(where, "run", "rules.json", "events.jsonl", "--format", "jsonl")
        lines = [json.loads(line) for line in report.split("\n") if line]
        before = self.memory()
        browser.run(TIMES)
        medians = [self.times("a step", [Keys.ARROW_RIGHT] * 100)]
        for what, key in [("trigger", "t"), ("move", "m")]:
            medians.append(self.walk_to_and_fro(what, key, Run.events_of(lines, what)[0]))
        medians.append(self.times("to another machine", [Keys.ARROW_DOWN] * 49))
        browser.press(Keys.HOME, "/", "vmRssKB>300000 processName=process7")
        medians.append(self.times("to the next that is found", [Keys.ENTER] * 100))
        browser.press(Keys.ESCAPE, "0", "+" * 8)
        medians.append(self.times("a step in a part of the time line", [Keys.ARROW_RIGHT] * 100))
        after = self.memory()
        figure("memory of its program", f"{before / 1e6:.1f} MB, {after / 1e6:.1f} MB after all that")
        screenshot("large")
        self.assertEqual(browser.complaints(), [])
        self.assertLess(statistics.median(opened), MOST_SECONDS_TO_OPEN * MARGIN)
        self.assertLess(max(medians), MOST_SECONDS_OF_A_STEP * MARGIN)
        self.assertLess(after, before * 1.5 + 10e6, "what is held grows while somebody steps")

    def walk_to_and_fro(self, what, key, places):
        self.assertGreater(len(places), 5, what)
        browser.press(Keys.HOME)
        there, back = [key] * (len(places) - 1), [key.upper()] * (len(places) - 1)
        keys = ([key] + (there + back) * 100)[:101]
        median = self.times(f"to another {what}", keys)
        index = sum(1 if each == key else -1 for each in keys) - 1
        self.assertEqual(browser.place()[0], str(places[index]))
        return median

    def times(self, name, keys):
        """Returns the median of the steps that the keys make, in seconds, each until the next frame."""
        # Until what came before is shown.
        browser.run("return new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)))")
        browser.run("times.length = 0")
        for done, key in enumerate(keys, 1):
            browser.press(key)
            browser.wait("return times.length >= arguments[0]", done)
        times = [each / 1000 for each in browser.run("return times")]
        figure(name, f"median {statistics.median(times) * 1000:.0f} ms, worst {max(times) * 1000:.0f} ms, "
                     f"of {MOST_SECONDS_OF_A_STEP * 1000:.0f}")
        return statistics.median(times)

    def memory(self):
        browser.command("HeapProfiler.enable")
        browser.command("HeapProfiler.collectGarbage")
        used = browser.command("Runtime.getHeapUsage")
        return used["usedSize"] + used["backingStorageSize"]


class Result(unittest.TextTestResult):
    """Names each step before it is tried, so that its figures stand below it."""

    def startTest(self, test):
        unittest.TestResult.startTest(self, test)
        words = re.sub("(?<!^)([A-Z])", r" \1", type(test).__name__).lower()
        print(f"{words}: {test._testMethodName.removeprefix('test_').replace('_', ' ')}", flush=True)


if __name__ == "__main__":
    outcome = unittest.TextTestRunner(stream=sys.stdout, resultclass=Result, verbosity=0).run(
        unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"]))
    bad = len(outcome.failures) + len(outcome.errors)
    print(f"{outcome.testsRun - bad} passed, {bad} failed")
    sys.exit(bad > 0)
