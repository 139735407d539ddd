"""Usage: settings_test.py PROGRAM, inside a session of its own.

Fills in the settings form with the mouse and the keyboard, as screen_reader.py finds it.
"""

import subprocess
import sys
import unittest

from screen_reader import PREFERENCES, ScreenReaderCase, eventually, stored, xdotool


class SettingsTest(ScreenReaderCase):
    environment = {"https_proxy": "http://127.0.0.1:9"}  # nobody is to be reached from here

    @classmethod
    def prepare(cls):
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "groq", "showDashboardOnLaunch": true}')

    def keyring(self):
        return subprocess.run(["secret-tool", "lookup", "service", "com.sayvane.app", "account", "groq_api_key"],
                              capture_output=True, check=False).stdout.decode()

    def type_key(self, key):
        field = eventually(lambda: [each for each in self.walk() if each.getRoleName() == "password text"], "a field")[0]
        self.assertIn("Groq API key, ", field.description)
        field.queryComponent().grabFocus()
        eventually(lambda: field.getState().contains(self.spi.STATE_FOCUSED), "the keyboard at the key")
        xdotool("key", "ctrl+a")
        xdotool("type", key)
        xdotool("key", "Return")

    def test_a_user_fills_in_the_form(self):
        self.click("Settings", "list item")
        with self.subTest("a key of the wrong provider"):
            self.type_key("sk-desktop")
            self.named("This looks like a OpenAI key. Switch Provider to OpenAI or paste a Groq key.")
            self.assertEqual(self.keyring(), "")

        with self.subTest("a key, and its removal"):
            self.type_key("gsk_desktop1234")
            self.named("Key saved")
            self.assertEqual(self.keyring(), "gsk_desktop1234")
            self.focus("Remove key", "push button")  # the page moves up when the banner goes
            xdotool("key", "space")
            self.named("Remove the Groq key?")
            xdotool("key", "Return")  # Cancel has the keyboard
            eventually(lambda: not [each for each in self.walk() if each.name == "Remove the Groq key?"], "no question")
            self.assertEqual(self.keyring(), "gsk_desktop1234")

        with self.subTest("a shortcut"):
            self.focus("Change", "push button")
            xdotool("key", "space")
            self.named("Press your shortcut")
            xdotool("key", "a")
            self.named("A on its own would be taken from every app. Hold Fn, ⌘, ⌥, ⌃ or ⇧ as well, or choose a "
                       "function key.")
            xdotool("key", "ctrl+F5")
            self.named("⌃F5: tap once to start listening, tap again to stop and paste.")
            self.assertIn('"keyCode":96', stored(PREFERENCES)["hotkeySpec"])

        with self.subTest("everything has a name"):
            self.assertEqual(self.nameless(), [])
            self.click("Labs", "list item")
            self.named("Labs needs a Sayvane account. Sign in under Settings.")
            self.click("Open Settings", "push button")
            self.named("Shortcut", "heading")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
