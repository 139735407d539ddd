"""Reads the rooms' LINKS and every include below src, and tells where an include has no arrow and what the house
amounts to."""

import pathlib
import re

# Rooms that are built and tested without a display.
CORE_ROOMS = {"base", "preferences", "cloud", "history", "dictation", "screens"}
WINDOW_MODULES = {"Qt6::Gui", "Qt6::Widgets", "Qt6::Qml", "Qt6::Quick", "Qt6::QuickControls2"}
KEYWORDS = {"SOURCES", "LINKS", "PRIVATE"}


def includes(path):
    """Our own files that it names."""
    return re.findall(r'^\s*#\s*include\s*"([^"]+)"', path.read_text(), re.M)


def circles(folder):
    """The folders below it that include from one another in a circle, where names begin with that folder's own."""
    seen = {}
    for path in sorted(folder.rglob("*")):
        if path.suffix in {".h", ".cpp"} and path.parent != folder:
            room = path.parent.relative_to(folder).as_posix()
            seen.setdefault(room, set()).update(
                pathlib.PurePath(name).relative_to(folder.name).parent.as_posix()
                for name in includes(path) if name.startswith(f"{folder.name}/"))
    while True:
        ground = [room for room, below in seen.items() if not (below - {room}) & seen.keys()]
        if not ground:
            return sorted(seen)
        for room in ground:
            del seen[room]


def written_lines(paths):
    """Lines that are neither blank nor comment."""
    return sum(
        not re.fullmatch(r"\s*(//.*)?", line)
        for path in paths if path.suffix in {".h", ".cpp", ".qml", ".js", ".py", ".sh"}
        for line in path.read_text(errors="replace").splitlines())


class House:
    def __init__(self, source, qt_headers):
        self.source = pathlib.Path(source)
        self.qt_modules = {
            header.name: f"Qt6::{module.name[2:]}"
            for module in sorted(pathlib.Path(qt_headers).glob("Qt*"))
            for header in module.iterdir()
        }
        self.files = [path for path in self._walk(self.source) if path.suffix in {".h", ".cpp"}]
        self.folders = {}  # room: its folder, relative to the source
        self.links = {}  # room: what it lists by hand
        for path in self._walk(self.source):
            if path.name == "CMakeLists.txt":
                self._read_rooms(path)

    def _walk(self, folder):
        for path in sorted(folder.iterdir()):
            if path.is_dir():
                yield from self._walk(path)
            else:
                yield path

    def _read_rooms(self, path):
        text = re.sub(r"#.*", "", path.read_text())
        for name, arguments in re.findall(r"sayvane_room\(\s*(\w+)([^)]*)\)", text):
            section, links = None, []
            for word in arguments.split():
                if word in KEYWORDS:
                    section = word
                elif section in {"LINKS", "PRIVATE"}:
                    links.append(word)
            self._add_room(name, path, links)
        for name, words in re.findall(r"target_link_libraries\(\s*sayvane_(\w+)\s+INTERFACE([^)]*)\)", text):
            self._add_room(name, path, words.split())

    def _add_room(self, name, path, links):
        self.folders[name] = path.parent.relative_to(self.source)
        self.links[name] = [link.removeprefix("sayvane::") for link in links]

    def reach(self, room):
        """The room and all that it links to, step by step."""
        reached, waiting = set(), [room]
        while waiting:
            name = waiting.pop()
            if name not in reached:
                reached.add(name)
                waiting += self.links.get(name, [])
        return reached

    def room_of(self, relative):
        """The room whose folder is the nearest above the file."""
        nearest = [(len(folder.parts), room) for room, folder in self.folders.items() if folder in relative.parents]
        return max(nearest)[1] if nearest else None

    def arrows(self):
        """Each pair of rooms at the top of which the first includes from the second."""
        for path in self.files:
            relative = path.relative_to(self.source)
            for name in includes(path):
                pair = relative.parts[0], pathlib.PurePath(name).parts[0]
                if len(relative.parts) > 1 and (self.source / name).is_file() and pair[0] != pair[1]:
                    yield pair

    def complaints(self):
        for room in self.links:
            for link in self.links[room]:
                if link in self.links and room in self.reach(link):
                    yield f"{room} and {link} link to each other"
            if room in CORE_ROOMS and WINDOW_MODULES & self.reach(room):
                yield f"{room} links to {', '.join(sorted(WINDOW_MODULES & self.reach(room)))}"
        for path in self.files:
            yield from self._complaints_of(path)

    def _complaints_of(self, path):
        relative = path.relative_to(self.source)
        lines = path.read_text().splitlines()
        if path.suffix == ".h" and "#pragma once" not in lines:
            yield f"{relative}: no #pragma once"
        if relative.as_posix() == "main.cpp":
            return  # it builds the machine and the program
        room = self.room_of(relative)
        if not room:
            yield f"{relative}: in no room"
            return
        for number, line in enumerate(lines, 1):
            include = re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line)
            if include:
                complaint = self._judge(relative, room, include[1] == '"', include[2])
                if complaint:
                    yield f"{relative}:{number}: {complaint}"

    def _judge(self, relative, room, is_ours, name):
        if not is_ours:
            module = self.qt_modules.get(name.split("/")[-1])
            if module in WINDOW_MODULES and module not in self.reach(room):
                return f"{room} does not link to {module} (<{name}>)"
            return None
        if name.endswith(".moc"):
            return None
        if not (self.source / name).is_file():
            return f'"{name}" is no file below the source'
        if name.startswith("machine/") and not relative.as_posix().startswith("machine/"):
            return f'"{name}" is behind the machine\'s interfaces'
        owner = self.room_of(pathlib.PurePath(name))
        return None if owner in self.reach(room) else f'{room} does not link to {owner} ("{name}")'
