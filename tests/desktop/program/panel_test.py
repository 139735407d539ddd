"""Usage: panel_test.py PROGRAM, inside a session of its own.

The program's icon and menu in the panel of XFCE: their whole life.
"""

import ctypes
import os
import pathlib
import subprocess
import sys
import unittest

from panel_case import PanelCase
from screen_reader import HOME, eventually, xdotool

LIBRARIES = f"/usr/lib/{sys.implementation._multiarch}"
PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="20"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>
"""
INACTIVE = "(⚠️ Shortcut inactive: see Settings)"
SPOKEN = "the weather is fine_today & will stay so"
TEXT = "The weather is fine_today & will stay so."


class PanelTest(PanelCase):
    @classmethod
    def prepare(cls):
        super().prepare()
        cls.others = []
        cls.complaints = HOME / "panel.log"
        channels = HOME / ".config/xfce4/xfconf/xfce-perchannel-xml"
        channels.mkdir(parents=True)
        (channels / "xfce4-panel.xml").write_text(PANEL)
        cls.others.append(subprocess.Popen([f"{LIBRARIES}/xfce4/xfconf/xfconfd"]))

    @classmethod
    def tearDownClass(cls):
        for process in reversed(cls.others):
            process.terminate()
            process.wait(10)
        super().tearDownClass()

    def start_panel(self):
        environment = {name: value for name, value in os.environ.items() if name != "NO_AT_BRIDGE"}
        with self.complaints.open("a") as complaints:
            self.panel = subprocess.Popen(["xfce4-panel", "--sm-client-disable", "--disable-wm-check"], env=environment,
                                          stderr=complaints)
        self.others.append(self.panel)

    def icon(self):
        """What the first place of the panel shows: its pixels."""
        xdotool("mousemove", 640, 790)
        return subprocess.run(["import", "-window", "root", "-crop", "22x32+1+0", "-depth", "8", "gray:-"],
                              capture_output=True, check=True).stdout

    def wait_for_icon(self, *others):
        """An icon that is none of the others."""
        return eventually(lambda: (lambda icon: icon if len(set(icon)) > 4 and icon not in others else None)(self.icon()),
                         "an icon")

    def place(self):
        self.wait_for_icon()
        return 12, 16

    def ends(self):
        self.assertEqual(self.program.wait(20), 0)
        eventually(lambda: len(set(self.icon())) <= 4, "no icon")
        self.assertEqual(list(pathlib.Path(os.environ["TMPDIR"]).glob("**/*.wav")), [])
        self.assertEqual(self.command("recover"), "")

    def test_a_user_gets_along_with_the_panel(self):
        facts = ["(Auto-detect)", "(Super + Space to start / stop)"]
        foot = ["-", "Settings", "Quit Sayvane"]
        account = ["(59 minutes left today)"]

        with self.subTest("a panel that comes late"):
            self.start_panel()
            idle = self.wait_for_icon()
            menu = self.menu()
            self.shows(menu, "Open Sayvane", "-", "(Sayvane: ready)", *facts, "-", "Start Dictation", *foot)
            self.close(menu)

        with self.subTest("listening"), subprocess.Popen(["parec", "-d", "speakers.monitor", "--raw"],
                                                         stdout=subprocess.PIPE) as ear:
            self.choose("Start Dictation")
            eventually(lambda: any(ear.stdout.read(4410)), "the sound of the beginning")
            ear.terminate()
            self.speak()
            listening = self.wait_for_icon(idle)
            menu = self.menu()
            self.shows(menu, "Open Sayvane", "-", "(● Listening…)", *facts, "-", "Stop & Transcribe", *foot)
            self.close(menu)

        with self.subTest("transcribing, and its end while the menu is open"):
            self.assistant.spoken = SPOKEN
            self.assistant.has_heard.clear()
            self.choose("Stop & Transcribe")
            self.wait_for_icon(idle, listening)
            menu = self.menu()
            self.shows(menu, "Open Sayvane", "-", "(Transcribing…)", *facts, "-", "(Start Dictation)", *foot)
            self.assistant.has_heard.set()
            eventually(lambda: "(Sayvane: ready)" in self.lines(menu), "the end")
            lines = self.lines(menu)
            lasted = [line for line in lines if line.startswith("(Last dictation: ")]
            self.assertRegex(lasted[0], r"^\(Last dictation: \d+\.\d s\)$")
            known = [*facts, *lasted]
            self.shows(menu, "Open Sayvane", "-", "(Sayvane: ready)", *account, *known, "-", "Start Dictation",
                       "Copy Last Transcript", "History", *foot)
            self.close(menu)

        with self.subTest("what was said"):
            for names in (["Copy Last Transcript"], ["History", TEXT]):
                subprocess.run(["xclip", "-selection", "clipboard"], input=b"something else", check=True)
                self.choose(*names)
                eventually(lambda: self.clipboard() == TEXT, "the copied text")

        with self.subTest("another provider"):
            self.choose("Settings")
            type(self).window = eventually(lambda: self.find_window("Sayvane Settings"), "the settings")
            self.press("Advanced: use your own API key instead", "push button")
            self.press("Groq", "radio button")
            self.named("Groq API key")
            menu = self.menu()
            self.shows(menu, "Open Sayvane", "-", "(Sayvane: ready)", *known, "-", "Start Dictation",
                       "Copy Last Transcript", "History", *foot)
            self.close(menu)
            self.press("Sayvane", "radio button")

        with self.subTest("another language"):
            self.focus("Spoken language", "combo box")
            self.act("Spoken language", "combo box")
            self.act("Hindi", "list item")
            known[0] = "(Hindi)"
            menu = self.menu()
            self.shows(menu, "Open Sayvane", "-", "(Sayvane: ready)", "(ada@example.com)", *account, *known, "-",
                       "Start Dictation", "Copy Last Transcript", "History", *foot)
            self.close(menu)

        with self.subTest("a panel that died"):
            self.panel.kill()
            self.panel.wait()
            self.start_panel()
            xdotool("mousemove", *self.place(), "click", 1)
            window = eventually(self.find_window, "the window")
            xdotool("key", "alt+F4")
            eventually(lambda: not window.getState().contains(self.spi.STATE_SHOWING), "no window")

        with self.subTest("a second start"):
            self.assertEqual(self.command(), "")
            eventually(self.find_window, "the window")

        with self.subTest("Quit while recording"):
            self.choose("Start Dictation")
            self.speak()
            self.choose("Quit Sayvane")
            self.assertEqual(self.program.wait(20), 0)
            self.assertRegex(self.command("recover"), r"^[0-9A-F]{8}  [^\n]+ s$")
            self.command("recover", "delete", "--all")
            self.ends()

        with self.subTest("another program has the shortcut"):
            x11 = ctypes.CDLL("libX11.so.6")
            x11.XOpenDisplay.restype = ctypes.c_void_p
            display = ctypes.c_void_p(x11.XOpenDisplay(None))
            x11.XGrabKey(display, x11.XKeysymToKeycode(display, 0x20), 64, x11.XDefaultRootWindow(display), 0, 1, 1)
            x11.XSync(display, 0)
            self.start()
            menu = self.menu()
            self.shows(menu, "Open Sayvane", "-", "(Sayvane: ready)", "(ada@example.com)", *known, INACTIVE, "-", "Start Dictation", "History",
                       *foot)
            x11.XCloseDisplay(display)
            self.shows(menu, "Open Sayvane", "-", "(Sayvane: ready)", "(ada@example.com)", *known, "-", "Start Dictation", "History", *foot)
            self.close(menu)
            self.choose("Quit Sayvane")
            self.ends()

        with self.subTest("no trust"):
            ready, tell = os.pipe()
            self.others.append(subprocess.Popen(["Xvfb", "-displayfd", str(tell), "-extension", "XTEST", "-nolisten", "tcp"],
                                                pass_fds=[tell]))
            display = ":" + os.read(ready, 9).decode().strip()
            self.start(DISPLAY=display)
            self.choose("Start Dictation")
            self.speak()
            self.choose("Stop & Transcribe")
            eventually(lambda: self.status()["state"] == "idle", "the end")
            self.assertEqual(self.clipboard(display), SPOKEN)  # the service cleans up English alone
            lines = self.lines(self.menu())
            self.assertIn(INACTIVE, lines)
            self.assertEqual(lines[-5:], ["-", "(⚠️ Copied to clipboard. This desktop did not let Sayvane paste it.)", *foot])
            xdotool("key", "Escape")
            self.choose("Quit Sayvane")
            self.ends()
        self.assertNotIn("DBUSMENU", self.complaints.read_text())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], failfast=True)
