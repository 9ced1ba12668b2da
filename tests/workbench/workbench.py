#!/usr/bin/python3
"""The workbench in a real browser, scenario by scenario.

usage: workbench.py QUILLON_CONSENT [--pictures FOLDER] [--only SCENARIO]
"""
import argparse
import http.client
import json
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import traceback
import urllib.parse

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from page import Page, Workbench, browser, workbench

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


def create_runner(page):
    """The configuration of a fitness application, as the form for new ones makes it."""
    page.until(lambda: page.text("document"))
    page.press("New…")
    page.dialog()
    for key, value in {
            "name": "Runner", "tenant": "acme", "application": "runner", "languages": "en, de, fr",
            "purposes": "essential, measurement, advertising, personalisation, Training plans",
            "permissions": "NSMotionUsageDescription, NSHealthShareUsageDescription, NSLocationWhenInUseUsageDescription",
            "opt-out": "US", "notice": "https://runner.example/privacy", "token": "TOKEN"}.items():
        page.at("new-" + key).clear()
        page.at("new-" + key).send_keys(value)
    # What cannot be is told, and nothing that was typed is lost.
    page.at("new-opt-out").send_keys(", Germany")
    page.press("Create it")
    page.until(lambda: "Germany" in page.dialog())
    page.at("new-opt-out").send_keys(Keys.BACKSPACE * len(", Germany"))
    page.press("Create it")
    page.await_said("The configuration was made")
    page.open()


def from_nothing_to_published(driver, program, pictures):
    with workbench(program) as bench:
        page = Page(driver, bench.address)
        create_runner(page)
        # What only people can write is asked for: the purpose of the application's own, in all its languages.
        assert {f.split("purposes[4].")[1].split(":")[0] for f in page.findings()} == {"purpose_name", "purpose_description"}
        for language, name, description in (("en", "Training plans", "Fits plans to your runs."),
                                            ("de", "Trainingspläne", "Passt Pläne an Ihre Läufe an."),
                                            ("fr", "Plans", "Adapte les plans à vos courses.")):
            page.fill(f"purposes[4].purpose_name.{language}", name)
            page.fill(f"purposes[4].purpose_description.{language}", description)
        page.until(lambda: page.text("findings") == "Nothing is wrong.")
        page.at("tab-content").click()
        rows = [row.text for row in driver.find_elements(By.CSS_SELECTOR, "#content tbody tr")]
        assert len(rows) == 2 and "opt-in" in rows[0] and "elsewhere" in rows[0] and rows[1].startswith("US opt-out"), rows
        # Colours are told with their contrast while they are chosen.
        page.field("banner_config.categories.opt-in.palette.banner_text", "Give it colours of its own")
        page.fill("banner_config.categories.opt-in.palette.banner_text", "#9AA5B1")
        note = '[data-contrast="banner_config.categories.opt-in.palette.banner_text"]'
        page.until(lambda: driver.find_element(By.CSS_SELECTOR, note).text == "2.5:1 on banner background, needs 4.5:1")
        page.fill("banner_config.categories.opt-in.palette.banner_text", "#1F2933")
        page.until(lambda: page.text("findings") == "Nothing is wrong.")
        if pictures:
            driver.save_screenshot(str(pictures / "workbench.png"))
        times = page.type_and_time(TEXT, " Thank you.")
        print(f"  from key stroke to picture: {sorted(times)[len(times) // 2]} ms (median), {max(times)} ms (most)")
        page.save()
        assert "Nothing is live yet" in page.publish()
        assert bench.file("live").read_bytes() == bench.file("draft").read_bytes()
        checked = subprocess.run([program, "validate", "--lint", "--fairness", "--fail-on", "warning", bench.file("live")])
        assert checked.returncode == 0
        # Another rule is material: it is told who is asked again, and the version rises.
        page.field("banner_config.categories.opt-out.compliance_type").send_keys("opt-in")
        page.at("tab-comparison").click()
        page.until(lambda: "opt-in in place of opt-out" in page.text("comparison"))
        assert "Publishing raises the version to 2" in page.text("comparison")
        assert "Asked again: everyone who has answered" in page.publish()
        assert json.loads(bench.file("live").read_text())["version"] == 2
        page.until(lambda: "The draft is what is live" in page.text("comparison"))
        errors = page.errors()
        assert errors == [], errors


