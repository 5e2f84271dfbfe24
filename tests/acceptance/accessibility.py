#!/usr/bin/python3
"""What an assistive program finds in the built program: accessibility.py PROGRAM LOCALRADIO
Everything happens on a bus, a display and in a home of its own. Where something is not found, what is there is printed."""
import os
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request
import xml.etree.ElementTree as ElementTree

PROGRAM, LOCALRADIO = sys.argv[1:3]
DEADLINE = 30

# What is to be found, as (role, name), by where it is.
WINDOW = [
    ("button", "Play"), ("button", "Stop"), ("label", "idle"), ("button", "Recent titles"),
    ("button", "Sound"), ("button", "Add station"), ("text", "Search stations"), ("button", "Search"),
    ("text", "Filter genres"), ("list", "Genres"), ("list item", "Trending 500"), ("list item", "Random Stations"),
    ("table", "Stations"), ("list", "Favourites"),
]
MENUS = {
    "Plumtide": ["About Plumtide", "Preferences...", "Appearance", "Show Main Window", "Close Window", "Quit"],
    "Playback": ["Play or Pause", "Stop", "Louder", "Softer", "Mute", "Sound...", "Recent Titles..."],
    "Stations": ["Find...", "Top Stations", "Sort By", "Add to Favourites", "Copy Name", "Copy Address"],
    "Favourites": ["Add Station...", "Add Blank Station", "Play Favourite", "Details...", "Move Left", "Move Right",
                   "Copy Name", "Copy Address", "Remove", "Undo Removal", "Save Favourites"],
    "Help": ["Keyboard Shortcuts"],
}
SOUND = [("slider", "Volume"), ("slider", "Bass"), ("slider", "Middle"), ("slider", "Treble"), ("check box", "Mute"),
         ("button", "Flat")]
ADD_STATION = [
    ("text", "Title"), ("text", "Address"), ("text", "Port"), ("text", "Mount point"), ("text", "Scheme"),
    ("check box", "Private"), ("text", "User name"), ("password text", "Password"), ("check box", "Show password"),
    ("button", "Add Station"),
]
DETAILS = [("text", "Name"), ("text", "Genre"), ("slider", "Rating"), ("text", "Picture"), ("button", "Choose..."),
           ("button", "Default")]
PREFERENCES = [
    ("panel", "Give up connecting after"), ("radio button", "15 seconds"), ("panel", "Stations a search asks for"),
    ("radio button", "500 stations"), ("panel", "Identify to private stations as"), ("radio button", "Plumtide"),
    ("button", "Cancel"), ("button", "Save"),
]
ABOUT = [("label", "Plumtide"), ("button", "Copy Versions"), ("button", "Close")]
TITLES = [("table", "Recent titles"), ("button", "Copy"), ("button", "Save as CSV...")]
GERMAN = ["Plumtide", "Wiedergabe", "Sender", "Favoriten", "Hilfe"]
COLUMNS = ["Status", "Station", "Genre", "kbit/s", "Type", "Listeners", "Current track"]

INTERACTIVE = {"button", "toggle button", "check box", "radio button", "menu item", "check menu item", "menu", "text",
               "password text", "slider", "table", "list", "list item", "combo box", "spin button", "link",
               "dialog", "window"}


def restart_in_private():
    """Runs this script again, on a session bus and a display of its own."""
    with tempfile.TemporaryDirectory() as home:
        os.mkdir(os.path.join(home, "Music"))
        environment = {"PATH": os.environ["PATH"], "HOME": home, "XDG_CONFIG_HOME": home, "XDG_STATE_HOME": home,
                       "XDG_RUNTIME_DIR": home, "LC_ALL": "C.UTF-8", "PRIVATE_SESSION": "1"}
        sys.exit(subprocess.call(["dbus-run-session", "--", "xvfb-run", "--auto-servernum",
                                  "--server-args=-screen 0 1180x760x24 -nolisten tcp", *sys.argv], env=environment))


if "PRIVATE_SESSION" not in os.environ:
    restart_in_private()

import gi  # noqa: E402  (it reaches for the bus)

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def eventually(what, attempt):
    """The first result of `attempt` that is not false. What is asked may go away meanwhile."""
    end = time.monotonic() + DEADLINE
    while True:
        try:
            if result := attempt():
                return result
        except GLib.Error:
            pass
        if time.monotonic() > end:
            raise AssertionError(what() if callable(what) else what)
        while GLib.MainContext.default().iteration(False):
            pass
        time.sleep(0.02)


def is_showing(thing):
    return thing.get_state_set().contains(Atspi.StateType.SHOWING)


def children(thing):
    return [child for index in range(thing.get_child_count()) if (child := thing.get_child_at_index(index))]


def walk(thing):
    """Everything that shows, from `thing` on; of a table only the table."""
    yield thing
    if role_of(thing) != "table":
        for child in children(thing):
            if is_showing(child):
                yield from walk(child)


