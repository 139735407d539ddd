"""Usage: dashboard_test.py PROGRAM, inside a session of its own.

Drives the dashboard with the mouse and the keyboard, as screen_reader.py finds it.
"""

import json
import re
import subprocess
import sys
import unittest

from screen_reader import HISTORY, PREFERENCES, ScreenReaderCase, eventually, stored, xdotool

TEXTS = ["Call the plumber tomorrow.", "Send the draft.", "The plumber came.", "Nothing else today."]


class DashboardTest(ScreenReaderCase):
    @classmethod
    def prepare(cls):
        HISTORY.parent.mkdir(parents=True)
        HISTORY.write_text(json.dumps([
            {"id": f"00000000-0000-4000-8000-{i:012d}", "date": f"2026-02-0{8 - i}T10:00:00Z", "durationSeconds": 3.5,
             "wordCount": 4, "text": text} for i, text in enumerate(TEXTS)]))
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "sayvane", "showDashboardOnLaunch": true, "vocabulary": "Acme"}')

    def rows(self):
        return [each.name for each in self.walk() if each.getRoleName() == "list item" and each.name[:1].isdigit()]

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
            self.wait_for_focus("Clear history")
            self.absent("This cannot be undone.")
            self.assertEqual(len(stored(HISTORY)), 3)
            xdotool("key", "space")
            self.named("Delete all 3 dictations?")
            self.confirm()
            eventually(lambda: stored(HISTORY) == [], "an empty history")
            self.named("Press Super + Space anywhere to start.")
            self.wait_for_focus("Search transcripts")

        with self.subTest("dictionary"):
            self.focus("Dictation", "list item")
            xdotool("key", "Down", "Down")
            self.wait_for_focus("Dictionary")
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
            xdotool("key", "ctrl+w")
            eventually(lambda: not subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Sayvane$"],
                                                  capture_output=True, check=False).stdout, "a closed window")
            self.assertIsNone(self.program.poll())

        with self.subTest("a screen of 640 by 400 points"):
            self.program.terminate()
            self.program.wait(10)
            type(self).environment = {"QT_SCALE_FACTOR": "2"}
            self.start()
            self.assertEqual([place for place in self.frame() if place not in range(1281)], [])
            self.assertLessEqual(self.frame()[3], 800)

    def frame(self):
        """The edges of the window with its frame: left, top, right, bottom."""
        self.activate("^Sayvane$")
        window = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, check=True,
                                text=True).stdout.strip()
        told = subprocess.run(["xwininfo", "-id", window], capture_output=True, check=True, text=True).stdout
        x, y, width, height = (int(re.search(rf"{word}: +(-?\d+)", told)[1])
                               for word in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        told = subprocess.run(["xprop", "-id", window, "_NET_FRAME_EXTENTS"], capture_output=True, check=True,
                              text=True).stdout
        left, right, top, bottom = map(int, re.findall(r"\d+", told))
        return x - left, y - top, x + width + right, y + height + bottom


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