def planted_mistakes_are_found(driver, program, _):
    planted = HAND_WRITTEN.replace('"accept"', '"acept"').replace('"default": ', '"Germany": ').replace('"Shows ads."', '""')
    with workbench(program) as bench:
        bench.put("draft", planted)
        page = Page(driver, bench.address)
        page.open()
        found = "\n".join(page.findings())
        for mistake in ('did you mean "accept"', "Germany", "purposes[1].purpose_description"):
            assert mistake in found, found
        # A click leads to the field, or to the place in the JSON where there is no field.
        [link] = [b for b in driver.find_elements(By.CSS_SELECTOR, "#findings button") if "Germany: " in b.text]
        link.click()
        assert driver.switch_to.active_element.get_attribute("data-path") == "banner_config.locations.Germany"
        [link] = [b for b in driver.find_elements(By.CSS_SELECTOR, "#findings li button.link:nth-of-type(2)")
                  if "acept" in b.get_attribute("aria-label")]
        link.click()
        source = driver.switch_to.active_element
        assert source.get_attribute("id") == "source"
        assert page.run("return arguments[0].value.slice(arguments[0].selectionStart).startsWith('\"acept')", source)
        # Broken JSON keeps the form from being used, and is told with its place.
        source.send_keys("}")
        page.until(lambda: any("error" in f for f in page.findings()))
        page.at("tab-form").click()
        assert page.at("form-note").is_displayed() and page.run("return document.getElementById('form').inert")
        page.press("Undo")
        page.until(lambda: not page.at("form-note").is_displayed())
        assert bench.file("draft").read_text() == planted


def only_what_changed_differs(driver, program, _):
    with workbench(program) as bench:
        bench.put("draft", HAND_WRITTEN.replace("\n", "\r\n"))
        page = Page(driver, bench.address)
        page.open()
        page.fill("purposes[0].purpose_name.en", "Training")
        page.at("language-code").send_keys("de")
        page.press("Add a language")
        page.fill("purposes[0].purpose_name.de", "Pläne")
        page.field("purposes[1].purpose_name.en")
        page.press("Remove Ads")
        page.until(lambda: not driver.find_elements(By.CSS_SELECTOR, '[data-path="purposes[1].purpose_id"]'))
        page.save()
        expected = HAND_WRITTEN.replace('{"en": "Plans"}', '{"en": "Training", "de": "Pläne"}')
        at = expected.index(",\n        { \"purpose_id\": 2")
        expected = expected[:at] + expected[expected.index("\n    ],"):]
        assert bench.file("draft").read_bytes().decode() == expected.replace("\n", "\r\n")


def a_changed_file_is_not_overwritten(driver, program, pictures):
    with workbench(program) as bench:
        bench.put("draft", HAND_WRITTEN)
        page = Page(driver, bench.address)
        page.open()
        # Without changes of one's own the page follows the file.
        bench.put("draft", HAND_WRITTEN.replace("May we?", "Would you?"))
        page.await_said("this is what it says now")
        assert page.field(TEXT).get_attribute("value") == "Would you?"
        for answer, theirs, expected in (("Take the file on disk", "Theirs", "Theirs"), ("Overwrite it with mine", "Others", "Mine")):
            page.fill(TEXT, "Mine")
            page.until(lambda: page.at("save").is_enabled())
            bench.put("draft", HAND_WRITTEN.replace("May we?", theirs))
            page.press("Save")
            assert "changed on disk" in page.dialog()
            sides = [side.get_attribute("value") for side in driver.find_elements(By.CSS_SELECTOR, "#dialog textarea")]
            assert "Mine" in sides[0] and theirs in sides[1]
            page.press(answer)
            page.until(lambda: not page.at("save").is_enabled() and expected in bench.file("draft").read_text())
            assert page.field(TEXT).get_attribute("value") == expected


