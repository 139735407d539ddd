"""The program's icon and menu in a desktop's panel, as a user clicks them and a screen reader finds them."""

import os
import subprocess

from gi.repository import GLib

from dictation_case import DATA, SERVICE, DictationCase
from event_reader import SENSITIVE, SHOWING, VISIBLE, EventReader
from screen_reader import PREFERENCES, PROGRAM, eventually, xdotool

MENU = "popup menu"
ITEMS = ("menu item", "menu", "separator")


class PanelCase(DictationCase):
    @classmethod
    def prepare(cls):
        super().prepare()
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "sayvane"}')
        session = subprocess.run([SERVICE, "session", "--data", DATA, "--email", "ada@example.com", "--device", "test"],
                                 capture_output=True, check=True).stdout
        subprocess.run([PROGRAM, "--profile", "test", "--store-secret", "sayvane_session"], input=session, check=True)

    @classmethod
    def start(cls, **environment):
        cls.spi.Registry.getDesktop(0)  # there is a registry for the panel to join
        cls.program = subprocess.Popen([PROGRAM, "--profile", "test", *cls.arguments], env={
            **os.environ, **cls.environment, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", **environment})
        eventually(lambda: subprocess.run([PROGRAM, "--profile", "test", "status"], capture_output=True,
                                          check=False).returncode == 0, "the program on the bus")

    def setUp(self):
        # The windows of panels and of their plugins are not all listed on the accessibility bus: its events tell.
        address = subprocess.run(["gdbus", "call", "--session", "-d", "org.a11y.Bus", "-o", "/org/a11y/bus", "-m",
                                  "org.a11y.Bus.GetAddress"], capture_output=True, check=True, text=True).stdout
        self.events = EventReader(address.split("'")[1])

    def place(self):
        """Where the icon is, once it is there."""
        raise NotImplementedError

    def hit(self, item):
        boxes = []

        def rests():
            boxes.append(item.box)
            return boxes[-2:-1] == boxes[-1:]
        eventually(rests, "an end of moving")
        x, y, width, height = boxes[-1]
        xdotool("mousemove", x + width // 2, y + height // 2, "click", 1)

    def menu(self):
        """Opened by a click on the icon, with the button that every panel opens menus with."""
        x, y = self.place()
        self.events.forget()
        xdotool("mousemove", x, y, "click", 3)
        found = eventually(lambda: [each for each in self.events.look() if each.role in ("menu item", MENU)], "the menu")[0]
        return found if found.role == MENU else found.parent

    def close(self, menu):
        xdotool("key", "Escape")
        eventually(lambda: not menu.has(SHOWING), "no menu")

    def text(self, item):
        """Of an entry; some panels have it in a label below."""
        return item.name or next((below.name for below in item if below.role == "label" and below.name), "")

    def lines(self, menu):
        """From top to bottom; what is disabled in brackets. Nothing while it changes."""
        def line(item):
            text = self.text(item)
            if item.role == "separator" or not text:
                return "-"
            return text if item.has(SENSITIVE) else f"({text})"
        try:
            return [line(item) for item in menu if item.role in ITEMS and item.has(VISIBLE)]
        except GLib.Error:
            return []

    def shows(self, menu, *expected):
        found = []

        def look():
            found[:] = self.lines(menu)
            return found == list(expected)
        try:
            eventually(look, "the entries")
        except AssertionError:
            self.assertEqual(found, list(expected))

    def entries(self, item):
        """All below, at any depth."""
        for below in item:
            if below.role in ITEMS:
                yield below
            yield from self.entries(below)

    def choose(self, *names):
        menu = self.menu()
        for name in names:
            def find():
                try:
                    return [item for item in self.entries(menu) if self.text(item) == name and item.has(SHOWING)]
                except GLib.Error:
                    return None
            self.hit(eventually(find, name)[0])

    def clipboard(self, display=""):
        return subprocess.run(["xclip", "-o", "-selection", "clipboard"], capture_output=True, check=False,
                              env={**os.environ, **({"DISPLAY": display} if display else {})}).stdout.decode()
