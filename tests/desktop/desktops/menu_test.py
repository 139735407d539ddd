"""Usage: menu_test.py PROGRAM, inside a desktop whose panel shows the icons of programs: GNOME, KDE or LXQt.

The menu as that panel draws it, from the first look to the last; panels keep what they once knew of an entry.
"""

import os
import pathlib
import subprocess
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).parent.parent / "program"))
from desktop_panel import PANEL, icons
from panel_case import PanelCase
from screen_reader import eventually, xdotool

PICTURES = os.environ.get("DESKTOP_PICTURES")


class MenuTest(PanelCase):
    def place(self):
        return eventually(lambda: icons(self.spi), "the icon")[-1]

    def tearDown(self):
        self.picture("end")

    def picture(self, name):
        if PICTURES:
            subprocess.run(["import", "-window", "root", f"{PICTURES}/{PANEL}-{name}.png"], check=True)

    def look(self, name, *expected):
        menu = self.menu()
        self.shows(menu, *expected)
        self.picture(name)
        self.close(menu)

    def dictate(self, words):
        self.assistant.spoken = words
        self.command("toggle")
        self.speak()
        self.command("toggle")
        eventually(lambda: self.status()["state"] == "idle", "the end")

    def lasted(self):
        menu = self.menu()
        found = [line for line in self.lines(menu) if line.startswith("(Last dictation: ")]
        self.close(menu)
        return found

    def test_the_menu_stays_right(self):
        # It gets what is pasted.
        target = subprocess.Popen(["xmessage", "-name", "target", "here"])
        self.addCleanup(target.wait)
        self.addCleanup(target.terminate)
        eventually(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--classname", "target"],
                                          capture_output=True, check=False).stdout, "a window")
        head = ["Open Sayvane", "-"]
        keys = "Ctrl + Super + Space" if PANEL == "gnome-shell" else "Super + Space"
        shortcut = f"({keys} to start / stop)"
        foot = ["-", "Settings", "Quit Sayvane"]
        account = ["(59 minutes left today)"]
        first, other = "The first text of the two.", "यह दूसरा पाठ है जो मैंने कहा"
        words = ["Copy Last Transcript", "History"]

        with self.subTest("at first"):
            self.look("first", *head, "(Sayvane: ready)", "(Auto-detect)", shortcut, "-", "Start Dictation", *foot)

        with self.subTest("listening and after a dictation"):
            self.assistant.spoken = "the first text of the two"
            self.choose("Start Dictation")
            self.speak()
            self.look("listening", *head, "(● Listening…)", "(Auto-detect)", shortcut, "-", "Stop & Transcribe", *foot)
            self.choose("Stop & Transcribe")
            eventually(lambda: self.status()["state"] == "idle", "the end")
            lasted = self.lasted()
            self.look("dictated", *head, "(Sayvane: ready)", *account, "(Auto-detect)", shortcut, *lasted, "-",
                      "Start Dictation", *words, *foot)

        with self.subTest("after a failure"):
            self.dictate("")
            self.look("failed", *head, "(Sayvane: ready)", *account, "(Auto-detect)", shortcut, *lasted, "-",
                      "Start Dictation", *words, "-", "(⚠️ Nothing heard)", *foot)

        account.insert(0, "(ada@example.com)")  # known as soon as the settings were looked at
        with self.subTest("another language, and a dictation while History was looked at"):
            self.choose("Settings")
            type(self).window = eventually(lambda: self.find_window("Sayvane Settings"), "the settings")
            self.focus("Spoken language", "combo box")
            self.act("Spoken language", "combo box")
            self.act("Hindi", "list item")
            eventually(lambda: self.status()["language"] == "hi", "the language")
            xdotool("key", "alt+F4")
            self.dictate(other)
            self.look("language", *head, "(Sayvane: ready)", *account, "(Hindi)", shortcut, *self.lasted(), "-",
                      "Start Dictation", *words, *foot)

        with self.subTest("what was said"):
            for names, text in ((["History", first], first), (["Copy Last Transcript"], other), (["History", other], other)):
                subprocess.run(["xclip", "-selection", "clipboard"], input=b"something else", check=True)
                self.choose(*names)
                eventually(lambda: self.clipboard() == text, f"{text} of {names}")

        with self.subTest("the end"):
            self.choose("Quit Sayvane")
            self.assertEqual(self.program.wait(20), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], failfast=True)
