"""Usage: keyring_test.py PROGRAM, inside a desktop whose keyring is KeePassXC with the database "Keys".

It asks before it makes or removes an entry, and for its password while it is locked.
"""

import json
import pathlib
import subprocess
import sys
import time
import unittest

sys.path.append(str(pathlib.Path(__file__).parent.parent / "program"))
from screen_reader import eventually, xdotool

PROGRAM = sys.argv.pop(1)
PREFERENCES = pathlib.Path.home() / ".config/sayvane/preferences.json"
COLLECTION = "/org/freedesktop/secrets/collection/keys"


def windows(name):
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name], capture_output=True, text=True,
                           check=False)
    return found.stdout.split()


def collection(name):
    answer = subprocess.run(
        ["gdbus", "call", "--session", "-d", "org.freedesktop.secrets", "-o", COLLECTION,
         "-m", "org.freedesktop.DBus.Properties.Get", "org.freedesktop.Secret.Collection", name],
        capture_output=True, text=True, check=True)
    return answer.stdout


class KeyringTest(unittest.TestCase):
    def command(self, *words):
        return subprocess.Popen([PROGRAM, *words], stdin=subprocess.PIPE, stderr=subprocess.PIPE,
                                stdout=subprocess.PIPE, text=True)

    def run_to_its_end(self, *words, given=""):
        process = self.command(*words)
        output, trouble = process.communicate(given, timeout=30)
        return process.returncode, output, trouble

    def status(self):
        return self.run_to_its_end("status")[1]

    def lock(self):
        xdotool("search", "--onlyvisible", "--name", "KeePassXC$", "windowactivate", "--sync", "key", "ctrl+l")
        eventually(lambda: "true" in collection("Locked"), "the lock")

    def answer(self, password):
        """To the question for the password; none dismisses it."""
        eventually(lambda: windows("^Unlock Database"), "the question")
        time.sleep(1)  # until it takes keys
        if password:
            xdotool("type", password)
        xdotool("key", "Return" if password else "Escape")
        eventually(lambda: not windows("^Unlock Database"), "the end of the question")

    def test_the_keyring_is_asked_when_somebody_needs_it(self):
        for token in ["svs_first", "svs_second"]:  # the second takes the place of the first
            self.assertEqual(self.run_to_its_end("--store-secret", "sayvane_session", given=token)[0], 0)
        self.assertEqual(collection("Items").count(COLLECTION), 1)
        self.lock()

        program = self.command()
        self.addCleanup(program.communicate)
        self.addCleanup(program.terminate)
        eventually(lambda: "signedIn" in self.status(), "the program")
        time.sleep(4)  # longer than the window would be waited for
        self.assertEqual(windows("^Sayvane$") + windows("^Unlock Database"), [])
        self.assertIn("signedIn: false", self.status())
        self.assertFalse(PREFERENCES.exists(), "something was decided without the keyring")

        self.run_to_its_end("start")
        self.answer("private")
        eventually(lambda: "signedIn: true" in self.status(), "the session")
        self.run_to_its_end("cancel")
        eventually(lambda: json.loads(PREFERENCES.read_text()).get("provider") == "sayvane", "the provider")

        self.lock()
        leaving = self.command("sign-out")
        self.answer(None)
        self.assertIn("Couldn't remove from the keyring: The keyring is locked.", leaving.communicate(timeout=30)[1])
        self.assertIn("signedIn: true", self.status())
        leaving = self.command("sign-out")
        self.answer("private")
        leaving.communicate(timeout=30)
        self.assertEqual(leaving.returncode, 0)
        self.assertIn("signedIn: false", self.status())
        self.assertNotIn(COLLECTION, collection("Items"))


unittest.main()