def role_of(thing):
    """A button is a push button to earlier versions of at-spi2-core."""
    return thing.get_role_name().replace("push button", "button")


def outline(thing, depth=0):
    lines = [f"{'  ' * depth}{role_of(thing)} '{thing.get_name()}' {thing.get_description()}"]
    if role_of(thing) != "table":
        lines += [outline(child, depth + 1) for child in children(thing) if is_showing(child)]
    return "\n".join(lines)


def find(root, role, name):
    return eventually(lambda: f"no {role} '{name}' in\n{outline(root)}",
                      lambda: next((thing for thing in walk(root)
                                    if (role_of(thing), thing.get_name()) == (role, name)), None))


def act(thing, name):
    names = [thing.get_action_name(index) for index in range(thing.get_n_actions())]
    assert name in names, f"'{thing.get_name()}' has no action {name}, but {names}"
    assert thing.do_action(names.index(name))


def press(window, *keys):
    """Keys into the window of that name; there is no window manager that would give it the focus."""
    for command in (["search", "--onlyvisible", "--name", f"^{window}", "windowfocus", "--sync"], ["key", *keys]):
        subprocess.run(["xdotool", *command], check=True, timeout=DEADLINE)


def unnamed(root):
    return [thing for thing in walk(root) if role_of(thing) in INTERACTIVE and not thing.get_name()]


class Session(unittest.TestCase):
    """The program before a radio of its own."""
    LANGUAGE = "C.UTF-8"

    @classmethod
    def setUpClass(cls):
        cls.radio = subprocess.Popen([LOCALRADIO, "--port", "0", "--key", "a-key"], stdout=subprocess.PIPE, text=True)
        cls.addClassCleanup(cls.end, cls.radio)
        cls.address = cls.radio.stdout.readline().split()[-1].rstrip("/")
        cls.program = subprocess.Popen([PROGRAM], env={
            **os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_QPA_PLATFORM": "xcb", "LC_ALL": cls.LANGUAGE,
            "PLUMTIDE_AUDIO_OUTPUT": "null", "ASAN_OPTIONS": "detect_leaks=0",
            "PLUMTIDE_DIRECTORY_URL": cls.address + "/", "PLUMTIDE_DIRECTORY_KEY": "a-key",
            "PLUMTIDE_TUNEIN_URL": cls.address})
        cls.addClassCleanup(cls.end, cls.program)
        desktop = Atspi.get_desktop(0)
        cls.application = eventually("the program is not on the bus", lambda: next(
            (one for one in children(desktop) if one.get_name() == "plumtide"), None))
        cls.application.set_cache_mask(Atspi.Cache.NONE)
        cls.window = eventually("there is no window", lambda: next(
            (one for one in children(cls.application) if one.get_name() == "Plumtide"), None))
        find(cls.window, "label", "Download Complete")

    @staticmethod
    def end(process):
        process.terminate()
        process.wait(DEADLINE)
        if process.stdout:
            process.stdout.close()


