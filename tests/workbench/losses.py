"""What others do meanwhile, and what goes wrong: nothing that somebody wrote is lost unasked."""
import json
import shutil

from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.expected_conditions import alert_is_present

from page import HAND_WRITTEN, TEXT, Page, workbench


def nothing_is_lost(driver, program, _):
    with workbench(program) as bench:
        bench.put("draft", HAND_WRITTEN.replace('"May we?"', '"May\\nwe?", "en": "Or may\\nwe?"'))
        bench.put("live", HAND_WRITTEN)
        bench.file("live").rename(bench.file("live", "config_de.json"))
        page = Page(driver, bench.address + "#tenant=acme&application=runner&file=config.json")
        page.open()
        # Of a key that is there twice the last one counts, and lines stay lines.
        assert any("duplicate-key" in finding for finding in page.findings())
        assert page.field(TEXT).get_attribute("value") == "Or may\nwe?"
        page.field(TEXT).send_keys("!")
        page.save()
        assert '"May\\nwe?", "en": "Or may\\nwe?!"' in bench.file("draft").read_text()

        # Nobody leaves what is not saved unasked.
        page.change("name", "Unsaved")
        for leave in (lambda: page.press("New…"), lambda: page.at("document").send_keys(Keys.ARROW_DOWN)):
            leave()
            page.until(lambda: alert_is_present()(driver), "a question").dismiss()
            assert "config.json" in page.at("document").get_attribute("value") and not page.at("dialog").is_displayed()

        # What the server does not answer waits for it.
        page.run("window.network = fetch; window.fetch = () => Promise.reject(new TypeError())")
        page.fill("name", "Unanswered")
        page.await_said("does not answer")
        page.run("window.fetch = window.network")
        page.notice(lambda: "answers again" in page.say())
        page.save()
        assert "Unanswered" in bench.file("draft").read_text()

        # A file that changes under the cursor is not overwritten by the next letter.
        page.at("tab-source").click()
        page.at("source").click()
        bench.put("draft", HAND_WRITTEN.replace("May we?", "Would you?"))
        page.notice(lambda: "this is what it says now" in page.say())
        page.at("source").send_keys(" ")
        page.save()
        assert "Would you?" in bench.file("draft").read_text()

        # Broken on disk, gone, and there again.
        page.at("tab-form").click()
        page.await_picture()
        bench.put("draft", "{")
        page.notice(lambda: page.at("form-note").is_displayed())
        assert "This is the last picture" in page.text("drawn")
        bench.put("draft", HAND_WRITTEN)
        page.notice(lambda: not page.at("form-note").is_displayed())
        page.fill(TEXT, "Mine")
        shutil.rmtree(bench.file("draft").parent)
        page.notice(lambda: "is gone" in page.say())
        page.press("Save")
        page.await_said("Saving again makes it anew")
        page.save()
        assert "Mine" in bench.file("draft").read_text()

        # What somebody else published is not replaced by one who did not see it, and versions do not fall.
        bench.put("live", HAND_WRITTEN)
        page.notice(lambda: "Nothing is live" not in page.text("comparison"))
        page.press("Publish…")
        page.dialog()
        bench.put("live", HAND_WRITTEN.replace('"version": 3', '"version": 7'))
        page.press("Publish all the same" if "warning:" in page.dialog() else "Publish now")
        page.await_said("what is live has changed")
        assert "May we?" in bench.file("live").read_text()
        page.notice(lambda: "raises the version to" in page.text("comparison"))
        told = page.publish()
        assert "may be an old one" in told, told
        assert json.loads(bench.file("live").read_text())["version"] >= 7
        assert bench.file("live").read_text() == bench.file("draft").read_text()


# Holds back the server's answers whose request contains a text until they are let go.
HELD = """window.network ??= fetch; window.held = []; window.polls = 0;
  window.letGo = () => { window.waitsFor = undefined; window.held.splice(0).forEach((goOn) => goOn()); };
  window.waitsFor = arguments[0];
  window.fetch = async (path, options = {}) => {
    const isHeld = window.waitsFor && `${options.method} ${path}`.includes(window.waitsFor);
    if (path.includes('tags=1')) ++window.polls;
    const answer = await window.network(path, options);
    if (isHeld) await new Promise((goOn) => window.held.push(goOn));
    return answer;
  };"""


