#!/usr/bin/python3
"""That the built program ends while something goes on that has no end, and saves the rack: quit.py PROGRAM LOCALRADIO
For bench/faults, which sets FAULT_TABLE, prints how soon."""
import os
import pathlib
import signal
import socket
import subprocess
import sys
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "acceptance"))
from program import SAVED, ProgramTest, archive, records, unittest  # noqa: E402

LOCALRADIO = sys.argv[2]
PRINTS_TABLE = "FAULT_TABLE" in os.environ
LIST = b"HTTP/1.0 200 OK\r\n\r\n<l><tunein base='/tune'/><station name='station' id='1'/></l>"

# What the directory does, where the station leads, what is waited for, and how the end is asked for.
CASES = [
    ("nothing", "list", "", "Download Complete", "ctrl+q"),
    ("directory: silent", "silence", "", "/legacy/Top500", "ctrl+q"),
    ("directory: silent", "silence", "", "/legacy/Top500", signal.SIGTERM),
    ("directory: header drip", "header drip", "", "/legacy/Top500", "ctrl+q"),
    ("directory: endless body", "endless body", "", "/legacy/Top500", "ctrl+q"),
    ("directory: endless body", "endless body", "", "/legacy/Top500", signal.SIGTERM),
    ("station: silent", "list", "OWN/silent", "/silent", "ctrl+q"),
    ("station: silent", "list", "OWN/silent", "/silent", signal.SIGTERM),
    ("station: connection swallowed", "list", "SWALLOWED", "Connecting please wait..", "ctrl+q"),
    ("station: endless playlist", "list", "RADIO/playlist?endless=1&rate=9000", "/playlist", "ctrl+q"),
    ("station: endless tag", "list", "STREAM?tag=268435455&rate=4000000", "tag=", "ctrl+q"),
    ("station: streaming", "list", "STREAM", "- Streaming -", "ctrl+q"),
    ("station: streaming", "list", "STREAM", "- Streaming -", signal.SIGTERM),
]


class SlowDirectory:
    """Answers each client on a thread of its own."""

    def __init__(self, behaviour, station):
        self.behaviour = behaviour
        self.asked = []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.address = f"http://127.0.0.1:{self.listener.getsockname()[1]}"
        self.playlist = f"HTTP/1.0 200 OK\r\n\r\n[playlist]\nFile1={station.replace('OWN', self.address)}\n".encode()
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            try:
                client = self.listener.accept()[0]
            except OSError:
                return
            threading.Thread(target=self.answer, args=[client], daemon=True).start()

    def answer(self, client):
        with client:
            target = client.recv(65536).decode("latin-1").split(" ")[1]
            self.asked.append(target)
            try:
                if target.startswith("/tune"):
                    client.sendall(self.playlist)
                elif self.behaviour == "list" and target != "/silent":
                    client.sendall(LIST)
                elif self.behaviour == "endless body":
                    client.sendall(LIST[:-len("</l>")])
                    while True:
                        client.sendall(b" " * 4096)
                        time.sleep(0.002)
                elif self.behaviour == "header drip":
                    client.sendall(b"HTTP/1.0 200 OK\r\nX: ")
                    while True:
                        client.sendall(b"x")
                        time.sleep(0.1)
                else:
                    client.recv(1)
            except OSError:
                pass


class Quit(ProgramTest):
    def start_radio(self):
        self.log = pathlib.Path(self.home.name, "requests")
        ready = self.start_tool(LOCALRADIO, "--port", "0", "--log", str(self.log))
        return ready.split()[-1].rstrip("/")

    def swallowing(self):
        """A port whose queue is full: the system drops whatever asks for one more."""
        listener = socket.socket()
        listener.bind(("127.0.0.1", 0))
        listener.listen(0)
        waiting = [socket.socket() for _ in range(2)]
        for client in waiting:
            client.setblocking(False)
            client.connect_ex(listener.getsockname())
            self.addCleanup(client.close)
        self.addCleanup(listener.close)
        return f"http://127.0.0.1:{listener.getsockname()[1]}/x"

    def test_quit(self):
        radio = self.start_radio()
        settings = self.start_display()[1]
        stations = subprocess.run([LOCALRADIO, "--list"], stdout=subprocess.PIPE, text=True, check=True).stdout
        stream = radio + stations.split('"streams"', 1)[1].split('"')[1]
        addresses = {"STREAM": stream, "RADIO": radio, "SWALLOWED": self.swallowing()}
        if PRINTS_TABLE:
            print("\n| meanwhile | asked by | window gone | ended |\n|---|---|---:|---:|")
        for meanwhile, behaviour, station, wanted, way in CASES:
            with self.subTest(meanwhile, way=way):
                for name, address in addresses.items():
                    station = station.replace(name, address)
                self.quit(settings, meanwhile, SlowDirectory(behaviour, station), wanted, way)

    def quit(self, settings, meanwhile, directory, wanted, way):
        display = settings["DISPLAY"]
        self.addCleanup(directory.listener.close)
        self.file.write_bytes(archive(["A", "B"]))
        before = self.log.stat().st_size
        process = self.launch(**settings, PLUMTIDE_DIRECTORY_URL=directory.address + "/",
                              PLUMTIDE_TUNEIN_URL=directory.address, QT_LOGGING_RULES="plumtide.status.debug=true")
        self.wait_until(lambda: self.visible(display))
        self.xdotool(display, "windowfocus", "--sync", self.visible(display)[0])
        self.xdotool(display, "key", "ctrl+shift+n")
        if directory.behaviour == "list":
            self.wait_for(process, "Download Complete")
        if meanwhile.startswith("station"):
            self.xdotool(display, "key", "--delay", "50", "Down", "Return")
            self.wait_for(process, "Connecting please wait..")
        if "/" in wanted or "=" in wanted:
            self.wait_until(lambda: any(wanted in target for target in directory.asked) or
                            wanted in self.log.read_text()[before:])
        elif wanted == "- Streaming -":
            self.wait_for(process, wanted)

        asked = time.monotonic()
        if way == signal.SIGTERM:
            process.send_signal(way)
        else:
            self.xdotool(display, "key", way)
        self.wait_until(lambda: process.poll() is not None or not self.visible(display))
        hidden = time.monotonic() - asked
        self.wait_until(lambda: process.poll() is not None)
        ended = time.monotonic() - asked
        if PRINTS_TABLE:
            way = "SIGTERM" if way == signal.SIGTERM else "Ctrl+Q"
            print(f"| {meanwhile:30} | {way:7} | {hidden * 1000:6.0f} ms | {ended * 1000:6.0f} ms |", flush=True)
        self.assertEqual(process.returncode, 0)
        self.assertIn(SAVED, process.stderr.read().splitlines())
        names = [record["name"] for record in records(self.file.read_bytes())]
        self.assertEqual(names, ["My Radio", "A", "B"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
