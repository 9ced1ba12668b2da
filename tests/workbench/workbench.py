#!/usr/bin/python3 -B
"""The workbench in a real browser, scenario by scenario.

usage: workbench.py QUILLON_CONSENT [--pictures FOLDER] [--only SCENARIO]
"""
import argparse
import json
import pathlib
import subprocess
import sys
import tempfile
import time
import traceback

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from accessibility import everybody_can_use_it
from page import HAND_WRITTEN, TEXT, Page, browser, workbench
from form import every_value_has_a_control
from losses import answers_come_late, large_documents_are_worked_on, nothing_is_lost
from refusals import bad_input_is_answered, strangers_are_refused


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
        page.expect_no_errors()


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
        for answer, theirs, expected in (("Take the file on disk", "Theirs", "Theirs"), ("Overwrite it with mine", "Others", "Mine")):
            page.change(TEXT, "Mine")
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
        for said in ("config.json", 'purpose 2 "Ads": granted', "version 3"):
            assert said in rows(), rows()
        if pictures:
            driver.save_screenshot(str(pictures / "traffic.png"))
        page.at("fail").click()
        page.await_said("The faults are in force")
        ask(op="set", purposeId=2, consent="declined")
        assert not ask(op="upload")["uploaded"]
        page.until(lambda: "singleupload503" in rows())
        ask(op="quit")
        host.communicate(timeout=20)
        page.expect_no_errors()


SCENARIOS = [from_nothing_to_published, planted_mistakes_are_found, only_what_changed_differs,
             a_changed_file_is_not_overwritten, nothing_is_lost, answers_come_late, every_value_has_a_control,
             large_documents_are_worked_on, an_application_is_watched, everybody_can_use_it, bad_input_is_answered,
             strangers_are_refused]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--pictures", type=pathlib.Path)
    parser.add_argument("--only")
    options = parser.parse_args()
    rest = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
    driver = browser(rest.name)
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
        rest.cleanup()
    sys.exit(failures > 0)


main()
