"""A running workbench, and its page in a browser."""
import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile

from selenium import webdriver
from selenium.common.exceptions import TimeoutException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

SECONDS = 30
# What the scenarios work on.
TEXT = "banner_config.categories.opt-in.banner_text.en"
HAND_WRITTEN = """{
    "version": 3,   "name": "Run\\u006eer", "x-auth-token": "T", "re_consent_enabled": true,
    "purposes": [
        {"purpose_id": 1, "purpose_name": {"en": "Plans"}, "purpose_description": {"en": "Makes plans."}, "disable_opt_out": false},
        { "purpose_id": 2,
          "purpose_name": {"en": "Ads"}, "disable_opt_out" : false, "purpose_description": {"en": "Shows ads."} }
    ],
    "banner_config": {"categories": {"opt-in": {"compliance_type": "opt-in", "banner_text": {"en": "May we?"},
      "accept": {"en": "Yes"}, "reject": {"en": "No"}}}, "names_map": {}, "locations": {"default": "opt-in"}}
}
"""


class Workbench:
    """`quillon-consent workbench` on a folder of its own."""

    def __init__(self, program, folder, arguments=(), launcher=()):
        self.folder = pathlib.Path(folder)
        self.process = subprocess.Popen([*launcher, program, "workbench", str(folder), *arguments],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.address = self._line("workbench: ")
        self.applications = self._line("applications: ")

    def _line(self, prefix):
        line = self.process.stdout.readline()
        assert line.startswith(prefix), line + self.process.stderr.read()
        return line.removeprefix(prefix).strip()

    def file(self, channel, name="config.json"):
        return self.folder / "consent/mobile_banner/acme/runner" / channel / name

    def put(self, channel, text):
        self.file(channel).parent.mkdir(parents=True, exist_ok=True)
        self.file(channel).write_bytes(text.encode())

    def end(self):
        self.process.terminate()
        _, errors = self.process.communicate(timeout=SECONDS)
        assert self.process.returncode == 0, errors


@contextlib.contextmanager
def workbench(program, launcher=(), folder=None):
    made = folder or tempfile.mkdtemp(prefix="workbench-")
    running = Workbench(program, made, launcher=launcher)
    try:
        yield running
    finally:
        running.end()
        if not folder:
            shutil.rmtree(made)


def browser(folder):
    """A browser that leaves nothing behind but in that folder."""
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--disable-gpu", "--disable-dev-shm-usage", "--window-size=1400,1240", "--lang=en"):
        options.add_argument(argument)
    if os.geteuid() == 0:  # its sandbox does not work for the super-user
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service(shutil.which("chromedriver"), env={**os.environ, "TMPDIR": folder}), options=options)


class Page:
    """What a person does on the page."""

    def __init__(self, driver, address):
        self.driver = driver
        driver.get("about:blank")
        driver.get_log("browser")  # that of the page before
        driver.get(address)
        self.until(lambda: self.run("return document.readyState") == "complete")

    def until(self, condition, what=""):
        """Waits until the condition holds, and returns its value."""
        return WebDriverWait(self.driver, SECONDS, poll_frequency=0.02).until(lambda _: condition(), what)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def at(self, identifier):
        return self.driver.find_element(By.ID, identifier)

    def text(self, identifier):
        return self.run("return document.getElementById(arguments[0]).textContent", identifier)

    def field(self, path, after=None):
        """The control of that path, in sight; it may be there only after a button was pressed."""
        if after:
            self.until(lambda: self.open_groups(path) == 0)
            self.press(after)
        def found():
            self.open_groups(path)
            controls = self.driver.find_elements(By.CSS_SELECTOR, f'[data-path="{path}"]')
            return controls and controls[0]
        control = self.until(found, path)
        self.run("arguments[0].scrollIntoView({block: 'center'})", control)
        return control

    def open_groups(self, path=None):
        """Opens the groups that lead to a path, or all; returns how many. They get their controls then, which may be groups."""
        return self.run("const path = arguments[0];"
                        "const closed = [...document.querySelectorAll('#form details:not([open])')].filter((group) => "
                        "path === null || group.isTitled || path.startsWith(group.dataset.group));"
                        "for (const group of closed) group.open = true; return closed.length", path)

    def fill(self, path, text):
        self.field(path).send_keys(Keys.CONTROL, "a", Keys.NULL, text)

    def change(self, path, text):
        """Fills a field, and waits until that can be saved."""
        self.fill(path, text)
        self.until(lambda: self.at("save").is_enabled(), "something to save")

    def press(self, name):
        """Presses the button of that accessible name or text."""
        found = self.run("return [...document.querySelectorAll('button')].find((b) => b.checkVisibility() && "
                         "[b.textContent, b.getAttribute('aria-label')].includes(arguments[0]))", name)
        assert found, f"there is no button {name}"
        found.click()

    def say(self):
        return self.text("status")

    def await_said(self, text):
        try:
            self.until(lambda: text in self.say(), text)
        except TimeoutException as late:
            raise AssertionError(f"{text!r} is not said, but {self.say()!r}") from late

    def forget_said(self):
        """Before an act whose words may be those of the act before."""
        self.run("document.getElementById('status').textContent = ''")

    def notice(self, condition, what=""):
        """Waits until the page has noticed what others did; it looks whenever somebody comes back to it."""
        self.until(lambda: self.run("window.dispatchEvent(new Event('focus'))") or condition(), what)

    def open(self):
        """Waits until the only configuration of the folder is there with its findings."""
        self.until(lambda: self.text("tab-findings") != "Findings", "findings")

    def await_picture(self):
        self.until(lambda: self.run("return document.getElementById('picture').dataset.count"), "a picture")

    def findings(self):
        # At once: the page makes them anew with every change.
        return self.run("return [...document.querySelectorAll('#findings li')].map((item) => item.textContent)")

    def dialog(self):
        self.until(lambda: self.at("dialog").is_displayed(), "a dialog")
        return self.at("dialog").text

    def save(self):
        self.until(lambda: self.at("save").is_enabled(), "something to save")
        self.forget_said()
        self.press("Save")
        self.await_said("Saved.")

    def publish(self, said=" is live"):
        self.press("Publish…")
        told = self.dialog()
        self.forget_said()
        self.press("Publish all the same" if "warning:" in told else "Publish now")
        self.await_said(said)
        return told

    def expect_no_errors(self):
        """What the browser complained about, apart from the statuses that a scenario provokes."""
        errors = [entry["message"] for entry in self.driver.get_log("browser") if "status of" not in entry["message"]]
        assert errors == [], errors
