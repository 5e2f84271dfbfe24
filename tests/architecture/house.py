#!/usr/bin/python3
"""The house: which folder of the sources may include which, and a drawing of which does.

house.py check          names every include that the table below does not allow; status 1 where there are any
house.py draw           writes docs/house.svg
house.py draw --check   status 1 where docs/house.svg has other rooms or arrows than the sources; its numbers may be older
"""
import collections
import pathlib
import re
import sys

sys.dont_write_bytecode = True
import drawing  # noqa: E402
from drawing import room_of  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DRAWING = ROOT / "docs/house.svg"

# What each folder may include beside itself. "ui/*" is every inner folder of ui.
ALLOWED = {
    "app": "desktop mainwindow ui/* session playback playback/mpv directory directory/keyed settings http base",
    "desktop": "mainwindow ui/widgets session settings base",
    "mainwindow": "ui/* session playback directory favourites settings base",
    "ui/panels": "ui/table ui/widgets session playback directory/keyed settings base",
    "ui/table": "ui/drag ui/widgets directory settings base",
    "ui/rack": "ui/widgets favourites base",
    "ui/genres": "ui/widgets base",
    "ui/stationform": "ui/widgets favourites http base",
    "ui/drag": "directory base",
    "ui/widgets": "base",
    "session": "playback directory favourites favourites/archive base",
    "playback/mpv": "playback playback/stream http base",
    "playback": "playback/stream favourites http base",
    "playback/stream": "playback/stream/hls http base",
    "playback/stream/hls": "http base",
    "directory/keyed": "directory http base",
    "directory": "base",
    "favourites/archive": "favourites base",
    "favourites": "base",
    "settings": "base",
    "http": "base",
    "base": "",
    # It stands apart and shares nothing with the program.
    "localradio": "localradio/*",
    "localradio/services": "localradio/faults localradio/catalogue localradio/sound localradio/http",
    "localradio/faults": "localradio/catalogue localradio/sound localradio/http",
    "localradio/catalogue": "localradio/sound localradio/http",
    "localradio/sound": "localradio/http",
    "localradio/http": "",
}

# The one folder of the program that knows each of these libraries; localradio may use what it likes.
LIBRARIES = {
    "mpv/": "playback/mpv",
    "curl/": "http",
    "openssl/": "playback/stream/hls",
    "expat.h": "directory/keyed",
    "plist/": "favourites/archive",
    "xcb/": "desktop",
}

# Rooms that work without a window. Their libraries do not link Qt Widgets, so that the compiler finds its headers by their
# full names only.
WITHOUT_WIDGETS = ["session", "playback", "directory", "favourites", "settings", "http", "base"]
WIDGET_HEADER = re.compile(r"Qt(Widgets|Svg)/|Q(Widget|Application)\b")

INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]', re.MULTILINE)
GENERATED = re.compile(r"ui_\w+\.h|\w+\.moc")


def is_allowed(folder, included):
    allowed = ALLOWED[folder].split()
    return folder == included or included in allowed or room_of(included) + "/*" in allowed


class House:
    """The sources as they are: of each folder the lines of its files, and how often it includes each other folder."""

    def __init__(self):
        self.lines = collections.defaultdict(dict)
        self.includes = collections.defaultdict(collections.Counter)
        self.faults = []
        for top in ROOT / "src", ROOT / "tools":
            for path in sorted(top.rglob("*")):
                if path.suffix in (".h", ".cpp"):
                    self._read(path, path.parent.relative_to(top).as_posix())
        self.faults += [f"{folder} is not in the table" for folder in self.lines if folder not in ALLOWED]

    def _read(self, path, folder):
        text = path.read_text()
        self.lines[folder][path.name] = text.count("\n")
        for quote, header in INCLUDE.findall(text):
            included = header.rpartition("/")[0]
            fault = self._fault_of(folder, quote, header, included)
            if fault:
                self.faults.append(f"{path.relative_to(ROOT)}: {header}: {fault}")
            elif quote == '"' and included != folder and included in ALLOWED:
                self.includes[folder][included] += 1

    @staticmethod
    def _fault_of(folder, quote, header, included):
        for library, owner in LIBRARIES.items():
            if header.startswith(library) and folder != owner and not folder.startswith("localradio"):
                return f"only {owner} knows this library"
        if quote == "<":
            has_none = room_of(folder) in WITHOUT_WIDGETS and WIDGET_HEADER.match(header)
            return f"{folder} works without widgets" if has_none else None
        if GENERATED.fullmatch(header):
            return None
        if included not in ALLOWED:
            return "an include names its folder, as the table does"
        return None if folder not in ALLOWED or is_allowed(folder, included) else f"{folder} must not use {included}"

    def arrows(self, name_of):
        """How many includes lead from one name to another, where the name of a folder is what the function says."""
        counts = collections.Counter()
        for folder, includes in self.includes.items():
            for included, count in includes.items():
                counts[name_of(folder), name_of(included)] += count
        return {ends: count for ends, count in counts.items() if ends[0] != ends[1]}


def cycle_in(arrows):
    """Names that lead back to the first of them, or none."""
    finished = set()

    def search(name, path):
        if name in path:
            return path[path.index(name):] + [name]
        if name not in finished:
            for start, end in arrows:
                found = search(end, path + [name]) if start == name else None
                if found:
                    return found
            finished.add(name)
        return None

    return next(filter(None, (search(start, []) for start, _ in arrows)), None)


def link_faults():
    """Where a folder's library links what the folder must not use."""
    rooms, links = {}, {}
    for path in sorted((ROOT / "src").rglob("CMakeLists.txt")):
        for library, arguments in re.findall(r"plumtide_library\((\w+)([^)]*)\)", path.read_text()):
            rooms[library] = room_of(path.parent.relative_to(ROOT / "src").as_posix())
            links[library] = arguments.partition("LINKS")[2].split()
    allowed = {(room_of(folder), room_of(used)) for folder, line in ALLOWED.items() for used in line.split()}

    def collect(library, found):
        for link in links.get(library, []):
            if link not in found:
                found.add(link)
                collect(link, found)
        return found

    for library, room in rooms.items():
        for link in links[library]:
            if link in rooms and rooms[link] != room and (room, rooms[link]) not in allowed:
                yield f"{library} links {link}: {room} must not use {rooms[link]}"
        if room in WITHOUT_WIDGETS and "Qt6::Widgets" in collect(library, set()):
            yield f"{library} links Qt6::Widgets: {room} works without widgets"


def check():
    house = House()
    faults = house.faults + list(link_faults())
    for name_of in str, room_of:
        cycle = cycle_in(house.arrows(name_of))
        if cycle:
            faults.append("in a circle: " + " → ".join(cycle))
    includes = sum(sum(counts.values()) for counts in house.includes.values())
    print("\n".join(faults) or f"{includes} includes lead into another folder, all of them one way")
    return 1 if faults or not includes else 0


def main():
    wanted = sys.argv[1:]
    if wanted == ["check"]:
        return check()
    if wanted == ["draw"]:
        DRAWING.write_text(drawing.draw(House()))
        return 0
    if wanted == ["draw", "--check"]:
        differences = drawing.differences(House(), DRAWING.read_text())
        print(*differences, "draw it again: tests/architecture/house.py draw" if differences else "the drawing is current",
              sep="\n")
        return 1 if differences else 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main())