class Accessibility(Session):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        with urllib.request.urlopen(cls.address + "/legacy/Top500/?k=a-key") as answer:
            cls.stations = ElementTree.parse(answer).getroot().findall("station")

    def find(self, role, name):
        return find(self.window, role, name)

    def expect(self, root, things):
        for role, name in things:
            find(root, role, name)
        self.assertEqual(unnamed(root), [], outline(root))

    def menu(self, *path):
        """The item of the menu bar that the names lead to."""
        items = children(find(self.window, "menu bar", ""))
        for name in path:
            item = next(item for item in items if item.get_name() == name)
            items = children(children(item)[0]) if item.get_child_count() else []
        return item

    def window_named(self, name):
        return eventually(f"no window '{name}'", lambda: next(
            (one for one in children(self.application) if one.get_name() == name and is_showing(one)), None))

    def wait_until_gone(self, thing):
        eventually(f"'{thing.get_name()}' still shows", lambda: not is_showing(thing))

    def test_window(self):
        self.expect(self.window, WINDOW)

    def test_menus(self):
        for menu, items in MENUS.items():
            for item in items:
                self.menu(menu, item)
        for column in COLUMNS[1:]:
            self.menu("Stations", "Sort By", column)

    def test_cards_and_windows(self):
        for button, card, things in (("Sound", "Sound", SOUND), ("Add station", "Add Station", ADD_STATION),
                                     ("Recent titles", "Recent titles", TITLES)):
            act(self.find("button", button), "Press")
            root = self.find("dialog", card)
            self.expect(root, things)
            act(self.find("button", button), "Press")
            self.wait_until_gone(root)
        act(self.menu("Plumtide", "About Plumtide"), "Press")
        about = self.window_named("About Plumtide")
        self.expect(about, ABOUT)
        act(find(about, "button", "Close"), "Press")
        self.wait_until_gone(about)
        act(self.menu("Plumtide", "Preferences..."), "Press")
        preferences = self.window_named("Preferences")
        self.expect(preferences, PREFERENCES)
        act(find(preferences, "button", "Cancel"), "Press")
        self.wait_until_gone(preferences)
        act(self.menu("Help", "Keyboard Shortcuts"), "Press")
        shortcuts = self.window_named("Keyboard Shortcuts")
        table = find(shortcuts, "table", "Keyboard Shortcuts").get_table_iface()
        lines = {tuple(table.get_accessible_at(row, column).get_name() for column in (0, 1))
                 for row in range(table.get_n_rows())}
        self.assertLessEqual({("Play or Pause", "Space"), ("Add to Favourites", "Ctrl+D"),
                              ("Keyboard Shortcuts", "F1"), ("Play the station", "Enter")}, lines)
        press("Keyboard Shortcuts", "Escape")
        self.wait_until_gone(shortcuts)

    def test_genres(self):
        table = self.find("table", "Stations").get_table_iface()
        for genre, is_there in (("70s", lambda rows: 0 < rows < len(self.stations)),
                                ("Trending 500", lambda rows: rows == len(self.stations))):
            act(find(self.find("list", "Genres"), "list item", genre), "Press")
            eventually(lambda: f"{table.get_n_rows()} stations", lambda: is_there(table.get_n_rows()))

    def cells(self, row):
        table = self.find("table", "Stations").get_table_iface()
        return [table.get_accessible_at(row, column).get_name() for column in range(table.get_n_columns())]

    def test_table(self):
        table = self.find("table", "Stations").get_table_iface()
        self.assertEqual([table.get_column_description(column) for column in range(len(COLUMNS))], COLUMNS)
        self.assertEqual(table.get_n_rows(), len(self.stations))
        types = {"audio/mpeg": "MP3", "audio/aacp": "AAC"}
        for row in (0, 1, len(self.stations) - 1):
            station = self.stations[row].attrib
            self.assertEqual(table.get_row_description(row), station["name"])
            self.assertEqual(self.cells(row), [
                "on air", station["name"], station["genre"], station["br"],
                types.get(station["mt"], station["mt"]), f"{int(station['lc']):,}", station.get("ct", "")])
        listeners = [int(station.get("lc")) for station in self.stations]
        for command, first in ((table.get_column_header(5), min), (self.menu("Stations", "Sort By", "Listeners"), max)):
            act(command, "Press")
            eventually(lambda: f"not sorted: {self.cells(0)}",
                       lambda: self.cells(0)[5] == f"{first(listeners):,}")

    def expect_streaming(self, name):
        self.find("label", name)
        self.find("label", "- Streaming -")

    def stop(self):
        act(self.find("button", "Stop"), "Press")
        self.find("label", "idle")

    def test_stations_play_and_are_kept(self):
        first, second = (station.get("name") for station in self.stations[:2])
        table = self.find("table", "Stations").get_table_iface()
        act(table.get_accessible_at(0, 1), "Press")
        self.expect_streaming(first)
        act(self.find("button", "Pause"), "Press")
        self.find("label", "Paused (buffering in background)")
        act(self.find("button", "Play"), "Press")
        self.expect_streaming(first)
        self.stop()

        act(table.get_accessible_at(1, 1), "Toggle")
        act(self.menu("Stations", "Add to Favourites"), "Press")
        favourite = find(self.find("list", "Favourites"), "list item", second)
        self.assertEqual(unnamed(self.window), [], outline(self.window))
        heard = []
        listener = Atspi.EventListener.new(lambda event: heard.append(event.source.get_name()))
        listener.register("object:state-changed:focused")
        self.addCleanup(listener.deregister, "object:state-changed:focused")
        press("Plumtide", "Up")
        favourite.get_component_iface().grab_focus()
        eventually(f"the focus was not announced: {heard}", lambda: second in heard)
        act(favourite, "Press")
        self.expect_streaming(second)
        self.stop()
        act(find(favourite, "button", f"Play {second}"), "Press")
        self.expect_streaming(second)
        act(favourite, "Details")
        self.expect(self.find("dialog", "Station"), DETAILS)
        act(favourite, "Details")
        self.stop()
        act(self.menu("Favourites", "Remove"), "Press")
        eventually("the favourite is still there", lambda: not children(self.find("list", "Favourites")))


class German(Session):
    LANGUAGE = "de_DE.UTF-8"

    def test_speaks_german_but_for_the_status(self):
        menus = children(find(self.window, "menu bar", ""))
        self.assertEqual([menu.get_name() for menu in menus], GERMAN)
        find(self.window, "label", "idle")
        self.assertEqual(unnamed(self.window), [], outline(self.window))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2, warnings="ignore")
