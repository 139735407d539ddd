"""A user at the program's windows in a session of their own. What to click is found on the accessibility bus,
so whatever is used here has its name and role there.
"""

import json
import os
import pathlib
import subprocess
import sys
import time
import unittest

PROGRAM = sys.argv[1]
HOME = pathlib.Path.home()
SPEAKING = {"push button", "entry", "text", "password text", "list item", "check box", "radio button", "link",
            "combo box"}
CLIP = "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0880.wav"
HISTORY = HOME / ".local/share/sayvane-test/Sayvane/history.json"
PREFERENCES = HOME / ".config/sayvane-test/preferences.json"


def eventually(condition, what, seconds=20):
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(0.05)


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True, stdout=subprocess.DEVNULL)


def stored(path):
    return json.loads(path.read_text())


class ScreenReaderCase(unittest.TestCase):
    environment = {}
    arguments = []

    @classmethod
    def prepare(cls):
        """What the program finds when it starts."""

    @classmethod
    def setUpClass(cls):
        cls.prepare()
        cls.bus = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        eventually(lambda: subprocess.run(
            ["gdbus", "call", "--session", "-d", "org.a11y.Bus", "-o", "/org/a11y/bus", "-m", "org.a11y.Bus.GetAddress"],
            capture_output=True, check=False).returncode == 0, "accessibility bus")
        import pyatspi  # connects when it is imported
        cls.spi = pyatspi
        cls.start()

    @classmethod
    def start(cls):
        cls.program = subprocess.Popen([PROGRAM, "--profile", "test", *cls.arguments],
                                       env={**os.environ, **cls.environment, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        cls.window = eventually(cls.find_window, "window")

    @classmethod
    def tearDownClass(cls):
        for process in (cls.program, cls.bus):
            process.terminate()
            process.wait(10)

    @classmethod
    def find_window(cls, title="Sayvane"):
        for application in cls.spi.Registry.getDesktop(0):
            for window in application or ():
                if window and window.name == title:
                    return window
        return None

    def walk(self, item=None, hidden=False):
        item = item or self.window
        for child in item:
            if child and (hidden or child.getState().contains(self.spi.STATE_SHOWING)):
                yield child
                yield from self.walk(child, hidden)

    def named(self, name, role=None):
        def look():
            return [each for each in self.walk() if each.name == name and (not role or each.getRoleName() == role)]
        return eventually(look, f"{role or 'something'} called {name!r}")[-1]

    def point(self, name, role=None):
        item = self.named(name, role)
        box = eventually(lambda: (lambda e: e if e.width > 0 else None)(
            item.queryComponent().getExtents(self.spi.DESKTOP_COORDS)), f"place of {name}")
        xdotool("mousemove", box.x + box.width // 2, box.y + box.height // 2)

    def click(self, name, role=None):
        self.point(name, role)
        xdotool("click", 1)

    def focus(self, name, role=None):
        """Gives the control the keyboard, which brings it into view."""
        def look():
            for hidden in (False, True):
                found = [each for each in self.walk(hidden=hidden)
                         if each.name == name and (not role or each.getRoleName() == role)]
                if found:
                    return found
            return None
        item = eventually(look, f"{role or 'something'} called {name!r}")[-1]
        item.queryComponent().grabFocus()
        eventually(lambda: item.getState().contains(self.spi.STATE_FOCUSED), f"the keyboard at {name}")

    def command(self, *words):
        return subprocess.run([PROGRAM, "--profile", "test", *words], stdout=subprocess.PIPE, check=True, text=True,
                              timeout=30).stdout

    def status(self):
        return json.loads(self.command("status", "--json"))

    def press(self, name, role=None):
        self.focus(name, role)
        xdotool("key", "space")

    def act(self, name, role):
        """What a screen reader does by itself, wherever the pointer and the keyboard are."""
        action = self.named(name, role).queryAction()
        self.assertEqual(action.getName(0), "Toggle" if role in ("check box", "radio button") else "Press")
        action.doAction(0)

    def absent(self, name):
        eventually(lambda: not [each for each in self.walk() if each.name == name], f"no {name!r}")

    def activate(self, title):
        def active():
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], capture_output=True,
                                   check=False, text=True).stdout.split()
            if not found:
                return False
            xdotool("windowactivate", found[-1])
            return subprocess.run(["xdotool", "getactivewindow"], capture_output=True, check=False,
                                  text=True).stdout.split() == found[-1:]
        eventually(active, f"the window {title}")

    def speak(self):
        eventually(lambda: self.status()["state"] == "recording", "recording")
        subprocess.run(["paplay", "--device=speaker", CLIP], check=True, timeout=30)

    def speak_between(self, *keys):
        """Dictates with the shortcut that these words press."""
        xdotool(*keys)
        self.speak()
        xdotool(*keys)
        eventually(lambda: self.status()["state"] == "idle", "the end")

    def wait_for_focus(self, name):
        def there():
            return [each.name for each in self.walk() if each.getState().contains(self.spi.STATE_FOCUSED)][-1:] == [name]
        eventually(there, f"the keyboard at {name}")

    def confirm(self):
        self.wait_for_focus("Cancel")
        xdotool("key", "Tab", "space")

    def nameless(self):
        return [each.getRoleName() for each in self.walk() if each.getRoleName() in SPEAKING and not each.name]

    def told(self, expected):
        """What is told of the parts with the names of `expected`, as it is there: the role, then its state."""
        found = {}
        for each in self.walk(hidden=True):
            if each.name in expected and each.getRoleName() in SPEAKING:
                states = each.getState()
                words = [word for word in ("checked", "selected", "expanded", "collapsed", "multi line", "editable")
                         if states.contains(getattr(self.spi, "STATE_" + word.upper().replace(" ", "_")))]
                able = states.contains(self.spi.STATE_ENABLED) and states.contains(self.spi.STATE_SENSITIVE)
                found[each.name] = ", ".join([each.getRoleName(), *words] + ([] if able else ["disabled"]))
        return found
