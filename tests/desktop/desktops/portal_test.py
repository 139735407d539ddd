"""Usage: portal_test.py PROGRAM, inside GNOME on Wayland with the portals of a later one.

The same dictation where the desktop gives keys and typing by its portals alone.
"""

import pathlib
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.append(str(HERE.parent / "program"))
import dictation_test
from dictation_test import TYPED, hands
from panel_case import PanelCase
from screen_reader import HOME, PREFERENCES, eventually, stored

ASKED = HOME / "asked"
BOUND = "bind CTRL+LOGO+space CTRL+LOGO+Escape"


class PortalTest(dictation_test.DictationTest):
    test_keys_are_taken_and_given_back = None

    @classmethod
    def have_portals(cls, *person):
        cls.portals = subprocess.Popen([HERE / "portals", ASKED, *person], stdout=subprocess.PIPE)
        cls.portals.stdout.readline()

    @classmethod
    def end_portals(cls):
        cls.portals.kill()
        cls.portals.wait()
        cls.portals.stdout.close()

    @classmethod
    def prepare(cls):
        PanelCase.prepare.__func__(cls)
        cls.have_portals()
        cls.addClassCleanup(cls.end_portals)

    def setUp(self):
        super().setUp()
        eventually(lambda: self.status()["shortcutActive"], "the shortcut")
        eventually(lambda: stored(PREFERENCES).get("portalTyping"), "leave to type")

    def test_your_refusal_is_an_answer(self):
        self.assertEqual(ASKED.read_text().splitlines()[:3],
                         ["registered app.sayvane.Sayvane", BOUND, "type with no token"])
        self.terminal()
        self.tap("recording")
        hands("key", "leftctrl+leftmeta+esc")
        eventually(lambda: self.status()["state"] == "idle", "the end by Escape")
        hands("key", "esc")
        eventually(lambda: TYPED.read_bytes() == b"\x1b", "a plain Escape where it belongs")

        # It dies, and the next one says no.
        self.end_portals()
        eventually(lambda: not self.status()["shortcutActive"], "no shortcut")
        ASKED.unlink()
        type(self).have_portals("refuse")
        eventually(lambda: stored(PREFERENCES).get("portalShortcuts") is False, "the refusal")
        self.assertFalse(self.status()["shortcutActive"])
        self.assertEqual(ASKED.read_text().count("bind"), 1)
        self.assertIn("Allow it: press Open", subprocess.run(
            [sys.argv[1], "--profile", "test", "doctor"], capture_output=True, check=False, text=True).stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
