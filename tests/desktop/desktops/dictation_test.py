"""Usage: dictation_test.py PROGRAM, inside any desktop.

The main job, the same everywhere: the shortcut's key, speech, the key again, and the text is where the cursor is,
in windows of three kinds; the overlay is seen, the clipboard is as it was, and the keyboard stays where it was.
"""

import json
import os
import pathlib
import signal
import subprocess
import sys
import time
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.append(str(HERE.parent / "program"))
from panel_case import PanelCase
from screen_reader import HOME, PREFERENCES, eventually, stored

KEY = "leftctrl+leftmeta+space" if os.environ["XDG_CURRENT_DESKTOP"] == "GNOME" else "leftmeta+space"
PICTURES = os.environ.get("DESKTOP_PICTURES")
ON_WAYLAND = os.environ["XDG_SESSION_TYPE"] == "wayland"
COPY = ["wl-copy", "--type", "text/html"] if ON_WAYLAND else ["xclip", "-selection", "clipboard", "-t", "text/html"]
PASTE = ["wl-paste", "--type", "text/html"] if ON_WAYLAND else [*COPY, "-o"]
BEFORE = b"<b>copied before</b>"
TYPED = HOME / "typed"


def hands(*arguments):
    subprocess.run([HERE / "hands", *map(str, arguments)], check=True)


class DictationTest(PanelCase):
    @classmethod
    def prepare(cls):
        super().prepare()
        preferences = stored(PREFERENCES)
        PREFERENCES.write_text(json.dumps({**preferences, "gnomeAccess": True}))

    def run_in(self, *command):
        window = subprocess.Popen(command)
        self.addCleanup(window.wait)
        self.addCleanup(window.terminate)
        return window

    def terminal(self):
        """Notes every key as it comes; done when it has the keyboard."""
        TYPED.unlink(missing_ok=True)
        self.run_in("xterm", "-e", "sh", "-c", f"stty -icanon -echo -isig; exec cat >>{TYPED}")
        self.await_keyboard(lambda: TYPED.exists() and TYPED.read_bytes())
        eventually(lambda: TYPED.read_bytes().endswith(b"."), "a terminal with the keyboard")
        TYPED.write_bytes(b"")

    def await_keyboard(self, came):
        def tried():
            hands("key", "dot")
            time.sleep(0.3)
            return came()
        def clicked():
            if not tried():
                hands("click", 640, 400)  # a desktop may not give it to a window by itself
            return tried()
        eventually(clicked, "the keyboard")

    def tap(self, state, seconds=0):
        hands("key", KEY, seconds)
        eventually(lambda: self.status()["state"] == state, state)

    def dictate(self, words):
        self.assistant.spoken = words
        subprocess.run(COPY, input=BEFORE, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(1.5)  # what an earlier one has left there goes
        before = self.look("before")
        self.tap("recording")
        eventually(lambda: self.overlay_is_seen(before), "the overlay")
        self.speak()
        hands("key", KEY)
        eventually(lambda: self.status()["state"] == "idle", "the end")
        eventually(lambda: subprocess.run(PASTE, capture_output=True, check=False).stdout.strip() == BEFORE,
                   "the clipboard as it was")

    def look(self, name):
        """A picture of where the overlay stands, in the middle at the lower end."""
        hands("shot", f"{PICTURES or HOME}/{name}.png")
        place = HOME / f"{name}-place.png"
        subprocess.run(["convert", f"{PICTURES or HOME}/{name}.png", "-gravity", "south", "-crop", "200x120+0+0", "+repage",
                        place], check=True)
        return place

    def overlay_is_seen(self, before):
        differing = subprocess.run(["compare", "-metric", "AE", "-fuzz", "4%", before, self.look("recording"), "null:"],
                                   capture_output=True, check=False, text=True).stderr
        return float(differing) > 4000  # of its 6,480

    def test_words_go_where_the_cursor_is(self):
        self.command("doctor")  # fails where anything is not as it should be
        self.terminal()
        self.dictate("These words were said.")
        eventually(lambda: TYPED.read_text() == "These words were said.", "the words in a terminal")
        hands("key", "dot")
        eventually(lambda: TYPED.read_text() == "These words were said..", "the keyboard where it was")
        for editor in ("mousepad", "featherpad"):
            with self.subTest(editor):
                file = HOME / f"{editor}.txt"
                file.write_text("")
                self.run_in(editor, file)

                def saved():
                    hands("key", "leftctrl+s")
                    time.sleep(0.3)
                    return file.read_text().replace("\n", "")  # one of them ends its files with one
                self.await_keyboard(saved)
                begun = saved()
                self.dictate(f"Grüße an {editor}.")
                eventually(lambda: saved() == f"{begun}Grüße an {editor}.", "the words in an editor")

    def test_keys_are_taken_and_given_back(self):
        self.terminal()
        self.tap("recording", 1.5)  # one tap, however long it is held
        self.assertEqual(self.status()["state"], "recording")
        hands("key", "esc")
        eventually(lambda: self.status()["state"] == "idle", "the end by Escape")
        self.assertEqual(TYPED.read_bytes(), b"")
        hands("key", "esc")
        eventually(lambda: TYPED.read_bytes() == b"\x1b", "Escape back where it belongs")
        self.tap("recording")
        self.program.send_signal(signal.SIGKILL)
        self.program.wait()

        def escaped():
            hands("key", "esc")
            time.sleep(0.3)
            return TYPED.read_bytes() != b"\x1b"
        eventually(escaped, "Escape back after a crash")
        self.start()
        self.tap("recording")
        hands("key", "esc")
        eventually(lambda: self.status()["state"] == "idle", "the end by Escape")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
