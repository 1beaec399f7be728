"""Chromium, without a window, as somebody who reads a page and presses its keys."""
import json
import os
import pathlib
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

MOST_SECONDS = 60

# What the page says, element by element, of the event at which it stands.
SNAPSHOT = """
const text = (id) => document.getElementById(id).textContent;
const kindOf = (element) => element.classList[0];
return {
    event: text('event'), machine: text('machine'), type: text('type'), live: text('live'),
    turns: [...document.querySelectorAll('#turns > section')].map((section) => ({
        machine: Number(section.dataset.machine),
        rows: [...section.querySelectorAll(':scope > :is(.step, .trigger, .log, .move)')].map((row) => ({
            what: kindOf(row),
            parts: kindOf(row) === 'step' ? [...row.children].map((part) => [kindOf(part), part.textContent])
                : [['text', row.textContent]],
            verdicts: [...row.querySelectorAll('.comparison .verdict')].map((each) => each.textContent),
        })),
    })),
    own: [...document.querySelectorAll('#turns > .log')].map((each) => each.textContent),
    lit: [...document.querySelectorAll('#picture .lit > title')].map((each) => each.textContent),
    attributes: [...document.querySelectorAll('#attributes tr')].map((row) =>
        [row.querySelector('.key').textContent, row.querySelector('.value').textContent]),
};
"""


class Browser:
    def __init__(self, listens=False):
        """`listens`: to what the browser asks the network for, which costs time."""
        self.folder = tempfile.TemporaryDirectory()
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        arguments = ["--headless=new", "--disable-dev-shm-usage", f"--user-data-dir={self.folder.name}", "--no-first-run",
                     "--disable-background-networking", "--disable-component-update",
                     "--host-resolver-rules=MAP * ~NOTFOUND", "--force-device-scale-factor=1"]
        # Its sandbox refuses the user root.
        arguments += ["--no-sandbox"] if os.geteuid() == 0 else []
        for each in arguments:
            options.add_argument(each)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"} | ({"performance": "ALL"} if listens else {}))
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.driver.set_script_timeout(MOST_SECONDS)
        self.size(1440, 900)

    def close(self):
        self.driver.quit()
        self.folder.cleanup()

    def command(self, name, **arguments):
        return self.driver.execute_cdp_cmd(name, arguments)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def size(self, width, height):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def colours(self, scheme):
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def wait(self, script, *arguments):
        """Waits until the script returns something true."""
        return WebDriverWait(self.driver, MOST_SECONDS, poll_frequency=0.02).until(lambda _: self.run(script, *arguments))

    def ready(self):
        self.wait("return document.documentElement.dataset.ready === 'true'")

    def open(self, path, link=""):
        # A page that is only asked for another link is not loaded again.
        self.driver.get("about:blank")
        self.driver.get(pathlib.Path(path).as_uri() + link)
        self.ready()

    def press(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def press_with_shift(self, key):
        ActionChains(self.driver).key_down(Keys.SHIFT).send_keys(key).key_up(Keys.SHIFT).perform()

    def choose(self, identifier, value):
        """Chooses from a list, and leaves it, as it takes letters itself."""
        self.run("""const list = document.getElementById(arguments[0]);
            list.value = arguments[1];
            list.dispatchEvent(new Event('change'));
            list.blur();""", identifier, value)

    def click(self, identifier):
        self.driver.find_element(By.ID, identifier).click()

    def click_at(self, element, x, y):
        """Clicks into an element, so far from its left upper corner."""
        box = element.rect
        ActionChains(self.driver).move_to_element_with_offset(
            element, round(x - box["width"] / 2), round(y - box["height"] / 2)).click().perform()

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def snapshot(self):
        return self.run(SNAPSHOT)

    def place(self):
        """Returns the event and the machine's label that the page shows."""
        return tuple(self.run("return ['event', 'machine'].map((id) => document.getElementById(id).textContent)"))

    def walk(self, keys):
        """Presses keys, and returns what the page says after each of them."""
        self.run(f"""window.seen = [];
            window.look = () => seen.push((() => {{ {SNAPSHOT} }})());
            addEventListener('keyup', look);""")
        self.press(keys)
        seen = self.run("removeEventListener('keyup', look); return seen")
        assert len(seen) == len(keys), f"{len(keys)} keys, and {len(seen)} came"
        return seen

    def complaints(self):
        """Returns what the browser has logged since it was asked the last time."""
        return [each["message"] for each in self.driver.get_log("browser")]

    def requests(self):
        """Returns what was asked of files and of the network since the last time, but for pages that were opened."""
        messages = [json.loads(each["message"])["message"] for each in self.driver.get_log("performance")]
        return [each["params"]["request"]["url"][:200] for each in messages if each["method"] == "Network.requestWillBeSent"
                and each["params"].get("type") != "Document"]

    def picture(self, path):
        self.driver.save_screenshot(str(path))