def answers_come_late(driver, program, _):
    with workbench(program) as bench:
        bench.put("draft", HAND_WRITTEN)
        page = Page(driver, bench.address)
        page.open()
        draft = lambda: json.loads(bench.file("draft").read_text())
        is_held = lambda: page.until(lambda: page.run("return window.held.length"), "an answer held back")
        looked = lambda: page.until(lambda: page.run("window.dispatchEvent(new Event('focus')); return window.polls") > 1)

        # What the file was before one's own writing is no change of somebody else's.
        for write in (page.save, page.publish):
            page.change("name", f"By {write.__name__}")
            page.run(HELD, "tags=1")
            page.notice(lambda: page.run("return window.held.length"), "a look at the file")
            write()
            said = page.say()
            page.run("window.letGo()")
            looked()
            assert page.say() == said, page.say()

        # What is typed while the server writes is not saved yet, nor published unseen, and stays.
        publish = lambda: page.publish(said="")  # and wait for nothing
        for begin, request, done in ((lambda: page.press("Save"), "PUT", "Saved."), (publish, "PUT", "Not published."),
                                     (publish, "publish", " is live")):
            page.change("name", "Before")
            page.run(HELD, request)
            page.forget_said()
            begin()
            is_held()
            page.fill("name", "Meanwhile")
            page.run("window.letGo()")
            page.await_said(done)
            page.until(lambda: page.at("save").is_enabled(), "something to save")
            assert draft()["name"] == "Before"
            assert page.field("name").get_attribute("value") == "Meanwhile"
            page.save()
            assert draft()["name"] == "Meanwhile"

        # Two presses in a row are no conflict.
        page.change("name", "Twice")
        page.run(HELD, "PUT")
        page.forget_said()
        page.run("document.getElementById('save').click(); document.getElementById('save').click()")
        is_held()
        page.run("window.letGo()")
        page.await_said("Saved.")
        looked()
        assert not page.at("dialog").is_displayed() and draft()["name"] == "Twice"

        # A picture that is decoded late does not hide that the document broke meanwhile.
        page.run("const {decode} = Image.prototype; Image.prototype.decode = async function() {"
                 "await decode.call(this); await new Promise((goOn) => window.held.push(goOn)); }")
        page.fill("name", "Pictured")
        is_held()
        page.save()
        bench.put("draft", "{")
        page.notice(lambda: page.at("form-note").is_displayed())
        drawn = lambda: page.run("return document.getElementById('picture').dataset.count")
        before = drawn()
        page.run("window.letGo()")
        page.until(lambda: drawn() != before, "a picture")
        assert "This is the last picture" in page.text("drawn")


def large_documents_are_worked_on(driver, program, _):
    further = "".join(f',\n    {{"purpose_id": {i}, "purpose_name": {{"en": "Purpose {i}"}}, "disable_opt_out": false,'
                      f' "purpose_description": {{"en": "{"Counts steps. " * 110}"}}}}' for i in range(3, 253))
    document = HAND_WRITTEN.replace('{"en": "Shows ads."} }', '{"en": "Shows ads."} }' + further)
    document = document.replace('"Makes plans."', f'"{"Long words. " * 3000}"')
    planted = document.replace('"Purpose 240"', '"Purpose 240", "xx": "?"').replace('"Purpose 20"', '""')
    with workbench(program) as bench:
        bench.put("draft", planted)
        page = Page(driver, bench.address)
        page.open()
        click = lambda text: page.run("[...document.querySelectorAll('#findings button')].find((button) => "
                                      "button.textContent.startsWith(arguments[0])).click()", text)
        # The field of a finding that no group has shown yet, and the line of one that is far down.
        click("purposes[19].purpose_name")
        assert driver.switch_to.active_element.get_attribute("data-path") == "purposes[19].purpose_name.en"
        click("purposes[239].purpose_name.xx")
        source = driver.switch_to.active_element
        part = page.run("return arguments[0].value", source)
        assert source.get_attribute("id") == "source" and len(part) < len(planted) / 2
        at = source.get_property("selectionStart")
        assert "?" in part[at:at + 10] or '"xx"' in part[at:at + 10], part[at - 20:at + 20]
        # What is typed there is typed there.
        page.run("const [control, from] = arguments; control.setRangeText('', from, from + ', \"xx\": \"?\"'.length);"
                 "control.dispatchEvent(new Event('input'))", source, part.index(', "xx": "?"'))
        page.save()
        assert bench.file("draft").read_text() == document.replace('"Purpose 20"', '""')
