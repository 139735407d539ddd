"""Usage: house_test.py SOURCE QT_HEADERS LUPDATE WORDINGS"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

from arrows import House, circles, written_lines

SOURCE, QT_HEADERS, LUPDATE, WORDINGS = sys.argv[1:5]
PROJECT = pathlib.Path(SOURCE).resolve().parent
# What it may amount to. It shrinks with the house, towards 450 files and a third of tests, and never grows again.
LIMITS = {"rooms": 16, "arrows between rooms": 60, "source files": 450, "percent of tests beside the code": 49}

ROOMS = {
    "base/CMakeLists.txt": "sayvane_room(base\n    SOURCES Text.h\n    LINKS Qt6::Core\n)",
    "machine/CMakeLists.txt": "sayvane_room(machine SOURCES X.cpp LINKS sayvane::base PRIVATE Qt6::Gui)",
    "history/CMakeLists.txt": "sayvane_room(history SOURCES H.h  # LINKS sayvane::cloud\n LINKS sayvane::base)",
    "cloud/CMakeLists.txt": "sayvane_room(cloud SOURCES S.h LINKS sayvane::history)",
    "screen/CMakeLists.txt": "sayvane_room(screen SOURCES S.h LINKS sayvane::cloud Qt6::Quick)",
    "base/Text.h": "#pragma once\n#include <QString>\n",
    "history/H.h": '#pragma once\n#include "base/Text.h"\n#include <vector>\n',
    "cloud/S.h": '#pragma once\n#include "history/H.h"\n#include "base/Text.h"\n',
    "screen/S.cpp": '#include "cloud/S.h"\n#include <QQuickItem>\n#include "S.moc"\n',
    "machine/X.cpp": '#include "machine/X.h"\n#include <QGuiApplication>\n',
    "machine/X.h": "#pragma once\n",
    "main.cpp": '#include "machine/X.h"\n',
}

VIOLATIONS = {
    "an arrow upwards": ("history/H.cpp", '#include "cloud/S.h"', "history does not link to cloud"),
    "an arrow aside": ("base/T.cpp", '  #  include "history/H.h"', "base does not link to history"),
    "behind the seam": ("cloud/S.cpp", '#include "machine/X.h"', "behind the machine's interfaces"),
    "a window in a core room": ("cloud/S.cpp", "#include <QIcon>", "cloud does not link to Qt6::Gui"),
    "a window by its module": ("cloud/S.cpp", "#include <QtWidgets/QLabel>", "cloud does not link to Qt6::Widgets"),
    "a core room that lists a window": (
        "history/CMakeLists.txt", "sayvane_room(history SOURCES H.h LINKS sayvane::base Qt6::Widgets)",
        "history links to Qt6::Widgets"),
    "a circle": (
        "base/CMakeLists.txt", "sayvane_room(base SOURCES T.h LINKS sayvane::cloud)", "link to each other"),
    "a file that is not there": ("cloud/S.cpp", '#include "Text.h"', "is no file below the source"),
    "a file outside all rooms": ("attic/A.cpp", "", "in no room"),
    "an unguarded header": ("cloud/T.h", "struct T {};", "no #pragma once"),
}


class HouseTest(unittest.TestCase):
    maxDiff = None

    def test_every_include_has_its_arrow(self):
        house = House(SOURCE, QT_HEADERS)
        self.assertGreater(len(house.files), 50)
        self.assertIn("Qt6::Gui", house.qt_modules.values())
        self.assertEqual(list(house.complaints()), [])

    def test_it_stays_small(self):
        house = House(SOURCE, QT_HEADERS)
        tests, code = (written_lines(path for folder in folders for path in (PROJECT / folder).rglob("*"))
                       for folders in (["tests"], ["src", "service", "tools", "packaging", "fuzz"]))
        figures = dict(zip(LIMITS, (
            len({folder.parts[0] for folder in house.folders.values()}),
            len(set(house.arrows())),
            sum(path.suffix in {".h", ".cpp", ".qml"} for path in pathlib.Path(SOURCE).rglob("*")),
            -(-100 * tests // code),
        )))
        print(", ".join(f"{name}: {figure} (at most {LIMITS[name]})" for name, figure in figures.items()))
        self.assertEqual({name: figure for name, figure in figures.items() if not 1 < figure <= LIMITS[name]}, {})

    def test_the_service_has_layers(self):
        self.assertEqual(circles(PROJECT / "service"), [])
        with tempfile.TemporaryDirectory() as folder:
            for path, text in {"a/A.h": '#include "service/b/B.h"', "b/B.h": '#include "service/a/A.h"', "c/C.h": ""}.items():
                target = pathlib.Path(folder, "service", path)
                target.parent.mkdir(parents=True)
                target.write_text(text)
            self.assertEqual(circles(pathlib.Path(folder, "service")), ["a", "b"])

    def test_violations_are_noticed(self):
        for name, (file, content, complaint) in {"none": ("main.cpp", "", None), **VIOLATIONS}.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                for path, text in {**ROOMS, file: content}.items():
                    target = pathlib.Path(folder, path)
                    target.parent.mkdir(parents=True, exist_ok=True)
                    target.write_text(text)
                complaints = list(House(folder, QT_HEADERS).complaints())
                if complaint:
                    self.assertTrue(any(complaint in each for each in complaints), complaints)
                else:
                    self.assertEqual(complaints, [])


# What a Linux desktop has no such thing of.
FOREIGN = re.compile("[⌘⌃⌥⇧🌐]|\\bMac\\b|macOS|[Kk]eychain|System Settings|menu bar|\\bFn\\b|Input Monitoring|Accessibility")
# Text that a person reads, in a page, past the door to the wordings: words in quotes that are no product's name.
WORDED = re.compile(r'qsTr\("[^"]*"\)|""')
BARE = re.compile(
    r"\b(?:text|title|message|confirmText|placeholderText|help|Accessible\.(?:name|description)):"
    r'.*"(?!Sayvane")[^"]*[A-Za-z]{2}[^"]*"')


def texts(file):
    """Each text of a translation file, by where it is said and what the source says: what is shown instead."""
    return {
        (context.findtext("name"), message.findtext("source")): message.findtext("translation")
        for context in xml.etree.ElementTree.parse(file).iter("context")
        for message in context.iter("message")
    }


class WordingTest(unittest.TestCase):
    maxDiff = None

    def test_the_wording_fits_the_source(self):
        with tempfile.TemporaryDirectory() as folder:
            found = f"{folder}/source.ts"
            subprocess.run([LUPDATE, "-silent", SOURCE, "-ts", found], check=True, stderr=subprocess.DEVNULL)
            source = texts(found)
        wording = texts(f"{WORDINGS}/linux_en.ts")
        self.assertGreater(len(source), 300)
        self.assertEqual([each for each in wording if each not in source], [], "texts that the source has no more")
        self.assertEqual([each for each, said in wording.items() if not said or said == each[1]], [], "not worded")
        self.assertEqual([each for each in source if FOREIGN.search(wording.get(each, each[1]))], [],
                         "texts that speak of another machine")

    def test_pages_say_nothing_past_the_wording(self):
        bare = [f"{page.name}: {line.strip()}"
                for page in pathlib.Path(SOURCE).rglob("*.qml")
                for line in page.read_text().splitlines() if BARE.search(WORDED.sub("", line))]
        self.assertEqual(bare, [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
