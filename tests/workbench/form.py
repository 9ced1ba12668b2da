"""What the form holds."""
import base64
import json
import pathlib
import subprocess
import tempfile

from page import Page, workbench

SAMPLE = pathlib.Path(__file__).parents[2] / "examples/configuration/consent/mobile_banner/demo-tenant/news-reader/live/config.json"
# What no screen shows, and what applications read of themselves.
ONLY_IN_JSON = {
    "generated_on", "id", "description", "tenant_id", "platform", "status", "sdk_version",
    "purposes[0].consent_status", "permissions[0].id", "permissions[0].name", "permissions[0].group_id",
    "permissions[0].consent_status", "banner_config.categories.eu.name"}


def paths(schema, node, path, values):
    """The path of every value that a document can have, in lists and maps that of the first one."""
    while "$ref" in node:
        node = schema["$defs"][node["$ref"].rsplit("/", 1)[1]]
    for choice in node.get("anyOf", node.get("oneOf", [])):
        if choice.get("type") != "null":
            return paths(schema, choice, path, values)
    if "properties" in node:
        found = []
        for key, child in node["properties"].items():
            found += paths(schema, child, f"{path}.{key}".lstrip("."), (values or {}).get(key))
        return found
    items, members = node.get("items"), node.get("additionalProperties")
    while items and "$ref" in items:
        items = schema["$defs"][items["$ref"].rsplit("/", 1)[1]]
    if items and "properties" in items:
        return paths(schema, items, path + "[0]", values[0])
    if isinstance(members, dict) and values:
        key = "en" if "en" in values else next(iter(values))
        return paths(schema, members, f"{path}.{key}", values[key])
    return [path]


def every_value_has_a_control(driver, program, _):
    schema = json.loads(subprocess.run([program, "schema"], capture_output=True, check=True).stdout)
    sample = json.loads(SAMPLE.read_text())
    sample["i18n"] = {"en": {"accept": ""}}
    with workbench(program) as bench:
        bench.put("draft", SAMPLE.read_text())
        page = Page(driver, bench.address)
        page.open()
        page.await_picture()
        page.until(lambda: page.open_groups() == 0)
        there = page.run("return [...document.querySelectorAll('#form [data-path], #form [data-group]')]"
                         ".map((e) => e.dataset.path ?? e.dataset.group)")
        wanted = {path for path in paths(schema, schema, "", sample) if path != "$schema"}
        assert len(wanted) > 100 and wanted - set(there) == ONLY_IN_JSON, (wanted - set(there)) ^ ONLY_IN_JSON

        # Purposes of a signal, a logo and a region: only the lines of what was changed differ.
        purposes = page.run("return document.querySelector('[data-group=\"gcm_config.default_mapping.ad_storage\"]')")
        box = lambda: page.run("return [...arguments[0].querySelectorAll('input')].map((box) => box.checked)", purposes)
        assert box() == [False, False, False, True, False, False]
        page.run("arguments[0].querySelectorAll('input')[1].click()", purposes)
        picture = base64.b64encode(base64.b64decode(sample["purposes"][0]["sdks"][0]["logo_base64"])).decode()
        with tempfile.NamedTemporaryFile(suffix=".png") as file:
            file.write(base64.b64decode(picture))
            file.flush()
            page.field("logo_base64").send_keys(file.name)
            shown = lambda: page.run("return document.querySelector('[data-path=logo_base64]').parentElement.querySelector('img').src")
            page.until(lambda: shown().endswith(picture))
        page.save()
        expected = SAMPLE.read_text().replace('"ad_storage": [4]', '"ad_storage": [4, 2]', 1)
        expected = expected.replace(f'"logo_base64": "{sample["logo_base64"]}"', f'"logo_base64": "{picture}"', 1)
        assert bench.file("draft").read_text() == expected
        # A name that is there is not made anew.
        name = page.run("return document.querySelector('[aria-label=\"Name of a further banner\"]')")
        name.send_keys("eu")
        page.press("Add a banner")
        page.await_said("There is a eu already")
        page.expect_no_errors()