def an_application_is_watched(driver, program, pictures):
    with workbench(program) as bench, tempfile.TemporaryDirectory() as data:
        bench.put("live", HAND_WRITTEN)
        page = Page(driver, bench.address + "traffic.html")
        host = subprocess.Popen([program, "host", "--data-dir", data, "--vendor-url", bench.applications, "--clock", "1700000000"],
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

        def ask(**request):
            host.stdin.write(json.dumps(request) + "\n")
            host.stdin.flush()
            answer = json.loads(host.stdout.readline())
            assert answer["ok"], answer
            return answer

        ask(op="setup", appUrl=bench.applications, cdnUrl=bench.applications, tenantId="acme", appId="runner", locationCode="DE")
        assert ask(op="waitReady")["status"] == "ready"
        ask(op="bannerDue")
        ask(op="accept")
        assert ask(op="upload")["uploaded"]
        rows = lambda: page.text("exchanges")
        page.until(lambda: "explicit: the user chose" in rows())
        for said in ("config.json", 'purpose 1 "Plans": granted', 'purpose 2 "Ads": granted', "version 3"):
            assert said in rows(), rows()
        if pictures:
            driver.save_screenshot(str(pictures / "traffic.png"))
        page.at("fail").click()
        page.await_said("The faults are in force")
        ask(op="set", purposeId=2, consent="declined")
        assert not ask(op="upload")["uploaded"]
        page.until(lambda: "singleupload503" in rows())
        page.at("fail").click()
        page.until(lambda: not page.at("fail").is_selected())
        assert ask(op="upload")["uploaded"]
        page.until(lambda: 'purpose 2 "Ads": declined' in rows())
        ask(op="quit")
        host.communicate(timeout=20)
        errors = page.errors()
        assert errors == [], errors


CONTRASTS = """
const channel = (c) => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4;
const parts = (text) => text.match(/[\\d.]+/g).map(Number);
const light = ([r, g, b]) => 0.2126 * channel(r / 255) + 0.7152 * channel(g / 255) + 0.0722 * channel(b / 255);
const behind = (e) => { for (; e; e = e.parentElement) { const c = parts(getComputedStyle(e).backgroundColor);
  if (c.length < 4 || c[3] > 0) return c; } return [255, 255, 255]; };
return [...document.querySelectorAll('body *')].filter((e) => e.checkVisibility() && !e.disabled &&
    (e.value || [...e.childNodes].some((n) => n.nodeType === 3 && n.textContent.trim())) && e.type !== 'color')
  .map((e) => { const [a, b] = [light(parts(getComputedStyle(e).color)), light(behind(e))].sort((x, y) => y - x);
    return [(a + 0.05) / (b + 0.05), e.outerHTML.slice(0, 100)]; }).filter(([ratio]) => ratio < 4.5);
"""


def everybody_can_use_it(driver, program, _):
    with workbench(program) as bench:
        bench.put("draft", HAND_WRITTEN)
        bench.put("live", HAND_WRITTEN)
        for address in (bench.address, bench.address + "traffic.html"):
            page = Page(driver, address)
            if not address.endswith(".html"):
                page.open()
                page.until(lambda: page.run("return document.getElementById('picture').dataset.count"))
                page.run("for (const d of document.querySelectorAll('details')) d.open = true")
                page.until(lambda: driver.find_elements(By.CSS_SELECTOR, '[data-path="i18n.en.accept"]'))
            # Of the many labels one does.
            controls = page.run("return [...document.querySelectorAll('button, input, select, textarea, summary, a, img')]"
                                ".filter((c) => c.checkVisibility() && !/^i18n.en.[^a]/.test(c.dataset.path))")
            assert len(controls) >= 8
            for control in controls:
                name, role = control.accessible_name, control.aria_role
                assert name.strip() and role not in ("none", "generic", ""), control.get_attribute("outerHTML")
            assert page.run(CONTRASTS) == []
            # The focus can be seen wherever the keyboard leads.
            driver.find_element(By.TAG_NAME, "body").send_keys(Keys.TAB)
            for _ in range(12):
                if page.run("return document.activeElement === document.body"):
                    break  # once round
                outline = page.run("const s = getComputedStyle(document.activeElement); return s.outlineStyle + s.outlineWidth")
                assert outline == "solid3px", page.run("return document.activeElement.outerHTML")
                driver.switch_to.active_element.send_keys(Keys.TAB)
            # At 200 % nothing is cut off.
            driver.set_window_size(700, 1240)
            assert page.run("return document.documentElement.scrollWidth <= innerWidth")
            driver.set_window_size(1400, 1240)
        page = Page(driver, bench.address)
        page.open()
        page.at("tab-findings").send_keys(Keys.ARROW_RIGHT)
        assert page.at("comparison").is_displayed() and driver.switch_to.active_element.get_attribute("id") == "tab-comparison"


def bad_input_is_answered(driver, program, _):
    with workbench(program) as bench:
        # Too large, no JSON, no UTF-8: said, and the files stay.
        for content, said in ((b'{"name": "' + b"x" * (40 << 20) + b'"}', "larger than 32 MiB"), (b'{"name": "\xff"}', "no UTF-8"),
                              (b"{", None)):
            bench.put("draft", "")
            bench.file("draft").write_bytes(content)
            page = Page(driver, bench.address)
            page.await_said(said) if said else page.until(lambda: any("syntax" in f for f in page.findings()))
            assert bench.file("draft").read_bytes() == content
        # A second workbench, and ports that are taken.
        for arguments, said in (((), "another workbench is open"),
                                (("--port", str(urllib.parse.urlsplit(bench.address).port)), "cannot be taken"),
                                (("--applications-port", str(urllib.parse.urlsplit(bench.applications).port)), "cannot be taken")):
            with tempfile.TemporaryDirectory() as other:
                run = subprocess.run([program, "workbench", other if arguments else str(bench.folder), *arguments],
                                     capture_output=True, text=True, timeout=20)
                assert run.returncode == 1 and said in run.stderr, run
    # A folder that cannot be written; nothing keeps the super-user from writing, so somebody else works there.
    with tempfile.TemporaryDirectory() as folder:
        launcher = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"] if os.geteuid() == 0 else []
        home = pathlib.Path(folder)
        draft = home / "consent/mobile_banner/acme/runner/draft"
        draft.mkdir(parents=True)
        (draft / "config.json").write_text(HAND_WRITTEN)
        for path in (home, *home.rglob("*")):
            path.chmod(0o555 if path.is_dir() else 0o444)
        with workbench(program, launcher, folder) as bench:
            page = Page(driver, bench.address)
            page.open()
            page.fill(TEXT, "Mine")
            page.until(lambda: page.at("save").is_enabled())
            page.press("Save")
            page.await_said("Not saved: ")
            assert "Permission denied" in page.say() and bench.file("draft").read_text() == HAND_WRITTEN
        for path in (home, *home.rglob("*")):
            path.chmod(0o755)


def strangers_are_refused(driver, program, _):
    with workbench(program) as bench:
        attack = HAND_WRITTEN.replace("May we?", "<img src=x onerror='window.harm=1'><script>window.harm=1</script>")
        attack = attack.replace('"Plans"', '"<b id=harm>Plans</b>"')
        bench.put("draft", attack)
        page = Page(driver, bench.address)
        page.open()
        page.until(lambda: page.run("return document.getElementById('picture').dataset.count"))
        assert page.run("return [window.harm, document.querySelectorAll('#harm, #form img, #form script').length]") == [None, 0]
        assert page.run("return performance.getEntriesByType('resource').every((e) => e.name.startsWith(location.origin))")
        # Not even a script that got into the page runs.
        assert page.run("const s = document.createElement('script'); s.textContent = 'window.harm = 1';"
                        "document.body.append(s); return window.harm ?? 'none'") == "none"

        address = urllib.parse.urlsplit(bench.address)
        own = f"http://{address.netloc}"
        document = address.path + "api/document?tenant=acme&application=runner&file=config.json"

        def status(method, path, host=address.netloc, origin=None, body=None, headers=None):
            connection = http.client.HTTPConnection("127.0.0.1", address.port, timeout=20)
            connection.putrequest(method, path, skip_host=True)
            headers = {"Host": host, **({"Origin": origin} if origin else {}), **(headers or {})}
            for key, value in {**headers, "Content-Length": str(len(body or ""))}.items():
                connection.putheader(key, value)
            connection.endheaders((body or "").encode())
            return connection.getresponse().status

        tag = json.loads(page.run("return fetch('api/document?tenant=acme&application=runner&file=config.json').then((r) => r.text())"))
        match = {"If-Match": tag["draft"]["tag"]}
        cases = [
            (("GET", document), 200),
            (("GET", document.replace(address.path, "/" + "0" * 32 + "/")), 404),  # the wrong token
            (("GET", "/"), 404),
            (("GET", document, "attacker.example"), 403),  # a name that leads to this machine
            (("GET", document, f"attacker.example:{address.port}"), 403),
            (("GET", document, address.netloc, "http://attacker.example"), 403),
            (("PUT", document, address.netloc, "http://attacker.example", "{}", match), 403),
            (("PUT", document, address.netloc, None, "{}", match), 403),
            (("PUT", document, address.netloc, "null", "{}", match), 403),
            (("PUT", document.replace("runner", ".."), address.netloc, own, "{}"), 500),
            (("PUT", document.replace("config.json", "config_..%2f..%2fx.json"), address.netloc, own, "{}"), 500),
            (("PUT", document, address.netloc, own, "{}", {"If-Match": "other"}), 412),
            (("PUT", document, address.netloc, own, "x" * (66 << 20), match), 413),
            (("DELETE", document, address.netloc, own), 404),
        ]
        for request, expected in cases:
            assert status(*request) == expected, request[:2]
        assert bench.file("draft").read_text() == attack
        # Other addresses of this machine lead nowhere.
        assert socket.socket().connect_ex(("127.0.0.2", address.port)) != 0


SCENARIOS = [from_nothing_to_published, planted_mistakes_are_found, only_what_changed_differs,
             a_changed_file_is_not_overwritten, an_application_is_watched, everybody_can_use_it, bad_input_is_answered,
             strangers_are_refused]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--pictures", type=pathlib.Path)
    parser.add_argument("--only")
    options = parser.parse_args()
    driver = browser()
    failures = 0
    try:
        for scenario in SCENARIOS:
            if options.only and options.only != scenario.__name__:
                continue
            begin = time.monotonic()
            result = "ok"
            try:
                scenario(driver, options.program, options.pictures)
            except Exception:  # the other scenarios tell more
                result = "FAILED"
                failures += 1
                traceback.print_exc(file=sys.stdout)
            print(f"{result} {scenario.__name__}: {time.monotonic() - begin:.1f} s", flush=True)
    finally:
        driver.quit()
    sys.exit(failures > 0)


main()
