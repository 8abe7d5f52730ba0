"""What the tests of faults share: the programs with a home of their own, in the display that DISPLAY names, and what can
be seen of them from outside: windows, pictures, lines, files, exit codes.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()
PROGRAM = FOLDER / "forms/skyreckoning"
CONSOLE = FOLDER / "tools/skyreckoning-console"
SIMULATOR = FOLDER / "tools/skysim"

PATIENCE = 60
STILL_SECONDS = 2
KEY = "[Software\\Vintermark\\Skyreckoning]"
# Between the head of the window alone and the smallest page.
PAGE_HEIGHT = 200
# Pixels of a window's lower part, and the colours that they have at most where there is no page.
GROUND_BYTES = 3 * 100_000
GROUND_COLOURS = 10


def await_result(question, patience=PATIENCE):
    """Asks until there is an answer, which it gives; None when there is none."""
    limit = time.monotonic() + patience
    while time.monotonic() < limit:
        answer = question()
        if answer:
            return answer
        time.sleep(0.05)
    return None


def resident_kib(process):
    for line in pathlib.Path(f"/proc/{process.pid}/status").read_text(encoding="ascii").splitlines():
        if line.startswith("VmRSS"):
            return int(line.split()[1])
    return 0


class Scene(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.home)
        self.settings = self.home / "skyreckoning/registry"
        self.environment = {**os.environ, "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home),
                            "XDG_RUNTIME_DIR": str(self.home)}

    # --- Programs

    def start(self, *command, **options):
        process = subprocess.Popen([str(word) for word in command], env=self.environment, stderr=subprocess.PIPE,
                                   text=True, **options)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def store(self, *rows):
        self.settings.parent.mkdir(exist_ok=True)
        self.settings.write_text("\n".join((KEY, *rows, "")), encoding="utf-8")

    def simulate(self, *arguments, pty="ttyA"):
        """A receiver at that virtual port, which takes faults by say()."""
        simulator = self.start(SIMULATOR, "--pty", pty, *arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(simulator.stdout.close)
        self.addCleanup(simulator.stdin.close)
        self.assertTrue(simulator.stdout.readline().startswith("ready"), "the simulator does not start")
        return simulator

    @staticmethod
    def say(simulator, line):
        simulator.stdin.write(line + "\n")
        simulator.stdin.flush()

    def open_port(self, *rows, pty="ttyA"):
        """The program at a virtual port."""
        self.store('"Connection" = text "Serial port"', f'"Serial port" = text "{pty}"', *rows)
        return self.start(PROGRAM)

    def open_client(self, address, *before):
        self.store('"Connection" = text "Network"', f'"TCP address" = text "{address}"')
        return self.start(*before, PROGRAM)

    def console(self, name, *arguments, before=()):
        """The console monitor, whose lines statuses() and groups() read."""
        lines = self.home / name
        with lines.open("w", encoding="utf-8") as output:
            return self.start(*before, CONSOLE, *arguments, "--json", stdout=output), lines

    @staticmethod
    def rows(lines):
        text = lines.read_text(encoding="utf-8")
        return [json.loads(line) for line in text[:text.rfind("\n") + 1].splitlines()]

    def statuses(self, lines):
        return [row["status"] for row in self.rows(lines) if row.get("status")]

    def groups(self, lines):
        """How often the receiver's data have come."""
        return sum("receiver" in row for row in self.rows(lines))

    def serve(self, port=0, before=()):
        """A console monitor that serves the receiver at ttyA, and its TCP port."""
        server, lines = self.console("served", "--port", "ttyA", "--serve", port, before=before)
        said = await_result(lambda: [one for one in self.statuses(lines) if one.startswith("Serving on port ")])
        self.assertTrue(said, "the server does not start")
        self.assertTrue(await_result(lambda: self.groups(lines)), "the server has no receiver")
        return server, int(said[0].split()[-1])

    # --- Windows

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=False, capture_output=True,
                              text=True).stdout

    def windows(self):
        return self.xdotool("search", "--onlyvisible", "--name", "^Skyreckoning$").split()

    def size(self):
        """Width and height of the window."""
        geometry = dict(line.split("=") for line in
                        self.xdotool("getwindowgeometry", "--shell", self.windows()[0]).splitlines())
        return int(geometry["WIDTH"]), int(geometry["HEIGHT"])

    def click(self, x, y):
        """At that place of the window."""
        self.xdotool("mousemove", "--window", self.windows()[0], x, y, "click", 1)

    def close(self, count=1):
        """Closes that many windows, as a window manager does."""
        shown = await_result(lambda: len(self.windows()) >= count and self.windows())
        self.assertIsNotNone(shown, "no window")
        for window in shown:
            self.xdotool("windowactivate", "--sync", window, "key", "alt+F4")

    def picture(self):
        """The pixels of the window, three bytes each; empty where there is none or it just goes."""
        shown = self.windows()
        return subprocess.run(["import", "-window", shown[0], "-depth", "8", "rgb:-"], env=self.environment, check=False,
                              capture_output=True).stdout if shown else b""

    def has_page(self):
        """Whether a window has a page, and something on it: without one there is a head, and maybe bare ground below."""
        heights = [int(line.split("x")[1]) for window in self.windows()
                   for line in self.xdotool("getwindowgeometry", window).splitlines() if "Geometry" in line]
        if max(heights, default=0) <= PAGE_HEIGHT:
            return False
        below = self.picture()[-GROUND_BYTES:]
        return len({below[at:at + 3] for at in range(0, len(below), 3)}) > GROUND_COLOURS

    def assert_page(self, patience=PATIENCE):
        self.assertTrue(await_result(self.has_page, patience), "no page")

    def assert_no_page(self, patience=PATIENCE):
        self.assertTrue(await_result(lambda: not self.has_page(), patience), "the page stays")

    def assert_page_lives(self, patience=PATIENCE):
        self.assert_page(patience)
        before = self.picture()
        self.assertTrue(await_result(lambda: self.picture() != before, patience), "the page stands still")

    def assert_page_stands_still(self):
        def is_still():
            before = self.picture()
            time.sleep(STILL_SECONDS)
            return self.picture() == before
        self.assertTrue(self.has_page(), "no page")
        self.assertTrue(await_result(is_still), "the page goes on")
        self.assertTrue(self.has_page(), "the page has gone")

    # --- Ends

    def assert_ends(self, program, code=0):
        """What it said on its error output."""
        ended = program.wait(PATIENCE)
        told = program.stderr.read()
        self.assertEqual(ended, code, told)
        self.assertEqual(list(self.home.glob("*_ExceptInfo.txt")), [])
        return told
