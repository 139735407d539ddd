"""Usage: login_test.py PROGRAM, inside a desktop that has run `login_test.py PROGRAM started` at its log-in.

What the desktop's panel makes of a program that starts beside it: its icon, also when the panel comes anew, and its
window, which comes to the front.
"""

import os
import pathlib
import subprocess
import sys
import time
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.append(str(HERE.parent / "program"))
from desktop_panel import PANEL, icons, places
from screen_reader import PREFERENCES, PROGRAM, ScreenReaderCase, eventually

EXTENSION = "ubuntu-appindicators@ubuntu.com"
PICTURES = os.environ.get("DESKTOP_PICTURES")
ON_WAYLAND = os.environ["XDG_SESSION_TYPE"] == "wayland"


def hands(*arguments):
    subprocess.run([HERE / "hands", *map(str, arguments)], check=True)


class LoginTest(ScreenReaderCase):
    @classmethod
    def start(cls):
        """The desktop has."""

    @classmethod
    def tearDownClass(cls):
        subprocess.run([PROGRAM, "--profile", "test", "quit"], check=True, timeout=20)
        cls.bus.terminate()
        cls.bus.wait(10)

    def tearDown(self):
        if PICTURES:
            hands("shot", f"{PICTURES}/{PANEL}-login.png")

    def stays_one(self):
        eventually(lambda: len(icons(self.spi)) == 1, "one icon", 40)
        time.sleep(2)  # what clears or doubles icons comes within this time
        self.assertEqual(len(icons(self.spi)), 1)

    def open_window(self):
        x, y = icons(self.spi)[0]
        if PANEL == "plasmashell" and ON_WAYLAND:
            y += 800 - 44  # a window on Wayland does not know where it is: at the lower edge of the screen
        hands("click", x, y)
        if PANEL == "gnome-shell" and ON_WAYLAND:
            for key in ("down", "enter"):  # the first of the menu, which takes a moment to have the keyboard
                time.sleep(0.5)
                hands("key", key)
        elif PANEL == "gnome-shell":
            hands("click", *eventually(lambda: places(self.spi, ("Open Sayvane",), "label"), "the menu")[0])

    def is_active(self):
        window = self.find_window()
        return window and window.getState().contains(self.spi.STATE_ACTIVE)

    def test_the_program_is_in_the_panel(self):
        with self.subTest("after the log-in"):
            self.stays_one()

        if PANEL == "gnome-shell":
            with self.subTest("after the screen was locked, which ends the extensions for a while"):
                subprocess.run(["gnome-extensions", "disable", EXTENSION], check=True)
                eventually(lambda: not icons(self.spi), "no icon")
                subprocess.run(["gnome-extensions", "enable", EXTENSION], check=True)
                self.stays_one()

        with self.subTest("its window comes to the front"):
            other = subprocess.Popen(["xmessage", "here"])
            self.addCleanup(other.wait)
            self.addCleanup(other.terminate)
            time.sleep(1)  # the other window has the keyboard
            self.open_window()
            eventually(self.is_active, "the window in front")


if __name__ == "__main__":
    if sys.argv[2:] == ["started"]:
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "groq"}')
        subprocess.run([PROGRAM, "--profile", "test", "--store-secret", "groq_api_key"], input=b"key", check=True)
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        os.execv(PROGRAM, [PROGRAM, "--profile", "test"])
    unittest.main(argv=sys.argv[:1], failfast=True)
