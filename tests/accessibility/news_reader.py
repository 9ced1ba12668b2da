"""The news reader as assistive technology meets it: a client of its own on a real accessibility bus.

Run within a session bus of its own:  dbus-run-session -- python3 news_reader.py BIN_FOLDER CONFIGURATION_FOLDER
"""

import contextlib
import json
import os
import subprocess
import sys
import tempfile
import time

LIMIT_SECONDS = 30


def wait_for(what, condition):
    """The first true value of the condition."""
    end = time.monotonic() + LIMIT_SECONDS
    while time.monotonic() < end:
        # An item may go away while it is looked at.
        with contextlib.suppress(GLib.GError, LookupError):
            if value := condition():
                return value
        GLib.MainContext.default().iteration(False)
        time.sleep(0.02)
    raise AssertionError("not within %d s: %s" % (LIMIT_SECONDS, what))


def nodes(node):
    yield node
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            yield from nodes(child)


class Reader:
    """The news reader on the bus."""

    def root(self):
        desktop = pyatspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            application = desktop.getChildAtIndex(index)
            if application is not None and "news" in application.name:
                return application
        return None

    def all(self, role, name):
        root = self.root()
        if root is None:
            return []
        root.clearCache()
        return [n for n in nodes(root) if n.getRole() == role and n.name == name
                and n.getState().contains(pyatspi.STATE_SHOWING)]

    def one(self, role, name):
        found = wait_for("%s '%s'" % (role, name), lambda: self.all(role, name))
        return found[-1]

    def act(self, node, action):
        actions = node.queryAction()
        names = [actions.getName(i) for i in range(actions.nActions)]
        assert action in names, "%s offers %s only" % (node.name, names)
        actions.doAction(names.index(action))

    def press(self, name, role):
        self.act(self.one(role, name), "Press")


def granted(store):
    result = subprocess.run([tool, "store", "--data-dir", store, "dump"], capture_output=True, text=True, check=True)
    entries = json.loads(result.stdout)
    return {key: value for key, value in entries.items() if key.isdigit()}


def check(reader, store):
    # The banner.
    wait_for("the application on the bus", reader.root)
    accept = reader.one(pyatspi.ROLE_PUSH_BUTTON, "Accept all")
    assert accept.description == "Double tap to activate", accept.description
    dialog = reader.one(pyatspi.ROLE_DIALOG, "Your news, your choice")
    assert dialog.getState().contains(pyatspi.STATE_MODAL), "the banner is modal"
    assert not reader.all(pyatspi.ROLE_PUSH_BUTTON, "Privacy"), "the page below the banner is out of reach"
    reader.one(pyatspi.ROLE_HEADING, "Your news, your choice")
    assert granted(store) == {}, "nothing is decided yet"

    # A switch of the preference centre changes by its own action, and says so.
    reader.press("Choose for yourself", pyatspi.ROLE_LINK)
    switch = ("Audience measurement", pyatspi.ROLE_CHECK_BOX)
    is_checked = lambda: reader.all(switch[1], switch[0])[-1].getState().contains(pyatspi.STATE_CHECKED)
    assert not reader.all(pyatspi.ROLE_PUSH_BUTTON, "Accept all"), "the banner below is out of reach"
    before = reader.one(switch[1], switch[0]).getState().contains(pyatspi.STATE_CHECKED)
    reader.act(reader.one(switch[1], switch[0]), "Toggle")
    wait_for("the switch to change", lambda: is_checked() != before)
    reader.act(reader.one(switch[1], switch[0]), "Press")
    wait_for("the switch to change back", lambda: is_checked() == before)
    reader.press("Close", pyatspi.ROLE_PUSH_BUTTON)

    # The answer is stored.
    wait_for("the banner to be alone", lambda: not reader.all(pyatspi.ROLE_CHECK_BOX, switch[0]))
    reader.press("Accept all", pyatspi.ROLE_PUSH_BUTTON)
    wait_for("the banner to leave", lambda: not reader.all(pyatspi.ROLE_PUSH_BUTTON, "Accept all"))
    stored = wait_for("the answer in the store", lambda: granted(store))
    # The fourth follows the device's answer about tracking.
    assert stored == {**dict.fromkeys("12356", "granted"), "4": "declined"}, stored

    # The page can be used again; what is saved is told, after the screen has gone.
    reader.press("Privacy", pyatspi.ROLE_PUSH_BUTTON)
    reader.press("Unselect All", pyatspi.ROLE_PUSH_BUTTON)
    reader.press("Save Changes", pyatspi.ROLE_PUSH_BUTTON)
    reader.one(pyatspi.ROLE_ALERT, "Your choices are saved.")
    wait_for("the withdrawal in the store", lambda: granted(store)["2"] == "declined")


def run():
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory())

        def start(*command, **options):
            process = subprocess.Popen(command, **options)
            stack.callback(process.wait)
            stack.callback(process.terminate)
            return process

        server = start(tool, "serve", sys.argv[2], "--port", "0", "--db", folder + "/uploads.db",
                       stdout=subprocess.PIPE, text=True)
        url = server.stdout.readline().split()[-1]
        store = folder + "/data"
        start(sys.argv[1] + "/quillon-newsreader", "--server", url, "--data", store, "--language", "en",
              env={**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_QPA_PLATFORM": "xcb",
                   "QT_QUICK_BACKEND": "software", "XDG_RUNTIME_DIR": folder})
        check(Reader(), store)


if __name__ == "__main__":
    tool = sys.argv[1] + "/quillon-consent"
    read, write = os.pipe()
    display = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "800x900x24", "-nolisten", "tcp"],
                               pass_fds=[write], stderr=subprocess.DEVNULL)
    try:
        os.close(write)
        with os.fdopen(read) as numbers:
            os.environ["DISPLAY"] = ":" + numbers.readline().strip()
        # Only now: they look for the display when they are loaded.
        import pyatspi
        from gi.repository import GLib

        run()
    finally:
        display.terminate()
        display.wait()
