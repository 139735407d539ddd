"""Usage: settings_test.py PROGRAM, inside a session of its own.

Fills in the settings form with the mouse and the keyboard, as screen_reader.py finds it.
"""

import subprocess
import sys
import unittest

from provider import Provider
from screen_reader import HISTORY, HOME, PREFERENCES, ScreenReaderCase, eventually, stored, xdotool

DIARY = "Dear diary, today was fine."


class SettingsTest(ScreenReaderCase):
    @classmethod
    def prepare(cls):
        cls.provider = Provider("api.groq.com", "gsk_desktop1234",
                                ["llama-guard-4-12b", "whisper-large-v3", "openai/gpt-oss-120b"], HOME)
        cls.environment = {"HTTPS_PROXY": f"http://127.0.0.1:{cls.provider.server_port}",
                           "SSL_CERT_FILE": str(cls.provider.certificate)}
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "groq", "showDashboardOnLaunch": true}')

    @classmethod
    def tearDownClass(cls):
        super().tearDownClass()
        cls.provider.shutdown()
        cls.provider.server_close()

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

        with self.subTest("a key that is refused"):
            self.type_key("gsk_refused99")
            self.named("Key saved")
            self.named("Groq: API key rejected. Check it in Settings.")
            self.assertEqual(self.named("Groq API key", "password text").description,
                             "Key saved (gsk_…ed99). Enter a new key to replace it")

        with self.subTest("a key, and its removal"):
            self.type_key("gsk_desktop1234")
            self.named("Connected to Groq: 3 models available")
            self.named("Transcription model updated to whisper-large-v3. In use: whisper-large-v3 for transcription, "
                       "openai/gpt-oss-120b for cleanup.")
            self.absent("Groq: API key rejected. Check it in Settings.")
            self.assertEqual((self.keyring(), stored(PREFERENCES)["transcriptionModel"]),
                             ("gsk_desktop1234", "whisper-large-v3"))
            self.absent("Add a transcription key under Settings, Advanced")
            self.focus("Remove key", "push button")  # the page moves up when the banner goes
            xdotool("key", "space")
            self.named("Remove the Groq key?")
            xdotool("key", "Return")  # Cancel has the keyboard
            self.absent("Remove the Groq key?")
            self.assertEqual(self.keyring(), "gsk_desktop1234")

        with self.subTest("a shortcut"):
            self.focus("Change", "push button")
            xdotool("key", "space")
            self.named("Press your shortcut")
            xdotool("key", "a")
            self.named("A on its own would be taken from every app. Hold Super, AltGr, Alt, Ctrl or Shift as well, or choose a "
                       "function key.")
            xdotool("key", "ctrl+F5")
            self.named("Ctrl + F5: tap once to start listening, tap again to stop and paste.")
            self.assertIn('"keyCode":96', stored(PREFERENCES)["hotkeySpec"])

        with self.subTest("a dictation with that key and that shortcut"):
            note = HOME / "note.txt"
            note.touch()
            editor = subprocess.Popen(["mousepad", note])
            self.addCleanup(editor.wait, 10)
            self.addCleanup(editor.terminate)
            self.provider.spoken, self.provider.answer = "um dear diary today was fine", DIARY
            self.activate("note.txt")
            self.speak_between("key", "ctrl+F5")

            def written():
                xdotool("key", "ctrl+s")
                return note.read_text()
            eventually(lambda: written() == DIARY, "the text in the editor")
            record, = stored(HISTORY)
            self.assertEqual((record["text"], record["rawText"], record["transcriptionModel"]),
                             (DIARY, "um dear diary today was fine", "whisper-large-v3"))
            self.activate("^Sayvane$")

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
            self.act("Advanced: bring your own API key", "push button")
            self.focus("Spoken language", "combo box")
            self.act("Show dashboard on launch", "check box")
            self.act("Spoken language", "combo box")
            self.act("Hindi", "list item")
            expected = {"Apply": "push button", "Advanced: bring your own API key": "push button, collapsed",
                        "Show dashboard on launch": "check box", "Spoken language": "combo box, collapsed"}
            eventually(lambda: self.told(expected) == expected, "what has changed")
            self.assertEqual([stored(PREFERENCES)[key] for key in ("showDashboardOnLaunch", "language")], [False, "hi"])
            self.click("Labs", "list item")
            self.named("Labs needs a Sayvane account. Sign in under Settings.")
            self.click("Open Settings", "push button")
            eventually(lambda: self.told({"Settings"}) == {"Settings": "list item, selected"}, "the settings")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
