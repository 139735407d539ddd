"""Usage: dashboard_test.py PROGRAM, inside a session of its own.

Drives the dashboard with the mouse and the keyboard. What to click is found on the accessibility bus, so
whatever is used here has its name and role there.
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
HISTORY = HOME / ".local/share/sayvane-test/Sayvane/history.json"
PREFERENCES = HOME / ".config/sayvane-test/preferences.json"
TEXTS = ["Call the plumber tomorrow.", "Send the draft.", "The plumber came.", "Nothing else today."]


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


class DashboardTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        HISTORY.parent.mkdir(parents=True)
        HISTORY.write_text(json.dumps([
            {"id": f"00000000-0000-4000-8000-{i:012d}", "date": f"2026-02-0{8 - i}T10:00:00Z", "durationSeconds": 3.5,
             "wordCount": 4, "text": text} for i, text in enumerate(TEXTS)]))
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "sayvane", "showDashboardOnLaunch": true, "vocabulary": "Acme"}')
        cls.bus = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        eventually(lambda: subprocess.run(
            ["gdbus", "call", "--session", "-d", "org.a11y.Bus", "-o", "/org/a11y/bus", "-m", "org.a11y.Bus.GetAddress"],
            capture_output=True, check=False).returncode == 0, "accessibility bus")
        cls.program = subprocess.Popen([PROGRAM, "--profile", "test"],
                                       env={**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        import pyatspi  # connects when it is imported
        cls.spi = pyatspi
        cls.window = eventually(cls.find_window, "window")

    @classmethod
    def tearDownClass(cls):
        for process in (cls.program, cls.bus):
            process.terminate()
            process.wait(10)

    @classmethod
    def find_window(cls):
        for application in cls.spi.Registry.getDesktop(0):
            for window in application or ():
                if window and window.name == "Sayvane":
                    return window
        return None

    def walk(self, item=None):
        item = item or self.window
        for child in item:
            if child and child.getState().contains(self.spi.STATE_SHOWING):
                yield child
                yield from self.walk(child)

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

    def rows(self):
        return [each.name for each in self.walk() if each.getRoleName() == "list item" and each.name[:1].isdigit()]

    def nameless(self):
        speaking = {"push button", "entry", "text", "list item", "check box", "radio button", "link", "combo box"}
        return [each.getRoleName() for each in self.walk() if each.getRoleName() in speaking and not each.name]

    def test_a_user_and_a_screen_reader_get_along(self):
        eventually(lambda: len(self.rows()) == 4, "four rows")
        self.named("Sign in under Settings to start dictating")
        self.assertEqual(self.nameless(), [])

        with self.subTest("search"):
            self.click("Search transcripts")
            xdotool("type", "PLUMBER")
            eventually(lambda: self.rows() == [f"10:00 am, {TEXTS[0]}", f"10:00 am, {TEXTS[2]}"], "what was found")

        with self.subTest("copy and delete"):
            self.point(f"10:00 am, {TEXTS[2]}")
            self.click("Copy transcript", "push button")
            eventually(lambda: subprocess.run(["xclip", "-o", "-selection", "clipboard"], capture_output=True,
                                              check=False).stdout.decode() == TEXTS[2], "the copied text")
            self.point(f"10:00 am, {TEXTS[2]}")
            self.click("Delete", "push button")
            eventually(lambda: [each["text"] for each in stored(HISTORY)] == [TEXTS[0], TEXTS[1], TEXTS[3]], "deletion")
            self.click("Search transcripts")
            xdotool("key", "Escape")
            eventually(lambda: len(self.rows()) == 3, "all that are left")

        with self.subTest("clear history"):
            self.click("Clear history", "push button")
            self.named("Delete all 3 dictations?")
            xdotool("key", "Return")  # Cancel has the keyboard
            eventually(lambda: not [each for each in self.walk() if each.name == "This cannot be undone."], "no question")
            self.assertEqual(len(stored(HISTORY)), 3)
            self.click("Clear history", "push button")
            self.named("Delete all 3 dictations?")
            self.click("Clear history", "push button")
            eventually(lambda: stored(HISTORY) == [], "an empty history")
            self.named("Press Fn + Space anywhere to start.")

        with self.subTest("dictionary"):
            self.click("Dictionary", "list item")
            self.click("Add a term")
            xdotool("type", "Bristol")
            xdotool("key", "Return")
            self.named("Bristol", "list item")
            self.assertEqual(stored(PREFERENCES)["vocabulary"], "Acme, Bristol")
            self.assertEqual(self.nameless(), [])
            self.click("Insights", "list item")
            self.named("not yet Average time to paste")
            self.assertEqual(self.nameless(), [])

        with self.subTest("close"):
            xdotool("key", "alt+F4")
            eventually(lambda: not subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Sayvane$"],
                                                  capture_output=True, check=False).stdout, "a closed window")
            self.assertIsNone(self.program.poll())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
