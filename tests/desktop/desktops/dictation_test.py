"""Usage: dictation_test.py PROGRAM, inside any desktop.

The main job, the same everywhere: the shortcut's key, speech, the key again, and the text is where the cursor is,
in windows of three kinds; the overlay is seen, the clipboard is as it was, and the keyboard stays where it was.
"""

import os
import pathlib
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.append(str(HERE.parent / "program"))
from panel_case import PanelCase
from screen_reader import HOME, eventually

KEY = os.environ.get("DESKTOP_KEY", "leftmeta+space")
PICTURES = os.environ.get("DESKTOP_PICTURES")
MARK = HOME / "typed"


def hands(*arguments):
    subprocess.run([HERE / "hands", *map(str, arguments)], check=True)


class DictationTest(PanelCase):
    def look(self, name):
        if PICTURES:
            hands("shot", f"{PICTURES}/{name}.png")

    def terminal(self):
        """Notes every key as it comes."""
        window = subprocess.Popen(["xterm", "-e", "sh", "-c", f"stty -icanon -echo; cat >{MARK}"])
        self.addCleanup(window.wait)
        self.addCleanup(window.terminate)
        eventually(MARK.exists, "a terminal")

    def test_words_go_where_the_cursor_is(self):
        self.terminal()
        import time
        time.sleep(2)
        self.assistant.spoken = "These words were said."
        hands("key", KEY)
        eventually(lambda: self.status()["state"] == "recording", "recording")
        self.look("recording")
        self.speak()
        hands("key", KEY)
        self.look("processing")
        eventually(lambda: self.status()["state"] == "idle", "the end")
        self.look("done")
        eventually(lambda: MARK.read_text() == "These words were said.", "the words")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
