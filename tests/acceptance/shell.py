#!/usr/bin/python3
"""How the built program is reached once its window is closed, and how two of them share a home:
shell.py PROGRAM LOCALRADIO"""
import json
import pathlib
import signal
import socket
import sys
import unittest

from program import NOT_SAVED, SAVED, ProgramTest, archive, records

LOCALRADIO = sys.argv[2]


class Shell(ProgramTest):
    def start_bus(self):
        address = self.start_tool("dbus-daemon", "--session", "--nofork", "--print-address")
        return {"DBUS_SESSION_BUS_ADDRESS": address}

    def press(self, display, *keys):
        self.xdotool(display, "windowfocus", "--sync", *self.visible(display)[:1], "key", "--delay", "50", *keys)

    def end(self, process, *lines):
        """What it says at its end must be among its last words."""
        process.terminate()
        said = process.stderr.read().splitlines()
        self.assertEqual(process.wait(10), 0)
        for line in lines:
            self.assertIn(line, said)

    def test_closed_window_comes_back(self):
        self.file.write_bytes(archive(["A", "B"]))
        log = pathlib.Path(self.home.name, "requests")
        ready = self.start_tool(LOCALRADIO, "--port", "0", "--log", str(log))
        radio = ready.split()[-1].rstrip("/")
        settings = {**self.start_bus(), **self.start_display()[1], "PLUMTIDE_DIRECTORY_URL": radio + "/",
                    "PLUMTIDE_TUNEIN_URL": radio, "QT_LOGGING_RULES": "plumtide.status.debug=true"}
        display = settings["DISPLAY"]
        process = self.launch(**settings)
        self.wait_for(process, "Download Complete")
        self.wait_until(lambda: self.visible(display))
        self.press(display, "Down", "Return")
        self.wait_for(process, "- Streaming -")
        for _ in range(2):
            self.press(display, "ctrl+w")
            self.wait_until(lambda: not self.visible(display))
            self.assertIsNone(process.poll())
            again = self.launch(**settings)
            self.assertEqual(again.communicate(timeout=20)[1], "")
            self.assertEqual(again.returncode, 0)
            self.wait_until(lambda: self.visible(display))
            self.assertIsNone(process.poll())
        # One list, one stream: neither was asked for again.
        entries = [json.loads(line) for line in log.read_text().splitlines()]
        targets = [entry["target"] for entry in entries if entry["event"] == "request"]
        for beginning in ("/legacy/Top500", "/stream/"):
            self.assertEqual(len([target for target in targets if target.startswith(beginning)]), 1, targets)
        self.press(display, "ctrl+w")
        self.wait_until(lambda: not self.visible(display))
        self.end(process, SAVED)
        self.assertEqual([station["name"] for station in records(self.file.read_bytes())], ["A", "B"])

    def test_commands(self):
        bus = self.start_bus()
        process = self.start(**bus)
        for command in ("--play-pause", "--stop", "--quit"):
            self.assertEqual(self.launch(command, **bus).wait(20), 0)
        self.assertIn(SAVED, process.stderr.read().splitlines())
        self.assertEqual(process.wait(10), 0)
        self.assertEqual(self.launch("--stop", **bus).wait(20), 1)
        # The name is free again.
        self.end(self.start(**bus), SAVED)

    def test_started_at_once(self):
        bus = self.start_bus()
        processes = [self.launch(**bus) for _ in range(4)]
        self.wait_until(lambda: sum(process.poll() is None for process in processes) == 1)
        self.assertEqual(sorted(process.returncode or 0 for process in processes), [0, 0, 0, 0])
        first = next(process for process in processes if process.poll() is None)
        self.wait_for(first, "no answer from the directory")
        self.end(first, SAVED)

    def test_program_and_bus_that_do_not_answer(self):
        bus = self.start_bus()
        process = self.start(**bus)
        process.send_signal(signal.SIGSTOP)
        again = self.launch(**bus)
        self.assertEqual(len(again.communicate(timeout=30)[1].splitlines()), 1)
        self.assertEqual(again.returncode, 1)
        process.send_signal(signal.SIGCONT)
        self.end(process, SAVED)

        with socket.socket(socket.AF_UNIX) as silent:
            silent.bind(self.home.name + "/bus")
            silent.listen()
            process = self.start(DBUS_SESSION_BUS_ADDRESS="unix:path=" + self.home.name + "/bus")
            self.end(process, SAVED)

    def test_two_without_a_bus(self):
        original = archive(["A", "B"])
        self.file.write_bytes(original)
        first = self.start()
        stray = self.folder / ".plumtide.data.saving-abcdef"
        stray.write_bytes(b"being written")
        second = self.launch()
        said = self.wait_for(second, "no answer from the directory")
        self.assertEqual(len([line for line in said if "another program" in line]), 1)
        self.end(second, NOT_SAVED)
        self.assertEqual(self.file.read_bytes(), original)
        self.assertTrue(stray.exists())
        self.assertEqual(len(list(self.folder.glob("plumtide.data*"))), 2)

        # The second program does not take over from the first.
        second = self.start()
        self.end(first, SAVED)
        saved = self.file.read_bytes()
        self.assertNotEqual(saved, original)
        self.end(second, NOT_SAVED)
        self.assertEqual(self.file.read_bytes(), saved)

        # A killed program leaves no claim on the file.
        first = self.start()
        first.kill()
        first.wait()
        self.end(self.start(), SAVED)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
