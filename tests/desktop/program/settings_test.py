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
        self.focus("Groq API key", "password text")
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

        with self.subTest("everything has its name, its role and its state"):
            self.assertEqual(self.nameless(), [])
            expected = {
                "Settings": "list item, selected", "Labs": "list item", "Email address": "text, editable",
                "Send code": "push button, disabled", "Advanced: bring your own API key": "push button, expanded",
                "Sayvane": "radio button", "Groq": "radio button, checked", "OpenAI": "radio button",
                "Groq API key": "password text, editable", "Get a key": "link", "Save key": "push button",
                "Apply": "push button, disabled", "Show dashboard on launch": "check box, checked",
                "Spoken language": "combo box, collapsed",
                "Custom vocabulary: names, brands, jargon (comma separated)": "text, multi line, editable"}
            self.assertEqual(self.told(expected), expected)
            self.focus("Service URL", "text")
            xdotool("type", "s")
            self.focus("Advanced: bring your own API key", "push button")
            expected = {"Apply": "push button", "Advanced: bring your own API key": "push button, collapsed"}
            xdotool("key", "space")
            eventually(lambda: self.told(expected) == expected, "what has changed")
            self.click("Labs", "list item")
            self.named("Labs needs a Sayvane account. Sign in under Settings.")
            self.click("Open Settings", "push button")
            eventually(lambda: self.told({"Settings"}) == {"Settings": "list item, selected"}, "the settings")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
