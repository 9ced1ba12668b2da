"""The pages for those who use the keyboard, a screen reader or large text."""
import collections

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from page import HAND_WRITTEN, Page, workbench

ROLES = {"button", "checkbox", "ColorWell", "combobox", "DisclosureTriangle", "image", "link", "spinbutton", "switch", "tab",
         "textbox"}
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
                page.await_picture()
                page.until(lambda: page.open_groups() == 0)
            # Every control has a role of its own, and a name, as the browser tells assistive technology.
            controls = page.run("return [...document.querySelectorAll('button, input, select, textarea, summary, a, img')]"
                                ".filter((control) => control.checkVisibility()).length")
            nodes = driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
            told = [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in nodes
                    if not node["ignored"] and node["role"]["value"] in ROLES]
            assert len(told) == controls >= 8, (controls, collections.Counter(role for role, _ in told))
            assert all(name.strip() for _, name in told), [role for role, name in told if not name.strip()]
            for scheme in ("dark", "light"):
                driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
                assert page.run(CONTRASTS) == [], (scheme, page.run(CONTRASTS))
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
