"""Usage: clicks_test.py PROGRAM, inside sway.

The icon in a bar that draws no menus itself: the left button opens the window, the right one the menu.
"""

import json
import pathlib
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.append(str(HERE.parent / "program"))
from screen_reader import HISTORY, PREFERENCES, PROGRAM, eventually

ICON = (1268, 10)  # the only one, at the right end of the bar


def hands(*arguments):
    subprocess.run([HERE / "hands", *map(str, arguments)], check=True)


def windows(node=None):
    """All that sway has, with their titles."""
    node = node or json.loads(subprocess.run(["swaymsg", "-t", "get_tree"], capture_output=True, check=True).stdout)
    if node.get("app_id"):
        yield node
    for below in node["nodes"] + node["floating_nodes"]:
        yield from windows(below)


class ClicksTest(unittest.TestCase):
    def setUp(self):
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "groq"}')
        HISTORY.parent.mkdir(parents=True)
        HISTORY.write_text(json.dumps([{"id": "3F2504E0-4F89-41D3-9A0C-0305E82C3301", "date": "2026-03-01T09:15:42Z",
                                        "durationSeconds": 2, "wordCount": 3, "text": "what I said"}]))
        subprocess.run([PROGRAM, "--profile", "test", "--store-secret", "groq_api_key"], input=b"key", check=True)
        self.program = subprocess.Popen([PROGRAM, "--profile", "test"])
        self.addCleanup(self.program.wait)
        self.addCleanup(self.program.terminate)

    def colours(self):
        """How many the corner with the icon has."""
        picture = pathlib.Path.home() / "bar.png"
        hands("shot", picture)
        counted = subprocess.run(["convert", picture, "-crop", "20x20+1258+0", "-format", "%k", "info:"],
                                 capture_output=True, check=True, text=True).stdout
        return int(counted)

    def test_both_buttons_do_something(self):
        hands("click", 640, 400)
        eventually(lambda: self.colours() > 2, "the icon")
        hands("click", *ICON, "right")
        menu = eventually(lambda: list(windows()), "the menu")[0]
        self.assertEqual((menu["name"], menu["type"], menu["focused"]), ("Sayvane", "floating_con", True))
        hands("key", "esc")
        eventually(lambda: not list(windows()), "no menu")
        hands("click", *ICON, "left")
        window = eventually(lambda: list(windows()), "the window")[0]
        self.assertEqual((window["name"], window["type"]), ("Sayvane", "con"))
        hands("click", *ICON, "right")
        eventually(lambda: len(list(windows())) == 2, "the menu beside the window")
        for key in ("down", "down", "down", "right", "enter"):  # to History, and there to the only line
            hands("key", key)
        eventually(lambda: len(list(windows())) == 1, "no menu")
        self.assertEqual(subprocess.run(["wl-paste", "-n"], capture_output=True, check=True).stdout, b"what I said")
        subprocess.run(["swaymsg", f"[con_id={window['id']}] kill"], check=True, stdout=subprocess.DEVNULL)
        eventually(lambda: not list(windows()), "no window")
        hands("click", *ICON, "right")
        eventually(lambda: [each for each in windows() if each["focused"]], "the menu")
        hands("key", "up")
        hands("key", "enter")  # the last entry
        self.assertEqual(self.program.wait(20), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], failfast=True)
