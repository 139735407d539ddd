"""Usage: account_test.py PROGRAM, inside a session of its own.

An account's life with the program and the service as they are installed: from the sign-in in the settings form
to the sign-out, with dictations and an assistant's answers in between.
"""

import json
import re
import ssl
import subprocess
import sys
import unittest
import urllib.error
import urllib.request

from dictation_case import DATA, SERVICE, DictationCase
from screen_reader import HISTORY, HOME, PREFERENCES, eventually, stored, xdotool

SIGN_IN = "Sign in under Settings to start dictating"


class AccountTest(DictationCase):
    @classmethod
    def prepare(cls):
        super().prepare()
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"provider": "sayvane", "showDashboardOnLaunch": true}')

    def get(self, path, token):
        """The service's answer, or the status of its refusal."""
        request = urllib.request.Request(self.base + path, headers={"Authorization": f"Bearer {token}"})
        try:
            trust = ssl.create_default_context(cafile=DATA / "certificate.pem")
            with urllib.request.urlopen(request, timeout=10, context=trust) as answer:
                return json.load(answer)
        except urllib.error.HTTPError as refusal:
            return refusal.code

    def token(self):
        return subprocess.run(["secret-tool", "lookup", "service", "com.sayvane.app", "account", "sayvane_session"],
                              capture_output=True, check=False, text=True).stdout

    def wheel(self, direction):
        """To the end of the page; what lies beyond its edges is there for no screen reader."""
        xdotool("mousemove", 500, 400, "click", "--repeat", 40, "--delay", 5, 5 if direction == "down" else 4)

    def write(self, name, text):
        self.focus(name)
        xdotool("key", "ctrl+a")
        xdotool("type", "--delay", 5, text)

    def text_of(self, name):
        content = self.named(name, "text").queryText()
        return content.getText(0, content.characterCount)

    def dictate(self, spoken, window):
        self.assistant.spoken = spoken
        self.activate(window)
        self.speak_between("keydown", "super", "key", "space", "keyup", "super")

    def wait_for_line(self, text):
        """The text is what was last pasted into the terminal."""
        self.activate("note")

        def lines():
            xdotool("key", "Return")
            return self.note.read_text().split("\n")
        eventually(lambda: [line for line in lines() if line][-1:] == [text], f"{text!r} in the terminal")

    def question(self):
        authorization, body = self.assistant.questions[-1]
        self.assertEqual((authorization, body["model"]), ("Bearer letmein", "big-model"))
        return body["messages"][-1]["content"]

    def test_an_account_from_sign_in_to_sign_out(self):
        self.note = HOME / "note.txt"
        terminal = subprocess.Popen(["xterm", "-geometry", "60x8-0-0", "-T", "note", "-e", f"cat > {self.note}"])
        self.addCleanup(terminal.wait, 10)
        self.addCleanup(terminal.terminate)
        self.activate("note")
        self.activate("^Sayvane$")
        xdotool("getactivewindow", "windowmove", 10, 25, "windowsize", 960, 760)

        with self.subTest("signed out"):
            self.dictate("nobody", "note")
            self.assertEqual(self.status()["lastError"], SIGN_IN)
            self.activate("^Sayvane$")
            self.named(SIGN_IN)

        with self.subTest("sign-in"):
            self.click("Settings", "list item")
            self.write("Email address", " Ada@Example.com")
            self.press("Send code", "push button")
            self.named("We sent a code to ada@example.com")
            code = eventually(lambda: re.search(r"^sign-in code (\d{6}) for ada@example.com ", self.console.read_text(),
                                                re.M), "code")[1]
            xdotool("type", f"{(int(code) + 1) % 1000000:06}")
            self.named("That code is not right. Check it and try again.")
            self.assertEqual((self.text_of("Six digit code"), self.token()), ("", ""))
            xdotool("type", code)
            for text in ("Signed in", "ada@example.com", "60 minutes a day", "60 minutes", "This computer"):
                self.named(text)
            self.absent(SIGN_IN)
            self.assertEqual(self.nameless(), [])
            token = self.token()
            self.assertEqual(self.get("/v1/me", token)["email"], "ada@example.com")

        with self.subTest("another device"):
            other = subprocess.run([SERVICE, "session", "--data", DATA, "--email", "ada@example.com", "--device",
                                    "Kitchen"], capture_output=True, check=True, text=True).stdout.split()[-1]
            self.press("Refresh", "push button")
            self.named("Kitchen")
            self.press("Sign out", "push button")
            self.named("Sign out “Kitchen”?")
            self.confirm()
            self.absent("Kitchen")
            self.named("This computer")
            self.assertEqual(self.get("/v1/me", other), 401)

        with self.subTest("a dictation with a term"):
            self.click("Dictionary", "list item")
            self.write("Add a term", "Marchbanks")
            xdotool("key", "Return")
            self.named("Marchbanks", "list item")
            self.dictate("um send the marchbanks letter tomorrow", "note")
            self.wait_for_line("Send the Marchbanks letter tomorrow.")
            self.assertRegex(self.assistant.recordings[-1], rb'name="prompt"[^-]*Marchbanks')
            self.activate("^Sayvane$")
            self.click("Dictation", "list item")
            eventually(lambda: [each for each in self.walk()
                                if each.name.endswith("Send the Marchbanks letter tomorrow.")], "the dictation")

        with self.subTest("no assistant"):
            self.click("Labs", "list item")
            self.named("Labs is not offered on this server right now.")
            self.write("Your question", "Is anybody there?")
            expected = {"Get answer": "push button, disabled", "Answer mode": "check box, disabled"}
            self.assertEqual(self.told(expected), expected)
            for name in expected:
                self.click(name)
            self.assertFalse(self.status()["answerMode"])
            self.service.terminate()
            self.assertEqual(self.service.wait(20), 0)
            self.serve(self.base.rsplit(":")[-1], {
                "SAYVANE_LABS_CLAUDE_ADDRESS": f"{self.assistant.address}/chat/completions",
                "SAYVANE_LABS_CLAUDE_MODEL": "big-model", "SAYVANE_LABS_CLAUDE_KEY": "letmein"})
            self.press("Try again")
            expected = {"Claude": "radio button, checked", "Answer mode": "check box", "Get answer": "push button"}
            eventually(lambda: self.told(expected) == expected, "an assistant to choose")
            self.assertEqual(self.assistant.questions, [])

        with self.subTest("the three modes"):
            for mode, prompt, label, material in (
                    ("Answer", "Your question", None, None),
                    ("Reply", "How to reply", "Paste the message you are replying to", "<message>"),
                    ("Rewrite", "How to rewrite it", "Paste the text to rewrite", "<text>")):
                self.wheel("up")
                self.press(mode, "radio button")
                if label:
                    self.write(label, f"Old {mode}")
                self.write(prompt, f"Please {mode}")
                self.assistant.answer = f"  Said in {mode}.\n"
                self.press("Get answer", "push button")
                eventually(lambda: self.text_of("Answer") == f"Said in {mode}.", f"the answer in {mode}")
                self.named("Claude · big-model-2")
                expected = {each: "radio button" + ", checked" * (each == mode) for each in ("Reply", "Rewrite")}
                self.assertEqual(self.told(expected), expected)
                sent = self.question()
                self.assertTrue(sent.endswith(f"Please {mode}"), sent)
                self.assertEqual(f"{material}\nOld {mode}\n" in sent, material is not None, sent)
            self.assertGreaterEqual(self.get("/v1/me", token)["usedTodaySeconds"], 90)
            self.assertEqual(self.nameless(), [])
            self.wheel("down")
            for mode in ("Rewrite", "Reply", "Answer"):
                self.named(f"Claude · {mode}")

        with self.subTest("paste into last app"):
            self.wheel("down")
            self.activate("note")  # a screen reader presses what is not in front
            self.act("Paste into last app", "push button")
            self.wait_for_line("Said in Rewrite.")
            # It is copied, too, and what the program owns can be pasted into its own windows.
            self.activate("^Sayvane$")
            self.wheel("up")
            self.focus("How to rewrite it")
            xdotool("key", "ctrl+a", "ctrl+v")
            eventually(lambda: self.text_of("How to rewrite it") == "Said in Rewrite.", "the pasted answer")

        with self.subTest("a spoken question, and an assistant that fails"):
            self.wheel("up")
            self.press("Answer", "radio button")
            self.assistant.spoken = "why is the sky blue"
            self.press("Dictate prompt", "push button")
            self.speak()
            self.press("Stop dictating", "push button")
            eventually(lambda: self.text_of("Your question") == "Why is the sky blue.", "the prompt")
            self.assistant.status = 500
            self.press("Get answer", "push button")
            self.named("Claude could not answer. Try again.")
            self.assistant.status = 200
            self.assertEqual(len(stored(HISTORY)), 1)

        with self.subTest("answer mode"):
            self.wheel("down")
            self.press("Answer mode")
            eventually(lambda: self.status()["answerMode"], "answer mode")
            self.assistant.answer = "Forty-two."
            self.dictate("what is six times seven", "note")
            self.wait_for_line("Forty-two.")
            record = stored(HISTORY)[0]
            self.assertEqual((record["text"], record["rawText"], record["wordCount"]),
                             ("Forty-two.", "what is six times seven", 1))
            self.program.terminate()
            self.assertEqual(self.program.wait(20), 0)
            self.start()
            self.assertTrue(self.status()["answerMode"])
            self.assistant.answer = "Still forty-two."
            self.dictate("and once more please", "note")
            self.wait_for_line("Still forty-two.")
            self.assertIn("once more", self.question())

        with self.subTest("sign-out"):
            self.activate("^Sayvane$")
            self.click("Settings", "list item")
            self.press("Sign out on this computer", "push button")
            self.named("Sign out on this computer?")
            self.confirm()
            self.named("Email address")
            self.assertEqual(self.token(), "")
            eventually(lambda: self.get("/v1/me", token) == 401, "the end of the session")
            heard = len(self.assistant.recordings)
            self.dictate("nobody", "note")
            self.assertEqual((self.status()["lastError"], len(self.assistant.recordings)), (SIGN_IN, heard))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], failfast=True)
