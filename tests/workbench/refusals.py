"""Bad input, and strangers."""
import http.client
import json
import os
import pathlib
import socket
import subprocess
import tempfile
import urllib.parse

from page import HAND_WRITTEN, TEXT, Page, workbench


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
            page.change(TEXT, "Mine")
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
        page.await_picture()
        assert page.run("return [window.harm, document.querySelectorAll('#harm, #form img[src=x], #form script').length]") == [None, 0]
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
