"""Usage: consent_test.py PROGRAM, inside GNOME on Wayland.

Nothing of the desktop's settings changes before the user has allowed it, and all of it is taken back.
"""

import pathlib
import subprocess
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).parent.parent / "program"))
from dictation_test import PICTURES, hands
from panel_case import PanelCase
from screen_reader import PREFERENCES, eventually, stored

KEYS = "org.gnome.settings-daemon.plugins.media-keys"
OTHERS = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/"
OURS = f"{OTHERS[:-9]}/sayvane-toggle/"


def shortcuts():
    return subprocess.run(["gsettings", "get", KEYS, "custom-keybindings"], capture_output=True, check=True,
                          text=True).stdout.strip()


class ConsentTest(PanelCase):
    def button(self, name):
        def find(item):
            if item.getRoleName() == "push button" and item.name == name:
                return item
            return next((found for child in item if child and (found := find(child))), None)

        def look():
            shell = next((each for each in self.spi.Registry.getDesktop(0) if each.name == "gnome-shell"), None)
            return shell and find(shell)
        return eventually(look, f"a button {name}")

    def test_it_is_asked_once_and_taken_back(self):
        subprocess.run(["gsettings", "set", KEYS, "custom-keybindings", f"['{OTHERS}']"], check=True)
        allow = self.button("Allow")
        if PICTURES:
            hands("shot", f"{PICTURES}/consent.png")
        self.assertFalse(self.status()["shortcutActive"])
        self.assertEqual(shortcuts(), f"['{OTHERS}']")
        place = allow.queryComponent().getExtents(0)
        hands("click", place.x + place.width // 2, place.y + place.height // 2)
        eventually(lambda: self.status()["shortcutActive"], "the shortcut")
        self.assertEqual(shortcuts(), f"['{OTHERS}', '{OURS}']")
        self.assertIs(stored(PREFERENCES)["gnomeAccess"], True)
        self.command("quit")
        self.program.wait(10)
        eventually(lambda: shortcuts() == f"['{OTHERS}']", "the settings as they were")
        self.command("doctor", "--undo")
        self.assertNotIn("gnomeAccess", stored(PREFERENCES))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
