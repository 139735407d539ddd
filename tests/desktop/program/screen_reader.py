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
        xdotool("mousemove", "--sync", box.x + box.width // 2, box.y + box.height // 2)

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

    def press(self, name, role=None):
        self.focus(name, role)
        xdotool("key", "space")

    def segment(self, name):
        """The role that a choice of a few has: Qt tells them as radio buttons or as push buttons."""
        return eventually(lambda: [each.getRoleName() for each in self.walk()
                                   if each.name == name and each.getRoleName().endswith(" button")], name)[-1]

    def nameless(self):
        speaking = {"push button", "entry", "text", "list item", "check box", "radio button", "link", "combo box"}
        return [each.getRoleName() for each in self.walk() if each.getRoleName() in speaking and not each.name]
