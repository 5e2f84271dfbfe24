#!/usr/bin/python3
"""What the built program leaves of the favourites when it ends, in whatever way: favourites.py PROGRAM [KILLS]
KILL_SEED repeats the moments of an earlier run, which has printed it."""
import os
import random
import signal
import stat
import sys
import time
import unittest

from program import SAVED, ProgramTest, archive, records

KILLS = int(sys.argv[2]) if len(sys.argv) > 2 else 12
SEED = os.environ.get("KILL_SEED") or str(random.randrange(2**32))


class Favourites(ProgramTest):
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
        display, settings = self.start_display()
        process = self.start(**settings)
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
        print(f"KILL_SEED={SEED}", flush=True)
        moments = random.Random(SEED)
        for _ in range(KILLS):
            for leftover in self.folder.iterdir():
                leftover.unlink()
            self.file.write_bytes(old)
            process = self.start()
            process.terminate()
            time.sleep(moments.uniform(0, 0.06))
            process.kill()
            process.wait()
            self.assertIn(self.file.read_bytes(), (old, new))
            process = self.start()
            self.assertEqual([other.name for other in self.folder.iterdir() if "saving" in other.name], [])
            process.kill()
            process.wait()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
