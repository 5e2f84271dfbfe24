#!/usr/bin/python3
"""What the built program leaves of the favourites when it ends, in whatever way: favourites.py PROGRAM [KILLS]"""
import os
import pathlib
import plistlib
import random
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = sys.argv[1]
KILLS = int(sys.argv[2]) if len(sys.argv) > 2 else 12
SAVED = "com.ostrel.plumtide.save_data_success 1"


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


class Favourites(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory()
        self.addCleanup(self.home.cleanup)
        self.folder = pathlib.Path(self.home.name, "Music", "com.plumtide.folders")
        self.folder.mkdir(parents=True)
        self.file = self.folder / "plumtide.data"

    def start(self, **environment):
        home = self.home.name
        # A program that ends while it opens libmpv leaves what that has begun with, which is no leak of ours.
        # Nobody listens on port 1: the directory's answer is an error at once, and the event loop is running.
        process = subprocess.Popen([PROGRAM], stderr=subprocess.PIPE, text=True, env={
            "PATH": os.environ["PATH"], "HOME": home, "XDG_CONFIG_HOME": home, "XDG_STATE_HOME": home,
            "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "PLUMTIDE_AUDIO_OUTPUT": "null",
            "ASAN_OPTIONS": "detect_leaks=0", "PLUMTIDE_DIRECTORY_URL": "http://127.0.0.1:1/", **environment})
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.kill)
        while "no answer from the directory" not in (line := process.stderr.readline()):
            self.assertTrue(line, "the program ended at once")
        return process

    def expect_saved(self, process):
        self.assertIn(SAVED, process.stderr.read().splitlines())
        process.wait(10)
        self.assertEqual([station["name"] for station in records(self.file.read_bytes())], ["A", "B"])
        self.assertEqual(stat.S_IMODE(self.file.stat().st_mode), 0o600)

    def test_asked_to_end(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number):
                original = archive(["A", "B"])
                self.file.write_bytes(original)
                process = self.start()
                process.send_signal(number)
                self.expect_saved(process)
                self.assertEqual(process.returncode, 0)
                kept = [other.read_bytes() for other in self.folder.iterdir() if other != self.file]
                self.assertIn(original, kept)

    def test_display_goes_away(self):
        self.file.write_bytes(archive(["A", "B"]))
        display = subprocess.Popen(["Xvfb", "-displayfd", "1", "-nolisten", "tcp"], stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(display.stdout.close)
        process = self.start(QT_QPA_PLATFORM="xcb", DISPLAY=":" + display.stdout.readline().strip())
        display.kill()
        display.wait()
        self.expect_saved(process)

    def test_killed_while_it_saves(self):
        names = [f"Station {number}" for number in range(1000)]
        old = archive(names)
        self.file.write_bytes(old)
        process = self.start()
        process.terminate()
        process.communicate()
        new = self.file.read_bytes()
        self.assertEqual([station["name"] for station in records(new)], names)
        for _ in range(KILLS):
            for leftover in self.folder.iterdir():
                leftover.unlink()
            self.file.write_bytes(old)
            process = self.start()
            process.terminate()
            time.sleep(random.uniform(0, 0.06))
            process.kill()
            process.wait()
            self.assertIn(self.file.read_bytes(), (old, new))
            process = self.start()
            self.assertEqual([other.name for other in self.folder.iterdir() if "saving" in other.name], [])
            process.kill()
            process.wait()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
