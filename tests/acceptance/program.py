"""The built program in a home of its own, for the tests of what it leaves and how it is reached."""
import faulthandler
import os
import pathlib
import plistlib
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = sys.argv[1]
SAVED = "com.ostrel.plumtide.save_data_success 1"
NOT_SAVED = "com.ostrel.plumtide.save_data_success 0"


def archive(names):
    """As another program writes it: an immutable list, mutable texts, few keys, one of them unknown."""
    objects = ["$null", {"NS.objects": [], "$class": plistlib.UID(2)},
               {"$classname": "NSArray", "$classes": ["NSArray", "NSObject"]},
               {"$classname": "RadioModel", "$classes": ["RadioModel", "NSObject"]},
               {"$classname": "NSMutableString", "$classes": ["NSMutableString", "NSString", "NSObject"]}]

    def add(thing):
        objects.append(thing)
        return plistlib.UID(len(objects) - 1)

    for name in names:
        text = add({"NS.string": name, "$class": plistlib.UID(4)})
        objects[1]["NS.objects"].append(
            add({"stars": add(3), "name": text, "colour": add("red"), "$class": plistlib.UID(3)}))
    return plistlib.dumps({"$archiver": "NSKeyedArchiver", "$version": 100000,
                           "$top": {"root": plistlib.UID(1)}, "$objects": objects}, fmt=plistlib.FMT_BINARY)


def records(data):
    """The stations of an archive, each a map from key to value."""
    objects = plistlib.loads(data)["$objects"]
    root = next(thing for thing in objects if isinstance(thing, dict) and "NS.objects" in thing)
    stations = []
    for reference in root["NS.objects"]:
        record = objects[reference.data]
        stations.append({key: objects[value.data] for key, value in record.items() if key != "$class"})
    return stations


class ProgramTest(unittest.TestCase):
    def setUp(self):
        # A wait that never ends shows where it is, before ctest ends the whole script without a word.
        faulthandler.dump_traceback_later(100, exit=True)
        self.addCleanup(faulthandler.cancel_dump_traceback_later)
        self.home = tempfile.TemporaryDirectory()
        self.addCleanup(self.home.cleanup)
        self.folder = pathlib.Path(self.home.name, "Music", "com.plumtide.folders")
        self.folder.mkdir(parents=True)
        self.file = self.folder / "plumtide.data"

    def launch(self, *arguments, **environment):
        home = self.home.name
        # A program that ends while it opens libmpv leaves memory behind; that is no leak of ours.
        # Nobody listens on port 1: the directory's answer is an error at once, and the event loop is running.
        process = subprocess.Popen([PROGRAM, *arguments], stderr=subprocess.PIPE, text=True, env={
            "PATH": os.environ["PATH"], "HOME": home, "XDG_CONFIG_HOME": home, "XDG_STATE_HOME": home,
            "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "PLUMTIDE_AUDIO_OUTPUT": "null",
            "ASAN_OPTIONS": "detect_leaks=0", "PLUMTIDE_DIRECTORY_URL": "http://127.0.0.1:1/", **environment})
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def wait_for(self, process, text):
        """Reads what the program says up to the line with that text; returns the lines."""
        lines = []
        while not lines or text not in lines[-1]:
            lines.append(process.stderr.readline())
            self.assertTrue(lines[-1], f"the program ended without saying \"{text}\"")
        return lines

    def start(self, **environment):
        process = self.launch(**environment)
        self.wait_for(process, "no answer from the directory")
        return process

    def start_display(self):
        """Starts an X server; returns it and the settings for it."""
        # A server that begins anew when its last client leaves may take the next one for one of those that left.
        server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1180x760x24", "-nolisten", "tcp",
                                   "-noreset"],
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        return server, {"QT_QPA_PLATFORM": "xcb", "DISPLAY": ":" + server.stdout.readline().strip()}

    def start_tool(self, *command):
        """Starts a program that says one line when it is ready; returns that line."""
        tool = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(tool.stdout.close)
        self.addCleanup(tool.wait)
        self.addCleanup(tool.kill)
        return tool.stdout.readline().strip()

    def xdotool(self, display, *words):
        return subprocess.run(["xdotool", *words], env={"DISPLAY": display, "PATH": "/usr/bin"}, text=True, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.split()

    def visible(self, display):
        """The windows of the program that can be seen."""
        return self.xdotool(display, "search", "--onlyvisible", "--name", "^Plumtide$")

    def wait_until(self, condition):
        deadline = time.monotonic() + 20
        while not condition():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.005)
